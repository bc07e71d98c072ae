// Country revision, held against the same rule done row by row with the window's own look-ups.
#include "logentry/revision.h"

#include "logentry/sql.h"
#include "support/installation.h"

#include <QTest>

#include <random>

using logentry::Revision;
using testsupport::Desk;
using testsupport::Installation;

namespace {

constexpr auto kLog = "dbiaru.mdb";

QStringList countries(const Installation &in)
{
    return in.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall,CONTR,PRF FROM TBLLOG1 ORDER BY rowid"));
}

void add(const Installation &in, const QString &call, const QString &country = {}, const QString &mark = {})
{
    store::Connection connection(in.file(QLatin1String(kLog)), store::OpenMode::ReadWrite);
    connection.exec(QStringLiteral("INSERT INTO TBLLOG1(ccall,CONTR,PRF,CONT) VALUES(?,?,?,'XX')"),
                    {call, country, mark});
}

void setOwnCall(const Installation &in, const char *call)
{
    in.sql(QStringLiteral("dbcontest.mdb"),
           QStringLiteral("UPDATE tbltit SET ccall='%1'").arg(QLatin1String(call)));
}

Revision::Result revise(Desk &desk)
{
    return Revision(desk.sources, desk.fields, desk.state, desk.lookups).run([](qint64, qint64) {
        return true;
    });
}

/// The rule as it is told: one query a beginning, one row after the other.
void reviseSlowly(Desk &desk)
{
    store::DataSource &rows = desk.sources.Data13;
    rows.setRecordSource(logentry::sql::logTable());
    rows.refresh();
    logentry::Attempts attempt;
    const QString own = desk.sources.Data18.field(QStringLiteral("ccall"));
    for (; !rows.eof(); rows.moveNext()) {
        desk.fields.txtcall = rows.field(QStringLiteral("ccall"));
        for (qsizetype i = 1; i <= desk.fields.txtcall.size(); ++i) {
            desk.sources.Data3.setRecordSource(
                logentry::sql::countryForRevision(desk.fields.txtcall.left(i)));
            try {
                desk.sources.Data3.refresh();
            } catch (const store::Error &) {
                break;
            }
            const QString name = desk.sources.Data3.field(QStringLiteral("strana"));
            if (!name.isEmpty())
                desk.fields.txtcontr = name;
        }
        if (desk.fields.txtcontr == QLatin1String("RUSSIAN"))
            attempt([&] { desk.lookups.RUSS(); }); // a quote in the region's key breaks its query
        else
            desk.fields.townPanelShown = false;
        rows.setField(QStringLiteral("CONTR"), desk.fields.txtcontr);
        if (rows.field(QStringLiteral("PRF")).isEmpty())
            rows.setField(QStringLiteral("PRF"), own.size() == 6   ? own.right(3)
                                                 : own.size() == 5 ? own.right(2)
                                                                   : QString());
    }
}

} // namespace

class RevisionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void statement()
    {
        QCOMPARE(logentry::sql::countryForRevision(u"UA").toString(),
                 QStringLiteral("select pref,kont,strana from tbldxcc where prf='UA'"));
    }

    void countriesAreResolvedAndCarriedOver()
    {
        Installation in;
        for (const char *call : {"QQ1XX", "DL1ABC", "QQ2XX", "", "UA3ABC", "ua9xyz", "Q0Q", "F5XX"})
            add(in, QString::fromUtf8(call), QStringLiteral("WRONG"));
        Desk desk(in);
        desk.fields.txtcontr = QStringLiteral("SHOWN BEFORE");
        const Revision::Result result = revise(desk);
        QCOMPARE(result.visited, 8);
        QCOMPARE(result.changed, 8);
        QVERIFY(!result.stopped);
        QVERIFY(!result.notShown);
        QCOMPARE(countries(in),
                 QStringList({"QQ1XX|SHOWN BEFORE|", "DL1ABC|GERMANY|", "QQ2XX|GERMANY|", "|GERMANY|",
                              "UA3ABC|RUSSIAN|", "ua9xyz|RUSSIAN|", "Q0Q|RUSSIAN|", "F5XX|FRANCE|"}));
        QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT DISTINCT CONT FROM TBLLOG1")),
                 QStringList({"XX"}));
        // The window shows the last row.
        QCOMPARE(desk.fields.txtcall, QStringLiteral("F5XX"));
        QCOMPARE(desk.fields.txtcontr, QStringLiteral("FRANCE"));
        QCOMPARE(desk.fields.txtQSO, QStringLiteral("1"));
        QVERIFY(!desk.fields.townPanelShown);
        QVERIFY(desk.fields.townHintShown); // a Russian row came by
        QCOMPARE(desk.state.regionKey, QStringLiteral("9x"));
    }

    void marks_data()
    {
        QTest::addColumn<QString>("own");
        QTest::addColumn<QString>("mark");
        QTest::newRow("six") << "RA3XYZ"
                             << "XYZ";
        QTest::newRow("five") << "R3XYZ"
                              << "YZ";
        QTest::newRow("four") << "R3XY"
                              << "";
        QTest::newRow("seven") << "RA3XYZA"
                               << "";
        QTest::newRow("none") << ""
                              << "";
    }
    void marks()
    {
        QFETCH(QString, own);
        QFETCH(QString, mark);
        Installation in;
        setOwnCall(in, qPrintable(own));
        add(in, QStringLiteral("DL1A"), QStringLiteral("GERMANY"));
        add(in, QStringLiteral("DL1B"), QStringLiteral("GERMANY"), QStringLiteral("OLD"));
        Desk desk(in);
        const Revision::Result result = revise(desk);
        QCOMPARE(countries(in),
                 QStringList({QStringLiteral("DL1A|GERMANY|") + mark, QStringLiteral("DL1B|GERMANY|OLD")}));
        QCOMPARE(result.changed, mark.isEmpty() ? 0 : 1); // what is right already is not written
    }

    void emptyLog()
    {
        Installation in;
        Desk desk(in);
        desk.fields.txtcontr = QStringLiteral("KEPT");
        int steps = 0;
        const Revision::Result result =
            Revision(desk.sources, desk.fields, desk.state, desk.lookups).run([&](qint64, qint64) {
                ++steps;
                return true;
            });
        QCOMPARE(result.visited, 0);
        QCOMPARE(steps, 0);
        QCOMPARE(desk.fields.txtcontr, QStringLiteral("KEPT"));
    }

    void stoppedRowsStayDone()
    {
        Installation in;
        in.sql(QLatin1String(kLog),
               QStringLiteral(
                   "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<25000) INSERT INTO "
                   "TBLLOG1(ccall,CONTR) SELECT 'DL'||i, 'WRONG' FROM n"));
        Desk desk(in);
        QList<qint64> told;
        const Revision::Result result =
            Revision(desk.sources, desk.fields, desk.state, desk.lookups).run([&](qint64 done, qint64 total) {
                told.append(done);
                return total == 25000 && done < 10000;
            });
        QVERIFY(result.stopped);
        QCOMPARE(told, QList<qint64>({0, 10000}));
        QCOMPARE(result.visited, 10000);
        QCOMPARE(in.rows(QLatin1String(kLog),
                         QStringLiteral("SELECT CONTR,count(*),min(rowid) FROM TBLLOG1 GROUP BY "
                                        "CONTR ORDER BY CONTR")),
                 QStringList({"GERMANY|10000|1", "WRONG|15000|10001"}));
        QCOMPARE(desk.fields.txtcall, QStringLiteral("DL10000"));
        // The counters per country have followed.
        QCOMPARE(in.rows(QLatin1String(kLog),
                         QStringLiteral("SELECT calls FROM zh_country WHERE contr='GERMANY'")),
                 QStringList({"10000"}));
    }

    void failureKeepsTheChunksBefore()
    {
        Installation in;
        in.sql(QLatin1String(kLog),
               QStringLiteral(
                   "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<20000) INSERT INTO "
                   "TBLLOG1(ccall,CONTR) SELECT 'DL'||i, 'WRONG' FROM n;"
                   "CREATE TRIGGER refuse BEFORE UPDATE ON TBLLOG1 WHEN new.ccall='DL15000' BEGIN SELECT "
                   "RAISE(ABORT,'no'); END"));
        Desk desk(in);
        QVERIFY_THROWS_EXCEPTION(store::Error, revise(desk));
        QCOMPARE(in.rows(QLatin1String(kLog),
                         QStringLiteral("SELECT CONTR,count(*) FROM TBLLOG1 GROUP BY CONTR ORDER "
                                        "BY CONTR")),
                 QStringList({"GERMANY|10000", "WRONG|10000"}));
    }

    void oddPrefixTable()
    {
        Installation in;
        in.sql(QStringLiteral("dbdxcc1.mdb"),
               QStringLiteral("DELETE FROM tbldxcc; INSERT INTO tbldxcc(prf,strana,PREF) VALUES"
                              "('D','SHORT','D'),('DL','LONG','DL'),('DL','SECOND','DL'),('DL1','','DL'),"
                              "('DL2 ','BLANK','DL'),('Ю','CYRILLIC','Y'),('x','SMALL','X')"));
        for (const char *call : {"DL1A", "DA", "DL2 A", "DL2A", "Ю1", "ю1", "X1", "x1", "D'L", "ДЛ"})
            add(in, QString::fromUtf8(call));
        Desk desk(in);
        (void)revise(desk);
        QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT CONTR FROM TBLLOG1 ORDER BY rowid")),
                 QStringList({"LONG", "SHORT", "BLANK", "LONG", "CYRILLIC", "CYRILLIC", "SMALL", "SMALL",
                              "SHORT", "SHORT"}));
    }

    void sameAsRowByRow_data()
    {
        QTest::addColumn<unsigned>("seed");
        for (unsigned seed = 1; seed <= 6; ++seed)
            QTest::addRow("%u", seed) << seed;
    }
    void sameAsRowByRow()
    {
        QFETCH(unsigned, seed);
        std::mt19937 random(seed);
        const QStringList parts = {"UA", "R",   "RA",  "3",   "9",   "0",   "DL",       "F",  "Q",
                                   "QQ", "EU1", "UR5", "ABC", "X",   "XY",  "1",        "/P", " ",
                                   "'",  "Ю",   "u",   "k",   "VP8", "3D2", "SV2RSG/A", "2F"};
        Installation fast;
        Installation slow;
        for (Installation *in : {&fast, &slow})
            setOwnCall(*in, seed % 2 == 0 ? "RA3XYZ" : "R3XYZ");
        for (int row = 0; row < 120; ++row) {
            QString call;
            for (auto left = random() % 5; left > 0; --left)
                call += parts[static_cast<qsizetype>(random() % static_cast<unsigned>(parts.size()))];
            const QString mark = random() % 3 == 0 ? QStringLiteral("OLD") : QString();
            add(fast, call, QStringLiteral("WRONG"), mark);
            add(slow, call, QStringLiteral("WRONG"), mark);
        }
        Desk quick(fast);
        Desk plain(slow);
        for (Desk *desk : {&quick, &plain})
            desk->fields.txtcontr = QStringLiteral("BEFORE");
        (void)revise(quick);
        reviseSlowly(plain);
        QCOMPARE(countries(fast), countries(slow));
        QCOMPARE(quick.fields.txtcall, plain.fields.txtcall);
        QCOMPARE(quick.fields.txtcontr, plain.fields.txtcontr);
        QCOMPARE(quick.state.regionKey, plain.state.regionKey);
        QCOMPARE(quick.fields.townPanelShown, plain.fields.townPanelShown);
        QCOMPARE(quick.fields.townHintShown, plain.fields.townHintShown);
        QCOMPARE(quick.fields.position.TXTSIRG, plain.fields.position.TXTSIRG);
        QCOMPARE(quick.fields.position.TXTDN, plain.fields.position.TXTDN);
        QCOMPARE(quick.sources.Data9.field(QStringLiteral("prf")),
                 plain.sources.Data9.field(QStringLiteral("prf")));
        QCOMPARE(quick.sources.Data8.field(QStringLiteral("gorod")),
                 plain.sources.Data8.field(QStringLiteral("gorod")));
    }
};

QTEST_GUILESS_MAIN(RevisionTest)
#include "revision.moc"
