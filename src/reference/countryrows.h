#pragma once

#include "store/sqlite.h"

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>

#include <optional>
#include <vector>

namespace reference {

/// A row of the country table, its texts as they are stored.
struct CountryRow {
    QString prf;
    QString pref; ///< principal prefix of the country, column PREF
    QString strana;
    QString kont;
    QString cq;
    QString iaru;
    QString gradN; ///< latitude in degrees, north positive, decimal comma
    QString gradE; ///< longitude in degrees, east positive, decimal comma
    QString dolg;  ///< longitude again; this one is read
    QString shir;  ///< latitude again; this one is read

    [[nodiscard]] bool operator==(const CountryRow &) const = default;
};

struct StoredCountryRow {
    qint64 key = 0; ///< in the table
    CountryRow row;
    bool own = false; ///< added or changed by the operator
};

/// Degrees, north and east positive.
struct Coordinates {
    double latitude = 0;
    double longitude = 0;
};

/// The country table as it was read, in its stored order.
class CountryRows {
public:
    /// Throws store::Error.
    explicit CountryRows(store::Connection &countries);

    [[nodiscard]] const std::vector<StoredCountryRow> &rows() const noexcept { return m_rows; }
    /// Changes with every text, mark and key of the table.
    [[nodiscard]] const QByteArray &state() const noexcept { return m_state; }

    /// The row that counts for a key in upper case: the first stored one. Null where there is none.
    [[nodiscard]] const StoredCountryRow *row(const QString &prf) const;
    /// Whether one of the rows with this key is the operator's.
    [[nodiscard]] bool isOwn(const QString &prf) const { return m_own.contains(prf); }
    /// Whether several rows have this key.
    [[nodiscard]] bool isRepeated(const QString &prf) const { return m_repeated.contains(prf); }

    struct Country {
        QString pref; ///< as it is stored
        QString name; ///< of its first row with a name, if possible one that is not the operator's
        bool nameIsOwn = false;
    };
    /// By principal prefix, folded. Null where the table has no row of that country.
    [[nodiscard]] const Country *country(const QString &pref) const;
    [[nodiscard]] bool isName(const QString &folded) const { return m_names.contains(folded); }

private:
    void index(std::size_t number);

    std::vector<StoredCountryRow> m_rows;
    QByteArray m_state;
    QHash<QString, std::size_t> m_byPrf;
    QSet<QString> m_own;
    QSet<QString> m_repeated;
    QHash<QString, Country> m_countries;
    QSet<QString> m_names; ///< folded
};

/// Without blanks at the ends and in upper case: principal prefixes and names are compared so.
[[nodiscard]] QString folded(const QString &text);

/// A key that callsigns can begin with: letters A-Z in either case, digits and "/".
[[nodiscard]] bool isCountryKey(const QString &prf);

/// Nothing where the row has no latitude or no longitude.
[[nodiscard]] std::optional<Coordinates> coordinates(const CountryRow &row);
/// Degrees as the table has them: two decimals and a decimal comma.
[[nodiscard]] QString degreesText(double degrees);
/// Equal as they are written in the table.
[[nodiscard]] bool samePlace(const Coordinates &a, const Coordinates &b);
/// Writes all four fields.
void setCoordinates(CountryRow &row, const Coordinates &place);

} // namespace reference
