#pragma once

#include "report/ui/pagepainter.h"

#include <QString>

class QPagedPaintDevice;

namespace report {

/// Told before each page; false stops.
using PageStep = std::function<bool(qint64 done, qint64 total)>;

/// Sets a device to the document's paper without margins, and paints the pages from `first` to `last` on it.
/// False where `step` stopped it, or the device failed.
[[nodiscard]] bool paintPages(const Document &document, QPagedPaintDevice &device, qint64 first, qint64 last,
                              const PageStep &step);

/// Writes the document as PDF. The file appears under its name when it is complete; what stood there before
/// stays until then, and a database or a program always. False where `step` stopped it, and then no file has
/// changed. Throws Error.
[[nodiscard]] bool writePdf(const Document &document, const QString &path, const PageStep &step);

} // namespace report
