// A log file of the first layout is completed when it is opened.
#include "store/datasource.h"
#include "store/schema.h"
#include "store/sqlite.h"
#include "support/faultyvfs.h"
#include "support/installation.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using testsupport::FaultyDisk;

namespace {

constexpr auto kLog = "dbiaru.mdb";

/// A folder whose log is one of the first layout, and nothing else.
class OldFolder {
public:
    OldFolder()
    {
        QFile script(QStringLiteral(TEST_DATA "/log_version1.sql"));
        if (!script.open(QIODevice::ReadOnly))
            qFatal("no script");
        store::Connection::create(log())->execScript(QString::fromUtf8(script.readAll()));
    }
    [[nodiscard]] QString path() const { return m_folder.path(); }
    [[nodiscard]] QString userFolder() const { return m_user.path(); }
    [[nodiscard]] QString log() const { return m_folder.filePath(QLatin1String(kLog)); }
    [[nodiscard]] QStringList copies() const
    {
        return QDir(m_user.path()).entryList({QStringLiteral("*.mdb")}, QDir::Files);
    }

private:
    QTemporaryDir m_folder;
    QTemporaryDir m_user;
};

QStringList rows(store::Connection &file, const char *query)
{
    store::Cursor cursor = file.run(QLatin1String(query));
    QStringList found;
    while (cursor.next()) {
        QStringList columns;
        for (int i = 0; i < cursor.columnCount(); ++i)
            columns.append(cursor.isNull(i) ? QStringLiteral("NULL") : cursor.text(i));
        found.append(columns.join(QLatin1Char('|')));
    }
    return found;
}

constexpr auto kContacts = "SELECT rowid,* FROM TBLLOG1 ORDER BY rowid";
constexpr auto kObjects = "SELECT name FROM sqlite_master WHERE name GLOB 'zh_*' ORDER BY name";

QStringList objectsOfANewLog()
{
    const QTemporaryDir folder;
    store::Library library({folder.path(), false}, folder.path());
    (void)library.createMissingFiles();
    return rows(library.connection(folder.filePath(QLatin1String(kLog))), kObjects);
}

/// What the tally must hold, counted anew.
QStringList counted(store::Connection &file)
{
    return rows(file, "SELECT upper(ifnull(bband,'')),upper(ifnull(CONTR,'')),length(ifnull(QSLO,''))>0,"
                      "length(ifnull(QSLP,''))>0,count(*) FROM TBLLOG1 GROUP BY 1,2,3,4 ORDER BY 1,2,3,4");
}

QStringList tallied(store::Connection &file)
{
    return rows(file, "SELECT upper(bband),upper(CONTR),QSLO='1',QSLP='1',contacts FROM zh_tally WHERE "
                      "contacts>0 ORDER BY 1,2,3,4");
}

} // namespace

class LogUpgradeTest : public QObject {
    Q_OBJECT

