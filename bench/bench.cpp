// zhurnal-bench: how long the main window takes for what an operator does all day.
#include "app/program.h"
#include "bench/figures.h"
#include "bench/flushprobe.h"
#include "bench/genlog.h"
#include "bench/windowrig.h"
#include "store/error.h"
#include "store/library.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QLibraryInfo>
#include <QProcess>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTranslator>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <random>

namespace bench {

namespace {

constexpr Budget kKeyBudget{3, 16};
constexpr Budget kRecordBudget{5, 20};
constexpr Budget kStartBudget{400, {}};
constexpr int kMemoryBudgetMegabytes = 150;
constexpr int kStarts = 5;

/// The offscreen platform says at every change of a layout that it has no window manager to tell.
void quieter(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (message.contains(QLatin1String("propagateSizeHints")))
        return;
    QTextStream(stderr) << message << '\n';
    if (type == QtFatalMsg)
        std::abort();
}

/// Milliseconds of a clock that all processes of the computer share.
double sharedClock()
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// A line of the system's record of this process, such as VmRSS, in MB; 0 where the system keeps none.
double memory(const char *field)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines)
        if (line.startsWith(QByteArray(field) + ':'))
            return line.mid(line.indexOf(':') + 1).simplified().split(' ').front().toDouble() / 1024;
    return 0;
}

void printMemory(QTextStream &out, const QString &when)
{
    out << "memory " << when.leftJustified(26) << "resident " << QString::number(memory("VmRSS"), 'f', 0)
        << " MB (own " << QString::number(memory("RssAnon"), 'f', 0) << " MB), highest "
        << QString::number(memory("VmHWM"), 'f', 0) << " MB, budget " << kMemoryBudgetMegabytes << " MB\n";
}

/// The program's own look, as its main function sets it.
void dress(QTranslator &russian)
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    if (russian.load(QStringLiteral("qtbase_ru"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&russian);
}

// ---- start

/// What a started program says about itself on one line.
struct Start {
    double application; ///< until QApplication stands
    double shown;       ///< until the window has been shown
    double usable;      ///< until it is painted and waits for keys
    double resident;    ///< MB
};

/// A process of its own: the program on a folder until it waits for keys. `since`: the shared clock before
/// the process was made.
int startChild(int &argc, char **argv, const QString &folder, double since)
{
    QTextStream out(stdout);
    QApplication application(argc, argv);
    QTranslator russian;
    dress(russian);
    const double applicationAt = sharedClock() - since;
    SilentMessages messages;
    app::Program program(messages, folder, folder);
    if (!program.start())
        return 1;
    const double shownAt = sharedClock() - since;
    settle();
    const double usableAt = sharedClock() - since;
    out << applicationAt << ' ' << shownAt << ' ' << usableAt << ' ' << memory("VmRSS") << '\n';
    return messages.told() ? 1 : 0;
}

QString self()
{
    return QCoreApplication::applicationFilePath();
}

std::optional<Start> startOnce(const QString &folder)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(self(), {QStringLiteral("--start-child"), folder, QString::number(sharedClock(), 'f', 3)});
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        return {};
    const QList<QByteArray> parts = process.readAllStandardOutput().simplified().split(' ');
    if (parts.size() != 4)
        return {};
    return Start{parts[0].toDouble(), parts[1].toDouble(), parts[2].toDouble(), parts[3].toDouble()};
}

bool measureStart(QTextStream &out, const QString &folder)
{
    Samples application;
    Samples shown;
    Samples usable;
    double resident = 0;
    for (int i = 0; i < kStarts; ++i) {
        const auto start = startOnce(folder);
        if (!start)
            return false;
        application.add(start->application);
        shown.add(start->shown);
        usable.add(start->usable);
        resident = std::max(resident, start->resident);
    }
    printFigure(out, QStringLiteral("start to a usable window"), usable, kStartBudget);
    printFigure(out, QStringLiteral("  of it until the toolkit is up"), application);
    printFigure(out, QStringLiteral("  of it until the window is shown"), shown);
    out << "memory of a started program      resident " << QString::number(resident, 'f', 0) << " MB, budget "
        << kMemoryBudgetMegabytes << " MB\n";
    return true;
}

// ---- keys

struct Calls {
    QStringList russian;
    QStringList foreign;
};

/// Takes out what a run has recorded, or one that was cut off has left.
void dropRecorded(store::Connection &log, const QString &folder)
{
    log.exec(QStringLiteral("DELETE FROM TBLLOG1 WHERE rowid>?"), {generatedContacts(folder).value()});
}

