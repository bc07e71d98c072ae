#pragma once

#include "reference/ui/services.h"
#include "ui/dbgrid.h"
#include "ui/filteredit.h"
#include "ui/statusline.h"
#include "ui/windowturn.h"

#include <QPushButton>
#include <QWidget>

namespace reference {

/// The table of Russian regions, to look things up in. Lives, once made, as long as the program.
class rusdx : public QWidget {
    Q_OBJECT

public:
    explicit rusdx(const Services &services);
    ~rusdx() override;

protected:
    void showEvent(QShowEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void buildLayout();
    void txtserch_KeyUp(int key);

    Services m_services;
    store::DataSource Data1;
    ui::WindowTurn *m_turn;
    ui::StatusLine *m_status;
    ui::FilterEdit *txtserch;
    QPushButton *Command1;
    ui::DbGrid *DBGrid1;
};

} // namespace reference
