#pragma once

#include "qsl/marking.h"
#include "qsl/sources.h"
#include "qsl/statistics.h"
#include "qsl/ui/services.h"
#include "ui/dbgrid.h"
#include "ui/statusline.h"
#include "ui/windowturn.h"

#include <QAction>
#include <QMainWindow>

namespace qsl {

class BlankPanel;
class CountPanel;
class HandPanel;
class ListPanel;
class SenderPanel;

/// The bureau: counts of cards, the blank of contacts for cards, marks in the log, entry by hand. Lives, once
/// made, as long as the program.
class QSLburo : public QMainWindow {
    Q_OBJECT

public:
    explicit QSLburo(const Services &services);
    ~QSLburo() override;

    /// Counts the chosen country per band; the countries of the log where none is chosen.
    void info();

    void lbldxcc_Click();
    void cmbinfo_Click();
    void Command1_Click();
    void Command3_Click();
    void CMBQSL_Click();
    void Command2_Click();
    void cmbqslotpr_Click();
    void CMBDEL_Click();
    void cmbadd_Click();

    QAction *mnulog;
    QAction *mnudxcc;
    QAction *mnuexit;

Q_SIGNALS:
    /// Rows of the log may have changed.
    void logChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void buildMenu();
    void buildLayout();
    void setTabOrders();
    void connectLists();
    void connectBlank();
    void connectEntry();
    void came();
    void saveLeft();

    void Form_GotFocus();
    void readAgain(store::DataSource &source);
    void tellMarked(const MarkResult &result);
    void tellBlank();
    void showBlankRow(int row);
    void needOwnKey();
    void DBList1_Click(const QString &call);
    void DBList2_Click();
    void DBList3_Click();
    void lblband_Click(int band);
    void txtstrana_Click();
    void txtserch_GotFocus();
    void txtserch_KeyUp(int key);
    void txtnewcall_KeyUp();
    void showCallsOnAllBands(int row);
    [[nodiscard]] bool gridKey(const QKeyEvent &event);
    [[nodiscard]] bool listKey(const QKeyEvent &event);
    void copyToBlank(int row);
    [[nodiscard]] bool giveRowUp();
    void toSearch();

    [[nodiscard]] QChar searchFilter(QChar typed, qsizetype length) const;
    [[nodiscard]] QString country() const;
    void setCountry(const QString &name);
    void setCalls(const store::SqlText &calls);
    void setContacts(const store::SqlText &contacts);
    void countRegion();
    void markBlank();
    void showRegionName();

    Services m_services;
    Sources m_sources;
    Statistics m_statistics;
    Marking m_marking;
    Selector m_selector;
    Counts m_counts;
    QString m_ownCallKey;
    QString m_chosenCall; ///< picked last while everything was selected
    QString m_reportFile;
    bool m_shown = false;

    ui::WindowTurn *m_turn;
    ui::StatusLine *m_status;
    ListPanel *m_lists;
    CountPanel *m_countPanel;
    BlankPanel *m_blank;
    HandPanel *m_hand;
    SenderPanel *m_sender;
    ui::DbGrid *DBGrid1; ///< contacts
};

} // namespace qsl
