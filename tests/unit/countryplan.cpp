// What the country file changes in the country table, rule by rule.
#include "support/countries.h"

#include <QTest>

using namespace testsupport; // NOLINT(google-build-using-namespace): a vocabulary for tables and files

namespace {

const QString kItaly = QStringLiteral("I I EU 15 28 42,82 12,58 ITALY");
const QString kGermany = QStringLiteral("DL DL EU 14 28 51,00 10,00 GERMANY");

/// The entries of the plan of this file over this table.
QStringList changes(const QStringList &table, const QByteArray &file)
{
    Installation in;
    setCountries(in, table);
    const reference::CountryPlan plan = planOf(in, file);
    // Whatever the rule: applied, the file has nothing more to say.
    (void)reference::applyCountryPlan(in.databases, plan);
    const QStringList again = entries(planOf(in, file));
    if (!again.isEmpty())
        qFatal("not settled by one update: %s", qPrintable(again.join(QLatin1String("; "))));
    return entries(plan);
}

QStringList lines(std::initializer_list<const char *> texts)
{
    QStringList list;
    for (const char *text : texts)
        list.append(QString::fromUtf8(text));
    return list;
}

} // namespace

class CountryPlanTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- which country

    void samePrincipalPrefix()
    {
        // The name stays ours, whatever the file calls it.
        QCOMPARE(changes({kGermany}, record("DL", "DL,DK", "Fed. Rep. of Germany")),
                 lines({"+ DK DL EU 14 28 51,00 10,00 GERMANY"}));
    }

    void prefixIsNormalised()
    {
        QCOMPARE(changes(lines({"3D2 3D2 OC 32 56 -17,78 177,92 FIJI",
                                "3D2CR 3D2C OC 32 56 -22,00 175,00 CONWAY REEF"}),
                         record("3D2", "3D2", "Fiji", "32: 56: OC: -17.78: -177.92") +
                             record("3D2/c", "=3D2CR,=3D2CCC", "Conway Reef", "32: 56: OC: -22.00: -175.00")),
                 lines({"+ 3D2CCC 3D2C OC 32 56 -22,00 175,00 CONWAY REEF"}));
    }

    void oneRussia()
    {
        const QStringList table =
            lines({"UA UA EU 16 29 55,75 37,62 RUSSIAN", "UA9 UA AS 17 30 55,00 82,92 RUSSIAN"});
        const QByteArray file =
            record("UA", "UA,R", "European Russia", "16: 29: EU: 53.65: -41.37") +
            record("UA9", "UA9,R9,UA0(19)[33]", "Asiatic Russia", "17: 30: AS: 55.88: -84.08");
        QCOMPARE(changes(table, file),
                 lines({"+ R UA EU 16 29 53,65 41,37 RUSSIAN", "+ R9 UA AS 17 30 55,88 84,08 RUSSIAN",
                        "+ UA0 UA AS 19 33 55,75 37,62 RUSSIAN"}));
        // From nothing too.
        QCOMPARE(changes({}, file).constFirst(), QStringLiteral("+ R UA EU 16 29 53,65 41,37 RUSSIAN"));
        QCOMPARE(changes({}, file).constLast(), QStringLiteral("+ UA9 UA AS 17 30 55,88 84,08 RUSSIAN"));
        // Unless our table has the other half as a country.
        QCOMPARE(changes(lines({"UA9 UA9 AS 17 30 55,00 82,92 SIBERIA"}),
                         record("UA9", "UA9,R9", "Asiatic Russia", "17: 30: AS: 55.88: -84.08")),
                 lines({"+ R9 UA9 AS 17 30 55,88 84,08 SIBERIA"}));
    }

    void byMostOfItsKeys()
    {
        const QStringList table = lines({"JD1BME JD1M OC 27 90 24,28 153,97 MINAMITORI",
                                         "JD1BMM JD1M OC 27 90 24,28 153,97 MINAMITORI",
                                         "JD1YBJ JD1 AS 27 45 27,05 142,20 OGASAWARA"});
        QCOMPARE(
            changes(table, record("JD/m", "=JD1BME,=JD1BMM,=JD1YBJ", "Minami Torishima",
                                  "27: 90: OC: 24.28: -153.97")),
            lines({"~ JD1YBJ префикс страны JD1 → JD1M; страна OGASAWARA → MINAMITORI; континент AS → OC; "
                   "ITU 45 → 90; широта 27,05 → 24,28; долгота 142,20 → 153,97"}));
        // Half is not most; then it is a new country.
        QCOMPARE(changes(table,
                         record("JD/m", "=JD1BMM,=JD1YBJ", "Minami Torishima", "27: 90: OC: 24.28: -153.97"))
                     .constFirst(),
                 QStringLiteral("~ JD1BMM префикс страны JD1M → JDM; страна MINAMITORI → MINAMI TORISHI"));
    }

    void byItsKeysNeverACountryOfAnother()
    {
        // Kosovo's key is Serbia's in our table, and Serbia is in the file: a new country.
        QCOMPARE(changes(lines({"YU YU EU 15 28 44,00 21,00 SERBIA", "Z6 YU EU 15 28 44,00 21,00 SERBIA"}),
                         record("Z6/k", "Z6", "Kosovo", "15: 28: EU: 42.67: -21.17") +
                             record("YU", "YU", "Serbia", "15: 28: EU: 44.00: -21.00")),
                 lines({"~ Z6 префикс страны YU → Z6K; страна SERBIA → KOSOVO; широта 44,00 → 42,67; долгота "
                        "21,00 → "
                        "21,17"}));
    }

    void twoWantOneCountry()
    {
        // The one with more keys there gets it, the other is new.
        const QStringList table =
            lines({"PJ1 PJ SA 9 11 12,20 -69,00 ANTILLES", "PJ3 PJ SA 9 11 12,20 -69,00 ANTILLES",
                   "PJ7 PJ NA 8 11 18,05 -63,08 ANTILLES"});
        QCOMPARE(changes(table, record("PJ5", "PJ7", "Saba", "8: 11: NA: 18.05: 63.08") +
                                    record("PJ2", "PJ1,PJ3", "Curacao", "9: 11: SA: 12.20: 69.00")),
                 lines({"~ PJ7 префикс страны PJ → PJ5; страна ANTILLES → SABA"}));
    }

    void ownRowsHaveNoVote()
    {
        QCOMPARE(
            changes(lines({"own 1X9 DL EU 14 28 51,00 10,00 GERMANY"}), record("1X", "1X9,1X", "Chechnya")),
            lines({"+ 1X 1X EU 14 28 51,00 10,00 CHECHNYA"}));
    }

    void newCountry_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("ours");
        QTest::newRow("plain") << QByteArray("South Sudan") << QStringLiteral("SOUTH SUDAN");
        QTest::newRow("cut") << QByteArray("Central African Republic") << QStringLiteral("CENTRAL AFRICA");
        QTest::newRow("cut at a blank")
            << QByteArray("Democratic Re public") << QStringLiteral("DEMOCRATIC RE");
        QTest::newRow("signs") << QByteArray("St. Peter & Paul's") << QStringLiteral("ST PETER PAULS");
        QTest::newRow("accents") << QByteArray("Cura\xC3\xA7"
                                               "ao")
                                 << QStringLiteral("CURACAO");
        QTest::newRow("taken") << QByteArray("Germany") << QStringLiteral("GERMANY Z8");
        QTest::newRow("taken and long") << QByteArray("Central Africa") << QStringLiteral("CENTRAL AFR Z8");
        QTest::newRow("nothing is left") << QByteArray("Страна") << QStringLiteral("Z8");
    }
    void newCountry()
    {
        QFETCH(QByteArray, name);
        QFETCH(QString, ours);
        const QStringList table =
            lines({"DL DL EU 14 28 51,00 10,00 GERMANY", "TL TL AF 36 47 7,00 21,00 CENTRAL AFRICA"});
        Installation in;
        setCountries(in, name.startsWith("Central African") ? table.mid(0, 1) : table);
        const reference::CountryPlan plan = planOf(in, record("z8", "Z8", name));
        QCOMPARE(plan.newCountries, QStringList{ours});
        QCOMPARE(entries(plan), QStringList{QStringLiteral("+ Z8 Z8 EU 14 28 51,00 10,00 ") + ours});
        QCOMPARE(plan.remarks.size(), ours.endsWith(QLatin1String(" Z8")) ? 1 : 0);
    }

    void newCountriesOfOneNameAreTwo()
    {
        Installation in;
        setCountries(in, {kGermany});
        const reference::CountryPlan plan = planOf(
            in, record("Z8", "Z8", "Sudan") + record("ST", "ST", "Sudan") + record("ST0", "ST0", "Sudan !"));
        QCOMPARE(plan.newCountries, lines({"SUDAN", "SUDAN ST", "SUDAN ST0"}));
        QCOMPARE(plan.remarks.size(), 2);
    }

    void newCountriesOfOnePrefixAreTwo()
    {
        QCOMPARE(changes({}, record("3D2/c", "3D2C", "Conway Reef") + record("3D2C", "3D2D", "Rotuma")),
                 lines({"+ 3D2C 3D2C EU 14 28 51,00 10,00 CONWAY REEF",
                        "+ 3D2D 3D2C2 EU 14 28 51,00 10,00 ROTUMA"}));
        QCOMPARE(changes({}, record("ABC/DEF", "A1", "One") + record("ABC/DEG", "A2", "Two")),
                 lines({"+ A1 ABCDE EU 14 28 51,00 10,00 ONE", "+ A2 ABCD2 EU 14 28 51,00 10,00 TWO"}));
    }

    void starredIsNoCountry()
    {
        const QByteArray sicily = record("*IT9", "IT9,IW9", "Sicily", "15: 28: EU: 37.50: -14.00");
        const QByteArray italy = record("I", "I", "Italy", "15: 28: EU: 42.82: -12.58");
        // By our own row of its prefix; by most of its keys; by the file's country that it begins with.
        QCOMPARE(changes(lines({"IT9 I EU 15 28 38,12 13,36 ITALY"}), sicily),
                 lines({"+ IW9 I EU 15 28 37,50 14,00 ITALY"}));
        QCOMPARE(changes(lines({"IW9 I EU 15 28 38,12 13,36 ITALY"}), sicily),
                 lines({"+ IT9 I EU 15 28 37,50 14,00 ITALY"}));
        QCOMPARE(changes({kItaly}, italy + sicily),
                 lines({"+ IT9 I EU 15 28 42,82 12,58 ITALY", "+ IW9 I EU 15 28 42,82 12,58 ITALY"}));
        // By a key of it too, the longest.
        QCOMPARE(changes({kItaly, kGermany}, record("I", "I(15),JT9(15)") + record("DL", "DL,J") +
                                                 record("*JT9/A", "=JT9ABC(15)")),
                 lines({"+ J DL EU 14 28 51,00 10,00 GERMANY", "+ JT9 I EU 15 28 51,00 10,00 ITALY",
                        "+ JT9ABC I EU 15 28 51,00 10,00 ITALY"}));
    }

    void starredWithoutACountryIsLeftOut()
    {
        Installation in;
        setCountries(in, {kGermany});
        const reference::CountryPlan plan =
            planOf(in, record("*IT9", "IT9,=IT9ABC", "Sicily") + record("DL", "DL"));
        QVERIFY(plan.isEmpty());
        QCOMPARE(plan.remarks,
                 lines({"«Sicily» (*IT9) пропущена: неизвестно, к какой стране она относится."}));
        QCOMPARE(plan.fileCountries, 1);
        QCOMPARE(plan.fileKeys, 1);
        // Nor does it speak against a row; and a country's key goes before its.
        QCOMPARE(changes(lines({"D9A DL EU 15 28 51,00 10,00 GERMANY", "D9B OE EU 15 28 47,33 13,33 AUSTRIA",
                                "D9C DL EU 15 28 51,00 10,00 GERMANY"}),
                         record("*D9/x", "D9A,D9B,D9") + record("DL", "DL,D9A")),
                 lines({"+ DL DL EU 14 28 51,00 10,00 GERMANY", "~ D9A CQ 15 → 14"}));
    }

    // ---- rows

    void continentAndZonesFollowTheFile()
    {
        QCOMPARE(changes(lines({"I I eu 015 28 42,82 12,58 ITALY", "IG9 I EU 15 28 35,67 12,67 ITALY",
                                "IH9 I - - x 35,67 12,67 ITALY"}),
                         record("I", "I,IG9(33)[37]{AF},IH9", "Italy", "15: 28: EU: 0.0: 0.0")),
                 lines({"~ IG9 континент EU → AF; CQ 15 → 33; ITU 28 → 37",
                        "~ IH9 континент пусто → EU; CQ пусто → 15; ITU x → 28"}));
    }

    void positionsStay()
    {
        // Ours are finer; what differs in form only is no change either.
        QCOMPARE(changes(lines({"I I EU 14 28 41,9 12,5 ITALY"}), record("I", "I<41.90/-12.50>")),
                 QStringList());
        QCOMPARE(changes(lines({"I I EU 14 28 41,9 12,5 ITALY"}), record("I", "I")), QStringList());
        QCOMPARE(changes(lines({"I I EU 14 28 41,9 12,5 ITALY"}), record("I", "I<41.91/-12.50>")),
                 lines({"~ I широта 41,9 → 41,91; долгота 12,5 → 12,50"}));
        QCOMPARE(changes(lines({"I I EU 14 28 - 12,5 ITALY"}), record("I", "I")),
                 lines({"~ I широта пусто → 51,00; долгота 12,5 → 10,00"}));
        QCOMPARE(changes(lines({"I I EU 14 28 0,00 0,00 ITALY"}), record("I", "I<-0.001/0>")), QStringList());
    }

    void positionOfANewRow()
    {
        const QStringList table =
            lines({"R9 UA EU 14 28 55,00 82,92 RUSSIAN", "R9S UN EU 14 28 43,00 77,00 KAZAKHSTAN",
                   "R UA EU 14 28 55,75 37,62 RUSSIAN"});
        QCOMPARE(changes(table, record("UA", "R,R9,R9SA,R9SB<51.77/-55.10>,U", "Russia")),
                 lines({"+ R9SA UA EU 14 28 55,00 82,92 RUSSIAN", "+ R9SB UA EU 14 28 51,77 55,10 RUSSIAN",
                        "+ U UA EU 14 28 51,00 10,00 RUSSIAN"}));
    }

    void aKeyThatChangesItsCountry()
    {
        QCOMPARE(changes(lines({"R2 UA EU 14 28 55,75 37,62 RUSSIAN", "R2F UA EU 14 28 55,75 37,62 RUSSIAN",
                                "UA2 UA2 EU 15 29 54,71 20,50 KALININGRAD"}),
                         record("UA2", "UA2,R2F", "Kaliningrad", "15: 29: EU: 54.72: -20.52")),
                 lines({"~ R2F префикс страны UA → UA2; страна RUSSIAN → KALININGRAD; CQ 14 → 15; ITU 28 → "
                        "29; широта "
                        "55,75 → 54,72; долгота 37,62 → 20,52"}));
    }

    void namesInTheTableStay()
    {
        // A row's own spelling, and for new rows that of the first row that is not the operator's.
        QCOMPARE(changes(lines({"own DM DL EU 14 28 51,00 10,00 GDR", "DL dl EU 14 28 51,00 10,00 Germany",
                                "DK DL EU 14 28 51,00 10,00 GERMANIA", "DJ DL EU 14 28 51,00 10,00 -"}),
                         record("DL", "DL,DK,DJ,DB")),
                 lines({"+ DB DL EU 14 28 51,00 10,00 Germany", "~ DJ страна пусто → Germany"}));
    }

    void wholeCallsigns()
    {
        Installation in;
        setCountries(in, {kGermany});
        const QByteArray calls = "DL,=DL1ABC,=DL1AB,=DL1A,=DL1AB/P,=DA0HQ,=DA2024DARC,=RAEM,=DL2000,=DL5";
        const reference::CountryPlan plan = planOf(in, record("DL", calls));
        QCOMPARE(entries(plan), lines({"+ DA2024DARC DL EU 14 28 51,00 10,00 GERMANY",
                                       "+ DL1AB/P DL EU 14 28 51,00 10,00 GERMANY",
                                       "+ DL1ABC DL EU 14 28 51,00 10,00 GERMANY"}));
        QCOMPARE(plan.leftOutCalls, 6);
        QCOMPARE(plan.fileKeys, 4);
        QVERIFY(plan.summary().contains(
            QStringLiteral("Пропущено позывных, с которых могут начинаться другие: 6.")));
        // A country known by them alone has them all.
        QCOMPARE(
            changes({kGermany}, record("DL", "=DL1ABC,=DL1A")),
            lines({"+ DL1A DL EU 14 28 51,00 10,00 GERMANY", "+ DL1ABC DL EU 14 28 51,00 10,00 GERMANY"}));
        // The country, not the record, must be without: a starred one belongs to another.
        QCOMPARE(changes({kGermany}, record("DL", "DL") + record("*DL/h", "=DL1A,=DL1AAA")),
                 lines({"+ DL1AAA DL EU 14 28 51,00 10,00 GERMANY"}));
    }

    void aKeyTwice()
    {
        const QStringList table =
            lines({"DL DL EU 14 28 51,00 10,00 GERMANY", "OE OE EU 14 28 51,00 10,00 AUSTRIA"});
        const auto both = [&](const QByteArray &german, const QByteArray &austrian) {
            Installation in;
            setCountries(in, table);
            const reference::CountryPlan plan =
                planOf(in, record("DL", "DL," + german) + record("OE", "OE," + austrian));
            return entries(plan) + plan.remarks;
        };
        // A whole callsign counts before a prefix, in either order.
        QCOMPARE(both("DX1ABC", "=DX1ABC"), lines({"+ DX1ABC OE EU 14 28 51,00 10,00 AUSTRIA"}));
        QCOMPARE(both("=DX1ABC", "DX1ABC"), lines({"+ DX1ABC DL EU 14 28 51,00 10,00 GERMANY"}));
        // Not one that is left out.
        QCOMPARE(both("DX1", "=DX1"), lines({"+ DX1 DL EU 14 28 51,00 10,00 GERMANY"}));
        // Otherwise the first, and the operator is told.
        QCOMPARE(both("DX1", "DX1(15)"),
                 lines({"+ DX1 DL EU 14 28 51,00 10,00 GERMANY",
                        "DX1 стоит в файле у двух стран, GERMANY и AUSTRIA; взята первая."}));
        // Of one country it is one row.
        QCOMPARE(both("DX1ABC(15),=DX1ABC(16),=DX1ABC(17),DX1ABC", "OE"),
                 lines({"+ DX1ABC DL EU 16 28 51,00 10,00 GERMANY"}));
    }

    // ---- what goes

    void contradictedRowsGo()
    {
        const QStringList table =
            lines({"DL DL EU 14 28 51,00 10,00 GERMANY", "DL1 DL EU 14 28 48,14 11,58 GERMANY",
                   "DL2 DL EU 15 28 48,14 11,58 GERMANY", "DL3 DL EU 14 27 48,14 11,58 GERMANY",
                   "DL4 DL AS 14 28 48,14 11,58 GERMANY", "DP9 DL EU 14 28 51,00 10,00 GERMANY",
                   "OE1 DL EU 14 28 51,00 10,00 GERMANY", "OE OE EU 14 28 51,00 10,00 AUSTRIA"});
        QCOMPARE(
            changes(table, record("DL", "DL") + record("OE", "OE")),
            lines({"- DL2 по файлу: GERMANY, EU, CQ 14, ITU 28", "- DL3 по файлу: GERMANY, EU, CQ 14, ITU 28",
                   "- DL4 по файлу: GERMANY, EU, CQ 14, ITU 28", "- DP9 в файле такого префикса нет",
                   "- OE1 по файлу: AUSTRIA, EU, CQ 14, ITU 28"}));
    }

    void rowsOfOtherCountriesStay()
    {
        // OE is not in the file, whatever it says of OE's keys; and a starred one does not stand for its
        // country.
        QCOMPARE(changes(lines({"OE OE EU 15 28 47,33 13,33 AUSTRIA", "DL9 OE EU 15 28 47,33 13,33 AUSTRIA",
                                "I I EU 15 28 42,82 12,58 ITALY", "IT9 I EU 14 28 42,82 12,58 ITALY"}),
                         record("DL", "DL") + record("*IT9", "IT9", "Sicily")),
                 lines({"+ DL DL EU 14 28 51,00 10,00 SOME COUNTRY"}));
    }

    void halfOfRussiaTakesNothingAway()
    {
        const QStringList table =
            lines({"UA UA EU 16 29 55,75 37,62 RUSSIAN", "UA9 UA AS 17 30 55,00 82,92 RUSSIAN",
                   "RX UA EU 16 29 55,75 37,62 RUSSIAN"});
        const QByteArray european = record("UA", "UA", "European Russia", "16: 29: EU: 53.65: -41.37");
        const QByteArray asiatic = record("UA9", "UA9", "Asiatic Russia", "17: 30: AS: 55.88: -84.08");
        QCOMPARE(changes(table, european), QStringList());
        QCOMPARE(changes(table, asiatic), QStringList());
        QCOMPARE(changes(table, european + asiatic), lines({"- RX в файле такого префикса нет"}));
    }

    void rowsOfCountriesKnownByCallsignsStay()
    {
        QCOMPARE(changes(lines({"VP8GEO VP8G SA 13 73 -54,48 -37,08 SOUTH GEORGIA"}),
                         record("VP8/g", "=VP8SGK", "South Georgia", "13: 73: SA: -54.48: 37.08")),
                 lines({"+ VP8SGK VP8G SA 13 73 -54,48 -37,08 SOUTH GEORGIA"}));
    }

    void aCallsignLeftOutKeepsItsRow()
    {
        // In the file DL5A is Austria's for certain and DP1A Germany's, both too short for a row.
        const QStringList table =
            lines({"DL DL EU 14 28 51,00 10,00 GERMANY", "OE OE EU 14 28 51,00 10,00 AUSTRIA",
                   "DP1A DL EU 14 28 51,00 10,00 GERMANY", "DL5A OE EU 14 28 51,00 10,00 AUSTRIA",
                   "DP2A DL EU 14 28 51,00 10,00 GERMANY"});
        QCOMPARE(changes(table, record("DL", "DL,=DP1A") + record("OE", "OE,=DL5A,=DP2A")),
                 lines({"- DP2A в файле такого префикса нет"}));
    }

    void ownRowsStay()
    {
        Installation in;
        setCountries(
            in, lines({"own DL DL EU 15 29 1,00 2,00 DEUTSCHLAND", "own DQ9 DL EU 14 28 51,00 10,00 GERMANY",
                       "DA DL EU 14 28 51,00 10,00 GERMANY", "own DA DL EU 9 9 51,00 10,00 GERMANY"}));
        const reference::CountryPlan plan = planOf(in, record("DL", "DL,DA(20),DLB"));
        QCOMPARE(entries(plan), lines({"+ DLB DL EU 14 28 1,00 2,00 GERMANY"}));
        QCOMPARE(plan.own, 3);
    }

    void oddRowsStay()
    {
        const QStringList table =
            lines({"DA - EU 15 28 51,00 10,00 GERMANY", "- DL EU 15 28 51,00 10,00 GERMANY",
                   "DL DL EU 14 28 51,00 10,00 GERMANY", "DÜ DL EU 15 28 51,00 10,00 GERMANY",
                   "DL DL EU 15 28 51,00 10,00 GERMANY", "dl DL EU 15 28 51,00 10,00 GERMANY"});
        Installation in;
        setCountries(in, table);
        in.sql(countryDatabase(), QStringLiteral("UPDATE tbldxcc SET prf=NULL,kont=NULL WHERE prf=''"));
        const reference::CountryPlan plan = planOf(in, record("DL", "DL,DA"));
        QVERIFY(plan.isEmpty());
        QCOMPARE(plan.kept, 5);
        QCOMPARE(plan.same, 1);
    }

    void oneOfSeveralRowsCounts()
    {
        QCOMPARE(changes(lines({"DL DL EU 15 28 51,00 10,00 GERMANY", "DL DL EU 16 28 51,00 10,00 GERMANY"}),
                         record("DL", "DL")),
                 lines({"~ DL CQ 15 → 14"}));
        Installation in;
        setCountries(in, lines({"DL DL EU 14 28 51,00 10,00 GERMANY", "DP DL EU 14 28 51,00 10,00 GERMANY",
                                "DP DL EU 14 28 51,00 10,00 GERMANY"}));
        const reference::CountryPlan plan = planOf(in, record("DL", "DL"));
        QVERIFY(plan.isEmpty());
        QCOMPARE(plan.remarks,
                 lines({"Префикс DP есть в таблице несколько раз; его строки оставлены, хотя в файле "
                        "такого префикса нет."}));
    }

    /// The list knows Bouvet by whole callsigns alone, our table by 3Y0: it is no new country.
    void knownByWholeCallsigns()
    {
        Installation in;
        setCountries(
            in, lines({"CE9 CE9 SA 13 74 -75,00 0,00 ANTARCTICA", "3Y CE9 SA 13 74 -75,00 0,00 ANTARCTICA",
                       "3Y0 3Y0 AF 38 67 -54,42 3,38 BOUVET"}));
        const reference::CountryPlan plan =
            planOf(in, record("CE9", "CE9", "Antarctica") +
                           record("3Y/b", "=3Y0K,=3Y/ZS6GCM,=3Y0C,=3Y0E,=3Y0J,=3Y7GIA,=3Y7THA", "Bouvet"));
        QCOMPARE(plan.newCountries, QStringList());
        int calls = 0;
        for (const reference::CountryChange &change : plan.changes)
            if (change.prf().startsWith(QLatin1String("3Y0")) ||
                change.prf().startsWith(QLatin1String("3Y7"))) {
                ++calls;
                QCOMPARE(change.after.pref, QStringLiteral("3Y0"));
                QCOMPARE(change.after.strana, QStringLiteral("BOUVET"));
            }
        QCOMPARE(calls, 6);
    }

    // ---- how it is shown

    void texts()
    {
        Installation in;
        setCountries(in,
                     lines({"DL DL EU 15 28 51,00 10,00 GERMANY", "DP DL EU 14 28 51,00 10,00 GERMANY",
                            "OE OE EU 15 28 47,33 13,33 AUSTRIA", "own DX DL EU 15 28 51,00 10,00 GERMANY"}));
        const reference::CountryPlan plan =
            planOf(in, record("DL", "DL") + record("Z8", "Z8,=Z81A", "South Sudan"));
        QStringList shown;
        for (const reference::CountryChange &change : plan.changes)
            shown.append(QStringList{change.kindText(), change.prf(), change.country(), change.what()}.join(
                QLatin1Char('|')));
        QCOMPARE(shown, lines({"Новая|Z8|SOUTH SUDAN|Z8, EU, CQ 14, ITU 28, 51,00 / 10,00",
                               "Изменена|DL|GERMANY|CQ 15 → 14",
                               "Удаляется|DP|GERMANY|в файле такого префикса нет"}));
        QCOMPARE(plan.summary(),
                 lines({"В файле стран: 2, ключей: 2.", "Новых строк: 1, изменённых: 1, удаляемых: 1.",
                        "Из удаляемых 1 не найдут в файле замены: такие позывные останутся без страны.",
                        "Внимание: удаляется много строк. Так бывает, когда в файле не все префиксы.",
                        "Новые страны: SOUTH SUDAN.",
                        "Остаются как есть: совпадающих с файлом 0, прочих 1, внесённых оператором 1.",
                        "Пропущено позывных, с которых могут начинаться другие: 1."})
                     .join(QLatin1Char('\n')));
        (void)reference::applyCountryPlan(in.databases, plan);
        QVERIFY(planOf(in, record("DL", "DL"))
                    .summary()
                    .contains(QStringLiteral("Таблица стран уже соответствует файлу.")));
    }
};

QTEST_APPLESS_MAIN(CountryPlanTest)
#include "countryplan.moc"
