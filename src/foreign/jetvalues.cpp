#include "foreign/jetvalues.h"

#include <QDate>

#include <charconv>
#include <cmath>

namespace foreign {

namespace {

using jet::ValueKind;

/// Shortest digits that give the same number again. Plain digits as long as they fit a field.
template <typename Number>
void appendNumber(Number value, QByteArray &text)
{
    constexpr double kLeastPlain = 1e-15;
    constexpr double kMostPlain = 1e18;
    constexpr std::size_t kRoom = 64;
    if (value == Number(0)) {
        text += '0'; // also for a negative zero
        return;
    }
    char digits[kRoom];
    const double size = std::fabs(double(value));
    const auto form =
        size >= kLeastPlain && size < kMostPlain ? std::chars_format::fixed : std::chars_format::scientific;
    const auto end = std::to_chars(digits, digits + kRoom, value, form);
    const qsizetype begin = text.size();
    text.append(digits, end.ptr - digits);
    if (const qsizetype point = text.indexOf('.', begin); point >= 0)
        text[point] = ',';
}

/// Digits with decimals behind a ".", which becomes the comma; zeros at the end go.
void appendDecimal(QByteArrayView digits, QByteArray &text)
{
    const bool fraction = digits.contains('.');
    while (fraction && digits.endsWith('0'))
        digits.chop(1);
    if (digits.endsWith('.'))
        digits.chop(1);
    if (digits == QByteArrayView("-0"))
        digits = digits.sliced(1);
    const qsizetype begin = text.size();
    text.append(digits.data(), digits.size());
    if (const qsizetype point = text.indexOf('.', begin); point >= 0)
        text[point] = ',';
}

void appendMoney(qint64 tenThousandths, QByteArray &text)
{
    constexpr quint64 kUnit = 10000;
    const quint64 size = tenThousandths < 0 ? quint64(0) - static_cast<quint64>(tenThousandths)
                                            : static_cast<quint64>(tenThousandths);
    QByteArray digits =
        QByteArray::number(size / kUnit) + '.' + QByteArray::number(size % kUnit).rightJustified(4, '0');
    if (tenThousandths < 0)
        digits.prepend('-');
    appendDecimal(digits, text);
}

void appendTwoDigits(int number, QByteArray &text)
{
    text += static_cast<char>('0' + number / 10 % 10);
    text += static_cast<char>('0' + number % 10);
}

void appendDate(QDate date, QByteArray &text)
{
    constexpr int kFirstShortYear = 1930;
    constexpr int kLastShortYear = 2029;
    appendTwoDigits(date.day(), text);
    text += '.';
    appendTwoDigits(date.month(), text);
    text += '.';
    if (date.year() < kFirstShortYear || date.year() > kLastShortYear)
        appendTwoDigits(date.year() / 100, text);
    appendTwoDigits(date.year(), text);
}

void appendTime(int seconds, bool withSeconds, QByteArray &text)
{
    appendTwoDigits(seconds / 3600, text);
    text += ':';
    appendTwoDigits(seconds / 60 % 60, text);
    if (withSeconds) {
        text += ':';
        appendTwoDigits(seconds % 60, text);
    }
}

void appendDateTime(double value, DateUse use, QByteArray &text)
{
    constexpr double kFirstDay = -657434; // 0100-01-01
    constexpr double kLastDay = 2958465;  // 9999-12-31
    constexpr int kSecondsPerDay = 86400;
    constexpr qint64 kDayZero = 2415019; // Julian day of 1899-12-30
    if (!(value > kFirstDay - 1 && value < kLastDay + 1)) {
        appendNumber(value, text); // no date of the engine's; kept as it is
        return;
    }
    double day = std::trunc(value);
    int seconds = static_cast<int>(std::lround(std::fabs(value - day) * kSecondsPerDay));
    if (seconds == kSecondsPerDay) {
        seconds = 0;
        day += 1;
    }
    const bool timeOnly = use == DateUse::Time || (day == 0 && seconds != 0);
    if (timeOnly) {
        appendTime(seconds, false, text);
        return;
    }
    appendDate(QDate::fromJulianDay(kDayZero + static_cast<qint64>(day)), text);
    if (use == DateUse::Date || seconds == 0)
        return;
    text += ' ';
    appendTime(seconds, seconds % 60 != 0, text);
}

void appendGuid(QByteArrayView bytes, QByteArray &text)
{
    // The first three groups are numbers, lowest byte first; -1 is a "-".
    static constexpr int kOrder[] = {3, 2, 1, 0, -1, 5, 4, -1, 7, 6, -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};
    text += '{';
    for (const int at : kOrder)
        text += at < 0 ? QByteArray("-") : QByteArray(1, bytes[at]).toHex().toUpper();
    text += '}';
}

} // namespace

DateUse dateUse(const QString &column)
{
    if (column.compare(QLatin1String("ddate"), Qt::CaseInsensitive) == 0)
        return DateUse::Date;
    if (column.compare(QLatin1String("ttime"), Qt::CaseInsensitive) == 0)
        return DateUse::Time;
    return DateUse::Any;
}

QByteArrayView jetText(const JetValue &value, DateUse use, QByteArray &scratch)
{
    scratch.resize(0);
    switch (value.kind) {
    case ValueKind::Null:
        return {};
    case ValueKind::Text:
        return value.bytes;
    case ValueKind::Boolean:
        return value.integer != 0 ? QByteArrayView("1") : QByteArrayView("0");
    case ValueKind::Integer:
        scratch.setNum(value.integer);
        break;
    case ValueKind::Single:
        appendNumber(static_cast<float>(value.number), scratch);
        break;
    case ValueKind::Double:
        appendNumber(value.number, scratch);
        break;
    case ValueKind::Date:
        appendDateTime(value.number, use, scratch);
        break;
    case ValueKind::Money:
        appendMoney(value.integer, scratch);
        break;
    case ValueKind::Decimal:
        appendDecimal(value.bytes, scratch);
        break;
    case ValueKind::Binary:
        scratch = value.bytes.toByteArray().toHex();
        break;
    case ValueKind::Guid:
        appendGuid(value.bytes, scratch);
        break;
    }
    return scratch;
}

} // namespace foreign
