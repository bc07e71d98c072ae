#pragma once

#include <QString>

namespace logentry {

/// Own-callsign key, the operator mark of each new row: of a callsign of five characters or more what follows
/// its first three, cut to the last five; any shorter callsign whole.
[[nodiscard]] inline QString ownCallKey(const QString &ownCall)
{
    constexpr qsizetype kShortestCut = 5;
    if (ownCall.size() < kShortestCut)
        return ownCall;
    return ownCall.mid(3).right(5);
}

} // namespace logentry
