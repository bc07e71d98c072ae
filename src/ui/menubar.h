#pragma once

#include <QMenuBar>

namespace ui {

/// Menu bar that marks the item the keyboard has reached also where it opens no list: by itself the style
/// marks an item only while its list is open.
class MenuBar : public QMenuBar {
    Q_OBJECT

public:
    using QMenuBar::QMenuBar;

protected:
    void initStyleOption(QStyleOptionMenuItem *option, const QAction *action) const override;
};

} // namespace ui
