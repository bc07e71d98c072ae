#pragma once

#include "cw/ui/keyer.h"
#include "ui/messages.h"
#include "ui/widgets.h"

#include <QGroupBox>
#include <QMap>
#include <QRadioButton>
#include <QSlider>

#include <array>

class QGridLayout;
class QHBoxLayout;

namespace cw {

/// FRCW: message fields, keyboard field, speed and port choice of the Morse keyer, and the text that is being
/// sent.
class KeyerPanel : public QGroupBox {
    Q_OBJECT

public:
    KeyerPanel(Keyer &keyer, ui::Messages &messages, QWidget *parent = nullptr);

    /// Message field of a function key; null for a key without one.
    [[nodiscard]] ui::FilterEdit *messageField(int key) const { return m_messages.value(key); }

    /// Sends a text over the chosen port and returns when it is out. A port that cannot be keyed is told as
    /// "Порт занят", its device and the system's words stand in the panel until the next text.
    void send(const QString &text);

    /// F12: shows the keyboard field and gives it the focus, or empties and hides it. True where it is shown
    /// now.
    bool toggleKeyboardField();
    [[nodiscard]] bool keyboardFieldShown() const;

    /// Serial port number, 1 to 4. The option buttons show the one in force.
    [[nodiscard]] int port() const noexcept { return m_port; }
    void setPort(int port);

    ui::FilterEdit *txtf2;
    ui::FilterEdit *TXTF11;
    ui::FilterEdit *TXklaw;
    QSlider *HScroll2;

Q_SIGNALS:
    /// The operator chose a port.
    void portChosen(int port);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void makeMessages(QGridLayout *grid);
    void makePorts(QHBoxLayout *row);
    void makeSpeed(QHBoxLayout *row);
    void showSpeed();
    void showKeyed(const QString &text, qsizetype characters);
    [[nodiscard]] QChar typed(QChar c, const QKeyEvent *event);

    Keyer &m_keyer;
    ui::Messages &m_messageBoxes;
    QMap<int, ui::FilterEdit *> m_messages;
    std::array<QRadioButton *, 4> m_ports{};
    QLabel *m_keyboardLabel;
    QLabel *m_wordsPerMinute;
    ui::FilterEdit *m_keyed;
    int m_port = 1;
};

} // namespace cw
