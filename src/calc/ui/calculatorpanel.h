#pragma once

#include "calc/calculator.h"
#include "ui/messages.h"
#include "ui/widgets.h"

#include <QGroupBox>

namespace calc {

/// FrKalk: the calculator's keys, its display and its memory.
/// Keys typed anywhere in the panel count as its own: digits, comma or point, operators, "=" or Enter,
/// Backspace for the last character, Delete or C (in either alphabet) for clearing. All other keys pass on.
class CalculatorPanel : public QGroupBox {
    Q_OBJECT

public:
    explicit CalculatorPanel(ui::Messages &messages, QWidget *parent = nullptr);

    /// Shows the panel with an empty display, which takes the focus.
    void open();

    [[nodiscard]] QSize sizeHint() const override;

    [[nodiscard]] const Calculator &calculator() const noexcept { return m_calculator; }

Q_SIGNALS:
    /// Esc: the operator wants the panel to go.
    void closeAsked();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    [[nodiscard]] ui::FilterEdit *makeBox(const char *name, const QString &tip, double size);
    [[nodiscard]] QPushButton *makeKey(const char *name, const QString &caption, const QString &tip);
    void press(const QString &caption);
    void showState();

    ui::Messages &m_messages;
    Calculator m_calculator;
    ui::FilterEdit *m_display;
    ui::FilterEdit *m_memory;
};

} // namespace calc
