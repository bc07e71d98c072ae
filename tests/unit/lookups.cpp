#include "logentry/lookups.h"

#include "logentry/sql.h"
#include "store/schema.h"
#include "support/installation.h"

#include <QTest>

using testsupport::Desk;
using testsupport::Installation;

class LookupsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void statements()
    {
        using namespace logentry::sql;
        const auto is = [](const store::SqlText &text, const char *expected) {
            QCOMPARE(text.toString(), QString::fromUtf8(expected));
        };
        is(countryOfPrefix(u"UA"), "select * from tbldxcc where prf='UA'");
        is(regionOfKey(u"3A"), "select * from tblrus where pref='3A'");
        is(townsOfRegion(u"MA"), "select gorod from tblgorod where prf='MA' order by gorod");
        is(confirmedCalls(u"RUSSIAN"),
           "select distinct ccall from tbllog1 where CONTR ='RUSSIAN' AND len(qslp)>'0'");
        is(workedCalls(u"RUSSIAN"), "select distinct ccall from tbllog1 where  CONTR ='RUSSIAN'");
        is(callbookEntry(u"UA3ABC"), "select * from tblcalbuk where ccall='UA3ABC'");
        is(latinOfKey(QChar(u'Ф')), "select * from tblfont where rus='Ф'");
        is(contactsOfDay(u"05.03.26"),
           "select ccall,DDATE,ttime,bband,rsts,rstr,ps1,QTH,nNAME,QSLVIA,qslp,qslo,contr,prf from tbllog1 "
           "WHERE "
           "ddate=datevalue('05.03.26')");
        is(contactsOfDayAfterRecording(u"05.03.26"),
           "select ccall,DDATE,ttime,bband,rsts,rstr,PS1,QTH,nNAME,QSLVIA,qslp,qslo,contr,prf from tbllog1 "
           "where "
           "ddate=datevalue('05.03.26')");
        is(contactsWith(u"DL1XX"),
           "select ccall,DDATE,ttime,bband,rsts,rstr,ps1,QTH,nNAME,QSLVIA,qslp,qslo,contr,prf from tbllog1 "
           "where "
           "ccall='DL1XX'");
        is(workedCallsFrom(u"DL"), "select distinct ccall from tblLOG1 where ccall like'DL*'");
        is(workedCallsUnsorted(), "select distinct ccall  from tbllog1");
        is(workedCallsSorted(), "SELECT DISTINCT CCALL FROM TBLLOG1 ORDER BY CCALL");
        is(allTowns(), "select distinct gorod from tblgorod order by gorod");
        is(allNamesAtStart(), "select *  from tblNAME  order by nname ");
        is(allNames(), "select nname from tblNAME order by nname");
    }

    void sourcesAtStart()
    {
        Installation in;
        logentry::Sources sources(in.databases);
        QCOMPARE(sources.open().size(), 0);
        const auto file = [&](const store::DataSource &source, const char *name) {
            QCOMPARE(source.databaseName(), in.file(QLatin1String(name)));
        };
        for (const store::DataSource *source :
             {&sources.Data1, &sources.Data2, &sources.Data4, &sources.Data5, &sources.Data6, &sources.Data7,
              &sources.Data13, &sources.Data16, &sources.Data19})
            file(*source, "dbiaru.mdb");
        for (const store::DataSource *source :
             {&sources.Data8, &sources.Data10, &sources.Data11, &sources.Data17})
            file(*source, "dbname.mdb");
        file(sources.Data3, "dbdxcc1.mdb");
        file(sources.Data9, "dbrusdx.mdb");
        file(sources.Data12, "dbcalbuk.mdb");
        file(sources.Data14, "dbcall.mdb");
        file(sources.Data20, "dbcall.mdb");
        file(sources.Data15, "dblog.mdb");
        file(sources.Data18, "dbcontest.mdb");
        QCOMPARE(sources.Data1.connect(), QStringLiteral("Access"));
        QCOMPARE(sources.Data19.connect(), QStringLiteral("Access 2000;"));
        QCOMPARE(sources.Data20.connect(), QStringLiteral("Access 2000;"));
        QCOMPARE(sources.mainLogPath(), in.file(QStringLiteral("dbiaru.mdb")));
    }

    /// Every callsign of the reference list resolves to its country, prefix, region key and region code.
    void resolveCases()
    {
        Installation in;
        Desk desk(in);
        QFile file(QStringLiteral(TEST_DATA "/resolve_cases.tsv"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QStringList lines =
            QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        int checked = 0;
        for (qsizetype i = 1; i < lines.size(); ++i) {
            const QStringList expected = lines[i].split(QLatin1Char('\t'));
            const bool knownKey = !expected.value(4).isEmpty() || expected[2] != QLatin1String("UA");
            desk.fields.txtcontr.clear();
            desk.state.principalPrefix.clear();
            desk.state.regionKey.clear();
            desk.fields.txtcall = expected[0];
            desk.lookups.STRAN();
            QCOMPARE(desk.fields.txtcontr, expected[1]);
            QCOMPARE(desk.state.principalPrefix, expected[2]);
            if (expected[2] == QLatin1String("UA") && knownKey) {
                QCOMPARE(desk.state.regionKey, expected[4]);
                QCOMPARE(desk.sources.Data9.field(QStringLiteral("prf")), expected.value(5));
            }
            // The continent is that of the longest prefix.
            QString continent;
            for (qsizetype length = 1; length <= expected[0].size(); ++length) {
                desk.sources.Data3.setRecordSource(logentry::sql::countryOfPrefix(expected[0].left(length)));
                desk.sources.Data3.refresh();
                if (!desk.sources.Data3.isEmpty())
                    continent = desk.sources.Data3.field(QStringLiteral("kont"));
            }
            QCOMPARE(continent, expected[3]);
            ++checked;
        }
        QCOMPARE(checked, 459);
    }

    void shorterMatchesAreCountedOnTheWay()
    {
        Installation in;
        in.sql(QStringLiteral("dbdxcc1.mdb"),
               QStringLiteral("DELETE FROM tbldxcc; INSERT INTO tbldxcc(prf,PREF,strana,Shir,Dolg) VALUES"
                              "('D','D','SHORT','1,5','2,5'),('DL','DL','GERMANY','51,5','10,25')"));
        in.addContact(QStringLiteral("DA1A"), QString(), QStringLiteral("SHORT"));
        in.addContact(QStringLiteral("DL1A"), QString(), QStringLiteral("GERMANY"), QStringLiteral("+"));
        in.addContact(QStringLiteral("DL1B"), QString(), QStringLiteral("GERMANY"));
        Desk desk(in);
        desk.fields.txtcall = QStringLiteral("D");
        desk.lookups.STRAN();
        QCOMPARE(desk.fields.txtcontr, QStringLiteral("SHORT"));
        QCOMPARE(desk.fields.txtQSO, QStringLiteral("1"));
        QCOMPARE(desk.fields.TXTQSL, QStringLiteral("0"));
        QCOMPARE(desk.fields.position.TXTSIRG, QStringLiteral("1"));
        desk.fields.txtcall = QStringLiteral("DL");
        desk.lookups.STRAN();
        QCOMPARE(desk.fields.position.TXTSIRG, QStringLiteral("51"));
        QCOMPARE(desk.fields.position.TXTSHIRM, QStringLiteral("30"));
        QCOMPARE(desk.fields.position.TXTDN, QStringLiteral("15"));
        desk.fields.txtcall = QStringLiteral("DL1ABC");
        desk.lookups.STRAN();
        QCOMPARE(desk.fields.txtcontr, QStringLiteral("GERMANY"));
        QCOMPARE(desk.fields.txtQSO, QStringLiteral("2"));
        QCOMPARE(desk.fields.TXTQSL, QStringLiteral("1"));
        QCOMPARE(desk.fields.position.TXTSIRG, QStringLiteral("51")); // stays
        // No match at all: country and principal prefix of the callsign before stay.
        desk.fields.txtcall = QStringLiteral("QQ1A");
        desk.lookups.STRAN();
        QCOMPARE(desk.fields.txtcontr, QStringLiteral("GERMANY"));
        QCOMPARE(desk.state.principalPrefix, QStringLiteral("DL"));
        // An empty callsign changes nothing.
        desk.fields.txtcall.clear();
        desk.fields.townPanelShown = true;
        desk.lookups.STRAN();
        QVERIFY(desk.fields.townPanelShown);
    }

    void lastCandidateStaysInTheSource()
    {
        Installation in;
        Desk desk(in);
        desk.fields.txtcall = QStringLiteral("DL1ABC");
        desk.lookups.STRAN();
        QCOMPARE(desk.sources.Data3.recordSource().toString(),
                 QStringLiteral("select * from tbldxcc where prf='DL1ABC'"));
    }

    void regionKeys_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("key");
        QTest::newRow("UA3ABC") << "UA3ABC"
                                << "3A";
        QTest::newRow("R3ABC") << "R3ABC"
                               << "3A";
        QTest::newRow("UA9XYZ") << "UA9XYZ"
                                << "9X";
        QTest::newRow("no digit in place") << "RAEM"
                                           << "A";
        QTest::newRow("digits") << "R100MD"
                                << "00";
        QTest::newRow("slash") << "UA9/DL5ZZ"
                               << "9/";
        QTest::newRow("three characters keep") << "UA3"
                                               << "7Z";
    }
    void regionKeys()
    {
        QFETCH(QString, call);
        QFETCH(QString, key);
        Installation in;
        Desk desk(in);
        desk.state.regionKey = QStringLiteral("7Z");
        desk.fields.txtcall = call;
        desk.lookups.RUSS();
        QCOMPARE(desk.state.regionKey, key);
        QVERIFY(desk.fields.townPanelShown && desk.fields.townHintShown && desk.fields.nameHintShown);
    }

    void russianStation()
    {
        Installation in;
        Desk desk(in);
        desk.fields.position.txtGradN = QStringLiteral("55");
        desk.fields.position.txtMinN = QStringLiteral("45");
        desk.fields.position.txtGradE = QStringLiteral("37");
        desk.fields.position.txtMinE = QStringLiteral("37");
        desk.type(QStringLiteral("UA1ABC"));
        QCOMPARE(desk.fields.txtcontr, QStringLiteral("RUSSIAN"));
        QCOMPARE(desk.state.regionKey, QStringLiteral("1A"));
        QVERIFY(desk.fields.townPanelShown);
        desk.sources.Data8.moveLast();
        QVERIFY(desk.sources.Data8.recordCount() >= 1);
        QCOMPARE(desk.sources.Data8.recordSource().toString(),
                 QStringLiteral("select gorod from tblgorod where prf='SP' order by gorod"));
        const auto row = in.rows(QStringLiteral("dbrusdx.mdb"),
                                 QStringLiteral("SELECT Shir,dolg FROM tblrus WHERE pref='1A'"));
        const auto north = geo::splitDegrees(row.front()
                                                 .section(QLatin1Char('|'), 0, 0)
                                                 .replace(QLatin1Char(','), QLatin1Char('.'))
                                                 .toDouble());
        QCOMPARE(desk.fields.position.TXTSIRG, QString::number(north.degrees));
        QCOMPARE(desk.fields.position.TXTSHIRM, QString::number(north.minutes));
        QVERIFY(desk.fields.position.txtdist.toInt() > 500);
        QCOMPARE(desk.fields.position.txtaz.toInt() > 270, true);
        // A foreign station hides the panel but leaves the hints to the next recording.
        desk.type(QStringLiteral("DL1ABC"));
        QVERIFY(!desk.fields.townPanelShown);
        QVERIFY(desk.fields.townHintShown);
    }

    void threeLettersUseThePreviousRegion()
    {
        Installation in;
        Desk desk(in);
        desk.type(QStringLiteral("UA9CD"));
        QCOMPARE(desk.state.regionKey, QStringLiteral("9C"));
        desk.type(QStringLiteral("UA1"));
        QCOMPARE(desk.state.regionKey, QStringLiteral("9C"));
        QCOMPARE(desk.sources.Data9.field(QStringLiteral("pref")), QStringLiteral("9C"));
    }

    void ukraineAndBelarusShowTheTownEntry()
    {
        Installation in;
        Desk desk(in);
        desk.type(QStringLiteral("UA3ABC"));
        desk.sources.Data8.moveLast();
        const QString towns = desk.sources.Data8.recordSource().toString();
        for (const char *call : {"UR5AB", "EU1AB"}) {
            desk.fields.townHintShown = false;
            desk.fields.nameHintShown = false;
            desk.fields.txtcall = QLatin1String(call);
            desk.lookups.STRAN();
            QVERIFY(desk.fields.townPanelShown);
            QVERIFY(desk.fields.nameHintShown);
            QVERIFY(!desk.fields.townHintShown);
        }
        // The town list is left as it was.
        QCOMPARE(desk.sources.Data8.recordSource().toString(), towns);
    }

    void earlierContacts()
    {
        Installation in;
        in.addContact(QStringLiteral("DL1XX"), QStringLiteral("05.03.26"), QStringLiteral("GERMANY"));
        in.addContact(QStringLiteral("DL1XY"), QStringLiteral("04.03.26"), QStringLiteral("GERMANY"));
        Desk desk(in);
        desk.fields.txtcall.clear();
        desk.lookups.WWOD();
        QCOMPARE(desk.sources.Data5.recordCount(), 1);
        QCOMPARE(desk.sources.Data5.field(QStringLiteral("ccall")), QStringLiteral("DL1XX"));
        desk.fields.txtcall = QStringLiteral("DL1XY");
        desk.lookups.WWOD();
        QCOMPARE(desk.sources.Data5.field(QStringLiteral("ccall")), QStringLiteral("DL1XY"));
        QCOMPARE(desk.sources.Data16.recordSource().toString(),
                 QStringLiteral("SELECT DISTINCT CCALL FROM TBLLOG1 ORDER BY CCALL")); // the list is hidden
        desk.state.listShown = true;
        desk.fields.txtcall = QStringLiteral("DL1X");
        desk.lookups.WWOD();
        desk.sources.Data16.moveLast();
        QCOMPARE(desk.sources.Data16.recordCount(), 2);
        QCOMPARE(desk.sources.Data5.recordCount(), 0);
        desk.lookups.showContactsWith(QStringLiteral("DL1XX"));
        QCOMPARE(desk.sources.Data5.recordCount(), 1);
    }

    void callbook()
    {
        Installation in;
        in.sql(QStringLiteral("dbcalbuk.mdb"),
               QStringLiteral("INSERT INTO tblcalbuk(ccall,qth,nname,qslvia) VALUES('UA3ABC','О''Город','Имя "
                              "\"X\"','via ''B''')"));
        Desk desk(in);
        desk.fields.txtqth = QStringLiteral("typed");
        desk.type(QStringLiteral("UA3AB"));
        QCOMPARE(desk.fields.txtqth, QString()); // a key in the callsign replaces what was typed
        QVERIFY(!desk.fields.callbookShown);
        desk.type(QStringLiteral("UA3ABC"));
        QVERIFY(desk.fields.callbookShown);
        QCOMPARE(desk.fields.txtqth, QStringLiteral("О'Город"));
        QCOMPARE(desk.fields.txtname, QStringLiteral("Имя \"X\""));
        QCOMPARE(desk.fields.txtqslvia, QStringLiteral("via 'B'"));
        desk.fields.txtcall += QLatin1Char('D');
        QVERIFY(!desk.lookups.callsignKeyReleased(Qt::Key_D));
        QVERIFY(!desk.fields.callbookShown);
        QCOMPARE(desk.fields.txtname, QString());
        // F5 and F6 leave the callbook fields alone.
        desk.fields.txtqth = QStringLiteral("Тула");
        QVERIFY(!desk.lookups.callsignKeyReleased(Qt::Key_F5));
        QVERIFY(!desk.lookups.callsignKeyReleased(Qt::Key_F6));
        QCOMPARE(desk.fields.txtqth, QStringLiteral("Тула"));
    }

    void emptyCallsignClears()
    {
        Installation in;
        Desk desk(in);
        desk.type(QStringLiteral("DL1ABC"));
        desk.fields.txtqslvia = QStringLiteral("X");
        desk.fields.txtcall.clear();
        QVERIFY(!desk.lookups.callsignKeyReleased(Qt::Key_Backspace));
        QCOMPARE(desk.fields.txtcontr, QString());
        QCOMPARE(desk.fields.txtqslvia, QString());
        QCOMPARE(desk.fields.TXTQSL, QString());
        QVERIFY(!desk.fields.txtQSO.isEmpty()); // the clock's tick clears this one
        QCOMPARE(desk.state.principalPrefix, QStringLiteral("DL"));
    }

    void keyerStationField()
    {
        Installation in;
        Desk desk(in);
        desk.type(QStringLiteral("DL1A"));
        QCOMPARE(desk.fields.TXTF11, QString());
        desk.state.keyerShown = true;
        desk.type(QStringLiteral("DL1A"));
        QCOMPARE(desk.fields.TXTF11, QStringLiteral("DL1A"));
    }

    /// Counts that cannot be read keep no longer prefix, region or position from being found.
    void lockedLogStillFindsTheCountry()
    {
        Installation in;
        Desk desk(in);
        store::Connection other(in.file(QStringLiteral("dbiaru.mdb")), store::OpenMode::ReadWrite);
        other.exec(QStringLiteral("BEGIN EXCLUSIVE"));
        desk.fields.txtcall = QStringLiteral("KH6ABC");
        const auto error = desk.lookups.callsignKeyReleased(Qt::Key_C);
        QCOMPARE(int(error.value().kind()), int(store::ErrorKind::Locked));
        QCOMPARE(desk.fields.txtcontr, QStringLiteral("HAWAII"));
        desk.fields.txtcall = QStringLiteral("UA9CDE");
        QVERIFY(desk.lookups.callsignKeyReleased(Qt::Key_E).has_value());
        QCOMPARE(desk.fields.txtcontr, QStringLiteral("RUSSIAN"));
        QCOMPARE(desk.state.regionKey, QStringLiteral("9C"));
        QVERIFY(!desk.fields.position.TXTSIRG.isEmpty());
        other.exec(QStringLiteral("ROLLBACK"));
    }

    /// A failing query does not keep the others from running.
    void badDateDoesNotStopTheRest()
    {
        Installation in;
        Desk desk(in);
        desk.fields.txtdate = QStringLiteral("32.13.99");
        desk.fields.txtcall.clear();
        desk.fields.txtqth = QStringLiteral("X");
        const auto error = desk.lookups.callsignKeyReleased(Qt::Key_Backspace);
        QVERIFY(error.has_value());
        QCOMPARE(int(error->kind()), int(store::ErrorKind::BadDate));
        QCOMPARE(desk.fields.txtqth, QString());
        QVERIFY(!desk.fields.callbookShown);
    }

    /// The work of one key is known exactly: more statements would be felt on a large log.
    void statementsPerKey()
    {
        Installation in;
        for (int i = 0; i < 200; ++i)
            in.addContact(QStringLiteral("UA3%1").arg(i), QStringLiteral("05.03.26"),
                          QStringLiteral("RUSSIAN"), QStringLiteral("+"));
        Desk desk(in);
        desk.type(QStringLiteral("UA3ABC"));
        const auto statements = [&](const char *call) {
            qint64 before = 0;
            qint64 after = 0;
            for (const store::FileLayout &layout : store::fileLayouts())
                before += in.databases.connection(in.file(layout.name)).statementCount();
            desk.fields.txtcall = QLatin1String(call);
            (void)desk.lookups.callsignKeyReleased(Qt::Key_C);
            for (const store::FileLayout &layout : store::fileLayouts())
                after += in.databases.connection(in.file(layout.name)).statementCount();
            return int(after - before);
        };
        const auto hits = [&](const char *prefixes) {
            return int(
                in.rows(
                      QStringLiteral("dbdxcc1.mdb"),
                      QStringLiteral("SELECT prf FROM tbldxcc WHERE prf IN(%1)").arg(QLatin1String(prefixes)))
                    .size());
        };
        // Earlier contacts 1, a prefix a letter 6, callbook 1, for Russia region and towns 2; per country
        // found on the way two pages of one callsign and, where that is not all, the counter of each.
        QCOMPARE(statements("UA3ABC"), 1 + 6 + 1 + 2 + 4 * hits("'U','UA','UA3','UA3A','UA3AB'"));
        QCOMPARE(statements("QQ1ABC"),
                 1 + 6 + 1 + 2); // no country: the one before is Russia, so its region again
        QCOMPARE(statements("DL1ABC"), 1 + 6 + 1 + 2 * hits("'D','DL','DL1','DL1A','DL1AB'"));
    }
};

QTEST_GUILESS_MAIN(LookupsTest)
#include "lookups.moc"
