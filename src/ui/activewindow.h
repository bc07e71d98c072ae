#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace ui {

/// Remembers which of the program's windows the operator works in. Dialogs do not count: when one closes, no
/// window is active for a moment, and what comes up then belongs over the window that the dialog belonged to.
class ActiveWindow : public QObject {
    Q_OBJECT

public:
    ActiveWindow();

    /// Null before the first window.
    [[nodiscard]] QWidget *window() const;

private:
    void note();

    QPointer<QWidget> m_last;
};

} // namespace ui
