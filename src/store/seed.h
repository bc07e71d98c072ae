#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace store {

class Connection;
struct TableLayout;

/// Fills a new table with the rows that come with the program, if there are any for it.
void seedTable(Connection &connection, const TableLayout &table);

/// Adds the one row that a table must have (own station, award heading, help text) where it has none.
void seedSingleRow(Connection &connection, const TableLayout &table);

/// Whether that may add a row to the table.
[[nodiscard]] bool mustHaveRow(const QString &table);

/// Rows of a tab-separated text, the header first. "\n", "\t" and "\\" in a field stand for the character.
[[nodiscard]] QList<QStringList> parseTsv(const QString &text);

} // namespace store
