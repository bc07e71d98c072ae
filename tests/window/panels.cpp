// Town, name and QSL route; locator; calculator; parallel log and revision, as the window offers them.
#include "support/window.h"

#include "ui/dblist.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QLabel>
#include <QPushButton>

using testsupport::Installation;
using testsupport::Window;

namespace {

constexpr auto kLog = "dbiaru.mdb";
constexpr auto kParallel = "dblog.mdb";

QStringList listed(const Window &w, const char *name)
{
    auto *model = w.find<ui::DbList>(name)->sourceModel();
    while (model->canFetchMore({}))
        model->fetchMore({});
    QStringList texts;
    for (int row = 0; row < model->rowCount(); ++row)
        texts.append(model->index(row, 0).data().toString());
    return texts;
}

void enter(Window &w, const char *field, const QString &text)
{
    w.edit(field)->setFocus();
    w.type(text);
}

QString rows(const Window &w, const char *file)
{
    return w.installation.rows(QLatin1String(file), QStringLiteral("SELECT count(*) FROM TBLLOG1")).front();
}

} // namespace

class PanelsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- town, name, QSL route

    void scriptOfTheStation()
    {
        Window w;
        w.type(QStringLiteral("dl1abc"));
        enter(w, "txtqth", QStringLiteral("Иукдшт"));
        enter(w, "txtname", QStringLiteral("Рфты"));
        QCOMPARE(w.text("txtqth"), QStringLiteral("Berlin"));
        QCOMPARE(w.text("txtname"), QStringLiteral("Hans"));
        QCOMPARE(w.keyboard.left, 10);
        w.edit("txtcall")->setFocus();
        w.edit("txtcall")->selectAll();
        w.type(QStringLiteral("ua3abc"));
        enter(w, "txtqth", QStringLiteral("Rkby"));
        enter(w, "txtname", QStringLiteral("Jktu"));
        QCOMPARE(w.text("txtqth"), QStringLiteral("Клин"));
        QCOMPARE(w.text("txtname"), QStringLiteral("Олег"));
        w.keyboard.cyrillic = true;
        enter(w, "txtqth", QStringLiteral(". 2"));
        QCOMPARE(w.text("txtqth"), QStringLiteral("Клин. 2"));
        enter(w, "txtqslvia", QStringLiteral("кя3фи-я"));
        QCOMPARE(w.text("txtqslvia"), QStringLiteral("RZ3ABZ"));
    }

    void scriptOfPastedText_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("pasted");
        QTest::addColumn<QString>("entered");
        QTest::newRow("Cyrillic for Germany") << "DL1A"
                                              << "Иукдшт"
                                              << "Berlin";
        QTest::newRow("Latin for Germany") << "DL1A"
                                           << "Bad Honnef, 2"
                                           << "Bad Honnef, 2";
        QTest::newRow("Latin keys for Russia") << "UA3A"
                                               << "Vjcrdf"
                                               << "Москва";
        QTest::newRow("signs in Cyrillic text") << "UA3A"
                                                << "г. Москва, 2"
                                                << "г. Москва, 2";
    }
    void scriptOfPastedText()
    {
        QFETCH(QString, call);
        QFETCH(QString, pasted);
        QFETCH(QString, entered);
        Window w;
        w.type(call);
        QApplication::clipboard()->setText(pasted);
        for (const char *field : {"txtqth", "txtname"}) {
            w.edit(field)->setFocus();
            QTest::keyClick(w.edit(field), Qt::Key_V, Qt::ControlModifier);
            QCOMPARE(w.text(field), entered);
        }
        QCOMPARE(w.keyboard.left, 0); // no key, no layout
    }

    void listsNarrow()
    {
        Window w;
        w.type(QStringLiteral("ua3dab"));
        const qsizetype allTowns = listed(w, "DBList2").size();
        QVERIFY(allTowns > 10);
        enter(w, "txtqth", QStringLiteral("Ка"));
        QCOMPARE(listed(w, "DBList2"), QStringList({"Калининец", "Кашира"}));
        w.press(Qt::Key_Backspace);
        w.press(Qt::Key_Backspace);
        QCOMPARE(listed(w, "DBList2").size(), allTowns);
        QApplication::clipboard()->setText(QStringLiteral("Клин"));
        QTest::keyClick(w.edit("txtqth"), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(listed(w, "DBList2"), QStringList({"Клин"}));
        enter(w, "txtname", QStringLiteral("Оле"));
        const QStringList names = listed(w, "DBList3");
        QVERIFY(names.contains(QStringLiteral("Олег")));
        QVERIFY(names.size() < 10);
        // The next station has all names before it again.
        w.press(Qt::Key_F4);
        w.type(QStringLiteral("ua9xyz"));
        QVERIFY(listed(w, "DBList3").size() > 300);
    }

    void namesOfAForeignStationDoNotNarrowTheNext()
    {
        Window w;
        w.type(QStringLiteral("dl1abc"));
        enter(w, "txtname", QStringLiteral("Wolfgang"));
        w.press(Qt::Key_F4);
        w.type(QStringLiteral("ua9xyz"));
        QVERIFY(listed(w, "DBList3").size() > 300);
    }

    void brokenNameIsAStatusLine()
    {
        Window w;
        w.type(QStringLiteral("dl1abc"));
        enter(w, "txtname", QStringLiteral("O'B"));
        QVERIFY(!w.status().isEmpty());
        QVERIFY(w.messages.errors.isEmpty());
        QCOMPARE(w.text("txtname"), QStringLiteral("O'B"));
        w.press(Qt::Key_Backspace);
        w.press(Qt::Key_Backspace);
        QCOMPARE(w.status(), QString());
    }

    void functionKeysTakeFromTheLists()
    {
        Window w;
        w.type(QStringLiteral("ua3dab"));
        enter(w, "txtqth", QStringLiteral("Ка"));
        w.press(Qt::Key_F5); // nothing is selected: the first row
        QCOMPARE(w.text("txtqth"), QStringLiteral("Калининец"));
        QCOMPARE(w.focus(), QStringLiteral("txtname"));
        w.type(QStringLiteral("Оле"));
        const QStringList names = listed(w, "DBList3");
        w.press(Qt::Key_F6);
        QCOMPARE(w.text("txtname"), names.front());
        QCOMPARE(w.focus(), QStringLiteral("txtqth"));
        auto *towns = w.find<ui::DbList>("DBList2");
        towns->setCurrentIndex(towns->model()->index(1, 0));
        w.press(Qt::Key_F5);
        QCOMPARE(w.text("txtqth"), QStringLiteral("Кашира"));
    }

    void emptyListsTakeNothingAway()
    {
        Window w;
        w.type(QStringLiteral("ua3dab"));
        enter(w, "txtqth", QStringLiteral("Ъъъ"));
        QCOMPARE(listed(w, "DBList2"), QStringList());
        w.press(Qt::Key_F5);
        QCOMPARE(w.text("txtqth"), QStringLiteral("Ъъъ"));
        QCOMPARE(w.focus(), QStringLiteral("txtname"));
        w.type(QStringLiteral("Ъъ"));
        w.press(Qt::Key_F6);
        QCOMPARE(w.text("txtname"), QStringLiteral("Ъъ"));
        QCOMPARE(w.focus(), QStringLiteral("txtqth"));
    }

    void focusMoves()
    {
        Window w;
        w.type(QStringLiteral("ua3abc"));
        struct Move {
            const char *from;
            Qt::Key key;
            const char *to;
        };
        const QList<Move> moves = {
            {"txtqth", Qt::Key_Return, "txtname"},   {"txtname", Qt::Key_Return, "txtqslvia"},
            {"txtqslvia", Qt::Key_Return, "cmbadd"}, {"txtqth", Qt::Key_Down, "txtname"},
            {"txtqth", Qt::Key_Up, "txtrsts"},       {"txtname", Qt::Key_Up, "txtqth"},
            {"txtname", Qt::Key_Down, "txtqslvia"}};
        for (const Move &move : moves) {
            w.edit(move.from)->setFocus();
            w.press(move.key);
            QCOMPARE(w.focus(), QLatin1String(move.to));
        }
    }

    void learningByDoubleClick()
    {
        Window w;
        w.keyboard.cyrillic = true;
        const auto count = [&](const char *query) {
            return w.installation.rows(QStringLiteral("dbname.mdb"), QString::fromUtf8(query)).front();
        };
        const auto doubleClick = [&](const char *field) {
            QTest::mouseDClick(w.edit(field), Qt::LeftButton);
        };
        w.type(QStringLiteral("ua3dab"));
        enter(w, "txtname", QStringLiteral("Евлампий"));
        QCOMPARE(listed(w, "DBList3"), QStringList());
        QTest::mouseDClick(w.edit("txtname"), Qt::RightButton);
        QCOMPARE(count("SELECT count(*) FROM tblNAME WHERE nname='Евлампий'"), QStringLiteral("0"));
        doubleClick("txtname");
        QCOMPARE(count("SELECT count(*) FROM tblNAME WHERE nname='Евлампий'"), QStringLiteral("1"));
        QVERIFY(listed(w, "DBList3").contains(QStringLiteral("Евлампий")));
        doubleClick("txtname");
        QCOMPARE(count("SELECT count(*) FROM tblNAME WHERE nname='Евлампий'"), QStringLiteral("1"));
        enter(w, "txtqth", QStringLiteral("Дальние Дачи"));
        doubleClick("txtqth");
        QCOMPARE(count("SELECT gorod||'|'||prf FROM tblgorod WHERE gorod='Дальние Дачи'"),
                 QStringLiteral("Дальние Дачи|MO"));
        QVERIFY(listed(w, "DBList2").contains(QStringLiteral("Дальние Дачи")));
        // The same by keyboard.
        w.edit("txtqth")->end(false);
        enter(w, "txtqth", QStringLiteral("-2"));
        w.press(Qt::Key_F5, Qt::ControlModifier);
        QCOMPARE(count("SELECT count(*) FROM tblgorod WHERE gorod='Дальние Дачи-2'"), QStringLiteral("1"));
        w.edit("txtname")->end(false);
        enter(w, "txtname", QStringLiteral("я"));
        w.press(Qt::Key_F6, Qt::ControlModifier);
        QCOMPARE(count("SELECT count(*) FROM tblNAME WHERE nname='Евлампийя'"), QStringLiteral("1"));
        QCOMPARE(w.text("txtname"), QStringLiteral("Евлампийя")); // learning takes nothing from the list
        QVERIFY(w.messages.told.isEmpty() && w.messages.errors.isEmpty() && w.messages.asked.isEmpty());
        // What cannot be learnt is told, and stays typed.
        w.installation.sql(
            QStringLiteral("dbname.mdb"),
            QStringLiteral("CREATE TRIGGER no BEFORE INSERT ON tblNAME BEGIN SELECT RAISE(ABORT,'no'); END"));
        w.edit("txtname")->end(false);
        enter(w, "txtname", QStringLiteral("ы"));
        doubleClick("txtname");
        QCOMPARE(w.messages.errors.size(), 1);
        QCOMPARE(w.text("txtname"), QStringLiteral("Евлампийяы"));
    }

    void storedNamesAreCut()
    {
        Window w;
        w.type(QStringLiteral("dl1abc"));
        enter(w, "txtqth", QStringLiteral("Bad Muenstereifel"));
        enter(w, "txtname", QStringLiteral("Wolfgang-Amadeus"));
        w.press(Qt::Key_F4);
        QCOMPARE(w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT QTH,NNAME FROM TBLLOG1")),
                 QStringList({"Bad Muenstere|Wolfgang-Amad"}));
    }

    // ---- locator

    void locatorToCoordinates()
    {
        Window w([](Installation &in) {
            in.sql(QStringLiteral("dbcontest.mdb"),
                   QStringLiteral("UPDATE tbltit SET GradN='55',MinN='45',GradE='37',MinE='37'"));
        });
        enter(w, "TXTLOK", QStringLiteral("ko85ur"));
        QCOMPARE(w.text("TXTLOK"), QStringLiteral("KO85UR")); // turned as it is typed
        w.edit("txtaz")->setText(QStringLiteral("77"));
        QTest::mouseClick(w.find<QPushButton>("cmbkoor"), Qt::LeftButton);
        QCOMPARE(w.text("TXTSIRG"), QStringLiteral("55"));
        QCOMPARE(w.text("TXTSHIRM"), QStringLiteral("43"));
        QCOMPARE(w.text("TSHIR"), QStringLiteral("N"));
        QCOMPARE(w.text("TXTDG"), QStringLiteral("37"));
        QCOMPARE(w.text("TXTDN"), QStringLiteral("42"));
        QCOMPARE(w.text("TDOLG"), QStringLiteral("E"));
        QCOMPARE(w.text("txtdist"), QStringLiteral("6")); // 1,82 * 1,25 and 1,12 * 5,5 minutes: 6,6 km
        QCOMPARE(w.text("txtaz"), QStringLiteral("77"));
        // Enter does the same.
        w.edit("TXTLOK")->clear();
        enter(w, "TXTLOK", QStringLiteral("ff46pd"));
        w.press(Qt::Key_Return);
        QCOMPARE(w.text("TSHIR"), QStringLiteral("S"));
        QCOMPARE(w.text("TDOLG"), QStringLiteral("W"));
        QCOMPARE(w.text("TXTSIRG"), QStringLiteral("33"));
        QVERIFY(w.messages.told.isEmpty());
        // Pasted lower case is turned as well.
        w.edit("TXTLOK")->clear();
        QApplication::clipboard()->setText(QStringLiteral("jj00aa"));
        QTest::keyClick(w.edit("TXTLOK"), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(w.text("TXTLOK"), QStringLiteral("JJ00AA"));
    }

    void wrongLocator()
    {
        Window w;
        for (const char *locator : {"KO85U", "", "KO85URX"}) {
            w.messages.told.clear();
            w.edit("TXTLOK")->setText(QLatin1String(locator));
            w.find<QPushButton>("cmbkoor")->click();
            QCOMPARE(w.messages.told, QStringList({"ОШИБКА !!!: НЕВЕРНЫЙ ВВОД ЛОКАТОРА"}));
            QCOMPARE(w.text("TXTSIRG"), QString());
        }
    }

    void coordinatesToLocator()
    {
        Window w;
        QCOMPARE(w.find<QPushButton>("cmbkoor")->text(), QStringLiteral("Коорд."));
        QCOMPARE(w.find<QPushButton>("cmblok")->text(), QStringLiteral("Локатор"));
        enter(w, "TXTSIRG", QStringLiteral("55"));
        enter(w, "TXTSHIRM", QStringLiteral("45"));
        enter(w, "TXTDG", QStringLiteral("37"));
        w.find<QPushButton>("cmblok")->click();
        QCOMPARE(w.messages.told, QStringList({"Ошибка ввода: Координаты нужно вводить полностью "}));
        QCOMPARE(w.text("TXTLOK"), QString());
        enter(w, "TXTDN", QStringLiteral("37"));
        w.find<QPushButton>("cmblok")->click();
        QCOMPARE(w.text("TXTLOK"), QStringLiteral("KO85TS"));
        enter(w, "TSHIR", QStringLiteral("s"));
        enter(w, "TDOLG", QStringLiteral("w"));
        QTest::keyClick(w.find<QPushButton>("cmblok"), Qt::Key_Return);
        QCOMPARE(w.text("TXTLOK"), QStringLiteral("HD14EG"));
        QCOMPARE(w.messages.told.size(), 1);
    }

    // ---- calculator

    void calculatorByMenu()
    {
        Window w;
        auto *panel = w.find<QWidget>("FrKalk");
        QVERIFY(!panel->isVisible());
        w.action("mnucalk")->trigger();
        QVERIFY(panel->isVisible());
        w.type(QStringLiteral("5+3"));
        QCOMPARE(w.text("txtrzK"), QStringLiteral("3"));
        w.action("mnucalk")->trigger();
        QVERIFY(!panel->isVisible());
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        w.action("mnucalk")->trigger();
        QCOMPARE(w.text("txtrzK"), QString()); // emptied, but 5 and + are kept
        w.type(QStringLiteral("4="));
        QCOMPARE(w.text("txtrzK"), QStringLiteral("9"));
        w.press(Qt::Key_Escape);
        QVERIFY(!panel->isVisible());
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        QCOMPARE(w.text("txtcall"), QString());
    }

    void calculatorFaults()
    {
        Window w;
        w.action("mnucalk")->trigger();
        w.type(QStringLiteral("4"));
        w.find<QPushButton>("cmbdej1_2")->click(); // M-
        QCOMPARE(w.messages.told.size(), 1);
        w.find<QPushButton>("cmbdej1_0")->click(); // +/-
        QCOMPARE(w.text("txtrzK"), QStringLiteral("-4"));
        w.find<QPushButton>("cmbdej1_3")->click(); // кор
        QCOMPARE(w.messages.told.size(), 2);
        QCOMPARE(w.text("txtrzK"), QStringLiteral("-4"));
        QCOMPARE(w.text("txtMr"), QString());
    }

    // ---- parallel log

    void parallelLogIsSwitched()
    {
        Window w([](Installation &in) {
            in.sql(QLatin1String(kParallel), QStringLiteral("INSERT INTO TBLLOG1(ccall) VALUES('OLD1')"));
        });
        auto *item = w.action("mnulog");
        auto *banner = w.find<QLabel>("txtlog");
        QCOMPARE(banner->text(), QStringLiteral("Идет парралельная запись в dblog.mdb"));
        QCOMPARE(item->text(), QStringLiteral("Записывать в  log.mdb"));
        const QString first = QStringLiteral("Сохранение данных: Вести парралельную запись в Log.mdb ? ");
        const QString second = QStringLiteral("Удаление данных: Очистить предворительно Базу Log.mdb ?");

        w.messages.answers = {false};
        item->trigger();
        QCOMPARE(w.messages.asked, QStringList({first}));
        QCOMPARE(item->text(), QStringLiteral("Записывать в  log.mdb"));
        QVERIFY(!banner->isVisible());

        w.messages.asked.clear();
        w.messages.answers = {true, false};
        item->trigger();
        QCOMPARE(w.messages.asked, QStringList({first, second}));
        QCOMPARE(item->text(), QStringLiteral("Прекратиь запись в log.mdb"));
        QVERIFY(banner->isVisible());
        w.type(QStringLiteral("dl1a"));
        w.press(Qt::Key_F4);
        QCOMPARE(w.installation.rows(QLatin1String(kParallel),
                                     QStringLiteral("SELECT ccall FROM TBLLOG1 ORDER BY rowid")),
                 QStringList({"OLD1", "DL1A"}));

        w.messages.asked.clear();
        item->trigger();
        QVERIFY(w.messages.asked.isEmpty());
        QCOMPARE(item->text(), QStringLiteral("Записывать в  log.mdb"));
        QVERIFY(!banner->isVisible());
        w.type(QStringLiteral("dl1b"));
        w.press(Qt::Key_F4);
        QCOMPARE(rows(w, kParallel), QStringLiteral("2"));

        w.messages.answers = {true, true};
        item->trigger();
        QCOMPARE(rows(w, kParallel), QStringLiteral("0"));
        QVERIFY(banner->isVisible());
    }

    void parallelLogIsLoaded_data()
    {
        QTest::addColumn<bool>("load");
        QTest::addColumn<bool>("empty");
        QTest::addColumn<QString>("inMain");
        QTest::addColumn<QString>("inParallel");
        QTest::newRow("neither") << false << false << "0"
                                 << "2";
        QTest::newRow("load") << true << false << "2"
                              << "2";
        QTest::newRow("load and empty") << true << true << "2"
                                        << "0";
        QTest::newRow("empty alone") << false << true << "0"
                                     << "0";
    }
    void parallelLogIsLoaded()
    {
        QFETCH(bool, load);
        QFETCH(bool, empty);
        QFETCH(QString, inMain);
        QFETCH(QString, inParallel);
        Window w([](Installation &in) {
            in.sql(QLatin1String(kParallel),
                   QStringLiteral("INSERT INTO TBLLOG1(ccall,ddate,ps1) "
                                  "VALUES('DL1A','05.03.26',''),('DL1B','04.03.26','')"));
        });
        w.messages.answers = {load, empty};
        w.action("mnuzaglog")->trigger();
        QCOMPARE(w.messages.asked, QStringList({"Сохранение данных: Перенести в Журнал данные из Log.mdb ? ",
                                                "Удаление данных: Очистить  Log.mdb ?"}));
        QCOMPARE(rows(w, kLog), inMain);
        QCOMPARE(rows(w, kParallel), inParallel);
        QVERIFY(w.messages.errors.isEmpty());
        QCOMPARE(w.progress.steps.isEmpty(), !load);
        if (load) {
            QCOMPARE(w.progress.steps.front(), QStringLiteral("Загрузка из log.mdb"));
            QVERIFY(w.progress.steps.contains(QStringLiteral("Связей: 2 of 2")));
            QCOMPARE(w.progress.steps.last(), QStringLiteral("end"));
            QVERIFY(!w.progress.stoppable); // all or nothing
            QVERIFY(w.gridCalls().contains(QStringLiteral("DL1A")));
        }
        QCOMPARE(QDir(w.installation.userFolder()).entryList({QStringLiteral("dbiaru.*.mdb")}).size(),
                 load ? 1 : 0);
    }

    void parallelLogMissing()
    {
        Window w;
        QVERIFY(QFile::remove(w.installation.file(QLatin1String(kParallel))));
        w.action("mnuzaglog")->trigger();
        QCOMPARE(w.messages.errors.size(), 1);
        QCOMPARE(w.messages.asked.size(), 1); // what was not loaded is not offered for emptying
        QCOMPARE(w.progress.steps.last(), QStringLiteral("end"));
        w.messages.answers = {true, true};
        w.action("mnulog")->trigger();
        QCOMPARE(w.messages.errors.size(), 2);
        QVERIFY(!w.find<QLabel>("txtlog")->isVisible()); // it is not on
        QCOMPARE(w.action("mnulog")->text(), QStringLiteral("Записывать в  log.mdb"));
    }

    // ---- revision

    void revisionByMenu()
    {
        Window w([](Installation &in) {
            in.addContact(QStringLiteral("QQ1A"), QStringLiteral("05.03.26"), QStringLiteral("WRONG"));
            in.addContact(QStringLiteral("DL1A"), QStringLiteral("05.03.26"), QStringLiteral("WRONG"));
            in.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall='RA3XYZ'"));
        });
        const auto stored = [&] {
            return w.installation.rows(QLatin1String(kLog),
                                       QStringLiteral("SELECT ccall,CONTR,PRF FROM TBLLOG1 ORDER BY rowid"));
        };
        w.messages.yes = false;
        w.edit("txtname")->setFocus();
        w.action("mnurewiz")->trigger();
        QCOMPARE(w.messages.asked, QStringList({"Ревизия: Произвести ревизию стран ? "}));
        QCOMPARE(stored(), QStringList({"QQ1A|WRONG|", "DL1A|WRONG|"}));
        QCOMPARE(w.focus(), QStringLiteral("txtname")); // nothing happens
        QVERIFY(w.progress.steps.isEmpty());
        w.messages.yes = true;
        w.edit("txtcontr")->setText(QStringLiteral("SHOWN"));
        w.action("mnurewiz")->trigger();
        QCOMPARE(stored(), QStringList({"QQ1A|SHOWN|XYZ", "DL1A|GERMANY|XYZ"}));
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        QCOMPARE(w.text("txtcall"), QStringLiteral("DL1A"));
        QCOMPARE(w.text("txtcontr"), QStringLiteral("GERMANY"));
        QCOMPARE(w.edit("txtcall")->selectedText(), QStringLiteral("DL1A"));
        QVERIFY(w.messages.told.isEmpty());
        QCOMPARE(w.status(), QStringLiteral("Ревизия: просмотрено связей 2, изменено 2"));
        QVERIFY(w.progress.stoppable);
        QCOMPARE(QDir(w.installation.userFolder()).entryList({QStringLiteral("dbiaru.*.mdb")}).size(), 1);
    }

    void revisionStops()
    {
        Window w([](Installation &in) {
            in.sql(QLatin1String(kLog),
                   QStringLiteral(
                       "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<30000) INSERT "
                       "INTO TBLLOG1(ccall,CONTR) SELECT 'DL'||i, 'WRONG' FROM n"));
        });
        int steps = 0;
        w.progress.atStep = [&] {
            if (w.progress.steps.last().startsWith(QStringLiteral("Связей: 20000")))
                w.progress.stopNow = true;
            ++steps;
        };
        w.action("mnurewiz")->trigger();
        QVERIFY(steps > 3);
        QCOMPARE(w.installation.rows(QLatin1String(kLog),
                                     QStringLiteral("SELECT count(*) FROM TBLLOG1 WHERE CONTR='GERMANY'")),
                 QStringList({"20000"}));
        QCOMPARE(w.status(), QStringLiteral("Ревизия остановлена: просмотрено связей 20000, изменено 20000"));
    }

    void revisionKeepsWhatIsBeingTyped()
    {
        Window w([](Installation &in) {
            in.addContact(QStringLiteral("DL1A"), QStringLiteral("05.03.26"), QStringLiteral("WRONG"));
        });
        w.type(QStringLiteral("f5abc"));
        enter(w, "txtname", QStringLiteral("Jean"));
        w.action("mnurewiz")->trigger();
        QCOMPARE(w.text("txtcall"), QStringLiteral("F5ABC"));
        QCOMPARE(w.text("txtname"), QStringLiteral("Jean"));
        QCOMPARE(w.text("txtcontr"), QStringLiteral("FRANCE"));
        w.press(Qt::Key_F4);
        QCOMPARE(w.installation.rows(QLatin1String(kLog),
                                     QStringLiteral("SELECT ccall,CONTR,NNAME FROM TBLLOG1 ORDER BY rowid")),
                 QStringList({"DL1A|GERMANY|", "F5ABC|FRANCE|Jean"}));
    }

    void revisionWithAQuotedCallsign()
    {
        Window w([](Installation &in) {
            in.addContact(QStringLiteral("UA3ABC"), QStringLiteral("05.03.26"), QStringLiteral("WRONG"));
            in.sql(QLatin1String(kLog),
                   QStringLiteral("INSERT INTO TBLLOG1(ccall,CONTR) VALUES('O''X1','WRONG')"));
        });
        w.action("mnurewiz")->trigger();
        QCOMPARE(w.installation.rows(QLatin1String(kLog),
                                     QStringLiteral("SELECT ccall,CONTR FROM TBLLOG1 ORDER BY rowid")),
                 QStringList({"UA3ABC|RUSSIAN", "O'X1|RUSSIAN"}));
        QVERIFY2(w.status().startsWith(QStringLiteral("Ревизия: просмотрено связей 2, изменено 2")),
                 qPrintable(w.status()));
    }

    void lockedLogIsNamed()
    {
        Window w([](Installation &in) {
            in.addContact(QStringLiteral("UA3ABC"), QStringLiteral("05.03.26"), QStringLiteral("WRONG"));
            in.sql(QLatin1String(kParallel), QStringLiteral("INSERT INTO TBLLOG1(ccall) VALUES('DL1A')"));
        });
        store::Connection other(w.installation.file(QLatin1String(kLog)), store::OpenMode::ReadWrite);
        other.exec(QStringLiteral("BEGIN EXCLUSIVE"));
        for (const char *item : {"mnuzaglog", "mnurewiz"}) {
            w.messages.errors.clear();
            w.action(item)->trigger();
            QCOMPARE(w.messages.errors, QStringList({"Файл dbiaru.mdb занят другой программой."}));
        }
        QCOMPARE(rows(w, kParallel), QStringLiteral("1"));
        other.exec(QStringLiteral("ROLLBACK"));
    }

    void revisionOfAnEmptyLog()
    {
        Window w;
        w.action("mnurewiz")->trigger();
        QCOMPARE(w.messages.asked.size(), 1);
        QVERIFY(w.progress.steps.isEmpty());
        QCOMPARE(QDir(w.installation.userFolder()).entryList({QStringLiteral("dbiaru.*.mdb")}).size(), 0);
    }

    void revisionWithoutRoomForTheCopy()
    {
        Window w([](Installation &in) {
            in.addContact(QStringLiteral("DL1A"), QStringLiteral("05.03.26"), QStringLiteral("WRONG"));
        });
        // The folder for copies cannot be made: a file stands in its place.
        QVERIFY(QDir(w.installation.userFolder()).removeRecursively());
        QFile file(w.installation.userFolder());
        QVERIFY(file.open(QIODevice::WriteOnly));
        w.action("mnurewiz")->trigger();
        QCOMPARE(w.messages.errors.size(), 1);
        QCOMPARE(w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT CONTR FROM TBLLOG1")),
                 QStringList({"WRONG"}));
        QCOMPARE(w.progress.steps.last(), QStringLiteral("end"));
        QVERIFY(file.remove());
    }
};

QTEST_MAIN(PanelsTest)
#include "panels.moc"
