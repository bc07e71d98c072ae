#pragma once

#include "bench/figures.h"

#include <QString>
#include <QTextStream>

namespace bench {

/// What the awards window does with a big log, through its own data sources. Fills the blank and empties it.
void measureAwards(QTextStream &out, const QString &folder, int samples);

} // namespace bench
