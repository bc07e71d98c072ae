// Renewing the country table: all or nothing, with the seed table, on failing disks and beside other
// programs.
#include "reference/countryupdate.h"
#include "store/countrytable.h"
#include "support/countries.h"
#include "support/faultyvfs.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTest>

#include <memory>
#include <optional>

using namespace testsupport; // NOLINT(google-build-using-namespace): a vocabulary for tables and files
using reference::CountryChangeKind;
using reference::CountryPlan;

namespace {

QByteArray sample()
{
    return sampleCountries(QStringLiteral(TEST_DATA));
}

const QStringList kTable = {QStringLiteral("DL DL EU 15 28 51,00 10,00 GERMANY"),
                            QStringLiteral("own DM DL EU 14 28 51,00 10,00 GERMANY"),
                            QStringLiteral("DP DL EU 14 28 51,00 10,00 GERMANY")};
const QByteArray kFile = record("DL", "DL,DA,DB,DC", "Fed. Rep. of Germany");
const QStringList kRenewed = {QStringLiteral("DL DL EU 14 28 51,00 10,00 GERMANY"),
                              QStringLiteral("own DM DL EU 14 28 51,00 10,00 GERMANY"),
                              QStringLiteral("DA DL EU 14 28 51,00 10,00 GERMANY"),
                              QStringLiteral("DB DL EU 14 28 51,00 10,00 GERMANY"),
                              QStringLiteral("DC DL EU 14 28 51,00 10,00 GERMANY")};

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

QStringList copies(const Installation &in)
{
    return QDir(in.userFolder()).entryList(QDir::Files);
}

/// The kind of error that applying the plan ends with; nothing where it succeeds.
std::optional<store::Error> failureOf(Installation &in, const CountryPlan &plan)
{
    try {
        (void)reference::applyCountryPlan(in.databases, plan);
    } catch (const store::Error &error) {
        return error;
    }
    return std::nullopt;
}

QString countryOf(Installation &in, const char *call)
{
    const store::CountryTable table(in.databases.connection(in.file(countryDatabase())));
    return QString::fromUtf8(table.of(call));
}

/// "PREF kont cq iaru" of the row that counts for a callsign.
QString answerFor(const Installation &in, const QString &call)
{
    const QStringList rows =
        in.rows(countryDatabase(),
                QStringLiteral("SELECT PREF||' '||kont||' '||cq||' '||iaru FROM tbldxcc WHERE "
                               "substr('%1',1,length(prf))=prf ORDER BY length(prf) DESC,rowid LIMIT 1")
                    .arg(call));
    return rows.isEmpty() ? QString() : rows.constFirst();
}

/// Made at random, with keys that are in each other's way; the same for the same seed.
class Chance {
public:
    explicit Chance(quint32 seed) : m_random(seed) {}

    int below(int limit) { return m_random.bounded(limit); }
    bool often() { return below(4) != 0; }

    QString key()
    {
        static const QString signs = QStringLiteral("AB12");
        QString text;
        for (int size = 1 + below(4); size > 0; --size)
            text.append(signs[below(4)]);
        return text;
    }

    QStringList table()
    {
        QStringList rows;
        QStringList prefs;
        for (int i = 0; i < 5; ++i)
            prefs.append(key());
        for (int i = below(30); i > 0; --i) {
            const QString pref = prefs[below(5)];
            rows.append((below(8) == 0 ? QStringLiteral("own ") : QString()) +
                        QStringLiteral("%1 %2 EU %3 28 %4 10,00 N%2")
                            .arg(key(), pref)
                            .arg(14 + below(2))
                            .arg(below(9)));
        }
        return rows;
    }

