#include "ui/keyrepeat.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace ui {

namespace {

quint64 identity(quint32 scanCode, quint64 time)
{
    constexpr int kHalf = 32;
    return (quint64{scanCode} << kHalf) | (time & 0xffffffffU);
}

} // namespace

void RepeatMarker::pressed(quint32 scanCode, quint32 time)
{
    constexpr qsizetype kMost = 1000; // of events that never came
    if (scanCode == m_last) {
        if (m_repetitions.size() >= kMost)
            m_repetitions.clear();
        m_repetitions.insert(identity(scanCode, time));
    }
    m_last = scanCode;
}

void RepeatMarker::released(quint32 scanCode)
{
    if (scanCode == m_last)
        m_last = 0;
}

bool RepeatMarker::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || !watched->isWindowType() || m_repetitions.isEmpty())
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->isAutoRepeat() || !m_repetitions.remove(identity(key->nativeScanCode(), key->timestamp())))
        return false;
    QKeyEvent repetition(QEvent::KeyPress, key->key(), key->modifiers(), key->nativeScanCode(),
                         key->nativeVirtualKey(), key->nativeModifiers(), key->text(), true,
                         static_cast<quint16>(key->count()));
    repetition.setTimestamp(key->timestamp());
    QCoreApplication::sendEvent(watched, &repetition);
    event->setAccepted(repetition.isAccepted());
    return true;
}

} // namespace ui
