#include "ui/keyrepeat.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace ui {

bool RepeatMarker::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ApplicationDeactivate)
        m_down.clear(); // what goes up in another program is not told
    if (!watched->isWindowType())
        return false;
    if (event->type() == QEvent::KeyRelease) {
        m_down.remove(static_cast<QKeyEvent *>(event)->nativeScanCode());
        return false;
    }
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    const quint32 code = key->nativeScanCode();
    if (code == 0 || key->isAutoRepeat())
        return false;
    if (!m_down.contains(code)) {
        m_down.insert(code);
        return false;
    }
    QKeyEvent repetition(QEvent::KeyPress, key->key(), key->modifiers(), code, key->nativeVirtualKey(),
                         key->nativeModifiers(), key->text(), true, static_cast<quint16>(key->count()));
    repetition.setTimestamp(key->timestamp());
    QCoreApplication::sendEvent(watched, &repetition);
    event->setAccepted(repetition.isAccepted());
    return true;
}

} // namespace ui
