#pragma once

#include "store/sqlite.h"

#include <array>
#include <cstdint>
#include <vector>

namespace store {

/// The country table in memory: the country of a callsign is that of the longest prefix it begins with. For
/// work on many contacts; one step a character.
class CountryTable {
public:
    /// Reads `tbldxcc`. Of several rows with one prefix the first counts, and a row without a country's name
    /// as none. Throws Error.
    explicit CountryTable(Connection &countries);

    /// Whether the callsign can be answered from here with certainty: letters, digits and signs, of sane
    /// length. Anything else (blanks, quotes, Cyrillic) is compared by the queries in ways of their own.
    [[nodiscard]] static bool isPlain(QByteArrayView call) noexcept;

    /// Country of the callsign, letter case aside; empty where no prefix matches. A callsign that is not
    /// plain is answered by its plain beginning.
    [[nodiscard]] const QByteArray &of(QByteArrayView call) const;

private:
    /// Of callsigns and of prefixes; a table with texts beyond all reason must not fill the memory.
    static constexpr qsizetype kLongest = 24;
    static constexpr char kFirst = ' ' + 1;
    static constexpr std::size_t kPlaces = 0x7f - kFirst;
    struct Node {
        std::array<std::uint32_t, kPlaces> next{};
        qsizetype name = 0;
        bool taken = false;
    };
    static std::size_t place(char c) noexcept;
    void add(QByteArrayView prefix, QByteArrayView name);

    std::vector<Node> m_nodes;
    QList<QByteArray> m_names;
};

} // namespace store
