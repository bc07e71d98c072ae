#pragma once

#include "base/clock.h"
#include "cw/ui/keyer.h"
#include "interchange/emergency.h"
#include "logentry/bands.h"
#include "logentry/completion.h"
#include "logentry/fields.h"
#include "logentry/lookups.h"
#include "logentry/recorder.h"
#include "logentry/sources.h"
#include "logentry/ui/logtasks.h"
#include "logentry/ui/mainmenu.h"
#include "logentry/ui/periodtasks.h"
#include "report/reports.h"
#include "ui/dbgrid.h"
#include "ui/dblist.h"
#include "ui/filedialogs.h"
#include "ui/keyboardlayout.h"
#include "ui/messages.h"
#include "ui/progress.h"

#include <QLabel>
#include <QMainWindow>
#include <QPointer>
#include <QSet>
#include <QTimer>

#include <functional>
#include <optional>

class QPushButton;
class QScrollArea;

namespace calc {
class CalculatorPanel;
}
namespace cw {
class KeyerPanel;
}
namespace geo {
class LocatorPanel;
}
namespace ui {
class FilterEdit;
}

namespace logentry {

class BandPanel;
class CallbookPanel;
class ClockPanel;
class EntryPanel;
class OwnStationPanel;
class PeriodPanel;
class StationPanel;
class TownPanel;

/// What the main window works with. All outlive it.
struct Services {
    store::Library &databases;
    const base::Clock &clock;
    ui::Messages &messages;
    ui::KeyboardLayout &keyboard;
    interchange::EmergencyFile &emergency;
    ui::Progress &progress;
    cw::KeyLine &keyLine;
    cw::Pacer &pacer;
    ui::FileDialogs &dialogs;
    report::Reports &reports;
};

/// The main log window. Lives as long as the program. Its handlers copy the fields into EntryFields, run a
/// rule, show the fields again and move the focus; the rules themselves are in logentry.
class frmlog : public QMainWindow {
    Q_OBJECT

public:
    explicit frmlog(const Services &services);
    ~frmlog() override;

    /// Failures of the database files at the window's opening; the window works with the others.
    [[nodiscard]] const QList<store::Error> &openingErrors() const noexcept { return m_openingErrors; }

    /// Records the contact. Called by the button and the keys.
    void cmbadd_Click();
    /// Fills date and time; the timer's slot.
    void tick();
    /// A key went up, `keyCode` as the fields' handlers left it. `functionKey`: it is neither a repetition
    /// nor pressed with Ctrl or Alt.
    void formKeyUp(int keyCode, bool functionKey);

    /// Prints the log of the period panel's days: fills the print table and runs the report. Where the table
    /// cannot be filled, the operator is told and nothing is printed.
    void Pechat();

    /// Another window has changed rows of the log: the lists read them anew.
    void logChanged();
    [[nodiscard]] const MainMenu &menu() const noexcept { return m_menu; }

    /// Full path of the log of a period's report layout.
    [[nodiscard]] const QString &reportFile() const noexcept { return m_reportFile; }
    [[nodiscard]] const EntryState &state() const noexcept { return m_state; }

Q_SIGNALS:
    /// The window has been closed, which ends the program.
    void closed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void buildLayout();
    void connectEntry();
    void connectReports();
    void connectNames();
    void connectClock();
    void connectBands();
    void connectOwnStation();
    void connectLists();
    void connectLocator();
    void connectMenu();
    void connectPeriod();
    void load();

    void readFields();
    void showFields();
    void showPanels();
    void readCallbookPanel();

    void activated();
    void retryOwnStation();
    void readOwnStation();
    /// True where the key has recorded a contact.
    bool formKeyDown(const QKeyEvent &event);
    [[nodiscard]] bool propagated(QWidget *widget, const QKeyEvent *event);

    void callsignEntered();
    void callsignKeyReleased(int key);
    void bandClicked(int index);
    void bandKeyReleased(int key);
    void modeChosen(const QString &caption);
    void ownCallsignKeyPressed();
    void timeBaseClicked();
    void cmbawto_Click();
    void mnuwwod_Click();
    void mnulist_Click();
    void MNUCW_Click();
    void mnucalk_Click();
    void mnulog_Click();
    void mnuzaglog_Click();
    void mnurewiz_Click();
    void mnuvur_Click();
    void cmbxls_Click();
    void cmbaddbuk_Click();
    void cmbcalbuk_Click();
    void cmbwtabl_Click();
    void cbmotchet_Click(bool whole);
    void cmbput_Click();
    void showDefaultPath();
    void cmbkoor_Click();
    void cmblok_Click();
    void nameKeyReleased(int key);
    void townKeyReleased(int key);
    void learnName();
    void learnTown();
    void keyerKeyReleased(int keyCode);
    void takeTown();
    void takeName();
    void deleteRow(int row);
    void finishRecording(RecordOutcome outcome);

    /// Runs queries of a typed key: a failure goes into the status line, success clears it.
    void typed(const std::function<void()> &operation);
    /// Runs something asked for: a failure is a message. False where it failed.
    bool asked(const std::function<void()> &operation);
    void showStatus(const std::optional<store::Error> &error);
    [[nodiscard]] QChar callsignFilter(QChar c, qsizetype length, const QKeyEvent *event);
    [[nodiscard]] QChar scriptFilter(const ui::FilterEdit *field, QChar c, const QKeyEvent *event);
    void focusAndSelect(ui::FilterEdit *field);

    Services m_services;
    Sources m_sources;
    EntryFields m_fields;
    EntryState m_state;
    Lookups m_lookups;
    Recorder m_recorder;
    BandSelector m_bands;
    Completion m_completion;
    LogTasks m_tasks;
    PeriodTasks m_periodTasks;
    cw::Keyer m_morse;
    QList<store::Error> m_openingErrors;
    QString m_reportFile;

    MainMenu m_menu;
    EntryPanel *m_entry;
    ClockPanel *m_clock;
    StationPanel *m_station;
    BandPanel *m_band;
    geo::LocatorPanel *m_locator;
    CallbookPanel *m_callbook;
    TownPanel *m_towns;
    OwnStationPanel *m_own;
    cw::KeyerPanel *m_keyer;
    PeriodPanel *m_period;
    calc::CalculatorPanel *m_calculator;
    ui::DbList *DBList1; ///< worked callsigns
    ui::DbGrid *DBGrid1; ///< contacts
    QScrollArea *m_scroll;
    QLabel *m_status;
    QPushButton *cmbaddbuk;
    QPushButton *cmbcalbuk;
    QPushButton *cmbxls;
    QLabel *lblwait; ///< shown while the contest list is worked on
    QLabel *txtlog;  ///< banner of the parallel log
    QTimer m_timer;

    bool m_leftForDialog = false;
    QSet<int> m_modifiedKeys;     ///< keys that went down with Ctrl or Alt
    bool m_recordedByKey = false; ///< the key that has gone up last was F4 and recorded
    bool m_givenBack = false;     ///< the last recording failed and its texts stand in the fields again
    const QKeyEvent *m_lastKeyEvent = nullptr;
    quint64 m_lastKeyTime = 0;
    QPointer<QWidget> m_lastKeyWidget;
};

} // namespace logentry
