#pragma once

#include "store/sqlite.h"
#include "store/sqltext.h"

#include <QStringList>

#include <optional>

namespace store {

/// Reads the rows of a record source once, from the first to the last, in the record source's own order.
/// Its statement stays open while it lives: nothing may write to the file meanwhile.
class RowReader {
public:
    /// `recordSource`: a table or a SELECT whose rows are rows of one table. Throws Error, also for a date in
    /// the text that is none.
    RowReader(Connection &connection, const SqlText &recordSource, const QStringList &fields);

    /// Rows of the whole result, counted at the beginning.
    [[nodiscard]] qint64 total() const noexcept { return m_total; }

    /// Goes to the next row; false at the end. Throws Error.
    [[nodiscard]] bool next() { return m_cursor->next(); }
    /// Key of the row in its table.
    [[nodiscard]] qint64 key() const noexcept { return m_cursor->number(0); }
    /// Text of the field numbered as in `fields`, UTF-8, empty for null; good until next().
    [[nodiscard]] QByteArrayView utf8(int field) const noexcept { return m_cursor->utf8(field + 1); }
    [[nodiscard]] QString text(int field) const { return QString::fromUtf8(utf8(field)); }

private:
    qint64 m_total = 0;
    std::optional<Cursor> m_cursor;
};

} // namespace store
