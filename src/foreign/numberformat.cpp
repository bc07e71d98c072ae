#include "foreign/numberformat.h"

#include "base/date.h"
#include "base/number.h"
#include "foreign/decimal.h"

#include <QDate>

#include <algorithm>
#include <cmath>
#include <optional>

namespace foreign {

namespace {

using Kind = NumberFormat::Kind;

constexpr qsizetype kLongestCode = 255; ///< what a spreadsheet program lets a user type

/// A format text without what it shows literally: quoted and escaped characters, room for a character, fill.
/// Bracketed words are kept whole.
class CodeReader {
public:
    enum class What { Sign, Literal, Bracket, End };

    explicit CodeReader(QStringView code) : m_code(code) {}

    What next()
    {
        m_text.clear();
        while (m_at < m_code.size()) {
            const QChar c = m_code[m_at++];
            switch (c.unicode()) {
            case u'"':
                m_text = until(u'"');
                return What::Literal;
            case u'\\':
                if (m_at < m_code.size())
                    m_text = m_code[m_at++];
                return What::Literal;
            case u'_':
            case u'*':
                ++m_at; // as wide as a character, or filled with it: nothing that a field could hold
                continue;
            case u'[':
                m_text = until(u']');
                return What::Bracket;
            default:
                m_text = c;
                return What::Sign;
            }
        }
        return What::End;
    }
    [[nodiscard]] const QString &text() const noexcept { return m_text; }
    [[nodiscard]] QChar sign() const { return m_text.front(); }
    [[nodiscard]] qsizetype place() const noexcept { return m_at; }
    /// The text from the sign just read on.
    [[nodiscard]] QStringView fromSign() const { return m_code.mid(m_at - 1); }
    [[nodiscard]] bool follows(QStringView word) const
    {
        return m_code.mid(m_at, word.size()).compare(word, Qt::CaseInsensitive) == 0;
    }
    void skip(qsizetype count) { m_at += count; }

private:
    QString until(char16_t end)
    {
        const qsizetype begin = m_at;
        while (m_at < m_code.size() && m_code[m_at] != end)
            ++m_at;
        QString inside = m_code.mid(begin, m_at - begin).toString();
        ++m_at;
        return inside;
    }

