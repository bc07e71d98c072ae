#pragma once

#include "interchange/sheetimport.h"

namespace interchange {

/// Workbook with the callsigns of a contest: "D:\ARCHIVE\TblLOG1.XLS" as store::fixedPath() has it, whether
/// it is there or not.
[[nodiscard]] QString contestWorkbook(const store::Library &databases);

/// Database that the contest list goes into: "D:\ARCHIVE\dbQRZ", whether it is there or not. It is none of
/// the program's own files; the table of the same name among those is not touched.
[[nodiscard]] QString contestDatabase(const store::Library &databases);

/// importSheet() into tblQRZ of a database: the columns are callsign (`ccall`) and `AALL`.
SheetResult importContestList(store::Library &databases, const QString &workbook, const QString &database,
                              const SheetSteps &steps = {});

/// Deletes all rows of tblQRZ of a database, all or none. Gives their number. Throws store::Error.
qint64 emptyContestList(store::Library &databases, const QString &database);

} // namespace interchange
