#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

namespace store {

/// A column of a table of this program.
struct ColumnLayout {
    QString name;
    /// Holds Latin letters, digits and signs only. Such columns are compared and sorted by the engine's own
    /// NOCASE, which indexes serve; the others go through the Russian comparison where a query sorts them.
    bool latin;
};

struct TableLayout {
    QString name;
    QList<ColumnLayout> columns;
    /// The log and its scratch copies: they take over unknown columns of the rows put into them.
    bool holdsLogRows = false;
    /// A look-up by a key of this table takes the row with the exact letter case before one that differs in
    /// case.
    bool exactCaseFirst = false;
    /// Plain SQL run after the rows are in: indexes, triggers, counters.
    QStringList objects;
};

struct FileLayout {
    QString name; ///< "dbiaru.mdb"
    QString role; ///< Russian, for messages
    QList<TableLayout> tables;
};

/// The eleven database files of an installation, the log first.
[[nodiscard]] const QList<FileLayout> &fileLayouts();

/// Layout of a file by its name without regard to case; null for a file that is none of the eleven.
[[nodiscard]] const FileLayout *fileLayout(QStringView fileName);

/// Layout of a table by its name without regard to case, in whichever file; null for an unknown name.
[[nodiscard]] const TableLayout *tableLayout(QStringView tableName);

[[nodiscard]] bool isLatinColumn(QStringView tableName, QStringView columnName);

/// CREATE TABLE text of a table.
[[nodiscard]] QString createTableSql(const TableLayout &table);

/// Version of the layouts, kept in each file's user_version.
inline constexpr int kSchemaVersion = 3;

/// Column of the country table that is "1" in a row the operator has added or changed: what renews the table
/// leaves such a row alone. A plain column, empty in all other rows.
[[nodiscard]] QString ownRowColumn();

/// Table of the log file with, per country, the numbers of different callsigns worked and confirmed. Triggers
/// keep it current with plain SQL, whatever program writes the log, because counting a third of a million
/// rows at each key would be slower than the operator types.
[[nodiscard]] QString countryCountersTable();

/// Table of the log file with the number of contacts by band, country and whether a card was sent and
/// received. Its columns have the log's names, the marks are "1" or empty, and null is empty, so that a
/// condition over these columns finds here what it finds in the log. Triggers keep it current with plain SQL.
[[nodiscard]] QString tallyTable();
/// A column of the log that stands in the tally with its values.
[[nodiscard]] bool isTalliedColumn(QStringView columnName);
/// A column of the log of which the tally knows only whether it is empty.
[[nodiscard]] bool isTalliedMark(QStringView columnName);

/// A column of the log with so few different values that one of them leaves a large part of all rows.
[[nodiscard]] bool isCoarseColumn(QStringView tableName, QStringView columnName);

/// True where an index holds only the rows with this value (exactly so written) in this column.
[[nodiscard]] bool isPartOfIndex(QStringView tableName, QStringView columnName, QStringView value);

} // namespace store
