#pragma once

#include "interchange/sheetimport.h"

namespace interchange {

/// Workbook that the log import reads: "c:\radio\TblLog.XLS" as store::fixedPath() has it, whether it is
/// there or not.
[[nodiscard]] QString spreadsheetPath(const store::Library &databases);

/// Log that the import adds to: the database "c:\radio\dbiaru"; where there is none, the program's own log.
[[nodiscard]] QString spreadsheetLog(store::Library &databases);

using SpreadsheetSteps = SheetSteps;
using SpreadsheetResult = SheetResult;

/// importSheet() into TBLLOG1 of a log: the columns are callsign, date, time, band, reports sent and
/// received, town, name, QSL route, QSL received and sent.
SpreadsheetResult importSpreadsheet(store::Library &databases, const QString &workbook, const QString &log,
                                    const SpreadsheetSteps &steps = {});

} // namespace interchange
