#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <cstdint>
#include <vector>

namespace report {

/// Texts of rows, packed: what a report shows stays as it was read, and a million rows fit into memory.
class Snapshot {
public:
    /// `fields`: texts of each row.
    explicit Snapshot(int fields) : m_fields(fields) {}

    /// Appends the next text; after `fields` of them the next row begins.
    void add(QByteArrayView utf8);

    [[nodiscard]] qint64 rows() const noexcept;
    [[nodiscard]] QByteArrayView utf8(qint64 row, int field) const;
    [[nodiscard]] QString text(qint64 row, int field) const { return QString::fromUtf8(utf8(row, field)); }

private:
    struct Place {
        quint32 chunk;
        quint32 offset;
    };

    int m_fields;
    int m_inRow = 0;
    QByteArray m_row; ///< the one that is being appended
    std::vector<QByteArray> m_chunks;
    std::vector<Place> m_places;
};

} // namespace report
