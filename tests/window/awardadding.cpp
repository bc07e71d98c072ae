// The awards window's catalogue: adding and deleting awards, names with apostrophes, failures.
#include "support/awards.h"

using testsupport::addAward;
using testsupport::Awards;
using testsupport::Installation;
using namespace testsupport::award;

class AwardAddingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- adding

    void firstPressShowsTheBoxes()
    {
        Awards a;
        a.clickRow(kCountry, "FRANCE");
        a.clickRow(kAward, "DPF");
        a.click("cmbadd");
        QVERIFY(a.entryShown());
        QCOMPARE(a.w.focus(), QStringLiteral("txtstran1"));
        QCOMPARE(a.text("txtstran1"), QStringLiteral("FRANCE"));
        QCOMPARE(a.text("TXTDIPL1"), QString());
        QCOMPARE(a.lines("txtpol1"), QString());
        a.press(Qt::Key_Return);
        QCOMPARE(a.w.focus(), QStringLiteral("TXTDIPL1"));
        a.press(Qt::Key_Return);
        QCOMPARE(a.w.focus(), QStringLiteral("txtpol1"));
        a.type("1");
        a.press(Qt::Key_Return); // a line of the rules
        a.type("2");
        QCOMPARE(a.lines("txtpol1"), QStringLiteral("1\n2"));
        QCOMPARE(a.awards().size(), kStored);
        QVERIFY(a.quiet());
    }

    void emptyNameStoresNothing()
    {
        Awards a;
        a.clickRow(kCountry, "FRANCE");
        a.click("cmbadd");
        a.click("cmbadd");
        QVERIFY(!a.entryShown());
        QCOMPARE(a.w.focus(), QLatin1String(kCountry));
        QCOMPARE(a.awards().size(), kStored);
        a.click("cmbadd");
        a.write("txtpol1", "набрано");
        a.click("cmbadd");
        QVERIFY(!a.entryShown());
        QCOMPARE(a.awards().size(), kStored);
        QVERIFY(!a.status().isEmpty()); // what was typed can be had back
        a.click("cmbadd");
        QCOMPARE(a.lines("txtpol1"), QString()); // the first press has emptied it
        a.click("txtpol1");
        a.press(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(a.lines("txtpol1"), QStringLiteral("набрано"));
        a.clickRow(kCountry, "Россия");
        a.click("cmbadd");
        QVERIFY(!a.entryShown());
        QCOMPARE(a.w.focus(), QLatin1String(kRegion));
        QCOMPARE(a.awards().size(), kStored);
        QVERIFY(a.quiet());
    }

    void awardOfTheChosenCountry()
    {
        Awards a;
        a.clickRow(kCountry, "FRANCE");
        a.clickRow(kAward, "DPF");
        addAward(a.w.installation, "strana=ITALY|diplom=WAIP");
        a.click("cmbadd");
        a.enter("TXTDIPL1", "Côte \"d'Azur\" 100%1");
        a.write("txtpol1", "O'K\nстрока 2");
        a.click("cmbadd");
        QCOMPARE(a.awards().constLast(), QStringLiteral("FRANCE|Côte \"d'Azur\" 100%1||O'K\nстрока 2"));
        QCOMPARE(a.awards().size(), kStored + 2);
        QCOMPARE(a.rows(kAward), QStringList({"Côte \"d'Azur\" 100%1", "DDFM", "DPF"}));
        QCOMPARE(a.rows(kCountry), QStringList({"FRANCE", "GERMANY", "Россия"})); // not read again
        QCOMPARE(a.chosen(kCountry), QStringLiteral("FRANCE"));
        QCOMPARE(a.lines("TXTDIPTEXT"), QString()); // none is chosen
        QVERIFY(!a.entryShown());
        QCOMPARE(a.text("txtstran1"), QString());
        QCOMPARE(a.text("TXTDIPL1"), QString());
        QCOMPARE(a.lines("txtpol1"), QString());
        QCOMPARE(a.w.focus(), QLatin1String(kCountry));
        QVERIFY(a.quiet());
    }

    void awardOfANewCountry()
    {
        Awards a;
        a.clickRow(kCountry, "FRANCE");
        a.addNew("Япония", "JCC", "города");
        QCOMPARE(a.awards().constLast(), QStringLiteral("Япония|JCC||города"));
        QCOMPARE(a.rows(kCountry), QStringList({"FRANCE", "GERMANY", "Россия", "Япония"}));
        QCOMPARE(a.chosen(kCountry), QStringLiteral("Япония"));
        QCOMPARE(a.rows(kAward), QStringList("JCC"));
        QCOMPARE(a.w.focus(), QLatin1String(kCountry));
        a.clickRow(kAward, "JCC");
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("города"));
        a.addNew("FRANCE", "AAA", ""); // a country that is there, another than the chosen one
        QCOMPARE(a.rows(kAward), QStringList({"AAA", "DDFM", "DPF"}));
        QCOMPARE(a.chosen(kCountry), QStringLiteral("FRANCE"));
        a.addNew("", "без страны", "");
        QCOMPARE(a.awards().constLast(), QStringLiteral("|без страны||"));
        QVERIFY(a.quiet());
    }

    void firstAwardOfAll()
    {
        Awards a([](Installation &in) {
            testsupport::smallTables(in);
            in.sql(QLatin1String(kAwards), QStringLiteral("DELETE FROM tbldiplom"));
        });
        QCOMPARE(a.rows(kCountry), QStringList());
        a.addNew("FRANCE", "DPF", "x");
        QCOMPARE(a.rows(kCountry), QStringList("FRANCE"));
        QCOMPARE(a.rows(kAward), QStringList("DPF"));
        QVERIFY(a.quiet());
    }

    void russianAward()
    {
        Awards a;
        a.clickRow(kCountry, "Россия");
        a.clickRow(kRegion, "MA");
        a.click("cmbadd");
        QCOMPARE(a.w.focus(), QStringLiteral("txtstran1"));
        a.enter("TXTDIPL1", "Арбат");
        a.write("txtpol1", "улица");
        a.click("cmbadd");
        QCOMPARE(a.awards().constLast(), QStringLiteral("Россия|Арбат|MA|улица"));
        QCOMPARE(a.rows(kAward), QStringList({"Арбат", "Кремль", "Столица"}));
        QCOMPARE(a.text("Label2"), QStringLiteral("Москва"));
        QCOMPARE(a.w.focus(), QLatin1String(kRegion));
        // The region that is chosen at the second press.
        a.click("cmbadd");
        a.enter("txtstran1", "Россия");
        a.enter("TXTDIPL1", "Таганай");
        a.clickRow(kRegion, "CB");
        QCOMPARE(a.text("TXTDIPL1"), QStringLiteral("Таганай"));
        a.click("cmbadd");
        QCOMPARE(a.awards().constLast(), QStringLiteral("Россия|Таганай|CB|"));
        QCOMPARE(a.rows(kAward), QStringList({"Таганай", "Урал"}));
        QVERIFY(a.quiet());
    }

    void russianAwardWithoutARegion()
    {
        Awards a;
        a.clickRow(kCountry, "Россия");
        a.click("cmbadd");
        a.enter("TXTDIPL1", "Вся Россия");
        a.click("cmbadd");
        QCOMPARE(a.awards().constLast(), QStringLiteral("Россия|Вся Россия||"));
        QCOMPARE(a.w.focus(), QLatin1String(kRegion));
        for (const char *region : {"0", "CB", "MA", "NN"}) {
            a.clickRow(kRegion, region);
            QVERIFY(!a.rows(kAward).contains(QStringLiteral("Вся Россия")));
        }
        QVERIFY(a.quiet());
    }

    void russianAwardTypedAtAnotherCountry()
    {
        Awards a;
        a.clickRow(kCountry, "FRANCE");
        a.addNew("Россия", "Россика", "1");
        QCOMPARE(a.awards().constLast(), QStringLiteral("Россия|Россика||1"));
        QVERIFY(a.shown(kRegion));
        QCOMPARE(a.text("Label1"), QStringLiteral("Россия"));
        QCOMPARE(a.chosen(kCountry), QStringLiteral("Россия"));
        QCOMPARE(a.rows(kAward), QStringList({"Ничей", "Россика"}));
        QCOMPARE(a.w.focus(), QLatin1String(kRegion));
        a.clickRow(kRegion, "MA");
        a.clickRow(kCountry, "FRANCE");
        a.addNew("GERMANY", "DLD", "2"); // a region is chosen, but the country is not Russia
        QCOMPARE(a.awards().constLast(), QStringLiteral("GERMANY|DLD||2"));
        QVERIFY(a.quiet());
    }

    void doubleClickTakesTheCountry()
    {
        Awards a;
        a.doubleClickRow(kCountry, "FRANCE");
        QCOMPARE(a.text("txtstran1"), QStringLiteral("FRANCE")); // already by the click
        a.click("cmbadd");
        a.enter("txtstran1", "Нигде");
        a.enter("TXTDIPL1", "имя");
        a.doubleClickRow(kCountry, "GERMANY");
        QCOMPARE(a.text("txtstran1"), QStringLiteral("GERMANY"));
        QCOMPARE(a.text("TXTDIPL1"), QStringLiteral("имя"));
        QVERIFY(a.entryShown());
        a.click("cmbadd");
        QCOMPARE(a.awards().constLast(), QStringLiteral("GERMANY|имя||"));
        QVERIFY(a.quiet());
    }

    void awardOfACountryThatHasJustGone()
    {
        Awards a([](Installation &in) {
            testsupport::awardTables(in);
            addAward(in, "strana=ITALY|diplom=WAIP");
        });
        a.clickRow(kCountry, "ITALY");
        a.clickRow(kAward, "WAIP");
        a.click("cmbdel");
        QCOMPARE(a.rows(kCountry), QStringList({"FRANCE", "GERMANY", "Россия"}));
        QCOMPARE(a.chosen(kCountry), QString());
        a.addNew("ITALY", "WAIP2", "");
        QCOMPARE(a.rows(kCountry), QStringList({"FRANCE", "GERMANY", "ITALY", "Россия"}));
        QCOMPARE(a.chosen(kCountry), QStringLiteral("ITALY"));
        QCOMPARE(a.rows(kAward), QStringList("WAIP2"));
    }

    void sameAwardTwice()
    {
        Awards a;
        a.addNew("FRANCE", "DPF", "раз");
        a.addNew("FRANCE", "DPF", "два");
        QCOMPARE(a.rows(kAward), QStringList({"DDFM", "DPF", "DPF", "DPF"}));
        QCOMPARE(a.awards().mid(kStored), QStringList({"FRANCE|DPF||раз", "FRANCE|DPF||два"}));
        QVERIFY(a.quiet());
    }

    // ---- deleting

    void withoutAChosenAwardNothingIsDeleted()
    {
        Awards a;
        a.click("cmbdel");
        a.clickRow(kCountry, "FRANCE");
        a.click("cmbdel");
        a.clickRow(kAward, "DPF");
        a.clickRow(kCountry, "GERMANY");
        a.click("cmbdel");
        QVERIFY(a.quiet());
        QCOMPARE(a.awards().size(), kStored);
    }

    void deletionIsAsked()
    {
        Awards a;
        a.clickRow(kCountry, "GERMANY");
        a.clickRow(kAward, "WAE");
        addAward(a.w.installation, "strana=GERMANY|diplom=AAA");
        addAward(a.w.installation, "strana=ITALY|diplom=WAIP");
        a.w.messages.yes = false;
        a.click("cmbdel");
        QCOMPARE(a.w.messages.asked, QStringList("DELETE: WAE"));
        QCOMPARE(a.awards().size(), kStored + 2);
        QCOMPARE(a.rows(kAward), QStringList({"AAA", "DPF", "WAE"})); // read again in either case
        QCOMPARE(a.rows(kCountry), QStringList({"FRANCE", "GERMANY", "ITALY", "Россия"}));
        QCOMPARE(a.chosen(kCountry), QStringLiteral("GERMANY"));
        a.w.messages.yes = true;
        a.click("cmbdel");
        QCOMPARE(a.w.messages.asked, QStringList({"DELETE: WAE", "DELETE: WAE"}));
        QCOMPARE(a.rows(kAward), QStringList({"AAA", "DPF"}));
        QCOMPARE(a.awards().size(), kStored + 1);
        QCOMPARE(a.lines("TXTDIPTEXT"), QString());
        QCOMPARE(a.chosen(kAward), QString());
        a.click("cmbdel"); // nothing is chosen any more
        QCOMPARE(a.w.messages.asked.size(), 2);
        QVERIFY(a.w.messages.errors.isEmpty());
    }

    void firstStoredOfTheNameGoes()
    {
        Awards a;
        a.clickRow(kCountry, "GERMANY");
        a.clickRow(kAward, "DPF");
        a.click("cmbdel"); // the one of FRANCE was stored first
        QCOMPARE(a.awards("strana||diplom").filter(QStringLiteral("DPF")), QStringList("GERMANYDPF"));
        QCOMPARE(a.rows(kAward), QStringList({"DPF", "WAE"}));
        QVERIFY2(a.status().contains(QStringLiteral("FRANCE")), qPrintable(a.status()));
        a.clickRow(kAward, "DPF");
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("второй"));
        a.click("cmbdel");
        QCOMPARE(a.rows(kAward), QStringList("WAE"));
        QCOMPARE(a.awards("diplom").count(QStringLiteral("DPF")), 0);
    }

    void lastAwardOfACountry()
    {
        Awards a;
        a.clickRow(kCountry, "FRANCE");
        for (const char *award : {"DDFM", "DPF"}) {
            a.clickRow(kAward, award);
            a.click("cmbdel");
        }
        QCOMPARE(a.rows(kCountry), QStringList({"GERMANY", "Россия"}));
        QCOMPARE(a.rows(kAward), QStringList());
        QCOMPARE(a.chosen(kCountry), QString());
    }

    void russianAwardIsDeleted()
    {
        Awards a;
        a.clickRow(kCountry, "Россия");
        a.clickRow(kRegion, "MA");
        a.clickRow(kAward, "Столица");
        a.find<QWidget>("cmbdel")->setFocus();
        a.press(Qt::Key_Return);
        QCOMPARE(a.w.messages.asked, QStringList(QStringLiteral("DELETE: Столица")));
        QCOMPARE(a.rows(kAward), QStringList("Кремль"));
        QCOMPARE(a.text("Label2"), QStringLiteral("Москва"));
        QCOMPARE(a.chosen(kRegion), QStringLiteral("MA"));
        QVERIFY(a.shown(kRegion));
    }

    void changedRulesAndDeletion()
    {
        Awards a;
        a.clickRow(kCountry, "GERMANY");
        a.clickRow(kAward, "WAE");
        a.write("TXTDIPTEXT", "правка");
        a.click("cmbdel"); // the changed award itself goes
        QCOMPARE(a.awards().size(), kStored - 1);
        QCOMPARE(a.lines("TXTDIPTEXT"), QString());
        a.click("Command1");
        QVERIFY(!a.window->isVisible());
        QCOMPARE(a.messages(), 1);
    }

    void awardDeletedByAnotherProgram()
    {
        Awards a;
        a.clickRow(kCountry, "GERMANY");
        a.clickRow(kAward, "WAE");
        a.sql(kAwards, "DELETE FROM tbldiplom WHERE diplom='WAE'");
        a.click("cmbdel");
        QCOMPARE(a.rows(kAward), QStringList("DPF"));
        QCOMPARE(a.awards().size(), kStored - 1);
        QVERIFY(a.w.messages.errors.isEmpty());
    }

    // ---- apostrophes

    void apostropheInACountry()
    {
        Awards a([](Installation &in) {
            testsupport::awardTables(in);
            addAward(in, "strana=Cote d'Ivoire|diplom=CI|diptext=слоны");
        });
        a.clickRow(kCountry, "GERMANY");
        a.clickRow(kAward, "WAE");
        a.clickRow(kCountry, "Cote d'Ivoire");
        QCOMPARE(a.messages(), 1);
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.rows(kAward), QStringList());
        QCOMPARE(a.lines("TXTDIPTEXT"), QString()); // not another country's
        QCOMPARE(a.text("txtstran1"), QStringLiteral("Cote d'Ivoire"));
        a.click("cmbdel");
        QCOMPARE(a.messages(), 1);
        a.clickRow(kCountry, "FRANCE");
        QCOMPARE(a.rows(kAward), QStringList({"DDFM", "DPF"}));
        a.addNew("Cote d'Ivoire", "C'I", "x'y"); // stored; its list cannot be shown
        QCOMPARE(a.messages(), 2);
        QCOMPARE(a.awards().constLast(), QStringLiteral("Cote d'Ivoire|C'I||x'y"));
        QVERIFY(!a.entryShown());
        QCOMPARE(a.w.focus(), QLatin1String(kCountry));
        a.clickRow(kCountry, "GERMANY");
        QCOMPARE(a.rows(kAward), QStringList({"DPF", "WAE"}));
        a.reopen();
        QCOMPARE(a.messages(), 2);
        QCOMPARE(a.awards().size(), kStored + 2);
    }

    void apostropheInAnAward()
    {
        Awards a([](Installation &in) {
            testsupport::awardTables(in);
            addAward(in, "strana=GERMANY|diplom=Peter's|diptext=ключ");
        });
        a.clickRow(kCountry, "GERMANY");
        a.clickRow(kAward, "WAE");
        a.clickRow(kAward, "Peter's");
        QCOMPARE(a.messages(), 1);
        QCOMPARE(a.lines("TXTDIPTEXT"), QString());
        a.click("TXTDIPTEXT");
        a.type("x"); // there is no row
        a.click("cmbdel");
        QCOMPARE(a.w.messages.errors.size(), 2);
        QVERIFY(a.w.messages.asked.isEmpty());
        QCOMPARE(a.rows(kAward), QStringList({"DPF", "Peter's", "WAE"}));
        a.clickRow(kAward, "WAE");
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("Европа"));
        a.click("cmbdel");
        QCOMPARE(a.rows(kAward), QStringList({"DPF", "Peter's"}));
        QCOMPARE(a.w.messages.errors.size(), 2);
        QCOMPARE(a.awards().constLast(), QStringLiteral("GERMANY|Peter's||ключ"));
        a.click("Command1");
        QVERIFY(!a.window->isVisible());
    }

    void apostropheInARegion()
    {
        Awards a([](Installation &in) {
            testsupport::awardTables(in);
            testsupport::addRow(in, QStringLiteral("dbrusdx.mdb"), QStringLiteral("tblrus"),
                                QStringLiteral("pref=1O|gorod=странная|prf=A'B"));
        });
        a.clickRow(kCountry, "Россия");
        a.clickRow(kRegion, "MA");
        a.clickRow(kAward, "Кремль");
        a.clickRow(kRegion, "A'B");
        QCOMPARE(a.messages(), 1);
        QVERIFY2(a.rows(kAward).isEmpty(), "another region's awards");
        QCOMPARE(a.text("Label2"), QStringLiteral("Дипломы"));
        QCOMPARE(a.lines("TXTDIPTEXT"), QString());
        QCOMPARE(a.text("txtpref1"), QStringLiteral("A'B"));
        a.clickRow(kRegion, "CB");
        QCOMPARE(a.text("Label2"), QStringLiteral("Челябинск"));
        QCOMPARE(a.rows(kAward), QStringList("Урал"));
        a.clickRow(kRegion, "A'B");
        QCOMPARE(a.messages(), 2);
        a.click("cmbadd");
        a.enter("txtstran1", "Россия");
        a.enter("TXTDIPL1", "имя");
        a.click("cmbadd");
        QCOMPARE(a.messages(), 3);
        QCOMPARE(a.awards().constLast(), QStringLiteral("Россия|имя|A'B|"));
        QVERIFY(!a.entryShown());
        a.clickRow(kCountry, "FRANCE");
        QCOMPARE(a.rows(kAward), QStringList({"DDFM", "DPF"}));
        QCOMPARE(a.messages(), 3);
    }

    // ---- failures

    void failedAddKeepsWhatWasTyped()
    {
        Awards a;
        a.clickRow(kCountry, "Россия");
        a.clickRow(kRegion, "MA");
        a.sql(kAwards, kForbidInserts);
        a.addNew("Россия", "Арбат", "улица");
        QCOMPARE(a.messages(), 1);
        QVERIFY(a.entryShown());
        QCOMPARE(a.text("txtstran1"), QStringLiteral("Россия"));
        QCOMPARE(a.text("TXTDIPL1"), QStringLiteral("Арбат"));
        QCOMPARE(a.lines("txtpol1"), QStringLiteral("улица"));
        QCOMPARE(a.awards().size(), kStored);
        a.clickRow(kRegion, "CB"); // the window goes on working
        QCOMPARE(a.rows(kAward), QStringList("Урал"));
        a.clickRow(kRegion, "MA");
        QCOMPARE(a.messages(), 1);
        a.sql(kAwards, "DROP TRIGGER no");
        a.click("cmbadd");
        QCOMPARE(a.awards().constLast(), QStringLiteral("Россия|Арбат|MA|улица"));
        QCOMPARE(a.awards().size(), kStored + 1);
        QCOMPARE(a.messages(), 1);
    }

    void newAwardWhileRulesCannotBeSaved()
    {
        Awards a;
        a.clickRow(kCountry, "GERMANY");
        a.clickRow(kAward, "WAE");
        a.sql(kAwards, kForbidUpdates);
        a.write("TXTDIPTEXT", "новое");
        a.addNew("GERMANY", "DLD", "x");
        QCOMPARE(a.awards().constLast(), QStringLiteral("GERMANY|DLD||x"));
        QCOMPARE(a.messages(), 1);
        QCOMPARE(a.rows(kAward), QStringList({"DLD", "DPF", "WAE"}));
        QVERIFY(!a.entryShown());
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("новое"));
        a.sql(kAwards, "DROP TRIGGER no");
        a.window->close();
        QVERIFY(!a.window->isVisible());
        QCOMPARE(a.awards("diptext").front(), QStringLiteral("новое"));
    }

    void escGivesTheNewAwardUp()
    {
        Awards a;
        a.clickRow(kCountry, "GERMANY");
        a.click("cmbadd");
        a.press(Qt::Key_Escape); // nothing typed: nothing asked
        QVERIFY(!a.entryShown());
        QVERIFY(a.quiet());
        for (const char *box : {"txtstran1", "TXTDIPL1", "txtpol1"}) {
            a.click("cmbadd");
            a.write("txtpol1", "условия");
            a.enter("TXTDIPL1", "Новый");
            a.find<QWidget>(box)->setFocus();
            a.w.messages.yes = false;
            a.press(Qt::Key_Escape);
            QCOMPARE(a.w.messages.asked.constLast(),
                     QStringLiteral("Zhurnal: Новый диплом не записан. Убрать набранное?"));
            QVERIFY(a.entryShown());
            QCOMPARE(a.text("TXTDIPL1"), QStringLiteral("Новый"));
            a.w.messages.yes = true;
            a.press(Qt::Key_Escape);
            QVERIFY(!a.entryShown());
            QCOMPARE(a.text("TXTDIPL1"), QString());
            QCOMPARE(a.lines("txtpol1"), QString());
            QCOMPARE(a.w.focus(), QLatin1String(kCountry));
        }
        QCOMPARE(a.awards().size(), kStored);
    }

    void rulesThatCannotBeSavedKeepTheirAwardMarked()
    {
        Awards a;
        a.clickRow(kCountry, "GERMANY");
        a.clickRow(kAward, "WAE");
        a.sql(kAwards, kForbidUpdates);
        a.write("TXTDIPTEXT", "новое");
        a.clickRow(kAward, "DPF");
        QCOMPARE(a.messages(), 1);
        QCOMPARE(a.find<ui::DbList>(kAward)->chosenText(), QStringLiteral("WAE"));
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("новое"));
        a.clickRow(kCountry, "FRANCE");
        QCOMPARE(a.messages(), 2);
        QCOMPARE(a.find<ui::DbList>(kCountry)->chosenText(), QStringLiteral("GERMANY"));
        QCOMPARE(a.find<ui::DbList>(kAward)->chosenText(), QStringLiteral("WAE"));
        a.sql(kAwards, "DROP TRIGGER no");
        a.clickRow(kAward, "DPF");
        QCOMPARE(a.awards("diptext").front(), QStringLiteral("новое"));
        QCOMPARE(a.find<ui::DbList>(kAward)->chosenText(), QStringLiteral("DPF"));
        QCOMPARE(a.messages(), 2);
    }

    void failedDeletion()
    {
        Awards a;
        a.clickRow(kCountry, "GERMANY");
        a.clickRow(kAward, "WAE");
        a.sql(kAwards, kForbidDeletes);
        a.click("cmbdel");
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.awards().size(), kStored);
        QCOMPARE(a.rows(kAward), QStringList({"DPF", "WAE"}));
        a.sql(kAwards, "DROP TRIGGER no");
        a.clickRow(kAward, "WAE");
        a.click("cmbdel");
        QCOMPARE(a.rows(kAward), QStringList("DPF"));
        QCOMPARE(a.w.messages.errors.size(), 1);
    }

    void readOnlyFolder()
    {
        Awards a(testsupport::awardTables, true);
        QVERIFY(a.quiet());
        a.clickRow(kCountry, "GERMANY");
        a.clickRow(kAward, "WAE");
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("Европа"));
        a.click("TXTDIPTEXT");
        a.type("x");
        QCOMPARE(a.lines("TXTDIPTEXT"), QStringLiteral("Европа"));
        a.click("cmbdel");
        QCOMPARE(a.w.messages.errors.size(), 1);
        a.addNew("FRANCE", "REF", "правила");
        QCOMPARE(a.w.messages.errors.size(), 2);
        QVERIFY(a.entryShown());
        QCOMPARE(a.text("TXTDIPL1"), QStringLiteral("REF"));
        QCOMPARE(a.lines("txtpol1"), QStringLiteral("правила"));
        QCOMPARE(a.awards().size(), kStored);
        a.w.messages.asked.clear();
        a.window->close();
        QCOMPARE(a.w.messages.asked.size(), 1); // the new award has not been stored
        QVERIFY(!a.window->isVisible());
    }

    void lockedFile()
    {
        Awards a;
        a.clickRow(kCountry, "GERMANY");
        a.clickRow(kAward, "WAE");
        store::Connection other(a.w.installation.file(QLatin1String(kAwards)), store::OpenMode::ReadWrite);
        other.exec(QStringLiteral("BEGIN IMMEDIATE"));
        a.addNew("FRANCE", "REF", "правила");
        QCOMPARE(a.w.messages.errors.size(), 1);
        QVERIFY2(a.w.messages.errors.front().contains(QStringLiteral("занят")),
                 qPrintable(a.w.messages.errors.front()));
        QCOMPARE(a.text("TXTDIPL1"), QStringLiteral("REF"));
        other.exec(QStringLiteral("ROLLBACK"));
        a.click("cmbadd");
        QCOMPARE(a.awards().constLast(), QStringLiteral("FRANCE|REF||правила"));
        QCOMPARE(a.messages(), 1);
    }
};

QTEST_MAIN(AwardAddingTest)
#include "awardadding.moc"
