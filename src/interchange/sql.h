#pragma once

#include "store/sqltext.h"

#include <QStringList>

/// Statements of export, import and merge.
namespace interchange::sql {

[[nodiscard]] store::SqlText logTable();
/// Its columns and none of its rows.
[[nodiscard]] store::SqlText noContact();
/// The contacts of a period, in the order in which the main window exports them. Both days as typed.
[[nodiscard]] store::SqlText contactsOfPeriod(QStringView first, QStringView last);
/// All contacts, in the order in which the revision window exports them.
[[nodiscard]] store::SqlText allContacts();

// What the export has replaced, written into the log's row of the given key, where it still stands there.
[[nodiscard]] QString replaceSentReport();
[[nodiscard]] QString replaceReceivedReport();
/// The mode is the first parameter.
[[nodiscard]] QString fillMode();

/// The contacts of a log that the merge takes for the same: by callsign, date, band and sent report.
/// Apostrophes in the values are doubled, so that no row of a foreign log ends the merge.
[[nodiscard]] store::SqlText sameContact(QStringView call, QStringView date, QStringView band,
                                         QStringView sent);
/// Key, received mark, sent mark and route of the first row under a condition.
[[nodiscard]] QString firstWithMarks(const QString &condition);
[[nodiscard]] QString addContact(const QStringList &fields);
/// Sets fields of the row whose key is the last parameter.
[[nodiscard]] QString setMarks(const QStringList &fields);

/// Callsigns of a contest.
[[nodiscard]] store::SqlText contestTable();
[[nodiscard]] store::SqlText emptyContestTable();

} // namespace interchange::sql
