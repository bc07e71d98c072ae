#include "geo/locator.h"

#include "base/number.h"

#include <algorithm>
#include <cmath>

namespace geo {

namespace {

constexpr QStringView kLetters = u"ABCDEFGHIJKLMNOPQRSTUVWX";
constexpr QStringView kDigits = u"0123456789";
constexpr qsizetype kLocatorLength = 6;

double indexIn(QStringView alphabet, QChar c)
{
    const qsizetype index = alphabet.indexOf(c);
    return index < 0 ? 0 : static_cast<double>(index);
}

QString letter(double index)
{
    const bool known = index >= 0 && index < static_cast<double>(kLetters.size());
    return known ? QString(kLetters[static_cast<qsizetype>(index)]) : QString();
}

QString wholeNumber(double value)
{
    return QString::number(value, 'f', 0);
}

double typedDegrees(const QString &degrees, const QString &minutes)
{
    constexpr double kMost = 1e6; // a typing error must stay a number that can be shown
    const auto whole = [kMost](const QString &text) {
        return std::floor(std::clamp(base::numberOrZero(text), -kMost, kMost));
    };
    return (whole(degrees) * 60 + whole(minutes)) / 60;
}

/// `shifted`: degrees from the western edge of the grid.
GridPlace placeOf(double shifted) noexcept
{
    GridPlace place;
    place.field = std::floor(std::floor(shifted) / 20);
    place.square = std::floor((std::floor(shifted) - 20 * place.field) / 2);
    place.subsquare = std::floor((shifted - 20 * place.field - 2 * place.square) * 12);
    return place;
}

} // namespace

double longitudeOf(GridPlace place) noexcept
{
    return 20 * place.field + 2 * place.square + (place.subsquare + 0.5) / 12 - 180;
}

double latitudeOf(GridPlace place) noexcept
{
    return 10 * place.field + place.square + (place.subsquare + 0.5) / 24 - 90;
}

GridPlace placeOfLongitude(double degrees) noexcept
{
    return placeOf(degrees + 180);
}

GridPlace placeOfLatitude(double degrees) noexcept
{
    return placeOf(2 * degrees + 180);
}

DegreesMinutes cutToMinutes(double degrees) noexcept
{
    const double whole = std::floor(degrees);
    return {static_cast<int>(whole), static_cast<int>(std::floor((degrees - whole) * 60))};
}

bool cmbkoor(PositionFields &fields, Position &position)
{
    const QString &locator = fields.TXTLOK;
    if (locator.size() != kLocatorLength)
        return false;
    const double longitude = longitudeOf(
        {indexIn(kLetters, locator[0]), indexIn(kDigits, locator[2]), indexIn(kLetters, locator[4])});
    const double latitude = latitudeOf(
        {indexIn(kLetters, locator[1]), indexIn(kDigits, locator[3]), indexIn(kLetters, locator[5])});
    fields.TSHIR = latitude < 0 ? QStringLiteral("S") : QStringLiteral("N");
    fields.TDOLG = longitude < 0 ? QStringLiteral("W") : QStringLiteral("E");
    const DegreesMinutes north = cutToMinutes(std::fabs(latitude));
    const DegreesMinutes east = cutToMinutes(std::fabs(longitude));
    fields.TXTSIRG = QString::number(north.degrees);
    fields.TXTSHIRM = QString::number(north.minutes);
    fields.TXTDG = QString::number(east.degrees);
    fields.TXTDN = QString::number(east.minutes);
    position.latitude = latitude;
    position.longitude = longitude;
    fields.txtdist.clear();
    position.Dist1(fields);
    return true;
}

bool cmblok(PositionFields &fields, Position &position)
{
    if (fields.TXTSIRG.isEmpty() || fields.TXTSHIRM.isEmpty() || fields.TXTDG.isEmpty() ||
        fields.TXTDN.isEmpty())
        return false;
    const double north = typedDegrees(fields.TXTSIRG, fields.TXTSHIRM);
    const double east = typedDegrees(fields.TXTDG, fields.TXTDN);
    position.latitude = fields.TSHIR == QLatin1String("S") ? -north : north;
    position.longitude = fields.TDOLG == QLatin1String("W") ? -east : east;
    const GridPlace x = placeOfLongitude(position.longitude);
    const GridPlace y = placeOfLatitude(position.latitude);
    fields.TXTLOK = letter(x.field) + letter(y.field) + wholeNumber(x.square) + wholeNumber(y.square) +
                    letter(x.subsquare) + letter(y.subsquare);
    position.Dist1(fields);
    return true;
}

} // namespace geo
