#pragma once

#include "foreign/jetfile.h"
#include "store/schema.h"
#include "store/sqlite.h"

#include <QList>
#include <QString>

#include <functional>

namespace store {

/// Tells how the work goes on, and ends it: every function that takes it throws foreign::JetStopped then.
struct LoadWatch {
    std::function<bool()> rowDone; ///< after every row; false stops
    std::function<bool()> goOn;    ///< from time to time during work that has no rows (indexes); false stops
};

/// Puts all rows of an old database into the empty `target`: the tables of `layout` with its columns first,
/// the file's other columns and tables behind them. A table of the layout that the file lacks is made as in a
/// new installation. Indexes and counters are built afterwards. One transaction. Throws Error,
/// foreign::Error. Gives the rows of each table of the file.
QList<qint64> loadJet(foreign::JetFile &file, Connection &target, const FileLayout &layout,
                      const LoadWatch &watch);

/// Reads an old database again and compares every row of every table with `copy`, in order. Throws Error
/// (Unreadable, with the name of the old file) at the first difference, foreign::Error.
void compareJet(foreign::JetFile &file, Connection &copy, const QString &oldFile, const LoadWatch &watch);

} // namespace store