    QStringView m_code;
    qsizetype m_at = 0;
    QString m_text;
};

bool isDigitPlace(QChar c)
{
    return c == u'0' || c == u'#' || c == u'?';
}

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

/// Length of the name of the general format that a text begins with, also as a Russian program writes it.
qsizetype generalLength(QStringView code)
{
    for (const QStringView name : {QStringView(u"General"), QStringView(u"Основной")})
        if (code.startsWith(name, Qt::CaseInsensitive))
            return name.size();
    return 0;
}

bool isGeneral(QStringView code)
{
    return generalLength(code) == code.size();
}

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
    CodeReader reader(code);
    for (auto what = reader.next(); what != CodeReader::What::End; what = reader.next()) {
        if (what == CodeReader::What::Bracket && isElapsed(reader.text())) {
            elapsed = true;
            latin.time = true;
        }
        if (what != CodeReader::What::Sign)
            continue;
        const QChar c = reader.sign();
        if (c == u';')
            break;
        if ((isDigitPlace(c) || c == u'@' || generalLength(reader.fromSign()) > 0) && !latin.any())
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

QString generalText(double value)
{
    return base::formatNumber(value).toUpper(); // 1E+20
}

/// Sections stand between semicolons.
QList<QStringView> sections(QStringView code)
{
    QList<QStringView> parts;
    qsizetype begin = 0;
    CodeReader reader(code);
    for (auto what = reader.next(); what != CodeReader::What::End; what = reader.next()) {
        if (what != CodeReader::What::Sign || reader.sign() != u';')
            continue;
        parts.append(code.mid(begin, reader.place() - 1 - begin));
        begin = reader.place();
    }
    parts.append(code.mid(begin));
    return parts;
}

/// Digits before the point, right to left: the place farthest left takes all that are left over.
class WholePart {
public:
    WholePart(QByteArray digits, int places, bool thousands)
        : m_digits(std::move(digits)), m_places(places), m_thousands(thousands)
    {}

    /// The text for the next place from the left.
    QString next(bool zero)
    {
        const int place = m_places--; // counted from the right, from 1
        QString text;
        if (!m_begun) {
            m_begun = true;
            for (auto at = static_cast<int>(m_digits.size()); at > place; --at)
                text += digit(at);
        }
        if (place <= m_digits.size())
            text += digit(place);
        else if (zero)
            text += shownDigit(QLatin1Char('0'), place);
        return text;
    }

private:
    [[nodiscard]] QString digit(int place) const
    {
        return shownDigit(QLatin1Char(m_digits[m_digits.size() - place]), place);
    }
    [[nodiscard]] QString shownDigit(QChar c, int place) const
    {
        QString text(c);
        if (m_thousands && place > 1 && place % 3 == 1)
            text += QLatin1Char(' ');
        return text;
    }

    QByteArray m_digits;
    int m_places;
    bool m_thousands;
    bool m_begun = false;
};

} // namespace

NumberFormat::NumberFormat(const QString &code)
{
    if (code.isEmpty() || code.size() > kLongestCode || isGeneral(code))
        return;
    const CodeKind judgement = judged(code);
    m_kind = judgement.kind;
    m_elapsed = judgement.elapsed;
    if (m_kind != Kind::Number)
        return;
    for (const QStringView part : sections(code))
        m_sections.push_back(parsed(part));
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

NumberFormat::Section NumberFormat::parsed(QStringView code)
{
    Section section;
    const auto add = [&section](Piece piece, const QString &literal = {}) {
        section.tokens.push_back({piece, literal});
    };
    bool point = false;
    bool exponent = false;
    bool digits = false;
    int commas = 0; // since the last place for a digit
    CodeReader reader(code);
    for (auto what = reader.next(); what != CodeReader::What::End; what = reader.next()) {
        if (what == CodeReader::What::Literal) {
            add(Piece::Literal, reader.text());
            continue;
        }
        if (what == CodeReader::What::Bracket) { // a colour, a currency sign ("$€-407") or a condition
            const QString &inside = reader.text();
            if (inside.startsWith(u'$'))
                add(Piece::Literal, inside.mid(1).section(u'-', 0, 0));
            else if (inside.startsWith(u'<') || inside.startsWith(u'>') || inside.startsWith(u'='))
                section.asGeneral = true;
            continue;
        }
        const QChar c = reader.sign();
        if (isDigitPlace(c)) {
            section.thousands |= commas > 0 && digits && !point && !exponent;
            commas = 0;
            digits = true;
            if (point && !exponent)
                ++section.decimals;
            add(c == u'0' ? Piece::Zero : Piece::Optional);
        } else if (c == u',' && digits) {
            ++commas;
        } else if (c == u'.' && !point && !exponent) {
            point = true;
            add(Piece::Point);
        } else if (c == u'%') {
            section.shift += 2;
            add(Piece::Literal, QStringLiteral("%"));
        } else if (c.toUpper() == u'E' && digits && !exponent &&
                   (reader.follows(u"+") || reader.follows(u"-"))) {
            exponent = true;
            add(Piece::Exponent, reader.follows(u"+") ? QStringLiteral("+") : QString());
            reader.skip(1);
        } else if (const qsizetype general = generalLength(reader.fromSign()); general > 0) {
            reader.skip(general - 1);
            add(Piece::General);
        } else if (c == u'@') {
            add(Piece::General);
        } else {
            section.asGeneral |= c == u'/' && digits; // a fraction
            add(Piece::Literal, c);
        }
        if (c != u',' && !isDigitPlace(c)) {
            section.shift -= 3 * commas; // commas behind the digits: thousands, millions
            commas = 0;
        }
    }
    section.shift -= 3 * commas;
    return section;
}

bool NumberFormat::isPlace(const Token &token) noexcept
{
    return token.piece == Piece::Zero || token.piece == Piece::Optional;
}

QString NumberFormat::shown(const Section &section, double magnitude, bool minus)
{
    const auto &tokens = section.tokens;
    const auto mark = std::find_if(tokens.begin(), tokens.end(),
                                   [](const Token &token) { return token.piece == Piece::Exponent; });
    if (mark != tokens.end())
        return shownScientific(section, static_cast<std::size_t>(mark - tokens.begin()), magnitude, minus);
    const auto point = std::find_if(tokens.begin(), tokens.end(),
                                    [](const Token &token) { return token.piece == Piece::Point; });
    Decimal number(magnitude);
    number.shift(section.shift);
    number.round(section.decimals);
    WholePart whole(number.whole(), static_cast<int>(std::count_if(tokens.begin(), point, isPlace)),
                    section.thousands);
    QString text;
    QString waiting; // zeros that are shown only if another digit follows
    int decimal = 0;
    bool behindPoint = false;
    for (const Token &token : tokens) {
        switch (token.piece) {
        case Piece::Point:
            behindPoint = true;
            if (std::none_of(tokens.begin(), point, isPlace))
                text += QLatin1String(number.whole());
            text += QLatin1Char(',');
            break;
        case Piece::Zero:
        case Piece::Optional:
            if (!behindPoint) {
                text += whole.next(token.piece == Piece::Zero);
                break;
            }
            waiting += QLatin1Char(number.decimal(decimal++));
            if (token.piece == Piece::Zero || !waiting.endsWith(QLatin1Char('0'))) {
                text += waiting;
                waiting.clear();
            }
            break;
        case Piece::General:
            text += generalText(magnitude);
            break;
        case Piece::Literal:
        case Piece::Exponent:
            text += token.literal;
            break;
        }
    }
    const bool hasGeneral = std::any_of(tokens.begin(), tokens.end(),
                                        [](const Token &token) { return token.piece == Piece::General; });
    return minus && (hasGeneral || !number.isZero()) ? QLatin1Char('-') + text : text;
}

/// Places before the point tell by what the exponent is a multiple of.
QString NumberFormat::shownScientific(const Section &section, std::size_t mark, double magnitude, bool minus)
{
    const auto begin = section.tokens.begin();
    const auto exponentMark = begin + static_cast<std::ptrdiff_t>(mark);
    const auto point =
        std::find_if(begin, exponentMark, [](const Token &token) { return token.piece == Piece::Point; });
    const int step = std::max(1, static_cast<int>(std::count_if(begin, point, isPlace)));
    Decimal number(magnitude);
    number.shift(section.shift);
    const auto lowered = [step](int exponent) {
        return (exponent >= 0 ? exponent : exponent - step + 1) / step * step;
    };
    int exponent = lowered(number.exponent());
    number.shift(-exponent);
    number.round(section.decimals);
    if (number.exponent() >= step) { // rounded up to the next power
        number.shift(-step);
        exponent += step;
    }
    QString digits = QLatin1String(number.whole());
    if (digits.isEmpty())
        digits = QStringLiteral("0");
    if (point != exponentMark)
        digits += QLatin1Char(',');
    for (int i = 0; i < section.decimals; ++i)
        digits += QLatin1Char(number.decimal(i));
    QString text;
    bool written = false;
    for (auto token = begin; token != exponentMark; ++token) {
        if (token->piece == Piece::Literal) {
            text += token->literal;
        } else if (!written) {
            text += digits;
            written = true;
        }
    }
    const auto places = static_cast<int>(std::count_if(exponentMark, section.tokens.end(), isPlace));
    text += QLatin1Char('E') + (exponent < 0 ? QStringLiteral("-") : exponentMark->literal) +
            QString::number(std::abs(exponent)).rightJustified(places, QLatin1Char('0'));
    for (auto token = exponentMark + 1; token != section.tokens.end(); ++token)
        if (token->piece == Piece::Literal)
            text += token->literal;
    return minus && !number.isZero() ? QLatin1Char('-') + text : text;
}

QString NumberFormat::shownNumber(double value) const
{
    if (m_sections.empty())
        return generalText(value);
    if (std::any_of(m_sections.begin(), m_sections.end(),
                    [](const Section &section) { return section.asGeneral; }))
        return generalText(value);
    std::size_t chosen = 0;
    if (value < 0 && m_sections.size() > 1)
        chosen = 1;
    else if (value == 0 && m_sections.size() > 2)
        chosen = 2;
    const Section &section = m_sections[chosen];
    if (section.tokens.empty())
        return {};
    return shown(section, std::abs(value), value < 0 && chosen == 0);
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
