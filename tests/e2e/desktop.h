#pragma once

#include <QImage>
#include <QList>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace e2e {

inline constexpr int kPatience = 30000; ///< milliseconds that a busy machine may take for anything

/// Asks for a condition every few milliseconds until it holds. False where the time is over before.
[[nodiscard]] bool waitFor(const std::function<bool()> &condition, int milliseconds = kPatience);

enum class Key {
    Enter,
    Tab,
    BackTab, ///< with Shift
    Space,
    Escape,
    Backspace,
    Up,
    Down,
    Left,
    Right,
    F4,
    F5,
    F6,
    F10,
    Alt, ///< alone: to the menu bar
};

/// The two layouts of the desktop's keyboard: XKB groups 0 and 1.
enum class Layout { Latin = 0, Russian = 1 };

using Window = unsigned long;

/// An X server of its own, without a screen and without a window manager, whose keyboard has a Latin and a
/// Russian layout. Keys are events of the server: a program cannot tell them from those of a keyboard.
class Desktop {
public:
    Desktop();
    Desktop(const Desktop &) = delete;
    Desktop &operator=(const Desktop &) = delete;
    ~Desktop();

    /// False where a tool is missing or fails; then problem() tells which.
    [[nodiscard]] bool start();
    void stop();
    [[nodiscard]] const QString &problem() const noexcept { return m_problem; }
    [[nodiscard]] const QString &displayName() const noexcept { return m_displayName; }

    /// One key down and up, `times` times.
    void press(Key key, int times = 1);
    /// A letter with Ctrl.
    void pressControl(char letter);
    /// The keys that give the text on a Latin keyboard, whatever the layout in force makes of them.
    void type(const QString &text);
    /// The same and `last`, which goes down before the text's last key has gone up, as under fast fingers.
    void typeOverlapping(const QString &text, Key last);
    /// The keys that give a Russian text on a Russian keyboard.
    void typeRussian(const QString &text);

    [[nodiscard]] Layout layout();
    void lockLayout(Layout layout);

    /// Visible windows of a process.
    [[nodiscard]] QList<Window> windows(qint64 process) const;
    [[nodiscard]] QString caption(Window window) const;
    [[nodiscard]] bool focus(Window window) const;
    [[nodiscard]] bool resize(Window window, int width, int height) const;
    [[nodiscard]] QImage picture(Window window);
    [[nodiscard]] QImage screen();

    /// Text of the field that has the focus, fetched as the operator would: marked, copied and pasted
    /// elsewhere. Empty where nothing came within the time, so an empty field reads so too.
    [[nodiscard]] QString focusedText(int milliseconds = kPatience);

private:
    struct X;
    [[nodiscard]] bool fail(const QString &problem);
    [[nodiscard]] QString tool(const QString &name, const QStringList &arguments, bool *ok = nullptr) const;

    QProcess m_server;
    QString m_displayName;
    QString m_problem;
    std::unique_ptr<X> m_x;
};

/// Items of the menu "Сервис" in their order.
enum class Service {
    EntryKey,
    Keyer,
    Revision,
    Calculator,
    List,
    Help,
    ParallelLog,
    LoadParallelLog,
    TimeMode,
    Period,
    Merge,
    Import,
    Exit,
    Count,
};

/// A scratch folder with a copy of the program in it, and a home of its own beside.
class Installation {
public:
    Installation();

    [[nodiscard]] bool isValid() const { return m_valid; }
    [[nodiscard]] QString folder() const { return m_scratch.filePath(QStringLiteral("program")); }
    [[nodiscard]] QString file(const QString &name) const { return folder() + QLatin1Char('/') + name; }
    [[nodiscard]] QString program() const { return file(QStringLiteral("zhurnal")); }
    /// What the program runs in: nothing of the session that runs the tests but its search paths.
    [[nodiscard]] QProcessEnvironment environment(const Desktop &desktop) const;

    /// Runs SQL on one of the program's files. Only while no program has it open.
    [[nodiscard]] bool sql(const QString &name, const QString &statement,
                           const QStringList &values = {}) const;
    /// Rows of a query, one list of columns each; a null reads "NULL". Empty where the query fails.
    [[nodiscard]] QList<QStringList> rows(const QString &name, const QString &query) const;

private:
    QTemporaryDir m_scratch;
    bool m_valid = false;
};

/// One run of the program in the real window system. Where something fails it leaves a picture of the screen
/// in the current folder.
class Program {
public:
    Program(Desktop &desktop, const Installation &installation);
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;
    ~Program();

    void setEnvironment(const QString &name, const QString &value);
    /// Starts it, waits for its window and gives that the focus. False where none comes.
    [[nodiscard]] bool start();
    /// Chooses from the menu "Сервис" with F10, arrow keys and Enter.
    [[nodiscard]] bool choose(Service item);
    /// Waits for a window of the program whose caption begins so and gives it the focus; 0 where none comes.
    [[nodiscard]] Window waitForWindow(const QString &caption);
    /// Opens the bureau by its place in the menu bar; 0 where it does not come.
    [[nodiscard]] Window openBureau();
    /// Closes the bureau by its menu; true where the main window is alone then and has the focus.
    [[nodiscard]] bool closeBureau();
    /// Leaves through the menu; true where the program then ends without a complaint.
    [[nodiscard]] bool leave();
    /// As a power failure would end it.
    void kill();
    void freeze(); ///< it gets no more time until thaw()
    void thaw();
    [[nodiscard]] bool waitForEnd();
    [[nodiscard]] bool running() const { return m_process.state() == QProcess::Running; }
    [[nodiscard]] int exitCode() const { return m_process.exitCode(); }
    [[nodiscard]] qint64 process() const { return m_process.processId(); }
    [[nodiscard]] Window window() const noexcept { return m_window; }
    [[nodiscard]] QString caption() const { return m_desktop.caption(m_window); }
    /// What the program wrote to its error output.
    [[nodiscard]] QString complaints() { return QString::fromUtf8(m_process.readAllStandardError()); }

private:
    [[nodiscard]] bool complain(const char *what);
    void keepPicture();

    Desktop &m_desktop;
    QString m_path;
    QProcess m_process;
    Window m_window = 0;
};

} // namespace e2e
