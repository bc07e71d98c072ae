#pragma once

#include "reference/countries.h"
#include "reference/ui/services.h"
#include "ui/dbgrid.h"
#include "ui/filteredit.h"
#include "ui/statusline.h"
#include "ui/windowturn.h"

#include <QPushButton>
#include <QWidget>

#include <optional>

namespace reference {

class CountryEntryFrame;
class UpdatePanel;

/// The country table: search, entry of new rows, correction of a cell, renewal from the community's file.
/// Lives, once made, as long as the program, and so does what stands in its boxes.
class dxcc1 : public QWidget {
    Q_OBJECT

public:
    explicit dxcc1(const Services &services);
    ~dxcc1() override;

    void cmbadd_Click();
    /// Reads the community's country file and shows what it would change.
    void cmbfile_Click();
    /// Renews the table as shown.
    void cmbda_Click();
    /// Leaves it as it is.
    void cmbnet_Click();

Q_SIGNALS:
    /// The window of the Russian regions is to be shown.
    void regionsAsked();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void buildLayout();
    void setTabOrders();
    void connectControls();
    void came();
    void saveLeft();

    void txtserch_KeyUp(int key);
    void txtserch1_KeyUp(int key);
    /// The table with all that belongs to it, or the question about its renewal in its place.
    void showTable(bool shown);
    void askRenewal();
    /// Throws store::Error.
    void renew();
    [[nodiscard]] std::optional<QString> cellText(const QString &field, const QString &text);
    void tellLocked();
    void deleteRow(int row);
    /// A row corrected by hand is the operator's own from then on.
    void markOwn(int row);

    Services m_services;
    Countries m_countries;
    bool m_shown = false;
    QString m_file; ///< that the table was last to be renewed from

    ui::WindowTurn *m_turn;
    ui::StatusLine *m_status;
    ui::FilterEdit *txtserch;  ///< by prefix
    ui::FilterEdit *txtserch1; ///< by name
    CountryEntryFrame *m_entry;
    ui::DbGrid *DBGrid1;
    UpdatePanel *m_update;
    QPushButton *cmbfile;
    QPushButton *Command1;
    QPushButton *cmbexit;
};

} // namespace reference
