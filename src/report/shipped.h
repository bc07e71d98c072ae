#pragma once

#include "store/library.h"

#include <QByteArray>
#include <QStringList>

namespace report {

/// Names of the layouts that come with the program: "qsl.rpt", ...
[[nodiscard]] QStringList shippedLayouts();

/// One of them, by its name without regard to case; empty for any other name.
[[nodiscard]] QByteArray shippedLayout(const QString &name);

/// Writes the layouts that come with the program into the program folder where they are missing. One that is
/// there, in whatever letter case, is the operator's and never touched; into a folder that takes no files
/// nothing is written. Gives the names written. Throws Error.
QStringList createMissingLayouts(store::Library &databases);

} // namespace report
