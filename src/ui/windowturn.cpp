#include "ui/windowturn.h"

#include "ui/widgets.h"

#include <QApplication>
#include <QEvent>

#include <utility>

namespace ui {

WindowTurn::WindowTurn(QWidget *window, Messages &messages)
    : QObject(window), m_window(window), m_messages(messages)
{
    window->installEventFilter(this);
}

void WindowTurn::tellInFront(const QList<store::Error> &errors)
{
    m_errors += errors;
}

void WindowTurn::tellErrors()
{
    const QList<store::Error> errors = std::exchange(m_errors, {});
    for (const store::Error &error : errors)
        m_messages.error(error);
}

bool WindowTurn::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowActivate) {
        Q_EMIT activated();
        if (!std::exchange(m_leftForDialog, false))
            onceOthersHaveSaved(this, [this] { Q_EMIT came(); });
        QMetaObject::invokeMethod(this, &WindowTurn::tellErrors, Qt::QueuedConnection);
    } else if (event->type() == QEvent::WindowDeactivate) {
        m_leftForDialog =
            QApplication::activeModalWidget() != nullptr || QApplication::activePopupWidget() != nullptr;
        const auto leave = [this] {
            if (!m_window->isActiveWindow())
                Q_EMIT left();
        };
        if (!m_leftForDialog)
            QMetaObject::invokeMethod(this, leave, Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

} // namespace ui
