#include "store/library.h"

#include "foreign/jetfile.h"
#include "store/dialect.h"
#include "store/schema.h"
#include "store/seed.h"

#include <sqlite3.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <limits>
#include <utility>

namespace store {

namespace {

constexpr qsizetype kKeptCopies = 10;
constexpr auto kAttached = "zh_other";

QString canonical(const QString &path)
{
    const QString real = QFileInfo(path).canonicalFilePath();
    return real.isEmpty() ? QFileInfo(path).absoluteFilePath() : real;
}

/// ATTACH ... DETACH around a statement that spans two files.
class Attachment {
public:
    Attachment(Connection &connection, const QString &path) : m_connection(connection)
    {
        try {
            m_connection.exec(QStringLiteral("ATTACH DATABASE ? AS %1").arg(QLatin1String(kAttached)),
                              {path});
        } catch (const Error &error) {
            throw Error(error.kind(), path, error.engineText(), error.sql(), error.code());
        }
    }
    Attachment(const Attachment &) = delete;
    Attachment &operator=(const Attachment &) = delete;
    ~Attachment()
    {
        try {
            m_connection.exec(QStringLiteral("DETACH DATABASE %1").arg(QLatin1String(kAttached)));
        } catch (const Error &) {
            // It stays attached until the connection closes; the rows are in or out already.
        }
    }

private:
    Connection &m_connection;
};

bool hasTable(Connection &connection, const QString &table)
{
    return connection
        .single(QStringLiteral("SELECT 1 FROM sqlite_master WHERE type='table' AND name=? COLLATE NOCASE"),
                {table})
        .has_value();
}

void addMissingColumns(Connection &connection, const QString &table, const QStringList &wanted)
{
    const QStringList present = columnNames(connection, table);
    for (const QString &column : wanted)
        if (!present.contains(column, Qt::CaseInsensitive))
            connection.exec(QStringLiteral("ALTER TABLE %1 ADD COLUMN %2 TEXT COLLATE NOCASE DEFAULT ''")
                                .arg(bracketedName(table), bracketedName(column)));
}

QStringList layoutColumns(const TableLayout &table)
{
    QStringList names;
    for (const ColumnLayout &column : table.columns)
        names.append(column.name);
    return names;
}

/// Page by page copy with the engine's own backup call; rowids and therefore the order of rows stay.
void backUp(Connection &connection, const QString &target, const Progress &progress)
{
    constexpr int kPagesAtATime = 4000;
    const auto copy = Connection::create(target);
    sqlite3_backup *backup = sqlite3_backup_init(copy->handle(), "main", connection.handle(), "main");
    if (backup == nullptr)
        throw copy->lastError();
    int code = SQLITE_OK;
    do {
        code = sqlite3_backup_step(backup, progress ? kPagesAtATime : -1);
        if (progress) {
            const qint64 pages = sqlite3_backup_pagecount(backup);
            progress(pages - sqlite3_backup_remaining(backup), pages);
        }
    } while (code == SQLITE_OK);
    const int finished = sqlite3_backup_finish(backup);
    if (code == SQLITE_BUSY || code == SQLITE_LOCKED) // the copy is nobody's but ours
        throw Error(ErrorKind::Locked, connection.path(), QString::fromUtf8(sqlite3_errstr(code)), {}, code);
    if (code != SQLITE_DONE || finished != SQLITE_OK)
        throw copy->lastError();
}

/// An INSERT ... SELECT in several statements, so that the operator sees how far it is; the caller's
/// transaction makes them one. `insert` ends before its WHERE. Rows keep their order.
qint64 insertInChunks(Connection &target, const QString &insert, const QString &sourceTable,
                      const SelectQuery &select, const Progress &progress)
{
    constexpr int kChunkRows = 5000;
    const QString where = select.where.isEmpty() ? QString() : QStringLiteral("(%1) AND ").arg(select.where);
    const QString chunk = insert + QStringLiteral(" WHERE %1rowid>? AND rowid<=? ORDER BY rowid").arg(where);
    const qint64 total = target.singleNumber(QStringLiteral("SELECT count(*) FROM %1").arg(sourceTable));
    const qint64 end = target.singleNumber(QStringLiteral("SELECT max(rowid) FROM %1").arg(sourceTable));
    qint64 last = std::numeric_limits<qint64>::min();
    qint64 visited = 0;
    qint64 rows = 0;
    while (visited < total) {
        qint64 next = 0;
        {
            Cursor cursor =
                target.run(QStringLiteral("SELECT max(rowid),count(*) FROM (SELECT rowid FROM %1 WHERE "
                                          "rowid>? AND rowid<=? ORDER BY rowid LIMIT %2)")
                               .arg(sourceTable)
                               .arg(kChunkRows),
                           {last, end});
            if (!cursor.next() || cursor.number(1) == 0)
                break;
            next = cursor.number(0);
            visited += cursor.number(1);
        }
        target.exec(chunk, select.arguments + Values{last, next});
        rows += target.changes();
        last = next;
        progress(visited, total);
    }
    return rows;
}

/// The same where the rows are wanted in an order of their own: their keys are put in order first, in a table
/// of the connection's own memory.
qint64 insertOrderedInChunks(Connection &target, const QString &insert, const QString &sourceTable,
                             const SelectQuery &select, const QString &order, const Progress &progress)
{
    constexpr qint64 kChunkRows = 5000;
    const QString where = select.where.isEmpty() ? QString() : QStringLiteral(" WHERE ") + select.where;
    target.exec(QStringLiteral("CREATE TEMP TABLE zh_order(zh_place INTEGER PRIMARY KEY,zh_row INTEGER)"));
    target.exec(QStringLiteral("INSERT INTO temp.zh_order(zh_row) SELECT rowid FROM %1%2 ORDER BY %3")
                    .arg(sourceTable, where, order),
                select.arguments + select.orderArguments);
    const qint64 total = target.changes();
    const QString chunk = insert + QStringLiteral(" JOIN temp.zh_order ON %1.rowid=zh_row WHERE zh_place>? "
                                                  "AND zh_place<=? ORDER BY zh_place")
                                       .arg(sourceTable);
    for (qint64 done = 0; done < total;) {
        const qint64 next = std::min(done + kChunkRows, total);
        target.exec(chunk, {done, next});
        done = next;
        progress(done, total);
    }
    target.exec(QStringLiteral("DROP TABLE temp.zh_order"));
    return total;
}

} // namespace

QStringList columnNames(Connection &connection, const QString &table, const QString &schema)
{
    QStringList names;
    Cursor cursor =
        connection.run(QStringLiteral("SELECT name FROM pragma_table_info(?,?)"), {table, schema});
    while (cursor.next())
        names.append(cursor.text(0));
    return names;
}

Library::Library(DataFolder folder, QString userFolder, ChooseFile choose)
    : m_folder(std::move(folder)), m_userFolder(std::move(userFolder)), m_choose(std::move(choose))
{}

Library::~Library() = default;

QString Library::path(QStringView suffix)
{
    const QString plain = joinSuffix(m_folder.path, suffix);
    const QString name = QFileInfo(plain).fileName();
    const QString key = name.toLower();
    const auto known = m_paths.constFind(key);
    if (known != m_paths.constEnd() && QFileInfo::exists(*known))
        return *known;
    QString found = findFile(m_folder.path, name, m_choose);
    m_paths.insert(key, found);
    return found;
}

std::optional<Error> Library::inspect(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return Error(ErrorKind::Missing, path, QStringLiteral("файла нет"));
    if (info.isDir())
        return Error(ErrorKind::Foreign, path, QStringLiteral("это папка"));
    QFile file(path);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly))
        return Error(ErrorKind::CannotOpen, path, file.errorString());
    constexpr qint64 kHeaderSize = 32;
    const QByteArray head = file.read(kHeaderSize);
    if (file.error() != QFileDevice::NoError)
        return Error(ErrorKind::InputOutput, path, file.errorString());
    if (head.startsWith("SQLite format 3"))
        return std::nullopt;
    switch (foreign::jetVersion(path)) {
    case foreign::JetVersion::Jet3:
    case foreign::JetVersion::Jet4:
        return Error(ErrorKind::Jet, path, QString::fromLatin1(head.mid(4, 15)));
    case foreign::JetVersion::Newer:
        return Error(ErrorKind::Unreadable, path,
                     QStringLiteral("это база Access 2007 или новее, а преобразуются базы Access 97–2003"));
    case foreign::JetVersion::None:
        break;
    }
    return Error(ErrorKind::Foreign, path,
                 head.isEmpty() ? QStringLiteral("файл пуст") : QStringLiteral("это не файл SQLite"));
}

