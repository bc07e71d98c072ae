#pragma once

#include "app/olddatabases.h"
#include "app/windows.h"
#include "base/clock.h"
#include "cw/steadypacer.h"
#include "cw/ui/serialline.h"
#include "interchange/emergency.h"
#include "logentry/ui/frmlog.h"
#include "report/ui/previewreports.h"
#include "store/conversion.h"
#include "store/instancelock.h"
#include "store/library.h"
#include "ui/filedialogs.h"
#include "ui/keyboardlayout.h"
#include "ui/keyrepeat.h"
#include "ui/messages.h"
#include "ui/progresswindow.h"

#include <QObject>

#include <memory>

namespace app {

/// The running program: its folder, databases, and windows.
class Program : public QObject {
    Q_OBJECT

public:
    /// `programFolder`: folder of the executable; `userFolder`: the user's data folder.
    Program(ui::Messages &messages, QString programFolder, QString userFolder);
    ~Program() override;

    /// Opens the folder and the main window. False where the program cannot run here; the operator has been
    /// told.
    bool start();

    [[nodiscard]] logentry::frmlog *mainWindow() const noexcept { return m_window.get(); }

private:
    void tellAboutFiles(const QStringList &created, const std::optional<store::Error> &failure,
                        const QStringList &alreadyTold, const QList<store::OldFile> &old);
    [[nodiscard]] QStringList openingLines(const QStringList &alreadyTold,
                                           const QList<store::OldFile> &old) const;

    ui::Messages &m_messages;
    QString m_programFolder;
    QString m_userFolder;
    base::SystemClock m_clock;
    ui::ProgressWindow m_progress;
    ui::SystemFileDialogs m_dialogs;
    OldDatabases m_oldDatabases{m_messages, m_progress};
    cw::SerialLine m_keyLine;
    cw::SteadyPacer m_pacer;
    std::unique_ptr<ui::KeyboardLayout> m_keyboard;
    ui::RepeatMarker m_repeatMarker;
    std::unique_ptr<QAbstractNativeEventFilter> m_keyWatch;
    std::unique_ptr<store::InstanceLock> m_lock;
    std::unique_ptr<store::Library> m_library;
    std::unique_ptr<interchange::EmergencyFile> m_emergency;
    std::unique_ptr<report::PreviewReports> m_reports;
    std::unique_ptr<logentry::frmlog> m_window;
    std::unique_ptr<Windows> m_windows;
};

} // namespace app
