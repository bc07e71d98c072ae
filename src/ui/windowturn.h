#pragma once

#include "store/datasource.h"
#include "ui/messages.h"
#include "ui/statusline.h"

#include <QList>
#include <QObject>
#include <QTimer>
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

    /// For a window that is left: saves what is pending in its sources. A failure is told by its status line,
    /// a box over the other window would be in the way there; the edit stays, and left() comes again after
    /// a while until it is saved or the window is in front.
    void save(StatusLine &status, const QList<store::DataSource *> &sources);

Q_SIGNALS:
    /// The window has the keyboard again, wherever it comes from.
    void activated();
    /// The window has come to the front from another one, and that one has saved what was typed into it.
    void came();
    /// The operator has gone to another window, and an open cell of this one has given its text.
    void left();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void tellErrors();
    void leave();
    void leaveAgain();

    QWidget *m_window;
    Messages &m_messages;
    QList<store::Error> m_errors;
    bool m_leftForDialog = false;
    bool m_unsaved = false; ///< since the window was left
    QTimer m_again;
};

} // namespace ui
