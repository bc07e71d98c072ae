// zhurnal-bench-bureau: the statements of the QSL bureau and of the awards on a big log.
#include "bench/awardswork.h"
#include "bench/bare.h"
#include "bench/bureauwork.h"
#include "bench/genlog.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>

namespace bench {

namespace {

void copyFolder(const QString &from, const QString &to)
{
    if (!QDir().mkpath(to))
        throw store::Error(store::ErrorKind::CannotOpen, to, QStringLiteral("the folder cannot be made"));
    const QStringList names = QDir(from).entryList({QStringLiteral("*.mdb")}, QDir::Files);
    for (const QString &name : names)
        copyFile(QDir(from).filePath(name), QDir(to).filePath(name));
}

/// How long a file of the older layout takes to be completed; nothing where it is of this one.
void measureCompletion(QTextStream &out, const QString &folder)
{
    const QString log = QDir(folder).filePath(QStringLiteral("dbiaru.mdb"));
    const qint64 before = QFileInfo(log).size();
    store::Library library({folder, false}, folder);
    Samples took;
    const QElapsedTimer timer = started();
    (void)library.connection(log);
    took.add(milliseconds(timer));
    library.close(log);
    constexpr double kMegabyte = 1e6;
    const auto megabytes = [](qint64 bytes) {
        return QString::number(static_cast<double>(bytes) / kMegabyte, 'f', 1);
    };
    printFigure(out, QStringLiteral("opening the log"), took);
    out << "  the file had " << megabytes(before) << " MB, has " << megabytes(QFileInfo(log).size())
        << " MB\n";
    out.flush();
}

/// A log nearly all of whose contacts stand under no key, and a few under a rare one.
void changeKeys(const QString &folder, qint64 contacts)
{
    store::Library library({folder, false}, folder);
    store::Connection &log = library.connection(library.path(u"\\dbiaru.mdb"));
    constexpr qint64 kRareRows = 50;
    store::Transaction transaction(log);
    log.exec(QStringLiteral("UPDATE TBLLOG1 SET PRF=CASE WHEN rowid%?=0 THEN 'RARE' ELSE '' END"),
             {std::max<qint64>(1, contacts / kRareRows)});
    transaction.commit();
}

int run(int &argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Measures the statements of the QSL bureau and of the "
                                                    "awards on copies of a log of made-up contacts."));
    parser.addHelpOption();
    const QCommandLineOption rowsOption(QStringLiteral("rows"),
                                        QStringLiteral("Contacts of a log made for this run."),
                                        QStringLiteral("N"), QStringLiteral("1000000"));
    const QCommandLineOption folderOption(
        QStringLiteral("folder"),
        QStringLiteral("A folder filled by zhurnal-genlog, instead; it is only read."),
        QStringLiteral("DIR"));
    const QCommandLineOption samplesOption(QStringLiteral("samples"),
                                           QStringLiteral("Callsigns searched for."), QStringLiteral("K"),
                                           QStringLiteral("100"));
    parser.addOptions({rowsOption, folderOption, samplesOption});
    parser.process(application);

    QTextStream out(stdout);
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
    const int samples = std::max(1, parser.value(samplesOption).toInt());
    const QString work = scratch.filePath(QStringLiteral("work"));
    copyFolder(folder, work);
    printHead(out);
    out << *contacts << " contacts\n";
    measureCompletion(out, work);
    {
        BureauWork bureau(work, samples);
        bureau.measureOpening(out);
        bureau.measureCounts(out);
        bureau.measureOthers(out);
        const std::pair<const char *, const char *> keys[] = {
            {"the key of all", "ABC"}, {"a key of none", "ZZZ"}, {"no key", ""}};
        for (const auto &[name, key] : keys) {
            bureau.measureSearch(out, QLatin1String(name), QLatin1String(key));
            bureau.measureLists(out, QLatin1String(name), QLatin1String(key));
        }
    }
    measureAwards(out, work, samples);
    changeKeys(work, *contacts);
    BureauWork bureau(work, samples);
    const std::pair<const char *, const char *> keys[] = {{"a rare key", "RARE"},
                                                          {"no key, as all contacts", ""}};
    for (const auto &[name, key] : keys) {
        bureau.measureSearch(out, QLatin1String(name), QLatin1String(key));
        bureau.measureLists(out, QLatin1String(name), QLatin1String(key));
    }
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
