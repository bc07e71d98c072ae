#include "support/recordedline.h"

#include <QCoreApplication>
#include <QThread>

namespace testsupport {

void RecordedLine::call(const QString &what)
{
    ++m_calls;
    if (failAt != 0 && m_calls >= failAt) {
        trace.append(what + QStringLiteral(" fails"));
        throw cw::LineError(QStringLiteral("нет устройства"));
    }
    trace.append(what);
}

void RecordedLine::open(int port)
{
    call(QStringLiteral("open %1").arg(port));
}

void RecordedLine::setRts(bool high)
{
    call(QStringLiteral("RTS %1").arg(static_cast<int>(high)));
    rts = high;
}

void RecordedLine::setDtr(bool high)
{
    call(QStringLiteral("DTR %1").arg(static_cast<int>(high)));
    dtr = high;
}

void RecordedLine::close() noexcept
{
    trace.append(QStringLiteral("close"));
    rts = false;
    dtr = false;
}

void RecordedLine::arm()
{
    m_stopped = false;
    m_calls = 0;
    m_waits = 0;
}

void RecordedLine::begin() {}

bool RecordedLine::wait(std::chrono::nanoseconds length)
{
    constexpr double kNanosecondsAMillisecond = 1e6;
    trace.append(QStringLiteral("wait ") +
                 QString::number(static_cast<double>(length.count()) / kNanosecondsAMillisecond));
    ++m_waits;
    if (beforeWait) {
        const auto hook = [this] { beforeWait(m_waits); };
        if (QThread::currentThread() == QCoreApplication::instance()->thread())
            hook();
        else
            QMetaObject::invokeMethod(QCoreApplication::instance(), hook, Qt::BlockingQueuedConnection);
    }
    return !m_stopped;
}

void RecordedLine::stop()
{
    m_stopped = true;
}

} // namespace testsupport
