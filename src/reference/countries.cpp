#include "reference/countries.h"

#include "reference/sql.h"
#include "store/opening.h"
#include "store/schema.h"

namespace reference {

namespace {

constexpr qsizetype kNameLength = 14;

} // namespace

QString countryName(const QString &typed)
{
    return typed.left(kNameLength);
}

bool canBeAdded(const CountryEntry &entry) noexcept
{
    return !entry.prf.isEmpty() && !entry.PREF.isEmpty();
}

Countries::Countries(store::Library &databases)
    : Data1(QStringLiteral("Data1"), databases), Data2(QStringLiteral("Data2"), databases),
      m_databases(databases)
{}

QList<store::Error> Countries::open()
{
    const QString path = m_databases.path(u"\\dbdxcc1.mdb");
    Data1.setDatabaseName(path);
    Data2.setDatabaseName(path);
    Data1.setRecordSource(sql::allCountries());
    Data2.setRecordSource(sql::countryTable());
    Data2.setFirstPage(1);
    return store::refreshEach({&Data1, &Data2});
}

void Countries::searchPrefix(const QString &text)
{
    store::requery(Data1, sql::countriesByPrefix(text));
}

void Countries::searchName(const QString &text)
{
    store::requery(Data1, sql::countriesByName(text));
}

void Countries::add(const CountryEntry &entry)
{
    Data2.addNew();
    Data2.setField(QStringLiteral("prf"), entry.prf);
    Data2.setField(QStringLiteral("strana"), countryName(entry.strana));
    Data2.setField(QStringLiteral("kont"), entry.kont);
    Data2.setField(QStringLiteral("cq"), entry.cq);
    Data2.setField(QStringLiteral("iaru"), entry.iaru);
    Data2.setField(QStringLiteral("PREF"), entry.PREF);
    Data2.setField(store::ownRowColumn(), QStringLiteral("1"));
    try {
        Data2.refresh();
    } catch (const store::Error &) {
        Data2.cancelUpdate();
        throw;
    }
}

} // namespace reference
