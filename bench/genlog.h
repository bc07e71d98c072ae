#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

namespace bench {

/// What generateLog() has put into a folder.
struct GeneratedLog {
    qint64 contacts = 0;
    qint64 calls = 0; ///< different callsigns
    int countries = 0;
    qint64 callbookEntries = 0;
};

/// Different callsigns of a log of that many contacts: 300,000 a million, at least one.
[[nodiscard]] qint64 generatedCalls(qint64 contacts) noexcept;

/// Makes an installation in `folder` (made if need be) whose log holds `contacts` contacts, oldest first,
/// over 25 years that end with 2023. A third of the callsigns are Russian; from about 2,000 contacts on every
/// country of the country table is there. Each contact's country is the one that the longest prefix gives.
/// The callbook holds up to 20,000 of the callsigns. The same `contacts` gives the same rows on every
/// machine.
///
/// The indexes are built after the rows, so they lie closer together than in a log that grew by itself.
/// Throws store::Error; in a folder whose log holds contacts already nothing is changed.
GeneratedLog generateLog(const QString &folder, qint64 contacts);

/// How many contacts generateLog() has put into a folder; nothing for any other folder. Where it gives a
/// number nobody's log is in the folder, so a benchmark may write there.
[[nodiscard]] std::optional<qint64> generatedContacts(const QString &folder);

} // namespace bench
