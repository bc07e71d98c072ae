#pragma once

#include "qsl/marking.h"
#include "qsl/statistics.h"
#include "ui/boundfield.h"
#include "ui/clicklabel.h"
#include "ui/dbgrid.h"
#include "ui/dblist.h"
#include "ui/filteredit.h"

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

namespace qsl {

/// Own callsign, search, and the lists of callsigns and prefixes.
class ListPanel : public QGroupBox {
    Q_OBJECT

public:
    ListPanel(Sources &sources, const ui::BoundField::Run &run, QWidget *parent);

    ui::FilterEdit *txtnewcall;
    ui::FilterEdit *txtserch;
    ui::DbList *DBList1; ///< callsigns
    ui::DbList *DBList2; ///< country prefixes
    ui::DbList *DBList3; ///< region prefixes
    QLabel *lblnazw;
    QPushButton *Command3;
};

/// What is counted, the table of counts and the totals.
class CountPanel : public QGroupBox {
    Q_OBJECT

public:
    CountPanel(Sources &sources, const ui::BoundField::Run &run, QWidget *parent);

    void show(const Counts &counts);
    /// Shows the busy sign at once, before the counting begins.
    void showBusy();

    ui::ClickLabel *lbldxcc;
    ui::ClickLabel *txtstrana;
    QLabel *LBLGOR;
    ui::FilterEdit *txtstr; ///< name of the country looked up last; not shown
    QLabel *txtas;
    std::array<ui::ClickLabel *, kBands> lblband{};
    std::array<ui::FilterEdit *, kBands> txtotpr{};
    std::array<ui::FilterEdit *, kBands> TXTPOL{};
    std::array<ui::FilterEdit *, kBands> txtQSO{};
    std::array<ui::FilterEdit *, 3> txttot{};
    ui::FilterEdit *txttotqsl;
    ui::FilterEdit *TQSO;
    ui::FilterEdit *TCAL;
    QPushButton *cmbinfo;
    QPushButton *Command1;
};

/// The blank: its grid, the fields of its current row, and what is done with it.
class BlankPanel : public QGroupBox {
    Q_OBJECT

public:
    BlankPanel(Sources &sources, const ui::DbGrid::Run &asked, const ui::BoundField::Run &run,
               QWidget *parent);

    ui::DbGrid *DBGrid2;
    ui::FilterEdit *TXTBUKVIA;
    QPushButton *CMBQSL;
    QPushButton *Command2;
    QPushButton *cmbqslotpr;
    QPushButton *CMBDEL;
    QList<ui::FilterEdit *> fields; ///< TXTCALL, TXTDATE, ... in the order of the tab key
};

/// Entry of a contact by hand, and below it the contact of the log that stands behind.
class HandPanel : public QGroupBox {
    Q_OBJECT

public:
    HandPanel(Sources &sources, const ui::BoundField::Run &run, QWidget *parent);

    [[nodiscard]] HandEntry entry() const;
    void clear();

    std::array<ui::FilterEdit *, kHandFields> txtcall1{};
    std::array<ui::FilterEdit *, kHandFields> txtcall2{}; ///< the same fields of the row of the log
    ui::FilterEdit *txt1prf;
    ui::FilterEdit *txt1contr;
    QPushButton *cmbadd;
};

/// Lines about the sender that the cards show.
class SenderPanel : public QGroupBox {
    Q_OBJECT

public:
    SenderPanel(Sources &sources, const ui::BoundField::Run &run, QWidget *parent);

    QList<ui::FilterEdit *> fields;
};

} // namespace qsl
