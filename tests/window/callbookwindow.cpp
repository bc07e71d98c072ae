// The callbook window: texts, look-up by typing and from the list, making a record.
#include "support/reference.h"

using testsupport::addLog;
using testsupport::addRecord;
using testsupport::Callbook;
using testsupport::callbookTables;
using testsupport::Installation;
using testsupport::kFullRecord;
using testsupport::sendKey;

namespace {

constexpr auto kList = "DBList1";
constexpr auto kNoRecord = "|||||||||";
constexpr auto kNoLog = "|||";

const QStringList kCalls = {"DL1AA", "DL1AB", "F5AB", "ON4A", "UA3ABC"};

} // namespace

class CallbookWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- at the beginning

    void captionsAndTips()
    {
        const Callbook c;
        QCOMPARE(c.window->windowTitle(), QStringLiteral("База "));
        QCOMPARE(c.labelOf("txtserch"), QStringLiteral("Найти"));
        const QList<std::pair<const char *, QString>> labels = {
            {"txtlogcall", "Call"},      {"txtlogname", "Name"},  {"txtlogqth", "QTH"},
            {"txtlogqslvia", "QSL Via"}, {"txtccall", "Call"},    {"txtfam", "Фамилия"},
            {"txtnname", "Имя"},         {"txtotch", "Отчество"}, {"txtindeks", "Индекс"},
            {"txtobl", "Область"},       {"txtqth", "Город"},     {"txtadres", "Адресс"},
            {"txttelefon", "Телефон"},   {"txtqslvia", "QSL Via"}};
        for (const auto &[name, label] : labels) {
            QCOMPARE(c.labelOf(name), label);
            QCOMPARE(c.frameOf(name), QString::fromLatin1(name).startsWith(QLatin1String("txtlog"))
                                          ? QStringLiteral("LOG")
                                          : QStringLiteral("База"));
        }
        QCOMPARE(c.text("cmbadd"), QStringLiteral("Добавить"));
        QCOMPARE(c.tip("cmbadd"),
                 QStringLiteral("1. Набрать в окне (Найти) позывной  2. Нажать кнопку (Добавить)"));
        QCOMPARE(c.text("Command1"), QStringLiteral("Закрыть"));
        for (const char *line : {"Чтобы добавить новую инфо", "1. набрать в окне (Найти) позывной",
                                 "2. Нажать кнопку (Добавить)", "3. Затем можно изменять инфо в базе",
                                 "PS - Адресс - не более 50 знаков"})
            QVERIFY2(c.hasLabel(line), line);
    }

    void atTheBeginning()
    {
        const Callbook c;
        QCOMPARE(c.rows(kList), kCalls); // each once, in the order of the alphabet
        QCOMPARE(c.boxes(), QLatin1String(kNoRecord));
        QCOMPARE(c.logFrame(), QLatin1String(kNoLog));
        QCOMPARE(c.text("txtserch"), QString());
        QCOMPARE(c.w.focus(), QStringLiteral("txtserch"));
        QCOMPARE(c.status(), QString());
        QVERIFY(c.quiet());
    }

    void newInstallation()
    {
        Callbook c([](Installation &) {});
        QCOMPARE(c.rows(kList), QStringList());
        c.type("r1aa");
        QCOMPARE(c.logFrame(), QStringLiteral("R1AA|||"));
        c.click("cmbadd");
        QCOMPARE(c.records(), QStringList("R1AA|||||||||"));
        QVERIFY(c.quiet());
    }

    void closing()
    {
        Callbook c;
        c.click("Command1");
        QVERIFY(!c.window->isVisible());
        c.reopen();
        QCOMPARE(c.w.focus(), QStringLiteral("txtserch"));
        c.press(Qt::Key_Escape);
        QVERIFY(!c.window->isVisible());
        QVERIFY(c.w.log->isVisible());
        QVERIFY(c.quiet());
    }

    // ---- look-up

    void everyKeyLooksUp()
    {
        Callbook c;
        struct Step {
            const char *key;
            const char *text;
            QStringList calls;
            const char *log;
        };
        const QList<Step> steps = {
            {"d", "D", {"DL1AA", "DL1AB"}, "D|||"},
            {"l", "DL", {"DL1AA", "DL1AB"}, "DL|||"},
            {"1", "DL1", {"DL1AA", "DL1AB"}, "DL1|||"},
            {"a", "DL1A", {"DL1AA", "DL1AB"}, "DL1A|||"},
            {"a", "DL1AA", {"DL1AA"}, "DL1AA|HANNES|KOELN|DK1XX"},
            {"x", "DL1AAX", {}, "DL1AAX|||"},
        };
        for (const Step &step : steps) {
            c.type(step.key);
            QCOMPARE(c.text("txtserch"), QLatin1String(step.text));
            QCOMPARE(c.rows(kList), step.calls);
            QCOMPARE(c.logFrame(), QLatin1String(step.log));
        }
        c.press(Qt::Key_Backspace);
        QCOMPARE(c.rows(kList), QStringList("DL1AA"));
        QCOMPARE(c.logFrame(), QStringLiteral("DL1AA|HANNES|KOELN|DK1XX"));
        for (int i = 0; i < 5; ++i)
            c.press(Qt::Key_Backspace);
        QCOMPARE(c.rows(kList), kCalls);
        QCOMPARE(c.logFrame(), QLatin1String(kNoLog));
        QVERIFY(c.quiet());
    }

    void recordIsShown()
    {
        Callbook c;
        c.type("ua3ab");
        QCOMPARE(c.boxes(), QLatin1String(kNoRecord));
        c.type("c");
        QCOMPARE(c.boxes(), QString::fromUtf8(kFullRecord));
        QCOMPARE(c.logFrame(), QStringLiteral("UA3ABC|ОЛЕГ|МОСКВА|R3X"));
        c.type("d");
        QCOMPARE(c.boxes(), QLatin1String(kNoRecord));
        QCOMPARE(c.logFrame(), QStringLiteral("UA3ABCD|||"));
        c.lookUp("g3xyz"); // in the callbook, not in the log
        QCOMPARE(c.boxes(), QStringLiteral("G3XYZ||John|||||||"));
        QCOMPARE(c.logFrame(), QStringLiteral("G3XYZ|||"));
        QCOMPARE(c.rows(kList), QStringList());
    }

    void lastTextOfTheTableCounts()
    {
        Callbook c([](Installation &in) {
            callbookTables(in);
            // In the order in which they were stored, not of their dates; each field for itself.
            addLog(in, "ccall=R1A|nname=A|qth=X|qslvia=|ddate=01.01.09");
            addLog(in, "ccall=r1a|nname=|qth=Y|qslvia=V|ddate=01.01.08");
            addLog(in, "ccall=R1A|nname=B|qth=|qslvia=|ddate=01.01.07");
            addLog(in, "ccall=R1AB|nname=Z|qth=Z|qslvia=Z");
        });
        c.lookUp("r1a");
        QCOMPARE(c.logFrame(), QStringLiteral("R1A|B|Y|V"));
        c.lookUp("f5ab"); // nothing of the station before stays
        QCOMPARE(c.logFrame(), QStringLiteral("F5AB|||"));
    }

    void nullsAreEmptyTexts()
    {
        Callbook c([](Installation &in) {
            callbookTables(in);
            in.sql(QStringLiteral("dbcalbuk.mdb"),
                   QStringLiteral("INSERT INTO tblcalbuk(ccall,fam,nname,otch,indeks,obl,qth,adres,telefon,"
                                  "qslvia) VALUES('R1A',NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL,NULL)"));
            in.sql(QStringLiteral("dbiaru.mdb"),
                   QStringLiteral("INSERT INTO TBLLOG1(ccall,nname,qth,qslvia) VALUES('R1A','A','B','C'),"
                                  "('R1A',NULL,NULL,NULL)"));
        });
        c.type("r1a");
        QCOMPARE(c.logFrame(), QStringLiteral("R1A|A|B|C"));
        QCOMPARE(c.boxes(), QStringLiteral("R1A|||||||||"));
        c.enter("txtfam", "Иванов");
        c.press(Qt::Key_Tab);
        QCOMPARE(c.record("R1A", "fam"), QStringLiteral("Иванов"));
        QVERIFY(c.quiet());
    }

    void blankBehindTheCallsign()
    {
        Callbook c;
        c.type("ua3abc "); // equals the stored one
        QCOMPARE(c.boxes(), QString::fromUtf8(kFullRecord));
        c.click("cmbadd");
        QCOMPARE(c.records().size(), 2);
    }

    void firstStoredOfTwoRecords()
    {
        Callbook c([](Installation &in) {
            callbookTables(in);
            addRecord(in, "ccall=F5AB|fam=Первый");
            addRecord(in, "ccall=F5AB|fam=Второй");
        });
        c.lookUp("f5ab");
        QCOMPARE(c.text("txtfam"), QStringLiteral("Первый"));
        c.click("txtfam");
        c.press(Qt::Key_End);
        c.type("x");
        c.press(Qt::Key_Tab);
        QCOMPARE(c.records("fam").mid(2), QStringList({"Первыйx", "Второй"}));
    }

    void everyKeyReleasedLooksUp()
    {
        Callbook c;
        c.type("dl1a");
        c.clickRow(kList, "DL1AA");
        QCOMPARE(c.logFrame(), QStringLiteral("DL1AA|HANNES|KOELN|DK1XX"));
        c.click("txtserch");
        QCOMPARE(c.text("txtlogcall"), QStringLiteral("DL1AA"));
        c.press(Qt::Key_Left); // any key
        QCOMPARE(c.logFrame(), QStringLiteral("DL1A|||"));
    }

    void keyOfAnotherBox()
    {
        Callbook c;
        c.type("dl1");
        c.clickRow(kList, "DL1AB");
        c.click("txtlogname");
        sendKey(QTest::Press, Qt::Key_X, QStringLiteral("x"));
        c.click("txtserch");
        sendKey(QTest::Release, Qt::Key_X, QStringLiteral("x")); // no key of the search
        QCOMPARE(c.text("txtserch"), QStringLiteral("DL1"));
        QCOMPARE(c.text("txtlogcall"), QStringLiteral("DL1AB"));
        QCOMPARE(c.rows(kList), QStringList({"DL1AA", "DL1AB"}));
    }

    void quickTyping()
    {
        Callbook c;
        sendKey(QTest::Press, Qt::Key_O, QStringLiteral("o"));
        sendKey(QTest::Press, Qt::Key_N, QStringLiteral("n"));
        sendKey(QTest::Release, Qt::Key_O, QStringLiteral("o"));
        QCOMPARE(c.text("txtlogcall"), QStringLiteral("ON"));
        sendKey(QTest::Press, Qt::Key_4, QStringLiteral("4"));
        sendKey(QTest::Release, Qt::Key_N, QStringLiteral("n"));
        sendKey(QTest::Release, Qt::Key_4, QStringLiteral("4"));
        sendKey(QTest::Press, Qt::Key_A, QStringLiteral("a"));
        sendKey(QTest::Press, Qt::Key_Return, QStringLiteral("\r")); // the letter is still down
        QCOMPARE(c.logFrame(), QStringLiteral("ON4A|JAN|GENT|ON5X"));
        QCOMPARE(c.w.focus(), QStringLiteral("cmbadd"));
        sendKey(QTest::Release, Qt::Key_A, QStringLiteral("a"));
        sendKey(QTest::Release, Qt::Key_Return, QStringLiteral("\r"));
        c.press(Qt::Key_Space);
        QCOMPARE(c.record("ON4A"), QStringLiteral("ON4A||JAN||||GENT|||ON5X"));
    }

    void buttonWithALetterStillDown()
    {
        Callbook c;
        c.type("on4");
        sendKey(QTest::Press, Qt::Key_A, QStringLiteral("a"));
        c.click("cmbadd");
        QCOMPARE(c.records("ccall").mid(2), QStringList("ON4A"));
        QCOMPARE(c.record("ON4A"), QStringLiteral("ON4A||JAN||||GENT|||ON5X"));
    }

    void pasteLooksUp()
    {
        Callbook c;
        c.paste("dl1aa");
        QCOMPARE(c.text("txtserch"), QStringLiteral("DL1AA"));
        QCOMPARE(c.logFrame(), QStringLiteral("DL1AA|HANNES|KOELN|DK1XX"));
        QCOMPARE(c.rows(kList), QStringList("DL1AA"));
    }

    void cyrillicCallsign()
    {
        Callbook c([](Installation &in) {
            callbookTables(in);
            addLog(in, "ccall=ЁЖ1А|nname=ИМЯ");
            addRecord(in, "ccall=ёж1а|fam=Иголкин");
        });
        c.type("ёж1а");
        QCOMPARE(c.text("txtserch"), QStringLiteral("ЁЖ1А"));
        QCOMPARE(c.rows(kList), QStringList("ЁЖ1А"));
        QCOMPARE(c.logFrame(), QStringLiteral("ЁЖ1А|ИМЯ||"));
        QCOMPARE(c.text("txtfam"), QStringLiteral("Иголкин")); // without regard to case
    }

    void emptySearchFindsWhatHasNoCallsign()
    {
        Callbook c([](Installation &in) {
            callbookTables(in);
            addRecord(in, "ccall=|fam=Ничей");
        });
        QCOMPARE(c.boxes(), QLatin1String(kNoRecord));
        c.type("x");
        c.press(Qt::Key_Backspace);
        QCOMPARE(c.text("txtfam"), QStringLiteral("Ничей")); // the text is looked up whatever it is
        QCOMPARE(c.text("txtlogcall"), QString());
    }

    void statementsOfAKey()
    {
        Callbook c;
        const auto statements = [&] {
            const auto of = [&](const char *file) {
                return c.w.installation.databases.connection(c.w.installation.file(QLatin1String(file)))
                    .statementCount();
            };
            return std::pair{of("dbiaru.mdb"), of("dbcalbuk.mdb")};
        };
        c.type("dl1");
        const auto before = statements();
        c.type("a");
        const auto after = statements();
        QCOMPARE(c.rows(kList), QStringList({"DL1AA", "DL1AB"}));
        QCOMPARE(after.first - before.first, qint64{2}); // contacts with the station, list of callsigns
        QCOMPARE(after.second - before.second, qint64{1});
    }

    // ---- list

    void clickLooksUp()
    {
        Callbook c;
        c.clickRow(kList, "UA3ABC");
        QCOMPARE(c.logFrame(), QStringLiteral("UA3ABC|ОЛЕГ|МОСКВА|R3X"));
        QCOMPARE(c.boxes(), QString::fromUtf8(kFullRecord));
        QCOMPARE(c.text("txtserch"), QString()); // the list and its search stay
        QCOMPARE(c.rows(kList), kCalls);
        c.clickRow(kList, "DL1AA");
        QCOMPARE(c.logFrame(), QStringLiteral("DL1AA|HANNES|KOELN|DK1XX"));
        QCOMPARE(c.boxes(), QLatin1String(kNoRecord));
        c.clickRow(kList, "F5AB");
        QCOMPARE(c.logFrame(), QStringLiteral("F5AB|||"));
        QVERIFY(c.quiet());
    }

    void emptyEntryClicked()
    {
        Callbook c([](Installation &in) {
            callbookTables(in);
            addLog(in, "ccall=|nname=НИЧЕЙ|qth=НИГДЕ");
        });
        QCOMPARE(c.rows(kList), QStringList("") + kCalls);
        c.clickRow(kList, "UA3ABC");
        c.clickRow(kList, "");
        QCOMPARE(c.logFrame(), QStringLiteral("UA3ABC|||")); // nothing is looked up
        QCOMPARE(c.boxes(), QString::fromUtf8(kFullRecord));
        QVERIFY(c.quiet());
    }

    void longList()
    {
        Callbook c([](Installation &in) {
            in.sql(QStringLiteral("dbiaru.mdb"),
                   QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE "
                                  "i<3000) INSERT INTO TBLLOG1(ccall,nname) SELECT printf('R%04d',i),i "
                                  "FROM n"));
        });
        c.type("r");
        c.press(Qt::Key_Down);
        c.type("r2999"); // typed letters find a row that has not been read yet
        QCOMPARE(c.logFrame(), QStringLiteral("R2999|2999||"));
        c.press(Qt::Key_Down);
        QCOMPARE(c.logFrame(), QStringLiteral("R3000|3000||"));
        QCOMPARE(c.rows(kList).size(), 3000);
    }

    void listByKeyboard()
    {
        Callbook c;
        c.type("dl");
        c.press(Qt::Key_Down);
        QCOMPARE(c.w.focus(), QLatin1String(kList));
        QCOMPARE(c.text("txtserch"), QStringLiteral("DL"));
        QCOMPARE(c.logFrame(), QStringLiteral("DL1AA|HANNES|KOELN|DK1XX")); // the first one at once
        c.press(Qt::Key_End);
        QCOMPARE(c.logFrame(), QStringLiteral("DL1AB|KARL|BONN|"));
        c.press(Qt::Key_Up);
        QCOMPARE(c.logFrame(), QStringLiteral("DL1AA|HANNES|KOELN|DK1XX"));
    }

    /// Tab shows where the keyboard is, and the first station is not passed over.
    void listByTab()
    {
        Callbook c;
        c.type("dl");
        c.press(Qt::Key_Tab);
        QCOMPARE(c.w.focus(), QLatin1String(kList));
        QCOMPARE(c.logFrame(), QStringLiteral("DL|||"));
        c.press(Qt::Key_Down);
        QCOMPARE(c.logFrame(), QStringLiteral("DL1AA|HANNES|KOELN|DK1XX"));
        c.press(Qt::Key_Down);
        QCOMPARE(c.logFrame(), QStringLiteral("DL1AB|KARL|BONN|"));
    }

    // ---- "Добавить"

    void addTakesOverTheLog()
    {
        Callbook c;
        c.type("on4a");
        c.click("cmbadd");
        QCOMPARE(c.record("ON4A"), QStringLiteral("ON4A||JAN||||GENT|||ON5X"));
        QCOMPARE(c.records().size(), 3);
        QCOMPARE(c.boxes(), QStringLiteral("ON4A||JAN||||GENT|||ON5X"));
        QCOMPARE(c.w.focus(), QStringLiteral("txtfam"));
        QVERIFY(c.quiet());
        c.type("Janssens"); // the rest is typed straight into the boxes
        c.press(Qt::Key_Tab);
        QCOMPARE(c.record("ON4A"), QStringLiteral("ON4A|Janssens|JAN||||GENT|||ON5X"));
        QCOMPARE(c.record("UA3ABC"), QString::fromUtf8(kFullRecord));
    }

    void addAStationThatIsNotInTheLog()
    {
        Callbook c;
        c.type("r1zz");
        c.click("cmbadd");
        QCOMPARE(c.record("R1ZZ"), QStringLiteral("R1ZZ|||||||||"));
        QCOMPARE(c.boxes(), QStringLiteral("R1ZZ|||||||||"));
        QCOMPARE(c.w.focus(), QStringLiteral("txtfam"));
        QVERIFY(c.quiet());
    }

    void addAStationThatHasARecord()
    {
        Callbook c;
        c.type("ua3abc");
        c.click("cmbadd");
        QCOMPARE(c.records().size(), 2);
        QCOMPARE(c.records().front(), QString::fromUtf8(kFullRecord));
        QCOMPARE(c.status(), QString()); // nothing is said
        c.lookUp("on4a");
        c.click("cmbadd");
        c.click("cmbadd"); // it has one now
        QCOMPARE(c.records().size(), 3);
        QVERIFY(c.quiet());
    }

    void addWithoutAStation()
    {
        Callbook c;
        c.click("cmbadd");
        c.type("x");
        c.click("txtserch");
        c.press(Qt::Key_Backspace);
        c.click("cmbadd");
        QCOMPARE(c.records().size(), 2);
        QCOMPARE(c.status(), QString());
        QVERIFY(c.quiet());
    }

    void addNeedsTenEmptyBoxes_data()
    {
        QTest::addColumn<QString>("field");
        for (const QString &field :
             QString::fromLatin1(testsupport::kRecordFields).split(QLatin1Char(',')).mid(1))
            QTest::newRow(qPrintable(field)) << field;
    }
    void addNeedsTenEmptyBoxes()
    {
        QFETCH(QString, field);
        Callbook c([&field](Installation &in) {
            callbookTables(in);
            addRecord(in, qPrintable(QStringLiteral("ccall=ON4A|%1=x").arg(field)));
            // A record of which the callsign has been taken away: only this field tells that it is there.
            addRecord(in, qPrintable(QStringLiteral("ccall=|%1=x").arg(field)));
        });
        c.type("on4a");
        c.click("cmbadd");
        QCOMPARE(c.records().size(), 4);
        c.click("txtccall");
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.press(Qt::Key_Delete);
        QCOMPARE(c.text("txtlogcall"), QStringLiteral("ON4A"));
        c.click("cmbadd");
        QCOMPARE(c.records().size(), 4);
        QCOMPARE(c.records("ccall").mid(2), QStringList({"", ""}));
        QVERIFY(c.quiet());
    }

    void addTheClickedStation()
    {
        Callbook c;
        c.type("d");
        c.clickRow(kList, "DL1AB");
        c.click("cmbadd");
        QCOMPARE(c.records("ccall").mid(2), QStringList("DL1AB")); // not what stands in the search
        QCOMPARE(c.record("DL1AB"), QStringLiteral("DL1AB||KARL||||BONN|||"));
    }

    void logFrameCorrectedBeforeAdding()
    {
        Callbook c;
        c.type("on4a");
        c.enter("txtlogname", "Jan");
        c.press(Qt::Key_Return);
        QCOMPARE(c.w.focus(), QStringLiteral("txtlogqth"));
        c.press(Qt::Key_Delete); // Enter has selected the text, as Tab does
        c.press(Qt::Key_Return);
        QCOMPARE(c.w.focus(), QStringLiteral("txtlogqslvia"));
        c.type("on9z");
        c.press(Qt::Key_Return);
        QCOMPARE(c.w.focus(), QStringLiteral("cmbadd"));
        c.press(Qt::Key_Return);
        QCOMPARE(c.record("ON4A"), QStringLiteral("ON4A||Jan|||||||ON9Z"));
        // The log has not been touched.
        QCOMPARE(c.w.installation.rows(QStringLiteral("dbiaru.mdb"),
                                       QStringLiteral("SELECT nname,qth,qslvia FROM TBLLOG1 "
                                                      "WHERE ccall='ON4A'")),
                 QStringList("JAN|GENT|ON5X"));
    }

    void callOfTheLogIsOnlyShown()
    {
        Callbook c;
        c.type("on4a");
        c.click("txtlogcall");
        c.type("x");
        c.press(Qt::Key_Backspace);
        QCOMPARE(c.text("txtlogcall"), QStringLiteral("ON4A"));
        QVERIFY(c.find("txtlogcall")->isReadOnly());
    }

    // ---- without a mouse

    void enterOfTheSearch()
    {
        Callbook c;
        c.type("on4a");
        c.press(Qt::Key_Return);
        QCOMPARE(c.w.focus(), QStringLiteral("cmbadd"));
        c.press(Qt::Key_Return);
        QCOMPARE(c.w.focus(), QStringLiteral("txtfam"));
        c.setFocus("txtserch");
        c.press(Qt::Key_Return);
        QCOMPARE(c.w.focus(), QStringLiteral("txtfam")); // it has a record now
        QCOMPARE(c.records().size(), 3);
    }

    void enterGoesFromBoxToBox()
    {
        Callbook c;
        c.type("ua3abc");
        c.click("txtccall");
        for (const char *box : {"txtfam", "txtnname", "txtotch", "txtindeks", "txtobl", "txtqth", "txtadres",
                                "txttelefon", "txtqslvia", "txtserch"}) {
            c.press(Qt::Key_Return);
            QCOMPARE(c.w.focus(), QLatin1String(box));
        }
        QCOMPARE(c.record("UA3ABC"), QString::fromUtf8(kFullRecord)); // going through changes nothing
    }
};

QTEST_MAIN(CallbookWindowTest)
#include "callbookwindow.moc"
