// Rows of the country window: adding, correcting, deleting, resolving by them.
#include "support/reference.h"

using testsupport::addCountry;
using testsupport::Beside;
using testsupport::countryTable;
using testsupport::CountryWindow;
using testsupport::Desktop;
using testsupport::Installation;
using testsupport::sendKey;

namespace {

constexpr auto kGrid = "DBGrid1";
constexpr auto kFile = "dbdxcc1.mdb";
const QString kWarning = QStringLiteral("Ошибка: Введите Pref. или Префикс");

constexpr auto kForbidInserts =
    "CREATE TRIGGER no BEFORE INSERT ON tbldxcc BEGIN SELECT RAISE(ABORT,'нельзя'); END";
constexpr auto kForbidUpdates =
    "CREATE TRIGGER no BEFORE UPDATE ON tbldxcc BEGIN SELECT RAISE(ABORT,'нельзя'); END";

} // namespace

class CountryRowsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- adding

    void added()
    {
        CountryWindow c;
        c.typeEntry({"zz1", "zedland", "af", "57", "38", "zz"});
        QCOMPARE(c.w.focus(), QStringLiteral("cmbadd"));
        c.click("cmbadd");
        QCOMPARE(c.stored().size(), 8);
        // Each box into its own field; the two zones are not mixed up.
        QCOMPARE(c.stored("prf,strana,kont,iaru,cq,PREF,GradN,GradE,Dolg,Shir,own").constLast(),
                 QStringLiteral("ZZ1|ZEDLAND|AF|57|38|ZZ|||||1"));
        QCOMPARE(c.entry(), QStringLiteral("|||||"));
        QCOMPARE(c.w.focus(), QStringLiteral("txtprf1"));
        QCOMPARE(c.gridRow(kGrid, 7), QStringLiteral("ZZ1|ZEDLAND|AF|57|38|ZZ||||")); // shown in its place
        QCOMPARE(c.stored("own").mid(0, 7), QStringList({"", "", "", "", "", "", ""}));
        QVERIFY(c.quiet());
    }

    void codesAloneAreEnough()
    {
        CountryWindow c;
        c.typeEntry({"q", "", "", "", "", "q"});
        c.click("cmbadd");
        QCOMPARE(c.stored().constLast(), QStringLiteral("Q|||||Q|1"));
        QVERIFY(c.quiet());
    }

    void nameIsCut_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored");
        QTest::newRow("13") << "ABCDEFGHIJKLM"
                            << "ABCDEFGHIJKLM";
        QTest::newRow("14") << "ABCDEFGHIJKLMN"
                            << "ABCDEFGHIJKLMN";
        QTest::newRow("15") << "ABCDEFGHIJKLMNO"
                            << "ABCDEFGHIJKLMN";
        QTest::newRow("16") << "ABCDEFGHIJKLMNOP"
                            << "ABCDEFGHIJKLMN";
    }
    void nameIsCut()
    {
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        CountryWindow c;
        c.typeEntry({"", typed});
        QCOMPARE(c.text("txtstrana"), typed.left(15));
        c.click("cmbadd");
        QCOMPARE(c.text("txtstrana"), stored); // cut before the codes are looked at
        QCOMPARE(c.w.messages.told, QStringList(kWarning));
        c.enter("txtstrana", qPrintable(typed));
        c.enter("txtprf1", "q");
        c.enter("txtPREF", "q");
        c.click("cmbadd");
        QCOMPARE(c.stored("strana").constLast(), stored);
    }

    void bothCodesAreNeeded_data()
    {
        QTest::addColumn<QStringList>("typed");
        QTest::newRow("no prf") << QStringList({"", "LAND", "EU", "1", "2", "QQ"});
        QTest::newRow("no PREF") << QStringList({"QQ", "LAND", "EU", "1", "2", ""});
        QTest::newRow("none of the two") << QStringList({"", "LAND", "EU", "1", "2", ""});
        QTest::newRow("nothing") << QStringList({"", "", "", "", "", ""});
    }
    void bothCodesAreNeeded()
    {
        QFETCH(QStringList, typed);
        CountryWindow c;
        c.typeEntry(typed);
        c.click("cmbadd");
        QCOMPARE(c.w.messages.told, QStringList(kWarning));
        QCOMPARE(c.messages(), 1);
        QCOMPARE(c.stored().size(), 7);
        QCOMPARE(c.entry(), typed.join(QLatin1Char('|')));
        QCOMPARE(c.w.focus(), QStringLiteral("txtprf1"));
    }

    void sameCodeOnceMore()
    {
        CountryWindow c;
        for (int i = 0; i < 2; ++i) {
            c.typeEntry({"f", "frankreich", "eu", "27", "14", "f"});
            c.click("cmbadd");
        }
        QCOMPARE(c.stored("prf").count(QStringLiteral("F")), 3); // no check for it
        QCOMPARE(c.stored("strana").mid(7), QStringList({"FRANKREICH", "FRANKREICH"}));
        QCOMPARE(c.column(kGrid, 0).count(QStringLiteral("F")), 3);
        QVERIFY(c.quiet());
    }

    void addedWhileSearching()
    {
        CountryWindow c;
        c.type("u");
        c.typeEntry({"ub", "UBLAND", "", "", "", "ub"});
        c.click("cmbadd");
        QCOMPARE(c.column(kGrid, 0), QStringList({"UA", "UA9", "UB"})); // the search stays
        QCOMPARE(c.text("txtserch"), QStringLiteral("U"));
        c.typeEntry({"xx", "XLAND", "", "", "", "xx"});
        c.click("cmbadd");
        QCOMPARE(c.column(kGrid, 0), QStringList({"UA", "UA9", "UB"}));
        QCOMPARE(c.stored("prf").constLast(), QStringLiteral("XX"));
    }

    void lastLetterStillDown()
    {
        CountryWindow c;
        c.typeEntry({"q", "", "", "", ""});
        c.click("txtPREF");
        sendKey(QTest::Press, Qt::Key_Q, QStringLiteral("q"));
        c.click("cmbadd");
        QCOMPARE(c.stored().constLast(), QStringLiteral("Q|||||Q|1"));
    }

    void rowThatCannotBeAdded()
    {
        CountryWindow c;
        c.sql(kFile, kForbidInserts);
        c.typeEntry({"zz1", "zedland", "af", "57", "38", "zz"});
        c.click("cmbadd");
        QCOMPARE(c.w.messages.errors.size(), 1);
        QCOMPARE(c.entry(), QStringLiteral("ZZ1|ZEDLAND|AF|57|38|ZZ")); // not lost
        QCOMPARE(c.w.focus(), QStringLiteral("txtprf1"));
        c.sql(kFile, "DROP TRIGGER no");
        c.click("cmbadd");
        QCOMPARE(c.stored().size(), 8); // once
        QCOMPARE(c.messages(), 1);
    }

    void tableWithoutTheMark()
    {
        CountryWindow c([](Installation &in) {
            countryTable(in);
            in.sql(QLatin1String(kFile), QStringLiteral("ALTER TABLE tbldxcc DROP COLUMN own"));
        });
        c.typeEntry({"zz1", "zedland", "af", "57", "38", "zz"});
        c.click("cmbadd");
        c.doubleClickCell(kGrid, 3, 1);
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.type("GALLIA");
        c.press(Qt::Key_Return);
        c.click("txtserch");
        QCOMPARE(c.stored("prf,strana,kont,iaru,cq,PREF").constLast(),
                 QStringLiteral("ZZ1|ZEDLAND|AF|57|38|ZZ"));
        QCOMPARE(c.stored("strana").at(1), QStringLiteral("GALLIA"));
        QVERIFY(c.quiet());
    }

    void readOnlyFolder()
    {
        CountryWindow c(countryTable, true);
        QVERIFY(c.quiet());
        c.type("u");
        QCOMPARE(c.column(kGrid, 0), QStringList({"UA", "UA9"}));
        c.typeEntry({"zz1", "zedland", "af", "57", "38", "zz"});
        c.click("cmbadd");
        QCOMPARE(c.w.messages.errors.size(), 1);
        QCOMPARE(c.entry(), QStringLiteral("ZZ1|ZEDLAND|AF|57|38|ZZ"));
        c.clickCell(kGrid, 0, 1);
        c.press(Qt::Key_F2);
        c.type("X");
        c.press(Qt::Key_Return);
        QCOMPARE(c.cell(kGrid, 0, 1), QStringLiteral("RUSSIAN"));
        c.press(Qt::Key_Delete);
        QCOMPARE(c.stored().size(), 7);
        QCOMPARE(c.stored("strana").front(), QStringLiteral("RUSSIAN"));
        c.window->close();
        QVERIFY(!c.window->isVisible());
    }

    // ---- correcting

    void cellCorrected_data()
    {
        QTest::addColumn<bool>("mouse");
        QTest::newRow("F2") << false;
        QTest::newRow("double click") << true;
    }
    void cellCorrected()
    {
        QFETCH(bool, mouse);
        CountryWindow c;
        c.clickCell(kGrid, 3, 1); // F
        if (mouse)
            c.doubleClickCell(kGrid, 3, 1);
        else
            c.press(Qt::Key_F2);
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.type("o'land <b> 12ж ");
        c.press(Qt::Key_Return);
        c.press(Qt::Key_Down); // the row is left
        QCOMPARE(c.stored("prf,strana,kont,iaru,cq,PREF,own").at(1),
                 QStringLiteral("F|OLAND B 12|EU|27|14|F|1"));
        QCOMPARE(c.stored("own").join(QLatin1Char(',')), QStringLiteral(",1,,,,,"));
        QCOMPARE(c.stored().size(), 7);
        QVERIFY(c.quiet());
    }

    /// A cell takes what its box takes, and what the table has besides.
    void cellFilter_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<QByteArray>("typed");
        QTest::addColumn<QString>("stands");
        QTest::newRow("prf") << 0 << QByteArray("sv2 rsg/a-абв1234567") << QStringLiteral("SV2RSG/A1234");
        QTest::newRow("name") << 1 << QByteArray("isle of/the long names")
                              << QStringLiteral("ISLE OFTHE LON");
        QTest::newRow("continent") << 2 << QByteArray("e uёro") << QStringLiteral("EUR");
        QTest::newRow("ITU zone") << 3 << QByteArray("a2 7,") << QStringLiteral("27");
        QTest::newRow("CQ zone") << 4 << QByteArray("-14") << QStringLiteral("14");
        QTest::newRow("PREF") << 5 << QByteArray("vp8/georg") << QStringLiteral("VP8GE");
        QTest::newRow("latitude") << 6 << QByteArray("-41.9n") << QStringLiteral("-41,9");
        QTest::newRow("longitude") << 7 << QByteArray("12,43 e") << QStringLiteral("12,43");
    }
    void cellFilter()
    {
        QFETCH(int, column);
        QFETCH(QByteArray, typed);
        QFETCH(QString, stands);
        CountryWindow c;
        c.clickCell(kGrid, 3, column);
        c.press(Qt::Key_F2);
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.type(typed.constData());
        c.press(Qt::Key_Return);
        QCOMPARE(c.cell(kGrid, 3, column), stands);
    }

    /// A row without one of its codes would take no part in anything.
    void codesAreNotEmptied_data()
    {
        QTest::addColumn<int>("column");
        QTest::newRow("prf") << 0;
        QTest::newRow("PREF") << 5;
    }
    void codesAreNotEmptied()
    {
        QFETCH(int, column);
        CountryWindow c;
        const QStringList before = c.stored();
        c.doubleClickCell(kGrid, 3, column);
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.press(Qt::Key_Delete);
        c.press(Qt::Key_Return);
        QCOMPARE(c.cell(kGrid, 3, column), QStringLiteral("F"));
        QVERIFY2(c.status().contains(QStringLiteral("не бывают пустыми")), qPrintable(c.status()));
        c.click("txtserch");
        QCOMPARE(c.stored(), before);
        QVERIFY(c.quiet());
    }

    void otherCellsCanBeEmptied()
    {
        CountryWindow c;
        c.doubleClickCell(kGrid, 3, 2);
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.press(Qt::Key_Delete);
        c.press(Qt::Key_Return);
        c.click("txtserch");
        QCOMPARE(c.stored("prf,kont,own").at(1), QStringLiteral("F||1"));
    }

    void blanksOfANameArePutRight()
    {
        CountryWindow c;
        c.doubleClickCell(kGrid, 3, 1);
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.paste(" new  gaul ");
        c.press(Qt::Key_Return);
        c.click("txtserch");
        QCOMPARE(c.stored("prf,strana,own").at(1), QStringLiteral("F|NEW GAUL|1"));
    }

    void readOnlyTableSaysWhyNothingOpens_data()
    {
        QTest::addColumn<bool>("key");
        QTest::newRow("F2") << true;
        QTest::newRow("double click") << false;
    }
    void readOnlyTableSaysWhyNothingOpens()
    {
        QFETCH(bool, key);
        CountryWindow c(countryTable, true);
        c.clickCell(kGrid, 3, 1);
        QCOMPARE(c.status(), QString());
        if (key)
            c.press(Qt::Key_F2);
        else
            c.doubleClickCell(kGrid, 3, 1);
        QVERIFY2(c.status().contains(QStringLiteral("только для чтения")), qPrintable(c.status()));
        QCOMPARE(c.w.focus(), QLatin1String(kGrid));
        QVERIFY(c.quiet());
    }

    void coordinatesCanBeCorrected()
    {
        CountryWindow c;
        c.doubleClickCell(kGrid, 3, 9);
        c.type("48,85");
        c.press(Qt::Key_Return);
        c.click("txtserch"); // out of the grid
        QCOMPARE(c.stored("prf,GradN,GradE,Dolg,Shir,own").at(1), QStringLiteral("F||||48,85|1"));
    }

    void correctionIsStored_data()
    {
        QTest::addColumn<QString>("way");
        for (const char *way : {"other row", "search", "close", "exit", "main window", "add"})
            QTest::newRow(way) << way;
    }
    void correctionIsStored()
    {
        QFETCH(QString, way);
        CountryWindow c;
        c.doubleClickCell(kGrid, 3, 1);
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.type("NEU"); // the cell is still open
        if (way == QLatin1String("other row"))
            c.clickCell(kGrid, 0, 0);
        else if (way == QLatin1String("search"))
            c.enter("txtserch", "u");
        else if (way == QLatin1String("close"))
            c.window->close();
        else if (way == QLatin1String("exit"))
            c.click("cmbexit");
        else if (way == QLatin1String("main window"))
            Desktop::toFront(*c.w.log);
        else
            c.click("cmbadd");
        QCOMPARE(c.stored("prf,strana,own").at(1), QStringLiteral("F|NEU|1"));
        QCOMPARE(c.stored("own").count(QStringLiteral("1")), 1);
        QCOMPARE(c.w.messages.errors, QStringList());
        QCOMPARE(c.w.messages.asked, QStringList());
    }

    void escapeTakesTheCorrectionBack()
    {
        CountryWindow c;
        c.doubleClickCell(kGrid, 3, 1);
        c.type("X");
        c.press(Qt::Key_Return);
        c.press(Qt::Key_Escape);
        QVERIFY(c.window->isVisible());
        QCOMPARE(c.cell(kGrid, 3, 1), QStringLiteral("FRANCE"));
        c.window->close();
        QCOMPARE(c.stored("strana,own").at(1), QStringLiteral("FRANCE|"));
    }

    void lettersOpenNoCell()
    {
        CountryWindow c;
        c.clickCell(kGrid, 3, 1);
        c.type("xyz9");
        sendKey(QTest::Click, Qt::Key_Backspace, QStringLiteral("\b"));
        c.press(Qt::Key_Space);
        c.window->close();
        QCOMPARE(c.stored("strana").at(1), QStringLiteral("FRANCE"));
        QCOMPARE(c.stored("own").join(QString()), QString());
        QVERIFY(c.quiet());
    }

    void openedAndLeftIsNoCorrection()
    {
        CountryWindow c;
        c.doubleClickCell(kGrid, 3, 1);
        c.press(Qt::Key_Return);
        c.press(Qt::Key_Down);
        c.window->close();
        QCOMPARE(c.stored("own").join(QString()), QString());
    }

    void correctionThatCannotBeStored()
    {
        CountryWindow c;
        c.sql(kFile, kForbidUpdates);
        c.doubleClickCell(kGrid, 3, 1);
        c.type("X");
        c.press(Qt::Key_Return);
        c.w.messages.yes = false;
        c.window->close();
        QCOMPARE(c.w.messages.errors.size(), 1);
        QCOMPARE(c.w.messages.asked.size(), 1);
        QVERIFY(c.window->isVisible());
        c.sql(kFile, "DROP TRIGGER no");
        c.window->close();
        QVERIFY(!c.window->isVisible());
        QCOMPARE(c.stored("own").at(1), QStringLiteral("1"));
        QVERIFY(c.stored("strana").at(1) != QStringLiteral("FRANCE"));
    }

    // ---- deleting

    void deleteAsks()
    {
        CountryWindow c([](Installation &in) {
            countryTable(in);
            addCountry(in, "prf=ZZ|strana=<B>Z %1</B>");
        });
        c.clickCell(kGrid, 7, 0);
        c.w.messages.yes = false;
        c.press(Qt::Key_Delete);
        QCOMPARE(c.w.messages.asked.size(), 1);
        QVERIFY2(c.w.messages.asked.front().contains(QStringLiteral("ZZ  <B>Z %1</B>")),
                 qPrintable(c.w.messages.asked.front()));
        QCOMPARE(c.stored().size(), 8);
        c.w.messages.yes = true;
        c.press(Qt::Key_Delete);
        QCOMPARE(c.stored("prf").size(), 7);
        QVERIFY(!c.stored("prf").contains(QStringLiteral("ZZ")));
        QCOMPARE(c.column(kGrid, 0), QStringList({"3B8", "DA", "DL", "F", "UA", "UA9", "ZS"}));
        QCOMPARE(c.w.messages.errors, QStringList());
    }

    void rowThatCannotBeDeleted()
    {
        CountryWindow c;
        c.sql(kFile, "CREATE TRIGGER no BEFORE DELETE ON tbldxcc BEGIN SELECT RAISE(ABORT,'нельзя'); END");
        c.clickCell(kGrid, 3, 0);
        c.press(Qt::Key_Delete);
        QCOMPARE(c.w.messages.errors.size(), 1);
        QCOMPARE(c.cell(kGrid, 3, 0), QStringLiteral("F"));
        QCOMPARE(c.stored().size(), 7);
    }

    void rowDeletedMeanwhile()
    {
        CountryWindow c;
        c.doubleClickCell(kGrid, 3, 1);
        c.type("X");
        c.sql(kFile, "DELETE FROM tbldxcc WHERE prf='F'");
        c.press(Qt::Key_Return);
        c.click("txtserch");
        QCOMPARE(c.w.messages.errors.size(), 1); // the correction is lost, and that is told
        QCoreApplication::processEvents();
        QCOMPARE(c.column(kGrid, 0), QStringList({"3B8", "DA", "DL", "UA", "UA9", "ZS"}));
        QCOMPARE(c.stored("own").join(QString()), QString()); // no other row got it
        c.window->close();
        QVERIFY(!c.window->isVisible());
    }

    void deleteInAnOpenCellIsAKeyOfTheCell()
    {
        CountryWindow c;
        c.doubleClickCell(kGrid, 3, 1);
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.press(Qt::Key_Delete);
        c.press(Qt::Key_Return);
        c.click("txtserch");
        QCOMPARE(c.stored("prf,strana,own").at(1), QStringLiteral("F||1"));
        QVERIFY(c.quiet());
    }

    void deleteOfAnEmptyGrid()
    {
        CountryWindow c;
        c.type("xxx");
        c.press(Qt::Key_Down);
        c.press(Qt::Key_Delete);
        QCOMPARE(c.stored().size(), 7);
        QVERIFY(c.quiet());
    }

    // ---- the other windows

    void addedRowTakesPartInResolving()
    {
        Desktop d(countryTable);
        d.w.type(QStringLiteral("zz1"));
        QCOMPARE(d.w.text("txtcontr"), QString());
        auto &window = d.open<reference::dxcc1>("mnudxcc");
        Beside c(d, window);
        for (const auto &[box, text] :
             {std::pair{"txtprf1", "zz1"}, std::pair{"txtstrana", "zedland"}, std::pair{"txtkont", "af"},
              std::pair{"txtcq", "38"}, std::pair{"txtPREF", "zz"}})
            c.enter(box, text);
        c.click("cmbadd");
        Desktop::toFront(*d.w.log);
        QCOMPARE(d.w.text("txtcall"), QStringLiteral("ZZ1"));
        d.w.edit("txtcall")->setFocus();
        d.w.press(Qt::Key_End);
        d.w.type(QStringLiteral("a"));
        QCOMPARE(d.w.text("txtcontr"), QStringLiteral("ZEDLAND"));
        d.w.press(Qt::Key_F4);
        QCOMPARE(d.w.installation.rows(QStringLiteral("dbiaru.mdb"),
                                       QStringLiteral("SELECT ccall,CONTR FROM TBLLOG1")),
                 QStringList("ZZ1A|ZEDLAND"));
        QVERIFY(c.quiet());
    }

    void correctedAndDeletedRowsTakePartToo()
    {
        Desktop d(countryTable);
        auto &window = d.open<reference::dxcc1>("mnudxcc");
        Beside c(d, window);
        c.doubleClickCell(kGrid, 3, 1); // F
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.type("GALLIA"); // not left
        Desktop::toFront(*d.w.log);
        d.w.edit("txtcall")->setFocus();
        d.w.type(QStringLiteral("f5"));
        QCOMPARE(d.w.text("txtcontr"), QStringLiteral("GALLIA"));
        Desktop::toFront(window);
        c.clickCell(kGrid, 3, 1);
        c.press(Qt::Key_Delete);
        Desktop::toFront(*d.w.log);
        d.w.edit("txtcall")->setFocus();
        d.w.press(Qt::Key_A, Qt::ControlModifier);
        d.w.press(Qt::Key_Delete);
        d.w.type(QStringLiteral("f5"));
        QCOMPARE(d.w.text("txtcontr"), QString());
    }

    void buttonOpensTheRegions()
    {
        Desktop d(countryTable);
        auto &window = d.open<reference::dxcc1>("mnudxcc");
        Beside c(d, window);
        c.click("Command1");
        auto &regions = Desktop::shown<reference::rusdx>();
        QCOMPARE(regions.windowTitle(), QStringLiteral("Россия"));
        QVERIFY(regions.isActiveWindow());
        QVERIFY(window.isVisible());
        regions.close();
        Desktop::toFront(window);
        c.find<QWidget>("Command1")->setFocus();
        c.press(Qt::Key_Return);
        QCOMPARE(&Desktop::shown<reference::rusdx>(), &regions); // the same one again
        d.w.log->close();
        QVERIFY(!window.isVisible() && !regions.isVisible());
        QVERIFY(c.quiet());
    }

    void whatIsTypedStaysInTheEntry()
    {
        Desktop d(countryTable);
        auto &window = d.open<reference::dxcc1>("mnudxcc");
        Beside c(d, window);
        c.enter("txtprf1", "qq");
        Desktop::toFront(*d.w.log);
        Desktop::toFront(window);
        QCOMPARE(c.text("txtprf1"), QStringLiteral("QQ"));
        d.w.installation.sql(QLatin1String(kFile), QStringLiteral("INSERT INTO tbldxcc(prf) VALUES('A')"));
        Desktop::toFront(*d.w.log);
        Desktop::toFront(window);
        QVERIFY(c.column(kGrid, 0).contains(QStringLiteral("A"))); // rows are read anew
        QVERIFY(c.quiet());
    }

    void windowGoesWhileItIsUsed_data()
    {
        QTest::addColumn<QString>("box");
        for (const char *box : {"txtserch", "txtserch1", "txtprf1", "DBGrid1"})
            QTest::newRow(box) << box;
    }
    void windowGoesWhileItIsUsed()
    {
        QFETCH(QString, box);
        CountryWindow c;
        if (box == QLatin1String(kGrid))
            c.doubleClickCell(kGrid, 3, 1);
        else
            c.click(qPrintable(box));
        c.type("X");
        c.window.reset();
        QVERIFY(c.w.log->isVisible());
        QCOMPARE(c.stored().size(), 7);
        QVERIFY(c.quiet());
    }
};

QTEST_MAIN(CountryRowsTest)
#include "countryrows.moc"
