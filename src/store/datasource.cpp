#include "store/datasource.h"

#include "store/schema.h"

#include <QMetaMethod>

#include <algorithm>
#include <limits>
#include <utility>

namespace store {

namespace {

constexpr int kNextPage = 256;
constexpr qsizetype kCachedRows = 2048;
constexpr qint64 kBeforeFirstRowId = std::numeric_limits<qint64>::min();

} // namespace

DataSource::DataSource(QString name, Library &library, QObject *parent)
    : QObject(parent), m_name(std::move(name)), m_library(library)
{}

void DataSource::setDatabaseName(const QString &path)
{
    m_databaseName = path;
    m_hasRun = false;
}

void DataSource::setRecordSource(const SqlText &text)
{
    m_recordSource = text;
}

Connection &DataSource::connection()
{
    return m_library.connection(m_query.inFile.isEmpty() ? m_databaseName : m_query.inFile);
}

void DataSource::refresh()
{
    update();
    Q_EMIT aboutToReset();
    clearRows();
    try {
        run();
    } catch (...) {
        clearRows();
        m_hasRun = true; // an empty result until the next refresh
        m_failed = true;
        Q_EMIT wasReset();
        Q_EMIT currentChanged();
        throw;
    }
    Q_EMIT wasReset();
    Q_EMIT currentChanged();
}

void DataSource::ensureRun()
{
    if (!m_hasRun)
        refresh();
}

void DataSource::clearRows()
{
    m_query = {};
    m_fields.clear();
    m_fieldIndex.clear();
    m_keys.clear();
    m_values.clear();
    m_cache.clear();
    m_complete = true;
    m_unread = false;
    m_knownCount = -1;
    m_current = 0;
}

QString DataSource::columnList() const
{
    if (m_query.columns.isEmpty())
        return QStringLiteral("*");
    QStringList parts;
    for (const QString &column : m_query.columns) {
        const QString name = bracketedName(column);
        if (!m_query.distinct || m_reading == Reading::ByValue)
            parts.append(name);
        else // null and empty are one value; letter case does not count
            parts.append(QStringLiteral("ifnull(%1,'') COLLATE %2 AS %1")
                             .arg(name, isLatinColumn(m_query.table, column) ? QStringLiteral("NOCASE")
                                                                             : QStringLiteral("RUSSIAN")));
    }
    return parts.join(QLatin1Char(','));
}

/// Chooses how the result is read; reads its first page, unless its number of rows is known without.
void DataSource::run()
{
    m_hasRun = true;
    m_failed = false;
    m_query = translateSelect(m_recordSource);
    const QString only = m_query.columns.size() == 1 ? m_query.columns.front() : QString();
    const bool latin = !only.isEmpty() && isLatinColumn(m_query.table, only);
    if (m_query.distinct) {
        const QString byOnly = bracketedName(only) + QStringLiteral(" COLLATE NOCASE");
        const bool plainOrder = m_query.order.isEmpty() || m_query.order == QStringList{byOnly};
        m_reading = latin && plainOrder ? Reading::ByValue : Reading::InOrder;
    } else {
        m_reading = m_query.order.isEmpty() ? Reading::ByRowId : Reading::InOrder;
    }
    compose();
    m_complete = false;
    m_unread = countFromTally();
    if (!m_unread)
        readPage(m_firstPage);
}

/// Makes the statements that read the result.
void DataSource::compose()
{
    // Parts are put together by the columns that order them, so the result must have these.
    bool parted = m_reading == Reading::ByValue;
    if (m_reading == Reading::InOrder && keyed()) {
        parted = !m_query.orderColumns.isEmpty();
        for (const QString &column : std::as_const(m_query.orderColumns))
            parted = parted &&
                     (m_query.columns.isEmpty() || m_query.columns.contains(column, Qt::CaseInsensitive));
    }
    m_branches = parted ? m_query.branches : QList<SelectBranch>();
    if (m_branches.isEmpty())
        m_branches.append({m_query.where, m_query.arguments});
    const QString columns = columnList();
    if (!keyed()) {
        // The values that the parts have in common are listed once.
        const QString name = bracketedName(m_query.columns.value(0));
        const bool several = m_branches.size() > 1;
        m_pageSql = composed(several ? QString() : QStringLiteral("DISTINCT ") + columns,
                             several ? QStringLiteral("%1 COLLATE NOCASE AS %1").arg(name) : QString());
        return;
    }
    m_pageSql = composed(QStringLiteral("rowid,") + columns, {});
    QString keys = QStringLiteral("rowid");
    if (m_branches.size() > 1)
        for (const QString &column : std::as_const(m_query.orderColumns))
            keys += QLatin1Char(',') + bracketedName(column);
    m_keysSql = composed(keys, {});
}

/// Statement of all parts, of all rows where `columns`, or of the different values of the one column.
/// `firstColumns`: the first part's, where they are to be merged into different values.
QString DataSource::composed(const QString &columns, const QString &firstColumns) const
{
    const QString table = bracketedName(m_query.table);
    const QString only = bracketedName(m_query.columns.value(0));
    QStringList selects;
    for (const SelectBranch &branch : m_branches) {
        QStringList where;
        if (!branch.where.isEmpty())
            where.append(QStringLiteral("(%1)").arg(branch.where));
        if (m_reading == Reading::ByRowId)
            where.append(QStringLiteral("rowid>?"));
        if (m_reading == Reading::ByValue) {
            // Null and empty are one value: where both stand in the column, only the empty one is listed.
            const QString also =
                m_query.where.isEmpty() ? QString() : QStringLiteral(" AND (%1)").arg(m_query.where);
            where.append(QStringLiteral("(%1 IS NOT NULL OR NOT EXISTS(SELECT 1 FROM %2 WHERE %1=''%3))")
                             .arg(only, table, also));
        }
        QString select = QStringLiteral("SELECT %1 FROM %2")
                             .arg(!columns.isEmpty()  ? columns
                                  : selects.isEmpty() ? firstColumns
                                                      : only,
                                  table);
        if (!where.isEmpty())
            select += QStringLiteral(" WHERE ") + where.join(QStringLiteral(" AND "));
        if (m_reading == Reading::ByValue)
            select += QStringLiteral("%1"); // place of the condition "behind the last value"
        selects.append(select);
    }
    QStringList order = m_query.order;
    if (m_reading == Reading::ByRowId)
        order = QStringList{QStringLiteral("rowid")};
    else if (m_reading == Reading::ByValue)
        order =
            QStringList{columns.isEmpty() ? QStringLiteral("1") : only + QStringLiteral(" COLLATE NOCASE")};
    else if (m_query.distinct && order.isEmpty())
        for (int i = 1; i <= m_query.columns.size(); ++i)
            order.append(QString::number(i));
    if (m_reading == Reading::InOrder && keyed())
        order.append(QStringLiteral("rowid"));
    return selects.join(keyed() ? QStringLiteral(" UNION ALL ") : QStringLiteral(" UNION ")) +
           QStringLiteral(" ORDER BY ") + order.join(QLatin1Char(',')) + QStringLiteral(" LIMIT ?");
}

void DataSource::noteColumns(Cursor &cursor)
{
    if (!m_fields.isEmpty())
        return;
    for (int i = keyed() ? 1 : 0; i < cursor.columnCount(); ++i) {
        m_fieldIndex.insert(cursor.columnName(i).toLower(), static_cast<int>(m_fields.size()));
        m_fields.append(cursor.columnName(i));
    }
}

DataSource::Row DataSource::rowOf(const Cursor &cursor) const
{
    const int first = keyed() ? 1 : 0;
    Row values;
    values.reserve(m_fields.size());
    for (int i = first; i < cursor.columnCount(); ++i)
        values.append(cursor.text(i));
    return values;
}

void DataSource::appendRow(const Cursor &cursor)
{
    if (!keyed()) {
        m_values.append(rowOf(cursor));
        return;
    }
    if (m_cache.size() >= kCachedRows)
        m_cache.clear();
    m_cache.insert(static_cast<int>(m_keys.size()), rowOf(cursor));
    m_keys.append(cursor.number(0));
}

/// Values for the next page's statement, without the number of rows.
Values DataSource::pageArguments() const
{
    Values values;
    for (const SelectBranch &branch : m_branches) {
        values += branch.arguments;
        if (m_reading == Reading::ByRowId)
            values.append(m_keys.isEmpty() ? kBeforeFirstRowId : m_keys.constLast());
        if (m_reading != Reading::ByValue)
            continue;
        if (!m_query.where.isEmpty())
            values += m_query.arguments;
        if (!m_values.isEmpty())
            values.append(m_values.constLast().front());
    }
    return values + m_query.orderArguments;
}

void DataSource::readPage(int limit)
{
    QString sql = m_pageSql;
    if (m_reading == Reading::ByValue)
        sql.replace(
            QStringLiteral("%1"),
            m_values.isEmpty()
                ? QString()
                : QStringLiteral(" AND %1>? COLLATE NOCASE").arg(bracketedName(m_query.columns.front())));
    Values values = pageArguments();
    values.append(qint64{limit});
    const qsizetype before = keyed() ? m_keys.size() : m_values.size();
    Cursor cursor = connection().run(sql, values);
    noteColumns(cursor);
    while (cursor.next())
        appendRow(cursor);
    const qsizetype after = keyed() ? m_keys.size() : m_values.size();
    m_complete = after - before < limit;
    if (m_complete)
        m_knownCount = -1; // the rows themselves tell, also where another program has just changed the log
}

/// Rows of a result that was only counted so far.
void DataSource::readFirstPage()
{
    ensureRun();
    if (!m_unread)
        return;
    m_unread = false;
    readPage(m_firstPage);
}

/// The row itself is wanted where the rows may only have been counted.
void DataSource::readUpTo(int row)
{
    readFirstPage();
    if (row >= knownRows() && row < m_knownCount)
        fetchAll();
}

/// Reads the keys (or values) of all rows of a sorted result. The known rows stay and the others are added
/// behind them, unless the order has changed since the first page.
void DataSource::readAllKeys()
{
    Values values = pageArguments();
    values.append(qint64{-1}); // no limit
    QList<qint64> keys;
    QList<Row> rows;
    {
        Cursor cursor = connection().run(keyed() ? m_keysSql : m_pageSql, values);
        while (cursor.next()) {
            if (keyed())
                keys.append(cursor.number(0));
            else
                rows.append(rowOf(cursor));
        }
    }
    const int before = knownRows();
    const bool same = keyed() ? keys.mid(0, before) == m_keys : rows.mid(0, before) == m_values;
    if (!same) {
        Q_EMIT aboutToReset();
        m_cache.clear();
    }
    m_keys = std::move(keys);
    m_values = std::move(rows);
    m_complete = true;
    m_knownCount = -1;
    if (!same)
        Q_EMIT wasReset();
    else if (knownRows() > before)
        Q_EMIT rowsAdded(before, knownRows() - 1);
}

int DataSource::knownRows()
{
    readFirstPage();
    return static_cast<int>(keyed() ? m_keys.size() : m_values.size());
}

bool DataSource::canFetchMore()
{
    readFirstPage();
    return !m_complete;
}

void DataSource::fetchMore()
{
    if (!canFetchMore())
        return;
    if (m_reading == Reading::InOrder) {
        fetchAll();
        return;
    }
    const int before = knownRows();
    readPage(kNextPage);
    const int after = knownRows();
    if (after > before)
        Q_EMIT rowsAdded(before, after - 1);
}

void DataSource::fetchAll()
{
    if (!canFetchMore())
        return;
    if (m_reading == Reading::InOrder) {
        readAllKeys();
        return;
    }
    const int before = knownRows();
    if (m_reading == Reading::ByRowId) {
        Values values = pageArguments();
        values.append(qint64{-1});
        Cursor cursor = connection().run(m_keysSql, values);
        while (cursor.next())
            m_keys.append(cursor.number(0));
        m_complete = true;
        m_knownCount = -1;
    } else {
        readPage(std::numeric_limits<int>::max());
    }
    const int after = knownRows();
    if (after > before)
        Q_EMIT rowsAdded(before, after - 1);
}

const DataSource::Row *DataSource::row(int index)
{
    if (index < 0 || index >= knownRows())
        return nullptr;
    if (!keyed())
        return &m_values[index];
    auto found = m_cache.find(index);
    if (found == m_cache.end()) {
        if (m_cache.size() >= kCachedRows)
            m_cache.clear();
        Row values;
        Cursor cursor = connection().run(
            QStringLiteral("SELECT %1 FROM %2 WHERE rowid=?").arg(columnList(), bracketedName(m_query.table)),
            {m_keys[index]});
        if (cursor.next())
            for (int i = 0; i < cursor.columnCount(); ++i)
                values.append(cursor.text(i));
        found = m_cache.insert(index, values); // a row deleted meanwhile reads empty
    }
    return &*found;
}

int DataSource::fieldIndex(const QString &field) const
{
    return m_fieldIndex.value(field.toLower(), -1);
}

bool DataSource::isEmpty()
{
    ensureRun();
    return m_unread ? m_knownCount == 0 : knownRows() == 0;
}

bool DataSource::eof()
{
    ensureRun();
    return m_knownCount >= 0 ? m_current >= m_knownCount : m_current >= knownRows();
}

int DataSource::recordCount()
{
    ensureRun();
    return m_knownCount >= 0 ? m_knownCount : knownRows();
}

/// The number of rows from what the log file keeps counted, where it does; false where it does not.
bool DataSource::countFromTally()
{
    const TableLayout &table = fileLayouts().front().tables.front();
    if (!m_query.asksTallied || m_query.columns.size() != 1 ||
        m_query.table.compare(table.name, Qt::CaseInsensitive) != 0)
        return false;
    const QString column = m_query.columns.front();
    const bool known = std::any_of(table.columns.begin(), table.columns.end(), [&](const ColumnLayout &one) {
        return one.name.compare(column, Qt::CaseInsensitive) == 0;
    });
    if (m_query.distinct ? !isTalliedColumn(column) : !known)
        return false;
    Connection &log = connection();
    if (!log.keepsTally())
        return false;
    const QString number = m_query.distinct ? QStringLiteral("count(DISTINCT %1)").arg(bracketedName(column))
                                            : QStringLiteral("ifnull(sum(contacts),0)");
    const QString also = m_query.where.isEmpty() ? QString() : QStringLiteral(" AND (%1)").arg(m_query.where);
    m_knownCount = static_cast<int>(log.singleNumber(
        QStringLiteral("SELECT %1 FROM %2 WHERE contacts>0%3").arg(number, tallyTable(), also),
        m_query.arguments));
    return true;
}

/// The count of different callsigns of a country from the counters that the log file keeps, where it has
/// them; that of another list of values by the engine, without reading the values here.
void DataSource::countAtOnce()
{
    Connection &file = connection();
    if (m_query.countsCountry && file.keepsCounters() &&
        m_query.table.compare(fileLayouts().front().tables.front().name, Qt::CaseInsensitive) == 0) {
        m_knownCount = static_cast<int>(file.singleNumber(
            QStringLiteral("SELECT %1 FROM %2 WHERE contr=?")
                .arg(m_query.countsCards ? QStringLiteral("cards") : QStringLiteral("calls"),
                     countryCountersTable()),
            {m_query.countedCountry}));
        return;
    }
    // Where a list shows them, the rows are read all the same.
    if (keyed() || isSignalConnected(QMetaMethod::fromSignal(&DataSource::rowsAdded)))
        return;
    const qsizetype read = m_values.size();
    QString behind = m_pageSql;
    Values values = pageArguments();
    values.append(qint64{-1}); // no limit
    if (m_reading == Reading::ByValue)
        behind.replace(
            QStringLiteral("%1"),
            QStringLiteral(" AND %1>? COLLATE NOCASE").arg(bracketedName(m_query.columns.front())));
    m_knownCount =
        static_cast<int>(file.singleNumber(QStringLiteral("SELECT count(*) FROM (%1)").arg(behind), values) +
                         (m_reading == Reading::ByValue ? read : 0));
}

void DataSource::setCurrent(int row)
{
    m_current = row;
    Q_EMIT currentChanged();
}

void DataSource::moveFirst()
{
    update();
    ensureRun();
    setCurrent(0);
}

void DataSource::moveNext()
{
    update();
    ensureRun();
    if (m_current + 1 >= knownRows())
        fetchMore();
    if (m_current < knownRows())
        setCurrent(m_current + 1);
}

void DataSource::movePrevious()
{
    update();
    ensureRun();
    if (m_current > 0)
        setCurrent(m_current - 1);
}

void DataSource::moveLast()
{
    update();
    ensureRun();
    if (isEmpty())
        return;
    if (!m_complete && m_knownCount < 0)
        countAtOnce();
    if (m_knownCount < 0)
        fetchAll();
    setCurrent(recordCount() - 1);
}

void DataSource::moveTo(int row)
{
    if (row == m_current && m_pending != Pending::Adding)
        return;
    update();
    ensureRun();
    setCurrent(row);
}

const QStringList &DataSource::fieldNames()
{
    readFirstPage();
    return m_fields;
}

bool DataSource::hasField(const QString &field)
{
    readFirstPage();
    return fieldIndex(field) >= 0;
}

QString DataSource::field(const QString &field)
{
    readFirstPage();
    const int index = fieldIndex(field);
    if (index < 0)
        return {};
    if (m_pending != Pending::None) {
        const auto edited = m_edits.find(index);
        if (edited != m_edits.end())
            return edited->second;
        if (m_pending == Pending::Adding)
            return {};
    }
    readUpTo(m_current);
    const Row *values = row(m_current);
    return values != nullptr && index < values->size() ? values->at(index) : QString();
}

QString DataSource::text(int rowIndex, const QString &field)
{
    readUpTo(rowIndex);
    const int index = fieldIndex(field);
    if (index < 0)
        return {};
    if (m_pending == Pending::Editing && rowIndex == m_current) {
        const auto edited = m_edits.find(index);
        if (edited != m_edits.end())
            return edited->second;
    }
    const Row *values = row(rowIndex);
    return values != nullptr && index < values->size() ? values->at(index) : QString();
}

} // namespace store
