// The counts of the bureau against counts of the same rows by plain loops.
#include "qsl/statistics.h"
#include "support/installation.h"

#include <QSet>
#include <QTest>

#include <random>

using qsl::Counts;
using qsl::kBands;
using qsl::Selection;
using qsl::Statistics;
using testsupport::Installation;

namespace {

constexpr auto kLog = "dbiaru.mdb";

struct Contact {
    QString call;
    QString band;
    QString country;
    QString sent;
    QString received;
};

/// Texts of the boxes of a band: sent, received, worked.
QStringList boxes(const Counts &counts, int band)
{
    return {counts.sent[band], counts.received[band], counts.worked[band]};
}

QStringList texts(int sent, int received, int worked)
{
    return {QString::number(sent), QString::number(received), QString::number(worked)};
}

/// Numbers of sent, received and worked; of contacts, or of different keys.
class Tally {
public:
    void add(const Contact &contact, const QString &key)
    {
        m_worked.append(key);
        if (!contact.sent.isEmpty())
            m_sent.append(key);
        if (!contact.received.isEmpty())
            m_received.append(key);
    }
    [[nodiscard]] QStringList contacts() const
    {
        return texts(int(m_sent.size()), int(m_received.size()), int(m_worked.size()));
    }
    [[nodiscard]] QStringList different() const
    {
        return texts(unlike(m_sent), unlike(m_received), unlike(m_worked));
    }

private:
    static int unlike(const QStringList &keys)
    {
        QSet<QString> set;
        for (const QString &key : keys)
            set.insert(key.toUpper());
        return int(set.size());
    }
    QStringList m_sent;
    QStringList m_received;
    QStringList m_worked;
};

QString bandText(int band)
{
    return QString::fromUtf16(qsl::kBandTexts[band]);
}

struct Bureau {
    explicit Bureau(Installation &installation) : sources(installation.databases), statistics(sources)
    {
        if (!sources.open().isEmpty())
            qFatal("the files do not open");
    }
    qsl::Sources sources;
    Statistics statistics;
};

QList<Contact> randomLog(std::mt19937 &random, int size)
{
    const QStringList calls = {"UA3ABC", "ua3abc", "RA3AX",  "UA9SA", "R1ANC",    "UA",
                               "",       "DL1ABC", "dl1abc", "K1XX",  "EA8/UA3A", "UB3AAA"};
    const QStringList bands = {"1,8", "3,5", "7",   "10",  "14", "18", "21",
                               "24",  "28",  "144", "430", "",   "1.8"};
    const QStringList countries = {"RUSSIAN", "russian", "GERMANY", "USA", "\"", "", "CANARY", "O'LAND"};
    const QStringList marks = {"", "", "", " ", "05.03.2002", "+", QStringLiteral("да")};
    const auto any = [&](const QStringList &list) { return list[qsizetype(random() % size_t(list.size()))]; };
    QList<Contact> log;
    for (int i = 0; i < size; ++i)
        log.append({any(calls), any(bands), any(countries), any(marks), any(marks)});
    return log;
}

void insert(Installation &in, const QList<Contact> &log)
{
    store::Connection &file = in.databases.connection(in.file(QLatin1String(kLog)));
    store::Transaction transaction(file);
    for (const Contact &c : log)
        file.exec(QStringLiteral("INSERT INTO TBLLOG1(ccall,bband,CONTR,QSLO,QSLP) VALUES(?,?,?,?,?)"),
                  {c.call, c.band, c.country, c.sent, c.received});
    transaction.commit();
}

} // namespace

class BureauStatisticsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void selectorGoesRound()
    {
        qsl::Selector selector;
        QCOMPARE(selector.caption(), QStringLiteral("ALL"));
        QStringList steps;
        for (int i = 0; i < 6; ++i) {
            selector.advance();
            steps.append(selector.caption() + QLatin1Char('/') + selector.heading());
        }
        const QStringList once = {"DXCC/DXCC", QStringLiteral("Россия/Россия"), "ALL/DXCC"};
        QCOMPARE(steps, once + once);
    }

    void clearingEmptiesSixBands()
    {
        Counts counts;
        for (Counts::Column *column : {&counts.sent, &counts.received, &counts.worked})
            column->fill(QStringLiteral("7"));
        counts.totals[0] = QStringLiteral("9");
        Statistics::clearCounts(counts);
        for (int band = 0; band < kBands; ++band)
            QCOMPARE(boxes(counts, band),
                     band < 6 ? QStringList({"", "", ""}) : QStringList({"7", "7", "7"}));
        QCOMPARE(counts.totals[0], QStringLiteral("9"));
        Statistics::clearAllBands(counts);
        QCOMPARE(boxes(counts, 8), QStringList({"", "", ""}));
    }

    void counts_data()
    {
        QTest::addColumn<int>("seed");
        QTest::addColumn<int>("size");
        QTest::newRow("empty log") << 1 << 0;
        QTest::newRow("one contact") << 2 << 1;
        for (int seed = 3; seed < 9; ++seed)
            QTest::addRow("%d", seed) << seed << 40 * seed * seed;
    }
    void counts()
    {
        QFETCH(int, seed);
        QFETCH(int, size);
        std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
        const QList<Contact> log = randomLog(random, size);
        Installation in;
        insert(in, log);
        Bureau bureau(in);
        const auto is = [](const QString &a, const char *b) {
            return a.compare(QLatin1String(b), Qt::CaseInsensitive) == 0;
        };
        Counts counted;
        for (const char *country : {"GERMANY", "RUSSIAN", "\"", "FRANCE"}) {
            bureau.statistics.countCountry(QLatin1String(country), counted);
            for (int band = 0; band < kBands; ++band) {
                Tally tally;
                for (const Contact &c : log)
                    if (c.band == bandText(band) && is(c.country, country) &&
                        c.country != QLatin1String("\""))
                        tally.add(c, {});
                QCOMPARE(boxes(counted, band), tally.contacts());
            }
        }
        for (const QString &region : {QStringLiteral("3A"), QStringLiteral("9S"), QStringLiteral("ZZ")}) {
            bureau.statistics.countRegion(region, counted);
            for (int band = 0; band < kBands; ++band) {
                Tally tally;
                for (const Contact &c : log)
                    if (c.band == bandText(band) && is(c.country, "RUSSIAN") &&
                        c.call.mid(2, 2).compare(region, Qt::CaseInsensitive) == 0)
                        tally.add(c, c.call);
                QCOMPARE(boxes(counted, band), tally.different());
            }
        }
        bureau.statistics.countCountries(counted);
        Tally all;
        for (int band = 0; band < kBands; ++band) {
            Tally tally;
            for (const Contact &c : log)
                if (c.band == bandText(band) && c.country != QLatin1String("\""))
                    tally.add(c, c.country);
            QCOMPARE(boxes(counted, band), tally.different());
        }
        for (const Contact &c : log)
            if (c.country != QLatin1String("\""))
                all.add(c, c.country);
        QCOMPARE(QStringList(counted.totals.cbegin(), counted.totals.cend()), all.different());
        Tally calls;
        for (const Contact &c : log)
            calls.add(c, c.call);
        bureau.statistics.countLog(counted);
        const auto shown = [](const QString &count) {
            return count == QLatin1String("0") ? QString() : count;
        };
        QCOMPARE(counted.contacts, shown(QString::number(log.size())));
        QCOMPARE(counted.calls, shown(calls.different().at(2)));
        QCOMPARE(counted.confirmedCalls, shown(calls.different().at(1)));
    }

    void countsOfTheWholeLogKeepTheirBoxWhereThereIsNothing()
    {
        Installation in;
        Bureau bureau(in);
        Counts counted;
        counted.confirmedCalls = QStringLiteral("5");
        counted.contacts = QStringLiteral("6");
        counted.calls = QStringLiteral("7");
        bureau.statistics.countLog(counted);
        QCOMPARE(QStringList({counted.confirmedCalls, counted.contacts, counted.calls}),
                 QStringList({"5", "6", "7"}));
        bureau.statistics.countCountries(counted);
        QCOMPARE(counted.totals[2], QStringLiteral("0"));
    }

    void aBrokenValueIsAnError()
    {
        Installation in;
        Bureau bureau(in);
        Counts counted;
        QVERIFY_THROWS_EXCEPTION(store::Error,
                                 bureau.statistics.countCountry(QStringLiteral("O'LAND"), counted));
        QVERIFY_THROWS_EXCEPTION(store::Error, bureau.statistics.countRegion(QStringLiteral("3'"), counted));
    }

    void longestPrefixWins()
    {
        Installation in;
        in.sql(QStringLiteral("dbdxcc1.mdb"), QStringLiteral("DELETE FROM tbldxcc"));
        in.sql(QStringLiteral("dbdxcc1.mdb"),
               QStringLiteral("INSERT INTO tbldxcc(prf,PREF,strana) VALUES('U','U','USSR'),"
                              "('UA','UA','RUSSIAN'),('UA3AB','','EMPTY?'),('UA3','','')"));
        Bureau bureau(in);
        const auto country = [&](const char *call) {
            return bureau.statistics.countryOfCall(QLatin1String(call), QStringLiteral("BEFORE"));
        };
        QCOMPARE(country("UA9ABC"), QStringLiteral("RUSSIAN"));
        QCOMPARE(country("UA3ABC"), QStringLiteral("EMPTY?"));
        QCOMPARE(country("UA3XBC"), QStringLiteral("RUSSIAN")); // a row without a name is none
        QCOMPARE(country("UB"), QStringLiteral("USSR"));
        QCOMPARE(country("DL1"), QStringLiteral("BEFORE"));
        QCOMPARE(country(""), QStringLiteral("BEFORE"));
        QCOMPARE(bureau.statistics.countryOfPrincipalPrefix(QStringLiteral("UA")), QStringLiteral("RUSSIAN"));
        QCOMPARE(bureau.statistics.countryOfPrincipalPrefix(QStringLiteral("XX")), QString());
    }
};

QTEST_GUILESS_MAIN(BureauStatisticsTest)
#include "bureaustatistics.moc"
