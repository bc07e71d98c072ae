// A conversion killed at any moment: every name holds the whole old file or the whole new one, and the next
// start finishes the work.
#include "store/conversion.h"
#include "store/library.h"
#include "support/jetfixtures.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <random>

using testsupport::dataFile;

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("not there");
}

/// What the program does at its start. Gives the number of files converted.
int convertFolder(const QString &folder)
{
    store::removeConversionLeftovers(folder);
    store::Library databases({folder, false}, folder);
    store::ConversionOptions options;
    options.reader.program = QStringLiteral(ZHURNAL_JETREAD);
    const auto files = store::findOldFiles(
        folder, [&](const QString &name) { return databases.path(QLatin1Char('\\') + name); });
    for (const store::OldFile &file : files)
        if (!store::convertJet(file, options, {}))
            return -1;
    return static_cast<int>(files.size());
}

void fill(const QString &folder)
{
    for (const store::FileLayout &layout : store::fileLayouts()) {
        const QString file = folder + QLatin1Char('/') + layout.name;
        QVERIFY(QFile::copy(dataFile(QStringLiteral("jet4/") + layout.name), file));
        QVERIFY(QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner));
    }
}

QString original(const QString &folder, const store::FileLayout &layout)
{
    return folder + QLatin1Char('/') + layout.name.chopped(4) + QStringLiteral(".jet.mdb");
}

/// The whole new file, with the rows of each of its tables.
void checkNewFile(const QString &path, const store::FileLayout &layout)
{
    store::Connection file(path, store::OpenMode::ReadOnly);
    QCOMPARE(file.single(QStringLiteral("PRAGMA integrity_check")).value(), QStringLiteral("ok"));
    QCOMPARE(file.singleNumber(QStringLiteral("PRAGMA user_version")), store::kSchemaVersion);
    for (const store::TableLayout &table : layout.tables)
        QCOMPARE(file.singleNumber(QStringLiteral("SELECT count(*) FROM ") + table.name),
                 testsupport::expectedTable(dataFile(QStringLiteral("jet4/") + layout.name), table.name)
                     .rows.size());
}

} // namespace

class ConversionKilledTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyNameHoldsOneWholeFile()
    {
        constexpr int kRounds = 60;
        std::mt19937 random(1997);
        qint64 whole = 0; // microseconds of a conversion that nobody kills
        {
            QTemporaryDir folder;
            fill(folder.path());
            whole = run(folder.path(), -1);
        }
        int cutOff = 0;
        for (int round = 0; round < kRounds; ++round) {
            QTemporaryDir folder;
            fill(folder.path());
            (void)run(folder.path(), static_cast<qint64>(random() % quint64(whole)));
            int converted = 0;
            for (const store::FileLayout &layout : store::fileLayouts()) {
                const QString path = folder.filePath(layout.name);
                const QByteArray old = contents(dataFile(QStringLiteral("jet4/") + layout.name));
                const QString kept = original(folder.path(), layout);
                if (contents(path) == old)
                    continue;
                ++converted;
                QCOMPARE(contents(kept), old);
                checkNewFile(path, layout);
            }
            cutOff += converted < 11 ? 1 : 0;
            QCOMPARE(convertFolder(folder.path()), 11 - converted);
            for (const store::FileLayout &layout : store::fileLayouts()) {
                QCOMPARE(contents(original(folder.path(), layout)),
                         contents(dataFile(QStringLiteral("jet4/") + layout.name)));
                checkNewFile(folder.filePath(layout.name), layout);
            }
            QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 22);
        }
        QVERIFY(cutOff > kRounds / 4);
    }

private:
    /// Converts in a process of its own, which is killed after so many microseconds. Gives how long it lived.
    static qint64 run(const QString &folder, qint64 killAfter)
    {
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--convert"), folder});
        if (!process.waitForStarted())
            qFatal("the conversion does not start");
        QElapsedTimer timer;
        timer.start();
        if (killAfter >= 0) {
            while (timer.nsecsElapsed() / 1000 < killAfter)
                QThread::usleep(50);
            process.kill();
        }
        process.waitForFinished();
        return timer.nsecsElapsed() / 1000;
    }
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3 && arguments[1] == QLatin1String("--convert"))
        return convertFolder(arguments[2]) >= 0 ? 0 : 1;
    ConversionKilledTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "conversionkilled.moc"
