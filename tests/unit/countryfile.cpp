// Reading the country file: what it may hold, and every way in which it may be damaged.
#include "foreign/countryfile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <optional>

using foreign::CountryEntity;
using foreign::CountryFile;
using foreign::CountryKey;
using foreign::readCountries;

namespace {

const QByteArray kHeader = "Fiji: 32: 56: OC: -17.78: -177.92: -12.0: 3D2:";

QByteArray sample()
{
    QFile file(QStringLiteral(TEST_DATA "/country/sample.cty"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("the sample does not open");
    return file.readAll();
}

CountryEntity entity(const CountryFile &file, const QString &prefix)
{
    for (const CountryEntity &one : file.entities)
        if (one.prefix == prefix)
            return one;
    qFatal("no such country");
}

CountryKey key(const CountryEntity &entity, const QString &text)
{
    for (const CountryKey &one : entity.keys)
        if (one.text == text)
            return one;
    qFatal("no such key");
}

/// Why the bytes are refused; "read" where they are not.
QString refusal(const QByteArray &bytes)
{
    try {
        (void)readCountries(bytes);
    } catch (const foreign::Error &error) {
        return error.text();
    }
    return QStringLiteral("read");
}

/// The only key of a country that has just this one.
CountryKey onlyKey(const QByteArray &item)
{
    const CountryFile file = readCountries(kHeader + "\n" + item + ";");
    if (file.entities.size() != 1 || file.entities[0].keys.size() != 1)
        qFatal("not one key");
    return file.entities[0].keys[0];
}

/// Everything that was read, to compare two readings.
QStringList dump(const CountryFile &file)
{
    QStringList lines;
    const auto place = [](const foreign::CountryPosition &at) {
        return QStringLiteral("%1/%2").arg(at.latitude).arg(at.longitude);
    };
    for (const CountryEntity &one : file.entities) {
        lines.append(QStringList{one.name, QString::number(one.cqZone), QString::number(one.ituZone),
                                 one.continent, place(one.position), QString::number(one.offset), one.prefix,
                                 QString::number(int(one.starred))}
                         .join(QLatin1Char('|')));
        for (const CountryKey &item : one.keys)
            lines.append(QStringList{
                item.text, QString::number(int(item.exact)), QString::number(item.cqZone.value_or(0)),
                QString::number(item.ituZone.value_or(0)), item.continent,
                item.position ? place(*item.position) : QString(), QString::number(item.offset.value_or(99))}
                             .join(QLatin1Char('|')));
    }
    return lines;
}

} // namespace

class CountryFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sampleIsReadWhole()
    {
        const CountryFile file = readCountries(sample());
        QCOMPARE(file.entities.size(), 24);
        QCOMPARE(file.issued, std::optional(QDate(2026, 2, 14)));
        qsizetype keys = 0;
        int starred = 0;
        for (const CountryEntity &one : file.entities) {
            keys += one.keys.size();
            starred += int(one.starred);
        }
        QCOMPARE(keys, sample().count(',') + sample().count(';') - 1); // the day of issue is no key
        QCOMPARE(starred, 5);

        const CountryEntity reef = entity(file, QStringLiteral("3D2/c"));
        QCOMPARE(reef.name, QStringLiteral("Conway Reef"));
        QCOMPARE(reef.line, 5);
        QCOMPARE(reef.cqZone, 32);
        QCOMPARE(reef.ituZone, 56);
        QCOMPARE(reef.continent, QStringLiteral("OC"));
        QCOMPARE(reef.offset, -12.0);
        QVERIFY(!reef.starred);
        QCOMPARE(reef.keys.size(), 3);
        QVERIFY(reef.keys[0].exact);
        QCOMPARE(reef.keys[0].line, 6);
        const CountryEntity sicily = entity(file, QStringLiteral("IT9"));
        QVERIFY(sicily.starred);
        QVERIFY(!key(sicily, QStringLiteral("IT9")).exact);
    }

    void longitudesAreTurned()
    {
        const CountryFile file = readCountries(sample());
        QCOMPARE(entity(file, QStringLiteral("K")).position.longitude, -91.87);
        QCOMPARE(entity(file, QStringLiteral("JA")).position.longitude, 138.38);
        QCOMPARE(entity(file, QStringLiteral("VP8")).position.latitude, -51.63);
        const CountryKey perm = key(entity(file, QStringLiteral("UA9")), QStringLiteral("UA9F"));
        QCOMPARE(perm.position->longitude, 56.25);
        QCOMPARE(perm.position->latitude, 58.0);
        // No minus zero, which would be written as one.
        const CountryKey greenwich = onlyKey("G<51.48/0.0>");
        QVERIFY(!std::signbit(greenwich.position->longitude));
    }

    void whatAKeyCarries()
    {
        const CountryKey all = onlyKey("=da0hq/p(14)[28]<52.52/-13.40>{af}~-1.5~");
        QCOMPARE(all.text, QStringLiteral("DA0HQ/P"));
        QVERIFY(all.exact);
        QCOMPARE(all.cqZone, std::optional(14));
        QCOMPARE(all.ituZone, std::optional(28));
        QCOMPARE(all.position->latitude, 52.52);
        QCOMPARE(all.position->longitude, 13.4);
        QCOMPARE(all.continent, QStringLiteral("AF"));
        QCOMPARE(all.offset, std::optional(-1.5));

        const CountryKey other = onlyKey("  \t7J1 ");
        QCOMPARE(other.text, QStringLiteral("7J1"));
        QVERIFY(!other.exact && !other.cqZone && !other.ituZone && !other.position && !other.offset);
        QVERIFY(other.continent.isEmpty());

        // In any order, and one without the others.
        const CountryKey turned = onlyKey("3D2{SA}[ 9 ](01)");
        QCOMPARE(turned.cqZone, std::optional(1));
        QCOMPARE(turned.ituZone, std::optional(9));
        QCOMPARE(turned.continent, QStringLiteral("SA"));
        QVERIFY(!turned.position && !turned.offset);
    }

    void formsOfText_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("CR LF") << sample().replace("\n", "\r\n");
        QTest::newRow("mark") << "\xEF\xBB\xBF" + sample();
        QTest::newRow("blanks") << "\n\n " + sample().replace(",", " ,\n\t ").replace(";", " ; \n\n");
        QTest::newRow("no line end at the end") << sample().trimmed();
        QTest::newRow("headers without blanks") << sample().replace(": ", ":").replace(":  ", ":");
        QTest::newRow("one line a record") << sample().replace(":\n", ":");
        QTest::newRow("remarks")
            << "# of countries; all, and more\n" +
                   sample().replace(":\n", ":\n# ADIF 246\n").replace(",\n", ",\n \t#,;\n") + "  # the end";
        QTest::newRow("Ctrl+Z at the end") << sample() + "\x1a\r\n";
        QTest::newRow("blank before the star's prefix") << sample().replace(":  *", ":  * ");
    }
    void formsOfText()
    {
        QFETCH(QByteArray, bytes);
        QCOMPARE(dump(readCountries(bytes)), dump(readCountries(sample())));
    }

