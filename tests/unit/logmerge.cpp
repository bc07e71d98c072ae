// Merging one log into another, and the repair of dates and times.
#include "interchange/logmerge.h"
#include "support/faultyvfs.h"
#include "support/installation.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>

#include <csignal>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using interchange::LogMerge;
using interchange::MergeCounters;
using testsupport::FaultyDisk;
using testsupport::Installation;

namespace {

constexpr auto kLog = "dbiaru.mdb";
const QStringList kFields = {"ccall", "ddate", "ttime",  "bband", "rsts", "rstr",  "ps1",
                             "QTH",   "NNAME", "QSLVIA", "QSLP",  "QSLO", "CONTR", "PRF"};
enum { Call, Date, Time, Band, Sent, Received, Mode, Town, Name, Route, In, Out, Country, Mark, Count };

using Row = QStringList; ///< texts in the order of kFields
using Rows = QList<Row>;

Row contact(const QString &call, const QString &date = QStringLiteral("05.03.02"))
{
    return {
        call, date, "14:07", "14",      "599", "579", "CW", QStringLiteral("Москва"), QStringLiteral("Олег"),
        {},   {},   {},      "RUSSIAN", "ABC"};
}

/// Two installations: a log and the one that is merged into it.
struct Two {
    Installation target;
    Installation source;

    [[nodiscard]] QString from() const { return source.file(QLatin1String(kLog)); }
    [[nodiscard]] QString to() const { return target.file(QLatin1String(kLog)); }
    MergeCounters merge()
    {
        LogMerge merge(target.databases, from(), to());
        merge.run([](const MergeCounters &) { return true; }, {});
        return merge.counters();
    }
};

void fill(const Installation &in, const Rows &rows)
{
    store::Connection log(in.file(QLatin1String(kLog)), store::OpenMode::ReadWrite);
    store::Transaction transaction(log);
    for (const Row &row : rows) {
        store::Values values;
        for (const QString &text : row)
            values.append(text);
        log.exec(QStringLiteral("INSERT INTO TBLLOG1(%1) VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?,?)")
                     .arg(kFields.join(QLatin1Char(','))),
                 values);
    }
    transaction.commit();
}

Rows rowsOf(const Installation &in)
{
    store::Connection log(in.file(QLatin1String(kLog)), store::OpenMode::ReadWrite);
    store::Cursor cursor =
        log.run(QStringLiteral("SELECT %1 FROM TBLLOG1 ORDER BY rowid").arg(kFields.join(QLatin1Char(','))));
    Rows rows;
    while (cursor.next()) {
        Row row;
        for (int i = 0; i < Count; ++i)
            row.append(cursor.text(i));
        rows.append(row);
    }
    return rows;
}

/// "=" of a stored text and a value: letter case does not count, nor do blanks at the value's end.
bool equals(const QString &stored, const QString &value)
{
    QString bare = value;
    while (bare.endsWith(QLatin1Char(' ')))
        bare.chop(1);
    return stored.compare(value, Qt::CaseInsensitive) == 0 || stored.compare(bare, Qt::CaseInsensitive) == 0;
}

/// The same merge, row by row in memory.
int mergeByHand(Rows &source, Rows &target)
{
    int added = 0;
    for (Row &row : source) {
        const auto same = std::find_if(target.begin(), target.end(), [&](const Row &other) {
            return equals(other[Call], row[Call]) && equals(other[Date], row[Date]) &&
                   equals(other[Band], row[Band]) && equals(other[Sent], row[Sent]);
        });
        if (same == target.end()) {
            target.append(row);
            ++added;
            continue;
        }
        for (const int field : {In, Out, Route}) {
            if ((*same)[field].isEmpty())
                (*same)[field] = row[field];
            else if (row[field].isEmpty())
                row[field] = (*same)[field];
        }
    }
    return added;
}

} // namespace

class LogMergeTest : public QObject {
    Q_OBJECT

