// The window of the application for an award: files that fail; leaving it, coming back and closing.
#include "support/application.h"

#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QPushButton>
#include <QScrollBar>

using testsupport::addBlank;
using testsupport::Application;
using testsupport::Installation;
using namespace testsupport::application;

namespace {

void replaceFile(const Installation &in, const char *name, const QByteArray &content)
{
    QFile file(in.file(QLatin1String(name)));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be replaced", name);
}

} // namespace

class AwardApplicationSafetyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- files that fail

    void missingFile_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("damaged");
        for (const char *file : {"dbhelp.mdb", "dbiaru.mdb"}) {
            QTest::addRow("%s missing", file) << QString::fromLatin1(file) << false;
            QTest::addRow("%s damaged", file) << QString::fromLatin1(file) << true;
        }
    }
    void missingFile()
    {
        QFETCH(QString, file);
        QFETCH(bool, damaged);
        testsupport::WithRig rig(filled);
        const QString path = rig.w.installation.file(file);
        if (damaged)
            replaceFile(rig.w.installation, qPrintable(file), QByteArray(4096, 'x'));
        else
            QVERIFY(QFile::remove(path));
        store::Library databases({rig.w.installation.folder(), false}, rig.w.installation.userFolder());
        awards::frmdipin window({databases, rig.w.messages, rig.w.reports});
        QVERIFY(rig.w.messages.errors.isEmpty()); // over the window, once it is there
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QCoreApplication::processEvents();
        QCOMPARE(rig.w.messages.errors.size(), 1);
        const bool title = file == QLatin1String("dbiaru.mdb"); // what still works
        QCOMPARE(window.findChild<ui::FilterEdit *>(QStringLiteral("txtccall"))->text(),
                 title ? QStringLiteral("UA3XYZ") : QString());
        QCOMPARE(window.findChild<ui::FilterEdit *>(QStringLiteral("txtccall"))->isReadOnly(), !title);
        QCOMPARE(window.findChild<ui::DbGrid *>(QLatin1String(kGrid))->model()->rowCount(), title ? 0 : 2);
        rig.w.type(QStringLiteral("ab")); // into txtaward
        QCOMPARE(rig.w.messages.errors.size(), 1);
        QCOMPARE(window.findChild<ui::FilterEdit *>(QStringLiteral("txtaward"))->text(),
                 title ? QStringLiteral("ab") : QString());
        window.findChild<QPushButton *>(QStringLiteral("cmbrep"))->click();
        QCOMPARE(rig.w.messages.errors.size(), 2);
        QVERIFY(rig.w.reports.printed.isEmpty());
        QVERIFY(window.close());
        QCOMPARE(rig.w.messages.errors.size(), 2);
        QVERIFY(rig.w.messages.asked.isEmpty());
    }

    void fileThatComesBackIsUsed()
    {
        Application a([](Installation &in) {
            filled(in);
            if (!QFile::rename(in.file(QStringLiteral("dbhelp.mdb")), in.file(QStringLiteral("away"))))
                qFatal("not renamed");
        });
        QCOMPARE(a.w.messages.errors.size(), 1);
        QVERIFY(a.find("txtaward")->isReadOnly());
        QVERIFY(!a.status().isEmpty());
        a.leave();
        QVERIFY(QFile::rename(a.w.installation.file(QStringLiteral("away")),
                              a.w.installation.file(QStringLiteral("dbhelp.mdb"))));
        a.comeBack();
        QCOMPARE(a.text("txtaward"), QStringLiteral("W-100-U"));
        QVERIFY(!a.find("txtaward")->isReadOnly());
        QCOMPARE(a.status(), QString());
        QCOMPARE(a.w.messages.errors.size(), 1);
    }

    void titlePageWithoutARow()
    {
        Application a([](Installation &in) {
            in.sql(QStringLiteral("dbhelp.mdb"), QStringLiteral("DELETE FROM tbltitul"));
        });
        QVERIFY(a.find("txtaward")->isReadOnly()); // what is typed would vanish
        QVERIFY2(a.status().contains(QStringLiteral("нет строки")), qPrintable(a.status()));
        a.click("cmbrep");
        QCOMPARE(a.w.reports.printed.size(), 1);
        QVERIFY(a.quiet());
    }

    void readOnlyFolder()
    {
        Application a(filled, true);
        QVERIFY2(a.status().contains(QStringLiteral("только для чтения")), qPrintable(a.status()));
        a.click("cmbrep"); // printing needs no writing
        QCOMPARE(a.w.reports.printed.size(), 1);
        QCOMPARE(a.status(), QString());
        a.click("txtaward");
        a.type("x");
        QCOMPARE(a.text("txtaward"), QStringLiteral("W-100-U"));
        QVERIFY2(a.status().contains(QStringLiteral("только для чтения")), qPrintable(a.status()));
        a.click("txtemission");
        a.type("x");
        QCOMPARE(a.text("txtemission"), QStringLiteral("x"));
        a.clickCell(kGrid, 0, 7);
        a.type("5");
        QCOMPARE(a.cell(kGrid, 0, 7), QStringLiteral("3"));
        QVERIFY(a.quiet());
        a.press(Qt::Key_Delete);
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.column(kGrid, 0).size(), 2);
        a.press(Qt::Key_Escape);
        QVERIFY(!a.window->isVisible());
        QCOMPARE(a.w.messages.errors.size(), 1);
        QVERIFY(a.w.messages.asked.isEmpty());
    }

    // ---- leaving, coming back, closing

    void unsavedEdit_data()
    {
        QTest::addColumn<bool>("title");
        QTest::newRow("title page") << true;
        QTest::newRow("blank") << false;
    }
    void unsavedEdit()
    {
        QFETCH(bool, title);
        Application a(filled);
        if (title) {
            a.helpSql(kForbidTitle);
            a.enter("txtnname", "Другой");
        } else {
            a.logSql(kForbidBlank);
            a.clickCell(kGrid, 0, 7);
            a.type("5"); // the cell is open
        }
        a.w.messages.yes = false;
        a.click("cmbend");
        QVERIFY(a.window->isVisible());
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.w.messages.asked,
                 QStringList(ui::programTitle() + QStringLiteral(": ") + QString::fromUtf8(kNoSave)));
        QCOMPARE(title ? a.text("txtnname") : a.cell(kGrid, 0, 7),
                 title ? QStringLiteral("Другой") : QStringLiteral("5"));
        a.w.messages.yes = true;
        a.click("cmbend");
        QVERIFY(!a.window->isVisible());
        a.leave(); // an open cell loses the focus, too
        if (title)
            a.helpSql(kAllow);
        else
            a.logSql(kAllow);
        const int errors = int(a.w.messages.errors.size());
        a.window->show();
        a.comeBack();
        QCOMPARE(a.text("txtnname"), QStringLiteral("Иван Иванов"));
        QCOMPARE(a.cell(kGrid, 0, 7), QStringLiteral("3"));
        QCOMPARE(a.title("nname"), QStringLiteral("Иван Иванов"));
        QCOMPARE(a.blank("point"), QStringList({"", "3"}));
        QCOMPARE(a.w.messages.errors.size(), errors);
    }

    void oneFailureDoesNotKeepTheOtherFromBeingSaved()
    {
        Application a(filled);
        a.helpSql(kForbidTitle);
        a.enter("txtnname", "Другой");
        a.clickCell(kGrid, 0, 7);
        QCOMPARE(a.title("nname"), QStringLiteral("Иван Иванов"));
        QVERIFY(!a.status().isEmpty());
        a.helpSql(kAllow);
        a.logSql(kForbidBlank);
        a.type("5");
        a.click("cmbend");
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.w.messages.asked.size(), 1);
        QVERIFY(!a.window->isVisible());
        QCOMPARE(a.title("nname"), QStringLiteral("Другой"));
    }

    void comingBackReadsAnew()
    {
        Application a(filled);
        a.leave();
        a.helpSql("UPDATE tbltitul SET adresgor='Омск'");
        addBlank(a.w.installation, "ccall=F1A");
        a.comeBack();
        QCOMPARE(a.text("txtadresgor"), QStringLiteral("Омск"));
        QCOMPARE(a.column(kGrid, 0), QStringList({"DL1X", "F1A", "R2A"}));
        QVERIFY(a.quiet());
    }

    void leavingSaves()
    {
        Application a(filled);
        a.enter("txtaward", "Новый");
        a.leave();
        QCOMPARE(a.title("award"), QStringLiteral("Новый"));
        a.comeBack();
        a.clickCell(kGrid, 0, 7);
        a.type("5"); // the cell is open
        a.leave();
        QCOMPARE(a.blank("point"), QStringList({"", "5"}));
        QVERIFY(a.quiet());
    }

    void editThatCannotBeSavedIsNotReadOver()
    {
        Application a(filled);
        a.helpSql(kForbidTitle);
        a.logSql(kForbidBlank);
        a.clickCell(kGrid, 0, 7);
        a.type("5");
        a.press(Qt::Key_Return);
        QCoreApplication::processEvents();
        a.leave();
        QVERIFY(a.quiet()); // no box over the other window
        QVERIFY(!a.status().isEmpty());
        addBlank(a.w.installation, "ccall=A1A");
        a.logSql(kAllow);
        a.comeBack();
        QCOMPARE(a.cell(kGrid, 0, 0), QStringLiteral("DL1X"));
        QCOMPARE(a.cell(kGrid, 0, 7), QStringLiteral("5"));
        QCOMPARE(a.blank("point"), QStringList({"", "3", ""})); // nobody has left the row
        a.press(Qt::Key_Escape);                                // given up
        QCOMPARE(a.cell(kGrid, 0, 7), QStringLiteral("3"));
        a.enter("txtaward", "Новый");
        a.leave();
        a.comeBack();
        QCOMPARE(a.text("txtaward"), QStringLiteral("Новый"));
        QCOMPARE(a.column(kGrid, 0), QStringList({"A1A", "DL1X", "R2A"}));
        QVERIFY(a.quiet());
    }

    void ownDialogReadsNothingAnew()
    {
        Application a(filled);
        QDialog dialog(a.window.get());
        dialog.setModal(true);
        dialog.show();
        QTRY_COMPARE(QApplication::activeWindow(), &dialog);
        a.helpSql("UPDATE tbltitul SET adresgor='Омск'");
        dialog.hide();
        a.comeBack();
        QCOMPARE(a.text("txtadresgor"), QStringLiteral("Тула"));
        a.leave();
        a.comeBack();
        QCOMPARE(a.text("txtadresgor"), QStringLiteral("Омск"));
    }

    void placeInTheBlankStays()
    {
        Application a(longBlank(500));
        auto *grid = a.find<ui::DbGrid>(kGrid);
        a.clickCell(kGrid, 0, 2);
        grid->showLastRow();
        a.clickCell(kGrid, 450, 3);
        const int place = grid->verticalScrollBar()->value();
        QVERIFY(place > 0);
        a.leave();
        addBlank(a.w.installation, "ccall=Z1A");
        a.comeBack();
        QCOMPARE(grid->model()->rowCount(), 501);
        QCOMPARE(grid->currentIndex().row(), 450);
        QCOMPARE(grid->currentIndex().column(), 3);
        QCOMPARE(grid->verticalScrollBar()->value(), place);
        QCOMPARE(a.w.focus(), QLatin1String(kGrid));
        a.type("7");
        a.click("cmbrep");
        QCOMPARE(a.cell(kGrid, 450, 3), QStringLiteral("7"));
        QCOMPARE(a.cell(kGrid, 450, 0), QStringLiteral("R1450"));
        QVERIFY(a.quiet());
    }

    void emptiedBlankIsSeen()
    {
        Application a(filled);
        a.clickCell(kGrid, 1, 3);
        a.leave();
        a.logSql("DELETE FROM tbllogTEMP");
        a.comeBack();
        QCOMPARE(a.column(kGrid, 0), QStringList());
        QVERIFY(a.counts().startsWith(QStringLiteral("Строк: 0 ")));
        a.click("cmbrep");
        QCOMPARE(a.w.reports.printed.size(), 1);
        QVERIFY(a.quiet());
    }

    void shownAgainReadsAnew()
    {
        Application a(filled);
        a.click(kGrid);
        a.window->close();
        a.helpSql("UPDATE tbltitul SET adresgor='Омск'");
        addBlank(a.w.installation, "ccall=F1A");
        a.window->show();
        a.comeBack();
        QCOMPARE(a.text("txtadresgor"), QStringLiteral("Омск"));
        QCOMPARE(a.column(kGrid, 0).size(), 3);
        QVERIFY(a.counts().startsWith(QStringLiteral("Строк: 3 ")));
        QCOMPARE(a.w.focus(), QStringLiteral("txtaward"));
        QVERIFY(a.quiet());
    }
};

QTEST_MAIN(AwardApplicationSafetyTest)
#include "awardapplicationsafety.moc"
