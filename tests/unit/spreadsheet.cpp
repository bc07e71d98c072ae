// Rows of a workbook into the log: what goes where, what ends it, and that a log is never half changed.
#include "interchange/spreadsheet.h"

#include "store/fixedpath.h"
#include "support/faultyvfs.h"
#include "support/installation.h"
#include "support/sheetwriter.h"

#include <QDir>
#include <QFile>
#include <QTest>

using interchange::importSpreadsheet;
using interchange::SpreadsheetResult;
using interchange::SpreadsheetSteps;
using testsupport::FaultyDisk;
using testsupport::Installation;
using testsupport::SheetWriter;

namespace {

constexpr auto kLog = "dbiaru.mdb";
constexpr auto kTaken = "SELECT ccall,ddate,ttime,bband,rsts,rstr,QTH,NNAME,QSLVIA,QSLP,QSLO FROM TBLLOG1 "
                        "ORDER BY rowid";

QString book(const char *name)
{
    return QStringLiteral(TEST_DATA "/xls/") + QLatin1String(name);
}

QString mainLog(const Installation &in)
{
    return in.file(QLatin1String(kLog));
}

QStringList taken(const Installation &in)
{
    return in.rows(QLatin1String(kLog), QLatin1String(kTaken));
}

int logRows(const Installation &in)
{
    return in.rows(QLatin1String(kLog), QStringLiteral("SELECT count(*) FROM TBLLOG1")).front().toInt();
}

QStringList copies(const Installation &in)
{
    return QDir(in.userFolder()).entryList({QStringLiteral("dbiaru.*.mdb")}, QDir::Files);
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void put(const QString &path, const QByteArray &bytes)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

/// A workbook of `rows` contacts in a file of the installation's own.
QString bigBook(const Installation &in, int rows)
{
    SheetWriter writer;
    for (int row = 0; row < rows; ++row)
        writer.text(row, 0, QStringLiteral("R%1").arg(row)).number(row, 3, 14);
    QString path = in.userFolder() + QLatin1String("/big.xls");
    put(path, writer.finished());
    return path;
}

/// What the import throws; "none" where it ends well.
struct Thrown {
    std::optional<store::Error> error;
    [[nodiscard]] QString text() const { return error ? error->text() : QStringLiteral("none"); }
};

Thrown thrown(Installation &in, const QString &workbook, const QString &log)
{
    try {
        (void)importSpreadsheet(in.databases, workbook, log);
    } catch (const store::Error &error) {
        return {error};
    }
    return {};
}

} // namespace

class SpreadsheetTest : public QObject {
    Q_OBJECT

    FaultyDisk m_disk;

private Q_SLOTS:
    void cleanup() { FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull); }

