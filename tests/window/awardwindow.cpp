// The awards window as a whole: reference data, typed letters, leaving, the other windows, the screen.
#include "app/windows.h"
#include "support/awards.h"

#include <QApplication>
#include <QClipboard>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>

using testsupport::addLog;
using testsupport::awardContacts;
using testsupport::Awards;
using testsupport::Installation;
using namespace testsupport::award;

namespace {

class NoOldDatabases final : public interchange::OldDatabases {
public:
    [[nodiscard]] bool convertTo(const QString &, const QString &) override { return false; }
    [[nodiscard]] bool convertInPlace(const QString &) override { return false; }
};

/// The program's windows over an installation, as the menu opens them.
struct Program {
    explicit Program(const std::function<void(Installation &)> &prepare = awardContacts)
        : w(prepare), windows({w.installation.databases, w.messages, w.progress, w.dialogs, old},
                              {w.installation.databases, w.clock, w.messages, w.progress, w.reports},
                              {w.installation.databases, w.messages, w.reports},
                              {w.installation.databases, w.messages, w.progress, w.dialogs}, *w.log)
    {}
    [[nodiscard]] awards::frmDIPLOM *open()
    {
        w.action("mnudipl")->trigger();
        for (QWidget *window : QApplication::topLevelWidgets())
            if (auto *found = qobject_cast<awards::frmDIPLOM *>(window))
                return QTest::qWaitForWindowActive(found) ? found : nullptr;
        return nullptr;
    }

    testsupport::Window w;
    NoOldDatabases old;
    app::Windows windows;
};

} // namespace

class AwardWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- reference data and typed letters

    void newInstallation()
    {
        Awards a([](Installation &) {});
        QVERIFY(a.rows("DBListStrana").contains(QStringLiteral("Россия")));
        a.clickRow("DBListStrana", "Россия");
        a.clickRow("DBListRegion", "MA");
        QVERIFY(!a.text("Label2").isEmpty() && a.text("Label2") != QStringLiteral("Дипломы"));
        QVERIFY(!a.rows("DBListDiplom").isEmpty());
        a.clickRow("DBListDiplom", qPrintable(a.rows("DBListDiplom").front()));
        QVERIFY(a.lines("TXTDIPTEXT").contains(QLatin1Char('\n')));
        QCOMPARE(a.text("TXTPREF"), QStringLiteral("MA"));
        QCOMPARE(a.rows("DBListCall"), QStringList());
        QCOMPARE(a.column("DBGrid2", 0), QStringList());
        QVERIFY(a.quiet());
    }

    void typedLettersFindARow()
    {
        Awards a([](Installation &) {});
        a.type("росс");
        QCOMPARE(a.chosen("DBListStrana"), QStringLiteral("Россия"));
        QVERIFY(a.shown("DBListRegion")); // as if it were clicked
        a.find<QWidget>("DBListPref")->setFocus();
        a.type("zs"); // far behind the rows that are read at first
        QCOMPARE(a.chosen("DBListPref"), QStringLiteral("ZS"));
        QVERIFY(!a.text("txtstrana").isEmpty());
        QCOMPARE(a.text("txtgorod"), a.text("txtstrana"));
        QVERIFY(a.quiet());
    }

    // ---- leaving and undoing

    void tabLeavesTheTexts()
    {
        Awards a;
        a.clickRow("DBListStrana", "FRANCE");
        a.clickRow("DBListDiplom", "DPF");
        a.click("TXTDIPTEXT");
        a.press(Qt::Key_Tab);
        QCOMPARE(a.w.focus(), QStringLiteral("cmbadd"));
        a.press(Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(a.w.focus(), QStringLiteral("TXTDIPTEXT"));
        a.click("cmbadd");
        for (const char *next : {"TXTDIPL1", "txtpol1", "cmbadd"}) {
            a.press(Qt::Key_Tab);
            QCOMPARE(a.w.focus(), QLatin1String(next));
        }
        QCOMPARE(a.awards("diptext").at(1), QStringLiteral("провинции"));
    }

    void undoDoesNotMixAwards()
    {
        Awards a;
        a.clickRow("DBListStrana", "FRANCE");
        a.clickRow("DBListDiplom", "DPF");
        a.click("TXTDIPTEXT");
        a.type("x");
        a.clickRow("DBListDiplom", "DDFM");
        a.click("TXTDIPTEXT");
        for (int i = 0; i < 3; ++i)
            a.press(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("департаменты"));
        a.clickRow("DBListDiplom", "DPF");
        QVERIFY(a.lines("TXTDIPTEXT").contains(QLatin1Char('x')));
        QCOMPARE(a.awards("diptext").at(2), QStringLiteral("департаменты"));
    }

    void entriesWithOddSigns()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addLog(in, "ccall=A\"B|contr=USA|ttime=1");
            addLog(in, "ccall=A*|contr=USA|ttime=2");
            addLog(in, "ccall=АБВ|contr=USA|ttime=3");
        });
        a.click("cmbUsl");
        QApplication::clipboard()->setText(QStringLiteral("f5ab"));
        a.press(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(a.text("txtWybor"), QStringLiteral("F5AB"));
        a.press(Qt::Key_Return);
        for (const char *entry : {"a\"b", "a*", "?", "абв", "ua3ab ", "% _"}) {
            a.type(entry);
            a.press(Qt::Key_Return);
        }
        a.click("cmbWybor");
        // No sign stands for others; a blank at the end does not count.
        QCOMPARE(a.blank(), QStringList({"F5AB", "A\"B", "A*", "", "АБВ", "UA3AB", "", ""}));
        QVERIFY(a.quiet());
    }

    void blankThatFailsAfterTheTimeWasStored()
    {
        Awards a(awardContacts);
        a.clickRow("DBListPref", "UA");
        a.clickRow("DBListCall", "UA9AA");
        a.sql(kLog, "CREATE TRIGGER no BEFORE INSERT ON tbllogTEMP BEGIN SELECT RAISE(ABORT,'нельзя'); END");
        a.w.messages.texts = QStringList("1530");
        a.doubleClickCell("DBGrid1", 0);
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.blank(), QStringList());
        a.sql(kLog, "DROP TRIGGER no");
        a.doubleClickCell("DBGrid1", 0);
        QCOMPARE(a.w.messages.asked.size(), 1); // the answer has not been lost
        QCOMPARE(a.blank("ttime"), QStringList("1530"));
        QCOMPARE(a.w.messages.errors.size(), 1);
    }

    // ---- the other windows

    void menuOpensOneWindow()
    {
        Program p;
        auto *window = p.open();
        QVERIFY(window != nullptr);
        window->close();
        QVERIFY(!window->isVisible());
        QCOMPARE(p.open(), window);
        QVERIFY(window->isVisible());
        p.w.log->close();
        QVERIFY(!window->isVisible() && !p.w.log->isVisible());
        QVERIFY(p.w.messages.asked.isEmpty());
    }

    void programStaysForANewAward()
    {
        Program p;
        auto *window = p.open();
        QVERIFY(window != nullptr);
        window->cmbadd_Click();
        window->findChild<ui::FilterEdit *>(QStringLiteral("TXTDIPL1"))->setFocus();
        p.w.type(QStringLiteral("имя"));
        p.w.messages.yes = false;
        QSignalSpy closed(p.w.log.get(), &logentry::frmlog::closed);
        p.w.log->close();
        QVERIFY(p.w.log->isVisible() && window->isVisible());
        QCOMPARE(closed.size(), 0);
        QCOMPARE(p.w.messages.asked.size(), 1);
        p.w.messages.yes = true;
        p.w.log->close();
        QVERIFY(!p.w.log->isVisible() && !window->isVisible());
        QCOMPARE(closed.size(), 1);
    }

    void contactOfTheMainWindowIsPicked()
    {
        Program p;
        auto *window = p.open();
        QVERIFY(window != nullptr);
        p.w.log->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(p.w.log.get()));
        p.w.edit("txtcall")->setFocus();
        p.w.type(QStringLiteral("f9new"));
        p.w.press(Qt::Key_F4);
        QVERIFY(p.w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall FROM TBLLOG1"))
                    .contains(QStringLiteral("F9NEW")));
        QCOMPARE(p.open(), window);
        auto *prefixes = window->findChild<ui::DbList *>(QStringLiteral("DBListPref"));
        prefixes->setFocus();
        p.w.type(QStringLiteral("f"));
        auto *calls = window->findChild<ui::DbList *>(QStringLiteral("DBListCall"));
        QCOMPARE(calls->model()->rowCount(), 2);
        calls->setFocus();
        p.w.press(Qt::Key_End);
        p.w.press(Qt::Key_Return);
        p.w.press(Qt::Key_Return);
        QCOMPARE(p.w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall FROM tbllogTEMP")),
                 QStringList("F9NEW"));
    }

    void windowGoesWhileItIsUsed_data()
    {
        QTest::addColumn<QString>("box");
        for (const char *box : {"TXTDIPTEXT", "txtWybor", "DBGrid1", "DBGrid2", "DBListStrana", "TXTDIPL1"})
            QTest::newRow(box) << box;
    }
    void windowGoesWhileItIsUsed()
    {
        QFETCH(QString, box);
        Awards a([](Installation &in) {
            awardContacts(in);
            testsupport::addBlank(in, "ccall=F5AB");
        });
        a.clickRow("DBListStrana", "FRANCE");
        a.clickRow("DBListDiplom", "DPF");
        if (box == QLatin1String("txtWybor"))
            a.click("cmbUsl");
        if (box == QLatin1String("TXTDIPL1"))
            a.click("cmbadd");
        a.click(qPrintable(box));
        if (box.startsWith(QLatin1String("DBGrid")))
            a.clickCell(qPrintable(box), 0, 0);
        a.type("x");
        a.window.reset();
        QVERIFY(a.w.log->isVisible());
        QVERIFY(a.quiet());
    }

    // ---- the screen

    void everythingFitsOnASmallScreen()
    {
        Awards a(awardContacts);
        a.window->resize(1346, 708); // a laptop's screen without the desktop's bars
        a.click("cmbUsl");
        a.clickRow("DBListStrana", "Россия");
        a.click("cmbadd");
        a.click("cmbdxcc");
        const auto *area = a.window->findChild<QScrollArea *>();
        QVERIFY(area != nullptr);
        QVERIFY(!area->horizontalScrollBar()->isVisible());
        QVERIFY(!area->verticalScrollBar()->isVisible());
        for (const char *name :
             {"Command1", "cmbadd", "cmbdel", "cmbWybor", "Command3", "DBGrid2", "lblsvod"}) {
            const auto *widget = a.find<QWidget>(name);
            const QRect place(widget->mapTo(a.window.get(), QPoint()), widget->size());
            QVERIFY2(a.window->rect().contains(place) && widget->width() > 20 && widget->height() > 10, name);
        }
    }
};

QTEST_MAIN(AwardWindowTest)
#include "awardwindow.moc"
