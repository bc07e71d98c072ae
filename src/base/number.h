#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace base {

/// Number in `text`, written with a decimal comma or a decimal point, blanks around it allowed.
/// Nothing for a text that is no number (also an empty one, infinities and thousands separators).
[[nodiscard]] std::optional<double> parseNumber(QStringView text);

/// Value of what the operator typed: 0 where it is no number.
[[nodiscard]] double numberOrZero(QStringView text);

/// Shortest text with up to 15 significant digits and a decimal comma: 59,5; 7; -0,25.
[[nodiscard]] QString formatNumber(double value);

} // namespace base
