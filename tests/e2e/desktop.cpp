#include "e2e/desktop.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QHash>
#include <QLibrary>
#include <QTest>
#include <QThread>

#include <csignal>
#include <cstdlib>
#include <sys/prctl.h>
#include <utility>

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#undef None // clashes with names of Qt
#undef Bool

namespace e2e {

namespace {

constexpr int kScreenWidth = 1600;
constexpr int kScreenHeight = 900;

/// Milliseconds from one key event to the next. A key that goes up and down again within the same millisecond
/// is taken for the keyboard's own repetition.
constexpr unsigned long kKeyPace = 2;

/// Nothing that a test has started outlives it, however it ends.
void dieWithParent(QProcess &process)
{
    process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

int ignoreError(Display *, XErrorEvent *)
{
    return 0; // windows come and go while they are looked at
}

KeySym symbolOf(Key key)
{
    switch (key) {
    case Key::Enter:
        return XK_Return;
    case Key::Tab:
    case Key::BackTab:
        return XK_Tab;
    case Key::Space:
        return XK_space;
    case Key::Escape:
        return XK_Escape;
    case Key::Backspace:
        return XK_BackSpace;
    case Key::Up:
        return XK_Up;
    case Key::Down:
        return XK_Down;
    case Key::Left:
        return XK_Left;
    case Key::Right:
        return XK_Right;
    case Key::F4:
        return XK_F4;
    case Key::F5:
        return XK_F5;
    case Key::F6:
        return XK_F6;
    case Key::F10:
        return XK_F10;
    case Key::Alt:
        return XK_Alt_L;
    }
    return NoSymbol;
}

} // namespace

bool waitFor(const std::function<bool()> &condition, int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QThread::msleep(5);
    }
    return true;
}

// ---- the X server

struct Desktop::X {
    using FakeKey = int (*)(Display *, unsigned, int, unsigned long);
    using FakeMotion = int (*)(Display *, int, int, int, unsigned long);
    struct Stroke {
        KeyCode key = 0;
        bool shift = false;
    };

    Display *display = nullptr;
    FakeKey fakeKey = nullptr;
    FakeMotion fakeMotion = nullptr;
    ::Window own = 0; ///< takes and asks for the clipboard

    ~X()
    {
        if (display != nullptr)
            XCloseDisplay(display);
    }

    void put(KeyCode key, bool down) const { fakeKey(display, key, down ? 1 : 0, kKeyPace); }
    void put(const Stroke &stroke, bool down) const
    {
        const KeyCode shift = XKeysymToKeycode(display, XK_Shift_L);
        if (stroke.shift && down)
            put(shift, true);
        put(stroke.key, down);
        if (stroke.shift && !down)
            put(shift, false);
    }
    void send() const { XSync(display, 0); }

    [[nodiscard]] Stroke strokeOf(Key key) const
    {
        return {XKeysymToKeycode(display, symbolOf(key)), key == Key::BackTab};
    }

    /// The key that gives an ASCII character in the Latin layout.
    [[nodiscard]] Stroke strokeOf(QChar c) const
    {
        int first = 0;
        int last = 0;
        XDisplayKeycodes(display, &first, &last);
        for (int key = first; key <= last; ++key)
            for (const unsigned level : {0U, 1U})
                if (XkbKeycodeToKeysym(display, static_cast<KeyCode>(key), 0, static_cast<int>(level)) ==
                    c.unicode()) // keysyms of ASCII characters are their codes
                    return {static_cast<KeyCode>(key), level == 1};
        qFatal("no key gives U+%04X", static_cast<unsigned>(c.unicode()));
    }

    [[nodiscard]] Atom atom(const char *name) const { return XInternAtom(display, name, 0); }
    [[nodiscard]] QImage picture(::Window window) const;
    [[nodiscard]] bool selectionArrived(Atom property, QString &text) const;
};

QImage Desktop::X::picture(::Window window) const
{
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display, window, &attributes) == 0 || attributes.map_state != IsViewable)
        return {};
    XImage *image = XGetImage(display, window, 0, 0, static_cast<unsigned>(attributes.width),
                              static_cast<unsigned>(attributes.height), AllPlanes, ZPixmap);
    if (image == nullptr)
        return {};
    QImage copy;
    if (image->bits_per_pixel == 32)
        copy = QImage(reinterpret_cast<const uchar *>(image->data), image->width, image->height,
                      image->bytes_per_line, QImage::Format_RGB32)
                   .copy();
    XDestroyImage(image);
    return copy;
}

