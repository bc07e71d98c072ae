#pragma once

#include <QChar>
#include <QStringView>
#include <QtGlobal>

namespace reference {

/// No limit to the length of a box.
inline constexpr qsizetype kNoLimit = -1;

/// A key typed into a box for prefixes and names of countries and regions: turned to upper case; swallowed
/// (null) unless it is a digit or a Latin capital then, so that blanks and Cyrillic never enter; swallowed
/// when `length` characters stand there already and no more than `most` are taken.
[[nodiscard]] QChar codeKey(QChar typed, qsizetype length, qsizetype most) noexcept;

/// The same for the number of a zone: digits, as many as wanted.
[[nodiscard]] QChar zoneKey(QChar typed) noexcept;

/// A key typed into a cell of the country table under a field's heading. Beside what the boxes take
/// there are blanks in names and strokes in callsigns, as the table has them, and the numbers of positions.
[[nodiscard]] QChar countryCellKey(QStringView field, QChar typed, qsizetype length) noexcept;

/// How a box of the callbook changes what is typed.
enum class Capitals { AsTyped, First, All };

/// A key typed into a box of the callbook that takes `most` characters.
[[nodiscard]] QChar callbookKey(QChar typed, qsizetype length, qsizetype most, Capitals capitals) noexcept;

} // namespace reference
