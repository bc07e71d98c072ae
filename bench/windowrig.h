#pragma once

#include "base/clock.h"
#include "cw/steadypacer.h"
#include "cw/ui/serialline.h"
#include "interchange/emergency.h"
#include "logentry/ui/frmlog.h"
#include "store/library.h"
#include "ui/filteredit.h"
#include "ui/keyboardlayout.h"
#include "ui/messages.h"
#include "ui/progress.h"

#include <QElapsedTimer>
#include <QObject>

#include <memory>

namespace bench {

/// Answers every question with the first choice. A benchmark expects none: what comes up is written to the
/// error stream, and told() makes the run fail.
class SilentMessages final : public ui::Messages {
public:
    [[nodiscard]] bool askYesNo(const QString &text, const QString &title) override;
    [[nodiscard]] bool askOk(const QString &text, const QString &title) override;
    void inform(const QString &text, const QString &title) override;
    [[nodiscard]] QString choose(const QString &text, const QString &title,
                                 const QStringList &options) override;
    [[nodiscard]] QString askText(const QString &prompt, const QString &title) override;
    [[nodiscard]] int chooseCodePage(const QString &file, const foreign::CodePageDoubt &doubt) override;
    void error(const store::Error &error) override;
    [[nodiscard]] ui::NotStoredChoice notStored(const store::Error &error, const QString &contact,
                                                const QString &whereSaved) override;

    [[nodiscard]] bool told() const noexcept { return m_told; }

private:
    void tell(const QString &text);

    bool m_told = false;
};

class NoLayout final : public ui::KeyboardLayout {
public:
    void activatePrevious() override {}
    void leaveLayoutOf(const QKeyEvent &) override {}
    [[nodiscard]] bool isCyrillic(const QKeyEvent &) override { return false; }
};

/// Shows no progress.
class NoProgress final : public ui::Progress {
public:
    void begin(const QString &, bool) override {}
    [[nodiscard]] bool advance(const QString &, qint64, qint64) override { return true; }
    void end() override {}
};

/// Prints nothing.
class NoReports final : public report::Reports {
public:
    void print(const QString &) override {}
};

/// Lets the event loop run until it has nothing left to do: layouts, delayed item layouts, painting.
void settle();

/// How long the two halves of one key took, in milliseconds, each until everything is shown.
struct KeyTimes {
    double press = 0;
    double release = 0;
    /// Processor time of the release: what is left of it on a computer that does nothing else and whose disk
    /// answers at once.
    double releaseWork = 0;
};

/// The main window over a folder, 1366x768, worked by key events like an operator's.
class WindowRig : public QObject {
public:
    explicit WindowRig(const QString &folder);
    ~WindowRig() override;

    /// Empties the callsign field, which no figure counts.
    void beginCall();
    /// One character typed in the callsign field.
    KeyTimes type(QChar c);
    /// F4 pressed and released in the callsign field.
    KeyTimes pressF4();
    void showWorkedList(bool shown);

    [[nodiscard]] logentry::frmlog &window() { return *m_window; }
    /// A control by its name; fails the program where there is none.
    template <typename Widget>
    [[nodiscard]] Widget &control(const char *name)
    {
        auto *found = m_window->findChild<Widget *>(QLatin1String(name));
        if (found == nullptr)
            qFatal("the window has no %s", name);
        return *found;
    }
    [[nodiscard]] store::Connection &log();
    /// Statements started so far on all files.
    [[nodiscard]] qint64 statements();
    /// Paint events of the window's widgets so far.
    [[nodiscard]] qint64 paints() const noexcept { return m_paints; }
    [[nodiscard]] bool failed() const noexcept { return m_messages.told(); }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    KeyTimes key(int code, const QString &text);

    SilentMessages m_messages;
    NoLayout m_keyboard;
    NoProgress m_progress;
    cw::SerialLine m_keyLine;
    cw::SteadyPacer m_pacer;
    ui::SystemFileDialogs m_dialogs;
    NoReports m_reports;
    base::SystemClock m_clock;
    store::Library m_library;
    interchange::EmergencyFile m_emergency;
    std::unique_ptr<logentry::frmlog> m_window;
    ui::FilterEdit *m_call = nullptr;
    qint64 m_paints = 0;
};

} // namespace bench
