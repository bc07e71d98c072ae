// The bureau window's marks in the log, entry by hand, and what is printed.
#include "support/bureau.h"
#include "ui/dbgrid.h"

#include <QPushButton>
#include <QSignalSpy>

using testsupport::addBlank;
using testsupport::addLog;
using testsupport::addRow;
using testsupport::Bureau;
using testsupport::Installation;

namespace {

constexpr auto kLog = "dbiaru.mdb";
constexpr auto kToday = "06.03.2026"; ///< where the computer stands; 05.03.2026 by universal time
constexpr int kHandFields = 10;

void nightClock(Bureau &b)
{
    b.w.clock.now = QDateTime(QDate(2026, 3, 5), QTime(22, 30), Qt::UTC);
    b.w.clock.localNow = QDateTime(QDate(2026, 3, 6), QTime(1, 30));
}

/// Two contacts, both in the blank.
void twoCards(const Installation &in)
{
    testsupport::smallTables(in);
    for (const char *row : {"ccall=R1A|bband=14|ddate=05.03.26|ttime=10:00|prf=XYZ|contr=RUSSIAN",
                            "ccall=R2A|bband=7|ddate=05.03.26|ttime=10:00|prf=XYZ|contr=RUSSIAN"}) {
        addLog(in, row);
        addBlank(in, row);
    }
}

const char *const kForbidUpdates = "CREATE TRIGGER no BEFORE UPDATE ON TBLLOG1 WHEN NEW.ccall='R2A' BEGIN "
                                   "SELECT RAISE(ABORT,'нельзя'); END";
const char *const kForbidInserts =
    "CREATE TRIGGER no BEFORE INSERT ON TBLLOG1 BEGIN SELECT RAISE(ABORT,'нельзя'); END";

void sql(const Bureau &b, const char *statement)
{
    b.w.installation.sql(QLatin1String(kLog), QString::fromUtf8(statement));
}

QStringList hand(const Bureau &b)
{
    return b.texts("txtcall1", kHandFields);
}

void typeByHand(Bureau &b, const QStringList &values)
{
    b.click("txtcall1_0");
    for (const QString &value : values) {
        b.w.type(value);
        b.press(Qt::Key_Return);
    }
}

QStringList senderLines(const Bureau &b)
{
    return b.w.installation.rows(
        QStringLiteral("dbhelp.mdb"),
        QStringLiteral("SELECT contest,adresstrit,txtps1,txtps2,txtps3 FROM tbltitul"));
}

} // namespace

class BureauMarkingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void captionsAndTips()
    {
        const Bureau b;
        const QList<QStringList> buttons = {
            {"cmbqslotpr", QStringLiteral("Отметка "), QStringLiteral("Ометка об отправке QSL")},
            {"CMBDEL", QStringLiteral("Очистить"), QStringLiteral("Очистить бланк QSL")}};
        for (const QStringList &button : buttons) {
            QCOMPARE(b.text(qPrintable(button[0])), button[1]);
            QCOMPARE(b.tip(qPrintable(button[0])), button[2]);
        }
        QCOMPARE(b.text("cmbadd"), QStringLiteral("Add New"));
        QCOMPARE(b.text("CMBQSL"), QStringLiteral("Печать QSL"));
        QCOMPARE(b.text("Command2"), QStringLiteral("Накл."));
        QCOMPARE(b.text("Command3"), QStringLiteral("Полученные"));
        for (const char *label : {"Call", "Date", "RSTr", "Rsts", "Name", "QSL via", "QSL p"})
            QVERIFY2(b.hasLabel(label), label);
        for (const char *name : {"txtcontest", "txtadresstrit"})
            QCOMPARE(b.tip(name), QStringLiteral("Не более 25 символов"));
    }

    // ---- marking

    void firstStoredContactIsMarked()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            for (const char *row :
                 {"ccall=R1A|bband=14|ddate=05.03.26|ttime=12:00", // stored first
                  "ccall=R1A|bband=14|ddate=05.03.26|ttime=10:00", "ccall=R1A|bband=7|ddate=05.03.26",
                  "ccall=R1A|bband=14|ddate=06.03.26", "ccall=R1B|bband=14|ddate=5.3.26",
                  "ccall=R1C|bband=14|ddate=05.03.2026|qslo=old mark", "ccall=R1D|bband=14|ddate=05.03.26"})
                addLog(in, row);
            for (const char *row : {"ccall=R1A|bband=14|ddate=05.03.26|ttime=10:00",
                                    "ccall=R1B|bband=14|ddate=05.03.26", "ccall=r1c|bband=14|ddate=5.3.2026"})
                addBlank(in, row);
        });
        nightClock(b);
        QSignalSpy changed(b.window.get(), &qsl::QSLburo::logChanged);
        b.click("txtcall1_3");
        b.type("x");
        b.click("cmbqslotpr");
        QCOMPARE(b.log("qslo"), QStringList({kToday, "", "", "", kToday, kToday, ""}));
        QCOMPARE(b.blank(), QStringList());
        QCOMPARE(b.column("DBGrid2", 0), QStringList());
        QCOMPARE(b.text("TXTCALL"), QString());
        QCOMPARE(b.column("DBGrid1", 2), b.log("qslo")); // the grid shows it at once
        QCOMPARE(hand(b).join(QString()), QString());
        QCOMPARE(b.w.focus(), QStringLiteral("txtserch"));
        QVERIFY2(b.status().contains(QLatin1Char('3')), qPrintable(b.status()));
        QCOMPARE(changed.size(), 1);
        QVERIFY(b.quiet());
    }

    void sameContactTwiceInTheBlank()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            for (int i = 0; i < 2; ++i) {
                addLog(in, "ccall=R1A|bband=14|ddate=05.03.26");
                addBlank(in, "ccall=R1A|bband=14|ddate=05.03.26");
            }
        });
        b.click("cmbqslotpr");
        QCOMPARE(b.log("qslo"), QStringList({"05.03.2026", ""})); // the first one, both times
        QVERIFY(b.quiet());
    }

    void emptyBlank()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            addLog(in, "ccall=|bband=|ddate=");
        });
        b.click("txtcall1_2");
        b.type("x");
        b.click("cmbqslotpr");
        QCOMPARE(b.log("qslo"), QStringList(""));
        QCOMPARE(hand(b).join(QString()), QString());
        QCOMPARE(b.w.focus(), QStringLiteral("txtserch"));
        QVERIFY(b.quiet());
    }

    void contactThatIsNotInTheLog()
    {
        Bureau b([](Installation &in) {
            twoCards(in);
            for (const char *row : {"ccall=R9Z|bband=14|ddate=05.03.26", "ccall=R1A|bband=21|ddate=05.03.26",
                                    "ccall=R1A|bband=14|ddate="}) // a day that is empty is no day
                addBlank(in, row);
            addLog(in, "ccall=R1A|bband=14|ddate=");
        });
        b.click("cmbqslotpr");
        QCOMPARE(b.log("qslo"), QStringList({"05.03.2026", "05.03.2026", ""}));
        QCOMPARE(b.blank(), QStringList());
        QCOMPARE(b.w.messages.told.size(), 1);
        QVERIFY2(b.w.messages.told.front().contains(QStringLiteral("R9Z")),
                 qPrintable(b.w.messages.told.front()));
        QCOMPARE(b.status(), QStringLiteral("Отмечено карточек: 2. Нет в журнале: 3."));
        QVERIFY(b.w.messages.errors.isEmpty());
    }

    void badDateMarksNothing()
    {
        Bureau b([](Installation &in) {
            twoCards(in);
            addBlank(in, "ccall=R3A|bband=1,8|ddate=05.03.26");
            addBlank(in, "ccall=R4BAD|bband=9|ddate=31.02.26"); // the last one by band
        });
        b.click("txtcall1_2");
        b.type("x");
        b.click("cmbqslotpr");
        QCOMPARE(b.w.messages.told.size() + b.w.messages.errors.size(), 1);
        const QString told = (b.w.messages.told + b.w.messages.errors).front();
        QVERIFY2(told.contains(QStringLiteral("R4BAD")) && told.contains(QStringLiteral("31.02.26")),
                 qPrintable(told));
        QCOMPARE(b.log("qslo"), QStringList({"", ""}));
        QCOMPARE(b.blank(), QStringList({"R1A", "R2A", "R3A", "R4BAD"}));
        QCOMPARE(b.column("DBGrid2", 0).size(), 4);
        QCOMPARE(b.find<ui::DbGrid>("DBGrid2")->currentIndex().row(), 3); // ready to be put right
        QCOMPARE(b.text("TXTCALL"), QStringLiteral("R4BAD"));
        QCOMPARE(hand(b)[2], QStringLiteral("X"));
        b.clickCell("DBGrid2", 3, 1);
        b.type("05.03.26"); // put right
        b.click("cmbqslotpr");
        QCOMPARE(b.log("qslo"), QStringList({"05.03.2026", "05.03.2026"}));
        QCOMPARE(b.blank(), QStringList());
    }

    void thousandsInOneGo()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            in.sql(
                QLatin1String(kLog),
                QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<3000) "
                               "INSERT INTO TBLLOG1(ccall,ddate,bband) SELECT 'R'||i||'A','05.03.26','14' "
                               "FROM n; INSERT INTO tbllogTEMP(ccall,ddate,bband) SELECT "
                               "ccall,ddate,bband FROM TBLLOG1"));
        });
        b.click("cmbqslotpr");
        QCOMPARE(b.log("qslo").count(QStringLiteral("05.03.2026")), 3000);
        QCOMPARE(b.blank(), QStringList());
        QVERIFY2(b.status().contains(QStringLiteral("3000")), qPrintable(b.status()));
        QVERIFY(b.w.progress.steps.size() > 2);
        QCOMPARE(b.w.progress.steps.constLast(), QStringLiteral("end"));
        QVERIFY(b.quiet());
    }

    void stoppedMarksNothing()
    {
        Bureau b(twoCards);
        b.w.progress.atStep = [&b] { b.w.progress.stopNow = true; };
        b.click("cmbqslotpr");
        QVERIFY(b.w.progress.stoppable);
        QCOMPARE(b.log("qslo"), QStringList({"", ""}));
        QCOMPARE(b.blank(), QStringList({"R1A", "R2A"}));
        QVERIFY2(b.status().contains(QStringLiteral("Остановлено")), qPrintable(b.status()));
        b.w.progress.atStep = {};
        b.w.progress.stopNow = false;
        b.click("cmbqslotpr");
        QCOMPARE(b.log("qslo"), QStringList({"05.03.2026", "05.03.2026"}));
        QVERIFY(b.quiet());
    }

    void failureMarksNothing()
    {
        Bureau b(twoCards);
        sql(b, kForbidUpdates); // the second one's
        b.click("cmbqslotpr");
        QCOMPARE(b.w.messages.errors.size(), 1);
        QCOMPARE(b.log("qslo"), QStringList({"", ""}));
        QCOMPARE(b.blank(), QStringList({"R1A", "R2A"}));
        QCOMPARE(b.column("DBGrid2", 0).size(), 2);
        sql(b, "DROP TRIGGER no");
        b.click("cmbqslotpr");
        QCOMPARE(b.log("qslo"), QStringList({"05.03.2026", "05.03.2026"}));
        QCOMPARE(b.w.messages.errors.size(), 1);
    }

    void lockedLog()
    {
        Bureau b(twoCards);
        store::Connection other(b.w.installation.file(QLatin1String(kLog)), store::OpenMode::ReadWrite);
        typeByHand(b, {"r3a"});
        other.exec(QStringLiteral("BEGIN IMMEDIATE"));
        int errors = 0;
        for (const char *button : {"cmbqslotpr", "CMBDEL", "cmbadd"}) {
            b.click(button);
            QCOMPARE(b.w.messages.errors.size(), ++errors);
        }
        other.exec(QStringLiteral("ROLLBACK"));
        QCOMPARE(b.log("ccall,qslo"), QStringList({"R1A|", "R2A|"}));
        QCOMPARE(b.blank(), QStringList({"R1A", "R2A"}));
        QCOMPARE(hand(b)[0], QStringLiteral("R3A"));
        b.click("cmbadd");
        b.click("cmbqslotpr");
        QCOMPARE(b.log("ccall,qslo"), QStringList({"R1A|05.03.2026", "R2A|05.03.2026", "R3A|"}));
        QCOMPARE(b.w.messages.errors.size(), errors);
    }

    void readOnlyFolder()
    {
        Bureau b(twoCards, true);
        QVERIFY(b.w.messages.errors.isEmpty());
        b.click("Command1");
        QCOMPARE(b.text("TQSO"), QStringLiteral("2"));
        typeByHand(b, {"r3a", "1"});
        int errors = 0;
        for (const char *button : {"cmbqslotpr", "CMBDEL", "cmbadd"}) {
            b.click(button);
            QCOMPARE(b.w.messages.errors.size(), ++errors);
        }
        QCOMPARE(hand(b).mid(0, 2), QStringList({"R3A", "1"}));
        b.doubleClickCell("DBGrid1", 0);
        QVERIFY(b.w.messages.errors.size() > errors);
        QCOMPARE(b.log("ccall,qslo"), QStringList({"R1A|", "R2A|"}));
        QCOMPARE(b.blank(), QStringList({"R1A", "R2A"}));
        b.click("lbldxcc");
        b.click("cmbinfo");
        QCOMPARE(b.text("txtQSO_4"), QStringLiteral("0")); // Germany
        b.window->close();
        QVERIFY(!b.window->isVisible());
    }

    void apostropheInTheBlank()
    {
        Bureau b([](Installation &in) {
            twoCards(in);
            addBlank(in, "ccall=R3'A|bband=9|ddate=05.03.26");
        });
        b.click("cmbqslotpr");
        QCOMPARE(b.w.messages.told.size(), 1);
        QVERIFY(b.w.messages.told.front().contains(QStringLiteral("R3'A")));
        QCOMPARE(b.log("qslo"), QStringList({"", ""}));
        QCOMPARE(b.blank(), QStringList({"R1A", "R2A", "R3'A"}));
    }

    void gridThatFailedBeforeDoesNotDisturbTheMarking()
    {
        Bureau b([](Installation &in) {
            twoCards(in);
            addLog(in, "ccall=R3'A|bband=9|ddate=05.03.26");
        });
        b.clickRow("DBList1", "R3'A");
        QCOMPARE(b.w.messages.errors.size(), 1);
        b.click("cmbqslotpr");
        QCOMPARE(b.w.messages.errors.size(), 1);
        QCOMPARE(b.log("qslo"), QStringList({"05.03.2026", "05.03.2026", ""}));
        QVERIFY2(b.status().contains(QLatin1Char('2')), qPrintable(b.status()));
        QCOMPARE(b.column("DBGrid1", 0).size(), 3);
    }

    void whatIsBeingTypedIsMarkedWith()
    {
        Bureau b([](Installation &in) {
            twoCards(in);
            addBlank(in, "ccall=R3A|bband=1,8|ddate=05.03.26"); // the current one
            addLog(in, "ccall=R3A|bband=1,8|ddate=07.03.26");
        });
        b.clickCell("DBGrid1", 0, 3);
        b.type("card"); // open cell of the log
        b.enter("TXTDATE", "07.03.26");
        b.click("cmbqslotpr"); // from within the field
        QCOMPARE(b.log("qslp,qslo"), QStringList({"CARD|05.03.2026", "|05.03.2026", "|05.03.2026"}));
        QCOMPARE(b.blank(), QStringList());
        QVERIFY(b.quiet());
    }

    // ---- emptying

    void blankIsEmptied()
    {
        Bureau b(twoCards);
        b.w.click("txtcall"); // nothing of it is the bureau's
        b.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(b.window.get()));
        typeByHand(b, {"r3a", "1", "2", "3", "4", "5", "6", "7", "8", "9"});
        b.find<QPushButton>("CMBDEL")->setFocus();
        b.press(Qt::Key_Space);
        QCOMPARE(b.blank(), QStringList());
        QCOMPARE(b.column("DBGrid2", 0), QStringList());
        QCOMPARE(hand(b).join(QString()), QString());
        QCOMPARE(b.w.focus(), QStringLiteral("txtserch"));
        QCOMPARE(b.log("ccall,qslo"), QStringList({"R1A|", "R2A|"}));
        b.click("CMBDEL"); // nothing to do
        QVERIFY(b.quiet());
    }

    // ---- entry by hand

    void contactIsEnteredByHand()
    {
        Bureau b(twoCards);
        QSignalSpy changed(b.window.get(), &qsl::QSLburo::logChanged);
        b.click("txtserch");
        b.type("dl");
        b.click("txtcall1_0");
        const QStringList typed = {"dl1new", "01.02.03",  "10:11",       "14",   "59",
                                   "58",     "o'münchen", "ваня \"ё\"%", "dl0x", "b"};
        for (int i = 0; i < kHandFields; ++i) {
            QCOMPARE(b.w.focus(), QStringLiteral("txtcall1_%1").arg(i));
            b.w.type(typed[i]);
            QCOMPARE(hand(b)[i], typed[i].toUpper());
            b.press(Qt::Key_Return);
        }
        QCOMPARE(b.w.focus(), QStringLiteral("cmbadd"));
        QCOMPARE(b.log("ccall").size(), 2);
        b.press(Qt::Key_Return);
        QCOMPARE(b.log("ccall,ddate,ttime,bband,rstr,rsts,QTH,NNAME,QSLVIA,QSLP,PRF,CONTR,qslo").constLast(),
                 QStringLiteral("DL1NEW|01.02.03|10:11|14|59|58|O'MÜNCHEN|ВАНЯ \"Ё\"%|DL0X|B|XYZ|GERMANY|"));
        QCOMPARE(b.log("ccall").size(), 3);
        QCOMPARE(hand(b).join(QString()), QString());
        QCOMPARE(b.w.focus(), QStringLiteral("txtcall1_0"));
        QCOMPARE(changed.size(), 1);
        b.type("dl2new");
        b.click("cmbadd");
        QCOMPARE(b.log("ccall,ddate,QTH,PRF,CONTR").constLast(), QStringLiteral("DL2NEW|||XYZ|GERMANY"));
        QVERIFY(b.quiet());
    }

    void gridShowsTheNewContact()
    {
        Bureau b(twoCards);
        b.click("txtcall1_0");
        b.type("a1new");
        b.click("cmbadd");
        QCOMPARE(b.column("DBGrid1", 0), QStringList({"A1NEW", "R1A", "R2A"}));
        QCOMPARE(b.log("CONTR").constLast(), QString()); // no country was chosen
    }

    void withoutACallsignNothingHappens()
    {
        Bureau b(twoCards);
        b.click("txtcall1_1");
        b.type("01.02.03");
        b.click("cmbadd");
        QCOMPARE(b.log("ccall").size(), 2);
        QCOMPARE(hand(b)[1], QStringLiteral("01.02.03"));
        QCOMPARE(b.w.focus(), QStringLiteral("cmbadd"));
        QVERIFY(b.quiet());
    }

    void failedEntryKeepsWhatWasTyped()
    {
        Bureau b(twoCards);
        const QStringList typed = {"R3A", "1", "2", "3", "4", "5", "6", "7", "8", "9"};
        typeByHand(b, typed);
        sql(b, kForbidInserts);
        b.press(Qt::Key_Return); // on the button
        QCOMPARE(b.w.messages.errors.size(), 1);
        QCOMPARE(hand(b), typed);
        QCOMPARE(b.log("ccall").size(), 2);
        QVERIFY(b.window->isVisible());
        sql(b, "DROP TRIGGER no");
        b.click("cmbadd");
        QCOMPARE(b.log("ccall,QSLP"), QStringList({"R1A|", "R2A|", "R3A|9"}));
        QCOMPARE(b.w.messages.errors.size(), 1);
    }

    void entryAfterAContactWasCopied()
    {
        Bureau b([](Installation &in) {
            twoCards(in);
            addLog(in, "ccall=R3A|bband=9|ttime=1'0");
        });
        b.doubleClickCell("DBGrid1", 0);
        typeByHand(b, {"r4a"});
        b.click("cmbadd");
        QCOMPARE(b.log("ccall").constLast(), QStringLiteral("R4A"));
        QVERIFY(b.quiet());
        b.doubleClickCell("DBGrid1", 2); // an apostrophe in the time breaks the statement
        QCOMPARE(b.w.messages.errors.size(), 1);
        QCOMPARE(b.log("ccall").size(), 4);
        typeByHand(b, {"r5a"});
        b.click("cmbadd");
        QCOMPARE(b.log("ccall").constLast(), QStringLiteral("R5A"));
        QCOMPARE(b.log("ccall").size(), 5);
        QCOMPARE(b.w.messages.errors.size(), 1);
    }

    // ---- printing

    void reports_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("layout");
        QTest::newRow("cards") << "CMBQSL"
                               << "qsl.rpt";
        QTest::newRow("stickers") << "Command2"
                                  << "qsl1.rpt";
    }
    void reports()
    {
        QFETCH(QString, button);
        QFETCH(QString, layout);
        Bureau b(twoCards);
        b.clickCell("DBGrid2", 0, 7);
        b.type("ua9b"); // an open cell of the blank
        b.enter("txtcontest", "Иван Ёлкин, мастер спорта международного класса");
        b.press(Qt::Key_Return);
        QCOMPARE(b.w.focus(), QStringLiteral("txtadresstrit"));
        b.type("ул. Короткая, 1");
        b.enter("txtps3", "73!");
        QStringList lines;
        QStringList routes;
        b.w.reports.atPrint = [&] {
            lines = senderLines(b);
            routes = b.blank("CONTR");
        };
        b.click(qPrintable(button)); // from within the field
        QCOMPARE(b.w.reports.printed, QStringList(b.w.installation.file(layout)));
        QCOMPARE(lines, QStringList(QStringLiteral(
                            "Иван Ёлкин, мастер спорта международного класса|ул. Короткая, 1|||73!")));
        QVERIFY(routes.contains(QStringLiteral("UA9B")));
        b.click(qPrintable(button));
        QCOMPARE(b.w.reports.printed.size(), 2);
        QCOMPARE(b.log("qslo"), QStringList({"", ""})); // printing marks nothing
        QVERIFY(b.quiet());
    }

    void emptyBlankIsPrintedToo()
    {
        Bureau b;
        b.click("CMBQSL");
        b.click("Command2");
        b.click("CMBQSL");
        QCOMPARE(b.w.reports.printed, QStringList({b.w.installation.file(QStringLiteral("qsl.rpt")),
                                                   b.w.installation.file(QStringLiteral("qsl1.rpt")),
                                                   b.w.installation.file(QStringLiteral("qsl.rpt"))}));
        QVERIFY(b.quiet());
    }

    void senderLinesAreKeptByClosing()
    {
        Bureau b;
        for (const char *name : {"txtcontest", "txtadresstrit", "txtps1", "txtps2", "txtps3"})
            b.enter(name, name);
        b.window->close();
        QCOMPARE(senderLines(b), QStringList("txtcontest|txtadresstrit|txtps1|txtps2|txtps3"));
        QVERIFY(b.quiet());
    }

    void senderLinesThatCannotBeSaved()
    {
        Bureau b;
        b.w.installation.sql(QStringLiteral("dbhelp.mdb"),
                             QStringLiteral("CREATE TRIGGER no BEFORE UPDATE ON tbltitul BEGIN SELECT "
                                            "RAISE(ABORT,'нельзя'); END"));
        b.enter("txtps1", "73");
        b.click("CMBQSL");
        QVERIFY(b.w.messages.errors.size() == 1 || !b.status().isEmpty());
        QCOMPARE(b.text("txtps1"), QStringLiteral("73"));
        b.w.installation.sql(QStringLiteral("dbhelp.mdb"), QStringLiteral("DROP TRIGGER no"));
        b.click("CMBQSL");
        QCOMPARE(senderLines(b), QStringList("||73||"));
    }

    void receivedCardsAreListed()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            for (const char *row :
                 {"ccall=R3A|qslp=+|prf=OLD", "ccall=R1A|qslp= ", "ccall=R2A|qslo=+", "ccall=R3A|qslp=x"})
                addLog(in, row);
        });
        b.click("lbldxcc"); // whatever is selected
        b.click("Command3");
        QCOMPARE(b.rows("DBList1"), QStringList({"R1A", "R3A"}));
        QCOMPARE(b.text("lbldxcc"), QStringLiteral("DXCC"));
        QVERIFY(b.quiet());
    }
};

QTEST_MAIN(BureauMarkingTest)
#include "bureaumarking.moc"
