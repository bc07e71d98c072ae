#include "reference/callbookfile.h"

#include "foreign/error.h"
#include "reference/sql.h"

#include <QFileInfo>
#include <QHash>
#include <QSet>

#include <algorithm>

namespace reference {

namespace {

constexpr qint64 kStepRows = 1000;
/// Callsigns in any order touch most pages of the index, and every commit writes those that it has touched.
constexpr qint64 kChunkChanges = 20'000;

/// Number of the field that a column is for; -1 for none.
int fieldOf(const QString &heading)
{
    static const QHash<QString, int> labels = {
        {QStringLiteral("call"), 0},    {QStringLiteral("позывной"), 0}, {QStringLiteral("фамилия"), 1},
        {QStringLiteral("имя"), 2},     {QStringLiteral("отчество"), 3}, {QStringLiteral("индекс"), 4},
        {QStringLiteral("область"), 5}, {QStringLiteral("город"), 6},    {QStringLiteral("адресс"), 7},
        {QStringLiteral("адрес"), 7},   {QStringLiteral("телефон"), 8},  {QStringLiteral("qsl via"), 9}};
    const QString name = heading.toLower();
    const auto field = callbookFields().indexOf(name);
    return field >= 0 ? static_cast<int>(field) : labels.value(name, -1);
}

store::Error unreadable(const QString &path, const QString &why)
{
    return {store::ErrorKind::Unreadable, path, why};
}

QStringList valueFields()
{
    return callbookFields().mid(1);
}

} // namespace

QString callbookPath(store::Library &databases)
{
    return databases.path(u"\\dbcalbuk.mdb");
}

const QStringList &callbookFields()
{
    static const QStringList names = {
        QStringLiteral("ccall"),   QStringLiteral("fam"),   QStringLiteral("nname"), QStringLiteral("otch"),
        QStringLiteral("indeks"),  QStringLiteral("obl"),   QStringLiteral("qth"),   QStringLiteral("adres"),
        QStringLiteral("telefon"), QStringLiteral("qslvia")};
    return names;
}

/// The callsigns of the callbook with the record stored first of each, and which of its fields are filled.
class CallbookFile::Calls {
public:
    struct Entry {
        qint64 key = 0;
        unsigned filled = 0;
    };

    explicit Calls(store::Connection &callbook) : m_callbook(callbook) { load(); }

    /// Reads the callbook anew where another program has changed it since.
    void refresh()
    {
        if (m_version != version())
            load();
    }
    /// Null for a callsign that is not there. Good until the next add().
    [[nodiscard]] Entry *find(const QString &call)
    {
        const auto found = m_entries.find(call);
        return found == m_entries.end() ? nullptr : &*found;
    }
    void add(const QString &call, Entry entry) { m_entries.insert(call, entry); }

private:
    [[nodiscard]] qint64 version() const { return m_callbook.singleNumber(sql::changesByOthers()); }
    void load()
    {
        m_version = version();
        m_entries.clear();
        store::Cursor cursor = m_callbook.run(sql::callbookContents(valueFields()));
        while (cursor.next()) {
            const QString call = cursor.text(1).trimmed().toUpper();
            if (!call.isEmpty() && !m_entries.contains(call))
                m_entries.insert(call, {cursor.number(0), static_cast<unsigned>(cursor.number(2))});
        }
    }

    store::Connection &m_callbook;
    qint64 m_version = 0;
    QHash<QString, Entry> m_entries;
};

/// The callbook while it is being changed: copied before the first change, committed in chunks.
class CallbookFile::Target {
public:
    Target(store::Library &databases, QString path, store::Progress copying)
        : m_databases(databases), m_path(std::move(path)), m_copying(std::move(copying)),
          m_callbook(databases.connection(m_path)), m_calls(m_callbook)
    {}