    FaultyDisk m_disk;

private Q_SLOTS:
    void cleanup() { FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull); }

    void completedAtItsOpening()
    {
        const OldFolder old;
        QStringList before;
        {
            store::Connection file(old.log(), store::OpenMode::ReadWrite);
            before = rows(file, kContacts);
            QCOMPARE(before.size(), 9);
            QCOMPARE(file.singleNumber(QStringLiteral("PRAGMA user_version")), 1);
        }
        store::Library library({old.path(), false}, old.userFolder());
        store::Connection &log = library.connection(old.log());
        QCOMPARE(log.singleNumber(QStringLiteral("PRAGMA user_version")), store::kSchemaVersion);
        QVERIFY(log.keepsTally());
        QCOMPARE(rows(log, kContacts), before);
        QCOMPARE(rows(log, kObjects), objectsOfANewLog());
        QCOMPARE(tallied(log), counted(log));
        QCOMPARE(log.single(QStringLiteral("PRAGMA integrity_check")).value(), QStringLiteral("ok"));

        // The copy made before is the file as it was.
        QCOMPARE(old.copies().size(), 1);
        store::Connection copy(QDir(old.userFolder()).filePath(old.copies().front()),
                               store::OpenMode::ReadOnly);
        QCOMPARE(copy.singleNumber(QStringLiteral("PRAGMA user_version")), 1);
        QCOMPARE(rows(copy, kContacts), before);

        // Its new triggers work: an insertion, a mark, a deletion, a null callsign beside an empty one.
        log.exec(QStringLiteral("INSERT INTO TBLLOG1(ccall,CONTR,bband) VALUES('UA3ABC','RUSSIAN','99')"));
        log.exec(QStringLiteral("UPDATE TBLLOG1 SET QSLO='x' WHERE bband='14'"));
        log.exec(QStringLiteral("DELETE FROM TBLLOG1 WHERE ccall='W1AW'"));
        log.exec(QStringLiteral("INSERT INTO TBLLOG1(ccall,CONTR) VALUES(NULL,'ITALY'),('','ITALY')"));
        QCOMPARE(tallied(log), counted(log));
        QCOMPARE(rows(log, "SELECT calls FROM zh_country WHERE contr='ITALY'"), QStringList({"1"}));
        QCOMPARE(rows(log, "SELECT calls||'/'||cards FROM zh_country WHERE contr='RUSSIAN'"),
                 QStringList({"2/2"}));
    }

    void openedOnceMore()
    {
        const OldFolder old;
        for (int i = 0; i < 2; ++i) {
            store::Library library({old.path(), false}, old.userFolder());
            (void)library.connection(old.log());
        }
        QCOMPARE(old.copies().size(), 1); // the second time there is nothing to complete
    }

    void readOnlyFolder()
    {
        const OldFolder old;
        store::Library library({old.path(), true}, old.userFolder());
        store::Connection &log = library.connection(old.log());
        QVERIFY(!log.keepsTally());
        QCOMPARE(log.singleNumber(QStringLiteral("PRAGMA user_version")), 1);
        QVERIFY(old.copies().isEmpty());
    }

    void failingDisk_data()
    {
        QTest::addColumn<int>("fault");
        QTest::newRow("full") << int(FaultyDisk::Fault::DiskFull);
        QTest::newRow("write error") << int(FaultyDisk::Fault::WriteError);
        QTest::newRow("flush error") << int(FaultyDisk::Fault::SyncError);
        QTest::newRow("half a write") << int(FaultyDisk::Fault::ShortWrite);
    }
    /// All or nothing: wherever it breaks off, the file is the old one, and the next opening completes it.
    void failingDisk()
    {
        QFETCH(int, fault);
        const QStringList objects = objectsOfANewLog();
        bool succeeded = false;
        int failures = 0;
        for (int n = 1; n <= 400 && !succeeded; ++n) {
            const OldFolder old;
            QStringList before;
            {
                store::Connection file(old.log(), store::OpenMode::ReadWrite);
                before = rows(file, kContacts);
            }
            FaultyDisk::failFrom(n, FaultyDisk::Fault(fault));
            try {
                store::Library library({old.path(), false}, old.userFolder());
                (void)library.connection(old.log());
                succeeded = true;
            } catch (const store::Error &) {
                ++failures;
            }
            FaultyDisk::failFrom(0, FaultyDisk::Fault(fault));
            {
                store::Connection file(old.log(), store::OpenMode::ReadWrite);
                const bool complete = file.singleNumber(QStringLiteral("PRAGMA user_version")) != 1;
                QCOMPARE(rows(file, kObjects) == objects, complete);
                QCOMPARE(rows(file, kContacts), before);
            }
            store::Library library({old.path(), false}, old.userFolder());
            store::Connection &log = library.connection(old.log());
            QCOMPARE(rows(log, kObjects), objects);
            QCOMPARE(rows(log, kContacts), before);
            QCOMPARE(tallied(log), counted(log));
            QCOMPARE(log.single(QStringLiteral("PRAGMA integrity_check")).value(), QStringLiteral("ok"));
        }
        QVERIFY(succeeded);
        QVERIFY(failures > 3);
    }
};

QTEST_GUILESS_MAIN(LogUpgradeTest)
#include "logupgrade.moc"
