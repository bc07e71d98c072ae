#pragma once

#include "store/library.h"
#include "store/sqltext.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace interchange {

/// Where the rows of a sheet go.
struct SheetTarget {
    QString database; ///< path
    store::SqlText table;
    QStringList fields; ///< in the order of the sheet's columns
};

struct SheetSteps {
    store::Progress copying; ///< of the database, before it is changed
    /// Told after each chunk of rows; false stops, and the rows added stay.
    std::function<bool(qint64 done, qint64 total)> adding;
};

struct SheetResult {
    qint64 rows = 0;     ///< in the sheet before the first one whose first cell is blank
    qint64 added = 0;    ///< in the database now; fewer than `rows` only where stopped or failed
    qint64 notTaken = 0; ///< rows with anything in them from that blank first cell on
    bool stopped = false;
    std::optional<store::Error> failed; ///< adding ended here; the rows added before stay
};

/// Adds the rows of the sheet "Tbl" of a workbook to a table: every column of the sheet, from its first one
/// on, goes into its field as the text that the sheet shows; other fields keep their defaults. The first row
/// is a row like the others. A blank first cell ends the import even if rows follow. Rows that are in the
/// table already are added again.
///
/// The workbook is read and checked as a whole before the database is opened, the database copied before the
/// first row is added. Rows go in in chunks, each committed. Throws store::Error (of the kind Missing or
/// Unreadable for the workbook), and then nothing has been added.
SheetResult importSheet(store::Library &databases, const QString &workbook, const SheetTarget &into,
                        const SheetSteps &steps = {});

} // namespace interchange
