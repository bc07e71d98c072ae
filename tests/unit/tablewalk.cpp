// A walk over a whole table in chunks.
#include "store/tablewalk.h"
#include "support/installation.h"

#include <QTest>

using store::TableWalk;
using testsupport::Installation;

namespace {

constexpr auto kLog = "dbiaru.mdb";

void fill(const Installation &in, int rows)
{
    in.sql(
        QLatin1String(kLog),
        QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1) INSERT INTO "
                       "TBLLOG1(ccall,CONTR) SELECT 'A'||i, 'OLD' FROM n")
            .arg(rows));
}

} // namespace

class TableWalkTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void visitsEveryRowInOrder()
    {
        Installation in;
        constexpr int kRows = 25'001; // three chunks
        fill(in, kRows);
        in.sql(QLatin1String(kLog), QStringLiteral("UPDATE TBLLOG1 SET rowid=-5 WHERE ccall='A7'"));
        TableWalk walk(in.databases.connection(in.file(QLatin1String(kLog))), QStringLiteral("TBLLOG1"),
                       {QStringLiteral("ccall")}, {});
        QCOMPARE(walk.total(), kRows);
        QStringList seen;
        while (walk.readChunk())
            for (std::size_t row = 0; row < walk.rows(); ++row)
                seen.append(walk.text(row, 0));
        QCOMPARE(seen.size(), kRows);
        QCOMPARE(seen.front(), QStringLiteral("A7"));
        QCOMPARE(seen[1], QStringLiteral("A1"));
        QCOMPARE(seen.back(), QStringLiteral("A25001"));
        QCOMPARE(walk.visited(), kRows);
        QVERIFY(!walk.readChunk());
    }

    void writesChangedRowsAlone()
    {
        Installation in;
        fill(in, 5);
        TableWalk walk(in.databases.connection(in.file(QLatin1String(kLog))), QStringLiteral("TBLLOG1"),
                       {QStringLiteral("ccall")}, {QStringLiteral("CONTR"), QStringLiteral("PRF")});
        QVERIFY(walk.readChunk());
        walk.setText(1, 1, QStringLiteral("NEW"));
        walk.setText(3, 2, QStringLiteral("ABC"));
        walk.setText(4, 1, QStringLiteral("OLD")); // no change
        QCOMPARE(walk.writeChunk(), 2);
        QCOMPARE(walk.writeChunk(), 0);
        QCOMPARE(in.rows(QLatin1String(kLog),
                         QStringLiteral("SELECT ccall,CONTR,PRF FROM TBLLOG1 ORDER BY rowid")),
                 QStringList({"A1|OLD|", "A2|NEW|", "A3|OLD|", "A4|OLD|ABC", "A5|OLD|"}));
    }

    void rowsAddedMeanwhileAreNotVisited()
    {
        Installation in;
        fill(in, 3);
        TableWalk walk(in.databases.connection(in.file(QLatin1String(kLog))), QStringLiteral("TBLLOG1"),
                       {QStringLiteral("ccall")}, {});
        fill(in, 2);
        QVERIFY(walk.readChunk());
        QCOMPARE(walk.rows(), std::size_t{3});
        QVERIFY(!walk.readChunk());
    }

    void emptyAndMissing()
    {
        Installation in;
        store::Connection &log = in.databases.connection(in.file(QLatin1String(kLog)));
        TableWalk empty(log, QStringLiteral("TBLLOG1"), {QStringLiteral("ccall")}, {});
        QCOMPARE(empty.total(), 0);
        QVERIFY(!empty.readChunk());
        QVERIFY_THROWS_EXCEPTION(store::Error,
                                 TableWalk(log, QStringLiteral("nosuch"), {QStringLiteral("ccall")}, {}));
        fill(in, 1);
        TableWalk wrong(log, QStringLiteral("TBLLOG1"), {QStringLiteral("nosuch")}, {});
        QVERIFY_THROWS_EXCEPTION(store::Error, (void)wrong.readChunk());
    }

    void nothingIsWrittenWhereOneRowFails()
    {
        Installation in;
        fill(in, 3);
        in.sql(
            QLatin1String(kLog),
            QStringLiteral("CREATE TRIGGER refuse BEFORE UPDATE ON TBLLOG1 WHEN new.ccall='A3' BEGIN SELECT "
                           "RAISE(ABORT,'no'); END"));
        TableWalk walk(in.databases.connection(in.file(QLatin1String(kLog))), QStringLiteral("TBLLOG1"),
                       {QStringLiteral("ccall")}, {QStringLiteral("CONTR")});
        QVERIFY(walk.readChunk());
        for (std::size_t row = 0; row < 3; ++row)
            walk.setText(row, 1, QStringLiteral("NEW"));
        QVERIFY_THROWS_EXCEPTION(store::Error, walk.writeChunk());
        QCOMPARE(
            in.rows(QLatin1String(kLog), QStringLiteral("SELECT count(*) FROM TBLLOG1 WHERE CONTR='NEW'")),
            QStringList({"0"}));
    }
};

QTEST_GUILESS_MAIN(TableWalkTest)
#include "tablewalk.moc"
