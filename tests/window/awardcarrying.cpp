// The awards window: what of a contact goes into the blank, and what goes wrong on the way.
#include "support/awards.h"

#include <QSignalSpy>

using testsupport::addLog;
using testsupport::awardContacts;
using testsupport::Awards;
using testsupport::Installation;
using namespace testsupport::award;

namespace {

constexpr int kTimeColumn = 2;

} // namespace

class AwardCarryingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void contactIsCarried()
    {
        Awards a(awardContacts);
        QSignalSpy changed(a.window.get(), &awards::frmDIPLOM::logChanged);
        a.clickRow(kPrefixes, "UA");
        a.clickRow(kCalls, "UA3AB");
        a.doubleClickCell(kStation, 0);
        // The received report stands where a card shows the one sent; no country; nothing else of the
        // contact.
        QCOMPARE(a.blank(kCarried), QStringList("UA3AB|01.02.03|10:11|14|579|"));
        QCOMPARE(a.blank("rstr||ps||ps1||qslp||prf||mult||point"), QStringList(""));
        QCOMPARE(a.gridRow(kBlank, 0), QStringLiteral("UA3AB|01.02.03|10:11|14|579|||||"));
        a.tick("Check1");
        a.doubleClickCell(kStation, 0, 8);
        QCOMPARE(a.blank(kCarried), QStringList({"UA3AB|01.02.03|10:11|14|579|",
                                                 "UA3AB|01.02.03|10:11|14|579|RUSSIAN"})); // twice is allowed
        a.tick("Check1");
        a.doubleClickCell(kStation, 0, 3);
        QCOMPARE(a.blank("CONTR"), QStringList({"", "RUSSIAN", ""}));
        QCOMPARE(a.log("ccall").size(), 8);
        QCOMPARE(changed.size(), 0); // nothing of the log
        QVERIFY(a.quiet());
    }

    void rulesOfTimeAndReport_data()
    {
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<QString>("call");
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("carried");
        QTest::newRow("three digits") << "UA"
                                      << "R3AB" << 0 << "09:34|59";
        QTest::newRow("four digits") << "DL"
                                     << "DL1AA" << 1 << "1234|57";
        QTest::newRow("two digits") << "DL"
                                    << "DL1AB" << 0 << "00:12|595";
        QTest::newRow("one digit") << "F"
                                   << "F5AB" << 0 << "00:05|55";
        QTest::newRow("hours and minutes") << "UA"
                                           << "UA3AB" << 0 << "10:11|579";
    }
    void rulesOfTimeAndReport()
    {
        QFETCH(QString, prefix);
        QFETCH(QString, call);
        QFETCH(int, row);
        QFETCH(QString, carried);
        Awards a(awardContacts);
        a.clickRow(kPrefixes, qPrintable(prefix));
        a.clickRow(kCalls, qPrintable(call));
        a.doubleClickCell(kStation, row);
        QCOMPARE(a.blank("ttime,rsts"), QStringList(carried));
        QVERIFY(a.quiet());
    }

    void contestReportIsAsked_data()
    {
        QTest::addColumn<bool>("yes");
        QTest::addColumn<QString>("report");
        QTest::newRow("yes") << true << "599";
        QTest::newRow("no") << false << "59";
    }
    void contestReportIsAsked()
    {
        QFETCH(bool, yes);
        QFETCH(QString, report);
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "DL");
        a.clickRow(kCalls, "DL1AA");
        a.w.messages.yes = yes;
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.asked,
                 QStringList(QStringLiteral("RST из контеста !!!: Если 599 жми OK ,иначе RST=59")));
        QCOMPARE(a.blank(kCarried), QStringList(QStringLiteral("DL1AA|04.02.03|12:34|14|%1|").arg(report)));
        QCOMPARE(a.log("rstr")[3], QStringLiteral("599001")); // the log keeps it
    }

    void missingTimeIsAsked()
    {
        Awards a(awardContacts);
        QSignalSpy changed(a.window.get(), &awards::frmDIPLOM::logChanged);
        a.clickRow(kPrefixes, "UA");
        a.clickRow(kCalls, "UA9AA");
        a.w.messages.texts = QStringList("934");
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.asked, QStringList(QStringLiteral("Нет времени связи: Введите время !!! ")));
        QCOMPARE(a.blank(kCarried), QStringList("UA9AA|03.02.03|09:34|21||")); // a report of one sign is none
        QCOMPARE(a.log("ttime")[2], QStringLiteral("934"));
        QCOMPARE(a.cell(kStation, 0, kTimeColumn), QStringLiteral("934"));
        QCOMPARE(changed.size(), 1);
        a.doubleClickCell(kStation, 0); // it is there now
        QCOMPARE(a.w.messages.asked.size(), 1);
        QCOMPARE(a.blank("ttime"), QStringList({"09:34", "09:34"}));
        QCOMPARE(changed.size(), 1);
        QVERIFY(a.w.messages.errors.isEmpty());
    }

    void cancelledTime()
    {
        Awards a(awardContacts);
        QSignalSpy changed(a.window.get(), &awards::frmDIPLOM::logChanged);
        a.clickRow(kPrefixes, "UA");
        a.clickRow(kCalls, "UA9AA");
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.asked.size(), 1);
        QCOMPARE(a.blank(kCarried), QStringList("UA9AA|03.02.03||21||"));
        QCOMPARE(a.log("ttime")[2], QString());
        QCOMPARE(changed.size(), 0); // nothing has
    }

    void timeBeforeReport()
    {
        Awards a([](Installation &in) {
            awardContacts(in);
            addLog(in, "ccall=F1X|contr=FRANCE|rstr=59 123");
        });
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F1X");
        a.w.messages.texts = QStringList("1");
        a.w.messages.answers = {false};
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.asked.size(), 2);
        QVERIFY(a.w.messages.asked.front().startsWith(QStringLiteral("Нет времени")));
        QCOMPARE(a.blank("ttime,rsts"), QStringList("00:01|59"));
    }

    void carriedByKeyboard()
    {
        Awards a(awardContacts);
        a.find<QWidget>(kPrefixes)->setFocus();
        a.press(Qt::Key_Return); // the first one, which the focus marks
        QCOMPARE(a.rows(kCalls), QStringList({"DL1AA", "DL1AB"}));
        QCOMPARE(a.w.focus(), QLatin1String(kCalls));
        a.press(Qt::Key_Return);
        QCOMPARE(a.w.focus(), QLatin1String(kStation));
        QCOMPARE(a.column(kStation, 3), QStringList({"14", "7"}));
        a.press(Qt::Key_Return);
        a.press(Qt::Key_Down);
        a.press(Qt::Key_Return);
        QCOMPARE(a.blank("ccall,bband"), QStringList({"DL1AA|14", "DL1AA|7"}));
        QCOMPARE(a.w.focus(), QLatin1String(kStation));
        a.press(Qt::Key_Escape);
        QCOMPARE(a.w.focus(), QLatin1String(kCalls));
        a.press(Qt::Key_Down);
        a.press(Qt::Key_Return);
        a.press(Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(a.blank("ccall").constLast(), QStringLiteral("DL1AB"));
        QCOMPARE(a.w.messages.asked.size(), 1); // the contest's report
    }

    void heldEnterCarriesOnce()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.clickCell(kStation, 0, 0);
        a.press(Qt::Key_Return);
        for (int i = 0; i < 3; ++i) {
            QKeyEvent again(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"), true);
            QCoreApplication::sendEvent(a.find<QWidget>(kStation), &again);
        }
        QCOMPARE(a.blank(), QStringList("F5AB"));
    }

    void withoutAContactNothingIsCarried()
    {
        Awards a(testsupport::awardTables); // an empty log
        a.find<QWidget>(kStation)->setFocus();
        a.press(Qt::Key_Return);
        QCOMPARE(a.blank(), QStringList());
        a.press(Qt::Key_Escape);
        QCOMPARE(a.w.focus(), QLatin1String(kCalls));
        QVERIFY(a.quiet());
    }

    void cellOfTheLogIsPutRightAndCarried()
    {
        Awards a(awardContacts);
        QSignalSpy changed(a.window.get(), &awards::frmDIPLOM::logChanged);
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.clickCell(kStation, 0, kTimeColumn);
        a.press(Qt::Key_F2);
        a.type("2359"); // the cell is still open
        a.doubleClickCell(kStation, 0, 0);
        QCOMPARE(a.log("ttime")[6], QStringLiteral("2359"));
        QCOMPARE(a.blank("ttime"), QStringList("2359"));
        QCOMPARE(changed.size(), 1);
        QVERIFY(a.quiet());
    }

    void failedCarryingLeavesTheBlank()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.sql(kLog, kForbidBlank);
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.column(kBlank, 0), QStringList());
        a.clickRow(kPrefixes, "DL"); // the window goes on working
        a.clickRow(kCalls, "DL1AB");
        a.clickCell(kStation, 0, 0);
        QCOMPARE(a.w.messages.errors.size(), 1);
        a.sql(kLog, "DROP TRIGGER no");
        a.press(Qt::Key_Return);
        QCOMPARE(a.blank(), QStringList("DL1AB"));
        QCOMPARE(a.w.messages.errors.size(), 1);
        a.window->close();
        QVERIFY(!a.window->isVisible());
    }

    void timeThatCannotBeStored()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "UA");
        a.clickRow(kCalls, "UA9AA");
        a.sql(kLog, kForbidLog);
        a.w.messages.texts = QStringList("1530");
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.w.messages.errors.size(), 1);
        QCOMPARE(a.blank(), QStringList());
        QCOMPARE(a.cell(kStation, 0, kTimeColumn), QStringLiteral("1530")); // the answer is kept
        a.sql(kLog, "DROP TRIGGER no");
        a.doubleClickCell(kStation, 0);
        QCOMPARE(a.blank("ttime"), QStringList("1530"));
        QCOMPARE(a.log("ttime")[2], QStringLiteral("1530"));
        QCOMPARE(a.w.messages.errors.size(), 1);
    }

    void escDropsTheEditOfARow()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        a.sql(kLog, kForbidLog);
        a.clickCell(kStation, 0, 0);
        a.press(Qt::Key_F2);
        a.type("x");
        a.press(Qt::Key_Return);
        QCoreApplication::processEvents();
        QCOMPARE(a.cell(kStation, 0, 0), QStringLiteral("X"));
        a.press(Qt::Key_Escape); // also where it can never be saved
        QCOMPARE(a.cell(kStation, 0, 0), QStringLiteral("F5AB"));
        QCOMPARE(a.w.focus(), QLatin1String(kStation));
        a.press(Qt::Key_Escape);
        QCOMPARE(a.w.focus(), QLatin1String(kCalls));
        QCOMPARE(a.log("ccall")[6], QStringLiteral("F5AB"));
        QVERIFY(a.quiet());
    }

    void strayLettersChangeNothing()
    {
        Awards a(awardContacts);
        a.clickRow(kPrefixes, "F");
        a.clickRow(kCalls, "F5AB");
        const QStringList before = a.log("*");
        a.clickCell(kStation, 0, 3);
        a.type("7x");
        a.press(Qt::Key_Escape);
        QCOMPARE(a.w.focus(), QLatin1String(kCalls));
        QCOMPARE(a.log("*"), before);
        QVERIFY(a.quiet());
    }
};

QTEST_MAIN(AwardCarryingTest)
#include "awardcarrying.moc"
