#pragma once

#include "foreign/error.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QDate>
#include <QList>
#include <QString>

#include <optional>

namespace foreign {

/// Degrees; north and EAST positive. The file itself writes longitudes west positive.
struct CountryPosition {
    double latitude = 0;
    double longitude = 0;
};

/// A key of a country with what the file says of it apart from its country.
struct CountryKey {
    QString text;       ///< A-Z, 0-9 and "/" with at least one letter or digit; upper case
    bool exact = false; ///< a whole callsign, not the beginning of many
    std::optional<int> cqZone;
    std::optional<int> ituZone;
    QString continent; ///< empty where the country's holds
    std::optional<CountryPosition> position;
    std::optional<double> offset; ///< see CountryEntity::offset
    qint64 line = 0;              ///< of the file, from 1
};

/// A record of the file.
struct CountryEntity {
    QString name;      ///< as written, blanks simplified; never empty
    int cqZone = 0;    ///< 1 to 40
    int ituZone = 0;   ///< 1 to 90
    QString continent; ///< AF, AN, AS, EU, NA, OC or SA
    CountryPosition position;
    double offset = 0;      ///< hours that local time is behind UTC: 5 for New York, -3 for Moscow
    QString prefix;         ///< primary prefix as written, without its star: "DL", "3D2/c"
    bool starred = false;   ///< counts for another award only and is no country of its own
    QList<CountryKey> keys; ///< at least one
    qint64 line = 0;        ///< where the record begins, from 1
};

/// The radio community's list of countries.
struct CountryFile {
    QList<CountryEntity> entities; ///< as they stand in the file; each primary prefix once
    /// Day of issue, which the file hides in an entry like "=VER20230501"; such entries are no keys here.
    std::optional<QDate> issued;
};

/// Reads a country file in its text form. A record is
///   Name: CQ zone: ITU zone: Continent: Latitude: Longitude: Offset: Primary prefix:
/// in one line, then keys separated by commas, over as many lines as it takes, and a semicolon. A key may
/// carry (CQ zone), [ITU zone], <latitude/longitude>, {continent} and ~offset~; "=" before it makes it a
/// whole callsign. A line that begins with "#" is a remark. Names are in UTF-8 or Latin-1. Throws Error with
/// the line where anything is not so, be it in one key: a file is read whole or not at all.
[[nodiscard]] CountryFile readCountries(QByteArrayView bytes);

/// The same from a file; Error also where it cannot be read or is larger than any such file could be.
[[nodiscard]] CountryFile readCountriesFile(const QString &path);

} // namespace foreign
