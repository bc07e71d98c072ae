#pragma once

#include <chrono>

namespace cw {

/// Length of a unit (a dot) as the speed bar sets it. It is counted in passes of a waiting loop, each of
/// which stands for 0.4 microseconds.
class Speed {
public:
    static constexpr int kSlowest = 1;
    static constexpr int kFastest = 100;
    static constexpr int kStart = 50;

    /// The operator moved the bar, 1 (slowest) to 100.
    void setBar(int bar) noexcept;
    [[nodiscard]] int bar() const noexcept { return m_bar; }

    /// Takes the unit from the bar anew, as every message does at its end.
    void recompute() noexcept;

    /// Passes of a unit: (101 - bar) * 3000. Until the bar is moved or a first message has ended it is
    /// 150000, a little less than what the bar's first place stands for; operators know the first message so.
    [[nodiscard]] int passes() const noexcept { return m_passes; }
    [[nodiscard]] std::chrono::nanoseconds unit() const noexcept;

    /// Words (of 50 units, as PARIS has) a minute, rounded to the nearest.
    [[nodiscard]] int wordsPerMinute() const noexcept;

private:
    int m_bar = kStart;
    int m_passes = 150000;
};

} // namespace cw
