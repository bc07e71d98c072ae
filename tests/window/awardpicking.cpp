// The awards window's prefixes, callsigns and contacts with one station.
#include "support/awards.h"

#include <QCheckBox>

using testsupport::addLog;
using testsupport::addRow;
using testsupport::awardContacts;
using testsupport::Awards;
using testsupport::Installation;
using namespace testsupport::award;

class AwardPickingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void atTheBeginning()
    {
        const Awards a(awardContacts);
        QCOMPARE(a.text("cmbdxcc"), QStringLiteral("DXCC"));
        QCOMPARE(a.tip("cmbdxcc"), QStringLiteral("Нажми меня"));
        QCOMPARE(a.find<QCheckBox>("Check1")->text(), QStringLiteral("Страны"));
        QVERIFY(!a.find<QCheckBox>("Check1")->isChecked());
        QCOMPARE(a.text("cmbblanc"), QStringLiteral("Бланк"));
        QCOMPARE(a.tip("cmbblanc"), QStringLiteral("Просмотр бланка"));
        QCOMPARE(a.text("Command3"), QStringLiteral("Очистить"));
        QCOMPARE(a.tip("Command3"), QStringLiteral("Очистить бланк"));
        QCOMPARE(a.text("cmbUsl"), QStringLiteral("Выбор"));
        QCOMPARE(a.tip(kStation), QStringLiteral("dubleClik - выбранная запись переносится в бланк"));
        QCOMPARE(a.rows(kPrefixes), QStringList({"DL", "F", "UA"}));
        QCOMPARE(a.rows(kRegions), QStringList({"3A", "5O", "9A"}));
        QVERIFY(a.shown(kPrefixes));
        for (const char *hidden : {kRegions, "txtgorod", "txtqth", "frWyb"})
            QVERIFY2(!a.shown(hidden), hidden);
        // The whole log, as it was stored.
        QCOMPARE(a.rows(kCalls),
                 QStringList({"UA3AB", "R3AB", "UA9AA", "DL1AA", "DL1AA", "DL1AB", "F5AB", "XX1X"}));
        QCOMPARE(a.column(kStation, 0), a.rows(kCalls));
        QCOMPARE(a.headings(kBlank), QStringList({"Call", "Date", "time", "Band", "rsts", "rstr", "mult",
                                                  "point", "Remarks", "Country"}));
        QCOMPARE(a.column(kBlank, 0), QStringList());
        QVERIFY(a.quiet());
    }

    // ---- prefixes

    void countryPrefixListsItsCallsigns()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "DL");
        QCOMPARE(a.text("txtstrana"), QStringLiteral("GERMANY"));
        QCOMPARE(a.text("txtgorod"), QStringLiteral("GERMANY"));
        QVERIFY(!a.shown("txtgorod"));
        QCOMPARE(a.rows(kCalls), QStringList({"DL1AA", "DL1AB"}));
        a.clickRow(kPrefixes, "UA");
        QCOMPARE(a.text("txtstrana"), QStringLiteral("RUSSIAN"));
        QCOMPARE(a.rows(kCalls), QStringList({"R3AB", "UA3AB", "UA9AA"}));
        QCOMPARE(a.column(kStation, 0).size(), 8); // of the grid nothing was said
        addLog(a.w.installation, "ccall=F9NEW|contr=FRANCE");
        a.clickRow(kPrefixes, "F");
        QCOMPARE(a.rows(kCalls), QStringList({"F5AB", "F9NEW"}));
        QVERIFY(a.quiet());
    }

    void switchToRegions_data()
    {
        QTest::addColumn<bool>("mouse");
        QTest::newRow("mouse") << true;
        QTest::newRow("key") << false;
    }
    void switchToRegions()
    {
        QFETCH(bool, mouse);
        Awards a(awardContacts);
        const auto toggle = [&] {
            if (mouse)
                a.click("cmbdxcc");
            else
                a.tick("cmbdxcc");
        };
        toggle();
        QCOMPARE(a.text("cmbdxcc"), QStringLiteral("Россия"));
        QVERIFY(a.shown(kRegions) && !a.shown(kPrefixes));
        QVERIFY(a.shown("txtgorod"));
        // As if the list's first row had been clicked.
        QCOMPARE(a.chosen(kRegions), QStringLiteral("3A"));
        QCOMPARE(a.rows(kCalls), QStringList({"R3AB", "UA3AB"}));
        QCOMPARE(a.text("txtgorod"), QStringLiteral("Москва")); // not the one whose code is 0
        QCOMPARE(a.text("txtpref"), QStringLiteral("3A"));
        QCOMPARE(a.text("txtprf"), QStringLiteral("MA"));
        a.clickRow(kRegions, "9A");
        QCOMPARE(a.rows(kCalls), QStringList("UA9AA"));
        QCOMPARE(a.text("txtgorod"), QStringLiteral("Челябинск"));
        QCOMPARE(a.text("txtprf"), QStringLiteral("CB"));
        toggle();
        QCOMPARE(a.text("cmbdxcc"), QStringLiteral("DXCC"));
        QVERIFY(!a.shown(kRegions) && a.shown(kPrefixes));
        QCOMPARE(a.chosen(kPrefixes), QStringLiteral("DL"));
        QCOMPARE(a.rows(kCalls), QStringList({"DL1AA", "DL1AB"}));
        QCOMPARE(a.text("txtgorod"), QStringLiteral("GERMANY"));
        QVERIFY(a.shown("txtgorod"));
        a.clickRow(kPrefixes, "F");
        toggle(); // what was chosen last is clicked
        QCOMPARE(a.chosen(kRegions), QStringLiteral("9A"));
        QCOMPARE(a.rows(kCalls), QStringList("UA9AA"));
        toggle();
        QCOMPARE(a.rows(kCalls), QStringList("F5AB"));
        QVERIFY(a.quiet());
    }

    void prefixOfARegionThatIsNoMore()
    {
        Awards a(awardContacts);
        a.click("cmbdxcc");
        a.clickRow(kRegions, "5O");
        for (const char *box : {"txtgorod", "txtpref", "txtprf"})
            QCOMPARE(a.text(box), QString());
        QCOMPARE(a.rows(kCalls), QStringList());
        QVERIFY(a.quiet());
    }

    void switchWithEmptyLists()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            in.sql(QStringLiteral("dbrusdx.mdb"), QStringLiteral("DELETE FROM tblrus"));
            in.sql(QStringLiteral("dbdxcc1.mdb"), QStringLiteral("DELETE FROM tbldxcc"));
        });
        a.click("cmbdxcc");
        QCOMPARE(a.rows(kCalls), QStringList());
        a.click("cmbdxcc");
        QCOMPARE(a.text("cmbdxcc"), QStringLiteral("DXCC"));
        QCOMPARE(a.rows(kCalls), QStringList("XX1X")); // those without a country
        QVERIFY(a.quiet());
    }

    void apostropheInAPrefix()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addRow(in, QStringLiteral("dbdxcc1.mdb"), QStringLiteral("tbldxcc"),
                   QStringLiteral("prf=TU|PREF=TU|strana=COTE D'IVOIRE"));
            addRow(in, QStringLiteral("dbdxcc1.mdb"), QStringLiteral("tbldxcc"),
                   QStringLiteral("prf=A'|PREF=A'|strana=ODD"));
            addRow(in, QStringLiteral("dbrusdx.mdb"), QStringLiteral("tblrus"),
                   QStringLiteral("pref=8'|gorod=ODD|prf=OO"));
        });
        int errors = 0;
        for (const char *prefix : {"A'", "TU"}) { // the prefix; the name of its country
            a.clickRow(kPrefixes, "DL");
            QCOMPARE(a.rows(kCalls).size(), 2);
            a.clickRow(kPrefixes, prefix);
            QCOMPARE(a.w.messages.errors.size(), ++errors);
        }
        QCOMPARE(a.rows(kCalls), QStringList());
        a.click("cmbdxcc");
        a.clickRow(kRegions, "8'");
        QCOMPARE(a.w.messages.errors.size(), ++errors);
        a.clickRow(kRegions, "9A");
        QCOMPARE(a.rows(kCalls), QStringList("UA9AA"));
        QCOMPARE(a.w.messages.errors.size(), errors);
    }

    // ---- a station

    void callsignShowsItsContacts()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        QCOMPARE(a.column(kStation, 0), QStringList("F5AB"));
        QCOMPARE(a.text("txtccall"), QStringLiteral("F5AB"));
        QCOMPARE(a.text("txtnname"), QStringLiteral("Jean"));
        QVERIFY(!a.shown("txtqth")); // no town is known
        a.clickRow(kPrefixes, "DL");
        a.clickRow(kCalls, "DL1AA");
        QCOMPARE(a.column(kStation, 3), QStringList({"14", "7"}));
        QCOMPARE(a.text("txtnname"), QStringLiteral("Hans"));
        QCOMPARE(a.text("txtqth"), QStringLiteral("Köln"));
        QVERIFY(a.shown("txtqth"));
        a.clickRow(kCalls, "DL1AB"); // not in the callbook
        QCOMPARE(a.column(kStation, 0), QStringList("DL1AB"));
        for (const char *box : {"txtccall", "txtnname", "txtqth"})
            QCOMPARE(a.text(box), QString());
        QVERIFY(a.shown("txtqth")); // never hidden again
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        QVERIFY(a.shown("txtqth"));
        a.reopen();
        QVERIFY(a.shown("txtqth"));
        QVERIFY(a.quiet());
    }

    void columnsOfTheStation()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "UA");
        a.clickRow(kCalls, "UA3AB");
        const QStringList first = {"UA3AB", "01.02.03", "10:11", "14", "559", "579"};
        for (int column = 0; column < first.size(); ++column)
            QCOMPARE(a.cell(kStation, 0, column), first[column]);
        QVERIFY(a.gridRow(kStation, 0).endsWith(QStringLiteral("RUSSIAN")));
        QCOMPARE(a.headings(kStation).constLast(), QStringLiteral("Country"));
    }

    void apostropheInACallsign()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addLog(in, "ccall=F'X|contr=FRANCE");
        });
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F'X");
        QCOMPARE(a.w.messages.errors.size(), 1);
        a.clickRow(kCalls, "F5AB");
        QCOMPARE(a.column(kStation, 0), QStringList("F5AB"));
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.blank(), QStringList("F5AB"));
        QCOMPARE(a.w.messages.errors.size(), 1);
    }
};

QTEST_MAIN(AwardPickingTest)
#include "awardpicking.moc"
