#pragma once

#include "store/library.h"

#include <QString>

#include <functional>
#include <optional>

namespace interchange {

/// Workbook that the log import reads: "c:\radio\TblLog.XLS" as store::fixedPath() has it, whether it is
/// there or not.
[[nodiscard]] QString spreadsheetPath(const store::Library &databases);

/// Log that the import adds to: the database "c:\radio\dbiaru"; where there is none, the program's own log.
[[nodiscard]] QString spreadsheetLog(store::Library &databases);

struct SpreadsheetSteps {
    store::Progress copying; ///< of the log, before it is changed
    /// Told after each chunk of rows; false stops, and the rows added stay.
    std::function<bool(qint64 done, qint64 total)> adding;
};

struct SpreadsheetResult {
    qint64 rows = 0;     ///< in the sheet before the first one whose first cell is blank
    qint64 added = 0;    ///< in the log now; fewer than `rows` only where stopped or failed
    qint64 notTaken = 0; ///< rows with anything in them from that blank first cell on
    bool stopped = false;
    std::optional<store::Error> failed; ///< adding ended here; the rows added before stay
};

/// Adds the rows of the sheet "Tbl" to TBLLOG1 of a log: the columns of the table, from its first one on, are
/// callsign, date, time, band, reports sent and received, town, name, QSL route, QSL received and sent, each
/// as the text that the sheet shows; other fields keep their defaults. A blank first cell ends the import
/// even if rows follow. Rows that are in the log already are added again.
///
/// The workbook is read and checked as a whole before the log is opened, the log copied before the first row
/// is added. Rows go in in chunks, each committed. Throws store::Error (of the kind Missing or Unreadable for
/// the workbook), and then nothing has been added.
SpreadsheetResult importSpreadsheet(store::Library &databases, const QString &workbook, const QString &log,
                                    const SpreadsheetSteps &steps = {});

} // namespace interchange