    void namesInBothCodings()
    {
        const QString name = QStringLiteral("Cura\u00E7ao");
        const QByteArray rest = ": 9: 11: SA: 12.17: 69.00: 4.0: PJ2:\nPJ2;";
        QCOMPARE(readCountries(name.toUtf8() + rest).entities[0].name, name);
        QCOMPARE(readCountries(name.toLatin1() + rest).entities[0].name, name);
    }

    /// A file that breaks off is refused, wherever it does, unless all its records are complete.
    void everyTruncation()
    {
        const QByteArray whole = sample();
        const QByteArrayList records = whole.split(';');
        int accepted = 0;
        for (qsizetype size = 0; size < whole.size(); ++size) {
            const QByteArray cut = whole.first(size);
            const bool complete = cut.trimmed().endsWith(';');
            const QString why = refusal(cut);
            if (complete)
                QCOMPARE(why, QStringLiteral("read"));
            else if (why == QLatin1String("read"))
                QFAIL(qPrintable(QStringLiteral("read when cut at %1").arg(size)));
            if (complete) {
                ++accepted;
                QCOMPARE(readCountries(cut).entities.size(), cut.count(';'));
            } else if (!cut.trimmed().isEmpty()) {
                QVERIFY2(why.contains(QStringLiteral("строка %1").arg(cut.count('\n') + 1)) ||
                             why.contains(QStringLiteral("обрывается")) || cut.endsWith('\n'),
                         qPrintable(why));
            }
        }
        QCOMPARE(accepted, 2 * (records.size() - 1) - 1); // behind each ";" and behind its line end
    }

