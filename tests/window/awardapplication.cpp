// The window of the application for an award.
#include "awards/ui/blankview.h"
#include "support/application.h"

#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QKeyEvent>
#include <QPushButton>
#include <QScrollBar>

using testsupport::addBlank;
using testsupport::addLog;
using testsupport::Application;
using testsupport::Installation;

namespace {

constexpr auto kGrid = "DBGrid1";
constexpr auto kNoSave = "Правка не сохранена. Закрыть окно без неё?";
constexpr auto kForbidTitle =
    "CREATE TRIGGER no BEFORE UPDATE ON tbltitul BEGIN SELECT RAISE(ABORT,'нельзя'); END";
constexpr auto kForbidBlank =
    "CREATE TRIGGER no BEFORE UPDATE ON tbllogTEMP BEGIN SELECT RAISE(ABORT,'нельзя'); END";
constexpr auto kAllow = "DROP TRIGGER no";

/// The bound boxes in the order of the tab key, and the fields that they show.
const QList<std::pair<const char *, const char *>> kBoxes = {
    {"txtaward", "award"},       {"txtDDATE", "DDATE"},           {"txtwybor", "wybor"},
    {"txtccall", "ccall"},       {"txtnname", "nname"},           {"txtADRESSTR1", "ADRESSTR1"},
    {"txtadresgor", "adresgor"}, {"txtadresstran", "adresstran"}, {"txtbband", "bband"}};

/// A title page and a blank of two rows.
void filled(const Installation &in)
{
    in.sql(QStringLiteral("dbhelp.mdb"),
           QStringLiteral("UPDATE tbltitul SET award='W-100-U',DDATE='01.02.03',wybor='да',ccall='UA3XYZ',"
                          "nname='Иван Иванов',ADRESSTR1='ул. Мира, 5',adresgor='Тула',adresstran='Россия',"
                          "bband='14',mod='CW',contest='имя на карточке'"));
    addBlank(in, "ccall=R2A|ddate=06.03.26|ttime=11:12|bband=7|rsts=599|contr=RUSSIAN");
    addBlank(in, "ccall=DL1X|ddate=05.03.26|ttime=10:11|bband=14|rsts=59|rstr=57|mult=SSB|point=3|"
                 "ps=примечание|ps1=RTTY|contr=GERMANY");
}

/// A blank of so many rows, R1000 and up.
std::function<void(Installation &)> longBlank(int rows)
{
    return [rows](Installation &in) {
        in.sql(QStringLiteral("dbiaru.mdb"),
               QStringLiteral("WITH RECURSIVE n(i) AS (VALUES(1000) UNION ALL SELECT i+1 FROM n WHERE i<%1) "
                              "INSERT INTO tbllogTEMP(ccall,bband) SELECT 'R'||i,'14' FROM n")
                   .arg(1000 + rows - 1));
    };
}

void replaceFile(const Installation &in, const char *name, const QByteArray &content)
{
    QFile file(in.file(QLatin1String(name)));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be replaced", name);
}

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

QTEST_MAIN(AwardApplicationTest)
#include "awardapplication.moc"
