#include "logentry/ui/periodtasks.h"

#include "interchange/sql.h"
#include "logentry/lookups.h"
#include "logentry/sql.h"

#include <QFileInfo>

#include <algorithm>

namespace logentry {

namespace {

/// Contacts that the file does not hold, or not whole, with the first few of their callsigns.
QString describeOmitted(const std::vector<interchange::AdifWriter::Omitted> &omitted)
{
    constexpr std::size_t kNamed = 5;
    QStringList named;
    for (std::size_t i = 0; i < std::min(omitted.size(), kNamed); ++i)
        named.append(
            QStringLiteral("%1: %2").arg(omitted[i].call.isEmpty() ? QStringLiteral("?") : omitted[i].call,
                                         interchange::omissionText(omitted[i].omission)));
    return QStringLiteral(" Замечаний: %1 (%2%3).")
        .arg(qulonglong(omitted.size()))
        .arg(named.join(QStringLiteral("; ")), omitted.size() > kNamed ? QStringLiteral("; ...") : QString());
}

/// The line to show after an export.
QString describe(const interchange::ExportResult &result)
{
    QString line;
    if (!result.omitted.empty() || result.kept == result.contacts)
        line = QStringLiteral("Записано связей: %1 в %2.")
                   .arg(result.kept)
                   .arg(QFileInfo(result.files.constFirst()).fileName());
    else
        line =
            QStringLiteral("За период связей %1, в файле из них последние %2: каждые 500 связей файл пишется "
                           "заново. Все запишет «Весь период в один файл».")
                .arg(result.contacts)
                .arg(result.kept);
    if (!result.omitted.empty())
        line += describeOmitted(result.omitted);
    if (result.undated > 0)
        line += QStringLiteral(" Без верной даты или времени: %1.").arg(result.undated);
    if (result.repaired > 0)
        line += QStringLiteral(" В журнале исправлены рапорт или вид связи: %1.").arg(result.repaired);
    return line;
}

} // namespace

PeriodTasks::PeriodTasks(ui::Messages &messages, ui::Progress &progress, Sources &sources)
    : m_messages(messages), m_progress(progress), m_sources(sources)
{}

std::optional<qint64> PeriodTasks::fillPrintTable(const QString &first, const QString &last)
{
    std::optional<qint64> contacts;
    ui::guarded(m_messages, [&] {
        store::Library &files = m_sources.databases();
        const QString print = files.path(u"\\dbprint.mdb");
        const ui::ProgressScope scope(m_progress, QStringLiteral("Печать"), false);
        files.execute(print, sql::emptyPrintTable());
        contacts = files.execute(print, sql::loadPrintTable(m_sources.mainLogPath(), first, last),
                                 [this](qint64 done, qint64 total) {
                                     // all or nothing: no way to stop it
                                     (void)m_progress.advance(QStringLiteral("Связей"), done, total);
                                 });
    });
    return contacts;
}

bool PeriodTasks::showInGrid(const QString &first, const QString &last)
{
    store::DataSource &grid = m_sources.Data5;
    const store::SqlText before = grid.recordSource();
    bool shown = false;
    ui::guarded(m_messages, [&] {
        grid.setRecordSource(sql::contactsOfPeriod(first, last));
        grid.refresh();
        grid.fetchAll();
        shown = true;
    });
    if (shown)
        return true;
    grid.setRecordSource(before);
    Attempts again; // a file that cannot be read at all has just been told of
    again([&grid] { grid.refresh(); });
    return false;
}

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
        line = describe(result);
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

QString PeriodTasks::exportWhole(const QString &first, const QString &last, const QString &path,
                                 std::optional<interchange::AdifForm> form,
                                 const interchange::AdifHeader &header)
{
    return run(first, last,
               [&](interchange::AdifExport &exporter, const store::SqlText &contacts,
                   const interchange::Step &step) {
                   if (!form)
                       return exporter.whole(contacts, path, step);
                   const bool named = path.isEmpty() || path.endsWith(QLatin1Char('/')) ||
                                      !QFileInfo(path).suffix().isEmpty();
                   return exporter.modern(
                       contacts, named ? path : path + QLatin1Char('.') + interchange::adifSuffix(*form),
                       *form, header, step);
               });
}

} // namespace logentry
