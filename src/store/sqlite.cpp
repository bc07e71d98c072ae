#include "store/sqlite.h"

#include "store/functions.h"

#include <sqlite3.h>

#include <QFile>

#include <utility>

namespace store {

namespace {

constexpr int kShortWait = 40; // milliseconds; one key runs up to a dozen queries
constexpr int kLongWait = 1000;
constexpr qsizetype kKeptStatements = 160;

ErrorKind kindOf(int code)
{
    if (code == SQLITE_READONLY_DBMOVED)
        return ErrorKind::Missing; // taken away while it was open
    switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return ErrorKind::Locked;
    case SQLITE_READONLY:
        return ErrorKind::ReadOnly;
    case SQLITE_FULL:
        return ErrorKind::DiskFull;
    case SQLITE_CORRUPT:
        return ErrorKind::Damaged;
    case SQLITE_NOTADB:
        return ErrorKind::Foreign;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
        return ErrorKind::CannotOpen;
    case SQLITE_IOERR:
        return ErrorKind::InputOutput;
    case SQLITE_ERROR:
        return ErrorKind::BadText;
    default:
        return ErrorKind::Other;
    }
}

QString engineWords(sqlite3 *db)
{
    return QString::fromUtf8(sqlite3_errmsg(db));
}

} // namespace

Cursor::Cursor(Connection &connection, sqlite3_stmt *statement, bool owned) noexcept
    : m_connection(&connection), m_statement(statement), m_owned(owned)
{}

Cursor::Cursor(Cursor &&other) noexcept
    : m_connection(other.m_connection), m_statement(std::exchange(other.m_statement, nullptr)),
      m_owned(other.m_owned)
{}

Cursor::~Cursor()
{
    if (m_statement == nullptr)
        return;
    if (m_owned)
        sqlite3_finalize(m_statement);
    else
        m_connection->handBack(m_statement);
}

bool Cursor::next()
{
    switch (sqlite3_step(m_statement)) {
    case SQLITE_ROW:
        return true;
    case SQLITE_DONE:
        return false;
    default:
        throw m_connection->lastError(QString::fromUtf8(sqlite3_sql(m_statement)));
    }
}

int Cursor::columnCount() const noexcept
{
    return sqlite3_column_count(m_statement);
}

QString Cursor::columnName(int column) const
{
    return QString::fromUtf8(sqlite3_column_name(m_statement, column));
}

QString Cursor::text(int column) const
{
    return QString::fromUtf8(utf8(column));
}

QByteArrayView Cursor::utf8(int column) const noexcept
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    return {bytes, bytes == nullptr ? 0 : sqlite3_column_bytes(m_statement, column)};
}

qint64 Cursor::number(int column) const noexcept
{
    return sqlite3_column_int64(m_statement, column);
}

