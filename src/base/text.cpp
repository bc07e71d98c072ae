#include "base/text.h"

#include <array>

namespace base {

namespace {

/// Unicode values of the codes 128 to 191 of Windows-1251 as the code page's owner publishes them;
/// 0 marks the one unused code (152).
constexpr std::array<char16_t, 64> kUpperHalf = {
    0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021, 0x20AC, 0x2030, 0x0409, 0x2039, 0x040A,
    0x040C, 0x040B, 0x040F, 0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x0000, 0x2122,
    0x0459, 0x203A, 0x045A, 0x045C, 0x045B, 0x045F, 0x00A0, 0x040E, 0x045E, 0x0408, 0x00A4, 0x0490, 0x00A6,
    0x00A7, 0x0401, 0x00A9, 0x0404, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x0407, 0x00B0, 0x00B1, 0x0406, 0x0456,
    0x0491, 0x00B5, 0x00B6, 0x00B7, 0x0451, 0x2116, 0x0454, 0x00BB, 0x0458, 0x0405, 0x0455, 0x0457};

constexpr char16_t kFirstLetter = 0x0410; // А
constexpr char16_t kLastLetter = 0x044F;  // я

/// Place of a character in the Russian alphabetical order; doubled, so that Ё fits between Е and Ж.
unsigned weight(QChar c) noexcept
{
    const char16_t upper = c.toUpper().unicode();
    if (upper == 0x0401) // Ё
        return 2U * 0x0415U + 1U;
    return 2U * upper;
}

} // namespace

int cp1251Code(QChar c) noexcept
{
    const char16_t u = c.unicode();
    if (u < 0x80)
        return u;
    if (u >= kFirstLetter && u <= kLastLetter)
        return 192 + (u - kFirstLetter);
    for (std::size_t i = 0; i < kUpperHalf.size(); ++i)
        if (kUpperHalf[i] == u)
            return static_cast<int>(128 + i);
    return -1;
}

QByteArray cp1251Bytes(QStringView text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar c : text) {
        const int code = cp1251Code(c);
        bytes.append(code < 0 ? '?' : static_cast<char>(code));
    }
    return bytes;
}

bool isCp1251Cyrillic(QChar c) noexcept
{
    return c.unicode() >= kFirstLetter && c.unicode() <= kLastLetter;
}

bool hasCyrillic(QStringView text) noexcept
{
    return std::any_of(text.cbegin(), text.cend(),
                       [](QChar c) { return isCp1251Cyrillic(c) || c == u'Ё' || c == u'ё'; });
}

bool isAscii(QStringView text) noexcept
{
    for (const QChar c : text)
        if (c.unicode() >= 0x80)
            return false;
    return true;
}

QString foldCase(QStringView text)
{
    QString folded = text.toString();
    for (QChar &c : folded)
        c = c.toUpper();
    return folded;
}

int compareRussian(QStringView a, QStringView b) noexcept
{
    const qsizetype common = std::min(a.size(), b.size());
    for (qsizetype i = 0; i < common; ++i) {
        const unsigned wa = weight(a[i]);
        const unsigned wb = weight(b[i]);
        if (wa != wb)
            return wa < wb ? -1 : 1;
    }
    if (a.size() == b.size())
        return 0;
    return a.size() < b.size() ? -1 : 1;
}

QStringView withoutTrailingBlanks(QStringView text) noexcept
{
    while (!text.isEmpty() && text.back() == QLatin1Char(' '))
        text.chop(1);
    return text;
}

} // namespace base
