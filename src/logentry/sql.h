#pragma once

#include "store/sqltext.h"

/// Every statement of the main window, letter for letter as its data sources are given them.
namespace logentry::sql {

// Record sources of the window's data sources at start.
[[nodiscard]] store::SqlText logTable();
[[nodiscard]] store::SqlText workedCallsUnsorted();
[[nodiscard]] store::SqlText workedCallsSorted();
[[nodiscard]] store::SqlText countryTable();
[[nodiscard]] store::SqlText regionTable();
[[nodiscard]] store::SqlText allTowns();
[[nodiscard]] store::SqlText townTable();
[[nodiscard]] store::SqlText allNamesAtStart();
[[nodiscard]] store::SqlText allNames();
[[nodiscard]] store::SqlText nameTable();
[[nodiscard]] store::SqlText callbookTable();
[[nodiscard]] store::SqlText keyTable();
[[nodiscard]] store::SqlText ownStationTable();

// Look-ups.
[[nodiscard]] store::SqlText countryOfPrefix(QStringView candidate);
[[nodiscard]] store::SqlText regionOfKey(QStringView key);
[[nodiscard]] store::SqlText townsOfRegion(QStringView code);
[[nodiscard]] store::SqlText confirmedCalls(QStringView country);
[[nodiscard]] store::SqlText workedCalls(QStringView country);
[[nodiscard]] store::SqlText callbookEntry(QStringView call);
/// The key's character may be a quote (the key of Э); it is doubled.
[[nodiscard]] store::SqlText latinOfKey(QChar cyrillic);

// The grid of contacts and the list of worked callsigns.
[[nodiscard]] store::SqlText contactsOfDay(QStringView date);
[[nodiscard]] store::SqlText contactsOfDayAfterRecording(QStringView date);
[[nodiscard]] store::SqlText contactsWith(QStringView call);
[[nodiscard]] store::SqlText workedCallsFrom(QStringView beginning);

// Completion of town and name.
[[nodiscard]] store::SqlText cyrillicOfKey(QChar latin);
[[nodiscard]] store::SqlText namesFrom(QStringView beginning);
[[nodiscard]] store::SqlText townsFrom(QStringView beginning, QStringView region);
[[nodiscard]] store::SqlText nameEqual(QStringView name);
[[nodiscard]] store::SqlText townEqual(QStringView town);
[[nodiscard]] store::SqlText townsOfRegionUnsorted(QStringView region);

// Parallel log and revision.
[[nodiscard]] store::SqlText emptyParallelLog();
[[nodiscard]] store::SqlText loadParallelLog(QStringView mainLogPath);
[[nodiscard]] store::SqlText countryForRevision(QStringView candidate);

// Contacts of a period, both days included, by date and then by time text.
[[nodiscard]] store::SqlText contactsOfPeriod(QStringView first, QStringView last);
[[nodiscard]] store::SqlText emptyPrintTable();
/// Runs on the file of the print table; the log is named in it.
[[nodiscard]] store::SqlText loadPrintTable(QStringView mainLogPath, QStringView first, QStringView last);

} // namespace logentry::sql