    /// No key twice: which of two counts is a rule of its own. Primary prefixes are keys, as they are in real
    /// files.
    QByteArray file()
    {
        QByteArray text;
        QStringList used;
        for (int i = 1 + below(6); i > 0; --i) {
            const QString prefix = key();
            if (used.contains(prefix))
                continue;
            used.append(prefix);
            QByteArrayList keys = {prefix.toLatin1()};
            for (int n = 1 + below(6); n > 0; --n) {
                const QString item = key();
                if (used.contains(item))
                    continue;
                used.append(item);
                keys.append((often() ? "" : "=") + item.toLatin1() + (often() ? "" : "(15)") +
                            (often() ? "" : "<3.00/-4.00>"));
            }
            text += record((often() ? "" : "*") + prefix.toLatin1(), keys.join(","),
                           "Land " + QByteArray::number(i));
        }
        return text.isEmpty() ? record("A", "A") : text;
    }

private:
    QRandomGenerator m_random;
};

} // namespace

class CountryUpdateTest : public QObject {
    Q_OBJECT

    FaultyDisk m_disk;
    std::unique_ptr<Installation> m_renewed; ///< the seed table with the sample applied

private Q_SLOTS:
    void cleanup() { FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull); }

    void appliesAfterACopy()
    {
        Installation in;
        setCountries(in, kTable);
        const CountryPlan plan = planOf(in, kFile);
        QCOMPARE(countries(in), kTable); // planning writes nothing
        QCOMPARE(copies(in), QStringList());
        const QString copy = reference::applyCountryPlan(in.databases, plan);
        QCOMPARE(countries(in), kRenewed);
        QCOMPARE(copies(in).size(), 1);
        QVERIFY(copy.endsWith(copies(in).constFirst()));
        store::Connection old(copy, store::OpenMode::ReadOnly); // the table as it was
        QCOMPARE(old.singleNumber(QStringLiteral("SELECT count(*) FROM tbldxcc")), 3);
        QCOMPARE(old.singleNumber(QStringLiteral("SELECT count(*) FROM tbldxcc WHERE prf='DP'")), 1);
        QVERIFY(!in.databases.connection(in.file(countryDatabase())).inTransaction());

        const CountryPlan again = planOf(in, kFile);
        QVERIFY(again.isEmpty());
        QCOMPARE(reference::applyCountryPlan(in.databases, again), QString());
        QCOMPARE(copies(in).size(), 1); // nothing was done
    }

    /// Names, Russia and every row of a country that the file does not have are as before.
    void seedTableAndSample()
    {
        Installation in;
        const QStringList before = countries(in);
        QVERIFY(before.size() > 7000);
        const QStringList namesBefore = in.rows(
            countryDatabase(), QStringLiteral("SELECT DISTINCT PREF,strana FROM tbldxcc ORDER BY PREF"));
        const CountryPlan plan = planOf(in, sample());
        QCOMPARE(plan.newCountries, QStringList());
        QCOMPARE(plan.remarks, QStringList());
        QVERIFY(plan.added > 0 && plan.changed > 0 && plan.removed > 0);
        (void)reference::applyCountryPlan(in.databases, plan);
        QCOMPARE(countries(in).size(), before.size() + plan.added - plan.removed);
        QCOMPARE(in.rows(countryDatabase(),
                         QStringLiteral("SELECT DISTINCT PREF,strana FROM tbldxcc ORDER BY PREF")),
                 namesBefore);

        for (const char *pref : {"BY", "LU", "YB", "VE", "UN", "E5N", "FOM", "VP8G"}) {
            const QString mark = QStringLiteral(" %1 ").arg(QLatin1String(pref));
            QVERIFY(!before.filter(mark).isEmpty());
            QCOMPARE(countries(in).filter(mark), before.filter(mark));
        }
        QVERIFY(planOf(in, sample()).isEmpty());
    }

    void callsignsAfterTheUpdate_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("country");
        QTest::addColumn<QString>("answer");
        const auto add = [](const char *call, const char *country, const char *answer) {
            QTest::newRow(call) << QString::fromLatin1(call) << QString::fromLatin1(country)
                                << QString::fromLatin1(answer);
        };
        add("UA9ABC", "RUSSIAN", "UA AS 17 30");
        add("UA9FAB", "RUSSIAN", "UA EU 17 30");
        add("UA9SAB", "RUSSIAN", "UA AS 16 30");
        add("R0BAB", "RUSSIAN", "UA AS 18 32");
        add("UA3ABC", "RUSSIAN", "UA EU 16 29");
        add("UA4HAB", "RUSSIAN", "UA EU 16 30");
        add("R35NPA", "RUSSIAN", "UA EU 16 29"); // "=R35NP" is too short for a row
        add("RA2FAB", "KALININGRAD", "UA2 EU 15 29");
        add("UE23RRC", "RUSSIAN", "UA EU 16 29");
        add("DL1ABC", "GERMANY", "DL EU 14 28");
        add("IT9ABC", "ITALY", "I EU 15 28");
        add("IG9ABC", "ITALY", "I AF 33 37");
        add("GM3ZET", "SCOTLAND", "GM EU 14 27");
        add("GM3ABC", "SCOTLAND", "GM EU 14 27");
        add("4U30VIC", "AUSTRIA", "OE EU 15 28");
        add("JD1BME", "MINAMITORI", "JD1M OC 27 90");
        add("JG8NQJ/JD1", "MINAMITORI", "JD1M OC 27 90");
        add("JD1ABC", "OGASAWARA", "JD1 AS 27 45");
        add("3D2CR", "CONWAY REEF", "3D2C OC 32 56");
        add("3D2AB", "FIJI", "3D2 OC 32 56");
        add("JW2FL", "SVALBARD", "JW EU 40 18");
        add("K6ABC", "USA", "K NA 3 6");
        add("K4XYZ", "HAWAII", "KH6 OC 31 61");
        add("K4XYB", "USA", "K NA 5 8");
        add("KH6ABC", "HAWAII", "KH6 OC 31 61");
        add("KH6ABC/W6", "USA", "K NA 3 6");
        add("HF0POL", "SOUTH SHETLAND", "VP8H SA 13 73");
        add("CE9/R1ANF", "SOUTH SHETLAND", "VP8H SA 13 73");
        add("VP8ABC", "FALKLAND ISL", "VP8 SA 13 16");
        add("BY1QH", "CHINA", "BY AS 24 44"); // not in the file
    }
    void callsignsAfterTheUpdate()
    {
        QFETCH(QString, call);
        if (!m_renewed) {
            m_renewed = std::make_unique<Installation>();
            (void)reference::applyCountryPlan(m_renewed->databases, planOf(*m_renewed, sample()));
        }
        Installation &in = *m_renewed;
        QTEST(countryOf(in, call.toLatin1().constData()), "country");
        QTEST(answerFor(in, call), "answer");
    }

    void applying_data()
    {
        QTest::addColumn<int>("fault");
        QTest::newRow("full") << int(FaultyDisk::Fault::DiskFull);
        QTest::newRow("write error") << int(FaultyDisk::Fault::WriteError);
        QTest::newRow("flush error") << int(FaultyDisk::Fault::SyncError);
        QTest::newRow("half a write") << int(FaultyDisk::Fault::ShortWrite);
    }
    /// Fails at the n-th write or flush for every n: the table is the old one or the new one, the same plan
    /// works afterwards, and no half copy is left.
    void applying()
    {
        QFETCH(int, fault);
        Installation in;
        int failures = 0;
        bool succeeded = false;
        for (int n = 1; n <= 300 && !succeeded; ++n) {
            setCountries(in, kTable);
            const CountryPlan plan = planOf(in, kFile);
            const qsizetype copiesBefore = copies(in).size();
            FaultyDisk::failFrom(n, FaultyDisk::Fault(fault));
            const std::optional<store::Error> failure = failureOf(in, plan);
            FaultyDisk::failFrom(0, FaultyDisk::Fault(fault));
            succeeded = !failure;
            failures += int(failure.has_value());
            QCOMPARE(in.rows(countryDatabase(), QStringLiteral("PRAGMA integrity_check")), QStringList{"ok"});
            QCOMPARE(countries(in), succeeded ? kRenewed : kTable);
            QVERIFY(!in.databases.connection(in.file(countryDatabase())).inTransaction());
            for (const QString &name : copies(in))
                QVERIFY2(name.endsWith(QLatin1String(".mdb")), qPrintable(name));
            QVERIFY(copies(in).size() >= copiesBefore);
            if (!succeeded) {
                (void)reference::applyCountryPlan(in.databases, plan);
                QCOMPARE(countries(in), kRenewed);
            }
        }
        QVERIFY(succeeded);
        QVERIFY(failures > 5);
    }

    /// Without a copy nothing is written.
    void withoutPlaceForTheCopy()
    {
        Installation in;
        setCountries(in, kTable);
        const CountryPlan plan = planOf(in, kFile);
        QVERIFY(QDir(in.userFolder()).removeRecursively());
        QFile blocker(in.userFolder());
        QVERIFY(blocker.open(QIODevice::WriteOnly)); // a file where the folder should be
        QVERIFY(failureOf(in, plan).has_value());
        QCOMPARE(countries(in), kTable);
    }

    void changedMeanwhile_data()
    {
        QTest::addColumn<QString>("statement");
        QTest::newRow("a text") << QStringLiteral("UPDATE tbldxcc SET cq='16' WHERE prf='DL'");
        QTest::newRow("a mark") << QStringLiteral("UPDATE tbldxcc SET own='1' WHERE prf='DL'");
        QTest::newRow("a row more") << QStringLiteral("INSERT INTO tbldxcc(prf) VALUES('DA')");
        QTest::newRow("a row less") << QStringLiteral("DELETE FROM tbldxcc WHERE prf='DP'");
        QTest::newRow("another key") << QStringLiteral("UPDATE tbldxcc SET rowid=77 WHERE prf='DP'");
        QTest::newRow("texts shifted")
            << QStringLiteral("UPDATE tbldxcc SET kont='E',cq='U15' WHERE prf='DL'");
    }
    void changedMeanwhile()
    {
        QFETCH(QString, statement);
        Installation in;
        setCountries(in, kTable);
        const CountryPlan plan = planOf(in, kFile);
        in.sql(countryDatabase(), statement);
        const QStringList changed = countries(in);
        const std::optional<store::Error> failure = failureOf(in, plan);
        QVERIFY(failure.has_value());
        QCOMPARE(failure->kind(), store::ErrorKind::Outdated);
        QCOMPARE(failure->text(),
                 QStringLiteral("Файл dbdxcc1.mdb тем временем изменён в другом окне или другой "
                                "программой. В него ничего не записано."));
        QCOMPARE(countries(in), changed);
        QCOMPARE(copies(in), QStringList());
    }

    /// By another program while the copy was being made: looked at again before the first row is written.
    void changedDuringTheCopy()
    {
        Installation in;
        setCountries(in, kTable);
        const CountryPlan plan = planOf(in, kFile);
        int told = 0;
        const auto progress = [&](qint64, qint64) {
            if (told++ == 0)
                in.sql(countryDatabase(), QStringLiteral("UPDATE tbldxcc SET cq='16' WHERE prf='DL'"));
        };
        try {
            (void)reference::applyCountryPlan(in.databases, plan, progress);
            QFAIL("written");
        } catch (const store::Error &error) {
            QCOMPARE(error.kind(), store::ErrorKind::Outdated);
        }
        QVERIFY(told > 0);
        QCOMPARE(countries(in),
                 QStringList(kTable).replaceInStrings(QStringLiteral("EU 15"), QStringLiteral("EU 16")));
    }

    void aPlanIsGoodForOneTime()
    {
        Installation in;
        setCountries(in, kTable);
        const CountryPlan plan = planOf(in, kFile);
        QVERIFY(!failureOf(in, plan));
        QCOMPARE(failureOf(in, plan)->kind(), store::ErrorKind::Outdated);
        QCOMPARE(countries(in), kRenewed);
    }

    void readOnlyFile()
    {
        Installation in;
        setCountries(in, kTable);
        const QString path = in.file(countryDatabase());
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
        store::Library reader({in.folder(), true}, in.userFolder());
        const CountryPlan plan = reference::planCountryUpdate(reader, foreign::readCountries(kFile));
        QCOMPARE(plan.changes.size(), 5); // it can be looked at
        try {
            (void)reference::applyCountryPlan(reader, plan);
            QFAIL("written");
        } catch (const store::Error &error) {
            QCOMPARE(error.kind(), store::ErrorKind::ReadOnly);
            QVERIFY(error.text().contains(QStringLiteral("только для чтения")));
        }
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner));
        QCOMPARE(countries(in), kTable);
        QCOMPARE(copies(in), QStringList());
    }

    void lockedByAnotherProgram()
    {
        Installation in;
        setCountries(in, kTable);
        const CountryPlan plan = planOf(in, kFile);
        {
            store::Connection other(in.file(countryDatabase()), store::OpenMode::ReadWrite);
            const store::Transaction transaction(other);
            const std::optional<store::Error> failure = failureOf(in, plan);
            QVERIFY(failure.has_value());
            QCOMPARE(failure->kind(), store::ErrorKind::Locked);
        }
        QCOMPARE(countries(in), kTable);
        QVERIFY(!failureOf(in, plan));
        QCOMPARE(countries(in), kRenewed);
    }

    /// A file without the mark's column, from an earlier version, gets it.
    void earlierFile()
    {
        Installation in;
        setCountries(in, kTable);
        in.sql(countryDatabase(), QStringLiteral("ALTER TABLE tbldxcc DROP COLUMN own"));
        in.sql(countryDatabase(), QStringLiteral("PRAGMA user_version=2"));
        const CountryPlan plan = planOf(in, kFile);
        QCOMPARE(plan.own, 0);
        QCOMPARE(plan.removed, 2); // DM is nobody's own any more
        QVERIFY(!failureOf(in, plan));
        QCOMPARE(countries(in).size(), 4);
    }

    /// Whatever the table and the file: one update settles it, the operator's rows stay, every name belongs
    /// to one country, and each key of the file has its row.
    void anyTableAndAnyFile()
    {
        Installation in;
        int written = 0;
        for (quint32 seed = 1; seed <= 60; ++seed) {
            Chance chance(seed);
            setCountries(in, chance.table());
            const QByteArray file = chance.file();
            const QStringList before = countries(in);
            const CountryPlan plan = planOf(in, file);
            QVERIFY(!failureOf(in, plan));
            written += int(plan.changes.size());
            const QStringList after = countries(in);
            const CountryPlan again = planOf(in, file);
            QVERIFY2(again.isEmpty(),
                     qPrintable(QStringLiteral("%1: %2\n%3\nof\n%4\nthen %5")
                                    .arg(QString::number(seed), before.join(QLatin1Char('\n')),
                                         QString::fromUtf8(file), entries(plan).join(QLatin1Char('\n')),
                                         entries(again).join(QLatin1Char('\n')))));
            QCOMPARE(sorted(after.filter(QStringLiteral("own "))),
                     sorted(before.filter(QStringLiteral("own "))));
            QCOMPARE(after.size(), before.size() + plan.added - plan.removed);
            QCOMPARE(
                in.rows(countryDatabase(), QStringLiteral("SELECT strana FROM tbldxcc GROUP BY strana HAVING "
                                                          "count(DISTINCT PREF)>1")),
                QStringList());
        }
        QVERIFY(written > 300);
    }
};

QTEST_APPLESS_MAIN(CountryUpdateTest)
#include "countryupdate.moc"
