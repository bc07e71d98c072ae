#pragma once

#include "store/datasource.h"

namespace store {

/// Runs the record sources of a window's data sources in their order. Gives the failures, one per file; the
/// other sources work.
[[nodiscard]] QList<Error> refreshEach(const QList<DataSource *> &sources);

/// Runs a source with another statement. Where that fails the source is empty and takes `otherwise` for its
/// next run: a statement that a value has broken would make every later one fail too. Throws Error.
void requery(DataSource &source, const SqlText &text, const SqlText &otherwise);
/// The same with the statement that the source had before.
void requery(DataSource &source, const SqlText &text);

} // namespace store
