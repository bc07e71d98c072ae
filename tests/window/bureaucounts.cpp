// The bureau window's counts: the selector, the lists of callsigns and prefixes, the tables.
#include "support/bureau.h"

#include <QEvent>
#include <QPushButton>

using testsupport::addLog;
using testsupport::addRow;
using testsupport::Bureau;
using testsupport::Installation;

namespace {

constexpr int kBands = 9;
const QString kNine = QStringLiteral(",,,,,,,,");

void contacts(const Installation &in)
{
    testsupport::smallTables(in);
    for (const char *row :
         {"ccall=UA3ABC|bband=14|contr=RUSSIAN|qslo=05.03.2026|qslp=+|prf=XYZ",
          "ccall=UA3ABC|bband=14|contr=RUSSIAN|qslo= |prf=XYZ", "ccall=UA3ADE|bband=14|contr=RUSSIAN|prf=OLD",
          "ccall=UA3ABC|bband=28|contr=RUSSIAN|qslp=да|prf=XYZ",
          "ccall=UA9AAA|bband=1,8|contr=RUSSIAN|prf=XYZ",
          "ccall=UA3ABX|bband=14|contr=UKRAINE|qslo=+|prf=XYZ",
          "ccall=DL1AA|bband=14|contr=GERMANY|qslo=+|prf=XYZ",
          "ccall=DL1AA|bband=14|contr=GERMANY|qslo=+|qslp=+|prf=XYZ",
          "ccall=DL2BB|bband=24|contr=GERMANY|qslp=+|prf=OLD", "ccall=F5AB|bband=21|contr=FRANCE|prf=XYZ",
          "ccall=DL9QQ|bband=14|contr=\"|qslo=+|qslp=+|prf=XYZ",
          "ccall=DL1AA|bband=144|contr=GERMANY|prf=XYZ"})
        addLog(in, row);
}

QString sent(const Bureau &b)
{
    return b.texts("txtotpr", kBands).join(QLatin1Char(','));
}

QString received(const Bureau &b)
{
    return b.texts("TXTPOL", kBands).join(QLatin1Char(','));
}

QString worked(const Bureau &b)
{
    return b.texts("txtQSO", kBands).join(QLatin1Char(','));
}

QStringList whole(const Bureau &b)
{
    return {b.text("txttotqsl"), b.text("TQSO"), b.text("TCAL")};
}

/// Notes when a sign comes, is painted and goes, with the first band's count at that moment.
class SignWatch : public QObject {
public:
    explicit SignWatch(const Bureau &bureau) : m_bureau(bureau), m_sign(bureau.find<QWidget>("txtas"))
    {
        m_sign->installEventFilter(this);
    }
    QStringList seen;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        const QString count = m_bureau.text("txtQSO_4");
        if (event->type() == QEvent::Paint && m_sign->isVisible())
            seen.append(QStringLiteral("painted %1").arg(count));
        else if (event->type() == QEvent::Hide)
            seen.append(QStringLiteral("gone %1").arg(count));
        return false;
    }

private:
    const Bureau &m_bureau;
    QWidget *m_sign;
};

/// Goes on to a selection with the mouse.
void select(Bureau &b, const char *caption)
{
    for (int i = 0; i < 3 && b.text("lbldxcc") != QString::fromUtf8(caption); ++i)
        b.click("lbldxcc");
    QCOMPARE(b.text("lbldxcc"), QString::fromUtf8(caption));
}

} // namespace

class BureauCountsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void captionsAndTips()
    {
        const Bureau b;
        QCOMPARE(b.window->windowTitle(), QStringLiteral("QSL Бюро"));
        QCOMPARE(b.texts("lblband", kBands), QStringList({QStringLiteral("1,8"), QStringLiteral("3,5"), "7",
                                                          "10", "14", "18", "21", "24", "28"}));
        for (const char *caption : {"Отпр.", "Пол.", "Итого"})
            QVERIFY2(b.hasLabel(caption), caption);
        QCOMPARE(b.tip("lbldxcc"), QStringLiteral("Кликни меня"));
        QCOMPARE(b.text("txtas"), QStringLiteral("Ждать !!!"));
        QCOMPARE(b.text("cmbinfo"), QStringLiteral("Инфо"));
        QCOMPARE(b.tip("cmbinfo"), QStringLiteral("информация о  стране"));
        QCOMPARE(b.text("Command1"), QStringLiteral("Итого"));
        QCOMPARE(b.tip("Command1"), QStringLiteral("Информация о странах DXCC"));
        for (const char *name : {"lbldxcc", "txtstrana", "LBLGOR", "DBList1", "DBList2", "DBList3", "cmbinfo",
                                 "Command1", "txttotqsl", "TQSO", "TCAL", "lblband_0", "txtotpr_8",
                                 "TXTPOL_8", "txtQSO_8", "txttot_0", "txttot_1", "txttot_2"})
            QVERIFY2(!b.tip(name).isEmpty(), name);
    }

    void atTheStart()
    {
        const Bureau b(contacts);
        QCOMPARE(b.text("lbldxcc"), QStringLiteral("ALL"));
        QCOMPARE(b.rows("DBList1"),
                 QStringList({"DL1AA", "DL2BB", "DL9QQ", "F5AB", "UA3ABC", "UA3ABX", "UA3ADE", "UA9AAA"}));
        QCOMPARE(b.rows("DBList2"), QStringList({"DL", "F", "UA"}));
        QCOMPARE(b.rows("DBList3"), QStringList({"3A", "5O", "9A"}));
        QVERIFY(!b.shown("DBList2") && !b.shown("DBList3"));
        QVERIFY(b.shown("txtstrana") && !b.shown("LBLGOR") && !b.shown("txtas"));
        QCOMPARE(b.text("txtstrana"), QString());
        QCOMPARE(sent(b) + received(b) + worked(b), kNine + kNine + kNine);
        QCOMPARE(b.texts("txttot", 3), QStringList({"", "", ""}));
        QCOMPARE(whole(b), QStringList({"", "", ""}));
        QVERIFY(b.quiet());
    }

    void selectorGoesRound()
    {
        Bureau b(contacts);
        for (int round = 0; round < 2; ++round) {
            b.click("lbldxcc");
            QCOMPARE(b.text("lbldxcc"), QStringLiteral("DXCC"));
            QVERIFY(b.shown("DBList2") && !b.shown("DBList3"));
            QVERIFY(b.shown("txtstrana") && !b.shown("LBLGOR"));
            QCOMPARE(b.text("lblnazw"), QStringLiteral("DXCC"));
            QCOMPARE(b.text("txtstrana"), QStringLiteral("GERMANY")); // of the first prefix
            QCOMPARE(b.rows("DBList1"), QStringList({"DL1AA", "DL2BB"}));

            b.find<QWidget>("lbldxcc")->setFocus();
            b.press(Qt::Key_Space);
            QCOMPARE(b.text("lbldxcc"), QStringLiteral("Россия"));
            QVERIFY(!b.shown("DBList2") && b.shown("DBList3"));
            QVERIFY(!b.shown("txtstrana") && b.shown("LBLGOR"));
            QCOMPARE(b.text("lblnazw"), QStringLiteral("Россия"));
            QCOMPARE(b.text("LBLGOR"), QStringLiteral("Москва"));
            QCOMPARE(b.rows("DBList1"), QStringList("UA3ABC"));

            b.press(Qt::Key_Return);
            QCOMPARE(b.text("lbldxcc"), QStringLiteral("ALL"));
            QVERIFY(!b.shown("DBList2") && !b.shown("DBList3"));
            QVERIFY(b.shown("txtstrana") && !b.shown("LBLGOR"));
            QCOMPARE(b.text("lblnazw"), QStringLiteral("DXCC"));
            QCOMPARE(b.rows("DBList1"), QStringList({"DL1AA", "DL2BB", "DL9QQ", "F5AB", "UA3ABC", "UA3ABX",
                                                     "UA3ADE", "UA9AAA"}));
            QCOMPARE(b.text("txtstrana"), QStringLiteral("GERMANY"));
        }
        QVERIFY(b.quiet());
    }

    void selectorStaysUnderTheMouse()
    {
        Bureau b(contacts);
        const auto place = [&b] {
            QCoreApplication::processEvents(); // lays the window out
            const auto *selector = b.find<QWidget>("lbldxcc");
            return QRect(selector->mapTo(b.window.get(), QPoint()), selector->size());
        };
        const QRect before = place();
        for (const char *list : {"DBList2", "DBList3", "DBList1"}) {
            b.click("lbldxcc");
            QCOMPARE(place(), before);
            QVERIFY(b.shown(list));
            if (qstrcmp(list, "DBList1") != 0) // what is chosen is seen
                QCOMPARE(b.find<ui::DbList>(list)->currentIndex().row(), 0);
        }
    }

    void longestNamesAreReadInFull()
    {
        Bureau b([](Installation &) {}); // the tables as they are supplied
        const QStringList regions =
            b.w.installation.rows(QStringLiteral("dbrusdx.mdb"), QStringLiteral("SELECT gorod FROM tblrus"));
        const QStringList countries = b.w.installation.rows(QStringLiteral("dbdxcc1.mdb"),
                                                            QStringLiteral("SELECT strana FROM tbldxcc"));
        QVERIFY(regions.size() > 50 && countries.size() > 300);
        const auto fits = [&b](const char *label, const QStringList &names) {
            const auto *shown = b.find<QLabel>(label);
            for (const QString &name : names)
                QVERIFY2(shown->fontMetrics().horizontalAdvance(name) <= shown->contentsRect().width(),
                         qPrintable(name));
        };
        fits("txtstrana", countries);
        select(b, "Россия");
        QCoreApplication::processEvents(); // lays the window out
        fits("LBLGOR", regions);
    }

    void selectorRemembersThePrefixes()
    {
        Bureau b(contacts);
        select(b, "DXCC");
        b.clickRow("DBList2", "F");
        select(b, "Россия");
        b.clickRow("DBList3", "9A");
        select(b, "DXCC");
        QCOMPARE(b.text("txtstrana"), QStringLiteral("FRANCE"));
        QCOMPARE(b.rows("DBList1"), QStringList("F5AB"));
        select(b, "Россия");
        QCOMPARE(b.text("LBLGOR"), QStringLiteral("Челябинск"));
        QCOMPARE(b.rows("DBList1"), QStringList("UA9AAA"));
    }

    void newSelectionEmptiesSixRowsOnly()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            for (const char *band : {"1,8", "3,5", "7", "10", "14", "18", "21", "24", "28"})
                addRow(in, QStringLiteral("dbiaru.mdb"), QStringLiteral("TBLLOG1"),
                       QStringLiteral("ccall=UA3ABC|contr=RUSSIAN|qslo=+|qslp=+|prf=XYZ|bband=") +
                           QLatin1String(band));
        });
        const QString ones = QStringLiteral("1,1,1,1,1,1,1,1,1");
        const QString kept = QStringLiteral(",,,,,,1,1,1");
        select(b, "DXCC");
        b.clickRow("DBList2", "UA");
        b.click("cmbinfo");
        QCOMPARE(QStringList({sent(b), received(b), worked(b)}), QStringList({ones, ones, ones}));
        b.clickRow("DBList2", "F");
        QCOMPARE(QStringList({sent(b), received(b), worked(b)}), QStringList({kept, kept, kept}));
        b.click("cmbinfo");
        QCOMPARE(worked(b), QStringLiteral("0,0,0,0,0,0,0,0,0"));
        b.clickRow("DBList2", "UA");
        b.click("cmbinfo");
        b.click("lbldxcc"); // to the regions
        QCOMPARE(QStringList({sent(b), received(b), worked(b)}), QStringList({kept, kept, kept}));
        b.click("cmbinfo");
        QCOMPARE(QStringList({sent(b), received(b), worked(b)}), QStringList({ones, ones, ones}));
        b.clickRow("DBList3", "9A");
        QCOMPARE(QStringList({sent(b), received(b), worked(b)}), QStringList({kept, kept, kept}));
        b.clickRow("DBList3", "3A");
        b.click("cmbinfo");
        b.click("lbldxcc"); // to everything: nothing is emptied
        QCOMPARE(worked(b), ones);
        b.click("lbldxcc");
        QCOMPARE(worked(b), kept);
    }

    void countryIsChosenByItsPrefix()
    {
        Bureau b(contacts);
        select(b, "DXCC");
        b.clickRow("DBList2", "UA");
        QCOMPARE(b.text("txtstrana"), QStringLiteral("RUSSIAN"));
        QCOMPARE(b.text("txtstr"), QStringLiteral("RUSSIAN"));
        QCOMPARE(b.rows("DBList1"), QStringList({"UA3ABC", "UA3ADE", "UA9AAA"}));
        b.press(Qt::Key_Up);
        QCOMPARE(b.text("txtstrana"), QStringLiteral("FRANCE"));
        QCOMPARE(b.rows("DBList1"), QStringList("F5AB"));
        b.press(Qt::Key_Up);
        QCOMPARE(b.text("txtstrana"), QStringLiteral("GERMANY"));
        b.press(Qt::Key_Down);
        QCOMPARE(b.text("txtstrana"), QStringLiteral("FRANCE"));
        QVERIFY(b.quiet());
    }

    void regionIsChosenByItsPrefix()
    {
        Bureau b([](Installation &in) {
            contacts(in);
            for (const char *row : {"ccall=RA3ABC|contr=russian|prf=xyz", // letter case does not count
                                    "ccall=3ABC|contr=RUSSIAN|prf=XYZ", "ccall=UA13AB|contr=RUSSIAN|prf=XYZ",
                                    "ccall=R3ABC|contr=RUSSIAN|prf=XYZ"})
                addLog(in, row);
        });
        select(b, "Россия");
        b.clickRow("DBList3", "9A");
        QCOMPARE(b.rows("DBList1"), QStringList("UA9AAA"));
        QCOMPARE(b.text("LBLGOR"), QStringLiteral("Челябинск"));
        b.press(Qt::Key_Home);
        QCOMPARE(b.rows("DBList1"), QStringList({"RA3ABC", "UA3ABC"}));
        QCOMPARE(b.text("LBLGOR"), QStringLiteral("Москва"));
        b.press(Qt::Key_Down); // its only row is one that does not count
        QCOMPARE(b.rows("DBList1"), QStringList());
        QCOMPARE(b.text("LBLGOR"), QString());
        QCOMPARE(b.text("txtstrana"), QStringLiteral("GERMANY")); // of the country before, not shown
        QVERIFY(!b.shown("txtstrana"));
    }

    void callsignShowsItsContactsAndCountry()
    {
        Bureau b([](Installation &in) {
            contacts(in);
            addRow(in, QStringLiteral("dbdxcc1.mdb"), QStringLiteral("tbldxcc"),
                   QStringLiteral("prf=U|PREF=U|strana=USSR"));
            addLog(in, "ccall=UA3ABC|bband=3,5|ddate=01.02.03|ttime=10:11|rsts=599|qslvia=RX3A|rstr=57|"
                       "prf=OLD|ps1=RTTY|contr=RUSSIAN");
            addLog(in, "ccall=9Q1A|bband=14");
        });
        b.clickRow("DBList1", "UA3ABC");
        QCOMPARE(b.text("txtstrana"), QStringLiteral("RUSSIAN")); // UA, not U
        QCOMPARE(b.column("DBGrid1", 0), QStringList({"UA3ABC", "UA3ABC", "UA3ABC", "UA3ABC"}));
        QCOMPARE(b.gridRow("DBGrid1", 0),
                 QStringLiteral("UA3ABC|14|05.03.2026|+|||||") + QStringLiteral("|XYZ|"));
        QCOMPARE(b.gridRow("DBGrid1", 3),
                 QStringLiteral("UA3ABC|3,5|||01.02.03|10:11|599|RX3A||OLD|RTTY")); // no rstr in this query
        b.press(Qt::Key_Down);
        QCOMPARE(b.column("DBGrid1", 0), QStringList("UA3ABX"));
        b.clickRow("DBList1", "F5AB");
        QCOMPARE(b.text("txtstrana"), QStringLiteral("FRANCE"));
        b.clickRow("DBList1", "9Q1A"); // of no country of the table
        QCOMPARE(b.column("DBGrid1", 0), QStringList("9Q1A"));
        QCOMPARE(b.text("txtstrana"), QStringLiteral("FRANCE"));
        QVERIFY(b.quiet());
    }

    void callsignOfASelectionLeavesTheCountry()
    {
        Bureau b(contacts);
        select(b, "DXCC");
        b.clickRow("DBList2", "UA");
        b.click("lblband_4");
        b.clickRow("DBList1", "UA3ABC");
        QCOMPARE(b.column("DBGrid1", 0).size(), 3);
        QCOMPARE(b.text("txtstrana"), QStringLiteral("RUSSIAN"));
        b.click("Command1"); // empties the country
        b.clickRow("DBList1", "UA3ABC");
        QCOMPARE(b.text("txtstrana"), QString());
        select(b, "Россия");
        b.clickRow("DBList1", "UA3ABC");
        QCOMPARE(b.text("txtstrana"), QString());
        QCOMPARE(b.text("LBLGOR"), QStringLiteral("Москва"));
    }

    void bandListsItsCallsigns()
    {
        Bureau b(contacts);
        b.click("lblband_4");
        QCOMPARE(b.rows("DBList1"), QStringList({"DL1AA", "DL9QQ", "UA3ABC", "UA3ABX"}));
        b.find<QWidget>("lblband_0")->setFocus();
        b.press(Qt::Key_Return);
        QCOMPARE(b.rows("DBList1"), QStringList("UA9AAA"));
        b.click("lblband_7"); // only under another own callsign
        QCOMPARE(b.rows("DBList1"), QStringList());
        select(b, "DXCC");
        b.click("lblband_4");
        QCOMPARE(b.rows("DBList1"), QStringList("DL1AA"));
        b.click("lblband_7");
        QCOMPARE(b.rows("DBList1"), QStringList());
        b.clickRow("DBList2", "UA");
        b.click("lblband_8");
        QCOMPARE(b.rows("DBList1"), QStringList("UA3ABC"));
        select(b, "Россия");
        b.click("lblband_4");
        QCOMPARE(b.rows("DBList1"), QStringList("UA3ABC"));
        b.click("lblband_0");
        QCOMPARE(b.rows("DBList1"), QStringList());
        b.clickRow("DBList3", "9A");
        b.click("lblband_0");
        QCOMPARE(b.rows("DBList1"), QStringList("UA9AAA"));
        QCOMPARE(worked(b), kNine); // nothing was counted
        QVERIFY(b.quiet());
    }

    void countryCountsContacts_data()
    {
        QTest::addColumn<bool>("chosenByCall");
        QTest::newRow("DXCC") << false;
        QTest::newRow("ALL") << true;
    }
    void countryCountsContacts()
    {
        QFETCH(bool, chosenByCall);
        Bureau b(contacts);
        if (chosenByCall) {
            b.clickRow("DBList1", "UA3ADE");
        } else {
            select(b, "DXCC");
            b.clickRow("DBList2", "UA");
        }
        b.click("cmbinfo");
        QCOMPARE(sent(b), QStringLiteral("0,0,0,0,2,0,0,0,0")); // a blank is a mark, too
        QCOMPARE(received(b), QStringLiteral("0,0,0,0,1,0,0,0,1"));
        QCOMPARE(worked(b), QStringLiteral("1,0,0,0,3,0,0,0,1"));
        QCOMPARE(b.texts("txttot", 3), QStringList({"", "", ""}));
        QCOMPARE(whole(b), QStringList({"", "", ""}));
        QCOMPARE(b.text("txtstrana"), QStringLiteral("RUSSIAN"));
        QVERIFY(!b.shown("txtas") && b.quiet());
    }

    void regionCountsCallsigns()
    {
        Bureau b(contacts);
        select(b, "Россия");
        b.click("cmbinfo");
        QCOMPARE(sent(b), QStringLiteral("0,0,0,0,1,0,0,0,0"));
        QCOMPARE(received(b), QStringLiteral("0,0,0,0,1,0,0,0,1"));
        QCOMPARE(worked(b), QStringLiteral("0,0,0,0,2,0,0,0,1")); // under whatever own callsign
        b.clickRow("DBList3", "9A");
        b.click("cmbinfo");
        QCOMPARE(worked(b), QStringLiteral("1,0,0,0,0,0,0,0,0"));
        QVERIFY(!b.shown("txtas") && b.quiet());
    }

    void noCountryMeansAllCountries_data()
    {
        QTest::addColumn<QString>("button");
        QTest::newRow("totals") << "Command1";
        QTest::newRow("no country chosen") << "cmbinfo";
        QTest::newRow("from elsewhere") << "";
    }
    void noCountryMeansAllCountries()
    {
        QFETCH(QString, button);
        Bureau b(contacts);
        if (button.isEmpty())
            b.window->info();
        else
            b.click(qPrintable(button));
        QCOMPARE(sent(b), QStringLiteral("0,0,0,0,3,0,0,0,0"));
        QCOMPARE(received(b), QStringLiteral("0,0,0,0,2,0,0,1,1"));
        QCOMPARE(worked(b), QStringLiteral("1,0,0,0,3,0,1,1,1"));
        QCOMPARE(b.texts("txttot", 3), QStringList({"3", "2", "4"}));
        QCOMPARE(whole(b), QStringList({"4", "12", "8"}));
        QCOMPARE(b.text("txtstrana"), QString());
        QVERIFY(!b.shown("txtas") && b.quiet());
    }

    void totalsForgetTheCountry()
    {
        Bureau b(contacts);
        select(b, "DXCC");
        QCOMPARE(b.text("txtstrana"), QStringLiteral("GERMANY"));
        b.click("Command1");
        QCOMPARE(b.text("txtstrana"), QString());
        QCOMPARE(b.texts("txttot", 3), QStringList({"3", "2", "4"}));
        QCOMPARE(b.rows("DBList1"), QStringList({"DL1AA", "DL2BB"}));
    }

    void totalsOfRussiaAreTheWholeLogOnly()
    {
        Bureau b(contacts);
        select(b, "Россия");
        b.click("cmbinfo");
        const QString before = worked(b);
        SignWatch watch(b);
        b.click("Command1");
        QCOMPARE(whole(b), QStringList({"4", "12", "8"}));
        QCOMPARE(worked(b), before);
        QCOMPARE(b.texts("txttot", 3), QStringList({"", "", ""}));
        QCOMPARE(watch.seen, QStringList());
        select(b, "ALL");
        QCOMPARE(b.text("txtstrana"), QStringLiteral("GERMANY")); // chosen on the way, still there
    }

    void emptyResultsKeepTheWholeLogBoxes()
    {
        Bureau b(contacts);
        b.click("Command1");
        b.w.installation.sql(QStringLiteral("dbiaru.mdb"), QStringLiteral("UPDATE TBLLOG1 SET qslp=''"));
        b.click("Command1");
        QCOMPARE(whole(b), QStringList({"4", "12", "8"}));
        QCOMPARE(b.text("txttot_1"), QStringLiteral("0"));
        b.w.installation.sql(QStringLiteral("dbiaru.mdb"), QStringLiteral("DELETE FROM TBLLOG1"));
        b.click("Command1");
        QCOMPARE(whole(b), QStringList({"4", "12", "8"}));
        QCOMPARE(b.texts("txttot", 3), QStringList({"0", "0", "0"}));
        QCOMPARE(worked(b), QStringLiteral("0,0,0,0,0,0,0,0,0"));
        Bureau fresh;
        fresh.click("Command1");
        QCOMPARE(whole(fresh), QStringList({"", "", ""}));
        QVERIFY(b.quiet() && fresh.quiet());
    }

    void countryThatIsAQuoteMarkIsNeverCounted()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            addRow(in, QStringLiteral("dbdxcc1.mdb"), QStringLiteral("tbldxcc"),
                   QStringLiteral("prf=Q|PREF=Q|strana=\""));
            addLog(in, "ccall=Q1A|bband=14|contr=\"|qslo=+|qslp=+");
            addLog(in, "ccall=Q2A|bband=14|contr=\"\"|qslo=+|qslp=+");
            addLog(in, "ccall=Q3A|bband=14|contr=|qslo=+"); // no country is a value of its own
        });
        select(b, "DXCC");
        b.clickRow("DBList2", "Q");
        QCOMPARE(b.text("txtstrana"), QStringLiteral("\""));
        QCOMPARE(b.rows("DBList1"), QStringList("Q1A"));
        b.click("cmbinfo");
        QCOMPARE(sent(b) + received(b) + worked(b), QStringLiteral("0,0,0,0,0,0,0,0,0").repeated(3));
        b.click("Command1");
        QCOMPARE(b.texts("txttot", 3), QStringList({"2", "1", "2"}));
        QCOMPARE(b.text("txtQSO_4"), QStringLiteral("2"));
        QCOMPARE(whole(b), QStringList({"2", "3", "3"}));
    }

    void bandsAreComparedAsTheyStand()
    {
        Bureau b([](Installation &in) {
            testsupport::smallTables(in);
            for (const char *band : {"1.8", "1,80", "144", "1", "14,0", "028"})
                addRow(in, QStringLiteral("dbiaru.mdb"), QStringLiteral("TBLLOG1"),
                       QStringLiteral("ccall=DL1A|contr=GERMANY|prf=XYZ|bband=") + QLatin1String(band));
        });
        select(b, "DXCC");
        b.click("cmbinfo");
        QCOMPARE(worked(b), QStringLiteral("0,0,0,0,0,0,0,0,0"));
    }

    void busySignCoversTheCount_data()
    {
        QTest::addColumn<QString>("selection");
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("count");
        QTest::newRow("country") << "DXCC"
                                 << "cmbinfo"
                                 << "2";
        QTest::newRow("region") << "Россия"
                                << "cmbinfo"
                                << "2";
        QTest::newRow("totals") << "ALL"
                                << "Command1"
                                << "3";
    }
    void busySignCoversTheCount()
    {
        QFETCH(QString, selection);
        QFETCH(QString, button);
        QFETCH(QString, count);
        Bureau b(contacts);
        select(b, selection.toUtf8().constData());
        SignWatch watch(b);
        b.click(qPrintable(button));
        QVERIFY(watch.seen.size() >= 2);
        QCOMPARE(watch.seen.front(), QStringLiteral("painted ")); // nothing has been counted yet
        QCOMPARE(watch.seen.back(), QStringLiteral("gone ") + count);
        QVERIFY(!b.shown("txtas"));
    }

    void countsThatFail()
    {
        Bureau b(contacts);
        const auto log = [&b](const char *from, const char *to) { // taken away and given back
            b.w.installation.sql(
                QStringLiteral("dbiaru.mdb"),
                QStringLiteral("ALTER TABLE %1 RENAME TO %2").arg(QLatin1String(from), QLatin1String(to)));
        };
        SignWatch watch(b);
        const auto fails = [&](const char *button) {
            const qsizetype before = b.w.messages.errors.size();
            watch.seen.clear();
            log("TBLLOG1", "away");
            log("zh_tally", "tallyaway"); // what the log keeps counted answers by itself
            b.click(button);
            log("tallyaway", "zh_tally");
            log("away", "TBLLOG1");
            QCOMPARE(b.w.messages.errors.size(), before + 1);
            QVERIFY(watch.seen.size() >= 2 && watch.seen.back().startsWith(QStringLiteral("gone")));
            QVERIFY(!b.shown("txtas"));
        };
        fails("Command1");
        select(b, "DXCC");
        fails("cmbinfo");
        select(b, "Россия");
        fails("cmbinfo");
        b.click("cmbinfo");
        QCOMPARE(worked(b), QStringLiteral("0,0,0,0,2,0,0,0,1"));
        QCOMPARE(b.w.messages.errors.size(), 3);
    }

    void apostropheIsAMessageAndNoMore()
    {
        Bureau b([](Installation &in) {
            contacts(in);
            addRow(in, QStringLiteral("dbdxcc1.mdb"), QStringLiteral("tbldxcc"),
                   QStringLiteral("prf=TU|PREF=TU|strana=COTE D'IVOIRE"));
            addRow(in, QStringLiteral("dbrusdx.mdb"), QStringLiteral("tblrus"),
                   QStringLiteral("pref=Z'|gorod=Бор|prf=NN"));
            addLog(in, "ccall=R1'A|bband=14|contr=RUSSIAN|prf=XYZ");
        });
        const QStringList before = b.log("*");
        b.clickRow("DBList1", "R1'A");
        QCOMPARE(b.w.messages.errors.size(), 1);
        b.clickRow("DBList1", "F5AB");
        QCOMPARE(b.column("DBGrid1", 0), QStringList("F5AB"));
        select(b, "DXCC");
        QCOMPARE(b.w.messages.errors.size(), 1);
        b.clickRow("DBList2", "TU");
        QCOMPARE(b.text("txtstrana"), QStringLiteral("COTE D'IVOIRE"));
        QCOMPARE(b.w.messages.errors.size(), 2);
        b.click("cmbinfo");
        QCOMPARE(b.w.messages.errors.size(), 3);
        QVERIFY(!b.shown("txtas"));
        b.clickRow("DBList2", "F");
        b.click("cmbinfo");
        QCOMPARE(worked(b), QStringLiteral("0,0,0,0,0,0,1,0,0"));
        select(b, "Россия");
        b.clickRow("DBList3", "Z'");
        QCOMPARE(b.w.messages.errors.size(), 4);
        b.clickRow("DBList3", "3A");
        QCOMPARE(b.rows("DBList1"), QStringList("UA3ABC"));
        QCOMPARE(b.text("LBLGOR"), QStringLiteral("Москва"));
        QCOMPARE(b.w.messages.errors.size(), 4);
        QCOMPARE(b.log("*"), before);
        QVERIFY(b.w.messages.told.isEmpty() && b.w.messages.asked.isEmpty());
    }

    void countsChangeOnlyWhenAskedFor()
    {
        Bureau b(contacts);
        b.click("Command1");
        const QStringList before = whole(b) + QStringList{sent(b), received(b), worked(b)};
        addLog(b.w.installation, "ccall=F5XX|bband=14|contr=FRANCE|qslo=+|qslp=+|prf=XYZ");
        b.clickRow("DBList1", "F5AB");
        b.click("lblband_4");
        QVERIFY(b.rows("DBList1").contains(QStringLiteral("F5XX")));
        b.click("Command3");
        b.click("txtstrana");
        QCOMPARE(whole(b) + QStringList({sent(b), received(b), worked(b)}), before);
        b.click("Command1");
        QCOMPARE(whole(b), QStringList({"5", "13", "9"}));
    }

    void secondOpeningKeepsEverything()
    {
        Bureau b(contacts);
        select(b, "DXCC");
        b.clickRow("DBList2", "UA");
        b.click("cmbinfo");
        const QString counted = worked(b);
        b.clickMenu("mnuexit");
        QVERIFY(!b.window->isVisible());
        b.window->show();
        b.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(b.window.get()));
        QCOMPARE(b.text("lbldxcc"), QStringLiteral("DXCC"));
        QVERIFY(b.shown("DBList2"));
        QCOMPARE(b.text("txtstrana"), QStringLiteral("RUSSIAN"));
        QCOMPARE(b.rows("DBList1"), QStringList({"UA3ABC", "UA3ADE", "UA9AAA"}));
        QCOMPARE(worked(b), counted);
        QVERIFY(b.quiet());
    }
};

QTEST_MAIN(BureauCountsTest)
#include "bureaucounts.moc"
