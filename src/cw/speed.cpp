#include "cw/speed.h"

#include <algorithm>

namespace cw {

namespace {

constexpr int kPassesPerStep = 3000;
constexpr std::chrono::nanoseconds kPass{400};

} // namespace

void Speed::setBar(int bar) noexcept
{
    m_bar = std::clamp(bar, kSlowest, kFastest);
    recompute();
}

void Speed::recompute() noexcept
{
    m_passes = (kFastest + 1 - m_bar) * kPassesPerStep;
}

std::chrono::nanoseconds Speed::unit() const noexcept
{
    return m_passes * kPass;
}

int Speed::wordsPerMinute() const noexcept
{
    constexpr int kUnitsPerWord = 50;
    const auto word = kUnitsPerWord * unit();
    return static_cast<int>((std::chrono::minutes(1) + word / 2) / word);
}

} // namespace cw
