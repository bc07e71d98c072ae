#include "base/translit.h"

#include <QChar>

#include <array>

namespace base {

namespace {

/// А to Я.
constexpr std::array<const char *, 32> kRussian = {
    "A", "B", "V", "G", "D", "E",  "Zh", "Z",  "I",  "Y",    "K", "L", "M", "N", "O",  "P",
    "R", "S", "T", "U", "F", "Kh", "Ts", "Ch", "Sh", "Shch", "",  "Y", "",  "E", "Yu", "Ya"};

struct Pair {
    char16_t from;
    const char *to;
};

/// Upper-case letters; the lower-case ones follow them.
constexpr std::array<Pair, 24> kLetters = {
    {{u'Ё', "Yo"}, {u'І', "I"}, {u'Ї', "Yi"}, {u'Є', "Ye"}, {u'Ґ', "G"}, {u'Ў', "U"},
     {u'Ђ', "Dj"}, {u'Ј', "J"}, {u'Љ', "Lj"}, {u'Њ', "Nj"}, {u'Ћ', "C"}, {u'Џ', "Dz"},
     {u'Ѓ', "G"},  {u'Ќ', "K"}, {u'Ѕ', "Dz"}, {u'Æ', "Ae"}, {u'Ø', "O"}, {u'Œ', "Oe"},
     {u'Ł', "L"},  {u'Đ', "D"}, {u'Þ', "Th"}, {u'Ð', "D"},  {u'Ħ', "H"}, {u'Ŋ', "N"}}};

constexpr std::array<Pair, 24> kSigns = {
    {{u'«', "\""},  {u'»', "\""}, {u'“', "\""},     {u'”', "\""},  {u'„', "\""},  {u'‘', "'"},
     {u'’', "'"},   {u'‚', ","},  {u'–', "-"},      {u'—', "-"},   {u'‑', "-"},   {u'−', "-"},
     {u'…', "..."}, {u'№', "No"}, {u'€', "EUR"},    {u'·', "."},   {u'•', "*"},   {u'×', "x"},
     {u'ß', "ss"},  {u'ı', "i"},  {u'\u00a0', " "}, {u'©', "(c)"}, {u'®', "(r)"}, {u'™', "(tm)"}}};

template <std::size_t Size>
const char *find(const std::array<Pair, Size> &table, QChar c)
{
    for (const Pair &pair : table)
        if (pair.from == c.unicode())
            return pair.to;
    return nullptr;
}

/// ASCII of a letter given in upper case; null for one that has none.
const char *letter(QChar upper)
{
    constexpr char16_t kFirst = u'А';
    if (upper.unicode() >= kFirst && upper.unicode() < kFirst + kRussian.size())
        return kRussian[static_cast<std::size_t>(upper.unicode() - kFirst)];
    return find(kLetters, upper);
}

/// A Latin letter without its marks; nothing for any other character.
QString bare(QChar c)
{
    QString parts;
    const QString decomposed = QString(c).normalized(QString::NormalizationForm_KD);
    for (const QChar part : decomposed)
        if (part.unicode() < 0x80)
            parts += part;
    return parts;
}

} // namespace

QString toAscii(QStringView text)
{
    QString ascii;
    ascii.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c.unicode() < 0x80) {
            ascii += c.unicode() < ' ' || c.unicode() == 0x7f ? QLatin1Char(' ') : c;
            continue;
        }
        if (c.isLowSurrogate())
            continue; // its first half has been told
        if (c.isMark())
            continue;
        if (const char *sign = find(kSigns, c)) {
            ascii += QLatin1String(sign);
            continue;
        }
        const QChar upper = c.toUpper();
        const char *spelling = letter(upper);
        if (spelling == nullptr) {
            const QString plain = bare(c);
            ascii += plain.isEmpty() ? QStringLiteral("?") : plain;
            continue;
        }
        QString spelled = QLatin1String(spelling);
        if (c != upper) {
            spelled = spelled.toLower();
        } else if (spelled.size() > 1) {
            // Щ of ЩУКИН is SHCH, of Щукин Shch; alone it is a capital.
            const bool before = i > 0 && text[i - 1].isUpper();
            const bool after = i + 1 < text.size() && text[i + 1].isLetter();
            if (after ? text[i + 1].isUpper() : before)
                spelled = spelled.toUpper();
        }
        ascii += spelled;
    }
    return ascii;
}

} // namespace base
