// Adding and removing many rows, and the country table in memory.
#include "store/rowwriter.h"

#include "store/countrytable.h"
#include "support/faultyvfs.h"
#include "support/installation.h"

#include <QFile>
#include <QTest>

#include <array>

using store::RowWriter;
using testsupport::FaultyDisk;
using testsupport::Installation;

namespace {

constexpr auto kLog = "dbiaru.mdb";

store::Connection &log(Installation &in)
{
    return in.databases.connection(in.file(QLatin1String(kLog)));
}

qint64 count(Installation &in)
{
    return log(in).singleNumber(QStringLiteral("SELECT count(*) FROM TBLLOG1"));
}

qint64 add(RowWriter &writer, QByteArrayView call, QByteArrayView town)
{
    return writer.add(std::array<QByteArrayView, 2>{call, town});
}

const QStringList kColumns = {QStringLiteral("ccall"), QStringLiteral("QTH")};

} // namespace

class RowWriterTest : public QObject {
    Q_OBJECT

    FaultyDisk m_disk;

private Q_SLOTS:
    void cleanup() { FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull); }

    void rowsAreCommittedInChunks()
    {
        Installation in;
        RowWriter writer(log(in), QStringLiteral("tbllog1"), kColumns);
        QCOMPARE(add(writer, "DL1ABC", "K\xC3\xB6ln"), 1);
        QCOMPARE(add(writer, {}, {}), 2);
        QVERIFY(log(in).inTransaction());
        QCOMPARE(writer.committed(), 0);
        writer.commit();
        QVERIFY(!log(in).inTransaction());
        QCOMPARE(writer.committed(), 2);
        writer.commit(); // nothing left
        QCOMPARE(writer.committed(), 2);
        // An empty text is no null; what is not named has its default.
        QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall,QTH,PRF FROM TBLLOG1")),
                 QStringList({QStringLiteral("DL1ABC|Köln|"), QStringLiteral("||")}));
        for (qint64 i = 0; i < RowWriter::kChunkRows; ++i)
            (void)add(writer, "A", "b");
        QCOMPARE(writer.committed(), RowWriter::kChunkRows + 2); // the chunk was full
        QVERIFY(!log(in).inTransaction());
    }

    void whatIsNotCommittedIsGivenUp()
    {
        Installation in;
        {
            RowWriter writer(log(in), QStringLiteral("TBLLOG1"), kColumns);
            (void)add(writer, "A", "b");
        }
        QVERIFY(!log(in).inTransaction());
        QCOMPARE(count(in), 0);
    }

    void unknownNames()
    {
        Installation in;
        QVERIFY_THROWS_EXCEPTION(store::Error, RowWriter(log(in), QStringLiteral("none"), kColumns));
        QVERIFY_THROWS_EXCEPTION(store::Error,
                                 RowWriter(log(in), QStringLiteral("TBLLOG1"), {QStringLiteral("none")}));
    }

    void fullDisk()
    {
        Installation in;
        RowWriter writer(log(in), QStringLiteral("TBLLOG1"), kColumns);
        (void)add(writer, "A", "b");
        writer.commit();
        (void)add(writer, "B", "b");
        FaultyDisk::failFrom(1, FaultyDisk::Fault::DiskFull);
        QVERIFY_THROWS_EXCEPTION(store::Error, writer.commit());
        FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull);
        QVERIFY(!log(in).inTransaction());
        QCOMPARE(writer.committed(), 1);
        QCOMPARE(count(in), 1);
        (void)add(writer, "C", "b"); // the disk is well again
        writer.commit();
        QCOMPARE(writer.committed(), 2);
        QCOMPARE(count(in), 2);
    }

    void otherProgramsLock()
    {
        Installation in;
        RowWriter writer(log(in), QStringLiteral("TBLLOG1"), kColumns);
        store::Connection other(in.file(QLatin1String(kLog)), store::OpenMode::ReadWrite);
        store::Transaction held(other);
        try {
            (void)add(writer, "A", "b");
            QFAIL("the row was added");
        } catch (const store::Error &error) {
            QVERIFY(error.kind() == store::ErrorKind::Locked);
        }
    }

    void removal()
    {
        Installation in;
        {
            RowWriter writer(log(in), QStringLiteral("TBLLOG1"), kColumns);
            for (const char *call : {"A", "B", "C", "D"})
                (void)add(writer, call, "x");
            writer.commit();
        }
        const std::array<qint64, 4> keys = {2, 3, 4, 99};
        QStringList asked;
        qint64 told = 0;
        const qint64 removed = store::removeRows(
            log(in), QStringLiteral("TBLLOG1"), keys, kColumns,
            [&](std::size_t index, std::span<const QByteArrayView> texts) {
                asked.append(QStringLiteral("%1%2%3").arg(index).arg(QString::fromUtf8(texts[0]),
                                                                     QString::fromUtf8(texts[1])));
                return index != 1;
            },
            [&](qint64 done, qint64) { told = done; });
        QCOMPARE(removed, 2);
        QCOMPARE(asked, QStringList({"0Bx", "1Cx", "2Dx"}));
        QCOMPARE(told, 4);
        QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall FROM TBLLOG1 ORDER BY rowid")),
                 QStringList({"A", "C"}));
        FaultyDisk::failFrom(1, FaultyDisk::Fault::WriteError);
        QVERIFY_THROWS_EXCEPTION(store::Error, store::removeRows(log(in), QStringLiteral("TBLLOG1"),
                                                                 std::array<qint64, 2>{1, 3}, kColumns,
                                                                 [](std::size_t, auto) { return true; }));
        FaultyDisk::failFrom(0, FaultyDisk::Fault::WriteError);
        QCOMPARE(count(in), 2); // none of them
    }

    void countries()
    {
        Installation in;
        const store::CountryTable table(in.databases.connection(in.file(QStringLiteral("dbdxcc1.mdb"))));
        QFile file(QStringLiteral(TEST_DATA "/resolve_cases.tsv"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QList<QByteArray> lines = file.readAll().split('\n');
        lines.removeFirst();
        int cases = 0;
        for (const QByteArray &line : std::as_const(lines)) {
            const QList<QByteArray> fields = line.split('\t');
            if (fields.size() < 2)
                continue;
            QCOMPARE(table.of(fields[0]), fields[1]);
            QCOMPARE(table.of(fields[0].toLower()), fields[1]);
            ++cases;
        }
        QVERIFY(cases > 400);
        QCOMPARE(table.of(""), QByteArray());
        QCOMPARE(table.of("DL1ABC " + QStringLiteral("Ж").toUtf8()), QByteArray("GERMANY"));
        QCOMPARE(table.of("DL'1"), QByteArray("GERMANY"));
        QCOMPARE(table.of(QStringLiteral("Ж").toUtf8()), QByteArray());
        QVERIFY(store::CountryTable::isPlain("DL1ABC/P"));
        QVERIFY(!store::CountryTable::isPlain("DL1 ABC"));
        QVERIFY(!store::CountryTable::isPlain("DL1'ABC"));
        QVERIFY(!store::CountryTable::isPlain(QByteArray(100, 'A')));
    }

    void oddCountryRows()
    {
        Installation in;
        in.sql(QStringLiteral("dbdxcc1.mdb"),
               QStringLiteral(
                   "DELETE FROM tbldxcc;INSERT INTO tbldxcc(prf,strana) VALUES('Q','FIRST'),('q','SECOND'),"
                   "('QA',''),('QB',NULL),('QC','THIRD'),('QC D','BLANK')"));
        const store::CountryTable table(in.databases.connection(in.file(QStringLiteral("dbdxcc1.mdb"))));
        QCOMPARE(table.of("q1"), QByteArray("FIRST"));
        QCOMPARE(table.of("QA1"), QByteArray("FIRST"));
        QCOMPARE(table.of("QB1"), QByteArray("FIRST"));
        QCOMPARE(table.of("QC D1"), QByteArray("THIRD"));
        in.sql(QStringLiteral("dbdxcc1.mdb"), QStringLiteral("DROP TABLE tbldxcc"));
        QVERIFY_THROWS_EXCEPTION(store::Error, store::CountryTable(in.databases.connection(
                                                   in.file(QStringLiteral("dbdxcc1.mdb")))));
    }
};

QTEST_GUILESS_MAIN(RowWriterTest)
#include "rowwriter.moc"