/// Callsigns from all over the log. Read on a connection of its own, so that the window's is cold at its
/// first key.
Calls pickCalls(const QString &folder, int wanted)
{
    store::Library library({folder, false}, folder);
    store::Connection &log = library.connection(library.path(u"\\dbiaru.mdb"));
    log.exec(QStringLiteral("PRAGMA cache_size=-256"));
    dropRecorded(log, folder);
    const qint64 last = log.singleNumber(QStringLiteral("SELECT max(rowid) FROM TBLLOG1"));
    std::mt19937_64 engine(1); // NOLINT: the same calls at each run
    Calls calls;
    const int tries = 100 * wanted;
    for (int i = 0; i < tries && std::min(calls.russian.size(), calls.foreign.size()) < wanted; ++i) {
        const qint64 row =
            1 + static_cast<qint64>(engine() % static_cast<quint64>(std::max<qint64>(1, last)));
        store::Cursor cursor =
            log.run(QStringLiteral("SELECT ccall,CONTR FROM TBLLOG1 WHERE rowid=?"), {row});
        if (!cursor.next())
            continue;
        QStringList &list = cursor.text(1) == QLatin1String("RUSSIAN") ? calls.russian : calls.foreign;
        if (list.size() < wanted)
            list.append(cursor.text(0));
    }
    return calls;
}

struct KeySamples {
    Samples press;
    Samples release;
    Samples work;         ///< processor time of the releases
    qint64 unpainted = 0; ///< keys after which nothing was painted
};

void typeCall(WindowRig &rig, const QString &call, KeySamples &samples)
{
    rig.beginCall();
    for (const QChar c : call) {
        const qint64 before = rig.paints();
        const KeyTimes times = rig.type(c.toLower());
        samples.press.add(times.press);
        samples.release.add(times.release);
        samples.work.add(times.releaseWork);
        if (rig.paints() == before)
            ++samples.unpainted;
    }
    if (rig.control<ui::FilterEdit>("txtcall").text() != call)
        qFatal("the field does not show what was typed");
}

KeySamples typeCalls(WindowRig &rig, const QStringList &calls)
{
    KeySamples samples;
    for (const QString &call : calls)
        typeCall(rig, call, samples);
    return samples;
}

void measureKeys(QTextStream &out, WindowRig &rig, const Calls &calls)
{
    const KeySamples russian = typeCalls(rig, calls.russian);
    const KeySamples foreign = typeCalls(rig, calls.foreign);
    rig.showWorkedList(true);
    KeySamples listed = typeCalls(rig, calls.russian);
    const KeySamples listedForeign = typeCalls(rig, calls.foreign);
    rig.showWorkedList(false);
    listed.press.add(listedForeign.press);
    listed.release.add(listedForeign.release);
    listed.work.add(listedForeign.work);
    listed.unpainted += listedForeign.unpainted;
    Samples all;
    Samples presses;
    Samples work;
    for (const KeySamples *group : {&russian, &foreign, static_cast<const KeySamples *>(&listed)}) {
        all.add(group->release);
        presses.add(group->press);
        work.add(group->work);
    }
    printFigure(out, QStringLiteral("key release, everything shown"), all, kKeyBudget);
    printFigure(out, QStringLiteral("  processor time of it"), work, kKeyBudget);
    printFigure(out, QStringLiteral("  Russian callsigns"), russian.release, kKeyBudget);
    printFigure(out, QStringLiteral("  other callsigns"), foreign.release, kKeyBudget);
    printFigure(out, QStringLiteral("  with the list of worked callsigns"), listed.release, kKeyBudget);
    printFigure(out, QStringLiteral("key press, character shown"), presses);
    const qint64 unpainted = russian.unpainted + foreign.unpainted + listed.unpainted;
    if (unpainted > 0)
        out << unpainted << " keys were followed by no painting: these figures are too small\n";
}

void measureStatements(QTextStream &out, WindowRig &rig)
{
    for (const QString &call : {QStringLiteral("UA3ABC"), QStringLiteral("DL1ABC")}) {
        rig.beginCall();
        out << "statements per key, " << call << ':';
        qint64 sum = 0;
        for (const QChar c : call) {
            const qint64 before = rig.statements();
            (void)rig.type(c.toLower());
            const qint64 count = rig.statements() - before;
            sum += count;
            out << ' ' << count;
        }
        out << ", together " << sum << '\n';
    }
}

// ---- recording

