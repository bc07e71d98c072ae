#pragma once

#include <QDateTime>

namespace base {

/// Where the program reads the time. Tests give their own.
class Clock {
public:
    Clock() = default;
    Clock(const Clock &) = delete;
    Clock &operator=(const Clock &) = delete;
    virtual ~Clock() = default;

    [[nodiscard]] virtual QDateTime utc() const = 0;
    [[nodiscard]] virtual QDateTime local() const = 0;
};

/// The computer's own clock.
class SystemClock final : public Clock {
public:
    [[nodiscard]] QDateTime utc() const override { return QDateTime::currentDateTimeUtc(); }
    [[nodiscard]] QDateTime local() const override { return QDateTime::currentDateTime(); }
};

} // namespace base
