#pragma once

#include "ui/sourcemodel.h"

#include <QTableView>

#include <functional>
#include <optional>

namespace ui {

/// Grid over a data source, edited in place. Every character typed into a cell is turned into its upper-case
/// form. The changed row is saved when it is left, by moving to another row or out of the grid; Esc drops the
/// change. Delete asks for the row's deletion.
class DbGrid : public QTableView {
    Q_OBJECT

public:
    /// Runs an operation that the operator asked for; false where it failed (and the failure was shown).
    using Run = std::function<bool(const std::function<void()> &)>;

    DbGrid(store::DataSource &source, QList<GridColumn> columns, Run run, QWidget *parent = nullptr);

    /// Widths of the columns in characters; 0 leaves a column as it is.
    void setColumnWidths(const QList<int> &characters);
    /// Letters open cells of these columns only; F2 opens the others too. For a grid in which one looks
    /// things up and marks a few: keys that were meant for somewhere else must not change a row.
    void setTypedColumns(const QList<int> &columns) { m_typedColumns = columns; }
    /// Character to enter into an open cell for a typed or pasted one; null swallows it. `length`: characters
    /// that stay in the cell.
    using CellFilter = std::function<QChar(int column, QChar typed, qsizetype length)>;
    /// Text to take over from a cell that is closed; nothing leaves the cell as it was.
    using CellText = std::function<std::optional<QString>(int column, const QString &text)>;
    /// In place of the upper-case form alone, and of the text as it stands.
    void setCellRules(CellFilter filter, CellText taken);
    /// Shows the last row; reads all rows for it.
    void showLastRow();
    /// Takes over what stands in an open cell and saves the row. False where it could not be saved.
    bool saveRow();
    /// A cell is open, or what was typed into its row has not been saved.
    [[nodiscard]] bool editing() const;
    /// Reads the rows anew; a pending edit is saved first. The row that was current stays so, wherever it is
    /// now; where it is gone no cell is current, so that what is typed goes into no other row. The place in
    /// sight stays. Throws Error.
    void readAgain();
    using QTableView::edit;
    [[nodiscard]] SourceModel *sourceModel() const noexcept { return m_model; }

Q_SIGNALS:
    /// Delete was pressed on a row.
    void deleteAsked(int row);
    /// F2 was pressed on a cell, or it was clicked twice, and it cannot be edited.
    void editRefused();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    bool edit(const QModelIndex &index, EditTrigger trigger, QEvent *event) override;

private:
    void leftWithFocus(QWidget *old, QWidget *now);
    /// What is typed goes into the current cell, so that one is seen.
    void markCurrent();

    SourceModel *m_model;
    Run m_run;
    QList<int> m_typedColumns; ///< empty: all
    bool m_returning = false;
    bool m_leaving = false;
};

} // namespace ui
