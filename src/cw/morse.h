#pragma once

#include <QString>
#include <QStringView>

namespace cw {

/// Elements of one character: "1" is a dot, "3" a dash. Latin and Cyrillic letters share one table, in both
/// cases, so that text sends the same under either keyboard layout. A blank and every character that is not
/// in the table (Ъ and Ё too) give "0", a silence. The full stop is six dots and the comma
/// dot-dash-dot-dash-dot-dash: the Russian signs, not the international ones, and they stay.
[[nodiscard]] QString morsePattern(QChar c);

/// Element string of a text: each character's elements followed by "0", the gap behind it.
[[nodiscard]] QString elementString(QStringView text);

/// Number of characters of `text` whose elements have been begun when the element at `position` (from 1) of
/// its element string is played; for showing what is being sent.
[[nodiscard]] qsizetype charactersBegun(QStringView text, qsizetype position);

} // namespace cw