    /// Stores a row, and counts what has become of it.
    void take(const Row &row, CallbookImportResult &result)
    {
        if (!m_transaction && changes(row))
            begin(); // and look again: another program may have stored the same
        Calls::Entry *there = m_calls.find(row.call);
        if (there == nullptr) {
            add(row);
            ++result.added;
        } else if ((row.filled & ~there->filled) != 0) {
            fill(*there, row);
            ++result.filled;
        } else {
            ++result.unchanged;
        }
    }
    [[nodiscard]] bool chunkIsFull() const noexcept { return m_inChunk >= kChunkChanges; }
    void commit()
    {
        if (!m_transaction)
            return;
        m_transaction->commit();
        m_transaction.reset();
        m_patience.reset();
        m_inChunk = 0;
        m_committed = true;
    }
    [[nodiscard]] bool hasCommitted() const noexcept { return m_committed; }

private:
    [[nodiscard]] bool changes(const Row &row)
    {
        const Calls::Entry *there = m_calls.find(row.call);
        return there == nullptr || (row.filled & ~there->filled) != 0;
    }
    void begin()
    {
        if (!m_committed)
            m_databases.makeVerifiedCopy(m_path, m_copying);
        m_patience.emplace(m_callbook);
        m_transaction.emplace(m_callbook);
        m_calls.refresh();
    }
    void add(const Row &row)
    {
        store::Values values = {row.call};
        for (const QString &value : row.values)
            values.append(value);
        m_callbook.exec(m_add, values);
        m_calls.add(row.call, {m_callbook.lastRowId(), row.filled});
        ++m_inChunk;
    }
    void fill(Calls::Entry &there, const Row &row)
    {
        store::Values values;
        for (const QString &value : row.values)
            values.append(value);
        values.append(there.key);
        m_callbook.exec(m_fill, values);
        there.filled |= row.filled;
        ++m_inChunk;
    }