    void damages_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("said");
        const auto add = [](const char *name, const QByteArray &bytes, const char *said) {
            QTest::newRow(name) << bytes << QString::fromUtf8(said);
        };
        add("empty", "", "файл пуст");
        add("blanks", " \r\n \n", "файл пуст");
        add("only a mark", "\xEF\xBB\xBF", "файл пуст");
        add("XML", "\n<?xml version=\"1.0\"?><plist><dict/></plist>", "XML");
        add("zero byte", sample().replace("Fiji", QByteArray("Fi\0i", 4)), "строка 3: это не текст");
        add("archive", QByteArray("PK\x03\x04\x14\0\0\0", 8), "строка 1: это не текст");
        add("UTF-16",
            QByteArray("\xFF\xFE"
                       "F\0i\0",
                       6),
            "строка 1: это не текст");
        add("Ctrl+Z in the middle", sample().replace("Fiji", "Fi\x1aji"), "строка 3: это не текст");
        add("Ctrl+Z alone", "\x1a", "файл пуст");
        add("remarks alone", "# one\n  # two", "файл пуст");
        add("remark behind a key", kHeader + "\n3D2 # Suva\n;", "строка 2: неверный префикс «3D2 # Suva»");
        add("remark without an end", kHeader + "\n3D2,\n# 3D3;", "строка 3: файл обрывается");
        add("remark behind a comma", kHeader + "\n3D2, # Suva\n3D3;",
            "строка 2: неверный префикс «# Suva 3D3»");
        add("another list", "Call;Name;QTH\nUA3ABC;Oleg;Tula\n", "строка 1: это не запись страны");
        add("prose", "Dear OM, tnx fer QSO.\n73!", "строка 1: это не запись страны");
        add("a field less", "Fiji: 32: 56: OC: -17.78: -177.92: 3D2:\n3D2;",
            "строка 1: это не запись страны");
        add("a field more", "Fiji: 32: 56: OC: -17.78: -177.92: -12.0: 3D2: x:\n3D2;",
            "строка 1: неверный префикс");
        add("no name", " : 32: 56: OC: -17.78: -177.92: -12.0: 3D2:\n3D2;", "у страны нет названия");
        add("endless name", QByteArray(65, 'F') + kHeader + "3D2;", "слишком длинное название");
        add("zone no number", QByteArray(kHeader).replace(" 32", " 3x") + "3D2;",
            "зона CQ должна быть числом от 1 до 40, а не «3x»");
        add("zone empty", QByteArray(kHeader).replace(" 56", " ") + "3D2;",
            "зона ITU должна быть числом от 1 до 90, а не «»");
        add("zone nought", QByteArray(kHeader).replace(" 32", " 0") + "3D2;", "зона CQ");
        add("zone of none", QByteArray(kHeader).replace(" 32", " 41") + "3D2;", "зона CQ");
        add("zone of none, ITU", QByteArray(kHeader).replace(" 56", " 91") + "3D2;", "зона ITU");
        add("zone negative", QByteArray(kHeader).replace(" 32", " -3") + "3D2;", "зона CQ");
        add("zone of many digits", QByteArray(kHeader).replace(" 32", " 032") + "3D2;", "зона CQ");
        add("continent", QByteArray(kHeader).replace("OC", "XX") + "3D2;", "неизвестный континент «XX»");
        add("latitude", QByteArray(kHeader).replace("-17.78", "-90.01") + "3D2;",
            "широта «-90.01»: нужно число от -90 до 90");
        add("longitude", QByteArray(kHeader).replace("-177.92", "180.5") + "3D2;", "долгота «180.5»");
        add("decimal comma", QByteArray(kHeader).replace("-17.78", "-17,78") + "3D2;", "широта «-17,78»");
        add("two points", QByteArray(kHeader).replace("-17.78", "-17.7.8") + "3D2;", "широта");
        add("a point alone", QByteArray(kHeader).replace("-17.78", "-.") + "3D2;", "широта");
        add("exponent", QByteArray(kHeader).replace("-17.78", "1e1") + "3D2;", "широта");
        add("not a number", QByteArray(kHeader).replace("-17.78", "nan") + "3D2;", "широта");
        add("position empty", QByteArray(kHeader).replace("-17.78", "") + "3D2;", "широта");
        add("offset", QByteArray(kHeader).replace("-12.0", "-16") + "3D2;", "сдвиг времени");
        add("primary prefix empty", QByteArray(kHeader).replace("3D2", "") + "3D2;",
            "неверный основной префикс «»");
        add("primary prefix a star", QByteArray(kHeader).replace("3D2", "*") + "3D2;",
            "неверный основной префикс «*»");
        add("primary prefix a slash", QByteArray(kHeader).replace("3D2", "/") + "3D2;",
            "неверный основной префикс");
        add("primary prefix", QByteArray(kHeader).replace("3D2", "3D-2") + "3D2;",
            "неверный основной префикс «3D-2»");
        add("primary prefix long", QByteArray(kHeader).replace("3D2", "3D23D23D23D23") + "3D2;",
            "неверный основной префикс");
        add("primary prefix twice",
            kHeader + "\n3D2;\n" + QByteArray(kHeader).replace("3D2", "*3d2") + "3D3;",
            "строка 3: основной префикс 3d2 уже был в строке 1");
        add("no keys", kHeader + "\n;", "строка 2: между запятыми ничего нет");
        add("only the day of issue", kHeader + "\n=VER20260101;",
            "строка 1: у страны «Fiji» нет ни одного префикса");
        add("empty key", kHeader + "\n3D2,,3D3;", "строка 2: между запятыми ничего нет");
        add("comma at the end", kHeader + "\n3D2,\n;", "строка 3: между запятыми ничего нет");
        add("comma missing", kHeader + "\n3D2\n3D3;", "строка 2: неверный префикс «3D2 3D3»");
        add("semicolon missing", kHeader + "\n3D2\n" + QByteArray(kHeader).replace("3D2", "3D3") + "3D3;",
            "строка 2: неверный префикс");
        add("semicolon missing at the end", kHeader + "\n3D2,\n3D3\n",
            "строка 3: файл обрывается: запись страны «Fiji» (строка 1)");
        add("key with another sign", kHeader + "\n3D2,3D-3;", "строка 2: неверный префикс «3D-3»");
        add("key in Cyrillic", kHeader + QByteArray("\n3D2,\nУА3;"), "строка 3: неверный префикс «УА3»");
        add("key of a slash", kHeader + "\n/;", "неверный префикс «/»");
        add("key of a sign of equality", kHeader + "\n=;", "неверный префикс «=»");
        add("two signs of equality", kHeader + "\n==3D2;", "неверный префикс «==3D2»");
        add("blank in a key", kHeader + "\n3D 2;", "неверный префикс");
        add("long key", kHeader + "\n" + QByteArray(21, 'A') + ";", "неверный префикс");
        add("endless key", kHeader + "\n" + QByteArray(500, 'A') + ";", "слишком длинный префикс");
        add("endless blanks", kHeader + "\n3D2" + QByteArray(500, ' ') + ";", "слишком длинный префикс");
        add("zone of a key", kHeader + "\n3D2,\n\n3D3(41);", "строка 4: зона CQ");
        add("zone of a key empty", kHeader + "\n3D2();", "зона CQ");
        add("ITU zone of a key", kHeader + "\n3D2[x];", "зона ITU");
        add("bracket open", kHeader + "\n3D2(1;", "неверный префикс «3D2(1»");
        add("bracket of another", kHeader + "\n3D2(1];", "неверный префикс");
        add("bracket closed", kHeader + "\n3D2);", "неверный префикс");
        add("text behind", kHeader + "\n3D2(1)x;", "неверный префикс");
        add("offset open", kHeader + "\n3D2~;", "неверный префикс");
        add("zone twice", kHeader + "\n3D2(1)(2);", "дважды");
        add("position twice", kHeader + "\n3D2<1/1><1/1>;", "дважды");
        add("half a position", kHeader + "\n3D2<1>;", "нужны широта и долгота");
        add("position of three", kHeader + "\n3D2<1/2/3>;", "долгота «2/3»");
        add("position off the globe", kHeader + "\n3D2<91/2>;", "широта");
        add("continent of a key", kHeader + "\n3D2{E};", "неизвестный континент");
        add("too much", QByteArray(16 * 1024 * 1024 + 1, ' '), "файл больше 16 МБ");
        add("too many keys", kHeader + QByteArray("A,").repeated(300'001) + "A;", "слишком много префиксов");
    }
    void damages()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, said);
        const QString why = refusal(bytes);
        QVERIFY2(why.contains(said), qPrintable(why));
        QVERIFY(!why.endsWith(QLatin1Char('.')));
    }

    /// One bad key in the last record: nothing is read, and the line is named.
    void oneBadKeyRefusesTheFile()
    {
        const QString why = refusal(sample().replace("=HF0POL", "=HF0?OL"));
        QCOMPARE(why, QStringLiteral("строка %1: неверный префикс «=HF0?OL»").arg(sample().count('\n')));
    }

    /// Damaged in one place by any byte: read or refused with words, and never beyond its end.
    void everyByteReplaced()
    {
        const QByteArray whole = sample();
        int refused = 0;
        for (qsizetype at = 0; at < whole.size(); ++at)
            for (const char byte : QByteArray(":;,\n=<\xFF\0", 8)) {
                QByteArray bytes = whole;
                bytes[at] = byte;
                const QString why = refusal(bytes);
                QVERIFY(!why.isEmpty());
                refused += int(why != QLatin1String("read"));
            }
        QVERIFY(refused > whole.size());
    }

    void files()
    {
        QTemporaryDir folder;
        const auto why = [](const QString &path) {
            try {
                (void)foreign::readCountriesFile(path);
            } catch (const foreign::Error &error) {
                return error.text();
            }
            return QStringLiteral("read");
        };
        QCOMPARE(why(QStringLiteral(TEST_DATA "/country/sample.cty")), QStringLiteral("read"));
        QCOMPARE(why(folder.path()), QStringLiteral("это папка"));
        QCOMPARE(why(folder.filePath(QStringLiteral("none"))), QStringLiteral("файла нет"));
        QFile large(folder.filePath(QStringLiteral("large")));
        QVERIFY(large.open(QIODevice::WriteOnly));
        QVERIFY(large.resize(1LL << 31));
        large.close();
        QCOMPARE(why(large.fileName()), QStringLiteral("файл больше 16 МБ"));
    }
};

QTEST_APPLESS_MAIN(CountryFileTest)
#include "countryfile.moc"