    FaultyDisk m_disk;

private Q_SLOTS:
    void cleanup() { FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull); }

    void addsWhatIsMissing()
    {
        Two logs;
        fill(logs.target, {contact("R1A")});
        fill(logs.source, {contact("R1B"), contact("R1A"), contact("R1C")});
        const MergeCounters counters = logs.merge();
        QCOMPARE(counters.total, 3);
        QCOMPARE(counters.added, 2);
        QCOMPARE(counters.examined, 3);
        QCOMPARE(counters.marked, 0);
        QCOMPARE(rowsOf(logs.target), Rows({contact("R1A"), contact("R1B"), contact("R1C")}));
        QCOMPARE(rowsOf(logs.source), Rows({contact("R1B"), contact("R1A"), contact("R1C")}));
        QCOMPARE(QDir(logs.target.userFolder()).entryList({"dbiaru.*.mdb"}).size(), 2); // of both files
    }

    void whatIsTheSameContact_data()
    {
        QTest::addColumn<int>("field");
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("same");
        QTest::newRow("callsign") << int(Call) << "R1B" << false;
        QTest::newRow("letter case of the callsign") << int(Call) << "r1a" << true;
        QTest::newRow("date") << int(Date) << "06.03.02" << false;
        QTest::newRow("band") << int(Band) << "7" << false;
        QTest::newRow("report sent") << int(Sent) << "589" << false;
        QTest::newRow("time") << int(Time) << "14:08" << true;
        QTest::newRow("report received") << int(Received) << "559" << true;
        QTest::newRow("mode") << int(Mode) << "SSB" << true;
        QTest::newRow("town") << int(Town) << "Тверь" << true;
        QTest::newRow("country") << int(Country) << "UKRAINE" << true;
    }
    void whatIsTheSameContact()
    {
        QFETCH(int, field);
        QFETCH(QString, value);
        QFETCH(bool, same);
        Two logs;
        Row other = contact("R1A");
        other[field] = value;
        fill(logs.target, {contact("R1A")});
        fill(logs.source, {other});
        QCOMPARE(logs.merge().added, same ? 0 : 1);
        QCOMPARE(rowsOf(logs.target), same ? Rows({contact("R1A")}) : Rows({contact("R1A"), other}));
    }

    void fieldsThatTheMergeKnowsAreCopied()
    {
        Two logs;
        fill(logs.source, {contact("R1A")});
        logs.source.sql(QLatin1String(kLog), QStringLiteral("UPDATE TBLLOG1 SET QSLP='+',QSLO='05.03.02',"
                                                            "QSLVIA='RW3A',ps='note',mult='2',CONT='EU'"));
        QCOMPARE(logs.merge().added, 1);
        QCOMPARE(
            logs.target.rows(QLatin1String(kLog), QStringLiteral("SELECT * FROM TBLLOG1")),
            QStringList("R1A|05.03.02|14:07|14|599|579||||CW||Москва|Олег|RW3A|+|05.03.02|RUSSIAN||ABC"));
    }

    void marksFlowBothWays_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("sourceAfter");
        QTest::addColumn<QString>("targetAfter");
        QTest::newRow("into the target") << "+"
                                         << ""
                                         << "+"
                                         << "+";
        QTest::newRow("into the source") << ""
                                         << "+"
                                         << "+"
                                         << "+";
        QTest::newRow("both have one") << "1"
                                       << "2"
                                       << "1"
                                       << "2";
        QTest::newRow("none has") << ""
                                  << ""
                                  << ""
                                  << "";
    }
    void marksFlowBothWays()
    {
        QFETCH(QString, source);
        QFETCH(QString, target);
        QFETCH(QString, sourceAfter);
        QFETCH(QString, targetAfter);
        for (const int field : {int(In), int(Out), int(Route)}) {
            Two logs;
            Row row = contact("R1A");
            row[field] = source;
            fill(logs.source, {row});
            row[field] = target;
            fill(logs.target, {row});
            const MergeCounters counters = logs.merge();
            QCOMPARE(counters.added, 0);
            QCOMPARE(counters.marked, target == targetAfter ? 0 : 1);
            QCOMPARE(counters.markedBack, source == sourceAfter ? 0 : 1);
            QCOMPARE(rowsOf(logs.source).front()[field], sourceAfter);
            QCOMPARE(rowsOf(logs.target).front()[field], targetAfter);
        }
    }

    void nullIsEmpty()
    {
        Two logs;
        logs.source.sql(QLatin1String(kLog),
                        QStringLiteral("INSERT INTO TBLLOG1(ccall,QSLP,rsts) VALUES(NULL,"
                                       "'+',NULL);"));
        logs.target.sql(QLatin1String(kLog),
                        QStringLiteral("INSERT INTO TBLLOG1(ccall,QSLP) VALUES('',NULL)"));
        QCOMPARE(logs.merge().added, 0);
        QCOMPARE(logs.target.rows(QLatin1String(kLog), QStringLiteral("SELECT QSLP FROM TBLLOG1")),
                 QStringList("+"));
    }

    void oddValues()
    {
        const Rows rows = {contact(""),       contact(" "),
                           contact("R1A "),   contact("R1A"),
                           contact("O'HARA"), contact("\"Q\""),
                           contact("РК3А"),   contact("рк3а"),
                           contact("*"),      contact("A;DROP"),
                           contact("x\ny"),   contact("A", "' or 1=1"),
                           contact("B", ""),  contact("C", "31.02.02 ")};
        Two logs;
        fill(logs.source, rows);
        Rows source = rows;
        Rows target;
        QCOMPARE(logs.merge().added, mergeByHand(source, target));
        QCOMPARE(rowsOf(logs.target), target);
        // A second time there is nothing to add, whatever stands in the rows.
        QCOMPARE(logs.merge().added, 0);
        QCOMPARE(rowsOf(logs.target), target);
        QCOMPARE(rowsOf(logs.source), rows);
    }

    void againstTheSameByHand()
    {
        std::mt19937 random(5);
        const auto pick = [&](const QStringList &texts) { return texts[int(random() % texts.size())]; };
        for (int round = 0; round < 30; ++round) {
            const auto log = [&] {
                Rows rows;
                const int count = int(random() % 60);
                for (int i = 0; i < count; ++i) {
                    Row row = contact(pick({"R1A", "r1a", "R1B", "R1A ", "", "РА1", "ра1", "X'Y", " "}),
                                      pick({"05.03.02", "06.03.02", ""}));
                    row[Time] = QString::number(random() % 5);
                    row[Band] = pick({"14", "7", "3,5", ""});
                    row[Sent] = pick({"599", "59", "", "59 "});
                    for (const int field : {In, Out, Route})
                        row[field] = pick({"", "", "+", "да"});
                    rows.append(row);
                }
                return rows;
            };
            Rows source = log();
            Rows target = log();
            Two logs;
            fill(logs.source, source);
            fill(logs.target, target);
            const int added = mergeByHand(source, target);
            QCOMPARE(logs.merge().added, added);
            QCOMPARE(rowsOf(logs.source), source);
            QCOMPARE(rowsOf(logs.target), target);
        }
    }

    void fileIntoItselfChangesNothing()
    {
        Installation in;
        Row marked = contact("R1A");
        marked[In] = QStringLiteral("+");
        const Rows rows = {contact("R1A"), marked, contact("R1A "), contact("")};
        fill(in, rows);
        const QString path = in.file(QLatin1String(kLog));
        const QString link = in.userFolder() + QStringLiteral("/dbiaru.mdb");
        QVERIFY(QFile::link(path, link));
        for (const QString &source : {path, link}) {
            LogMerge merge(in.databases, source, path);
            merge.run([](const MergeCounters &) { return true; }, {});
            QCOMPARE(merge.counters().total, 4);
            QCOMPARE(merge.counters().examined, 4);
            QCOMPARE(merge.counters().added, 0);
            QCOMPARE(rowsOf(in), rows);
        }
    }

    void emptySourceDoesNothing()
    {
        Two logs;
        fill(logs.target, {contact("R1A")});
        const MergeCounters counters = logs.merge();
        QCOMPARE(counters.total, 0);
        QCOMPARE(QDir(logs.target.userFolder()).entryList({"*.mdb"}), QStringList());
    }

    void sourceThatCannotBeWritten()
    {
        Two logs;
        Row marked = contact("R1A");
        marked[In] = QStringLiteral("+");
        fill(logs.target, {marked});
        fill(logs.source, {contact("R1A"), contact("R1B")});
        // Rights do not bind the superuser: the merge runs as nobody, who may write everything but the
        // source.
        constexpr uid_t kNobody = 65534;
        for (const Installation *in : {&logs.source, &logs.target})
            for (const QString &folder : {in->folder(), in->userFolder()})
                QCOMPARE(::chmod(QFile::encodeName(folder).constData(), 0777), 0);
        QCOMPARE(::chmod(QFile::encodeName(logs.to()).constData(), 0666), 0);
        QCOMPARE(::chmod(QFile::encodeName(logs.from()).constData(), 0444), 0);
        QCOMPARE(::chmod(QFile::encodeName(logs.source.folder()).constData(), 0555), 0);
        const bool root = ::geteuid() == 0;
        if (root)
            QCOMPARE(::seteuid(kNobody), 0);
        const MergeCounters counters = logs.merge();
        if (root)
            QCOMPARE(::seteuid(0), 0);
        QCOMPARE(::chmod(QFile::encodeName(logs.source.folder()).constData(), 0777), 0);
        QCOMPARE(counters.added, 1);
        QCOMPARE(counters.markedBack, 0);
        QCOMPARE(counters.keptBack, 1);
        QVERIFY(rowsOf(logs.source).front()[In].isEmpty());
    }

    void notALog()
    {
        Two logs;
        QVERIFY(QFile::remove(logs.from()));
        QVERIFY_THROWS_EXCEPTION(store::Error, (void)logs.merge());
        QFile text(logs.from());
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write("text") == 4);
        text.close();
        QVERIFY_THROWS_EXCEPTION(store::Error, (void)logs.merge());
        QCOMPARE(rowsOf(logs.target), Rows());
    }

    void stoppedAndGoneOn()
    {
        Two logs;
        Rows rows;
        for (int i = 0; i < 3000; ++i)
            rows.append(contact(QStringLiteral("R%1").arg(i)));
        fill(logs.source, rows);
        LogMerge merge(logs.target.databases, logs.from(), logs.to());
        QList<qint64> seen;
        merge.run(
            [&](const MergeCounters &counters) {
                seen.append(counters.examined);
                return counters.examined < 1000;
            },
            {});
        QVERIFY(merge.counters().stopped);
        QCOMPARE(merge.counters().examined, 1000);
        QCOMPARE(seen, QList<qint64>({0, 500, 1000, 1000}));
        QCOMPARE(rowsOf(logs.target), rows.mid(0, 1000));
        QCOMPARE(logs.merge().added, 2000);
        QCOMPARE(rowsOf(logs.target), rows);
    }

    void failingDisk()
    {
        bool succeeded = false;
        int failures = 0;
        for (int n = 1; n <= 200 && !succeeded; ++n) {
            Two logs;
            Row marked = contact("R1A");
            marked[In] = QStringLiteral("+");
            fill(logs.target, {contact("R1A")});
            fill(logs.source, {marked, contact("R1B")});
            FaultyDisk::failFrom(n, FaultyDisk::Fault::DiskFull);
            try {
                (void)logs.merge();
                succeeded = true;
            } catch (const store::Error &) {
                ++failures;
            }
            FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull);
            QCOMPARE(rowsOf(logs.source), Rows({marked, contact("R1B")}));
            const Rows merged = {marked, contact("R1B")};
            const Rows target = rowsOf(logs.target);
            QVERIFY(target == merged || (!succeeded && target == Rows({contact("R1A")})));
            (void)logs.merge(); // the disk is well again
            QCOMPARE(rowsOf(logs.target), merged);
        }
        QVERIFY(succeeded);
        QVERIFY2(failures > 8, qPrintable(QString::number(failures)));
    }

    /// A program killed at any moment: both files are whole, and a second merge finishes the work.
    void killed()
    {
        constexpr int kRows = 24'000;
        constexpr int kRounds = 8;
        Rows sourceRows;
        Rows targetRows;
        for (int i = 0; i < kRows; ++i) {
            Row row = contact(QStringLiteral("R%1").arg(i));
            row[Out] = i % 3 == 0 ? QStringLiteral("+") : QString();
            sourceRows.append(row);
            row[Out].clear();
            row[In] = i % 5 == 0 ? QStringLiteral("да") : QString();
            if (i % 2 == 0)
                targetRows.append(row);
        }
        Rows sourceAfter = sourceRows;
        Rows targetAfter = targetRows;
        {
            Two logs; // what an undisturbed merge gives
            fill(logs.source, sourceRows);
            fill(logs.target, targetRows);
            QCOMPARE(logs.merge().added, kRows / 2);
            sourceAfter = rowsOf(logs.source);
            targetAfter = rowsOf(logs.target);
        }
        std::mt19937 random(11);
        int cutOff = 0;
        for (int round = 0; round < kRounds; ++round) {
            Two logs;
            fill(logs.source, sourceRows);
            fill(logs.target, targetRows);
            int ends[2];
            QVERIFY(::pipe(ends) == 0);
            const pid_t child = ::fork();
            if (child == 0) {
                ::close(ends[0]);
                try {
                    store::Library databases({logs.target.folder(), false}, logs.target.userFolder());
                    LogMerge merge(databases, logs.from(), logs.to());
                    merge.run(
                        [&](const MergeCounters &) {
                            if (::write(ends[1], "x", 1) != 1)
                                ::_exit(3);
                            return true;
                        },
                        {});
                } catch (...) {
                    ::_exit(2);
                }
                ::pause();
            }
            ::close(ends[1]);
            char step = 0;
            QVERIFY(::read(ends[0], &step, 1) == 1);
            QElapsedTimer timer;
            timer.start();
            const qint64 microseconds = qint64(random() % 400'000);
            while (timer.nsecsElapsed() < microseconds * 1000) {
            }
            ::kill(child, SIGKILL);
            int status = 0;
            ::waitpid(child, &status, 0);
            ::close(ends[0]);
            QVERIFY(WIFSIGNALED(status));
            for (const Installation *in : {&logs.source, &logs.target})
                QCOMPARE(in->rows(QLatin1String(kLog), QStringLiteral("PRAGMA integrity_check")),
                         QStringList("ok"));
            cutOff += rowsOf(logs.target) == targetAfter ? 0 : 1;
            (void)logs.merge();
            QCOMPARE(rowsOf(logs.source), sourceAfter);
            QCOMPARE(rowsOf(logs.target), targetAfter);
        }
        QVERIFY(cutOff > 0);
    }

    void repairedTexts_data()
    {
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("expected");
        const char *months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
        for (int i = 0; i < 12; ++i)
            QTest::newRow(months[i]) << QStringLiteral("05-%1-02").arg(QLatin1String(months[i]))
                                     << QStringLiteral("05.%1.02").arg(i + 1, 2, 10, QLatin1Char('0'));
        QTest::newRow("four-digit year") << "31-Dec-1999"
                                         << "31.12.99";
        QTest::newRow("a sign that formats know") << "%3-Mar-02"
                                                  << "%3.03.02";
        QTest::newRow("other separators") << "05 Mar 02"
                                          << "05.03.02";
        for (const char *kept : {"05.03.02", "05-mar-02", "05-MAR-02", "5-Mar-02", "", "Mar", "05-Mai-02"})
            QTest::newRow(kept) << kept << "";
    }
    void repairedTexts()
    {
        QFETCH(QString, date);
        QFETCH(QString, expected);
        QCOMPARE(interchange::repairedDate(date).value_or(QString()), expected);
    }

    void repairedTimes_data()
    {
        QTest::addColumn<QString>("time");
        QTest::addColumn<QString>("expected");
        QTest::newRow("905") << "905"
                             << "9:05";
        QTest::newRow("1407") << "1407"
                              << "14:07";
        for (const char *kept : {"9:05", "14:07", "12", "12345", "", "9h5", "90٥"})
            QTest::newRow(kept) << kept << "";
    }
    void repairedTimes()
    {
        QFETCH(QString, time);
        QFETCH(QString, expected);
        QCOMPARE(interchange::repairedTime(time).value_or(QString()), expected);
    }

    void repairOfALog()
    {
        Installation in;
        Row foreign = contact("R1B", "05-Mar-02");
        foreign[Time] = QStringLiteral("905");
        fill(in, {contact("R1A"), foreign, contact("R1C", "")});
        const auto repair = [&] {
            return interchange::repairDatesAndTimes(in.databases, in.file(QLatin1String(kLog)),
                                                    [](qint64, qint64) { return true; }, {});
        };
        interchange::RepairCounters counters = repair();
        QCOMPARE(counters.visited, 3);
        QCOMPARE(counters.dates, 1);
        QCOMPARE(counters.times, 1);
        Row repaired = contact("R1B", "05.03.02");
        repaired[Time] = QStringLiteral("9:05");
        QCOMPARE(rowsOf(in), Rows({contact("R1A"), repaired, contact("R1C", "")}));
        QCOMPARE(QDir(in.userFolder()).entryList({"*.mdb"}).size(), 1);
        counters = repair();
        QCOMPARE(counters.dates + counters.times, 0);
        QCOMPARE(QDir(in.userFolder()).entryList({"*.mdb"}).size(), 1); // nothing to repair, no copy
    }
};

QTEST_GUILESS_MAIN(LogMergeTest)
#include "logmerge.moc"
