#pragma once

#include "interchange/adifexport.h"
#include "logentry/sources.h"
#include "ui/messages.h"
#include "ui/progress.h"

namespace logentry {

/// A period of the log written to ADIF files: what the period panel's buttons do. Each function gives the
/// line to show in the panel afterwards.
class PeriodTasks {
public:
    PeriodTasks(ui::Messages &messages, ui::Progress &progress, Sources &sources);

    /// "ADIF": in pieces of 500 into one file, of which the last one stays. Days and path as typed.
    [[nodiscard]] QString exportInPieces(const QString &first, const QString &last, const QString &path);
    /// "Весь период в один файл"; the log stays as it is. Without a form in the program's own layout, else as
    /// ADIF 3.1, and then a name without an extension gets one.
    [[nodiscard]] QString exportWhole(const QString &first, const QString &last, const QString &path,
                                      std::optional<interchange::AdifForm> form,
                                      const interchange::AdifHeader &header);

private:
    using Run = std::function<interchange::ExportResult(interchange::AdifExport &exporter,
                                                        const store::SqlText &, const interchange::Step &)>;
    [[nodiscard]] QString run(const QString &first, const QString &last, const Run &exporting);

    ui::Messages &m_messages;
    ui::Progress &m_progress;
    Sources &m_sources;
};

} // namespace logentry
