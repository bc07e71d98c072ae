#include "foreign/numberformat.h"

#include "base/date.h"
#include "foreign/formatcode.h"

#include <QDate>

#include <algorithm>
#include <cmath>
#include <optional>

namespace foreign {

namespace {

using Kind = NumberFormat::Kind;

constexpr qsizetype kLongestCode = 255; ///< what a spreadsheet program lets a user type

/// Letters of a date or time, also as a Russian program writes them.
struct DateLetters {
    bool date = false;
    bool month = false; ///< a month or minutes
    bool time = false;

    void note(QChar letter)
    {
        switch (letter.toLower().unicode()) {
        case u'y':
        case u'd':
        case u'г':
        case u'д':
            date = true;
            break;
        case u'm':
        case u'м':
            month = true;
            break;
        case u'h':
        case u's':
        case u'ч':
        case u'с':
            time = true;
            break;
        default:
            break;
        }
    }
    [[nodiscard]] bool any() const noexcept { return date || month || time; }
    [[nodiscard]] Kind kind() const noexcept
    {
        const bool hasDate = date || (month && !time);
        if (hasDate)
            return time ? Kind::DateTime : Kind::Date;
        return time ? Kind::Time : Kind::Number;
    }
};

/// [h], [mm], [ss]: hours, minutes or seconds that run on.
bool isElapsed(const QString &bracket)
{
    if (bracket.isEmpty() || bracket.size() > 3)
        return false;
    return bracket.count(bracket.front(), Qt::CaseInsensitive) == bracket.size() &&
           QStringLiteral("hmsчмс").contains(bracket.front(), Qt::CaseInsensitive);
}

struct CodeKind {
    Kind kind = Kind::Number;
    bool elapsed = false;
};

/// What the first section of a format shows. A text with places for digits is a number's unless Latin letters
/// of a date come before them.
CodeKind judged(QStringView code)
{
    DateLetters latin;
    DateLetters russian;
    bool elapsed = false;
    FormatCode reader(code);
    for (auto what = reader.next(); what != FormatCode::What::End; what = reader.next()) {
        if (what == FormatCode::What::Bracket && isElapsed(reader.text())) {
            elapsed = true;
            latin.time = true;
        }
        if (what != FormatCode::What::Sign)
            continue;
        const QChar c = reader.sign();
        if (c == u';')
            break;
        if ((isDigitPlace(c) || c == u'@' || reader.generalLength() > 0) && !latin.any())
            return {};
        if (c.toLower() == u'a' && (reader.follows(u"m/pm") || reader.follows(u"/p"))) {
            reader.skip(reader.follows(u"/p") ? 2 : 4);
            latin.time = true;
            continue;
        }
        (c.unicode() < 0x80 ? latin : russian).note(c);
    }
    return {latin.any() ? latin.kind() : russian.kind(), elapsed};
}

/// Day and second of the day of a date value; nothing for a value that is no date to a sheet.
struct Moment {
    int serial = 0; ///< days as the cell counts them
    int day = 0;    ///< since 30 December 1899, so that days from March 1900 on have their serial number
    int second = 0;
    bool fictitious = false; ///< 29 February 1900, which sheets have and the calendar has not
};

std::optional<Moment> moment(double value, bool from1904)
{
    constexpr double kBeyond = 2958466; // 1 January of the year 10000
    constexpr int kSecondsPerDay = 86400;
    constexpr int k1904 = 1462;
    constexpr int kFictitious = 60;
    if (!(value >= 0) || value >= kBeyond)
        return std::nullopt;
    Moment result;
    result.day = static_cast<int>(value);
    result.second = static_cast<int>(std::lround((value - result.day) * kSecondsPerDay));
    if (result.second == kSecondsPerDay) {
        result.second = 0;
        ++result.day;
    }
    result.serial = result.day;
    if (from1904) {
        result.day += k1904;
    } else if (result.day == kFictitious) {
        result.fictitious = true;
    } else if (result.day > 0 && result.day < kFictitious) {
        ++result.day;
    }
    return result;
}

QString dateText(const Moment &moment, bool from1904)
{
    if (moment.fictitious)
        return QStringLiteral("29.02.00");
    if (moment.day == 0 && !from1904)
        return QStringLiteral("00.01.00"); // a time alone, shown as a date
    return base::logDate(QDate(1899, 12, 30).addDays(moment.day));
}

QString timeText(int hours, int second)
{
    return QStringLiteral("%1:%2")
        .arg(hours, 2, 10, QLatin1Char('0'))
        .arg(second / 60 % 60, 2, 10, QLatin1Char('0'));
}

/// Sections stand between semicolons.
QList<QStringView> sections(QStringView code)
{
    QList<QStringView> parts;
    qsizetype begin = 0;
    FormatCode reader(code);
    for (auto what = reader.next(); what != FormatCode::What::End; what = reader.next()) {
        if (what != FormatCode::What::Sign || reader.sign() != u';')
            continue;
        parts.append(code.mid(begin, reader.place() - 1 - begin));
        begin = reader.place();
    }
    parts.append(code.mid(begin));
    return parts;
}

} // namespace

NumberFormat::NumberFormat(const QString &code)
{
    if (code.isEmpty() || code.size() > kLongestCode || generalLength(code) == code.size())
        return;
    const CodeKind judgement = judged(code);
    m_kind = judgement.kind;
    m_elapsed = judgement.elapsed;
    if (m_kind != Kind::Number)
        return;
    for (const QStringView part : sections(code))
        m_sections.emplace_back(part);
}

NumberFormat NumberFormat::builtIn(int number)
{
    switch (number) {
    case 1:
        return NumberFormat(QStringLiteral("0"));
    case 2:
        return NumberFormat(QStringLiteral("0.00"));
    case 3:
    case 5:
    case 6:
    case 37:
    case 38:
    case 41:
    case 42:
        return NumberFormat(QStringLiteral("#,##0"));
    case 4:
    case 7:
    case 8:
    case 39:
    case 40:
    case 43:
    case 44:
        return NumberFormat(QStringLiteral("#,##0.00"));
    case 9:
        return NumberFormat(QStringLiteral("0%"));
    case 10:
        return NumberFormat(QStringLiteral("0.00%"));
    case 11:
        return NumberFormat(QStringLiteral("0.00E+00"));
    case 14:
    case 15:
    case 16:
    case 17:
        return NumberFormat(QStringLiteral("dd.mm.yy"));
    case 18:
    case 19:
    case 20:
    case 21:
    case 45:
    case 47:
        return NumberFormat(QStringLiteral("hh:mm"));
    case 22:
        return NumberFormat(QStringLiteral("dd.mm.yy hh:mm"));
    case 46:
        return NumberFormat(QStringLiteral("[h]:mm"));
    case 48:
        return NumberFormat(QStringLiteral("##0.0E+0"));
    default:
        return {};
    }
}

QString NumberFormat::shownNumber(double value) const
{
    const bool general = std::any_of(m_sections.begin(), m_sections.end(),
                                     [](const NumberSection &section) { return section.asGeneral(); });
    if (m_sections.empty() || general)
        return generalText(value);
    std::size_t chosen = 0; // of the sections for numbers above, below and at zero
    if (value < 0 && m_sections.size() > 1)
        chosen = 1;
    else if (value == 0 && m_sections.size() > 2)
        chosen = 2;
    return m_sections[chosen].text(std::abs(value), value < 0 && chosen == 0);
}

QString NumberFormat::text(double value, bool from1904) const
{
    if (!std::isfinite(value))
        return QStringLiteral("#ЧИСЛО!");
    if (m_kind == Kind::Number)
        return shownNumber(value);
    const auto when = moment(value, from1904);
    if (!when)
        return generalText(value);
    if (m_kind == Kind::Date)
        return dateText(*when, from1904);
    constexpr int kSecondsPerHour = 3600;
    const int hours = when->second / kSecondsPerHour;
    if (m_kind == Kind::DateTime)
        return dateText(*when, from1904) + QLatin1Char(' ') + timeText(hours, when->second);
    constexpr int kHoursPerDay = 24;
    return timeText(m_elapsed ? when->serial * kHoursPerDay + hours : hours, when->second);
}

} // namespace foreign
