#include "cw/ui/serialline.h"

#include <QSerialPort>

#include <algorithm>

namespace cw {

namespace {

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

/// Takes the digits, or the other characters, off the beginning of a name.
QStringView takeRun(QStringView &name)
{
    const bool digits = isDigit(name.front());
    const auto end =
        std::find_if(name.cbegin(), name.cend(), [digits](QChar c) { return isDigit(c) != digits; });
    const QStringView run = name.first(end - name.cbegin());
    name = name.sliced(run.size());
    return run;
}

/// Negative, 0 or positive. Numbers are compared as texts, so that none is too long.
int compareRuns(QStringView a, QStringView b)
{
    if (!isDigit(a.front()) || !isDigit(b.front()))
        return a.compare(b);
    const auto significant = [](QStringView number) {
        while (number.startsWith(QLatin1Char('0')))
            number = number.sliced(1);
        return number;
    };
    a = significant(a);
    b = significant(b);
    return a.size() == b.size() ? a.compare(b) : a.size() < b.size() ? -1 : 1;
}

bool isBefore(const QString &a, const QString &b)
{
    QStringView restOfA = a;
    QStringView restOfB = b;
    while (!restOfA.isEmpty() && !restOfB.isEmpty()) {
        const QStringView runOfA = takeRun(restOfA);
        if (const int order = compareRuns(runOfA, takeRun(restOfB)))
            return order < 0;
    }
    if (restOfA.isEmpty() != restOfB.isEmpty())
        return restOfA.isEmpty();
    return a < b; // the same but for leading zeros
}

} // namespace

QStringList inNaturalOrder(QStringList names)
{
    std::sort(names.begin(), names.end(), isBefore);
    return names;
}

namespace {

QString reasonOf(const QSerialPort &port)
{
    switch (port.error()) {
    case QSerialPort::DeviceNotFoundError:
        return QStringLiteral("такого порта нет");
    case QSerialPort::PermissionError:
        return QStringLiteral("занят другой программой, или на него нет прав (группа dialout)");
    case QSerialPort::ResourceError:
        return QStringLiteral("порт отключён");
    case QSerialPort::UnsupportedOperationError:
        return QStringLiteral("порт не управляет линиями RTS и DTR");
    default:
        return port.errorString();
    }
}

} // namespace

SerialLine::SerialLine() = default;

SerialLine::~SerialLine()
{
    close(); // not by the port's own end, which leaves the key as it is
}

void SerialLine::openDevice(const QString &device)
{
    if (device.isEmpty())
        throw LineError(QStringLiteral("такого порта нет"));
    m_port = std::make_unique<QSerialPort>(device);
    if (!m_port->open(QIODevice::WriteOnly)) {
        const QString reason = reasonOf(*m_port);
        m_port.reset();
        throw LineError(reason);
    }
    try {
        // The system raises both lines when it opens a port: down with the key at once.
        setDtr(false);
        setRts(false);
    } catch (const LineError &) {
        close();
        throw;
    }
}

void SerialLine::check(bool done)
{
    if (!done)
        throw LineError(reasonOf(*m_port));
}

void SerialLine::setRts(bool high)
{
    check(m_port->setRequestToSend(high));
}

void SerialLine::setDtr(bool high)
{
    check(m_port->setDataTerminalReady(high));
}

void SerialLine::close() noexcept
{
    if (!m_port)
        return;
    m_port->setDataTerminalReady(false);
    m_port->setRequestToSend(false);
    m_port->close();
    m_port.reset();
}

} // namespace cw
