// The window of the application for an award.
#include "awards/ui/blankview.h"
#include "support/application.h"

#include <QApplication>
#include <QKeyEvent>

using testsupport::addBlank;
using testsupport::addLog;
using testsupport::Application;
using testsupport::Installation;
using namespace testsupport::application;

namespace {

/// The bound boxes in the order of the tab key, and the fields that they show.
const QList<std::pair<const char *, const char *>> kBoxes = {
    {"txtaward", "award"},       {"txtDDATE", "DDATE"},           {"txtwybor", "wybor"},
    {"txtccall", "ccall"},       {"txtnname", "nname"},           {"txtADRESSTR1", "ADRESSTR1"},
    {"txtadresgor", "adresgor"}, {"txtadresstran", "adresstran"}, {"txtbband", "bband"}};

QString everything(const Application &a)
{
    return a.title("award,DDATE,wybor,ccall,nname,ADRESSTR1,adresgor,adresstran,mod,bband,contest,adresstrit,"
                   "txtps1,txtps2,txtps3");
}

bool isRussian(const QString &text)
{
    return std::any_of(text.begin(), text.end(),
                       [](QChar c) { return c.script() == QChar::Script_Cyrillic; });
}

} // namespace

class AwardApplicationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- the window

    void captions()
    {
        const Application a;
        QCOMPARE(a.window->objectName(), QStringLiteral("frmdipin"));
        QCOMPARE(a.window->windowTitle(), QStringLiteral("Diplom"));
        QCOMPARE(a.text("cmbrep"), QStringLiteral("Печать"));
        QCOMPARE(a.text("cmbend"), QStringLiteral("Выход"));
        for (const char *label :
             {"AWARD", "date of basic award", "QSL-card enclosed", "Call", "Band", "Emission"})
            QVERIFY2(a.hasLabel(label), label);
        QCOMPARE(a.headings(kGrid), QStringList({"Call", "Date", "time", "Band", "rsts", "rstr", "mult",
                                                 "point", "Remarks", "Country"}));
        QVERIFY(a.quiet());
    }

    void everyBoxSaysWhatItIs()
    {
        const Application a;
        for (const auto &[box, field] : kBoxes) {
            QVERIFY2(isRussian(a.tip(box)), box);
            QVERIFY2(isRussian(a.find(box)->accessibleName()), box);
        }
        for (const char *box : {"txtnname", "txtADRESSTR1", "txtadresgor", "txtadresstran"})
            QVERIFY2(isRussian(a.find(box)->placeholderText()), box); // these have no label
        QVERIFY(a.tip("txtemission").contains(QStringLiteral("не сохраняется и не печатается")));
    }

    void everythingIsInSight_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("laptop") << QSize(1346, 708);
        QTest::newRow("small") << QSize(640, 400);
    }
    void everythingIsInSight()
    {
        QFETCH(QSize, size);
        Application a(filled, false, size);
        a.find<QWidget>("txtemission")->setFocus();
        const QList<const char *> names = {"txtaward", "txtemission", "cmbrep", kGrid, "lblitog"};
        for (const char *name : names) {
            auto *widget = a.find<QWidget>(name);
            QVERIFY2(widget->width() > 0 && widget->height() > 0, name);
            if (size.width() > 1000)
                QVERIFY2(
                    a.window->rect().contains(QRect(widget->mapTo(a.window.get(), QPoint()), widget->size())),
                    name);
        }
        const auto *box = a.find("txtemission"); // scrolled to
        QVERIFY(a.window->rect().contains(box->mapTo(a.window.get(), box->rect().center())));
    }

    void firstBoxHasTheFocus()
    {
        const Application a(filled);
        QCOMPARE(a.w.focus(), QStringLiteral("txtaward"));
        QCOMPARE(a.find("txtaward")->selectedText(), QStringLiteral("W-100-U")); // as Tab brings it
    }

    void programLivesWithoutIt()
    {
        const Application a;
        QVERIFY(!a.window->testAttribute(Qt::WA_QuitOnClose));
    }

    // ---- title page

    void titlePageIsTheFirstRow()
    {
        const Application a([](Installation &in) {
            filled(in);
            in.sql(QStringLiteral("dbhelp.mdb"),
                   QStringLiteral("INSERT INTO tbltitul(award,ccall) VALUES('AAA','AA1A')"));
        });
        QStringList shown;
        for (const auto &[box, field] : kBoxes)
            shown.append(a.text(box));
        QCOMPARE(shown, QStringList({"W-100-U", "01.02.03", QStringLiteral("да"), "UA3XYZ",
                                     QStringLiteral("Иван Иванов"), QStringLiteral("ул. Мира, 5"),
                                     QStringLiteral("Тула"), QStringLiteral("Россия"), "14"}));
        QCOMPARE(a.text("txtemission"), QString());
    }

    void boxIsStored_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("field");
        for (const auto &[box, field] : kBoxes)
            QTest::newRow(box) << QString::fromLatin1(box) << QString::fromLatin1(field);
    }
    void boxIsStored()
    {
        QFETCH(QString, box);
        QFETCH(QString, field);
        Application a(filled);
        QStringList before = everything(a).split(QLatin1Char('|'));
        // Small letters stay, but for the callsign.
        const QString typed = QStringLiteral("ул. Лесная, Dom 7");
        const QString stored = box == QLatin1String("txtccall") ? typed.toUpper() : typed;
        a.enter(qPrintable(box), typed.toUtf8().constData());
        QString atPrint;
        a.w.reports.atPrint = [&] { atPrint = a.title(qPrintable(field)); };
        a.click("cmbrep");
        QCOMPARE(atPrint, stored);
        const QStringList after = everything(a).split(QLatin1Char('|'));
        int changed = 0;
        for (qsizetype i = 0; i < before.size(); ++i)
            changed += before[i] != after[i] ? 1 : 0;
        QCOMPARE(changed, 1);
        QCOMPARE(a.text(qPrintable(box)), stored);
        QVERIFY(a.quiet());
    }

    void boxIsStoredWhenItIsLeft()
    {
        Application a(filled);
        a.enter("txtaward", "Russian Award");
        QCOMPARE(a.title("award"), QStringLiteral("W-100-U"));
        a.press(Qt::Key_Return);
        QCOMPARE(a.title("award"), QStringLiteral("Russian Award"));
        QVERIFY(a.quiet());
    }

    void emissionIsBoundToNothing()
    {
        Application a(filled);
        const QString before = everything(a);
        a.enter("txtemission", "mixed Cw");
        a.click("cmbrep");
        QCOMPARE(a.text("txtemission"), QStringLiteral("mixed Cw"));
        a.window->close();
        a.window->show();
        QCOMPARE(a.text("txtemission"), QStringLiteral("mixed Cw"));
        QCOMPARE(everything(a), before);
        QVERIFY(a.quiet());
    }

    void fieldsOfTheBureauStay()
    {
        Application a(filled);
        a.enter("txtaward", "NEW");
        a.helpSql("UPDATE tbltitul SET contest='другое имя'");
        a.click("cmbrep");
        QCOMPARE(a.title("award,contest,mod"), QStringLiteral("NEW|другое имя|CW"));
    }

    // ---- keys

    void enterAndTabGoTheSameWay()
    {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Tab}) {
            Application a(filled);
            for (const auto &[box, field] : kBoxes) {
                QCOMPARE(a.w.focus(), QLatin1String(box));
                a.press(key);
                if (QLatin1String(box) != QLatin1String("txtbband"))
                    QVERIFY(a.find(qPrintable(a.w.focus()))->hasSelectedText());
            }
            QCOMPARE(a.w.focus(), QStringLiteral("txtemission"));
            a.press(key);
            QCOMPARE(a.w.focus(), QStringLiteral("cmbrep"));
            QVERIFY(a.w.reports.printed.isEmpty());
            if (key == Qt::Key_Tab) {
                a.press(key);
                QCOMPARE(a.w.focus(), QStringLiteral("cmbend"));
                a.press(key);
                QCOMPARE(a.w.focus(), QLatin1String(kGrid));
                a.press(key);
                QCOMPARE(a.w.focus(), QStringLiteral("txtaward"));
            } else {
                a.press(key);
                QCOMPARE(a.w.reports.printed.size(), 1);
            }
            QVERIFY(a.quiet());
        }
    }

    void escClosesAndSaves()
    {
        Application a(filled);
        a.enter("txtadresgor", "Орёл");
        a.press(Qt::Key_Escape);
        QVERIFY(!a.window->isVisible());
        QCOMPARE(a.title("adresgor"), QStringLiteral("Орёл"));
        QVERIFY(a.quiet());
    }

    void escInTheGridDropsFirst()
    {
        Application a(filled);
        a.clickCell(kGrid, 0, 8);
        a.type("abc"); // the cell is open
        a.press(Qt::Key_Escape);
        QCOMPARE(a.cell(kGrid, 0, 8), QStringLiteral("примечание"));
        QVERIFY(a.window->isVisible());
        a.type("abc");
        a.press(Qt::Key_Return); // the cell is closed, its row not saved
        QCoreApplication::processEvents();
        QCOMPARE(a.cell(kGrid, 0, 8), QStringLiteral("ABC"));
        a.press(Qt::Key_Escape);
        QCOMPARE(a.cell(kGrid, 0, 8), QStringLiteral("примечание"));
        QVERIFY(a.window->isVisible());
        a.press(Qt::Key_Escape);
        QVERIFY(!a.window->isVisible());
        QCOMPARE(a.blank("ps"), QStringList({"", QStringLiteral("примечание")}));
        QVERIFY(a.quiet());
    }

    void heldEscDoesNotCloseToo()
    {
        Application a(filled);
        a.clickCell(kGrid, 0, 8);
        a.type("abc");
        a.press(Qt::Key_Escape);
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier, {}, true);
        QCoreApplication::sendEvent(QApplication::focusWidget(), &held);
        QVERIFY(a.window->isVisible());
        a.press(Qt::Key_Escape);
        QVERIFY(!a.window->isVisible());
    }

    void exitCloses()
    {
        Application a(filled);
        a.enter("txtaward", "X");
        a.click("cmbend");
        QVERIFY(!a.window->isVisible());
        QCOMPARE(a.title("award"), QStringLiteral("X"));
        QVERIFY(a.quiet());
    }

    // ---- the blank

    void blankIsOrderedByCall()
    {
        const Application a(filled);
        QCOMPARE(a.gridRow(kGrid, 0),
                 QStringLiteral("DL1X|05.03.26|10:11|14|59|57|SSB|3|примечание|GERMANY"));
        QCOMPARE(a.gridRow(kGrid, 1), QStringLiteral("R2A|06.03.26|11:12|7|599|||||RUSSIAN"));
        QCOMPARE(a.column(kGrid, 0).size(), 2);
    }

    void rowIsTakenOut()
    {
        Application a(filled);
        QVERIFY(a.counts().startsWith(QStringLiteral("Строк: 2 ")));
        a.clickCell(kGrid, 0, 0);
        a.press(Qt::Key_Delete);
        QCOMPARE(a.blank(), QStringList("R2A"));
        QCOMPARE(a.column(kGrid, 0), QStringList("R2A"));
        QVERIFY(a.counts().startsWith(QStringLiteral("Строк: 1 ")));
        QVERIFY(a.quiet());
    }

    void countsStandBelow()
    {
        Application a([](Installation &in) {
            filled(in);
            addBlank(in, "ccall=R2A|ddate=07.03.26|bband=14|contr=RUSSIAN");
            addBlank(in, "ccall=");
            addLog(in, "ccall=DL1X|ddate=5.3.2026|bband=14|qslp=+");
        });
        QCOMPARE(a.counts(),
                 QStringLiteral("Строк: 4    позывных: 2    стран: 2    диапазонов: 2    без карточки: "
                                "2    без позывного: 1"));
        a.clickCell(kGrid, 1, 3); // "" DL1X R2A R2A
        a.type("21");
        QVERIFY(a.counts().contains(QStringLiteral("диапазонов: 2"))); // not stored so far
        a.click("txtaward");
        QVERIFY2(a.counts().contains(QStringLiteral("диапазонов: 3    без карточки: 3")),
                 qPrintable(a.counts()));
        a.leave();
        a.logSql("UPDATE TBLLOG1 SET bband='21'"); // the card arrives in another window
        a.comeBack();
        QVERIFY2(a.counts().contains(QStringLiteral("без карточки: 2")), qPrintable(a.counts()));
        QVERIFY(a.quiet());
    }

    /// Filling the blank row by row, the window reads it anew after each.
    void manyChangesAreCountedOnce()
    {
        testsupport::WithRig rig;
        Installation &in = rig.w.installation;
        ui::StatusLine status(rig.w.messages, nullptr);
        store::DataSource source(QStringLiteral("Data"), in.databases);
        source.setDatabaseName(in.file(QStringLiteral("dbiaru.mdb")));
        source.setRecordSource(QStringLiteral("select * from tbllogTemp order by ccall"));
        source.refresh();
        awards::BlankView view(in.databases, source, kGrid, status, nullptr);
        view.show();
        QCoreApplication::processEvents();
        const auto *line = view.findChild<QLabel *>(QStringLiteral("lblsvod"));
        const QString none =
            QStringLiteral("Строк: 0    позывных: 0    стран: 0    диапазонов: 0    без карточки: 0");
        QCOMPARE(line->text(), none);
        const auto add = [&] {
            source.addNew();
            source.setField(QStringLiteral("ccall"), QStringLiteral("R1A"));
            source.refresh();
        };
        for (int i = 0; i < 30; ++i)
            add();
        QCOMPARE(line->text(), none); // nothing has been counted on the way
        QCoreApplication::processEvents();
        QVERIFY(line->text().startsWith(QStringLiteral("Строк: 30    позывных: 1 ")));
        view.hide();
        add();
        QCoreApplication::processEvents();
        QVERIFY(line->text().startsWith(QStringLiteral("Строк: 30 "))); // nobody sees it
        view.show();
        QCoreApplication::processEvents();
        QVERIFY(line->text().startsWith(QStringLiteral("Строк: 31 ")));
    }

    void longBlankIsCountedInPieces()
    {
        const Application a(longBlank(1200));
        QTRY_COMPARE(a.text("lblsvod"),
                     QStringLiteral("Строк: 1200    позывных: 1200    стран: 0    диапазонов: "
                                    "1    без карточки: 1200"));
        QVERIFY(a.quiet());
    }

    // ---- printing

    void printsTheLayoutOfTheFolder()
    {
        Application a(filled);
        a.click("cmbrep");
        QCOMPARE(a.w.reports.printed, QStringList(a.w.installation.folder() + QStringLiteral("/diplom.rpt")));
        QVERIFY(a.quiet());
    }

    void printsWhatIsBeingTyped()
    {
        Application a(filled);
        a.enter("txtaward", "New Award");
        a.clickCell(kGrid, 1, 8);
        a.type("new"); // the cell is still open
        QStringList atPrint;
        a.w.reports.atPrint = [&] { atPrint = QStringList(a.title("award")) + a.blank("ccall,ps"); };
        a.click("cmbrep");
        QCOMPARE(atPrint, QStringList({"New Award", "R2A|NEW", QStringLiteral("DL1X|примечание")}));
        QCOMPARE(a.cell(kGrid, 1, 8), QStringLiteral("NEW"));
        QCOMPARE(a.w.focus(), QLatin1String(kGrid)); // in the same cell
        QCOMPARE(a.find<ui::DbGrid>(kGrid)->currentIndex().row(), 1);
        QCOMPARE(a.find<ui::DbGrid>(kGrid)->currentIndex().column(), 8);
        QVERIFY(a.quiet());
    }

    void printsInTheOrderOfCalls()
    {
        Application a(filled);
        a.clickCell(kGrid, 1, 0);
        a.type("a1a");
        QStringList atPrint;
        a.w.reports.atPrint = [&] { atPrint = a.column(kGrid, 0); };
        a.click("cmbrep");
        QCOMPARE(atPrint, QStringList({"A1A", "DL1X"}));
    }

    void printsWhatOthersHaveWritten()
    {
        Application a(filled);
        a.helpSql("UPDATE tbltitul SET adresgor='Омск'");
        addBlank(a.w.installation, "ccall=F1A");
        a.click("cmbrep");
        QCOMPARE(a.text("txtadresgor"), QStringLiteral("Омск"));
        QCOMPARE(a.column(kGrid, 0), QStringList({"DL1X", "F1A", "R2A"}));
    }

    void titleThatCannotBeStoredIsNotPrinted()
    {
        Application a(filled);
        a.helpSql(kForbidTitle);
        a.enter("txtaward", "Новый");
        a.click("cmbrep");
        QCOMPARE(a.w.messages.errors.size(), 1);
        QVERIFY(a.w.reports.printed.isEmpty());
        QCOMPARE(a.text("txtaward"), QStringLiteral("Новый"));
        QCOMPARE(a.title("award"), QStringLiteral("W-100-U"));
        a.helpSql(kAllow);
        a.click("cmbrep");
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.w.reports.printed.size(), 1);
        QCOMPARE(a.title("award"), QStringLiteral("Новый"));
        QCOMPARE(a.status(), QString());
    }

    void blankThatCannotBeStoredIsNotPrinted()
    {
        Application a(filled);
        a.logSql(kForbidBlank);
        a.enter("txtaward", "Новый");
        a.clickCell(kGrid, 0, 7);
        a.type("5"); // the cell is open
        a.click("cmbrep");
        QCOMPARE(a.w.messages.errors.size(), 1);
        QVERIFY(a.w.reports.printed.isEmpty());
        QCOMPARE(a.cell(kGrid, 0, 7), QStringLiteral("5"));
        QCOMPARE(a.title("award"), QStringLiteral("Новый"));
        a.logSql(kAllow);
        a.click("cmbrep");
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.w.reports.printed.size(), 1);
        QCOMPARE(a.blank("point"), QStringList({"", "5"}));
    }
};

QTEST_MAIN(AwardApplicationTest)
#include "awardapplication.moc"
