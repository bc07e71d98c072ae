// The bureau window's search, own callsign, grid of contacts, and the window as a whole.
#include "app/windows.h"
#include "support/bureau.h"

#include <QApplication>
#include <QClipboard>
#include <QPushButton>
#include <QSet>
#include <QSignalSpy>

#include <algorithm>

using testsupport::addLog;
using testsupport::addRow;
using testsupport::Bureau;
using testsupport::Installation;

namespace {

constexpr auto kLogGrid = "DBGrid1";
constexpr int kSent = 2;
constexpr int kReceived = 3;

void contacts(const Installation &in)
{
    testsupport::smallTables(in);
    addLog(in, "ccall=UA3ABC|bband=14|contr=RUSSIAN|ddate=01.02.03|ttime=10:11|rsts=599|rstr=579|qslo=a|"
               "qslp=b|qslvia=RX3A|prf=XYZ|ps1=CW");
    for (const char *row :
         {"ccall=DL1AB|bband=7|contr=GERMANY|ddate=02.02.03|prf=XYZ|rstr=57|ps1=SSB",
          "ccall=DL1AA|bband=21|contr=GERMANY|prf=XYZ", "ccall=DL1AA|bband=14|contr=GERMANY|prf=OLD",
          "ccall=DL1AA|bband=14|contr=GERMANY|prf=XYZ|rstr=55|ps1=PSK",
          "ccall=DL2/P|bband=14|contr=GERMANY|prf=OLD", "ccall=F5AB|bband=14|contr=FRANCE|prf=XYZ"})
        addLog(in, row);
}

/// Callsigns made with one own key each.
void oneContactPerKey(const Installation &in)
{
    testsupport::smallTables(in);
    in.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall=''"));
    for (const char *key : {"", "U", "UA", "UA3", "UA3X", "X", "XY", "XYZ", "XYZW", "XYZWV"})
        addRow(in, QStringLiteral("dbiaru.mdb"), QStringLiteral("TBLLOG1"),
               QStringLiteral("ccall=R%1|bband=14|prf=%1").arg(QLatin1String(key)));
}

class NoOldDatabases final : public interchange::OldDatabases {
public:
    [[nodiscard]] bool convertTo(const QString &, const QString &) override { return false; }
    [[nodiscard]] bool convertInPlace(const QString &) override { return false; }
};

QStringList ownCalls(const Bureau &b)
{
    return b.w.installation.rows(QStringLiteral("dbcontest.mdb"), QStringLiteral("SELECT ccall FROM tbltit"));
}

/// The own key, as the list of a band shows it.
QString ownKey(Bureau &b)
{
    b.click("lblband_4");
    return b.rows("DBList1").join(QLatin1Char(' ')).mid(1);
}

} // namespace

class BureauSearchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- own callsign

    void ownKeyOfAStoredCallsign_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("key");
        QTest::newRow("0") << ""
                           << "";
        QTest::newRow("1") << "U"
                           << "";
        QTest::newRow("2") << "UA"
                           << "";
        QTest::newRow("3") << "UA3"
                           << "UA3";
        QTest::newRow("4") << "UA3X"
                           << "";
        QTest::newRow("5") << "UA3XY"
                           << "XY";
        QTest::newRow("6") << "UA3XYZ"
                           << "XYZ";
        QTest::newRow("7") << "UA3XYZW"
                           << "XYZW";
        QTest::newRow("8") << "UA3XYZWV"
                           << "XYZWV";
    }
    void ownKeyOfAStoredCallsign()
    {
        QFETCH(QString, call);
        QFETCH(QString, key);
        Bureau b([&call](const Installation &in) {
            oneContactPerKey(in);
            in.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall='%1'").arg(call));
        });
        QCOMPARE(b.text("txtnewcall"), call);
        QCOMPARE(ownKey(b), key);
    }

    void ownKeyAtEveryKey()
    {
        Bureau b(oneContactPerKey);
        QCOMPARE(b.tip("txtnewcall"), QStringLiteral("Введите свой позывной"));
        const QStringList keys = {"", "", "UA3", "UA3", "XY", "XYZ", "XYZW", "XYZWV"};
        const QString call = QStringLiteral("ua3xyzwv");
        for (int i = 0; i < call.size(); ++i) {
            b.click("txtnewcall");
            b.press(Qt::Key_End);
            b.w.type(call.mid(i, 1));
            QCOMPARE(b.text("txtnewcall"), call.left(i + 1).toUpper());
            QCOMPARE(ownCalls(b), QStringList(call.left(i + 1).toUpper())); // every key stores it
            QCOMPARE(ownKey(b), keys[i]);
        }
        const QStringList shortened = {"XYZW", "XYZ", "XY", "XY", "UA3", "UA3", "UA3", "UA3"};
        for (int i = 0; i < shortened.size(); ++i) {
            b.click("txtnewcall");
            b.press(Qt::Key_End);
            b.press(Qt::Key_Backspace);
            QCOMPARE(ownCalls(b).front().size(), call.size() - i - 1);
            QCOMPARE(ownKey(b), shortened[i]);
        }
        QVERIFY(b.quiet());
    }

    void enterGoesFromTheOwnCallsignToTheSearch()
    {
        Bureau b;
        b.enter("txtnewcall", "r1abc");
        b.press(Qt::Key_Return);
        QCOMPARE(b.w.focus(), QStringLiteral("txtserch"));
        QCOMPARE(ownCalls(b), QStringList("R1ABC"));
    }

    // ---- search

    void searchFieldEmptiesTheCounts_data()
    {
        QTest::addColumn<bool>("mouse");
        QTest::newRow("mouse") << true;
        QTest::newRow("key") << false;
    }
    void searchFieldEmptiesTheCounts()
    {
        QFETCH(bool, mouse);
        Bureau b(contacts);
        QVERIFY(b.hasLabel("Поиск"));
        b.click("lbldxcc");
        b.click("cmbinfo");
        QCOMPARE(b.text("txtQSO_4"), QStringLiteral("3"));
        QCOMPARE(b.text("txtQSO_8"), QStringLiteral("0"));
        b.click("Command1");
        b.clickRow("DBList2", "UA");
        QCOMPARE(b.text("txtQSO_8"), QStringLiteral("0"));
        if (mouse) {
            b.click("txtserch");
        } else {
            b.click("txtnewcall");
            b.press(Qt::Key_Tab);
        }
        QCOMPARE(b.w.focus(), QStringLiteral("txtserch"));
        for (const char *column : {"txtotpr", "TXTPOL", "txtQSO"})
            QCOMPARE(b.texts(column, 9).join(QString()), QString());
        QCOMPARE(b.text("txtstrana"), QString());
        QCOMPARE(b.text("txttot_2"), QStringLiteral("3")); // totals stay
        QCOMPARE(b.text("TQSO"), QStringLiteral("7"));
    }

    void searchFieldTakes_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("taken");
        QTest::newRow("letters") << "asdfghjklqwert"
                                 << "ASDFGHJKLQWERT";
        QTest::newRow("more letters") << "YUIOPzxcvbnm"
                                      << "YUIOPZXCVBNM";
        QTest::newRow("digits and stroke") << "0123456789/"
                                           << "0123456789/";
        QTest::newRow("no other sign") << "u-a.3*?'\"% ,"
                                       << "UA3";
        QTest::newRow("no Cyrillic") << QStringLiteral("уaАбёЙ1") << "A1";
        QTest::newRow("no other letters") << QStringLiteral("äßéñ") << "";
        QTest::newRow("fourteen") << "12345678901234"
                                  << "12345678901234";
        QTest::newRow("fifteenth refused") << "123456789012345"
                                           << "12345678901234";
    }
    void searchFieldTakes()
    {
        QFETCH(QString, typed);
        QFETCH(QString, taken);
        Bureau b;
        QCOMPARE(b.w.focus(), QStringLiteral("txtserch")); // where the work begins
        b.w.type(typed);
        QCOMPARE(b.text("txtserch"), taken);
        b.press(Qt::Key_A, Qt::ControlModifier);
        b.press(Qt::Key_Delete);
        QCOMPARE(b.text("txtserch"), QString());
        QApplication::clipboard()->setText(typed); // a paste obeys the same rule
        b.press(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(b.text("txtserch"), taken);
        QVERIFY(b.quiet());
    }

    void fullSearchFieldTakesBackspace()
    {
        Bureau b;
        b.type("123456789012345");
        b.press(Qt::Key_Backspace);
        QCOMPARE(b.text("txtserch"), QStringLiteral("1234567890123"));
        b.press(Qt::Key_Home);
        b.type("abc");
        QCOMPARE(b.text("txtserch"), QStringLiteral("A1234567890123"));
        QApplication::clipboard()->setText(QStringLiteral("z-z"));
        b.press(Qt::Key_A, Qt::ControlModifier);
        b.press(Qt::Key_V, Qt::ControlModifier); // over what is selected
        QCOMPARE(b.text("txtserch"), QStringLiteral("ZZ"));
    }

    void searchNarrows()
    {
        Bureau b(contacts);
        b.type("d");
        QCOMPARE(b.rows("DBList1"), QStringList({"DL1AA", "DL1AB"})); // DL2/P was another own callsign's
        QCOMPARE(b.text("txtstrana"), QString());
        b.type("l");
        QCOMPARE(b.text("txtstrana"), QStringLiteral("GERMANY"));
        // The contacts of the list's current callsign, of the own callsign, in the order they were stored.
        QCOMPARE(b.gridRow(kLogGrid, 0), QStringLiteral("DL1AA|21||||||||XYZ|"));
        QCOMPARE(b.gridRow(kLogGrid, 1), QStringLiteral("DL1AA|14||||||||XYZ|")); // no rstr, no PS1
        QCOMPARE(b.column(kLogGrid, 0).size(), 2);
        b.type("1ab");
        QCOMPARE(b.rows("DBList1"), QStringList("DL1AB"));
        QCOMPARE(b.column(kLogGrid, 0), QStringList("DL1AB"));
        b.type("x");
        QCOMPARE(b.rows("DBList1"), QStringList());
        QCOMPARE(b.column(kLogGrid, 0), QStringList());
        QCOMPARE(b.text("txtstrana"), QStringLiteral("GERMANY"));
        for (int i = 0; i < 6; ++i)
            b.press(Qt::Key_Backspace);
        QCOMPARE(b.rows("DBList1"), QStringList({"DL1AA", "DL1AB", "F5AB", "UA3ABC"}));
        QCOMPARE(b.text("txtstrana"), QStringLiteral("GERMANY")); // nothing was looked up
        b.type("ua9");
        QCOMPARE(b.text("txtstrana"), QStringLiteral("RUSSIAN"));
        b.type("1");
        QCOMPARE(b.text("txtstrana"), QStringLiteral("RUSSIAN"));
        QVERIFY(b.quiet());
    }

    void searchTakesTheLongestPrefix()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            addRow(in, QStringLiteral("dbdxcc1.mdb"), QStringLiteral("tbldxcc"),
                   QStringLiteral("prf=U|PREF=U|strana=USSR"));
            addRow(in, QStringLiteral("dbdxcc1.mdb"), QStringLiteral("tbldxcc"),
                   QStringLiteral("prf=UA9A|PREF=U|strana=URAL"));
        });
        const QStringList countries = {"USSR", "RUSSIAN", "RUSSIAN", "URAL", "URAL"};
        const QString call = QStringLiteral("ua9ab");
        for (int i = 0; i < call.size(); ++i) {
            b.w.type(call.mid(i, 1));
            QCOMPARE(b.text("txtstrana"), countries[i]);
        }
    }

    void pasteSearchesToo()
    {
        Bureau b(contacts);
        QApplication::clipboard()->setText(QStringLiteral(" dl1-ab\n"));
        b.press(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(b.text("txtserch"), QStringLiteral("DL1AB"));
        QCOMPARE(b.rows("DBList1"), QStringList("DL1AB"));
        QCOMPARE(b.column(kLogGrid, 0), QStringList("DL1AB"));
        QCOMPARE(b.text("txtstrana"), QStringLiteral("GERMANY"));
    }

    void everyKeySearches()
    {
        Bureau b(contacts);
        b.type("dl1a");
        b.click("Command3"); // another list
        QCOMPARE(b.rows("DBList1"), QStringList("UA3ABC"));
        b.click("txtserch");
        b.press(Qt::Key_Left);
        QCOMPARE(b.rows("DBList1"), QStringList({"DL1AA", "DL1AB"}));
        QCOMPARE(b.text("txtstrana"), QStringLiteral("GERMANY"));
    }

    void eveningWithoutAMouse()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            addLog(in, "ccall=DL1AA|bband=14|ttime=1|ddate=05.03.26|prf=XYZ");
            addLog(in, "ccall=F5AB|bband=7|ttime=1|ddate=05.03.26|prf=XYZ");
        });
        b.type("dl");
        b.press(Qt::Key_Return);
        QCOMPARE(b.w.focus(), QLatin1String(kLogGrid));
        b.press(Qt::Key_Return);
        b.press(Qt::Key_Escape);
        QCOMPARE(b.w.focus(), QStringLiteral("txtserch"));
        b.type("f"); // in place of the last callsign
        QCOMPARE(b.text("txtserch"), QStringLiteral("F"));
        b.press(Qt::Key_Down);
        QCOMPARE(b.w.focus(), QStringLiteral("DBList1"));
        b.click("txtserch");
        b.press(Qt::Key_Return);
        b.press(Qt::Key_Return);
        QCOMPARE(b.blank(), QStringList({"DL1AA", "F5AB"}));
        b.find<QWidget>("cmbqslotpr")->setFocus();
        b.press(Qt::Key_Return);
        QCOMPARE(b.log("qslo"), QStringList({"05.03.2026", "05.03.2026"}));
        QCOMPARE(b.blank(), QStringList());
        QVERIFY(b.quiet());
    }

    void searchThatFailsIsAStatusLine()
    {
        Bureau b(contacts);
        b.enter("txtnewcall", "UA3'XY"); // breaks the statement
        b.click("txtserch");
        b.type("d");
        QVERIFY(!b.status().isEmpty());
        b.enter("txtnewcall", "UA3XYZ");
        b.click("txtserch");
        b.type("l");
        QCOMPARE(b.status(), QString());
        QCOMPARE(b.rows("DBList1"), QStringList({"DL1AA", "DL1AB"}));
        store::Connection other(b.w.installation.file(QStringLiteral("dbiaru.mdb")),
                                store::OpenMode::ReadWrite);
        other.exec(QStringLiteral("BEGIN EXCLUSIVE"));
        b.type("1");
        QVERIFY2(b.status().contains(QStringLiteral("занят")), qPrintable(b.status()));
        other.exec(QStringLiteral("ROLLBACK"));
        b.type("a");
        QCOMPARE(b.status(), QString());
        QCOMPARE(b.text("txtserch"), QStringLiteral("DL1A"));
        QVERIFY(b.quiet());
    }

    // ---- the grid of contacts

    void gridOfContacts()
    {
        Bureau b(contacts);
        QCOMPARE(b.headings(kLogGrid), QStringList({QStringLiteral("Позывной"), "bband",
                                                    QStringLiteral("отпр."), QStringLiteral("пол."), "Date",
                                                    "ttime", "RSTs", "QSL via", "rstr", "prf", "PS1"}));
        QVERIFY(b.hasLabel("LOG - (dubleClik - выбранная запись переносится в QSLбланк)"));
        QCOMPARE(b.column(kLogGrid, 0),
                 QStringList({"DL1AA", "DL1AA", "DL1AA", "DL1AB", "DL2/P", "F5AB", "UA3ABC"}));
        QCOMPARE(b.gridRow(kLogGrid, 6), QStringLiteral("UA3ABC|14|a|b|01.02.03|10:11|599|RX3A|579|XYZ|CW"));
        b.click("Command3");
        QCOMPARE(b.column(kLogGrid, 0).size(), 7); // only the list changes
        QCOMPARE(b.rows("DBList1"), QStringList("UA3ABC"));
    }

    void countryShowsItsContacts()
    {
        Bureau b(contacts);
        b.clickRow("DBList1", "DL1AB");
        b.click("txtstrana");
        QCOMPARE(b.column(kLogGrid, 0), QStringList({"DL1AA", "DL1AA", "DL1AB"})); // of the own callsign
        QCOMPARE(b.gridRow(kLogGrid, 2), QStringLiteral("DL1AB|7|||02.02.03||||||"));
        QCOMPARE(b.headings(kLogGrid).size(), 11);
        b.clickRow("DBList1", "F5AB");
        b.find<QWidget>("txtstrana")->setFocus();
        b.press(Qt::Key_Space);
        QCOMPARE(b.column(kLogGrid, 0), QStringList("F5AB"));
        QVERIFY(b.quiet());
    }

    void f1ShowsTheCallsignOnAllBands()
    {
        Bureau b(contacts);
        b.clickCell(kLogGrid, 1, 4);
        b.press(Qt::Key_F1);
        QCOMPARE(b.column(kLogGrid, 0), QStringList({"DL1AA", "DL1AA", "DL1AA"}));
        QCOMPARE(b.column(kLogGrid, 1), QStringList({"14", "14", "21"})); // by band, of any own callsign
        QCOMPARE(b.gridRow(kLogGrid, 1), QStringLiteral("DL1AA|14|||||||||"));
        QCOMPARE(b.find<ui::DbGrid>(kLogGrid)->currentIndex().column(), 0);
        QCOMPARE(b.w.focus(), QLatin1String(kLogGrid));
        QVERIFY(b.quiet());
    }

    void receivedMarkIsTypedIntoTheGrid()
    {
        Bureau b(contacts);
        QSignalSpy changed(b.window.get(), &qsl::QSLburo::logChanged);
        b.clickCell(kLogGrid, 5, kReceived); // F5AB
        b.type("да");
        b.press(Qt::Key_Return);
        QCoreApplication::processEvents();
        QCOMPARE(b.cell(kLogGrid, 5, kReceived), QStringLiteral("ДА"));
        QVERIFY(b.blank().isEmpty());                   // Enter has closed the cell, no more
        QCOMPARE(b.log("qslp").constLast(), QString()); // the row has not been left
        b.press(Qt::Key_Down);
        QCOMPARE(b.log("qslp").constLast(), QStringLiteral("ДА"));
        QCOMPARE(changed.size(), 1);
        b.click("Command3");
        QVERIFY(b.rows("DBList1").contains(QStringLiteral("F5AB")));
        QVERIFY(b.quiet());
    }

    void changedRowIsSavedByLeavingTheGrid_data()
    {
        QTest::addColumn<QString>("to");
        QTest::newRow("a button") << "Command3";
        QTest::newRow("a field") << "txtserch";
        QTest::newRow("the menu") << "mnuexit";
        QTest::newRow("closing") << "";
    }
    void changedRowIsSavedByLeavingTheGrid()
    {
        QFETCH(QString, to);
        Bureau b(contacts);
        b.clickCell(kLogGrid, 5, kReceived);
        b.type("x"); // the cell is still open
        if (to.isEmpty())
            b.window->close();
        else if (to == QLatin1String("mnuexit"))
            b.clickMenu("mnuexit");
        else
            b.click(qPrintable(to));
        QCoreApplication::processEvents();
        QCOMPARE(b.log("qslp").constLast(), QStringLiteral("X"));
        QCOMPARE(b.window->isVisible(), !(to.isEmpty() || to == QLatin1String("mnuexit")));
        QVERIFY(b.quiet());
    }

    void escapeDropsWhatIsTypedIntoACellAndSavesARow()
    {
        Bureau b(contacts);
        b.clickCell(kLogGrid, 5, kReceived);
        b.type("x");
        b.press(Qt::Key_Escape); // the cell
        QCoreApplication::processEvents();
        QCOMPARE(b.cell(kLogGrid, 5, kReceived), QString());
        b.clickCell(kLogGrid, 5, kSent);
        b.type("y");
        b.press(Qt::Key_Return);
        QCoreApplication::processEvents();
        QCOMPARE(b.cell(kLogGrid, 5, kSent), QStringLiteral("Y"));
        b.press(Qt::Key_Escape); // to the search
        QCOMPARE(b.w.focus(), QStringLiteral("txtserch"));
        QCOMPARE(b.log("qslo||qslp").constLast(), QStringLiteral("Y"));
    }

    void rowThatCannotBeSaved()
    {
        Bureau b(contacts);
        b.w.installation.sql(QStringLiteral("dbiaru.mdb"),
                             QStringLiteral("CREATE TRIGGER no BEFORE UPDATE ON TBLLOG1 BEGIN SELECT "
                                            "RAISE(ABORT,'нельзя'); END"));
        b.clickCell(kLogGrid, 5, kReceived);
        b.type("x");
        b.press(Qt::Key_Return);
        QCoreApplication::processEvents();
        b.press(Qt::Key_Down);
        QCOMPARE(b.w.messages.errors.size(), 1);
        QCOMPARE(b.find<ui::DbGrid>(kLogGrid)->currentIndex().row(), 5);
        QCOMPARE(b.cell(kLogGrid, 5, kReceived), QStringLiteral("X"));
        // Leaving the grid leads back to the row, with one message.
        b.click("txtserch");
        QCoreApplication::processEvents();
        QCOMPARE(b.w.messages.errors.size(), 2);
        QCOMPARE(b.w.focus(), QStringLiteral("DBGrid1"));
        b.w.messages.yes = false;
        b.press(Qt::Key_Escape);
        QCOMPARE(b.w.messages.asked,
                 QStringList{QStringLiteral("Zhurnal: Правка строки не сохранена. Отказаться от неё?")});
        QCOMPARE(b.cell(kLogGrid, 5, kReceived), QStringLiteral("X"));
        b.window->close();
        QVERIFY(b.window->isVisible()); // nothing typed is lost in silence
        QCOMPARE(b.w.messages.asked.constLast(),
                 QStringLiteral("Zhurnal: Правка не сохранена. Закрыть окно без неё?"));
        b.w.installation.sql(QStringLiteral("dbiaru.mdb"), QStringLiteral("DROP TRIGGER no"));
        b.window->close();
        QVERIFY(!b.window->isVisible());
        QCOMPARE(b.log("qslp").constLast(), QStringLiteral("X"));
    }

    void strayLettersChangeOnlyMarks()
    {
        Bureau b(contacts);
        b.clickRow("DBList1", "UA3ABC");
        const QStringList before = b.log("ccall,bband,ddate,ttime,rsts,rstr,PRF,PS1");
        for (const int column : {0, 1, 4, 5, 6, 9, 10}) {
            b.clickCell(kLogGrid, 0, column);
            b.type("fh2");
        }
        for (const int column : {2, 3, 7}) { // sent, received, route
            b.clickCell(kLogGrid, 0, column);
            b.type("fh2");
            b.press(Qt::Key_Return);
        }
        b.click("txtserch");
        QCOMPARE(b.log("ccall,bband,ddate,ttime,rsts,rstr,PRF,PS1"), before);
        QVERIFY(b.log("QSLO|| '|' ||QSLP|| '|' ||QSLVIA").contains(QStringLiteral("FH2|FH2|FH2")));
        b.clickCell(kLogGrid, 0, 1);
        b.press(Qt::Key_F2);
        b.type("28");
        b.press(Qt::Key_Return);
        b.click("txtserch");
        QVERIFY(b.log("bband").contains(QStringLiteral("28")));
        QVERIFY(b.quiet());
    }

    void cellsThatTheStatementDoesNotDeliver()
    {
        Bureau b(contacts);
        b.clickRow("DBList1", "UA3ABC");
        constexpr int kReportReceived = 8;
        b.clickCell(kLogGrid, 0, kReportReceived);
        b.press(Qt::Key_F2);
        b.type("5");
        QCOMPARE(b.cell(kLogGrid, 0, kReportReceived), QString());
        b.click("txtserch");
        QCOMPARE(b.log("rstr").constFirst(), QStringLiteral("579"));
        QVERIFY(b.quiet());
    }

    // ---- the window

    void tabReachesEveryControl_data()
    {
        QTest::addColumn<int>("selection");
        QTest::newRow("ALL") << 0;
        QTest::newRow("DXCC") << 1;
        QTest::newRow("Россия") << 2;
    }
    void tabReachesEveryControl()
    {
        QFETCH(int, selection);
        Bureau b(contacts);
        for (int i = 0; i < selection; ++i)
            b.click("lbldxcc");
        b.click("txtnewcall");
        QStringList reached;
        for (int i = 0; i < 120; ++i) {
            reached.append(b.w.focus());
            b.press(Qt::Key_Tab);
        }
        QSet<QString> wanted;
        for (QWidget *widget : b.window->findChildren<QWidget *>()) {
            const auto *edit = qobject_cast<QLineEdit *>(widget);
            const bool control = (edit != nullptr && !edit->isReadOnly()) ||
                                 qobject_cast<QPushButton *>(widget) != nullptr ||
                                 qobject_cast<QAbstractItemView *>(widget) != nullptr;
            if (control && widget->isVisible() && !widget->objectName().isEmpty())
                wanted.insert(widget->objectName());
        }
        for (const char *label : {"lbldxcc", "lblband_0", "lblband_8"})
            wanted.insert(QLatin1String(label));
        if (selection < 2)
            wanted.insert(QStringLiteral("txtstrana"));
        QVERIFY(wanted.size() > 30);
        const QSet<QString> missed = wanted - QSet<QString>(reached.begin(), reached.end());
        QVERIFY2(missed.isEmpty(), qPrintable(QStringList(missed.values()).join(QLatin1Char(' '))));
        // The entry fields come in the order in which Enter goes through them.
        const qsizetype first = reached.indexOf(QStringLiteral("txtcall1_0"));
        for (int i = 0; i < 10; ++i)
            QCOMPARE(reached.value(first + i), QStringLiteral("txtcall1_%1").arg(i));
        QCOMPARE(reached.value(first + 10), QStringLiteral("cmbadd"));
    }

    void everyControlIsNamedForAScreenReader()
    {
        const Bureau b;
        for (QWidget *widget : b.window->findChildren<QWidget *>()) {
            const bool control = qobject_cast<QLineEdit *>(widget) != nullptr ||
                                 qobject_cast<QPushButton *>(widget) != nullptr ||
                                 qobject_cast<QAbstractItemView *>(widget) != nullptr;
            if (!control || widget->objectName().isEmpty() ||
                widget->objectName().startsWith(QLatin1String("qt_")))
                continue;
            QVERIFY2(!widget->accessibleName().isEmpty(), qPrintable(widget->objectName()));
            QVERIFY2(!widget->toolTip().isEmpty(), qPrintable(widget->objectName()));
        }
    }

    void menu()
    {
        Bureau b;
        QCOMPARE(b.find<QAction>("mnulog")->text(), QStringLiteral("Журнал"));
        QCOMPARE(b.find<QAction>("mnudxcc")->text(), QStringLiteral("DXCC"));
        QCOMPARE(b.find<QAction>("mnuexit")->text(), QStringLiteral("Выход"));
        QSignalSpy toLog(b.find<QAction>("mnulog"), &QAction::triggered);
        b.clickMenu("mnulog");
        QCOMPARE(toLog.size(), 1);
        QVERIFY(b.window->isVisible());
        b.clickMenu("mnuexit");
        QVERIFY(!b.window->isVisible());
        QVERIFY(b.w.log->isVisible());
    }

    void secondOpeningReadsAnew()
    {
        Bureau b(contacts);
        b.window->close();
        addLog(b.w.installation, "ccall=A1NEW|bband=14|prf=R");
        b.w.installation.sql(QStringLiteral("dbcontest.mdb"),
                             QStringLiteral("UPDATE tbltit SET ccall='UA3R9'"));
        b.window->show();
        b.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(b.window.get()));
        QCOMPARE(b.column(kLogGrid, 0).front(), QStringLiteral("A1NEW"));
        QCOMPARE(b.rows("DBList1").front(), QStringLiteral("A1NEW"));
        QCOMPARE(b.text("txtnewcall"), QStringLiteral("UA3R9"));
        b.enter("txtcall1_0", "a2new");
        b.click("cmbadd");
        QCOMPARE(b.log("ccall,prf").constLast(), QStringLiteral("A2NEW|R9"));
        QVERIFY(b.quiet());
    }

    void ownCallsignChangedInTheMainWindow()
    {
        Bureau b(contacts);
        b.click("txtcall1_0");
        b.type("a1new");
        b.click("cmbadd");
        const QString status = b.status();
        QVERIFY(!status.isEmpty());
        b.w.log->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(b.w.log.get()));
        b.w.edit("txtNcall")->setFocus();
        b.w.press(Qt::Key_End);
        b.w.type(QStringLiteral("q"));
        b.w.edit("txtcall")->setFocus();
        QCOMPARE(ownCalls(b), QStringList("UA3XYZQ"));
        b.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(b.window.get()));
        QCOMPARE(b.text("txtnewcall"), QStringLiteral("UA3XYZQ"));
        QCOMPARE(b.status(), status);
        b.enter("txtcall1_0", "a2new");
        b.click("cmbadd");
        QCOMPARE(b.log("ccall,prf").constLast(), QStringLiteral("A2NEW|XYZQ"));
    }

    void programStaysWhileARowCannotBeSaved()
    {
        NoOldDatabases old;
        testsupport::Window w(contacts);
        const app::Windows windows({w.installation.databases, w.messages, w.progress, w.dialogs, old},
                                   {w.installation.databases, w.clock, w.messages, w.progress, w.reports},
                                   {w.installation.databases, w.messages, w.reports}, *w.log);
        w.action("mnuqsl")->trigger();
        const auto tops = QApplication::topLevelWidgets();
        const auto found = std::find_if(tops.begin(), tops.end(), [](const QWidget *window) {
            return window->objectName() == QLatin1String("QSLburo");
        });
        QVERIFY(found != tops.end() && QTest::qWaitForWindowActive(*found));
        QWidget *bureau = *found;
        auto *grid = bureau->findChild<ui::DbGrid *>(QLatin1String(kLogGrid));
        grid->setFocus();
        grid->setCurrentIndex(grid->model()->index(0, kReceived));
        w.type(QStringLiteral("x"));
        w.installation.sql(QStringLiteral("dbiaru.mdb"),
                           QStringLiteral("CREATE TRIGGER no BEFORE UPDATE ON TBLLOG1 BEGIN SELECT "
                                          "RAISE(ABORT,'нельзя'); END"));
        QSignalSpy closed(w.log.get(), &logentry::frmlog::closed);
        w.messages.yes = false; // the window is not to be closed without its row
        w.log->close();
        QCOMPARE(w.messages.errors.size(), 1);
        QVERIFY(w.log->isVisible() && bureau->isVisible());
        QCOMPARE(closed.size(), 0);
        w.installation.sql(QStringLiteral("dbiaru.mdb"), QStringLiteral("DROP TRIGGER no"));
        w.log->close();
        QVERIFY(!w.log->isVisible() && !bureau->isVisible());
        QCOMPARE(closed.size(), 1);
        QCOMPARE(w.installation.rows(QStringLiteral("dbiaru.mdb"), QStringLiteral("SELECT qslp FROM TBLLOG1"))
                     .count(QStringLiteral("X")),
                 1);
    }

    void missingFiles_data()
    {
        QTest::addColumn<QString>("file");
        for (const char *file : {"dbcalbuk.mdb", "dbdxcc1.mdb", "dbrusdx.mdb", "dbcontest.mdb", "dbhelp.mdb"})
            QTest::newRow(file) << file;
    }
    void missingFiles()
    {
        QFETCH(QString, file);
        Bureau b([&file](const Installation &in) {
            contacts(in);
            in.sql(QStringLiteral("dbiaru.mdb"), QStringLiteral("UPDATE TBLLOG1 SET prf=''"));
            if (!QFile::remove(in.file(file)))
                qFatal("not removed");
        });
        QCOMPARE(b.w.messages.errors.size(), 1);
        QVERIFY2(b.w.messages.errors.front().contains(file), qPrintable(b.w.messages.errors.front()));
        b.click("Command1");
        QCOMPARE(b.text("TQSO"), QStringLiteral("7"));
        QCOMPARE(b.column(kLogGrid, 0).size(), 7);
        b.click("Command3");
        QCOMPARE(b.rows("DBList1"), QStringList("UA3ABC"));
        b.click("txtcall1_0");
        b.type("r1new");
        b.click("cmbadd");
        QCOMPARE(b.log("ccall").constLast(), QStringLiteral("R1NEW"));
        b.click("lbldxcc");
        b.click("lbldxcc");
        b.click("lbldxcc");
        QCOMPARE(b.text("lbldxcc"), QStringLiteral("ALL"));
        QVERIFY(!QFile::exists(b.w.installation.file(file)));
        b.window->close();
        QVERIFY(!b.window->isVisible());
    }
};

QTEST_MAIN(BureauSearchTest)
#include "bureausearch.moc"