Connection &Library::connection(const QString &path)
{
    if (Connection *opened = m_byPath.value(path))
        return *opened; // asked for at every query; the file's real path is looked up once
    const QString key = canonical(path);
    const auto known = m_connections.find(key);
    if (known != m_connections.end()) {
        m_byPath.insert(path, known->second.get());
        return *known->second;
    }
    if (const auto wrong = inspect(path))
        throw Error(*wrong);
    auto connection =
        std::make_unique<Connection>(key, m_folder.readOnly ? OpenMode::ReadOnly : OpenMode::ReadWrite);
    if (const FileLayout *layout = fileLayout(QFileInfo(path).fileName())) {
        bringUpToDate(*connection, *layout);
        if (layout == &fileLayouts().front()) {
            connection->setKeepsCounters(hasTable(*connection, countryCountersTable()));
            connection->setKeepsTally(hasTable(*connection, tallyTable()));
        }
    }
    return *m_connections.emplace(key, std::move(connection)).first->second;
}

QStringList Library::readOnlyFiles() const
{
    QStringList paths;
    for (const auto &[path, connection] : m_connections)
        if (connection->readOnly())
            paths.append(path);
    return paths;
}

void Library::close(const QString &path)
{
    m_byPath.clear();
    m_connections.erase(canonical(path));
}

