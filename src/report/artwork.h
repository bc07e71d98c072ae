#pragma once

#include "report/layout.h"

#include <QByteArray>
#include <QLatin1String>
#include <QString>

namespace report {

/// Ids of the groups that are a part of their own.
[[nodiscard]] bool isPartId(const QString &id, PartName *name);

/// What data-pages says where it says anything: not on the title page.
inline constexpr QLatin1String kPagesOfRows("rows");
/// Name of that attribute.
inline constexpr QLatin1String kPagesAttribute("data-pages");

/// The artwork of one part: the elements of the document that can be drawn and belong to it, under their
/// transformations, without texts and without anything that leads out of the document. Empty where nothing is
/// to be drawn. `bytes` has been read without an error before; `viewBox` becomes the new document's.
[[nodiscard]] QByteArray extractArtwork(const QByteArray &bytes, PartName part, const QString &viewBox);

} // namespace report
