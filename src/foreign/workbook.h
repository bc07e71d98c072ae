#pragma once

#include "foreign/sheet.h"

#include <QByteArray>
#include <QString>

namespace foreign {

/// Reads one sheet of an Excel 5.0/95 or 97-2003 workbook, found by its name without regard to letter case.
/// The whole file and the whole sheet are read and checked: a sheet that is not complete throws Error, as do
/// a workbook with a password, a workbook without the sheet, and files of other formats whatever their name,
/// each with a text that says which. Other sheets are not looked at.
[[nodiscard]] Sheet readSheet(const QByteArray &bytes, const QString &name);

/// The same from a file; Error also where it cannot be read or is larger than any sheet of ours could be.
[[nodiscard]] Sheet readSheetFile(const QString &path, const QString &name);

} // namespace foreign
