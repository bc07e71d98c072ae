#pragma once

#include "ui/sourcemodel.h"

#include <QListView>

namespace ui {

/// List bound to one field of a data source.
class DbList : public QListView {
    Q_OBJECT

public:
    DbList(store::DataSource &source, const QString &field, QWidget *parent = nullptr);

    /// Text of the selected row; of the first one while none is selected; empty for an empty list.
    [[nodiscard]] QString text() const;
    /// Text of the selected row; empty while none is selected.
    [[nodiscard]] QString chosenText() const;
    /// Selects the first row with this text, without telling anybody; none where there is no such row. Reads
    /// all rows for it: only for short lists.
    void choose(const QString &text);
    [[nodiscard]] SourceModel *sourceModel() const noexcept { return m_model; }
    /// Typed letters find a row further down than has been read so far, in very long lists among the first
    /// 20,000.
    void keyboardSearch(const QString &search) override;

Q_SIGNALS:
    /// A row was chosen with the mouse.
    void chosen(const QString &text);
    /// Another row was reached with the keyboard, or Enter pressed on this one.
    void reached(const QString &text);
    /// Enter was pressed on a row; comes after reached().
    void confirmed(const QString &text);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    SourceModel *m_model;
};

} // namespace ui
