#pragma once

#include "ui/widgets.h"

#include <QGroupBox>
#include <QMap>
#include <QRadioButton>

#include <array>

namespace cw {

/// FRCW: message fields, keyboard field and port choice of the Morse keyer.
class KeyerPanel : public QGroupBox {
    Q_OBJECT

public:
    explicit KeyerPanel(QWidget *parent = nullptr);

    /// Message field of a function key; null for a key without one.
    [[nodiscard]] ui::FilterEdit *messageField(int key) const { return m_messages.value(key); }

    /// F12: shows the keyboard field and gives it the focus, or empties and hides it. True where it is shown
    /// now.
    bool toggleKeyboardField();
    [[nodiscard]] bool keyboardFieldShown() const;

    /// Serial port number, 1 to 4. The option buttons show the one in force.
    [[nodiscard]] int port() const noexcept { return m_port; }
    void setPort(int port);

    ui::FilterEdit *TXTF11;
    ui::FilterEdit *TXklaw;

Q_SIGNALS:
    /// The operator chose a port.
    void portChosen(int port);

private:
    QMap<int, ui::FilterEdit *> m_messages;
    std::array<QRadioButton *, 4> m_ports{};
    QLabel *m_keyboardLabel;
    int m_port = 1;
};

} // namespace cw
