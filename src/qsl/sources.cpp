#include "qsl/sources.h"

#include "qsl/sql.h"
#include "store/opening.h"

namespace qsl {

namespace {

QString named(int number)
{
    return QStringLiteral("Data%1").arg(number);
}

} // namespace

Sources::Sources(store::Library &databases)
    : m_databases(databases), Data1(named(1), databases), Data2(named(2), databases),
      Data3(named(3), databases), Data4(named(4), databases), Data5(named(5), databases),
      Data6(named(6), databases), Data7(named(7), databases), Data8(named(8), databases),
      Data9(named(9), databases), Data10(named(10), databases), Data11(named(11), databases),
      Data12(named(12), databases), Data13(named(13), databases), Data14(named(14), databases)
{}

QList<store::Error> Sources::open()
{
    m_logPath = m_databases.path(u"\\dbiaru.mdb");
    for (store::DataSource *source : {&Data1, &Data3, &Data4, &Data5, &Data6, &Data10, &Data12})
        source->setDatabaseName(m_logPath);
    for (store::DataSource *source : {&Data2, &Data7})
        source->setDatabaseName(m_databases.path(u"\\dbdxcc1.mdb"));
    for (store::DataSource *source : {&Data8, &Data9})
        source->setDatabaseName(m_databases.path(u"\\dbrusdx.mdb"));
    Data11.setDatabaseName(m_databases.path(u"\\dbcalbuk.mdb"));
    Data13.setDatabaseName(m_databases.path(u"\\dbcontest.mdb"));
    Data14.setDatabaseName(m_databases.path(u"\\dbhelp.mdb"));

    Data1.setRecordSource(sql::contactsAtStart());
    Data2.setRecordSource(sql::countryTable());
    Data3.setRecordSource(sql::blank());
    for (store::DataSource *source : {&Data4, &Data5, &Data10, &Data12})
        source->setRecordSource(sql::logTable());
    Data6.setRecordSource(sql::allCalls());
    Data7.setRecordSource(sql::countryPrefixes());
    Data8.setRecordSource(sql::regionPrefixes());
    Data9.setRecordSource(sql::regionTable());
    Data11.setRecordSource(sql::callbookTable());
    Data13.setRecordSource(sql::ownStationTable());
    Data14.setRecordSource(sql::titleTable());

    for (store::DataSource *source : {&Data2, &Data4, &Data5, &Data9, &Data10, &Data11, &Data12})
        source->setFirstPage(1); // nothing is bound to them that shows more
    return store::refreshEach({&Data1, &Data2, &Data3, &Data4, &Data5, &Data6, &Data7, &Data8, &Data9,
                               &Data10, &Data11, &Data12, &Data13, &Data14});
}

} // namespace qsl
