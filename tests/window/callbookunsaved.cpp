// The callbook window when a record cannot be stored: what was typed stays, and is stored as soon as it can
// be.
#include "support/reference.h"

#include <QDialog>

using testsupport::Callbook;
using testsupport::Desktop;
using testsupport::kFullRecord;

namespace {

constexpr auto kBook = "dbcalbuk.mdb";
constexpr auto kNoRecord = "|||||||||";

constexpr auto kForbidInserts =
    "CREATE TRIGGER no BEFORE INSERT ON tblcalbuk BEGIN SELECT RAISE(ABORT,'нельзя'); END";
constexpr auto kForbidUpdates =
    "CREATE TRIGGER no BEFORE UPDATE ON tblcalbuk BEGIN SELECT RAISE(ABORT,'нельзя'); END";

} // namespace

class CallbookUnsavedTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recordThatCannotBeAdded()
    {
        Callbook c;
        c.sql(kBook, kForbidInserts);
        c.type("on4a");
        c.click("cmbadd");
        QCOMPARE(c.w.messages.errors.size(), 1);
        QCOMPARE(c.boxes(), QLatin1String(kNoRecord));
        QCOMPARE(c.text("txtlogcall"), QStringLiteral("ON4A"));
        c.sql(kBook, "DROP TRIGGER no");
        c.click("cmbadd");
        QCOMPARE(c.record("ON4A"), QStringLiteral("ON4A||JAN||||GENT|||ON5X"));
        QCOMPARE(c.records().size(), 3);
        QCOMPARE(c.messages(), 1);
    }

    void editThatCannotBeStored()
    {
        Callbook c;
        c.type("ua3abc");
        c.sql(kBook, kForbidUpdates);
        c.enter("txtfam", "Новый");
        c.press(Qt::Key_Tab);
        QVERIFY(!c.status().isEmpty());
        QVERIFY(c.quiet());
        QCOMPARE(c.text("txtfam"), QStringLiteral("Новый")); // what was typed is not lost
        c.lookUp("g3xyz");
        QVERIFY(!c.status().isEmpty());
        QCOMPARE(c.text("txtfam"), QStringLiteral("Новый"));
        QCOMPARE(c.text("txtlogcall"), QStringLiteral("UA3ABC")); // nothing of the next station is mixed in
        c.w.messages.yes = false;
        c.window->close();
        QCOMPARE(c.w.messages.errors.size(), 1);
        QCOMPARE(c.w.messages.asked.size(), 1);
        QVERIFY(c.window->isVisible());
        c.sql(kBook, "DROP TRIGGER no");
        c.window->close();
        QVERIFY(!c.window->isVisible());
        QCOMPARE(c.record("UA3ABC", "fam"), QStringLiteral("Новый"));
        QCOMPARE(c.record("G3XYZ", "fam"), QString());
    }

    void editThatFailedIsStoredWhenTheWindowIsLeft()
    {
        Callbook c;
        c.type("ua3abc");
        c.sql(kBook, kForbidUpdates);
        c.enter("txtfam", "Новый");
        c.setFocus("Command1"); // no box is left any more
        QVERIFY(!c.status().isEmpty());
        c.sql(kBook, "DROP TRIGGER no");
        QCOMPARE(c.record("UA3ABC", "fam"), QStringLiteral("Петров"));
        Desktop::toFront(*c.w.log);
        QCOMPARE(c.record("UA3ABC", "fam"), QStringLiteral("Новый"));
        QVERIFY(c.quiet());
    }

    void editThatFailedIsStoredWhenTheNextBoxIsLeft()
    {
        Callbook c;
        c.type("ua3abc");
        c.sql(kBook, kForbidUpdates);
        c.enter("txtfam", "Новый");
        c.press(Qt::Key_Tab);
        QVERIFY(!c.status().isEmpty());
        c.sql(kBook, "DROP TRIGGER no");
        c.press(Qt::Key_Tab); // nothing was typed into this one
        QCOMPARE(c.record("UA3ABC", "fam"), QStringLiteral("Новый"));
        QCOMPARE(c.status(), QString());
        QVERIFY(c.quiet());
    }

    /// The window stays behind the main one: nobody sees its status line, nobody leaves a box of it.
    void editThatFailedIsStoredWhileAnotherWindowIsUsed()
    {
        Callbook c;
        c.type("ua3abc");
        c.enter("txtfam", "Новый");
        {
            store::Connection other(c.w.installation.file(QLatin1String(kBook)), store::OpenMode::ReadWrite);
            other.exec(QStringLiteral("BEGIN EXCLUSIVE"));
            Desktop::toFront(*c.w.log);
            QVERIFY2(c.status().contains(QStringLiteral("занят")), qPrintable(c.status()));
            QTest::qWait(2500); // it has been tried once more in vain
            QVERIFY2(c.status().contains(QStringLiteral("занят")), qPrintable(c.status()));
            other.exec(QStringLiteral("ROLLBACK"));
        }
        QCOMPARE(c.record("UA3ABC", "fam"), QStringLiteral("Петров"));
        QTRY_COMPARE(c.record("UA3ABC", "fam"), QStringLiteral("Новый"));
        QCOMPARE(c.status(), QString());
        QVERIFY(c.quiet());
    }

    /// A long operation may be under way behind it.
    void nothingIsStoredUnderADialog()
    {
        Callbook c;
        c.type("ua3abc");
        c.sql(kBook, kForbidUpdates);
        c.enter("txtfam", "Новый");
        Desktop::toFront(*c.w.log);
        c.sql(kBook, "DROP TRIGGER no");
        QDialog dialog(c.w.log.get());
        dialog.setModal(true);
        dialog.show();
        QTest::qWait(2500);
        QCOMPARE(c.record("UA3ABC", "fam"), QStringLiteral("Петров"));
        dialog.close();
        QTRY_COMPARE(c.record("UA3ABC", "fam"), QStringLiteral("Новый"));
    }

    /// Where the row is gone meanwhile, that is told and nothing is tried for ever.
    void rowOfAFailedEditIsDeleted()
    {
        Callbook c;
        c.type("ua3abc");
        c.sql(kBook, kForbidUpdates);
        c.enter("txtfam", "Новый");
        Desktop::toFront(*c.w.log);
        QVERIFY(!c.status().isEmpty());
        c.sql(kBook, "DELETE FROM tblcalbuk WHERE ccall='UA3ABC'");
        QTRY_VERIFY2(c.status().contains(QStringLiteral("Новый")), qPrintable(c.status()));
        QTRY_COMPARE(c.boxes(), QLatin1String(kNoRecord));
        QVERIFY2(c.status().contains(QStringLiteral("Новый")), qPrintable(c.status()));
    }

    void windowThatIsUsedAgainIsLeftAlone()
    {
        Callbook c;
        c.type("ua3abc");
        c.sql(kBook, kForbidUpdates);
        c.enter("txtfam", "Новый");
        Desktop::toFront(*c.w.log);
        Desktop::toFront(*c.window);
        c.sql(kBook, "DROP TRIGGER no");
        QTest::qWait(2500);
        QCOMPARE(c.record("UA3ABC", "fam"), QStringLiteral("Петров")); // stored as ever: when its box is left
        c.setFocus("txtotch");
        c.press(Qt::Key_Tab);
        QCOMPARE(c.record("UA3ABC", "fam"), QStringLiteral("Новый"));
    }

    void editGivenUpAtClosing()
    {
        Callbook c;
        c.type("ua3abc");
        c.sql(kBook, kForbidUpdates);
        c.enter("txtfam", "Новый");
        c.window->close();
        QCOMPARE(c.w.messages.asked.size(), 1);
        QVERIFY(!c.window->isVisible());
        c.sql(kBook, "DROP TRIGGER no");
        c.reopen();
        QCOMPARE(c.record("UA3ABC"), QString::fromUtf8(kFullRecord));
        QCOMPARE(c.boxes(), QString::fromUtf8(kFullRecord));
    }

    void recordDeletedMeanwhile()
    {
        Callbook c;
        c.type("ua3abc");
        c.enter("txtfam", "Новый");
        c.sql(kBook, "DELETE FROM tblcalbuk WHERE ccall='UA3ABC'");
        c.press(Qt::Key_Tab);
        QVERIFY(!c.status().isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(c.boxes(), QLatin1String(kNoRecord));
        QVERIFY(c.find("txtfam")->isReadOnly());
        QCOMPARE(c.records("ccall"), QStringList("G3XYZ"));
        c.click("cmbadd"); // the station has no record now
        QCOMPARE(c.record("UA3ABC"), QStringLiteral("UA3ABC||ОЛЕГ||||МОСКВА|||R3X"));
        QVERIFY(c.quiet());
    }
};

QTEST_MAIN(CallbookUnsavedTest)
#include "callbookunsaved.moc"
