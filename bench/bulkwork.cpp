#include "bench/bulkwork.h"

#include "bench/bare.h"
#include "bench/figures.h"
#include "logentry/lookups.h"
#include "logentry/parallellog.h"
#include "logentry/revision.h"
#include "logentry/sources.h"
#include "logentry/sql.h"
#include "store/folder.h"
#include "store/functions.h"
#include "store/library.h"
#include "store/sqlite.h"

#include <sqlite3.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>

#include <memory>
#include <optional>
#include <vector>

namespace bench {

namespace {

const QString kLog = QStringLiteral("dbiaru.mdb");

/// The logic of the main window on an installation.
struct Desk {
    Desk(const QString &folder, const QString &userFolder)
        : databases({folder, false}, userFolder), sources(databases), lookups(sources, fields, state)
    {
        const QList<store::Error> errors = sources.open();
        if (!errors.isEmpty())
            throw store::Error(errors.front());
    }

    store::Library databases;
    logentry::Sources sources;
    logentry::EntryFields fields;
    logentry::EntryState state;
    logentry::Lookups lookups;
};

// ---- revision

/// Countries and operator marks as they should be, by the log's rows in their order.
struct RightRows {
    struct Row {
        qsizetype country = 0;
        qsizetype mark = 0;
    };
    std::vector<Row> rows;
    QList<QByteArray> texts;
};

RightRows rightRows(const QString &path)
{
    store::Connection log(path, store::OpenMode::ReadOnly);
    RightRows right;
    QHash<QByteArray, qsizetype> known;
    const auto place = [&](const QByteArray &text) {
        const auto found = known.constFind(text);
        if (found != known.constEnd())
            return *found;
        const QByteArray own(text.constData(), text.size()); // the cursor's bytes go with its row
        right.texts.append(own);
        return *known.insert(own, right.texts.size() - 1);
    };
    BareStatement select(log, "SELECT CONTR,PRF FROM TBLLOG1 ORDER BY rowid");
    while (select.step())
        right.rows.push_back({place(select.text(0)), place(select.text(1))});
    return right;
}

/// The same rows read, and those written whose country or mark differs. Milliseconds.
double bareRevision(const QString &path, const RightRows &right)
{
    store::Connection log(path, store::OpenMode::ReadWrite);
    const QElapsedTimer timer = started();
    BareStatement begin(log, "BEGIN IMMEDIATE");
    begin.run();
    BareStatement select(log, "SELECT rowid,ccall,CONTR,PRF FROM TBLLOG1 ORDER BY rowid");
    struct Change {
        qint64 key;
        RightRows::Row to;
    };
    std::vector<Change> changes;
    qint64 characters = 0;
    std::size_t row = 0;
    enum : int { Key, Call, Country, Mark };
    while (select.step()) {
        characters += select.text(Call).size();
        const RightRows::Row &to = right.rows[row++];
        if (select.text(Country) != right.texts[to.country] || select.text(Mark) != right.texts[to.mark])
            changes.push_back({select.number(Key), to});
    }
    BareStatement update(log, "UPDATE TBLLOG1 SET CONTR=?,PRF=? WHERE rowid=?");
    for (const Change &change : changes) {
        update.bind(1, right.texts[change.to.country]);
        update.bind(2, right.texts[change.to.mark]);
        update.bind(3, change.key);
        update.run();
    }
    BareStatement commit(log, "COMMIT");
    commit.run();
    if (characters == 0)
        qFatal("the log has no callsigns");
    return milliseconds(timer);
}

/// Rows whose country or mark is not the other log's.
qint64 differences(const QString &path, const QString &otherPath)
{
    store::Connection log(path, store::OpenMode::ReadOnly);
    log.exec(QStringLiteral("ATTACH DATABASE ? AS other"), {otherPath});
    return log.singleNumber(
        QStringLiteral("SELECT count(*) FROM main.TBLLOG1 AS a LEFT JOIN other.TBLLOG1 AS b ON "
                       "b.rowid=a.rowid WHERE a.CONTR IS NOT b.CONTR OR a.PRF IS NOT b.PRF"));
}

// ---- parallel log

/// Notes when a connection is told to attach a file: the engine asks its authorizer first. Until then a load
/// copies the log, from then on it loads.
class AttachWatch {
public:
    AttachWatch(store::Connection &connection, const QElapsedTimer &timer)
        : m_connection(connection), m_timer(timer)
    {
        sqlite3_set_authorizer(connection.handle(), &AttachWatch::asked, this);
    }
    AttachWatch(const AttachWatch &) = delete;
    AttachWatch &operator=(const AttachWatch &) = delete;
    ~AttachWatch() { sqlite3_set_authorizer(m_connection.handle(), nullptr, nullptr); }

