#pragma once

#include "store/sqltext.h"

#include <QStringList>

/// Statements of the reports.
namespace report::sql {

/// All rows of a table, or those in which the field `filled` is not empty, in the order of the given terms;
/// as stored where there are none.
[[nodiscard]] store::SqlText rows(const QString &table, const QString &filled, const QString &order);
/// The first row of a table, the one stored first.
[[nodiscard]] QString firstRow(const QString &table, const QString &field);
/// The keys of a table.
[[nodiscard]] QString keys(const QString &table);
/// The key and the fields of a station's record, by its callsign as the only parameter.
[[nodiscard]] QString station(const QString &table, const QStringList &fields);

} // namespace report::sql
