#include "store/datasource.h"

#include "support/installation.h"

#include <QSignalSpy>
#include <QTest>

#include <random>

using store::DataSource;
using store::SqlText;
using testsupport::Installation;

namespace {

constexpr auto kLog = "dbiaru.mdb";

}

class DataSourceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void emptySource()
    {
        Installation in;
        DataSource source(QStringLiteral("Data1"), in.databases);
        source.setDatabaseName(in.file(kLog));
        source.setRecordSource(u"TBLLOG1");
        source.refresh();
        QVERIFY(source.isEmpty());
        QVERIFY(source.eof());
        QCOMPARE(source.recordCount(), 0);
        QCOMPARE(source.fieldNames().size(), 19);
        QCOMPARE(source.field(QStringLiteral("CCALL")), QString());
        source.setField(QStringLiteral("ccall"), QStringLiteral("X")); // without a row: nothing
        QVERIFY(!source.editPending());
        source.moveFirst();
        source.moveNext();
        source.moveLast();
        QVERIFY(source.eof());
    }

    void addedRowIsSavedByRefresh()
    {
        Installation in;
        DataSource source(QStringLiteral("Data1"), in.databases);
        source.setDatabaseName(in.file(kLog));
        source.setRecordSource(u"TBLLOG1");
        source.refresh();
        source.addNew();
        source.setField(QStringLiteral("CCALL"), QStringLiteral("UA3ABC"));
        source.setField(QStringLiteral("qth"), QStringLiteral("O'Brien \"X\""));
        source.setField(QStringLiteral("nosuch"), QStringLiteral("?"));
        QCOMPARE(source.field(QStringLiteral("ccall")), QStringLiteral("UA3ABC"));
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT count(*) FROM TBLLOG1")), QStringList({"0"}));
        source.refresh();
        QVERIFY(!source.editPending());
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ccall,QTH,ps,PRF FROM TBLLOG1")),
                 QStringList({"UA3ABC|O'Brien \"X\"||"}));
        QCOMPARE(source.field(QStringLiteral("QTH")), QStringLiteral("O'Brien \"X\""));
    }

    /// An emptied table gives its keys out again: what was typed must not go into another contact.
    void editOfARowWhoseKeyIsAnothersNowIsRefused()
    {
        Installation in;
        const QString insert =
            QStringLiteral("INSERT INTO tbllogTEMP(ccall,ddate) VALUES('%1','05.03.26'),('%2','05.03.26')");
        in.sql(kLog, insert.arg(QStringLiteral("DL1A"), QStringLiteral("DL1B")));
        DataSource source(QStringLiteral("Data3"), in.databases);
        source.setDatabaseName(in.file(kLog));
        source.setRecordSource(u"select * from tbllogTemp order by ccall");
        source.refresh();
        source.moveTo(1);
        const auto mark = source.mark(1);
        QVERIFY(mark.has_value());
        source.setField(QStringLiteral("ps"), QStringLiteral("typed"));
        in.sql(kLog, QStringLiteral("DELETE FROM tbllogTEMP"));
        in.sql(kLog, insert.arg(QStringLiteral("F5A"), QStringLiteral("F5B")));
        try {
            source.update();
            QFAIL("saved");
        } catch (const store::Error &error) {
            QCOMPARE(int(error.kind()), int(store::ErrorKind::Gone));
            QCOMPARE(error.engineText(), QStringLiteral("«typed»"));
        }
        QVERIFY(source.editPending()); // whoever shows it decides
        source.cancelUpdate();
        source.refresh();
        QCOMPARE(source.find(*mark), -1);
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ccall,ps FROM tbllogTEMP")),
                 QStringList({"F5A|", "F5B|"}));
    }

    void rowIsFoundAgainByItsMark()
    {
        Installation in;
        in.sql(kLog, QStringLiteral("INSERT INTO tbllogTEMP(ccall,bband,ttime) VALUES('DL1A',14,NULL)"));
        DataSource source(QStringLiteral("Data3"), in.databases);
        source.setDatabaseName(in.file(kLog));
        source.setRecordSource(u"select * from tbllogTemp order by ccall");
        source.refresh();
        const auto mark = source.mark(0);
        in.sql(kLog, QStringLiteral("INSERT INTO tbllogTEMP(ccall) VALUES('AA1A')"));
        source.refresh();
        QCOMPARE(source.find(*mark), 1);
        source.moveTo(1);
        source.setField(QStringLiteral("bband"), QStringLiteral("21")); // a number and a null are known again
        source.update();
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ccall,bband FROM tbllogTEMP ORDER BY rowid")),
                 QStringList({"DL1A|21", "AA1A|"}));
        source.setField(QStringLiteral("ccall"), QStringLiteral("DL1C")); // also after it has been changed
        source.update();
        source.setField(QStringLiteral("ps"), QStringLiteral("x"));
        source.update();
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ccall,ps FROM tbllogTEMP ORDER BY rowid LIMIT 1")),
                 QStringList({"DL1C|x"}));
    }

    void editIsSavedByMoving()
    {
        Installation in;
        for (int i = 0; i < 3; ++i)
            in.addContact(QStringLiteral("UA%1").arg(i), QString(), QString());
        DataSource source(QStringLiteral("Data5"), in.databases);
        source.setDatabaseName(in.file(kLog));
        source.setRecordSource(u"TBLLOG1");
        source.refresh();
        source.moveNext();
        source.setField(QStringLiteral("ps"), QStringLiteral("заметка"));
        QCOMPARE(source.text(1, QStringLiteral("ps")), QStringLiteral("заметка"));
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ps FROM TBLLOG1")), QStringList({"", "", ""}));
        source.moveNext();
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ps FROM TBLLOG1")), QStringList({"", "заметка", ""}));
        source.setField(QStringLiteral("ps"), QStringLiteral("нет"));
        source.cancelUpdate();
        source.refresh();
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ps FROM TBLLOG1")), QStringList({"", "заметка", ""}));
        source.moveLast();
        source.moveNext();
        QVERIFY(source.eof());
        QCOMPARE(source.field(QStringLiteral("ccall")), QString());
    }

    void removedRow()
    {
        Installation in;
        for (int i = 0; i < 3; ++i)
            in.addContact(QStringLiteral("UA%1").arg(i), QString(), QString());
        DataSource source(QStringLiteral("Data5"), in.databases);
        source.setDatabaseName(in.file(kLog));
        source.setRecordSource(u"TBLLOG1");
        source.refresh();
        source.moveTo(1);
        source.setField(QStringLiteral("ps"), QStringLiteral("пропадёт"));
        source.removeRow(1);
        QCOMPARE(source.knownRows(), 2);
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ccall||ps FROM TBLLOG1")), QStringList({"UA0", "UA2"}));
    }

    void failedSavingKeepsTheEdit()
    {
        Installation in;
        in.addContact(QStringLiteral("UA1"), QString(), QString());
        DataSource source(QStringLiteral("Data5"), in.databases);
        source.setDatabaseName(in.file(kLog));
        source.setRecordSource(u"TBLLOG1");
        source.refresh();
        source.setField(QStringLiteral("ps"), QStringLiteral("важно"));
        {
            store::Connection other(in.file(kLog), store::OpenMode::ReadWrite);
            store::Transaction lock(other);
            other.exec(QStringLiteral("UPDATE TBLLOG1 SET PS2='x'"));
            bool locked = false;
            try {
                source.moveNext();
            } catch (const store::Error &error) {
                locked = error.kind() == store::ErrorKind::Locked;
            }
            QVERIFY(locked);
        }
        QVERIFY(source.editPending());
        QCOMPARE(source.field(QStringLiteral("ps")), QStringLiteral("важно"));
        source.update();
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ps FROM TBLLOG1")), QStringList({"важно"}));
    }

    void failedQueryLeavesAnEmptySource()
    {
        Installation in;
        in.addContact(QStringLiteral("UA1"), QString(), QString());
        DataSource source(QStringLiteral("Data5"), in.databases);
        source.setDatabaseName(in.file(kLog));
        source.setRecordSource(u"TBLLOG1");
        source.refresh();
        source.setRecordSource(u"select * from tbllog1 where ddate=datevalue('x')");
        QVERIFY_THROWS_EXCEPTION(store::Error, source.refresh());
        QVERIFY(source.isEmpty());
        QCOMPARE(source.field(QStringLiteral("ccall")), QString());
        source.setRecordSource(u"TBLLOG1");
        source.refresh();
        QCOMPARE(source.field(QStringLiteral("ccall")), QStringLiteral("UA1"));
    }

    void pagesGiveEveryRowOnce()
    {
        Installation in;
        constexpr int kRows = 1500;
        in.sql(kLog,
               QStringLiteral(
                   "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i+1 FROM n WHERE i<%1) INSERT INTO "
                   "TBLLOG1(ccall,ddate,ttime) SELECT 'U'||printf('%04d',(i*7919)%1000),'05.03.26',i FROM n")
                   .arg(kRows - 1));
        struct Case {
            const char16_t *text;
            int rows;
        };
        for (const Case &c : {Case{u"TBLLOG1", kRows}, Case{u"select distinct ccall from tbllog1", 1000},
                              Case{u"select * from tbllog1 order by ccall", kRows},
                              Case{u"select distinct ccall,ttime from tbllog1", kRows},
                              Case{u"select * from tbllog1 where ddate=datevalue('05.03.26')", kRows}}) {
            DataSource paged(QStringLiteral("a"), in.databases);
            paged.setDatabaseName(in.file(kLog));
            paged.setRecordSource(c.text);
            paged.refresh();
            QVERIFY(paged.recordCount() < c.rows); // lazy: the full count comes with moveLast
            QStringList walked;
            while (!paged.eof()) {
                walked.append(paged.field(QStringLiteral("ccall")) + paged.field(QStringLiteral("ttime")));
                paged.moveNext();
            }
            QCOMPARE(walked.size(), c.rows);
            DataSource whole(QStringLiteral("b"), in.databases);
            whole.setDatabaseName(in.file(kLog));
            whole.setRecordSource(c.text);
            whole.refresh();
            whole.moveLast();
            QCOMPARE(whole.recordCount(), c.rows);
            for (int i = 0; i < c.rows; ++i)
                QCOMPARE(whole.text(i, QStringLiteral("ccall")) + whole.text(i, QStringLiteral("ttime")),
                         walked[i]);
        }
    }

    /// The counts of different callsigns of a country come from counters; they agree with counting, whatever
    /// is done to the log, by whichever program.
    void countersAgreeWithCounting()
    {
        Installation in;
        std::mt19937 random(7);
        const QStringList countries = {QStringLiteral("RUSSIAN"), QStringLiteral("russian"),
                                       QStringLiteral("GERMANY"), QString(), QStringLiteral("ITALY")};
        const QStringList marks = {QString(), QStringLiteral("+"), QStringLiteral(" ")};
        const auto pick = [&random](const QStringList &from) {
            return from[qsizetype(random() % std::size_t(from.size()))];
        };
        DataSource counts(QStringLiteral("Data4"), in.databases);
        counts.setDatabaseName(in.file(kLog));
        store::Connection other(in.file(kLog), store::OpenMode::ReadWrite);
        for (int round = 0; round < 600; ++round) {
            const QString call = QStringLiteral("UA%1").arg(random() % 12);
            const QString again = QStringLiteral("ua%1").arg(random() % 12);
            switch (random() % 4) {
            case 0:
            case 1:
                in.addContact(call, QStringLiteral("05.03.26"), pick(countries), pick(marks));
                break;
            case 2:
                other.exec(
                    QStringLiteral(
                        "UPDATE TBLLOG1 SET CONTR=?,ccall=?,QSLP=? WHERE rowid=(SELECT rowid FROM TBLLOG1 "
                        "WHERE ccall=? LIMIT 1)"),
                    {pick(countries), again, pick(marks), call});
                break;
            default:
                other.exec(
                    QStringLiteral(
                        "DELETE FROM TBLLOG1 WHERE rowid=(SELECT rowid FROM TBLLOG1 WHERE ccall=? LIMIT 1)"),
                    {call});
            }
            for (const char *country : {"RUSSIAN", "GERMANY", "ITALY", "NOWHERE"}) {
                for (const bool cards : {false, true}) {
                    SqlText text = SqlText()
                                       .text(u"select distinct ccall from tbllog1 where CONTR ='")
                                       .value(QLatin1String(country).toString())
                                       .text(cards ? u"' AND len(qslp)>'0'" : u"'");
                    counts.setRecordSource(text);
                    counts.refresh();
                    if (!counts.isEmpty())
                        counts.moveLast();
                    const QString expected =
                        other
                            .single(
                                QStringLiteral(
                                    "SELECT count(DISTINCT ccall COLLATE NOCASE) FROM TBLLOG1 WHERE CONTR=? "
                                    "COLLATE NOCASE%1")
                                    .arg(cards ? QStringLiteral(" AND length(QSLP)>0") : QString()),
                                {QLatin1String(country).toString()})
                            .value();
                    QCOMPARE(QString::number(counts.recordCount()), expected);
                }
            }
        }
        // More callsigns than a page: the counter itself is what is shown, and the last row can still be
        // read.
        in.sql(kLog,
               QStringLiteral(
                   "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<500) INSERT INTO "
                   "TBLLOG1(ccall,CONTR) SELECT 'ZZ'||printf('%04d',i),'JAPAN' FROM n"));
        counts.setRecordSource(u"select distinct ccall from tbllog1 where  CONTR ='JAPAN'");
        counts.refresh();
        QVERIFY(counts.recordCount() < 500);
        counts.moveLast();
        QCOMPARE(counts.recordCount(), 500);
        QCOMPARE(counts.field(QStringLiteral("ccall")), QStringLiteral("ZZ0500"));
    }

    /// What the log keeps tallied is counted without reading a row; the rows are there when they are wanted.
    void talliedCountsReadNothing()
    {
        Installation in;
        in.sql(kLog,
               QStringLiteral(
                   "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<300) INSERT INTO "
                   "TBLLOG1(ccall,CONTR,bband,QSLO) SELECT 'JA'||printf('%03d',i),'JAPAN','14',"
                   "CASE WHEN i%3=0 THEN ' ' END FROM n"));
        DataSource source(QStringLiteral("Data4"), in.databases);
        source.setDatabaseName(in.file(kLog));
        const auto statements = [&] { return in.databases.connection(in.file(kLog)).statementCount(); };
        qint64 before = statements();
        source.setRecordSource(
            u"select  qslo from tblLOG1 where contr='japan' and bband='14' and len(qslo)>'0'");
        source.refresh();
        QVERIFY(!source.isEmpty());
        source.moveLast();
        QCOMPARE(source.recordCount(), 100);
        QCOMPARE(source.currentRow(), 99);
        QVERIFY(!source.eof());
        QCOMPARE(statements() - before, 1);

        QCOMPARE(source.field(QStringLiteral("qslo")), QStringLiteral(" "));
        QCOMPARE(source.knownRows(), 100);
        source.setField(QStringLiteral("qslo"), QStringLiteral("05.03.26"));
        source.update();
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ccall FROM TBLLOG1 WHERE QSLO='05.03.26'")),
                 QStringList({"JA300"}));

        // Empty: nothing is read either.
        before = statements();
        source.setRecordSource(
            u"select  qslo from tblLOG1 where contr='japan' and bband='14' and len(qslp)>'0'");
        source.refresh();
        QVERIFY(source.isEmpty());
        QVERIFY(source.eof());
        source.moveLast();
        QCOMPARE(source.recordCount(), 0);
        QCOMPARE(statements() - before, 1);
        source.setField(QStringLiteral("qslo"), QStringLiteral("X"));
        QVERIFY(!source.editPending());
        QVERIFY(source.hasField(QStringLiteral("qslo")));
    }

    /// Another program takes rows away between the count and the reading.
    void talliedRowsThatAreGone()
    {
        Installation in;
        in.sql(kLog, QStringLiteral("INSERT INTO TBLLOG1(ccall,CONTR) VALUES('A','X'),('B','X'),('C','X')"));
        DataSource source(QStringLiteral("Data4"), in.databases);
        source.setDatabaseName(in.file(kLog));
        source.setRecordSource(u"select ccall from tbllog1 where contr='X'");
        source.refresh();
        source.moveLast();
        QCOMPARE(source.recordCount(), 3);
        in.sql(kLog, QStringLiteral("DELETE FROM TBLLOG1 WHERE ccall<>'A'"));
        source.setField(QStringLiteral("ccall"), QStringLiteral("Z"));
        QVERIFY(!source.editPending());
        QVERIFY(source.eof());
        QCOMPARE(source.recordCount(), 1);
        source.moveFirst();
        QCOMPARE(source.field(QStringLiteral("ccall")), QStringLiteral("A"));
    }

    /// The last row of a list that a view shows is read, that of one nobody looks at only counted.
    void movingToTheLastOfAShownList()
    {
        Installation in;
        in.sql(kLog,
               QStringLiteral(
                   "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<700) INSERT INTO "
                   "TBLLOG1(ccall) SELECT 'UA'||printf('%03d',i) FROM n"));
        DataSource source(QStringLiteral("Data2"), in.databases);
        source.setDatabaseName(in.file(kLog));
        source.setRecordSource(u"select distinct ccall from tblLOG1 ");
        source.refresh();
        source.moveLast();
        QCOMPARE(source.recordCount(), 700);
        QVERIFY(source.knownRows() < 700);
        QCOMPARE(source.text(699, QStringLiteral("ccall")), QStringLiteral("UA700"));
        QCOMPARE(source.knownRows(), 700);

        const QSignalSpy added(&source, &DataSource::rowsAdded);
        source.refresh();
        source.moveLast();
        QCOMPARE(source.knownRows(), 700);
        QCOMPARE(added.count(), 1);
    }

    void signalsForViews()
    {
        Installation in;
        in.addContact(QStringLiteral("UA1"), QString(), QString());
        DataSource source(QStringLiteral("Data5"), in.databases);
        source.setDatabaseName(in.file(kLog));
        source.setRecordSource(u"TBLLOG1");
        QSignalSpy before(&source, &DataSource::aboutToReset);
        QSignalSpy after(&source, &DataSource::wasReset);
        QSignalSpy changed(&source, &DataSource::rowChanged);
        source.refresh();
        QCOMPARE(before.count(), 1);
        QCOMPARE(after.count(), 1);
        source.setField(QStringLiteral("ps"), QStringLiteral("1"));
        QCOMPARE(changed.count(), 1);
    }

    /// The place in a sorted result stays when its other rows are read, unless another program has put rows
    /// before it.
    void sortedRowsAreAddedBehindTheKnownOnes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("rows") << QStringLiteral("select * from tbllog1 order by ccall");
        QTest::newRow("values") << QStringLiteral("select distinct ccall,bband from tbllog1 order by ccall");
    }
    void sortedRowsAreAddedBehindTheKnownOnes()
    {
        QFETCH(QString, text);
        Installation in;
        in.sql(kLog,
               QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<300) "
                              "INSERT INTO TBLLOG1(ccall) SELECT 'K'||printf('%03d',301-i) FROM n"));
        DataSource source(QStringLiteral("Data5"), in.databases);
        source.setDatabaseName(in.file(kLog));
        source.setRecordSource(text);
        source.refresh();
        const int known = source.knownRows();
        QVERIFY(known < 300);
        source.moveTo(known - 1);
        const QString call = source.field(QStringLiteral("ccall"));
        QSignalSpy reset(&source, &DataSource::wasReset);
        QSignalSpy added(&source, &DataSource::rowsAdded);
        source.fetchMore();
        QCOMPARE(reset.count(), 0);
        QCOMPARE(added.count(), 1);
        QCOMPARE(added.front().at(0).toInt(), known);
        QCOMPARE(added.front().at(1).toInt(), 299);
        QCOMPARE(source.field(QStringLiteral("ccall")), call);
        QCOMPARE(source.text(299, QStringLiteral("ccall")), QStringLiteral("K300"));
        QVERIFY(!source.canFetchMore());

        source.refresh();
        in.sql(kLog, QStringLiteral("INSERT INTO TBLLOG1(ccall) VALUES('A1')"));
        reset.clear();
        added.clear();
        source.fetchAll();
        QCOMPARE(reset.count(), 1);
        QCOMPARE(added.count(), 0);
        QCOMPARE(source.recordCount(), 301);
        QCOMPARE(source.text(0, QStringLiteral("ccall")), QStringLiteral("A1"));
        QCOMPARE(source.text(1, QStringLiteral("ccall")), QStringLiteral("K001"));
    }
};

QTEST_GUILESS_MAIN(DataSourceTest)
#include "datasource.moc"
