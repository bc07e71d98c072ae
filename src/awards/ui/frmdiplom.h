#pragma once

#include "awards/catalogue.h"
#include "awards/picking.h"
#include "awards/sources.h"
#include "awards/ui/services.h"
#include "ui/dbgrid.h"
#include "ui/statusline.h"
#include "ui/windowturn.h"

#include <QPushButton>
#include <QWidget>

namespace awards {

class BlankView;
class CataloguePanel;
class PickPanel;
class SelectionFrame;

/// The awards window: the catalogue of awards, and the blank of contacts picked for one of them. Lives, once
/// made, as long as the program.
class frmDIPLOM : public QWidget {
    Q_OBJECT

public:
    explicit frmDIPLOM(const Services &services);
    ~frmDIPLOM() override;

    void Label1_Click();
    void cmbadd_Click();
    void cmbdel_Click();
    void cmbdxcc_Click();
    void cmbblanc_Click();
    void Command3_Click();
    void cmbUsl_Click();
    void cmbListclear_Click();
    void cmbWybor_Click();

Q_SIGNALS:
    /// Rows of the log may have changed.
    void logChanged();
    /// The application is to be shown.
    void applicationAsked();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void buildLayout();
    void setTabOrders();
    void connectCatalogue();
    void connectPicking();
    void connectBlank();
    void readAgain();
    void came();
    void saveLeft();

    void DBListStrana_Click(const QString &country);
    void DBListRegion_Click(const QString &code);
    void DBListDiplom_Click(const QString &award);
    void DBListPref_Click(const QString &prefix);
    void DBListRus_Click(const QString &prefix);
    void DBListCall_Click(const QString &call);
    void chooseCountry(const QString &country);
    void chooseRegion(const QString &code);
    /// Saves the rules before others are shown. Where that fails the lists mark again what the rules belong
    /// to; then it gives false.
    [[nodiscard]] bool leaveRules();
    void beginEntry();
    void storeEntry();
    void giveEntryUp();
    void listNewAward(const QString &country, const QString &region);
    void showRegionName();
    void focusCatalogue();
    void takePrefix(const QString &prefix);

    [[nodiscard]] bool gridKey(const QKeyEvent &event);
    void carry(int row);
    void tellFilled(const FillResult &result);

    Services m_services;
    Sources m_sources;
    Catalogue m_rules;
    Picking m_picking;
    QString m_country; ///< whose awards are listed
    QString m_region;
    QString m_award; ///< whose rules are shown
    bool m_shown = false;

    ui::WindowTurn *m_turn;
    ui::StatusLine *m_status;
    CataloguePanel *m_catalogue;
    PickPanel *m_pick;
    SelectionFrame *frWyb;
    BlankView *m_blank;
    QPushButton *cmbblanc;
    QPushButton *Command3;
    QPushButton *cmbUsl;
};

} // namespace awards
