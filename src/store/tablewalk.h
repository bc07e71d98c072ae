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
    /// Text of a row's field, as changed.
    [[nodiscard]] const QString &text(std::size_t row, std::size_t field) const
    {
        return m_texts[row * m_fieldCount + field];
    }
    /// `field` is one of the edited.
    void setText(std::size_t row, std::size_t field, const QString &text);
    /// Writes the changed rows of the chunk. Gives their number. Throws Error, and then none is written.
    qint64 writeChunk();

private:
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
    std::vector<QString> m_texts;
    std::vector<bool> m_changed; ///< by row
};

} // namespace store
