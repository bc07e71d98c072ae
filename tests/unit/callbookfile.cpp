// The callbook filled from a text file: what is added, what is filled, and that nothing is lost.
#include "support/callbook.h"
#include "support/faultyvfs.h"

using reference::CallbookExamination;
using reference::CallbookFile;
using reference::CallbookImportResult;
using reference::CallbookImportSteps;

using namespace testsupport;

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
};

QTEST_APPLESS_MAIN(CallbookFileTest)
#include "callbookfile.moc"