void measureRecording(QTextStream &out, WindowRig &rig, const QString &folder, const QStringList &calls)
{
    store::Connection &log = rig.log();
    const qint64 before = log.singleNumber(QStringLiteral("SELECT count(*) FROM TBLLOG1"));
    FlushProbe probe(folder);
    Samples whole;
    Samples flush;
    Samples beside;
    Samples work;
    Samples pages;
    KeySamples typing;
    for (const QString &call : calls) {
        typeCall(rig, call, typing);
        (void)pagesWritten(log);
        const KeyTimes f4 = rig.pressF4();
        const int written = pagesWritten(log);
        const double disk = probe.commit(written);
        whole.add(f4.release);
        work.add(f4.releaseWork);
        flush.add(disk);
        beside.add(f4.release - disk);
        pages.add(written);
    }
    const qint64 added = log.singleNumber(QStringLiteral("SELECT count(*) FROM TBLLOG1")) - before;
    printFigure(out, QStringLiteral("F4 to the day's grid shown, beside the flush"), beside, kRecordBudget);
    printFigure(out, QStringLiteral("  processor time of it"), work, kRecordBudget);
    printFigure(out, QStringLiteral("  F4 with the flush"), whole);
    printFigure(out, QStringLiteral("  the disk's flush of as many pages"), flush);
    out << "F4 wrote " << pages.median() << " pages (median); " << added << " contacts recorded by "
        << calls.size() << " F4\n";
    printMemory(out, QStringLiteral("after these F4:"));
    dropRecorded(log, folder);
    if (added != calls.size())
        qFatal("some contacts were not recorded");
}

/// A process of its own, so that its memory is the window's alone.
int windowChild(int &argc, char **argv, const QString &folder, int wanted)
{
    QTextStream out(stdout);
    QApplication application(argc, argv);
    QTranslator russian;
    dress(russian);
    const Calls calls = pickCalls(folder, wanted);
    WindowRig rig(folder);
    out << "window " << rig.window().width() << 'x' << rig.window().height() << '\n';
    printMemory(out, QStringLiteral("after the start:"));
    measureKeys(out, rig, calls);
    printMemory(out, QStringLiteral("after these keys:"));
    measureStatements(out, rig);
    QStringList recorded;
    for (qsizetype i = 0; i < std::min(calls.russian.size(), calls.foreign.size()); ++i)
        recorded << calls.russian[i] << calls.foreign[i];
    measureRecording(out, rig, folder, recorded);
    return rig.failed() ? 1 : 0;
}

bool measureWindow(const QString &folder, int samples)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(self(), {QStringLiteral("--window-child"), folder, QString::number(samples)});
    return process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

// ---- the whole run

int run(int &argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Measures the main window on a log of made-up contacts."));
    parser.addHelpOption();
    const QCommandLineOption rowsOption(QStringLiteral("rows"),
                                        QStringLiteral("Contacts of a log made for this run."),
                                        QStringLiteral("N"), QStringLiteral("1000000"));
    const QCommandLineOption folderOption(QStringLiteral("folder"),
                                          QStringLiteral("A folder filled by zhurnal-genlog, instead."),
                                          QStringLiteral("DIR"));
    const QCommandLineOption samplesOption(QStringLiteral("samples"),
                                           QStringLiteral("Callsigns typed per kind."), QStringLiteral("K"),
                                           QStringLiteral("100"));
    parser.addOptions({rowsOption, folderOption, samplesOption});
    parser.process(application);

    QTextStream out(stdout);
    const QTemporaryDir scratch(QDir::temp().filePath(QStringLiteral("zhurnal-bench-XXXXXX")));
    QString folder = QDir(parser.value(folderOption)).absolutePath();
    if (!parser.isSet(folderOption)) {
        folder = scratch.path();
        const GeneratedLog made = generateLog(folder, std::max(1LL, parser.value(rowsOption).toLongLong()));
        out << made.contacts << " contacts, " << made.calls << " callsigns, " << made.countries
            << " countries\n";
    } else if (!generatedContacts(folder)) {
        QTextStream(stderr) << "no folder of zhurnal-genlog, nothing is measured there: " << folder << '\n';
        return 2;
    }
    printHead(out);
    const bool started = measureStart(out, folder);
    out.flush(); // the window's process writes to the same place
    const bool measured = started && measureWindow(folder, std::max(1, parser.value(samplesOption).toInt()));
    return measured ? 0 : 1;
}

} // namespace

} // namespace bench

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(bench::quieter);
    const QString part = QString::fromLocal8Bit(argc > 1 ? argv[1] : "");
    try {
        if (part == QLatin1String("--start-child") && argc == 4)
            return bench::startChild(argc, argv, QString::fromLocal8Bit(argv[2]),
                                     QByteArray(argv[3]).toDouble());
        if (part == QLatin1String("--window-child") && argc == 4)
            return bench::windowChild(argc, argv, QString::fromLocal8Bit(argv[2]),
                                      QByteArray(argv[3]).toInt());
        return bench::run(argc, argv);
    } catch (const store::Error &error) {
        QTextStream(stderr) << error.details() << '\n';
        return 1;
    }
}
