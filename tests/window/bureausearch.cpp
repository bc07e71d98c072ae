// The bureau window's own callsign and search.
#include "support/bureau.h"

#include <QApplication>
#include <QClipboard>

using testsupport::addLog;
using testsupport::addRow;
using testsupport::Bureau;
using testsupport::bureauContacts;
using testsupport::Installation;

namespace {

constexpr auto kLogGrid = "DBGrid1";

/// Callsigns made with one own key each.
void oneContactPerKey(const Installation &in)
{
    testsupport::smallTables(in);
    in.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall=''"));
    for (const char *key : {"", "U", "UA", "UA3", "UA3X", "X", "XY", "XYZ", "XYZW", "XYZWV"})
        addRow(in, QStringLiteral("dbiaru.mdb"), QStringLiteral("TBLLOG1"),
               QStringLiteral("ccall=R%1|bband=14|prf=%1").arg(QLatin1String(key)));
}

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
        Bureau b(bureauContacts);
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
        Bureau b(bureauContacts);
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
        Bureau b(bureauContacts);
        QApplication::clipboard()->setText(QStringLiteral(" dl1-ab\n"));
        b.press(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(b.text("txtserch"), QStringLiteral("DL1AB"));
        QCOMPARE(b.rows("DBList1"), QStringList("DL1AB"));
        QCOMPARE(b.column(kLogGrid, 0), QStringList("DL1AB"));
        QCOMPARE(b.text("txtstrana"), QStringLiteral("GERMANY"));
    }

    void everyKeySearches()
    {
        Bureau b(bureauContacts);
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
        Bureau b(bureauContacts);
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
};

QTEST_MAIN(BureauSearchTest)
#include "bureausearch.moc"
