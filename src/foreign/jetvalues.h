#pragma once

#include "foreign/jetfile.h"

#include <QByteArray>
#include <QByteArrayView>

namespace foreign {

/// What a date of a column is for: the log's own columns hold one part of it only.
enum class DateUse {
    Any,  ///< date, time or both, whatever the value holds
    Date, ///< ddate: of a value with both the date alone
    Time, ///< ttime: the time alone
};

/// The use that a column's name tells.
[[nodiscard]] DateUse dateUse(const QString &column);

/// The text that the log keeps for a value, UTF-8: null is empty; booleans "1" and "0"; numbers with a
/// decimal comma, shortest form that gives the same number again; dates "dd.mm.yy" from 1930 to 2029,
/// otherwise "dd.mm.yyyy"; times "hh:mm", cut, not rounded, with ":ss" only beside a date; day 0 with a time
/// is a time; bytes as lower-case hexadecimal digits; identifiers as {8-4-4-4-12}. Either a view of the value
/// or of `scratch`.
[[nodiscard]] QByteArrayView jetText(const JetValue &value, DateUse use, QByteArray &scratch);

} // namespace foreign