bool Desktop::X::selectionArrived(Atom property, QString &text) const
{
    XEvent event{};
    if (XCheckTypedWindowEvent(display, own, SelectionNotify, &event) == 0)
        return false;
    if (event.xselection.property == 0)
        return true; // refused
    Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char *data = nullptr;
    constexpr long kLongest = 65536;
    if (XGetWindowProperty(display, own, property, 0, kLongest, 1, AnyPropertyType, &type, &format, &count,
                           &rest, &data) == Success &&
        data != nullptr) {
        text = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(count));
        XFree(data);
    }
    return true;
}

Desktop::Desktop() = default;

Desktop::~Desktop()
{
    stop();
}

bool Desktop::fail(const QString &problem)
{
    m_problem = problem;
    return false;
}

QString Desktop::tool(const QString &name, const QStringList &arguments, bool *ok) const
{
    QProcess process;
    dieWithParent(process);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), m_displayName);
    process.setProcessEnvironment(environment);
    process.start(name, arguments);
    const bool done = process.waitForFinished(kPatience) && process.exitStatus() == QProcess::NormalExit &&
                      process.exitCode() == 0;
    if (ok != nullptr)
        *ok = done;
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

bool Desktop::start()
{
    dieWithParent(m_server);
    m_server.setStandardErrorFile(QProcess::nullDevice());
    m_server.start(QStringLiteral("Xvfb"),
                   {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                    QStringLiteral("0"), QStringLiteral("%1x%2x24").arg(kScreenWidth).arg(kScreenHeight),
                    QStringLiteral("-dpi"), QStringLiteral("96"), QStringLiteral("-nolisten"),
                    QStringLiteral("tcp"), QStringLiteral("-noreset")});
    if (!m_server.waitForStarted(kPatience))
        return fail(QStringLiteral("Xvfb does not start: ") + m_server.errorString());
    QByteArray number;
    while (!number.endsWith('\n')) {
        if (!m_server.waitForReadyRead(kPatience))
            return fail(QStringLiteral("Xvfb names no display"));
        number += m_server.readAllStandardOutput();
    }
    m_displayName = QLatin1Char(':') + QString::fromLatin1(number.trimmed());

    bool ok = false;
    (void)tool(QStringLiteral("xdotool"), {QStringLiteral("version")}, &ok);
    if (!ok)
        return fail(QStringLiteral("xdotool does not run"));
    (void)tool(QStringLiteral("setxkbmap"),
               {QStringLiteral("-rules"), QStringLiteral("evdev"), QStringLiteral("-model"),
                QStringLiteral("pc105"), QStringLiteral("-layout"), QStringLiteral("us,ru"),
                QStringLiteral("-option"), QString()},
               &ok);
    if (!ok)
        return fail(QStringLiteral("setxkbmap does not load the layouts"));

    m_x = std::make_unique<X>();
    m_x->display = XOpenDisplay(qPrintable(m_displayName));
    if (m_x->display == nullptr)
        return fail(QStringLiteral("no connection to display ") + m_displayName);
    XSetErrorHandler(ignoreError);
    // The library of the XTEST extension is there wherever xdotool is; its headers need not be.
    QLibrary test(QStringLiteral("Xtst"), 6);
    m_x->fakeKey = reinterpret_cast<X::FakeKey>(test.resolve("XTestFakeKeyEvent"));
    m_x->fakeMotion = reinterpret_cast<X::FakeMotion>(test.resolve("XTestFakeMotionEvent"));
    if (m_x->fakeKey == nullptr || m_x->fakeMotion == nullptr)
        return fail(QStringLiteral("no XTEST library: ") + test.errorString());
    const KeyCode key = m_x->strokeOf(QLatin1Char('f')).key;
    if (XkbKeycodeToKeysym(m_x->display, key, 1, 0) != XK_Cyrillic_a)
        return fail(QStringLiteral("the keyboard has no Russian layout"));
    m_x->own = XCreateSimpleWindow(m_x->display, DefaultRootWindow(m_x->display), 0, 0, 1, 1, 0, 0, 0);
    m_x->fakeMotion(m_x->display, 0, kScreenWidth - 1, kScreenHeight - 1, CurrentTime); // out of the way
    m_x->send();
    return true;
}

void Desktop::stop()
{
    m_x.reset();
    if (m_server.state() == QProcess::NotRunning)
        return;
    m_server.terminate();
    if (!m_server.waitForFinished(kPatience)) {
        m_server.kill();
        m_server.waitForFinished();
    }
}

// ---- keyboard

void Desktop::press(Key key, int times)
{
    const X::Stroke stroke = m_x->strokeOf(key);
    for (int i = 0; i < times; ++i) {
        m_x->put(stroke, true);
        m_x->put(stroke, false);
    }
    m_x->send();
}

