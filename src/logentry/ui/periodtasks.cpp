#include "logentry/ui/periodtasks.h"

#include "interchange/sql.h"

#include <QFileInfo>

namespace logentry {

PeriodTasks::PeriodTasks(ui::Messages &messages, ui::Progress &progress, Sources &sources)
    : m_messages(messages), m_progress(progress), m_sources(sources)
{}

QString PeriodTasks::run(const QString &first, const QString &last, const Run &exporting)
{
    QString line;
    ui::guarded(m_messages, [&] {
        store::DataSource &period = m_sources.Data19;
        period.setRecordSource(interchange::sql::contactsOfPeriod(first, last));
        period.refresh();
        if (period.isEmpty()) {
            line = QStringLiteral("За этот период связей нет, файл не записан.");
            return;
        }
        interchange::ExportResult result;
        {
            const ui::ProgressScope scope(m_progress, QStringLiteral("ADIF"), true);
            interchange::AdifExport exporter(m_sources.databases(), m_sources.mainLogPath());
            result = exporting(exporter, period.recordSource(),
                               [this](const QString &what, qint64 done, qint64 total) {
                                   return m_progress.advance(what, done, total);
                               });
        }
        if (result.stopped) {
            line = QStringLiteral("Остановлено: файл не записан.");
            return;
        }
        line =
            result.kept == result.contacts
                ? QStringLiteral("Записано связей: %1.").arg(result.contacts)
                : QStringLiteral("За период связей %1, в файле из них последние %2: каждые 500 связей файл "
                                 "пишется заново. Все запишет «Весь период в один файл».")
                      .arg(result.contacts)
                      .arg(result.kept);
        if (result.undated > 0)
            line += QStringLiteral(" Без верной даты или времени: %1.").arg(result.undated);
        if (result.repaired > 0)
            line += QStringLiteral(" В журнале исправлены рапорт или вид связи: %1.").arg(result.repaired);
        if (result.repairFailure)
            m_messages.error(*result.repairFailure);
    });
    return line;
}

QString PeriodTasks::exportInPieces(const QString &first, const QString &last, const QString &path)
{
    return run(first, last,
               [&](interchange::AdifExport &exporter, const store::SqlText &contacts,
                   const interchange::Step &step) { return exporter.lastPiece(contacts, path, step); });
}

QString PeriodTasks::exportWhole(const QString &first, const QString &last, const QString &path)
{
    return run(first, last,
               [&](interchange::AdifExport &exporter, const store::SqlText &contacts,
                   const interchange::Step &step) { return exporter.whole(contacts, path, step); });
}

} // namespace logentry