    [[nodiscard]] const std::optional<double> &at() const noexcept { return m_at; }

private:
    static int asked(void *self, int action, const char *, const char *, const char *, const char *)
    {
        auto *watch = static_cast<AttachWatch *>(self);
        if (action == SQLITE_ATTACH && !watch->m_at)
            watch->m_at = milliseconds(watch->m_timer);
        return SQLITE_OK;
    }

    store::Connection &m_connection;
    const QElapsedTimer &m_timer;
    std::optional<double> m_at;
};

/// Fills an empty parallel log with the first contacts of a log.
void fillParallelLog(const QString &path, const QString &log, qint64 contacts)
{
    store::Connection parallel(path, store::OpenMode::ReadWrite);
    parallel.exec(QStringLiteral("ATTACH DATABASE ? AS log"), {log});
    parallel.exec(QStringLiteral("DELETE FROM main.TBLLOG1"));
    const QString columns = store::columnNames(parallel, QStringLiteral("TBLLOG1")).join(QLatin1Char(','));
    parallel.exec(
        QStringLiteral("INSERT INTO main.TBLLOG1(%1) SELECT %1 FROM log.TBLLOG1 ORDER BY rowid LIMIT ?")
            .arg(columns),
        {contacts});
}

double bareLoad(const QString &path, const QString &parallel)
{
    store::Connection log(path, store::OpenMode::ReadWrite);
    const QString columns = store::columnNames(log, QStringLiteral("TBLLOG1")).join(QLatin1Char(','));
    const QByteArray insert =
        QStringLiteral("INSERT INTO main.TBLLOG1(%1) SELECT %1 FROM other.TBLLOG1 ORDER BY rowid")
            .arg(columns)
            .toUtf8();
    const QByteArray file = parallel.toUtf8();
    const QElapsedTimer timer = started();
    BareStatement attach(log, "ATTACH DATABASE ? AS other");
    attach.bind(1, file);
    attach.run();
    BareStatement(log, "BEGIN IMMEDIATE").run();
    BareStatement(log, insert.constData()).run();
    BareStatement(log, "COMMIT").run();
    return milliseconds(timer);
}

// ---- period

constexpr char16_t kFirstDay[] = u"01.01.1900";
constexpr char16_t kLastDay[] = u"31.12.2099";

/// One statement over both files, in a transaction of its own.
double barePrint(const QString &print, const QString &log)
{
    store::Connection target(print, store::OpenMode::ReadWrite);
    target.exec(QStringLiteral("ATTACH DATABASE ? AS other"), {log});
    const QString day = store::dateKeyExpression(QStringLiteral("ddate"));
    const QElapsedTimer timer = started();
    store::Transaction transaction(target);
    target.exec(QStringLiteral("DELETE FROM tblprint"));
    target.exec(QStringLiteral("INSERT INTO main.tblprint SELECT * FROM other.TBLLOG1 WHERE %1>='1900-01-01' "
                               "AND %1<='2099-12-31' ORDER BY %1,ttime COLLATE NOCASE,rowid")
                    .arg(day));
    transaction.commit();
    return milliseconds(timer);
}

} // namespace

BulkWork::BulkWork(const QString &installation, const QString &scratch)
    : m_folder(QDir(scratch).filePath(QStringLiteral("installation"))),
      m_copies(QDir(scratch).filePath(QStringLiteral("copies"))), m_model(QDir(installation).filePath(kLog)),
      m_scratch(scratch)
{
    for (const QString &folder : {m_folder, m_copies})
        if (!QDir().mkpath(folder))
            throw store::Error(store::ErrorKind::CannotOpen, folder,
                               QStringLiteral("the folder cannot be made"));
    const QDir from(installation);
    const QStringList files = from.entryList({QStringLiteral("*.mdb")}, QDir::Files);
    for (const QString &file : files)
        if (file != kLog)
            copyFile(from.filePath(file), QDir(m_folder).filePath(file));
    m_contacts = contactsOf(m_model);
}

void BulkWork::putLog(const QString &model)
{
    copyFile(model, QDir(m_folder).filePath(kLog));
}

QString BulkWork::putBare(const QString &model)
{
    QString path = QDir(m_scratch).filePath(QStringLiteral("bare.mdb"));
    copyFile(model, path);
    return path;
}

void BulkWork::measureRevision(QTextStream &out, int runs)
{
    const RightRows right = rightRows(m_model);
    const QString emptied = QDir(m_scratch).filePath(QStringLiteral("emptied.mdb"));
    copyFile(m_model, emptied);
    store::Connection(emptied, store::OpenMode::ReadWrite)
        .exec(QStringLiteral("UPDATE TBLLOG1 SET CONTR='',PRF=''"));

    struct Case {
        QString name;
        QString model;
        qint64 changes;
    };
    Samples copying;
    for (const Case &one : {Case{QStringLiteral("revision, nothing changes"), m_model, 0},
                            Case{QStringLiteral("revision, every row changes"), emptied, m_contacts}}) {
        Samples work;
        Samples bare;
        for (int run = 0; run < runs; ++run) {
            putLog(one.model);
            {
                Desk desk(m_folder, m_copies);
                QElapsedTimer timer = started();
                const QString copy = desk.databases.makeVerifiedCopy(desk.sources.mainLogPath());
                copying.add(milliseconds(timer));
                QFile::remove(copy);
                timer.start();
                const auto result = logentry::Revision(desk.sources, desk.fields, desk.state, desk.lookups)
                                        .run([](qint64, qint64) { return true; });
                work.add(milliseconds(timer));
                if (result.visited != m_contacts || result.changed != one.changes || result.notShown)
                    qFatal("%lld rows visited, %lld changed", result.visited, result.changed);
            }
            const QString path = putBare(one.model);
            bare.add(bareRevision(path, right));
            for (const QString &log : {QDir(m_folder).filePath(kLog), path})
                if (differences(log, m_model) != 0)
                    qFatal("%s is not as it should be", qPrintable(log));
        }
        printAgainst(out, one.name, work, bare);
    }
    printFigure(out, QStringLiteral("verified copy before a revision"), copying);
    QFile::remove(emptied);
}

void BulkWork::measureParallelLoad(QTextStream &out, int runs, qint64 contacts)
{
    const QString parallel = QDir(m_folder).filePath(QStringLiteral("dblog.mdb"));
    fillParallelLog(parallel, m_model, contacts);
    const qint64 rows = contactsOf(parallel);
    Samples copying;
    Samples work;
    Samples bare;
    for (int run = 0; run < runs; ++run) {
        putLog(m_model);
        {
            Desk desk(m_folder, m_copies);
            QElapsedTimer timer;
            const AttachWatch watch(desk.databases.connection(desk.sources.mainLogPath()), timer);
            timer.start();
            const auto goOn = [](qint64, qint64) {};
            const qint64 loaded = logentry::ParallelLog(desk.sources).load(goOn, goOn);
            const double whole = milliseconds(timer);
            if (loaded != rows || !watch.at())
                qFatal("%lld rows loaded", loaded);
            copying.add(*watch.at());
            work.add(whole - *watch.at());
        }
        const QString path = putBare(m_model);
        bare.add(bareLoad(path, parallel));
        for (const QString &log : {QDir(m_folder).filePath(kLog), path})
            if (contactsOf(log) != m_contacts + rows)
                qFatal("%s is not as it should be", qPrintable(log));
        const QDir copies(m_copies);
        const QStringList made = copies.entryList(QDir::Files);
        for (const QString &copy : made)
            QFile::remove(copies.filePath(copy));
    }
    printAgainst(out, QStringLiteral("load of %1 parallel contacts").arg(rows), work, bare);
    printFigure(out, QStringLiteral("verified copy before a load"), copying);
}

void BulkWork::measurePeriod(QTextStream &out, int runs)
{
    const QString print = QDir(m_folder).filePath(QStringLiteral("dbprint.mdb"));
    const QString empty = QDir(m_scratch).filePath(QStringLiteral("emptyprint.mdb"));
    const QString barePath = QDir(m_scratch).filePath(QStringLiteral("bareprint.mdb"));
    copyFile(print, empty);
    putLog(m_model);
    Samples first;
    Samples again;
    Samples bareFirst;
    Samples bareAgain;
    Samples shown;
    for (int run = 0; run < runs; ++run) {
        copyFile(empty, print);
        copyFile(empty, barePath);
        Desk desk(m_folder, m_copies);
        for (Samples *samples : {&first, &again}) {
            const QElapsedTimer timer = started();
            desk.databases.execute(print, logentry::sql::emptyPrintTable());
            const qint64 rows = desk.databases.execute(
                print, logentry::sql::loadPrintTable(desk.sources.mainLogPath(), kFirstDay, kLastDay),
                [](qint64, qint64) {});
            samples->add(milliseconds(timer));
            if (rows != m_contacts)
                qFatal("%lld rows printed", rows);
        }
        bareFirst.add(barePrint(barePath, desk.sources.mainLogPath()));
        bareAgain.add(barePrint(barePath, desk.sources.mainLogPath()));
        const QElapsedTimer timer = started();
        desk.sources.Data5.setRecordSource(logentry::sql::contactsOfPeriod(kFirstDay, kLastDay));
        desk.sources.Data5.refresh();
        desk.sources.Data5.fetchAll();
        shown.add(milliseconds(timer));
        if (desk.sources.Data5.recordCount() != m_contacts)
            qFatal("%d rows shown", desk.sources.Data5.recordCount());
    }
    printAgainst(out, QStringLiteral("print table, filled"), first, bareFirst);
    printAgainst(out, QStringLiteral("print table, filled once more"), again, bareAgain);
    printFigure(out, QStringLiteral("the whole log as a period in the grid"), shown);
}

} // namespace bench
