#pragma once

#include "logentry/fields.h"
#include "logentry/sources.h"

#include <functional>
#include <optional>

namespace logentry {

/// What the window finds out about the station while its callsign is typed. The operations read and write the
/// window's fields; each throws store::Error where a query fails, with the fields it had reached so far.
class Lookups {
public:
    Lookups(Sources &sources, EntryFields &fields, EntryState &state);

    /// Country by prefix. Every beginning of the callsign is looked up, shortest first, so that the longest
    /// match wins and every shorter one has been shown and counted on the way; without a match country and
    /// principal prefix stay. Sets the position where the whole callsign is itself a prefix, or through RUSS
    /// for Russia; shows or hides the town panel; ends with distance and bearing. An empty callsign changes
    /// nothing.
    void STRAN();

    /// Region of a Russian callsign: its key, region row, town list and position. A callsign of fewer than
    /// four characters looks the region of the previous Russian callsign up again.
    void RUSS();

    /// Stations of the country worked and confirmed, into txtQSO and TXTQSL. Nothing while the country is
    /// empty.
    void QSOQSL();

    /// The grid of contacts: the day's where no callsign is typed, else every earlier one with the station;
    /// the list of worked callsigns too, while it is shown.
    void WWOD();

    /// Every contact with a callsign chosen from the list.
    void showContactsWith(const QString &call);

    /// Callbook entry: town, name and QSL route from it, or emptied where there is none.
    void bukcal();

    /// A key released in the callsign field: everything above in its order. A failing query does not keep the
    /// others from running; gives the first failure.
    [[nodiscard]] std::optional<store::Error> callsignKeyReleased(int key);

    /// What a key released in the empty callsign field does beside its queries.
    void clearForEmptyCallsign();

    /// Contact position that the locator panel shares with the look-ups.
    [[nodiscard]] geo::Position &position() noexcept { return m_position; }

    /// Derives the own-callsign key from the own callsign.
    void deriveOwnKey();

private:
    Sources &m_sources;
    EntryFields &m_fields;
    EntryState &m_state;
    geo::Position m_position;
};

/// Region key of a Russian callsign; one of fewer than four characters leaves the `previous` one.
[[nodiscard]] QString regionKeyOf(QStringView call, const QString &previous);

/// Runs operations one after the other whatever each does; keeps the first failure.
class Attempts {
public:
    void operator()(const std::function<void()> &operation);
    [[nodiscard]] const std::optional<store::Error> &firstError() const noexcept { return m_error; }

private:
    std::optional<store::Error> m_error;
};

} // namespace logentry
