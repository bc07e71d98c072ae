#pragma once

namespace cw {

/// Asks the system to wake the calling thread as promptly as it can. Where the user has no right to that,
/// nothing happens: the deadlines are absolute either way.
void makeThreadUrgent() noexcept;

} // namespace cw
