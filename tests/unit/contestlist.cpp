// Callsigns of a contest from a workbook into the contest database, and the table emptied again.
#include "interchange/contestlist.h"

#include "interchange/sql.h"
#include "support/errorof.h"
#include "support/faultyvfs.h"
#include "support/installation.h"
#include "support/sheetwriter.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using interchange::emptyContestList;
using interchange::importContestList;
using interchange::SheetResult;
using interchange::SheetSteps;
using testsupport::errorOf;
using testsupport::FaultyDisk;
using testsupport::Installation;
using testsupport::SheetWriter;

namespace {

QString book(const char *name)
{
    return QStringLiteral(TEST_DATA "/xls/") + QLatin1String(name);
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

/// A folder with a contest database at the fixed path, made as another program would, and no other one.
class Contest {
public:
    explicit Contest(const QString &table = QStringLiteral("CREATE TABLE tblQRZ(ccall TEXT,AALL TEXT)"))
        : databases({m_folder.path(), false}, m_user.path())
    {
        if (!QDir().mkpath(m_folder.filePath(QStringLiteral("D/ARCHIVE"))))
            qFatal("no folder for the contest database");
        store::Connection::create(database())->exec(table);
    }

    [[nodiscard]] QString folder() const { return m_folder.path(); }
    [[nodiscard]] QString userFolder() const { return m_user.path(); }
    [[nodiscard]] QString database() const
    {
        return m_folder.filePath(QStringLiteral("D/ARCHIVE/dbQRZ.mdb"));
    }
    // Through connections of their own, as another program would; what a failure left behind is undone first.
    void sql(const QString &statement) const
    {
        store::Connection(database(), store::OpenMode::ReadWrite).exec(statement);
    }
    [[nodiscard]] QStringList
    listed(const QString &query = QStringLiteral("SELECT ccall||'|'||AALL FROM tblQRZ ORDER BY rowid")) const
    {
        store::Connection connection(database(), store::OpenMode::ReadWrite);
        QStringList rows;
        store::Cursor cursor = connection.run(query);
        while (cursor.next())
            rows.append(cursor.text(0));
        return rows;
    }
    [[nodiscard]] QStringList copies() const
    {
        return QDir(userFolder()).entryList({QStringLiteral("dbQRZ.*.mdb")}, QDir::Files);
    }
    /// A workbook of `rows` callsigns.
    [[nodiscard]] QString bigBook(int rows) const
    {
        SheetWriter writer;
        for (int row = 0; row < rows; ++row)
            writer.text(row, 0, QStringLiteral("R%1").arg(row)).number(row, 1, row);
        QString path = userFolder() + QLatin1String("/big.xls");
        put(path, writer.finished());
        return path;
    }

private:
    QTemporaryDir m_folder;
    QTemporaryDir m_user;

public:
    store::Library databases;
};

std::optional<store::Error> importing(store::Library &databases, const QString &workbook,
                                      const QString &database)
{
    return errorOf([&] { (void)importContestList(databases, workbook, database); });
}

std::optional<store::Error> emptying(store::Library &databases, const QString &database)
{
    return errorOf([&] { (void)emptyContestList(databases, database); });
}

} // namespace

class ContestListTest : public QObject {
    Q_OBJECT

    FaultyDisk m_disk;

private Q_SLOTS:
    void cleanup() { FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull); }

    void paths()
    {
        Installation in;
        const QString folder = in.folder();
        QCOMPARE(interchange::contestWorkbook(in.databases),
                 folder + QLatin1String("/D/ARCHIVE/TblLOG1.XLS"));
        QCOMPARE(interchange::contestDatabase(in.databases), folder + QLatin1String("/D/ARCHIVE/dbQRZ.mdb"));
        put(folder + QLatin1String("/d/Archive/tbllog1.xls"), "x");
        put(folder + QLatin1String("/d/Archive/DBQRZ.MDB"), "x");
        QCOMPARE(interchange::contestWorkbook(in.databases),
                 folder + QLatin1String("/d/Archive/tbllog1.xls"));
        QCOMPARE(interchange::contestDatabase(in.databases), folder + QLatin1String("/d/Archive/DBQRZ.MDB"));
    }

