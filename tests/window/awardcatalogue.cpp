// The awards window's catalogue: countries, regions of Russia, awards and their rules; opening and closing.
#include "support/awards.h"

using testsupport::addAward;
using testsupport::Awards;
using testsupport::Installation;
using namespace testsupport::award;

class AwardCatalogueTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void atTheBeginning()
    {
        const Awards a;
        QCOMPARE(a.window->windowTitle(), QStringLiteral("Diplom"));
        QCOMPARE(a.text("Label1"), QStringLiteral("Страна"));
        QCOMPARE(a.text("Label2"), QStringLiteral("Дипломы"));
        QCOMPARE(a.text("Label3"), QStringLiteral("Положение"));
        QCOMPARE(a.text("cmbadd"), QStringLiteral("Новый"));
        QCOMPARE(a.tip("cmbadd"), QStringLiteral("Добавить новый диплом"));
        QCOMPARE(a.text("cmbdel"), QStringLiteral("Удалить"));
        QCOMPARE(a.text("Command1"), QStringLiteral("Выход"));
        QCOMPARE(a.rows(kCountry), QStringList({"FRANCE", "GERMANY", "Россия"}));
        QCOMPARE(a.rows(kRegion), QStringList({"0", "CB", "MA", "NN"}));
        QCOMPARE(a.rows(kAward), QStringList());
        QVERIFY(!a.shown(kRegion));
        QVERIFY(!a.entryShown());
        QCOMPARE(a.lines("TXTDIPTEXT"), QString());
        QCOMPARE(a.w.focus(), QLatin1String(kCountry));
        QVERIFY(a.quiet());
    }

    void exitCloses()
    {
        Awards a;
        a.click("Command1");
        QVERIFY(!a.window->isVisible());
        QVERIFY(a.w.log->isVisible());
        QVERIFY(a.quiet());
    }

    // ---- choosing

    void countryShowsItsAwards()
    {
        Awards a;
        a.clickRow(kCountry, "FRANCE");
        QCOMPARE(a.rows(kAward), QStringList({"DDFM", "DPF"}));
        QCOMPARE(a.text("txtstran1"), QStringLiteral("FRANCE"));
        QCOMPARE(a.lines("TXTDIPTEXT"), QString()); // no award is chosen
        QCOMPARE(a.chosen(kAward), QString());
        QCOMPARE(a.text("Label1"), QStringLiteral("Страна"));
        QCOMPARE(a.text("Label2"), QStringLiteral("Дипломы"));
        QVERIFY(!a.shown(kRegion));
        a.clickRow(kAward, "DPF");
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("провинции"));
        a.clickRow(kAward, "DDFM");
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("департаменты"));
        a.clickRow(kCountry, "GERMANY");
        QCOMPARE(a.rows(kAward), QStringList({"DPF", "WAE"}));
        QCOMPARE(a.lines("TXTDIPTEXT"), QString());
        QCOMPARE(a.text("txtstran1"), QStringLiteral("GERMANY"));
        a.clickRow(kAward, "DPF");
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("второй")); // of this country
        QVERIFY(a.quiet());
    }

    void countryClickedAgainReadsItsAwards()
    {
        Awards a;
        a.clickRow(kCountry, "FRANCE");
        addAward(a.w.installation, "strana=FRANCE|diplom=AAA");
        addAward(a.w.installation, "strana=ITALY|diplom=WAIP");
        a.clickRow(kCountry, "FRANCE");
        QCOMPARE(a.rows(kAward), QStringList({"AAA", "DDFM", "DPF"}));
        QCOMPARE(a.rows(kCountry).size(), 3); // the countries are not read again
    }

    void firstStoredOfOnePair()
    {
        Awards a([](Installation &in) {
            testsupport::awardTables(in);
            addAward(in, "strana=FRANCE|diplom=DPF|diptext=ещё раз");
        });
        a.clickRow(kCountry, "FRANCE");
        QCOMPARE(a.rows(kAward), QStringList({"DDFM", "DPF", "DPF"}));
        a.clickRow(kAward, "DPF");
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("провинции"));
    }

    void catalogueByKeyboard()
    {
        Awards a;
        a.press(Qt::Key_Down);
        if (a.chosen(kCountry) == QLatin1String("FRANCE"))
            a.press(Qt::Key_Down);
        QCOMPARE(a.chosen(kCountry), QStringLiteral("GERMANY"));
        QCOMPARE(a.rows(kAward), QStringList({"DPF", "WAE"}));
        a.press(Qt::Key_Return);
        QCOMPARE(a.w.focus(), QLatin1String(kAward));
        a.press(Qt::Key_Down);
        a.press(Qt::Key_Return);
        QCOMPARE(a.w.focus(), QStringLiteral("TXTDIPTEXT"));
        QCOMPARE(a.lines("TXTDIPTEXT"), a.chosen(kAward) == QLatin1String("WAE") ? QStringLiteral("Европа")
                                                                                 : QStringLiteral("второй"));
        a.find<QWidget>(kCountry)->setFocus();
        a.press(Qt::Key_End);
        QCOMPARE(a.text("Label1"), QStringLiteral("Россия"));
        a.press(Qt::Key_Return);
        QCOMPARE(a.w.focus(), QLatin1String(kRegion));
        a.press(Qt::Key_End);
        a.press(Qt::Key_Up);
        QCOMPARE(a.text("Label2"), QStringLiteral("Москва"));
        a.press(Qt::Key_Return);
        QCOMPARE(a.w.focus(), QLatin1String(kAward));
        a.press(Qt::Key_Return);
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("башни"));
        QVERIFY(a.quiet());
    }

    // ---- regions

    void russiaIsListedByRegion()
    {
        Awards a;
        a.clickRow(kCountry, "Россия");
        QVERIFY(a.shown(kRegion));
        QCOMPARE(a.text("Label1"), QStringLiteral("Россия"));
        QCOMPARE(a.text("Label2"), QStringLiteral("Дипломы")); // no region is chosen
        QCOMPARE(a.rows(kAward), QStringList("Ничей"));        // those without a region
        a.clickRow(kAward, "Ничей");
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("нигде"));
        a.clickRow(kRegion, "MA");
        QCOMPARE(a.text("Label2"), QStringLiteral("Москва"));
        QCOMPARE(a.rows(kAward), QStringList({"Кремль", "Столица"}));
        QCOMPARE(a.text("txtpref1"), QStringLiteral("MA"));
        QCOMPARE(a.lines("TXTDIPTEXT"), QString());
        a.clickRow(kAward, "Столица");
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("москва"));
        QCOMPARE(a.text("TXTPREF"), QStringLiteral("MA"));
        a.clickRow(kRegion, "CB");
        QCOMPARE(a.text("Label2"), QStringLiteral("Челябинск"));
        QCOMPARE(a.rows(kAward), QStringList("Урал"));
        QCOMPARE(a.text("txtpref1"), QStringLiteral("CB"));
        QCOMPARE(a.lines("TXTDIPTEXT"), QString());
        QCOMPARE(a.text("TXTPREF"), QString());
        a.clickRow(kRegion, "NN");
        QCOMPARE(a.rows(kAward), QStringList());
        QCOMPARE(a.text("Label2"), QStringLiteral("ничья"));
        QVERIFY(a.quiet());
    }

    void onlyTheExactNameIsRussia()
    {
        Awards a([](Installation &in) {
            testsupport::awardTables(in);
            in.sql(QLatin1String(kAwards),
                   QStringLiteral(
                       "DELETE FROM tbldiplom WHERE strana='Россия'; INSERT INTO "
                       "tbldiplom(strana,diplom,pref) VALUES('россия','Р','MA'),('Russia','R','MA')"));
        });
        for (const char *country : {"россия", "Russia"}) {
            a.clickRow(kCountry, country);
            QVERIFY(!a.shown(kRegion));
            QCOMPARE(a.text("Label1"), QStringLiteral("Страна"));
            QCOMPARE(a.rows(kAward).size(), 1);
        }
        a.addNew("россия", "Новый", "");
        QCOMPARE(a.awards().constLast(), QStringLiteral("россия|Новый||"));
        QVERIFY(!a.shown(kRegion));
    }

    void anotherCountryLeavesTheRegions()
    {
        Awards a;
        a.clickRow(kCountry, "Россия");
        a.clickRow(kRegion, "MA");
        a.clickRow(kCountry, "FRANCE");
        QVERIFY(a.shown(kRegion));
        QCOMPARE(a.text("Label1"), QStringLiteral("Россия"));
        QCOMPARE(a.text("Label2"), QStringLiteral("Москва"));
        QCOMPARE(a.rows(kAward), QStringList({"DDFM", "DPF"}));
        a.clickRow(kRegion, "CB"); // the list is the country's still
        QCOMPARE(a.text("Label2"), QStringLiteral("Челябинск"));
        QCOMPARE(a.text("txtpref1"), QStringLiteral("CB"));
        QCOMPARE(a.rows(kAward), QStringList({"DDFM", "DPF"}));
        a.clickRow(kAward, "DPF");
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("провинции"));
        addAward(a.w.installation, "strana=FRANCE|diplom=ZZZ");
        a.clickRow(kRegion, "MA");
        QCOMPARE(a.rows(kAward), QStringList({"DDFM", "DPF", "ZZZ"})); // read again all the same
        QCOMPARE(a.lines("TXTDIPTEXT"), QString());
        a.clickRow(kCountry, "Россия");
        QCOMPARE(a.rows(kAward), QStringList({"Кремль", "Столица"}));
        QCOMPARE(a.text("Label2"), QStringLiteral("Москва"));
        QVERIFY(a.quiet());
    }

    void headingLeavesTheRegions_data()
    {
        QTest::addColumn<bool>("mouse");
        QTest::newRow("mouse") << true;
        QTest::newRow("key") << false;
    }
    void headingLeavesTheRegions()
    {
        QFETCH(bool, mouse);
        Awards a;
        const auto leave = [&] {
            if (mouse) {
                a.click("Label1");
            } else {
                a.find<QWidget>("Label1")->setFocus();
                a.press(Qt::Key_Space);
            }
        };
        leave(); // it reads "Страна"
        QCOMPARE(a.text("Label1"), QStringLiteral("Страна"));
        QVERIFY(!a.shown(kRegion));
        a.clickRow(kCountry, "Россия");
        a.clickRow(kRegion, "MA");
        a.clickRow(kAward, "Кремль");
        addAward(a.w.installation, "strana=Россия|diplom=Арбат|pref=MA");
        leave();
        QCOMPARE(a.text("Label1"), QStringLiteral("Страна"));
        QCOMPARE(a.text("Label2"), QStringLiteral("Дипломы"));
        QVERIFY(!a.shown(kRegion));
        QCOMPARE(a.rows(kAward), QStringList({"Кремль", "Столица"})); // not read again
        QCOMPARE(a.chosen(kAward), QStringLiteral("Кремль"));
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("башни"));
        QCOMPARE(a.chosen(kCountry), QStringLiteral("Россия"));
        leave();
        QCOMPARE(a.text("Label1"), QStringLiteral("Страна"));
        a.clickRow(kCountry, "Россия"); // and back
        QVERIFY(a.shown(kRegion));
        QCOMPARE(a.text("Label2"), QStringLiteral("Москва"));
        QCOMPARE(a.rows(kAward), QStringList({"Арбат", "Кремль", "Столица"}));
        QVERIFY(a.quiet());
    }

    // ---- the rules

    void rulesAreStored_data()
    {
        QTest::addColumn<QString>("leave");
        for (const char *way :
             {"another award", "another country", "new", "delete", "exit", "heading", "main window"})
            QTest::newRow(way) << way;
    }
    void rulesAreStored()
    {
        QFETCH(QString, leave);
        Awards a;
        a.clickRow(kCountry, "FRANCE");
        a.clickRow(kAward, "DPF");
        a.write("TXTDIPTEXT", "O'Брайен \"и\" 100%1\n\n\tвторая;--");
        a.w.messages.yes = false;
        if (leave == QLatin1String("another award")) {
            a.clickRow(kAward, "DDFM");
            QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("департаменты"));
        } else if (leave == QLatin1String("another country")) {
            a.clickRow(kCountry, "GERMANY");
        } else if (leave == QLatin1String("new")) {
            a.click("cmbadd");
        } else if (leave == QLatin1String("delete")) {
            a.click("cmbdel");
        } else if (leave == QLatin1String("exit")) {
            a.click("Command1");
        } else if (leave == QLatin1String("heading")) {
            a.find<QWidget>("Label1")->setFocus();
        } else {
            a.w.log->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(a.w.log.get()));
        }
        QCOMPARE(a.awards("diptext"),
                 QStringList({"Европа", "O'Брайен \"и\" 100%1\n\n\tвторая;--", "департаменты", "урал",
                              "москва", "башни", "нигде", "второй"}));
        QCOMPARE(a.messages(), leave == QLatin1String("delete") ? 1 : 0);
    }

    void endsOfLinesStay()
    {
        Awards a;
        a.sql(kAwards, "UPDATE tbldiplom SET diptext='раз'||char(13,10)||'два' WHERE diplom='WAE'");
        a.clickRow(kCountry, "GERMANY");
        a.clickRow(kAward, "WAE");
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("раз\nдва"));
        a.click("TXTDIPTEXT");
        a.click("cmbadd"); // nothing was typed
        QCOMPARE(a.awards("diptext").front(), QStringLiteral("раз\r\nдва"));
        a.click("cmbadd");
        a.click("TXTDIPTEXT");
        a.press(Qt::Key_End, Qt::ControlModifier);
        a.press(Qt::Key_Return);
        a.type("три");
        a.clickRow(kCountry, "FRANCE");
        QCOMPARE(a.awards("diptext").front(), QStringLiteral("раз\r\nдва\r\nтри"));
        QVERIFY(a.quiet());
    }

    void withoutAnAwardNoRulesAreTyped()
    {
        Awards a;
        a.click("TXTDIPTEXT");
        a.type("x");
        QCOMPARE(a.lines("TXTDIPTEXT"), QString());
        a.clickRow(kCountry, "FRANCE");
        a.click("TXTDIPTEXT");
        a.type("x");
        QCOMPARE(a.lines("TXTDIPTEXT"), QString());
        a.click("Command1");
        QCOMPARE(a.awards().size(), kStored);
        QVERIFY(a.quiet());
    }

    void rulesThatCannotBeSaved()
    {
        Awards a;
        a.clickRow(kCountry, "GERMANY");
        a.clickRow(kAward, "WAE");
        a.sql(kAwards, kForbidUpdates);
        a.write("TXTDIPTEXT", "новое");
        a.find<QWidget>("cmbadd")->setFocus();
        QVERIFY(!a.status().isEmpty());
        QVERIFY(a.quiet());
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("новое"));
        a.clickRow(kAward, "DPF");
        QCOMPARE(a.messages(), 1);
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("новое")); // nothing typed goes in silence
        a.w.messages.yes = false;
        a.window->close();
        QVERIFY(a.window->isVisible());
        QCOMPARE(a.w.messages.asked,
                 QStringList(QStringLiteral("Zhurnal: Правка не сохранена. Закрыть окно без неё?")));
        QCOMPARE(a.w.messages.errors.size(), 2);
        a.sql(kAwards, "DROP TRIGGER no");
        a.clickRow(kAward, "DPF");
        QCOMPARE(a.awards("diptext").front(), QStringLiteral("новое")); // in the award it was typed for
        QCOMPARE(a.awards("diptext").constLast(), QStringLiteral("второй"));
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("второй"));
        QCOMPARE(a.w.messages.errors.size(), 2);
        a.window->close();
        QVERIFY(!a.window->isVisible());
    }

    void closedWithoutTheRules()
    {
        Awards a;
        a.clickRow(kCountry, "GERMANY");
        a.clickRow(kAward, "WAE");
        a.sql(kAwards, kForbidUpdates);
        a.write("TXTDIPTEXT", "новое");
        a.window->close();
        QVERIFY(!a.window->isVisible());
        QCOMPARE(a.w.messages.asked.size(), 1);
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.awards("diptext").front(), QStringLiteral("Европа"));
        a.sql(kAwards, "DROP TRIGGER no");
        a.reopen();
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("Европа"));
    }

    // ---- closing

    void closingWithATypedAwardAsks_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<bool>("asks");
        QTest::newRow("name") << "TXTDIPL1" << true;
        QTest::newRow("rules") << "txtpol1" << true;
        QTest::newRow("country alone") << "txtstran1" << false;
    }
    void closingWithATypedAwardAsks()
    {
        QFETCH(QString, box);
        QFETCH(bool, asks);
        Awards a;
        a.click("cmbadd");
        a.click(qPrintable(box));
        a.type("x");
        a.w.messages.yes = false;
        a.click("Command1");
        QCOMPARE(a.window->isVisible(), asks);
        QCOMPARE(a.w.messages.asked.size(), asks ? 1 : 0);
        if (!asks)
            return;
        QCOMPARE(a.w.messages.asked.front(),
                 QStringLiteral("Zhurnal: Новый диплом не записан. Закрыть окно без него?"));
        QVERIFY(a.entryShown());
        a.w.messages.yes = true;
        a.window->close();
        QVERIFY(!a.window->isVisible());
        QCOMPARE(a.awards().size(), kStored);
    }

    void closingWithEmptyBoxesDoesNotAsk()
    {
        Awards a;
        a.click("cmbadd");
        a.window->close();
        QVERIFY(!a.window->isVisible());
        QVERIFY(a.quiet());
    }

    void closingAfterGivingUpDoesNotAsk()
    {
        Awards a;
        a.click("cmbadd");
        a.write("txtpol1", "набрано");
        a.click("cmbadd"); // without a name: given up
        a.window->close();
        QVERIFY(!a.window->isVisible());
        QVERIFY(a.quiet());
    }

    void secondOpening()
    {
        Awards a;
        a.clickRow(kCountry, "Россия");
        a.clickRow(kRegion, "MA");
        a.clickRow(kAward, "Кремль");
        a.sql("dbrusdx.mdb", "INSERT INTO tblrus(pref,gorod,prf) VALUES('1O','Архангельск','AR')");
        a.reopen();
        QCOMPARE(a.rows(kRegion), QStringList({"0", "AR", "CB", "MA", "NN"}));
        QCOMPARE(a.chosen(kRegion), QStringLiteral("MA"));
        QCOMPARE(a.chosen(kAward), QStringLiteral("Кремль"));
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("башни"));
        QCOMPARE(a.w.focus(), QLatin1String(kRegion));
        QVERIFY(a.quiet());
    }

    void missingFiles_data()
    {
        QTest::addColumn<QString>("file");
        for (const char *file : {"dbdiplom.mdb", "dbrusdx.mdb", "dbdxcc1.mdb", "dbcalbuk.mdb"})
            QTest::newRow(file) << file;
    }
    void missingFiles()
    {
        QFETCH(QString, file);
        Awards a([&file](const Installation &in) {
            testsupport::awardTables(in);
            testsupport::addLog(in, "ccall=DL1AA|contr=GERMANY|ttime=12:00");
            if (!QFile::remove(in.file(file)))
                qFatal("not removed");
        });
        QCOMPARE(a.w.messages.errors.size(), 1);
        QVERIFY2(a.w.messages.errors.front().contains(file), qPrintable(a.w.messages.errors.front()));
        const bool catalogue = file != QLatin1String(kAwards);
        QCOMPARE(a.rows(kCountry).size(), catalogue ? 3 : 0);
        if (catalogue) {
            a.clickRow(kCountry, "FRANCE");
            QCOMPARE(a.rows(kAward), QStringList({"DDFM", "DPF"}));
        }
        a.click("cmbdxcc");
        a.click("cmbdxcc");
        a.doubleClickCell("DBGrid1", 0);
        QCOMPARE(a.blank(), QStringList("DL1AA"));
        a.click("cmbadd");
        a.enter("TXTDIPL1", "имя");
        a.click("cmbadd");
        QVERIFY(catalogue || a.text("TXTDIPL1") == QStringLiteral("имя"));
        QVERIFY(!QFile::exists(a.w.installation.file(file)));
        a.window->close();
        QVERIFY(!a.window->isVisible());
    }
};

QTEST_MAIN(AwardCatalogueTest)
#include "awardcatalogue.moc"
