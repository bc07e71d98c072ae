#pragma once

#include "logentry/lookups.h"

namespace logentry {

/// Country revision: resolves the country of every contact of the main log anew and fills in missing operator
/// marks, row by row in the order of the file, with the window's own fields as working storage.
class Revision {
public:
    struct Result {
        qint64 visited = 0;
        qint64 changed = 0;
        bool stopped = false;
        std::optional<store::Error> notShown; ///< the rows are done, but showing the last one failed
    };
    /// Told after each chunk; false stops, and the rows done stay done.
    using Step = std::function<bool(qint64 done, qint64 total)>;

    Revision(Sources &sources, EntryFields &fields, EntryState &state, Lookups &lookups);

    /// A callsign that no prefix matches takes over the country of the row before it, the first one that of
    /// the window: the country field is not emptied between rows. Operators know it and it stays. An operator
    /// mark that is missing becomes the last three characters of an own callsign of six, the last two of one
    /// of five. Afterwards the fields show the last row visited. Throws store::Error; the rows of the chunks
    /// before stay done.
    Result run(const Step &step);

private:
    Sources &m_sources;
    EntryFields &m_fields;
    EntryState &m_state;
    Lookups &m_lookups;
};

/// Operator mark that the revision gives to a row without one.
[[nodiscard]] QString revisionMark(const QString &ownCall);

} // namespace logentry
