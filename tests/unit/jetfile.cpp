// Old databases read by the program of their own: every table of every file is what its text says, and a
// damaged file or a failing reader is told, never passed over.
#include "foreign/jetfile.h"
#include "foreign/jetvalues.h"
#include "support/jetfixtures.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <random>

using foreign::DateUse;
using foreign::JetFile;
using foreign::JetOptions;
using foreign::JetValue;
using foreign::jet::ColumnType;
using foreign::jet::ValueKind;
using testsupport::dataFile;

namespace {

JetOptions options(int codePage = 0)
{
    JetOptions options;
    options.program = QStringLiteral(ZHURNAL_JETREAD);
    options.codePage = codePage;
    return options;
}

QString typeName(ColumnType type)
{
    switch (type) {
    case ColumnType::Boolean:
        return QStringLiteral("BOOL");
    case ColumnType::Byte:
        return QStringLiteral("BYTE");
    case ColumnType::Short:
        return QStringLiteral("INT");
    case ColumnType::Long:
        return QStringLiteral("LONG");
    case ColumnType::Money:
        return QStringLiteral("MONEY");
    case ColumnType::Single:
        return QStringLiteral("SINGLE");
    case ColumnType::Double:
        return QStringLiteral("DOUBLE");
    case ColumnType::Date:
        return QStringLiteral("DATE");
    case ColumnType::Binary:
        return QStringLiteral("BIN");
    case ColumnType::Text:
        return QStringLiteral("TEXT");
    case ColumnType::Ole:
        return QStringLiteral("OLE");
    case ColumnType::Memo:
        return QStringLiteral("MEMO");
    case ColumnType::Guid:
        return QStringLiteral("GUID");
    case ColumnType::Numeric:
        return QStringLiteral("NUM");
    }
    return {};
}

/// The value in the form of the expected texts; numbers are compared as numbers.
QString tsvText(const JetValue &value)
{
    if (value.kind != ValueKind::Date) {
        QByteArray scratch;
        return QString::fromUtf8(foreign::jetText(value, DateUse::Any, scratch));
    }
    const double day = std::trunc(value.number);
    const qint64 seconds = std::lround(std::fabs(value.number - day) * 86400);
    const QDateTime zero(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC);
    return zero.addDays(static_cast<qint64>(day))
        .addSecs(seconds)
        .toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

bool same(const JetValue &value, const std::optional<QString> &expected)
{
    if (value.kind == ValueKind::Null || !expected)
        return (value.kind == ValueKind::Null) == !expected;
    const QString text = tsvText(value);
    switch (value.kind) {
    case ValueKind::Single:
        return expected->toFloat() == static_cast<float>(value.number);
    case ValueKind::Double:
        return expected->toDouble() == value.number;
    case ValueKind::Money:
    case ValueKind::Decimal: {
        QString plain = *expected;
        while (plain.endsWith(QLatin1Char('0')))
            plain.chop(1);
        if (plain.endsWith(QLatin1Char('.')))
            plain.chop(1);
        return plain.replace(QLatin1Char('.'), QLatin1Char(',')) == text;
    }
    default:
        return text == *expected;
    }
}

/// Reads everything; the error's text, empty without one.
QString readAll(const QString &path, const JetOptions &with, qint64 *rows = nullptr)
{
    std::unique_ptr<JetFile> file;
    try {
        file = std::make_unique<JetFile>(path, with);
        while (file->nextTable() >= 0) {
        }
        if (rows != nullptr)
            *rows = file->readRows();
        return {};
    } catch (const foreign::Error &error) {
        return error.text();
    }
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

} // namespace

class JetFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyTableIsAsItsTextSays_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("codePage");
        int files = 0;
        for (const char *folder : {"jet3", "jet3/access97", "jet4", "jet4/access2000"}) {
            const QDir dir(dataFile(QLatin1String(folder)));
            const QStringList names = dir.entryList({QStringLiteral("*.mdb")}, QDir::Files);
            files += static_cast<int>(names.size());
            for (const QString &name : names)
                QTest::newRow(qPrintable(QLatin1String(folder) + QLatin1Char('/') + name))
                    << dir.filePath(name) << (name.contains(QLatin1String("hdr1252")) ? 1251 : 0);
        }
        QCOMPARE(files, 34);
    }
    void everyTableIsAsItsTextSays()
    {
        QFETCH(QString, path);
        QFETCH(int, codePage);
        JetFile file(path, options(codePage));
        QCOMPARE(file.jet3(), path.contains(QLatin1String("/jet3/")));
        QStringList names;
        int number = file.nextTable();
        for (; number >= 0; number = file.nextTable()) {
            const foreign::JetTable &table = file.tables()[number];
            names.append(table.name);
            const auto expected = testsupport::expectedTable(path, table.name);
            QStringList columns;
            QStringList types;
            for (const foreign::JetColumn &column : table.columns) {
                columns.append(column.name);
                types.append(typeName(column.type));
            }
            QCOMPARE(columns, expected.columns);
            QCOMPARE(types, testsupport::expectedTypes(path, table.name)
                                .replaceInStrings(QStringLiteral("AUTO"), QStringLiteral("LONG")));
            QCOMPARE(table.claimedRows, expected.rows.size());
            for (const auto &row : expected.rows) {
                QVERIFY(file.nextRow());
                QCOMPARE(qsizetype(file.row().size()), row.size());
                for (qsizetype i = 0; i < row.size(); ++i)
                    QVERIFY2(same(file.row()[std::size_t(i)], row[i]),
                             qPrintable(table.name + QLatin1Char('.') + columns[i] + QLatin1String(": ") +
                                        tsvText(file.row()[std::size_t(i)]) + QLatin1String(" for ") +
                                        row[i].value_or(QStringLiteral("NULL"))));
            }
            QVERIFY(!file.nextRow());
        }
        names.sort();
        QStringList expectedNames = testsupport::expectedTables(path);
        expectedNames.sort();
        QCOMPARE(names, expectedNames);
    }

