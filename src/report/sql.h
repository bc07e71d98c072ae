#pragma once

#include "store/sqltext.h"

/// Statements of the reports.
namespace report::sql {

/// All rows of a table in the order of the given terms; as stored where there are none.
[[nodiscard]] store::SqlText rows(const QString &table, const QString &order);
/// The first row of a table, the one stored first.
[[nodiscard]] QString firstRow(const QString &table, const QString &field);

} // namespace report::sql
