#include "store/jetload.h"

#include "foreign/jetvalues.h"
#include "store/seed.h"

#include <sqlite3.h>

#include <QStringList>

#include <algorithm>
#include <vector>

namespace store {

namespace {

using foreign::DateUse;
using foreign::JetFile;
using foreign::JetTable;

/// A name of an old file as it stands in a statement: any characters.
QString quoted(const QString &name)
{
    QString text = name;
    text.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + text + QLatin1Char('"');
}

QString quotedList(const JetTable &table)
{
    QStringList names;
    for (const foreign::JetColumn &column : table.columns)
        names.append(quoted(column.name));
    return names.join(QLatin1Char(','));
}

std::vector<DateUse> dateUses(const JetTable &table)
{
    std::vector<DateUse> uses;
    for (const foreign::JetColumn &column : table.columns)
        uses.push_back(foreign::dateUse(column.name));
    return uses;
}

/// Lets the engine ask during one long statement whether to go on.
class Ticks {
public:
    Ticks(Connection &connection, const std::function<bool()> &goOn) : m_connection(connection), m_goOn(goOn)
    {
        constexpr int kInstructions = 200000; // some milliseconds
        sqlite3_progress_handler(connection.handle(), kInstructions, &Ticks::tick, this);
    }
    Ticks(const Ticks &) = delete;
    Ticks &operator=(const Ticks &) = delete;
    ~Ticks() { sqlite3_progress_handler(m_connection.handle(), 0, nullptr, nullptr); }

    /// Runs `work`; a statement that was broken off to stop is no error of the engine.
    template <typename Work>
    void run(Work &&work)
    {
        try {
            work();
        } catch (const Error &) {
            if (m_stopped)
                throw foreign::JetStopped();
            throw;
        }
    }

private:
    static int tick(void *self)
    {
        auto *ticks = static_cast<Ticks *>(self);
        ticks->m_stopped = !ticks->m_goOn();
        return ticks->m_stopped ? 1 : 0;
    }

    Connection &m_connection;
    const std::function<bool()> &m_goOn;
    bool m_stopped = false;
};

const TableLayout *layoutOf(const FileLayout &layout, const QString &table)
{
    const auto found = std::find_if(layout.tables.begin(), layout.tables.end(), [&](const TableLayout &one) {
        return one.name.compare(table, Qt::CaseInsensitive) == 0;
    });
    return found == layout.tables.end() ? nullptr : &*found;
}

bool hasColumn(const TableLayout &layout, const QString &column)
{
    return std::any_of(layout.columns.begin(), layout.columns.end(), [&](const ColumnLayout &one) {
        return one.name.compare(column, Qt::CaseInsensitive) == 0;
    });
}

void createTable(Connection &target, const FileLayout &file, const JetTable &table)
{
    const QString form = QStringLiteral("%1 TEXT COLLATE NOCASE DEFAULT ''");
    const TableLayout *layout = layoutOf(file, table.name);
    if (layout == nullptr) {
        QStringList columns;
        for (const foreign::JetColumn &column : table.columns)
            columns.append(form.arg(quoted(column.name)));
        target.exec(
            QStringLiteral("CREATE TABLE %1(%2)").arg(quoted(table.name), columns.join(QLatin1Char(','))));
        return;
    }
    target.exec(createTableSql(*layout));
    for (const foreign::JetColumn &column : table.columns)
        if (!hasColumn(*layout, column.name))
            target.exec(QStringLiteral("ALTER TABLE %1 ADD COLUMN %2")
                            .arg(quoted(layout->name), form.arg(quoted(column.name))));
}

/// One statement stepped a million times: without the copies that a Cursor makes of its values.
class Inserter {
public:
    Inserter(Connection &target, const QString &sql) : m_target(target), m_sql(sql)
    {
        const QByteArray text = sql.toUtf8();
        if (sqlite3_prepare_v2(target.handle(), text.constData(), static_cast<int>(text.size()), &m_statement,
                               nullptr) != SQLITE_OK)
            throw target.lastError(sql);
    }
    Inserter(const Inserter &) = delete;
    Inserter &operator=(const Inserter &) = delete;
    ~Inserter() { sqlite3_finalize(m_statement); }