void Library::bringUpToDate(Connection &connection, const FileLayout &layout)
{
    const qint64 version = connection.singleNumber(QStringLiteral("PRAGMA user_version"));
    if (version > kSchemaVersion)
        throw Error(ErrorKind::Newer, connection.path(), QStringLiteral("версия %1").arg(version));
    const TableLayout &first = layout.tables.front();
    if (!hasTable(connection, first.name))
        throw Error(ErrorKind::MissingTable, connection.path(),
                    QStringLiteral("нет таблицы %1").arg(first.name));
    if (version == kSchemaVersion || connection.readOnly())
        return;
    if (first.holdsLogRows)
        makeVerifiedCopy(connection.path());
    Transaction transaction(connection);
    for (const TableLayout &table : layout.tables) {
        if (!hasTable(connection, table.name))
            connection.exec(createTableSql(table));
        addMissingColumns(connection, table.name, layoutColumns(table));
        for (const QString &object : table.objects)
            connection.exec(object);
        seedSingleRow(connection, table);
    }
    connection.exec(QStringLiteral("PRAGMA user_version=%1").arg(kSchemaVersion));
    transaction.commit();
}

QStringList Library::createMissingFiles()
{
    QStringList made;
    for (const FileLayout &layout : fileLayouts()) {
        const QString file = path(QLatin1Char('\\') + layout.name);
        if (QFileInfo::exists(file) || QFileInfo(file).isSymLink())
            continue;
        const QString base = layout.name.chopped(4);
        const QString original = findFile(m_folder.path, base + QStringLiteral(".jet.mdb"), {});
        if (QFileInfo::exists(original))
            continue; // its conversion was cut off; the original is to be converted again, not replaced by a
                      // seed
        createFile(layout, file);
        made.append(layout.name);
    }
    return made;
}

void Library::createFile(const FileLayout &layout, const QString &path)
{
    const QString temporary = path + QStringLiteral(".new");
    QFile::remove(temporary); // left by a start that was cut off
    QFile::remove(temporary + QStringLiteral("-journal"));
    try {
        {
            const auto connection = Connection::create(temporary);
            Transaction transaction(*connection);
            for (const TableLayout &table : layout.tables) {
                connection->exec(createTableSql(table));
                seedTable(*connection, table);
                for (const QString &object : table.objects)
                    connection->exec(object);
            }
            connection->exec(QStringLiteral("PRAGMA user_version=%1").arg(kSchemaVersion));
            transaction.commit();
        }
        QFile file(temporary);
        if (!file.rename(path)) // never over a file that has come meanwhile
            throw Error(ErrorKind::InputOutput, path, file.errorString());
        syncFolder(m_folder.path);
    } catch (...) {
        QFile::remove(temporary);
        QFile::remove(temporary + QStringLiteral("-journal"));
        throw;
    }
}

