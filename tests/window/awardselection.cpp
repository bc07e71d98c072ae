// The awards window's selection frame, which fills the blank in one go; the window as a whole.
#include "support/awards.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QSignalSpy>

using testsupport::addBlank;
using testsupport::addLog;
using testsupport::awardContacts;
using testsupport::Awards;
using testsupport::Installation;
using namespace testsupport::award;

namespace {

/// Shows the selection frame and types entries.
void select(Awards &a, const QStringList &entries)
{
    if (!a.shown("frWyb"))
        a.click("cmbUsl");
    a.find<QWidget>("txtWybor")->setFocus();
    for (const QString &entry : entries) {
        a.w.type(entry);
        a.press(Qt::Key_Return);
    }
}

} // namespace

class AwardSelectionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void doubleClickFillsOnce()
    {
        Awards a(awardContacts);
        a.click("cmbUsl");
        a.type("F5AB");
        a.press(Qt::Key_Return);
        a.doubleClick("cmbWybor");
        QCOMPARE(a.blank(), QStringList({"F5AB", ""}));
    }

    // ---- the selection frame

    void selectionFrame()
    {
        Awards a(awardContacts);
        a.click("cmbUsl");
        QVERIFY(a.shown("frWyb"));
        QCOMPARE(a.w.focus(), QStringLiteral("txtWybor"));
        QCOMPARE(a.find<QGroupBox>("frWyb")->title(), QStringLiteral("Выбор условий"));
        QVERIFY(a.hasLabel("Выбор по -"));
        QCOMPARE(a.find<QRadioButton>("opWyb_0")->text(), QStringLiteral("Позывным"));
        QCOMPARE(a.find<QRadioButton>("opWyb_1")->text(), QStringLiteral("DXCC"));
        QVERIFY(a.find<QRadioButton>("opWyb_0")->isChecked());
        QCOMPARE(a.text("cmbListclear"), QStringLiteral("Очистить"));
        QCOMPARE(a.text("cmbWybor"), QStringLiteral("Выбрать"));
        QCOMPARE(a.find<QCheckBox>("chekQsl")->text(), QStringLiteral("Нет"));
        a.tick("chekQsl");
        QCOMPARE(a.find<QCheckBox>("chekQsl")->text(), QStringLiteral("Да"));
        a.tick("chekQsl");
        QCOMPARE(a.find<QCheckBox>("chekQsl")->text(), QStringLiteral("Нет"));
        a.tick("opWyb_1");
        QVERIFY(!a.find<QRadioButton>("opWyb_0")->isChecked());
        a.click("cmbUsl");
        QVERIFY(!a.shown("frWyb"));
        a.tick("cmbUsl");
        QVERIFY(a.shown("frWyb"));
        QVERIFY(a.find<QRadioButton>("opWyb_1")->isChecked()); // as it was left
        QVERIFY(a.quiet());
    }

    void entriesAreTyped()
    {
        Awards a(awardContacts);
        a.click("cmbUsl");
        a.type("ua3ab");
        QCOMPARE(a.text("txtWybor"), QStringLiteral("UA3AB"));
        QCOMPARE(a.entries(), QStringList());
        a.press(Qt::Key_Return);
        QCOMPARE(a.text("txtWybor"), QString());
        QCOMPARE(a.w.focus(), QStringLiteral("txtWybor"));
        a.type("рт1б/p'");
        a.press(Qt::Key_Enter, Qt::KeypadModifier);
        a.type("ua3ab");
        a.press(Qt::Key_Return);
        QCOMPARE(a.entries(), QStringList({"UA3AB", "РТ1Б/P'", "UA3AB"}));
        a.type("left");
        a.click("cmbListclear");
        QCOMPARE(a.entries(), QStringList());
        QCOMPARE(a.text("txtWybor"), QStringLiteral("LEFT"));
        QCOMPARE(a.w.focus(), QStringLiteral("txtWybor"));
        QVERIFY(a.quiet());
    }

    void prefixesAreAppended()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "DL"); // the frame is hidden
        a.click("cmbUsl");
        a.clickRow(kPrefixes, "DL"); // callsigns are wanted
        QCOMPARE(a.entries(), QStringList());
        a.tick("opWyb_1");
        a.clickRow(kPrefixes, "F");
        a.clickRow(kPrefixes, "DL");
        a.clickRow(kPrefixes, "DL");
        QCOMPARE(a.entries(), QStringList({"F", "DL", "DL"}));
        QCOMPARE(a.rows(kCalls), QStringList({"DL1AA", "DL1AB"}));
        a.click("cmbdxcc"); // to the regions: no prefix of a country
        a.clickRow(kRegions, "9A");
        QCOMPARE(a.entries().size(), 3);
        a.click("cmbdxcc"); // and back, as if DL were clicked
        QCOMPARE(a.entries(), QStringList({"F", "DL", "DL", "DL"}));
        a.find<QWidget>(kPrefixes)->setFocus();
        a.press(Qt::Key_Up);
        a.press(Qt::Key_Down); // passing by is not choosing
        QCOMPARE(a.entries().size(), 4);
        a.press(Qt::Key_Down);
        a.press(Qt::Key_Return);
        QCOMPARE(a.entries().constLast(), QStringLiteral("UA"));
        a.click("cmbUsl");
        a.clickRow(kPrefixes, "UA");
        a.click("cmbUsl");
        QCOMPARE(a.entries().size(), 5);
        QVERIFY(a.quiet());
    }

    void entryIsTakenOut()
    {
        Awards a(awardContacts);
        select(a, {"A", "B", "C"});
        auto *list = a.find<QListWidget>("ListWybor");
        list->setFocus();
        list->setCurrentRow(1);
        a.press(Qt::Key_Delete);
        QCOMPARE(a.entries(), QStringList({"A", "C"}));
        for (int i = 0; i < 4; ++i)
            a.press(Qt::Key_Delete);
        QCOMPARE(a.entries(), QStringList());
    }

    // ---- filling the blank

    void filledByCallsign()
    {
        Awards a(awardContacts);
        select(a, {"ua3ab", "dl1aa", "nobody", "dl1aa"});
        a.click("cmbWybor");
        // The contact's own report sent; the first contact of each; an empty row for the one that is not
        // found and for the entry past the end.
        const QStringList wanted = {"UA3AB|01.02.03|10:11|14|559|RUSSIAN",
                                    "DL1AA|04.02.03|12:34:56|14|58|GERMANY", "|||||",
                                    "DL1AA|04.02.03|12:34:56|14|58|GERMANY", "|||||"};
        QCOMPARE(a.blank(kCarried), wanted);
        QCOMPARE(a.column(kBlank, 0), QStringList({"", "", "DL1AA", "DL1AA", "UA3AB"}));
        QCOMPARE(a.blank("rstr||ps||ps1||qslp||prf"), QStringList({"", "", "", "", ""}));
        QCOMPARE(a.w.focus(), QStringLiteral("txtWybor"));
        QCOMPARE(a.entries().size(), 4);
        QVERIFY2(a.status().contains(QStringLiteral("NOBODY")), qPrintable(a.status()));
        a.click("cmbWybor"); // once more
        QCOMPARE(a.blank(kCarried), wanted + wanted);
        QVERIFY(a.quiet());
    }

    void filledByCallsignWithACard()
    {
        Awards a(awardContacts);
        select(a, {"dl1aa", "f5ab", "ua3ab"});
        a.tick("chekQsl");
        a.click("cmbWybor");
        QCOMPARE(a.blank(kCarried), QStringList({"DL1AA|05.02.03|1234|7|56|GERMANY", "|||||",
                                                 "UA3AB|01.02.03|10:11|14|559|RUSSIAN", "|||||"}));
        QVERIFY(a.quiet());
    }

    void firstOfACallsignIsByCountry()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addLog(in, "ccall=R1A|contr=RUSSIAN|ttime=1");
            addLog(in, "ccall=R1A|contr=ANTARCTICA|ttime=2");
            addLog(in, "ccall=R1A|contr=ANTARCTICA|ttime=3");
            addLog(in, "ccall=|contr=NOBODY|ttime=4");
        });
        select(a, {"r1a"});
        a.click("cmbWybor");
        QCOMPARE(a.blank("ttime"),
                 QStringList({"2", "4"})); // the entry past the end finds the empty callsign
        QVERIFY(a.quiet());
    }

    void filledByPrefix()
    {
        Awards a(awardContacts);
        a.click("cmbUsl");
        a.tick("opWyb_1");
        select(a, {"dl", "zz", "UA"});
        a.click("cmbWybor");
        const QString past = QStringLiteral("|||||"); // nobody has worked the country of an empty prefix
        QCOMPARE(a.blank(kCarried),
                 QStringList({"DL1AA|04.02.03|12:34:56|14|58|GERMANY",
                              "XX1X|08.02.03|1:00|28||", // no such prefix: a contact without a country
                              "UA3AB|01.02.03|10:11|14|559|RUSSIAN", past}));
        QCOMPARE(a.w.focus(), QStringLiteral("txtWybor"));
        a.tick("chekQsl");
        a.click("cmbWybor");
        QCOMPARE(a.blank(kCarried).mid(4), QStringList({"DL1AA|05.02.03|1234|7|56|GERMANY", past,
                                                        "UA3AB|01.02.03|10:11|14|559|RUSSIAN", past}));
        QVERIFY(a.quiet());
    }

    void emptyListAddsOneRow()
    {
        Awards a(awardContacts);
        a.click("cmbUsl");
        a.click("cmbWybor");
        QCOMPARE(a.blank(kCarried), QStringList("|||||"));
        QCOMPARE(a.w.focus(), QStringLiteral("txtWybor"));
        QVERIFY(a.quiet());
    }

    void prefixesOfTheListFillTheBlank()
    {
        Awards a(awardContacts);
        a.click("cmbUsl");
        a.tick("opWyb_1");
        a.clickRow(kPrefixes, "F");
        a.clickRow(kPrefixes, "UA");
        a.tick("cmbWybor");
        QCOMPARE(a.blank(), QStringList({"F5AB", "UA3AB", ""}));
    }

    void badEntryAddsNothing_data()
    {
        QTest::addColumn<bool>("byPrefix");
        QTest::newRow("callsign") << false;
        QTest::newRow("prefix") << true;
    }
    void badEntryAddsNothing()
    {
        QFETCH(bool, byPrefix);
        Awards a(awardContacts);
        addBlank(a.w.installation, "ccall=OLD");
        a.click("cmbUsl");
        if (byPrefix)
            a.tick("opWyb_1");
        select(a,
               byPrefix ? QStringList{"DL", "F", "U'A", "UA"} : QStringList{"DL1AA", "F5AB", "U'A", "UA3AB"});
        a.click("cmbWybor");
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.blank(), QStringList("OLD"));
        auto *list = a.find<QListWidget>("ListWybor");
        QCOMPARE(list->currentRow(), 2);
        QVERIFY(list->item(2)->isSelected());
        QCOMPARE(a.entries().size(), 4);
        QCOMPARE(a.w.focus(), QStringLiteral("txtWybor"));
        list->setFocus();
        a.press(Qt::Key_Delete); // the marked one
        a.click("cmbWybor");
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.blank(), QStringList({"OLD", "DL1AA", "F5AB", "UA3AB", ""}));
        QCOMPARE(a.column(kBlank, 0), QStringList({"", "DL1AA", "F5AB", "OLD", "UA3AB"}));
    }

    void failedFillingAddsNothing()
    {
        Awards a(awardContacts);
        a.sql(kLog, "CREATE TRIGGER no BEFORE INSERT ON tbllogTEMP WHEN NEW.ccall='F5AB' BEGIN SELECT "
                    "RAISE(ABORT,'нельзя'); END");
        select(a, {"DL1AA", "F5AB"});
        a.click("cmbWybor");
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.blank(), QStringList());
        QCOMPARE(a.column(kBlank, 0), QStringList());
        QCOMPARE(a.w.focus(), QStringLiteral("txtWybor"));
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.errors.size(), 2);
        a.sql(kLog, "DROP TRIGGER no");
        a.click("cmbWybor");
        QCOMPARE(a.blank(), QStringList({"DL1AA", "F5AB", ""}));
        QCOMPARE(a.w.messages.errors.size(), 2);
    }

    void unsavedRowOfTheBlankStopsTheFilling()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB");
        });
        select(a, {"DL1AA"});
        a.sql(kLog, "CREATE TRIGGER no BEFORE UPDATE ON tbllogTEMP BEGIN SELECT RAISE(ABORT,'нельзя'); END");
        a.clickCell(kBlank, 0, 8);
        a.type("x");
        a.press(Qt::Key_Return);
        QCoreApplication::processEvents();
        a.find<QPushButton>("cmbWybor")->click();
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.blank(), QStringList("F5AB"));
        QCOMPARE(a.cell(kBlank, 0, 8), QStringLiteral("X"));
        QVERIFY(a.find<QListWidget>("ListWybor")->selectedItems().isEmpty()); // no entry is to blame
        a.sql(kLog, "DROP TRIGGER no");
        a.click("cmbWybor");
        QCOMPARE(a.blank("ccall,ps"), QStringList({"F5AB|X", "DL1AA|", "|"}));
    }

    void unsavedRowOfTheBlankGoesWithIt()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addBlank(in, "ccall=F5AB");
        });
        a.sql(kLog, "CREATE TRIGGER no BEFORE UPDATE ON tbllogTEMP BEGIN SELECT RAISE(ABORT,'нельзя'); END");
        a.clickCell(kBlank, 0, 8);
        a.type("x");
        a.press(Qt::Key_Return);
        QCoreApplication::processEvents();
        a.find<QPushButton>("Command3")->click();
        QCOMPARE(a.blank(), QStringList());
        QCOMPARE(a.column(kBlank, 0), QStringList());
        a.click("cmbblanc");
        a.window->close();
        QVERIFY(!a.window->isVisible());
        QVERIFY(a.quiet());
    }

    void readOnlyFolder()
    {
        Awards a(
            [](Installation &in) {
                awardContacts(in);
                addBlank(in, "ccall=OLD");
            },
            true);
        QVERIFY(a.quiet());
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.errors.size(), 1);
        a.click("Command3");
        QCOMPARE(a.w.messages.errors.size(), 2);
        select(a, {"DL1AA"});
        a.click("cmbWybor");
        QCOMPARE(a.w.messages.errors.size(), 3);
        QCOMPARE(a.blank(), QStringList("OLD"));
        QCOMPARE(a.column(kBlank, 0), QStringList("OLD"));
        QCOMPARE(a.entries(), QStringList("DL1AA"));
        a.clickRow(kPrefixes, "DL");
        a.clickRow(kCalls, "DL1AA");
        QCOMPARE(a.column(kStation, 0).size(), 2);
        a.window->close();
        QVERIFY(!a.window->isVisible());
        QCOMPARE(a.w.messages.errors.size(), 3);
    }

    void lockedLog()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        select(a, {"DL1AA"});
        store::Connection other(a.w.installation.file(QLatin1String(kLog)), store::OpenMode::ReadWrite);
        other.exec(QStringLiteral("BEGIN IMMEDIATE"));
        int errors = 0;
        for (const char *button : {"cmbWybor", "Command3"}) {
            a.click(button);
            QCOMPARE(a.w.messages.errors.size(), ++errors);
        }
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.errors.size(), ++errors);
        other.exec(QStringLiteral("ROLLBACK"));
        QCOMPARE(a.blank(), QStringList());
        a.doubleClickCell(kStation, 0);
        a.click("cmbWybor");
        QCOMPARE(a.blank(), QStringList({"F5AB", "DL1AA", ""}));
        QCOMPARE(a.w.messages.errors.size(), errors);
    }

    // ---- the window

    void secondOpeningReadsAnew()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.window->close();
        addLog(a.w.installation, "ccall=F5AB|bband=3,5|contr=FRANCE");
        addLog(a.w.installation, "ccall=F9NEW|contr=FRANCE");
        addBlank(a.w.installation, "ccall=F1");
        a.reopen();
        QCOMPARE(a.column(kStation, 3), QStringList({"14", "3,5"}));
        QCOMPARE(a.column(kBlank, 0), QStringList("F1"));
        QCOMPARE(a.rows(kCalls), QStringList({"F5AB", "F9NEW"}));
        QCOMPARE(a.chosen(kPrefixes), QStringLiteral("F"));
        QVERIFY(a.quiet());
    }

    void eveningWithoutAMouse()
    {
        Awards a(awardContacts);
        a.find<QWidget>(kPrefixes)->setFocus();
        a.press(Qt::Key_End);
        a.press(Qt::Key_Return);
        a.press(Qt::Key_End);
        a.press(Qt::Key_Up);
        a.press(Qt::Key_Return);
        a.press(Qt::Key_Return); // UA3AB
        a.tick("cmbUsl");
        a.type("f5ab");
        a.press(Qt::Key_Return);
        a.tick("cmbWybor");
        QSignalSpy asked(a.window.get(), &awards::frmDIPLOM::applicationAsked);
        a.find<QWidget>("cmbblanc")->setFocus();
        a.press(Qt::Key_Return);
        QCOMPARE(asked.size(), 1);
        QCOMPARE(a.blank(), QStringList({"UA3AB", "F5AB", ""}));
        a.find<QWidget>("Command1")->setFocus();
        a.press(Qt::Key_Return);
        QVERIFY(!a.window->isVisible());
        QVERIFY(a.quiet());
    }

    void tabReachesEveryControl_data()
    {
        QTest::addColumn<bool>("entry");
        QTest::addColumn<bool>("regions");
        QTest::addColumn<bool>("frame");
        QTest::newRow("at the beginning") << false << false << false;
        QTest::newRow("new award, regions") << true << true << false;
        QTest::newRow("selection frame") << false << true << true;
    }
    void tabReachesEveryControl()
    {
        QFETCH(bool, entry);
        QFETCH(bool, regions);
        QFETCH(bool, frame);
        Awards a(awardContacts);
        if (regions) {
            a.clickRow("DBListStrana", "Россия");
            a.click("cmbdxcc");
        }
        if (entry)
            a.click("cmbadd");
        if (frame)
            a.click("cmbUsl");
        a.find<QWidget>("DBListStrana")->setFocus();
        QStringList reached;
        for (int i = 0; i < 60; ++i) {
            reached.append(a.w.focus());
            a.press(Qt::Key_Tab);
        }
        QSet<QString> wanted = {QStringLiteral("Label1")};
        for (QWidget *widget : a.window->findChildren<QWidget *>()) {
            const auto *edit = qobject_cast<QLineEdit *>(widget);
            const bool control = (edit != nullptr && !edit->isReadOnly()) ||
                                 qobject_cast<QPushButton *>(widget) != nullptr ||
                                 qobject_cast<QCheckBox *>(widget) != nullptr ||
                                 qobject_cast<QPlainTextEdit *>(widget) != nullptr ||
                                 qobject_cast<QAbstractItemView *>(widget) != nullptr;
            if (control && widget->isVisible() && !widget->objectName().isEmpty())
                wanted.insert(widget->objectName());
        }
        if (frame)
            wanted.insert(QStringLiteral("opWyb_0"));
        QVERIFY(wanted.size() > 14);
        const QSet<QString> missed = wanted - QSet<QString>(reached.begin(), reached.end());
        QVERIFY2(missed.isEmpty(), qPrintable(QStringList(missed.values()).join(QLatin1Char(' '))));
    }

    void everyControlIsNamedForAScreenReader()
    {
        const Awards a;
        for (QWidget *widget : a.window->findChildren<QWidget *>()) {
            const bool control = qobject_cast<QLineEdit *>(widget) != nullptr ||
                                 qobject_cast<QPushButton *>(widget) != nullptr ||
                                 qobject_cast<QPlainTextEdit *>(widget) != nullptr ||
                                 qobject_cast<QAbstractItemView *>(widget) != nullptr;
            if (!control || widget->objectName().isEmpty() ||
                widget->objectName().startsWith(QLatin1String("qt_")))
                continue;
            QVERIFY2(!widget->accessibleName().isEmpty(), qPrintable(widget->objectName()));
            QVERIFY2(!widget->toolTip().isEmpty(), qPrintable(widget->objectName()));
        }
    }
};

QTEST_MAIN(AwardSelectionTest)
#include "awardselection.moc"
