#pragma once

#include "interchange/adifwriter.h"
#include "ui/dblist.h"
#include "ui/widgets.h"

#include <QComboBox>
#include <QGroupBox>

#include <array>
#include <optional>

namespace logentry {

/// The fields of the contact being typed.
class EntryPanel : public QGroupBox {
    Q_OBJECT

public:
    explicit EntryPanel(QWidget *parent = nullptr);

    ui::FilterEdit *txtcall;
    ui::FilterEdit *txtrstr;
    ui::FilterEdit *txtrsts;
    ui::FilterEdit *txtqth;
    ui::FilterEdit *txtname;
    ui::FilterEdit *txtqslvia;
    QPushButton *cmbadd;
    QPushButton *cmbruskey;
    QLabel *lblwwod;
    QLabel *lblqth;
    QLabel *lblname;
};

/// Date and time of the contact and the time base.
class ClockPanel : public QGroupBox {
    Q_OBJECT

public:
    explicit ClockPanel(QWidget *parent = nullptr);

    ui::FilterEdit *txtdate;
    ui::FilterEdit *txttime;
    QLabel *Label10;

Q_SIGNALS:
    void timeBaseClicked();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

/// What is known about the station: country, counts, distance, bearing.
class StationPanel : public QGroupBox {
    Q_OBJECT

public:
    explicit StationPanel(QWidget *parent = nullptr);

    ui::FilterEdit *txtcontr;
    ui::FilterEdit *txtQSO;
    ui::FilterEdit *TXTQSL;
    ui::FilterEdit *txtdist;
    ui::FilterEdit *txtaz;
};

/// The record of the station that keeps the log.
class OwnStationPanel : public QGroupBox {
    Q_OBJECT

public:
    explicit OwnStationPanel(QWidget *parent = nullptr);

    ui::FilterEdit *txtNcall;
    ui::FilterEdit *txtGradN;
    ui::FilterEdit *txtMinN;
    ui::FilterEdit *txtGradE;
    ui::FilterEdit *txtMinE;
};

/// FrGorod: towns of the region and first names.
class TownPanel : public QGroupBox {
    Q_OBJECT

public:
    TownPanel(store::DataSource &towns, store::DataSource &names, QWidget *parent = nullptr);

    ui::DbList *DBList2; ///< towns
    ui::DbList *DBList3; ///< names
};

/// frmbuk: the callbook's row of the station.
class CallbookPanel : public QGroupBox {
    Q_OBJECT

public:
    explicit CallbookPanel(QWidget *parent = nullptr);

    /// Shows the current row of the callbook source.
    void showEntry(store::DataSource &callbook);

private:
    struct Box {
        QString field;
        ui::FilterEdit *edit;
    };
    QList<Box> m_boxes;
};

/// Frexpo: contacts of a period, printed, shown or exported.
class PeriodPanel : public QGroupBox {
    Q_OBJECT

public:
    explicit PeriodPanel(QWidget *parent = nullptr);

    ui::FilterEdit *txtdatmin;
    ui::FilterEdit *txtdatmax;
    QPushButton *cmbpecat; ///< print
    QPushButton *cmbwtabl; ///< into the grid
    ui::FilterEdit *txtput;
    QPushButton *cmbput;
    QPushButton *cbmotchet;
    QComboBox *cmbformat; ///< layout of the whole period's file
    QPushButton *cmbwse;  ///< the whole period into one file
    QPushButton *cmbzakr;
    QLabel *lblitog; ///< what has been printed or written

    /// Chosen layout of the whole period's file; nothing for the program's own.
    [[nodiscard]] std::optional<interchange::AdifForm> form() const;
    /// An empty text takes no room.
    void showResult(const QString &text);
};

} // namespace logentry