void Desktop::pressControl(char letter)
{
    const KeyCode control = XKeysymToKeycode(m_x->display, XK_Control_L);
    const X::Stroke stroke = m_x->strokeOf(QLatin1Char(letter));
    m_x->put(control, true);
    m_x->put(stroke, true);
    m_x->put(stroke, false);
    m_x->put(control, false);
    m_x->send();
}

void Desktop::type(const QString &text)
{
    for (const QChar c : text) {
        const X::Stroke stroke = m_x->strokeOf(c);
        m_x->put(stroke, true);
        m_x->put(stroke, false);
    }
    m_x->send();
}

void Desktop::typeOverlapping(const QString &text, Key last)
{
    type(text.chopped(1));
    const X::Stroke held = m_x->strokeOf(text.back());
    const X::Stroke next = m_x->strokeOf(last);
    m_x->put(held, true);
    m_x->put(next, true);
    m_x->put(held, false);
    m_x->put(next, false);
    m_x->send();
}

void Desktop::typeRussian(const QString &text)
{
    static const QString russian = QStringLiteral("йцукенгшщзхъфывапролджэячсмитьбюё");
    static const QString latin = QStringLiteral("qwertyuiop[]asdfghjkl;'zxcvbnm,.`");
    for (const QChar c : text) {
        const qsizetype place = russian.indexOf(c.toLower());
        X::Stroke stroke = m_x->strokeOf(place < 0 ? c : latin[place]); // blank, digits and "-" are the same
        stroke.shift = c.isUpper();
        m_x->put(stroke, true);
        m_x->put(stroke, false);
    }
    m_x->send();
}

Layout Desktop::layout()
{
    XkbStateRec state{};
    XkbGetState(m_x->display, XkbUseCoreKbd, &state);
    return state.group == 0 ? Layout::Latin : Layout::Russian;
}

void Desktop::lockLayout(Layout layout)
{
    XkbLockGroup(m_x->display, XkbUseCoreKbd, static_cast<unsigned>(layout));
    m_x->send();
}

// ---- windows

QList<Window> Desktop::windows(qint64 process) const
{
    const QString found =
        tool(QStringLiteral("xdotool"), {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                         QStringLiteral("--pid"), QString::number(process)});
    QList<Window> windows;
    const QStringList numbers = found.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &number : numbers)
        windows.append(number.toULong());
    return windows;
}

QString Desktop::caption(Window window) const
{
    return tool(QStringLiteral("xdotool"), {QStringLiteral("getwindowname"), QString::number(window)});
}

bool Desktop::focus(Window window) const
{
    // Without a window manager nobody gives a new window the focus.
    return waitFor([&] {
        bool ok = false;
        (void)tool(QStringLiteral("xdotool"), {QStringLiteral("windowfocus"), QString::number(window)}, &ok);
        const QString now = tool(QStringLiteral("xdotool"), {QStringLiteral("getwindowfocus")});
        return ok && now == QString::number(window);
    });
}

bool Desktop::resize(Window window, int width, int height) const
{
    bool ok = false;
    (void)tool(QStringLiteral("xdotool"),
               {QStringLiteral("windowsize"), QStringLiteral("--sync"), QString::number(window),
                QString::number(width), QString::number(height)},
               &ok);
    return ok;
}

QImage Desktop::picture(Window window)
{
    return m_x->picture(window);
}

QImage Desktop::screen()
{
    return m_x ? m_x->picture(DefaultRootWindow(m_x->display)) : QImage();
}

QString Desktop::focusedText(int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    const Atom clipboard = m_x->atom("CLIPBOARD");
    const Atom property = m_x->atom("E2E_TEXT");
    constexpr int kOneTry = 1000; // a running clock may take the mark away between marking and copying
    while (!deadline.hasExpired()) {
        XSetSelectionOwner(m_x->display, clipboard, m_x->own, CurrentTime);
        pressControl('a');
        pressControl('c');
        const auto copied = [&] { return XGetSelectionOwner(m_x->display, clipboard) != m_x->own; };
        if (!waitFor(copied, kOneTry))
            continue;
        XConvertSelection(m_x->display, clipboard, m_x->atom("UTF8_STRING"), property, m_x->own, CurrentTime);
        m_x->send();
        QString text;
        if (waitFor([&] { return m_x->selectionArrived(property, text); }) && !text.isEmpty())
            return text;
    }
    return {};
}

// ---- a run of the program

Program::Program(Desktop &desktop, const Installation &installation)
    : m_desktop(desktop), m_path(installation.program())
{
    m_process.setProcessEnvironment(installation.environment(desktop));
    m_process.setStandardOutputFile(QProcess::nullDevice());
    dieWithParent(m_process);
}

Program::~Program()
{
    if (QTest::currentTestFailed() && running())
        keepPicture();
    kill();
}

