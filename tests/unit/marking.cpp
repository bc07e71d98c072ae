// Copying contacts into the blank, marking them as sent, entry by hand; also on failing disks.
#include "qsl/marking.h"
#include "base/date.h"
#include "qsl/sql.h"
#include "support/faultyvfs.h"
#include "support/installation.h"

#include <QFile>
#include <QTest>

using qsl::Marking;
using testsupport::FaultyDisk;
using testsupport::Installation;

namespace {

constexpr auto kLog = "dbiaru.mdb";
const QDate kToday(2026, 3, 5);
const qsl::BlankQuestions kNoQuestions{[]() -> QString { qFatal("time asked"); },
                                       []() -> bool { qFatal("report asked"); }};
const Marking::Step kGoOn = [](int, int) { return true; };

QString field(const char *name)
{
    return QString::fromUtf8(name);
}

/// The bureau without its window.
struct Bureau {
    explicit Bureau(Installation &installation) : sources(installation.databases), marking(sources)
    {
        if (!sources.open().isEmpty())
            qFatal("the files do not open");
    }
    qsl::Sources sources;
    Marking marking;
};

void addContact(const Installation &in, const QString &fields, const QString &values)
{
    in.sql(QLatin1String(kLog), QStringLiteral("INSERT INTO TBLLOG1(%1) VALUES(%2)").arg(fields, values));
}

QStringList log(const Installation &in, const char *columns)
{
    return in.rows(QLatin1String(kLog),
                   QStringLiteral("SELECT %1 FROM TBLLOG1 ORDER BY rowid").arg(QLatin1String(columns)));
}

QStringList blank(const Installation &in, const char *columns)
{
    return in.rows(QLatin1String(kLog),
                   QStringLiteral("SELECT %1 FROM tbllogTEMP ORDER BY rowid").arg(QLatin1String(columns)));
}

/// Contacts 1 to `count` on 05.03.02, all of them in the blank.
void fillBlank(const Installation &in, int count)
{
    for (const char *table : {"TBLLOG1", "tbllogTEMP"})
        in.sql(QLatin1String(kLog),
               QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1) "
                              "INSERT INTO %2(ccall,ddate,ttime,bband) SELECT 'R'||i||'A', '05.03.02', "
                              "'10:00', '14' FROM n")
                   .arg(QString::number(count), QLatin1String(table)));
}

} // namespace

class MarkingTest : public QObject {
    Q_OBJECT

