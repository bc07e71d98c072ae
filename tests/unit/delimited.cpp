// Text of separated fields: what is a field, what ends a record, what is refused and with which line.
#include "foreign/delimited.h"
#include "foreign/error.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using foreign::DelimitedReader;
using foreign::DelimitedRecord;
using foreign::TextFile;

namespace {

/// Records with their fields in brackets: "[a][b] [c]".
QString shown(const TextFile &text)
{
    DelimitedReader reader(text.bytes);
    DelimitedRecord record;
    QStringList records;
    while (reader.next(record)) {
        QString fields;
        for (const foreign::DelimitedField &field : record.fields)
            fields += u'[' + field.text(text.coding) + u']';
        records.append(fields);
    }
    return records.join(u' ');
}

QString shown(const QByteArray &bytes)
{
    return shown(foreign::prepareDelimited(bytes));
}

/// What reading throws; "none" where it ends well.
QString thrown(const QByteArray &bytes)
{
    try {
        (void)shown(bytes);
    } catch (const foreign::Error &error) {
        return error.text();
    }
    return QStringLiteral("none");
}

QList<qint64> lines(const QByteArray &bytes)
{
    DelimitedReader reader(bytes);
    DelimitedRecord record;
    QList<qint64> numbers;
    while (reader.next(record))
        numbers.append(record.line);
    return numbers;
}

} // namespace

class DelimitedTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fields_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QByteArray &bytes, const char *expected) {
            QTest::newRow(name) << bytes << QString::fromUtf8(expected);
        };
        row("semicolons", "a;b\nc;d\n", "[a][b] [c][d]");
        row("tabs", "a\tb\nc;\td\n", "[a][b] [c;][d]");
        row("one column", "a\nb", "[a] [b]");
        row("CR LF", "a;b\r\nc;d\r\n", "[a][b] [c][d]");
        row("CR", "a;b\rc;d\r", "[a][b] [c][d]");
        row("mixed line ends", "a\rb\r\nc\nd", "[a] [b] [c] [d]");
        row("no line end at the end", "a;b\nc;d", "[a][b] [c][d]");
        row("empty fields", ";a;\n;;\n", "[][a][] [][][]");
        row("blank lines", "\n\r\n  \n\t\na;b\n\n \nc;d\n\n", "[a][b] [c][d]");
        row("blanks stay", " a ; b \n", "[ a ][ b ]");
        row("quotes", "\"a\";\"b\"\n\"\";\"c\"", "[a][b] [][c]");
        row("separator in quotes", "a;b\n\"x;y\";\"\t\"", "[a][b] [x;y][\t]");
        row("line ends in quotes", "a;b\n\"x\ny\";\"u\r\nv\rw\"\nc;d", "[a][b] [x\ny][u\r\nv\rw] [c][d]");
        row("doubled quotes", "a;b\n\"\"\"x\"\"\";\"\"\"\"\n", "[a][b] [\"x\"][\"]");
        row("quote within", "a;b\n5\" x;y\"\"z\n", "[a][b] [5\" x][y\"\"z]");
        row("blank before a quote", "a;b\n \"x\";y\n", "[a][b] [ \"x\"][y]");
        row("blank behind a quote", "a;b\n\"x\" \t;\"y\" \n", "[a][b] [x][y]");
        row("quotes that mean nothing", "a;b\n\"x\" y;\"z\" \"u\"\n", "[a][b] [\"x\" y][\"z\" \"u\"]");
        row("separator of the header", "\"a\tb\";c;d\nx\ty;z;", "[a\tb][c][d] [x\ty][z][]");
        row("more tabs than semicolons", "a;x\tb\tc\n", "[a;x][b][c]");
        row("as many", "a;x\tb\n", "[a;x][b]");
        row("first name empty", "\tb\nc\td", "[][b] [c][d]");
        row("end-of-file mark", "a;b\r\nc;d\r\n\x1a", "[a][b] [c][d]");
        row("end-of-file mark behind a field", "a;b\x1a\x1a", "[a][b]");
        row("byte order mark", "\xEF\xBB\xBF\"a\";b\n", "[a][b]");
        row("byte order mark alone", "\xEF\xBB\xBF", "");
        row("blank", " \n \n", "");
    }

    void fields()
    {
        QFETCH(QByteArray, bytes);
        QTEST(shown(bytes), "expected");
    }

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
        const TextFile text = foreign::loadDelimited(QStringLiteral(TEST_DATA "/callbook/") +
                                                     QLatin1String(QTest::currentDataTag()));
        QTEST(text.codingName, "codingName");
        QCOMPARE(shown(text),
                 QStringLiteral(
                     "[Позывной][Фамилия][Имя][Отчество][Индекс][Область][Город][Адрес][Телефон][QSL Via] "
                     "[UA3ABC][Иванов][Сергей][Петрович][123456][Московская][Москва][ул. Мира, 5; кв. 7]"
                     "[(495) 123-45-67][buro] "
                     "[R3XYZ/P][Щербаков][Николай][][248000][Калужская][Калуга][пос. \"Заря\", дом 3][]"
                     "[R3ABC] "
                     "[RV9AA][Ёлкин][Фёдор][Юрьевич][][Свердловская][Екатеринбург][а/я 19][][] "
                     "[DL1ABC][Meier][Hans][][][][Bonn][][][]"));
    }

    void linesOfRecords()
    {
        QCOMPARE(lines("a;b\n\n\"x\ny\r\nz\";\nc\rd\r\ne"), QList<qint64>({1, 3, 6, 7, 8}));
        QCOMPARE(lines("\n\n\na"), QList<qint64>({4}));
    }

    void refused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("said");
        const auto row = [](const char *name, const QByteArray &bytes, const QString &said) {
            QTest::newRow(name) << bytes << said;
        };
        row("empty", {}, QStringLiteral("файл пуст"));
        row("unclosed to the end", "a;b\nc;d\nx;\"y;z\n1;2\n",
            QStringLiteral("строка 3: поле начато кавычкой, но не закрыто до конца файла"));
        row("a quote alone", "a;\"",
            QStringLiteral("строка 1: поле начато кавычкой, но не закрыто до конца файла"));
        row("closed by the next one's", "a;b\n\"x;y\n1;2\n\"u\";v\n",
            QStringLiteral("строка 2: поле начато кавычкой, но не закрыто (следующая кавычка — в строке 4, и "
                           "после неё нет разделителя)"));
        row("unclosed in a long file", "a;b\n1;2\n\"x;y\n" + QByteArray("1;2\n").repeated(1000) + "z\";1\n",
            QStringLiteral(
                "строка 3: поле, начатое кавычкой, тянется больше чем на 50 строк; похоже, кавычка не "
                "закрыта"));
        row("the same with CR", "a;b\r\"x;y\r" + QByteArray("1;2\r").repeated(1000),
            QStringLiteral(
                "строка 2: поле, начатое кавычкой, тянется больше чем на 50 строк; похоже, кавычка не "
                "закрыта"));
        row("a huge field", "a;b\n\n1;" + QByteArray(65'537, 'x') + "\n",
            QStringLiteral("строка 3: поле длиннее 65536 байт"));
        row("a huge field in quotes", "a;b\n1;\"" + QByteArray(100'000, 'x') + "\"\n",
            QStringLiteral("строка 2: поле длиннее 65536 байт"));
        row("many fields", "a;b\n" + QByteArray(1000, ';'), QStringLiteral("строка 2: больше 1000 полей"));
        const QString noText = QStringLiteral("это не текстовый файл (или текст UTF-16 без метки в начале; "
                                              "сохраните его в UTF-8)");
        row("binary", QByteArray("SQLite format 3\0\x10", 17), noText);
        row("UTF-16 without a mark", QByteArray("a\0;\0b\0", 6), noText);
    }

    void refused()
    {
        QFETCH(QByteArray, bytes);
        QTEST(thrown(bytes), "said");
    }

    void limitsThemselvesAreNotRefused()
    {
        QCOMPARE(thrown("a;b\n1;" + QByteArray(65'536, 'x')), QStringLiteral("none"));
        QCOMPARE(thrown("a;b\n1;\"" + QByteArray(65'536, 'x') + "\""), QStringLiteral("none"));
        QCOMPARE(thrown("a;b\n" + QByteArray(999, ';')), QStringLiteral("none"));
        QCOMPARE(thrown("a;b\n\"" + QByteArray(49, '\n') + "\""), QStringLiteral("none"));
        QVERIFY(thrown("a;b\n\"" + QByteArray(50, '\n') + "\"") != QStringLiteral("none"));
    }

    void files()
    {
        QTemporaryDir folder;
        const auto said = [](const QString &path) {
            try {
                (void)foreign::loadDelimited(path);
            } catch (const foreign::Error &error) {
                return error.text();
            }
            return QStringLiteral("none");
        };
        QCOMPARE(said(folder.path()), QStringLiteral("это папка, а не файл"));
        QVERIFY(
            said(folder.filePath(QStringLiteral("no"))).startsWith(QStringLiteral("файл не открывается: ")));
        const QString large = folder.filePath(QStringLiteral("large"));
        QFile file(large);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(512LL * 1024 * 1024 + 1));
        QCOMPARE(said(large), QStringLiteral("файл больше 512 мегабайт; разделите его на части"));
    }

    /// However a text is made of these signs, the reader ends, and what is in no quotes comes out.
    void everyShortText()
    {
        const QByteArray signs = "a;\"\n\r\t ";
        int read = 0;
        int refused = 0;
        for (int length = 1; length <= 6; ++length) {
            QList<int> digits(length, 0);
            for (;;) {
                QByteArray bytes;
                for (const int digit : digits)
                    bytes += signs[digit];
                try {
                    DelimitedReader reader(bytes);
                    DelimitedRecord record;
                    qsizetype letters = 0;
                    while (reader.next(record))
                        for (const auto &field : record.fields)
                            letters += field.raw.count('a');
                    QCOMPARE(letters, bytes.count('a'));
                    QCOMPARE(reader.position(), reader.size());
                    ++read;
                } catch (const foreign::Error &) {
                    QVERIFY(bytes.contains('"'));
                    ++refused;
                }
                int at = 0;
                while (at < length && ++digits[at] == signs.size())
                    digits[at++] = 0;
                if (at == length)
                    break;
            }
        }
        QVERIFY(read > 50'000);
        QVERIFY(refused > 1'000);
    }
};

QTEST_APPLESS_MAIN(DelimitedTest)
#include "delimited.moc"
