#pragma once

#include "cw/keyline.h"

#include <QStringList>

#include <functional>

namespace testsupport {

/// A serial line and its clock in one, without a port and without waiting: writes down what happens. The
/// trace reads "open 1", "RTS 1", "DTR 1", "wait 60", "DTR 0", ..., "RTS 0", "close"; waits are in
/// milliseconds.
class RecordedLine final : public cw::KeyLine, public cw::Pacer {
public:
    QStringList trace;
    QStringList devices = {QStringLiteral("/dev/ttyS0"), QStringLiteral("/dev/ttyUSB0")};
    bool rts = false;
    bool dtr = false;
    int failAt = 0; ///< number of the call (open, RTS, DTR; from 1) that fails, and all after it; 0 for none
    /// Called in the window's thread, while it waits, before the wait number `index` (from 1) begins.
    std::function<void(int index)> beforeWait;

    [[nodiscard]] QString deviceName(int port) override { return devices.value(port - 1); }
    void open(int port) override;
    void setRts(bool high) override;
    void setDtr(bool high) override;
    void close() noexcept override;
    void arm() override;
    void begin() override;
    [[nodiscard]] bool wait(std::chrono::nanoseconds length) override;
    void stop() override;

    /// Messages on the air so far: times that RTS went up.
    [[nodiscard]] int messages() const { return static_cast<int>(trace.count(QStringLiteral("RTS 1"))); }

private:
    void call(const QString &what);

    int m_calls = 0;
    int m_waits = 0;
    bool m_stopped = false;
};

} // namespace testsupport