    void tablesAlone()
    {
        JetOptions with = options();
        with.tablesOnly = true;
        JetFile file(dataFile(QStringLiteral("jet4/dbiaru.mdb")), with);
        QCOMPARE(file.tables().size(), 2);
        QCOMPARE(file.claimedRows(), 508);
        QCOMPARE(file.nextTable(), -1);
        QCOMPARE(file.readRows(), 0);
    }

    void headerTellsTheVersion()
    {
        using foreign::JetVersion;
        using foreign::jetVersion;
        QCOMPARE(jetVersion(dataFile(QStringLiteral("jet3/dblog.mdb"))), JetVersion::Jet3);
        QCOMPARE(jetVersion(dataFile(QStringLiteral("jet4/dblog.mdb"))), JetVersion::Jet4);
        QCOMPARE(jetVersion(dataFile(QStringLiteral("jet4/broken/version_accdb.mdb"))), JetVersion::Newer);
        for (const char *name : {"empty", "text", "junk", "sqlite_inside", "missing"})
            QCOMPARE(jetVersion(dataFile(QStringLiteral("jet4/broken/%1.mdb").arg(QLatin1String(name)))),
                     JetVersion::None);
        QCOMPARE(jetVersion(dataFile(QStringLiteral("jet4"))), JetVersion::None);
    }

    void wrongCodePageOfTheHeader()
    {
        const QString path = dataFile(QStringLiteral("jet3/dbiaru_hdr1252.mdb"));
        JetFile western(path, options());
        QCOMPARE(western.headerCodePage(), 1252);
        bool garbled = false;
        while (western.nextTable() >= 0)
            while (western.nextRow())
                for (const JetValue &value : western.row())
                    garbled = garbled || value.bytes.contains(QStringLiteral("Ðîñòîâ").toUtf8());
        QVERIFY(garbled);
        QCOMPARE(readAll(path, options(4711)),
                 QStringLiteral("в файле названа неизвестная кодовая страница"));
    }

