#include "ui/heldinput.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTimer>

#include <utility>

namespace ui {

namespace {

/// The platform hands input to windows, which pass it on to their widgets. An event that comes to a widget is
/// on its way already, for instance the one whose handler has asked for the holding, going on to the parents
/// of a widget that has ignored it. Composed text is the exception: it comes to the field itself.
bool isInput(const QObject &receiver, QEvent::Type type)
{
    if (type == QEvent::InputMethod)
        return true;
    if (!receiver.isWindowType())
        return false;
    switch (type) {
    case QEvent::ShortcutOverride: // the menu bar would take the key Alt from it
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
    case QEvent::NativeGesture:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

} // namespace

HeldInput::HeldInput(QObject *parent) : QObject(parent) {}

HeldInput::~HeldInput() = default;

void HeldInput::watch()
{
    QCoreApplication::instance()->installEventFilter(this);
}

void HeldInput::hold(std::function<void()> escape)
{
    m_escape = std::move(escape);
    m_holding = true;
}

void HeldInput::release()
{
    m_holding = false;
    m_escape = nullptr;
    QMetaObject::invokeMethod(this, &HeldInput::deliver, Qt::QueuedConnection);
}

bool HeldInput::eventFilter(QObject *watched, QEvent *event)
{
    if (!m_holding && m_waiting.empty())
        return false;
    // A message that has come up meanwhile is answered first: what waits is meant for the window below it.
    const bool behind = !m_delivering && QApplication::activeModalWidget() == nullptr;
    if (!(m_holding || behind) || !isInput(*watched, event->type()))
        return false;
    const bool goesDown = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    if (goesDown && m_holding) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Escape) {
            for (Waiting &waiting : m_waiting)
                waiting.escaped = true;
            if (const auto escape = std::exchange(m_escape, nullptr))
                escape();
            event->accept();
            return true;
        }
    }
    keep(watched, *event);
    if (event->type() == QEvent::Close)
        event->ignore(); // the window stays open until it is asked again
    else
        event->accept();
    return true;
}

void HeldInput::keep(QObject *receiver, const QEvent &event)
{
    // A mouse that is only moved about must not fill the queue.
    if (event.type() == QEvent::MouseMove && !m_waiting.empty() && m_waiting.back().receiver == receiver &&
        m_waiting.back().event->type() == QEvent::MouseMove)
        m_waiting.pop_back();
    m_waiting.push_back({receiver, std::unique_ptr<QEvent>(event.clone()), false});
}

void HeldInput::deliver()
{
    if (m_delivering || m_holding)
        return; // the call further out goes on, or the next release() does
    if (QApplication::activeModalWidget() != nullptr) {
        constexpr int kUntilAnswered = 50;
        QTimer::singleShot(kUntilAnswered, this, &HeldInput::deliver);
        return;
    }
    while (!m_waiting.empty() && !m_holding) {
        const Waiting next = std::move(m_waiting.front());
        m_waiting.pop_front();
        if (next.receiver.isNull())
            continue;
        m_currentEscaped = next.escaped;
        m_delivering = true;
        QCoreApplication::sendEvent(next.receiver, next.event.get()); // may hold and release again
        m_delivering = false;
    }
}

} // namespace ui
