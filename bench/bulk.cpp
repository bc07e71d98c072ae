// zhurnal-bench-bulk: what works through the whole log, and how evenly the keyer sends.
#include "bench/bulkwork.h"
#include "bench/conversionwork.h"
#include "bench/figures.h"
#include "bench/genlog.h"
#include "bench/keyertiming.h"
#include "store/error.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>

namespace bench {

namespace {

int run(int &argc, char **argv)
{
    const QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Measures the keyer, the country revision, the loading of the parallel log, the copy "
                       "of a period for the printer and the conversion of an old log; all but the first and "
                       "the last on copies of a log of made-up contacts."));
    parser.addHelpOption();
    parser.addPositionalArgument(
        QStringLiteral("parts"),
        QStringLiteral("keyer, revision, load, conversion, period; all of them where none is named."),
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
    const QCommandLineOption parallelOption(QStringLiteral("parallel"),
                                            QStringLiteral("Contacts of the parallel log."),
                                            QStringLiteral("M"), QStringLiteral("100000"));
    const QCommandLineOption keyerOption(QStringLiteral("keyer"), QStringLiteral("Length of the keyed text."),
                                         QStringLiteral("SECONDS"), QStringLiteral("60"));
    parser.addOptions({rowsOption, folderOption, runsOption, parallelOption, keyerOption});
    parser.process(application);
    const QStringList known = {QStringLiteral("keyer"), QStringLiteral("revision"), QStringLiteral("load"),
                               QStringLiteral("conversion"), QStringLiteral("period")};
    const QStringList named = parser.positionalArguments();
    for (const QString &part : named)
        if (!known.contains(part)) {
            QTextStream(stderr) << "no such part: " << part << '\n';
            return 2;
        }
    const auto wanted = [&](qsizetype part) { return named.isEmpty() || named.contains(known[part]); };

    QTextStream out(stdout);
    printHead(out);
    if (wanted(0)) {
        measureKeyer(out, std::max(1, parser.value(keyerOption).toInt()));
        out.flush();
    }
    const QTemporaryDir scratch(QDir::temp().filePath(QStringLiteral("zhurnal-bench-XXXXXX")));
    const int runs = std::max(1, parser.value(runsOption).toInt());
    const qint64 rows = std::max(1LL, parser.value(rowsOption).toLongLong());
    if (wanted(3) && !measureConversion(out, runs, QStringLiteral(OLD_LOG), scratch.path(), rows)) {
        QTextStream(stderr) << "no old log to measure with: " << OLD_LOG << '\n';
        return 2;
    }
    if (!wanted(1) && !wanted(2) && !wanted(4))
        return 0;
    QString folder = QDir(parser.value(folderOption)).absolutePath();
    if (!parser.isSet(folderOption)) {
        folder = scratch.filePath(QStringLiteral("made"));
        (void)generateLog(folder, rows);
    }
    const auto contacts = generatedContacts(folder);
    if (!contacts) {
        QTextStream(stderr) << "no folder of zhurnal-genlog: " << folder << '\n';
        return 2;
    }
    out << *contacts << " contacts\n";
    BulkWork work(folder, scratch.filePath(QStringLiteral("work")));
    if (wanted(1))
        work.measureRevision(out, runs);
    if (wanted(2))
        work.measureParallelLoad(out, runs, std::max(1LL, parser.value(parallelOption).toLongLong()));
    if (wanted(4))
        work.measurePeriod(out, runs);
    return 0;
}

} // namespace

} // namespace bench

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    try {
        return bench::run(argc, argv);
    } catch (const store::Error &error) {
        QTextStream(stderr) << error.details() << '\n';
        return 1;
    }
}
