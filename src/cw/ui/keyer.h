#pragma once

#include "cw/transmission.h"
#include "ui/heldinput.h"

#include <QObject>

namespace cw {

/// Sends texts. The line is keyed by a thread of its own; the window stays blocked for everything but
/// painting and Esc until RTS is low and the port closed, and then gets in order what was typed meanwhile.
/// Sends never nest.
class Keyer : public QObject {
    Q_OBJECT

public:
    Keyer(KeyLine &line, Pacer &pacer, QObject *parent = nullptr);

    /// To be called once, after every event filter on the application that must not see what waits.
    void watchInput() { m_input.watch(); }

    /// Sends a text; returns when it is out, stopped by Esc or has failed. What was waiting to be sent when
    /// Esc was pressed is not sent either: Esc means silence. Stopped too where a transmission is going on.
    [[nodiscard]] Result send(const QString &text, int port);

    [[nodiscard]] Speed &speed() noexcept { return m_speed; }
    [[nodiscard]] bool sending() const noexcept { return m_sending; }
    [[nodiscard]] KeyLine &line() noexcept { return m_line; }

Q_SIGNALS:
    /// A transmission of `text` has begun its first `characters` characters.
    void keying(const QString &text, qsizetype characters);
    /// It has ended, RTS is low and the port closed.
    void ended();

private:
    KeyLine &m_line;
    Pacer &m_pacer;
    Speed m_speed;
    ui::HeldInput m_input;
    bool m_sending = false;
};

} // namespace cw
