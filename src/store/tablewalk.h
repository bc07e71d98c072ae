#pragma once

#include "store/sqlite.h"

#include <QStringList>

#include <vector>

namespace store {

/// Goes through all rows of a table in their stored order, a chunk at a time, and writes what has been
/// changed in a chunk as one commit of whole rows: what is done stays done wherever the walk ends. Rows added
/// after its beginning are not visited. No statement stays open between two calls.
class TableWalk {
public:
    /// `read`: names of columns that are only read; `edited`: of those that may be changed, numbered behind
    /// them. Throws Error, also for an unknown table.
    TableWalk(Connection &connection, const QString &table, const QStringList &read,
              const QStringList &edited);

    /// Rows of the whole table at the beginning.
    [[nodiscard]] qint64 total() const noexcept { return m_total; }
    /// Rows read so far.
    [[nodiscard]] qint64 visited() const noexcept { return m_visited; }

    /// Reads the next chunk; false where no row is left. Throws Error, also for a column that is not there.
    [[nodiscard]] bool readChunk();
    [[nodiscard]] std::size_t rows() const noexcept { return m_keys.size(); }
    /// Text of a row's field, as changed, in UTF-8; good until a text of the chunk is set or the next one
    /// read.
    [[nodiscard]] QByteArrayView utf8(std::size_t row, std::size_t field) const
    {
        const Place &place = m_places[row * m_fieldCount + field];
        return {m_texts.data() + place.begin, place.size};
    }
    [[nodiscard]] QString text(std::size_t row, std::size_t field) const
    {
        return QString::fromUtf8(utf8(row, field));
    }
    /// `field` is one of the edited; `text` none of the walk's own.
    void setUtf8(std::size_t row, std::size_t field, QByteArrayView text);
    void setText(std::size_t row, std::size_t field, const QString &text)
    {
        setUtf8(row, field, text.toUtf8());
    }
    /// Writes the changed rows of the chunk. Gives their number. Throws Error, and then none is written.
    qint64 writeChunk();

private:
    struct Place {
        qsizetype begin; ///< in m_texts
        qsizetype size;
    };
    [[nodiscard]] Place put(QByteArrayView text);

    Connection &m_connection;
    std::size_t m_fieldCount;
    std::size_t m_firstEdited;
    QString m_readSql;
    QString m_writeSql;
    qint64 m_total = 0;
    qint64 m_visited = 0;
    qint64 m_lastKey = 0;
    qint64 m_end = 0;
    std::vector<qint64> m_keys;
    std::vector<Place> m_places;
    std::vector<char> m_texts;   ///< one behind the other: an allocation each costs more than reading it
    std::vector<bool> m_changed; ///< by row
};

} // namespace store
