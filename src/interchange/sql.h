#pragma once

#include "store/sqltext.h"

/// Statements of export, import and merge.
namespace interchange::sql {

/// The contacts of a period, in the order in which the main window exports them. Both days as typed.
[[nodiscard]] store::SqlText contactsOfPeriod(QStringView first, QStringView last);
/// All contacts, in the order in which the revision window exports them.
[[nodiscard]] store::SqlText allContacts();

// What the export has replaced, written into the log's row of the given key, where it still stands there.
[[nodiscard]] QString replaceSentReport();
[[nodiscard]] QString replaceReceivedReport();
/// The mode is the first parameter.
[[nodiscard]] QString fillMode();

} // namespace interchange::sql
