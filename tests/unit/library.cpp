#include "store/library.h"

#include "store/instancelock.h"
#include "store/schema.h"
#include "support/installation.h"

#include <QDir>
#include <QTest>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using store::ErrorKind;
using store::Library;
using testsupport::Installation;

namespace {

constexpr auto kLog = "dbiaru.mdb";

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::optional<ErrorKind> opening(Library &library, const QString &path)
{
    try {
        (void)library.connection(path);
    } catch (const store::Error &error) {
        return error.kind();
    }
    return std::nullopt;
}

/// Runs a check in a child process without any rights; its exit code is the result. 0 is success.
int asNobody(const std::function<int()> &check)
{
    const pid_t child = ::fork();
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        if (::getuid() == 0 && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0))
            ::_exit(99);
        int result = 98;
        try {
            result = check();
        } catch (...) {
            result = 97;
        }
        ::_exit(result);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

class LibraryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void elevenFilesWithTheirTables()
    {
        Installation in;
        QCOMPARE(QDir(in.folder()).entryList(QDir::Files).size(), 11);
        QCOMPARE(
            in.rows(kLog, QStringLiteral("SELECT name FROM pragma_table_info('TBLLOG1')"))
                .join(QLatin1Char(' ')),
            QStringLiteral(
                "ccall ddate ttime bband rsts rstr mult point ps ps1 PS2 QTH NNAME QSLVIA QSLP QSLO CONTR "
                "CONT PRF"));
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT count(*) FROM pragma_table_info('tbllogTEMP')")),
                 QStringList({"19"}));
        QCOMPARE(in.rows(QStringLiteral("dblog.mdb"),
                         QStringLiteral("SELECT count(*) FROM pragma_table_info('TBLLOG1')")),
                 QStringList({"19"}));
        QCOMPARE(in.rows(QStringLiteral("dbprint.mdb"),
                         QStringLiteral("SELECT count(*) FROM pragma_table_info('tblprint')")),
                 QStringList({"19"}));
        QCOMPARE(in.rows(QStringLiteral("dbrusdx.mdb"),
                         QStringLiteral("SELECT name FROM pragma_table_info('tblrus')"))
                     .join(QLatin1Char(' ')),
                 QStringLiteral("pref gorod kodcrk kodsrr prf itu cq gradN gradE dolg Shir"));
        QCOMPARE(
            in.rows(QStringLiteral("dbhelp.mdb"),
                    QStringLiteral("SELECT name FROM pragma_table_info('tbltitul')"))
                .join(QLatin1Char(' ')),
            QStringLiteral(
                "award DDATE wybor ccall nname ADRESSTR1 adresgor adresstran mod bband contest adresstrit "
                "txtps1 txtps2 txtps3"));
        QCOMPARE(in.rows(QStringLiteral("dbcontest.mdb"),
                         QStringLiteral("SELECT name FROM pragma_table_info('tblQRZ')")),
                 QStringList({"ccall", "AALL"}));
    }

    void referenceDataIsThere()
    {
        Installation in;
        const auto count = [&](const char *file, const char *table) {
            return in
                .rows(QLatin1String(file),
                      QStringLiteral("SELECT count(*) FROM %1").arg(QLatin1String(table)))
                .front()
                .toInt();
        };
        QCOMPARE(count("dbdxcc1.mdb", "tbldxcc"), 7934);
        QCOMPARE(count("dbrusdx.mdb", "tblrus"), 248);
        QCOMPARE(count("dbname.mdb", "tblgorod"), 2647);
        QCOMPARE(count("dbname.mdb", "tblNAME"), 616);
        QCOMPARE(count("dbcall.mdb", "tblfont"), 66);
        QVERIFY(count("dbdiplom.mdb", "tbldiplom") >= 20);
        QCOMPARE(count("dbcontest.mdb", "tbltit"), 1);
        QCOMPARE(count("dbhelp.mdb", "tbltitul"), 1);
        QCOMPARE(count("dbiaru.mdb", "TBLLOG1"), 0);
        QVERIFY(in.rows(QStringLiteral("dbhelp.mdb"),
                        QStringLiteral("SELECT TXTHELP FROM tblhelp WHERE contest='heLp'"))
                    .front()
                    .contains(QStringLiteral("F4")));
        QCOMPARE(in.rows(QStringLiteral("dbdxcc1.mdb"),
                         QStringLiteral("SELECT strana,PREF,GradN,GradE,Shir,Dolg FROM tbldxcc "
                                        "WHERE prf='1A'")),
                 QStringList({"ORDER OF MALTA|1A|41,90|12,43|41,90|12,43"}));
        QVERIFY(in.rows(QStringLiteral("dbdiplom.mdb"),
                        QStringLiteral("SELECT diptext FROM tbldiplom WHERE diptext LIKE '%'||char(10)||'%'"))
                    .size() > 5);
    }

    /// Any SQLite tool can read and write the files: nothing in them names a function or collation of ours.
    void plainFiles()
    {
        Installation in;
        for (const store::FileLayout &layout : store::fileLayouts()) {
            const QString schema =
                in.rows(layout.name, QStringLiteral("SELECT group_concat(sql) FROM sqlite_master"))
                    .join(QString());
            for (const char *ours : {"jet_", "ru_fold", "RUSSIAN,", "COLLATE RUSSIAN"})
                QVERIFY(!schema.contains(QLatin1String(ours)));
            QCOMPARE(in.rows(layout.name, QStringLiteral("PRAGMA journal_mode")), QStringList({"delete"}));
        }
        store::Connection &log = in.databases.connection(in.file(kLog));
        QCOMPARE(log.singleNumber(QStringLiteral("PRAGMA synchronous")), 3); // EXTRA
        QVERIFY(!log.single(QStringLiteral("PRAGMA journal_mode")).value().contains(QStringLiteral("wal")));
    }

    void existingFilesAreLeftAlone()
    {
        Installation in;
        in.addContact(QStringLiteral("UA3ABC"), QStringLiteral("05.03.26"), QStringLiteral("RUSSIAN"));
        QFile::remove(in.file(QStringLiteral("dbname.mdb")));
        Library again({in.folder(), false}, in.userFolder());
        QCOMPARE(again.createMissingFiles(), QStringList({"dbname.mdb"}));
        QCOMPARE(in.rows(kLog, QStringLiteral("SELECT ccall FROM TBLLOG1")), QStringList({"UA3ABC"}));
        QVERIFY(!QFile::exists(in.file(QStringLiteral("dbname.mdb.new"))));
    }

    void originalThatWaitsForConversion()
    {
        QTemporaryDir folder;
        write(folder.filePath(QStringLiteral("dbiaru.jet.mdb")),
              QByteArray("\0\1\0\0Standard Jet DB\0\1", 21));
        Library library({folder.path(), false}, folder.path());
        const QStringList made = library.createMissingFiles();
        QCOMPARE(made.size(), 10);
        QVERIFY(!QFile::exists(folder.filePath(QLatin1String(kLog))));
    }

    void foreignFilesAreRefusedAndUntouched_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("kind");
        QTest::newRow("empty") << QByteArray() << int(ErrorKind::Foreign);
        QTest::newRow("text") << QByteArray("это не база\n").repeated(100) << int(ErrorKind::Foreign);
        QTest::newRow("Jet 3") << QByteArray("\0\1\0\0Standard Jet DB\0\0", 21).leftJustified(4096, '\0')
                               << int(ErrorKind::Jet);
        QTest::newRow("Jet 4") << QByteArray("\0\1\0\0Standard Jet DB\0\1", 21).leftJustified(4096, '\0')
                               << int(ErrorKind::Jet);
        QTest::newRow("damaged header")
            << QByteArray("SQLite format 3\0", 16).leftJustified(4096, '\x7f') << int(ErrorKind::Foreign);
    }
    void foreignFilesAreRefusedAndUntouched()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, kind);
        for (const store::FileLayout &layout : store::fileLayouts()) {
            Installation in;
            in.databases.close(in.file(layout.name));
            QVERIFY(QFile::remove(in.file(layout.name)));
            write(in.file(layout.name), bytes);
            Library library({in.folder(), false}, in.userFolder());
            QCOMPARE(library.createMissingFiles(), QStringList());
            QCOMPARE(int(opening(library, in.file(layout.name)).value_or(ErrorKind::Other)), kind);
            logentry::Sources sources(library);
            const auto errors = sources.open(); // the other files work
            const bool used = layout.name != QLatin1String("dbhelp.mdb") &&
                              layout.name != QLatin1String("dbdiplom.mdb") &&
                              layout.name != QLatin1String("dbprint.mdb");
            QCOMPARE(errors.size(), used ? 1 : 0);
            QCOMPARE(read(in.file(layout.name)), bytes);
        }
    }

    void databaseWithoutItsTable()
    {
        Installation in;
        in.databases.close(in.file(kLog));
        QFile::remove(in.file(kLog));
        {
            auto other = store::Connection::create(in.file(kLog));
            other->exec(QStringLiteral("CREATE TABLE something(a)"));
        }
        const QByteArray before = read(in.file(kLog));
        QCOMPARE(int(opening(in.databases, in.file(kLog)).value()), int(ErrorKind::MissingTable));
        QCOMPARE(read(in.file(kLog)), before);
    }

    void newerFileIsRefused()
    {
        Installation in;
        in.sql(kLog, QStringLiteral("PRAGMA user_version=999"));
        Library library({in.folder(), false}, in.userFolder());
        QCOMPARE(int(opening(library, in.file(kLog)).value()), int(ErrorKind::Newer));
    }

    void damagedPages()
    {
        Installation in;
        for (int i = 0; i < 300; ++i)
            in.addContact(QStringLiteral("UA%1").arg(i), QStringLiteral("05.03.26"),
                          QStringLiteral("RUSSIAN"));
        QByteArray bytes = read(in.file(kLog));
        for (qsizetype i = 4096; i < bytes.size(); ++i)
            bytes[i] = static_cast<char>(0x5A);
        in.databases.close(in.file(kLog));
        write(in.file(kLog), bytes);
        Library library({in.folder(), false}, in.userFolder());
        logentry::Sources sources(library);
        const auto errors = sources.open();
        QCOMPARE(errors.size(), 1);
        QCOMPARE(int(errors.front().kind()), int(ErrorKind::Damaged));
        QVERIFY(errors.front().text().contains(QStringLiteral("dbiaru.mdb")));
        QCOMPARE(read(in.file(kLog)), bytes);
    }

    void olderFileIsCompletedAfterACopy()
    {
        Installation in;
        in.databases.close(in.file(kLog));
        QFile::remove(in.file(kLog));
        {
            auto other = store::Connection::create(in.file(kLog));
            other->execScript(
                QStringLiteral("CREATE TABLE tbllog1(ccall TEXT,ddate TEXT,CONTR TEXT,QSLP TEXT,mine TEXT);"
                               "INSERT INTO tbllog1 VALUES('UA3ABC','05.03.26','RUSSIAN','+','моё')"));
        }
        Library library({in.folder(), false}, in.userFolder());
        store::Connection &log = library.connection(in.file(kLog));
        QCOMPARE(log.single(QStringLiteral("SELECT ccall||QTH||PRF||mine FROM TBLLOG1")).value(),
                 QStringLiteral("UA3ABCмоё"));
        QCOMPARE(log.single(QStringLiteral("SELECT calls||'/'||cards FROM zh_country WHERE contr='RUSSIAN'"))
                     .value(),
                 QStringLiteral("1/1"));
        QCOMPARE(QDir(in.userFolder()).entryList({QStringLiteral("dbiaru.*.mdb")}).size(), 1);
        QCOMPARE(log.singleNumber(QStringLiteral("SELECT count(*) FROM tbllogTEMP")), 0);
    }

    void letterCaseOfFileNames()
    {
        Installation in;
        in.databases.close(in.file(kLog));
        QVERIFY(QFile::rename(in.file(kLog), in.file(QStringLiteral("DBIARU.MDB"))));
        Library library({in.folder(), false}, in.userFolder());
        QCOMPARE(library.path(u"\\dbiaru.mdb"), in.file(QStringLiteral("DBIARU.MDB")));
        QCOMPARE(library.createMissingFiles(), QStringList());
        QCOMPARE(library.path(u"\\dbiaru"), in.file(QStringLiteral("DBIARU.MDB")));
        QCOMPARE(library.path(u"\\dbQRZ"), in.file(QStringLiteral("dbQRZ.mdb")));

        QVERIFY(QFile::copy(in.file(QStringLiteral("DBIARU.MDB")), in.file(QStringLiteral("Dbiaru.mdb"))));
        QStringList asked;
        Library choosing({in.folder(), false}, in.userFolder(), [&asked](const QStringList &paths) {
            asked = paths;
            return paths.back();
        });
        QCOMPARE(choosing.path(u"\\dbiaru.mdb"), in.file(QStringLiteral("Dbiaru.mdb")));
        QCOMPARE(asked.size(), 2);
        asked.clear();
        Library refusing({in.folder(), false}, in.userFolder(),
                         [](const QStringList &) { return QString(); });
        QVERIFY_THROWS_EXCEPTION(store::Error, (void)refusing.path(u"\\dbiaru.mdb"));
        QCOMPARE(choosing.path(u"\\DBIARU.mdb"), in.file(QStringLiteral("Dbiaru.mdb"))); // asked once
        QVERIFY(asked.isEmpty());
    }

    void verifiedCopies()
    {
        Installation in;
        in.addContact(QStringLiteral("UA3ABC"), QStringLiteral("05.03.26"), QStringLiteral("RUSSIAN"));
        (void)in.databases.connection(in.file(kLog));
        QStringList made;
        for (int i = 0; i < 12; ++i)
            made.append(in.databases.makeVerifiedCopy(in.file(kLog)));
        const QStringList kept = QDir(in.userFolder()).entryList(QDir::Files, QDir::Name);
        QCOMPARE(kept.size(), 10);
        QCOMPARE(in.userFolder() + QLatin1Char('/') + kept.back(), made.back());
        QVERIFY(QRegularExpression(QStringLiteral("^dbiaru\\.\\d{8}-\\d{6}\\.mdb$"))
                    .match(kept.front())
                    .hasMatch());
        store::Connection copy(made.back(), store::OpenMode::ReadOnly);
        QCOMPARE(copy.single(QStringLiteral("SELECT ccall FROM TBLLOG1")).value(), QStringLiteral("UA3ABC"));
    }

    /// An old log named in capitals shares the copies' ring with the program's own.
    void verifiedCopiesOfANameInCapitals()
    {
        Installation in;
        in.addContact(QStringLiteral("UA3ABC"), QStringLiteral("05.03.26"), QStringLiteral("RUSSIAN"));
        QTemporaryDir elsewhere;
        const QString capitals = elsewhere.filePath(QStringLiteral("DBIARU.MDB"));
        QVERIFY(QFile::copy(in.file(kLog), capitals));
        QString last;
        for (int i = 0; i < 12; ++i)
            last = in.databases.makeVerifiedCopy(i % 3 == 0 ? in.file(kLog) : capitals);
        QVERIFY(QFile::exists(last));
        last = in.databases.makeVerifiedCopy(capitals);
        QVERIFY(QFile::exists(last));
        QCOMPARE(QDir(in.userFolder()).entryList(QDir::Files).size(), 10);
        QCOMPARE(QFileInfo(last).fileName(),
                 QDir(in.userFolder()).entryList(QDir::Files, QDir::Name | QDir::IgnoreCase).back());
    }

    void rightsOfTheProgramFolder()
    {
        QTemporaryDir root;
        QVERIFY(::chmod(qPrintable(root.path()), 0755) == 0);
        QDir(root.path()).mkpath(QStringLiteral("empty"));
        QDir(root.path()).mkpath(QStringLiteral("used"));
        QDir(root.path()).mkpath(QStringLiteral("user"));
        write(root.filePath(QStringLiteral("used/DBNAME.MDB")), "x");
        for (const char *folder : {"empty", "used"})
            ::chmod(qPrintable(root.filePath(QLatin1String(folder))), 0555);
        ::chmod(qPrintable(root.filePath(QStringLiteral("user"))), 0777);
        const QString user = root.filePath(QStringLiteral("user"));
        QCOMPARE(asNobody([&] {
                     const auto folder =
                         store::chooseDataFolder(root.filePath(QStringLiteral("empty")), user);
                     return folder.path == user && !folder.readOnly ? 0 : 1;
                 }),
                 0);
        QCOMPARE(asNobody([&] {
                     const auto folder = store::chooseDataFolder(root.filePath(QStringLiteral("used")), user);
                     return folder.path == root.filePath(QStringLiteral("used")) && folder.readOnly ? 0 : 1;
                 }),
                 0);
        QCOMPARE(asNobody([&] {
                     try {
                         (void)store::chooseDataFolder(root.filePath(QStringLiteral("empty")),
                                                       root.filePath(QStringLiteral("used/x")));
                     } catch (const store::Error &error) {
                         return error.kind() == ErrorKind::CannotOpen ? 0 : 1;
                     }
                     return 2;
                 }),
                 0);
        const auto own = store::chooseDataFolder(user, root.path());
        QCOMPARE(own.path, user);
        QVERIFY(!own.readOnly);
    }

    void readOnlyFilesAreReadAndNotWritten()
    {
        Installation in;
        in.addContact(QStringLiteral("UA3ABC"), QStringLiteral("05.03.26"), QStringLiteral("RUSSIAN"));
        for (const store::FileLayout &layout : store::fileLayouts())
            ::chmod(qPrintable(in.file(layout.name)), 0444);
        ::chmod(qPrintable(in.folder()), 0555);
        QCOMPARE(asNobody([&] {
                     Library library({in.folder(), true}, in.userFolder());
                     logentry::Sources sources(library);
                     if (!sources.open().isEmpty() ||
                         sources.Data1.field(QStringLiteral("ccall")) != QLatin1String("UA3ABC"))
                         return 1;
                     sources.Data1.addNew();
                     sources.Data1.setField(QStringLiteral("ccall"), QStringLiteral("X"));
                     try {
                         sources.Data1.update();
                     } catch (const store::Error &error) {
                         return error.kind() == ErrorKind::ReadOnly ? 0 : 2;
                     }
                     return 3;
                 }),
                 0);
        ::chmod(qPrintable(in.folder()), 0700);
    }

    void unreadableFile()
    {
        Installation in;
        ::chmod(qPrintable(in.folder()), 0755);
        ::chmod(qPrintable(in.file(kLog)), 0);
        QCOMPARE(asNobody([&] {
                     Library library({in.folder(), false}, in.userFolder());
                     return opening(library, in.file(kLog)) == ErrorKind::CannotOpen ? 0 : 1;
                 }),
                 0);
        ::chmod(qPrintable(in.file(kLog)), 0644);
    }

    void oneProgramPerFolder()
    {
        QTemporaryDir folder;
        auto first = std::make_unique<store::InstanceLock>(folder.path());
        QVERIFY(first->held());
        QVERIFY(!store::InstanceLock(folder.path()).held());
        first.reset();
        QVERIFY(store::InstanceLock(folder.path()).held());
        // A killed holder's lock does not count.
        const pid_t child = ::fork();
        if (child == 0) {
            store::InstanceLock lock(folder.path());
            ::_exit(lock.held() ? 0 : 1);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        QVERIFY(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        QVERIFY(store::InstanceLock(folder.path()).held());
    }

    void pathSuffixes()
    {
        QCOMPARE(store::joinSuffix(QStringLiteral("/home/u"), u"\\UA3ABC"), QStringLiteral("/home/u/UA3ABC"));
    }
};

QTEST_GUILESS_MAIN(LibraryTest)
#include "library.moc"
