// Failing disks: the n-th write or flush fails, for every n until everything succeeds.
#include "logentry/recorder.h"
#include "logentry/sql.h"
#include "store/schema.h"
#include "support/faultyvfs.h"
#include "support/installation.h"

#include <QDir>
#include <QTest>

using testsupport::Desk;
using testsupport::FaultyDisk;
using testsupport::Installation;

namespace {

constexpr auto kLog = "dbiaru.mdb";

QString integrity(const Installation &in)
{
    return in.rows(QLatin1String(kLog), QStringLiteral("PRAGMA integrity_check")).join(QLatin1Char(' '));
}

} // namespace

class FaultsTest : public QObject {
    Q_OBJECT

    FaultyDisk m_disk;

    static void faults()
    {
        QTest::addColumn<int>("fault");
        QTest::newRow("full") << int(FaultyDisk::Fault::DiskFull);
        QTest::newRow("write error") << int(FaultyDisk::Fault::WriteError);
        QTest::newRow("flush error") << int(FaultyDisk::Fault::SyncError);
        QTest::newRow("half a write") << int(FaultyDisk::Fault::ShortWrite);
    }

private Q_SLOTS:
    void cleanup() { FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull); }

    void recording_data() { faults(); }
    void recording()
    {
        QFETCH(int, fault);
        bool succeeded = false;
        int failures = 0;
        for (int n = 1; n <= 60 && !succeeded; ++n) {
            Installation in;
            in.addContact(QStringLiteral("DL1OLD"), QStringLiteral("05.03.26"), QStringLiteral("GERMANY"));
            Desk desk(in);
            desk.fields.txtcall = QStringLiteral("UA3ABC");
            desk.fields.txtname = QStringLiteral("Олег");
            desk.fields.txtcontr = QStringLiteral("RUSSIAN");
            const logentry::EntryFields typed = desk.fields;
            FaultyDisk::failFrom(n, FaultyDisk::Fault(fault));
            logentry::RecordOutcome outcome = desk.recorder.cmbadd_Click();
            FaultyDisk::failFrom(0, FaultyDisk::Fault(fault));
            succeeded = !outcome.notStored;
            if (succeeded) {
                QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall FROM TBLLOG1")),
                         QStringList({"DL1OLD", "UA3ABC"}));
                break;
            }
            ++failures;
            QVERIFY(!outcome.emergencyFile.isEmpty());
            // The disk is well again: trying once more stores the contact exactly once.
            if (n % 2 == 0) {
                outcome = desk.recorder.retry();
                QVERIFY2(!outcome.notStored, outcome.notStored ? outcome.notStored->what() : "");
                QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall||NNAME FROM TBLLOG1")),
                         QStringList({"DL1OLD", "UA3ABCОлег"}));
            } else {
                desk.recorder.giveBack();
                QCOMPARE(desk.fields.txtcall, typed.txtcall);
                QCOMPARE(desk.fields.txtname, typed.txtname);
                QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall FROM TBLLOG1")),
                         QStringList({"DL1OLD"}));
            }
            QCOMPARE(integrity(in), QStringLiteral("ok"));
            QCOMPARE(in.rows(QLatin1String(kLog),
                             QStringLiteral("SELECT calls FROM zh_country WHERE contr='GERMANY'")),
                     QStringList({"1"}));
        }
        QVERIFY(succeeded);
        QVERIFY(failures > 0);
    }

    void firstStart_data() { faults(); }
    void firstStart()
    {
        QFETCH(int, fault);
        bool succeeded = false;
        for (int n = 1; n <= 4000 && !succeeded; n += n < 40 ? 1 : 97) {
            QTemporaryDir folder;
            store::Library library({folder.path(), false}, folder.path());
            FaultyDisk::failFrom(n, FaultyDisk::Fault(fault));
            try {
                (void)library.createMissingFiles();
                succeeded = true;
            } catch (const store::Error &) {
            }
            FaultyDisk::failFrom(0, FaultyDisk::Fault(fault));
            // Whatever was made is whole; what is missing is made at the next start.
            (void)library.createMissingFiles();
            const QStringList files = QDir(folder.path()).entryList(QDir::Files, QDir::Name);
            QCOMPARE(files.size(), 11);
            logentry::Sources sources(library);
            QCOMPARE(sources.open().size(), 0);
        }
        QVERIFY(succeeded);
    }

    void verifiedCopy_data() { faults(); }
    void verifiedCopy()
    {
        QFETCH(int, fault);
        bool succeeded = false;
        for (int n = 1; n <= 200 && !succeeded; ++n) {
            Installation in;
            in.addContact(QStringLiteral("DL1OLD"), QStringLiteral("05.03.26"), QStringLiteral("GERMANY"));
            (void)in.databases.connection(in.file(QLatin1String(kLog)));
            FaultyDisk::failFrom(n, FaultyDisk::Fault(fault));
            try {
                (void)in.databases.makeVerifiedCopy(in.file(QLatin1String(kLog)));
                succeeded = true;
            } catch (const store::Error &) {
            }
            FaultyDisk::failFrom(0, FaultyDisk::Fault(fault));
            QCOMPARE(QDir(in.userFolder()).entryList(QDir::Files).size(),
                     succeeded ? 1 : 0); // no half copy is left
        }
        QVERIFY(succeeded);
    }

    void transfer_data() { faults(); }
    void transfer()
    {
        QFETCH(int, fault);
        bool succeeded = false;
        for (int n = 1; n <= 300 && !succeeded; ++n) {
            Installation in;
            in.sql(QStringLiteral("dblog.mdb"),
                   QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<200) "
                                  "INSERT INTO TBLLOG1(ccall,CONTR) SELECT 'A'||i,'ITALY' FROM n"));
            const store::SqlText text = store::SqlText()
                                            .text(u"INSERT INTO tbllog1 in '")
                                            .doubled(in.file(QLatin1String(kLog)))
                                            .text(u"'  SELECT tbllog1.* From tbllog1 ;");
            (void)in.databases.connection(in.file(QStringLiteral("dblog.mdb")));
            (void)in.databases.connection(in.file(QLatin1String(kLog)));
            FaultyDisk::failFrom(n, FaultyDisk::Fault(fault));
            try {
                (void)in.databases.execute(in.file(QStringLiteral("dblog.mdb")), text);
                succeeded = true;
            } catch (const store::Error &) {
            }
            FaultyDisk::failFrom(0, FaultyDisk::Fault(fault));
            QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT count(*) FROM TBLLOG1")),
                     QStringList({succeeded ? "200" : "0"}));
            QCOMPARE(in.rows(QStringLiteral("dblog.mdb"), QStringLiteral("SELECT count(*) FROM TBLLOG1")),
                     QStringList({"200"}));
            QCOMPARE(integrity(in), QStringLiteral("ok"));
        }
        QVERIFY(succeeded);
    }

    void periodIntoPrintTable_data() { faults(); }
    void periodIntoPrintTable()
    {
        QFETCH(int, fault);
        const QString print = QStringLiteral("dbprint.mdb");
        const Installation in;
        in.sql(QLatin1String(kLog),
               QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<200) "
                              "INSERT INTO TBLLOG1(ccall,ddate) SELECT 'A'||i,'05.03.26' FROM n"));
        const store::SqlText fill =
            logentry::sql::loadPrintTable(in.file(QLatin1String(kLog)), u"05.03.26", u"05.03.26");
        store::Library databases({in.folder(), false}, in.userFolder());
        const auto run = [&] {
            databases.execute(in.file(print), logentry::sql::emptyPrintTable());
            return databases.execute(in.file(print), fill, [](qint64, qint64) {});
        };
        const auto state = [&] {
            return in
                .rows(print, QStringLiteral("SELECT count(*)||' '||ifnull(min(ccall),'-') FROM tblprint"))
                .front();
        };
        (void)databases.connection(in.file(print));
        (void)databases.connection(in.file(QLatin1String(kLog)));
        bool succeeded = false;
        QStringList seen; // what was there, nothing, or everything
        for (int n = 1; n <= 400 && !succeeded; ++n) {
            in.sql(print, QStringLiteral("DELETE FROM tblprint"));
            in.sql(print, QStringLiteral("INSERT INTO tblprint(ccall) VALUES('OLD')"));
            FaultyDisk::failFrom(n, FaultyDisk::Fault(fault));
            try {
                QCOMPARE(run(), 200);
                succeeded = true;
            } catch (const store::Error &) {
            }
            FaultyDisk::failFrom(0, FaultyDisk::Fault(fault));
            if (!seen.contains(state()))
                seen.append(state());
            QCOMPARE(in.rows(print, QStringLiteral("PRAGMA integrity_check")), QStringList("ok"));
            QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT count(*) FROM TBLLOG1")),
                     QStringList("200"));
            QCOMPARE(run(), 200); // the disk is well again: nothing of the failure is in the way
            QCOMPARE(state(), QStringLiteral("200 A1"));
        }
        QVERIFY(succeeded);
        QCOMPARE(seen, QStringList({"1 OLD", "0 -", "200 A1"}));
    }
};

QTEST_GUILESS_MAIN(FaultsTest)
#include "faults.moc"
