#pragma once

#include "cw/keyline.h"
#include "cw/speed.h"

#include <functional>

namespace cw {

enum class Outcome {
    Sent,
    Stopped, ///< by the operator
    Busy     ///< the port cannot be opened or keyed
};

struct Result {
    Outcome outcome = Outcome::Sent;
    QString reason; ///< of Busy, the system's words
};

/// Keys a text over a serial port. Blocks until it is sent, stopped or has failed; both lines are low and the
/// port is closed then, whatever happened.
///
/// The port is opened, RTS raised; each dot or dash raises DTR for 1 or 3 units and lowers it for 1; a
/// silence lasts 2. The last element, always the silence behind the last character, is not played. Then the
/// unit is taken from the speed bar anew and 4 such units pass before RTS falls. An empty text does all this
/// too. `playing` is told the position (from 1) of each element before it is played; from the calling thread.
[[nodiscard]] Result transmit(QStringView text, int port, Speed &speed, KeyLine &line, Pacer &pacer,
                              const std::function<void(qsizetype position)> &playing = {});

} // namespace cw
