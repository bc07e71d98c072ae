#pragma once

#include "base/clock.h"

#include <QString>

namespace logentry {

/// The menu item's captions: "Руч" stands while the clock fills date and time.
inline constexpr char16_t kAutomaticCaption[] = u"Руч";
inline constexpr char16_t kManualCaption[] = u"Авто";
/// Captions of the time base label.
inline constexpr char16_t kUtcCaption[] = u"UTC";
inline constexpr char16_t kLocalCaption[] = u"Местное";

struct ClockTexts {
    QString date;
    QString time;
};

/// One tick: in automatic mode the clock's time by the base, local time in the system's short form. In either
/// mode a date of exactly ten characters is cut to a two-digit year and a time of exactly seven gets its "0"
/// in front, also when the operator typed them; any other text stays.
[[nodiscard]] ClockTexts tick(const base::Clock &clock, bool automatic, bool utc, ClockTexts texts);

} // namespace logentry
