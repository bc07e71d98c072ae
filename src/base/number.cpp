#include "base/number.h"

#include <cmath>

namespace base {

std::optional<double> parseNumber(QStringView text)
{
    QString plain = text.trimmed().toString();
    plain.replace(QLatin1Char(','), QLatin1Char('.'));
    for (const QChar c : std::as_const(plain)) {
        const bool known = (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c == QLatin1Char('.') ||
                           c == QLatin1Char('-') || c == QLatin1Char('+') || c == QLatin1Char('e') ||
                           c == QLatin1Char('E');
        if (!known)
            return std::nullopt;
    }
    bool ok = false;
    const double value = plain.toDouble(&ok); // the C locale, whatever the system's
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

double numberOrZero(QStringView text)
{
    return parseNumber(text).value_or(0.0);
}

QString formatNumber(double value)
{
    constexpr int kSignificantDigits = 15;
    if (value == 0.0)
        return QStringLiteral("0"); // also for a negative zero
    QString text = QString::number(value, 'g', kSignificantDigits);
    text.replace(QLatin1Char('.'), QLatin1Char(','));
    return text;
}

} // namespace base