qint64 Library::execute(const QString &path, const SqlText &command, const Progress &progress)
{
    if (!QFileInfo::exists(path)) {
        close(path); // rows that went into a file without a name would be gone
        throw Error(ErrorKind::Missing, path, QStringLiteral("файла нет"));
    }
    return commandKind(command) == CommandKind::Delete ? runDelete(path, command)
                                                       : runInsert(path, command, progress);
}

qint64 Library::runDelete(const QString &path, const SqlText &command)
{
    const DeleteCommand deletion = translateDelete(command);
    Connection &target = connection(path);
    QString sql = QStringLiteral("DELETE FROM %1").arg(bracketedName(deletion.table));
    if (!deletion.where.isEmpty())
        sql += QStringLiteral(" WHERE ") + deletion.where;
    const Patience patience(target);
    Transaction transaction(target);
    target.exec(sql, deletion.arguments);
    const qint64 rows = target.changes();
    transaction.commit();
    return rows;
}

qint64 Library::runInsert(const QString &path, const SqlText &command, const Progress &progress)
{
    const InsertCommand insertion = translateInsert(command);
    const SelectQuery &select = insertion.select;
    const QString targetFile = insertion.inFile.isEmpty() ? path : insertion.inFile;
    const QString sourceFile = select.inFile.isEmpty() ? path : select.inFile;
    Connection &target = connection(targetFile);
    (void)connection(
        sourceFile); // opened by the rules first: a foreign file is refused, an old one completed
    const bool twoFiles = canonical(targetFile) != canonical(sourceFile);
    std::optional<Attachment> attachment; // goes after the transaction
    const Patience patience(target);
    Transaction transaction(target);
    if (twoFiles) // begun before, the transaction locks the target alone; the source is only read
        attachment.emplace(target, canonical(sourceFile));
    const QString schema = twoFiles ? QLatin1String(kAttached) : QLatin1String("main");

    const QStringList sourceColumns =
        select.columns.isEmpty() ? columnNames(target, select.table, schema) : select.columns;
    if (sourceColumns.isEmpty())
        throw Error(ErrorKind::MissingTable, sourceFile, QStringLiteral("нет таблицы %1").arg(select.table));
    const TableLayout *layout = tableLayout(insertion.table);
    if (layout != nullptr && layout->holdsLogRows)
        addMissingColumns(target, insertion.table, sourceColumns);
    const QStringList targetColumns = columnNames(target, insertion.table);
    if (targetColumns.isEmpty())
        throw Error(ErrorKind::MissingTable, targetFile,
                    QStringLiteral("нет таблицы %1").arg(insertion.table));
    QStringList into;
    QStringList from;
    for (const QString &column : sourceColumns) {
        if (!targetColumns.contains(column, Qt::CaseInsensitive))
            continue;
        into.append(bracketedName(column));
        from.append(QStringLiteral("ifnull(%1,'')").arg(bracketedName(column)));
    }
    QString sql = QStringLiteral("INSERT INTO main.%1(%2) SELECT %3%4 FROM %5.%6")
                      .arg(bracketedName(insertion.table), into.join(QLatin1Char(',')),
                           select.distinct ? QStringLiteral("DISTINCT ") : QString(),
                           from.join(QLatin1Char(',')), schema, bracketedName(select.table));
    const QString sourceTable = schema + QLatin1Char('.') + bracketedName(select.table);
    QStringList order = select.order;
    qint64 rows = 0;
    if (progress && order.isEmpty() && !select.distinct) {
        rows = insertInChunks(target, sql, sourceTable, select, progress);
    } else if (progress && !select.distinct) {
        order.append(QStringLiteral("rowid"));
        rows =
            insertOrderedInChunks(target, sql, sourceTable, select, order.join(QLatin1Char(',')), progress);
    } else {
        if (!select.where.isEmpty())
            sql += QStringLiteral(" WHERE ") + select.where;
        if (!select.distinct)
            order.append(QStringLiteral("rowid")); // rows arrive in the order in which they stand
        if (!order.isEmpty())
            sql += QStringLiteral(" ORDER BY ") + order.join(QLatin1Char(','));
        target.exec(sql, select.arguments + select.orderArguments);
        rows = target.changes();
    }
    transaction.commit();
    return rows;
}

