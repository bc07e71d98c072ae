#include "logentry/recorder.h"

#include "support/installation.h"

#include <QTest>

using logentry::RecordOutcome;
using testsupport::Desk;
using testsupport::Installation;

namespace {

constexpr auto kLog = "dbiaru.mdb";
constexpr auto kAll =
    "SELECT "
    "ccall,ddate,ttime,bband,rsts,rstr,mult,point,ps,ps1,PS2,QTH,NNAME,QSLVIA,QSLP,QSLO,CONTR,CONT,PRF "
    "FROM TBLLOG1";

bool fine(const RecordOutcome &outcome)
{
    return !outcome.notStored && !outcome.notInParallelLog && !outcome.notShown;
}

int linesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? int(file.readAll().count('\n')) : 0;
}

void fill(Desk &desk)
{
    desk.fields.txtNcall = QStringLiteral("RA3XYZ");
    desk.fields.txtcall = QStringLiteral("UA3ABC");
    desk.fields.txtrstr = QStringLiteral("57");
    desk.fields.txtrsts = QStringLiteral("58");
    desk.fields.txtqth = QStringLiteral("Комсомольск-на-Амуре");
    desk.fields.txtname = QStringLiteral("1234567890123");
    desk.fields.txtqslvia = QStringLiteral("RW3XX");
    desk.fields.txtcontr = QStringLiteral("RUSSIAN");
    desk.fields.townPanelShown = true;
    desk.fields.callbookShown = true;
    desk.fields.townHintShown = true;
    desk.fields.nameHintShown = true;
}

} // namespace

class RecorderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyFieldOfTheRow()
    {
        Installation in;
        Desk desk(in);
        fill(desk);
        desk.state.band = QStringLiteral("3,5");
        desk.state.mode = QStringLiteral("CW");
        desk.state.defaultReport = QStringLiteral("599");
        QVERIFY(fine(desk.recorder.cmbadd_Click()));
        QCOMPARE(
            in.rows(kLog, QLatin1String(kAll)),
            QStringList(
                {"UA3ABC|05.03.26|14:07|3,5|58|57||||CW||Комсомольск-н|1234567890123|RW3XX|||RUSSIAN||XYZ"}));
        QCOMPARE(desk.state.ownCallKey, QStringLiteral("XYZ"));
        // The entry is clear for the next contact.
        QCOMPARE(desk.fields.txtcall + desk.fields.txtqth + desk.fields.txtname + desk.fields.txtqslvia +
                     desk.fields.txtcontr,
                 QString());
        QCOMPARE(desk.fields.txtrstr, QStringLiteral("599"));
        QCOMPARE(desk.fields.txtrsts, QStringLiteral("599"));
        QVERIFY(!desk.fields.townPanelShown && !desk.fields.callbookShown && !desk.fields.townHintShown &&
                !desk.fields.nameHintShown);
        // The grid shows the day, the new contact included.
        QCOMPARE(desk.sources.Data5.recordCount(), 1);
        QCOMPARE(desk.sources.Data5.field(QStringLiteral("ccall")), QStringLiteral("UA3ABC"));
        QCOMPARE(desk.sources.Data10.recordSource().toString(),
                 QStringLiteral("select nname from tblNAME order by nname"));
        // The parallel log is off.
        QCOMPARE(in.rows(QStringLiteral("dblog.mdb"), QLatin1String(kAll)), QStringList());
    }

    void emptyCallsignRecordsNothing()
    {
        Installation in;
        in.addContact(QStringLiteral("DL1XX"), QStringLiteral("05.03.26"), QString());
        Desk desk(in);
        fill(desk);
        desk.fields.txtcall.clear();
        QVERIFY(fine(desk.recorder.cmbadd_Click()));
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT count(*) FROM TBLLOG1")), QStringList({"1"}));
        QCOMPARE(desk.fields.txtqslvia, QStringLiteral("RW3XX")); // nothing is cleared
        QCOMPARE(desk.sources.Data5.recordCount(), 1);
    }

    void anyCallsignIsRecorded()
    {
        Installation in;
        Desk desk(in);
        desk.fields.txtcall = QStringLiteral("X");
        desk.fields.txtrsts.clear();
        desk.fields.txtrstr.clear();
        QVERIFY(fine(desk.recorder.cmbadd_Click()));
        desk.fields.txtcall = QStringLiteral("X");
        QVERIFY(fine(desk.recorder.cmbadd_Click())); // twice the same
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ccall,rsts,CONTR,PRF FROM TBLLOG1")),
                 QStringList({"X|||", "X|59||"}));
    }

    void dates_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored");
        QTest::newRow("eight") << "1.2.2002"
                               << "1.2.2002";
        QTest::newRow("ten") << "01.02.2002"
                             << "01.02.02";
        QTest::newRow("nine") << "1.02.2002"
                              << "1.02..02"; // the first five, a full stop, the last two
        QTest::newRow("clock") << "05.03.26"
                               << "05.03.26";
        QTest::newRow("none") << "нет"
                              << "нет";
        QTest::newRow("empty") << ""
                               << "";
    }
    void dates()
    {
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        Installation in;
        Desk desk(in);
        fill(desk);
        desk.state.automaticTime = false;
        desk.fields.txtdate = typed;
        const RecordOutcome outcome = desk.recorder.cmbadd_Click();
        QVERIFY(!outcome.notStored);
        QCOMPARE(outcome.notShown.has_value(), typed == QStringLiteral("нет")); // no date, so no day to show
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ddate FROM TBLLOG1")), QStringList({stored}));
    }

    void times_data()
    {
        QTest::addColumn<bool>("automatic");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("stored");
        QTest::newRow("clock") << true << "14:07:09"
                               << "14:07";
        QTest::newRow("seven") << true << "9:05:00"
                               << "9:05";
        QTest::newRow("short") << true << "9:0"
                               << "9:0";
        QTest::newRow("manual short") << false << "9:05"
                                      << "9:05";
        QTest::newRow("manual long") << false << "09:05:33"
                                     << "09:05:33";
        QTest::newRow("manual word") << false << "утром"
                                     << "утром";
    }
    void times()
    {
        QFETCH(bool, automatic);
        QFETCH(QString, shown);
        QFETCH(QString, stored);
        Installation in;
        Desk desk(in);
        fill(desk);
        desk.state.automaticTime = automatic;
        desk.fields.txttime = shown;
        QVERIFY(fine(desk.recorder.cmbadd_Click()));
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ttime FROM TBLLOG1")), QStringList({stored}));
    }

    void townsAreCutAtThirteen_data()
    {
        QTest::addColumn<int>("length");
        for (const int length : {0, 12, 13, 14, 200})
            QTest::addRow("%d", length) << length;
    }
    void townsAreCutAtThirteen()
    {
        QFETCH(int, length);
        Installation in;
        Desk desk(in);
        fill(desk);
        desk.fields.txtqth = QString(length, QChar(u'Щ'));
        desk.fields.txtname = QString(length, QChar(u'z'));
        QVERIFY(fine(desk.recorder.cmbadd_Click()));
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT QTH,NNAME FROM TBLLOG1")),
                 QStringList({QString(std::min(length, 13), QChar(u'Щ')) + QLatin1Char('|') +
                              QString(std::min(length, 13), QChar(u'z'))}));
    }

    void quotesAreRecordedAsTyped()
    {
        Installation in;
        Desk desk(in);
        fill(desk);
        desk.fields.txtqth = QStringLiteral("O'Brien \"X\"");
        desk.fields.txtname = QStringLiteral("'';--");
        desk.fields.txtqslvia = QStringLiteral("via 'B'");
        desk.fields.txtcontr = QStringLiteral("COTE D'IVOIRE");
        QVERIFY(fine(desk.recorder.cmbadd_Click()));
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT QTH,NNAME,QSLVIA,CONTR FROM TBLLOG1")),
                 QStringList({"O'Brien \"X\"|'';--|via 'B'|COTE D'IVOIRE"}));
    }

    void parallelLogHasTheSameRowWithoutMode()
    {
        Installation in;
        Desk desk(in);
        fill(desk);
        desk.state.parallelLog = true;
        QVERIFY(fine(desk.recorder.cmbadd_Click()));
        const QString main = in.rows(kLog, QLatin1String(kAll)).front();
        QCOMPARE(
            main,
            QStringLiteral(
                "UA3ABC|05.03.26|14:07|14|58|57||||SSB||Комсомольск-н|1234567890123|RW3XX|||RUSSIAN||XYZ"));
        QCOMPARE(in.rows(QStringLiteral("dblog.mdb"), QLatin1String(kAll)).front(),
                 QString(main).replace(QStringLiteral("|SSB|"), QStringLiteral("||")));
    }

    void refusedByTheStore()
    {
        Installation in;
        Desk desk(in);
        fill(desk);
        const logentry::EntryFields typed = desk.fields;
        auto other =
            std::make_unique<store::Connection>(in.file(QLatin1String(kLog)), store::OpenMode::ReadWrite);
        auto lock = std::make_unique<store::Transaction>(*other);
        RecordOutcome outcome = desk.recorder.cmbadd_Click();
        QVERIFY(outcome.notStored.has_value());
        QCOMPARE(int(outcome.notStored->kind()), int(store::ErrorKind::Locked));
        QCOMPARE(outcome.emergencyFile, in.file(QStringLiteral("avaria.adi")));
        QCOMPARE(desk.recorder.contact().ccall, QStringLiteral("UA3ABC"));
        outcome = desk.recorder.retry(); // still locked; not written down a second time
        QVERIFY(outcome.notStored.has_value());
        QCOMPARE(outcome.emergencyFile, in.file(QStringLiteral("avaria.adi")));
        QCOMPARE(linesOf(in.file(QStringLiteral("avaria.adi"))), 2); // header and the contact, once
        lock.reset();
        outcome = desk.recorder.retry();
        QVERIFY(fine(outcome));
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ccall,QTH FROM TBLLOG1")),
                 QStringList({"UA3ABC|Комсомольск-н"}));
        QVERIFY(!QFile::exists(in.file(QStringLiteral("avaria.adi")))); // stored after all
        QCOMPARE(desk.sources.Data5.recordCount(), 1);

        // Given back instead: every field as it was typed, nothing stored, the contact kept in the emergency
        // file.
        desk.fields = typed;
        lock = std::make_unique<store::Transaction>(*other);
        QVERIFY(desk.recorder.cmbadd_Click().notStored.has_value());
        desk.recorder.giveBack();
        QCOMPARE(desk.fields.txtcall, typed.txtcall);
        QCOMPARE(desk.fields.txtqth, typed.txtqth);
        QCOMPARE(desk.fields.txtrstr, typed.txtrstr);
        QCOMPARE(desk.fields.txtcontr, typed.txtcontr);
        QVERIFY(desk.fields.townPanelShown && desk.fields.callbookShown);
        lock.reset();
        // Another contact's success leaves the line; this one's takes it out again.
        const logentry::EntryFields again = desk.fields;
        desk.fields.txtcall = QStringLiteral("DL1XX");
        QVERIFY(fine(desk.recorder.cmbadd_Click()));
        QCOMPARE(linesOf(in.file(QStringLiteral("avaria.adi"))), 2);
        desk.fields = again;
        QVERIFY(fine(desk.recorder.cmbadd_Click()));
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT count(*) FROM TBLLOG1")), QStringList({"3"}));
        QVERIFY(!QFile::exists(in.file(QStringLiteral("avaria.adi"))));
    }

    void parallelLogRefused()
    {
        Installation in;
        Desk desk(in);
        fill(desk);
        desk.state.parallelLog = true;
        store::Connection other(in.file(QStringLiteral("dblog.mdb")), store::OpenMode::ReadWrite);
        auto lock = std::make_unique<store::Transaction>(other);
        RecordOutcome outcome = desk.recorder.cmbadd_Click();
        QVERIFY(!outcome.notStored);
        QVERIFY(outcome.notInParallelLog.has_value());
        QVERIFY(outcome.emergencyFile.isEmpty());
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT count(*) FROM TBLLOG1")), QStringList({"1"}));
        lock.reset();
        QVERIFY(fine(desk.recorder.retry()));
        QCOMPARE(in.rows(QStringLiteral("dblog.mdb"), QStringLiteral("SELECT ccall FROM TBLLOG1")),
                 QStringList({"UA3ABC"}));
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT count(*) FROM TBLLOG1")), QStringList({"1"}));
    }

    void logFileMissing()
    {
        Installation in;
        in.databases.close(in.file(QLatin1String(kLog)));
        QFile::remove(in.file(QLatin1String(kLog)));
        logentry::Sources sources(in.databases);
        QCOMPARE(sources.open().size(), 1);
        logentry::EntryFields fields;
        logentry::EntryState state;
        interchange::EmergencyFile emergency({in.folder()});
        logentry::Recorder recorder(sources, fields, state, emergency);
        fields.txtcall = QStringLiteral("UA3ABC");
        const RecordOutcome outcome = recorder.cmbadd_Click();
        QVERIFY(outcome.notStored.has_value());
        QVERIFY(!outcome.emergencyFile.isEmpty());
        QVERIFY(!QFile::exists(
            in.file(QLatin1String(kLog)))); // nothing is made in its place behind the operator's back
        recorder.giveBack();
        QCOMPARE(fields.txtcall, QStringLiteral("UA3ABC"));
    }

    /// A file that was busy when it was opened, or in between, is used again as soon as it can be.
    void busyAtTheStart()
    {
        Installation in;
        store::Connection other(in.file(QLatin1String(kLog)), store::OpenMode::ReadWrite);
        other.exec(QStringLiteral("BEGIN EXCLUSIVE"));
        logentry::Sources sources(in.databases);
        QCOMPARE(sources.open().size(), 1);
        logentry::EntryFields fields;
        logentry::EntryState state;
        interchange::EmergencyFile emergency({in.folder()});
        logentry::Recorder recorder(sources, fields, state, emergency);
        fields.txtcall = QStringLiteral("UA3ABC");
        fields.txtname = QStringLiteral("Олег");
        RecordOutcome outcome = recorder.cmbadd_Click();
        QVERIFY(outcome.notStored.has_value());
        QCOMPARE(int(outcome.notStored->kind()), int(store::ErrorKind::Locked));
        other.exec(QStringLiteral("ROLLBACK"));
        QVERIFY(fine(recorder.retry()));
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ccall||NNAME FROM TBLLOG1")),
                 QStringList({"UA3ABCОлег"}));
        // The sources fail once more between two contacts.
        other.exec(QStringLiteral("BEGIN EXCLUSIVE"));
        QVERIFY_THROWS_EXCEPTION(store::Error, sources.Data1.refresh());
        QVERIFY(sources.Data1.failed());
        other.exec(QStringLiteral("ROLLBACK"));
        fields.txtcall = QStringLiteral("DL1XX");
        QVERIFY(fine(recorder.cmbadd_Click()));
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ccall FROM TBLLOG1 ORDER BY rowid")),
                 QStringList({"UA3ABC", "DL1XX"}));
    }

    void badDayIsNoLoss()
    {
        Installation in;
        Desk desk(in);
        fill(desk);
        desk.state.automaticTime = false;
        desk.fields.txtdate = QStringLiteral("99.99.99");
        const RecordOutcome outcome = desk.recorder.cmbadd_Click();
        QVERIFY(!outcome.notStored);
        QVERIFY(outcome.notShown.has_value());
        QCOMPARE(int(outcome.notShown->kind()), int(store::ErrorKind::BadDate));
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ddate FROM TBLLOG1")), QStringList({"99.99.99"}));
        QVERIFY(!QFile::exists(in.file(QStringLiteral("avaria.adi"))));
    }
};

QTEST_GUILESS_MAIN(RecorderTest)
#include "recorder.moc"
