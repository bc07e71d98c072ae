#pragma once

#include "store/sqltext.h"

#include <QString>
#include <QStringList>

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

[[nodiscard]] store::SqlText callbookTable();
[[nodiscard]] store::SqlText callbookByCall();
/// Per record, in the order in which they are stored: key, callsign, and the sum of 1, 2, 4, ... for those of
/// the fields that are not empty.
[[nodiscard]] QString callbookContents(const QStringList &fields);
/// A new record; each field a parameter.
[[nodiscard]] QString addToCallbook(const QStringList &fields);
/// Each field a parameter that is stored where the field is empty. The last parameter is the record's key.
[[nodiscard]] QString fillCallbookRecord(const QStringList &fields);
/// A number that is another one after another connection has changed the file.
[[nodiscard]] QString changesByOthers();

// ---- country table

[[nodiscard]] store::SqlText allCountries();
[[nodiscard]] store::SqlText countryTable();
[[nodiscard]] store::SqlText countriesByPrefix(QStringView text);
[[nodiscard]] store::SqlText countriesByName(QStringView text);

/// All rows in their stored order: the row's key, prf, PREF, strana, kont, cq, iaru, GradN, GradE, Dolg, Shir
/// and the mark of the operator's own rows. This and the next three are for the engine itself, with
/// parameters.
[[nodiscard]] QString countryRows();
/// Parameters: the ten columns from prf to Shir.
[[nodiscard]] QString addCountryRow();
/// Parameters: the nine columns from PREF to Shir, then the row's key.
[[nodiscard]] QString changeCountryRow();
/// Parameter: the row's key.
[[nodiscard]] QString removeCountryRow();

// ---- region table

[[nodiscard]] store::SqlText regionTable();
[[nodiscard]] store::SqlText regionsByPrefix(QStringView text);

} // namespace reference::sql