void Program::setEnvironment(const QString &name, const QString &value)
{
    QProcessEnvironment environment = m_process.processEnvironment();
    environment.insert(name, value);
    m_process.setProcessEnvironment(environment);
}

bool Program::start()
{
    m_process.start(m_path, QStringList());
    if (!m_process.waitForStarted(kPatience))
        return false;
    const bool shown = waitFor([this] {
        const QList<Window> windows = m_desktop.windows(process());
        m_window = windows.value(0);
        return windows.size() == 1 || m_process.waitForFinished(0);
    });
    if (!shown || !running())
        return complain("no window comes");
    return m_desktop.focus(m_window) || complain("the window takes no focus");
}

namespace {

constexpr int kServiceItems = static_cast<int>(Service::Count);

/// Number of the item whose row has another background than the others; -1 while none is wholly painted so.
int markedItem(const QImage &menu)
{
    if (menu.isNull())
        return -1;
    constexpr int kBeside = 6; // left of the texts, right of the frame
    QHash<QRgb, QList<int>> rows;
    for (int y = 0; y < menu.height(); ++y)
        rows[menu.pixel(kBeside, y)].append(y);
    const int height = menu.height() / kServiceItems;
    for (const QList<int> &lines : std::as_const(rows))
        if (std::abs(lines.size() - height) <= 2 && lines.constLast() - lines.constFirst() < height + 2)
            return (lines.constFirst() + lines.constLast()) / 2 * kServiceItems / menu.height();
    return -1;
}

} // namespace

bool Program::complain(const char *what)
{
    keepPicture();
    qWarning("%s", what);
    return false;
}

void Program::keepPicture()
{
    const QString file = QDir::current().filePath(
        QStringLiteral("e2e-%1.png").arg(QLatin1String(QTest::currentTestFunction())));
    if (m_desktop.screen().save(file))
        qInfo("the screen: %s", qPrintable(file));
}

bool Program::choose(Service item)
{
    const auto popup = [this] {
        const QList<Window> windows = m_desktop.windows(process());
        for (const Window window : windows)
            if (window != m_window)
                return window;
        return Window{0};
    };
    m_desktop.press(Key::F10);
    Window menu = 0;
    if (!waitFor([&] { return (menu = popup()) != 0; }))
        return complain("F10 opens no menu");
    // Down passes over what is disabled, so that it takes a look which item it has reached.
    int marked = -1;
    // A picture may show a menu half painted: what counts is what two pictures in a row show.
    const auto marksAnother = [&](int before) {
        int seen = -1;
        return waitFor([&] {
            marked = std::exchange(seen, markedItem(m_desktop.picture(menu)));
            return marked >= 0 && marked == seen && marked != before;
        });
    };
    for (int tries = 0; tries < 2 * kServiceItems; ++tries) {
        m_desktop.press(Key::Down);
        if (!marksAnother(marked))
            return complain("Down marks no other item of the menu");
        if (marked != static_cast<int>(item))
            continue;
        m_desktop.press(Key::Enter);
        return waitFor([&] { return popup() == 0; }) || complain("the menu does not close");
    }
    m_desktop.press(Key::Escape);
    return complain("the menu item cannot be reached");
}

Window Program::waitForWindow(const QString &caption)
{
    Window found = 0;
    const bool came = waitFor([&] {
        const QList<Window> windows = m_desktop.windows(process());
        for (const Window window : windows)
            if (m_desktop.caption(window).startsWith(caption))
                found = window;
        return found != 0 && m_desktop.focus(found);
    });
    return came || complain("a window does not come") ? found : 0;
}

Window Program::openBureau()
{
    m_desktop.press(Key::Alt);
    m_desktop.press(Key::Enter);
    return waitForWindow(QStringLiteral("QSL Бюро"));
}

bool Program::closeBureau()
{
    m_desktop.press(Key::Alt);
    m_desktop.press(Key::Left); // round to the last item
    m_desktop.press(Key::Enter);
    return waitFor([&] { return m_desktop.windows(process()).size() == 1; }) && m_desktop.focus(m_window);
}

bool Program::leave()
{
    if (!choose(Service::Exit))
        return false;
    if (!waitForEnd())
        return complain("the program does not end");
    return m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
}

void Program::kill()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill();
    m_process.waitForFinished(kPatience);
}

void Program::freeze()
{
    ::kill(static_cast<pid_t>(process()), SIGSTOP);
}

void Program::thaw()
{
    ::kill(static_cast<pid_t>(process()), SIGCONT);
}

bool Program::waitForEnd()
{
    return m_process.state() == QProcess::NotRunning || m_process.waitForFinished(kPatience);
}

} // namespace e2e
