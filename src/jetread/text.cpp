#include "jetread/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <iconv.h>

namespace jetread {

namespace {

constexpr char32_t kReplacement = 0xfffd;
constexpr unsigned char kAsciiEnd = 0x80;

void append(std::string &utf8, char32_t c)
{
    const auto put = [&](char32_t value) { utf8.push_back(static_cast<char>(value)); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xc0 | (c >> 6));
        put(0x80 | (c & 0x3f));
    } else if (c < 0x10000) {
        put(0xe0 | (c >> 12));
        put(0x80 | ((c >> 6) & 0x3f));
        put(0x80 | (c & 0x3f));
    } else {
        put(0xf0 | (c >> 18));
        put(0x80 | ((c >> 12) & 0x3f));
        put(0x80 | ((c >> 6) & 0x3f));
        put(0x80 | (c & 0x3f));
    }
}

/// Takes UTF-16 units one by one.
class Joiner {
public:
    explicit Joiner(std::string &utf8) : m_utf8(utf8) {}

    void unit(std::uint16_t unit)
    {
        const bool low = unit >= 0xdc00 && unit < 0xe000;
        if (m_high != 0) {
            const char32_t high = m_high;
            m_high = 0;
            if (low) {
                append(m_utf8, 0x10000 + ((high - 0xd800) << 10) + (unit - 0xdc00));
                return;
            }
            append(m_utf8, kReplacement);
        }
        if (unit >= 0xd800 && unit < 0xdc00)
            m_high = unit;
        else
            append(m_utf8, low ? kReplacement : unit);
    }

    void end()
    {
        if (m_high != 0)
            append(m_utf8, kReplacement);
    }

private:
    std::string &m_utf8;
    char32_t m_high = 0;
};

} // namespace

void UnicodeDecoder::decode(std::string_view raw, std::string &utf8)
{
    utf8.clear();
    Joiner joiner(utf8);
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(raw[i]); };
    // In the compressed form one byte is one character until a zero byte switches to two, and back.
    bool compressed = raw.size() >= 2 && at(0) == 0xff && at(1) == 0xfe;
    const bool switches = compressed;
    std::size_t i = compressed ? 2 : 0;
    while (i < raw.size()) {
        if (switches && at(i) == 0) {
            compressed = !compressed;
            ++i;
        } else if (compressed) {
            joiner.unit(at(i));
            ++i;
        } else if (i + 1 < raw.size()) {
            joiner.unit(static_cast<std::uint16_t>(at(i) | (at(i + 1) << 8)));
            i += 2;
        } else {
            joiner.unit(kReplacement); // half a character
            ++i;
        }
    }
    joiner.end();
}

std::string codePageName(int codePage)
{
    constexpr int kLatin1 = 28591;
    constexpr int kMacCyrillic = 10007;
    if (codePage == kLatin1)
        return "ISO-8859-1";
    if (codePage == kMacCyrillic)
        return "MAC-CYRILLIC";
    return "CP" + std::to_string(codePage);
}

CodePageDecoder::CodePageDecoder(int codePage)
    : m_converter(::iconv_open("UTF-8", codePageName(codePage).c_str()))
{}

CodePageDecoder::~CodePageDecoder()
{
    if (known())
        ::iconv_close(m_converter);
}

bool CodePageDecoder::known() const noexcept
{
    return m_converter !=
           reinterpret_cast<iconv_t>(-1); // NOLINT(performance-no-int-to-ptr): iconv's own mark
}

void CodePageDecoder::decode(std::string_view raw, std::string &utf8)
{
    const bool ascii =
        std::all_of(raw.begin(), raw.end(), [](char c) { return static_cast<unsigned char>(c) < kAsciiEnd; });
    if (ascii) {
        utf8.assign(raw);
        return;
    }
    constexpr std::size_t kMostBytesPerCharacter = 4;
    utf8.resize(raw.size() * kMostBytesPerCharacter);
    char *from = const_cast<char *>(raw.data()); // iconv reads only
    std::size_t left = raw.size();
    char *to = utf8.data();
    std::size_t room = utf8.size();
    (void)::iconv(m_converter, nullptr, nullptr, nullptr, nullptr);
    while (left > 0 && ::iconv(m_converter, &from, &left, &to, &room) == static_cast<std::size_t>(-1)) {
        if (errno == E2BIG || room < kMostBytesPerCharacter)
            break; // four bytes for each of the page hold any character
        std::string mark;
        append(mark, kReplacement);
        to = std::copy(mark.begin(), mark.end(), to);
        room -= mark.size();
        ++from;
        --left;
    }
    utf8.resize(utf8.size() - room);
}

} // namespace jetread
