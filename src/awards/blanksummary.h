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

/// Counts the blank of a log file as it is stored, in pieces: the rows without a card cost a look into the
/// log each.
///
/// A row counts as confirmed where it has a card mark (QSLP) of its own, or where the log has one for a
/// contact with its callsign on its band on its day: the blank takes no marks along when it is filled, and
/// the time of a row may have been completed. Days are compared as dates, "5.3.26" being "05.03.2026"; texts
/// that are no dates are compared as texts.
class BlankCount {
public:
    explicit BlankCount(store::Library &databases) : m_databases(databases) {}

    /// Counts anew; everything but `unconfirmed` is known after it. Throws Error.
    void begin(const QString &logPath);
    /// Looks so many rows up in the log. True when all have been. Throws Error.
    bool step(int rows);

    [[nodiscard]] bool done() const noexcept { return m_done; }
    [[nodiscard]] const BlankSummary &summary() const noexcept { return m_summary; }

private:
    store::Library &m_databases;
    QString m_path;
    BlankSummary m_summary;
    qint64 m_last = 0; ///< key of the row looked up last
    bool m_done = true;
};

/// The counts as a line of text. `complete`: the rows without a card have all been counted.
[[nodiscard]] QString summaryLine(const BlankSummary &summary, bool complete = true);

} // namespace awards
