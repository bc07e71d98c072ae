#pragma once

#include "store/sqltext.h"

namespace reference::sql {

// Statements of the callbook, the country table and the region table, with values spliced in as they stand.

// ---- callbook

[[nodiscard]] store::SqlText allCalls();
/// Callsigns of the log that begin with a text.
[[nodiscard]] store::SqlText callsFrom(QStringView text);
/// What the log knows of a station, in the order of its rows.
[[nodiscard]] store::SqlText stationInLog(QStringView call);
[[nodiscard]] store::SqlText callbookRecord(QStringView call);
/// No station's record: the callbook may hold one without a callsign.
[[nodiscard]] store::SqlText noRecord();

// ---- country table

[[nodiscard]] store::SqlText allCountries();
[[nodiscard]] store::SqlText countryTable();
[[nodiscard]] store::SqlText countriesByPrefix(QStringView text);
[[nodiscard]] store::SqlText countriesByName(QStringView text);

// ---- region table

[[nodiscard]] store::SqlText regionTable();
[[nodiscard]] store::SqlText regionsByPrefix(QStringView text);

} // namespace reference::sql
