#include "support/serialport.h"

#include <dlfcn.h>

#include <cstdarg>

namespace testsupport {

ModemLines *emulated = nullptr;

} // namespace testsupport

using testsupport::emulated;

extern "C" __attribute__((visibility("default"))) int ioctl(int descriptor, unsigned long request,
                                                            ...) noexcept
{
    va_list rest;
    va_start(rest, request);
    void *argument = va_arg(rest, void *);
    va_end(rest);
    if (emulated != nullptr && emulated->isBehind(descriptor))
        if (const auto code = emulated->answer(request, static_cast<int *>(argument))) {
            errno = *code;
            return *code == 0 ? 0 : -1;
        }
    using Ioctl = int (*)(int, unsigned long, ...);
    static const auto next = reinterpret_cast<Ioctl>(::dlsym(RTLD_NEXT, "ioctl"));
    return next(descriptor, request, argument);
}
