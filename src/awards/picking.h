#pragma once

#include "awards/sources.h"

#include <QStringList>

#include <functional>

namespace awards {

/// Questions while a contact is carried into the blank.
struct BlankQuestions {
    std::function<QString()> time;      ///< the contact has none; whatever is answered is taken
    std::function<bool()> contestIs599; ///< the report is a contest's: 599 (true) or 59
};

enum class EntryKind { Call, Prefix };

/// What came of the entries of the selection list.
struct FillResult {
    int rows = 0;         ///< added to the blank
    QStringList notFound; ///< entries without a contact: their rows are empty
};

/// Choosing contacts of the log for an award. A value with an apostrophe breaks its statement. The functions
/// throw store::Error.
class Picking {
public:
    explicit Picking(Sources &sources) : m_sources(sources) {}

    /// Lists the callsigns worked in the prefix's country. Gives the country's name.
    QString chooseCountryPrefix(const QString &prefix);
    /// Lists the Russian callsigns with the region's prefix and shows the region.
    void chooseRegionPrefix(const QString &prefix);
    /// Shows every contact with a station and what the callbook knows of it. True where the callbook knows
    /// its town.
    [[nodiscard]] bool chooseCall(const QString &call);

    /// Adds the contact in a row of the station's grid to the blank, with its country only where wanted. A
    /// time that is asked for goes into the log as well. A report of one character is left away. On failure
    /// the blank is as it was.
    void carry(int row, bool withCountry, const BlankQuestions &questions);

    /// Adds one row for each entry, the first contact found for it, and one row more for the empty entry
    /// behind the last: blanks have always been filled so. All rows or none. `confirmed`: only contacts with
    /// a received card. `at` is told the index of each entry before it is looked up.
    [[nodiscard]] FillResult fill(const QStringList &entries, EntryKind kind, bool confirmed,
                                  const std::function<void(int)> &at);

    void emptyBlank();

private:
    void fillRow(int row, bool withCountry, const BlankQuestions &questions);
    void lookUp(const QString &entry, EntryKind kind, bool confirmed);
    [[nodiscard]] QString cell(int row, const char *field);

    Sources &m_sources;
};

} // namespace awards
