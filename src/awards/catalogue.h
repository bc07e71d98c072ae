#pragma once

#include "awards/sources.h"

namespace awards {

/// The country whose awards are listed by region.
inline constexpr auto kRussia = u"Россия";

[[nodiscard]] bool isRussia(QStringView country);

/// An award as it is typed in.
struct NewAward {
    QString country;
    QString name;
    QString rules;
};

/// The catalogue of awards: which awards are listed, whose rules are shown, adding and deleting. A country,
/// region or award whose name holds an apostrophe breaks its statement: that is an error, and the list is
/// empty until something else is chosen. The functions throw store::Error.
class Catalogue {
public:
    explicit Catalogue(Sources &sources) : m_sources(sources) {}

    /// Lists the awards of a country, of Russia those of the region, and shows no rules: none of the listed
    /// awards is chosen.
    void listAwards(const QString &country, const QString &region);
    /// Finds the region, whose name is the heading of its awards, and lists anew. Another country than Russia
    /// keeps its list.
    void chooseRegion(const QString &country, const QString &region);
    /// Name of the chosen region; empty where none was found.
    [[nodiscard]] QString regionName();

    void showRules(const QString &award, const QString &country);

    /// Stores a new award; a Russian one under the region. On failure nothing is stored.
    void add(const NewAward &award, const QString &region);

    /// Finds the awards of this name, whatever their country.
    void findForDeletion(const QString &award);
    /// Deletes the one of them that was stored first, and gives its country; nothing where there is none.
    std::optional<QString> deleteFound();
    /// The lists of countries and of awards, after a deletion.
    void listAgain();

private:
    void setAwards(const store::SqlText &awards);
    void showNoRules();

    Sources &m_sources;
};

} // namespace awards
