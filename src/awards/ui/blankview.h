#pragma once

#include "ui/dbgrid.h"
#include "ui/statusline.h"

#include <QLabel>
#include <QWidget>

namespace awards {

/// The blank: the contacts chosen for an application, and below them the line that counts them. Delete takes
/// a row out.
class BlankView : public QWidget {
    Q_OBJECT

public:
    /// `source` is the window's own source over the blank; `gridName` the name under which the window knows
    /// the grid.
    BlankView(store::Library &databases, store::DataSource &source, const char *gridName,
              ui::StatusLine &status, QWidget *parent);

    [[nodiscard]] ui::DbGrid *grid() const noexcept { return m_grid; }

private:
    void count();

    store::Library &m_databases;
    store::DataSource &m_source;
    ui::StatusLine &m_status;
    ui::DbGrid *m_grid;
    QLabel *lblsvod;
};

} // namespace awards
