#pragma once

#include "ui/messages.h"

#include <QObject>
#include <QWidget>

namespace ui {

/// Tells a window when it has come to the front and when it has been left for another one. Windows share
/// tables: one that is left saves what was typed into it, one that comes reads anew what others have written.
/// Going into a dialog or a menu of the window itself and coming back is neither.
class WindowTurn : public QObject {
    Q_OBJECT

public:
    WindowTurn(QWidget *window, Messages &messages);

    /// Failures that the operator is told of when the window is in front, so that the boxes stand over it and
    /// not over the one that it was opened from.
    void tellInFront(const QList<store::Error> &errors);

Q_SIGNALS:
    /// The window has the keyboard again, wherever it comes from.
    void activated();
    /// The window has come to the front from another one, and that one has saved what was typed into it.
    void came();
    /// The operator has gone to another window, and an open cell of this one has given its text. A box over
    /// the other window would be in the way there.
    void left();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void tellErrors();

    QWidget *m_window;
    Messages &m_messages;
    QList<store::Error> m_errors;
    bool m_leftForDialog = false;
};

} // namespace ui
