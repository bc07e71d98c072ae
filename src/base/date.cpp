#include "base/date.h"

namespace base {

namespace {

/// Value of a text of decimal digits only, -1 for anything else.
int digits(QStringView text, qsizetype least, qsizetype most)
{
    if (text.size() < least || text.size() > most)
        return -1;
    int value = 0;
    for (const QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return -1;
        value = value * 10 + (c.unicode() - u'0');
    }
    return value;
}

} // namespace

std::optional<QDate> parseLogDate(QStringView text)
{
    constexpr int kPivot = 30;
    text = text.trimmed();
    const auto parts = text.split(QLatin1Char('.'));
    if (parts.size() != 3)
        return std::nullopt;
    const int day = digits(parts[0], 1, 2);
    const int month = digits(parts[1], 1, 2);
    int year = digits(parts[2], 2, 4);
    if (day < 0 || month < 0 || year < 0 || parts[2].size() == 3)
        return std::nullopt;
    if (parts[2].size() == 2)
        year += year < kPivot ? 2000 : 1900;
    const QDate date(year, month, day);
    if (!date.isValid() || year == 0)
        return std::nullopt;
    return date;
}

std::optional<QTime> parseLogTime(QStringView text)
{
    text = text.trimmed();
    int hour = -1;
    int minute = -1;
    if (const qsizetype colon = text.indexOf(QLatin1Char(':')); colon >= 0) {
        const qsizetype second = text.indexOf(QLatin1Char(':'), colon + 1);
        if (second >= 0 && digits(text.sliced(second + 1), 1, 2) < 0)
            return std::nullopt;
        hour = digits(text.first(colon), 1, 2);
        minute = digits(text.first(second < 0 ? text.size() : second).sliced(colon + 1), 2, 2);
    } else if (const int number = digits(text, 3, 4); number >= 0) {
        hour = number / 100;
        minute = number % 100;
    }
    const QTime time(hour, minute);
    return time.isValid() ? std::optional(time) : std::nullopt;
}

std::optional<QString> blankTime(const QString &time)
{
    switch (time.size()) {
    case 0:
        return std::nullopt;
    case 1:
        return QStringLiteral("00:0") + time;
    case 2:
        return QStringLiteral("00:") + time;
    case 3:
        return QStringLiteral("0") + time.left(1) + QLatin1Char(':') + time.right(2);
    case 4:
    case 5:
        return time;
    default:
        return time.left(5);
    }
}

QString logDate(QDate date)
{
    return date.toString(u"dd.MM.yy");
}

QString shortDate(QDate date)
{
    return date.toString(u"dd.MM.yyyy");
}

QString shortTime(QTime time)
{
    return time.toString(u"H:mm:ss");
}

QString clockTime(QTime time)
{
    return time.toString(u"HH:mm:ss");
}

} // namespace base
