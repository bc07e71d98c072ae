// Start, menu, clock, keys of the window, activation, failures.
#include "support/window.h"

#include "app/program.h"
#include "cw/ui/keyerpanel.h"
#include "store/schema.h"
#include "ui/dbgrid.h"
#include "ui/dblist.h"

#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSignalSpy>

using testsupport::Installation;
using testsupport::Window;

class MainWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void opening()
    {
        Window w;
        QCOMPARE(w.log->objectName(), QStringLiteral("frmlog"));
        QCOMPARE(w.log->windowTitle(), QStringLiteral("Журнал радиолюбителя от Zarnik (ex.Tovelk , Mirsan)"));
        QCOMPARE(w.log->reportFile(), w.installation.file(QStringLiteral("vurnal.rpt")));
        QCOMPARE(w.text("txtrsts"), QStringLiteral("59"));
        QCOMPARE(w.text("txtrstr"), QStringLiteral("59"));
        QCOMPARE(w.find<QLabel>("lblband")->text(), QStringLiteral("14 MHz"));
        const auto colour = [&](int band) {
            return w.find<QPushButton>(qPrintable(QStringLiteral("CMBBAND1_%1").arg(band)))
                ->palette()
                .color(QPalette::Button);
        };
        for (int band = 0; band < 12; ++band)
            QCOMPARE(colour(band), band == 3 ? QColor(0xE0, 0xE0, 0xE0) : QColor(255, 0, 0));
        QCOMPARE(w.find<QPushButton>("CMBMOD")->text(), QStringLiteral("SSB"));
        QCOMPARE(w.find<QLabel>("Label10")->text(), QStringLiteral("UTC"));
        QCOMPARE(w.find<QLabel>("lblwwod")->text(), QStringLiteral("F4 - Ввод QSO ")); // with its blank
        QCOMPARE(w.find<QLabel>("lblqth")->text(), QStringLiteral("F5 - Ввод QTH"));
        QCOMPARE(w.find<QLabel>("lblname")->text(), QStringLiteral("F6 - Ввод Name"));
        QCOMPARE(w.find<QPushButton>("cmbadd")->text(), QStringLiteral("Ввод"));
        QVERIFY(!w.find<QLabel>("lblqth")->isVisible());
        QVERIFY(!w.find<QWidget>("FrGorod")->isVisible());
        QVERIFY(!w.find<QWidget>("frmbuk")->isVisible());
        QVERIFY(!w.find<QWidget>("FMod")->isVisible());
        QVERIFY(!w.find<QWidget>("FRCW")->isVisible());
        QVERIFY(!w.find<QWidget>("Frexpo")->isVisible());
        QVERIFY(!w.find<ui::DbList>("DBList1")->isVisible());
        QVERIFY(!w.find<QLabel>("txtlog")->isVisible());
        QCOMPARE(w.find<QLabel>("txtlog")->text(), QStringLiteral("Идет парралельная запись в dblog.mdb"));
        QCOMPARE(w.edit("txtNcall")->placeholderText(),
                 QStringLiteral("Введите свой позывной (не менее 5 знаков)"));
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        QCOMPARE(w.log->openingErrors().size(), 0);
    }

    void menu()
    {
        Window w;
        struct Item {
            const char *name;
            const char16_t *caption;
            bool enabled;
        };
        const QList<Item> bar = {{"mnuqsl", u"QSL-бюро", true},
                                 {"mnudipl", u"Дипломы", true},
                                 {"mnudxcc", u"DXCC", true},
                                 {"mnubuk", u"Callbuk", true},
                                 {"mnucerw", u"Сервис", true}};
        const QList<Item> service = {{"mnuwwod", u"Enter - Ввод", true},
                                     {"MNUCW", u"CW", true},
                                     {"mnurewiz", u"Ревизия", true},
                                     {"mnucalk", u"Калькулятор", true},
                                     {"mnulist", u"Лист", true},
                                     {"mnuhelp", u"Помощь", true},
                                     {"mnulog", u"Записывать в  log.mdb", true},
                                     {"mnuzaglog", u"Загрузка из log.mdb", true},
                                     {"cmbawto", u"Руч", true},
                                     {"mnuvur", u"QSO за период", true},
                                     {"mnuDob", u"Добавить QSO", true},
                                     {"mnuexpo", u"Импорт", true},
                                     {"mnuexit", u"Выход", true}};
        const auto check = [](const QList<QAction *> &actions, const QList<Item> &items) {
            QCOMPARE(actions.size(), items.size());
            for (qsizetype i = 0; i < items.size(); ++i) {
                QCOMPARE(actions[i]->objectName(), QLatin1String(items[i].name));
                QCOMPARE(actions[i]->text(), QString::fromUtf16(items[i].caption));
                QCOMPARE(actions[i]->isEnabled(), items[i].enabled);
            }
        };
        check(w.log->menuBar()->actions(), bar);
        check(w.find<QMenu>("mnucerw")->actions(), service);
        check(w.find<QMenu>("mnuexpo")->actions(), {{"mnuadex", u"ADIF > LOG", true}});
    }

    void menuItemReachedByKeyIsMarked()
    {
        Window w;
        QMenuBar *bar = w.log->menuBar();
        const QRect place = bar->actionGeometry(w.find<QAction>("mnudxcc"));
        const auto edge = [&] { return bar->grab(place).toImage().pixelColor(2, place.height() / 2); };
        const QColor unmarked = edge();
        QTest::keyClick(w.log.get(), Qt::Key_Alt);
        QCOMPARE(bar->activeAction(), w.find<QAction>("mnuqsl"));
        QTest::keyClick(bar, Qt::Key_Right);
        QCOMPARE(edge(), unmarked);
        QTest::keyClick(bar, Qt::Key_Right); // it opens no list
        QCOMPARE(edge(), bar->palette().color(QPalette::Highlight));
        QTest::keyClick(bar, Qt::Key_Escape);
        QCOMPARE(edge(), unmarked);
    }

    /// A screen reader can name every control, and a tip or a label explains it.
    void everyControlIsNamed()
    {
        Window w;
        int seen = 0;
        for (const QWidget *widget : w.log->findChildren<QWidget *>()) {
            const bool control = qobject_cast<const QLineEdit *>(widget) != nullptr ||
                                 qobject_cast<const QAbstractButton *>(widget) != nullptr ||
                                 qobject_cast<const QAbstractSlider *>(widget) != nullptr ||
                                 qobject_cast<const QAbstractItemView *>(widget) != nullptr;
            if (!control || widget->objectName().isEmpty() || widget->objectName().startsWith(u"qt_") ||
                qobject_cast<const QScrollBar *>(widget) != nullptr)
                continue;
            ++seen;
            const auto *button = qobject_cast<const QAbstractButton *>(widget);
            const bool named =
                !widget->accessibleName().isEmpty() || (button != nullptr && !button->text().isEmpty());
            const bool explained = !widget->toolTip().isEmpty() ||
                                   (button != nullptr && !button->text().isEmpty()) ||
                                   qobject_cast<const QAbstractItemView *>(widget) != nullptr;
            QVERIFY2(named && explained, qPrintable(widget->objectName()));
        }
        QVERIFY(seen > 90);
    }

    void serviceMenuUnderTheRightButton()
    {
        Window w;
        auto *menu = w.find<QMenu>("mnucerw");
        QTest::mouseClick(w.log->centralWidget(), Qt::RightButton, {}, QPoint(2, 2));
        QTRY_VERIFY(menu->isVisible());
        menu->close();
        QTest::mouseClick(w.find<ui::DbGrid>("DBGrid1")->viewport(), Qt::RightButton);
        QTRY_VERIFY(menu->isVisible());
        menu->close();
        QTest::keyClick(w.edit("txtcall"), Qt::Key_F10);
        QTRY_VERIFY(menu->isVisible());
        menu->close();
    }

    void gridColumns()
    {
        Window w;
        const auto *model = w.find<ui::DbGrid>("DBGrid1")->sourceModel();
        QStringList headings;
        QStringList fields;
        for (int i = 0; i < model->columnCount(); ++i) {
            headings.append(model->headerData(i, Qt::Horizontal, Qt::DisplayRole).toString());
            fields.append(model->columns()[i].field);
        }
        QCOMPARE(headings, QStringList({"Call", "Date", "UTC", "Band", "RSTs", "RSTr", "mult", "point", "ps",
                                        "Мод", "PS2", "QTH", "Name", "QSL via", "QSL(пол)", "QSL(отп)",
                                        "Country(DXCC)", "CONT", "op"}));
        QCOMPARE(fields, QStringList({"ccall", "ddate", "ttime", "bband", "rsts", "rstr", "mult", "point",
                                      "ps", "ps1", "PS2", "QTH", "NNAME", "QSLVIA", "QSLP", "QSLO", "CONTR",
                                      "CONT", "PRF"}));
    }

    void clock()
    {
        Window w;
        QCOMPARE(w.text("txtdate"), QStringLiteral("05.03.26"));
        QCOMPARE(w.text("txttime"), QStringLiteral("14:07:09"));
        w.clock.now = w.clock.now.addSecs(1);
        QTRY_COMPARE_WITH_TIMEOUT(w.text("txttime"), QStringLiteral("14:07:10"),
                                  3000); // by itself, once a second
        auto *base = w.find<QLabel>("Label10");
        QTest::mouseClick(base, Qt::LeftButton);
        QCOMPARE(base->text(), QStringLiteral("Местное"));
        w.log->tick();
        QCOMPARE(w.text("txttime"), QStringLiteral("09:05:00"));
        QCOMPARE(w.text("txtdate"), QStringLiteral("05.03.26"));
        QTest::mouseClick(base, Qt::LeftButton);
        QCOMPARE(base->text(), QStringLiteral("UTC"));
        w.log->tick();
        QCOMPARE(w.text("txttime"), QStringLiteral("14:07:10"));
    }

    void tickClearsStatusFieldsWithoutCountry()
    {
        Window w;
        w.edit("txtQSO")->setText(QStringLiteral("5"));
        w.edit("TXTQSL")->setText(QStringLiteral("3"));
        w.edit("txtcontr")->setText(QStringLiteral("RUSSIAN"));
        w.log->tick();
        QCOMPARE(w.text("txtQSO"), QStringLiteral("5"));
        w.edit("txtcontr")->clear();
        w.log->tick();
        QCOMPARE(w.text("txtQSO") + w.text("TXTQSL"), QString());
    }

    void manualTime()
    {
        Window w;
        QAction *awto = w.action("cmbawto");
        w.edit("txtqth")->setFocus();
        awto->trigger();
        QCOMPARE(awto->text(), QStringLiteral("Авто"));
        QCOMPARE(w.text("txtdate") + w.text("txttime"), QString());
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        w.edit("txtdate")->setText(QStringLiteral("01.02.2002"));
        w.edit("txttime")->setText(QStringLiteral("9:05:00"));
        w.log->tick();
        QCOMPARE(w.text("txtdate"), QStringLiteral("01.02.02"));
        QCOMPARE(w.text("txttime"), QStringLiteral("09:05:00"));
        awto->trigger();
        QCOMPARE(awto->text(), QStringLiteral("Руч"));
        QCOMPARE(w.text("txtdate"), QStringLiteral("05.03.26")); // at once
        QCOMPARE(w.text("txttime"), QStringLiteral("14:07:09"));
    }

    void entryKeyMode()
    {
        Window w;
        QAction *mode = w.action("mnuwwod");
        mode->trigger();
        QCOMPARE(mode->text(), QStringLiteral("F4 - Ввод"));
        QCOMPARE(w.find<QLabel>("lblwwod")->text(), QStringLiteral("Enter - Ввод"));
        mode->trigger();
        QCOMPARE(mode->text(), QStringLiteral("Enter - Ввод"));
        QCOMPARE(w.find<QLabel>("lblwwod")->text(), QStringLiteral("F4 - Ввод QSO"));
    }

    void listOfWorkedCallsigns()
    {
        Window w([](Installation &in) {
            in.addContact(QStringLiteral("DL1XX"), QStringLiteral("01.01.20"), QStringLiteral("GERMANY"));
            in.addContact(QStringLiteral("K1AB"), QStringLiteral("02.01.20"), QStringLiteral("USA"));
        });
        auto *list = w.find<ui::DbList>("DBList1");
        w.edit("txtqth")->setFocus();
        w.action("mnulist")->trigger();
        QVERIFY(list->isVisible());
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        QCOMPARE(list->sourceModel()->rowCount(), 2);
        w.type(QStringLiteral("k"));
        QCOMPARE(list->sourceModel()->rowCount(), 1);
        w.type(QStringLiteral("1"));
        QCOMPARE(w.gridCalls(), QStringList());
        // A click, and an arrow key, show the contacts with the chosen station.
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualRect(list->model()->index(0, 0)).center());
        QCOMPARE(w.gridCalls(), QStringList({"K1AB"}));
        w.press(Qt::Key_Backspace);
        w.edit("txtcall")->setFocus();
        w.press(Qt::Key_Backspace);
        w.press(Qt::Key_Backspace);
        w.edit("txtcall")->setFocus();
        w.action("mnulist")->trigger();
        QVERIFY(!list->isVisible());
        w.action("mnulist")->trigger();
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Return);
        QCOMPARE(w.gridCalls().size(), 1);
    }

    void functionKeysOnRelease()
    {
        Window w;
        w.type(QStringLiteral("ua3abc"));
        auto *call = w.edit("txtcall");
        const auto rows = [&] {
            return w.installation
                .rows(QStringLiteral("dbiaru.mdb"), QStringLiteral("SELECT ccall FROM TBLLOG1"))
                .size();
        };
        QTest::keyPress(call, Qt::Key_F4);
        QCOMPARE(rows(), 0);
        // A repetition of a held key is no release, nor is one with Ctrl or Alt.
        QKeyEvent repeated(QEvent::KeyRelease, Qt::Key_F4, Qt::NoModifier, QString(), true);
        QApplication::sendEvent(call, &repeated);
        QCOMPARE(rows(), 0);
        QTest::keyRelease(call, Qt::Key_F4, Qt::ControlModifier);
        QTest::keyRelease(call, Qt::Key_F4, Qt::AltModifier);
        QCOMPARE(rows(), 0);
        QTest::keyRelease(call, Qt::Key_F4);
        QCOMPARE(rows(), 1);
        QTest::keyClick(call, Qt::Key_F4); // the field is empty now
        QCOMPARE(rows(), 1);
    }

    void enterMode()
    {
        Window w;
        const auto rows = [&] {
            return w.installation.rows(QStringLiteral("dbiaru.mdb"),
                                       QStringLiteral("SELECT ccall FROM TBLLOG1"));
        };
        w.type(QStringLiteral("dl1a"));
        w.press(Qt::Key_Return); // mode 0: Enter walks
        QCOMPARE(rows().size(), 0);
        QCOMPARE(w.focus(), QStringLiteral("txtrstr"));
        w.action("mnuwwod")->trigger();
        w.press(Qt::Key_F4); // mode 1: F4 does nothing
        QCOMPARE(rows().size(), 0);
        w.press(Qt::Key_Return);
        QCOMPARE(rows(), QStringList({"DL1A"}));
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        w.edit("txtcall")->setText(QStringLiteral("DL1B"));
        w.edit("txtname")->setFocus();
        w.press(Qt::Key_Enter);
        QCOMPARE(rows(), QStringList({"DL1A", "DL1B"}));
        // Key code 0 records; a refused character and an unknown key do not.
        w.edit("txtcall")->setText(QStringLiteral("DL1C"));
        w.type(QStringLiteral("-"));
        w.press(Qt::Key_unknown);
        QCOMPARE(rows().size(), 2);
        w.log->formKeyUp(0, true);
        QCOMPARE(rows(), QStringList({"DL1A", "DL1B", "DL1C"}));
        w.action("mnuwwod")->trigger();
        w.edit("txtcall")->setText(QStringLiteral("DL1D"));
        w.log->formKeyUp(0, true); // only in mode 1
        QCOMPARE(rows().size(), 3);
    }

    void keyOfWindowSeenOnceWhereverTheFocusIs()
    {
        Window w;
        for (const char *name :
             {"txtrstr", "txtqth", "CMBBAND1_5", "CMBMOD", "DBGrid1", "txtNcall", "TXTLOK", "cmbadd"}) {
            w.edit("txtcall")->setText(QStringLiteral("DL1A"));
            w.find<QWidget>(name)->setFocus();
            w.press(Qt::Key_F4);
        }
        QCOMPARE(
            w.installation.rows(QStringLiteral("dbiaru.mdb"), QStringLiteral("SELECT count(*) FROM TBLLOG1")),
            QStringList({"8"}));
    }

    void keyerPanelKeys()
    {
        Window w;
        auto *panel = w.find<cw::KeyerPanel>("FRCW");
        w.press(Qt::Key_F12); // hidden
        panel->show();
        auto *keyboard = w.edit("TXklaw");
        QVERIFY(!keyboard->isVisible());
        w.press(Qt::Key_F12);
        QVERIFY(keyboard->isVisible());
        QCOMPARE(w.focus(), QStringLiteral("TXklaw"));
        w.type(QStringLiteral("abc"));
        w.press(Qt::Key_F12);
        QVERIFY(!keyboard->isVisible());
        QCOMPARE(keyboard->text(), QString());
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        w.type(QStringLiteral("dl1a"));
        QCOMPARE(w.text("TXTF11"), QStringLiteral("DL1A"));
    }

    void portChoice()
    {
        Window w;
        auto *panel = w.find<cw::KeyerPanel>("FRCW");
        panel->show();
        for (int i = 1; i <= 4; ++i) {
            auto *option = w.find<QRadioButton>(qPrintable(QStringLiteral("Option%1").arg(i)));
            QCOMPARE(option->text(), QStringLiteral("Com%1").arg(i));
            option->setFocus();
            option->click();
            QCOMPARE(panel->port(), i);
            QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        }
    }

    void activation()
    {
        Window w([](Installation &in) {
            in.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall='RA3XYZ'"));
        });
        QCOMPARE(w.text("txtput"), w.installation.file(QStringLiteral("RA3XYZ")));
        QCOMPARE(w.log->state().ownCallKey, QStringLiteral("XYZ"));
        auto *panel = w.find<cw::KeyerPanel>("FRCW");
        panel->setPort(3);
        w.edit("txtput")->setText(QStringLiteral("mine"));
        // Back from a dialog of the window itself: nothing is reset.
        QDialog dialog(w.log.get());
        dialog.setModal(true);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        dialog.close();
        w.log->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(w.log.get()));
        QCOMPARE(w.text("txtput"), QStringLiteral("mine"));
        QCOMPARE(panel->port(), 3);
        // Back from another window.
        QWidget other;
        other.show();
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        w.log->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(w.log.get()));
        QCOMPARE(w.text("txtput"), w.installation.file(QStringLiteral("RA3XYZ")));
        QCOMPARE(panel->port(), 1);
    }

    void parallelLogBanner()
    {
        Window w;
        w.action("mnulog")->trigger();
        QVERIFY(w.find<QLabel>("txtlog")->isVisible());
        w.type(QStringLiteral("dl1a"));
        w.press(Qt::Key_F4);
        QCOMPARE(
            w.installation.rows(QStringLiteral("dblog.mdb"), QStringLiteral("SELECT ccall,ps1 FROM TBLLOG1")),
            QStringList({"DL1A|"}));
        w.action("mnulog")->trigger();
        QVERIFY(!w.find<QLabel>("txtlog")->isVisible());
    }

    void ownStation()
    {
        Window w;
        auto *own = w.edit("txtNcall");
        own->setFocus();
        w.type(QStringLiteral("ra3xyz"));
        QCOMPARE(own->text(), QStringLiteral("RA3XYZ"));
        QCOMPARE(w.log->state().ownCallKey, QStringLiteral("XYZ")); // derived at each release
        w.press(Qt::Key_Return);
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        QCOMPARE(
            w.installation.rows(QStringLiteral("dbcontest.mdb"), QStringLiteral("SELECT ccall FROM tbltit")),
            QStringList({"RA3XYZ"}));
        w.edit("txtGradN")->setFocus();
        w.type(QStringLiteral("55"));
        w.edit("txtMinN")->setFocus();
        w.type(QStringLiteral("45"));
        w.edit("txtGradE")->setFocus();
        w.type(QStringLiteral("37"));
        w.edit("txtMinE")->setFocus();
        w.type(QStringLiteral("37"));
        w.edit("txtcall")->setFocus();
        QCOMPARE(w.installation.rows(QStringLiteral("dbcontest.mdb"),
                                     QStringLiteral("SELECT ccall,GradN,MinN,GradE,MinE FROM tbltit")),
                 QStringList({"RA3XYZ|55|45|37|37"}));
        // The window that opens next shows the record.
        logentry::frmlog again(logentry::Services{w.installation.databases, w.clock, w.messages, w.keyboard,
                                                  w.emergency, w.progress, w.line, w.line, w.dialogs,
                                                  w.reports});
        QCOMPARE(again.findChild<ui::FilterEdit *>(QStringLiteral("txtNcall"))->text(),
                 QStringLiteral("RA3XYZ"));
        QCOMPARE(again.findChild<ui::FilterEdit *>(QStringLiteral("txtMinE"))->text(), QStringLiteral("37"));
        QCOMPARE(again.state().ownCallKey, QStringLiteral("XYZ"));
    }

    void ownStationWithoutARow()
    {
        Window w([](Installation &in) {
            in.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("DELETE FROM tbltit"));
        });
        w.edit("txtNcall")->setFocus();
        w.type(QStringLiteral("ra3xyz"));
        w.edit("txtcall")->setFocus();
        QCOMPARE(
            w.installation.rows(QStringLiteral("dbcontest.mdb"), QStringLiteral("SELECT ccall FROM tbltit")),
            QStringList({"RA3XYZ"}));
    }

    void lockedFileIsAStatusLineForKeysAndABoxForClicks()
    {
        Window w([](Installation &in) {
            in.addContact(QStringLiteral("DL1XX"), QStringLiteral("01.01.20"), QStringLiteral("GERMANY"));
        });
        w.action("mnulist")->trigger();
        store::Connection other(w.installation.file(QStringLiteral("dbiaru.mdb")),
                                store::OpenMode::ReadWrite);
        other.exec(QStringLiteral("BEGIN EXCLUSIVE"));
        w.type(QStringLiteral("dl"));
        QVERIFY(w.status().contains(QStringLiteral("занят")));
        QCOMPARE(w.messages.errors, QStringList());
        QCOMPARE(w.text("txtcontr"), QStringLiteral("GERMANY")); // the rest of the look-ups has run
        other.exec(QStringLiteral("ROLLBACK"));
        w.press(Qt::Key_Left);
        QCOMPARE(w.status(), QString());
        auto *list = w.find<ui::DbList>("DBList1");
        QCOMPARE(list->sourceModel()->rowCount(), 1);
        (void)list->sourceModel()->index(0, 0).data();
        other.exec(QStringLiteral("BEGIN EXCLUSIVE"));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualRect(list->model()->index(0, 0)).center());
        QCOMPARE(w.messages.errors.size(), 1);
        other.exec(QStringLiteral("ROLLBACK"));
    }

    void ownStationBusyAtTheStart()
    {
        std::unique_ptr<store::Connection> other;
        Window w([&other](Installation &in) {
            in.sql(QStringLiteral("dbcontest.mdb"),
                   QStringLiteral("UPDATE tbltit SET ccall='RA3XYZ',GradN='55'"));
            other = std::make_unique<store::Connection>(in.file(QStringLiteral("dbcontest.mdb")),
                                                        store::OpenMode::ReadWrite);
            other->exec(QStringLiteral("BEGIN EXCLUSIVE"));
        });
        QCOMPARE(w.log->openingErrors().size(), 1);
        other->exec(QStringLiteral("ROLLBACK"));
        w.type(QStringLiteral("dl1a"));
        w.press(Qt::Key_F4);
        QCOMPARE(w.installation.rows(QStringLiteral("dbiaru.mdb"), QStringLiteral("SELECT PRF FROM TBLLOG1")),
                 QStringList({"XYZ"}));
        QCOMPARE(w.text("txtGradN"), QStringLiteral("55"));
        w.edit("txtGradN")->setFocus();
        w.edit("txtGradN")->selectAll();
        w.type(QStringLiteral("55,758333333333"));
        w.edit("txtcall")->setFocus();
        QCOMPARE(
            w.installation.rows(QStringLiteral("dbcontest.mdb"), QStringLiteral("SELECT GradN FROM tbltit")),
            QStringList({"55,758333333333"}));
    }

    void modifiedF4()
    {
        Window w;
        w.type(QStringLiteral("dl1a"));
        auto *call = w.edit("txtcall");
        QTest::keyPress(call, Qt::Key_F4, Qt::AltModifier); // Alt goes up before F4
        QTest::keyRelease(call, Qt::Key_F4);
        QCOMPARE(
            w.installation.rows(QStringLiteral("dbiaru.mdb"), QStringLiteral("SELECT ccall FROM TBLLOG1")),
            QStringList());
        w.press(Qt::Key_F4);
        QCOMPARE(
            w.installation.rows(QStringLiteral("dbiaru.mdb"), QStringLiteral("SELECT ccall FROM TBLLOG1")),
            QStringList({"DL1A"}));
    }

    void periodPanelCloses()
    {
        Window w;
        w.find<QWidget>("Frexpo")->show();
        auto *close = w.find<QPushButton>("cmbzakr");
        QCOMPARE(close->text(), QStringLiteral("Закрыть"));
        QTest::mouseClick(close, Qt::LeftButton);
        QVERIFY(!w.find<QWidget>("Frexpo")->isVisible());
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
    }

    void smallWindowOverlapsNothing()
    {
        Window w;
        w.log->resize(800, 480);
        QCoreApplication::processEvents();
        const auto edits = w.log->findChildren<ui::FilterEdit *>();
        for (const ui::FilterEdit *a : edits)
            for (const ui::FilterEdit *b : edits)
                if (a < b && a->isVisible() && b->isVisible()) {
                    const QRect ra(a->mapToGlobal(QPoint()), a->size());
                    const QRect rb(b->mapToGlobal(QPoint()), b->size());
                    QVERIFY2(!ra.intersects(rb), qPrintable(a->objectName() + b->objectName()));
                }
    }

    void ownCallsignOfEveryLength_data()
    {
        QTest::addColumn<int>("length");
        for (int length = 0; length <= 13; ++length)
            QTest::addRow("%d", length) << length;
    }
    void ownCallsignOfEveryLength()
    {
        QFETCH(int, length);
        Window w;
        const QString call = QStringLiteral("AB1CDEFGHIJKL").left(length);
        w.edit("txtNcall")->setFocus();
        w.type(call);
        w.edit("txtcall")->setFocus();
        w.type(QStringLiteral("dl1a"));
        w.press(Qt::Key_F4);
        const QString key = length < 5 ? call : call.mid(3).right(5);
        QCOMPARE(w.installation.rows(QStringLiteral("dbiaru.mdb"), QStringLiteral("SELECT PRF FROM TBLLOG1")),
                 QStringList({key}));
        QCOMPARE(
            w.installation.rows(QStringLiteral("dbcontest.mdb"), QStringLiteral("SELECT ccall FROM tbltit")),
            QStringList({call}));
    }

    void closingEndsTheProgramAndSavesWhatWasTyped()
    {
        Window w;
        QSignalSpy closed(w.log.get(), &logentry::frmlog::closed);
        w.edit("txtGradN")->setFocus();
        w.type(QStringLiteral("59"));
        w.action("mnuexit")->trigger();
        QCOMPARE(closed.count(), 1);
        QCOMPARE(
            w.installation.rows(QStringLiteral("dbcontest.mdb"), QStringLiteral("SELECT GradN FROM tbltit")),
            QStringList({"59"}));
    }

    void layoutButton()
    {
        Window w;
        auto *button = w.find<QPushButton>("cmbruskey");
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(w.keyboard.previous, 1);
        QCOMPARE(w.focus(), QStringLiteral("txtcall")); // the focus stays where the operator types
    }

    // ---- the whole program on a folder

    void firstStart()
    {
        QTemporaryDir folder;
        QTemporaryDir user;
        testsupport::FakeMessages messages;
        app::Program program(messages, folder.path(), user.path());
        QVERIFY(program.start());
        QCOMPARE(QDir(folder.path()).entryList({QStringLiteral("*.mdb")}).size(), 11);
        QCOMPARE(messages.told + messages.errors + messages.asked, QStringList());
    }

    void secondProgramOnTheFolder()
    {
        QTemporaryDir folder;
        testsupport::FakeMessages messages;
        app::Program first(messages, folder.path(), folder.path());
        QVERIFY(first.start());
        app::Program second(messages, folder.path(), folder.path());
        QVERIFY(!second.start());
        QCOMPARE(messages.told.size(), 1);
        QVERIFY(messages.told.front().contains(QStringLiteral("уже открыт другой программой")));
    }

    void troubleIsToldOnceAndTheRestWorks_data()
    {
        QTest::addColumn<QString>("name");
        for (const store::FileLayout &layout : store::fileLayouts())
            QTest::newRow(qPrintable(layout.name)) << layout.name;
    }
    void troubleIsToldOnceAndTheRestWorks()
    {
        QFETCH(QString, name);
        QTemporaryDir folder;
        QTemporaryDir user;
        {
            testsupport::FakeMessages quiet;
            QVERIFY(app::Program(quiet, folder.path(), user.path()).start());
        }
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("не база");
        file.close();
        testsupport::FakeMessages messages;
        app::Program program(messages, folder.path(), user.path());
        QVERIFY(program.start());
        const bool used = name != QLatin1String("dbhelp.mdb") && name != QLatin1String("dbdiplom.mdb") &&
                          name != QLatin1String("dbprint.mdb");
        QCOMPARE(messages.told.size(), used ? 1 : 0);
        if (used)
            QVERIFY(messages.told.front().contains(name));
        auto *call = program.mainWindow()->findChild<ui::FilterEdit *>(QStringLiteral("txtcall"));
        QTest::keyClicks(call, QStringLiteral("ua3abc"));
        QTest::keyClick(call, Qt::Key_F4);
        QCOMPARE(messages.notStoredContacts.size(), name == QLatin1String("dbiaru.mdb") ? 1 : 0);
        program.mainWindow()->close();
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("не база"));
    }
};

QTEST_MAIN(MainWindowTest)
#include "mainwindow.moc"
