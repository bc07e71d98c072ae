#include "logentry/sources.h"

#include "logentry/sql.h"
#include "store/opening.h"

namespace logentry {

namespace {

QString named(int number)
{
    return QStringLiteral("Data%1").arg(number);
}

} // namespace

Sources::Sources(store::Library &library)
    : m_library(library), Data1(named(1), library), Data2(named(2), library), Data3(named(3), library),
      Data4(named(4), library), Data5(named(5), library), Data6(named(6), library), Data7(named(7), library),
      Data8(named(8), library), Data9(named(9), library), Data10(named(10), library),
      Data11(named(11), library), Data12(named(12), library), Data13(named(13), library),
      Data14(named(14), library), Data15(named(15), library), Data16(named(16), library),
      Data17(named(17), library), Data18(named(18), library), Data19(named(19), library),
      Data20(named(20), library)
{}

QList<store::Error> Sources::open()
{
    m_mainLogPath = m_library.path(u"\\dbiaru.mdb");
    for (store::DataSource *source :
         {&Data1, &Data2, &Data4, &Data5, &Data6, &Data7, &Data13, &Data16, &Data19})
        source->setDatabaseName(m_mainLogPath);
    Data3.setDatabaseName(m_library.path(u"\\dbdxcc1.mdb"));
    for (store::DataSource *source : {&Data8, &Data10, &Data11, &Data17})
        source->setDatabaseName(m_library.path(u"\\dbname.mdb"));
    Data9.setDatabaseName(m_library.path(u"\\dbrusdx.mdb"));
    Data12.setDatabaseName(m_library.path(u"\\dbcalbuk.mdb"));
    for (store::DataSource *source : {&Data14, &Data20})
        source->setDatabaseName(m_library.path(u"\\dbcall.mdb"));
    Data15.setDatabaseName(m_library.path(u"\\dblog.mdb"));
    Data18.setDatabaseName(m_library.path(u"\\dbcontest.mdb"));
    for (store::DataSource *source : {&Data19, &Data20})
        source->setConnect(QStringLiteral("Access 2000;"));

    for (store::DataSource *source : {&Data1, &Data4, &Data5, &Data6, &Data7, &Data13, &Data15, &Data19})
        source->setRecordSource(sql::logTable());
    Data2.setRecordSource(sql::workedCallsUnsorted());
    Data3.setRecordSource(sql::countryTable());
    Data8.setRecordSource(sql::allTowns());
    Data9.setRecordSource(sql::regionTable());
    Data10.setRecordSource(sql::allNamesAtStart());
    Data11.setRecordSource(sql::nameTable());
    Data12.setRecordSource(sql::callbookTable());
    for (store::DataSource *source : {&Data14, &Data20})
        source->setRecordSource(sql::keyTable());
    Data16.setRecordSource(sql::workedCallsSorted());
    Data17.setRecordSource(sql::townTable());
    Data18.setRecordSource(sql::ownStationTable());

    for (store::DataSource *source : {&Data1, &Data2, &Data4, &Data6, &Data7, &Data13, &Data15, &Data19})
        source->setFirstPage(1); // nothing is bound to them that shows more

    QList<store::Error> errors = store::refreshEach(
        {&Data1,  &Data2,  &Data3,  &Data4,  &Data5,  &Data6,  &Data7,  &Data8,  &Data9,  &Data10,
         &Data11, &Data12, &Data13, &Data14, &Data15, &Data16, &Data17, &Data18, &Data19, &Data20});
    ensureOwnStation();
    return errors;
}

/// The own station's one row; without it nothing that the operator types there would be kept.
void Sources::ensureOwnStation()
{
    try {
        if (!Data18.isEmpty())
            return;
        Data18.addNew();
        Data18.refresh();
    } catch (const store::Error &) {
        Data18.cancelUpdate(); // a file that cannot be opened or written; it has been reported or will be at
                               // its use
    }
}

} // namespace logentry
