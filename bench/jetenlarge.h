#pragma once

#include <QString>

namespace bench {

/// Makes a large old database: `model` (Jet 4, its largest table a log) with that table's pages repeated
/// until it has at least `rows` rows. Callsigns of the repetitions differ in their last two letters. Gives
/// the number of rows; 0 where the model is not of that kind or the file cannot be written. Only pages whose
/// rows have all stayed in their places are repeated.
qint64 enlargeJet(const QString &model, const QString &target, qint64 rows);

} // namespace bench
