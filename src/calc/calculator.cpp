#include "calc/calculator.h"

#include "base/number.h"

#include <cmath>
#include <optional>

namespace calc {

namespace {

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool isOperator(QStringView caption)
{
    return caption == u"+" || caption == u"-" || caption == u"*" || caption == u"/";
}

/// Length of the longest beginning that is a number: sign, digits with at most one comma, exponent.
qsizetype numberLength(QStringView text)
{
    qsizetype at = 0;
    const auto skipDigits = [&] {
        const qsizetype from = at;
        while (at < text.size() && isDigit(text[at]))
            ++at;
        return at - from;
    };
    const auto skip = [&](QStringView signs) {
        if (at < text.size() && signs.contains(text[at]))
            ++at;
    };
    skip(u"-");
    qsizetype digits = skipDigits();
    skip(u",");
    digits += skipDigits();
    if (digits == 0)
        return 0;
    const qsizetype mantissa = at;
    if (at == text.size() || text[at] != QLatin1Char('e'))
        return mantissa;
    ++at;
    skip(u"+-");
    return skipDigits() > 0 ? at : mantissa;
}

/// Value of a display or memory text. Infinite beyond the range of numbers, and 0 below it: that is why the
/// success of the conversion is not asked for.
double number(const QString &text)
{
    QString plain = text.left(numberLength(text));
    plain.replace(QLatin1Char(','), QLatin1Char('.'));
    return plain.toDouble();
}

/// Text of a result; nothing where there is none or where its rounded text would be beyond all numbers.
std::optional<QString> resultText(double value)
{
    if (!std::isfinite(value))
        return std::nullopt;
    QString text = base::formatNumber(value);
    if (!std::isfinite(number(text)))
        return std::nullopt;
    return text;
}

double evaluated(QStringView operation, double first, double second)
{
    if (operation == u"+")
        return first + second;
    if (operation == u"-")
        return first - second;
    if (operation == u"*")
        return first * second;
    if (operation == u"/" && second != 0.0)
        return first / second;
    return 0.0; // operators know 7 / 0 = 0, and "=" that had nothing to do
}

} // namespace

Fault Calculator::press(QStringView caption)
{
    if (isOperator(caption))
        return operation(caption);
    m_afterOperator = false;
    if (caption == u"=")
        return equals();
    if (caption == u"C") {
        clear();
        return Fault::None;
    }
    if (caption == u"MC") {
        m_memory.clear();
        return Fault::None;
    }
    if (caption == u"," || (caption.size() == 1 && isDigit(caption.front()))) {
        digit(caption);
        return Fault::None;
    }
    return function(caption);
}

void Calculator::shown()
{
    m_display.clear();
    m_hasComma = false;
}

double Calculator::operand() const
{
    // Without a mark digits came last, or nothing at all and then the display is empty.
    return m_mark.isEmpty() ? number(m_display) : 0.0;
}

void Calculator::digit(QStringView caption)
{
    if (!m_mark.isEmpty())
        m_display.clear();
    m_mark.clear();
    const bool comma = caption == u",";
    if (comma && m_hasComma)
        return;
    m_display += caption;
    m_hasComma = m_hasComma || comma;
    if (m_display.startsWith(QLatin1Char(',')))
        m_display = QStringLiteral("0,");
}

Fault Calculator::operation(QStringView caption)
{
    // An operator straight after an operator only takes its place: the display may still show the result of
    // the first one, which must not be counted again. With any other key between them both count.
    if (!m_afterOperator) {
        const double second = number(m_display);
        if (!std::isfinite(second))
            return Fault::TooLarge;
        if (m_accumulator == 0.0) { // none, or a result of 0, which counts as none
            m_accumulator = second;
            m_display.clear();
        } else if (second != 0.0) { // a second operand of 0 is passed over, its operator with it
            const double result = evaluated(m_pending, m_accumulator, second);
            const std::optional<QString> text = resultText(result);
            if (!text)
                return Fault::TooLarge;
            m_accumulator = result;
            m_display = *text;
        }
    }
    m_mark = caption.toString();
    m_pending = m_mark;
    m_hasComma = false;
    m_afterOperator = true;
    return Fault::None;
}

Fault Calculator::equals()
{
    const double second = operand();
    if (!std::isfinite(second))
        return Fault::TooLarge;
    const std::optional<QString> text = resultText(evaluated(m_pending, m_accumulator, second));
    if (!text)
        return Fault::TooLarge;
    m_display = *text;
    m_accumulator = 0.0;
    m_pending.clear();
    m_mark = QStringLiteral("xx"); // no operator: the next one counts with the result
    m_hasComma = false;
    return Fault::None;
}

Fault Calculator::function(QStringView caption)
{
    m_hasComma = false;
    if (caption == u"00>0") {
        m_display.chop(1);
        return Fault::None;
    }
    if (m_display.isEmpty() || m_display == QLatin1String("0"))
        return Fault::None;

    const double shownNumber = number(m_display);
    if (!std::isfinite(shownNumber))
        return Fault::TooLarge;
    if (caption == u"M+" && m_memory.isEmpty()) {
        m_memory = m_display; // as it stands, not as the number is written
        return Fault::None;
    }
    if (caption == u"M-" && m_memory.isEmpty())
        return Fault::MemoryEmpty;
    if (caption == u"M+" || caption == u"M-") {
        const double kept = number(m_memory);
        const std::optional<QString> sum =
            resultText(caption == u"M+" ? kept + shownNumber : kept - shownNumber);
        if (!sum)
            return Fault::TooLarge;
        m_memory = *sum;
        return Fault::None;
    }
    if (caption == u"кор" && shownNumber < 0.0)
        return Fault::NegativeRoot;
    if (caption == u"кор" || caption == u"+/-") {
        const std::optional<QString> text =
            resultText(caption == u"кор" ? std::sqrt(shownNumber) : -shownNumber);
        if (!text)
            return Fault::TooLarge;
        m_display = *text;
    }
    return Fault::None;
}

void Calculator::clear()
{
    m_display.clear();
    m_pending.clear();
    m_mark.clear();
    m_accumulator = 0.0;
    m_hasComma = false;
}

} // namespace calc
