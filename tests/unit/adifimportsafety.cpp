// What an import leaves behind when it is repeated, stopped, or when the disk fails.
#include "support/faultyvfs.h"
#include "support/importing.h"

#include <QDir>
#include <QTest>

#include <random>

using interchange::AdifImport;
using interchange::ImportProgress;
using interchange::ImportResult;
using interchange::SkipReason;

using namespace testsupport;

class AdifImportSafetyTest : public QObject {
    Q_OBJECT

    FaultyDisk m_disk;

private Q_SLOTS:
    void cleanup() { FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull); }

    // Repeats.

    void twiceDoubles()
    {
        Installation in;
        const QString path = kFixtures + QStringLiteral("own_layout.adi");
        QCOMPARE(importFile(in, path).held, 0);
        AdifImport again(in.databases, in.file(QLatin1String(kLog)), path);
        const ImportResult result = again.run(goOn);
        QCOMPARE(result.added, 4);
        QCOMPARE(result.held, 4);
        QCOMPARE(contacts(in).size(), 8);
        AdifImport::Removal removal = again.removeRepeats();
        QCOMPARE(removal.removed, 4);
        QCOMPARE(removal.kept, 0);
        QCOMPARE(column(in, "rowid"), QStringList({"1", "2", "3", "4"}));
        removal = again.removeRepeats();
        QCOMPARE(removal.removed, 0);
        QCOMPARE(contacts(in).size(), 4);
        QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT count(*) FROM zh_country")),
                 QStringList({"0"}));
    }

    void exactlyTheRepeatsGo()
    {
        Installation in;
        in.sql(QLatin1String(kLog),
               QStringLiteral(
                   "INSERT INTO TBLLOG1(ccall,ddate,bband,ps1) VALUES('dl00001','05.03.02','14','SSB'),"
                   "('DL00002','05.03.02','7','CW'),('DL00003','06.03.02','14','CW'),"
                   "('DL00004','05.03.02','14','CW'),('DL00005','05.03.02','14','CW')"));
        AdifImport import(in.databases, in.file(QLatin1String(kLog)),
                          put(in, ownLines(8) + ownLines(1, 7).mid(kHeader.size())));
        const ImportResult result = import.run(goOn);
        QCOMPARE(result.added, 9);
        // 1 in other letter case and mode; 2 has another band, 3 another date; 7 stands twice in the file
        // only.
        QCOMPARE(result.held, 3);
        // One of them gets a card, one goes, before the operator takes the repeats out.
        in.sql(QLatin1String(kLog),
               QStringLiteral("UPDATE TBLLOG1 SET QSLP='+' WHERE rowid>5 AND ccall='DL00004'"));
        in.sql(QLatin1String(kLog), QStringLiteral("DELETE FROM TBLLOG1 WHERE rowid>5 AND ccall='DL00005'"));
        const AdifImport::Removal removal = import.removeRepeats();
        QCOMPARE(removal.removed, 1);
        QCOMPARE(removal.kept, 2);
        QCOMPARE(column(in, "ccall"),
                 QStringList({"dl00001", "DL00002", "DL00003", "DL00004", "DL00005", "DL00000", "DL00002",
                              "DL00003", "DL00004", "DL00006", "DL00007", "DL00007"}));
    }

    void repeatsInFullReader()
    {
        Installation in;
        const QString path = kFixtures + QStringLiteral("cp1251.adi");
        (void)importFile(in, path);
        AdifImport again(in.databases, in.file(QLatin1String(kLog)), path);
        QCOMPARE(again.run(goOn).held, 4);
        QCOMPARE(again.removeRepeats().removed, 4);
        QCOMPARE(contacts(in).size(), 4);
    }

    // Chunks, stop, failure.

    void copyAndProgress()
    {
        Installation in;
        in.addContact(QStringLiteral("OLD"), QStringLiteral("01.01.01"), QStringLiteral("X"));
        constexpr int kMany = 45'000;
        AdifImport import(in.databases, in.file(QLatin1String(kLog)), put(in, ownLines(kMany)));
        qint64 last = -1;
        qint64 copySteps = 0;
        bool monotonous = true;
        const ImportResult result = import.run([&](const ImportProgress &progress) {
            if (progress.phase == ImportProgress::Phase::Copying) {
                ++copySteps;
                return true;
            }
            monotonous = monotonous && progress.done >= last && progress.done <= progress.total;
            last = progress.done;
            return true;
        });
        QVERIFY(monotonous);
        QVERIFY(copySteps > 0);
        QCOMPARE(last, QFileInfo(in.file(QStringLiteral("import.adi"))).size());
        QCOMPARE(result.records, kMany + 1);
        QCOMPARE(result.added, kMany);
        QVERIFY(QFileInfo(result.copy).absolutePath() == QDir(in.userFolder()).absolutePath());
        store::Connection copy(result.copy, store::OpenMode::ReadOnly);
        QCOMPARE(copy.singleNumber(QStringLiteral("SELECT count(*) FROM TBLLOG1")), 1); // the log before
    }

    void stop()
    {
        Installation in;
        AdifImport import(in.databases, in.file(QLatin1String(kLog)), put(in, ownLines(45'000)));
        const ImportResult result =
            import.run([](const ImportProgress &progress) { return progress.records < 30'000; });
        QVERIFY(result.stopped);
        QCOMPARE(result.records, 30'000);
        QCOMPARE(result.added, 29'999);
        QVERIFY(adds(result));
        QCOMPARE(contacts(in).size(), 29'999);
    }

    void failingDisk_data()
    {
        QTest::addColumn<int>("fault");
        QTest::newRow("full") << int(FaultyDisk::Fault::DiskFull);
        QTest::newRow("write error") << int(FaultyDisk::Fault::WriteError);
        QTest::newRow("flush error") << int(FaultyDisk::Fault::SyncError);
        QTest::newRow("half a write") << int(FaultyDisk::Fault::ShortWrite);
    }
    void failingDisk()
    {
        QFETCH(int, fault);
        const QByteArray file = ownLines(20) + ownLines(3).mid(kHeader.size()); // three contacts twice
        bool succeeded = false;
        int failures = 0;
        int removalFailures = 0;
        for (int n = 1; n <= 300 && !succeeded; ++n) {
            Installation in;
            in.sql(QLatin1String(kLog),
                   QStringLiteral("INSERT INTO TBLLOG1(ccall,ddate,bband) VALUES('DL00000','05.03.02','14'),"
                                  "('DL00001','05.03.02','14')"));
            AdifImport import(in.databases, in.file(QLatin1String(kLog)), put(in, file));
            FaultyDisk::failFrom(n, FaultyDisk::Fault(fault));
            ImportResult result;
            bool thrown = false;
            try {
                result = import.run(goOn);
            } catch (const store::Error &) {
                thrown = true; // before anything was written
            }
            bool removed = false;
            if (!thrown && !result.failure) {
                try {
                    removed = import.removeRepeats().removed == 4;
                    succeeded = removed;
                } catch (const store::Error &) {
                    ++removalFailures;
                }
            }
            FaultyDisk::failFrom(0, FaultyDisk::Fault(fault));
            failures += thrown || result.failure ? 1 : 0;
            in.databases.close(in.file(QLatin1String(kLog)));
            QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("PRAGMA integrity_check")),
                     QStringList({"ok"}));
            const qsizetype rows = contacts(in).size();
            if (thrown) {
                QCOMPARE(rows, 2);
            } else if (result.failure) {
                QVERIFY(adds(result));
                // A commit whose last flush failed may be in the file all the same: whole rows, all or none.
                QVERIFY(result.added == 0 && (rows == 2 || rows == 25));
            } else {
                QVERIFY(rows == 21 || (!removed && rows == 25));
            }
        }
        QVERIFY(succeeded);
        QVERIFY(failures > 0);
        QVERIFY(removalFailures > 0);
    }

    void failureInALaterChunkKeepsTheChunksBefore()
    {
        Installation in;
        AdifImport import(in.databases, in.file(QLatin1String(kLog)), put(in, ownLines(120'000)));
        bool failing = false;
        const ImportResult result = import.run([&](const ImportProgress &progress) {
            if (progress.phase == ImportProgress::Phase::Reading && progress.records == 110'000 && !failing) {
                failing = true;
                FaultyDisk::failFrom(1, FaultyDisk::Fault::DiskFull);
            }
            return true;
        });
        FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull);
        QVERIFY(failing);
        QVERIFY(result.failure.has_value());
        QCOMPARE(result.added, 100'000);
        QVERIFY(adds(result));
        QVERIFY(result.skipped.back().reason == SkipReason::NotWritten);
        QCOMPARE(result.skipped.back().line, 100'002);
        in.databases.close(in.file(QLatin1String(kLog)));
        QCOMPARE(contacts(in).size(), 100'000);
    }

    void readOnlyLog()
    {
        Installation in;
        const QString path = put(in, ownLines(2));
        store::Library readOnly({in.folder(), true}, in.userFolder());
        AdifImport import(readOnly, in.file(QLatin1String(kLog)), path);
        const ImportResult result = import.run(goOn);
        QVERIFY(result.failure.has_value());
        QCOMPARE(result.added, 0);
        QVERIFY(adds(result));
    }

    void mutilatedFilesAddUp()
    {
        std::mt19937 random(5202);
        for (const QString &name : QDir(kFixtures).entryList({QStringLiteral("*.ad?")})) {
            QFile file(kFixtures + name);
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray whole = file.readAll();
            if (whole.isEmpty() || whole.size() > 20'000)
                continue;
            Installation in;
            qint64 rows = 0;
            for (int round = 0; round < 8; ++round) {
                QByteArray bytes = whole;
                for (int i = 0; i < 3; ++i) {
                    const auto at = static_cast<qsizetype>(random() % static_cast<unsigned>(bytes.size()));
                    if (random() % 2 == 0)
                        bytes[at] = "<:>9e\r\n\0x"[random() % 9];
                    else
                        bytes.insert(at, bytes.mid(at / 2, 20));
                }
                const ImportResult result = importBytes(in, bytes);
                QVERIFY2(adds(result), qPrintable(name));
                rows += result.added;
                QCOMPARE(contacts(in).size(), rows);
            }
        }
    }
};

QTEST_GUILESS_MAIN(AdifImportSafetyTest)
#include "adifimportsafety.moc"
