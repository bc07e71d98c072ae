// The callbook written to a text file, and that it comes back from there as it was.
#include "support/callbook.h"

#include <csignal>
#include <sys/resource.h>

using reference::CallbookExamination;
using reference::CallbookExportResult;
using reference::CallbookFile;
using reference::CallbookSeparator;

using namespace testsupport;

class CallbookExportTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void exported()
    {
        Book book;
        book.add({QStringLiteral("UA3ABC"), QStringLiteral("Иванов"), QStringLiteral("Пётр"), QString(),
                  QString(), QString(), QStringLiteral("Москва"), QStringLiteral("ул. \"Мира\"; 5")});
        book.add({QStringLiteral("DL1ABC"), QStringLiteral("O'Neil"), QStringLiteral("a\tb")});
        const QString path = book.file("out.csv");
        const CallbookExportResult result =
            reference::exportCallbook(book.databases, path, CallbookSeparator::Semicolon);
        QCOMPARE(result.records, 2);
        QCOMPARE(result.codingName, QStringLiteral("Windows-1251"));
        QCOMPARE(contents(path), QByteArray("ccall;fam;nname;otch;indeks;obl;qth;adres;telefon;qslvia\r\n"
                                            "DL1ABC;O'Neil;a\tb;;;;;;;\r\n"
                                            "UA3ABC;\xC8\xE2\xE0\xED\xEE\xE2;\xCF\xB8\xF2\xF0;;;;"
                                            "\xCC\xEE\xF1\xEA\xE2\xE0;"
                                            "\"\xF3\xEB. \"\"\xCC\xE8\xF0\xE0\"\"; 5\";;\r\n"));
        (void)reference::exportCallbook(book.databases, path, CallbookSeparator::Tab);
        QVERIFY(
            contents(path).startsWith("ccall\tfam\tnname\totch\tindeks\tobl\tqth\tadres\ttelefon\tqslvia\r\n"
                                      "DL1ABC\tO'Neil\t\"a\tb\"\t\t"));
        QCOMPARE(QDir(book.folder()).entryList({QStringLiteral("*part*")}), QStringList());
    }

    void charactersOfNoSinglePage()
    {
        Book book;
        book.add({QStringLiteral("UA3ABC"), QStringLiteral("Иванов")});
        book.add({QStringLiteral("VK2AA"), QStringLiteral("Müller 東京")});
        const QString path = book.file("out.csv");
        const CallbookExportResult result =
            reference::exportCallbook(book.databases, path, CallbookSeparator::Semicolon);
        QCOMPARE(result.codingName, QStringLiteral("UTF-8"));
        QCOMPARE(result.records, 2);
        QCOMPARE(contents(path),
                 QByteArray("\xEF\xBB\xBF"
                            "ccall;fam;nname;otch;indeks;obl;qth;adres;telefon;qslvia\r\n") +
                     QStringLiteral("UA3ABC;Иванов;;;;;;;;\r\nVK2AA;Müller 東京;;;;;;;;\r\n").toUtf8());
    }

    /// Letters of which a reader would take the file for another coding's.
    void lettersThatMislead()
    {
        Book book;
        book.add(
            {QStringLiteral("UA3ABC"), QStringLiteral("рТЙЧЕФ лПМЕЗБ")}); // in KOI8-R it reads as Russian
        const QString path = book.file("out.csv");
        QCOMPARE(reference::exportCallbook(book.databases, path, CallbookSeparator::Semicolon).codingName,
                 QStringLiteral("UTF-8"));
        Book other;
        (void)CallbookFile(other.databases, path).import();
        QCOMPARE(other.records(), book.records());
    }

    void anEmptyCallbook()
    {
        Book book;
        const QString path = book.file("out.csv");
        QCOMPARE(reference::exportCallbook(book.databases, path, CallbookSeparator::Semicolon).records, 0);
        QCOMPARE(contents(path), QByteArray("ccall;fam;nname;otch;indeks;obl;qth;adres;telefon;qslvia\r\n"));
        QCOMPARE(CallbookFile(book.databases, path).examine().records, 0);
    }

    void thereAndBack_data()
    {
        QTest::addColumn<QString>("alphabet");
        QTest::newRow("ASCII") << QStringLiteral("ab\"\"';;\t\t ,.\\/%?*#[]{}()<>|&=+-0");
        QTest::newRow("Russian") << QStringLiteral("абвЩЁё№«»—\"\"';;\t\t Їґў");
        QTest::newRow("any") << QStringLiteral("аb\"\"';\t ßé東\u2028\u0085\u0098żα");
    }

    void thereAndBack()
    {
        QFETCH(QString, alphabet);
        quint32 state = 12345;
        const auto random = [&state](qsizetype below) {
            state = state * 1664525U + 1013904223U;
            return static_cast<qsizetype>((state >> 8U) % static_cast<quint32>(below));
        };
        for (const CallbookSeparator separator : {CallbookSeparator::Semicolon, CallbookSeparator::Tab}) {
            Book book;
            QList<QStringList> records;
            for (int row = 0; row < 200; ++row) {
                QStringList record = {QStringLiteral("R%1").arg(row)};
                for (int field = 1; field < 10; ++field) {
                    QString value;
                    for (qsizetype left = random(8); left > 0; --left)
                        value += alphabet[random(alphabet.size())];
                    record.append(value.trimmed());
                }
                records.append(record);
            }
            book.add(records);
            const QString path = book.file("out.txt");
            QCOMPARE(reference::exportCallbook(book.databases, path, separator).records, 200);
            Book other;
            CallbookFile file(other.databases, path);
            const CallbookExamination found = file.examine();
            QCOMPARE(found.newCalls, 200);
            QCOMPARE(found.tooFew.count + found.tooMany.count + found.withoutCall.count, 0);
            QCOMPARE(figures(file.import()), QStringLiteral("200+0=0-0"));
            QCOMPARE(other.records(QStringLiteral("ccall")), book.records(QStringLiteral("ccall")));
        }
    }

    void lineEndsAndZeros()
    {
        Book book;
        book.sql(QStringLiteral("INSERT INTO tblcalbuk(ccall,fam,adres) VALUES('R1AA','a'||char(0)||'b',"
                                "'one'||char(13,10)||'two')"));
        const QString path = book.file("out.csv");
        (void)reference::exportCallbook(book.databases, path, CallbookSeparator::Semicolon);
        QVERIFY(contents(path).endsWith("R1AA;a b;;;;;;\"one\r\ntwo\";;\r\n"));
        Book other;
        (void)CallbookFile(other.databases, path).import();
        QCOMPARE(other.records(), QStringList{QStringLiteral("R1AA|a b||||||one two||")});
    }

    void anExportCanBeStopped()
    {
        Book book;
        (void)book.import(many(3000));
        const QString path = book.file("out.csv");
        put(path, "older");
        const CallbookExportResult result =
            reference::exportCallbook(book.databases, path, CallbookSeparator::Semicolon,
                                      [](qint64 done, qint64 total) { return total == 3000 && done < 2000; });
        QVERIFY(result.stopped);
        QCOMPARE(contents(path), QByteArray("older"));
        QCOMPARE(QDir(book.folder()).entryList({QStringLiteral("*part*")}), QStringList());
    }

    void neverOverADatabase()
    {
        Book book;
        book.add({QStringLiteral("R1AA")});
        const QByteArray before = contents(book.path());
        const auto refused = errorOf([&] {
            (void)reference::exportCallbook(book.databases, book.path(), CallbookSeparator::Semicolon);
        });
        QVERIFY(refused && refused->kind() == store::ErrorKind::Unwritable);
        QVERIFY(contents(book.path()) == before);
        const auto nowhere = errorOf([&] {
            (void)reference::exportCallbook(book.databases, book.file("no/such/out.csv"),
                                            CallbookSeparator::Semicolon);
        });
        QVERIFY(nowhere && nowhere->kind() == store::ErrorKind::Unwritable);
    }

    void anOlderExportSurvivesAFullDisk()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        Book book;
        (void)book.import(many(3000));
        const QString path = book.file("out.csv");
        rlimit normal{};
        QCOMPARE(::getrlimit(RLIMIT_FSIZE, &normal), 0);
        int failures = 0;
        for (const rlim_t bytes : {rlim_t(0), rlim_t(1), rlim_t(30'000)}) {
            put(path, "older");
            rlimit small = normal;
            small.rlim_cur = bytes;
            QCOMPARE(::setrlimit(RLIMIT_FSIZE, &small), 0);
            const auto failed = errorOf(
                [&] { (void)reference::exportCallbook(book.databases, path, CallbookSeparator::Semicolon); });
            QCOMPARE(::setrlimit(RLIMIT_FSIZE, &normal), 0);
            failures += failed ? 1 : 0;
            QCOMPARE(contents(path), QByteArray("older"));
            QCOMPARE(QDir(book.folder()).entryList({QStringLiteral("*part*")}), QStringList());
        }
        QCOMPARE(failures, 3);
    }
};

QTEST_APPLESS_MAIN(CallbookExportTest)
#include "callbookexport.moc"
