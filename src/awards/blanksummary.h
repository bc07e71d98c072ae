#pragma once

#include "store/library.h"

namespace awards {

/// What a hunter counts in the blank.
struct BlankSummary {
    qint64 rows = 0;
    qint64 calls = 0;       ///< different ones; empty ones do not count
    qint64 countries = 0;   ///< different ones
    qint64 bands = 0;       ///< different ones
    qint64 unconfirmed = 0; ///< rows for which no card has been received
};

/// Counts the blank of a log file as it is stored. A row counts as confirmed where the log has a received
/// card (QSLP) for a contact with its callsign on its band on its day: the blank itself takes no marks along.
/// Throws Error.
[[nodiscard]] BlankSummary summarize(store::Library &databases, const QString &logPath);

/// The counts as a line of text.
[[nodiscard]] QString summaryLine(const BlankSummary &summary);

} // namespace awards
