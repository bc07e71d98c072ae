// zhurnal-bench-interchange: ADIF export and import and the merge on a big log.
#include "bench/bare.h"
#include "bench/genlog.h"
#include "bench/interchangework.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>

namespace bench {

namespace {

int run(int &argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Measures ADIF export and import and the merge of two logs on copies of a log of made-up "
        "contacts."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("parts"),
                                 QStringLiteral("export, import, merge; all of them where none is named."),
                                 QStringLiteral("[parts...]"));
    const QCommandLineOption rowsOption(QStringLiteral("rows"),
                                        QStringLiteral("Contacts of a log made for this run."),
                                        QStringLiteral("N"), QStringLiteral("1000000"));
    const QCommandLineOption folderOption(
        QStringLiteral("folder"),
        QStringLiteral("A folder filled by zhurnal-genlog, instead; it is only read."),
        QStringLiteral("DIR"));
    const QCommandLineOption runsOption(QStringLiteral("runs"), QStringLiteral("Runs of each operation."),
                                        QStringLiteral("K"), QStringLiteral("3"));
    const QCommandLineOption mergedOption(QStringLiteral("merged"),
                                          QStringLiteral("Contacts of each of the two merged logs."),
                                          QStringLiteral("M"), QStringLiteral("300000"));
    parser.addOptions({rowsOption, folderOption, runsOption, mergedOption});
    parser.process(application);
    const QStringList known = {QStringLiteral("export"), QStringLiteral("import"), QStringLiteral("merge")};
    const QStringList named = parser.positionalArguments();
    for (const QString &part : named)
        if (!known.contains(part)) {
            QTextStream(stderr) << "no such part: " << part << '\n';
            return 2;
        }
    const auto wanted = [&](qsizetype part) { return named.isEmpty() || named.contains(known[part]); };

    QTextStream out(stdout);
    printHead(out);
    const QTemporaryDir scratch(QDir::temp().filePath(QStringLiteral("zhurnal-bench-XXXXXX")));
    QString folder = QDir(parser.value(folderOption)).absolutePath();
    if (!parser.isSet(folderOption)) {
        folder = scratch.filePath(QStringLiteral("made"));
        (void)generateLog(folder, std::max(1LL, parser.value(rowsOption).toLongLong()));
    }
    const auto contacts = generatedContacts(folder);
    if (!contacts) {
        QTextStream(stderr) << "no folder of zhurnal-genlog: " << folder << '\n';
        return 2;
    }
    out << *contacts << " contacts\n";
    InterchangeWork work(folder, scratch.filePath(QStringLiteral("work")));
    const int runs = std::max(1, parser.value(runsOption).toInt());
    if (wanted(0))
        work.measureExport(out, runs);
    if (wanted(1))
        work.measureImport(out, runs);
    if (wanted(2))
        work.measureMerge(out, runs, std::max(2LL, parser.value(mergedOption).toLongLong()));
    return 0;
}

} // namespace

} // namespace bench

int main(int argc, char *argv[])
{
    try {
        return bench::run(argc, argv);
    } catch (const store::Error &error) {
        QTextStream(stderr) << error.details() << '\n';
        return 1;
    }
}
