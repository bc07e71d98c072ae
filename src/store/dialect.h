#pragma once

#include "store/sqlite.h"
#include "store/sqltext.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace store {

/// One of several conditions of which exactly one holds for a row that a query finds.
struct SelectBranch {
    QString where;
    Values arguments;
};

/// A SELECT of the windows' dialect, taken apart so that its result can be read in pages.
/// All conditions are SQLite texts with "?" for the literals, in the order of `arguments`.
struct SelectQuery {
    QString table;  ///< as written
    QString inFile; ///< path of an IN clause, empty without
    bool distinct = false;
    QStringList columns; ///< as asked; empty for "*"
    QString where;       ///< empty without
    Values arguments;
    /// The same condition as several that exclude each other, each of which an index serves in the order of
    /// its next column; empty where the one above cannot be parted so. `x=''` finds empty and null ones, and
    /// `x='A '` finds `A` too: as one condition they would have all rows found and sorted before the first.
    QList<SelectBranch> branches;
    QStringList order;        ///< terms of ORDER BY, empty without
    QStringList orderColumns; ///< their columns; empty where one of them is no plain column
    Values orderArguments;
    /// For a count of different callsigns of a country, which the log file keeps counted: the country, and
    /// whether only confirmed ones count.
    bool countsCountry = false;
    bool countsCards = false;
    QString countedCountry;
    /// The condition asks for nothing but country, band and whether the card marks are empty, so that the
    /// numbers of contacts that the log file keeps by these four can be asked instead of its rows.
    bool asksTallied = false;
};

struct DeleteCommand {
    QString table;
    QString where;
    Values arguments;
};

struct InsertCommand {
    QString table;
    QString inFile;
    SelectQuery select;
};

/// Turns a record source into a query: a table's name stands for all its rows, anything else must be one
/// SELECT. Throws Error (BadText, BadDate). A record source can only read: any other command is an error.
[[nodiscard]] SelectQuery translateSelect(const SqlText &text);

/// Turns "DELETE t.* FROM t ..." into its parts. Throws Error.
[[nodiscard]] DeleteCommand translateDelete(const SqlText &text);

/// Turns "INSERT INTO t [in 'path'] SELECT ..." into its parts. Throws Error.
[[nodiscard]] InsertCommand translateInsert(const SqlText &text);

enum class CommandKind { Delete, Insert };

/// Which bulk command a text is. Throws Error for any other text.
[[nodiscard]] CommandKind commandKind(const SqlText &text);

/// A name as SQLite takes it. Never between double quotes: an unknown name must stay an error, not become a
/// text.
[[nodiscard]] QString bracketedName(const QString &name);

} // namespace store
