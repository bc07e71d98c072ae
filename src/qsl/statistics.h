#pragma once

#include "qsl/sources.h"

#include <array>

namespace qsl {

inline constexpr int kBands = 9;
/// The band texts of the rows, as the log holds them.
extern const std::array<const char16_t *, kBands> kBandTexts;

/// The count boxes as they are shown: decimal numbers, or empty.
struct Counts {
    using Column = std::array<QString, kBands>;
    Column sent;
    Column received;
    Column worked;
    std::array<QString, 3> totals; ///< different countries over all bands: sent, received, worked
    QString confirmedCalls;        ///< different callsigns from which a card has come
    QString contacts;
    QString calls;
};

enum class Selection { All, Country, Region };

/// What the lists and counts are about: everything, a country, a Russian region; goes round in this order.
class Selector {
public:
    void advance() noexcept { m_step = m_step == kSteps ? 1 : m_step + 1; }
    [[nodiscard]] Selection selection() const noexcept;
    [[nodiscard]] QString caption() const;
    /// Heading over the prefix lists.
    [[nodiscard]] QString heading() const;

private:
    static constexpr int kSteps = 3;
    int m_step = 0;
};

/// The counts of the bureau. Each is the number of rows of a query; where a query fails, the boxes before it
/// hold their new texts. The functions throw store::Error.
class Statistics {
public:
    explicit Statistics(Sources &sources) : m_sources(sources) {}

    /// Empties the first six bands. The other three keep their counts until the next count overwrites them:
    /// operators know the table so.
    static void clearCounts(Counts &counts);
    /// Empties all nine bands.
    static void clearAllBands(Counts &counts);

    /// Contacts with one country.
    void countCountry(const QString &country, Counts &counts);
    /// Different callsigns of one Russian region: callsigns, where a country counts contacts.
    void countRegion(const QString &region, Counts &counts);
    /// Different countries, per band and over all bands.
    void countCountries(Counts &counts);
    /// The whole log. A count of an empty result leaves its box as it is.
    void countLog(Counts &counts);

    /// Country of a callsign: the one with the longest prefix that begins it; `before` where none does.
    [[nodiscard]] QString countryOfCall(const QString &call, const QString &before);
    /// Country with a principal prefix; empty where there is none.
    [[nodiscard]] QString countryOfPrincipalPrefix(const QString &prefix);

private:
    [[nodiscard]] QString countRows(const store::SqlText &rows);
    void countInto(const store::SqlText &rows, QString &box);

    Sources &m_sources;
};

} // namespace qsl
