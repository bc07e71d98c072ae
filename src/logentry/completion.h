#pragma once

#include "logentry/fields.h"
#include "logentry/keyrules.h"
#include "logentry/sources.h"

namespace logentry {

/// Help with town and name: the script that suits the station, lists narrowing to what is typed, learning.
/// Each throws store::Error where a query fails.
class Completion {
public:
    Completion(Sources &sources, EntryFields &fields, EntryState &state);

    /// Key filter of town and name. For a station whose principal prefix is none of UA, UR and EU a Cyrillic
    /// key becomes the Latin letter of the same key; for those three a Latin key, sign or digit becomes what
    /// it gives in the Cyrillic layout, where that is anything. `fromCyrillicLayout`: the platform knows that
    /// the key was typed under the Cyrillic layout, so that its signs are meant as they are. A character
    /// without a pair passes unchanged.
    [[nodiscard]] TypedKey scriptKey(QChar typed, bool fromCyrillicLayout);

    /// The name list shows the known names that begin with what is typed.
    void narrowNames();
    /// The town list shows the current region's towns that begin with what is typed.
    void narrowTowns();

    /// The panel of the lists comes up for another station: the names that an earlier one's name has left are
    /// all shown again.
    void listsShown();

    /// Adds the typed name to the known ones, unless it is there, and shows them all. Only while the list is
    /// shown and the field is not empty.
    void learnName();
    /// Adds the typed town with the current region's code, unless a town of that name is there, in whichever
    /// region. Then the list shows the region's towns. Only while the list is shown and the field is not
    /// empty.
    void learnTown();

private:
    [[nodiscard]] QString region();
    void showAllNames();

    Sources &m_sources;
    EntryFields &m_fields;
    EntryState &m_state;
    bool m_namesNarrowed = false;
};

} // namespace logentry
