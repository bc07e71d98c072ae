#include "report/svgvalues.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

namespace report::svg {

namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();

/// Position after the number that `text` begins with; 0 for none.
qsizetype numberEnd(QStringView text)
{
    qsizetype i = 0;
    const auto digits = [&] {
        const qsizetype from = i;
        while (i < text.size() && text[i] >= u'0' && text[i] <= u'9')
            ++i;
        return i - from;
    };
    if (i < text.size() && (text[i] == u'-' || text[i] == u'+'))
        ++i;
    qsizetype count = digits();
    if (i < text.size() && text[i] == u'.') {
        ++i;
        count += digits();
    }
    if (count == 0)
        return 0;
    const qsizetype mantissa = i;
    if (i < text.size() && (text[i] == u'e' || text[i] == u'E')) {
        ++i;
        if (i < text.size() && (text[i] == u'-' || text[i] == u'+'))
            ++i;
        if (digits() == 0)
            return mantissa; // "2em": the letter belongs to the unit
    }
    return i;
}

std::optional<double> finite(QStringView text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

struct Unit {
    const char16_t *name;
    double pixels;
};
constexpr std::array<Unit, 7> kUnits = {{{u"", 1},
                                         {u"px", 1},
                                         {u"mm", kPixelsPerInch / kMillimetresPerInch},
                                         {u"cm", kPixelsPerInch / 2.54},
                                         {u"in", kPixelsPerInch},
                                         {u"pt", kPixelsPerInch / 72},
                                         {u"pc", kPixelsPerInch / 6}}};

std::optional<Affine> operation(QStringView name, const QList<double> &v)
{
    const auto radians = [](double degrees) { return degrees * std::numbers::pi / 180; };
    const auto count = v.size();
    if (name == u"matrix" && count == 6)
        return Affine{v[0], v[1], v[2], v[3], v[4], v[5]};
    if (name == u"translate" && (count == 1 || count == 2))
        return Affine{1, 0, 0, 1, v[0], count == 2 ? v[1] : 0};
    if (name == u"scale" && (count == 1 || count == 2))
        return Affine{v[0], 0, 0, count == 2 ? v[1] : v[0], 0, 0};
    if (name == u"skewX" && count == 1)
        return Affine{1, 0, std::tan(radians(v[0])), 1, 0, 0};
    if (name == u"skewY" && count == 1)
        return Affine{1, std::tan(radians(v[0])), 0, 1, 0, 0};
    if (name != u"rotate" || (count != 1 && count != 3))
        return std::nullopt;
    const double cosine = std::cos(radians(v[0]));
    const double sine = std::sin(radians(v[0]));
    const Affine turn{cosine, sine, -sine, cosine, 0, 0};
    if (count == 1)
        return turn;
    return Affine{1, 0, 0, 1, v[1], v[2]} * turn * Affine{1, 0, 0, 1, -v[1], -v[2]};
}

constexpr std::array<std::pair<const char16_t *, quint32>, 19> kColours = {{{u"black", 0x000000},
                                                                            {u"silver", 0xc0c0c0},
                                                                            {u"gray", 0x808080},
                                                                            {u"white", 0xffffff},
                                                                            {u"maroon", 0x800000},
                                                                            {u"red", 0xff0000},
                                                                            {u"purple", 0x800080},
                                                                            {u"fuchsia", 0xff00ff},
                                                                            {u"green", 0x008000},
                                                                            {u"lime", 0x00ff00},
                                                                            {u"olive", 0x808000},
                                                                            {u"yellow", 0xffff00},
                                                                            {u"navy", 0x000080},
                                                                            {u"blue", 0x0000ff},
                                                                            {u"teal", 0x008080},
                                                                            {u"aqua", 0x00ffff},
                                                                            {u"grey", 0x808080},
                                                                            {u"orange", 0xffa500},
                                                                            {u"brown", 0xa52a2a}}};

std::optional<quint32> hexColour(QStringView digits)
{
    bool ok = false;
    const quint32 value = digits.toUInt(&ok, 16);
    if (!ok || (digits.size() != 3 && digits.size() != 6))
        return std::nullopt;
    if (digits.size() == 6)
        return value;
    constexpr quint32 kDoubled = 0x11;
    return ((value >> 8 & 0xf) * kDoubled) << 16 | ((value >> 4 & 0xf) * kDoubled) << 8 |
           (value & 0xf) * kDoubled;
}

} // namespace

std::optional<double> length(QStringView text, double emSize)
{
    text = text.trimmed();
    const qsizetype end = numberEnd(text);
    const QStringView unit = text.mid(end).trimmed();
    const auto value = end > 0 ? finite(text.first(end)) : std::nullopt;
    if (!value)
        return std::nullopt;
    if (unit == u"em")
        return *value * emSize;
    for (const Unit &known : kUnits)
        if (unit.compare(QStringView(known.name), Qt::CaseInsensitive) == 0)
            return *value * known.pixels;
    return std::nullopt;
}

std::optional<double> millimetres(QStringView text)
{
    const auto pixels = length(text);
    if (!pixels)
        return std::nullopt;
    return *pixels * kMillimetresPerInch / kPixelsPerInch;
}

std::optional<QList<double>> numbers(QStringView text)
{
    QList<double> list;
    qsizetype i = 0;
    while (true) {
        while (i < text.size() && (text[i].isSpace() || text[i] == u','))
            ++i;
        if (i == text.size())
            return list;
        const qsizetype size = numberEnd(text.mid(i));
        const auto value = size > 0 ? finite(text.mid(i, size)) : std::nullopt;
        if (!value)
            return std::nullopt;
        list.append(*value);
        i += size;
    }
}

std::optional<Affine> transform(QStringView text)
{
    Affine result;
    text = text.trimmed();
    while (!text.isEmpty()) {
        const qsizetype open = text.indexOf(u'(');
        const qsizetype close = text.indexOf(u')');
        if (open < 0 || close < open)
            return std::nullopt;
        const auto values = numbers(text.mid(open + 1, close - open - 1));
        const auto next = values ? operation(text.first(open).trimmed(), *values) : std::nullopt;
        if (!next)
            return std::nullopt;
        result = result * *next;
        text = text.mid(close + 1).trimmed();
        if (text.startsWith(u','))
            text = text.mid(1).trimmed();
    }
    return result;
}

double largest(QStringView text)
{
    double found = 0;
    qsizetype i = 0;
    while (i < text.size()) {
        if (const qsizetype size = numberEnd(text.mid(i)); size > 0) {
            found = std::max(found, std::abs(finite(text.mid(i, size)).value_or(kInfinite)));
            i += size;
            continue;
        }
        const qsizetype from = i;
        while (i < text.size() && text[i].isLetter())
            ++i;
        const QStringView word = text.mid(from, i - from);
        for (const char16_t *none : {u"nan", u"inf", u"infinity"})
            if (word.compare(QStringView(none), Qt::CaseInsensitive) == 0)
                return kInfinite;
        i = std::max(i, from + 1);
    }
    return found;
}

bool isOutline(QStringView text)
{
    qsizetype i = 0;
    while (i < text.size()) {
        const qsizetype size = numberEnd(text.mid(i));
        if (size == 0 && !text[i].isSpace() && !QStringView(u",MmZzLlHhVvCcSsQqTtAa").contains(text[i]))
            return false;
        i += std::max(size, qsizetype{1});
    }
    return true;
}

std::optional<double> opacity(QStringView text)
{
    text = text.trimmed();
    const bool perCent = text.endsWith(u'%');
    const auto value = finite(perCent ? text.chopped(1) : text);
    if (!value)
        return std::nullopt;
    return std::clamp(perCent ? *value / 100 : *value, 0.0, 1.0);
}

QHash<QString, QString> declarations(QStringView text)
{
    QHash<QString, QString> result;
    for (const QStringView part : text.split(u';')) {
        const qsizetype colon = part.indexOf(u':');
        if (colon < 0)
            continue;
        QStringView value = part.mid(colon + 1).trimmed();
        if (value.endsWith(QLatin1String("!important")))
            value = value.chopped(10).trimmed();
        result.insert(part.first(colon).trimmed().toString().toLower(), value.toString());
    }
    return result;
}

QHash<QString, QHash<QString, QString>> classRules(QStringView sheet)
{
    QHash<QString, QHash<QString, QString>> rules;
    QString clean;
    while (!sheet.isEmpty()) { // without comments
        const qsizetype open = sheet.indexOf(u"/*");
        clean += open < 0 ? sheet : sheet.first(open);
        const qsizetype close = open < 0 ? -1 : sheet.indexOf(u"*/", open + 2);
        sheet = close < 0 ? QStringView() : sheet.mid(close + 2);
    }
    QStringView rest = clean;
    while (true) {
        const qsizetype open = rest.indexOf(u'{');
        const qsizetype close = open < 0 ? -1 : rest.indexOf(u'}', open);
        if (close < 0)
            return rules;
        const QHash<QString, QString> values = declarations(rest.mid(open + 1, close - open - 1));
        for (const QStringView selector : rest.first(open).split(u',')) {
            const QStringView name = selector.trimmed();
            if (name.startsWith(u'.'))
                rules[name.mid(1).toString()].insert(values);
        }
        rest = rest.mid(close + 1);
    }
}

std::optional<quint32> colour(QStringView text)
{
    text = text.trimmed();
    if (text.startsWith(u'#'))
        return hexColour(text.mid(1));
    for (const auto &[name, value] : kColours)
        if (text.compare(QStringView(name), Qt::CaseInsensitive) == 0)
            return value;
    if (!text.startsWith(QLatin1String("rgb("), Qt::CaseInsensitive) || !text.endsWith(u')'))
        return std::nullopt;
    const QStringView list = text.mid(4).chopped(1);
    const bool perCent = list.contains(u'%');
    const auto parts = numbers(list.toString().remove(u'%'));
    if (!parts || parts->size() != 3)
        return std::nullopt;
    quint32 value = 0;
    for (const double part : *parts) {
        constexpr double kFull = 255;
        value =
            value << 8 | quint32(std::lround(std::clamp(perCent ? part * kFull / 100 : part, 0.0, kFull)));
    }
    return value;
}

QStringList families(QStringView text)
{
    QStringList list;
    for (QStringView name : text.split(u',')) {
        name = name.trimmed();
        if (name.size() >= 2 && (name.front() == u'\'' || name.front() == u'"') &&
            name.back() == name.front())
            name = name.mid(1).chopped(1);
        if (!name.isEmpty())
            list.append(name.toString());
    }
    return list;
}

int weight(QStringView text)
{
    constexpr int kNormal = 400;
    constexpr int kBold = 700;
    constexpr int kHeaviest = 1000;
    if (text == u"bold" || text == u"bolder")
        return kBold;
    bool ok = false;
    const int value = text.toInt(&ok);
    return ok && value >= 1 && value <= kHeaviest ? value : kNormal;
}

} // namespace report::svg
