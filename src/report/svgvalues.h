#pragma once

#include "report/affine.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

/// Values of SVG attributes, as drawing programs write them.
namespace report::svg {

inline constexpr double kMillimetresPerInch = 25.4;
inline constexpr double kPixelsPerInch = 96;

/// A number with or without a unit, in user units: px, mm, cm, in, pt, pc, and em of `emSize`. Nothing for
/// anything else, per cent included.
[[nodiscard]] std::optional<double> length(QStringView text, double emSize = 0);

/// The same in millimetres; a bare number is pixels.
[[nodiscard]] std::optional<double> millimetres(QStringView text);

/// The numbers of a list separated by blanks or commas; nothing where something else stands in it.
[[nodiscard]] std::optional<QList<double>> numbers(QStringView text);

/// A list of translate, scale, rotate, skewX, skewY and matrix. Nothing for any other text.
[[nodiscard]] std::optional<Affine> transform(QStringView text);

/// Largest coordinate or length that is drawn, in whatever units.
inline constexpr double kLargestNumber = 1e6;

/// Largest number in a text, without its sign: 0 for none, infinite for "nan" and "inf". What else stands in
/// the text does not matter.
[[nodiscard]] double largest(QStringView text);

/// Whether a text consists of what outlines (attribute "d") are made of. Their drawing ends where something
/// else stands.
[[nodiscard]] bool isOutline(QStringView text);

/// Opacity 0 to 1 of a number or a percentage. Nothing for anything else.
[[nodiscard]] std::optional<double> opacity(QStringView text);

/// "name: value; name: value" by lower-case name.
[[nodiscard]] QHash<QString, QString> declarations(QStringView text);

/// Rules of a style sheet whose selector is one class (".a"), or several separated by commas: declarations by
/// name of the class. Everything else is passed over.
[[nodiscard]] QHash<QString, QHash<QString, QString>> classRules(QStringView sheet);

/// Colour as 0xRRGGBB: #rgb, #rrggbb, rgb(r,g,b) and the sixteen basic names. Nothing for "none" and for
/// anything else.
[[nodiscard]] std::optional<quint32> colour(QStringView text);

/// Families of a font list, without their quotes.
[[nodiscard]] QStringList families(QStringView text);

/// Weight 1 to 1000; 400 for anything that is none.
[[nodiscard]] int weight(QStringView text);

} // namespace report::svg
