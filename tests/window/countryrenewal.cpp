// The country table renewed from a country file: the question with its list, both answers, what goes wrong.
#include "support/reference.h"

#include <QDir>
#include <QFile>
#include <QTableView>

using testsupport::addCountry;
using testsupport::countryTable;
using testsupport::CountryWindow;
using testsupport::Installation;

namespace {

constexpr auto kPlan = "lstobnow";
constexpr auto kGrid = "DBGrid1";
constexpr auto kFile = "dbdxcc1.mdb";

/// Germany gets a prefix, loses DA and changes its zone; a country is new; the others are not in the file.
constexpr auto kCountries = "Fed. Rep. of Germany:     15:  28:  EU:   51.00:   -10.00:    -1.0:  DL:\n"
                            "    DL,DB;\n"
                            "Isle of the Long Names:   33:  57:  AF:  -10.50:    20.25:     3.0:  Y9:\n"
                            "    Y9;\n";

void germany(Installation &in)
{
    countryTable(in);
    addCountry(in, "prf=DB1|PREF=DL|strana=MINE|own=1");
}

QString write(const CountryWindow &c, const QByteArray &bytes)
{
    QString path = c.w.installation.file(QStringLiteral("new.dat"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("no country file");
    return path;
}

/// Chooses a file with these countries.
void choose(CountryWindow &c, const QByteArray &bytes = kCountries)
{
    c.w.dialogs.chosen = write(c, bytes);
    c.click("cmbfile");
}

QStringList plan(const CountryWindow &c)
{
    const QAbstractItemModel *model = c.find<QTableView>(kPlan)->model();
    QStringList rows;
    for (int row = 0; row < model->rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < model->columnCount(); ++column)
            cells.append(model->index(row, column).data().toString());
        rows.append(cells.join(QLatin1Char('|')));
    }
    return rows;
}

QStringList copies(const CountryWindow &c)
{
    return QDir(c.w.installation.databases.userFolder())
        .entryList({QStringLiteral("dbdxcc1.*.mdb")}, QDir::Files);
}

const QStringList kBefore = {QStringLiteral("UA|RUSSIAN|16|"), QStringLiteral("F|FRANCE|14|"),
                             QStringLiteral("DL|GERMANY|14|"), QStringLiteral("DA|GERMANY|14|"),
                             QStringLiteral("UA9|RUSSIAN||"),  QStringLiteral("ZS|SOUTH AFRICA||"),
                             QStringLiteral("3B8|GAMBIA||"),   QStringLiteral("DB1|MINE||1")};

QStringList stored(const CountryWindow &c)
{
    return c.stored("prf,strana,cq,own");
}

} // namespace

class CountryRenewalTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// The list stands in the place of the table; nothing is written yet, and Enter alone says "Нет".
    void question()
    {
        CountryWindow c(germany);
        choose(c);
        QVERIFY(c.shown("FrObnow") && c.shown(kPlan));
        QVERIFY(!c.shown(kGrid) && !c.shown("txtprf1"));
        QVERIFY(!c.find<QWidget>("txtserch")->isEnabled() && !c.find<QWidget>("cmbfile")->isEnabled());
        QCOMPARE(
            plan(c),
            (QStringList{QStringLiteral("Новая|DB|GERMANY|DL, EU, CQ 15, ITU 28, 51,00 / 10,00"),
                         QStringLiteral("Новая|Y9|ISLE OF THE LO|Y9, AF, CQ 33, ITU 57, -10,50 / -20,25"),
                         QStringLiteral("Изменена|DL|GERMANY|CQ 14 → 15; широта пусто → 51,00; долгота "
                                        "пусто → 10,00"),
                         QStringLiteral("Удаляется|DA|GERMANY|в файле такого префикса нет")}));
        QVERIFY(c.text("lblobnow").contains(c.w.dialogs.chosen));
        QVERIFY(c.text("lblobnow").contains(QStringLiteral("Новых строк: 2, изменённых: 1, удаляемых: 1.")));
        QVERIFY(c.text("lblobnow").contains(QStringLiteral("Из удаляемых 1 не найдут в файле замены")));
        QVERIFY(c.text("lblobnow").contains(QStringLiteral("Внимание: удаляется много строк.")));
        QCOMPARE(c.text("cmbda"), QStringLiteral("Да"));
        QCOMPARE(c.text("cmbnet"), QStringLiteral("Нет"));
        QCOMPARE(c.w.focus(), QStringLiteral("cmbnet"));
        QVERIFY(c.window->testAttribute(Qt::WA_KeyboardFocusChange)); // its frame is drawn
        QCOMPARE(stored(c), kBefore);
        QVERIFY(copies(c).isEmpty());
        c.press(Qt::Key_Return);
        QCOMPARE(stored(c), kBefore);
        QVERIFY(c.shown(kGrid) && c.shown("txtprf1") && !c.shown("FrObnow"));
        QCOMPARE(c.status(), QStringLiteral("Таблица стран осталась как была."));
        QVERIFY(c.quiet());
    }

