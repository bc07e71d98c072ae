#pragma once

#include <QLabel>

namespace ui {

/// Label that is clicked like a button: with the mouse, the space bar or Enter.
class ClickLabel : public QLabel {
    Q_OBJECT

public:
    ClickLabel(QWidget *parent, const char *name, const QString &caption, const QString &tip);

Q_SIGNALS:
    void clicked();

protected:
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};

} // namespace ui
