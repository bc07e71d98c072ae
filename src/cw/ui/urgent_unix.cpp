// Linux: real-time scheduling where it is allowed, and waits that are not rounded for the sake of the
// battery.
#include "cw/ui/urgent.h"

#include <pthread.h>
#include <sched.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace cw {

void makeThreadUrgent() noexcept
{
#ifdef __linux__
    ::prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL); // ns; 50,000 otherwise
#endif
    sched_param parameters{};
    parameters.sched_priority = sched_get_priority_min(SCHED_RR);
    ::pthread_setschedparam(::pthread_self(), SCHED_RR, &parameters);
}

} // namespace cw
