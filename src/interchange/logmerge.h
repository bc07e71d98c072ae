#pragma once

#include "store/library.h"
#include "store/tablewalk.h"

#include <QByteArray>
#include <QByteArrayView>

#include <functional>
#include <optional>

namespace interchange {

/// Counters of a merge. Rows of the source: total = examined + left.
struct MergeCounters {
    qint64 total = 0; ///< rows that stood in the source at its start
    qint64 examined = 0;
    qint64 added = 0;      ///< rows added to the target
    qint64 marked = 0;     ///< rows of the target that took a mark or a route
    qint64 markedBack = 0; ///< rows of the source that did
    qint64 keptBack = 0;   ///< rows of the source that would have, but the source only gives
    bool stopped = false;  ///< by the operator; what is done stays done, the next merge goes on
};

/// Merges a log file into another: adds the contacts that the target lacks, and exchanges received and sent
/// marks and routes between contacts that both hold. Two contacts are the same where callsign, date, band and
/// sent report are; time, mode and received report do not count. Works in chunks of whole rows, each
/// committed; what a killed merge has not done the next one does, and nothing twice.
class LogMerge {
public:
    /// False ends the merge. Called from time to time; must not touch the files.
    using Step = std::function<bool(const MergeCounters &counters)>;

    enum class Source { Exchanges, OnlyGives };

    /// `use`: whether marks may flow into the source; one that cannot be written only gives in any case.
    LogMerge(store::Library &databases, QString sourcePath, QString targetPath,
             Source use = Source::Exchanges);

    /// Runs the merge after verified copies of what it may change. A file merged into itself is only counted.
    /// Throws store::Error; counters() then tells what had been done.
    void run(const Step &step, const store::Progress &copying);
    [[nodiscard]] const MergeCounters &counters() const noexcept { return m_counters; }

private:
    /// A row of the target, and those of its fields that the merge may fill.
    struct Match {
        qint64 key;
        QByteArray marks[3];
    };

    void mergeChunk(const Step &step);
    [[nodiscard]] std::optional<Match> find(std::size_t row);
    void addRow(std::size_t row);
    void exchangeMarks(std::size_t row, const Match &match);

    store::Library &m_databases;
    QString m_sourcePath;
    QString m_targetPath;
    store::Connection *m_target = nullptr;
    std::optional<store::TableWalk> m_source;
    bool m_sourceWritable;
    MergeCounters m_counters;
    QString m_plainLookup; ///< for values without anything special in them
};

/// What the repair of dates and times has changed.
struct RepairCounters {
    qint64 visited = 0;
    qint64 dates = 0;
    qint64 times = 0;
    bool stopped = false;
};

/// "05-Mar-02" as the log writes it: "05.03.02". Nothing for a text without an English month in its fourth to
/// sixth characters.
[[nodiscard]] std::optional<QString> repairedDate(const QString &date);
/// "905" as "9:05", "1407" as "14:07". Nothing for a text that is not three or four digits.
[[nodiscard]] std::optional<QString> repairedTime(const QString &time);

/// Repairs the dates and times of a whole log, after a verified copy where there is anything to repair.
/// Throws store::Error.
[[nodiscard]] RepairCounters repairDatesAndTimes(store::Library &databases, const QString &logPath,
                                                 const std::function<bool(qint64 done, qint64 total)> &step,
                                                 const store::Progress &copying);

} // namespace interchange
