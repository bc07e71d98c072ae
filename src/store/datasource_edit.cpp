// The pending edit of a data source: what it changes, and the row that it was typed for.
#include "store/datasource.h"

#include "store/schema.h"

#include <algorithm>

namespace store {

/// Fields by which a contact is known again. Other tables have rows that stay, or none that look alike.
QStringList DataSource::identityFields() const
{
    const auto &logs = fileLayouts().front().tables; // the log and the blank
    const bool contacts = std::any_of(logs.begin(), logs.end(), [this](const TableLayout &table) {
        return table.name.compare(m_query.table, Qt::CaseInsensitive) == 0;
    });
    QStringList fields;
    if (contacts)
        for (const char *name : {"ccall", "ddate", "ttime", "bband"})
            if (fieldIndex(QLatin1String(name)) >= 0)
                fields.append(QLatin1String(name));
    return fields;
}

std::optional<DataSource::RowMark> DataSource::mark(int index)
{
    readUpTo(index);
    if (!keyed() || index < 0 || index >= m_keys.size())
        return std::nullopt;
    RowMark mark{m_keys[index], {}};
    const QStringList fields = identityFields();
    const Row *values = row(index);
    for (const QString &field : fields)
        mark.identity.append(values->value(fieldIndex(field)));
    return mark;
}

int DataSource::find(const RowMark &wanted)
{
    fetchAll();
    const int index = keyed() ? static_cast<int>(m_keys.indexOf(wanted.key)) : -1;
    const auto found = mark(index);
    return found && found->identity == wanted.identity ? index : -1;
}

bool DataSource::updatable()
{
    ensureRun();
    return keyed() && !connection().readOnly();
}

void DataSource::setField(const QString &field, const QString &text)
{
    readFirstPage();
    if (m_failed)
        refresh(); // what is typed must not vanish because the file was busy when it was opened
    const int index = fieldIndex(field);
    if (index < 0 || !keyed())
        return;
    if (m_pending == Pending::None) {
        readUpTo(m_current);
        if (eof() || this->field(field) == text)
            return;
        const auto here = mark(m_current);
        m_identity = here ? here->identity : QStringList();
        m_pending = Pending::Editing;
    }
    m_edits[index] = text;
    Q_EMIT rowChanged(m_current);
}

void DataSource::addNew()
{
    update();
    readFirstPage();
    if (m_failed)
        refresh();
    m_pending = Pending::Adding;
    m_edits.clear();
    Q_EMIT currentChanged();
}

void DataSource::update()
{
    if (m_pending == Pending::None)
        return;
    QStringList names;
    QStringList marks;
    Values values;
    const bool adding = m_pending == Pending::Adding;
    for (const auto &[index, text] : m_edits) {
        names.append(bracketedName(m_fields[index]) + (adding ? QString() : QStringLiteral("=?")));
        marks.append(QStringLiteral("?"));
        values.append(text);
    }
    const QString table = bracketedName(m_query.table);
    Connection &file = connection();
    const Patience patience(file); // storing is worth a wait that a look-up at a key is not
    if (adding) {
        file.exec(names.isEmpty()
                      ? QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(table)
                      : QStringLiteral("INSERT INTO %1(%2) VALUES(%3)")
                            .arg(table, names.join(QLatin1Char(',')), marks.join(QLatin1Char(','))),
                  values);
    } else if (!names.isEmpty()) {
        values.append(m_keys[m_current]);
        // Where the blank was emptied and filled meanwhile, another contact has the key.
        QString same;
        const QStringList fields = identityFields();
        for (qsizetype i = 0; i < std::min(fields.size(), m_identity.size()); ++i) {
            same += QStringLiteral(" AND CAST(ifnull(%1,'') AS TEXT)=?").arg(bracketedName(fields[i]));
            values.append(m_identity[i]);
        }
        file.exec(
            QStringLiteral("UPDATE %1 SET %2 WHERE rowid=?%3").arg(table, names.join(QLatin1Char(',')), same),
            values);
        if (file.changes() == 0)
            throw Error(ErrorKind::Gone, file.path(), typedTexts());
        m_cache.remove(m_current);
    }
    m_pending = Pending::None;
    m_edits.clear();
    if (!adding)
        Q_EMIT rowChanged(m_current);
}

/// What the pending edit holds, to be shown.
QString DataSource::typedTexts() const
{
    constexpr int kLongest = 200;
    QStringList texts;
    for (const auto &[index, text] : m_edits)
        texts.append(text.size() > kLongest ? text.left(kLongest) + QStringLiteral("…") : text);
    return QStringLiteral("«%1»").arg(texts.join(QStringLiteral("», «")));
}

void DataSource::cancelUpdate()
{
    if (m_pending == Pending::None)
        return;
    m_pending = Pending::None;
    m_edits.clear();
    Q_EMIT rowChanged(m_current);
    Q_EMIT currentChanged();
}

void DataSource::removeRow(int rowIndex)
{
    readFirstPage();
    if (!keyed() || rowIndex < 0 || rowIndex >= m_keys.size())
        return;
    if (rowIndex == m_current)
        cancelUpdate();
    else
        update();
    connection().exec(QStringLiteral("DELETE FROM %1 WHERE rowid=?").arg(bracketedName(m_query.table)),
                      {m_keys[rowIndex]});
    m_keys.removeAt(rowIndex);
    m_cache.clear();
    m_knownCount = -1;
    Q_EMIT rowRemoved(rowIndex);
    setCurrent(std::min(m_current, std::max(0, knownRows() - 1)));
}

} // namespace store
