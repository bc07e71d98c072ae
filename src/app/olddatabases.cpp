#include "app/olddatabases.h"

#include <utility>

namespace app {

OldDatabases::OldDatabases(ui::Messages &messages, ui::Progress &progress, foreign::JetOptions reader)
    : m_messages(messages), m_progress(progress), m_reader(std::move(reader))
{}

bool OldDatabases::run(const Convert &convert)
{
    const ui::ProgressScope scope(m_progress, QStringLiteral("Файл старой программы"), true);
    store::ConversionOptions options;
    options.reader = m_reader;
    options.chooseCodePage = [this](const QString &path, const foreign::CodePageDoubt &doubt) {
        return m_messages.chooseCodePage(path, doubt);
    };
    return convert(options,
                   [this](qint64 done, qint64 total) {
                       return m_progress.advance(QStringLiteral("Строк прочитано и сверено"), done, total);
                   })
        .has_value();
}

bool OldDatabases::convertTo(const QString &oldFile, const QString &newFile)
{
    return run([&](const store::ConversionOptions &options, const store::ConversionProgress &progress) {
        return store::convertJetTo(oldFile, newFile, options, progress);
    });
}

bool OldDatabases::convertInPlace(const QString &oldFile)
{
    return run([&](const store::ConversionOptions &options, const store::ConversionProgress &progress) {
        return store::convertJet({oldFile, oldFile}, options, progress);
    });
}

} // namespace app
