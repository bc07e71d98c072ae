#pragma once

#include "store/sqlite.h"
#include "store/sqltext.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace store {

struct OrderTerm {
    QString sql; ///< SQLite's text of the term, collation and direction included
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
    QStringList order; ///< terms of ORDER BY, empty without
    Values orderArguments;
    /// For a count of different callsigns of a country, which the log file keeps counted: the country, and
    /// whether only confirmed ones count.
    bool countsCountry = false;
    bool countsCards = false;
    QString countedCountry;
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
