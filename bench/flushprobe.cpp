#include "bench/flushprobe.h"

#include "store/sqlite.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <sqlite3.h>

#include <algorithm>

namespace bench {

namespace {

constexpr qint64 kFiller = 3500; // a row that leaves no room for a second one on its page

} // namespace

FlushProbe::FlushProbe(const QString &folder)
    : m_path(QDir(folder).filePath(QStringLiteral("flush-probe.tmp")))
{
    QFile::remove(m_path);
    m_connection = store::Connection::create(m_path);
    m_connection->exec(QStringLiteral("CREATE TABLE probe(id INTEGER PRIMARY KEY,filler BLOB)"));
    store::Transaction transaction(*m_connection);
    for (qint64 i = 1; i <= kMostPages; ++i)
        m_connection->exec(QStringLiteral("INSERT INTO probe VALUES(?,randomblob(?))"), {i, kFiller});
    transaction.commit();
}

FlushProbe::~FlushProbe()
{
    m_connection.reset();
    QFile::remove(m_path);
}

double FlushProbe::commit(int pages)
{
    constexpr double kNanosecondsAMillisecond = 1e6;
    const qint64 rows = std::clamp(pages - 1, 1, kMostPages); // page 1, with the change counter, is the other
    QElapsedTimer timer;
    timer.start();
    m_connection->exec(QStringLiteral("UPDATE probe SET filler=randomblob(?) WHERE id<=?"), {kFiller, rows});
    return static_cast<double>(timer.nsecsElapsed()) / kNanosecondsAMillisecond;
}

int pagesWritten(store::Connection &connection)
{
    int current = 0;
    int highest = 0;
    sqlite3_db_status(connection.handle(), SQLITE_DBSTATUS_CACHE_WRITE, &current, &highest, 1);
    return current;
}

} // namespace bench
