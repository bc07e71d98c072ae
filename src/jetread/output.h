#pragma once

#include "foreign/jetprotocol.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace jetread {

/// Payload of one frame, put together value by value.
class Payload {
public:
    void clear() { m_bytes.clear(); }
    [[nodiscard]] const std::string &bytes() const noexcept { return m_bytes; }

    void byte(std::uint8_t value) { m_bytes.push_back(static_cast<char>(value)); }
    void kind(foreign::jet::ValueKind value) { byte(static_cast<std::uint8_t>(value)); }
    void number16(std::uint32_t value) { number(value, 2); }
    void number32(std::uint32_t value) { number(value, 4); }
    void number64(std::uint64_t value) { number(value, 8); }
    void raw(std::string_view bytes) { m_bytes.append(bytes); }
    void text(std::string_view bytes)
    {
        number32(static_cast<std::uint32_t>(bytes.size()));
        raw(bytes);
    }

private:
    void number(std::uint64_t value, int size)
    {
        for (int i = 0; i < size; ++i)
            byte(static_cast<std::uint8_t>(value >> (8 * i)));
    }

    std::string m_bytes;
};

/// Standard output, in large pieces. Where it cannot be written any more (nobody reads) the program ends.
class Output {
public:
    Output();
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;
    ~Output() = default;

    void frame(foreign::jet::Frame type, const Payload &payload);
    void flush();

private:
    std::string m_buffer;
};

} // namespace jetread
