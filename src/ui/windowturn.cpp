#include "ui/windowturn.h"

#include "ui/boundfield.h"
#include "ui/widgets.h"

#include <QApplication>
#include <QEvent>

#include <utility>

namespace ui {

WindowTurn::WindowTurn(QWidget *window, Messages &messages)
    : QObject(window), m_window(window), m_messages(messages)
{
    window->installEventFilter(this);
    constexpr int kAgain = 2000; // milliseconds
    m_again.setInterval(kAgain);
    m_again.setSingleShot(true);
    connect(&m_again, &QTimer::timeout, this, &WindowTurn::leaveAgain);
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

void WindowTurn::leave()
{
    if (!m_window->isActiveWindow())
        Q_EMIT left();
}

/// Under a dialog a long operation may be in the middle of a transaction, which a stored edit would become
/// a part of.
void WindowTurn::leaveAgain()
{
    if (QApplication::activeModalWidget() != nullptr)
        m_again.start();
    else
        leave();
}

void WindowTurn::save(StatusLine &status, const QList<store::DataSource *> &sources)
{
    bool failed = false;
    bool pending = false;
    for (store::DataSource *source : sources) {
        if (!source->editPending())
            continue;
        failed = !status.quietly([source] { savePending(*source); }) || failed;
        pending = source->editPending() || pending;
    }
    if (pending)
        m_again.start();
    if (std::exchange(m_unsaved, pending) && !failed)
        status.tell(QString()); // it has told why until now
}

bool WindowTurn::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowActivate) {
        m_again.stop(); // what is pending is in the operator's hands again
        m_unsaved = false;
        Q_EMIT activated();
        if (!std::exchange(m_leftForDialog, false))
            onceOthersHaveSaved(this, [this] { Q_EMIT came(); });
        QMetaObject::invokeMethod(this, &WindowTurn::tellErrors, Qt::QueuedConnection);
    } else if (event->type() == QEvent::WindowDeactivate) {
        m_leftForDialog =
            QApplication::activeModalWidget() != nullptr || QApplication::activePopupWidget() != nullptr;
        if (!m_leftForDialog)
            QMetaObject::invokeMethod(this, &WindowTurn::leave, Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

} // namespace ui
