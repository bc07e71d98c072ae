#pragma once

#include "store/error.h"

#include <optional>

namespace testsupport {

/// What a piece of work throws; nothing where it succeeds.
template <typename Work>
[[nodiscard]] std::optional<store::Error> errorOf(const Work &work)
{
    try {
        work();
    } catch (const store::Error &error) {
        return error;
    }
    return std::nullopt;
}

} // namespace testsupport
