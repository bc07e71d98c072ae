// The bureau window's grid of contacts, and the window as a whole.
#include "app/windows.h"
#include "support/bureau.h"

#include <QApplication>
#include <QPushButton>
#include <QSet>
#include <QSignalSpy>

#include <algorithm>

using testsupport::addLog;
using testsupport::Bureau;
using testsupport::bureauContacts;
using testsupport::Installation;

namespace {

constexpr auto kLogGrid = "DBGrid1";
constexpr int kSent = 2;
constexpr int kReceived = 3;

class NoOldDatabases final : public interchange::OldDatabases {
public:
    [[nodiscard]] bool convertTo(const QString &, const QString &) override { return false; }
    [[nodiscard]] bool convertInPlace(const QString &) override { return false; }
};

QStringList ownCalls(const Bureau &b)
{
    return b.w.installation.rows(QStringLiteral("dbcontest.mdb"), QStringLiteral("SELECT ccall FROM tbltit"));
}

} // namespace

class BureauGridTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- the grid of contacts

    void gridOfContacts()
    {
        Bureau b(bureauContacts);
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
        Bureau b(bureauContacts);
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
        Bureau b(bureauContacts);
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
        Bureau b(bureauContacts);
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
        Bureau b(bureauContacts);
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
        Bureau b(bureauContacts);
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
        Bureau b(bureauContacts);
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
        Bureau b(bureauContacts);
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
        Bureau b(bureauContacts);
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
        Bureau b(bureauContacts);
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
        Bureau b(bureauContacts);
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
        Bureau b(bureauContacts);
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
        testsupport::Window w(bureauContacts);
        const app::Windows windows({w.installation.databases, w.messages, w.progress, w.dialogs, old},
                                   {w.installation.databases, w.clock, w.messages, w.progress, w.reports},
                                   {w.installation.databases, w.messages, w.reports},
                                   {w.installation.databases, w.messages, w.progress, w.dialogs}, *w.log);
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
            bureauContacts(in);
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

QTEST_MAIN(BureauGridTest)
#include "bureaugrid.moc"
