// Old databases become databases of this program: every row and column, compared with what the fixtures say;
// and at every failure the folder is what it was.
#include "store/conversion.h"
#include "base/text.h"
#include "bench/jetenlarge.h"
#include "store/library.h"
#include "support/faultyvfs.h"
#include "support/jetfixtures.h"

#include <QCryptographicHash>
#include <QDir>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using store::Conversion;
using store::ConversionOptions;
using store::OldFile;
using testsupport::dataFile;

namespace {

ConversionOptions options()
{
    ConversionOptions options;
    options.reader.program = QStringLiteral(ZHURNAL_JETREAD);
    return options;
}

void copyFile(const QString &from, const QString &to)
{
    QVERIFY(QFile::copy(from, to));
    QVERIFY(QFile::setPermissions(to, QFile::ReadOwner | QFile::WriteOwner));
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("not there");
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

/// Names and contents of everything in a folder.
QStringList snapshot(const QString &folder)
{
    QStringList list;
    const QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    for (const QString &name : names)
        list.append(name + QLatin1Char(' ') +
                    QString::fromLatin1(QCryptographicHash::hash(contents(folder + QLatin1Char('/') + name),
                                                                 QCryptographicHash::Sha256)
                                            .toHex()));
    return list;
}

/// What the new file must hold for a value of the expected texts.
QString converted(const std::optional<QString> &value, const QString &type, const QString &column)
{
    if (!value)
        return {};
    QString text = *value;
    if (type == QLatin1String("SINGLE") || type == QLatin1String("DOUBLE"))
        return text.replace(QLatin1Char('.'), QLatin1Char(','));
    if (type == QLatin1String("MONEY") || type == QLatin1String("NUM")) {
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(QLatin1Char('.')))
            text.chop(1);
        return text.replace(QLatin1Char('.'), QLatin1Char(','));
    }
    if (type != QLatin1String("DATE"))
        return text;
    const QString day = text.left(10);
    const QString time = text.mid(11);
    const bool midnight = time == QLatin1String("00:00:00");
    if (day == QLatin1String("1899-12-30") && !midnight)
        return time.left(5);
    const int year = day.left(4).toInt();
    QString date = day.mid(8, 2) + QLatin1Char('.') + day.mid(5, 2) + QLatin1Char('.');
    date += year >= 1930 && year <= 2029 ? day.mid(2, 2) : day.left(4);
    if (midnight || column.compare(QLatin1String("ddate"), Qt::CaseInsensitive) == 0)
        return date;
    return date + QLatin1Char(' ') + (time.endsWith(QLatin1String(":00")) ? time.left(5) : time);
}

/// Every row of a table of the new file, in order, is what the text beside the old one says.
void compareTable(store::Connection &file, const QString &mdb, const QString &table, qsizetype addedRows = 0)
{
    const auto expected = testsupport::expectedTable(mdb, table);
    const QStringList types = testsupport::expectedTypes(mdb, table);
    QStringList names;
    for (const QString &column : expected.columns)
        names.append(QLatin1Char('"') + column + QLatin1Char('"'));
    store::Cursor cursor = file.run(
        QStringLiteral("SELECT %1 FROM \"%2\" ORDER BY rowid").arg(names.join(QLatin1Char(',')), table));
    qsizetype row = 0;
    for (; cursor.next(); ++row) {
        if (row >= expected.rows.size())
            continue;
        for (qsizetype i = 0; i < names.size(); ++i) {
            QVERIFY(!cursor.isNull(int(i)));
            QString wanted = converted(expected.rows[row][i], types[i], expected.columns[i]);
            if (types[i] == QLatin1String("SINGLE"))
                QCOMPARE(cursor.text(int(i)).replace(QLatin1Char(','), QLatin1Char('.')).toFloat(),
                         wanted.replace(QLatin1Char(','), QLatin1Char('.')).toFloat());
            else
                QCOMPARE(cursor.text(int(i)), wanted);
        }
    }
    QCOMPARE(row, expected.rows.size() + addedRows);
}

/// A program folder with one old file.
struct Folder {
    explicit Folder(const QString &fixture, const QString &name = {})
        : file(dir.filePath(name.isEmpty() ? QFileInfo(fixture).fileName() : name)), old{file, file}
    {
        copyFile(dataFile(fixture), file);
        before = snapshot(dir.path());
    }
    [[nodiscard]] std::unique_ptr<store::Connection> open() const
    {
        return std::make_unique<store::Connection>(file, store::OpenMode::ReadOnly);
    }

