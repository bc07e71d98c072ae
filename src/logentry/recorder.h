#pragma once

#include "interchange/emergency.h"
#include "logentry/fields.h"
#include "logentry/sources.h"

#include <optional>

namespace logentry {

/// One contact as the log gets it.
struct Contact {
    QString ccall, rstr, rsts, QTH, NNAME, QSLVIA, bband, ddate, CONTR, ps1, ttime, PRF;
};

/// How recording went. Nothing set: everything is on disk and shown.
struct RecordOutcome {
    /// The contact is not in the main log. It stands in the emergency file where that could be written.
    std::optional<store::Error> notStored;
    /// The contact is in the main log but not in the parallel one.
    std::optional<store::Error> notInParallelLog;
    /// The contact is stored; a list or the grid could not be shown anew.
    std::optional<store::Error> notShown;
    QString emergencyFile; ///< where notStored is set: the file that took the contact, or empty
};

/// Turns what was typed into rows of the main and the parallel log.
class Recorder {
public:
    Recorder(Sources &sources, EntryFields &fields, EntryState &state, interchange::EmergencyFile &emergency);

    /// Records the contact and clears the entry for the next one. An empty callsign records nothing; the
    /// day's contacts are shown all the same. Throws nothing of the store: failures are in the outcome.
    RecordOutcome cmbadd_Click();

    /// Tries to store once more what the last outcome says is missing.
    RecordOutcome retry();
    /// Gives up storing: the typed texts stand in the fields again (or, where only the parallel row is
    /// missing, that row is dropped).
    void giveBack();

    /// The contact of the last call.
    [[nodiscard]] const Contact &contact() const noexcept { return m_contact; }

    /// Shows the contacts of the day in the date field.
    void showDay();

private:
    [[nodiscard]] Contact composed() const;
    void beginMainRow();
    void beginParallelRow();
    void clearEntry();
    void storeMain(RecordOutcome &outcome);
    void storeParallel(RecordOutcome &outcome);
    void showResult(RecordOutcome &outcome);

    Sources &m_sources;
    EntryFields &m_fields;
    EntryState &m_state;
    interchange::EmergencyFile &m_emergency;
    Contact m_contact;
    EntryFields m_typed;      ///< the fields before they were cleared
    QString m_lastFailedCall; ///< whose line stands last in the emergency file
    QString m_emergencyPath;  ///< where the contact of the last call was kept
    bool m_mainMissing = false;
    bool m_parallelMissing = false;
};

} // namespace logentry
