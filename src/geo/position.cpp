#include "geo/position.h"

#include "base/number.h"

#include <cmath>

namespace geo {

namespace {

ArcMinutes ownPosition(const PositionFields &fields)
{
    return {base::numberOrZero(fields.txtGradN) * 60 + base::numberOrZero(fields.txtMinN),
            base::numberOrZero(fields.txtGradE) * 60 + base::numberOrZero(fields.txtMinE)};
}

} // namespace

void Position::take(PositionFields &fields, const QString &latitudeText, const QString &longitudeText)
{
    const auto north = base::parseNumber(latitudeText);
    const auto east = base::parseNumber(longitudeText);
    if (!north || !east)
        return;
    const DegreesMinutes northParts = splitDegrees(*north);
    const DegreesMinutes eastParts = splitDegrees(*east);
    fields.TXTSIRG = QString::number(northParts.degrees);
    fields.TXTSHIRM = QString::number(northParts.minutes);
    fields.TXTDG = QString::number(eastParts.degrees);
    fields.TXTDN = QString::number(eastParts.minutes);
    latitude = *north;
    longitude = *east;
}

void Position::Dist1(PositionFields &fields) const
{
    const FlatTriangle triangle = flatTriangle(ownPosition(fields), {latitude * 60, longitude * 60});
    fields.txtdist = QString::number(std::floor(triangle.distance), 'f', 0);
}

void Position::Distanc(PositionFields &fields)
{
    if (fields.TXTSIRG.isEmpty() || fields.TXTSHIRM.isEmpty() || fields.TXTDG.isEmpty() ||
        fields.TXTDN.isEmpty())
        return;
    const ArcMinutes contact{base::numberOrZero(fields.TXTSIRG) * 60 + base::numberOrZero(fields.TXTSHIRM),
                             base::numberOrZero(fields.TXTDG) * 60 + base::numberOrZero(fields.TXTDN)};
    latitude = contact.latitude / 60;
    longitude = contact.longitude / 60;
    Dist1(fields);
    const int bearing = flatBearing(ownPosition(fields), contact, -1);
    if (bearing >= 0)
        fields.txtaz = QString::number(bearing);
}

} // namespace geo