    FaultyDisk m_disk;

private Q_SLOTS:
    void cleanup() { FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull); }

    void ownKey_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("key");
        QTest::newRow("none") << ""
                              << "OLD";
        QTest::newRow("one") << "U"
                             << "OLD";
        QTest::newRow("two") << "UA"
                             << "OLD";
        QTest::newRow("three") << "UA3"
                               << "UA3";
        QTest::newRow("four") << "UA3A"
                              << "OLD";
        QTest::newRow("five") << "UA3AB"
                              << "AB";
        QTest::newRow("six") << "UA3ABC"
                             << "ABC";
        QTest::newRow("longer than the log's mark") << "UA3ABCDEFG/P"
                                                    << "ABCDEFG/P";
    }
    void ownKey()
    {
        QFETCH(QString, call);
        QTEST(qsl::ownCallKey(call, QStringLiteral("OLD")), "key");
    }

    void time_data()
    {
        QTest::addColumn<QString>("cell");
        QTest::addColumn<QString>("time");
        QTest::newRow("one") << "7"
                             << "00:07";
        QTest::newRow("two") << "45"
                             << "00:45";
        QTest::newRow("three") << "945"
                               << "09:45";
        QTest::newRow("four stays") << "1245"
                                    << "1245";
        QTest::newRow("five stays") << "12:45"
                                    << "12:45";
        QTest::newRow("six is cut") << "12:4512"
                                    << "12:45";
        QTest::newRow("seconds are cut") << "12:34:56"
                                         << "12:34";
    }
    void time()
    {
        QFETCH(QString, cell);
        QFETCH(QString, time);
        QCOMPARE(base::blankTime(cell).value(), time);
        QVERIFY(!base::blankTime(QString()));
    }

    void report_data()
    {
        QTest::addColumn<QString>("report");
        QTest::addColumn<QString>("mode");
        QTest::addColumn<bool>("is599");
        QTest::addColumn<int>("asked");
        QTest::addColumn<QString>("copied");
        QTest::newRow("none") << ""
                              << "" << false << 0 << "|";
        QTest::newRow("one digit") << "5"
                                   << "" << false << 0 << "|";
        QTest::newRow("voice") << "57"
                               << "" << false << 0 << "57|SSB";
        QTest::newRow("telegraphy") << "579"
                                    << "" << false << 0 << "579|CW";
        QTest::newRow("contest, 599") << "599123"
                                      << "" << true << 1 << "599|CW";
        QTest::newRow("contest, 59") << "5901"
                                     << "" << false << 1 << "59|SSB";
        QTest::newRow("mode of the log") << "57"
                                         << "RTTY" << false << 0 << "57|RTTY";
        QTest::newRow("mode of the log after a contest") << "599123"
                                                         << "PSK" << true << 1 << "599|PSK";
        QTest::newRow("mode of the log alone") << ""
                                               << "SSTV" << false << 0 << "|SSTV";
    }
    void report()
    {
        QFETCH(QString, report);
        QFETCH(QString, mode);
        QFETCH(bool, is599);
        Installation in;
        addContact(in, field("ccall,ddate,ttime,bband,rsts,ps1"),
                   QStringLiteral("'R1A','05.03.02','10:00','14','%1','%2'").arg(report, mode));
        Bureau bureau(in);
        int asked = 0;
        bureau.marking.copyToBlank(0, {kNoQuestions.time, [&] {
                                           ++asked;
                                           return is599;
                                       }});
        QTEST(asked, "asked");
        QTEST(blank(in, "rsts,mult").join(QLatin1Char(';')), "copied");
        QCOMPARE(bureau.marking.blankCall(), QStringLiteral("R1A"));
    }

    void modeIsEmptyWhereTheStatementDoesNotDeliverIt()
    {
        Installation in;
        addContact(in, field("ccall,ddate,ttime,bband,rsts,ps1,prf"),
                   field("'R1A','05.03.02','10:00','14','57','RTTY','ABC'"));
        Bureau bureau(in);
        bureau.sources.Data1.setRecordSource(qsl::sql::contactsOfFoundCall(u"R1A", u"ABC"));
        bureau.sources.Data1.refresh();
        bureau.marking.copyToBlank(0, kNoQuestions);
        QCOMPARE(blank(in, "mult"), QStringList{"SSB"});
    }

    void route_data()
    {
        QTest::addColumn<QString>("cell");
        QTest::addColumn<QString>("book");
        QTest::addColumn<QString>("route");
        QTest::newRow("log") << "DL1ABC"
                             << ""
                             << "DL1ABC";
        QTest::newRow("log before callbook") << "DL1ABC"
                                             << "K1XX"
                                             << "DL1ABC";
        QTest::newRow("callbook") << ""
                                  << "K1XX"
                                  << "K1XX";
        QTest::newRow("neither") << ""
                                 << ""
                                 << "";
    }
    void route()
    {
        QFETCH(QString, cell);
        QFETCH(QString, book);
        Installation in;
        addContact(in, field("ccall,ddate,ttime,bband,qslvia"),
                   QStringLiteral("'R1A','05.03.02','10:00','14','%1'").arg(cell));
        in.sql(field("dbcalbuk.mdb"),
               QStringLiteral("INSERT INTO tblcalbuk(ccall,qslvia) VALUES('R1A','%1')").arg(book));
        Bureau bureau(in);
        bureau.marking.copyToBlank(0, kNoQuestions);
        QTEST(blank(in, "CONTR").constFirst(), "route");
        QCOMPARE(bureau.sources.Data11.field(field("qslvia")), book);
    }

    void copyTakesTheFieldsAndPointsTheHandEntry()
    {
        Installation in;
        addContact(in, field("ccall,ddate,ttime,bband,rsts,QTH"),
                   field("'R1A','05.03.02','9:05:07','14','59','Тула'"));
        addContact(in, field("ccall,ddate,ttime,bband,rsts,QTH"),
                   field("'R1A','06.03.02','1010','21','59','Орёл'"));
        Bureau bureau(in);
        bureau.marking.copyToBlank(1, kNoQuestions);
        QCOMPARE(blank(in, "ccall,ddate,ttime,bband,rsts,rstr,point"),
                 QStringList{"R1A|06.03.02|1010|21|59||"});
        QCOMPARE(bureau.sources.Data5.recordSource().toString(),
                 QStringLiteral("select * from tbllog1 where ccall='R1A' and ttime='1010'"));
        QCOMPARE(bureau.sources.Data5.field(field("QTH")), QStringLiteral("Орёл"));
    }

    void timeAskedFor()
    {
        Installation in;
        addContact(in, field("ccall,ddate,bband"), field("'R1A','05.03.02','14'"));
        Bureau bureau(in);
        bureau.marking.copyToBlank(0, {[] { return QStringLiteral("945"); }, kNoQuestions.contestIs599});
        QCOMPARE(log(in, "ttime"), QStringList{"945"});
        QCOMPARE(blank(in, "ttime"), QStringList{"09:45"});
        QCOMPARE(bureau.sources.Data5.field(field("ccall")), QStringLiteral("R1A"));
        in.sql(QLatin1String(kLog), field("UPDATE TBLLOG1 SET ttime=''"));
        bureau.sources.Data1.refresh();
        bureau.marking.copyToBlank(0, {[] { return QString(); }, kNoQuestions.contestIs599});
        QCOMPARE(log(in, "ttime"), QStringList{""});
        QCOMPARE(blank(in, "ttime"), QStringList({"09:45", ""}));
    }

    void aCallsignThatBreaksItsStatementLeavesTheBlank()
    {
        Installation in;
        addContact(in, field("ccall,ddate,ttime,bband"), field("'R1''A','05.03.02','10:00','14'"));
        Bureau bureau(in);
        QVERIFY_THROWS_EXCEPTION(store::Error, bureau.marking.copyToBlank(0, kNoQuestions));
        QCOMPARE(blank(in, "ccall"), QStringList());
        QVERIFY(!bureau.sources.Data3.editPending());
        // The hand entry works all the same, also where its statement had been broken.
        bureau.sources.Data5.setRecordSource(qsl::sql::contactsAtTime(u"R1'A", u"10:00"));
        QVERIFY_THROWS_EXCEPTION(store::Error, bureau.sources.Data5.refresh());
        bureau.marking.addContact({field("R2B")}, field("ABC"), field("RUSSIAN"));
        QCOMPARE(log(in, "ccall,PRF,CONTR"), QStringList({"R1'A||", "R2B|ABC|RUSSIAN"}));
    }

    void marksTheFirstStoredContact()
    {
        Installation in;
        const QString fields = field("ccall,ddate,ttime,bband,qslo");
        addContact(in, fields, field("'R1A','05.03.02','12:00','14',''"));
        addContact(in, fields, field("'R1A','5.3.2002','10:00','14',''")); // the same day
        addContact(in, fields, field("'R1A','05.03.02','10:00','21','old'"));
        addContact(in, fields, field("'R1A','06.03.02','10:00','14',''"));
        addContact(in, fields, field("'R1AB','05.03.02','10:00','14',''"));
        in.sql(QLatin1String(kLog), field("INSERT INTO tbllogTEMP(ccall,ddate,ttime,bband) "
                                          "VALUES('R1A','05.03.02','10:00','14'),"
                                          "('r1a','05.03.2002','','21'),('R1A','','','14'),"
                                          "('R9Z','05.03.02','10:00','14')"));
        Bureau bureau(in);
        const qsl::MarkResult result = bureau.marking.markSent(kToday, kGoOn);
        QCOMPARE(result.contacts, 2);
        QVERIFY(!result.refused && !result.stopped);
        QStringList missing;
        for (const qsl::Unmarked &row : result.notFound)
            missing.append(row.call + row.date);
        missing.sort();
        QCOMPARE(missing, QStringList({"R1A", "R9Z05.03.02"}));
        QCOMPARE(log(in, "qslo"), QStringList({"05.03.2026", "", "05.03.2026", "", ""}));
        QCOMPARE(blank(in, "ccall").size(), 4);
        bureau.marking.emptyBlank();
        QCOMPARE(blank(in, "ccall"), QStringList());
        QVERIFY(bureau.sources.Data3.isEmpty());
    }

    void contactsThatAnotherWindowHasPutIntoTheBlankAreMarked()
    {
        Installation in;
        Bureau bureau(in);
        fillBlank(in, 3);
        QCOMPARE(bureau.marking.markSent(kToday, kGoOn).contacts, 3);
        QCOMPARE(log(in, "DISTINCT qslo"), QStringList{"05.03.2026"});
    }

    void withoutACallbookTheRouteIsEmpty()
    {
        Installation in;
        addContact(in, field("ccall,ddate,ttime,bband,rsts"), field("'R1A','05.03.02','10:00','14','59'"));
        qsl::Sources sources(in.databases);
        QVERIFY(QFile::remove(in.file(field("dbcalbuk.mdb"))));
        QCOMPARE(sources.open().size(), 1);
        Marking marking(sources);
        marking.copyToBlank(0, kNoQuestions);
        QCOMPARE(blank(in, "ccall,rsts,CONTR"), QStringList{"R1A|59|"});
        QVERIFY(marking.callbookFailure().has_value());
        QCOMPARE(marking.callbookFailure()->kind(), store::ErrorKind::Missing);
    }

    void emptyBlankMarksNothing()
    {
        Installation in;
        addContact(in, field("ccall,ddate,bband"), field("'R1A','05.03.02','14'"));
        Bureau bureau(in);
        QCOMPARE(bureau.marking.markSent(kToday, kGoOn).contacts, 0);
        QCOMPARE(log(in, "qslo"), QStringList{""});
    }

    void aBadDateMarksNothingAndIsNamed()
    {
        Installation in;
        fillBlank(in, 5);
        in.sql(QLatin1String(kLog), field("UPDATE tbllogTEMP SET ddate='31.02.02' WHERE ccall='R4A'"));
        Bureau bureau(in);
        const qsl::MarkResult result = bureau.marking.markSent(kToday, kGoOn);
        QVERIFY(result.refused.has_value());
        QCOMPARE(result.contacts, 0);
        QCOMPARE(result.reason, QStringLiteral("неверная дата: 31.02.02"));
        QCOMPARE(result.refused->row, 4);
        QCOMPARE(result.refused->call, QStringLiteral("R4A"));
        QCOMPARE(result.refused->date, QStringLiteral("31.02.02"));
        QCOMPARE(log(in, "qslo"), QStringList({"", "", "", "", ""}));
        QCOMPARE(blank(in, "ccall").size(), 5);
        // Mended, the same blank is marked.
        in.sql(QLatin1String(kLog), field("UPDATE tbllogTEMP SET ddate='05.03.02'"));
        bureau.sources.Data3.refresh();
        QCOMPARE(bureau.marking.markSent(kToday, kGoOn).contacts, 5);
        QCOMPARE(log(in, "DISTINCT qslo"), QStringList{"05.03.2026"});
    }

    void aCallsignThatBreaksTheStatementIsNamedToo()
    {
        Installation in;
        fillBlank(in, 3);
        in.sql(QLatin1String(kLog), field("UPDATE tbllogTEMP SET ccall='R2''A' WHERE ccall='R2A'"));
        Bureau bureau(in);
        const qsl::MarkResult result = bureau.marking.markSent(kToday, kGoOn);
        QVERIFY(result.refused.has_value());
        QCOMPARE(result.refused->row, 2);
        QCOMPARE(result.refused->call, field("R2'A"));
        QVERIFY(result.reason.startsWith(field("недопустимый знак")));
        QCOMPARE(log(in, "DISTINCT qslo"), QStringList{""});
        QCOMPARE(blank(in, "ccall").size(), 3);
    }

    void stoppedMarksNothing()
    {
        Installation in;
        fillBlank(in, 5);
        Bureau bureau(in);
        QVERIFY(bureau.marking.markSent(kToday, [](int done, int) { return done < 4; }).stopped);
        QCOMPARE(log(in, "DISTINCT qslo"), QStringList{""});
        QCOMPARE(blank(in, "ccall").size(), 5);
    }

    void editsPendingElsewhereAreKept()
    {
        Installation in;
        fillBlank(in, 2);
        Bureau bureau(in);
        bureau.sources.Data1.setField(field("qslp"), field("да"));
        bureau.sources.Data3.setField(field("bband"), field("21")); // there is no such contact
        const qsl::MarkResult result = bureau.marking.markSent(kToday, kGoOn);
        QCOMPARE(result.contacts, 1);
        QCOMPARE(log(in, "ccall,qslp,qslo"), QStringList({"R1A|да|", "R2A||05.03.2026"}));
    }

    void marking_data()
    {
        QTest::addColumn<int>("fault");
        QTest::newRow("full") << int(FaultyDisk::Fault::DiskFull);
        QTest::newRow("write error") << int(FaultyDisk::Fault::WriteError);
        QTest::newRow("flush error") << int(FaultyDisk::Fault::SyncError);
        QTest::newRow("half a write") << int(FaultyDisk::Fault::ShortWrite);
    }
    void marking()
    {
        QFETCH(int, fault);
        constexpr int kCards = 40;
        bool succeeded = false;
        int failures = 0;
        for (int n = 1; n <= 300 && !succeeded; ++n) {
            Installation in;
            fillBlank(in, kCards);
            Bureau bureau(in);
            FaultyDisk::failFrom(n, FaultyDisk::Fault(fault));
            bool marked = false;
            try {
                marked = bureau.marking.markSent(kToday, kGoOn).contacts == kCards;
                bureau.marking.emptyBlank();
                succeeded = true;
            } catch (const store::Error &) {
                ++failures;
            }
            FaultyDisk::failFrom(0, FaultyDisk::Fault(fault));
            QCOMPARE(in.rows(QLatin1String(kLog), field("PRAGMA integrity_check")), QStringList{"ok"});
            // All or none; and the blank is empty only when all marks are on disk.
            const QStringList marks = log(in, "DISTINCT qslo");
            QCOMPARE(marks, QStringList{marked ? "05.03.2026" : ""});
            QCOMPARE(blank(in, "ccall").size(), succeeded ? 0 : kCards);
            if (!succeeded) { // with the disk well again the same blank is marked
                QCOMPARE(bureau.marking.markSent(kToday, kGoOn).contacts, kCards);
                bureau.marking.emptyBlank();
                QCOMPARE(log(in, "DISTINCT qslo"), QStringList{"05.03.2026"});
            }
        }
        QVERIFY(succeeded);
        QVERIFY(failures > 3);
    }

    void handEntry()
    {
        Installation in;
        Bureau bureau(in);
        bureau.marking.addContact({field("R1A"), field("05.03.02"), field("10:00"), field("14"), field("57"),
                                   field("59"), QStringLiteral("Тула"), QStringLiteral("Олег"),
                                   field("DL1ABC"), QStringLiteral("да")},
                                  field("ABC"), field("RUSSIAN"));
        QCOMPARE(log(in, "ccall,ddate,ttime,bband,rstr,rsts,QTH,NNAME,QSLVIA,QSLP,PRF,CONTR,QSLO,ps1"),
                 QStringList{"R1A|05.03.02|10:00|14|57|59|Тула|Олег|DL1ABC|да|ABC|RUSSIAN||"});
    }

    void handEntryOnAFailingDisk_data() { marking_data(); }
    void handEntryOnAFailingDisk()
    {
        QFETCH(int, fault);
        bool succeeded = false;
        for (int n = 1; n <= 100 && !succeeded; ++n) {
            Installation in;
            Bureau bureau(in);
            FaultyDisk::failFrom(n, FaultyDisk::Fault(fault));
            try {
                bureau.marking.addContact({field("R1A")}, field("ABC"), {});
                succeeded = true;
            } catch (const store::Error &) {
            }
            FaultyDisk::failFrom(0, FaultyDisk::Fault(fault));
            QCOMPARE(log(in, "ccall"), succeeded ? QStringList{"R1A"} : QStringList());
            QVERIFY(!bureau.sources.Data5.editPending());
        }
        QVERIFY(succeeded);
    }
};

QTEST_GUILESS_MAIN(MarkingTest)
#include "marking.moc"
