#pragma once

#include "store/sqlite.h"

#include <QByteArrayView>

#include <cstdint>
#include <utility>
#include <vector>

namespace interchange {

/// A text in 16 bytes: equal for equal texts, and different for different ones as far as anybody will see.
/// Good within one run of the program.
using Fingerprint = std::pair<std::uint64_t, std::uint64_t>;
[[nodiscard]] Fingerprint fingerprint(QByteArrayView text);

/// Which contacts a log holds at one moment, by callsign (letter case aside), date and band as stored.
class HeldContacts {
public:
    /// Goes through the whole table. Throws store::Error.
    HeldContacts(store::Connection &log, const QString &table);

    [[nodiscard]] bool contains(QByteArrayView call, QByteArrayView date, QByteArrayView band) const;

private:
    std::vector<Fingerprint> m_contacts; ///< sorted
};

} // namespace interchange
