#pragma once

#include "logentry/ui/frmlog.h"
#include "support/installation.h"
#include "support/recordedline.h"
#include "ui/filedialogs.h"
#include "ui/filteredit.h"
#include "ui/messages.h"

#include <QAction>
#include <QTest>

namespace testsupport {

/// Answers questions and remembers what was asked and told.
class FakeMessages final : public ui::Messages {
public:
    bool yes = true;
    QList<bool> answers;                ///< of the next questions, first to last; then `yes`
    QList<ui::NotStoredChoice> choices; ///< answers of notStored, first to last; then GiveBack
    std::function<void()> beforeChoice;
    QStringList asked; ///< "title: text"
    QStringList told;
    QStringList errors;
    QStringList texts; ///< answers of askText, first to last; then nothing
    int codePage = 1251;
    QStringList doubted; ///< files whose code page was asked for
    QStringList notStoredContacts;
    QStringList whereSaved;

    [[nodiscard]] bool askYesNo(const QString &text, const QString &title) override;
    /// Answered like a Yes/No question.
    [[nodiscard]] bool askOk(const QString &text, const QString &title) override;
    void inform(const QString &text, const QString &title) override;
    [[nodiscard]] QString choose(const QString &text, const QString &title,
                                 const QStringList &options) override;
    [[nodiscard]] QString askText(const QString &prompt, const QString &title) override;
    /// Answers `codePage`; 0 is none.
    [[nodiscard]] int chooseCodePage(const QString &file, const foreign::CodePageDoubt &doubt) override;
    void error(const store::Error &error) override;
    [[nodiscard]] ui::NotStoredChoice notStored(const store::Error &error, const QString &contact,
                                                const QString &where) override;
};

/// Remembers the steps of long operations; may stop them.
class FakeProgress final : public ui::Progress {
public:
    QStringList steps; ///< "title", then "what: done of total" each, then "end"
    bool stoppable = false;
    bool stopNow = false; ///< the operator wants to stop
    std::function<void()> atStep;

    void begin(const QString &title, bool mayStop) override;
    [[nodiscard]] bool advance(const QString &what, qint64 done, qint64 total) override;
    void end() override { steps.append(QStringLiteral("end")); }
};

/// Chooses files.
class FakeDialogs final : public ui::FileDialogs {
public:
    QString chosen;     ///< by every dialog; empty for none
    QStringList opened; ///< "open|save: title|start|filters" each
    [[nodiscard]] QString fileToOpen(QWidget *parent, const QString &title, const QString &start,
                                     const QStringList &filters) override;
    [[nodiscard]] QString fileToSave(QWidget *parent, const QString &title, const QString &start,
                                     const QStringList &filters) override;
};

/// Notes which layouts were run.
class FakeReports final : public report::Reports {
public:
    QStringList printed;
    std::function<void()> atPrint;
    void print(const QString &layoutFile) override;
};

class FakeKeyboard final : public ui::KeyboardLayout {
public:
    int previous = 0;
    int left = 0;
    void activatePrevious() override { ++previous; }
    void leaveLayoutOf(const QKeyEvent &) override { ++left; }
    bool cyrillic = false; ///< the layout that keys are typed in
    [[nodiscard]] bool isCyrillic(const QKeyEvent &) override { return cyrillic; }
};

/// The main window on a fresh installation.
class Window {
public:
    explicit Window(const std::function<void(Installation &)> &prepare = {});

    template <typename Widget>
    [[nodiscard]] Widget *find(const char *name) const
    {
        auto *widget = log->findChild<Widget *>(QLatin1String(name));
        if (widget == nullptr)
            qFatal("no %s", name);
        return widget;
    }
    [[nodiscard]] ui::FilterEdit *edit(const char *name) const { return find<ui::FilterEdit>(name); }
    [[nodiscard]] QString text(const char *name) const { return edit(name)->text(); }
    [[nodiscard]] QAction *action(const char *name) const { return find<QAction>(name); }

    /// Key events to the active window, as the platform sends them: any characters, Cyrillic too. They reach
    /// what has the focus by then.
    void type(const QString &text);
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    /// The same with the mouse, in the middle of a widget.
    void click(const char *name, Qt::MouseButton button = Qt::LeftButton);
    [[nodiscard]] QString focus() const; ///< name of the widget with the focus
    [[nodiscard]] QString status() const;
    [[nodiscard]] QStringList gridCalls() const;

    Installation installation;
    FixedClock clock;
    FakeMessages messages;
    FakeKeyboard keyboard;
    interchange::EmergencyFile emergency;
    FakeProgress progress;
    RecordedLine line;
    FakeDialogs dialogs;
    FakeReports reports;
    std::unique_ptr<logentry::frmlog> log;

private:
    [[nodiscard]] QWindow *active() const;
};

} // namespace testsupport
