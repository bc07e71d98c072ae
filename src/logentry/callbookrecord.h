#pragma once

#include "logentry/fields.h"
#include "logentry/sources.h"

namespace logentry {

/// "Add calbuk": the station being logged goes into the callbook, as the record on which the look-up of its
/// callsign has left the callbook source.
class CallbookRecord {
public:
    CallbookRecord(Sources &sources, const EntryFields &fields);

    /// Reads the row anew: another window may have changed it. Throws Error, as all of these do.
    void readAgain();
    /// The source stands on a record with a callsign, be it another station's.
    [[nodiscard]] bool isThere();
    [[nodiscard]] bool isOfStation();

    /// Town and name replace the record's where they are typed, the QSL route always: an empty one takes the
    /// record's away. Stores it. Where that fails the record is as before.
    void change();
    /// Stores a new record of callsign, town, name and QSL route as they stand. Nothing is checked: an entry
    /// without a callsign makes a record without one.
    void add();

private:
    void store();

    store::DataSource &m_callbook;
    const EntryFields &m_fields;
};

} // namespace logentry
