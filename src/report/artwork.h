#pragma once

#include "report/layout.h"

#include <QByteArray>
#include <QString>

namespace report {

/// Ids of the groups that are a part of their own.
[[nodiscard]] bool isPartId(const QString &id, PartName *name);

/// The artwork of one part: the elements of the document that can be drawn and belong to it, under their
/// transformations, without texts and without anything that leads out of the document. Empty where nothing is
/// to be drawn. `bytes` has been read without an error before; `viewBox` becomes the new document's.
[[nodiscard]] QByteArray extractArtwork(const QByteArray &bytes, PartName part, const QString &viewBox);

} // namespace report
