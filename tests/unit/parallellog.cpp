// Parallel log: loading and emptying, whole or not at all.
#include "logentry/parallellog.h"

#include "logentry/sql.h"
#include "support/installation.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>

#include <csignal>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

using logentry::ParallelLog;
using testsupport::Desk;
using testsupport::Installation;

namespace {

constexpr auto kMain = "dbiaru.mdb";
constexpr auto kParallel = "dblog.mdb";

void fill(const Installation &in, int rows)
{
    in.sql(
        QLatin1String(kParallel),
        QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1) INSERT INTO "
                       "TBLLOG1(ccall,ddate,CONTR,QTH) SELECT 'DL'||i, '05.03.26', 'GERMANY', 'Köln' FROM n")
            .arg(rows));
}

QString count(const Installation &in, const char *file)
{
    return in.rows(QLatin1String(file), QStringLiteral("SELECT count(*) FROM TBLLOG1")).front();
}

} // namespace

class ParallelLogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void statements()
    {
        QCOMPARE(logentry::sql::emptyParallelLog().toString(),
                 QStringLiteral("DELETE tbllog1.* FROM tbllog1;"));
        QCOMPARE(logentry::sql::loadParallelLog(u"/a/dbiaru.mdb").toString(),
                 QStringLiteral("INSERT INTO tbllog1 in '/a/dbiaru.mdb'  SELECT tbllog1.* From tbllog1 ;"));
    }

    void loadedRowsFollowTheOthers()
    {
        Installation in;
        in.addContact(QStringLiteral("OLD1"), QStringLiteral("01.01.26"), QStringLiteral("FRANCE"));
        fill(in, 3);
        in.sql(QLatin1String(kParallel),
               QStringLiteral("ALTER TABLE TBLLOG1 ADD COLUMN extra TEXT DEFAULT ''; UPDATE "
                              "TBLLOG1 SET extra='kept', PRF='XYZ'"));
        Desk desk(in);
        ParallelLog log(desk.sources);
        QStringList told;
        const auto telling = [&](const char *what) {
            return [&told, what](qint64 done, qint64 total) {
                told.append(QStringLiteral("%1 %2/%3").arg(QLatin1String(what)).arg(done).arg(total));
            };
        };
        QCOMPARE(log.load(telling("copy"), telling("rows")), 3);
        QCOMPARE(told.last(), QStringLiteral("rows 3/3"));
        QVERIFY(told.first().startsWith(QStringLiteral("copy ")));
        QCOMPARE(in.rows(QLatin1String(kMain),
                         QStringLiteral("SELECT ccall,QTH,ps1,PRF,extra FROM TBLLOG1 ORDER BY "
                                        "rowid")),
                 QStringList({"OLD1||||", "DL1|Köln||XYZ|kept", "DL2|Köln||XYZ|kept", "DL3|Köln||XYZ|kept"}));
        QCOMPARE(count(in, kParallel), QStringLiteral("3"));
        QCOMPARE(QDir(in.userFolder()).entryList({QStringLiteral("dbiaru.*.mdb")}).size(),
                 1); // as it was before
        // Nothing is tested for being there.
        QCOMPARE(log.load({}, {}), 3);
        QCOMPARE(count(in, kMain), QStringLiteral("7"));
        log.empty();
        QCOMPARE(count(in, kParallel), QStringLiteral("0"));
        QCOMPARE(count(in, kMain), QStringLiteral("7"));
        QCOMPARE(log.load({}, {}), 0);
    }

    void missingFile()
    {
        Installation in;
        Desk desk(in);
        ParallelLog log(desk.sources);
        QVERIFY(QFile::remove(in.file(QLatin1String(kParallel)))); // under the open connection
        const auto missing = [&](auto &&operation) {
            try {
                operation();
            } catch (const store::Error &error) {
                return error.kind() == store::ErrorKind::Missing;
            }
            return false;
        };
        QVERIFY(missing([&] { (void)log.load({}, {}); }));
        QVERIFY(missing([&] { log.empty(); }));
        QVERIFY(!QFile::exists(in.file(QLatin1String(kParallel))));
        QCOMPARE(count(in, kMain), QStringLiteral("0"));
    }

    void failingRowMovesNothing()
    {
        Installation in;
        fill(in, 12'000);
        in.sql(QLatin1String(kMain),
               QStringLiteral("CREATE TRIGGER refuse BEFORE INSERT ON TBLLOG1 WHEN "
                              "new.ccall='DL11000' BEGIN SELECT RAISE(ABORT,'no'); END"));
        Desk desk(in);
        QVERIFY_THROWS_EXCEPTION(store::Error,
                                 (void)ParallelLog(desk.sources).load({}, [](qint64, qint64) {}));
        QCOMPARE(count(in, kMain), QStringLiteral("0"));
        QCOMPARE(count(in, kParallel), QStringLiteral("12000"));
    }

    void apostropheInTheFolder()
    {
        QTemporaryDir parent;
        const QString folder = parent.filePath(QStringLiteral("O'Hara's журнал"));
        QVERIFY(QDir().mkpath(folder));
        store::Library library({folder, false}, parent.filePath(QStringLiteral("copies")));
        (void)library.createMissingFiles();
        logentry::Sources sources(library);
        QCOMPARE(sources.open().size(), 0);
        sources.Data15.addNew();
        sources.Data15.setField(QStringLiteral("ccall"), QStringLiteral("DL1A"));
        sources.Data15.update();
        QCOMPARE(ParallelLog(sources).load({}, {}), 1);
        sources.Data1.refresh();
        QCOMPARE(sources.Data1.field(QStringLiteral("ccall")), QStringLiteral("DL1A"));
    }

    /// A program killed at any moment while it loads 30,000 contacts: none of them or all are in the main
    /// log.
    void killedWhileLoading()
    {
        constexpr int kRows = 30'000;
        constexpr int kRounds = 12;
        std::mt19937 random(2026);
        int none = 0;
        for (int round = 0; round < kRounds; ++round) {
            Installation in;
            fill(in, kRows);
            int ends[2];
            QVERIFY(::pipe(ends) == 0);
            const pid_t child = ::fork();
            if (child == 0) {
                ::close(ends[0]);
                try {
                    store::Library library({in.folder(), false}, in.userFolder());
                    logentry::Sources sources(library);
                    (void)sources.open();
                    (void)ParallelLog(sources).load({}, [&](qint64, qint64) {
                        if (::write(ends[1], "x", 1) != 1)
                            ::_exit(3);
                    });
                } catch (...) {
                    ::_exit(2);
                }
                ::pause();
            }
            ::close(ends[1]);
            char step = 0;
            QVERIFY(::read(ends[0], &step, 1) == 1); // the first chunk is in
            QElapsedTimer timer;
            timer.start();
            const qint64 microseconds = qint64(random() % (round % 2 == 0 ? 20'000 : 600'000));
            while (timer.nsecsElapsed() < microseconds * 1000) {
            }
            ::kill(child, SIGKILL);
            int status = 0;
            ::waitpid(child, &status, 0);
            ::close(ends[0]);
            QVERIFY(WIFSIGNALED(status));
            const QString rows = count(in, kMain);
            QVERIFY2(rows == QLatin1String("0") || rows == QString::number(kRows), qPrintable(rows));
            none += rows == QLatin1String("0") ? 1 : 0;
            QCOMPARE(count(in, kParallel), QString::number(kRows));
            QCOMPARE(in.rows(QLatin1String(kMain), QStringLiteral("PRAGMA integrity_check")),
                     QStringList({"ok"}));
        }
        QVERIFY(none > 0); // some of the kills came before the end
    }
};

QTEST_GUILESS_MAIN(ParallelLogTest)
#include "parallellog.moc"
