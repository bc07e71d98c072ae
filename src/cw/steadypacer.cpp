#include "cw/steadypacer.h"

namespace cw {

void SteadyPacer::arm()
{
    const std::lock_guard lock(m_mutex);
    m_stopped = false;
}

void SteadyPacer::begin()
{
    m_deadline = std::chrono::steady_clock::now();
}

bool SteadyPacer::wait(std::chrono::nanoseconds length)
{
    m_deadline += length;
    std::unique_lock lock(m_mutex);
    return !m_wake.wait_until(lock, m_deadline, [this] { return m_stopped; });
}

void SteadyPacer::stop()
{
    const std::lock_guard lock(m_mutex);
    m_stopped = true;
    m_wake.notify_all();
}

} // namespace cw
