#pragma once

#include "store/library.h"
#include "store/sqlite.h"

#include <QByteArray>
#include <QStringList>

#include <functional>
#include <span>
#include <vector>

struct sqlite3_stmt;

namespace store {

/// Adds many rows to a table, a chunk of whole rows being one commit: what is committed stays, wherever the
/// work ends.
class RowWriter {
public:
    /// A commit writes every index page that its rows have touched, and callsigns in the order of time touch
    /// most of them: with fewer rows a commit, a million contacts take twice the time.
    static constexpr qint64 kChunkRows = 100'000;

    /// Columns that are not named take their defaults. Throws Error, also for an unknown table or column.
    RowWriter(Connection &connection, const QString &table, const QStringList &columns);
    RowWriter(const RowWriter &) = delete;
    RowWriter &operator=(const RowWriter &) = delete;
    /// The rows since the last commit are given up.
    ~RowWriter();

    /// Adds a row with these texts in UTF-8, one a column. The chunk is committed when it is full. Gives the
    /// row's key. Throws Error, and then no row of the current chunk is in the file.
    qint64 add(std::span<const QByteArrayView> texts);
    /// Commits what has been added. Throws Error like add().
    void commit();

    /// Rows that are in the file for good.
    [[nodiscard]] qint64 committed() const noexcept { return m_committed; }

private:
    void giveUp() noexcept;

    Connection &m_connection;
    Patience m_patience; ///< a full chunk is not lost to another program's short lock
    QString m_sql;
    sqlite3_stmt *m_statement = nullptr;
    qint64 m_inChunk = 0;
    qint64 m_committed = 0;
    bool m_open = false; ///< a transaction of ours
};

/// Takes rows out by their keys, all or none. A key that is no longer there is passed over, and so is one
/// whose row `stillTheSame` does not know again; it is given the index of the key and the texts of `columns`.
/// Gives the number of rows taken out. Throws Error.
qint64
removeRows(Connection &connection, const QString &table, std::span<const qint64> keys,
           const QStringList &columns,
           const std::function<bool(std::size_t index, std::span<const QByteArrayView> texts)> &stillTheSame,
           const Progress &progress = {});

} // namespace store
