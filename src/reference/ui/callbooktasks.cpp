#include "reference/ui/callbooktasks.h"

#include "store/folder.h"

#include <QFileInfo>

namespace reference {

namespace {

const QString kTitle = QStringLiteral("Пополнение базы");

/// "12, 15, 20, ..."
QString named(const CallbookLines &lines)
{
    QStringList numbers;
    for (const qint64 line : lines.first)
        numbers.append(QString::number(line));
    if (lines.count > lines.first.size())
        numbers.append(QStringLiteral("..."));
    return numbers.join(QStringLiteral(", "));
}

void addLine(QStringList &text, const QString &what, const CallbookLines &lines)
{
    if (lines.count > 0)
        text.append(QStringLiteral("%1: %2 (строки файла %3).")
                        .arg(what, QString::number(lines.count), named(lines)));
}

QString foundText(const QString &file, const CallbookExamination &found)
{
    QStringList text = {
        QStringLiteral("%1: записей %2, прочитан как %3.")
            .arg(file, QString::number(found.records), found.codingName),
        QStringLiteral("Новых позывных: %1.").arg(found.newCalls),
        QStringLiteral("Уже есть в базе: %1. Заполненные поля останутся как есть, записей с новым для пустых "
                       "полей: %2.")
            .arg(found.knownCalls)
            .arg(found.filling)};
    if (found.repeated > 0)
        text.append(QStringLiteral("Повторов внутри файла: %1.").arg(found.repeated));
    addLine(text, QStringLiteral("Записи без позывного, не берутся"), found.withoutCall);
    addLine(text, QStringLiteral("Записи со значениями дальше последнего столбца, не берутся"),
            found.tooMany);
    addLine(text, QStringLiteral("Записи, в которых столбцов меньше, чем в заголовке, берутся"),
            found.tooFew);
    if (!found.unknownColumns.isEmpty())
        text.append(QStringLiteral("Столбцы, которые не берутся (в базе таких нет или они повторены): %1.")
                        .arg(found.unknownColumns.join(QStringLiteral(", "))));
    return text.join(QLatin1Char('\n'));
}

} // namespace

CallbookTasks::CallbookTasks(const Services &services) : m_services(services) {}

CallbookStep CallbookTasks::showing(const QString &what)
{
    return [this, what](qint64 done, qint64 total) { return m_services.progress.advance(what, done, total); };
}

QString CallbookTasks::importFile(QWidget *window)
{
    const QString path = m_services.dialogs.fileToOpen(
        window, QStringLiteral("Файл с адресами станций"),
        m_file.isEmpty() ? m_services.databases.folder() : m_file,
        {QStringLiteral("Текстовые файлы (*.txt *.csv *.tsv *.TXT *.CSV *.TSV)"),
         QStringLiteral("Все файлы (*)")});
    QString line;
    if (path.isEmpty())
        return line;
    m_file = path;
    ui::guarded(m_services.messages, [&] { line = importFrom(path); });
    return line;
}

CallbookExamination CallbookTasks::examine(CallbookFile &file)
{
    const ui::ProgressScope scope(m_services.progress, kTitle, true);
    return file.examine(showing(QStringLiteral("Чтение файла, байт")));
}

QString CallbookTasks::importFrom(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    CallbookFile file(m_services.databases, path);
    const CallbookExamination found = examine(file);
    if (found.stopped)
        return QStringLiteral("Остановлено: база не изменилась.");
    const QString text = foundText(name, found);
    if (found.newCalls == 0 && found.filling == 0) {
        m_services.messages.inform(text + QStringLiteral("\n\nНичего нового для базы в файле нет."), kTitle);
        return {};
    }
    if (!m_services.messages.askYesNo(text + QStringLiteral("\n\nПополнить базу?"), kTitle))
        return {};
    CallbookImportResult result;
    {
        const ui::ProgressScope scope(m_services.progress, kTitle, true);
        result = file.import({[this](qint64 done, qint64 total) {
                                  (void)m_services.progress.advance(QStringLiteral("Копия базы, страниц"),
                                                                    done, total);
                              },
                              showing(QStringLiteral("Записей"))});
    }
    if (result.failed)
        m_services.messages.error(*result.failed);
    QString line = QStringLiteral("%1: добавлено записей %2, дополнено %3")
                       .arg(name, QString::number(result.added), QString::number(result.filled));
    if (result.skipped > 0)
        line += QStringLiteral(", не взято %1").arg(result.skipped);
    if (result.stopped || result.failed)
        line += QStringLiteral("; остановлено раньше конца файла");
    return line + QLatin1Char('.');
}

QString CallbookTasks::exportFile(QWidget *window)
{
    const QString path = m_services.dialogs.fileToSave(
        window, QStringLiteral("База в текстовый файл"),
        store::joinSuffix(m_services.databases.folder(), u"\\calbuk.txt"),
        {QStringLiteral("Текст с табуляцией (*.txt)"), QStringLiteral("Таблица с точкой с запятой (*.csv)")});
    if (path.isEmpty())
        return {};
    QString line;
    ui::guarded(m_services.messages, [&] {
        const bool semicolon =
            QFileInfo(path).suffix().compare(QLatin1String("csv"), Qt::CaseInsensitive) == 0;
        const ui::ProgressScope scope(m_services.progress, QStringLiteral("База в текстовый файл"), true);
        const CallbookExportResult result = exportCallbook(
            m_services.databases, path, semicolon ? CallbookSeparator::Semicolon : CallbookSeparator::Tab,
            showing(QStringLiteral("Записей")));
        line = result.stopped
                   ? QStringLiteral("Остановлено: файл не записан.")
                   : QStringLiteral("%1: записей %2, кодировка %3.")
                         .arg(QFileInfo(path).fileName(), QString::number(result.records), result.codingName);
    });
    return line;
}

} // namespace reference
