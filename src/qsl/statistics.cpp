#include "qsl/statistics.h"

#include "qsl/sql.h"

namespace qsl {

const std::array<const char16_t *, kBands> kBandTexts = {u"1,8", u"3,5", u"7",  u"10", u"14",
                                                         u"18",  u"21",  u"24", u"28"};

namespace {

QString bandText(int band)
{
    return QString::fromUtf16(kBandTexts[band]);
}

int rowsOf(store::DataSource &source, const store::SqlText &rows)
{
    source.setRecordSource(rows);
    try {
        source.refresh();
    } catch (const store::Error &) {
        source.setRecordSource(sql::logTable()); // the next count begins with a refresh, which must not fail
        throw;
    }
    if (source.isEmpty())
        return 0;
    source.moveLast(); // the full number of rows is known only there
    return source.recordCount();
}

} // namespace

Selection Selector::selection() const noexcept
{
    switch (m_step) {
    case 1:
        return Selection::Country;
    case 2:
        return Selection::Region;
    default:
        return Selection::All;
    }
}

QString Selector::caption() const
{
    switch (selection()) {
    case Selection::Country:
        return QStringLiteral("DXCC");
    case Selection::Region:
        return QStringLiteral("Россия");
    case Selection::All:
        break;
    }
    return QStringLiteral("ALL");
}

QString Selector::heading() const
{
    return selection() == Selection::Region ? QStringLiteral("Россия") : QStringLiteral("DXCC");
}

void Statistics::clearCounts(Counts &counts)
{
    constexpr int kCleared = 6;
    for (int band = 0; band < kCleared; ++band)
        for (Counts::Column *column : {&counts.sent, &counts.received, &counts.worked})
            (*column)[band].clear();
}

void Statistics::clearAllBands(Counts &counts)
{
    for (Counts::Column *column : {&counts.sent, &counts.received, &counts.worked})
        column->fill({});
}

QString Statistics::countRows(const store::SqlText &rows)
{
    return QString::number(rowsOf(m_sources.Data4, rows));
}

void Statistics::countInto(const store::SqlText &rows, QString &box)
{
    if (const int count = rowsOf(m_sources.Data12, rows); count > 0)
        box = QString::number(count);
}

void Statistics::countCountry(const QString &country, Counts &counts)
{
    for (int band = 0; band < kBands; ++band) {
        counts.sent[band] = countRows(sql::countrySent(country, bandText(band)));
        counts.received[band] = countRows(sql::countryReceived(country, bandText(band)));
        counts.worked[band] = countRows(sql::countryWorked(country, bandText(band)));
    }
}

void Statistics::countRegion(const QString &region, Counts &counts)
{
    for (int band = 0; band < kBands; ++band) {
        counts.sent[band] = countRows(sql::regionSent(bandText(band), region));
        counts.received[band] = countRows(sql::regionReceived(bandText(band), region));
        counts.worked[band] = countRows(sql::regionWorked(bandText(band), region));
    }
}

void Statistics::countCountries(Counts &counts)
{
    for (int band = 0; band < kBands; ++band) {
        counts.sent[band] = countRows(sql::countriesSent(bandText(band)));
        counts.received[band] = countRows(sql::countriesReceived(bandText(band)));
        counts.worked[band] = countRows(sql::countriesWorked(bandText(band)));
    }
    counts.totals[0] = countRows(sql::allCountriesSent());
    counts.totals[1] = countRows(sql::allCountriesReceived());
    counts.totals[2] = countRows(sql::allCountriesWorked());
}

void Statistics::countLog(Counts &counts)
{
    countInto(sql::confirmedCalls(), counts.confirmedCalls);
    countInto(sql::allContacts(), counts.contacts);
    countInto(sql::differentCalls(), counts.calls);
}

QString Statistics::countryOfCall(const QString &call, const QString &before)
{
    QString country = before;
    for (qsizetype length = 1; length <= call.size(); ++length) {
        m_sources.Data2.setRecordSource(sql::countryOfPrefix(QStringView(call).left(length)));
        m_sources.Data2.refresh();
        if (const QString name = m_sources.Data2.field(QStringLiteral("strana")); !name.isEmpty())
            country = name;
    }
    return country;
}

QString Statistics::countryOfPrincipalPrefix(const QString &prefix)
{
    m_sources.Data2.setRecordSource(sql::countryOfPrincipalPrefix(prefix));
    m_sources.Data2.refresh();
    return m_sources.Data2.field(QStringLiteral("strana"));
}

} // namespace qsl
