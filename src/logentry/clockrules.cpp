#include "logentry/clockrules.h"

#include "base/date.h"

namespace logentry {

ClockTexts tick(const base::Clock &clock, bool automatic, bool utc, ClockTexts texts)
{
    constexpr qsizetype kLongDate = 10; // dd.mm.yyyy
    constexpr qsizetype kShortTime = 7; // h:mm:ss
    if (automatic && utc) {
        const QDateTime now = clock.utc();
        texts.time = base::clockTime(now.time());
        texts.date = base::logDate(now.date());
    } else if (automatic) {
        const QDateTime now = clock.local();
        texts.time = base::shortTime(now.time());
        texts.date = base::shortDate(now.date());
    }
    if (texts.date.size() == kLongDate)
        texts.date = texts.date.left(6) + texts.date.right(2);
    if (texts.time.size() == kShortTime)
        texts.time.prepend(QLatin1Char('0'));
    return texts;
}

} // namespace logentry
