#include "bench/conversionwork.h"

#include "bench/figures.h"
#include "bench/jetenlarge.h"
#include "foreign/jetfile.h"
#include "store/conversion.h"
#include "store/schema.h"
#include "store/sqlite.h"

#include <sqlite3.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>

#include <vector>

namespace bench {

namespace {

double milliseconds(const QElapsedTimer &timer)
{
    constexpr double kNanosecondsAMillisecond = 1e6;
    return static_cast<double>(timer.nsecsElapsed()) / kNanosecondsAMillisecond;
}

/// The reading program alone.
double bareReading(const QString &path)
{
    QElapsedTimer timer;
    timer.start();
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(foreign::defaultJetReader(), {path});
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        qFatal("the reading program does not run");
    return milliseconds(timer);
}

/// Texts of all rows one behind the other: a million rows of their own objects would not fit the memory.
struct Rows {
    QByteArray texts;
    std::vector<qsizetype> ends;
    int columns = 0;
};

Rows rowsOf(store::Connection &log)
{
    Rows rows;
    store::Cursor cursor = log.run(QStringLiteral("SELECT * FROM TBLLOG1 ORDER BY rowid"));
    rows.columns = cursor.columnCount();
    while (cursor.next())
        for (int i = 0; i < rows.columns; ++i) {
            rows.texts.append(cursor.utf8(i).data(), cursor.utf8(i).size());
            rows.ends.push_back(rows.texts.size());
        }
    return rows;
}

/// The rows into a new file with the log's table; indexes and counters stand there before the rows, or are
/// made after them.
double bareInsertion(const QString &path, const Rows &rows, bool indexedBefore)
{
    QFile::remove(path);
    QElapsedTimer timer;
    timer.start();
    const auto log = store::Connection::create(path);
    const store::TableLayout &table = store::fileLayouts().front().tables.front();
    log->exec(createTableSql(table));
    const auto makeObjects = [&] {
        for (const QString &object : table.objects)
            log->exec(object);
    };
    if (indexedBefore)
        makeObjects();
    store::Transaction transaction(*log);
    QStringList marks;
    marks.fill(QStringLiteral("?"), table.columns.size());
    const QByteArray sql =
        QStringLiteral("INSERT INTO TBLLOG1 VALUES(%1)").arg(marks.join(QLatin1Char(','))).toUtf8();
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(log->handle(), sql.constData(), -1, &statement, nullptr) != SQLITE_OK)
        throw log->lastError();
    qsizetype begin = 0;
    int column = 0;
    for (const qsizetype end : rows.ends) {
        sqlite3_bind_text(statement, ++column, rows.texts.constData() + begin, static_cast<int>(end - begin),
                          SQLITE_STATIC);
        begin = end;
        if (column < rows.columns)
            continue;
        column = 0;
        if (sqlite3_step(statement) != SQLITE_DONE || sqlite3_reset(statement) != SQLITE_OK)
            throw log->lastError();
    }
    sqlite3_finalize(statement);
    if (!indexedBefore)
        makeObjects();
    transaction.commit();
    return milliseconds(timer);
}

} // namespace

bool measureConversion(QTextStream &out, int runs, const QString &model, const QString &scratch, qint64 rows)
{
    const QString old = QDir(scratch).filePath(QStringLiteral("old.mdb"));
    const QString target = QDir(scratch).filePath(QStringLiteral("converted.mdb"));
    const qint64 made = enlargeJet(model, old, rows);
    if (made == 0)
        return false;
    out << made << " contacts in an old database of " << QFile(old).size() / 1000000 << " MB\n";
    store::ConversionOptions options;
    options.layout = &store::fileLayouts().front();
    Samples work;
    Samples reading;
    Samples before;
    Samples after;
    for (int run = 0; run < runs; ++run) {
        QFile::remove(target);
        QElapsedTimer timer;
        timer.start();
        const auto conversion = store::convertJetTo(old, target, options, {});
        work.add(milliseconds(timer));
        if (!conversion || conversion->rows() != made)
            qFatal("not every row was converted");
        reading.add(bareReading(old));
        Rows log;
        {
            store::Connection converted(target, store::OpenMode::ReadOnly);
            log = rowsOf(converted);
        }
        const QString bare = QDir(scratch).filePath(QStringLiteral("bare.mdb"));
        before.add(bareInsertion(bare, log, true));
        after.add(bareInsertion(bare, log, false));
        QFile::remove(bare);
    }
    constexpr double kMostTimesTheBareWork = 2;
    const double sum = reading.median() + before.median();
    printFigure(out, QStringLiteral("conversion, compared row by row"), work,
                Budget{kMostTimesTheBareWork * sum, {}});
    printFigure(out, QStringLiteral("  reading alone"), reading);
    printFigure(out, QStringLiteral("  insertion into the indexed table"), before);
    printFigure(out, QStringLiteral("  insertion, indexes afterwards"), after);
    out << "  that is " << QString::number(work.median() / sum, 'f', 2)
        << " times reading and inserting into the indexed table, "
        << QString::number(work.median() / (reading.median() + after.median()), 'f', 2)
        << " times reading and inserting with indexes afterwards\n";
    out.flush();
    return true;
}

} // namespace bench
