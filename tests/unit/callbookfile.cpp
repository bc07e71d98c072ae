// The callbook filled from a text file and written to one: what is added, what is filled, and that nothing is
// lost.
#include "reference/callbookfile.h"

#include "store/schema.h"
#include "support/faultyvfs.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/resource.h>

using reference::CallbookExamination;
using reference::CallbookExportResult;
using reference::CallbookFile;
using reference::CallbookImportResult;
using reference::CallbookImportSteps;
using reference::CallbookSeparator;
using testsupport::FaultyDisk;

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void put(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QString fixture(const char *name)
{
    return QStringLiteral(TEST_DATA "/callbook/") + QLatin1String(name);
}

/// A folder with an empty callbook and no other file.
class Book {
public:
    Book() : databases({m_folder.path(), false}, m_user.path())
    {
        const store::TableLayout *table = store::tableLayout(u"tblcalbuk");
        store::Connection::create(path())->exec(store::createTableSql(*table));
        (void)databases.connection(path()); // gets its indexes
    }

    [[nodiscard]] QString path() const { return file("dbcalbuk.mdb"); }
    [[nodiscard]] QString folder() const { return m_folder.path(); }
    [[nodiscard]] QString file(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    [[nodiscard]] QStringList copies() const
    {
        return QDir(m_user.path()).entryList({QStringLiteral("dbcalbuk.*.mdb")}, QDir::Files);
    }
    [[nodiscard]] QString copyPath() const { return m_user.filePath(copies().front()); }
    // Through connections of their own, as another program would; what a failure left behind is undone first.
    void sql(const QString &statement) const
    {
        store::Connection(path(), store::OpenMode::ReadWrite).exec(statement);
    }
    /// Records with these values, from the callsign on.
    void add(const QList<QStringList> &added) const
    {
        store::Connection connection(path(), store::OpenMode::ReadWrite);
        store::Transaction transaction(connection);
        for (const QStringList &values : added)
            connection.exec(QStringLiteral("INSERT INTO tblcalbuk(%1) VALUES(?%2)")
                                .arg(reference::callbookFields().mid(0, values.size()).join(QLatin1Char(',')),
                                     QStringLiteral(",?").repeated(values.size() - 1)),
                            store::Values(values.begin(), values.end()));
        transaction.commit();
    }
    void add(const QStringList &values) const { add(QList<QStringList>{values}); }
    /// All records as they are stored, fields joined by "|".
    [[nodiscard]] QStringList records(const QString &order = QStringLiteral("rowid")) const
    {
        store::Connection connection(path(), store::OpenMode::ReadWrite);
        store::Cursor cursor =
            connection.run(QStringLiteral("SELECT %1 FROM tblcalbuk ORDER BY %2")
                               .arg(reference::callbookFields().join(QStringLiteral("||'|'||")), order));
        QStringList list;
        while (cursor.next())
            list.append(cursor.text(0));
        return list;
    }
    [[nodiscard]] qint64 count() const
    {
        store::Connection connection(path(), store::OpenMode::ReadWrite);
        return connection.singleNumber(QStringLiteral("SELECT count(*) FROM tblcalbuk"));
    }

    [[nodiscard]] QString text(const QByteArray &bytes) const
    {
        QString name = file("list.txt");
        put(name, bytes);
        return name;
    }
    [[nodiscard]] CallbookExamination examined(const QByteArray &bytes)
    {
        return CallbookFile(databases, text(bytes)).examine();
    }
    CallbookImportResult import(const QByteArray &bytes, const CallbookImportSteps &steps = {})
    {
        return CallbookFile(databases, text(bytes)).import(steps);
    }

private:
    QTemporaryDir m_folder;
    QTemporaryDir m_user;

public:
    store::Library databases;
};

template <typename Work>
std::optional<store::Error> errorOf(const Work &work)
{
    try {
        work();
    } catch (const store::Error &error) {
        return error;
    }
    return std::nullopt;
}

/// `rows` stations.
QByteArray many(int rows)
{
    QByteArray text = "ccall;nname;qth\r\n";
    for (int row = 0; row < rows; ++row)
        text += "R" + QByteArray::number(row) + ";N" + QByteArray::number(row) + ";Town\r\n";
    return text;
}

QString figures(const CallbookImportResult &result)
{
    return QStringLiteral("%1+%2=%3-%4%5")
        .arg(result.added)
        .arg(result.filled)
        .arg(result.unchanged)
        .arg(result.skipped)
        .arg(result.stopped ? QStringLiteral(" stopped") : QString());
}

} // namespace

class CallbookFileTest : public QObject {
    Q_OBJECT

    FaultyDisk m_disk;

private Q_SLOTS:
    void cleanup() { FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull); }

    // What a file says.

    void codings_data()
    {
        QTest::addColumn<QString>("codingName");
        QTest::newRow("windows-1251.csv") << "Windows-1251";
        QTest::newRow("ibm866.txt") << "IBM866";
        QTest::newRow("koi8-r.csv") << "KOI8-R";
        QTest::newRow("utf-8.csv") << "UTF-8";
        QTest::newRow("utf-8-marked.txt") << "UTF-8";
        QTest::newRow("utf-16.txt") << "UTF-16";
        QTest::newRow("utf-16-be.csv") << "UTF-16";
    }

    void codings()
    {
        Book book;
        CallbookFile file(book.databases, fixture(QTest::currentDataTag()));
        const CallbookExamination found = file.examine();
        QTEST(found.codingName, "codingName");
        QCOMPARE(found.records, 4);
        QCOMPARE(found.newCalls, 4);
        QCOMPARE(found.fields, reference::callbookFields());
        QVERIFY(found.unknownColumns.isEmpty());
        QVERIFY(book.records().isEmpty());
        QCOMPARE(figures(file.import()), QStringLiteral("4+0=0-0"));
        QCOMPARE(
            book.records(),
            QStringList({QStringLiteral("UA3ABC|Иванов|Сергей|Петрович|123456|Московская|Москва|ул. Мира, 5; "
                                        "кв. 7|(495) 123-45-67|buro"),
                         QStringLiteral("R3XYZ/P|Щербаков|Николай||248000|Калужская|Калуга|пос. \"Заря\", "
                                        "дом 3||R3ABC"),
                         QStringLiteral("RV9AA|Ёлкин|Фёдор|Юрьевич||Свердловская|Екатеринбург|а/я 19||"),
                         QStringLiteral("DL1ABC|Meier|Hans||||Bonn|||")}));
    }

    void headings_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::newRow("names") << QByteArray("ccall;fam;nname;otch;indeks;obl;qth;adres;telefon;qslvia");
        QTest::newRow("capitals") << QByteArray("CCALL;Fam;NName;OTCH;Indeks;OBL;QTH;Adres;Telefon;QSLVIA");
        QTest::newRow("labels") << QByteArray(
            "Call;Фамилия;Имя;Отчество;Индекс;Область;Город;Адресс;Телефон;QSL Via");
        QTest::newRow("other labels")
            << QByteArray("ПОЗЫВНОЙ; фамилия ;ИМЯ;отчество;индекс;\"область\";город;Адрес;телефон;qsl  via");
    }

    void headings()
    {
        QFETCH(QByteArray, header);
        Book book;
        (void)book.import(header + "\nR1AA;1;2;3;4;5;6;7;8;9\n");
        QCOMPARE(book.records(), QStringList{QStringLiteral("R1AA|1|2|3|4|5|6|7|8|9")});
    }

    void columnsInAnyOrder()
    {
        Book book;
        const QByteArray text = "Locator;qth;CCALL;;Имя;call;qth\nKO85;Town;R1AA;x;Name;R2BB;Other\n";
        const CallbookExamination found = book.examined(text);
        QCOMPARE(found.fields,
                 QStringList({QStringLiteral("ccall"), QStringLiteral("nname"), QStringLiteral("qth")}));
        QCOMPARE(found.unknownColumns,
                 QStringList({QStringLiteral("Locator"), QStringLiteral("call"), QStringLiteral("qth")}));
        (void)book.import(text);
        QCOMPARE(book.records(), QStringList{QStringLiteral("R1AA||Name||||Town|||")});
    }

    void examination()
    {
        Book book;
        book.add({QStringLiteral("r1aa"), QStringLiteral("Old")});
        book.add({QStringLiteral("R2BB"), QStringLiteral("Old"), QStringLiteral("Name")});
        const QByteArray before = contents(book.path());
        const CallbookExamination found = book.examined("ccall;fam;nname\n"
                                                        "R1AA;New;Name\n"  // 2: fills
                                                        "R2BB;New;Other\n" // 3
                                                        ";;\n"             // nothing
                                                        "  ;Nobody;\n"     // 5: no callsign
                                                        "R3CC;A;B;C\n"     // 6: too many
                                                        "R3CC;A\n"         // 7: too few, new
                                                        "r3cc ;;B;;\n"     // 8: fills the one above
                                                        "R1AA;;Name\n"     // 9
                                                        "R4DD\n");         // 10: too few, new
        QCOMPARE(found.records, 8);
        QCOMPARE(found.newCalls, 2);
        QCOMPARE(found.knownCalls, 2);
        QCOMPARE(found.repeated, 2);
        QCOMPARE(found.filling, 2);
        QCOMPARE(found.withoutCall.first, QList<qint64>({5}));
        QCOMPARE(found.tooMany.first, QList<qint64>({6}));
        QCOMPARE(found.tooFew.count, 2);
        QCOMPARE(found.tooFew.first, QList<qint64>({7, 10}));
        QVERIFY(!found.stopped);
        QVERIFY(contents(book.path()) == before);
        QVERIFY(book.copies().isEmpty());
    }

    void onlyTheFirstLinesAreNamed()
    {
        Book book;
        const CallbookExamination found = book.examined("ccall;fam\n" + QByteArray(";x\n").repeated(25));
        QCOMPARE(found.withoutCall.count, 25);
        QCOMPARE(found.withoutCall.first, QList<qint64>({2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
    }

    void anExaminationCanBeStopped()
    {
        Book book;
        CallbookFile file(book.databases, book.text(many(5000)));
        const CallbookExamination found =
            file.examine([](qint64 done, qint64 total) { return done < total / 2; });
        QVERIFY(found.stopped);
        QVERIFY(found.records >= 2000 && found.records < 5000);
        QCOMPARE(figures(file.import()), QStringLiteral("5000+0=0-0"));
    }

    void headerAlone()
    {
        Book book;
        QCOMPARE(book.examined("ccall;fam\n").records, 0);
        QCOMPARE(figures(book.import("ccall;fam\n\n")), QStringLiteral("0+0=0-0"));
        QVERIFY(book.copies().isEmpty());
    }

    // What comes into the callbook.

    void onlyEmptyFieldsAreFilled()
    {
        Book book;
        book.add(
            {QStringLiteral("UA3ABC"), QStringLiteral("Иванов"), QString(), QString(), QStringLiteral(" ")});
        const CallbookImportResult result =
            book.import("ccall;fam;nname;otch;indeks;qth\nUA3ABC;Петров;Сергей;;123456;Москва\n");
        QCOMPARE(figures(result), QStringLiteral("0+1=0-0"));
        QCOMPARE(book.records(), QStringList{QStringLiteral("UA3ABC|Иванов|Сергей|| ||Москва|||")});
    }

    void nullIsEmpty()
    {
        Book book;
        book.sql(QStringLiteral("INSERT INTO tblcalbuk(ccall,fam,nname) VALUES('R1AA',NULL,NULL)"));
        QCOMPARE(figures(book.import("ccall;fam\nR1AA;Ivanov\n")), QStringLiteral("0+1=0-0"));
        QCOMPARE(book.records().size(), 1);
        QVERIFY(book.records().front().startsWith(QStringLiteral("R1AA|Ivanov||")));
    }

    void theFirstStoredRecordOfACallsign()
    {
        Book book;
        book.add({QStringLiteral("r1aa")});
        book.add({QStringLiteral("R1AA")});
        (void)book.import("ccall;fam\nR1aa;X\n");
        QCOMPARE(book.records(),
                 QStringList({QStringLiteral("r1aa|X||||||||"), QStringLiteral("R1AA|||||||||")}));
    }

    void callsigns()
    {
        Book book;
        book.add({QStringLiteral(" R1AA ")});
        book.add({QStringLiteral("мой")});
        book.add({QString(), QStringLiteral("nobody")});
        QCOMPARE(figures(book.import("ccall;fam\n r1aa\t;X\nМОЙ;Y\nr2bb/p;Z\nua3'x;W\n")),
                 QStringLiteral("2+2=0-0"));
        QCOMPARE(book.records(),
                 QStringList({QStringLiteral(" R1AA |X||||||||"), QStringLiteral("мой|Y||||||||"),
                              QStringLiteral("|nobody||||||||"), QStringLiteral("R2BB/P|Z||||||||"),
                              QStringLiteral("UA3'X|W||||||||")}));
    }

    void twiceInTheFile()
    {
        Book book;
        const CallbookImportResult result =
            book.import("ccall;fam;nname\nR1AA;First;\nr1aa;Second;Name\nR1AA;Third;Other\n");
        QCOMPARE(figures(result), QStringLiteral("1+1=1-0"));
        QCOMPARE(book.records(), QStringList{QStringLiteral("R1AA|First|Name|||||||")});
    }

    void values()
    {
        Book book;
        const QByteArray longValue(5000, 'x');
        (void)book.import("ccall;fam;adres;qth\nR1AA; \xC2\xA0O'Neil \";\"\r\n one\r\ntwo\nthree\rfour\n\";" +
                          longValue + "\n");
        QCOMPARE(
            book.records(),
            QStringList{
                QStringLiteral("R1AA|O'Neil \"|||||%1|one two three four||").arg(QLatin1String(longValue))});
    }

    void rowsLeftOut()
    {
        Book book;
        QCOMPARE(figures(book.import("ccall;fam\nR1AA;A\n;B\nR2BB;C;D\nR3CC;E;;\nR4DD\n;;;\n")),
                 QStringLiteral("3+0=0-2"));
        QCOMPARE(book.records(),
                 QStringList({QStringLiteral("R1AA|A||||||||"), QStringLiteral("R3CC|E||||||||"),
                              QStringLiteral("R4DD|||||||||")}));
    }

    void twiceChangesNothingMore()
    {
        Book book;
        (void)book.import(contents(fixture("utf-8.csv")));
        const QByteArray before = contents(book.path());
        QCOMPARE(figures(book.import(contents(fixture("windows-1251.csv")))), QStringLiteral("0+0=4-0"));
        QVERIFY(contents(book.path()) == before);
        QCOMPARE(book.copies().size(), 1); // where there is nothing to change, there is nothing to copy
    }

    void theCallbookIsCopiedBefore()
    {
        Book book;
        book.add({QStringLiteral("OLD1")});
        bool told = false;
        CallbookImportSteps steps;
        steps.copying = [&told](qint64, qint64) { told = true; };
        (void)book.import("ccall;fam\nOLD1;X\nR1AA;Y\n", steps);
        QVERIFY(told);
        QCOMPARE(book.copies().size(), 1);
        store::Connection copy(book.copyPath(), store::OpenMode::ReadOnly);
        QCOMPARE(copy.single(QStringLiteral("SELECT ccall||fam FROM tblcalbuk")), QStringLiteral("OLD1"));
        QCOMPARE(copy.singleNumber(QStringLiteral("SELECT count(*) FROM tblcalbuk")), 1);
    }

    /// What changes between the examination and the import is not written over.
    void changedAfterTheExamination()
    {
        Book book;
        CallbookFile file(book.databases, book.text("ccall;fam\nR1AA;File\nR2BB;File\n"));
        QCOMPARE(file.examine().newCalls, 2);
        book.add({QStringLiteral("R1AA"), QStringLiteral("Hand")});
        QFile::remove(book.file("list.txt"));
        QCOMPARE(figures(file.import()), QStringLiteral("1+0=1-0"));
        QCOMPARE(book.records(),
                 QStringList({QStringLiteral("R1AA|Hand||||||||"), QStringLiteral("R2BB|File||||||||")}));
    }

    /// Another program writes into the callbook between two chunks.
    void changedDuringTheImport()
    {
        Book book;
        CallbookImportSteps steps;
        bool added = false;
        steps.adding = [&](qint64 done, qint64) {
            if (done == 20'000) { // the first chunk has been committed
                book.add({QStringLiteral("R20500"), QStringLiteral("Other")});
                added = true;
            }
            return true;
        };
        QCOMPARE(figures(book.import(many(21'000), steps)), QStringLiteral("20999+1=0-0"));
        QVERIFY(added);
        QCOMPARE(book.count(), 21'000);
        QVERIFY(book.records().contains(QStringLiteral("R20500|Other|N20500||||Town|||")));
    }

    // Refusals.

    void refused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("said");
        const auto row = [](const char *name, const QByteArray &bytes, const QString &said) {
            QTest::newRow(name) << bytes << QStringLiteral("Файл list.txt не прочитан: %1.").arg(said);
        };
        const QString noCall = QStringLiteral(
            "в первой строке нет столбца с позывными (ccall). Первая строка должна называть столбцы через "
            "точку с "
            "запятой или табуляцию, например: ccall;fam;nname;otch;indeks;obl;qth;adres;telefon;qslvia");
        row("empty", {}, QStringLiteral("файл пуст"));
        row("blank", "\n \n", QStringLiteral("в файле ничего нет"));
        row("no callsign", "fam;nname\nA;B\n", noCall);
        row("no header", "R1AA;A;B\n", noCall);
        row("commas", "ccall,fam,nname\nR1AA,A,B\n", noCall);
        row("text", "Просто текст, и больше ничего.\n", noCall);
        row("binary", QByteArray("\x01\0\x02\xff\xfe\0", 6),
            QStringLiteral(
                "это не текстовый файл (или текст UTF-16 без метки в начале; сохраните его в UTF-8)"));
        row("a database", contents(QStringLiteral(TEST_DATA "/jet3/dbcalbuk.mdb")),
            QStringLiteral(
                "это не текстовый файл (или текст UTF-16 без метки в начале; сохраните его в UTF-8)"));
        row("unclosed", "ccall;fam\nR1AA;A\nR2BB;\"B\nR3CC;C\n",
            QStringLiteral("строка 3: поле начато кавычкой, но не закрыто до конца файла"));
        row("unclosed far behind", many(3000) + "R2BB;\"B\n",
            QStringLiteral("строка 3002: поле начато кавычкой, но не закрыто до конца файла"));
        row("huge", "ccall;fam\nR1AA;" + QByteArray(70'000, 'x'),
            QStringLiteral("строка 2: поле длиннее 65536 байт"));
    }

    void refused()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, said);
        Book book;
        book.add({QStringLiteral("OLD1")});
        const QByteArray before = contents(book.path());
        const auto examined = errorOf([&] { (void)book.examined(bytes); });
        QVERIFY(examined && examined->kind() == store::ErrorKind::Unreadable);
        QCOMPARE(examined->text(), said);
        const auto imported = errorOf([&] { (void)book.import(bytes); });
        QVERIFY(imported.has_value());
        QCOMPARE(imported->text(), said);
        QVERIFY(contents(book.path()) == before);
        QVERIFY(book.copies().isEmpty());
    }

    void filesThatAreNone()
    {
        Book book;
        const auto missing = errorOf([&] { CallbookFile(book.databases, book.file("no.csv")); });
        QVERIFY(missing && missing->kind() == store::ErrorKind::Missing);
        const auto folder = errorOf([&] { CallbookFile(book.databases, book.folder()); });
        QVERIFY(folder && folder->kind() == store::ErrorKind::Unreadable);
    }

    void callbooksThatCannotBeFilled()
    {
        Book book;
        CallbookFile file(book.databases, fixture("utf-8.csv"));
        store::Library onlyRead({book.folder(), true}, book.folder());
        const auto readOnly = errorOf([&] { (void)CallbookFile(onlyRead, fixture("utf-8.csv")).import(); });
        QVERIFY(readOnly && readOnly->kind() == store::ErrorKind::ReadOnly);
        QCOMPARE(CallbookFile(onlyRead, fixture("utf-8.csv")).examine().newCalls, 4);

        book.databases.close(book.path());
        QVERIFY(QFile::remove(book.path()));
        const auto missing = errorOf([&] { (void)file.import(); });
        QVERIFY(missing && missing->kind() == store::ErrorKind::Missing);
        QVERIFY(errorOf([&] { (void)file.examine(); })->kind() == store::ErrorKind::Missing);
        QVERIFY(QFile::copy(QStringLiteral(TEST_DATA "/jet3/dbcalbuk.mdb"), book.path()));
        const auto old = errorOf([&] { (void)file.import(); });
        QVERIFY(old && old->kind() == store::ErrorKind::Jet);
        QVERIFY(book.copies().isEmpty());
    }

    void stopped()
    {
        Book book;
        QList<qint64> told;
        CallbookImportSteps steps;
        steps.adding = [&told](qint64 done, qint64 total) {
            told.append(done);
            return total == 5000 && done < 3000;
        };
        QCOMPARE(figures(book.import(many(5000), steps)), QStringLiteral("3000+0=0-0 stopped"));
        QCOMPARE(told, QList<qint64>({1000, 2000, 3000}));
        QCOMPARE(book.count(), 3000);
        steps.adding = [](qint64, qint64) { return false; };
        QCOMPARE(figures(book.import(many(1000), steps)),
                 QStringLiteral("0+0=1000-0")); // after the last: none
    }

    void failingDisk_data()
    {
        QTest::addColumn<int>("fault");
        QTest::newRow("full") << int(FaultyDisk::Fault::DiskFull);
        QTest::newRow("write error") << int(FaultyDisk::Fault::WriteError);
        QTest::newRow("flush error") << int(FaultyDisk::Fault::SyncError);
    }

    /// At every call at which the disk may fail: what the result tells is in the callbook, and nothing else.
    void failingDisk()
    {
        QFETCH(int, fault);
        const QByteArray text = many(20'500);
        bool succeeded = false;
        int partly = 0;
        int nothing = 0;
        const bool flushes = fault == int(FaultyDisk::Fault::SyncError); // there are few of them
        for (int n = 1; n <= 20'000 && !succeeded; n += flushes ? 1 : 1 + n / 3) {
            Book book;
            book.add({QStringLiteral("R5"), QStringLiteral("Old")});
            FaultyDisk::failFrom(n, FaultyDisk::Fault(fault));
            CallbookImportResult result;
            try {
                result = book.import(text);
                succeeded = !result.failed;
                partly += result.failed ? 1 : 0;
            } catch (const store::Error &) {
                ++nothing;
            }
            FaultyDisk::failFrom(0, FaultyDisk::Fault(fault));
            book.databases.close(book.path());
            QCOMPARE(book.count(), 1 + result.added);
            QCOMPARE(result.added + result.filled + result.unchanged,
                     succeeded ? 20'500 : result.added + result.filled);
            QVERIFY((result.added + result.filled) % 20'000 == 0 || succeeded);
            const QString first = book.records().front();
            QVERIFY(first == (result.filled == 1 ? QStringLiteral("R5|Old|N5||||Town|||")
                                                 : QStringLiteral("R5|Old||||||||")));
        }
        QVERIFY(succeeded);
        QVERIFY(partly > 0);
        QVERIFY(nothing > 0);
    }

    // The way out.

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

QTEST_APPLESS_MAIN(CallbookFileTest)
#include "callbookfile.moc"
