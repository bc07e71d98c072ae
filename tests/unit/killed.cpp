// A program killed at any moment while it records: every contact whose recording returned is on disk.
#include "logentry/recorder.h"
#include "support/installation.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

using testsupport::Desk;
using testsupport::Installation;

namespace {

/// Records contacts without end; after each one that was stored its number goes into the pipe.
[[noreturn]] void recordForever(const QString &folder, const QString &user, int pipe)
{
    try {
        store::Library library({folder, false}, user);
        logentry::Sources sources(library);
        (void)sources.open();
        logentry::EntryFields fields;
        logentry::EntryState state;
        state.parallelLog = true;
        interchange::EmergencyFile emergency({folder});
        logentry::Recorder recorder(sources, fields, state, emergency);
        fields.txtdate = QStringLiteral("05.03.26");
        for (qint32 number = 0;; ++number) {
            fields.txtcall = QStringLiteral("UA%1").arg(number);
            fields.txtcontr = QStringLiteral("RUSSIAN");
            const auto outcome = recorder.cmbadd_Click();
            if (outcome.notStored || outcome.notInParallelLog ||
                ::write(pipe, &number, sizeof number) != sizeof number)
                ::_exit(1);
        }
    } catch (...) {
        ::_exit(2);
    }
}

} // namespace

class KilledTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void acknowledgedContactsSurvive()
    {
        constexpr int kRounds = 120;
        std::mt19937 random(2026);
        qint64 acknowledged = 0;
        for (int round = 0; round < kRounds; ++round) {
            QTemporaryDir folder;
            QTemporaryDir user;
            {
                store::Library library({folder.path(), false}, user.path());
                (void)library.createMissingFiles();
            }
            int ends[2];
            QVERIFY(::pipe(ends) == 0);
            const pid_t child = ::fork();
            if (child == 0) {
                ::close(ends[0]);
                recordForever(folder.path(), user.path(), ends[1]);
            }
            ::close(ends[1]);
            // The first acknowledgement tells that recording is under way; the kill comes at any moment after
            // it.
            qint32 last = -1;
            QVERIFY(::read(ends[0], &last, sizeof last) == sizeof last);
            QElapsedTimer timer;
            timer.start();
            const qint64 microseconds = qint64(random() % 25000);
            while (timer.nsecsElapsed() < microseconds * 1000) {
            }
            ::kill(child, SIGKILL);
            int status = 0;
            ::waitpid(child, &status, 0);
            QVERIFY(WIFSIGNALED(status));
            qint32 number = 0;
            while (::read(ends[0], &number, sizeof number) == sizeof number)
                last = number;
            ::close(ends[0]);
            acknowledged += last + 1;

            store::Library library({folder.path(), false}, user.path());
            QCOMPARE(library.createMissingFiles(), QStringList());
            for (const char *file : {"dbiaru.mdb", "dblog.mdb"}) {
                store::Connection &log = library.connection(folder.filePath(QLatin1String(file)));
                QCOMPARE(log.single(QStringLiteral("PRAGMA integrity_check")).value(), QStringLiteral("ok"));
                const qint64 rows = log.singleNumber(QStringLiteral("SELECT count(*) FROM TBLLOG1"));
                QVERIFY2(
                    rows >= last + 1 && rows <= last + 2,
                    qPrintable(
                        QStringLiteral("%1: %2 of %3").arg(QLatin1String(file)).arg(rows).arg(last + 1)));
                for (qint64 i = 0; i <= last; ++i)
                    QCOMPARE(log.single(QStringLiteral(
                                            "SELECT ccall FROM TBLLOG1 ORDER BY rowid LIMIT 1 OFFSET ?"),
                                        {i})
                                 .value_or(QString()),
                             QStringLiteral("UA%1").arg(i));
            }
            store::Connection &main = library.connection(folder.filePath(QStringLiteral("dbiaru.mdb")));
            QCOMPARE(main.singleNumber(QStringLiteral("SELECT calls FROM zh_country WHERE contr='RUSSIAN'")),
                     main.singleNumber(QStringLiteral("SELECT count(*) FROM TBLLOG1")));
        }
        QVERIFY(acknowledged >= kRounds);
    }
};

QTEST_GUILESS_MAIN(KilledTest)
#include "killed.moc"