void copyVerified(Connection &connection, const QString &target, const Progress &progress)
{
    try {
        const auto rowCounts = [](Connection &of) {
            QStringList counts;
            QStringList tables;
            {
                Cursor cursor =
                    of.run(QStringLiteral("SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"));
                while (cursor.next())
                    tables.append(cursor.text(0));
            }
            for (const QString &table : std::as_const(tables))
                counts.append(table + QLatin1Char('=') +
                              QString::number(of.singleNumber(
                                  QStringLiteral("SELECT count(*) FROM %1").arg(bracketedName(table)))));
            return counts;
        };
        backUp(connection, target, progress);
        Connection copy(target, OpenMode::ReadOnly);
        const auto verdict = copy.single(QStringLiteral("PRAGMA quick_check(1)"));
        if (!verdict || *verdict != QLatin1String("ok"))
            throw Error(ErrorKind::Damaged, target, verdict.value_or(QString()));
        if (rowCounts(copy) != rowCounts(connection))
            throw Error(ErrorKind::Damaged, target,
                        QStringLiteral("в копии не столько строк, сколько в файле"));
    } catch (...) {
        QFile::remove(target);
        QFile::remove(target + QStringLiteral("-journal"));
        throw;
    }
}

void requireWritable(Connection &connection, const QString &table, const QStringList &fields)
{
    const QStringList present = columnNames(connection, table);
    if (present.isEmpty())
        throw Error(ErrorKind::MissingTable, connection.path(), QStringLiteral("нет таблицы %1").arg(table));
    for (const QString &field : fields)
        if (!present.contains(field, Qt::CaseInsensitive))
            throw Error(ErrorKind::Other, connection.path(),
                        QStringLiteral("в таблице %1 нет поля %2").arg(table, field));
    if (connection.readOnly())
        throw Error(ErrorKind::ReadOnly, connection.path(), {});
}

QString Library::makeVerifiedCopy(const QString &path, const Progress &progress)
{
    if (!QDir().mkpath(m_userFolder))
        throw Error(ErrorKind::CannotOpen, m_userFolder, QStringLiteral("папка для копий не создаётся"));
    const QString key = canonical(path);
    const auto known = m_connections.find(key);
    std::unique_ptr<Connection> own;
    if (known == m_connections.end())
        own = std::make_unique<Connection>(key, OpenMode::ReadWrite);
    Connection &source = own ? *own : *known->second;

    const QDir folder(m_userFolder);
    const QString base = QFileInfo(path).completeBaseName();
    const QString format = QStringLiteral("yyyyMMdd-HHmmss");
    const auto copies = [&] {
        return folder.entryList({base + QStringLiteral(".[0-9]*-[0-9]*.mdb")}, QDir::Files,
                                QDir::Name | QDir::IgnoreCase); // an old log may be named in capitals
    };
    // A name tells the order of the copies: it is never earlier than the newest one's, also within one second
    // or after the clock has been set back.
    QDateTime stamp = QDateTime::currentDateTime();
    if (const QStringList present = copies(); !present.isEmpty()) {
        const auto newest = QDateTime::fromString(present.back().mid(base.size() + 1, format.size()), format);
        if (newest.isValid() && newest >= stamp.addMSecs(-stamp.time().msec()))
            stamp = newest.addSecs(1);
    }
    const QString name = QStringLiteral("%1.%2.mdb").arg(base, stamp.toString(format));
    QString finished = folder.filePath(name);
    const QString unfinished = finished + QStringLiteral(".part");
    QFile::remove(unfinished);
    copyVerified(source, unfinished, progress);
    QFile file(unfinished);
    if (!file.open(QIODevice::ReadWrite)) {
        QFile::remove(unfinished);
        throw Error(ErrorKind::InputOutput, unfinished, file.errorString());
    }
    syncFile(file);
    file.close();
    if (!file.rename(finished)) {
        QFile::remove(unfinished);
        throw Error(ErrorKind::InputOutput, finished, file.errorString());
    }
    syncFolder(m_userFolder);

    QStringList kept = copies();
    while (kept.size() > kKeptCopies)
        QFile::remove(folder.filePath(kept.takeFirst()));
    return finished;
}

} // namespace store
