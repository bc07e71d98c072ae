// The country window: texts, keys of its boxes, search.
#include "support/reference.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>

using testsupport::addCountry;
using testsupport::countryTable;
using testsupport::CountryWindow;
using testsupport::Installation;
using testsupport::sendKey;

namespace {

constexpr auto kGrid = "DBGrid1";
constexpr auto kFile = "dbdxcc1.mdb";
const QStringList kByCode = {"3B8", "DA", "DL", "F", "UA", "UA9", "ZS"};

} // namespace

class CountryWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void captions()
    {
        const CountryWindow c;
        QCOMPARE(c.window->windowTitle(), QStringLiteral("DXCC"));
        QCOMPARE(c.labelOf("txtserch"), QStringLiteral("Поиск"));
        const QList<std::pair<const char *, QString>> labels = {{"txtprf1", "Pref"}, {"txtstrana", "Страна"},
                                                                {"txtkont", "Конт"}, {"txtiaru", "ITU"},
                                                                {"txtcq", "Зона"},   {"txtPREF", "Префикс"}};
        for (const auto &[name, label] : labels) {
            QCOMPARE(c.labelOf(name), label);
            QCOMPARE(c.frameOf(name), QStringLiteral("Дополнение базы DXCC"));
        }
        QCOMPARE(c.text("cmbadd"), QStringLiteral("Добавить"));
        QCOMPARE(c.text("cmbexit"), QStringLiteral("Выход"));
        QCOMPARE(c.text("Command1"), QStringLiteral("Россия"));
        QCOMPARE(c.headings(kGrid), QStringList({"prf", "strana", "kont", "iaru", "cq", "PREF", "GradN",
                                                 "GradE", "Dolg", "Shir"}));
    }

    void atTheBeginning()
    {
        const CountryWindow c;
        QCOMPARE(c.column(kGrid, 0), kByCode); // ordered by the code
        QCOMPARE(c.gridRow(kGrid, 4), QStringLiteral("UA|RUSSIAN|EU|29|16|UA|55,75|37,62|37,62|55,75"));
        QCOMPARE(c.gridRow(kGrid, 0), QStringLiteral("3B8|GAMBIA||||3B8||||"));
        QCOMPARE(c.text("txtserch") + c.text("txtserch1") + c.entry(), QStringLiteral("|||||"));
        QCOMPARE(c.w.focus(), QStringLiteral("txtserch"));
        QCOMPARE(c.status(), QString());
        QVERIFY(c.quiet());
    }

    void newInstallation()
    {
        CountryWindow c([](Installation &) {});
        c.type("ua9");
        QVERIFY(!c.column(kGrid, 0).isEmpty());
        // Every row of the table is there, however many there are.
        const QString all =
            c.w.installation.rows(QLatin1String(kFile), QStringLiteral("SELECT count(*) FROM tbldxcc"))
                .front();
        QVERIFY(all.toInt() > 300);
        for (int i = 0; i < 3; ++i)
            c.press(Qt::Key_Backspace);
        c.press(Qt::Key_Down);
        c.press(Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(c.column(kGrid, 0).size(), all.toInt());
        c.enter("txtserch", "ua9");
        for (const QString &code : c.column(kGrid, 0))
            QVERIFY(code.startsWith(QLatin1String("UA9")));
        QCOMPARE(c.cell(kGrid, 0, 9), c.cell(kGrid, 0, 6)); // Shir, GradN
        QVERIFY(c.quiet());
    }

    void closing()
    {
        CountryWindow c;
        c.type("d");
        c.click("cmbexit");
        QVERIFY(!c.window->isVisible());
        c.reopen();
        QCOMPARE(c.w.focus(), QStringLiteral("txtserch"));
        c.press(Qt::Key_Escape);
        QVERIFY(!c.window->isVisible());
        QVERIFY(c.w.log->isVisible());
        QVERIFY(c.quiet());
    }

    // ---- keys

    void codeBox_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<int>("most");
        QTest::newRow("search by code") << "txtserch" << 5;
        QTest::newRow("search by name") << "txtserch1" << 15;
        QTest::newRow("prf") << "txtprf1" << 5;
        QTest::newRow("strana") << "txtstrana" << 15;
        QTest::newRow("kont") << "txtkont" << 3;
        QTest::newRow("PREF") << "txtPREF" << 5;
    }
    void codeBox()
    {
        QFETCH(QString, box);
        QFETCH(int, most);
        const QByteArray name = box.toLatin1();
        CountryWindow c;
        for (const QChar key :
             QStringLiteral("0123456789ASDFGHJKLQWERTYUIOPZXCVBNMasdfghjklqwertyuiopzxcvbnm")) {
            c.enter(name, "");
            c.w.type(QString(key));
            QCOMPARE(c.text(name), QString(key.toUpper()));
        }
        c.enter(name, " -/.,*?#[]'\"%_<>ÄäßéÑµАБВЁабвёйQ"); // Latin Q alone
        QCOMPARE(c.text(name), QStringLiteral("Q"));
        const QString longer = QStringLiteral("abcdefghijklmnopqrst");
        c.enter(name, "");
        c.w.type(longer);
        QCOMPARE(c.text(name), longer.left(most).toUpper());
        c.press(Qt::Key_Home);
        c.type("9"); // the box is full, wherever the cursor stands
        QCOMPARE(c.text(name), longer.left(most).toUpper());
        c.press(Qt::Key_Right, Qt::ShiftModifier);
        c.type("9"); // over what is selected
        QCOMPARE(c.text(name), QLatin1Char('9') + longer.mid(1, most - 1).toUpper());
        c.press(Qt::Key_End);
        sendKey(QTest::Click, Qt::Key_Backspace, QStringLiteral("\b")); // works in a full box
        QCOMPARE(c.text(name).size(), most - 1);
        c.enter(name, "");
        c.paste("south africa-щ1234567890123456");
        QCOMPARE(c.text(name), QStringLiteral("SOUTHAFRICA12345678901").left(most));
        QVERIFY(c.quiet());
    }

    void zoneBox_data()
    {
        QTest::addColumn<QString>("box");
        for (const char *box : {"txtiaru", "txtcq"})
            QTest::newRow(box) << box;
    }
    void zoneBox()
    {
        QFETCH(QString, box);
        const QByteArray name = box.toLatin1();
        CountryWindow c;
        c.enter(name, "1a-2 ,.3Я4é5\u0661");
        QCOMPARE(c.text(name), QStringLiteral("12345"));
        c.press(Qt::Key_Backspace);
        QCOMPARE(c.text(name), QStringLiteral("1234"));
        const QString longer(60, QLatin1Char('7')); // no maximum
        c.enter(name, qPrintable(longer));
        QCOMPARE(c.text(name), longer);
        c.enter(name, "");
        c.paste("28 и 29");
        QCOMPARE(c.text(name), QStringLiteral("2829"));
    }

    void enterGoesAlongTheEntry()
    {
        CountryWindow c;
        const QList<const char *> order = {"txtprf1", "txtstrana", "txtkont", "txtiaru",
                                           "txtcq",   "txtPREF",   "cmbadd"};
        c.click("txtprf1");
        for (qsizetype i = 0; i + 1 < order.size(); ++i) {
            c.press(Qt::Key_Return);
            QCOMPARE(c.w.focus(), QLatin1String(order[i])); // an empty box keeps the focus
            c.type("1");
            sendKey(QTest::Click, Qt::Key_Enter, QStringLiteral("\r"), Qt::KeypadModifier);
            QCOMPARE(c.w.focus(), QLatin1String(order[i + 1]));
        }
        c.press(Qt::Key_Return); // presses the button
        QCOMPARE(c.stored("prf,strana,kont,iaru,cq,PREF").constLast(), QStringLiteral("1|1|1|1|1|1"));
        QCOMPARE(c.w.focus(), QStringLiteral("txtprf1"));
    }

    void enterOfTheSearches()
    {
        CountryWindow c;
        for (const char *search : {"txtserch", "txtserch1"}) {
            c.click(search);
            c.press(Qt::Key_Return); // empty too
            QCOMPARE(c.w.focus(), QStringLiteral("cmbadd"));
            c.click(search);
            c.type("z");
            c.press(Qt::Key_Return);
            QCOMPARE(c.w.focus(), QStringLiteral("cmbadd"));
        }
        QVERIFY(c.quiet()); // the button has not been pressed
    }

    // ---- search

    void byCode()
    {
        CountryWindow c;
        c.type("u");
        QCOMPARE(c.column(kGrid, 0), QStringList({"UA", "UA9"}));
        c.type("a");
        QCOMPARE(c.column(kGrid, 0), QStringList({"UA", "UA9"}));
        c.type("9");
        QCOMPARE(c.column(kGrid, 0), QStringList("UA9"));
        c.type("x");
        QCOMPARE(c.column(kGrid, 0), QStringList());
        for (int i = 0; i < 4; ++i)
            c.press(Qt::Key_Backspace);
        QCOMPARE(c.column(kGrid, 0), kByCode);
        c.type("d");
        QCOMPARE(c.column(kGrid, 0), QStringList({"DA", "DL"})); // ordered, as it is not stored
        c.enter("txtserch", "");
        c.paste("3-b");
        QCOMPARE(c.column(kGrid, 0), QStringList("3B8"));
        QVERIFY(c.quiet());
    }

    void byName()
    {
        CountryWindow c([](Installation &in) {
            countryTable(in);
            addCountry(in, "prf=A1|strana=Ghana");
        });
        c.click("txtserch1");
        c.type("g");
        // In the order in which they were stored, without regard to case.
        QCOMPARE(c.column(kGrid, 0), QStringList({"DL", "DA", "3B8", "A1"}));
        c.type("er");
        QCOMPARE(c.column(kGrid, 0), QStringList({"DL", "DA"}));
        QCOMPARE(c.column(kGrid, 1), QStringList({"GERMANY", "GERMANY"}));
        c.type("z");
        QCOMPARE(c.column(kGrid, 0), QStringList());
        c.enter("txtserch1", "south africa"); // the blank is refused
        QCOMPARE(c.text("txtserch1"), QStringLiteral("SOUTHAFRICA"));
        QCOMPARE(c.column(kGrid, 0), QStringList());
        c.enter("txtserch1", "south");
        QCOMPARE(c.column(kGrid, 0), QStringList("ZS"));
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.press(Qt::Key_Delete);
        QCOMPARE(c.column(kGrid, 0).size(), 8);
        QCOMPARE(c.column(kGrid, 0).front(), QStringLiteral("UA")); // no order
    }

    void eachSearchForItself()
    {
        CountryWindow c;
        c.type("ua");
        c.click("txtserch1");
        c.type("g");
        QCOMPARE(c.column(kGrid, 0), QStringList({"DL", "DA", "3B8"}));
        QCOMPARE(c.text("txtserch"), QStringLiteral("UA")); // stays, and does not narrow
        c.click("txtserch");
        c.press(Qt::Key_Right); // any key searches anew
        QCOMPARE(c.column(kGrid, 0), QStringList({"UA", "UA9"}));
    }

    void refusedKeySearchesToo()
    {
        CountryWindow c;
        c.type("ua");
        c.click("txtserch1");
        c.type("g");
        c.click("txtserch");
        c.type("*");
        QCOMPARE(c.text("txtserch"), QStringLiteral("UA"));
        QCOMPARE(c.column(kGrid, 0), QStringList({"UA", "UA9"}));
    }

    void keyOfAnotherBox()
    {
        CountryWindow c;
        c.type("ua");
        c.click("txtprf1");
        sendKey(QTest::Press, Qt::Key_Z, QStringLiteral("z"));
        c.enter("txtserch1", "f");
        QCOMPARE(c.column(kGrid, 0), QStringList("F"));
        c.click("txtserch");
        sendKey(QTest::Release, Qt::Key_Z, QStringLiteral("z"));
        QCOMPARE(c.column(kGrid, 0), QStringList("F")); // the key was the entry box's
    }

    void quickTyping()
    {
        CountryWindow c;
        sendKey(QTest::Press, Qt::Key_U, QStringLiteral("u"));
        sendKey(QTest::Press, Qt::Key_A, QStringLiteral("a"));
        sendKey(QTest::Press, Qt::Key_9, QStringLiteral("9"));
        c.click("txtprf1"); // all three still down
        QCOMPARE(c.text("txtserch"), QStringLiteral("UA9"));
        QCOMPARE(c.column(kGrid, 0), QStringList("UA9"));
        QCOMPARE(c.entry(), QStringLiteral("|||||"));
    }

    void downGoesToTheGrid()
    {
        CountryWindow c;
        for (const char *search : {"txtserch", "txtserch1"}) {
            c.click(search);
            c.press(Qt::Key_Down);
            QCOMPARE(c.w.focus(), QLatin1String(kGrid));
        }
    }

    void statementsOfAKey()
    {
        CountryWindow c;
        const auto statements = [&] {
            return c.w.installation.databases.connection(c.w.installation.file(QLatin1String(kFile)))
                .statementCount();
        };
        c.type("u");
        const qint64 before = statements();
        c.type("a");
        QCOMPARE(statements() - before, qint64{1});
        QCOMPARE(c.column(kGrid, 0), QStringList({"UA", "UA9"}));
    }

    // ---- files

    void file_data()
    {
        QTest::addColumn<bool>("foreign");
        QTest::newRow("missing") << false;
        QTest::newRow("unknown") << true;
    }
    void file()
    {
        QFETCH(bool, foreign);
        CountryWindow c([foreign](Installation &in) {
            QFile old(in.file(QLatin1String(kFile)));
            if (!old.remove())
                qFatal("not removed");
            if (foreign && (!old.open(QIODevice::WriteOnly) || old.write("не база") < 0))
                qFatal("not written");
        });
        QCOMPARE(c.w.messages.errors.size(), 1); // one for the file
        QVERIFY2(c.w.messages.errors.front().contains(QLatin1String(kFile)),
                 qPrintable(c.w.messages.errors.front()));
        QCOMPARE(c.column(kGrid, 0), QStringList());
        c.type("u");
        QVERIFY(!c.status().isEmpty());
        QCOMPARE(c.w.messages.errors.size(), 1);
        c.typeEntry({"ZZ", "LAND", "EU", "1", "2", "ZZ"});
        c.click("cmbadd");
        QCOMPARE(c.w.messages.errors.size(), 2);
        QCOMPARE(c.entry(), QStringLiteral("ZZ|LAND|EU|1|2|ZZ")); // what was typed is not lost
        c.window->close();
        QVERIFY(!c.window->isVisible());
        QCOMPARE(QFile::exists(c.w.installation.file(QLatin1String(kFile))), foreign);
    }

    void lockedFile()
    {
        CountryWindow c;
        store::Connection other(c.w.installation.file(QLatin1String(kFile)), store::OpenMode::ReadWrite);
        other.exec(QStringLiteral("BEGIN EXCLUSIVE"));
        c.type("u");
        QVERIFY2(c.status().contains(QStringLiteral("занят")), qPrintable(c.status()));
        other.exec(QStringLiteral("ROLLBACK"));
        c.type("a");
        QCOMPARE(c.status(), QString());
        QCOMPARE(c.column(kGrid, 0), QStringList({"UA", "UA9"}));
        QVERIFY(c.quiet());
    }

    // ---- the screen and the keyboard

    void tabReachesEveryControl_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("large") << QSize(1366, 768);
        QTest::newRow("small") << QSize(700, 500);
        QTest::newRow("tiny") << QSize(400, 300);
    }
    void tabReachesEveryControl()
    {
        QFETCH(QSize, size);
        CountryWindow c;
        c.window->resize(size);
        QCoreApplication::processEvents();
        QCOMPARE(c.window->size(), size);
        QCOMPARE(c.missedByTab(), QStringList());
        QCOMPARE(c.stored().size(), 7);
    }

    void everyControlIsNamedForAScreenReader()
    {
        const CountryWindow c;
        QCOMPARE(c.unnamed(), QStringList());
    }
};

QTEST_MAIN(CountryWindowTest)
#include "countrywindow.moc"