    void everyCellInItsField_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : {"biff5/TblLog.XLS", "biff5hand/TblLog.XLS", "biff8/TblLog.XLS",
                                 "variants/hand5_nocp.xls", "variants/hand5_cp1252rec.xls"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void everyCellInItsField()
    {
        QFETCH(QString, name);
        Installation in;
        const SpreadsheetResult result =
            importSpreadsheet(in.databases, book(name.toLatin1().constData()), mainLog(in));
        QCOMPARE(result.rows, 13);
        QCOMPARE(result.added, 13);
        QCOMPARE(result.notTaken, 3); // 14, 15 and 17; 16 is blank
        QVERIFY(!result.stopped && !result.failed);
        const QStringList rows = taken(in);
        QCOMPARE(rows.size(), 13);
        QCOMPARE(rows[0], QStringLiteral("UA3ABC|05.03.02|14:07|14|599|579|Москва|Сергей|buro|+|"));
        QCOMPARE(rows[1], QStringLiteral("R3ABC|06.03.02|14:08|14|599|579|С.Петербург|Пётр|||"));
        QCOMPARE(rows[2], QStringLiteral("DL1ABC|17.12.99|09:05|1,8|59|59|Koln|Hans|DL9XYZ||01.02.2003"));
        QCOMPARE(rows[3],
                 QStringLiteral("UA9XYZ/P|29.02.04 23:59|00:00|3,5|599|599|Сыктывкар|Ян|БЮРО|ИСТИНА|ЛОЖЬ"));
        QCOMPARE(rows[4], QStringLiteral("UT1AAA|36890|0,5|7|59|59|Ґорохів Їж|Олексій||да|1"));
        QCOMPARE(rows[5], QStringLiteral("EU1AAA|09.05.95|0630|1,8|59|59|Магілёў|Ўладзімір|||"));
        QCOMPARE(rows[6], QStringLiteral("N'DJA1|1.1.01|7|21|5|5|N'Djamena|O'Neil|via \"buro\"||"));
        QVERIFY(rows[7].startsWith(QLatin1String("1234|01.01.01|12:00|10,1|59|59|")));
        QVERIFY(rows[8].startsWith(QLatin1String("RA0ZZZ|01.01.00|23:59|-1|10000000000|0,1|")));
        QVERIFY(rows[8].size() > 255);
        QCOMPARE(rows[9], QStringLiteral("RW3FRM|05.04.03|10:20|14|599|599|Тверь|формулы|#Н/Д|#Н/Д|"));
        QVERIFY(rows[10].startsWith(QLatin1String("  RV3SPC | 05.03.02|14:07 | 14|")));
        QVERIFY(rows[11].contains(QStringLiteral("две\nстроки|таб\tтаб")));
        QCOMPARE(rows[12], QStringLiteral("RU3BLK|10.10.00|10:10|14|||||||"));
    }

    void otherFieldsKeepTheirDefaults()
    {
        Installation in;
        in.sql(QLatin1String(kLog), QStringLiteral("ALTER TABLE TBLLOG1 ADD COLUMN award TEXT DEFAULT 'no'"));
        (void)importSpreadsheet(in.databases, book("biff8/TblLog.XLS"), mainLog(in));
        QCOMPARE(in.rows(QLatin1String(kLog),
                         QStringLiteral(
                             "SELECT DISTINCT mult,point,ps,ps1,PS2,CONTR,CONT,PRF,award FROM TBLLOG1")),
                 QStringList{QStringLiteral("||||||||no")});
    }

    void aBlankFirstCellEndsIt()
    {
        Installation in;
        SheetWriter writer;
        for (const int row : {0, 1, 3, 5})
            writer.text(row, 0, QStringLiteral("R%1").arg(row));
        writer.text(2, 1, QStringLiteral("01.01.01"));
        const QString path = in.userFolder() + QLatin1String("/three.xls");
        put(path, writer.finished());
        const SpreadsheetResult result = importSpreadsheet(in.databases, path, mainLog(in));
        QCOMPARE(result.added, 2);
        QCOMPARE(result.notTaken, 3);
        QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall FROM TBLLOG1")),
                 QStringList({QStringLiteral("R0"), QStringLiteral("R1")}));
    }

    void aBlankIsNoBlankCell()
    {
        Installation in;
        const QString path = in.userFolder() + QLatin1String("/blank.xls");
        put(path,
            SheetWriter().text(0, 0, QStringLiteral(" ")).text(1, 0, QStringLiteral("R1AA")).finished());
        QCOMPARE(importSpreadsheet(in.databases, path, mainLog(in)).added, 2);
    }

    void aTableThatBeginsElsewhere()
    {
        Installation in;
        QCOMPARE(importSpreadsheet(in.databases, book("variants/shifted_biff5.xls"), mainLog(in)).added, 2);
        QCOMPARE(taken(in)[0], QStringLiteral("UA3ABC|05.03.02|14:07|14|599|579|Москва|Сергей|buro|+|"));
    }

