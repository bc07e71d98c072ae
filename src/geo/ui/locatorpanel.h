#pragma once

#include "ui/widgets.h"

#include <QGroupBox>

namespace geo {

/// FrLok: locator and coordinates of the contact.
class LocatorPanel : public QGroupBox {
    Q_OBJECT

public:
    explicit LocatorPanel(QWidget *parent = nullptr);

    ui::FilterEdit *TXTLOK;
    ui::FilterEdit *TXTSIRG;
    ui::FilterEdit *TXTSHIRM;
    ui::FilterEdit *TSHIR;
    ui::FilterEdit *TXTDG;
    ui::FilterEdit *TXTDN;
    ui::FilterEdit *TDOLG;
    QPushButton *cmbkoor;
    QPushButton *cmblok;
};

} // namespace geo