    void everyCellInItsField_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : {"biff5/TblLOG1.XLS", "biff5hand/TblLOG1.XLS", "biff8/TblLOG1.XLS"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void everyCellInItsField()
    {
        QFETCH(QString, name);
        Contest in;
        const SheetResult result =
            importContestList(in.databases, book(name.toLatin1().constData()), in.database());
        QCOMPARE(result.rows, 5);
        QCOMPARE(result.added, 5);
        QCOMPARE(result.notTaken, 2); // the row without a callsign and the one behind it
        QVERIFY(!result.stopped && !result.failed);
        QCOMPARE(in.listed(),
                 QStringList({QStringLiteral("UA3ABC|Москва 55 лет, Иван"), QStringLiteral("DL1ABC|"),
                              QStringLiteral("R3ABC|12345"), QStringLiteral("UT1AAA|Їжак"),
                              QStringLiteral("RX3TST|О'Коннор; \"кавычки\"")}));
    }

    void otherFields()
    {
        Contest in(QStringLiteral("CREATE TABLE TBLqrz(note TEXT DEFAULT 'no',aall,CCALL,more DEFAULT '')"));
        (void)importContestList(in.databases, book("biff8/TblLOG1.XLS"), in.database());
        QCOMPARE(in.listed(QStringLiteral("SELECT ccall||aall||note||more FROM tblQRZ WHERE ccall='R3ABC'")),
                 QStringList{QStringLiteral("R3ABC12345no")});
    }

    /// The program's own database has a table of that name, too.
    void theOwnTableIsLeftAlone()
    {
        Installation in;
        const QString own = QStringLiteral("dbcontest.mdb");
        in.sql(own, QStringLiteral("INSERT INTO tblQRZ VALUES('OLD','1')"));
        Contest contest;
        (void)importContestList(in.databases, book("biff8/TblLOG1.XLS"), contest.database());
        QCOMPARE(contest.listed().size(), 5);
        QCOMPARE(emptyContestList(in.databases, contest.database()), 5);
        QVERIFY(contest.listed().isEmpty());
        QCOMPARE(in.rows(own, QStringLiteral("SELECT * FROM tblQRZ")), QStringList{QStringLiteral("OLD|1")});
    }

    void twiceAddsTwice()
    {
        Contest in;
        for (int i = 0; i < 2; ++i)
            QCOMPARE(importContestList(in.databases, book("biff8/TblLOG1.XLS"), in.database()).added, 5);
        const QStringList rows = in.listed();
        QCOMPARE(rows.size(), 10);
        QCOMPARE(rows.mid(0, 5), rows.mid(5));
    }

    void theDatabaseIsCopiedBefore()
    {
        Contest in;
        in.sql(QStringLiteral("INSERT INTO tblQRZ VALUES('OLD','')"));
        bool told = false;
        SheetSteps steps;
        steps.copying = [&told](qint64, qint64) { told = true; };
        (void)importContestList(in.databases, book("biff8/TblLOG1.XLS"), in.database(), steps);
        QVERIFY(told);
        QCOMPARE(in.copies().size(), 1);
        store::Connection copy(in.userFolder() + QLatin1Char('/') + in.copies().front(),
                               store::OpenMode::ReadOnly);
        QCOMPARE(copy.singleNumber(QStringLiteral("SELECT count(*) FROM tblQRZ")), 1);
        QCOMPARE(in.listed().size(), 6);
    }

    void nothingBeforeTheBlankCell()
    {
        Contest in;
        const QByteArray before = contents(in.database());
        const QString path = in.userFolder() + QLatin1String("/late.xls");
        put(path,
            SheetWriter().text(0, 1, QStringLiteral("first")).text(1, 0, QStringLiteral("R1AA")).finished());
        const SheetResult result = importContestList(in.databases, path, in.database());
        QCOMPARE(result.added, 0);
        QCOMPARE(result.notTaken, 2);
        QVERIFY(in.copies().isEmpty());
        QVERIFY(contents(in.database()) == before);
    }

    void stoppedBetweenChunks()
    {
        Contest in;
        SheetSteps steps;
        steps.adding = [](qint64 done, qint64 total) { return total == 2500 && done < 2000; };
        const SheetResult result = importContestList(in.databases, in.bigBook(2500), in.database(), steps);
        QVERIFY(result.stopped);
        QCOMPARE(result.added, 2000);
        QCOMPARE(in.listed().size(), 2000);
        QCOMPARE(in.listed().back(), QStringLiteral("R1999|1999"));
    }

    void emptied()
    {
        QCOMPARE(interchange::sql::emptyContestTable().toString(),
                 QStringLiteral("DELETE tblQRZ.* FROM tblQRZ;"));
        Contest in;
        (void)importContestList(in.databases, book("biff8/TblLOG1.XLS"), in.database());
        QCOMPARE(emptyContestList(in.databases, in.database()), 5);
        QVERIFY(in.listed().isEmpty());
        QCOMPARE(emptyContestList(in.databases, in.database()), 0);
    }

    void workbooksThatCannotBeRead()
    {
        Contest in;
        const QByteArray before = contents(in.database());
        const auto missing = importing(in.databases, book("nothing.xls"), in.database());
        QVERIFY(missing && missing->kind() == store::ErrorKind::Missing);
        QCOMPARE(missing->text(), QStringLiteral("Файл nothing.xls не найден."));
        const auto damaged = importing(in.databases, book("broken/trunc_half_biff8.xls"), in.database());
        QVERIFY(damaged && damaged->kind() == store::ErrorKind::Unreadable);
        QVERIFY(contents(in.database()) == before);
        QVERIFY(in.copies().isEmpty());
    }

    void databasesThatCannotTakeTheRows_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("kind");
        QTest::newRow("no database") << QByteArray("no database at all, only some text in a file")
                                     << int(store::ErrorKind::Foreign);
        QTest::newRow("an old one") << contents(QStringLiteral(TEST_DATA "/jet3/dbcontest.mdb"))
                                    << int(store::ErrorKind::Jet);
        QTest::newRow("a newer old one")
            << contents(QStringLiteral(TEST_DATA "/jet4/dbcontest.mdb")) << int(store::ErrorKind::Jet);
        QTest::newRow("none") << QByteArray() << int(store::ErrorKind::Missing);
    }

