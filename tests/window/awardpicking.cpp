// The awards window's right side: prefixes, callsigns, contacts and what is carried into the blank.
#include "support/awards.h"

#include <QCheckBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>

using testsupport::addBlank;
using testsupport::addLog;
using testsupport::addRow;
using testsupport::awardContacts;
using testsupport::Awards;
using testsupport::Installation;

namespace {

constexpr auto kLog = "dbiaru.mdb";
constexpr auto kPrefixes = "DBListPref";
constexpr auto kRegions = "DBListRus";
constexpr auto kCalls = "DBListCall";
constexpr auto kStation = "DBGrid1";
constexpr auto kBlank = "DBGrid2";
constexpr auto kCarried = "ccall,ddate,ttime,bband,rsts,CONTR";
constexpr int kTimeColumn = 2;

const char *const kForbidBlank =
    "CREATE TRIGGER no BEFORE INSERT ON tbllogTEMP BEGIN SELECT RAISE(ABORT,'нельзя'); END";
const char *const kForbidLog =
    "CREATE TRIGGER no BEFORE UPDATE ON TBLLOG1 BEGIN SELECT RAISE(ABORT,'нельзя'); END";

/// The numbers of the line below the blank: rows, callsigns, countries, bands, rows without a card.
QList<int> counts(const Awards &a)
{
    QList<int> numbers;
    static const QRegularExpression number(QStringLiteral("\\d+"));
    auto found = number.globalMatch(a.text("lblsvod"));
    while (found.hasNext())
        numbers.append(found.next().captured().toInt());
    return numbers;
}

bool activate(QWidget &window)
{
    window.activateWindow();
    return QTest::qWaitForWindowActive(&window);
}

} // namespace

class AwardPickingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void atTheBeginning()
    {
        const Awards a(awardContacts);
        QCOMPARE(a.text("cmbdxcc"), QStringLiteral("DXCC"));
        QCOMPARE(a.tip("cmbdxcc"), QStringLiteral("Нажми меня"));
        QCOMPARE(a.find<QCheckBox>("Check1")->text(), QStringLiteral("Страны"));
        QVERIFY(!a.find<QCheckBox>("Check1")->isChecked());
        QCOMPARE(a.text("cmbblanc"), QStringLiteral("Бланк"));
        QCOMPARE(a.tip("cmbblanc"), QStringLiteral("Просмотр бланка"));
        QCOMPARE(a.text("Command3"), QStringLiteral("Очистить"));
        QCOMPARE(a.tip("Command3"), QStringLiteral("Очистить бланк"));
        QCOMPARE(a.text("cmbUsl"), QStringLiteral("Выбор"));
        QCOMPARE(a.tip(kStation), QStringLiteral("dubleClik - выбранная запись переносится в бланк"));
        QCOMPARE(a.rows(kPrefixes), QStringList({"DL", "F", "UA"}));
        QCOMPARE(a.rows(kRegions), QStringList({"3A", "5O", "9A"}));
        QVERIFY(a.shown(kPrefixes));
        for (const char *hidden : {kRegions, "txtgorod", "txtqth", "frWyb"})
            QVERIFY2(!a.shown(hidden), hidden);
        // The whole log, as it was stored.
        QCOMPARE(a.rows(kCalls),
                 QStringList({"UA3AB", "R3AB", "UA9AA", "DL1AA", "DL1AA", "DL1AB", "F5AB", "XX1X"}));
        QCOMPARE(a.column(kStation, 0), a.rows(kCalls));
        QCOMPARE(a.headings(kBlank), QStringList({"Call", "Date", "time", "Band", "rsts", "rstr", "mult",
                                                  "point", "Remarks", "Country"}));
        QCOMPARE(a.column(kBlank, 0), QStringList());
        QVERIFY(a.quiet());
    }

    // ---- prefixes

    void countryPrefixListsItsCallsigns()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "DL");
        QCOMPARE(a.text("txtstrana"), QStringLiteral("GERMANY"));
        QCOMPARE(a.text("txtgorod"), QStringLiteral("GERMANY"));
        QVERIFY(!a.shown("txtgorod"));
        QCOMPARE(a.rows(kCalls), QStringList({"DL1AA", "DL1AB"}));
        a.clickRow(kPrefixes, "UA");
        QCOMPARE(a.text("txtstrana"), QStringLiteral("RUSSIAN"));
        QCOMPARE(a.rows(kCalls), QStringList({"R3AB", "UA3AB", "UA9AA"}));
        QCOMPARE(a.column(kStation, 0).size(), 8); // of the grid nothing was said
        addLog(a.w.installation, "ccall=F9NEW|contr=FRANCE");
        a.clickRow(kPrefixes, "F");
        QCOMPARE(a.rows(kCalls), QStringList({"F5AB", "F9NEW"}));
        QVERIFY(a.quiet());
    }

    void switchToRegions_data()
    {
        QTest::addColumn<bool>("mouse");
        QTest::newRow("mouse") << true;
        QTest::newRow("key") << false;
    }
    void switchToRegions()
    {
        QFETCH(bool, mouse);
        Awards a(awardContacts);
        const auto toggle = [&] {
            if (mouse)
                a.click("cmbdxcc");
            else
                a.tick("cmbdxcc");
        };
        toggle();
        QCOMPARE(a.text("cmbdxcc"), QStringLiteral("Россия"));
        QVERIFY(a.shown(kRegions) && !a.shown(kPrefixes));
        QVERIFY(a.shown("txtgorod"));
        // As if the list's first row had been clicked.
        QCOMPARE(a.chosen(kRegions), QStringLiteral("3A"));
        QCOMPARE(a.rows(kCalls), QStringList({"R3AB", "UA3AB"}));
        QCOMPARE(a.text("txtgorod"), QStringLiteral("Москва")); // not the one whose code is 0
        QCOMPARE(a.text("txtpref"), QStringLiteral("3A"));
        QCOMPARE(a.text("txtprf"), QStringLiteral("MA"));
        a.clickRow(kRegions, "9A");
        QCOMPARE(a.rows(kCalls), QStringList("UA9AA"));
        QCOMPARE(a.text("txtgorod"), QStringLiteral("Челябинск"));
        QCOMPARE(a.text("txtprf"), QStringLiteral("CB"));
        toggle();
        QCOMPARE(a.text("cmbdxcc"), QStringLiteral("DXCC"));
        QVERIFY(!a.shown(kRegions) && a.shown(kPrefixes));
        QCOMPARE(a.chosen(kPrefixes), QStringLiteral("DL"));
        QCOMPARE(a.rows(kCalls), QStringList({"DL1AA", "DL1AB"}));
        QCOMPARE(a.text("txtgorod"), QStringLiteral("GERMANY"));
        QVERIFY(a.shown("txtgorod"));
        a.clickRow(kPrefixes, "F");
        toggle(); // what was chosen last is clicked
        QCOMPARE(a.chosen(kRegions), QStringLiteral("9A"));
        QCOMPARE(a.rows(kCalls), QStringList("UA9AA"));
        toggle();
        QCOMPARE(a.rows(kCalls), QStringList("F5AB"));
        QVERIFY(a.quiet());
    }

    void prefixOfARegionThatIsNoMore()
    {
        Awards a(awardContacts);
        a.click("cmbdxcc");
        a.clickRow(kRegions, "5O");
        for (const char *box : {"txtgorod", "txtpref", "txtprf"})
            QCOMPARE(a.text(box), QString());
        QCOMPARE(a.rows(kCalls), QStringList());
        QVERIFY(a.quiet());
    }

    void switchWithEmptyLists()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            in.sql(QStringLiteral("dbrusdx.mdb"), QStringLiteral("DELETE FROM tblrus"));
            in.sql(QStringLiteral("dbdxcc1.mdb"), QStringLiteral("DELETE FROM tbldxcc"));
        });
        a.click("cmbdxcc");
        QCOMPARE(a.rows(kCalls), QStringList());
        a.click("cmbdxcc");
        QCOMPARE(a.text("cmbdxcc"), QStringLiteral("DXCC"));
        QCOMPARE(a.rows(kCalls), QStringList("XX1X")); // those without a country
        QVERIFY(a.quiet());
    }

    void apostropheInAPrefix()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addRow(in, QStringLiteral("dbdxcc1.mdb"), QStringLiteral("tbldxcc"),
                   QStringLiteral("prf=TU|PREF=TU|strana=COTE D'IVOIRE"));
            addRow(in, QStringLiteral("dbdxcc1.mdb"), QStringLiteral("tbldxcc"),
                   QStringLiteral("prf=A'|PREF=A'|strana=ODD"));
            addRow(in, QStringLiteral("dbrusdx.mdb"), QStringLiteral("tblrus"),
                   QStringLiteral("pref=8'|gorod=ODD|prf=OO"));
        });
        int errors = 0;
        for (const char *prefix : {"A'", "TU"}) { // the prefix; the name of its country
            a.clickRow(kPrefixes, "DL");
            QCOMPARE(a.rows(kCalls).size(), 2);
            a.clickRow(kPrefixes, prefix);
            QCOMPARE(a.w.messages.errors.size(), ++errors);
        }
        QCOMPARE(a.rows(kCalls), QStringList());
        a.click("cmbdxcc");
        a.clickRow(kRegions, "8'");
        QCOMPARE(a.w.messages.errors.size(), ++errors);
        a.clickRow(kRegions, "9A");
        QCOMPARE(a.rows(kCalls), QStringList("UA9AA"));
        QCOMPARE(a.w.messages.errors.size(), errors);
    }

    // ---- a station

    void callsignShowsItsContacts()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        QCOMPARE(a.column(kStation, 0), QStringList("F5AB"));
        QCOMPARE(a.text("txtccall"), QStringLiteral("F5AB"));
        QCOMPARE(a.text("txtnname"), QStringLiteral("Jean"));
        QVERIFY(!a.shown("txtqth")); // no town is known
        a.clickRow(kPrefixes, "DL");
        a.clickRow(kCalls, "DL1AA");
        QCOMPARE(a.column(kStation, 3), QStringList({"14", "7"}));
        QCOMPARE(a.text("txtnname"), QStringLiteral("Hans"));
        QCOMPARE(a.text("txtqth"), QStringLiteral("Köln"));
        QVERIFY(a.shown("txtqth"));
        a.clickRow(kCalls, "DL1AB"); // not in the callbook
        QCOMPARE(a.column(kStation, 0), QStringList("DL1AB"));
        for (const char *box : {"txtccall", "txtnname", "txtqth"})
            QCOMPARE(a.text(box), QString());
        QVERIFY(a.shown("txtqth")); // never hidden again
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        QVERIFY(a.shown("txtqth"));
        a.reopen();
        QVERIFY(a.shown("txtqth"));
        QVERIFY(a.quiet());
    }

    void columnsOfTheStation()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "UA");
        a.clickRow(kCalls, "UA3AB");
        const QStringList first = {"UA3AB", "01.02.03", "10:11", "14", "559", "579"};
        for (int column = 0; column < first.size(); ++column)
            QCOMPARE(a.cell(kStation, 0, column), first[column]);
        QVERIFY(a.gridRow(kStation, 0).endsWith(QStringLiteral("RUSSIAN")));
        QCOMPARE(a.headings(kStation).constLast(), QStringLiteral("Country"));
    }

    void apostropheInACallsign()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addLog(in, "ccall=F'X|contr=FRANCE");
        });
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F'X");
        QCOMPARE(a.w.messages.errors.size(), 1);
        a.clickRow(kCalls, "F5AB");
        QCOMPARE(a.column(kStation, 0), QStringList("F5AB"));
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.blank(), QStringList("F5AB"));
        QCOMPARE(a.w.messages.errors.size(), 1);
    }

    // ---- carrying a contact

    void contactIsCarried()
    {
        Awards a(awardContacts);
        QSignalSpy changed(a.window.get(), &awards::frmDIPLOM::logChanged);
        a.clickRow(kPrefixes, "UA");
        a.clickRow(kCalls, "UA3AB");
        a.doubleClickCell(kStation, 0);
        // The received report stands where a card shows the one sent; no country; nothing else of the
        // contact.
        QCOMPARE(a.blank(kCarried), QStringList("UA3AB|01.02.03|10:11|14|579|"));
        QCOMPARE(a.blank("rstr||ps||ps1||qslp||prf||mult||point"), QStringList(""));
        QCOMPARE(a.gridRow(kBlank, 0), QStringLiteral("UA3AB|01.02.03|10:11|14|579|||||"));
        a.tick("Check1");
        a.doubleClickCell(kStation, 0, 8);
        QCOMPARE(a.blank(kCarried), QStringList({"UA3AB|01.02.03|10:11|14|579|",
                                                 "UA3AB|01.02.03|10:11|14|579|RUSSIAN"})); // twice is allowed
        a.tick("Check1");
        a.doubleClickCell(kStation, 0, 3);
        QCOMPARE(a.blank("CONTR"), QStringList({"", "RUSSIAN", ""}));
        QCOMPARE(a.log("ccall").size(), 8);
        QCOMPARE(changed.size(), 0); // nothing of the log
        QVERIFY(a.quiet());
    }

    void rulesOfTimeAndReport_data()
    {
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<QString>("call");
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("carried");
        QTest::newRow("three digits") << "UA"
                                      << "R3AB" << 0 << "09:34|59";
        QTest::newRow("four digits") << "DL"
                                     << "DL1AA" << 1 << "1234|57";
        QTest::newRow("two digits") << "DL"
                                    << "DL1AB" << 0 << "00:12|595";
        QTest::newRow("one digit") << "F"
                                   << "F5AB" << 0 << "00:05|55";
        QTest::newRow("hours and minutes") << "UA"
                                           << "UA3AB" << 0 << "10:11|579";
    }
    void rulesOfTimeAndReport()
    {
        QFETCH(QString, prefix);
        QFETCH(QString, call);
        QFETCH(int, row);
        QFETCH(QString, carried);
        Awards a(awardContacts);
        a.clickRow(kPrefixes, qPrintable(prefix));
        a.clickRow(kCalls, qPrintable(call));
        a.doubleClickCell(kStation, row);
        QCOMPARE(a.blank("ttime,rsts"), QStringList(carried));
        QVERIFY(a.quiet());
    }

    void contestReportIsAsked_data()
    {
        QTest::addColumn<bool>("yes");
        QTest::addColumn<QString>("report");
        QTest::newRow("yes") << true << "599";
        QTest::newRow("no") << false << "59";
    }
    void contestReportIsAsked()
    {
        QFETCH(bool, yes);
        QFETCH(QString, report);
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "DL");
        a.clickRow(kCalls, "DL1AA");
        a.w.messages.yes = yes;
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.asked,
                 QStringList(QStringLiteral("RST из контеста !!!: Если 599 жми OK ,иначе RST=59")));
        QCOMPARE(a.blank(kCarried), QStringList(QStringLiteral("DL1AA|04.02.03|12:34|14|%1|").arg(report)));
        QCOMPARE(a.log("rstr")[3], QStringLiteral("599001")); // the log keeps it
    }

    void missingTimeIsAsked()
    {
        Awards a(awardContacts);
        QSignalSpy changed(a.window.get(), &awards::frmDIPLOM::logChanged);
        a.clickRow(kPrefixes, "UA");
        a.clickRow(kCalls, "UA9AA");
        a.w.messages.texts = QStringList("934");
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.asked, QStringList(QStringLiteral("Нет времени связи: Введите время !!! ")));
        QCOMPARE(a.blank(kCarried), QStringList("UA9AA|03.02.03|09:34|21||")); // a report of one sign is none
        QCOMPARE(a.log("ttime")[2], QStringLiteral("934"));
        QCOMPARE(a.cell(kStation, 0, kTimeColumn), QStringLiteral("934"));
        QCOMPARE(changed.size(), 1);
        a.doubleClickCell(kStation, 0); // it is there now
        QCOMPARE(a.w.messages.asked.size(), 1);
        QCOMPARE(a.blank("ttime"), QStringList({"09:34", "09:34"}));
        QCOMPARE(changed.size(), 1);
        QVERIFY(a.w.messages.errors.isEmpty());
    }

    void cancelledTime()
    {
        Awards a(awardContacts);
        QSignalSpy changed(a.window.get(), &awards::frmDIPLOM::logChanged);
        a.clickRow(kPrefixes, "UA");
        a.clickRow(kCalls, "UA9AA");
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.asked.size(), 1);
        QCOMPARE(a.blank(kCarried), QStringList("UA9AA|03.02.03||21||"));
        QCOMPARE(a.log("ttime")[2], QString());
        QCOMPARE(changed.size(), 0); // nothing has
    }

    void timeBeforeReport()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addLog(in, "ccall=F1X|contr=FRANCE|rstr=59 123");
        });
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F1X");
        a.w.messages.texts = QStringList("1");
        a.w.messages.answers = {false};
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.asked.size(), 2);
        QVERIFY(a.w.messages.asked.front().startsWith(QStringLiteral("Нет времени")));
        QCOMPARE(a.blank("ttime,rsts"), QStringList("00:01|59"));
    }

    void carriedByKeyboard()
    {
        Awards a(awardContacts);
        a.find<QWidget>(kPrefixes)->setFocus();
        a.press(Qt::Key_Return); // the first one, which the focus marks
        QCOMPARE(a.rows(kCalls), QStringList({"DL1AA", "DL1AB"}));
        QCOMPARE(a.w.focus(), QLatin1String(kCalls));
        a.press(Qt::Key_Return);
        QCOMPARE(a.w.focus(), QLatin1String(kStation));
        QCOMPARE(a.column(kStation, 3), QStringList({"14", "7"}));
        a.press(Qt::Key_Return);
        a.press(Qt::Key_Down);
        a.press(Qt::Key_Return);
        QCOMPARE(a.blank("ccall,bband"), QStringList({"DL1AA|14", "DL1AA|7"}));
        QCOMPARE(a.w.focus(), QLatin1String(kStation));
        a.press(Qt::Key_Escape);
        QCOMPARE(a.w.focus(), QLatin1String(kCalls));
        a.press(Qt::Key_Down);
        a.press(Qt::Key_Return);
        a.press(Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(a.blank("ccall").constLast(), QStringLiteral("DL1AB"));
        QCOMPARE(a.w.messages.asked.size(), 1); // the contest's report
    }

    void heldEnterCarriesOnce()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.clickCell(kStation, 0, 0);
        a.press(Qt::Key_Return);
        for (int i = 0; i < 3; ++i) {
            QKeyEvent again(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"), true);
            QCoreApplication::sendEvent(a.find<QWidget>(kStation), &again);
        }
        QCOMPARE(a.blank(), QStringList("F5AB"));
    }

    void withoutAContactNothingIsCarried()
    {
        Awards a(testsupport::awardTables); // an empty log
        a.find<QWidget>(kStation)->setFocus();
        a.press(Qt::Key_Return);
        QCOMPARE(a.blank(), QStringList());
        a.press(Qt::Key_Escape);
        QCOMPARE(a.w.focus(), QLatin1String(kCalls));
        QVERIFY(a.quiet());
    }

    void cellOfTheLogIsPutRightAndCarried()
    {
        Awards a(awardContacts);
        QSignalSpy changed(a.window.get(), &awards::frmDIPLOM::logChanged);
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.clickCell(kStation, 0, kTimeColumn);
        a.press(Qt::Key_F2);
        a.type("2359"); // the cell is still open
        a.doubleClickCell(kStation, 0, 0);
        QCOMPARE(a.log("ttime")[6], QStringLiteral("2359"));
        QCOMPARE(a.blank("ttime"), QStringList("2359"));
        QCOMPARE(changed.size(), 1);
        QVERIFY(a.quiet());
    }

    void failedCarryingLeavesTheBlank()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.sql(kLog, kForbidBlank);
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.column(kBlank, 0), QStringList());
        a.clickRow(kPrefixes, "DL"); // the window goes on working
        a.clickRow(kCalls, "DL1AB");
        a.clickCell(kStation, 0, 0);
        QCOMPARE(a.w.messages.errors.size(), 1);
        a.sql(kLog, "DROP TRIGGER no");
        a.press(Qt::Key_Return);
        QCOMPARE(a.blank(), QStringList("DL1AB"));
        QCOMPARE(a.w.messages.errors.size(), 1);
        a.window->close();
        QVERIFY(!a.window->isVisible());
    }

    void timeThatCannotBeStored()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "UA");
        a.clickRow(kCalls, "UA9AA");
        a.sql(kLog, kForbidLog);
        a.w.messages.texts = QStringList("1530");
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.blank(), QStringList());
        QCOMPARE(a.cell(kStation, 0, kTimeColumn), QStringLiteral("1530")); // the answer is kept
        a.sql(kLog, "DROP TRIGGER no");
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.blank("ttime"), QStringList("1530"));
        QCOMPARE(a.log("ttime")[2], QStringLiteral("1530"));
        QCOMPARE(a.w.messages.errors.size(), 1);
    }

    void escDropsTheEditOfARow()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.sql(kLog, kForbidLog);
        a.clickCell(kStation, 0, 0);
        a.press(Qt::Key_F2);
        a.type("x");
        a.press(Qt::Key_Return);
        QCoreApplication::processEvents();
        QCOMPARE(a.cell(kStation, 0, 0), QStringLiteral("X"));
        a.press(Qt::Key_Escape); // also where it can never be saved
        QCOMPARE(a.cell(kStation, 0, 0), QStringLiteral("F5AB"));
        QCOMPARE(a.w.focus(), QLatin1String(kStation));
        a.press(Qt::Key_Escape);
        QCOMPARE(a.w.focus(), QLatin1String(kCalls));
        QCOMPARE(a.log("ccall")[6], QStringLiteral("F5AB"));
        QVERIFY(a.quiet());
    }

    void strayLettersChangeNothing()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        const QStringList before = a.log("*");
        a.clickCell(kStation, 0, 3);
        a.type("7x");
        a.press(Qt::Key_Escape);
        QCOMPARE(a.w.focus(), QLatin1String(kCalls));
        QCOMPARE(a.log("*"), before);
        QVERIFY(a.quiet());
    }

    // ---- the blank

    void blankIsOrderedByCallsign()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in,
                     "ccall=R9Z|ddate=1|ttime=2|bband=3|rsts=4|rstr=5|mult=6|point=7|ps=прим|CONTR=8|ps1=9");
            addBlank(in, "ccall=A1A");
        });
        QCOMPARE(a.column(kBlank, 0), QStringList({"A1A", "R9Z"}));
        QCOMPARE(a.gridRow(kBlank, 1), QStringLiteral("R9Z|1|2|3|4|5|6|7|прим|8"));
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.column(kBlank, 0), QStringList({"A1A", "F5AB", "R9Z"}));
        QVERIFY(a.quiet());
    }

    void blankIsSharedWithTheBureau()
    {
        Awards a(awardContacts);
        qsl::QSLburo bureau({a.w.installation.databases, a.w.clock, a.w.messages, a.w.progress, a.w.reports});
        bureau.show();
        QVERIFY(activate(bureau));
        const auto *shared = bureau.findChild<ui::DbGrid *>(QLatin1String(kBlank));
        QVERIFY(activate(*a.window));
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.doubleClickCell(kStation, 0);
        QVERIFY(activate(bureau));
        QTRY_COMPARE(shared->model()->rowCount(), 1);
        QCOMPARE(shared->model()->index(0, 0).data().toString(), QStringLiteral("F5AB"));
        bureau.findChild<QPushButton *>(QStringLiteral("CMBDEL"))->click();
        QVERIFY(activate(*a.window));
        QTRY_COMPARE(a.column(kBlank, 0), QStringList());
        QVERIFY(a.quiet());
    }

    void typedInOneWindowIsReadInTheOther()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB|bband=14");
        });
        qsl::QSLburo bureau({a.w.installation.databases, a.w.clock, a.w.messages, a.w.progress, a.w.reports});
        bureau.show();
        QVERIFY(activate(bureau));
        const auto *shared = bureau.findChild<ui::DbGrid *>(QLatin1String(kBlank));
        QVERIFY(activate(*a.window));
        constexpr int kBand = 3;
        constexpr int kBureauBand = 3;
        a.clickCell(kBlank, 0, kBand);
        a.type("21");
        a.press(Qt::Key_Return); // the row has not been left
        QCOMPARE(a.blank("bband"), QStringList("14"));
        QVERIFY(activate(bureau));
        QTRY_COMPARE(a.blank("bband"), QStringList("21"));
        QTRY_COMPARE(shared->model()->index(0, kBureauBand).data().toString(), QStringLiteral("21"));
        auto *field = bureau.findChild<ui::FilterEdit *>(QStringLiteral("TXTBAND"));
        field->setFocus();
        field->selectAll();
        a.w.type(QStringLiteral("28"));
        QCOMPARE(a.blank("bband"), QStringList("21"));
        QVERIFY(activate(*a.window));
        QTRY_COMPARE(a.blank("bband"), QStringList("28"));
        QTRY_COMPARE(a.cell(kBlank, 0, kBand), QStringLiteral("28"));
        QVERIFY(a.quiet());
    }

    /// The row that was current stays so, wherever the others have put it.
    void comingBackKeepsTheRowOfTheBlank()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB|bband=14");
            addBlank(in, "ccall=F6AB|bband=14");
        });
        a.clickCell(kBlank, 1, 3);
        QVERIFY(activate(*a.w.log));
        addBlank(a.w.installation, "ccall=DL1AA|bband=14");
        QVERIFY(activate(*a.window));
        QTRY_COMPARE(a.column(kBlank, 0), QStringList({"DL1AA", "F5AB", "F6AB"}));
        a.find<QWidget>(kBlank)->setFocus();
        a.type("21");
        a.press(Qt::Key_Return);
        a.find<QWidget>(kCalls)->setFocus();
        QCOMPARE(a.blank("ccall,bband"), QStringList({"F5AB|14", "F6AB|21", "DL1AA|14"}));
        QVERIFY(a.quiet());
    }

    /// Its key has been given to another contact: nothing may be typed into that one.
    void rowThatIsGoneLeavesNoCurrentCell()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB|bband=14");
            addBlank(in, "ccall=F6AB|bband=14");
        });
        a.clickCell(kBlank, 1, 3);
        QVERIFY(activate(*a.w.log));
        a.sql(kLog, "DELETE FROM tbllogTEMP");
        addBlank(a.w.installation, "ccall=DL1AA|bband=14");
        addBlank(a.w.installation, "ccall=DL1AB|bband=14");
        QVERIFY(activate(*a.window));
        QTRY_COMPARE(a.column(kBlank, 0), QStringList({"DL1AA", "DL1AB"}));
        QVERIFY(!a.find<ui::DbGrid>(kBlank)->currentIndex().isValid());
        a.type("21");
        a.find<QWidget>(kCalls)->setFocus();
        QCOMPARE(a.blank("bband"), QStringList({"14", "14"}));
        QVERIFY(a.quiet());
    }

    /// A double click into the window behind: its second press must find the row of the first.
    void rowsStayUnderTheMouseThatBringsTheWindow()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB|bband=14");
            addBlank(in, "ccall=F6AB|bband=14");
        });
        QVERIFY(activate(*a.w.log));
        addBlank(a.w.installation, "ccall=DL1AA|bband=14");
        const auto *grid = a.find<ui::DbGrid>(kBlank);
        const QPoint place =
            grid->viewport()->mapTo(a.window.get(), grid->visualRect(grid->model()->index(1, 0)).center());
        QTest::mousePress(a.window->windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
        QVERIFY(activate(*a.window));
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
        QTest::mouseRelease(a.window->windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
        QCOMPARE(a.column(kBlank, 0), QStringList({"F5AB", "F6AB"}));
        QTRY_COMPARE(a.column(kBlank, 0), QStringList({"DL1AA", "F5AB", "F6AB"}));
        QCOMPARE(grid->currentIndex().row(), 2); // the one that was pressed
    }

    void blankEmptiedElsewhereEndsTheEdit()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB|bband=14");
        });
        a.clickCell(kBlank, 0, 3);
        a.type("21");
        a.press(Qt::Key_Return);
        a.sql(kLog, "DELETE FROM tbllogTEMP");
        a.click("cmbUsl");
        QCOMPARE(a.w.messages.errors,
                 QStringList(QStringLiteral(
                     "Строка файла dbiaru.mdb удалена или изменена в другом окне или другой программой. "
                     "Правка не сохранена: «21».")));
        QTRY_COMPARE(a.column(kBlank, 0), QStringList());
        a.click("cmbUsl"); // the window goes on working
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.blank(), QStringList("F5AB"));
        QCOMPARE(a.w.messages.errors.size(), 1);
    }

    void remarksAreTypedIntoTheBlank()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB|bband=14");
            addBlank(in, "ccall=F6AB|bband=14");
        });
        a.clickCell(kBlank, 0, 8);
        a.type("о'кей");
        a.click("cmbblanc"); // the cell is still open
        QCOMPARE(a.blank("ps"), QStringList({"О'КЕЙ", ""}));
        a.clickCell(kBlank, 1, 0);
        a.press(Qt::Key_Delete);
        QCOMPARE(a.blank(), QStringList("F5AB"));
        QCOMPARE(counts(a), QList<int>({1, 1, 0, 1, 1}));
        QVERIFY(a.quiet());
    }

    void countsOfTheBlank()
    {
        Awards a(awardContacts);
        QCOMPARE(counts(a), QList<int>({0, 0, 0, 0, 0}));
        a.tick("Check1");
        a.w.messages.yes = true;
        for (const char *call : {"UA3AB", "R3AB"}) {
            a.clickRow(kPrefixes, "UA");
            a.clickRow(kCalls, call);
            a.doubleClickCell(kStation, 0);
        }
        QCOMPARE(counts(a), QList<int>({2, 2, 1, 2, 1})); // a card of UA3AB
        a.clickRow(kPrefixes, "DL");
        a.clickRow(kCalls, "DL1AA");
        a.doubleClickCell(kStation, 0);
        a.doubleClickCell(kStation, 1);
        QCOMPARE(counts(a), QList<int>({4, 3, 2, 2, 2}));
        a.click("Command3");
        QCOMPARE(counts(a), QList<int>({0, 0, 0, 0, 0}));
    }

    void blankIsEmptiedWithoutAQuestion()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            for (const char *call : {"ccall=F5AB", "ccall=F6AB", "ccall=F'X"})
                addBlank(in, call);
        });
        a.clickCell(kBlank, 0, 0);
        a.type("x"); // an open cell goes with its row
        a.click("Command3");
        QCOMPARE(a.blank(), QStringList());
        QCOMPARE(a.column(kBlank, 0), QStringList());
        QCOMPARE(a.log("ccall").size(), 8);
        a.click("Command3");
        QVERIFY(a.quiet());
    }

    void emptyingThatFails()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB");
            addBlank(in, "ccall=F6AB");
        });
        a.sql(kLog, "CREATE TRIGGER no BEFORE DELETE ON tbllogTEMP WHEN OLD.ccall='F6AB' BEGIN SELECT "
                    "RAISE(ABORT,'нельзя'); END");
        a.click("Command3");
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.blank(), QStringList({"F5AB", "F6AB"}));
        QCOMPARE(a.column(kBlank, 0), QStringList({"F5AB", "F6AB"}));
        a.sql(kLog, "DROP TRIGGER no");
        a.click("Command3");
        QCOMPARE(a.blank(), QStringList());
        QCOMPARE(a.w.messages.errors.size(), 1);
    }

    void applicationIsAsked()
    {
        Awards a(awardContacts);
        QSignalSpy asked(a.window.get(), &awards::frmDIPLOM::applicationAsked);
        addBlank(a.w.installation, "ccall=F5AB");
        a.click("cmbblanc");
        QCOMPARE(asked.size(), 1);
        QCOMPARE(a.column(kBlank, 0), QStringList("F5AB"));
        a.tick("cmbblanc");
        QCOMPARE(asked.size(), 2);
        QVERIFY(a.quiet());
    }
};

QTEST_MAIN(AwardPickingTest)
#include "awardpicking.moc"
