#include "ui/dragmover.h"

#include <QApplication>
#include <QLayout>
#include <QMouseEvent>

#include <algorithm>

namespace ui {

DragMover::DragMover(QWidget *control) : QObject(control), m_control(control)
{
    control->installEventFilter(this);
}

bool DragMover::eventFilter(QObject *watched, QEvent *event)
{
    const auto type = event->type();
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseMove && type != QEvent::MouseButtonRelease)
        return QObject::eventFilter(watched, event);
    const auto *mouse = static_cast<QMouseEvent *>(event);
    const QPoint at = mouse->globalPosition().toPoint();
    if (type == QEvent::MouseMove) {
        if (m_pressed && (at - m_pressedAt).manhattanLength() >= QApplication::startDragDistance()) {
            m_dragging = true;
            m_control->setCursor(Qt::ClosedHandCursor);
        }
        return m_pressed;
    }
    if (mouse->button() != Qt::LeftButton)
        return QObject::eventFilter(watched, event);
    if (type == QEvent::MouseButtonPress) {
        m_pressed = true;
        m_pressedAt = at;
        return true;
    }
    m_control->unsetCursor();
    if (m_dragging)
        drop(at);
    m_pressed = false;
    m_dragging = false;
    return true;
}

void DragMover::drop(QPoint global)
{
    QWidget *home = m_control->parentWidget();
    const QPoint to = home->mapFromGlobal(global);
    if (!home->rect().contains(to))
        return;
    const QSize size = m_control->size();
    if (QLayout *layout = home->layout())
        layout->removeWidget(m_control);
    m_control->setGeometry(QRect(QPoint(std::clamp(to.x(), 0, std::max(0, home->width() - size.width())),
                                        std::clamp(to.y(), 0, std::max(0, home->height() - size.height()))),
                                 size));
    m_control->raise();
}

} // namespace ui