    void twiceAddsTwice()
    {
        Installation in;
        in.addContact(QStringLiteral("UA3ABC"), QStringLiteral("05.03.02"), QStringLiteral("RUSSIAN"));
        for (int i = 0; i < 2; ++i)
            (void)importSpreadsheet(in.databases, book("variants/second_biff8.xls"), mainLog(in));
        QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall FROM TBLLOG1 ORDER BY rowid")),
                 QStringList({QStringLiteral("UA3ABC"), QStringLiteral("UA3ABC"), QStringLiteral("R3ABC"),
                              QStringLiteral("DL1ABC"), QStringLiteral("UA3ABC"), QStringLiteral("R3ABC"),
                              QStringLiteral("DL1ABC")}));
    }

    void theLogIsCopiedBefore()
    {
        Installation in;
        in.addContact(QStringLiteral("DL1OLD"), QStringLiteral("05.03.26"), QStringLiteral("GERMANY"));
        bool told = false;
        SpreadsheetSteps steps;
        steps.copying = [&told](qint64, qint64) { told = true; };
        (void)importSpreadsheet(in.databases, book("biff8/TblLog.XLS"), mainLog(in), steps);
        QVERIFY(told);
        QCOMPARE(copies(in).size(), 1);
        store::Connection copy(in.userFolder() + QLatin1Char('/') + copies(in).front(),
                               store::OpenMode::ReadOnly);
        QCOMPARE(copy.singleNumber(QStringLiteral("SELECT count(*) FROM TBLLOG1")), 1);
        QCOMPARE(logRows(in), 14);
    }

    void anEmptySheetChangesNothing()
    {
        Installation in;
        const SpreadsheetResult result =
            importSpreadsheet(in.databases, book("variants/emptysheet_biff8.xls"), mainLog(in));
        QCOMPARE(result.added, 0);
        QCOMPARE(result.notTaken, 0);
        QVERIFY(copies(in).isEmpty());
    }

    void whatCannotBeReadChangesNothing_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("said");
        const auto row = [](const char *name, const char16_t *said) {
            QTest::newRow(name) << QString::fromLatin1(name) << QString::fromUtf16(said);
        };
        row("broken/trunc_half_biff8.xls",
            u"Файл trunc_half_biff8.xls не прочитан: файл повреждён или обрезан.");
        row("broken/no_eof_biff5.xls",
            u"Файл no_eof_biff5.xls не прочитан: файл повреждён: лист обрывается.");
        row("broken/filepass_biff5.xls",
            u"Файл filepass_biff5.xls не прочитан: книга защищена паролем; снимите "
            u"пароль и сохраните её снова.");
        row("broken/empty.xls", u"Файл empty.xls не прочитан: файл пуст.");
        row("variants/nosheet_biff8.xls",
            u"Файл nosheet_biff8.xls не прочитан: в книге нет листа «Tbl» (есть: "
            u"«Sheet1», «Лист2»).");
        row("other/TblLog.xlsx", u"Файл TblLog.xlsx не прочитан: это книга Excel 2007 или новее (.xlsx); "
                                 u"откройте её и сохраните как «Книга Excel 97–2003 (*.xls)».");
        row("nothing.xls", u"Файл nothing.xls не найден.");
        row("biff8", u"Файл biff8 не прочитан: это папка.");
    }

    void whatCannotBeReadChangesNothing()
    {
        QFETCH(QString, name);
        QFETCH(QString, said);
        Installation in;
        in.addContact(QStringLiteral("DL1OLD"), QStringLiteral("05.03.26"), QStringLiteral("GERMANY"));
        const QByteArray before = contents(mainLog(in));
        QCOMPARE(thrown(in, book(name.toLatin1().constData()), mainLog(in)).text(), said);
        QVERIFY(contents(mainLog(in)) == before);
        QVERIFY(copies(in).isEmpty());
    }

    void everyDamagedWorkbookIsWholeOrNothing()
    {
        Installation in;
        const QDir folder(book("broken"));
        int refused = 0;
        const QStringList names = folder.entryList({QStringLiteral("*.xls")});
        for (const QString &name : names) {
            const int before = logRows(in);
            const Thrown outcome = thrown(in, folder.filePath(name), mainLog(in));
            const int added = logRows(in) - before;
            if (outcome.error) {
                ++refused;
                QCOMPARE(added, 0);
                QVERIFY(outcome.error->kind() == store::ErrorKind::Unreadable);
            } else {
                QVERIFY2(added > 0, name.toUtf8());
            }
        }
        QVERIFY(refused >= 24);
    }

    void logsThatCannotTakeTheRows()
    {
        Installation in;
        const QString workbook = book("biff8/TblLog.XLS");
        QVERIFY(thrown(in, workbook, in.file(QStringLiteral("no.mdb"))).error->kind() ==
                store::ErrorKind::Missing);
        QVERIFY(thrown(in, workbook, workbook).error->kind() == store::ErrorKind::Foreign);
        const QString other = in.file(QStringLiteral("other.mdb"));
        {
            const auto made = store::Connection::create(other);
            made->exec(QStringLiteral("CREATE TABLE t(a)"));
        }
        QVERIFY(thrown(in, workbook, other).error->kind() == store::ErrorKind::MissingTable);
        in.sql(QStringLiteral("other.mdb"),
               QStringLiteral("CREATE TABLE tbllog1(ccall,ddate,ttime,bband,rsts,"
                              "rstr,qth,nname,qslvia,qslp)"));
        const Thrown outcome = thrown(in, workbook, other);
        QVERIFY(outcome.error->details().startsWith(QStringLiteral("в таблице TBLLOG1 нет поля QSLO")));
        QVERIFY(copies(in).isEmpty() &&
                QDir(in.userFolder()).entryList({QStringLiteral("other*")}).isEmpty());
    }

    void aLogThatIsOnlyRead()
    {
        Installation in;
        store::Library databases({in.folder(), true}, in.userFolder());
        try {
            (void)importSpreadsheet(databases, book("biff8/TblLog.XLS"), mainLog(in));
            QFAIL("added to a log that is only read");
        } catch (const store::Error &error) {
            QVERIFY(error.kind() == store::ErrorKind::ReadOnly);
        }
        QVERIFY(copies(in).isEmpty());
    }

    void stoppedBetweenChunks()
    {
        Installation in;
        const QString workbook = bigBook(in, 2500);
        QList<qint64> told;
        SpreadsheetSteps steps;
        steps.adding = [&told](qint64 done, qint64 total) {
            told.append(done);
            return total == 2500 && done < 2000;
        };
        const SpreadsheetResult result = importSpreadsheet(in.databases, workbook, mainLog(in), steps);
        QVERIFY(result.stopped);
        QCOMPARE(result.added, 2000);
        QCOMPARE(result.rows, 2500);
        QCOMPARE(told, QList<qint64>({1000, 2000}));
        QCOMPARE(logRows(in), 2000);
    }

    void aStopAfterTheLastRowIsNone()
    {
        Installation in;
        SpreadsheetSteps steps;
        steps.adding = [](qint64, qint64) { return false; };
        const SpreadsheetResult result =
            importSpreadsheet(in.databases, book("biff8/TblLog.XLS"), mainLog(in), steps);
        QVERIFY(!result.stopped);
        QCOMPARE(result.added, 13);
    }

    void failingDisk_data()
    {
        QTest::addColumn<int>("fault");
        QTest::newRow("full") << int(FaultyDisk::Fault::DiskFull);
        QTest::newRow("write error") << int(FaultyDisk::Fault::WriteError);
        QTest::newRow("flush error") << int(FaultyDisk::Fault::SyncError);
    }

    /// At every call at which the disk may fail: whole chunks are in the log, as many as are told.
    void failingDisk()
    {
        QFETCH(int, fault);
        bool succeeded = false;
        int partly = 0;
        int nothing = 0;
        for (int n = 1; n <= 4000 && !succeeded; n += 1 + n / 8) {
            Installation in;
            in.addContact(QStringLiteral("DL1OLD"), QStringLiteral("05.03.26"), QStringLiteral("GERMANY"));
            const QString workbook = bigBook(in, 2500);
            FaultyDisk::failFrom(n, FaultyDisk::Fault(fault));
            qint64 added = 0;
            try {
                const SpreadsheetResult result = importSpreadsheet(in.databases, workbook, mainLog(in));
                added = result.added;
                succeeded = !result.failed;
                partly += result.failed ? 1 : 0;
            } catch (const store::Error &) {
                ++nothing;
            }
            FaultyDisk::failFrom(0, FaultyDisk::Fault(fault));
            in.databases.close(mainLog(in));
            QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("PRAGMA integrity_check")),
                     QStringList{QStringLiteral("ok")});
            QCOMPARE(logRows(in), 1 + added);
            QVERIFY(added % 1000 == 0 || added == 2500);
        }
        QVERIFY(succeeded);
        QVERIFY(partly > 0);
        QVERIFY(nothing > 0);
    }

    void pathOfTheWorkbook()
    {
        Installation in;
        QCOMPARE(interchange::spreadsheetPath(in.databases),
                 in.folder() + QLatin1String("/c/radio/TblLog.XLS"));
        put(in.folder() + QLatin1String("/C/Radio/tbllog.xls"), "x");
        QCOMPARE(interchange::spreadsheetPath(in.databases),
                 in.folder() + QLatin1String("/C/Radio/tbllog.xls"));
    }

    void logOfTheImport()
    {
        Installation in;
        QCOMPARE(interchange::spreadsheetLog(in.databases), mainLog(in)); // there is no other
        const QString fixed = in.folder() + QLatin1String("/c/RADIO/DBIARU.MDB");
        QVERIFY(QDir().mkpath(QFileInfo(fixed).path()));
        QVERIFY(QFile::copy(mainLog(in), fixed));
        QCOMPARE(interchange::spreadsheetLog(in.databases), fixed);
        (void)importSpreadsheet(in.databases, book("variants/second_biff5.xls"),
                                interchange::spreadsheetLog(in.databases));
        QCOMPARE(logRows(in), 0);
        store::Connection log(fixed, store::OpenMode::ReadOnly);
        QCOMPARE(log.singleNumber(QStringLiteral("SELECT count(*) FROM TBLLOG1")), 3);
    }

    void fixedPaths()
    {
        QTemporaryDir folder;
        const QString root = folder.path();
        QCOMPARE(store::fixedPath(root, u"D:\\ARCHIVE\\TblLOG1.XLS"),
                 root + QLatin1String("/D/ARCHIVE/TblLOG1.XLS"));
        QVERIFY(!QDir(root).exists(QStringLiteral("D"))); // looking makes nothing
        put(root + QLatin1String("/d/archive/dbqrz.MDB"), "x");
        QCOMPARE(store::fixedPath(root, u"D:\\ARCHIVE\\TblLOG1.XLS"),
                 root + QLatin1String("/d/archive/TblLOG1.XLS"));
        QCOMPARE(store::fixedPath(root, u"D:\\ARCHIVE\\dbQRZ.mdb"),
                 root + QLatin1String("/d/archive/dbqrz.MDB"));
        QVERIFY(QDir().mkpath(root + QLatin1String("/c/radio/TblLog.XLS"))); // a folder is no file
        put(root + QLatin1String("/c/radio/TBLLOG.xls"), "x");
        QCOMPARE(store::fixedPath(root, u"c:\\radio\\TblLog.XLS"),
                 root + QLatin1String("/c/radio/TBLLOG.xls"));
        const store::Library databases({root, false}, root);
        QCOMPARE(store::fixedDatabase(databases, u"D:\\ARCHIVE\\dbQRZ"),
                 root + QLatin1String("/d/archive/dbqrz.MDB"));
        QCOMPARE(store::fixedDatabase(databases, u"c:\\radio\\dbiaru"),
                 root + QLatin1String("/c/radio/dbiaru.mdb"));
    }

    void severalThatDifferInCase()
    {
        QTemporaryDir folder;
        const QString root = folder.path();
        put(root + QLatin1String("/c/radio/TblLog.XLS"), "x");
        put(root + QLatin1String("/c/radio/tbllog.xls"), "x");
        put(root + QLatin1String("/C/other.txt"), "x");
        QList<QStringList> asked;
        const auto last = [&asked](const QStringList &paths) {
            asked.append(paths);
            return paths.back();
        };
        QCOMPARE(store::fixedPath(root, u"c:\\radio\\TblLog.XLS", last),
                 root + QLatin1String("/c/radio/tbllog.xls"));
        QCOMPARE(asked.size(), 2); // the folder and the file
        const auto none = [](const QStringList &) { return QString(); };
        try {
            (void)store::fixedPath(root, u"c:\\radio\\x", none);
            QFAIL("one of them was taken");
        } catch (const store::Error &error) {
            QCOMPARE(error.kind(), store::ErrorKind::NotChosen);
            QVERIFY2(error.line().endsWith(QStringLiteral("ни один не выбран.")), qPrintable(error.line()));
        }
        const store::Library databases({root, false}, root, last);
        QCOMPARE(store::fixedPath(databases, u"c:\\radio\\TblLog.XLS"),
                 root + QLatin1String("/c/radio/tbllog.xls"));
    }
};

QTEST_APPLESS_MAIN(SpreadsheetTest)
#include "spreadsheet.moc"