    QTemporaryDir dir;
    QString file;
    OldFile old;
    QStringList before;
};

QString failure(const OldFile &file, const ConversionOptions &with,
                const store::ConversionProgress &progress = {})
{
    try {
        (void)store::convertJet(file, with, progress);
        return {};
    } catch (const store::Error &error) {
        return error.line();
    }
}

QList<OldFile> oldFiles(const QString &folder)
{
    store::Library databases({folder, false}, folder);
    return store::findOldFiles(folder,
                               [&](const QString &name) { return databases.path(QLatin1Char('\\') + name); });
}

} // namespace

class ConversionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyTableArrives_data()
    {
        QTest::addColumn<QString>("path");
        for (const char *folder : {"jet3", "jet3/access97", "jet4", "jet4/access2000"}) {
            const QDir dir(dataFile(QLatin1String(folder)));
            const QStringList names = dir.entryList({QStringLiteral("*.mdb")}, QDir::Files);
            for (const QString &name : names)
                QTest::newRow(qPrintable(QLatin1String(folder) + QLatin1Char('/') + name))
                    << dir.filePath(name);
        }
    }
    void everyTableArrives()
    {
        QFETCH(QString, path);
        const QByteArray before = contents(path);
        QTemporaryDir folder;
        const QString target = folder.filePath(QStringLiteral("new.mdb"));
        ConversionOptions with = options();
        if (path.contains(QLatin1String("access97")))
            with.reader.codePage = 1252;
        const auto conversion = store::convertJetTo(path, target, with, {});
        QVERIFY(conversion);
        QCOMPARE(conversion->original, path);
        store::Connection file(target, store::OpenMode::ReadOnly);
        const QStringList tables = testsupport::expectedTables(path);
        QCOMPARE(conversion->tables.size(), tables.size());
        for (const Conversion::Table &table : conversion->tables) {
            QVERIFY(tables.contains(table.name));
            QCOMPARE(table.rows, testsupport::expectedTable(path, table.name).rows.size());
            compareTable(file, path, table.name);
        }
        QCOMPARE(contents(path), before);
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList(QStringLiteral("new.mdb")));
    }

    /// The eleven files: layout complete, indexes and counters there, nothing seeded beside the old rows.
    void installation_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::newRow("Jet 3") << QStringLiteral("jet3/");
        QTest::newRow("Jet 4") << QStringLiteral("jet4/");
    }
    void installation()
    {
        QFETCH(QString, folder);
        QTemporaryDir dir;
        for (const store::FileLayout &layout : store::fileLayouts())
            copyFile(dataFile(folder + layout.name), dir.filePath(layout.name));
        const QList<OldFile> files = oldFiles(dir.path());
        QCOMPARE(files.size(), 11);
        for (const OldFile &file : files) {
            QList<qint64> steps;
            qint64 all = 0;
            const auto conversion = store::convertJet(file, options(), [&](qint64 done, qint64 total) {
                steps.append(done);
                all = total;
                return true;
            });
            QVERIFY(conversion);
            QCOMPARE(all, 2 * conversion->rows());
            QVERIFY(std::is_sorted(steps.begin(), steps.end()));
            QCOMPARE(steps.back(), all);
        }
        store::Library databases({dir.path(), false}, dir.path());
        QCOMPARE(databases.createMissingFiles(), QStringList());
        QVERIFY(oldFiles(dir.path()).isEmpty());
        for (const store::FileLayout &layout : store::fileLayouts()) {
            const QString original = dir.filePath(layout.name.chopped(4) + QStringLiteral(".jet.mdb"));
            QCOMPARE(contents(original), contents(dataFile(folder + layout.name)));
            store::Connection &file = databases.connection(dir.filePath(layout.name));
            QCOMPARE(file.singleNumber(QStringLiteral("PRAGMA user_version")), store::kSchemaVersion);
            QCOMPARE(file.single(QStringLiteral("PRAGMA integrity_check")).value(), QStringLiteral("ok"));
            for (const store::TableLayout &table : layout.tables) {
                compareTable(file, dataFile(folder + layout.name), table.name);
                const QStringList columns = store::columnNames(file, table.name);
                for (const store::ColumnLayout &column : table.columns)
                    QVERIFY(columns.contains(column.name, Qt::CaseInsensitive));
                for (const QString &object : table.objects)
                    if (object.startsWith(QLatin1String("CREATE INDEX")))
                        QCOMPARE(file.singleNumber(
                                     QStringLiteral(
                                         "SELECT count(*) FROM sqlite_master WHERE type='index' AND name=?"),
                                     {object.section(QLatin1Char(' '), 5, 5)}),
                                 1);
            }
        }
        store::Connection &log = databases.connection(dir.filePath(QStringLiteral("dbiaru.mdb")));
        QCOMPARE(log.singleNumber(QStringLiteral("SELECT calls FROM zh_country WHERE contr='RUSSIAN'")),
                 log.singleNumber(QStringLiteral(
                     "SELECT count(DISTINCT ccall COLLATE NOCASE) FROM TBLLOG1 WHERE contr='RUSSIAN'")));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 22);
    }

    void datesOfADateColumn()
    {
        const Folder folder(QStringLiteral("jet4/dbiaru_date.mdb"), QStringLiteral("dbiaru.mdb"));
        QVERIFY(store::convertJet(folder.old, options(), {}));
        const auto file = folder.open();
        store::Cursor cursor = file->run(
            QStringLiteral("SELECT ccall,ddate,ttime FROM TBLLOG1 WHERE ccall LIKE 'RA3DT_' ORDER BY rowid"));
        QStringList rows;
        while (cursor.next())
            rows.append(cursor.text(0).right(1) + QLatin1Char(' ') + cursor.text(1) + QLatin1Char(' ') +
                        cursor.text(2));
        QCOMPARE(rows, QStringList({QStringLiteral("1 09.08.03 10:00"), QStringLiteral("2 30.12.1899 10:00"),
                                    QStringLiteral("3 14:07 10:00"), QStringLiteral("4 29.12.1899 10:00"),
                                    QStringLiteral("5 07.11.1917 10:00"), QStringLiteral("6 31.12.69 10:00"),
                                    QStringLiteral("7 01.01.70 10:00"), QStringLiteral("8 19.01.2038 10:00"),
                                    QStringLiteral("9 06.06.2079 10:00"), QStringLiteral("A 29.02.00 10:00"),
                                    QStringLiteral("B 31.12.29 10:00"), QStringLiteral("C 01.01.30 10:00")}));
    }

    void longMemo()
    {
        const Folder folder(QStringLiteral("jet3/dbdiplom.mdb"));
        QVERIFY(store::convertJet(folder.old, options(), {}));
        QVERIFY(folder.open()->singleNumber(QStringLiteral("SELECT max(length(diptext)) FROM tbldiplom")) >
                16500);
    }

    void unknownColumnsAndTablesAreKept()
    {
        const Folder folder(QStringLiteral("jet3/dbiaru.mdb"));
        // One of the log's columns and the other table under names that this program does not know.
        QByteArray bytes = contents(folder.file);
        QVERIFY(bytes.count("mult") >= 1);
        bytes.replace("mult", "m\"]t");
        bytes.replace("tbllogTEMP", "tblmyOWN99");
        writeFile(folder.file, bytes);
        const auto conversion = store::convertJet(folder.old, options(), {});
        QVERIFY(conversion);
        const auto file = folder.open();
        QVERIFY(store::columnNames(*file, QStringLiteral("TBLLOG1")).contains(QStringLiteral("m\"]t")));
        QCOMPARE(file->singleNumber(QStringLiteral("SELECT count(*) FROM TBLLOG1 WHERE mult=''")), 508);
        QCOMPARE(file->singleNumber(QStringLiteral("SELECT count(*) FROM tbllogTEMP")), 0);
        QVERIFY(!store::columnNames(*file, QStringLiteral("tblmyOWN99")).isEmpty());
    }

    /// A file without its table: what stands in it is kept, the table is made as in a new installation.
    void missingTable()
    {
        const Folder folder(QStringLiteral("jet4/types.mdb"), QStringLiteral("dbcall.mdb"));
        QVERIFY(store::convertJet(folder.old, options(), {}));
        const auto file = folder.open();
        QCOMPARE(file->singleNumber(QStringLiteral("SELECT count(*) FROM tbltypes")), 6);
        QVERIFY(file->singleNumber(QStringLiteral("SELECT count(*) FROM tblfont")) > 30);
    }

    void rowsThatMustBeThere()
    {
        const Folder help(QStringLiteral("jet4/dblog.mdb"), QStringLiteral("dbhelp.mdb"));
        QVERIFY(store::convertJet(help.old, options(), {}));
        const auto file = help.open();
        QCOMPARE(file->singleNumber(QStringLiteral("SELECT count(*) FROM tblhelp WHERE contest='heLp'")), 1);
        QCOMPARE(file->singleNumber(QStringLiteral("SELECT count(*) FROM tbltitul")), 1);
        QCOMPARE(file->singleNumber(QStringLiteral("SELECT count(*) FROM TBLLOG1")), 70);
    }

    void wrongCodePage()
    {
        const Folder folder(QStringLiteral("jet3/dbiaru_hdr1252.mdb"), QStringLiteral("dbiaru.mdb"));
        ConversionOptions with = options();
        int asked = 0;
        int answer = 0;
        with.chooseCodePage = [&](const QString &path, const foreign::CodePageDoubt &doubt) {
            ++asked;
            if (path != folder.file || doubt.headerCodePage != 1252 || doubt.samples.size() != 3 ||
                doubt.samples[0].codePage != 1251 || doubt.samples[0].rows.size() != 6)
                return -1;
            const QString first = doubt.samples[0].rows.join(QLatin1Char('\n'));
            return base::hasCyrillic(first) ? answer : -1;
        };
        QVERIFY(failure(folder.old, with).contains(QStringLiteral("не выбрана кодовая страница")));
        QCOMPARE(asked, 1);
        QCOMPARE(snapshot(folder.dir.path()), folder.before);
        answer = 1251;
        QVERIFY(store::convertJet(folder.old, with, {}));
        QCOMPARE(asked, 2);
        compareTable(*folder.open(), dataFile(QStringLiteral("jet3/dbiaru_hdr1252.mdb")),
                     QStringLiteral("TBLLOG1"));
    }

    void rightCodePageIsNotAskedFor()
    {
        ConversionOptions with = options();
        int asked = 0;
        with.chooseCodePage = [&](const QString &, const foreign::CodePageDoubt &) { return ++asked; };
        for (const char *name : {"jet3/dbiaru.mdb", "jet3/dbcall.mdb", "jet3/dbname.mdb", "jet3/dbhelp.mdb",
                                 "jet3/dbdxcc1.mdb", "jet4/dbname.mdb", "jet3/access97/testV1997.mdb"}) {
            const Folder folder(QString::fromLatin1(name));
            QVERIFY(store::convertJet(folder.old, with, {}));
        }
        QCOMPARE(asked, 0);
    }

    void codePagesByLetters()
    {
        const auto bytes = [](const char *encoding, const QStringList &texts) {
            QStringEncoder encoder(encoding);
            QList<QByteArray> list;
            for (const QString &text : texts)
                list.append(encoder(text));
            return list;
        };
        const QStringList russian = {QStringLiteral("Ростов-на-Дону"), QStringLiteral("ИВАН"),
                                     QStringLiteral("Пётр Ильич"),
                                     QStringLiteral("Условия диплома: 100 QSO «Урал»")};
        const QStringList western = {QStringLiteral("Zürich"), QStringLiteral("São Paulo"),
                                     QStringLiteral("Malmö"), QStringLiteral("Besançon")};
        constexpr double kGood = 0.6;
        constexpr double kBad = 0.35;
        QVERIFY(foreign::codePageFit(bytes("windows-1251", russian), 1251).value() > kGood);
        QVERIFY(foreign::codePageFit(bytes("windows-1251", russian), 866).value() < kBad);
        QVERIFY(foreign::codePageFit(bytes("windows-1251", russian), 1252).value() < kBad);
        QVERIFY(foreign::codePageFit(bytes("IBM866", russian), 866).value() > kGood);
        QVERIFY(foreign::codePageFit(bytes("IBM866", russian), 1251).value() < kBad);
        QVERIFY(foreign::codePageFit(bytes("windows-1252", western), 1252).value() > kGood);
        QVERIFY(foreign::codePageFit(bytes("windows-1252", western), 1251).value() < kBad);
        QVERIFY(!foreign::codePageFit({"UA1ABC", "59"}, 1251));
        QVERIFY(!foreign::codePageFit(bytes("windows-1251", russian), 4711));
    }

    void brokenFilesLeaveTheFolderAlone_data()
    {
        QTest::addColumn<QString>("name");
        const QStringList names =
            QDir(dataFile(QStringLiteral("jet4/broken"))).entryList({QStringLiteral("*.mdb")}, QDir::Files);
        for (const QString &name : names)
            if (!name.startsWith(QLatin1String("tdef_next_self")) &&
                !name.startsWith(QLatin1String("trunc_last")))
                QTest::newRow(qPrintable(name)) << QStringLiteral("jet4/broken/") + name;
    }
    void brokenFilesLeaveTheFolderAlone()
    {
        QFETCH(QString, name);
        const Folder folder(name, QStringLiteral("dbiaru.mdb"));
        const QString line = failure(folder.old, options());
        QVERIFY2(line.startsWith(QStringLiteral("Файл dbiaru.mdb не прочитан: ")), qPrintable(line));
        QCOMPARE(snapshot(folder.dir.path()), folder.before);
    }

    void failingReader_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("words");
        QTest::newRow("missing") << QString() << QStringLiteral("не запускается");
        QTest::newRow("silent") << QStringLiteral("exit 0") << QStringLiteral("оборвалось");
        QTest::newRow("crashing") << QStringLiteral("kill -SEGV $$") << QStringLiteral("аварийно");
        QTest::newRow("hanging") << QStringLiteral("exec sleep 60") << QStringLiteral("не отвечает");
        QTest::newRow("crashing in the rows")
            << QStringLiteral(ZHURNAL_JETREAD " \"$@\" | head -c 30000; kill -SEGV $$")
            << QStringLiteral("аварийно; прочитано ");
        QTest::newRow("cut while comparing")
            << QStringLiteral("if [ -e \"$0.once\" ]; then " ZHURNAL_JETREAD
                              " \"$@\" | head -c 60000; else : > \"$0.once\"; exec " ZHURNAL_JETREAD
                              " \"$@\"; fi")
            << QStringLiteral("оборвалось; прочитано ");
        QTest::newRow("other rows while comparing")
            << QStringLiteral("if [ -e \"$0.once\" ]; then exec " ZHURNAL_JETREAD " " TEST_DATA
                              "/jet4/dbiaru_date.mdb; else : > \"$0.once\"; exec " ZHURNAL_JETREAD
                              " \"$@\"; fi")
            << QStringLiteral("при проверке строка 1 таблицы TBLLOG1");
    }
    void failingReader()
    {
        QFETCH(QString, script);
        QFETCH(QString, words);
        const Folder folder(QStringLiteral("jet4/dbiaru.mdb"));
        QTemporaryDir other;
        ConversionOptions with = options();
        with.reader.program = other.filePath(QStringLiteral("reader"));
        with.reader.silence = 700;
        if (!script.isEmpty()) {
            writeFile(with.reader.program,
                      (QStringLiteral("#!/bin/sh\n") + script + QLatin1Char('\n')).toUtf8());
            QVERIFY(QFile::setPermissions(with.reader.program,
                                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        }
        const QString line = failure(folder.old, with);
        QVERIFY2(line.contains(words), qPrintable(line));
        QVERIFY(line.contains(QStringLiteral("dbiaru.mdb")));
        QCOMPARE(snapshot(folder.dir.path()), folder.before);
    }

    void mayBeStoppedAnywhere()
    {
        const Folder folder(QStringLiteral("jet4/dbiaru.mdb"));
        int stops = 0;
        for (int at = 1;; ++at) {
            int calls = 0;
            const auto result =
                store::convertJet(folder.old, options(), [&](qint64, qint64) { return ++calls < at; });
            if (result)
                break;
            ++stops;
            QCOMPARE(snapshot(folder.dir.path()), folder.before);
        }
        QVERIFY(stops >= 4);
    }

    /// Building the indexes of a large log takes long, and may be stopped too.
    void mayBeStoppedBetweenTheRows()
    {
        Folder folder(QStringLiteral("jet4/dbiaru.mdb"));
        constexpr qint64 kRows = 20000;
        const qint64 rows =
            bench::enlargeJet(dataFile(QStringLiteral("jet4/dbiaru.mdb")), folder.file, kRows);
        QVERIFY(rows >= kRows);
        folder.before = snapshot(folder.dir.path());
        int between = 0;
        const auto stopped = store::convertJet(folder.old, options(), [&](qint64 done, qint64 total) {
            between += total > 0 && done == total / 2 ? 1 : 0;
            return between < 3;
        });
        QVERIFY(!stopped);
        QCOMPARE(between, 3);
        QCOMPARE(snapshot(folder.dir.path()), folder.before);
        const auto conversion = store::convertJet(folder.old, options(), {});
        QVERIFY(conversion);
        QCOMPARE(conversion->rows(), rows);
    }

    void changedMeanwhile()
    {
        const Folder folder(QStringLiteral("jet4/dbcall.mdb"));
        const QString line = failure(folder.old, options(), [&](qint64 done, qint64 total) {
            if (done == total && total > 0) {
                QFile file(folder.file);
                (void)file.open(QIODevice::Append);
                (void)file.write("x");
            }
            return true;
        });
        QVERIFY2(line.contains(QStringLiteral("изменила другая программа")), qPrintable(line));
        QCOMPARE(QDir(folder.dir.path()).entryList(QDir::Files), QStringList(QStringLiteral("dbcall.mdb")));
    }

    void fullDisk_data()
    {
        QTest::addColumn<int>("fault");
        QTest::newRow("full") << int(testsupport::FaultyDisk::Fault::DiskFull);
        QTest::newRow("write error") << int(testsupport::FaultyDisk::Fault::WriteError);
    }
    void fullDisk()
    {
        QFETCH(int, fault);
        const Folder folder(QStringLiteral("jet4/dbiaru.mdb"));
        const testsupport::FaultyDisk disk;
        int failures = 0;
        for (int at = 1;; ++at) {
            testsupport::FaultyDisk::failFrom(at, static_cast<testsupport::FaultyDisk::Fault>(fault));
            const QString line = failure(folder.old, options());
            testsupport::FaultyDisk::failFrom(0, static_cast<testsupport::FaultyDisk::Fault>(fault));
            if (line.isEmpty())
                break;
            ++failures;
            QVERIFY2(line.contains(QStringLiteral("dbiaru.mdb")), qPrintable(line));
            QCOMPARE(snapshot(folder.dir.path()), folder.before);
        }
        QVERIFY(failures > 20);
        compareTable(*folder.open(), dataFile(QStringLiteral("jet4/dbiaru.mdb")), QStringLiteral("TBLLOG1"));
    }

    void folderWithoutWriteRights()
    {
        const Folder folder(QStringLiteral("jet4/dbcall.mdb"));
        QVERIFY(QFile::setPermissions(folder.file, QFile::ReadOwner | QFile::ReadOther));
        QVERIFY(::chmod(qPrintable(folder.dir.path()), 0555) == 0);
        constexpr uid_t kNobody = 65534;
        const bool root = ::geteuid() == 0;
        if (root)
            QVERIFY(::seteuid(kNobody) == 0);
        const QString line = failure(folder.old, options());
        if (root)
            QVERIFY(::seteuid(0) == 0);
        QVERIFY(::chmod(qPrintable(folder.dir.path()), 0755) == 0);
        QVERIFY(!line.isEmpty());
        QCOMPARE(snapshot(folder.dir.path()), folder.before);
    }

    /// Cut off after the original has its second name, or while the new file is written.
    void conversionCutOffBeforeTheRename()
    {
        const Folder folder(QStringLiteral("jet4/dbname.mdb"));
        const QString original = folder.dir.filePath(QStringLiteral("dbname.jet.mdb"));
        QVERIFY(::link(qPrintable(folder.file), qPrintable(original)) == 0);
        writeFile(folder.file + QStringLiteral(".converting"), "half");
        writeFile(folder.file + QStringLiteral(".converting-journal"), "half");
        store::removeConversionLeftovers(folder.dir.path());
        QCOMPARE(QDir(folder.dir.path()).entryList(QDir::Files).size(), 2);
        const auto files = oldFiles(folder.dir.path());
        QCOMPARE(files.size(), 1);
        const auto conversion = store::convertJet(files.front(), options(), {});
        QVERIFY(conversion);
        QCOMPARE(conversion->original, original);
        QCOMPARE(QDir(folder.dir.path()).entryList(QDir::Files).size(), 2);
        QCOMPARE(contents(original), contents(dataFile(QStringLiteral("jet4/dbname.mdb"))));
    }

    void originalWithoutItsFile()
    {
        const Folder folder(QStringLiteral("jet4/dbname.mdb"), QStringLiteral("DBNAME.JET.MDB"));
        store::Library databases({folder.dir.path(), false}, folder.dir.path());
        const auto files = oldFiles(folder.dir.path());
        QCOMPARE(files.size(), 1);
        QCOMPARE(QFileInfo(files.front().source).fileName(), QStringLiteral("DBNAME.JET.MDB"));
        QCOMPARE(QFileInfo(files.front().target).fileName(), QStringLiteral("dbname.mdb"));
        const auto conversion = store::convertJet(files.front(), options(), {});
        QVERIFY(conversion);
        QCOMPARE(conversion->original, files.front().source);
        QVERIFY(!databases.createMissingFiles().contains(QStringLiteral("dbname.mdb")));
        compareTable(databases.connection(files.front().target), dataFile(QStringLiteral("jet4/dbname.mdb")),
                     QStringLiteral("tblgorod"));
        QCOMPARE(contents(files.front().source), contents(dataFile(QStringLiteral("jet4/dbname.mdb"))));
    }

    void takenNames()
    {
        const Folder folder(QStringLiteral("jet4/dbname.mdb"), QStringLiteral("DBNAME.MDB"));
        writeFile(folder.dir.filePath(QStringLiteral("dbname.jet.mdb")), "another one");
        writeFile(folder.dir.filePath(QStringLiteral("dbname.JET2.mdb")), "one more");
        const auto conversion = store::convertJet(folder.old, options(), {});
        QVERIFY(conversion);
        QCOMPARE(QFileInfo(conversion->original).fileName(), QStringLiteral("DBNAME.jet3.mdb"));
        QCOMPARE(contents(folder.dir.filePath(QStringLiteral("dbname.jet.mdb"))), QByteArray("another one"));
        QVERIFY(contents(folder.dir.filePath(QStringLiteral("DBNAME.MDB"))).startsWith("SQLite format 3"));
    }

    void intoAFileThatIsThere()
    {
        QTemporaryDir folder;
        writeFile(folder.filePath(QStringLiteral("new.mdb")), "mine");
        QVERIFY_THROWS_EXCEPTION(store::Error,
                                 (void)store::convertJetTo(dataFile(QStringLiteral("jet4/dblog.mdb")),
                                                           folder.filePath(QStringLiteral("new.mdb")),
                                                           options(), {}));
        QCOMPARE(contents(folder.filePath(QStringLiteral("new.mdb"))), QByteArray("mine"));
    }

    void claims()
    {
        QCOMPARE(store::claimedRows(dataFile(QStringLiteral("jet4/dbname.mdb")), options().reader), 321);
        QCOMPARE(
            store::claimedRows(dataFile(QStringLiteral("jet4/broken/zero_catalog.mdb")), options().reader),
            0);
    }
};

QTEST_GUILESS_MAIN(ConversionTest)
#include "conversion.moc"
