// The callbook window when something goes wrong: odd texts, files that are missing, locked or read-only,
// records that others change; a small screen; the keyboard alone.
#include "support/reference.h"

#include <QFile>

using testsupport::addLog;
using testsupport::addRecord;
using testsupport::Beside;
using testsupport::Callbook;
using testsupport::callbookTables;
using testsupport::Desktop;
using testsupport::Installation;
using testsupport::kFullRecord;
using testsupport::sendKey;

namespace {

constexpr auto kBook = "dbcalbuk.mdb";
constexpr auto kLog = "dbiaru.mdb";
constexpr auto kList = "DBList1";
constexpr auto kNoRecord = "|||||||||";

constexpr auto kForbidUpdates =
    "CREATE TRIGGER no BEFORE UPDATE ON tblcalbuk BEGIN SELECT RAISE(ABORT,'нельзя'); END";

void oddCallsigns(Installation &in)
{
    callbookTables(in);
    addLog(in, "ccall=A'B|nname=АПОСТРОФ");
    addLog(in, "ccall=A\"B|nname=QUOTE");
    addLog(in, "ccall=<B>X</B>|nname=<B>&AMP;");
}

} // namespace

class CallbookSafetyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- odd texts

    void apostropheTyped()
    {
        Callbook c(oddCallsigns);
        c.type("ua3abc");
        QCOMPARE(c.boxes(), QString::fromUtf8(kFullRecord));
        c.type("'");
        QVERIFY(!c.status().isEmpty());
        QVERIFY(c.messages() == 0);                    // a line, never a box
        QCOMPARE(c.text("txtlogcall"), QString());     // so that no record is made of it
        QCOMPARE(c.boxes(), QLatin1String(kNoRecord)); // and not another station's
        c.click("cmbadd");
        QCOMPARE(c.records().size(), 2);
        c.click("txtserch");
        c.press(Qt::Key_End);
        c.press(Qt::Key_Backspace); // the next key works again
        QCOMPARE(c.status(), QString());
        QCOMPARE(c.boxes(), QString::fromUtf8(kFullRecord));
        QCOMPARE(c.rows(kList), QStringList("UA3ABC"));
        QCOMPARE(c.logFrame(), QStringLiteral("UA3ABC|ОЛЕГ|МОСКВА|R3X"));
        QVERIFY(c.quiet());
    }

    void apostropheClicked()
    {
        Callbook c(oddCallsigns);
        c.clickRow(kList, "UA3ABC");
        c.clickRow(kList, "A'B");
        QCOMPARE(c.w.messages.errors.size(), 1);
        QCOMPARE(c.logFrame(), QStringLiteral("|||"));
        QCOMPARE(c.boxes(), QLatin1String(kNoRecord));
        c.click("cmbadd");
        QCOMPARE(c.records().size(), 2);
        c.clickRow(kList, "UA3ABC");
        QCOMPARE(c.logFrame(), QStringLiteral("UA3ABC|ОЛЕГ|МОСКВА|R3X"));
        QCOMPARE(c.boxes(), QString::fromUtf8(kFullRecord));
        QCOMPARE(c.messages(), 1);
    }

    void statementTyped_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("or") << "x' or ''='";
        QTest::newRow("or true") << "' or 1=1 or ccall='";
        QTest::newRow("union") << "' union select * from tblcalbuk where ''='";
        QTest::newRow("second statement") << "';delete from tblcalbuk;--";
    }
    void statementTyped()
    {
        QFETCH(QString, text);
        Callbook c;
        c.w.type(text);
        QVERIFY(!c.status().isEmpty());
        QCOMPARE(c.boxes(), QLatin1String(kNoRecord));
        QCOMPARE(c.text("txtlogcall"), QString());
        c.lookUp("");
        c.paste(qPrintable(text));
        QVERIFY(!c.status().isEmpty());
        QCOMPARE(c.boxes(), QLatin1String(kNoRecord));
        QCOMPARE(c.records().size(), 2);
        c.lookUp("g3xyz");
        QCOMPARE(c.text("txtnname"), QStringLiteral("John"));
        QVERIFY(c.quiet());
    }

    void quotesAndSigns()
    {
        Callbook c(oddCallsigns);
        c.type("a\"b");
        QCOMPARE(c.logFrame(), QStringLiteral("A\"B|QUOTE||"));
        c.click("cmbadd");
        QCOMPARE(c.records("ccall,nname").constLast(), QStringLiteral("A\"B|QUOTE"));
        c.lookUp("<b>x</b>");
        QCOMPARE(c.logFrame(), QStringLiteral("<B>X</B>|<B>&AMP;||"));
        c.click("cmbadd");
        QCOMPARE(c.records("ccall,nname").constLast(), QStringLiteral("<B>X</B>|<B>&AMP;"));
        QVERIFY(c.status().contains(QStringLiteral("<B>X</B>")));
        QCOMPARE(c.find<QLabel>("lblitog")->textFormat(), Qt::PlainText); // shown as it stands
        c.lookUp("%1 %2\\");
        c.click("cmbadd");
        QCOMPARE(c.records("ccall").constLast(), QStringLiteral("%1 %2\\"));
        QVERIFY(c.quiet());
    }

    void wildcards()
    {
        Callbook c([](Installation &in) {
            callbookTables(in);
            addRecord(in, "ccall=*|fam=звезда");
        });
        c.type("*1a"); // stands for others in the list, and for itself in the look-up
        QCOMPARE(c.rows(kList), QStringList({"DL1AA", "DL1AB"}));
        QCOMPARE(c.logFrame(), QStringLiteral("*1A|||"));
        QCOMPARE(c.boxes(), QLatin1String(kNoRecord));
        c.lookUp("?l#a");
        QCOMPARE(c.rows(kList), QStringList({"DL1AA", "DL1AB"}));
        c.lookUp("[df]");
        QCOMPARE(c.rows(kList), QStringList({"DL1AA", "DL1AB", "F5AB"}));
        c.lookUp("*");
        QCOMPARE(c.rows(kList).size(), 5);
        QCOMPARE(c.text("txtfam"), QStringLiteral("звезда"));
        c.lookUp("%");
        QCOMPARE(c.rows(kList), QStringList());
        c.lookUp("_");
        QCOMPARE(c.rows(kList), QStringList());
        c.lookUp("["); // an open bracket is no pattern
        QVERIFY(!c.status().isEmpty() || c.rows(kList).isEmpty());
        QCOMPARE(c.text("txtserch"), QStringLiteral("["));
        c.press(Qt::Key_Backspace);
        QCOMPARE(c.status(), QString());
        QCOMPARE(c.rows(kList).size(), 5);
        QVERIFY(c.quiet());
    }

    void veryLongText()
    {
        Callbook c;
        const QString text(20000, QLatin1Char('Q'));
        c.paste(qPrintable(text));
        QCOMPARE(c.text("txtserch"), text);
        QCOMPARE(c.rows(kList), QStringList());
        const int width = c.window->width();
        c.click("cmbadd");
        QCOMPARE(c.records("length(ccall)").constLast(), QStringLiteral("20000"));
        QCoreApplication::processEvents();
        QCOMPARE(c.window->width(), width);
        QVERIFY(c.quiet());
    }

    // ---- files

    void missingFile_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("foreign");
        for (const char *file : {kBook, kLog}) {
            QTest::addRow("%s missing", file) << QString::fromLatin1(file) << false;
            QTest::addRow("%s unknown", file) << QString::fromLatin1(file) << true;
        }
    }
    void missingFile()
    {
        QFETCH(QString, file);
        QFETCH(bool, foreign);
        const bool book = file == QLatin1String(kBook);
        Callbook c([&](Installation &in) {
            callbookTables(in);
            QFile old(in.file(file));
            if (!old.remove())
                qFatal("not removed");
            if (foreign && (!old.open(QIODevice::WriteOnly) || old.write("не база") < 0))
                qFatal("not written");
        });
        QCOMPARE(c.w.messages.errors.size(), 1); // one for the file, however many sources read it
        QVERIFY2(c.w.messages.errors.front().contains(file), qPrintable(c.w.messages.errors.front()));
        c.type("ua3ab");
        c.type("c");
        QVERIFY(!c.status().isEmpty());
        QCOMPARE(c.w.messages.errors.size(), 1); // a typed key is told in the line
        // The other file is read all the same.
        QCOMPARE(c.rows(kList), book ? QStringList("UA3ABC") : QStringList());
        QCOMPARE(c.boxes(), book ? QLatin1String(kNoRecord) : QString::fromUtf8(kFullRecord));
        QCOMPARE(c.find("txtfam")->isReadOnly(), book);
        c.click("txtfam");
        c.type("x");
        if (book)
            QVERIFY2(c.status().contains(QStringLiteral("не прочитана")), qPrintable(c.status()));
        QCOMPARE(c.text("txtlogcall"), QString()); // half a look-up makes no record
        c.click("cmbadd");
        QCOMPARE(c.w.messages.errors.size(), 1);
        c.window->close();
        QVERIFY(!c.window->isVisible());
        if (foreign) {
            QFile kept(c.w.installation.file(file));
            QVERIFY(kept.open(QIODevice::ReadOnly));
            QCOMPARE(kept.readAll(), QByteArray("не база"));
        } else {
            QVERIFY(!QFile::exists(c.w.installation.file(file)));
        }
    }

    void fileComesBack()
    {
        Callbook c;
        const QString file = c.w.installation.file(QLatin1String(kBook));
        store::Connection other(file, store::OpenMode::ReadWrite);
        other.exec(QStringLiteral("BEGIN EXCLUSIVE"));
        c.type("ua3abc");
        QVERIFY2(c.status().contains(QStringLiteral("занят")), qPrintable(c.status()));
        QCOMPARE(c.boxes(), QLatin1String(kNoRecord));
        QCOMPARE(c.rows(kList), QStringList("UA3ABC")); // of the log, which can be read
        other.exec(QStringLiteral("ROLLBACK"));
        c.press(Qt::Key_End);
        QCOMPARE(c.status(), QString());
        QCOMPARE(c.boxes(), QString::fromUtf8(kFullRecord));
        QVERIFY(c.quiet());
    }

    void noRecordIsMadeWhereTheCallbookCannotBeRead()
    {
        Callbook c;
        store::Connection other(c.w.installation.file(QLatin1String(kBook)), store::OpenMode::ReadWrite);
        other.exec(QStringLiteral("BEGIN EXCLUSIVE"));
        c.type("ua3abc"); // it has a record, which is not seen now
        c.click("cmbadd");
        other.exec(QStringLiteral("ROLLBACK"));
        c.click("cmbadd");
        QCOMPARE(c.records("ccall"), QStringList({"UA3ABC", "G3XYZ"}));
    }

    void noRecordIsMadeAfterAReadingThatFailed()
    {
        Callbook c;
        c.type("ua3abc");
        {
            store::Connection other(c.w.installation.file(QLatin1String(kBook)), store::OpenMode::ReadWrite);
            other.exec(QStringLiteral("BEGIN EXCLUSIVE"));
            Desktop::toFront(*c.w.log);
            Desktop::toFront(*c.window);
            QVERIFY2(c.status().contains(QStringLiteral("занят")), qPrintable(c.status()));
            c.click("cmbadd");
            QCOMPARE(c.w.messages.errors.size(), 1);
            other.exec(QStringLiteral("ROLLBACK"));
        }
        c.click("cmbadd"); // the station has a record, which could not be seen
        QCOMPARE(c.records("ccall"), QStringList({"UA3ABC", "G3XYZ"}));
        QCOMPARE(c.boxes(), QString::fromUtf8(kFullRecord));
    }

    void recordMadeMeanwhile()
    {
        Callbook c;
        c.type("on4a");
        addRecord(c.w.installation, "ccall=ON4A|fam=Другой");
        c.click("cmbadd");
        QCOMPARE(c.records("ccall").mid(2), QStringList("ON4A"));
        QCOMPARE(c.text("txtfam"), QStringLiteral("Другой"));
        QVERIFY(!c.find("txtfam")->isReadOnly());
        QVERIFY(c.quiet());
    }

    void openedOnceMore()
    {
        Callbook c;
        c.type("ua3abc");
        c.window->close();
        c.sql(kBook, "UPDATE tblcalbuk SET fam='Новый' WHERE ccall='UA3ABC'");
        addLog(c.w.installation, "ccall=UA3ABCD");
        c.reopen();
        QCOMPARE(c.text("txtfam"), QStringLiteral("Новый"));
        QCOMPARE(c.rows(kList), QStringList({"UA3ABC", "UA3ABCD"}));
        c.type("g3xyz"); // in place of the last callsign
        QCOMPARE(c.text("txtserch"), QStringLiteral("G3XYZ"));
        QCOMPARE(c.text("txtnname"), QStringLiteral("John"));
        QVERIFY(c.quiet());
    }

    void undoDoesNotMixStations()
    {
        Callbook c([](Installation &in) {
            callbookTables(in);
            addRecord(in, "ccall=R1A");
        });
        c.lookUp("g3xyz");
        c.enter("txtfam", "Smith");
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.press(Qt::Key_Delete); // both stations' boxes are empty
        c.lookUp("r1a");
        c.click("txtfam");
        for (int i = 0; i < 3; ++i)
            c.press(Qt::Key_Z, Qt::ControlModifier);
        c.press(Qt::Key_Tab);
        QCOMPARE(c.text("txtfam"), QString());
        QCOMPARE(c.record("R1A"), QStringLiteral("R1A|||||||||"));
    }

    void textOfSeveralLines()
    {
        Callbook c([](Installation &in) {
            callbookTables(in);
            addRecord(in, "ccall=R1A|adres=ул. Мира\r\nдом 1");
        });
        c.lookUp("r1a");
        c.enter("txtfam", "Иванов");
        c.click("txtadres");
        c.press(Qt::Key_Tab);
        QCOMPARE(c.record("R1A", "fam,adres"), QStringLiteral("Иванов|ул. Мира\r\nдом 1"));
    }

    void readOnlyFolder()
    {
        Callbook c(callbookTables, true);
        QVERIFY(c.quiet());
        c.type("ua3abc");
        QCOMPARE(c.boxes(), QString::fromUtf8(kFullRecord));
        QVERIFY(c.find("txtfam")->isReadOnly());
        c.click("txtfam");
        c.type("x");
        QVERIFY2(c.status().contains(QStringLiteral("только для чтения")), qPrintable(c.status()));
        QCOMPARE(c.text("txtfam"), QStringLiteral("Петров"));
        c.lookUp("on4a");
        c.click("cmbadd");
        QCOMPARE(c.w.messages.errors.size(), 1);
        QCOMPARE(c.boxes(), QLatin1String(kNoRecord)); // nothing is shown that is not stored
        c.lookUp("dl1aa");                             // and nothing stays begun
        QCOMPARE(c.status(), QString());
        QCOMPARE(c.records().size(), 2);
        c.window->close();
        QVERIFY(!c.window->isVisible());
        QCOMPARE(c.messages(), 1);
    }

    // ---- the main window beside it

    void mainWindowShowsTheEdit()
    {
        Desktop d(callbookTables);
        d.w.type(QStringLiteral("ua3abc"));
        QVERIFY(d.w.find<QWidget>("frmbuk")->isVisible());
        d.w.edit("txtname")->setFocus();
        d.w.type(QStringLiteral("x"));
        const QString name = d.w.text("txtname");
        auto &window = d.open<reference::frmcalbuk>("mnubuk");
        Beside c(d, window);
        c.enter("txtserch", "ua3abc");
        c.enter("txtadres", "новый");
        c.enter("txtnname", "пётр");
        c.enter("txtqth", "тула");
        Desktop::toFront(*d.w.log); // the last box has not been left
        QCOMPARE(d.w.text("buk_adres"), QStringLiteral("новый"));
        QCOMPARE(d.w.text("buk_nname"), QStringLiteral("Пётр"));
        QCOMPARE(d.w.text("buk_qth"), QStringLiteral("Тула"));
        QCOMPARE(d.w.text("txtname"), name); // the contact stays as typed
        QCOMPARE(d.w.text("txtqth"), QStringLiteral("Москва"));
        QCOMPARE(d.w.text("txtqslvia"), QStringLiteral("RW3XX"));
        QVERIFY(c.quiet());
    }

    void mainWindowShowsThatARecordIsGone()
    {
        Desktop d(callbookTables);
        d.w.type(QStringLiteral("ua3abc"));
        auto &window = d.open<reference::frmcalbuk>("mnubuk");
        Beside c(d, window);
        c.enter("txtserch", "ua3abc");
        c.enter("txtccall", "UA3ABC/P");
        Desktop::toFront(*d.w.log);
        QVERIFY(!d.w.find<QWidget>("frmbuk")->isVisible());
        QCOMPARE(d.w.text("txtname"), QStringLiteral("Олег")); // the contact stays as typed
        QCOMPARE(d.w.text("txtcall"), QStringLiteral("UA3ABC"));
        d.w.click("cmbaddbuk");
        QCOMPARE(d.w.installation.rows(QLatin1String(kBook),
                                       QStringLiteral("SELECT ccall FROM tblcalbuk ORDER BY rowid")),
                 QStringList({"UA3ABC/P", "G3XYZ", "UA3ABC"}));
        Desktop::toFront(window);
        QCOMPARE(c.text("txtccall"), QStringLiteral("UA3ABC")); // of the station that was looked up
        QVERIFY(c.quiet());
    }

    void mainWindowFindsARecordThatIsNew()
    {
        Desktop d(callbookTables);
        d.w.type(QStringLiteral("on4a"));
        auto &window = d.open<reference::frmcalbuk>("mnubuk");
        Beside c(d, window);
        c.enter("txtserch", "on4a");
        c.click("cmbadd");
        c.enter("txtfam", "Janssens");
        Desktop::toFront(*d.w.log);
        QVERIFY(d.w.find<QWidget>("frmbuk")->isVisible());
        QCOMPARE(d.w.text("buk_fam"), QStringLiteral("Janssens"));
        d.w.edit("txtname")->setText(QStringLiteral("Jan"));
        d.w.edit("txtqth")->setText(QStringLiteral("Brugge"));
        d.w.click("cmbaddbuk");
        QCOMPARE(d.w.messages.asked.size(), 1); // it is there
        QCOMPARE(d.w.installation.rows(QLatin1String(kBook),
                                       QStringLiteral("SELECT ccall,fam,nname,qth FROM tblcalbuk")),
                 QStringList({"UA3ABC|Петров|Олег|Москва", "G3XYZ||John|", "ON4A|Janssens|Jan|Brugge"}));
    }

    void mainWindowChangesTheRecordThatIsShown()
    {
        Desktop d(callbookTables);
        auto &window = d.open<reference::frmcalbuk>("mnubuk");
        Beside c(d, window);
        c.enter("txtserch", "ua3abc");
        c.enter("txtadres", "новый"); // not left
        Desktop::toFront(*d.w.log);
        d.w.edit("txtcall")->setFocus();
        d.w.type(QStringLiteral("ua3abc"));
        d.w.edit("txtname")->setText(QStringLiteral("Глеб"));
        d.w.edit("txtqth")->setText(QStringLiteral("Омск"));
        d.w.edit("txtqslvia")->setText(QString());
        d.w.click("cmbaddbuk");
        const QString changed =
            QStringLiteral("UA3ABC|Петров|Глеб|Иванович|101000|Московская|Омск|новый|1-23|");
        const auto stored = [&] {
            return d.w.installation
                .rows(
                    QLatin1String(kBook),
                    QStringLiteral("SELECT %1 FROM tblcalbuk").arg(QLatin1String(testsupport::kRecordFields)))
                .front();
        };
        QCOMPARE(stored(), changed);
        Desktop::toFront(window);
        QCOMPARE(c.text("txtnname"), QStringLiteral("Глеб"));
        QCOMPARE(c.text("txtqth"), QStringLiteral("Омск"));
        QCOMPARE(c.text("txtadres"), QStringLiteral("новый"));
        QCOMPARE(c.text("txtqslvia"), QString());
        c.enter("txtfam", "Иванов"); // and what is typed next takes nothing back
        c.press(Qt::Key_Tab);
        QCOMPARE(stored(), QStringLiteral("UA3ABC|Иванов|Глеб|Иванович|101000|Московская|Омск|новый|1-23|"));
        QCOMPARE(d.w.messages.asked.size(), 1);
    }

    void mainWindowAddsTheRecordThatIsMissing()
    {
        Desktop d(callbookTables);
        auto &window = d.open<reference::frmcalbuk>("mnubuk");
        Beside c(d, window);
        c.enter("txtserch", "on4a");
        QVERIFY(c.find("txtfam")->isReadOnly());
        Desktop::toFront(*d.w.log);
        d.w.edit("txtcall")->setFocus();
        d.w.type(QStringLiteral("on4a"));
        d.w.click("cmbaddbuk");
        Desktop::toFront(window);
        QCOMPARE(c.text("txtccall"), QStringLiteral("ON4A"));
        QVERIFY(!c.find("txtfam")->isReadOnly());
        c.click("cmbadd"); // it is there
        c.enter("txtfam", "Janssens");
        window.close();
        QCOMPARE(d.w.installation.rows(QLatin1String(kBook),
                                       QStringLiteral("SELECT ccall,fam FROM tblcalbuk WHERE ccall='ON4A'")),
                 QStringList("ON4A|Janssens"));
        QVERIFY(c.quiet());
    }

    void contactRecordedMeanwhile()
    {
        Desktop d(callbookTables);
        auto &window = d.open<reference::frmcalbuk>("mnubuk");
        Beside c(d, window);
        Desktop::toFront(*d.w.log);
        d.w.edit("txtcall")->setFocus();
        d.w.type(QStringLiteral("f9new"));
        d.w.press(Qt::Key_F4);
        Desktop::toFront(window);
        c.enter("txtserch", "f9");
        QCOMPARE(c.rows(kList), QStringList("F9NEW"));
        d.w.action("mnubuk")->trigger(); // the same window
        QCOMPARE(&Desktop::shown<reference::frmcalbuk>(), &window);
        QVERIFY(c.quiet());
    }

    void mainWindowClosesIt()
    {
        Desktop d(callbookTables);
        auto &window = d.open<reference::frmcalbuk>("mnubuk");
        Beside c(d, window);
        c.enter("txtserch", "ua3abc");
        c.enter("txtfam", "Новый");
        d.w.log->close();
        QVERIFY(!window.isVisible() && !d.w.log->isVisible());
        QCOMPARE(
            d.w.installation.rows(QLatin1String(kBook), QStringLiteral("SELECT fam FROM tblcalbuk")).front(),
            QStringLiteral("Новый"));
        QVERIFY(c.quiet());
    }

    void mainWindowStaysForAnEditThatCannotBeStored()
    {
        Desktop d(callbookTables);
        auto &window = d.open<reference::frmcalbuk>("mnubuk");
        Beside c(d, window);
        c.enter("txtserch", "ua3abc");
        d.w.installation.sql(QLatin1String(kBook), QString::fromUtf8(kForbidUpdates));
        c.enter("txtfam", "Новый");
        d.w.messages.yes = false;
        d.w.log->close();
        QVERIFY(window.isVisible() && d.w.log->isVisible());
        QCOMPARE(c.text("txtfam"), QStringLiteral("Новый"));
        d.w.messages.yes = true;
        d.w.log->close();
        QVERIFY(!window.isVisible() && !d.w.log->isVisible());
    }

    // ---- leaving while it is used

    void windowGoesWhileAKeyIsDown()
    {
        Callbook c;
        c.type("ua3ab");
        sendKey(QTest::Press, Qt::Key_C, QStringLiteral("c"));
        c.window.reset();
        QVERIFY(c.w.log->isVisible());
        QVERIFY(c.quiet());
    }

    void windowGoesWhileItIsUsed_data()
    {
        QTest::addColumn<QString>("box");
        for (const char *box : {"txtserch", "DBList1", "txtfam", "txtadres", "txtlogname", "txtqslvia"})
            QTest::newRow(box) << box;
    }
    void windowGoesWhileItIsUsed()
    {
        QFETCH(QString, box);
        Callbook c;
        c.type("ua3abc");
        c.click(qPrintable(box));
        c.type("Q");
        c.window.reset();
        QVERIFY(c.w.log->isVisible());
        QCOMPARE(c.records().size(), 2);
        QVERIFY(c.quiet());
    }

    // ---- the screen and the keyboard

    void tabReachesEveryControl_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QString>("call");
        QTest::newRow("large") << QSize(1366, 768) << "UA3ABC";
        QTest::newRow("without a record") << QSize(1366, 768) << "ON4A";
        QTest::newRow("small") << QSize(700, 500) << "UA3ABC";
        QTest::newRow("tiny") << QSize(400, 300) << "UA3ABC";
    }
    void tabReachesEveryControl()
    {
        QFETCH(QSize, size);
        QFETCH(QString, call);
        Callbook c;
        c.window->resize(size);
        QCoreApplication::processEvents();
        QCOMPARE(c.window->size(), size);
        c.w.type(call);
        QCOMPARE(c.missedByTab(), QStringList());
        QCOMPARE(c.record("UA3ABC"), QString::fromUtf8(kFullRecord));
    }

    void everyControlIsNamedForAScreenReader()
    {
        const Callbook c;
        QCOMPARE(c.unnamed(), QStringList());
    }
};

QTEST_MAIN(CallbookSafetyTest)
#include "callbooksafety.moc"
