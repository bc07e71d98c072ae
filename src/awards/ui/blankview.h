#pragma once

#include "awards/blanksummary.h"
#include "ui/dbgrid.h"
#include "ui/statusline.h"

#include <QLabel>
#include <QTimer>
#include <QWidget>

namespace awards {

/// The blank: the contacts chosen for an application, and below them the line that counts them. Delete takes
/// a row out.
///
/// The rows are counted as they are stored, once the events at hand have been handled: filling the blank row
/// by row counts once, and a window that is not shown does not count at all. A blank of many thousands is
/// counted in pieces, between which the window works.
class BlankView : public QWidget {
    Q_OBJECT

public:
    /// `source` is the window's own source over the blank; `gridName` the name under which the window knows
    /// the grid.
    BlankView(store::Library &databases, store::DataSource &source, const char *gridName,
              ui::StatusLine &status, QWidget *parent);

    [[nodiscard]] ui::DbGrid *grid() const noexcept { return m_grid; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    void countSoon();
    void count();

    store::DataSource &m_source;
    ui::StatusLine &m_status;
    BlankCount m_count;
    ui::DbGrid *m_grid;
    QLabel *lblsvod;
    QTimer m_counting; ///< fires when no other event waits
    bool m_stale = true;
};

} // namespace awards
