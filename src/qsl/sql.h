#pragma once

#include "store/sqltext.h"

/// Every statement of the bureau and the help window, letter for letter as their data sources are given them.
namespace qsl::sql {

// Record sources at the window's opening.
[[nodiscard]] store::SqlText logTable();
[[nodiscard]] store::SqlText contactsAtStart();
[[nodiscard]] store::SqlText blank();
[[nodiscard]] store::SqlText allCalls();
[[nodiscard]] store::SqlText countryTable();
[[nodiscard]] store::SqlText countryPrefixes();
[[nodiscard]] store::SqlText regionTable();
[[nodiscard]] store::SqlText regionPrefixes();
[[nodiscard]] store::SqlText callbookTable();
[[nodiscard]] store::SqlText ownStationTable();
[[nodiscard]] store::SqlText titleTable();

// Lists of callsigns. `key` is the own-callsign key.
[[nodiscard]] store::SqlText allCallsSorted();
[[nodiscard]] store::SqlText callsWithCard();
[[nodiscard]] store::SqlText callsOfCountry(QStringView country);
[[nodiscard]] store::SqlText callsOfRegion(QStringView region, QStringView key);
[[nodiscard]] store::SqlText callsFrom(QStringView beginning, QStringView key);
[[nodiscard]] store::SqlText callsOnBand(QStringView band, QStringView key);
[[nodiscard]] store::SqlText callsOfRegionOnBand(QStringView region, QStringView band, QStringView key);
[[nodiscard]] store::SqlText callsOfCountryOnBand(QStringView band, QStringView country, QStringView key);

// The grid of contacts.
[[nodiscard]] store::SqlText contactsOfCall(QStringView call);
[[nodiscard]] store::SqlText contactsOfFoundCall(QStringView call, QStringView key);
/// The blank behind the country is part of it.
[[nodiscard]] store::SqlText contactsOfCountry(QStringView country, QStringView key);
[[nodiscard]] store::SqlText contactsOfCallByBand(QStringView call);
/// Where the hand-entry panel stands after a contact went into the blank.
[[nodiscard]] store::SqlText contactsAtTime(QStringView call, QStringView time);

// Look-ups.
[[nodiscard]] store::SqlText countryOfPrincipalPrefix(QStringView prefix);
[[nodiscard]] store::SqlText countryOfPrefix(QStringView prefix);
[[nodiscard]] store::SqlText nameOfRegion(QStringView region);
[[nodiscard]] store::SqlText callbookEntry(QStringView call);

// Counts: the number of rows is the count.
[[nodiscard]] store::SqlText regionSent(QStringView band, QStringView region);
[[nodiscard]] store::SqlText regionReceived(QStringView band, QStringView region);
[[nodiscard]] store::SqlText regionWorked(QStringView band, QStringView region);
[[nodiscard]] store::SqlText countrySent(QStringView country, QStringView band);
[[nodiscard]] store::SqlText countryReceived(QStringView country, QStringView band);
[[nodiscard]] store::SqlText countryWorked(QStringView country, QStringView band);
[[nodiscard]] store::SqlText countriesSent(QStringView band);
[[nodiscard]] store::SqlText countriesReceived(QStringView band);
[[nodiscard]] store::SqlText countriesWorked(QStringView band);
[[nodiscard]] store::SqlText allCountriesSent();
[[nodiscard]] store::SqlText allCountriesReceived();
[[nodiscard]] store::SqlText allCountriesWorked();
[[nodiscard]] store::SqlText confirmedCalls();
[[nodiscard]] store::SqlText allContacts();
[[nodiscard]] store::SqlText differentCalls();

// Marking.
[[nodiscard]] store::SqlText contactToMark(QStringView band, QStringView call, QStringView date);
[[nodiscard]] store::SqlText emptyBlank();

/// The help window's text.
[[nodiscard]] store::SqlText helpText();

} // namespace qsl::sql