    /// The bytes must stay until step().
    void bind(int column, QByteArrayView utf8)
    {
        static constexpr char kEmpty[] = "";
        const char *bytes = utf8.isEmpty() ? kEmpty : utf8.data();
        if (sqlite3_bind_text64(m_statement, column, bytes, static_cast<sqlite3_uint64>(utf8.size()),
                                SQLITE_STATIC, SQLITE_UTF8) != SQLITE_OK)
            throw m_target.lastError(m_sql);
    }
    void step()
    {
        const int code = sqlite3_step(m_statement);
        if (code != SQLITE_DONE) {
            const Error error = m_target.lastError(m_sql);
            sqlite3_reset(m_statement);
            throw Error(error);
        }
        if (sqlite3_reset(m_statement) != SQLITE_OK)
            throw m_target.lastError(m_sql);
    }

private:
    Connection &m_target;
    QString m_sql;
    sqlite3_stmt *m_statement = nullptr;
};

qint64 loadTable(JetFile &file, const JetTable &table, Connection &target, const LoadWatch &watch)
{
    QStringList marks;
    marks.fill(QStringLiteral("?"), table.columns.size());
    Inserter inserter(target, QStringLiteral("INSERT INTO %1(%2) VALUES(%3)")
                                  .arg(quoted(table.name), quotedList(table), marks.join(QLatin1Char(','))));
    const std::vector<DateUse> uses = dateUses(table);
    std::vector<QByteArray> scratch(uses.size());
    qint64 rows = 0;
    while (file.nextRow()) {
        for (std::size_t i = 0; i < uses.size(); ++i)
            inserter.bind(static_cast<int>(i) + 1, foreign::jetText(file.row()[i], uses[i], scratch[i]));
        inserter.step();
        ++rows;
        if (!watch.rowDone())
            throw foreign::JetStopped();
    }
    return rows;
}

void finishTables(Connection &target, const FileLayout &layout, const QList<JetTable> &tables)
{
    for (const TableLayout &table : layout.tables) {
        const bool there = std::any_of(tables.begin(), tables.end(), [&](const JetTable &one) {
            return one.name.compare(table.name, Qt::CaseInsensitive) == 0;
        });
        if (there) {
            seedSingleRow(target, table);
        } else {
            target.exec(createTableSql(table));
            seedTable(target, table);
        }
        for (const QString &object : table.objects)
            target.exec(object);
    }
    target.exec(QStringLiteral("PRAGMA user_version=%1").arg(kSchemaVersion));
}

[[noreturn]] void differs(const QString &oldFile, const JetTable &table, qint64 row)
{
    throw Error(ErrorKind::Unreadable, oldFile,
                QStringLiteral("при проверке строка %1 таблицы %2 оказалась не такой, как в старом файле")
                    .arg(row)
                    .arg(table.name));
}

void compareTable(JetFile &file, const JetTable &table, Connection &copy, const QString &oldFile,
                  const LoadWatch &watch)
{
    Cursor cursor = copy.run(
        QStringLiteral("SELECT %1 FROM %2 ORDER BY rowid").arg(quotedList(table), quoted(table.name)));
    const std::vector<DateUse> uses = dateUses(table);
    QByteArray scratch;
    qint64 rows = 0;
    while (file.nextRow()) {
        ++rows;
        if (!cursor.next())
            differs(oldFile, table, rows);
        for (std::size_t i = 0; i < uses.size(); ++i) {
            const QByteArrayView stored = cursor.utf8(static_cast<int>(i));
            if (stored != foreign::jetText(file.row()[i], uses[i], scratch))
                differs(oldFile, table, rows);
        }
        if (!watch.rowDone())
            throw foreign::JetStopped();
    }
    // The one row that some tables must have is added behind an empty or incomplete table.
    const bool more = cursor.next();
    if (more && (!mustHaveRow(table.name) || cursor.next()))
        differs(oldFile, table, rows + 1);
}

} // namespace

QList<qint64> loadJet(JetFile &file, Connection &target, const FileLayout &layout, const LoadWatch &watch)
{
    QList<qint64> rows(file.tables().size());
    // The file is nobody's until it is renamed: it reaches the disk at the end, in one piece.
    target.exec(QStringLiteral("PRAGMA journal_mode=MEMORY"));
    target.exec(QStringLiteral("PRAGMA synchronous=OFF"));
    Transaction transaction(target);
    for (const JetTable &table : file.tables())
        if (!table.damaged)
            createTable(target, layout, table);
    for (int number = file.nextTable(); number >= 0; number = file.nextTable())
        rows[number] = loadTable(file, file.tables()[number], target, watch);
    Ticks(target, watch.goOn).run([&] { finishTables(target, layout, file.tables()); });
    transaction.commit();
    return rows;
}

void compareJet(JetFile &file, Connection &copy, const QString &oldFile, const LoadWatch &watch)
{
    for (int number = file.nextTable(); number >= 0; number = file.nextTable())
        compareTable(file, file.tables()[number], copy, oldFile, watch);
    std::optional<QString> verdict;
    Ticks(copy, watch.goOn).run([&] { verdict = copy.single(QStringLiteral("PRAGMA integrity_check(1)")); });
    if (!verdict || *verdict != QLatin1String("ok"))
        throw Error(ErrorKind::Damaged, copy.path(), verdict.value_or(QString()));
}

} // namespace store
