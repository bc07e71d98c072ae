// Locator to coordinates and back.
#include "geo/locator.h"

#include <QTest>

using geo::GridPlace;
using geo::Position;
using geo::PositionFields;

namespace {

PositionFields coordinates(const char *north, const char *northMinutes, const char *hemisphereN,
                           const char *east, const char *eastMinutes, const char *hemisphereE)
{
    PositionFields fields;
    fields.TXTSIRG = QString::fromUtf8(north);
    fields.TXTSHIRM = QString::fromUtf8(northMinutes);
    fields.TSHIR = QString::fromUtf8(hemisphereN);
    fields.TXTDG = QString::fromUtf8(east);
    fields.TXTDN = QString::fromUtf8(eastMinutes);
    fields.TDOLG = QString::fromUtf8(hemisphereE);
    fields.txtGradN = QStringLiteral("55");
    fields.txtMinN = QStringLiteral("45");
    fields.txtGradE = QStringLiteral("37");
    fields.txtMinE = QStringLiteral("37");
    return fields;
}

QString joined(const PositionFields &fields)
{
    return QStringList{fields.TXTSIRG, fields.TXTSHIRM, fields.TSHIR,
                       fields.TXTDG,   fields.TXTDN,    fields.TDOLG}
        .join(QLatin1Char(' '));
}

} // namespace

class LocatorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void toCoordinates_data()
    {
        QTest::addColumn<QString>("locator");
        QTest::addColumn<QString>("boxes");
        QTest::addColumn<double>("latitude");
        QTest::addColumn<double>("longitude");
        QTest::newRow("Moscow") << "KO85UR"
                                << "55 43 N 37 42 E" << 55.0 + 17.5 / 24 << 36.0 + 20.5 / 12;
        QTest::newRow("lower case is no letter")
            << "ko85ur"
            << "84 58 S 163 57 W" << -85.0 + 0.5 / 24 << -164.0 + 0.5 / 12;
        QTest::newRow("as AA85AA") << "AA85AA"
                                   << "84 58 S 163 57 W" << -85.0 + 0.5 / 24 << -164.0 + 0.5 / 12;
        QTest::newRow("letters among the digits")
            << "KOABUR"
            << "50 43 N 21 42 E" << 50.0 + 17.5 / 24 << 20.0 + 20.5 / 12;
        QTest::newRow("behind X") << "YZ00YZ"
                                  << "89 58 S 179 57 W" << -90.0 + 0.5 / 24 << -180.0 + 0.5 / 12;
        QTest::newRow("digits among the letters")
            << "110011"
            << "89 58 S 179 57 W" << -90.0 + 0.5 / 24 << -180.0 + 0.5 / 12;
        QTest::newRow("Cyrillic") << "КО85УР"
                                  << "84 58 S 163 57 W" << -85.0 + 0.5 / 24 << -164.0 + 0.5 / 12;
        QTest::newRow("first") << "AA00AA"
                               << "89 58 S 179 57 W" << -90.0 + 0.5 / 24 << -180.0 + 0.5 / 12;
        QTest::newRow("last of the world") << "RR99XX"
                                           << "89 58 N 179 57 E" << 90.0 - 0.5 / 24 << 180.0 - 0.5 / 12;
        QTest::newRow("last of the alphabet") << "XX99XX"
                                              << "149 58 N 299 57 E" << 150.0 - 0.5 / 24 << 300.0 - 0.5 / 12;
        QTest::newRow("north-east of zero") << "JJ00AA"
                                            << "0 1 N 0 2 E" << 0.5 / 24 << 0.5 / 12;
        QTest::newRow("south-west of zero") << "II99XX"
                                            << "0 1 S 0 2 W" << -0.5 / 24 << -0.5 / 12;
        QTest::newRow("six blanks") << "      "
                                    << "89 58 S 179 57 W" << -90.0 + 0.5 / 24 << -180.0 + 0.5 / 12;
    }
    void toCoordinates()
    {
        QFETCH(QString, locator);
        QFETCH(QString, boxes);
        QFETCH(double, latitude);
        QFETCH(double, longitude);
        PositionFields fields = coordinates("", "", "", "", "", "");
        fields.TXTLOK = locator;
        fields.txtdist = QStringLiteral("before");
        fields.txtaz = QStringLiteral("77");
        Position position;
        QVERIFY(geo::cmbkoor(fields, position));
        QCOMPARE(joined(fields), boxes);
        QVERIFY(std::abs(position.latitude - latitude) < 1e-9);
        QVERIFY(std::abs(position.longitude - longitude) < 1e-9);
        QCOMPARE(fields.TXTLOK, locator);
        QCOMPARE(fields.txtaz, QStringLiteral("77")); // the distance alone is computed
        PositionFields again = fields;
        position.Dist1(again);
        QCOMPARE(fields.txtdist, again.txtdist);
    }

    void signKeepsInTheDistance()
    {
        // From the own 0 0, the same place north-east and south-west of zero is as far.
        PositionFields fields;
        Position position;
        fields.TXTLOK = QStringLiteral("JJ00AA");
        QVERIFY(geo::cmbkoor(fields, position));
        QCOMPARE(fields.txtdist, QStringLiteral("3")); // sqrt((1.82*1.25)^2 + (1.12*2.5)^2) = 3.6
        fields.txtGradN = QStringLiteral("10");
        fields.TXTLOK = QStringLiteral("II99XX");
        QVERIFY(geo::cmbkoor(fields, position));
        QCOMPARE(fields.txtdist, QStringLiteral("1094")); // 1.82 * (600 + 1.25) = 1094.3, with 2.8 across
    }

    void wrongLength_data()
    {
        QTest::addColumn<QString>("locator");
        for (const char *locator : {"", "K", "KO85U", "KO85URX", "KO85", "KO85UR "})
            QTest::newRow(locator) << locator;
    }
    void wrongLength()
    {
        QFETCH(QString, locator);
        PositionFields fields = coordinates("1", "2", "N", "3", "4", "E");
        fields.TXTLOK = locator;
        fields.txtdist = QStringLiteral("5");
        Position position;
        QVERIFY(!geo::cmbkoor(fields, position));
        QCOMPARE(joined(fields), QStringLiteral("1 2 N 3 4 E"));
        QCOMPARE(fields.txtdist, QStringLiteral("5"));
        QCOMPARE(position.latitude, 0.0);
    }

    void toLocator_data()
    {
        QTest::addColumn<QString>("boxes");
        QTest::addColumn<QString>("locator");
        QTest::newRow("Moscow") << "55|45|N|37|37|E"
                                << "KO85TS";
        QTest::newRow("and back") << "55|43|N|37|42|E"
                                  << "KO85UR";
        QTest::newRow("zero") << "0|0|N|0|0|E"
                              << "JJ00AA";
        QTest::newRow("no hemisphere is N and E") << "0|0||0|0|"
                                                  << "JJ00AA";
        QTest::newRow("small letters are no S and W") << "55|45|s|37|37|w"
                                                      << "KO85TS";
        QTest::newRow("any text is N and E") << "55|45|юг|37|37|Ю"
                                             << "KO85TS";
        QTest::newRow("south and west") << "33|52|S|70|40|W"
                                        << "FF46PD";
        QTest::newRow("fractions are cut") << "55,9|45,9|N|37,9|37,9|E"
                                           << "KO85TS";
        QTest::newRow("decimal point") << "55.9|45.9|N|37.9|37.9|E"
                                       << "KO85TS";
        QTest::newRow("no number is 0") << "a|b|N|c|d|E"
                                        << "JJ00AA";
        QTest::newRow("minutes above 59") << "55|103|N|36|102|E"
                                          << "KO86UR";
        QTest::newRow("north pole") << "90|0|N|0|0|E"
                                    << "JS00AA";
        QTest::newRow("date line") << "0|0|N|180|0|E"
                                   << "SJ00AA";
        QTest::newRow("south-western corner") << "90|0|S|180|0|W"
                                              << "AA00AA";
        // A letter that there is no place for is missing.
        QTest::newRow("far too far north") << "400|0|N|37|37|E"
                                           << "K80TA";
        QTest::newRow("far too far west") << "55|45|N|400|0|W"
                                          << "O05AS";
        QTest::newRow("negative number") << "-5|0|N|0|0|E"
                                         << "JI05AA";
        QTest::newRow("absurd") << "99999999999999999999|0|N|0|0|E"
                                << "J00AA";
    }
    void toLocator()
    {
        QFETCH(QString, boxes);
        QFETCH(QString, locator);
        const QStringList box = boxes.split(QLatin1Char('|'));
        PositionFields fields;
        fields.TXTSIRG = box[0];
        fields.TXTSHIRM = box[1];
        fields.TSHIR = box[2];
        fields.TXTDG = box[3];
        fields.TXTDN = box[4];
        fields.TDOLG = box[5];
        fields.txtaz = QStringLiteral("77");
        Position position;
        QVERIFY(geo::cmblok(fields, position));
        QCOMPARE(fields.TXTLOK, locator);
        QCOMPARE(fields.txtaz, QStringLiteral("77"));
        PositionFields again = fields;
        position.Dist1(again);
        QCOMPARE(fields.txtdist, again.txtdist);
        QVERIFY(!fields.txtdist.isEmpty());
    }

    void workingValuesAreSigned()
    {
        PositionFields fields = coordinates("33", "30", "S", "70", "45", "W");
        Position position;
        QVERIFY(geo::cmblok(fields, position));
        QCOMPARE(position.latitude, -33.5);
        QCOMPARE(position.longitude, -70.75);
    }

    void emptyBoxes()
    {
        for (int empty = 0; empty < 4; ++empty) {
            PositionFields fields = coordinates("1", "2", "", "3", "4", "");
            QString *boxes[] = {&fields.TXTSIRG, &fields.TXTSHIRM, &fields.TXTDG, &fields.TXTDN};
            boxes[empty]->clear();
            fields.TXTLOK = QStringLiteral("before");
            Position position;
            QVERIFY(!geo::cmblok(fields, position));
            QCOMPARE(fields.TXTLOK, QStringLiteral("before"));
        }
    }

    /// Every locator of the world: field A to R, square 0 to 9, subsquare A to X, each way separately,
    /// because longitude and latitude do not meet; then their combination over all 18,662,400.
    void everyLocatorComesBack()
    {
        constexpr int kFields = 18;
        constexpr int kSquares = 10;
        constexpr int kSubsquares = 24;
        constexpr int kPlaces = kFields * kSquares * kSubsquares;
        const auto placeAt = [](int index) {
            const int field = index / (kSquares * kSubsquares);
            const int square = index / kSubsquares % kSquares;
            const int subsquare = index % kSubsquares;
            return GridPlace{double(field), double(square), double(subsquare)};
        };
        // What the boxes hold: whole degrees and minutes cut towards zero, and the sign. The centre of a
        // subsquare lies 2,5 (1,25) minutes from its edges, and cutting moves it by at most 0,75 of a minute,
        // so that it stays inside: every locator comes back, the class of those that do not is empty.
        const auto shown = [](double degrees) {
            const geo::DegreesMinutes cut = geo::cutToMinutes(std::abs(degrees));
            const double value = (cut.degrees * 60 + cut.minutes) / 60.0;
            return degrees < 0 ? -value : value;
        };
        const auto same = [](GridPlace a, GridPlace b) {
            return a.field == b.field && a.square == b.square && a.subsquare == b.subsquare;
        };
        QList<bool> eastBack;
        QList<bool> northBack;
        for (int index = 0; index < kPlaces; ++index) {
            const GridPlace place = placeAt(index);
            eastBack.append(same(geo::placeOfLongitude(shown(geo::longitudeOf(place))), place));
            northBack.append(same(geo::placeOfLatitude(shown(geo::latitudeOf(place))), place));
        }
        qint64 back = 0;
        for (const bool east : eastBack)
            for (const bool north : northBack)
                back += east && north ? 1 : 0;
        QCOMPARE(back, 18'662'400);
    }

    /// The same through the texts of the boxes, for every 97th locator and all on the edges of a field.
    void locatorsComeBackThroughTheBoxes()
    {
        const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWX");
        int checked = 0;
        const auto check = [&](int index) {
            QString locator(6, QLatin1Char(' '));
            int rest = index;
            const auto take = [&rest](int base) {
                const int digit = rest % base;
                rest /= base;
                return digit;
            };
            locator[5] = letters[take(24)];
            locator[4] = letters[take(24)];
            locator[3] = QLatin1Char(static_cast<char>('0' + take(10)));
            locator[2] = QLatin1Char(static_cast<char>('0' + take(10)));
            locator[1] = letters[take(18)];
            locator[0] = letters[take(18)];
            PositionFields fields;
            fields.TXTLOK = locator;
            Position position;
            const bool converted = geo::cmbkoor(fields, position);
            fields.TXTLOK.clear();
            ++checked;
            return converted && geo::cmblok(fields, position) && fields.TXTLOK == locator;
        };
        for (int index = 0; index < 18'662'400; index += 97)
            if (!check(index))
                QFAIL(qPrintable(QString::number(index)));
        QVERIFY(checked > 190'000);
    }
};

QTEST_GUILESS_MAIN(LocatorTest)
#include "locator.moc"
