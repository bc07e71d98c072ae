#pragma once

#include "foreign/countryfile.h"
#include "reference/countryrows.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace reference {

/// Which country of our table each country of a file is. The two name and cut up the world a little
/// differently; the log's country names and the awards hang on ours, which therefore stay.
///
/// A country of the file is, in this order:
///  1. the country whose principal prefix is its normalised primary prefix (without "*" and "/", upper case,
///     five characters);
///  2. Russia, if it is its Asiatic part: this program knows one Russia, "UA";
///  3. the country that has most of its keys in our table (not counting the operator's own rows; a whole
///     callsign is found by the longest row that it begins with), where that is more than half of those found
///     in countries that are no other one's by the first rule. Of several that want the same country the one
///     with the most keys gets it;
///  4. a new country under its normalised primary prefix, made different where that is taken.
/// A starred one is no country. Its keys belong to the country that our table has for its normalised prefix
/// as a key, or else for most of its keys, or else to the file's country with the longest prefix that its own
/// begins with; where there is none of these it is left out.
class CountryMatch {
public:
    struct Country {
        QString pref;
        QString name;
        bool isNew = false;     ///< not in our table
        bool listed = false;    ///< the file has it as a country, and Russia with both parts
        bool hasPrefix = false; ///< the file has a prefix of it and not whole callsigns alone
    };

    /// Both outlive the match.
    CountryMatch(const CountryRows &table, const foreign::CountryFile &file);

    /// Null for an entity that is left out. `entity`: its place in the file.
    [[nodiscard]] const Country *of(qsizetype entity) const;
    [[nodiscard]] const QList<Country> &countries() const noexcept { return m_countries; }
    /// The country by its folded principal prefix; null for one that the file has nothing of.
    [[nodiscard]] const Country *byPref(const QString &pref) const;
    /// What the operator should know of, in Russian.
    [[nodiscard]] const QStringList &remarks() const noexcept { return m_remarks; }

private:
    struct Majority {
        QString pref; ///< folded; empty where none has more than half
        int keys = 0;
    };
    void matchByPrefix();
    void matchByKeys();
    void makeNewCountries();
    void matchStarred();
    void markListed();
    [[nodiscard]] QString homeOf(const foreign::CountryEntity &entity) const;
    [[nodiscard]] Majority majority(const foreign::CountryEntity &entity) const;
    [[nodiscard]] Majority unclaimedMajority(const foreign::CountryEntity &entity) const;
    [[nodiscard]] QString countryOfCall(const QString &call) const;
    [[nodiscard]] int starredHome(const foreign::CountryEntity &entity);
    [[nodiscard]] int countryFor(const QString &pref, const foreign::CountryEntity &entity);
    void claim(qsizetype number, const QString &pref);
    [[nodiscard]] bool isTaken(const QString &pref) const;
    [[nodiscard]] QString freePref(const QString &wanted) const;
    [[nodiscard]] QString newName(const QString &pref, const foreign::CountryEntity &entity);
    [[nodiscard]] bool isUsedName(const QString &name) const;

    const CountryRows &m_table;
    const foreign::CountryFile &m_file;
    QList<Country> m_countries;
    QHash<QString, int> m_byPref; ///< folded
    QList<int> m_ofEntity;        ///< into m_countries; -1 for none
    QSet<QString> m_claimed;      ///< folded principal prefixes of the file's own countries
    QSet<QString> m_newNames;
    QStringList m_remarks;
};

} // namespace reference
