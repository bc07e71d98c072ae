#pragma once

#include "bench/figures.h"
#include "store/error.h"
#include "store/folder.h"
#include "store/sqlite.h"

#include <sqlite3.h>

#include <QElapsedTimer>
#include <QFile>

namespace bench {

inline double milliseconds(const QElapsedTimer &timer)
{
    constexpr double kNanosecondsAMillisecond = 1e6;
    return static_cast<double>(timer.nsecsElapsed()) / kNanosecondsAMillisecond;
}

inline QElapsedTimer started()
{
    QElapsedTimer timer;
    timer.start();
    return timer;
}

/// A commit of the run must not have to write the copy as well: it is flushed at once.
inline void copyFile(const QString &from, const QString &to)
{
    QFile::remove(to);
    QFile file(to);
    if (!QFile::copy(from, to) || !file.open(QIODevice::ReadWrite))
        throw store::Error(store::ErrorKind::InputOutput, to, file.errorString());
    store::syncFile(file);
}

inline qint64 contactsOf(const QString &path)
{
    store::Connection log(path, store::OpenMode::ReadOnly);
    return log.singleNumber(QStringLiteral("SELECT count(*) FROM TBLLOG1"));
}

/// A statement of the engine's own, without anything of ours around it.
class BareStatement {
public:
    BareStatement(store::Connection &connection, const char *sql) : m_connection(connection)
    {
        check(sqlite3_prepare_v2(connection.handle(), sql, -1, &m_statement, nullptr));
    }
    BareStatement(const BareStatement &) = delete;
    BareStatement &operator=(const BareStatement &) = delete;
    ~BareStatement() { sqlite3_finalize(m_statement); }

    bool step()
    {
        const int code = sqlite3_step(m_statement);
        if (code != SQLITE_ROW && code != SQLITE_DONE)
            throw m_connection.lastError();
        return code == SQLITE_ROW;
    }
    void run()
    {
        step();
        check(sqlite3_reset(m_statement));
    }
    void reset() { check(sqlite3_reset(m_statement)); }
    /// `text` must stay until the next run.
    void bind(int index, const QByteArray &text)
    {
        check(sqlite3_bind_text(m_statement, index, text.constData(), static_cast<int>(text.size()),
                                SQLITE_STATIC));
    }
    void bind(int index, qint64 number) { check(sqlite3_bind_int64(m_statement, index, number)); }
    [[nodiscard]] qint64 number(int column) { return sqlite3_column_int64(m_statement, column); }
    /// Good until the next step.
    [[nodiscard]] QByteArray text(int column)
    {
        const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
        return QByteArray::fromRawData(bytes, sqlite3_column_bytes(m_statement, column));
    }

private:
    void check(int code)
    {
        if (code != SQLITE_OK)
            throw m_connection.lastError();
    }

    store::Connection &m_connection;
    sqlite3_stmt *m_statement = nullptr;
};

/// The operation against the bare work, its budget made from that: twice as long.
void printAgainst(QTextStream &out, const QString &name, const Samples &work, const Samples &bare);

} // namespace bench
