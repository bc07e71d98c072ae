#pragma once

#include "cw/keyline.h"

#include <memory>

class QSerialPort;

namespace cw {

/// Device of the system's serial port with this number, from 1, and its path or name for opening; empty where
/// there are fewer.
[[nodiscard]] QString serialPortName(int number);

/// Names in natural order: ttyS2 before ttyS10, ttyS before ttyUSB.
[[nodiscard]] QStringList inNaturalOrder(QStringList names);

/// A serial port of the computer.
class SerialLine final : public KeyLine {
public:
    SerialLine();
    ~SerialLine() override;

    [[nodiscard]] QString deviceName(int port) override { return serialPortName(port); }
    void open(int port) override { openDevice(serialPortName(port)); }
    /// Opens a device by its name or path. Throws LineError, also for an empty name.
    void openDevice(const QString &device);
    void setRts(bool high) override;
    void setDtr(bool high) override;
    void close() noexcept override;

private:
    void check(bool done);

    std::unique_ptr<QSerialPort> m_port; ///< belongs to the thread that opened it
};

} // namespace cw
