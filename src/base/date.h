#pragma once

#include <QDate>
#include <QString>
#include <QStringView>
#include <QTime>

#include <optional>

namespace base {

/// Date in one of the log's forms: day and month of one or two digits, year of two or four, separated by
/// full stops. Two-digit years 00 to 29 are 2000 to 2029, 30 to 99 are 1930 to 1999. Blanks around the text
/// are ignored. Nothing for any other text and for a day that the calendar has not.
[[nodiscard]] std::optional<QDate> parseLogDate(QStringView text);

/// Time in one of the log's forms: "14:07", "9:05", "14:07:30" (the seconds do not count), or three or four
/// bare digits, "905" and "1407". Blanks around the text are ignored. Nothing for any other text.
[[nodiscard]] std::optional<QTime> parseLogTime(QStringView text);

/// Time of a contact as a blank takes it: "12:34:56" is cut, "945" becomes "09:45", "45" and "5" are
/// minutes. Four characters stay as they are, also "1245": cards and applications have always been printed
/// so. Nothing for an empty time.
[[nodiscard]] std::optional<QString> blankTime(const QString &time);

/// "dd.mm.yy", the form in which the log keeps dates.
[[nodiscard]] QString logDate(QDate date);

/// "dd.mm.yyyy": the system's short form of a date, fixed so that logs do not depend on a locale.
[[nodiscard]] QString shortDate(QDate date);

/// "h:mm:ss", without a leading zero of the hour: the system's short form of a time.
[[nodiscard]] QString shortTime(QTime time);

/// "hh:mm:ss", the form of the clock field.
[[nodiscard]] QString clockTime(QTime time);

} // namespace base