    void databasesThatCannotTakeTheRows()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, kind);
        Contest in;
        const QString path = in.folder() + QLatin1String("/list.mdb");
        if (!bytes.isEmpty())
            put(path, bytes);
        const auto imported = importing(in.databases, book("biff8/TblLOG1.XLS"), path);
        const auto emptied = emptying(in.databases, path);
        QVERIFY(imported && int(imported->kind()) == kind);
        QVERIFY(emptied && int(emptied->kind()) == kind);
        QCOMPARE(QFile::exists(path), !bytes.isEmpty());
        QVERIFY(contents(path) == bytes);
        QVERIFY(QDir(in.userFolder()).isEmpty());
    }

    void tablesThatCannotTakeTheRows()
    {
        Contest in(QStringLiteral("CREATE TABLE other(a)"));
        const QByteArray before = contents(in.database());
        const auto imported = importing(in.databases, book("biff8/TblLOG1.XLS"), in.database());
        QVERIFY(imported && imported->kind() == store::ErrorKind::MissingTable);
        const auto emptied = emptying(in.databases, in.database());
        QVERIFY(emptied && emptied->kind() == store::ErrorKind::MissingTable);
        QVERIFY(contents(in.database()) == before);

        Contest narrow(QStringLiteral("CREATE TABLE tblQRZ(ccall)"));
        const auto refused = importing(narrow.databases, book("biff8/TblLOG1.XLS"), narrow.database());
        QVERIFY(refused && refused->engineText() == QStringLiteral("в таблице tblQRZ нет поля AALL"));
        QVERIFY(narrow.copies().isEmpty());
    }

    void aDatabaseThatIsOnlyRead()
    {
        Contest in;
        in.sql(QStringLiteral("INSERT INTO tblQRZ VALUES('OLD','')"));
        store::Library databases({in.folder(), true}, in.userFolder());
        const auto imported =
            errorOf([&] { (void)importContestList(databases, book("biff8/TblLOG1.XLS"), in.database()); });
        QVERIFY(imported && imported->kind() == store::ErrorKind::ReadOnly);
        const auto emptied = errorOf([&] { (void)emptyContestList(databases, in.database()); });
        QVERIFY(emptied && emptied->kind() == store::ErrorKind::ReadOnly);
        QVERIFY(in.copies().isEmpty());
        QCOMPARE(in.listed(), QStringList{QStringLiteral("OLD|")});
    }

    void failingDisk_data()
    {
        QTest::addColumn<int>("fault");
        QTest::newRow("full") << int(FaultyDisk::Fault::DiskFull);
        QTest::newRow("write error") << int(FaultyDisk::Fault::WriteError);
        QTest::newRow("flush error") << int(FaultyDisk::Fault::SyncError);
    }

    /// At every call at which the disk may fail: whole chunks are in the table, as many as are told.
    void failingDisk()
    {
        QFETCH(int, fault);
        bool succeeded = false;
        int partly = 0;
        int nothing = 0;
        for (int n = 1; n <= 2000 && !succeeded; n += 1 + n / 10) {
            Contest in;
            in.sql(QStringLiteral("INSERT INTO tblQRZ VALUES('OLD','')"));
            const QString workbook = in.bigBook(2500);
            FaultyDisk::failFrom(n, FaultyDisk::Fault(fault));
            qint64 added = 0;
            try {
                const SheetResult result = importContestList(in.databases, workbook, in.database());
                added = result.added;
                succeeded = !result.failed;
                partly += result.failed ? 1 : 0;
            } catch (const store::Error &) {
                ++nothing;
            }
            FaultyDisk::failFrom(0, FaultyDisk::Fault(fault));
            in.databases.close(in.database());
            QCOMPARE(in.listed().size(), 1 + added);
            QVERIFY(added % 1000 == 0 || added == 2500);
        }
        QVERIFY(succeeded);
        QVERIFY(partly > 0);
        QVERIFY(nothing > 0);
    }

    void emptyingOnAFailingDisk_data() { failingDisk_data(); }

    void emptyingOnAFailingDisk()
    {
        QFETCH(int, fault);
        bool succeeded = false;
        int failures = 0;
        for (int n = 1; n <= 200 && !succeeded; ++n) {
            Contest in;
            in.sql(QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n LIMIT 2500) "
                                  "INSERT INTO tblQRZ SELECT 'R'||i,'' FROM n"));
            FaultyDisk::failFrom(n, FaultyDisk::Fault(fault));
            const auto failed = emptying(in.databases, in.database());
            succeeded = !failed;
            failures += failed ? 1 : 0;
            FaultyDisk::failFrom(0, FaultyDisk::Fault(fault));
            in.databases.close(in.database());
            QCOMPARE(in.listed().size(), succeeded ? 0 : 2500);
        }
        QVERIFY(succeeded);
        QVERIFY(failures > 0);
    }
};

QTEST_APPLESS_MAIN(ContestListTest)
#include "contestlist.moc"
