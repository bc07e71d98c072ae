#include "ui/dragmover.h"

#include <QApplication>
#include <QBoxLayout>
#include <QMouseEvent>

#include <algorithm>

namespace ui {

DragMover::DragMover(QWidget *control) : QObject(control), m_control(control)
{
    control->installEventFilter(this);
    control->parentWidget()->installEventFilter(this);
}

bool DragMover::eventFilter(QObject *watched, QEvent *event)
{
    const auto type = event->type();
    if (watched != m_control) {
        if (type == QEvent::Resize && m_away)
            moveTo(m_control->pos());
        return QObject::eventFilter(watched, event);
    }
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
    auto *layout = qobject_cast<QBoxLayout *>(home->layout());
    if (layout != nullptr && !m_away) {
        m_away = true;
        m_stretch = layout->stretch(layout->indexOf(m_control));
        layout->removeWidget(m_control);
    }
    m_control->setAutoFillBackground(true); // what it covers must not show through
    home->setMinimumSize(home->minimumSize().expandedTo(m_control->minimumSizeHint()));
    moveTo(to);
    m_control->raise();
}

/// As near as the window's borders allow.
void DragMover::moveTo(QPoint to)
{
    const QSize home = m_control->parentWidget()->size();
    m_control->resize(m_control->size().boundedTo(home).expandedTo(m_control->minimumSizeHint()));
    const QSize room = home - m_control->size();
    m_control->move(std::clamp(to.x(), 0, std::max(0, room.width())),
                    std::clamp(to.y(), 0, std::max(0, room.height())));
}

void DragMover::restore(int place)
{
    auto *layout = qobject_cast<QBoxLayout *>(m_control->parentWidget()->layout());
    if (!m_away || layout == nullptr)
        return;
    m_control->setAutoFillBackground(false);
    m_control->parentWidget()->setMinimumSize(0, 0); // the layout knows again what it needs
    layout->insertWidget(place, m_control, m_stretch);
    m_away = false;
}

} // namespace ui
