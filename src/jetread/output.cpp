#include "jetread/output.h"

#include <cerrno>
#include <unistd.h>

namespace jetread {

namespace {

constexpr std::size_t kPiece = 60000; // below what a pipe holds

} // namespace

Output::Output()
{
    m_buffer.append(foreign::jet::kMagic, foreign::jet::kMagicSize);
}

void Output::frame(foreign::jet::Frame type, const Payload &payload)
{
    Payload head;
    head.number32(static_cast<std::uint32_t>(payload.bytes().size()));
    head.byte(static_cast<std::uint8_t>(type));
    m_buffer += head.bytes();
    m_buffer += payload.bytes();
    if (m_buffer.size() >= kPiece)
        flush();
}

void Output::flush()
{
    constexpr int kNobodyReads = 5;
    std::string_view rest = m_buffer;
    while (!rest.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, rest.data(), rest.size());
        if (written > 0)
            rest.remove_prefix(static_cast<std::size_t>(written));
        else if (errno != EINTR)
            ::_exit(kNobodyReads);
    }
    m_buffer.clear();
}

} // namespace jetread
