#pragma once

#include "reference/callbook.h"
#include "reference/ui/callbooktasks.h"
#include "reference/ui/services.h"
#include "ui/dblist.h"
#include "ui/filteredit.h"
#include "ui/statusline.h"
#include "ui/windowturn.h"

#include <QGroupBox>
#include <QPushButton>
#include <QWidget>

namespace reference {

class LogFrame;
class RecordFrame;

/// The callbook: what log and callbook know of a station, making a record and editing it in place, the whole
/// callbook from and into a text file. Lives, once made, as long as the program.
class frmcalbuk : public QWidget {
    Q_OBJECT

public:
    explicit frmcalbuk(const Services &services);
    ~frmcalbuk() override;

    void cmbadd_Click();
    void cmbimport_Click();
    void cmbexport_Click();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void buildLayout();
    [[nodiscard]] QGroupBox *makeHelp(QWidget *parent);
    void connectBoxes();
    void came();
    void saveLeft();

    void txtserch_KeyUp(int key);
    void enterList();
    void DBList1_Click(const QString &call);
    /// Looks a callsign up and shows what was found, also where only a part could be read. Throws
    /// store::Error.
    void lookUp(const QString &call);
    void lockRecord();
    /// Why the record's boxes take no text; empty where they do.
    [[nodiscard]] QString lockReason();
    /// False where what was typed could not be stored; it stays, and the operator has been told.
    [[nodiscard]] bool saveRecord();

    Services m_services;
    Callbook m_callbook;
    CallbookTasks m_tasks;
    bool m_shown = false;

    ui::WindowTurn *m_turn;
    ui::StatusLine *m_status;
    ui::FilterEdit *txtserch;
    ui::DbList *DBList1; ///< callsigns of the log
    LogFrame *m_log;
    RecordFrame *m_record;
    QPushButton *cmbadd;
    QPushButton *cmbimport;
    QPushButton *cmbexport;
    QPushButton *Command1;
};

} // namespace reference
