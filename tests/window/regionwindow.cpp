// The region window.
#include "support/reference.h"

#include <QFile>

using testsupport::addRegion;
using testsupport::Installation;
using testsupport::regionTable;
using testsupport::RegionWindow;
using testsupport::sendKey;

namespace {

constexpr auto kGrid = "DBGrid1";
constexpr auto kFile = "dbrusdx.mdb";
const QStringList kByPrefix = {"", "1A", "3A", "3AB", "3D", "9A"};

} // namespace

class RegionWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void captions()
    {
        const RegionWindow r;
        QCOMPARE(r.window->windowTitle(), QStringLiteral("Россия"));
        QCOMPARE(r.labelOf("txtserch"), QStringLiteral("Поиск"));
        QCOMPARE(r.text("Command1"), QStringLiteral("Выход"));
        QCOMPARE(r.headings(kGrid), QStringList({"pref", "gorod", "kodcrk", "kodsrr", "prf", "itu", "cq",
                                                 "gradN", "gradE", "dolg", "Shir"}));
        QCOMPARE(r.w.focus(), QStringLiteral("txtserch"));
        QCOMPARE(r.text("txtserch"), QString());
        QVERIFY(r.quiet());
    }

    void atTheBeginning()
    {
        const RegionWindow r;
        // The table, in the order in which it is stored.
        QCOMPARE(r.column(kGrid, 0), QStringList({"9A", "3A", "3D", "1A", "3AB", ""}));
        QCOMPARE(r.gridRow(kGrid, 0), QStringLiteral("9A|Челябинск|CB9|165|CB|30|17|55,16|61,4|61,4|55,16"));
        QCOMPARE(r.gridRow(kGrid, 1), QStringLiteral("3A|Москва|||MA||||||"));
    }

    void newInstallation()
    {
        RegionWindow r([](Installation &) {});
        r.type("3a");
        QVERIFY(!r.column(kGrid, 0).isEmpty());
        for (const QString &prefix : r.column(kGrid, 0))
            QVERIFY(prefix.startsWith(QLatin1String("3A")));
        QCOMPARE(r.cell(kGrid, 0, 4), QStringLiteral("MA"));
        QVERIFY(r.quiet());
    }

    void closing()
    {
        RegionWindow r;
        r.click("Command1");
        QVERIFY(!r.window->isVisible());
        r.reopen();
        QCOMPARE(r.w.focus(), QStringLiteral("txtserch"));
        r.press(Qt::Key_Escape);
        QVERIFY(!r.window->isVisible());
        QVERIFY(r.w.log->isVisible());
        QVERIFY(r.quiet());
    }

    // ---- keys

    void characters()
    {
        RegionWindow r;
        for (const QChar key :
             QStringLiteral("0123456789ASDFGHJKLQWERTYUIOPZXCVBNMasdfghjklqwertyuiopzxcvbnm")) {
            r.type(qPrintable(QString(key)));
            QCOMPARE(r.text("txtserch"), QString(key.toUpper()));
            sendKey(QTest::Click, Qt::Key_Backspace, QStringLiteral("\b"));
            QCOMPARE(r.text("txtserch"), QString());
        }
        r.type("АБВЁабвёйц.,;:-/ *?#[]'\"%_<>ÄäßéÑµ");
        QCOMPARE(r.text("txtserch"), QString());
        r.type("щ3Ыa-d");
        QCOMPARE(r.text("txtserch"), QStringLiteral("3AD"));
        QVERIFY(r.quiet());
    }

    void sixthCharacter()
    {
        RegionWindow r;
        r.type("12345");
        QCOMPARE(r.text("txtserch"), QStringLiteral("12345"));
        r.type("6");
        r.press(Qt::Key_Home);
        r.type("7");
        QCOMPARE(r.text("txtserch"), QStringLiteral("12345"));
        r.press(Qt::Key_End);
        sendKey(QTest::Click, Qt::Key_Backspace, QStringLiteral("\b")); // always works
        QCOMPARE(r.text("txtserch"), QStringLiteral("1234"));
        r.type("x");
        r.press(Qt::Key_A, Qt::ControlModifier);
        r.type("9"); // over what is selected
        QCOMPARE(r.text("txtserch"), QStringLiteral("9"));
        r.press(Qt::Key_A, Qt::ControlModifier);
        r.paste("3-а3a*b'cdefgh"); // the first letter is Cyrillic
        QCOMPARE(r.text("txtserch"), QStringLiteral("33ABC"));
        QVERIFY(r.quiet());
    }

    // ---- search

    void everyKeySearches()
    {
        RegionWindow r;
        r.type("3");
        QCOMPARE(r.column(kGrid, 0), QStringList({"3A", "3AB", "3D"})); // ordered
        r.type("a");
        QCOMPARE(r.column(kGrid, 0), QStringList({"3A", "3AB"}));
        r.type("b");
        QCOMPARE(r.column(kGrid, 1), QStringList("Город"));
        r.type("x");
        QCOMPARE(r.column(kGrid, 0), QStringList());
        sendKey(QTest::Click, Qt::Key_Backspace, QStringLiteral("\b"));
        QCOMPARE(r.column(kGrid, 0), QStringList("3AB"));
        for (int i = 0; i < 3; ++i)
            r.press(Qt::Key_Backspace);
        QCOMPARE(r.column(kGrid, 0), kByPrefix); // the whole table, ordered
        r.paste("9");
        QCOMPARE(r.column(kGrid, 0), QStringList("9A"));
        QVERIFY(r.quiet());
    }

    void anyKeyOrdersTheTable()
    {
        RegionWindow r;
        r.press(Qt::Key_Shift);
        QCOMPARE(r.column(kGrid, 0), kByPrefix);
    }

    void storedInLowerCase()
    {
        RegionWindow r([](Installation &in) {
            regionTable(in);
            addRegion(in, "pref=9xq|gorod=Коми");
        });
        r.type("9x");
        QCOMPARE(r.column(kGrid, 1), QStringList("Коми"));
    }

    void quickTyping()
    {
        RegionWindow r;
        sendKey(QTest::Press, Qt::Key_3, QStringLiteral("3"));
        sendKey(QTest::Press, Qt::Key_A, QStringLiteral("a"));
        sendKey(QTest::Press, Qt::Key_B, QStringLiteral("b"));
        r.press(Qt::Key_Tab); // all three still down
        QCOMPARE(r.w.focus(), QLatin1String(kGrid));
        QCOMPARE(r.column(kGrid, 0), QStringList("3AB"));
    }

    void downGoesToTheGrid()
    {
        RegionWindow r;
        r.type("3");
        r.press(Qt::Key_Down);
        QCOMPARE(r.w.focus(), QLatin1String(kGrid));
        r.press(Qt::Key_End);
        QCOMPARE(r.column(kGrid, 0), QStringList({"3A", "3AB", "3D"}));
    }

    void statementsOfAKey()
    {
        RegionWindow r;
        const auto statements = [&] {
            return r.w.installation.databases.connection(r.w.installation.file(QLatin1String(kFile)))
                .statementCount();
        };
        r.type("3");
        const qint64 before = statements();
        r.type("a");
        QCOMPARE(statements() - before, qint64{1});
        QCOMPARE(r.column(kGrid, 0), QStringList({"3A", "3AB"}));
    }

    // ---- only for looking things up

    void gridIsReadOnly()
    {
        RegionWindow r;
        const auto rows = [&] {
            return r.w.installation.rows(QLatin1String(kFile), QStringLiteral("SELECT * FROM tblrus"));
        };
        const QStringList before = rows();
        r.clickCell(kGrid, 0, 1);
        r.press(Qt::Key_F2);
        r.type("XYZ");
        r.press(Qt::Key_Return);
        r.doubleClickCell(kGrid, 1, 1);
        r.type("XYZ");
        r.press(Qt::Key_Return);
        r.type("q");
        r.press(Qt::Key_Delete);
        sendKey(QTest::Click, Qt::Key_Backspace, QStringLiteral("\b"));
        r.window->close();
        QCOMPARE(rows(), before);
        QVERIFY(r.quiet());
    }

    void readOnlyFolder()
    {
        RegionWindow r(regionTable, true);
        r.type("3");
        QCOMPARE(r.column(kGrid, 0), QStringList({"3A", "3AB", "3D"}));
        QVERIFY(r.quiet());
    }

    void file_data()
    {
        QTest::addColumn<bool>("foreign");
        QTest::newRow("missing") << false;
        QTest::newRow("unknown") << true;
    }
    void file()
    {
        QFETCH(bool, foreign);
        RegionWindow r([foreign](Installation &in) {
            QFile old(in.file(QLatin1String(kFile)));
            if (!old.remove())
                qFatal("not removed");
            if (foreign && (!old.open(QIODevice::WriteOnly) || old.write("не база") < 0))
                qFatal("not written");
        });
        QCOMPARE(r.w.messages.errors.size(), 1);
        QVERIFY2(r.w.messages.errors.front().contains(QLatin1String(kFile)),
                 qPrintable(r.w.messages.errors.front()));
        QCOMPARE(r.column(kGrid, 0), QStringList());
        r.type("3");
        QVERIFY(!r.status().isEmpty());
        QCOMPARE(r.w.messages.errors.size(), 1);
        r.window->close();
        QVERIFY(!r.window->isVisible());
        QCOMPARE(QFile::exists(r.w.installation.file(QLatin1String(kFile))), foreign);
    }

    void lockedFile()
    {
        RegionWindow r;
        store::Connection other(r.w.installation.file(QLatin1String(kFile)), store::OpenMode::ReadWrite);
        other.exec(QStringLiteral("BEGIN EXCLUSIVE"));
        r.type("3");
        QVERIFY2(r.status().contains(QStringLiteral("занят")), qPrintable(r.status()));
        other.exec(QStringLiteral("ROLLBACK"));
        r.type("a");
        QCOMPARE(r.status(), QString());
        QCOMPARE(r.column(kGrid, 0), QStringList({"3A", "3AB"}));
        QVERIFY(r.quiet());
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
        RegionWindow r;
        r.window->resize(size);
        QCoreApplication::processEvents();
        QCOMPARE(r.window->size(), size);
        QCOMPARE(r.missedByTab(), QStringList());
    }

    void everyControlIsNamedForAScreenReader()
    {
        const RegionWindow r;
        QCOMPARE(r.unnamed(), QStringList());
    }
};

QTEST_MAIN(RegionWindowTest)
#include "regionwindow.moc"
