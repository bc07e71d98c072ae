#pragma once

#include <QObject>
#include <QPoint>
#include <QWidget>

namespace ui {

/// Lets the operator drag a control of a window with the left button and drop it somewhere in the window: its
/// upper left corner comes to the drop point, as near as the window's borders allow. From then on the layout
/// leaves it alone. A drop outside the window moves nothing; nor does a press that hardly moves.
class DragMover : public QObject {
    Q_OBJECT

public:
    /// `control` is dragged where none of its own children takes the mouse.
    explicit DragMover(QWidget *control);

    /// Puts a control that has been dragged away back into the layout, as the item `place`.
    void restore(int place);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void drop(QPoint global);
    void moveTo(QPoint to);

    QWidget *m_control;
    QPoint m_pressedAt;
    bool m_away = false; ///< dragged out of the layout
    int m_stretch = 0;   ///< it had there
    bool m_pressed = false;
    bool m_dragging = false;
};

} // namespace ui
