#include "ui/menubar.h"

#include <QStyleOptionMenuItem>

namespace ui {

void MenuBar::initStyleOption(QStyleOptionMenuItem *option, const QAction *action) const
{
    QMenuBar::initStyleOption(option, action);
    if (option->state.testFlag(QStyle::State_Selected))
        option->state |= QStyle::State_Sunken;
}

} // namespace ui
