#include "app/oldinstallation.h"

#include "store/schema.h"

#include <QFileInfo>
#include <QLocale>

#include <utility>

namespace app {

namespace {

QString nameOf(const QString &path)
{
    return QFileInfo(path).fileName();
}

QString title()
{
    return QStringLiteral("Преобразование старых баз");
}

/// "1 строка", "3 строки", "508 строк".
QString rowsText(qint64 rows)
{
    constexpr int kTen = 10;
    constexpr int kHundred = 100;
    const qint64 last = rows % kTen;
    const qint64 tens = rows % kHundred / kTen;
    const QString number = QLocale(QLocale::Russian).toString(rows);
    if (tens == 1 || last == 0 || last > 4)
        return number + QStringLiteral(" строк");
    return number + (last == 1 ? QStringLiteral(" строка") : QStringLiteral(" строки"));
}

QString tablesText(const store::Conversion &conversion)
{
    QStringList parts;
    for (const store::Conversion::Table &table : conversion.tables)
        parts.append(QStringLiteral("%1: %2").arg(table.name, rowsText(table.rows)));
    return parts.join(QStringLiteral(", "));
}

} // namespace

struct OldInstallation::Outcome {
    QStringList lines; ///< of each converted file
    QStringList originals;
    QStringList reasons;      ///< of failures, each once
    QList<QStringList> names; ///< of the files that failed for the reason
    QStringList failedFiles;  ///< paths
    QStringList untouched;    ///< names, not begun because the operator stopped
    qint64 rows = 0;

    void addFailure(const QString &source, const QString &target, const store::Error &error)
    {
        // A reason that all files share (the reading program is missing) is told once.
        const QString reason = error.kind() == store::ErrorKind::Unreadable
                                   ? error.engineText() + QLatin1Char('.')
                                   : error.text();
        qsizetype at = reasons.indexOf(reason);
        if (at < 0) {
            at = reasons.size();
            reasons.append(reason);
            names.append(QStringList());
        }
        names[at].append(nameOf(source));
        failedFiles.append(target);
    }
};

OldInstallation::OldInstallation(ui::Messages &messages, ui::Progress &progress, foreign::JetOptions reader)
    : m_messages(messages), m_progress(progress), m_reader(std::move(reader))
{}

QStringList OldInstallation::convert(store::Library &databases)
{
    if (!databases.readOnly())
        store::removeConversionLeftovers(databases.folder());
    QList<store::OldFile> files = store::findOldFiles(
        databases.folder(), [&](const QString &name) { return databases.path(QLatin1Char('\\') + name); });
    // Nobody is asked about what cannot be converted; alone it is told of when it is opened.
    QStringList newer;
    files.removeIf([&newer](const store::OldFile &file) {
        const bool isNewer = foreign::jetVersion(file.source) == foreign::JetVersion::Newer;
        if (isNewer)
            newer.append(file.source);
        return isNewer;
    });
    m_left = files;
    if (files.isEmpty() || databases.readOnly() || !ask(files))
        return {};
    m_left.clear();
    Outcome outcome;
    run(files, outcome);
    for (const QString &path : std::as_const(newer))
        if (const auto reason = store::Library::inspect(path))
            outcome.addFailure(path, path, *reason);
    tell(outcome);
    return outcome.failedFiles;
}

bool OldInstallation::ask(const QList<store::OldFile> &files)
{
    QStringList lines;
    for (const store::OldFile &file : files) {
        const store::FileLayout *layout = store::fileLayout(nameOf(file.target));
        lines.append(QStringLiteral("    %1 — %2").arg(nameOf(file.source), layout->role));
    }
    return m_messages.askYesNo(
        QStringLiteral(
            "Найдены базы старой программы (формат Jet):\n\n%1\n\nПреобразовать их? Все строки будут "
            "перенесены и сверены со старыми файлами. Старые файлы останутся рядом без изменений, под "
            "именами вида dbiaru.jet.mdb.")
            .arg(lines.join(QLatin1Char('\n'))),
        title());
}

void OldInstallation::run(const QList<store::OldFile> &files, Outcome &outcome)
{
    const ui::ProgressScope scope(m_progress, title(), true);
    bool stopped = !m_progress.advance(QStringLiteral("Чтение"), 0, files.size());
    QList<qint64> steps;
    qint64 total = 0;
    for (const store::OldFile &file : files) {
        steps.append(stopped ? 0 : 2 * store::claimedRows(file.source, m_reader)); // read, and compared
        total += steps.back();
    }
    qint64 before = 0;
    for (qsizetype i = 0; i < files.size(); ++i) {
        const QString what =
            QStringLiteral("%1 (%2 из %3)").arg(nameOf(files[i].target)).arg(i + 1).arg(files.size());
        const store::ConversionProgress progress = [&](qint64 done, qint64) {
            stopped = stopped || !m_progress.advance(what, before + done, total);
            return !stopped;
        };
        if (!stopped)
            convertOne(files[i], progress, outcome);
        if (stopped)
            outcome.untouched.append(nameOf(files[i].source));
        before += steps[i];
    }
}

void OldInstallation::convertOne(const store::OldFile &file, const store::ConversionProgress &progress,
                                 Outcome &outcome)
{
    store::ConversionOptions options;
    options.reader = m_reader;
    options.chooseCodePage = [this](const QString &path, const foreign::CodePageDoubt &doubt) {
        return chooseCodePage(path, doubt);
    };
    try {
        const auto conversion = store::convertJet(file, options, progress);
        if (!conversion)
            return;
        outcome.rows += conversion->rows();
        outcome.lines.append(QStringLiteral("    %1 — %2").arg(nameOf(file.target), tablesText(*conversion)));
        outcome.originals.append(nameOf(conversion->original));
    } catch (const store::Error &error) {
        outcome.addFailure(file.source, file.target, error);
    }
}

int OldInstallation::chooseCodePage(const QString &path, const foreign::CodePageDoubt &doubt)
{
    const QString key = QStringLiteral("%1 %2").arg(doubt.headerCodePage).arg(doubt.samples.front().codePage);
    const auto known = m_codePages.constFind(key);
    if (known != m_codePages.constEnd())
        return *known;
    const int chosen = m_messages.chooseCodePage(nameOf(path), doubt);
    m_codePages.insert(key, chosen);
    return chosen;
}

void OldInstallation::tell(const Outcome &outcome)
{
    QStringList parts;
    if (!outcome.lines.isEmpty()) {
        parts.append(QStringLiteral("Преобразовано файлов: %1, всего %2:\n%3")
                         .arg(outcome.lines.size())
                         .arg(rowsText(outcome.rows), outcome.lines.join(QLatin1Char('\n'))));
        parts.append(QStringLiteral("Старые файлы сохранены рядом: %1.")
                         .arg(outcome.originals.join(QStringLiteral(", "))));
    }
    QStringList failures;
    for (qsizetype i = 0; i < outcome.reasons.size(); ++i)
        failures.append(QStringLiteral("    %1: %2")
                            .arg(outcome.names[i].join(QStringLiteral(", ")), outcome.reasons[i]));
    if (!failures.isEmpty())
        parts.append(QStringLiteral("Не преобразованы и оставлены без изменений:\n%1")
                         .arg(failures.join(QLatin1Char('\n'))));
    if (!outcome.untouched.isEmpty())
        parts.append(QStringLiteral("Преобразование остановлено. Без изменений остались: %1.")
                         .arg(outcome.untouched.join(QStringLiteral(", "))));
    m_messages.inform(parts.join(QStringLiteral("\n\n")), title());
}

} // namespace app
