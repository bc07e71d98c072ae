#pragma once

#include "store/sqltext.h"

/// Every statement of the awards' windows, letter for letter as their data sources are given them.
namespace awards::sql {

// The catalogue.
[[nodiscard]] store::SqlText countries();
[[nodiscard]] store::SqlText regions();
[[nodiscard]] store::SqlText awardTable();
[[nodiscard]] store::SqlText awardsOfCountry(QStringView country);
[[nodiscard]] store::SqlText awardsOfRegion(QStringView country, QStringView region);
[[nodiscard]] store::SqlText rules(QStringView award, QStringView country);
[[nodiscard]] store::SqlText awardToDelete(QStringView award);
[[nodiscard]] store::SqlText region(QStringView code);

// Picking contacts.
[[nodiscard]] store::SqlText logTable();
[[nodiscard]] store::SqlText countryTable();
[[nodiscard]] store::SqlText regionTable();
[[nodiscard]] store::SqlText callbookTable();
[[nodiscard]] store::SqlText countryPrefixes();
[[nodiscard]] store::SqlText regionPrefixes();
[[nodiscard]] store::SqlText countryOfPrefix(QStringView prefix);
[[nodiscard]] store::SqlText callsOfCountry(QStringView country);
[[nodiscard]] store::SqlText callsOfRegion(QStringView prefix);
[[nodiscard]] store::SqlText regionOfPrefix(QStringView prefix);
[[nodiscard]] store::SqlText contactsOfCall(QStringView call);
[[nodiscard]] store::SqlText callbookEntry(QStringView call);

// The blank. `confirmed`: only contacts with a received card.
[[nodiscard]] store::SqlText blank();
[[nodiscard]] store::SqlText emptyBlank();
[[nodiscard]] store::SqlText contactOfCall(QStringView call, bool confirmed);
[[nodiscard]] store::SqlText contactOfCountry(QStringView country, bool confirmed);

// Counts of the blank, in the engine's own SQL: nothing is bound to them.
/// One row: rows, rows without a callsign, different callsigns, countries, bands.
[[nodiscard]] QString blankCounts();
/// Of the rows behind a key (first parameter), so many at most (second), one row: how many they are, the last
/// one's key, how many of them have no card.
[[nodiscard]] QString blankRowsWithoutCard();

/// The title page of the application.
[[nodiscard]] store::SqlText titleTable();

} // namespace awards::sql
