#include "logentry/ui/logtasks.h"

#include "interchange/contestlist.h"
#include "interchange/spreadsheet.h"
#include "logentry/callbookrecord.h"
#include "logentry/parallellog.h"
#include "logentry/revision.h"

#include <QFileInfo>

namespace logentry {

namespace {

const QString kKeepTitle = QStringLiteral("Сохранение данных");
const QString kDeleteTitle = QStringLiteral("Удаление данных");
const QString kCopying = QStringLiteral("Копия журнала, страниц");

} // namespace

LogTasks::LogTasks(ui::Messages &messages, ui::Progress &progress, ui::FileDialogs &dialogs, Sources &sources,
                   EntryFields &fields, EntryState &state, Lookups &lookups)
    : m_messages(messages), m_progress(progress), m_dialogs(dialogs), m_sources(sources), m_fields(fields),
      m_state(state), m_lookups(lookups)
{}

store::Progress LogTasks::showing(const QString &what)
{
    return [this, what](qint64 done, qint64 total) {
        (void)m_progress.advance(what, done, total); // these steps are all or nothing: no way to stop them
    };
}

void LogTasks::emptyParallelLog()
{
    ParallelLog(m_sources).empty();
}

void LogTasks::switchParallelLog()
{
    if (m_state.parallelLog) {
        m_state.parallelLog = false;
        return;
    }
    if (!m_messages.askYesNo(QStringLiteral("Вести парралельную запись в Log.mdb ? "), kKeepTitle))
        return;
    ui::guarded(m_messages, [this] {
        if (m_messages.askYesNo(QStringLiteral("Очистить предворительно Базу Log.mdb ?"), kDeleteTitle))
            emptyParallelLog();
        m_state.parallelLog = true;
    });
}

void LogTasks::loadParallelLog()
{
    ui::guarded(m_messages, [this] {
        if (m_messages.askYesNo(QStringLiteral("Перенести в Журнал данные из Log.mdb ? "), kKeepTitle)) {
            const ui::ProgressScope scope(m_progress, QStringLiteral("Загрузка из log.mdb"), false);
            ParallelLog(m_sources).load(showing(kCopying), showing(QStringLiteral("Связей")));
        }
        if (m_messages.askYesNo(QStringLiteral("Очистить  Log.mdb ?"), kDeleteTitle))
            emptyParallelLog();
    });
}

std::optional<QString> LogTasks::reviseCountries()
{
    if (!m_messages.askYesNo(QStringLiteral("Произвести ревизию стран ? "), QStringLiteral("Ревизия")))
        return std::nullopt;
    const EntryFields typed = m_fields;
    QString line;
    ui::guarded(m_messages, [&] {
        m_sources.Data1.refresh();
        if (m_sources.Data1.isEmpty())
            return;
        const ui::ProgressScope scope(m_progress, QStringLiteral("Ревизия"), true);
        m_sources.databases().makeVerifiedCopy(m_sources.mainLogPath(), showing(kCopying));
        const Revision::Result result =
            Revision(m_sources, m_fields, m_state, m_lookups).run([this](qint64 done, qint64 total) {
                return m_progress.advance(QStringLiteral("Связей"), done, total);
            });
        line = QStringLiteral("Ревизия%1: просмотрено связей %2, изменено %3")
                   .arg(result.stopped ? QStringLiteral(" остановлена") : QString())
                   .arg(result.visited)
                   .arg(result.changed);
        if (result.notShown)
            line += QStringLiteral(" (%1)").arg(result.notShown->line());
    });
    if (!typed.txtcall.isEmpty())
        showTypedAgain(typed);
    return line;
}

QString LogTasks::importSpreadsheet(QWidget *window)
{
    if (!m_messages.askYesNo(QStringLiteral("Перенести данные в Журнал из TblLog.xls ?"), kKeepTitle))
        return {};
    QString line;
    ui::guarded(m_messages, [&] {
        const QString workbook = placed(
            interchange::spreadsheetPath(m_sources.databases()), QStringLiteral("TblLog.xls"),
            {QStringLiteral("Excel 5.0 - 2003 (*.xls *.XLS)"), QStringLiteral("Все файлы (*)")}, window);
        if (workbook.isEmpty())
            return;
        interchange::SpreadsheetResult result;
        {
            const ui::ProgressScope scope(m_progress, QStringLiteral("TblLog.xls"), true);
            result = interchange::importSpreadsheet(
                m_sources.databases(), workbook, interchange::spreadsheetLog(m_sources.databases()),
                {showing(kCopying), [this](qint64 done, qint64 total) {
                     return m_progress.advance(QStringLiteral("Связей"), done, total);
                 }});
        }
        line = QStringLiteral("Из %1 добавлено связей: %2 из %3.")
                   .arg(QFileInfo(workbook).fileName())
                   .arg(result.added)
                   .arg(result.rows);
        if (result.notTaken > 0)
            line +=
                QStringLiteral(" Начиная со строки без позывного не взято строк: %1.").arg(result.notTaken);
        if (result.failed)
            m_messages.error(*result.failed);
    });
    return line;
}

QString LogTasks::addToCallbook()
{
    QString line;
    ui::guarded(m_messages, [&] {
        CallbookRecord record(m_sources, m_fields);
        record.readAgain();
        if (!record.isThere()) {
            record.add();
            line = m_fields.txtcall.isEmpty()
                       ? QStringLiteral("В адресную книгу добавлена запись без позывного")
                       : QStringLiteral("Добавлено в адресную книгу: %1").arg(m_fields.txtcall);
            return;
        }
        if (record.isOfStation() &&
            m_messages.askOk(QStringLiteral("Такой позывной есть в calbuk.Изменить данные ?"),
                             QStringLiteral("ХА ХА"))) {
            record.change();
            line = QStringLiteral("Изменено в адресной книге: %1").arg(m_fields.txtcall);
        }
        // Whatever was answered, and whichever station's record it is.
        if (m_fields.txtqth.isEmpty() || m_fields.txtname.isEmpty())
            m_messages.inform(QStringLiteral("Введите QTH или Имя "), QStringLiteral("ХИ ХИ"));
    });
    return line;
}

/// A file at its fixed place, else the one that the operator chooses.
QString LogTasks::placed(const QString &path, const QString &title, const QStringList &filters,
                         QWidget *window)
{
    return QFileInfo::exists(path) ? path : m_dialogs.fileToOpen(window, title, path, filters);
}

QString LogTasks::contestDatabase(QWidget *window)
{
    return placed(interchange::contestDatabase(m_sources.databases()), QStringLiteral("dbQRZ"),
                  {QStringLiteral("База соревнований (*.mdb *.MDB)"), QStringLiteral("Все файлы (*)")},
                  window);
}

QString LogTasks::contestList(QWidget *window, const std::function<void()> &waiting)
{
    QString line;
    QString database; // chosen once for both questions
    // The question names another workbook than the one that is opened: it always has.
    if (m_messages.askYesNo(QStringLiteral("Перенести данные в Журнал из Tblcalbuk.xls ?"), kKeepTitle)) {
        waiting();
        ui::guarded(m_messages, [&] { line = importContestList(window, database); });
    }
    if (!m_messages.askYesNo(QStringLiteral("Очистить Базу соревнований ?"), kDeleteTitle))
        return line;
    ui::guarded(m_messages, [&] {
        if (database.isEmpty())
            database = contestDatabase(window);
        if (database.isEmpty())
            return;
        const qint64 emptied = interchange::emptyContestList(m_sources.databases(), database);
        line += (line.isEmpty() ? QString() : QStringLiteral(" ")) +
                QStringLiteral("База соревнований очищена, удалено строк: %1.").arg(emptied);
    });
    return line;
}

QString LogTasks::importContestList(QWidget *window, QString &database)
{
    const QString workbook =
        placed(interchange::contestWorkbook(m_sources.databases()), QStringLiteral("TblLOG1.XLS"),
               {QStringLiteral("Excel 5.0 - 2003 (*.xls *.XLS)"), QStringLiteral("Все файлы (*)")}, window);
    if (workbook.isEmpty())
        return {};
    database = contestDatabase(window);
    if (database.isEmpty())
        return {};
    interchange::SheetResult result;
    {
        const ui::ProgressScope scope(m_progress, QFileInfo(workbook).fileName(), true);
        result = interchange::importContestList(
            m_sources.databases(), workbook, database,
            {showing(QStringLiteral("Копия базы соревнований, страниц")), [this](qint64 done, qint64 total) {
                 return m_progress.advance(QStringLiteral("Строк"), done, total);
             }});
    }
    QString line = QStringLiteral("Из %1 в %2 перенесено строк: %3 из %4.")
                       .arg(QFileInfo(workbook).fileName(), QFileInfo(database).fileName(),
                            QString::number(result.added), QString::number(result.rows));
    if (result.notTaken > 0)
        line += QStringLiteral(" Начиная со строки без позывного не взято строк: %1.").arg(result.notTaken);
    if (result.failed)
        m_messages.error(*result.failed);
    return line;
}

void LogTasks::showTypedAgain(const EntryFields &typed)
{
    m_fields.txtcall = typed.txtcall;
    m_fields.txtcontr = typed.txtcontr;
    Attempts attempt; // what cannot be looked up now is looked up at the next key
    attempt([this] { m_lookups.STRAN(); });
    attempt([this] { m_lookups.WWOD(); });
}

} // namespace logentry
