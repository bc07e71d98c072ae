// The grid of contacts: editing in place, saving, deleting.
#include "support/window.h"

#include "ui/dbgrid.h"

#include <QApplication>
#include <QClipboard>

using testsupport::Installation;
using testsupport::Window;

namespace {

constexpr auto kLog = "dbiaru.mdb";

void threeContacts(Installation &in)
{
    for (const char *call : {"DL1A", "DL1B", "DL1C"})
        in.addContact(QLatin1String(call), QStringLiteral("05.03.26"), QStringLiteral("GERMANY"));
}

constexpr int kTown = 11;

} // namespace

class GridTest : public QObject {
    Q_OBJECT

    static QStringList towns(const Window &w)
    {
        return w.installation.rows(QLatin1String(kLog),
                                   QStringLiteral("SELECT QTH FROM TBLLOG1 ORDER BY rowid"));
    }
    static void go(ui::DbGrid *grid, int row, int column)
    {
        grid->setFocus();
        grid->setCurrentIndex(grid->model()->index(row, column));
    }

private Q_SLOTS:
    void typedUpperCaseAndSavedWhenLeft()
    {
        Window w(threeContacts);
        auto *grid = w.find<ui::DbGrid>("DBGrid1");
        go(grid, 1, kTown);
        w.type(QStringLiteral("köln ё'"));
        QVERIFY(qobject_cast<ui::FilterEdit *>(QApplication::focusWidget()) != nullptr);
        QCOMPARE(qobject_cast<ui::FilterEdit *>(QApplication::focusWidget())->text(),
                 QStringLiteral("KÖLN Ё'"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(towns(w), QStringList({"", "", ""})); // the row has not been left
        go(grid, 2, kTown);
        QCOMPARE(towns(w), QStringList({"", "KÖLN Ё'", ""}));
    }

    void pasteIsUpperCased()
    {
        Window w(threeContacts);
        auto *grid = w.find<ui::DbGrid>("DBGrid1");
        go(grid, 0, kTown);
        grid->edit(grid->currentIndex());
        QApplication::clipboard()->setText(QStringLiteral("bonn\nплац"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_V, Qt::ControlModifier);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        go(grid, 1, 0);
        QCOMPARE(towns(w).front(), QStringLiteral("BONN ПЛАЦ"));
    }

    void savedByLeavingTheGridByRecordingAndByClosing()
    {
        Window w(threeContacts);
        auto *grid = w.find<ui::DbGrid>("DBGrid1");
        go(grid, 0, kTown);
        w.type(QStringLiteral("a"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        w.edit("txtcall")->setFocus();
        QCOMPARE(towns(w), QStringList({"A", "", ""}));
        go(grid, 1, kTown);
        w.type(QStringLiteral("b")); // the cell is still open
        w.press(Qt::Key_F4);
        QCOMPARE(towns(w), QStringList({"A", "B", ""}));
        w.log->tick();
        w.press(Qt::Key_Backspace); // the day
        go(grid, 2, kTown);
        w.type(QStringLiteral("c"));
        w.log->close();
        QCOMPARE(towns(w), QStringList({"A", "B", "C"}));
    }

    void escapeDropsTheChange()
    {
        Window w(threeContacts);
        auto *grid = w.find<ui::DbGrid>("DBGrid1");
        go(grid, 0, kTown);
        w.type(QStringLiteral("a"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape); // the cell
        go(grid, 0, kTown + 1);
        w.type(QStringLiteral("b"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCoreApplication::processEvents(); // the cell closes
        QCOMPARE(grid->model()->index(0, kTown + 1).data().toString(), QStringLiteral("B"));
        QTest::keyClick(grid, Qt::Key_Escape); // the row
        QCOMPARE(grid->model()->index(0, kTown + 1).data().toString(), QString());
        go(grid, 1, 0);
        QCOMPARE(w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT QTH||NNAME FROM TBLLOG1")),
                 QStringList({"", "", ""}));
    }

    void fieldsThatTheQueryDoesNotDeliver()
    {
        Window w(threeContacts);
        w.press(Qt::Key_Backspace); // the day: without mult
        auto *grid = w.find<ui::DbGrid>("DBGrid1");
        const auto editable = [&](int column) {
            return (grid->model()->flags(grid->model()->index(0, column)) & Qt::ItemIsEditable) != 0;
        };
        QVERIFY(editable(kTown));
        QVERIFY(!editable(6));
        QCOMPARE(grid->model()->index(0, 6).data().toString(), QString());
    }

    void deleteAsks()
    {
        Window w(threeContacts);
        auto *grid = w.find<ui::DbGrid>("DBGrid1");
        go(grid, 1, 0);
        w.messages.yes = false;
        QTest::keyClick(grid, Qt::Key_Delete);
        QCOMPARE(w.messages.asked.size(), 1);
        QVERIFY(w.messages.asked.front().startsWith(QStringLiteral("Удаление данных: ")));
        QVERIFY(w.messages.asked.front().contains(QStringLiteral("DL1B")));
        QCOMPARE(towns(w).size(), 3);
        w.messages.yes = true;
        QTest::keyClick(grid, Qt::Key_Delete);
        QCOMPARE(w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall FROM TBLLOG1")),
                 QStringList({"DL1A", "DL1C"}));
        QCOMPARE(w.gridCalls(), QStringList({"DL1A", "DL1C"}));
        // Inside an open cell Delete deletes a character.
        go(grid, 0, 0);
        grid->edit(grid->currentIndex());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
        QCOMPARE(w.messages.asked.size(), 2);
    }

    void rowThatCannotBeSavedStays()
    {
        Window w(threeContacts);
        auto *grid = w.find<ui::DbGrid>("DBGrid1");
        go(grid, 0, kTown);
        w.type(QStringLiteral("a"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        store::Connection other(w.installation.file(QLatin1String(kLog)), store::OpenMode::ReadWrite);
        auto lock = std::make_unique<store::Transaction>(other);
        grid->setCurrentIndex(grid->model()->index(1, kTown));
        QCOMPARE(w.messages.errors.size(), 1);
        QCOMPARE(grid->currentIndex().row(), 0);
        QCOMPARE(grid->model()->index(0, kTown).data().toString(), QStringLiteral("A"));
        // The mouse does not lead away either, and what is marked is where typing goes.
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, Qt::NoModifier,
                          grid->visualRect(grid->model()->index(2, kTown)).center());
        QCoreApplication::processEvents();
        QCOMPARE(w.messages.errors.size(), 2);
        QCOMPARE(grid->selectionModel()->selectedIndexes(), QModelIndexList{grid->currentIndex()});
        QCOMPARE(grid->currentIndex().row(), 0);
        lock.reset();
        grid->setCurrentIndex(grid->model()->index(1, kTown));
        QCOMPARE(towns(w), QStringList({"A", "", ""}));
    }

    void closingWithARowThatCannotBeSavedAsks()
    {
        Window w(threeContacts);
        auto *grid = w.find<ui::DbGrid>("DBGrid1");
        go(grid, 0, kTown);
        w.type(QStringLiteral("a"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        store::Connection other(w.installation.file(QLatin1String(kLog)), store::OpenMode::ReadWrite);
        auto lock = std::make_unique<store::Transaction>(other);
        w.messages.yes = false;
        w.log->close();
        QVERIFY(w.log->isVisible());
        QCOMPARE(w.messages.asked.constLast(),
                 QStringLiteral("Zhurnal: Правка не сохранена. Закончить работу без неё?"));
        lock.reset();
        w.log->close();
        QVERIFY(!w.log->isVisible());
        QCOMPARE(w.messages.asked.size(), 1);
        QCOMPARE(towns(w), QStringList({"A", "", ""}));
    }

    void rowDeletedElsewhereIsToldOnceAndGivenUp()
    {
        Window w(threeContacts);
        auto *grid = w.find<ui::DbGrid>("DBGrid1");
        go(grid, 1, kTown);
        w.type(QStringLiteral("köln"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        w.installation.sql(QLatin1String(kLog), QStringLiteral("DELETE FROM TBLLOG1 WHERE ccall='DL1B'"));
        go(grid, 2, kTown);
        QCOMPARE(w.messages.errors,
                 QStringList(QStringLiteral(
                     "Строка файла dbiaru.mdb удалена или изменена в другом окне или другой программой. "
                     "Правка не сохранена: «KÖLN».")));
        QTRY_COMPARE(grid->model()->rowCount(), 2); // read anew
        go(grid, 0, kTown);
        w.click("txtcall");
        go(grid, 1, kTown);
        w.type(QStringLiteral("ulm"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        w.click("txtcall");
        QCOMPARE(towns(w), QStringList({"", "ULM"}));
        QCOMPARE(w.messages.errors.size(), 1);
    }
};

QTEST_MAIN(GridTest)
#include "grid.moc"
