#include "geo/distance.h"
#include "geo/position.h"

#include <QTest>

#include <cmath>

using geo::ArcMinutes;
using geo::Position;
using geo::PositionFields;

namespace {

ArcMinutes at(int north, int northMinutes, int east, int eastMinutes)
{
    return {north * 60.0 + northMinutes, east * 60.0 + eastMinutes};
}

const ArcMinutes kMoscow = at(55, 45, 37, 37);

PositionFields moscow()
{
    PositionFields fields;
    fields.txtGradN = QStringLiteral("55");
    fields.txtMinN = QStringLiteral("45");
    fields.txtGradE = QStringLiteral("37");
    fields.txtMinE = QStringLiteral("37");
    return fields;
}

} // namespace

class GeoTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void split_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("degrees");
        QTest::addColumn<int>("minutes");
        QTest::newRow("plain") << 55.75 << 55 << 45;
        QTest::newRow("south") << -77.5 << -78 << 30;
        QTest::newRow("rounded up") << 12.43 << 12 << 26;
        QTest::newRow("carry") << 10.999 << 11 << 0;
        QTest::newRow("carry, west") << -0.001 << 0 << 0;
        QTest::newRow("zero") << 0.0 << 0 << 0;
        QTest::newRow("west") << -77.02 << -78 << 59;
    }
    void split()
    {
        QFETCH(double, value);
        QFETCH(int, degrees);
        QFETCH(int, minutes);
        const auto parts = geo::splitDegrees(value);
        QCOMPARE(parts.degrees, degrees);
        QCOMPARE(parts.minutes, minutes);
        QVERIFY(std::fabs(parts.degrees * 60 + parts.minutes - value * 60) <= 0.5 + 1e-9);
    }
    void splitOfAbsurdValues()
    {
        QCOMPARE(geo::splitDegrees(1e300).degrees, 1000000);
        QCOMPARE(geo::splitDegrees(-1e300).degrees, -1000000);
    }

    void distanceIsFlat()
    {
        PositionFields fields = moscow();
        Position position;
        position.latitude = 55.75;
        position.longitude = 30.0 + 19.0 / 60.0;
        position.Dist1(fields);
        QCOMPARE(fields.txtdist, QStringLiteral("490")); // Int(1.12 x 438)
        // The same minutes count the same kilometres near the pole.
        fields.txtGradN = QStringLiteral("89");
        position.latitude = 89.75;
        position.Dist1(fields);
        QCOMPARE(fields.txtdist, QStringLiteral("490"));
    }

    void bearings_data()
    {
        QTest::addColumn<ArcMinutes>("contact");
        QTest::addColumn<int>("bearing");
        QTest::newRow("west") << at(55, 45, 30, 19) << 270;
        QTest::newRow("east") << at(55, 45, 40, 0) << 90;
        QTest::newRow("south") << at(40, 0, 37, 37) << 180;
        QTest::newRow("north") << at(60, 0, 37, 37) << 0;
        QTest::newRow("same place keeps") << kMoscow << 77;
        QTest::newRow("north-west") << ArcMinutes{kMoscow.latitude + 112, kMoscow.longitude - 182} << 315;
        QTest::newRow("south-west") << ArcMinutes{kMoscow.latitude - 112, kMoscow.longitude - 182} << 225;
        QTest::newRow("north-east") << ArcMinutes{kMoscow.latitude + 112, kMoscow.longitude + 182} << 45;
        QTest::newRow("south-east") << ArcMinutes{kMoscow.latitude - 112, kMoscow.longitude + 182} << 135;
        QTest::newRow("due north from the west")
            << ArcMinutes{kMoscow.latitude + 3000, kMoscow.longitude - 1} << 360;
        QTest::newRow("due north from the east")
            << ArcMinutes{kMoscow.latitude + 3000, kMoscow.longitude + 1} << 0;
    }
    void bearings()
    {
        QFETCH(ArcMinutes, contact);
        QFETCH(int, bearing);
        QCOMPARE(geo::flatBearing(kMoscow, contact, 77), bearing);
    }
    void halvesRoundToEven()
    {
        // The flat triangle's angle is arcsine x 57.3; found by search: legs whose angle is nearest to a
        // half.
        QVERIFY(std::fabs(geo::arcsine(0.5) - std::asin(0.5)) < 1e-12);
        QVERIFY(std::fabs(geo::arcsine(0.0)) < 1e-12);
    }

    void distancFromTheBoxes()
    {
        PositionFields fields = moscow();
        Position position;
        position.Distanc(fields); // boxes empty: nothing
        QCOMPARE(fields.txtdist, QString());
        QCOMPARE(fields.txtaz, QString());
        fields.TXTSIRG = QStringLiteral("55");
        fields.TXTSHIRM = QStringLiteral("45");
        fields.TXTDG = QStringLiteral("30");
        position.Distanc(fields); // three of four
        QCOMPARE(fields.txtdist, QString());
        fields.TXTDN = QStringLiteral("19");
        position.Distanc(fields);
        QCOMPARE(fields.txtdist, QStringLiteral("490"));
        QCOMPARE(fields.txtaz, QStringLiteral("270"));
        QCOMPARE(position.longitude, (30 * 60 + 19) / 60.0);
        fields.TXTDG = QStringLiteral("37");
        fields.TXTDN = QStringLiteral("37");
        position.Distanc(fields); // the own place: distance 0, bearing stays
        QCOMPARE(fields.txtdist, QStringLiteral("0"));
        QCOMPARE(fields.txtaz, QStringLiteral("270"));
    }
    void hemisphereBoxesAreNotRead()
    {
        // A southern contact typed by hand is measured as if north; a signed value of a table keeps its sign.
        PositionFields typed = moscow();
        typed.TXTSIRG = QStringLiteral("33");
        typed.TXTSHIRM = QStringLiteral("0");
        typed.TXTDG = QStringLiteral("37");
        typed.TXTDN = QStringLiteral("37");
        Position position;
        position.Distanc(typed);
        QCOMPARE(typed.txtdist, QString::number(int(1.82 * (22 * 60 + 45))));
        PositionFields fromTable = moscow();
        position.take(fromTable, QStringLiteral("-33,5"), QStringLiteral("37,62"));
        QCOMPARE(fromTable.TXTSIRG, QStringLiteral("-34"));
        QCOMPARE(fromTable.TXTSHIRM, QStringLiteral("30"));
        position.Distanc(fromTable);
        QCOMPARE(fromTable.txtdist, QString::number(int(1.82 * (89 * 60 + 15))));
        QCOMPARE(fromTable.txtaz, QStringLiteral("180"));
    }
    void badTexts()
    {
        PositionFields fields = moscow();
        Position position;
        position.take(fields, QStringLiteral("55,75"), QStringLiteral("нет"));
        QCOMPARE(fields.TXTSIRG, QString());
        fields.txtGradN = QStringLiteral("abc"); // counts as 0
        fields.TXTSIRG = QStringLiteral("999999");
        fields.TXTSHIRM = QStringLiteral("x");
        fields.TXTDG = QStringLiteral("-999999");
        fields.TXTDN = QStringLiteral("1");
        position.Distanc(fields);
        QVERIFY(!fields.txtdist.isEmpty());
    }
};

QTEST_GUILESS_MAIN(GeoTest)
#include "geo.moc"
