#include "ui/activewindow.h"

#include <QApplication>
#include <QDialog>
#include <QWindow>

namespace ui {

ActiveWindow::ActiveWindow()
{
    connect(qApp, &QGuiApplication::focusWindowChanged, this, &ActiveWindow::note);
    note();
}

void ActiveWindow::note()
{
    QWidget *active = QApplication::activeWindow();
    if (active != nullptr && active->windowType() == Qt::Window && qobject_cast<QDialog *>(active) == nullptr)
        m_last = active;
}

QWidget *ActiveWindow::window() const
{
    return m_last != nullptr && m_last->isVisible() ? m_last.data() : nullptr;
}

} // namespace ui
