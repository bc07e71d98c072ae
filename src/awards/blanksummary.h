#pragma once

#include "store/library.h"

namespace awards {

/// What a hunter counts in the blank. Null and empty are one, and letter case does not count.
struct BlankSummary {
    qint64 rows = 0;
    qint64 nameless = 0;    ///< rows without a callsign, as a list's end and a country not worked leave them
    qint64 calls = 0;       ///< different ones; empty ones do not count, here as below
    qint64 countries = 0;   ///< different ones
    qint64 bands = 0;       ///< different ones
    qint64 unconfirmed = 0; ///< rows with a callsign for which no card has been received
};

/// Counts the blank of a log file as it is stored. A row counts as confirmed where it has a card mark (QSLP)
/// of its own, or where the log has one for a contact with its callsign on its band on its day: the blank
/// takes no marks along when it is filled, and the time of a row may have been completed. Days are compared
/// as dates, "5.3.26" being "05.03.2026"; texts that are no dates are compared as texts. Throws Error.
[[nodiscard]] BlankSummary summarize(store::Library &databases, const QString &logPath);

/// The counts as a line of text.
[[nodiscard]] QString summaryLine(const BlankSummary &summary);

} // namespace awards
