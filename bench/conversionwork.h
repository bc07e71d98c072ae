#pragma once

#include <QString>
#include <QTextStream>

namespace bench {

/// Conversion of an old log of about `rows` contacts, made from `model` in the folder `scratch`, against the
/// bare work: the reading program's output thrown away, and the same rows put into the same tables and
/// indexes by a prepared statement in one transaction. False where there is no such model.
bool measureConversion(QTextStream &out, int runs, const QString &model, const QString &scratch, qint64 rows);

} // namespace bench
