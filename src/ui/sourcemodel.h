#pragma once

#include "store/datasource.h"

#include <QAbstractTableModel>
#include <QList>

#include <optional>

namespace ui {

struct GridColumn {
    QString field;
    QString heading;
    int width = 0; ///< in characters; 0: the view's own
};

/// Rows of a data source for a view. The columns never change; a column whose field the source's statement
/// does not deliver stands empty. Cells of a source that can be changed are editable; a changed row is saved
/// when it is left.
class SourceModel : public QAbstractTableModel {
    Q_OBJECT

public:
    SourceModel(store::DataSource &source, QList<GridColumn> columns, bool editable, QObject *parent);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    [[nodiscard]] bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;

    [[nodiscard]] store::DataSource &source() const noexcept { return m_source; }
    [[nodiscard]] const QList<GridColumn> &columns() const noexcept { return m_columns; }

Q_SIGNALS:
    /// Reading rows for the view failed.
    void failed(const store::Error &error) const;

private:
    void readCount();

    store::DataSource &m_source;
    QList<GridColumn> m_columns;
    bool m_editable;
    int m_rows = 0;
    bool m_resetting = false;
};

} // namespace ui
