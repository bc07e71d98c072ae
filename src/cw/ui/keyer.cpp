#include "cw/ui/keyer.h"

#include "cw/morse.h"
#include "cw/ui/urgent.h"

#include <QEventLoop>
#include <QThread>

namespace cw {

Keyer::Keyer(KeyLine &line, Pacer &pacer, QObject *parent) : QObject(parent), m_line(line), m_pacer(pacer) {}

Result Keyer::send(const QString &text, int port)
{
    if (m_sending || m_input.deliveringEscaped())
        return {Outcome::Stopped, {}};
    m_sending = true;
    m_pacer.arm();
    m_input.hold([this] { m_pacer.stop(); });
    Q_EMIT keying(text, 0);

    Result result;
    qsizetype shown = 0;
    QEventLoop loop;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        makeThreadUrgent();
        result = transmit(text, port, m_speed, m_line, m_pacer, [&](qsizetype position) {
            const qsizetype begun = charactersBegun(text, position);
            if (begun == shown)
                return;
            shown = begun;
            QMetaObject::invokeMethod(this, [this, text, begun] { Q_EMIT keying(text, begun); });
        });
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    }));
    thread->start();
    loop.exec();
    if (!thread->isFinished())
        m_pacer.stop(); // the program is being ended: silence at once
    thread->wait();
    m_sending = false;
    Q_EMIT ended();
    m_input.release();
    return result;
}

} // namespace cw
