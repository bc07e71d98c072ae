#include "ui/sourcemodel.h"

#include <utility>

namespace ui {

SourceModel::SourceModel(store::DataSource &source, QList<GridColumn> columns, bool editable, QObject *parent)
    : QAbstractTableModel(parent), m_source(source), m_columns(std::move(columns)), m_editable(editable)
{
    connect(&m_source, &store::DataSource::aboutToReset, this, [this] {
        beginResetModel();
        m_resetting = true;
        m_rows = 0;
    });
    connect(&m_source, &store::DataSource::wasReset, this, [this] {
        readCount();
        m_resetting = false;
        endResetModel();
    });
    connect(&m_source, &store::DataSource::rowsAdded, this, [this](int first, int last) {
        beginInsertRows({}, first, last);
        m_rows = last + 1;
        endInsertRows();
    });
    connect(&m_source, &store::DataSource::rowRemoved, this, [this](int row) {
        beginRemoveRows({}, row, row);
        --m_rows;
        endRemoveRows();
    });
    connect(&m_source, &store::DataSource::rowChanged, this, [this](int row) {
        if (row < m_rows)
            Q_EMIT dataChanged(index(row, 0), index(row, static_cast<int>(m_columns.size()) - 1));
    });
    readCount();
}

void SourceModel::readCount()
{
    try {
        m_rows = m_source.knownRows();
    } catch (const store::Error &error) {
        m_rows = 0;
        Q_EMIT failed(error);
    }
}

int SourceModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

int SourceModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant SourceModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::EditRole))
        return {};
    try {
        return m_source.text(index.row(), m_columns[index.column()].field);
    } catch (const store::Error &error) {
        Q_EMIT failed(error);
        return {};
    }
}

QVariant SourceModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return m_columns[section].heading;
    return {};
}

Qt::ItemFlags SourceModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (!m_editable || !index.isValid())
        return flags;
    try {
        if (m_source.updatable() && m_source.hasField(m_columns[index.column()].field))
            flags |= Qt::ItemIsEditable;
    } catch (const store::Error &error) {
        Q_EMIT failed(error);
    }
    return flags;
}

bool SourceModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    try {
        m_source.moveTo(index.row());
        m_source.setField(m_columns[index.column()].field, value.toString());
        return true;
    } catch (const store::Error &error) {
        Q_EMIT failed(error);
        return false;
    }
}

bool SourceModel::canFetchMore(const QModelIndex &parent) const
{
    if (parent.isValid() || m_resetting)
        return false;
    try {
        return m_source.canFetchMore();
    } catch (const store::Error &error) {
        Q_EMIT failed(error);
        return false;
    }
}

void SourceModel::fetchMore(const QModelIndex &parent)
{
    if (parent.isValid())
        return;
    try {
        m_source.fetchMore();
    } catch (const store::Error &error) {
        Q_EMIT failed(error);
    }
}

} // namespace ui
