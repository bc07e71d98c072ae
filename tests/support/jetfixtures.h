#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace testsupport {

/// A table as its .tsv has it; nothing for null.
struct TsvTable {
    QStringList columns;
    QList<QList<std::optional<QString>>> rows;
};

/// Path of a file below the test data.
[[nodiscard]] QString dataFile(const QString &name);

/// What must be found in a table of an old database, from the text that lies beside it.
[[nodiscard]] TsvTable expectedTable(const QString &mdbPath, const QString &table);

/// Type of each column of a table, from the schema.tsv beside the database: "TEXT", "DATE", ...
[[nodiscard]] QStringList expectedTypes(const QString &mdbPath, const QString &table);

/// Names of the tables that have a text beside the database.
[[nodiscard]] QStringList expectedTables(const QString &mdbPath);

} // namespace testsupport
