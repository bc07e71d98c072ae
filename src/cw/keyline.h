#pragma once

#include <QString>

#include <chrono>
#include <exception>

namespace cw {

/// The line cannot be opened or keyed: no such port, held by another program, pulled out.
class LineError : public std::exception {
public:
    explicit LineError(QString reason) : m_reason(std::move(reason)) {}
    [[nodiscard]] const QString &reason() const noexcept { return m_reason; }
    [[nodiscard]] const char *what() const noexcept override { return "serial line"; }

private:
    QString m_reason;
};

/// The serial port that keys the transmitter: RTS switches it to sending, DTR is the key. Used by one thread
/// from open() to close().
class KeyLine {
public:
    KeyLine() = default;
    KeyLine(const KeyLine &) = delete;
    KeyLine &operator=(const KeyLine &) = delete;
    virtual ~KeyLine() = default;

    /// Device behind a port number from 1, for showing; empty where the system has no such port. Asked by the
    /// window's thread.
    [[nodiscard]] virtual QString deviceName(int port) = 0;

    /// Opens the port with both lines low. Throws LineError.
    virtual void open(int port) = 0;
    virtual void setRts(bool high) = 0; ///< throws LineError
    virtual void setDtr(bool high) = 0; ///< throws LineError
    /// Lowers both lines as far as the port still answers, and closes it. Nothing where it is not open.
    virtual void close() noexcept = 0;
};

/// The clock that paces the elements.
class Pacer {
public:
    Pacer() = default;
    Pacer(const Pacer &) = delete;
    Pacer &operator=(const Pacer &) = delete;
    virtual ~Pacer() = default;

    /// Makes ready for a transmission: an earlier stop() counts no longer. Before the line's thread starts.
    virtual void arm() = 0;
    /// The transmission begins now.
    virtual void begin() = 0;
    /// Waits until `length` after the end of the wait before (after begin() for the first), so that errors do
    /// not add up. False where stop() was called: at once.
    [[nodiscard]] virtual bool wait(std::chrono::nanoseconds length) = 0;
    /// Ends the waits of this transmission; from any thread.
    virtual void stop() = 0;
};

} // namespace cw
