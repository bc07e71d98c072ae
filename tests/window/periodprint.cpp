// The period panel's print and table buttons, as the operator uses them.
#include "logentry/sql.h"
#include "support/window.h"
#include "ui/dbgrid.h"

#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>

#include <sqlite3.h>

using testsupport::Installation;
using testsupport::Window;

namespace {

const QString kLog = QStringLiteral("dbiaru.mdb");
const QString kPrint = QStringLiteral("dbprint.mdb");

void add(const Installation &in, const QString &call, const QString &date, const QString &time)
{
    in.sql(kLog, QStringLiteral("INSERT INTO TBLLOG1(ccall,ddate,ttime,bband,rsts,rstr,ps1,CONTR,PRF) "
                                "VALUES('%1','%2','%3','14','599','579','CW','RUSSIAN','ABC')")
                     .arg(call, date, time));
}

/// Contacts around the day of the fixed clock, entered in no order.
void fill(Installation &in)
{
    add(in, QStringLiteral("R4D"), QStringLiteral("05.03.26"), QStringLiteral("23:59"));
    add(in, QStringLiteral("R1A"), QStringLiteral("04.03.26"), QStringLiteral("12:00"));
    add(in, QStringLiteral("R3C"), QStringLiteral("05.03.26"), QStringLiteral("10:00"));
    add(in, QStringLiteral("R2B"), QStringLiteral("05.03.26"), QStringLiteral("00:01"));
    add(in, QStringLiteral("R5E"), QStringLiteral("06.03.26"), QStringLiteral("00:00"));
    add(in, QStringLiteral("RXX"), QStringLiteral("no date"), QStringLiteral("00:00"));
}

void fillMany(const Installation &in, int count)
{
    in.sql(kLog,
           QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1) INSERT "
                          "INTO TBLLOG1(ccall,ddate,ttime) SELECT 'R'||i, "
                          "printf('%02d.03.26',1+(i*7)%28), printf('%02d:%02d',(i*5)%24,(i*11)%60) FROM n")
               .arg(count));
}

QStringList printed(const Installation &in, const char *fields = "ccall")
{
    return in.rows(kPrint,
                   QStringLiteral("SELECT %1 FROM tblprint ORDER BY rowid").arg(QLatin1String(fields)));
}

void days(const Window &w, const QString &first, const QString &last)
{
    w.edit("txtdatmin")->setText(first);
    w.edit("txtdatmax")->setText(last);
}

QString result(const Window &w)
{
    return w.find<QLabel>("lblitog")->text();
}

const QString kUgly = QStringLiteral("05.03.26');DELETE");

/// Another program that has a file open.
class Stranger {
public:
    Stranger(const QString &path, const char *sql)
    {
        if (sqlite3_open(QFile::encodeName(path).constData(), &m_db) != SQLITE_OK ||
            sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
            qFatal("%s", sqlite3_errmsg(m_db));
    }
    Stranger(const Stranger &) = delete;
    Stranger &operator=(const Stranger &) = delete;
    ~Stranger() { sqlite3_close(m_db); }

private:
    sqlite3 *m_db = nullptr;
};

} // namespace

class PeriodPrintTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void statements()
    {
        namespace sql = logentry::sql;
        QCOMPARE(sql::emptyPrintTable().toString(), QStringLiteral("DELETE tblprint.* FROM tblprint;"));
        QCOMPARE(sql::loadPrintTable(u"/a/dbiaru.mdb", u"01.03.26", u"05.03.26").toString(),
                 QStringLiteral("INSERT INTO tblprint  SELECT * From  tbllog1 in '/a/dbiaru.mdb' WHERE ddate "
                                ">=DateValue('01.03.26') and ddate <=DateValue('05.03.26') order by "
                                "cdate(ddate),ttime"));
        QCOMPARE(sql::loadPrintTable(u"/o'n/dbiaru.mdb", u"", u"").toString(),
                 QStringLiteral("INSERT INTO tblprint  SELECT * From  tbllog1 in '/o''n/dbiaru.mdb' WHERE "
                                "ddate >=DateValue('') and ddate <=DateValue('') order by "
                                "cdate(ddate),ttime"));
        QCOMPARE(sql::contactsOfPeriod(u"01.03.26", u"05.03.26").toString(),
                 QStringLiteral("select * from tbllog1 where ddate >= datevalue('01.03.26') and ddate <= "
                                "datevalue('05.03.26') order by cdate(ddate),ttime"));
    }

    void captions()
    {
        Window w;
        QCOMPARE(w.find<QPushButton>("cmbpecat")->text(), QStringLiteral("Печать"));
        QCOMPARE(w.find<QPushButton>("cmbwtabl")->text(), QStringLiteral("в Таблицу"));
        const auto *panel = w.find<QGroupBox>("Frexpo");
        for (const char *name : {"cmbpecat", "cmbwtabl"}) {
            const auto *button = w.find<QPushButton>(name);
            QVERIFY(panel->isAncestorOf(button));
            QVERIFY(!button->toolTip().isEmpty() && !button->accessibleName().isEmpty());
        }
    }

    // ---- print

    void periodIsPrinted()
    {
        Window w(fill);
        w.action("mnuvur")->trigger();
        days(w, QStringLiteral("04.03.26"), QStringLiteral("05.03.26"));
        QStringList atPrint;
        w.reports.atPrint = [&] { atPrint = printed(w.installation); };
        w.click("cmbpecat");
        QCOMPARE(w.reports.printed, QStringList(w.installation.file(QStringLiteral("vurnal.rpt"))));
        QCOMPARE(w.log->reportFile(), w.reports.printed.front());
        QCOMPARE(atPrint, QStringList({"R1A", "R2B", "R3C", "R4D"})); // both days, by date and time text
        QCOMPARE(printed(w.installation, "ccall,ddate,ttime,bband,rsts,rstr,ps1,CONTR,PRF").front(),
                 QStringLiteral("R1A|04.03.26|12:00|14|599|579|CW|RUSSIAN|ABC"));
        QCOMPARE(result(w), QStringLiteral("Для печати отобрано связей: 4."));
        QVERIFY(w.messages.errors.isEmpty() && w.messages.told.isEmpty() && w.messages.asked.isEmpty());
        QCOMPARE(w.installation.rows(kLog, QStringLiteral("SELECT count(*) FROM TBLLOG1")), QStringList("6"));
    }

    void printedTwiceTheSame()
    {
        Window w(fill);
        w.action("mnuvur")->trigger();
        w.click("cmbpecat");
        const QStringList first = printed(w.installation);
        QCOMPARE(first, QStringList({"R2B", "R3C", "R4D"})); // the preset: today
        w.log->Pechat();
        QCOMPARE(printed(w.installation), first);
        QCOMPARE(w.reports.printed.size(), 2);
    }

    void orderOverYears()
    {
        Window w([](Installation &in) {
            add(in, QStringLiteral("Y2026"), QStringLiteral("01.01.26"), QStringLiteral("08:00"));
            add(in, QStringLiteral("Y1999"), QStringLiteral("31.12.99"), QStringLiteral("09:00"));
            add(in, QStringLiteral("Y2025"), QStringLiteral("31.12.2025"), QStringLiteral("10:00"));
            add(in, QStringLiteral("Y1998"), QStringLiteral("5.6.1998"), QStringLiteral("9:00"));
            add(in, QStringLiteral("X1998"), QStringLiteral("05.06.98"), QStringLiteral("10:00"));
            add(in, QStringLiteral("Y1929"), QStringLiteral("01.01.1929"), QStringLiteral("10:00"));
        });
        w.action("mnuvur")->trigger();
        days(w, QStringLiteral("01.01.30"), QStringLiteral("01.01.2026"));
        w.click("cmbpecat");
        QCOMPARE(printed(w.installation), QStringList({"X1998", "Y1998", "Y1999", "Y2025", "Y2026"}));
        days(w, QStringLiteral("1.1.1900"), QStringLiteral("31.12.29"));
        w.click("cmbpecat");
        QCOMPARE(printed(w.installation).front(), QStringLiteral("Y1929"));
    }

    void firstDayAfterTheLast()
    {
        Window w(fill);
        w.action("mnuvur")->trigger();
        w.click("cmbpecat");
        days(w, QStringLiteral("06.03.26"), QStringLiteral("04.03.26"));
        w.click("cmbpecat");
        QCOMPARE(printed(w.installation), QStringList());
        QCOMPARE(w.reports.printed.size(), 2); // an empty log is printed
        QCOMPARE(result(w), QStringLiteral("Для печати отобрано связей: 0."));
    }

    void emptyDayTakesNothing()
    {
        Window w(fill);
        w.action("mnuvur")->trigger();
        days(w, QString(), QStringLiteral("06.03.26"));
        w.click("cmbpecat");
        QCOMPARE(printed(w.installation), QStringList());
        QCOMPARE(w.reports.printed.size(), 1);
        QVERIFY(w.messages.errors.isEmpty());
    }

    void badTexts_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("last");
        QTest::addColumn<QString>("message");
        const QString date = QStringLiteral("Запрос не выполнен: неверная дата.");
        const QString text = QStringLiteral("Запрос не выполнен: недопустимый знак или ошибка в выражении.");
        const QString good = QStringLiteral("05.03.26");
        QTest::newRow("no such day") << QStringLiteral("31.02.26") << good << date;
        QTest::newRow("last day") << good << QStringLiteral("завтра") << date;
        QTest::newRow("quote") << QStringLiteral("05'03") << good << text;
        QTest::newRow("another statement") << kUgly << good << text;
    }
    void badTexts()
    {
        QFETCH(QString, first);
        QFETCH(QString, last);
        QFETCH(QString, message);
        Window w(fill);
        w.action("mnuvur")->trigger();
        w.click("cmbpecat");
        days(w, first, last);
        w.click("cmbpecat");
        QCOMPARE(w.messages.errors, QStringList(message));
        QCOMPARE(printed(w.installation), QStringList()); // nothing of the print before
        QCOMPARE(w.reports.printed.size(), 1);
        QCOMPARE(result(w), QString());
        QCOMPARE(w.installation.rows(kLog, QStringLiteral("SELECT count(*) FROM TBLLOG1")), QStringList("6"));
        QCOMPARE(w.find<ui::DbGrid>("DBGrid1")->isEnabled(), true);
        QCOMPARE(w.gridCalls().size(), 6); // the grid is what it was
        w.click("cmbwtabl");
        QCOMPARE(w.messages.errors, QStringList({message, message}));
        QCOMPARE(w.gridCalls().size(), 6);
    }

    void changedCellIsPrinted()
    {
        Window w(fill);
        w.action("mnuvur")->trigger();
        w.click("cmbwtabl");
        auto *grid = w.find<ui::DbGrid>("DBGrid1");
        grid->setFocus();
        grid->setCurrentIndex(grid->model()->index(0, 0));
        w.type(QStringLiteral("R9Z"));
        w.log->Pechat(); // the cell is still open
        QCOMPARE(printed(w.installation), QStringList({"R9Z", "R3C", "R4D"}));
    }

    void folderWithAQuote()
    {
        Installation in;
        const QString folder = in.file(QStringLiteral("O'Neil"));
        QVERIFY(QDir().mkpath(folder));
        store::Library files(store::DataFolder{folder, false}, in.userFolder());
        files.createMissingFiles();
        const QString log = folder + QStringLiteral("/dbiaru.mdb");
        files.connection(log).exec(QStringLiteral("INSERT INTO TBLLOG1(ccall,ddate) VALUES('R1A','5.3.26')"));
        QCOMPARE(files.execute(folder + QStringLiteral("/dbprint.mdb"),
                               logentry::sql::loadPrintTable(log, u"05.03.26", u"05.03.26")),
                 1);
    }

    void unknownColumnOfTheLogIsPrintedToo()
    {
        Window w([](Installation &in) {
            fill(in);
            in.sql(kLog, QStringLiteral("ALTER TABLE TBLLOG1 ADD COLUMN mine TEXT;"));
            in.sql(kLog, QStringLiteral("UPDATE TBLLOG1 SET mine='m'||ccall"));
        });
        w.action("mnuvur")->trigger();
        w.click("cmbpecat");
        QCOMPARE(printed(w.installation, "mine"), QStringList({"mR2B", "mR3C", "mR4D"}));
    }

    void progressOfALongPeriod()
    {
        constexpr int kMany = 12000;
        Window w([](Installation &in) { fillMany(in, kMany); });
        w.action("mnuvur")->trigger();
        days(w, QStringLiteral("01.03.26"), QStringLiteral("28.03.26"));
        w.click("cmbpecat");
        QCOMPARE(w.progress.steps, QStringList({"Печать", "Связей: 5000 of 12000", "Связей: 10000 of 12000",
                                                "Связей: 12000 of 12000", "end"}));
        QVERIFY(!w.progress.stoppable); // all or nothing
        // The engine's own order of the whole, without any pieces.
        const QStringList expected = w.installation.rows(
            kLog, QStringLiteral("SELECT ccall FROM TBLLOG1 ORDER BY substr(ddate,1,2),ttime,rowid"));
        QCOMPARE(expected.size(), kMany);
        QCOMPARE(printed(w.installation), expected);
        w.click("cmbpecat"); // nothing is left that would be in the way
        QCOMPARE(printed(w.installation), expected);
        QVERIFY(w.messages.errors.isEmpty());
    }

    void logIsReadByOthersMeanwhile()
    {
        Window w(fill);
        const Stranger reader(w.installation.file(kLog), "BEGIN; SELECT * FROM TBLLOG1");
        w.action("mnuvur")->trigger();
        w.click("cmbpecat");
        QCOMPARE(printed(w.installation).size(), 3);
        QVERIFY(w.messages.errors.isEmpty());
    }

    void logIsWrittenByOthersMeanwhile()
    {
        Window w(fill);
        const Stranger writer(w.installation.file(kLog),
                              "BEGIN IMMEDIATE; UPDATE TBLLOG1 SET ps='1'; SELECT 1");
        w.action("mnuvur")->trigger();
        w.click("cmbpecat");
        QCOMPARE(printed(w.installation).size(), 3);
        QVERIFY(w.messages.errors.isEmpty());
    }

    // ---- what stands in the way

    void lockedLog()
    {
        Window w(fill);
        w.action("mnuvur")->trigger();
        w.click("cmbpecat");
        {
            const Stranger other(w.installation.file(kLog), "BEGIN EXCLUSIVE");
            w.click("cmbpecat");
        }
        QCOMPARE(w.messages.errors, QStringList(QStringLiteral("Файл dbiaru.mdb занят другой программой.")));
        QCOMPARE(printed(w.installation), QStringList());
        QCOMPARE(w.reports.printed.size(), 1);
        w.click("cmbpecat"); // free again
        QCOMPARE(printed(w.installation).size(), 3);
        QCOMPARE(w.reports.printed.size(), 2);
    }

    void logTakenAway()
    {
        Window w(fill);
        w.action("mnuvur")->trigger();
        const QString log = w.installation.file(kLog);
        QVERIFY(QFile::rename(log, log + QStringLiteral(".away")));
        w.click("cmbpecat");
        QCOMPARE(w.messages.errors.size(), 1);
        QVERIFY2(w.messages.errors.front().contains(QStringLiteral("dbiaru.mdb")),
                 qPrintable(w.messages.errors.front()));
        QVERIFY(!QFile::exists(log)); // no empty log is made in its place
        QVERIFY(w.reports.printed.isEmpty());
    }

    void lockedPrintTable()
    {
        Window w(fill);
        w.action("mnuvur")->trigger();
        w.click("cmbpecat");
        days(w, QStringLiteral("04.03.26"), QStringLiteral("04.03.26"));
        {
            const Stranger other(w.installation.file(kPrint), "BEGIN EXCLUSIVE");
            w.click("cmbpecat");
        }
        QCOMPARE(w.messages.errors, QStringList(QStringLiteral("Файл dbprint.mdb занят другой программой.")));
        QCOMPARE(w.reports.printed.size(), 1);
        QCOMPARE(printed(w.installation), QStringList({"R2B", "R3C", "R4D"}));
        w.click("cmbpecat"); // free again
        QCOMPARE(printed(w.installation), QStringList("R1A"));
        QCOMPARE(w.reports.printed.size(), 2);
    }

    void missingPrintTable()
    {
        Window w(fill);
        QVERIFY(QFile::remove(w.installation.file(kPrint)));
        w.action("mnuvur")->trigger();
        w.click("cmbpecat");
        QCOMPARE(w.messages.errors, QStringList(QStringLiteral("Файл dbprint.mdb не найден.")));
        QVERIFY(w.reports.printed.isEmpty());
        QVERIFY(!QFile::exists(w.installation.file(kPrint)));
    }

    void takenAwayAfterAPrint()
    {
        Window w(fill);
        w.action("mnuvur")->trigger();
        w.click("cmbpecat");
        QVERIFY(QFile::remove(w.installation.file(kPrint)));
        w.click("cmbpecat");
        QCOMPARE(w.messages.errors, QStringList(QStringLiteral("Файл dbprint.mdb не найден.")));
        QCOMPARE(w.reports.printed.size(), 1);
    }

    void foreignPrintTable()
    {
        const QByteArray content("this is no database at all, but somebody's text");
        Window w([&](Installation &in) {
            fill(in);
            QFile file(in.file(kPrint));
            QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            file.write(content);
        });
        w.action("mnuvur")->trigger();
        w.click("cmbpecat");
        QCOMPARE(w.messages.errors.size(), 1);
        QVERIFY2(w.messages.errors.front().contains(QStringLiteral("не является базой данных")),
                 qPrintable(w.messages.errors.front()));
        QVERIFY(w.reports.printed.isEmpty());
        QFile file(w.installation.file(kPrint));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), content);
    }

    void readOnlyFolderPrintsNothing()
    {
        Installation in;
        store::Library files(store::DataFolder{in.folder(), true}, in.userFolder());
        const QString print = in.file(kPrint);
        try {
            (void)files.execute(print, logentry::sql::emptyPrintTable());
            QFAIL("written in a folder that is only read");
        } catch (const store::Error &error) {
            QCOMPARE(error.kind(), store::ErrorKind::ReadOnly);
            QCOMPARE(error.text(),
                     QStringLiteral("Файл dbprint.mdb открыт только для чтения, записать в него нельзя."));
        }
    }

    // ---- table

    void periodInTheGrid()
    {
        Window w(fill);
        QCOMPARE(w.gridCalls().size(), 6);
        const auto *model = w.find<ui::DbGrid>("DBGrid1")->sourceModel();
        const int columns = model->columnCount();
        w.action("mnuvur")->trigger();
        days(w, QStringLiteral("04.03.26"), QStringLiteral("05.03.26"));
        w.click("cmbwtabl");
        QCOMPARE(w.gridCalls(), QStringList({"R1A", "R2B", "R3C", "R4D"}));
        QCOMPARE(model->columnCount(), columns);
        QCOMPARE(model->index(0, 1).data().toString(), QStringLiteral("04.03.26"));
        QCOMPARE(w.status(), QStringLiteral("За период связей: 4."));
        QCOMPARE(w.focus(), QStringLiteral("cmbwtabl"));
        QVERIFY(w.reports.printed.isEmpty());
        days(w, QStringLiteral("07.03.26"), QStringLiteral("01.03.26"));
        w.click("cmbwtabl");
        QCOMPARE(w.gridCalls(), QStringList());
        QCOMPARE(w.status(), QStringLiteral("За этот период связей нет."));
        QVERIFY(w.messages.errors.isEmpty());
    }

    void gridStandsAtItsFirstRow()
    {
        Window w([](Installation &in) { fillMany(in, 500); });
        auto *grid = w.find<ui::DbGrid>("DBGrid1");
        grid->showLastRow();
        w.action("mnuvur")->trigger();
        days(w, QStringLiteral("01.03.26"), QStringLiteral("31.03.26"));
        w.click("cmbwtabl");
        QCOMPARE(w.status(), QStringLiteral("За период связей: 500."));
        QCOMPARE(grid->verticalScrollBar()->value(), 0);
        QCOMPARE(w.gridCalls().size(), 500);
        grid->setFocus();
        w.press(Qt::Key_End, Qt::ControlModifier); // no row is read in late, the place stays
        QCOMPARE(grid->currentIndex().row(), 499);
    }

    void nextContactShowsTheDayAgain()
    {
        Window w(fill);
        w.action("mnuvur")->trigger();
        days(w, QStringLiteral("04.03.26"), QStringLiteral("04.03.26"));
        w.click("cmbwtabl");
        QCOMPARE(w.gridCalls(), QStringList("R1A"));
        w.edit("txtcall")->setFocus();
        w.type(QStringLiteral("r7n"));
        w.press(Qt::Key_F4);
        QCOMPARE(w.gridCalls(), QStringList({"R4D", "R3C", "R2B", "R7N"})); // as they stand in the log
        QCOMPARE(w.status(), QString());
    }

    void rowIsChangedInPlace()
    {
        Window w(fill);
        w.action("mnuvur")->trigger();
        w.click("cmbwtabl");
        auto *grid = w.find<ui::DbGrid>("DBGrid1");
        grid->setFocus();
        grid->setCurrentIndex(grid->model()->index(1, 0));
        w.type(QStringLiteral("r3zz"));
        w.press(Qt::Key_Return);
        w.click("cmbwtabl");
        QCOMPARE(w.gridCalls(), QStringList({"R2B", "R3ZZ", "R4D"}));
        QCOMPARE(w.installation.rows(kLog, QStringLiteral("SELECT ddate FROM TBLLOG1 WHERE ccall='R3ZZ'")),
                 QStringList("05.03.26"));
    }

    void ownKeyComesFirst()
    {
        Window w(fill);
        QVERIFY(w.log->state().ownCallKey.isEmpty());
        w.action("mnuvur")->trigger();
        w.edit("txtNcall")->setText(QStringLiteral("UA1ABC"));
        w.click("cmbwtabl");
        QCOMPARE(w.log->state().ownCallKey, QStringLiteral("ABC"));
        QCOMPARE(w.gridCalls().size(), 3);
    }

    void lockedLogIsTold()
    {
        Window w(fill);
        w.action("mnuvur")->trigger();
        {
            const Stranger other(w.installation.file(kLog), "BEGIN EXCLUSIVE");
            w.click("cmbwtabl");
        }
        QCOMPARE(w.messages.errors, QStringList(QStringLiteral("Файл dbiaru.mdb занят другой программой.")));
        w.click("cmbwtabl");
        QCOMPARE(w.gridCalls().size(), 3);
    }

    // ---- keys

    void keysOfThePanel()
    {
        Window w(fill);
        w.action("mnuvur")->trigger();
        QCOMPARE(w.focus(), QStringLiteral("txtdatmin"));
        w.press(Qt::Key_Return);
        w.press(Qt::Key_Return);
        QCOMPARE(w.focus(), QStringLiteral("cmbpecat"));
        w.press(Qt::Key_Return);
        QCOMPARE(w.reports.printed.size(), 1);
        w.press(Qt::Key_Tab);
        QCOMPARE(w.focus(), QStringLiteral("cmbwtabl"));
        w.press(Qt::Key_Space);
        QCOMPARE(w.gridCalls().size(), 3);
        for (const char *name : {"txtput", "cmbput", "cbmotchet", "cmbwse", "cmbformat", "cmbzakr"}) {
            w.press(Qt::Key_Tab);
            QCOMPARE(w.focus(), QLatin1String(name));
        }
        w.press(Qt::Key_Return);
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
    }
};

QTEST_MAIN(PeriodPrintTest)
#include "periodprint.moc"
