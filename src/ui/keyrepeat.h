#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QSet>

#include <memory>

namespace ui {

/// Marks the presses that a held key repeats, for a platform that reports the release of a held key once,
/// when it goes up: the toolkit does not know the repetitions there.
class RepeatMarker : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // The platform's own reports, in their order, before the toolkit makes events of them. It drops some, for
    // instance the release that comes to a menu which has just closed.

    /// A key repeats only while no other one is pressed: a press is a repetition where the report before it
    /// was of the same key's press. `time` as the key's event will have it, in milliseconds.
    void pressed(quint32 scanCode, quint32 time);
    void released(quint32 scanCode);
    /// The keyboard is another program's for a while.
    void forget() noexcept { m_last = 0; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    quint32 m_last = 0;          ///< the key pressed last, unless it is up again
    QSet<quint64> m_repetitions; ///< scan code and time of those whose event is still to come
};

/// Asks the platform to report the release of a held key once, and reports keys to `marker` from then on.
/// Null where the platform cannot. (Telling a repetition's release from a real one afterwards, as the toolkit
/// tries to, fails on a busy computer: a held message key would then send its message over and over.)
[[nodiscard]] std::unique_ptr<QAbstractNativeEventFilter> watchKeys(RepeatMarker &marker);

} // namespace ui
