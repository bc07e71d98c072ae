#pragma once

#include "logentry/sources.h"

namespace logentry {

/// The second log, dblog.mdb in the program folder. While it is switched on every recorded contact is written
/// to it too, without its mode.
class ParallelLog {
public:
    explicit ParallelLog(Sources &sources) : m_sources(sources) {}

    /// Removes all its rows, all or nothing. Throws store::Error, also where the file is not there.
    void empty();

    /// Appends all its rows to the main log, all or nothing, after a verified copy of the main log. Nothing
    /// is tested for being there already: loading twice appends twice. Gives the number of rows. Throws
    /// store::Error.
    qint64 load(const store::Progress &copying, const store::Progress &loading);

private:
    Sources &m_sources;
};

} // namespace logentry
