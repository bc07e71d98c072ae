// The bureau window's blank: how a contact gets into it, and what is changed in it.
#include "support/bureau.h"

#include <QGroupBox>
#include <QPushButton>
#include <QSignalSpy>

using testsupport::addBlank;
using testsupport::addLog;
using testsupport::addRow;
using testsupport::Bureau;
using testsupport::Installation;

namespace {

constexpr auto kLogGrid = "DBGrid1";
constexpr auto kBlankGrid = "DBGrid2";
constexpr auto kBlankFields = "ccall,ddate,ttime,bband,rsts,mult,CONTR";

/// A window with one contact in the log.
std::function<void(Installation &)> oneContact(const QString &row)
{
    return [row](Installation &in) {
        testsupport::smallTables(in);
        addRow(in, QStringLiteral("dbiaru.mdb"), QStringLiteral("TBLLOG1"), row);
    };
}

const QString kTimeQuestion = QStringLiteral("Нет времени связи: Введите время !!! ");
const QString kReportQuestion = QStringLiteral("RST из контеста !!!: Если 599 жми OK ,иначе RST=59");

} // namespace

class BureauBlankTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void captionsOfTheBlank()
    {
        const Bureau b;
        QStringList groups;
        for (const QGroupBox *group : b.window->findChildren<QGroupBox *>())
            groups.append(group->title());
        QVERIFY(groups.contains(QStringLiteral("QSLбланк")));
        QCOMPARE(b.headings(kBlankGrid),
                 QStringList({"Call", "Date", "ttime", "bband", "rsts", "rstr", "point", "QSL VIA"}));
    }

    void wholeContact()
    {
        Bureau b(oneContact(QStringLiteral(
            "ccall=UA3ABC|ddate=01.02.03|ttime=10:11|bband=3,5|rsts=579|rstr=569|qslvia=RX3A|prf=XYZ|"
            "contr=RUSSIAN|qslp=+|qslo=x|point=7|QTH=Тула|NNAME=Иван|ps1=FM")));
        b.doubleClickCell(kLogGrid, 0, 4);
        QCOMPARE(b.blank(kBlankFields), QStringList("UA3ABC|01.02.03|10:11|3,5|579|FM|RX3A"));
        QCOMPARE(b.blank("rstr||point||QSLP||QSLO||QTH||NNAME||PRF||ps1"), QStringList(""));
        QCOMPARE(b.gridRow(kBlankGrid, 0), QStringLiteral("UA3ABC|01.02.03|10:11|3,5|579|||RX3A"));
        const QList<std::pair<const char *, const char *>> shown = {
            {"TXTCALL", "UA3ABC"}, {"TXTDATE", "01.02.03"}, {"TXTTIME", "10:11"}, {"TXTBAND", "3,5"},
            {"TXTRSTS", "579"},    {"txtmod", "FM"},        {"TXTQSLVIA", "RX3A"}};
        for (const auto &[field, value] : shown)
            QCOMPARE(b.text(field), QLatin1String(value));
        QCOMPARE(b.find<ui::DbGrid>(kLogGrid)->currentIndex().column(), 0);
        QCOMPARE(b.log("qslo"), QStringList("x")); // not marked yet
        QVERIFY(b.quiet());
    }

    void time_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("copied");
        QTest::newRow("1") << "5"
                           << "00:05";
        QTest::newRow("2") << "45"
                           << "00:45";
        QTest::newRow("3") << "945"
                           << "09:45";
        QTest::newRow("4 stays") << "1245"
                                 << "1245";
        QTest::newRow("4 with a colon") << "9:05"
                                        << "9:05";
        QTest::newRow("5") << "12:45"
                           << "12:45";
        QTest::newRow("6") << "123456"
                           << "12345";
        QTest::newRow("7") << "9:05:07"
                           << "9:05:";
        QTest::newRow("8") << "12:34:56"
                           << "12:34";
    }
    void time()
    {
        QFETCH(QString, stored);
        QFETCH(QString, copied);
        Bureau b(oneContact(QStringLiteral("ccall=R1A|ddate=01.02.03|bband=14|ttime=") + stored));
        b.doubleClickCell(kLogGrid, 0);
        QCOMPARE(b.blank("ttime"), QStringList(copied));
        QCOMPARE(b.text("TXTTIME"), copied);
        QCOMPARE(b.log("ttime"), QStringList(stored));
        QVERIFY(b.quiet());
    }

    void emptyTimeIsAskedFor_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("copied");
        QTest::newRow("answered") << "945"
                                  << "09:45";
        QTest::newRow("in full") << "12:34:56"
                                 << "12:34";
        QTest::newRow("not answered") << ""
                                      << "";
        QTest::newRow("whatever it is") << "abc"
                                        << "0a:bc";
    }
    void emptyTimeIsAskedFor()
    {
        QFETCH(QString, answer);
        QFETCH(QString, copied);
        Bureau b(oneContact(QStringLiteral("ccall=R1A|ddate=01.02.03|bband=14|rsts=599001")));
        QSignalSpy changed(b.window.get(), &qsl::QSLburo::logChanged);
        b.w.messages.texts = QStringList{answer, QStringLiteral("never asked twice")};
        b.doubleClickCell(kLogGrid, 0);
        QCOMPARE(b.w.messages.asked, QStringList({kTimeQuestion, kReportQuestion}));
        QCOMPARE(b.blank("ccall,ttime,rsts"), QStringList(QStringLiteral("R1A|%1|599").arg(copied)));
        QCOMPARE(b.log("ttime"), QStringList(answer));
        QCOMPARE(b.cell(kLogGrid, 0, 5), answer);
        QCOMPARE(b.text("txtcall2_0"), QStringLiteral("R1A"));
        QCOMPARE(b.text("txtcall2_2"), answer);
        QVERIFY(answer.isEmpty() || !changed.isEmpty());
        QVERIFY(b.w.messages.told.isEmpty() && b.w.messages.errors.isEmpty());
    }

    void report_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("questions");
        QTest::addColumn<bool>("yes");
        QTest::addColumn<QString>("copied"); // report and mode
        QTest::newRow("none") << ""
                              << "" << true << "|";
        QTest::newRow("1") << "5"
                           << "" << true << "|";
        QTest::newRow("2") << "57"
                           << "" << true << "57|SSB";
        QTest::newRow("3") << "579"
                           << "" << true << "579|CW";
        QTest::newRow("4, yes") << "5991" << kReportQuestion << true << "599|CW";
        QTest::newRow("4, no") << "5991" << kReportQuestion << false << "59|SSB";
        QTest::newRow("6, yes") << "599001" << kReportQuestion << true << "599|CW";
        QTest::newRow("6, no") << "599001" << kReportQuestion << false << "59|SSB";
    }
    void report()
    {
        QFETCH(QString, stored);
        QFETCH(QString, questions);
        QFETCH(bool, yes);
        QFETCH(QString, copied);
        Bureau b(oneContact(QStringLiteral("ccall=R1A|ddate=01.02.03|ttime=1|rsts=") + stored));
        b.w.messages.yes = yes;
        b.doubleClickCell(kLogGrid, 0);
        QCOMPARE(b.blank("rsts,mult"), QStringList(copied));
        QCOMPARE(b.w.messages.asked.join(QLatin1Char(';')), questions);
        QCOMPARE(b.log("rsts"), QStringList(stored));
    }

    void modeOfTheLogGoesBeforeTheGuess()
    {
        for (const char *rsts : {"59", "599", "599001", ""}) {
            Bureau b(
                oneContact(QStringLiteral("ccall=R1A|ttime=1|prf=XYZ|ps1=RTTY|rsts=") + QLatin1String(rsts)));
            b.doubleClickCell(kLogGrid, 0);
            QCOMPARE(b.blank("mult"), QStringList("RTTY"));
            b.clickRow("DBList1", "R1A"); // this statement delivers the mode, too
            b.doubleClickCell(kLogGrid, 0);
            QCOMPARE(b.blank("mult"), QStringList({"RTTY", "RTTY"}));
        }
    }

    void modeIsNotKnownAfterASearch()
    {
        Bureau b(oneContact(QStringLiteral("ccall=R1A|ttime=1|prf=XYZ|ps1=RTTY|rsts=59")));
        b.type("r");
        b.doubleClickCell(kLogGrid, 0);
        QCOMPARE(b.blank("mult"), QStringList("SSB"));
    }

    void route_data()
    {
        QTest::addColumn<QString>("ofTheContact");
        QTest::addColumn<QString>("ofTheCallbook");
        QTest::addColumn<QString>("copied");
        QTest::newRow("contact") << "RX3A"
                                 << ""
                                 << "RX3A";
        QTest::newRow("callbook") << ""
                                  << "UA9B"
                                  << "UA9B";
        QTest::newRow("both") << "RX3A"
                              << "UA9B"
                              << "RX3A";
        QTest::newRow("neither") << ""
                                 << ""
                                 << "";
    }
    void route()
    {
        QFETCH(QString, ofTheContact);
        QFETCH(QString, ofTheCallbook);
        QFETCH(QString, copied);
        Bureau b([&](Installation &in) {
            oneContact(QStringLiteral("ccall=R1A|ttime=1|qslvia=") + ofTheContact)(in);
            addRow(in, QStringLiteral("dbcalbuk.mdb"), QStringLiteral("tblcalbuk"),
                   QStringLiteral("ccall=R1|qslvia=OTHER"));
            addRow(in, QStringLiteral("dbcalbuk.mdb"), QStringLiteral("tblcalbuk"),
                   QStringLiteral("ccall=R1A|qslvia=") + ofTheCallbook);
            addLog(in, "ccall=R2A|ttime=1");
        });
        b.doubleClickCell(kLogGrid, 0);
        QCOMPARE(b.text("TXTBUKVIA"), ofTheCallbook);
        QCOMPARE(b.blank("CONTR"), QStringList(copied));
        QCOMPARE(b.text("TXTQSLVIA"), copied);
        b.doubleClickCell(kLogGrid, 1); // of whom the callbook knows nothing
        QCOMPARE(b.text("TXTBUKVIA"), QString());
        QCOMPARE(b.blank("ccall,CONTR").constLast(), QStringLiteral("R2A|"));
        QVERIFY(b.quiet());
    }

    void contactStandsBehindTheEntryFields()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            addLog(in, "ccall=R1A|ddate=01.02.03|ttime=10:11|bband=14|rstr=1|contr=A");
            addLog(in, "ccall=R1A|ddate=02.02.03|ttime=12:34:56|bband=7|rstr=57|rsts=58|QTH=Тула|NNAME=Иван|"
                       "QSLVIA=RX3A|QSLP=+|prf=QQ|contr=RUSSIAN");
        });
        b.doubleClickCell(kLogGrid, 1);
        QCOMPARE(b.texts("txtcall2", 10),
                 QStringList({"R1A", "02.02.03", "12:34:56", "7", "57", "58", QStringLiteral("Тула"),
                              QStringLiteral("Иван"), "RX3A", "+"}));
        QCOMPARE(b.text("txt1prf"), QStringLiteral("QQ"));
        QCOMPARE(b.text("txt1contr"), QStringLiteral("RUSSIAN"));
        b.doubleClickCell(kLogGrid, 0);
        QCOMPARE(b.text("txtcall2_1"), QStringLiteral("01.02.03"));
        QCOMPARE(b.texts("txtcall1", 10).join(QString()), QString());
    }

    void enterCopiesToo()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            addLog(in, "ccall=R1A|ttime=1|bband=7");
            addLog(in, "ccall=R2A|ttime=1|bband=14");
        });
        b.clickCell(kLogGrid, 0, 3);
        b.press(Qt::Key_Return);
        QCOMPARE(b.blank(), QStringList("R1A"));
        QCOMPARE(b.w.focus(), QLatin1String(kLogGrid));
        b.press(Qt::Key_Down);
        b.press(Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(b.blank(), QStringList({"R1A", "R2A"}));
        QVERIFY(b.quiet());
    }

    void enterOnAnEmptyGrid()
    {
        Bureau b;
        b.find<QWidget>(kLogGrid)->setFocus();
        b.press(Qt::Key_Return);
        b.press(Qt::Key_F1);
        QCOMPARE(b.blank(), QStringList());
        QVERIFY(b.quiet());
    }

    void blankIsOrderedByBandAndStays()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            for (const char *row : {"ccall=R1A|ttime=1|bband=7", "ccall=R2A|ttime=1|bband=14",
                                    "ccall=R3A|ttime=1|bband=21", "ccall=R3A|ttime=2|bband=14"})
                addLog(in, row);
        });
        for (int row = 0; row < 4; ++row)
            b.doubleClickCell(kLogGrid, row);
        QCOMPARE(b.blank("ccall,bband"), QStringList({"R1A|7", "R2A|14", "R3A|21", "R3A|14"}));
        QCOMPARE(b.column(kBlankGrid, 3), QStringList({"14", "14", "21", "7"})); // as text
        b.clickCell(kBlankGrid, 2, 0);
        QCOMPARE(b.text("TXTBAND"), QStringLiteral("21")); // the fields show the grid's row
        b.window->close();
        b.window.reset();
        qsl::QSLburo again({b.w.installation.databases, b.w.clock, b.w.messages, b.w.progress, b.w.reports});
        QCOMPARE(again.findChild<ui::DbGrid *>(QLatin1String(kBlankGrid))->model()->rowCount(), 4);
        QVERIFY(b.quiet());
    }

    void doubleClickOpensNoCell()
    {
        Bureau b(oneContact(QStringLiteral("ccall=R1A|ttime=1")));
        b.doubleClickCell(kLogGrid, 0, 3);
        QCOMPARE(b.w.focus(), QLatin1String(kLogGrid));
        QCOMPARE(b.blank(), QStringList("R1A"));
    }

    void typedCellIsCopied()
    {
        Bureau b(oneContact(QStringLiteral("ccall=R1A")));
        b.clickCell(kLogGrid, 0, 5);
        b.press(Qt::Key_F2);
        b.type("945");
        b.doubleClickCell(kLogGrid, 0, 0); // while the cell is open
        QCOMPARE(b.blank("ttime"), QStringList("09:45"));
        QCOMPARE(b.log("ttime"), QStringList("945"));
        QVERIFY(b.quiet());
    }

    void blankIsChangedInItsFields()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            addBlank(in, "ccall=R1A|bband=14|rsts=59");
            addBlank(in, "ccall=R2A|bband=7|rsts=59");
        });
        b.clickCell(kBlankGrid, 1, 0);
        b.enter("TXTRSTS", "58");
        b.press(Qt::Key_Return);
        QCOMPARE(b.blank("ccall,rsts"), QStringList({"R1A|59", "R2A|58"}));
        QCOMPARE(b.cell(kBlankGrid, 1, 4), QStringLiteral("58"));
        b.enter("txtmod", "psk");
        b.window->close(); // the field has not been left
        QCOMPARE(b.blank("ccall,mult"), QStringList({"R1A|", "R2A|PSK"}));
        QVERIFY(b.quiet());
    }

    void blankIsChangedInItsGrid()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            addBlank(in, "ccall=R1A|bband=14|rsts=59");
            addBlank(in, "ccall=R2A|bband=7|rsts=59");
        });
        b.clickCell(kBlankGrid, 0, 7);
        b.type("ua9b");
        b.press(Qt::Key_Return);
        QCoreApplication::processEvents();
        b.press(Qt::Key_Down);
        QCOMPARE(b.blank("CONTR"), QStringList({"UA9B", ""}));
        b.clickCell(kBlankGrid, 1, 6);
        b.type("5");
        b.press(Qt::Key_Escape);
        QCoreApplication::processEvents();
        b.clickCell(kBlankGrid, 0, 6);
        b.type("7"); // the cell is still open
        b.click("txtserch");
        QCOMPARE(b.blank("point"), QStringList({"7", ""}));
        QVERIFY(b.quiet());
    }

    void apostropheInTheCallsign()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            addLog(in, "ccall=R1'A|ddate=01.02.03|ttime=1|bband=14");
            addLog(in, "ccall=R2A|ddate=01.02.03|ttime=1|bband=14");
            addBlank(in, "ccall=R3A|bband=14");
        });
        b.doubleClickCell(kLogGrid, 0);
        QCOMPARE(b.w.messages.errors.size(), 1);
        QVERIFY(b.log("ccall").contains(QStringLiteral("R1'A")));
        QCOMPARE(b.blank(), QStringList("R3A"));
        QCOMPARE(b.column(kLogGrid, 0), QStringList({"R1'A", "R2A"}));
        b.clickCell(kLogGrid, 0, 0);
        b.press(Qt::Key_F1);
        QCOMPARE(b.w.messages.errors.size(), 2);
        b.click("txtcall1_0");
        b.type("r4a");
        b.click("cmbadd"); // refreshes the grid
        QCOMPARE(b.w.messages.errors.size(), 2);
        QVERIFY(b.column(kLogGrid, 0).contains(QStringLiteral("R4A")));
        b.clickRow("DBList1", "R2A");
        b.doubleClickCell(kLogGrid, 0);
        QCOMPARE(b.blank(), QStringList({"R3A", "R2A"}));
        QCOMPARE(b.w.messages.errors.size(), 2);
    }

    void contactThatCannotBeCopied()
    {
        Bureau b(oneContact(QStringLiteral("ccall=R1A|ttime=1")));
        b.w.installation.sql(QStringLiteral("dbiaru.mdb"),
                             QStringLiteral("CREATE TRIGGER no BEFORE INSERT ON tbllogTEMP BEGIN SELECT "
                                            "RAISE(ABORT,'нельзя'); END"));
        b.doubleClickCell(kLogGrid, 0);
        QCOMPARE(b.w.messages.errors.size(), 1);
        QCOMPARE(b.blank(), QStringList());
        QCOMPARE(b.text("TXTCALL"), QString());
        b.w.installation.sql(QStringLiteral("dbiaru.mdb"), QStringLiteral("DROP TRIGGER no"));
        b.doubleClickCell(kLogGrid, 0);
        QCOMPARE(b.blank(), QStringList("R1A"));
        QCOMPARE(b.w.messages.errors.size(), 1);
    }

    void rowThatCannotBeSavedCanBeGivenUp()
    {
        Bureau b(oneContact(QStringLiteral("ccall=R1A|ttime=1")));
        b.w.installation.sql(QStringLiteral("dbiaru.mdb"),
                             QStringLiteral("CREATE TRIGGER no BEFORE UPDATE ON TBLLOG1 BEGIN SELECT "
                                            "RAISE(ABORT,'нельзя'); END"));
        b.clickCell("DBGrid1", 0, 3);
        b.type("x");
        b.press(Qt::Key_Return);
        QCoreApplication::processEvents();
        b.press(Qt::Key_Escape);
        QCOMPARE(b.w.messages.asked.size(), 1);
        QCOMPARE(b.cell("DBGrid1", 0, 3), QString());
        QCOMPARE(b.w.focus(), QStringLiteral("txtserch"));
        b.window->close();
        QVERIFY(!b.window->isVisible());
        QCOMPARE(b.w.messages.asked.size(), 1);
    }

    void enterInTheListOfCallsignsLeadsToItsContacts()
    {
        Bureau b(oneContact(QStringLiteral("ccall=R1A|ttime=1")));
        b.find<QWidget>("DBList1")->setFocus();
        b.press(Qt::Key_Down);
        b.press(Qt::Key_Return);
        QCOMPARE(b.w.focus(), QStringLiteral("DBGrid1"));
        QVERIFY(!b.column("DBGrid1", 0).isEmpty());
        b.find<QWidget>("DBList1")->setFocus();
        b.press(Qt::Key_Escape);
        QCOMPARE(b.w.focus(), QStringLiteral("txtserch"));
    }
};

QTEST_MAIN(BureauBlankTest)
#include "bureaublank.moc"
