#include "awards/sources.h"

#include "awards/sql.h"
#include "store/opening.h"

namespace awards {

Sources::Sources(store::Library &databases)
    : m_databases(databases), Countries(QStringLiteral("Countries"), databases),
      Regions(QStringLiteral("Regions"), databases), Awards(QStringLiteral("Awards"), databases),
      Rules(QStringLiteral("Rules"), databases), Writer(QStringLiteral("Writer"), databases),
      Deleting(QStringLiteral("Deleting"), databases), Region(QStringLiteral("Region"), databases),
      Prefixes(QStringLiteral("Prefixes"), databases), RusPrefixes(QStringLiteral("RusPrefixes"), databases),
      PrefixCountry(QStringLiteral("PrefixCountry"), databases),
      PrefixRegion(QStringLiteral("PrefixRegion"), databases), Calls(QStringLiteral("Calls"), databases),
      Station(QStringLiteral("Station"), databases), Callbook(QStringLiteral("Callbook"), databases),
      Lookup(QStringLiteral("Lookup"), databases), Blank(QStringLiteral("Blank"), databases)
{}

QList<store::Error> Sources::open()
{
    m_logPath = m_databases.path(u"\\dbiaru.mdb");
    const QString awardPath = m_databases.path(u"\\dbdiplom.mdb");
    const QString regionPath = m_databases.path(u"\\dbrusdx.mdb");
    const QString countryPath = m_databases.path(u"\\dbdxcc1.mdb");
    for (store::DataSource *source : {&Countries, &Awards, &Rules, &Writer, &Deleting})
        source->setDatabaseName(awardPath);
    for (store::DataSource *source : {&Regions, &Region, &RusPrefixes, &PrefixRegion})
        source->setDatabaseName(regionPath);
    for (store::DataSource *source : {&Prefixes, &PrefixCountry})
        source->setDatabaseName(countryPath);
    for (store::DataSource *source : {&Calls, &Station, &Lookup, &Blank})
        source->setDatabaseName(m_logPath);
    Callbook.setDatabaseName(m_databases.path(u"\\dbcalbuk.mdb"));
    Lookup.setConnect(QStringLiteral("Access 2000;"));

    Countries.setRecordSource(sql::countries());
    Regions.setRecordSource(sql::regions());
    Writer.setRecordSource(sql::awardTable());
    // Nothing is chosen yet.
    Awards.setRecordSource(sql::awardsOfCountry({}));
    Rules.setRecordSource(sql::rules({}, {}));
    Deleting.setRecordSource(sql::awardToDelete({}));
    Region.setRecordSource(sql::region({}));

    Prefixes.setRecordSource(sql::countryPrefixes());
    RusPrefixes.setRecordSource(sql::regionPrefixes());
    PrefixCountry.setRecordSource(sql::countryTable());
    PrefixRegion.setRecordSource(sql::regionTable());
    for (store::DataSource *source : {&Calls, &Station, &Lookup})
        source->setRecordSource(sql::logTable());
    Callbook.setRecordSource(sql::callbookTable());
    Blank.setRecordSource(sql::blank());

    for (store::DataSource *source :
         {&Rules, &Writer, &Deleting, &Region, &PrefixCountry, &PrefixRegion, &Callbook, &Lookup})
        source->setFirstPage(1); // nothing is bound to them that shows more
    return store::refreshEach({&Countries, &Regions, &Awards, &Rules, &Writer, &Deleting, &Region, &Prefixes,
                               &RusPrefixes, &PrefixCountry, &PrefixRegion, &Calls, &Station, &Callbook,
                               &Lookup, &Blank});
}

} // namespace awards
