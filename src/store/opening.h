#pragma once

#include "store/datasource.h"

namespace store {

/// Runs the record sources of a window's data sources in their order. Gives the failures, one per file; the
/// other sources work.
[[nodiscard]] QList<Error> refreshEach(const QList<DataSource *> &sources);

} // namespace store
