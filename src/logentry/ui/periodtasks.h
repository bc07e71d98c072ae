#pragma once

#include "interchange/adifexport.h"
#include "logentry/sources.h"
#include "ui/messages.h"
#include "ui/progress.h"

#include <optional>

namespace logentry {

/// A period of the log printed, shown or written to ADIF files: what the period panel's buttons do. Days and
/// paths as typed.
class PeriodTasks {
public:
    PeriodTasks(ui::Messages &messages, ui::Progress &progress, Sources &sources);

    /// Copies the period into the print table, which holds nothing else then. Gives the number of contacts;
    /// nothing where it failed, and the operator has been told. An empty day takes no contacts.
    [[nodiscard]] std::optional<qint64> fillPrintTable(const QString &first, const QString &last);
    /// Shows the period in the grid, all its rows known. False where it failed: the operator has been told,
    /// and the grid shows what it showed before.
    bool showInGrid(const QString &first, const QString &last);

    // The exports give the line to show in the panel afterwards.

    /// "ADIF": in pieces of 500 into one file, of which the last one stays.
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
