// The awards window's blank: its grid, the line below it, and the other windows that change it.
#include "support/awards.h"

#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>

using testsupport::addBlank;
using testsupport::awardContacts;
using testsupport::Awards;
using testsupport::Installation;
using namespace testsupport::award;

namespace {

/// The numbers of the line below the blank: rows, callsigns, countries, bands, rows without a card.
QList<int> counts(const Awards &a)
{
    QList<int> numbers;
    static const QRegularExpression number(QStringLiteral("\\d+"));
    auto found = number.globalMatch(a.text("lblsvod"));
    while (found.hasNext())
        numbers.append(found.next().captured().toInt());
    return numbers;
}

} // namespace

class AwardBlankTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void blankIsOrderedByCallsign()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in,
                     "ccall=R9Z|ddate=1|ttime=2|bband=3|rsts=4|rstr=5|mult=6|point=7|ps=прим|CONTR=8|ps1=9");
            addBlank(in, "ccall=A1A");
        });
        QCOMPARE(a.column(kBlank, 0), QStringList({"A1A", "R9Z"}));
        QCOMPARE(a.gridRow(kBlank, 1), QStringLiteral("R9Z|1|2|3|4|5|6|7|прим|8"));
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.column(kBlank, 0), QStringList({"A1A", "F5AB", "R9Z"}));
        QVERIFY(a.quiet());
    }

    void blankIsSharedWithTheBureau()
    {
        Awards a(awardContacts);
        qsl::QSLburo bureau({a.w.installation.databases, a.w.clock, a.w.messages, a.w.progress, a.w.reports});
        bureau.show();
        QVERIFY(activate(bureau));
        const auto *shared = bureau.findChild<ui::DbGrid *>(QLatin1String(kBlank));
        QVERIFY(activate(*a.window));
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.doubleClickCell(kStation, 0);
        QVERIFY(activate(bureau));
        QTRY_COMPARE(shared->model()->rowCount(), 1);
        QCOMPARE(shared->model()->index(0, 0).data().toString(), QStringLiteral("F5AB"));
        bureau.findChild<QPushButton *>(QStringLiteral("CMBDEL"))->click();
        QVERIFY(activate(*a.window));
        QTRY_COMPARE(a.column(kBlank, 0), QStringList());
        QVERIFY(a.quiet());
    }

    void typedInOneWindowIsReadInTheOther()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB|bband=14");
        });
        qsl::QSLburo bureau({a.w.installation.databases, a.w.clock, a.w.messages, a.w.progress, a.w.reports});
        bureau.show();
        QVERIFY(activate(bureau));
        const auto *shared = bureau.findChild<ui::DbGrid *>(QLatin1String(kBlank));
        QVERIFY(activate(*a.window));
        constexpr int kBand = 3;
        constexpr int kBureauBand = 3;
        a.clickCell(kBlank, 0, kBand);
        a.type("21");
        a.press(Qt::Key_Return); // the row has not been left
        QCOMPARE(a.blank("bband"), QStringList("14"));
        QVERIFY(activate(bureau));
        QTRY_COMPARE(a.blank("bband"), QStringList("21"));
        QTRY_COMPARE(shared->model()->index(0, kBureauBand).data().toString(), QStringLiteral("21"));
        auto *field = bureau.findChild<ui::FilterEdit *>(QStringLiteral("TXTBAND"));
        field->setFocus();
        field->selectAll();
        a.w.type(QStringLiteral("28"));
        QCOMPARE(a.blank("bband"), QStringList("21"));
        QVERIFY(activate(*a.window));
        QTRY_COMPARE(a.blank("bband"), QStringList("28"));
        QTRY_COMPARE(a.cell(kBlank, 0, kBand), QStringLiteral("28"));
        QVERIFY(a.quiet());
    }

    /// The row that was current stays so, wherever the others have put it.
    void comingBackKeepsTheRowOfTheBlank()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB|bband=14");
            addBlank(in, "ccall=F6AB|bband=14");
        });
        a.clickCell(kBlank, 1, 3);
        QVERIFY(activate(*a.w.log));
        addBlank(a.w.installation, "ccall=DL1AA|bband=14");
        QVERIFY(activate(*a.window));
        QTRY_COMPARE(a.column(kBlank, 0), QStringList({"DL1AA", "F5AB", "F6AB"}));
        a.find<QWidget>(kBlank)->setFocus();
        a.type("21");
        a.press(Qt::Key_Return);
        a.find<QWidget>(kCalls)->setFocus();
        QCOMPARE(a.blank("ccall,bband"), QStringList({"F5AB|14", "F6AB|21", "DL1AA|14"}));
        QVERIFY(a.quiet());
    }

    /// Its key has been given to another contact: nothing may be typed into that one.
    void rowThatIsGoneLeavesNoCurrentCell()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB|bband=14");
            addBlank(in, "ccall=F6AB|bband=14");
        });
        a.clickCell(kBlank, 1, 3);
        QVERIFY(activate(*a.w.log));
        a.sql(kLog, "DELETE FROM tbllogTEMP");
        addBlank(a.w.installation, "ccall=DL1AA|bband=14");
        addBlank(a.w.installation, "ccall=DL1AB|bband=14");
        QVERIFY(activate(*a.window));
        QTRY_COMPARE(a.column(kBlank, 0), QStringList({"DL1AA", "DL1AB"}));
        QVERIFY(!a.find<ui::DbGrid>(kBlank)->currentIndex().isValid());
        a.type("21");
        a.find<QWidget>(kCalls)->setFocus();
        QCOMPARE(a.blank("bband"), QStringList({"14", "14"}));
        QVERIFY(a.quiet());
    }

    /// A double click into the window behind: its second press must find the row of the first.
    void rowsStayUnderTheMouseThatBringsTheWindow()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB|bband=14");
            addBlank(in, "ccall=F6AB|bband=14");
        });
        QVERIFY(activate(*a.w.log));
        addBlank(a.w.installation, "ccall=DL1AA|bband=14");
        const auto *grid = a.find<ui::DbGrid>(kBlank);
        const QPoint place =
            grid->viewport()->mapTo(a.window.get(), grid->visualRect(grid->model()->index(1, 0)).center());
        QTest::mousePress(a.window->windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
        QVERIFY(activate(*a.window));
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
        QTest::mouseRelease(a.window->windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
        QCOMPARE(a.column(kBlank, 0), QStringList({"F5AB", "F6AB"}));
        QTRY_COMPARE(a.column(kBlank, 0), QStringList({"DL1AA", "F5AB", "F6AB"}));
        QCOMPARE(grid->currentIndex().row(), 2); // the one that was pressed
    }

    void blankEmptiedElsewhereEndsTheEdit()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB|bband=14");
        });
        a.clickCell(kBlank, 0, 3);
        a.type("21");
        a.press(Qt::Key_Return);
        a.sql(kLog, "DELETE FROM tbllogTEMP");
        a.click("cmbUsl");
        QCOMPARE(a.w.messages.errors,
                 QStringList(QStringLiteral(
                     "Строка файла dbiaru.mdb удалена или изменена в другом окне или другой программой. "
                     "Правка не сохранена: «21».")));
        QTRY_COMPARE(a.column(kBlank, 0), QStringList());
        a.click("cmbUsl"); // the window goes on working
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.blank(), QStringList("F5AB"));
        QCOMPARE(a.w.messages.errors.size(), 1);
    }

    void remarksAreTypedIntoTheBlank()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB|bband=14");
            addBlank(in, "ccall=F6AB|bband=14");
        });
        a.clickCell(kBlank, 0, 8);
        a.type("о'кей");
        a.click("cmbblanc"); // the cell is still open
        QCOMPARE(a.blank("ps"), QStringList({"О'КЕЙ", ""}));
        a.clickCell(kBlank, 1, 0);
        a.press(Qt::Key_Delete);
        QCOMPARE(a.blank(), QStringList("F5AB"));
        QCOMPARE(counts(a), QList<int>({1, 1, 0, 1, 1}));
        QVERIFY(a.quiet());
    }

    void countsOfTheBlank()
    {
        Awards a(awardContacts);
        QCOMPARE(counts(a), QList<int>({0, 0, 0, 0, 0}));
        a.tick("Check1");
        a.w.messages.yes = true;
        for (const char *call : {"UA3AB", "R3AB"}) {
            a.clickRow(kPrefixes, "UA");
            a.clickRow(kCalls, call);
            a.doubleClickCell(kStation, 0);
        }
        QCOMPARE(counts(a), QList<int>({2, 2, 1, 2, 1})); // a card of UA3AB
        a.clickRow(kPrefixes, "DL");
        a.clickRow(kCalls, "DL1AA");
        a.doubleClickCell(kStation, 0);
        a.doubleClickCell(kStation, 1);
        QCOMPARE(counts(a), QList<int>({4, 3, 2, 2, 2}));
        a.click("Command3");
        QCOMPARE(counts(a), QList<int>({0, 0, 0, 0, 0}));
    }

    void blankIsEmptiedWithoutAQuestion()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            for (const char *call : {"ccall=F5AB", "ccall=F6AB", "ccall=F'X"})
                addBlank(in, call);
        });
        a.clickCell(kBlank, 0, 0);
        a.type("x"); // an open cell goes with its row
        a.click("Command3");
        QCOMPARE(a.blank(), QStringList());
        QCOMPARE(a.column(kBlank, 0), QStringList());
        QCOMPARE(a.log("ccall").size(), 8);
        a.click("Command3");
        QVERIFY(a.quiet());
    }

    void emptyingThatFails()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB");
            addBlank(in, "ccall=F6AB");
        });
        a.sql(kLog, "CREATE TRIGGER no BEFORE DELETE ON tbllogTEMP WHEN OLD.ccall='F6AB' BEGIN SELECT "
                    "RAISE(ABORT,'нельзя'); END");
        a.click("Command3");
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.blank(), QStringList({"F5AB", "F6AB"}));
        QCOMPARE(a.column(kBlank, 0), QStringList({"F5AB", "F6AB"}));
        a.sql(kLog, "DROP TRIGGER no");
        a.click("Command3");
        QCOMPARE(a.blank(), QStringList());
        QCOMPARE(a.w.messages.errors.size(), 1);
    }

    void applicationIsAsked()
    {
        Awards a(awardContacts);
        QSignalSpy asked(a.window.get(), &awards::frmDIPLOM::applicationAsked);
        addBlank(a.w.installation, "ccall=F5AB");
        a.click("cmbblanc");
        QCOMPARE(asked.size(), 1);
        QCOMPARE(a.column(kBlank, 0), QStringList("F5AB"));
        a.tick("cmbblanc");
        QCOMPARE(asked.size(), 2);
        QVERIFY(a.quiet());
    }
};

QTEST_MAIN(AwardBlankTest)
#include "awardblank.moc"
