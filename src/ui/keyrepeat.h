#pragma once

#include <QObject>
#include <QSet>

namespace ui {

/// Asks the platform to report the release of a held key once, when the key goes up, and not at each of its
/// repetitions. False where it cannot. (Telling a repetition's release from a real one afterwards, as the
/// toolkit tries to, fails on a busy computer: a held message key would then send its message over and over.)
[[nodiscard]] bool reportReleasesOnce();

/// For a platform that reports releases once: marks the press of a key that is down already as a repetition,
/// which the toolkit does not do there.
class RepeatMarker : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QSet<quint32> m_down; ///< scan codes
};

} // namespace ui