    /// The name in the table and the operator's row stay; a new name is cut to 14 characters.
    void renewed()
    {
        CountryWindow c(germany);
        choose(c);
        c.click("cmbda");
        QCOMPARE(stored(c), (QStringList{QStringLiteral("UA|RUSSIAN|16|"), QStringLiteral("F|FRANCE|14|"),
                                         QStringLiteral("DL|GERMANY|15|"), QStringLiteral("UA9|RUSSIAN||"),
                                         QStringLiteral("ZS|SOUTH AFRICA||"), QStringLiteral("3B8|GAMBIA||"),
                                         QStringLiteral("DB1|MINE||1"), QStringLiteral("DB|GERMANY|15|"),
                                         QStringLiteral("Y9|ISLE OF THE LO|33|")}));
        QCOMPARE(c.column(kGrid, 0), (QStringList{"3B8", "DB", "DB1", "DL", "F", "UA", "UA9", "Y9", "ZS"}));
        QCOMPARE(c.status(), QStringLiteral("Таблица стран обновлена: добавлено 2, изменено 1, удалено 1."));
        QCOMPARE(copies(c).size(), 1);
        QVERIFY(c.shown(kGrid) && !c.shown("FrObnow") && c.find<QWidget>("txtserch")->isEnabled());
        choose(c); // the same once more
        QVERIFY(!c.shown("FrObnow"));
        QCOMPARE(c.status(), QStringLiteral("Таблица стран уже такая, как в файле."));
        QVERIFY(c.quiet());
    }

    /// The next key in the main window resolves by the new rows.
    void resolvesAtOnce()
    {
        CountryWindow c(germany);
        choose(c);
        c.click("cmbda");
        c.w.log->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(c.w.log.get()));
        c.w.edit("txtcall")->setFocus();
        c.w.type(QStringLiteral("y9a"));
        QCOMPARE(c.w.text("txtcontr"), QStringLiteral("ISLE OF THE LO"));
    }

    void keysAlone()
    {
        CountryWindow c(germany);
        choose(c);
        c.press(Qt::Key_Escape); // the question, not the window
        QVERIFY(c.window->isVisible() && c.shown(kGrid));
        choose(c);
        c.press(Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(c.w.focus(), QStringLiteral("cmbda"));
        c.press(Qt::Key_Return);
        QVERIFY(stored(c).contains(QStringLiteral("DB|GERMANY|15|")));
    }

    /// Closed and opened again, the window still asks.
    void questionStaysOpen()
    {
        CountryWindow c(germany);
        choose(c);
        c.reopen();
        QVERIFY(c.shown(kPlan));
        QCOMPARE(c.w.focus(), QStringLiteral("cmbnet"));
        c.click("cmbda");
        QVERIFY(stored(c).contains(QStringLiteral("DB|GERMANY|15|")));
    }

    void nothingChosen()
    {
        CountryWindow c(germany);
        c.click("cmbfile");
        QCOMPARE(c.w.dialogs.opened.size(), 1);
        QVERIFY(c.shown(kGrid) && !c.shown("FrObnow"));
        QVERIFY(c.quiet());
    }

    void badFiles_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("cut off") << QByteArray(kCountries).chopped(3);
        QTest::newRow("binary") << QByteArray(5000, '\0');
        QTest::newRow("something else") << QByteArray("<html><body>404</body></html>");
        QTest::newRow("a bad zone") << QByteArray(kCountries).replace("15:  28", "x5:  28");
    }

    void badFiles()
    {
        QFETCH(const QByteArray, bytes);
        CountryWindow c(germany);
        choose(c, bytes);
        QCOMPARE(c.w.messages.errors.size(), 1);
        QVERIFY(!c.shown("FrObnow") && c.shown(kGrid));
        QCOMPARE(stored(c), kBefore);
        QVERIFY(copies(c).isEmpty());
    }

    /// Another program changes the table while the question stands: nothing is written.
    void tableChangedMeanwhile()
    {
        CountryWindow c(germany);
        choose(c);
        c.sql(kFile, "UPDATE tbldxcc SET cq='99' WHERE prf='F'");
        c.click("cmbda");
        QCOMPARE(c.w.messages.errors.size(), 1);
        QVERIFY(c.shown(kPlan));
        QVERIFY(stored(c).contains(QStringLiteral("F|FRANCE|99|")) &&
                stored(c).contains(QStringLiteral("DL|GERMANY|14|")));
        c.click("cmbda"); // the list is that of now
        QVERIFY(stored(c).contains(QStringLiteral("DL|GERMANY|15|")));
    }

    /// A failure in the middle leaves the table as it was, and the question stays.
    void failsWhole()
    {
        CountryWindow c(germany);
        choose(c);
        c.sql(kFile, "CREATE TRIGGER no BEFORE DELETE ON tbldxcc BEGIN SELECT RAISE(ABORT,'нельзя'); END");
        c.click("cmbda");
        QCOMPARE(c.w.messages.errors.size(), 1);
        QCOMPARE(stored(c), kBefore);
        QVERIFY(c.shown(kPlan));
        c.sql(kFile, "DROP TRIGGER no");
        c.click("cmbda");
        QVERIFY(stored(c).contains(QStringLiteral("DL|GERMANY|15|")));
    }

    /// What stands in an open cell is stored before the table is compared.
    void openCell()
    {
        CountryWindow c(germany);
        c.clickCell(kGrid, 1, 4); // DA's zone
        c.press(Qt::Key_F2);
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.type("7");
        choose(c);
        QVERIFY(stored(c).contains(QStringLiteral("DA|GERMANY|7|1")));
        QCOMPARE(plan(c).filter(QStringLiteral("|DA|")), QStringList()); // the operator's own by now
    }

    void entryStays()
    {
        CountryWindow c(germany);
        c.enter("txtprf1", "q1");
        choose(c);
        c.click("cmbnet");
        QCOMPARE(c.text("txtprf1"), QStringLiteral("Q1"));
    }
};

QTEST_MAIN(CountryRenewalTest)
#include "countryrenewal.moc"