    void brokenFiles_data()
    {
        QTest::addColumn<QString>("words"); // of the error; empty where every row can be read
        const char *whole = "";
        QTest::newRow("crash_libmdb_a") << QStringLiteral("список таблиц");
        QTest::newRow("crash_libmdb_b") << QStringLiteral("список таблиц");
        QTest::newRow("empty") << QStringLiteral("не база данных Access");
        QTest::newRow("header_only") << QStringLiteral("список таблиц");
        QTest::newRow("junk") << QStringLiteral("не база данных Access");
        QTest::newRow("memo_loop_dbdiplom") << QStringLiteral("прочитано 32 строк из 33");
        QTest::newRow("row_count_ffff") << QStringLiteral("прочитано 478 строк из 508");
        QTest::newRow("row_offsets_bad") << QStringLiteral("прочитано 503 строк из 508");
        QTest::newRow("sqlite_inside") << QStringLiteral("не база данных Access");
        QTest::newRow("tdef_many_columns") << QStringLiteral("не читается таблица TBLLOG1");
        QTest::newRow("tdef_next_self") << QString::fromLatin1(whole);
        QTest::newRow("text") << QStringLiteral("не база данных Access");
        QTest::newRow("trunc_half") << QStringLiteral("прочитано 0 строк из 508");
        QTest::newRow("trunc_last_page") << QString::fromLatin1(whole);
        QTest::newRow("trunc_odd") << QStringLiteral("прочитано 225 строк из 508");
        QTest::newRow("version_accdb") << QStringLiteral("Access 2007");
        QTest::newRow("zero_catalog") << QStringLiteral("список таблиц");
        QTest::newRow("zero_data_page") << QStringLiteral("прочитано 481 строк из 508");
        QTest::newRow("zero_tdef") << QStringLiteral("не читается таблица TBLLOG1");
        QCOMPARE(QDir(dataFile(QStringLiteral("jet4/broken"))).entryList({QStringLiteral("*.mdb")}).size(),
                 19);
    }
    void brokenFiles()
    {
        QFETCH(QString, words);
        const QString path =
            dataFile(QStringLiteral("jet4/broken/%1.mdb").arg(QLatin1String(QTest::currentDataTag())));
        QElapsedTimer timer;
        timer.start();
        qint64 rows = 0;
        const QString error = readAll(path, options(), &rows);
        QVERIFY(timer.elapsed() < 10000);
        if (words.isEmpty()) {
            QCOMPARE(error, QString());
            QCOMPARE(rows, 508);
        } else {
            QVERIFY2(error.contains(words), qPrintable(error));
        }
    }

    /// Random damage: always an end in time, and without an error always every row.
    void randomDamage()
    {
        QTemporaryDir folder;
        std::mt19937 random(1997);
        int whole = 0;
        int refused = 0;
        for (const char *name :
             {"jet3/dbiaru.mdb", "jet4/dbiaru.mdb", "jet4/dbdiplom.mdb", "jet3/dbhelp.mdb"}) {
            QFile original(dataFile(QLatin1String(name)));
            QVERIFY(original.open(QIODevice::ReadOnly));
            const QByteArray bytes = original.readAll();
            qint64 all = 0;
            QCOMPARE(readAll(original.fileName(), options(), &all), QString());
            for (int round = 0; round < 60; ++round) {
                QByteArray damaged = bytes;
                const auto at = [&] { return static_cast<qsizetype>(random() % quint64(damaged.size())); };
                switch (round % 4) {
                case 0:
                    for (int i = 0; i < 40; ++i)
                        damaged[at()] = static_cast<char>(random());
                    break;
                case 1:
                    damaged.truncate(4096 + at() % (damaged.size() - 4096));
                    break;
                case 2: {
                    const qsizetype page = at() / 2048 * 2048;
                    damaged.replace(page, 2048, QByteArray(2048, round % 8 == 2 ? '\0' : '\xff'));
                    break;
                }
                default: {
                    const QByteArray page = damaged.mid(at() / 2048 * 2048, 2048);
                    damaged.replace(at() / 2048 * 2048, page.size(), page);
                }
                }
                const QString path = folder.filePath(QStringLiteral("damaged.mdb"));
                writeFile(path, damaged);
                QElapsedTimer timer;
                timer.start();
                qint64 rows = 0;
                const QString error = readAll(path, options(), &rows);
                QVERIFY(timer.elapsed() < 10000);
                if (error.isEmpty())
                    ++whole;
                else
                    ++refused;
                // A count that was damaged itself cannot be told from a right one.
                QVERIFY2(!error.isEmpty() || rows <= all, qPrintable(QString::number(rows)));
            }
        }
        QVERIFY(whole > 0);
        QVERIFY(refused > 60);
    }

