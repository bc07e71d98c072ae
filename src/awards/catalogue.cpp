#include "awards/catalogue.h"

#include "awards/sql.h"
#include "store/opening.h"

namespace awards {

namespace {

const QString kCountry = QStringLiteral("strana");
const QString kName = QStringLiteral("diplom");
const QString kRegion = QStringLiteral("pref");
const QString kRules = QStringLiteral("diptext");

} // namespace

bool isRussia(QStringView country)
{
    return country == QStringView(kRussia);
}

void Catalogue::setAwards(const store::SqlText &awards)
{
    try {
        store::requery(m_sources.Awards, awards, sql::awardsOfCountry({}));
    } catch (const store::Error &) {
        showNoRules(); // those of an award that is not listed any more could still be typed into
        throw;
    }
}

void Catalogue::showNoRules()
{
    store::requery(m_sources.Rules, sql::rules({}, {}));
}

void Catalogue::listAwards(const QString &country, const QString &region)
{
    setAwards(isRussia(country) ? sql::awardsOfRegion(country, region) : sql::awardsOfCountry(country));
    showRules({}, country);
}

void Catalogue::chooseRegion(const QString &country, const QString &region)
{
    try {
        store::requery(m_sources.Region, sql::region(region), sql::region({}));
    } catch (const store::Error &) {
        if (isRussia(country)) { // another region's awards are not this one's
            setAwards(sql::awardsOfCountry({}));
            showNoRules();
        }
        throw;
    }
    if (isRussia(country))
        setAwards(sql::awardsOfRegion(country, region));
    else
        m_sources.Awards.refresh();
    showRules({}, country);
}

QString Catalogue::regionName()
{
    return m_sources.Region.field(QStringLiteral("gorod"));
}

void Catalogue::showRules(const QString &award, const QString &country)
{
    store::requery(m_sources.Rules, sql::rules(award, country), sql::rules({}, {}));
}

void Catalogue::add(const NewAward &award, const QString &region)
{
    store::DataSource &row = m_sources.Writer;
    row.addNew();
    try {
        row.setField(kCountry, award.country);
        row.setField(kName, award.name);
        row.setField(kRules, award.rules);
        if (isRussia(award.country))
            row.setField(kRegion, region);
        row.update();
    } catch (const store::Error &) {
        row.cancelUpdate();
        throw;
    }
}

void Catalogue::findForDeletion(const QString &award)
{
    store::requery(m_sources.Deleting, sql::awardToDelete(award), sql::awardToDelete({}));
}

std::optional<QString> Catalogue::deleteFound()
{
    store::DataSource &found = m_sources.Deleting;
    if (found.isEmpty())
        return std::nullopt;
    found.moveFirst();
    const QString country = found.field(kCountry);
    found.removeRow(0);
    return country;
}

void Catalogue::listAgain()
{
    m_sources.Countries.refresh();
    m_sources.Awards.refresh();
}

} // namespace awards