bool Cursor::isNull(int column) const noexcept
{
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

Connection::Connection(const QString &path, OpenMode mode)
    : Connection(path, mode == OpenMode::ReadWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY)
{}

std::unique_ptr<Connection> Connection::create(const QString &path)
{
    return std::unique_ptr<Connection>(
        new Connection(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_EXCLUSIVE));
}

Connection::Connection(const QString &path, int flags) : m_path(path)
{
    try {
        open(flags);
    } catch (...) {
        close();
        throw;
    }
}

Connection::~Connection()
{
    close();
}

void Connection::open(int flags)
{
    const int code =
        sqlite3_open_v2(QFile::encodeName(m_path).constData(), &m_db, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    if (m_db == nullptr)
        throw Error(ErrorKind::Other, m_path, QString::fromUtf8(sqlite3_errstr(code)), {}, code);
    sqlite3_extended_result_codes(m_db, 1);
    if (code != SQLITE_OK)
        throw lastError();
    setPatience(kShortWait);
    // A file is data: its schema may call nothing but the engine's own harmless functions.
    sqlite3_db_config(m_db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(m_db, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    registerFunctions(*this);
    (void)singleNumber(QStringLiteral("PRAGMA schema_version")); // the first read of the file
    if (!readOnly())
        exec(QStringLiteral("PRAGMA journal_mode=DELETE"));
    exec(QStringLiteral("PRAGMA synchronous=EXTRA"));
    exec(QStringLiteral("PRAGMA cache_size=-16000"));
    exec(QStringLiteral("PRAGMA temp_store=MEMORY"));
}

void Connection::close() noexcept
{
    for (const Cached &cached : std::as_const(m_cache))
        sqlite3_finalize(cached.statement);
    m_cache.clear();
    sqlite3_close_v2(m_db);
    m_db = nullptr;
}

bool Connection::readOnly() const noexcept
{
    return sqlite3_db_readonly(m_db, "main") == 1;
}

sqlite3_stmt *Connection::prepare(const QByteArray &sql, bool keep)
{
    sqlite3_stmt *statement = nullptr;
    const char *rest = nullptr;
    const int code = sqlite3_prepare_v3(m_db, sql.constData(), static_cast<int>(sql.size()),
                                        keep ? SQLITE_PREPARE_PERSISTENT : 0, &statement, &rest);
    if (code != SQLITE_OK)
        throw lastError(QString::fromUtf8(sql));
    if (statement == nullptr || !QByteArray(rest).trimmed().isEmpty()) {
        sqlite3_finalize(statement);
        throw Error(ErrorKind::BadText, m_path, QStringLiteral("одна команда за раз"),
                    QString::fromUtf8(sql));
    }
    return statement;
}

void Connection::handBack(sqlite3_stmt *statement) noexcept
{
    sqlite3_reset(statement); // the error, if any, was thrown by the step
    sqlite3_clear_bindings(statement);
    for (Cached &cached : m_cache)
        if (cached.statement == statement)
            cached.inUse = false;
}

Cursor Connection::run(const QString &sql, const Values &values)
{
    ++m_statementCount;
    const QByteArray key = sql.toUtf8();
    auto found = m_cache.find(key);
    const bool owned =
        found != m_cache.end() && found->inUse; // the same text runs already: a second statement
    sqlite3_stmt *statement = nullptr;
    if (owned) {
        statement = prepare(key, false);
    } else if (found != m_cache.end()) {
        statement = found->statement;
    } else {
        if (m_cache.size() >= kKeptStatements) {
            auto oldest = m_cache.end();
            for (auto it = m_cache.begin(); it != m_cache.end(); ++it)
                if (!it->inUse && (oldest == m_cache.end() || it->lastUse < oldest->lastUse))
                    oldest = it;
            if (oldest != m_cache.end()) {
                sqlite3_finalize(oldest->statement);
                m_cache.erase(oldest);
            }
        }
        statement = prepare(key, true);
        found = m_cache.insert(key, Cached{statement});
    }
    if (!owned) {
        found->inUse = true;
        found->lastUse = ++m_useCounter;
    }
    Cursor cursor(*this, statement, owned);
    int index = 0;
    for (const Value &value : values) {
        ++index;
        int code = SQLITE_OK;
        if (const auto *number = std::get_if<qint64>(&value)) {
            code = sqlite3_bind_int64(statement, index, *number);
        } else {
            const QByteArray bytes = std::get<QString>(value).toUtf8();
            code = sqlite3_bind_text(statement, index, bytes.constData(), static_cast<int>(bytes.size()),
                                     SQLITE_TRANSIENT);
        }
        if (code != SQLITE_OK)
            throw lastError(sql);
    }
    return cursor;
}

void Connection::exec(const QString &sql, const Values &values)
{
    Cursor cursor = run(sql, values);
    while (cursor.next()) {
    }
}

void Connection::execScript(const QString &script)
{
    ++m_statementCount;
    if (sqlite3_exec(m_db, script.toUtf8().constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw lastError(script);
}

std::optional<QString> Connection::single(const QString &sql, const Values &values)
{
    Cursor cursor = run(sql, values);
    if (!cursor.next())
        return std::nullopt;
    return cursor.text(0);
}

qint64 Connection::singleNumber(const QString &sql, const Values &values)
{
    Cursor cursor = run(sql, values);
    return cursor.next() ? cursor.number(0) : 0;
}

qint64 Connection::lastRowId() const noexcept
{
    return sqlite3_last_insert_rowid(m_db);
}

qint64 Connection::changes() const noexcept
{
    return sqlite3_changes64(m_db);
}

bool Connection::inTransaction() const noexcept
{
    return sqlite3_get_autocommit(m_db) == 0;
}

Error Connection::lastError(const QString &sql) const
{
    const int code = sqlite3_extended_errcode(m_db);
    if (code == SQLITE_ERROR && engineWords(m_db).startsWith(QLatin1String("no such table")))
        return {ErrorKind::MissingTable, m_path, engineWords(m_db), sql, code};
    return {kindOf(code), m_path, engineWords(m_db), sql, code};
}

void Connection::setPatience(int milliseconds) noexcept
{
    sqlite3_busy_timeout(m_db, milliseconds);
}

Patience::Patience(Connection &connection) noexcept : m_connection(connection)
{
    m_connection.setPatience(kLongWait);
}

Patience::~Patience()
{
    m_connection.setPatience(kShortWait);
}

Transaction::Transaction(Connection &connection) : m_connection(connection)
{
    m_connection.exec(QStringLiteral("BEGIN IMMEDIATE"));
}

Transaction::~Transaction()
{
    if (!m_open || !m_connection.inTransaction()) // the engine rolls back by itself on a full disk
        return;
    try {
        m_connection.exec(QStringLiteral("ROLLBACK"));
    } catch (const Error &) {
        // The connection's next BEGIN reports the trouble; the journal undoes the work at the next opening.
    }
}

void Transaction::commit()
{
    m_connection.exec(QStringLiteral("COMMIT"));
    m_open = false;
}

} // namespace store
