#pragma once

#include "store/error.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <memory>
#include <optional>
#include <variant>

struct sqlite3;
struct sqlite3_stmt;

namespace store {

/// A value bound to a parameter.
using Value = std::variant<qint64, QString>;
using Values = QList<Value>;

class Connection;

/// Running statement. While it lives its statement may hold a read lock; it is reset when it goes, so no
/// statement stays open across a write.
class Cursor {
public:
    Cursor(Cursor &&other) noexcept;
    Cursor(const Cursor &) = delete;
    Cursor &operator=(const Cursor &) = delete;
    Cursor &operator=(Cursor &&) = delete;
    ~Cursor();

    /// Steps to the next row; false at the end. Throws Error.
    bool next();

    [[nodiscard]] int columnCount() const noexcept;
    [[nodiscard]] QString columnName(int column) const;
    /// Text of a column, empty for null.
    [[nodiscard]] QString text(int column) const;
    /// The same in UTF-8, good until the next step.
    [[nodiscard]] QByteArrayView utf8(int column) const noexcept;
    [[nodiscard]] qint64 number(int column) const noexcept;
    [[nodiscard]] bool isNull(int column) const noexcept;

private:
    friend class Connection;
    Cursor(Connection &connection, sqlite3_stmt *statement, bool owned) noexcept;

    Connection *m_connection;
    sqlite3_stmt *m_statement;
    bool m_owned; ///< finalize instead of handing back to the cache
};

enum class OpenMode { ReadWrite, ReadOnly };

/// One open SQLite file. One per file and process, used from one thread.
class Connection {
public:
    /// Opens an existing database; never creates one. Throws Error where the file is no readable database.
    /// The file's journal is a rollback journal with full synchronisation: a commit that returned survives a
    /// power cut, and a copied file is complete.
    Connection(const QString &path, OpenMode mode);
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;
    ~Connection();

    /// Creates a new empty database at `path`, which must not exist, and opens it.
    [[nodiscard]] static std::unique_ptr<Connection> create(const QString &path);

    [[nodiscard]] const QString &path() const noexcept { return m_path; }
    [[nodiscard]] bool readOnly() const noexcept;

    /// Starts a statement; it runs as the cursor is stepped. Prepared statements are kept and used again.
    [[nodiscard]] Cursor run(const QString &sql, const Values &values = {});
    /// Runs a statement to its end.
    void exec(const QString &sql, const Values &values = {});
    /// Runs several statements without parameters, separated by ";". For schema texts of our own.
    void execScript(const QString &script);
    /// First column of the first row, or nothing.
    [[nodiscard]] std::optional<QString> single(const QString &sql, const Values &values = {});
    [[nodiscard]] qint64 singleNumber(const QString &sql, const Values &values = {});

    [[nodiscard]] qint64 lastRowId() const noexcept;
    [[nodiscard]] qint64 changes() const noexcept;
    [[nodiscard]] bool inTransaction() const noexcept;
    /// Statements started since the connection was opened.
    [[nodiscard]] qint64 statementCount() const noexcept { return m_statementCount; }

    /// How long a statement waits for another program's lock, in milliseconds. Short unless set: a key press
    /// must not freeze behind it.
    void setPatience(int milliseconds) noexcept;

    /// The file keeps the counters per country that queries may use instead of counting.
    [[nodiscard]] bool keepsCounters() const noexcept { return m_keepsCounters; }
    void setKeepsCounters(bool keeps) noexcept { m_keepsCounters = keeps; }
    /// The file keeps its contacts counted by band, country and cards.
    [[nodiscard]] bool keepsTally() const noexcept { return m_keepsTally; }
    void setKeepsTally(bool keeps) noexcept { m_keepsTally = keeps; }

    [[nodiscard]] sqlite3 *handle() const noexcept { return m_db; }

    /// Error for the engine's last failure on this connection.
    [[nodiscard]] Error lastError(const QString &sql = {}) const;

private:
    friend class Cursor;
    Connection(const QString &path, int flags);
    void open(int flags);
    void close() noexcept;
    [[nodiscard]] sqlite3_stmt *prepare(const QByteArray &sql, bool keep);
    void handBack(sqlite3_stmt *statement) noexcept;

    struct Cached {
        sqlite3_stmt *statement = nullptr;
        bool inUse = false;
        quint64 lastUse = 0;
    };

    QString m_path;
    sqlite3 *m_db = nullptr;
    QHash<QByteArray, Cached> m_cache;
    quint64 m_useCounter = 0;
    qint64 m_statementCount = 0;
    bool m_keepsCounters = false;
    bool m_keepsTally = false;
};

/// Lets a connection wait longer for another program's lock as long as it lives.
class Patience {
public:
    explicit Patience(Connection &connection) noexcept;
    Patience(const Patience &) = delete;
    Patience &operator=(const Patience &) = delete;
    ~Patience();

private:
    Connection &m_connection;
};

/// BEGIN IMMEDIATE ... COMMIT; rolls back when it goes without commit().
class Transaction {
public:
    explicit Transaction(Connection &connection);
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;
    ~Transaction();

    void commit();

private:
    Connection &m_connection;
    bool m_open = true;
};

} // namespace store