    void failingReaders_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("words");
        // Head of a file with one table "t" of one text column and 7 claimed rows.
        const QString head =
            QStringLiteral("printf 'ZHJET01\\n\\005\\000\\000\\000F\\004\\000\\000\\000\\000"
                           "\\024\\000\\000\\000T\\001\\000\\000\\000t\\007\\000\\000\\000\\000"
                           "\\001\\000\\012\\000\\000\\001\\000\\000\\000a'\n");
        const QString begin = QStringLiteral("printf '\\002\\000\\000\\000B\\000\\000'\n");
        const QString row = QStringLiteral("printf '\\006\\000\\000\\000R\\010\\001\\000\\000\\000x'\n");
        const QString end =
            QStringLiteral("printf '\\011\\000\\000\\000E\\001\\000\\000\\000\\000\\000\\000\\000\\000'\n");
        const QString done =
            QStringLiteral("printf '\\010\\000\\000\\000Z\\001\\000\\000\\000\\000\\000\\000\\000'\n");
        QTest::newRow("says nothing") << QString() << QStringLiteral("чтение оборвалось");
        QTest::newRow("another version") << QStringLiteral("echo ZHJET99") << QStringLiteral("не той версии");
        QTest::newRow("crashes at once") << QStringLiteral("kill -SEGV $$") << QStringLiteral("аварийно");
        QTest::newRow("crashes in the rows") << head + begin + row + row + QStringLiteral("kill -SEGV $$")
                                             << QStringLiteral("аварийно; прочитано 2 строк из 7");
        QTest::newRow("hangs in the rows")
            << head + begin + row + QStringLiteral("exec sleep 60")
            << QStringLiteral("не отвечает, файл, по-видимому, повреждён; прочитано 1 строк из 7");
        QTest::newRow("cut") << head + begin + row << QStringLiteral("оборвалось; прочитано 1 строк из 7");
        QTest::newRow("no end mark") << head + begin + row + end
                                     << QStringLiteral("оборвалось; прочитано 1 строк из 7");
        QTest::newRow("too few rows")
            << head + begin + row + end + done << QStringLiteral("повреждён; прочитано 1 строк из 7");
        QTest::newRow("claims other rows")
            << head + begin + row + row + end + done << QStringLiteral("прочитано 2 строк из 7");
        QTest::newRow("endless rows")
            << head + begin + QStringLiteral("while :; do ") + row.chopped(1) + QStringLiteral("; done")
            << QStringLiteral("строк в нём больше, чем он называет; прочитано 8 строк из 7");
        QTest::newRow("bad status") << head + begin + row + end + done + QStringLiteral("exit 3")
                                    << QStringLiteral("прочитано 1 строк из 7");
        QTest::newRow("nonsense") << head + begin + QStringLiteral("printf '\\003\\000\\000\\000Rabc'")
                                  << QStringLiteral("повреждён; прочитано 0 строк из 7");
        QTest::newRow("endless frame")
            << head + begin + QStringLiteral("printf '\\377\\377\\377\\377R'; exec sleep 60")
            << QStringLiteral("повреждён; прочитано 0 строк из 7");
    }
    void failingReaders()
    {
        QFETCH(QString, script);
        QFETCH(QString, words);
        QTemporaryDir folder;
        const QString program = folder.filePath(QStringLiteral("reader"));
        writeFile(program, (QStringLiteral("#!/bin/sh\n") + script + QLatin1Char('\n')).toUtf8());
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        JetOptions with = options();
        with.program = program;
        with.silence = 700;
        const QString error = readAll(dataFile(QStringLiteral("jet4/dblog.mdb")), with);
        QVERIFY2(error.contains(words), qPrintable(error));
    }

    void missingReader()
    {
        JetOptions with = options();
        with.program = QStringLiteral("/nowhere/zhurnal-jetread");
        QVERIFY(readAll(dataFile(QStringLiteral("jet4/dblog.mdb")), with)
                    .contains(QStringLiteral(
                        "не запускается программа чтения старых баз /nowhere/zhurnal-jetread")));
    }

    void waitingMayBeStopped()
    {
        QTemporaryDir folder;
        const QString program = folder.filePath(QStringLiteral("reader"));
        writeFile(program, "#!/bin/sh\nexec sleep 60\n");
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        JetOptions with = options();
        with.program = program;
        int waits = 0;
        with.onWait = [&] { return ++waits < 3; };
        QVERIFY_THROWS_EXCEPTION(foreign::JetStopped,
                                 JetFile(dataFile(QStringLiteral("jet4/dblog.mdb")), with));
        QCOMPARE(waits, 3);
    }

    void values_data()
    {
        QTest::addColumn<JetValue>("value");
        QTest::addColumn<int>("use");
        QTest::addColumn<QString>("text");
        const auto date = [](const char *name, double number, const char *text, DateUse use = DateUse::Any) {
            QTest::newRow(name) << JetValue{ValueKind::Date, 0, number, {}} << int(use)
                                << QString::fromLatin1(text);
        };
        date("date", 36890, "30.12.00");
        date("first short year", 10959, "01.01.30");
        date("before it", 10958, "31.12.1929");
        date("last short year", 47483, "31.12.29");
        date("after it", 47484, "01.01.2030");
        date("day zero", 0, "30.12.1899");
        date("time alone", 14.0 / 24 + 7.0 / 1440, "14:07");
        date("time alone, seconds are cut", 14.0 / 24 + 7.0 / 1440 + 59.0 / 86400, "14:07");
        date("negative day", -1.25, "29.12.1899 06:00");
        date("negative day, date alone", -1.25, "29.12.1899", DateUse::Date);
        date("last day before zero", -1, "29.12.1899");
        date("both", 37842 + 13.0 / 24 + 45.0 / 1440, "09.08.03 13:45");
        date("both with seconds", 37842 + 13.0 / 24 + 45.0 / 1440 + 59.0 / 86400, "09.08.03 13:45:59");
        date("both as date", 37842 + 13.0 / 24, "09.08.03", DateUse::Date);
        date("both as time", 37842 + 13.0 / 24, "13:00", DateUse::Time);
        date("midnight as time", 37842, "00:00", DateUse::Time);
        date("day zero as date", 0, "30.12.1899", DateUse::Date);
        date("time alone as date", 0.25, "06:00", DateUse::Date);
        date("fraction just below a second", 1.0 - 1e-9, "31.12.1899");
        date("fraction just below a minute", 37842.5 - 1e-8, "09.08.03 12:00");
        date("first year", -657434, "01.01.0100");
        date("last day", 2958465, "31.12.9999");
        date("beyond the calendar", 3000000, "3000000");
        const auto number = [](const char *name, ValueKind kind, double value, const char *text) {
            QTest::newRow(name) << JetValue{kind, 0, value, {}} << int(DateUse::Any)
                                << QString::fromLatin1(text);
        };
        number("single", ValueKind::Single, double(55.75F), "55,75");
        number("single with an endless fraction", ValueKind::Single, double(-0.1F), "-0,1");
        number("large single", ValueKind::Single, 16777216, "16777216");
        number("double", ValueKind::Double, 37.6155, "37,6155");
        number("whole double", ValueKind::Double, 100000, "100000");
        number("negative zero", ValueKind::Double, -0.0, "0");
        number("seventeen digits", ValueKind::Double, 0.1 + 0.2, "0,30000000000000004");
        number("small double", ValueKind::Double, -1e-10, "-0,0000000001");
        number("huge double", ValueKind::Double, 1.7976931348623157e308, "1,7976931348623157e+308");
        const auto integer = [](const char *name, ValueKind kind, qint64 value, const char *text) {
            QTest::newRow(name) << JetValue{kind, value, 0, {}} << int(DateUse::Any)
                                << QString::fromLatin1(text);
        };
        integer("integer", ValueKind::Integer, -32768, "-32768");
        integer("true", ValueKind::Boolean, 1, "1");
        integer("false", ValueKind::Boolean, 0, "0");
        integer("money", ValueKind::Money, 123400, "12,34");
        integer("whole money", ValueKind::Money, -100000, "-10");
        integer("least money", ValueKind::Money, std::numeric_limits<qint64>::min(), "-922337203685477,5808");
        integer("small money", ValueKind::Money, -1, "-0,0001");
        integer("no money", ValueKind::Money, 0, "0");
        const auto bytes = [](const char *name, ValueKind kind, const QByteArray &value,
                              const QString &text) {
            QTest::newRow(name) << JetValue{kind, 0, 0, value} << int(DateUse::Any) << text;
        };
        static const QByteArray kText = QStringLiteral("Ёж 'x'").toUtf8();
        static const QByteArray kDecimal = "-24691.3500";
        static const QByteArray kNothing = "0.0000";
        static const QByteArray kBytes = QByteArray::fromHex("00ff0a");
        static const QByteArray kGuid = QByteArray::fromHex("785634123412785634120123456789ab");
        bytes("text", ValueKind::Text, kText, QStringLiteral("Ёж 'x'"));
        bytes("decimal", ValueKind::Decimal, kDecimal, QStringLiteral("-24691,35"));
        bytes("decimal zero", ValueKind::Decimal, kNothing, QStringLiteral("0"));
        bytes("bytes", ValueKind::Binary, kBytes, QStringLiteral("00ff0a"));
        bytes("identifier", ValueKind::Guid, kGuid, QStringLiteral("{12345678-1234-5678-3412-0123456789AB}"));
        bytes("null", ValueKind::Null, {}, QString());
    }
    void values()
    {
        QFETCH(JetValue, value);
        QFETCH(int, use);
        QFETCH(QString, text);
        QByteArray scratch("left over");
        QCOMPARE(QString::fromUtf8(foreign::jetText(value, static_cast<DateUse>(use), scratch)), text);
    }

    void useOfDates()
    {
        QCOMPARE(foreign::dateUse(QStringLiteral("DDATE")), DateUse::Date);
        QCOMPARE(foreign::dateUse(QStringLiteral("ttime")), DateUse::Time);
        QCOMPARE(foreign::dateUse(QStringLiteral("changed")), DateUse::Any);
    }
};

QTEST_GUILESS_MAIN(JetFileTest)
#include "jetfile.moc"
