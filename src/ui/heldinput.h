#pragma once

#include <QEvent>
#include <QObject>
#include <QPointer>

#include <deque>
#include <functional>
#include <memory>

namespace ui {

/// Keeps what the operator types and clicks while the window is busy with something that must not be
/// disturbed, and hands it on afterwards in its order. Painting, timers and everything else go on.
class HeldInput : public QObject {
    Q_OBJECT

public:
    explicit HeldInput(QObject *parent = nullptr);
    ~HeldInput() override;

    /// Begins to look at the application's events, before every filter that was installed earlier. Not while
    /// an event is on its way through the filters, some of which would see it twice.
    void watch();

    /// From now on keys, mouse, wheel, input methods and the closing of windows wait. A press of Esc does not
    /// wait and is not kept: it calls `escape`, once.
    void hold(std::function<void()> escape);
    /// What has waited is delivered after the running handler has returned. What comes before all of it is
    /// delivered waits behind it.
    void release();

    /// An input is being delivered that was already waiting when Esc was pressed.
    [[nodiscard]] bool deliveringEscaped() const noexcept { return m_delivering && m_currentEscaped; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Waiting {
        QPointer<QObject> receiver;
        std::unique_ptr<QEvent> event;
        bool escaped = false;
    };

    void keep(QObject *receiver, const QEvent &event);
    void deliver();

    std::function<void()> m_escape;
    std::deque<Waiting> m_waiting;
    bool m_holding = false;
    bool m_delivering = false;
    bool m_currentEscaped = false;
};

} // namespace ui
