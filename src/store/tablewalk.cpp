#include "store/tablewalk.h"

#include "store/dialect.h"

#include <limits>

namespace store {

namespace {

constexpr int kChunkRows = 10000;

} // namespace

TableWalk::TableWalk(Connection &connection, const QString &table, const QStringList &read,
                     const QStringList &edited)
    : m_connection(connection), m_fieldCount(static_cast<std::size_t>(read.size() + edited.size())),
      m_firstEdited(static_cast<std::size_t>(read.size()))
{
    QStringList names;
    QStringList settings; // of the edited ones alone: an index over a column that is only read is left alone
    for (const QString &field : read)
        names.append(bracketedName(field));
    for (const QString &field : edited) {
        names.append(bracketedName(field));
        settings.append(bracketedName(field) + QStringLiteral("=?"));
    }
    const QString target = bracketedName(table);
    m_readSql = QStringLiteral("SELECT rowid,%1 FROM %2 WHERE rowid>? AND rowid<=? ORDER BY rowid LIMIT %3")
                    .arg(names.join(QLatin1Char(',')), target)
                    .arg(kChunkRows);
    m_writeSql =
        QStringLiteral("UPDATE %1 SET %2 WHERE rowid=?").arg(target, settings.join(QLatin1Char(',')));
    m_total = m_connection.singleNumber(QStringLiteral("SELECT count(*) FROM %1").arg(target));
    m_end = m_connection.singleNumber(QStringLiteral("SELECT max(rowid) FROM %1").arg(target));
    m_lastKey = std::numeric_limits<qint64>::min();
}

bool TableWalk::readChunk()
{
    m_keys.clear();
    m_places.clear();
    m_texts.clear();
    m_changed.clear();
    if (m_total == 0)
        return false;
    Cursor cursor = m_connection.run(m_readSql, {m_lastKey, m_end});
    while (cursor.next()) {
        m_keys.push_back(cursor.number(0));
        for (std::size_t field = 0; field < m_fieldCount; ++field)
            m_places.push_back(put(cursor.utf8(static_cast<int>(field) + 1)));
    }
    if (m_keys.empty())
        return false;
    m_lastKey = m_keys.back();
    m_visited += static_cast<qint64>(m_keys.size());
    m_changed.assign(m_keys.size(), false);
    return true;
}

TableWalk::Place TableWalk::put(QByteArrayView text)
{
    const auto begin = static_cast<qsizetype>(m_texts.size());
    m_texts.insert(m_texts.end(), text.begin(), text.end());
    return {begin, text.size()};
}

void TableWalk::setUtf8(std::size_t row, std::size_t field, QByteArrayView text)
{
    if (utf8(row, field) == text)
        return;
    m_places[row * m_fieldCount + field] = put(text);
    m_changed[row] = true;
}

qint64 TableWalk::writeChunk()
{
    qint64 written = 0;
    std::size_t row = 0;
    while (row < m_changed.size() && !m_changed[row])
        ++row;
    if (row == m_changed.size())
        return 0;
    const Patience patience(m_connection);
    Transaction transaction(m_connection);
    for (; row < m_changed.size(); ++row) {
        if (!m_changed[row])
            continue;
        Values values;
        for (std::size_t field = m_firstEdited; field < m_fieldCount; ++field)
            values.append(text(row, field));
        values.append(m_keys[row]);
        m_connection.exec(m_writeSql, values);
        ++written;
    }
    transaction.commit();
    m_changed.assign(m_changed.size(), false);
    return written;
}

} // namespace store
