#include "foreign/numbersection.h"

#include "base/number.h"
#include "foreign/decimal.h"
#include "foreign/formatcode.h"

#include <QByteArray>

#include <algorithm>
#include <cmath>
#include <utility>

namespace foreign {

namespace {

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

QString generalText(double value)
{
    return base::formatNumber(value).toUpper(); // 1E+20
}

NumberSection::NumberSection(QStringView code)
{
    Seen seen;
    bool bracket = false;
    FormatCode reader(code);
    for (auto what = reader.next(); what != FormatCode::What::End; what = reader.next()) {
        if (what == FormatCode::What::Literal) {
            add(Piece::Literal, reader.text());
        } else if (what == FormatCode::What::Bracket) {
            bracket = true;
            takeBracket(reader.text());
        } else if (isDigitPlace(reader.sign())) {
            takeDigitPlace(reader.sign(), seen);
        } else if (reader.sign() == u',' && seen.digits) {
            ++seen.commas;
        } else {
            takeSign(reader, seen);
            endDigits(seen);
        }
    }
    endDigits(seen);
    if (bracket && m_tokens.empty())
        add(Piece::General); // nothing but a colour
}

/// A colour, a currency sign ("$€-407") or a condition.
void NumberSection::takeBracket(const QString &inside)
{
    if (inside.startsWith(u'$'))
        add(Piece::Literal, inside.mid(1).section(u'-', 0, 0));
    else if (inside.startsWith(u'<') || inside.startsWith(u'>') || inside.startsWith(u'='))
        m_asGeneral = true;
}

void NumberSection::takeDigitPlace(QChar sign, Seen &seen)
{
    if (seen.commas > 0 && !seen.point && !seen.exponent)
        m_thousands = true;
    seen.commas = 0;
    seen.digits = true;
    if (seen.point && !seen.exponent)
        ++m_decimals;
    add(sign == u'0' ? Piece::Zero : Piece::Optional);
}

void NumberSection::takeSign(FormatCode &reader, Seen &seen)
{
    const QChar sign = reader.sign();
    const bool plus = reader.follows(u"+");
    if (sign == u'.' && !seen.point && !seen.exponent) {
        seen.point = true;
        add(Piece::Point);
    } else if (sign.toUpper() == u'E' && seen.digits && !seen.exponent && (plus || reader.follows(u"-"))) {
        seen.exponent = true;
        add(Piece::Exponent, plus ? QStringLiteral("+") : QString());
        reader.skip(1);
    } else if (const qsizetype general = reader.generalLength(); general > 0) {
        add(Piece::General);
        reader.skip(general - 1);
    } else if (sign == u'@') {
        add(Piece::General);
    } else {
        if (sign == u'%')
            m_shift += 2;
        if (sign == u'/' && seen.digits)
            m_asGeneral = true;
        add(Piece::Literal, sign);
    }
}

/// Commas behind the digits: the number is shown in thousands or millions.
void NumberSection::endDigits(Seen &seen)
{
    m_shift -= 3 * seen.commas;
    seen.commas = 0;
}

bool NumberSection::isDigit(const Token &token) noexcept
{
    return token.piece == Piece::Zero || token.piece == Piece::Optional;
}

bool NumberSection::has(Piece piece) const
{
    return find(piece, m_tokens.end()) != m_tokens.end();
}

NumberSection::Place NumberSection::find(Piece piece, Place end) const
{
    return std::find_if(m_tokens.begin(), end, [piece](const Token &token) { return token.piece == piece; });
}

QString NumberSection::text(double magnitude, bool minus) const
{
    const Place mark = find(Piece::Exponent, m_tokens.end());
    return mark == m_tokens.end() ? plain(magnitude, minus) : scientific(mark, magnitude, minus);
}

QString NumberSection::plain(double magnitude, bool minus) const
{
    const Place point = find(Piece::Point, m_tokens.end());
    Decimal number(magnitude);
    number.shift(m_shift);
    number.round(m_decimals);
    const auto places = static_cast<int>(std::count_if(m_tokens.begin(), point, isDigit));
    WholePart whole(number.whole(), places, m_thousands);
    QString text;
    QString waiting; // zeros that are shown only if another digit follows
    int decimal = 0;
    for (auto token = m_tokens.begin(); token != m_tokens.end(); ++token) {
        if (token->piece == Piece::Point) {
            text += (places == 0 ? QLatin1String(number.whole()) : QLatin1String()) + QLatin1Char(',');
        } else if (token->piece == Piece::General) {
            text += generalText(magnitude);
        } else if (!isDigit(*token)) {
            text += token->literal;
        } else if (token < point) {
            text += whole.next(token->piece == Piece::Zero);
        } else {
            waiting += QLatin1Char(number.decimal(decimal++));
            if (token->piece == Piece::Zero || !waiting.endsWith(QLatin1Char('0'))) {
                text += waiting;
                waiting.clear();
            }
        }
    }
    return minus && (has(Piece::General) || !number.isZero()) ? QLatin1Char('-') + text : text;
}

/// Places before the point tell by what the exponent is a multiple of.
QString NumberSection::scientific(Place mark, double magnitude, bool minus) const
{
    const Place begin = m_tokens.begin();
    const Place point = find(Piece::Point, mark);
    const int step = std::max(1, static_cast<int>(std::count_if(begin, point, isDigit)));
    Decimal number(magnitude);
    number.shift(m_shift);
    const int power = number.exponent();
    int exponent = (power >= 0 ? power : power - step + 1) / step * step; // towards the smaller
    number.shift(-exponent);
    number.round(m_decimals);
    if (number.exponent() >= step) { // rounded up to the next power
        number.shift(-step);
        exponent += step;
    }
    QString digits = number.whole().isEmpty() ? QStringLiteral("0") : QLatin1String(number.whole());
    if (point != mark)
        digits += QLatin1Char(',');
    for (int i = 0; i < m_decimals; ++i)
        digits += QLatin1Char(number.decimal(i));
    QString text;
    for (Place token = begin; token != mark; ++token) {
        text += token->literal;
        if (isDigit(*token)) {
            text += digits;
            digits.clear();
        }
    }
    const auto places = static_cast<int>(std::count_if(mark, m_tokens.end(), isDigit));
    text += QLatin1Char('E') + (exponent < 0 ? QStringLiteral("-") : mark->literal) +
            QString::number(std::abs(exponent)).rightJustified(places, QLatin1Char('0'));
    for (Place token = mark + 1; token != m_tokens.end(); ++token)
        text += token->literal;
    return minus && !number.isZero() ? QLatin1Char('-') + text : text;
}

} // namespace foreign
