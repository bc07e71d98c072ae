#include "bench/bureauwork.h"

#include "bench/bare.h"
#include "qsl/sql.h"

#include <algorithm>
#include <random>

namespace bench {

namespace {

constexpr Budget kKeyBudget{3, 16};
constexpr Budget kCountsBudget{300, {}};
constexpr Budget kListBudget{50, 150};
constexpr int kLongestTyped = 14;
const QStringList kBands = {QStringLiteral("1,8"), QStringLiteral("3,5"), QStringLiteral("7"),
                            QStringLiteral("10"),  QStringLiteral("14"),  QStringLiteral("18"),
                            QStringLiteral("21"),  QStringLiteral("24"),  QStringLiteral("28")};
const QString kRussia = QStringLiteral("RUSSIAN");

} // namespace

BureauWork::BureauWork(const QString &folder, int samples)
    : m_library({folder, false}, folder), m_samples(samples), m_calls(QStringLiteral("Data2"), m_library),
      m_contacts(QStringLiteral("Data1"), m_library), m_country(QStringLiteral("Data6"), m_library),
      m_counter(QStringLiteral("Data4"), m_library)
{
    const QString log = m_library.path(u"\\dbiaru.mdb");
    for (store::DataSource *source : {&m_calls, &m_contacts, &m_counter})
        source->setDatabaseName(log);
    m_country.setDatabaseName(m_library.path(u"\\dbdxcc1.mdb"));

    // Read on a connection of its own: that of the sources is cold at its first statement.
    store::Library other({folder, false}, folder);
    store::Connection &rows = other.connection(log);
    const qint64 last =
        std::max<qint64>(1, rows.singleNumber(QStringLiteral("SELECT max(rowid) FROM TBLLOG1")));
    std::mt19937_64 engine(1); // NOLINT: the same callsigns at each run
    for (int i = 0; i < m_samples; ++i)
        m_typed.append(rows.single(QStringLiteral("SELECT ccall FROM TBLLOG1 WHERE rowid=?"),
                                   {1 + static_cast<qint64>(engine() % static_cast<std::uint64_t>(last))})
                           .value_or(QStringLiteral("UA3ABC")));
    const auto text = [&rows](const char *sql) {
        return rows.single(QLatin1String(sql)).value_or(QString());
    };
    m_rareCountry = text("SELECT CONTR FROM TBLLOG1 GROUP BY CONTR ORDER BY count(*),CONTR LIMIT 1");
    m_rareBand = text("SELECT bband FROM TBLLOG1 GROUP BY bband ORDER BY count(*),bband LIMIT 1");
    m_commonRegion = text("SELECT substr(ccall,3,2) FROM TBLLOG1 WHERE CONTR='RUSSIAN' GROUP BY 1 ORDER BY "
                          "count(*) DESC LIMIT 1");
    m_rareRegion = text("SELECT substr(ccall,3,2) FROM TBLLOG1 WHERE CONTR='RUSSIAN' GROUP BY 1 ORDER BY "
                        "count(*) LIMIT 1");
}

/// Until the first page of a list or a grid stands there with its texts.
double BureauWork::shown(store::DataSource &source, const store::SqlText &text)
{
    constexpr int kRowsOfAWindow = 24;
    const QElapsedTimer timer = started();
    source.setRecordSource(text);
    source.refresh();
    const QStringList fields = source.fieldNames();
    for (int row = 0; row < std::min(source.knownRows(), kRowsOfAWindow); ++row)
        for (const QString &field : fields)
            (void)source.text(row, field);
    return milliseconds(timer);
}

/// One count as the window takes it.
double BureauWork::counted(store::DataSource &source, const store::SqlText &text, qint64 &count)
{
    const QElapsedTimer timer = started();
    source.setRecordSource(text);
    source.refresh();
    if (!source.isEmpty()) {
        source.moveLast();
        count += source.recordCount();
    }
    return milliseconds(timer);
}

void BureauWork::measureOpening(QTextStream &out)
{
    using namespace qsl;
    store::DataSource regions(QStringLiteral("Data8"), m_library);
    regions.setDatabaseName(m_library.path(u"\\dbrusdx.mdb"));
    Samples first;
    Samples later;
    for (int i = 0; i < m_samples; ++i) {
        const double took = shown(m_contacts, sql::contactsAtStart()) + shown(m_counter, sql::blank()) +
                            shown(m_calls, sql::allCalls()) + shown(m_country, sql::countryPrefixes()) +
                            shown(regions, sql::regionPrefixes());
        (i == 0 ? first : later).add(took);
    }
    printFigure(out, QStringLiteral("opening the sources, the first time"), first, kListBudget);
    printFigure(out, QStringLiteral("opening the sources, later"), later, kListBudget);
}

void BureauWork::countCountry(QTextStream &out, const QString &country)
{
    Samples samples;
    qint64 count = 0;
    for (int i = 0; i < std::max(1, m_samples / 20); ++i) {
        double took = 0;
        count = 0;
        for (const QString &band : kBands) {
            took += counted(m_counter, qsl::sql::countrySent(country, band), count);
            took += counted(m_counter, qsl::sql::countryReceived(country, band), count);
            took += counted(m_counter, qsl::sql::countryWorked(country, band), count);
        }
        samples.add(took);
    }
    printFigure(out, QStringLiteral("27 counts of \"%1\", %2 together").arg(country).arg(count), samples,
                kCountsBudget);
}

void BureauWork::countRegion(QTextStream &out, const QString &region)
{
    Samples samples;
    qint64 count = 0;
    for (int i = 0; i < std::max(1, m_samples / 20); ++i) {
        double took = 0;
        count = 0;
        for (const QString &band : kBands) {
            took += counted(m_counter, qsl::sql::regionSent(band, region), count);
            took += counted(m_counter, qsl::sql::regionReceived(band, region), count);
            took += counted(m_counter, qsl::sql::regionWorked(band, region), count);
        }
        samples.add(took);
    }
    printFigure(out, QStringLiteral("27 counts of region \"%1\", %2 together").arg(region).arg(count),
                samples, kCountsBudget);
}

void BureauWork::measureCounts(QTextStream &out)
{
    using namespace qsl;
    store::DataSource whole(QStringLiteral("Data12"), m_library);
    whole.setDatabaseName(m_counter.databaseName());
    Samples totals;
    Samples calls;
    qint64 count = 0;
    for (int i = 0; i < std::max(1, m_samples / 20); ++i) {
        double took = 0;
        count = 0;
        for (const QString &band : kBands) {
            took += counted(m_counter, sql::countriesSent(band), count);
            took += counted(m_counter, sql::countriesReceived(band), count);
            took += counted(m_counter, sql::countriesWorked(band), count);
        }
        took += counted(m_counter, sql::allCountriesSent(), count);
        took += counted(m_counter, sql::allCountriesReceived(), count);
        took += counted(m_counter, sql::allCountriesWorked(), count);
        const double ofCalls =
            counted(whole, sql::confirmedCalls(), count) + counted(whole, sql::differentCalls(), count);
        took += ofCalls + counted(whole, sql::allContacts(), count);
        calls.add(ofCalls);
        totals.add(took);
    }
    printFigure(out, QStringLiteral("the totals, 33 counts, %1 together").arg(count), totals, kCountsBudget);
    printFigure(out, QStringLiteral("  of it callsigns, confirmed and all"), calls);
    for (const QString &country :
         {kRussia, QStringLiteral("USA"), m_rareCountry, QStringLiteral("NO SUCH"), QStringLiteral("Россия")})
        countCountry(out, country);
    for (const QString &region : {m_commonRegion, m_rareRegion, QStringLiteral("##"), QString()})
        countRegion(out, region);
}

double BureauWork::keyRelease(const QString &beginning, const QString &key)
{
    using namespace qsl;
    double took = shown(m_calls, sql::callsFrom(beginning, key));
    took += shown(m_contacts, sql::contactsOfFoundCall(m_calls.field(QStringLiteral("ccall")), key));
    for (qsizetype k = 1; k <= beginning.size(); ++k)
        took += shown(m_country, sql::countryOfPrincipalPrefix(beginning.left(k)));
    return took;
}

void BureauWork::measureSearch(QTextStream &out, const QString &name, const QString &key)
{
    Samples letters;
    Samples emptied;
    for (const QString &call : std::as_const(m_typed)) {
        for (qsizetype size = 1; size <= call.size(); ++size)
            letters.add(keyRelease(call.left(size), key));
        emptied.add(keyRelease({}, key));
    }
    printFigure(out, QStringLiteral("key release in the search, ") + name, letters, kKeyBudget);
    printFigure(out, QStringLiteral("  of the empty field"), emptied, kKeyBudget);
    Samples longest;
    for (int i = 0; i < m_samples; ++i)
        longest.add(keyRelease(QStringLiteral("UA3ABC/MM/QRPP").left(kLongestTyped), key));
    printFigure(out, QStringLiteral("  of a field of 14 characters"), longest, kKeyBudget);
}

void BureauWork::list(QTextStream &out, const QString &name, const store::SqlText &text)
{
    Samples samples;
    for (int i = 0; i < std::max(3, m_samples / 10); ++i)
        samples.add(shown(m_calls, text));
    printFigure(out, QStringLiteral("  ") + name, samples, kListBudget);
    out.flush();
}

void BureauWork::measureLists(QTextStream &out, const QString &name, const QString &key)
{
    using namespace qsl;
    out << "lists, " << name << '\n';
    const QString common = QStringLiteral("14");
    const QString absent = QStringLiteral("99");
    for (const QString &band : {common, m_rareBand, absent})
        list(out, QStringLiteral("callsigns on band ") + band, sql::callsOnBand(band, key));
    for (const QString &region : {m_commonRegion, QStringLiteral("##")}) {
        list(out, QStringLiteral("callsigns of region ") + region, sql::callsOfRegion(region, key));
        list(out, QStringLiteral("callsigns of region %1 on band").arg(region),
             sql::callsOfRegionOnBand(region, m_rareBand, key));
    }
    for (const QString &country : {kRussia, QStringLiteral("USA"), m_rareCountry, QString()}) {
        for (const QString &band : {common, m_rareBand})
            list(out, QStringLiteral("callsigns of \"%1\" on band %2").arg(country, band),
                 sql::callsOfCountryOnBand(band, country, key));
        list(out, QStringLiteral("contacts of \"%1\"").arg(country), sql::contactsOfCountry(country, key));
    }
}

void BureauWork::measureOthers(QTextStream &out)
{
    using namespace qsl;
    out << "lists without a key\n";
    for (const QString &country : {kRussia, QStringLiteral("USA"), m_rareCountry, QString()})
        list(out, QStringLiteral("callsigns of \"%1\"").arg(country), sql::callsOfCountry(country));
    list(out, QStringLiteral("callsigns with a card"), sql::callsWithCard());
    list(out, QStringLiteral("all callsigns"), sql::allCallsSorted());
    list(out, QStringLiteral("contacts at the start"), sql::contactsAtStart());
    Samples scrolled;
    for (int i = 0; i < std::max(3, m_samples / 10); ++i) {
        (void)shown(m_contacts, sql::contactsAtStart());
        const QElapsedTimer timer = started();
        m_contacts.fetchMore();
        scrolled.add(milliseconds(timer));
    }
    printFigure(out, QStringLiteral("  and behind their first page"), scrolled);
    Samples marks;
    for (const QString &call : std::as_const(m_typed)) {
        double took = shown(m_contacts, sql::contactsOfCallByBand(call));
        took += shown(m_contacts, sql::contactsOfCall(call));
        const QString band = m_contacts.text(0, QStringLiteral("bband"));
        const QString date = m_contacts.text(0, QStringLiteral("ddate"));
        marks.add(took + shown(m_contacts, sql::contactToMark(band, call, date)));
    }
    printFigure(out, QStringLiteral("a callsign's contacts, and the one to mark"), marks, kKeyBudget);
}

} // namespace bench