    store::Library &m_databases;
    QString m_path;
    store::Progress m_copying;
    store::Connection &m_callbook;
    Calls m_calls;
    const QString m_add = sql::addToCallbook(callbookFields());
    const QString m_fill = sql::fillCallbookRecord(valueFields());
    std::optional<store::Patience> m_patience;
    std::optional<store::Transaction> m_transaction;
    qint64 m_inChunk = 0;
    bool m_committed = false;
};

CallbookFile::CallbookFile(store::Library &databases, const QString &path)
    : m_databases(databases), m_path(path)
{
    if (!QFileInfo::exists(path))
        throw store::Error(store::ErrorKind::Missing, path, QStringLiteral("файла нет"));
    try {
        m_text = foreign::loadDelimited(path);
        foreign::DelimitedReader reader(m_text.bytes);
        readHeader(reader);
    } catch (const foreign::Error &error) {
        throw unreadable(path, error.text());
    }
}

/// Value of a field, or name of a column.
QString CallbookFile::cleaned(const foreign::DelimitedField &field) const
{
    QString text = field.text(m_text.coding).trimmed();
    if (text.contains(u'\n') || text.contains(u'\r')) {
        text.replace(QLatin1String("\r\n"), QLatin1String(" "));
        text.replace(u'\n', u' ');
        text.replace(u'\r', u' ');
    }
    return text;
}

void CallbookFile::readHeader(foreign::DelimitedReader &reader)
{
    if (!reader.next(m_record))
        throw foreign::Error(QStringLiteral("в файле ничего нет"));
    m_columns.clear();
    m_unknown.clear();
    for (const foreign::DelimitedField &field : m_record.fields) {
        const QString heading = cleaned(field).simplified();
        int number = fieldOf(heading);
        if (std::find(m_columns.begin(), m_columns.end(), number) != m_columns.end())
            number = -1; // the first of two is meant
        m_columns.push_back(number);
        if (number < 0 && !heading.isEmpty())
            m_unknown.append(heading);
    }
    if (std::find(m_columns.begin(), m_columns.end(), 0) == m_columns.end())
        throw foreign::Error(
            QStringLiteral("в первой строке нет столбца с позывными (ccall). Первая строка должна называть "
                           "столбцы через точку с запятой или табуляцию, например: %1")
                .arg(callbookFields().join(QLatin1Char(';'))));
}

/// What the record just read means.
void CallbookFile::takeRow()
{
    const std::size_t columns = std::min(m_columns.size(), m_record.fields.size());
    bool blank = true;
    bool tooMany = false;
    m_row.filled = 0;
    m_row.call.clear();
    for (QString &value : m_row.values)
        value.clear();
    for (std::size_t i = 0; i < m_record.fields.size(); ++i) {
        const QString text = cleaned(m_record.fields[i]);
        if (text.isEmpty())
            continue;
        blank = false;
        if (i >= columns)
            tooMany = true;
        else if (m_columns[i] == 0)
            m_row.call = text.toUpper();
        else if (m_columns[i] > 0) {
            const auto value = static_cast<std::size_t>(m_columns[i] - 1);
            m_row.values[value] = text;
            m_row.filled |= 1U << value;
        }
    }
    m_row.tooFew = m_record.fields.size() < m_columns.size();
    if (blank)
        m_row.kind = RowKind::Blank;
    else if (tooMany)
        m_row.kind = RowKind::TooMany;
    else
        m_row.kind = m_row.call.isEmpty() ? RowKind::WithoutCall : RowKind::Record;
}

/// Reads the next row with anything in it.
bool CallbookFile::next(foreign::DelimitedReader &reader)
{
    do {
        if (!reader.next(m_record))
            return false;
        takeRow();
    } while (m_row.kind == RowKind::Blank);
    return true;
}

CallbookExamination CallbookFile::examine(const CallbookStep &step)
{
    CallbookExamination found;
    found.codingName = m_text.codingName;
    found.unknownColumns = m_unknown;
    for (int field = 0; field < callbookFields().size(); ++field)
        if (std::find(m_columns.begin(), m_columns.end(), field) != m_columns.end())
            found.fields.append(callbookFields()[field]);
    Calls calls(m_databases.connection(callbookPath(m_databases)));
    QSet<QString> seen;
    try {
        foreign::DelimitedReader reader(m_text.bytes);
        readHeader(reader);
        while (next(reader)) {
            ++found.records;
            if (m_row.kind == RowKind::TooMany) {
                found.tooMany.add(m_record.line);
            } else if (m_row.tooFew) {
                found.tooFew.add(m_record.line);
            }
            if (m_row.kind == RowKind::WithoutCall)
                found.withoutCall.add(m_record.line);
            if (m_row.kind == RowKind::Record) {
                Calls::Entry *there = calls.find(m_row.call);
                const bool repeated = seen.contains(m_row.call);
                seen.insert(m_row.call);
                found.repeated += repeated ? 1 : 0;
                found.newCalls += there == nullptr ? 1 : 0;
                found.knownCalls += there != nullptr && !repeated ? 1 : 0;
                if (there == nullptr) {
                    calls.add(m_row.call, {0, m_row.filled});
                } else {
                    found.filling += (m_row.filled & ~there->filled) != 0 ? 1 : 0;
                    there->filled |= m_row.filled;
                }
            }
            if (step && found.records % kStepRows == 0 && !step(reader.position(), reader.size())) {
                found.stopped = true;
                return found;
            }
        }
    } catch (const foreign::Error &error) {
        throw unreadable(m_path, error.text());
    }
    m_rows = found.records;
    return found;
}

/// Goes through the file to its end, so that one that is damaged is refused as a whole.
void CallbookFile::check()
{
    foreign::DelimitedReader reader(m_text.bytes);
    qint64 rows = 0;
    while (reader.next(m_record))
        ++rows;
    m_rows = rows - 1; // without the header
}

void CallbookFile::importRows(foreign::DelimitedReader &reader, Target &target, const CallbookStep &step,
                              CallbookImportResult &result)
{
    CallbookImportResult now = result;
    qint64 rows = 0;
    bool stop = false;
    while (next(reader)) {
        if (stop) {
            now.stopped = true;
            break;
        }
        if (m_row.kind == RowKind::Record)
            target.take(m_row, now);
        else
            ++now.skipped;
        if (target.chunkIsFull()) {
            target.commit();
            result = now;
        }
        stop = ++rows % kStepRows == 0 && step && !step(rows, *m_rows);
    }
    target.commit();
    result = now;
}

CallbookImportResult CallbookFile::import(const CallbookImportSteps &steps)
{
    const QString path = callbookPath(m_databases);
    CallbookImportResult result;
    try {
        if (!m_rows)
            check();
        store::requireWritable(m_databases.connection(path), sql::callbookTable().toString(),
                               callbookFields());
        Target target(m_databases, path, steps.copying);
        foreign::DelimitedReader reader(m_text.bytes);
        readHeader(reader);
        try {
            importRows(reader, target, steps.adding, result);
        } catch (const store::Error &error) {
            if (!target.hasCommitted())
                throw;
            result.failed = error;
        }
    } catch (const foreign::Error &error) {
        throw unreadable(m_path, error.text());
    }
    return result;
}

} // namespace reference
