#pragma once

#include "foreign/countryfile.h"
#include "reference/countryrows.h"
#include "store/library.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

// Renewing the country table from the radio community's country file: first a plan that can be looked at,
// then all of it or nothing. What decides:
//
//  * Rows of the operator (own = "1") are never touched, and nothing is added beside them. Where several rows
//    have one key, the first stored is the one that counts; the others stay, and then the first is not
//    removed.
//  * Countries are matched as in CountryMatch. Names in our table stay: the log refers to them. A row whose
//    key is another country's now takes that country's principal prefix and name.
//  * Continent and zones are the file's, those that a key carries before those of its country.
//  * The position of a row stays, because ours are finer in large countries, unless it has none, the file
//    gives the very key a position, or the row changes its country. A new row takes the position that its key
//    carries, else that of the longest shorter key of its country in our table, else the country's in the
//    file. What differs in form only ("41,9" and "41,90") is no change.
//  * Keys match the beginnings of callsigns. A whole callsign of the file becomes a row only where no other
//    callsign can begin with it: it has a "/" or at least three letters behind its last digit. Countries of
//    which the file has no prefix at all are known by whole callsigns alone; there all are taken.
//  * Of a key that the file gives to several countries, a whole callsign counts before a prefix, then the
//    first.
//  * A row goes if its key is not in the file, its country is (with at least one prefix, and Russia with both
//    parts), and the file contradicts it: the longest key of the file that it begins with says something
//    else, or none is there. It stays if the file has it as a whole callsign of the same country that was
//    left out. So a file of a few countries takes away nothing of the others.
//  * Rows without a key or a country, or with a key that no callsign begins with, stay.

namespace reference {

enum class CountryChangeKind { Add, Change, Remove };

/// A row that the update would write.
struct CountryChange {
    CountryChangeKind kind = CountryChangeKind::Add;
    qint64 key = 0;    ///< of the row in the table; 0 for a new one
    CountryRow before; ///< empty for a new one
    CountryRow after;  ///< empty for one to be removed
    QString answer;    ///< for one to be removed: what the file says of its key, in Russian

    [[nodiscard]] const QString &prf() const { return row().prf; }
    /// Name of the country that the row belongs to afterwards, or did if it goes.
    [[nodiscard]] const QString &country() const { return row().strana; }
    /// "Новая", "Изменена", "Удаляется": of a row (строка).
    [[nodiscard]] QString kindText() const;
    /// The row's contents if new; what changes, old → new; why it goes. Short, Russian.
    [[nodiscard]] QString what() const;

private:
    [[nodiscard]] const CountryRow &row() const { return kind == CountryChangeKind::Remove ? before : after; }
};

/// What an update would do. A value of its own: it keeps neither the file nor the table.
struct CountryPlan {
    /// New rows, then changed ones, then those that go; each by prf.
    QList<CountryChange> changes;
    int added = 0;
    int changed = 0;
    int removed = 0;
    int unanswered = 0;       ///< of those removed: callsigns that the file says nothing of
    int same = 0;             ///< rows whose key the file has and that already say what it says
    int kept = 0;             ///< rows that the file does not have and that stay
    int own = 0;              ///< rows of the operator
    int fileCountries = 0;    ///< of the file, without the starred ones
    int fileKeys = 0;         ///< of the file, each once, without those left out
    int leftOutCalls = 0;     ///< whole callsigns that other callsigns could begin with
    QStringList newCountries; ///< names
    QStringList remarks;      ///< what the operator should know of: Russian sentences
    QByteArray tableState;    ///< CountryRows::state() that this was made from

    /// Nothing would be written.
    [[nodiscard]] bool isEmpty() const noexcept { return changes.isEmpty(); }
    /// The counts in Russian: one or several lines.
    [[nodiscard]] QString summary() const;
};

/// Compares the file with the country table. Writes nothing. Throws store::Error.
[[nodiscard]] CountryPlan planCountryUpdate(store::Library &databases, const foreign::CountryFile &file);
/// The same from the file itself, to be applied: where it cannot be read, of the kind Unreadable; where the
/// table cannot be written, ReadOnly.
[[nodiscard]] CountryPlan planCountryUpdate(store::Library &databases, const QString &path);

/// Writes the plan in one transaction, after a verified copy of the country database. Gives the path of the
/// copy; empty where the plan is empty and nothing has been done. Throws store::Error and then the table is
/// as it was: of kind Outdated where the table is not what the plan was made from, ReadOnly where the file
/// cannot be written. `progress` is of the copying, which takes most of the time.
QString applyCountryPlan(store::Library &databases, const CountryPlan &plan,
                         const store::Progress &progress = {});

} // namespace reference
