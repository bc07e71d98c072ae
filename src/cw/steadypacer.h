#pragma once

#include "cw/keyline.h"

#include <condition_variable>
#include <mutex>

namespace cw {

/// Paces by the system's steady clock against absolute deadlines.
class SteadyPacer final : public Pacer {
public:
    void arm() override;
    void begin() override;
    [[nodiscard]] bool wait(std::chrono::nanoseconds length) override;
    void stop() override;

private:
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::chrono::steady_clock::time_point m_deadline;
    bool m_stopped = false;
};

} // namespace cw
