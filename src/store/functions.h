#pragma once

#include <QString>
#include <QStringView>

namespace store {

class Connection;

/// Functions and the collation that translated statements call. They live in the connection only; nothing
/// that is stored in a file names them, so any SQLite tool can open and write the files.
///
///   jet_like(pattern, text)  the pattern match with * ? # and [...], without regard to case, Cyrillic
///   included ru_fold(text)            base::foldCase jet_date(text)           the date as "yyyy-mm-dd", null
///   for a text that is none collation RUSSIAN        base::compareRussian
void registerFunctions(Connection &connection);

/// `text` matches `pattern`: * any run of characters, ? any one, # any digit, [a-z] and [!a-z] one of (none
/// of) a set. Without regard to case, Cyrillic included. A "[" without its "]" stands for itself.
[[nodiscard]] bool matchesPattern(QStringView pattern, QStringView text);

/// Plain SQL that gives a stored date as "yyyy-mm-dd" and null for a text that is no date. It uses nothing
/// but the engine's own functions, so an index over it can stand in the file. Same reading as
/// base::parseLogDate.
[[nodiscard]] QString dateKeyExpression(const QString &column);

} // namespace store
