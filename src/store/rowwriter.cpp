#include "store/rowwriter.h"

#include "store/dialect.h"

#include <sqlite3.h>

namespace store {

namespace {

QStringList bracketed(const QStringList &names)
{
    QStringList list;
    for (const QString &name : names)
        list.append(bracketedName(name));
    return list;
}

} // namespace

RowWriter::RowWriter(Connection &connection, const QString &table, const QStringList &columns)
    : m_connection(connection), m_patience(connection)
{
    const QStringList marks(columns.size(), QStringLiteral("?"));
    m_sql = QStringLiteral("INSERT INTO %1(%2) VALUES(%3)")
                .arg(bracketedName(table), bracketed(columns).join(QLatin1Char(',')),
                     marks.join(QLatin1Char(',')));
    // Not by way of the connection's own statements: a text is bound where it lies, not copied twice.
    const QByteArray sql = m_sql.toUtf8();
    if (sqlite3_prepare_v3(connection.handle(), sql.constData(), static_cast<int>(sql.size()),
                           SQLITE_PREPARE_PERSISTENT, &m_statement, nullptr) != SQLITE_OK)
        throw connection.lastError(m_sql);
}

RowWriter::~RowWriter()
{
    giveUp();
    sqlite3_finalize(m_statement);
}

void RowWriter::giveUp() noexcept
{
    sqlite3_reset(m_statement); // its error, if any, has been told by the step
    m_inChunk = 0;
    if (!m_open)
        return;
    m_open = false;
    if (!m_connection.inTransaction()) // the engine rolls back by itself on a full disk
        return;
    try {
        m_connection.exec(QStringLiteral("ROLLBACK"));
    } catch (const Error &) {
        // The journal undoes the work at the next opening.
    }
}

qint64 RowWriter::add(std::span<const QByteArrayView> texts)
{
    if (!m_open) {
        m_connection.exec(QStringLiteral("BEGIN IMMEDIATE"));
        m_open = true;
    }
    int index = 0;
    bool bound = true;
    for (const QByteArrayView text : texts) {
        // An empty view may have no address, which would be bound as null.
        const char *bytes = text.isEmpty() ? "" : text.data();
        bound = bound &&
                sqlite3_bind_text64(m_statement, ++index, bytes, static_cast<sqlite3_uint64>(text.size()),
                                    SQLITE_STATIC, SQLITE_UTF8) == SQLITE_OK;
    }
    if (!bound || sqlite3_step(m_statement) != SQLITE_DONE) {
        const Error error = m_connection.lastError(m_sql);
        giveUp();
        throw Error(error);
    }
    sqlite3_reset(m_statement);
    const qint64 key = m_connection.lastRowId();
    if (++m_inChunk == kChunkRows)
        commit();
    return key;
}

void RowWriter::commit()
{
    if (!m_open)
        return;
    try {
        m_connection.exec(QStringLiteral("COMMIT"));
    } catch (const Error &) {
        giveUp();
        throw;
    }
    m_open = false;
    m_committed += m_inChunk;
    m_inChunk = 0;
}

qint64 removeRows(Connection &connection, const QString &table, std::span<const qint64> keys,
                  const QStringList &columns,
                  const std::function<bool(std::size_t, std::span<const QByteArrayView>)> &stillTheSame,
                  const Progress &progress)
{
    constexpr std::size_t kRowsPerReport = 2000;
    const QString read = QStringLiteral("SELECT %1 FROM %2 WHERE rowid=?")
                             .arg(bracketed(columns).join(QLatin1Char(',')), bracketedName(table));
    const QString remove = QStringLiteral("DELETE FROM %1 WHERE rowid=?").arg(bracketedName(table));
    qint64 removed = 0;
    const Patience patience(connection);
    Transaction transaction(connection);
    std::vector<QByteArrayView> texts(static_cast<std::size_t>(columns.size()));
    for (std::size_t i = 0; i < keys.size(); ++i) {
        bool same = false;
        {
            Cursor cursor = connection.run(read, {keys[i]});
            if (cursor.next()) {
                for (std::size_t column = 0; column < texts.size(); ++column)
                    texts[column] = cursor.utf8(static_cast<int>(column));
                same = stillTheSame(i, texts);
            }
        }
        if (same) {
            connection.exec(remove, {keys[i]});
            ++removed;
        }
        if (progress && i % kRowsPerReport == 0)
            progress(static_cast<qint64>(i), static_cast<qint64>(keys.size()));
    }
    transaction.commit();
    if (progress)
        progress(static_cast<qint64>(keys.size()), static_cast<qint64>(keys.size()));
    return removed;
}

} // namespace store
