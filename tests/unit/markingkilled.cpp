// A program killed at any moment while it marks a blank and empties it: all cards are marked or none, and no
// card is out of the blank without its mark.
#include "qsl/marking.h"
#include "support/installation.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

using testsupport::Installation;

namespace {

constexpr int kCards = 400;
constexpr auto kLog = "dbiaru.mdb";

[[noreturn]] void mark(const QString &folder, const QString &user, int pipe)
{
    try {
        store::Library databases({folder, false}, user);
        qsl::Sources sources(databases);
        (void)sources.open();
        qsl::Marking marking(sources);
        const char started = 's';
        if (::write(pipe, &started, 1) != 1)
            ::_exit(1);
        (void)marking.markSent(QDate(2026, 3, 5), [](int, int) { return true; });
        marking.emptyBlank();
    } catch (...) {
        ::_exit(2);
    }
    ::_exit(0);
}

using Child = pid_t;

/// Starts the marking in a process of its own; the timer starts when its window's sources are open.
Child start(const Installation &in, QElapsedTimer &timer)
{
    int ends[2];
    if (::pipe(ends) != 0)
        qFatal("no pipe");
    const Child child = ::fork();
    if (child == 0)
        mark(in.folder(), in.userFolder(), ends[1]);
    ::close(ends[1]);
    char started = 0;
    if (::read(ends[0], &started, 1) != 1)
        qFatal("the marking does not start");
    timer.start();
    ::close(ends[0]);
    return child;
}

} // namespace

class MarkingKilledTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void allOrNone()
    {
        constexpr int kRounds = 60;
        std::mt19937 random(2026);
        qint64 whole = 0;
        int unmarked = 0;
        int done = 0;
        for (int round = 0; round < kRounds; ++round) {
            Installation in;
            for (const char *table : {"TBLLOG1", "tbllogTEMP"})
                in.sql(QLatin1String(kLog),
                       QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE "
                                      "i<%1) INSERT INTO %2(ccall,ddate,bband) SELECT 'R'||i||'A', "
                                      "'05.03.02', '14' FROM n")
                           .arg(QString::number(kCards), QLatin1String(table)));
            QElapsedTimer timer;
            const Child child = start(in, timer);
            if (round == 0) { // how long the work takes when nobody disturbs it
                ::waitpid(child, nullptr, 0);
                whole = timer.nsecsElapsed();
            } else {
                const qint64 moment =
                    qint64(double(random()) / double(std::mt19937::max()) * 1.3 * double(whole));
                while (timer.nsecsElapsed() < moment) {
                }
                ::kill(child, SIGKILL);
                ::waitpid(child, nullptr, 0);
            }
            QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("PRAGMA integrity_check")),
                     QStringList{"ok"});
            const qsizetype marks =
                in.rows(QLatin1String(kLog),
                        QStringLiteral("SELECT ccall FROM TBLLOG1 WHERE qslo='05.03.2026'"))
                    .size();
            const qsizetype cards =
                in.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall FROM tbllogTEMP")).size();
            QVERIFY2(marks == 0 || marks == kCards, qPrintable(QString::number(marks)));
            QVERIFY2(cards == 0 || cards == kCards, qPrintable(QString::number(cards)));
            QVERIFY(cards == kCards || marks == kCards);
            (marks == 0 ? unmarked : done) += 1;
        }
        QVERIFY2(unmarked > 0 && done > 0, qPrintable(QStringLiteral("%1, %2").arg(unmarked).arg(done)));
    }
};

QTEST_GUILESS_MAIN(MarkingKilledTest)
#include "markingkilled.moc"
