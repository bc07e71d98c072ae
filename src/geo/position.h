#pragma once

#include "geo/distance.h"

#include <QString>

namespace geo {

/// The coordinate boxes of the locator panel, the boxes with the result, and the own position, as texts.
struct PositionFields {
    QString TXTSIRG;  ///< latitude, whole degrees
    QString TXTSHIRM; ///< latitude, whole minutes
    QString TXTDG;    ///< longitude, whole degrees
    QString TXTDN;    ///< longitude, whole minutes
    QString TSHIR;    ///< "N" or "S"
    QString TDOLG;    ///< "E" or "W"
    QString TXTLOK;   ///< locator
    QString txtdist;  ///< distance, whole km
    QString txtaz;    ///< bearing, whole degrees
    QString txtGradN; ///< own latitude, degrees
    QString txtMinN;
    QString txtGradE; ///< own longitude, degrees
    QString txtMinE;
};

/// Distance and bearing of the contact. The own station always counts as north and east.
class Position {
public:
    /// Contact position in signed decimal degrees, north and east positive.
    double latitude = 0;
    double longitude = 0;

    /// Puts a position from a reference table into the coordinate boxes and the working values.
    /// `latitudeText` and `longitudeText` are signed decimal degrees; where one is no number nothing changes.
    void take(PositionFields &fields, const QString &latitudeText, const QString &longitudeText);

    /// Distance from the working values into `txtdist`, cut to whole km.
    void Dist1(PositionFields &fields) const;

    /// Rebuilds the working values from the four coordinate boxes (all must be filled, else nothing happens;
    /// the hemisphere letters are not read), then sets distance and bearing. At the own place the bearing box
    /// stays.
    void Distanc(PositionFields &fields);
};

} // namespace geo
