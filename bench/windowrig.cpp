#include "bench/windowrig.h"

#include "store/schema.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QKeyEvent>
#include <QTextStream>

#include <ctime>

namespace bench {

bool SilentMessages::askYesNo(const QString &text, const QString &)
{
    tell(text);
    return true;
}

bool SilentMessages::askOk(const QString &text, const QString &)
{
    tell(text);
    return true;
}

void SilentMessages::inform(const QString &text, const QString &)
{
    tell(text);
}

QString SilentMessages::choose(const QString &text, const QString &, const QStringList &options)
{
    tell(text);
    return options.value(0);
}

QString SilentMessages::askText(const QString &prompt, const QString &title)
{
    tell(title + QStringLiteral(": ") + prompt);
    return {};
}

int SilentMessages::chooseCodePage(const QString &file, const foreign::CodePageDoubt &doubt)
{
    tell(file);
    return doubt.samples.front().codePage;
}

void SilentMessages::error(const store::Error &error)
{
    tell(error.details());
}

ui::NotStoredChoice SilentMessages::notStored(const store::Error &error, const QString &, const QString &)
{
    tell(error.details());
    return ui::NotStoredChoice::GiveBack;
}

void SilentMessages::tell(const QString &text)
{
    m_told = true;
    QTextStream(stderr) << text << '\n';
}

void settle()
{
    constexpr int kMostTurns = 100; // a widget that never comes to rest must not hang the run
    QAbstractEventDispatcher *loop = QAbstractEventDispatcher::instance();
    QCoreApplication::sendPostedEvents();
    for (int i = 0; i < kMostTurns && loop->processEvents(QEventLoop::AllEvents); ++i) {
    }
}

WindowRig::WindowRig(const QString &folder)
    : m_library({folder, false}, folder), m_emergency({folder}),
      m_window(std::make_unique<logentry::frmlog>(
          logentry::Services{m_library, m_clock, m_messages, m_keyboard, m_emergency, m_progress, m_keyLine,
                             m_pacer, m_dialogs, m_reports}))
{
    constexpr int kWidth = 1366;
    constexpr int kHeight = 768;
    for (const store::Error &error : m_window->openingErrors())
        m_messages.error(error);
    m_window->resize(kWidth, kHeight);
    m_window->show();
    m_window->activateWindow();
    m_window->tick();
    settle();
    m_call = &control<ui::FilterEdit>("txtcall");
    m_call->setFocus();
    settle();
    qApp->installEventFilter(this);
}

WindowRig::~WindowRig()
{
    qApp->removeEventFilter(this); // the window's last events come when the members are half gone
}

void WindowRig::beginCall()
{
    m_call->setFocus();
    m_call->clear();
    settle();
}

KeyTimes WindowRig::type(QChar c)
{
    return key(c.unicode(), QString(c));
}

KeyTimes WindowRig::pressF4()
{
    return key(Qt::Key_F4, {});
}

KeyTimes WindowRig::key(int code, const QString &text)
{
    QKeyEvent press(QEvent::KeyPress, code, Qt::NoModifier, text);
    QKeyEvent release(QEvent::KeyRelease, code, Qt::NoModifier, text);
    struct Spent {
        double time;
        double work;
    };
    const auto timed = [this](QKeyEvent &event) {
        constexpr double kNanosecondsAMillisecond = 1e6;
        constexpr double kTicksAMillisecond = CLOCKS_PER_SEC / 1e3;
        QElapsedTimer timer;
        timer.start();
        const std::clock_t before = std::clock();
        QCoreApplication::sendEvent(m_call, &event);
        settle();
        return Spent{static_cast<double>(timer.nsecsElapsed()) / kNanosecondsAMillisecond,
                     static_cast<double>(std::clock() - before) / kTicksAMillisecond};
    };
    KeyTimes times;
    times.press = timed(press).time;
    const Spent released = timed(release);
    times.release = released.time;
    times.releaseWork = released.work;
    return times;
}

void WindowRig::showWorkedList(bool shown)
{
    if (m_window->state().listShown != shown)
        control<QAction>("mnulist").trigger();
    settle();
}

store::Connection &WindowRig::log()
{
    return m_library.connection(m_library.path(u"\\dbiaru.mdb"));
}

qint64 WindowRig::statements()
{
    qint64 count = 0;
    for (const store::FileLayout &file : store::fileLayouts())
        count +=
            m_library.connection(m_library.path(QString(QLatin1Char('\\') + file.name))).statementCount();
    return count;
}

bool WindowRig::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint && watched->isWidgetType())
        ++m_paints;
    return QObject::eventFilter(watched, event);
}

} // namespace bench
