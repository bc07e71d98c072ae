// Statements of the awards' windows: letter for letter, and which rows they deliver.
#include "awards/picking.h"
#include "awards/sources.h"
#include "awards/sql.h"
#include "support/installation.h"

#include <QTest>

using store::SqlText;
using testsupport::Installation;
namespace sql = awards::sql;

namespace {

constexpr auto kAwards = "dbdiplom.mdb";
constexpr auto kRegions = "dbrusdx.mdb";
constexpr auto kCountries = "dbdxcc1.mdb";
constexpr auto kLog = "dbiaru.mdb";
constexpr auto kCallbook = "dbcalbuk.mdb";

/// Rows that a data source delivers, the fields joined by "|".
QStringList delivered(Installation &in, const char *file, const SqlText &text, const QStringList &fields)
{
    store::DataSource source(QStringLiteral("Data1"), in.databases);
    source.setDatabaseName(in.file(QLatin1String(file)));
    source.setRecordSource(text);
    source.refresh();
    source.moveLast();
    QStringList rows;
    for (int row = 0; row < source.recordCount(); ++row) {
        QStringList values;
        for (const QString &field : fields)
            values.append(source.text(row, field));
        rows.append(values.join(QLatin1Char('|')));
    }
    return rows;
}

void script(const Installation &in, const char *file, const char *statements)
{
    in.sql(QLatin1String(file), QString::fromUtf8(statements));
}

} // namespace

class AwardStatementsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void letterForLetter_data()
    {
        QTest::addColumn<QString>("made");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, const SqlText &made, const char *text) {
            QTest::newRow(name) << made.toString() << QString::fromUtf8(text);
        };
        row("countries", sql::countries(), "select distinct strana from tbldiplom order by strana asc");
        row("regions", sql::regions(), "select distinct prf  from tblrus WHERE NOT(prf=\"\")  order by prf");
        row("award table", sql::awardTable(), "tbldiplom");
        row("awards of country", sql::awardsOfCountry(u"FRANCE"),
            "select diplom from tblDIPLOM where strana='FRANCE' order by diplom asc");
        row("awards of region", sql::awardsOfRegion(u"Россия", u"MA"),
            "select * from tblDIPLOM where strana='Россия' and pref='MA' order by diplom asc");
        row("rules", sql::rules(u"DPF", u"FRANCE"),
            "select * from tblDIPLOM where diplom='DPF' and strana='FRANCE'");
        row("award to delete", sql::awardToDelete(u"DPF"), "select * from tbldiplom where diplom='DPF'");
        row("region", sql::region(u"MA"), "select * from tblrus where prf='MA'");

        row("log", sql::logTable(), "TBLLOG1");
        row("country table", sql::countryTable(), "tbldxcc");
        row("region table", sql::regionTable(), "tblrus");
        row("callbook", sql::callbookTable(), "tblcalbuk");
        row("country prefixes", sql::countryPrefixes(),
            "select distinct pref  from tbldxcc where len(pref)>'0'  order by pref");
        row("region prefixes", sql::regionPrefixes(),
            "select distinct PREF  from tblrus where len(pref)>'0'  ORDER BY PREF");
        row("country of prefix", sql::countryOfPrefix(u"DL"), "select STRANA  from TBLDXCC where pref='DL'");
        row("calls of country", sql::callsOfCountry(u"GERMANY"),
            "select distinct ccall from TBLlog1 where CONTR='GERMANY'");
        row("calls of region", sql::callsOfRegion(u"3A"),
            "select DISTINCT CCALL from TBLlog1 where contr ='RUSSIAN' AND MID(CCALL,3,2)='3A' or "
            "MID(CCALL,2,2)='3A' and contr ='RUSSIAN'");
        row("region of prefix", sql::regionOfPrefix(u"3A"),
            "select DISTINCT PREF,GOROD,PRF from tblrus where PREF='3A' AND NOT(PRF='0')");
        row("contacts of call", sql::contactsOfCall(u"DL1AA"), "select * from TBLlog1 where ccall='DL1AA'");
        row("callbook entry", sql::callbookEntry(u"DL1AA"),
            "select ccall,nname,qth from TBLcalbuk where ccall='DL1AA'");

        row("blank", sql::blank(), "select * from tbllogTemp order by ccall");
        row("empty blank", sql::emptyBlank(), "DELETE tbllogTEMP.* FROM tbllogTEMP;");
        row("contact of call", sql::contactOfCall(u"DL1AA", false),
            "select  * from tbllog1 where ccall='DL1AA' order by contr");
        row("confirmed contact of call", sql::contactOfCall(u"DL1AA", true),
            "select  * from tbllog1 where ccall='DL1AA' and not(len(qslp)='0') order by contr");
        row("contact of country", sql::contactOfCountry(u"GERMANY", false),
            "select *  from TBLlog1 where contr='GERMANY'");
        row("confirmed contact of country", sql::contactOfCountry(u"GERMANY", true),
            "select *  from TBLlog1 where contr='GERMANY' and not(len(qslp)='0')");
    }
    void letterForLetter()
    {
        QFETCH(QString, made);
        QFETCH(QString, text);
        QCOMPARE(made, text);
    }

    // ---- the catalogue

    void catalogue()
    {
        Installation in;
        script(
            in, kAwards,
            "DELETE FROM tbldiplom; INSERT INTO tbldiplom(strana,diplom,pref,diptext) VALUES"
            "('FRANCE','DPF','','first'),('GERMANY','WAE','','x'),('FRANCE','DPF','','second'),"
            "('FRANCE','ddfm','',''),('france','AAA','',''),('Россия','Ёж','MA',''),('Россия','Жук','MA',''),"
            "('Россия','Енот','MA',''),('Россия','Урал','CB',''),('Россия','Ничей','',''),"
            "('Россия','Ничто',NULL,''),('Япония','DPF','','third'),(NULL,'N1','','')");
        const QString name = QStringLiteral("diplom");
        QCOMPARE(delivered(in, kAwards, sql::countries(), {QStringLiteral("strana")}),
                 QStringList({"", "FRANCE", "GERMANY", "Россия", "Япония"}));
        QCOMPARE(delivered(in, kAwards, sql::awardsOfCountry(u"FRANCE"), {name}),
                 QStringList({"AAA", "ddfm", "DPF", "DPF"})); // both rows of one pair
        QCOMPARE(delivered(in, kAwards, sql::awardsOfCountry(u"Francе"), {name}), QStringList());
        QCOMPARE(delivered(in, kAwards, sql::awardsOfCountry(u""), {name}), QStringList("N1"));
        QCOMPARE(delivered(in, kAwards, sql::awardsOfRegion(u"Россия", u"MA"), {name}),
                 QStringList({"Енот", "Ёж", "Жук"}));
        QCOMPARE(delivered(in, kAwards, sql::awardsOfRegion(u"Россия", u"ma"), {name}).size(), 3);
        QCOMPARE(delivered(in, kAwards, sql::awardsOfRegion(u"Россия", u""), {name}),
                 QStringList({"Ничей", "Ничто"})); // null is empty
        const QStringList rules = {QStringLiteral("diptext"), QStringLiteral("strana")};
        QCOMPARE(delivered(in, kAwards, sql::rules(u"DPF", u"FRANCE"), rules),
                 QStringList({"first|FRANCE", "second|FRANCE"}));
        QCOMPARE(delivered(in, kAwards, sql::awardToDelete(u"DPF"), rules),
                 QStringList({"first|FRANCE", "second|FRANCE", "third|Япония"})); // as they were stored
        QCOMPARE(delivered(in, kAwards, sql::awardToDelete(u"nothing"), rules), QStringList());
        QVERIFY_THROWS_EXCEPTION(
            store::Error, (void)delivered(in, kAwards, sql::awardsOfCountry(u"Cote d'Ivoire"), {name}));
        QVERIFY_THROWS_EXCEPTION(
            store::Error,
            (void)delivered(in, kAwards, sql::awardToDelete(u"x' or '1'='1' or diplom='"), {name}));
        QCOMPARE(in.rows(QLatin1String(kAwards), QStringLiteral("SELECT count(*) FROM tbldiplom")),
                 QStringList("13"));
    }

    void regions()
    {
        Installation in;
        script(in, kRegions,
               "DELETE FROM tblrus; INSERT INTO tblrus(pref,gorod,prf) VALUES('9A','Челябинск','CB'),"
               "('3A','старая','0'),('3A','Москва','MA'),('4Z','ещё Москва','ma'),('','ничья','NN'),"
               "('5O','пусто',''),('5P','null',NULL),(NULL,'без','AA'),('3a','Москва','MA')");
        QCOMPARE(delivered(in, kRegions, sql::regions(), {QStringLiteral("prf")}),
                 QStringList({"0", "AA", "CB", "MA", "NN"})); // neither empty nor null
        const QStringList fields = {QStringLiteral("pref"), QStringLiteral("gorod"), QStringLiteral("prf")};
        QCOMPARE(delivered(in, kRegions, sql::region(u"MA"), {QStringLiteral("gorod")}).front(),
                 QStringLiteral("Москва")); // stored first
        QCOMPARE(delivered(in, kRegions, sql::regionPrefixes(), {QStringLiteral("PREF")}),
                 QStringList({"3A", "4Z", "5O", "5P", "9A"}));
        QCOMPARE(delivered(in, kRegions, sql::regionOfPrefix(u"3A"), fields), QStringList("3A|Москва|MA"));
        QCOMPARE(delivered(in, kRegions, sql::regionOfPrefix(u"5P"), fields), QStringList("5P|null|"));
        QCOMPARE(delivered(in, kRegions, sql::regionOfPrefix(u"XX"), fields), QStringList());
    }

    // ---- picking

    void countries()
    {
        Installation in;
        script(
            in, kCountries,
            "DELETE FROM tbldxcc; INSERT INTO tbldxcc(prf,PREF,strana) VALUES('DA','DL','GERMANY'),"
            "('DL','dl','OTHER'),('F','F','FRANCE'),('X','','NOWHERE'),('Y',NULL,'NULL'),('Z',' ','BLANK')");
        const QString country = QStringLiteral("STRANA");
        QCOMPARE(delivered(in, kCountries, sql::countryPrefixes(), {QStringLiteral("pref")}),
                 QStringList({" ", "DL", "F"}));
        QCOMPARE(delivered(in, kCountries, sql::countryOfPrefix(u"DL"), {country}),
                 QStringList({"GERMANY", "OTHER"}));
        QCOMPARE(delivered(in, kCountries, sql::countryOfPrefix(u""), {country}),
                 QStringList({"NOWHERE", "NULL"}));
        QVERIFY_THROWS_EXCEPTION(store::Error,
                                 (void)delivered(in, kCountries, sql::countryOfPrefix(u"D'"), {country}));
    }

    void callsigns()
    {
        Installation in;
        script(in, kLog,
               "INSERT INTO TBLLOG1(ccall,CONTR) VALUES('UA3AB','RUSSIAN'),('R3AB','RUSSIAN'),"
               "('UA3AB','russian'),('DL3A','GERMANY'),('R3AC','GERMANY'),('K3AX','USA'),('UA9AA','RUSSIAN'),"
               "('R3A','RUSSIAN'),('3A2','RUSSIAN'),('UA13A','RUSSIAN'),('A3AZ',''),('A3AY',NULL),"
               "('A13A',NULL),('u3aq','RUSSIAN'),(NULL,'RUSSIAN'),('','RUSSIAN')");
        const QString call = QStringLiteral("ccall");
        // Russian ones with the prefix in either place, and nobody else's.
        QCOMPARE(delivered(in, kLog, sql::callsOfRegion(u"3A"), {call}),
                 QStringList({"R3A", "R3AB", "u3aq", "UA3AB"}));
        QCOMPARE(delivered(in, kLog, sql::callsOfRegion(u"3a"), {call}).size(), 4);
        QCOMPARE(delivered(in, kLog, sql::callsOfRegion(u"9A"), {call}), QStringList("UA9AA"));
        QCOMPARE(delivered(in, kLog, sql::callsOfCountry(u"GERMANY"), {call}), QStringList({"DL3A", "R3AC"}));
        QCOMPARE(delivered(in, kLog, sql::callsOfCountry(u"RUSSIAN"), {call}),
                 QStringList({"", "3A2", "R3A", "R3AB", "u3aq", "UA13A", "UA3AB", "UA9AA"}));
        QCOMPARE(delivered(in, kLog, sql::callsOfCountry(u""), {call}),
                 QStringList({"A13A", "A3AY", "A3AZ"}));
        QCOMPARE(delivered(in, kLog, sql::contactsOfCall(u"ua3ab"), {call, QStringLiteral("contr")}),
                 QStringList({"UA3AB|RUSSIAN", "UA3AB|russian"}));
        QCOMPARE(delivered(in, kLog, sql::contactsOfCall(u""), {call}).size(), 2);
    }

    void callbook()
    {
        Installation in;
        script(in, kCallbook,
               "INSERT INTO tblcalbuk(ccall,nname,qth,fam) VALUES('DL1AA','Hans','Köln','X'),"
               "('DL1AA','zwei','Bonn','')");
        QCOMPARE(delivered(in, kCallbook, sql::callbookEntry(u"DL1AA"),
                           {QStringLiteral("ccall"), QStringLiteral("nname"), QStringLiteral("qth"),
                            QStringLiteral("fam")}),
                 QStringList({"DL1AA|Hans|Köln|", "DL1AA|zwei|Bonn|"})); // no field that was not asked for
    }

    void firstContacts_data()
    {
        QTest::addColumn<QString>("made");
        QTest::addColumn<QStringList>("times");
        const auto row = [](const char *name, const SqlText &made, const QStringList &times) {
            QTest::newRow(name) << made.toString() << times;
        };
        row("by country, then as stored", sql::contactOfCall(u"DL1AA", false), {"5", "2", "3", "6", "1"});
        row("with a card", sql::contactOfCall(u"DL1AA", true), {"2", "6"});
        row("letter case", sql::contactOfCall(u"dl1aa", true), {"2", "6"});
        row("none", sql::contactOfCall(u"DL9", false), {});
        row("none with a card", sql::contactOfCall(u"F5AB", true), {});
        row("empty entry", sql::contactOfCall(u"", false), {"7", "8"});
        row("empty entry with a card", sql::contactOfCall(u"", true), {"8"});
        row("country as stored", sql::contactOfCountry(u"GERMANY", false), {"2", "3", "4", "6"});
        row("country with a card", sql::contactOfCountry(u"GERMANY", true), {"2", "6"});
        row("no country", sql::contactOfCountry(u"", false), {"5", "7", "8"});
        row("no country with a card", sql::contactOfCountry(u"", true), {"8"});
    }
    void firstContacts()
    {
        QFETCH(QString, made);
        QFETCH(QStringList, times);
        Installation in;
        script(in, kLog,
               "INSERT INTO TBLLOG1(ccall,CONTR,QSLP,ttime) VALUES('DL1AA','USA','','1'),"
               "('DL1AA','GERMANY','+','2'),('DL1AA','germany',NULL,'3'),('F5AB','GERMANY','','4'),"
               "('DL1AA','',NULL,'5'),('DL1AA','GERMANY',' ','6'),('',NULL,'','7'),(NULL,'','x','8')");
        QCOMPARE(delivered(in, kLog, made, {QStringLiteral("ttime")}), times);
    }

    void blankIsOrderedAndEmptied()
    {
        Installation in;
        script(
            in, kLog,
            "INSERT INTO tbllogTEMP(ccall,ttime) VALUES('R2','1'),('r1','2'),('R2','3'),(NULL,'4'),('','5'),"
            "('A','6'); INSERT INTO TBLLOG1(ccall) VALUES('R9')");
        QCOMPARE(delivered(in, kLog, sql::blank(), {QStringLiteral("ttime")}),
                 QStringList({"4", "5", "6", "2", "1", "3"}));
        in.databases.execute(in.file(QLatin1String(kLog)), sql::emptyBlank());
        QCOMPARE(delivered(in, kLog, sql::blank(), {QStringLiteral("ttime")}), QStringList());
        QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall FROM TBLLOG1")),
                 QStringList("R9"));
    }

    // ---- the sources

    void sourcesAtStart()
    {
        Installation in;
        awards::Sources sources(in.databases);
        QVERIFY(sources.open().isEmpty());
        const auto compare = [&in](const store::DataSource &source, const char *file, const SqlText &text) {
            QCOMPARE(source.databaseName(), in.file(QLatin1String(file)));
            QCOMPARE(source.recordSource().toString(), text.toString());
        };
        compare(sources.Countries, kAwards, sql::countries());
        compare(sources.Regions, kRegions, sql::regions());
        compare(sources.Writer, kAwards, sql::awardTable());
        compare(sources.Prefixes, kCountries, sql::countryPrefixes());
        compare(sources.RusPrefixes, kRegions, sql::regionPrefixes());
        compare(sources.PrefixCountry, kCountries, sql::countryTable());
        compare(sources.PrefixRegion, kRegions, sql::regionTable());
        compare(sources.Calls, kLog, sql::logTable());
        compare(sources.Station, kLog, sql::logTable());
        compare(sources.Callbook, kCallbook, sql::callbookTable());
        compare(sources.Lookup, kLog, sql::logTable());
        compare(sources.Blank, kLog, sql::blank());
        QCOMPARE(sources.Lookup.connect(), QStringLiteral("Access 2000;"));
        QCOMPARE(sources.Blank.connect(), QStringLiteral("Access"));
        QVERIFY(sources.Awards.isEmpty());
        QVERIFY(sources.Rules.isEmpty());
    }

    // ---- carrying and filling, without the window

    void timeAndReportOfACarriedContact_data()
    {
        QTest::addColumn<QString>("time");
        QTest::addColumn<QString>("report");
        QTest::addColumn<QString>("carried");
        const auto row = [](const char *time, const char *report, const char *carried) {
            QTest::addRow("%s %s", time, report)
                << QString::fromUtf8(time) << QString::fromUtf8(report) << QString::fromUtf8(carried);
        };
        row("5", "59", "00:05|59");
        row("12", "5", "00:12|");
        row("934", "599", "09:34|599");
        row("1234", "", "1234|");
        row("12:34", "57", "12:34|57");
        row("12:34:56", "579", "12:34|579");
        row("123456", "5991", "12345|599");
        row("1:2", "59 001", "01::2|599");
        row("я", "59", "00:0я|59");
    }
    void timeAndReportOfACarriedContact()
    {
        QFETCH(QString, time);
        QFETCH(QString, report);
        QFETCH(QString, carried);
        Installation in;
        in.sql(QLatin1String(kLog),
               QStringLiteral("INSERT INTO TBLLOG1(ccall,ttime,rstr,rsts) VALUES('R1A','%1','%2','sent')")
                   .arg(time, report));
        awards::Sources sources(in.databases);
        QVERIFY(sources.open().isEmpty());
        awards::Picking picking(sources);
        QVERIFY(!picking.chooseCall(QStringLiteral("R1A")));
        int asked = 0;
        picking.carry(0, false, {[] { return QStringLiteral("never"); }, [&asked] { return ++asked > 0; }});
        QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT ttime,rsts FROM tbllogTEMP")),
                 QStringList(carried));
        QCOMPARE(asked, report.size() > 3 ? 1 : 0);
    }

    void nullsAreEmpty()
    {
        Installation in;
        script(
            in, kLog,
            "INSERT INTO TBLLOG1(ccall,ttime,rstr,rsts,bband,ddate,CONTR) VALUES('R1A',NULL,NULL,NULL,NULL,"
            "NULL,NULL)");
        awards::Sources sources(in.databases);
        QVERIFY(sources.open().isEmpty());
        awards::Picking picking(sources);
        QVERIFY(!picking.chooseCall(QStringLiteral("R1A")));
        int asked = 0;
        picking.carry(0, true,
                      {[&asked] {
                           ++asked;
                           return QString();
                       },
                       [] { return true; }});
        QCOMPARE(asked, 1);
        (void)picking.fill({QStringLiteral("R1A")}, awards::EntryKind::Call, false, [](int) {});
        QCOMPARE(in.rows(QLatin1String(kLog),
                         QStringLiteral("SELECT ccall,ddate,ttime,bband,rsts,CONTR FROM tbllogTEMP")),
                 QStringList({"R1A|||||", "R1A|||||", "|||||"})); // no null among them
    }

    void filledBlankIsOneTransaction()
    {
        Installation in;
        script(
            in, kLog,
            "INSERT INTO TBLLOG1(ccall) VALUES('R1A'),('R2A'); CREATE TRIGGER no BEFORE INSERT ON tbllogTEMP "
            "WHEN NEW.ccall='R2A' BEGIN SELECT RAISE(ABORT,'нельзя'); END");
        awards::Sources sources(in.databases);
        QVERIFY(sources.open().isEmpty());
        awards::Picking picking(sources);
        QList<int> at;
        const QStringList entries = {"R1A", "R2A", "R1A"};
        const auto note = [&at](int index) { at.append(index); };
        QVERIFY_THROWS_EXCEPTION(store::Error,
                                 (void)picking.fill(entries, awards::EntryKind::Call, false, note));
        QCOMPARE(at, QList<int>({0, 1}));
        QVERIFY(!sources.Blank.editPending());
        QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT * FROM tbllogTEMP")), QStringList());
        script(in, kLog, "DROP TRIGGER no");
        const awards::FillResult result = picking.fill(entries, awards::EntryKind::Call, false, note);
        QCOMPARE(result.rows, 4);
        QCOMPARE(result.notFound, QStringList());
        QCOMPARE(in.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall FROM tbllogTEMP ORDER BY rowid")),
                 QStringList({"R1A", "R2A", "R1A", ""}));
        QCOMPARE(sources.Blank.recordCount(), 4);
    }
};

QTEST_GUILESS_MAIN(AwardStatementsTest)
#include "awardstatements.moc"
