#include "foreign/textcoding.h"

#include <QStringConverter>

#include <algorithm>
#include <array>

namespace foreign {

namespace {

constexpr std::size_t kUpperHalf = 128;
using CodePage = std::array<char16_t, kUpperHalf>;

constexpr char16_t kNoCharacter = 0xFFFD;

CodePage makePage(const char *name)
{
    CodePage page{};
    QStringDecoder decoder(name);
    for (std::size_t i = 0; i < kUpperHalf; ++i) {
        const char byte = static_cast<char>(kUpperHalf + i);
        const QString text = decoder.isValid() ? QString(decoder(QByteArrayView(&byte, 1))) : QString();
        page[i] = text.size() == 1 ? text.front().unicode() : kNoCharacter;
    }
    return page;
}

const CodePage &codePage(TextCoding coding)
{
    static const CodePage windows = makePage("windows-1251");
    static const CodePage dos = makePage("IBM866");
    static const CodePage koi = makePage("KOI8-R");
    switch (coding) {
    case TextCoding::Ibm866:
        return dos;
    case TextCoding::KoiR:
        return koi;
    default:
        return windows;
    }
}

struct Utf8Count {
    qint64 valid = 0; ///< characters of more than one byte
    qint64 damaged = 0;
};

int followers(unsigned char lead) noexcept
{
    if (lead >= 0xC2 && lead <= 0xDF)
        return 1;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 2;
    return lead >= 0xF0 && lead <= 0xF4 ? 3 : -1;
}

/// Smallest and largest second byte after a lead: no overlong forms, no surrogates, nothing past U+10FFFF.
bool secondFits(unsigned char lead, unsigned char second) noexcept
{
    switch (lead) {
    case 0xE0:
        return second >= 0xA0;
    case 0xED:
        return second <= 0x9F;
    case 0xF0:
        return second >= 0x90;
    case 0xF4:
        return second <= 0x8F;
    default:
        return true;
    }
}

Utf8Count countUtf8(QByteArrayView bytes) noexcept
{
    Utf8Count count;
    const auto *at = reinterpret_cast<const unsigned char *>(bytes.data());
    const auto *end = at + bytes.size();
    while (at != end) {
        if (*at < 0x80) {
            ++at;
            continue;
        }
        const unsigned char lead = *at++;
        int missing = followers(lead);
        bool good = missing > 0;
        for (bool second = true; good && missing > 0 && at != end; second = false) {
            good = (*at & 0xC0) == 0x80 && (!second || secondFits(lead, *at));
            if (good) {
                ++at;
                --missing;
            }
        }
        if (!good)
            ++count.damaged;
        else if (missing == 0) // otherwise the file ends within it, which says nothing
            ++count.valid;
    }
    return count;
}

/// Logarithms of how often the letters а to я stand in Russian names and towns, times ten.
constexpr std::array<int, 32> kFrequency = {-24, -41, -31, -41, -35, -25, -47, -41, -26, -45, -33,
                                            -31, -34, -27, -24, -36, -30, -29, -28, -36, -62, -47,
                                            -53, -42, -50, -57, -80, -40, -41, -57, -50, -39};

enum class Kind { None, Lower, Upper, Sign };

struct Weighed {
    int score; ///< tenths of a logarithm
    Kind kind;
};

Weighed weigh(char16_t c)
{
    constexpr char16_t kFirst = u'А';
    constexpr char16_t kFirstLower = u'а';
    constexpr char16_t kBeyond = u'я' + 1;
    constexpr int kRareLetter = -60;
    constexpr int kTypographic = -70;
    constexpr int kUnlikely = -120;
    if (c >= kFirst && c < kFirstLower)
        return {kFrequency[static_cast<std::size_t>(c - kFirst)], Kind::Upper};
    if (c >= kFirstLower && c < kBeyond)
        return {kFrequency[static_cast<std::size_t>(c - kFirstLower)], Kind::Lower};
    switch (c) {
    case u'Ё':
    case u'І':
    case u'Ї':
    case u'Є':
    case u'Ґ':
    case u'Ў':
        return {kRareLetter, Kind::Upper};
    case u'ё':
    case u'і':
    case u'ї':
    case u'є':
    case u'ґ':
    case u'ў':
        return {kRareLetter, Kind::Lower};
    case u'№':
    case u'«':
    case u'»':
    case u'–':
    case u'—':
    case u'“':
    case u'”':
    case u'\u00a0':
        return {kTypographic, Kind::Sign};
    default:
        return {kUnlikely, Kind::Sign};
    }
}

bool isVowel(char16_t c)
{
    // A soft or hard sign follows a consonant as a vowel does.
    return QStringView(u"аеёиоуыьъэюяАЕЁИОУЫЬЪЭЮЯіїєІЇЄ").contains(QChar(c));
}

/// How well the bytes read in a coding. Vowels and consonants take turns. Words are written small, with a
/// capital first, or all in capitals; a capital after a small letter is what a wrong coding shows.
qint64 scoreOf(QByteArrayView bytes, TextCoding coding)
{
    constexpr int kOddCase = -40;
    constexpr int kCapitals = -2; // of two readings the one in small letters is likelier
    constexpr int kTwoConsonants = -8;
    constexpr int kTwoVowels = -20;
    const CodePage &page = codePage(coding);
    qint64 score = 0;
    Kind before = Kind::None;
    bool vowelBefore = false;
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (code < kUpperHalf) {
            const bool isLetter = (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z');
            before = isLetter ? Kind::Sign : Kind::None;
            continue;
        }
        const char16_t c = page[code - kUpperHalf];
        const Weighed weighed = weigh(c);
        const bool vowel = isVowel(c);
        const bool inWord = before == Kind::Lower || before == Kind::Upper;
        if (weighed.kind != Kind::Sign && inWord && vowel == vowelBefore)
            score += vowel ? kTwoVowels : kTwoConsonants;
        vowelBefore = vowel;
        score += weighed.score;
        if (weighed.kind == Kind::Upper)
            score += before == Kind::Lower ? kOddCase : (before == Kind::Upper ? kCapitals : 0);
        before = weighed.kind;
    }
    return score;
}

} // namespace

TextCoding detectByteCoding(QByteArrayView bytes)
{
    constexpr qsizetype kSample = 4'000'000; // bytes; the rest of a big log would only say the same
    constexpr qint64 kClearly = 60;
    const QByteArrayView sample = bytes.first(std::min(bytes.size(), kSample));
    TextCoding best = TextCoding::Windows1251;
    qint64 bestScore = scoreOf(sample, best) + kClearly;
    for (const TextCoding coding : {TextCoding::Ibm866, TextCoding::KoiR}) {
        const qint64 score = scoreOf(sample, coding);
        if (score > bestScore) {
            best = coding;
            bestScore = score;
        }
    }
    return best;
}

DetectedCoding detectCoding(QByteArrayView bytes)
{
    constexpr qint64 kValidPerDamaged = 20;
    if (bytes.startsWith("\xEF\xBB\xBF"))
        return {TextCoding::Utf8, 3};
    if (bytes.startsWith("\xFF\xFE"))
        return {TextCoding::Utf16Le, 2};
    if (bytes.startsWith("\xFE\xFF"))
        return {TextCoding::Utf16Be, 2};
    const Utf8Count count = countUtf8(bytes);
    if (count.damaged == 0 || count.valid >= count.damaged * kValidPerDamaged)
        return {TextCoding::Utf8, 0};
    return {detectByteCoding(bytes), 0};
}

QString codingName(TextCoding coding)
{
    switch (coding) {
    case TextCoding::Utf8:
        return QStringLiteral("UTF-8");
    case TextCoding::Utf16Le:
    case TextCoding::Utf16Be:
        return QStringLiteral("UTF-16");
    case TextCoding::Ibm866:
        return QStringLiteral("IBM866");
    case TextCoding::KoiR:
        return QStringLiteral("KOI8-R");
    default:
        return QStringLiteral("Windows-1251");
    }
}

bool isAscii(QByteArrayView bytes) noexcept
{
    return std::all_of(bytes.cbegin(), bytes.cend(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

QString decode(QByteArrayView bytes, TextCoding coding)
{
    switch (coding) {
    case TextCoding::Utf8:
        return QString::fromUtf8(bytes);
    case TextCoding::Utf16Le:
        return QStringDecoder(QStringConverter::Utf16LE, QStringConverter::Flag::Stateless)(bytes);
    case TextCoding::Utf16Be:
        return QStringDecoder(QStringConverter::Utf16BE, QStringConverter::Flag::Stateless)(bytes);
    default:
        break;
    }
    const CodePage &page = codePage(coding);
    QString text(bytes.size(), Qt::Uninitialized);
    std::transform(bytes.cbegin(), bytes.cend(), text.begin(), [&](char byte) {
        const auto code = static_cast<unsigned char>(byte);
        return QChar(code < kUpperHalf ? char16_t(code) : page[code - kUpperHalf]);
    });
    return text;
}

void appendUtf8(QByteArray &target, QByteArrayView bytes, TextCoding coding)
{
    if (isAscii(bytes) && coding != TextCoding::Utf16Le && coding != TextCoding::Utf16Be)
        target.append(bytes);
    else
        target.append(decode(bytes, coding).toUtf8());
}

} // namespace foreign
