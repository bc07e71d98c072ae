// Reading ADIF of every writer: each fixture with what stands in it, and files mutilated at random.
#include "foreign/adifreader.h"

#include "foreign/error.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <random>

using foreign::AdifFault;
using foreign::AdifRecord;
using foreign::AdifText;

namespace {

const QString kFixtures = QStringLiteral(TEST_DATA "/adif/");

struct Outcome {
    QStringList contacts; ///< fields of the whole records, joined by tabs
    QList<qint64> lines;
    QList<AdifFault> faults;
    QList<qint64> faultLines;
};

QString escaped(QString value)
{
    return value.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
        .replace(QLatin1Char('\t'), QLatin1String("\\t"))
        .replace(QLatin1Char('\r'), QLatin1String("\\r"))
        .replace(QLatin1Char('\n'), QLatin1String("\\n"));
}

QString row(const AdifRecord &record)
{
    QStringList values;
    for (const char *name : {"CALL", "QSO_DATE", "TIME_ON", "FREQ", "BAND", "MODE", "RST_SENT", "RST_RCVD"})
        values.append(escaped(record.text(name)));
    for (const char *name : {"QTH", "NAME"}) {
        const QString national = record.text(name + QByteArray("_INTL"));
        values.append(escaped(national.isEmpty() ? record.text(name) : national));
    }
    return values.join(QLatin1Char('\t'));
}

Outcome readAll(const AdifText &text)
{
    Outcome outcome;
    const auto source = foreign::openAdif(text);
    AdifRecord record;
    qint64 before = 0;
    while (source->next(record)) {
        if (record.fault == AdifFault::None) {
            outcome.contacts.append(row(record));
            outcome.lines.append(record.line);
        } else {
            outcome.faults.append(record.fault);
            outcome.faultLines.append(record.line);
        }
        if (record.line < before || source->position() > source->size())
            qFatal("line %lld after %lld", static_cast<long long>(record.line),
                   static_cast<long long>(before));
        before = record.line;
    }
    return outcome;
}

Outcome read(const QByteArray &bytes)
{
    return readAll(foreign::prepareAdif(bytes));
}

QByteArray fixture(const QString &name)
{
    QFile file(kFixtures + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s cannot be read", qPrintable(name));
    return file.readAll();
}

/// One field of the only record.
QString only(const QByteArray &bytes, const char *name)
{
    const AdifText text = foreign::prepareAdif(bytes);
    const auto source = foreign::openAdif(text);
    AdifRecord record;
    if (!source->next(record) || record.fault != AdifFault::None)
        return QStringLiteral("no record");
    const QString value = record.text(name);
    return source->next(record) ? QStringLiteral("another record") : value;
}

} // namespace

class AdifReaderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fixtures_data()
    {
        QTest::addColumn<QString>("name");
        const QStringList names = QDir(kFixtures).entryList({QStringLiteral("*.expected.tsv")});
        QVERIFY(names.size() >= 35);
        for (const QString &name : names)
            QTest::newRow(qPrintable(name)) << name.chopped(13);
    }
    void fixtures()
    {
        QFETCH(QString, name);
        QStringList expected = QString::fromUtf8(fixture(name + QStringLiteral(".expected.tsv")))
                                   .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        expected.removeFirst();
        const Outcome outcome = readAll(foreign::loadAdif(kFixtures + name));
        QCOMPARE(outcome.contacts, expected);
        QVERIFY(outcome.faults.isEmpty());
    }

    void brokenFixtures_data()
    {
        QTest::addColumn<QStringList>("calls");
        QTest::addColumn<QList<AdifFault>>("faults");
        using Faults = QList<AdifFault>;
        const QStringList three = {"UA1ABC", "RA3XYZ/P", "DL1ABC"};
        QTest::newRow("no_final_eor.adi") << three + QStringList{"UT1AAA"} << Faults{};
        QTest::newRow("cut_in_tag.adi") << three << Faults{AdifFault::CutOff};
        QTest::newRow("len_too_long.adi") << QStringList{"UA1ABC", "DL1ABC"} << Faults{};
        QTest::newRow("len_past_eof.adi") << QStringList{"UA1ABC"} << Faults{AdifFault::LengthTooBig};
        QTest::newRow("len_huge_number.adi")
            << QStringList{"DL1ABC"}
            << Faults{AdifFault::LengthTooBig, AdifFault::Empty, AdifFault::LengthTooBig};
        QTest::newRow("no_closing_bracket.adi") << QStringList{"DL1ABC"} << Faults{AdifFault::BadCall};
        QTest::newRow("empty_records.adi")
            << QStringList{"", "", "DL1ABC"} << Faults{AdifFault::Empty, AdifFault::Empty, AdifFault::Empty};
        QTest::newRow("nul_bytes.adi") << three + QStringList{"UT1AAA"} << Faults{};
        QTest::newRow("sample.adx") << QStringList{"UA1ABC"} << Faults{};
        QTest::newRow("cabrillo.adi") << QStringList{} << Faults{};
        QTest::newRow("binary_junk.adi") << QStringList{} << Faults{};
    }
    void brokenFixtures()
    {
        QFETCH(QStringList, calls);
        QFETCH(QList<AdifFault>, faults);
        const Outcome outcome = read(fixture(QLatin1String(QTest::currentDataTag())));
        QStringList found;
        for (const QString &contact : outcome.contacts)
            found.append(contact.section(QLatin1Char('\t'), 0, 0));
        QCOMPARE(found, calls);
        QCOMPARE(outcome.faults, faults);
    }

    void lengthTooLongKeepsTheOtherFields()
    {
        const QString first = read(fixture(QStringLiteral("len_too_long.adi"))).contacts.at(0);
        QCOMPARE(first, QStringLiteral("UA1ABC\t\t\t\t20M\tCW\t\t\t\tSergey"));
    }

    void junkIsHarmless()
    {
        const Outcome outcome = read(fixture(QStringLiteral("junk_with_tags.adi")));
        QCOMPARE(outcome.contacts.size() + outcome.faults.size(), 3);
    }

    void everyFixtureSaysWhetherItIsAdif()
    {
        for (const char *name : {"cabrillo.adi", "binary_junk.adi", "empty.adi", "blank_lines.adi"})
            QVERIFY2(!foreign::openAdif(foreign::prepareAdif(fixture(QLatin1String(name))))->isAdif(), name);
        for (const char *name : {"header_only.adi", "own_layout.adi"}) {
            const AdifText text = foreign::prepareAdif(fixture(QLatin1String(name)));
            QVERIFY2(foreign::openAdif(text)->isAdif(), name);
        }
    }

    void lines()
    {
        const Outcome outcome =
            read("<eoh>\r\n\r\n<call:1>A\r\n<band:3>20M\r\n<eor>\r\n<call:1>B<eor> <call:1>C<eor>\n"
                 "\n<call:1>D<eor>\r<call:1>E<eor>");
        QCOMPARE(outcome.lines, QList<qint64>({3, 6, 6, 8, 9}));
        QCOMPARE(read(fixture(QStringLiteral("cut_in_tag.adi"))).faultLines, QList<qint64>({5}));
    }

    void lengths_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("name");
        const QString cyrillic = QStringLiteral("Пётр Иванович");
        QTest::newRow("bytes") << "<call:1>A <name:25>" + cyrillic.toUtf8() + " <band:3>20M<eor>" << cyrillic;
        QTest::newRow("characters") << "<call:1>A <name:13>" + cyrillic.toUtf8() + " <band:3>20M<eor>"
                                    << cyrillic;
        QTest::newRow("characters, last field")
            << "<call:1>A <name:13>" + cyrillic.toUtf8() + "<eor>" << cyrillic;
        QTest::newRow("CR LF as written")
            << QByteArray("<call:1>A <name:6>ab\r\ncd<band:3>20M<eor>") << QStringLiteral("ab\r\ncd");
        QTest::newRow("CR LF counted as one")
            << QByteArray("<call:1>A <name:5>ab\r\ncd<band:3>20M<eor>") << QStringLiteral("ab\r\ncd");
        QTest::newRow("line ends made shorter since")
            << QByteArray("<call:1>A <name:6>ab\ncd<band:3>20M<eor>") << QStringLiteral("ab\ncd");
        QTest::newRow("shorter line ends, characters")
            << "<call:1>A <name:6>" + QStringLiteral("аб\r\nвг").toUtf8() + "<band:3>20M<eor>"
            << QStringLiteral("аб\r\nвг");
        QTest::newRow("too short") << QByteArray("<call:1>A <name:2>Sergey <band:3>20M<eor>")
                                   << QStringLiteral("Se");
        QTest::newRow("too short, not half a letter")
            << "<call:1>A <name:3>" + QStringLiteral("Сергей").toUtf8() + "x<eor>" << QStringLiteral("Се");
        QTest::newRow("too long") << QByteArray("<call:1>A <name:8>Serg<eor>") << QStringLiteral("Serg");
        QTest::newRow("blanks at the ends")
            << QByteArray("<call:1>A <name:8>  Serg  <eor>") << QStringLiteral("Serg");
    }
    void lengths()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, name);
        QCOMPARE(only(bytes, "NAME"), name);
    }

    void surrogatePairs()
    {
        const QString odd = QStringLiteral("\U0001F600 ok");
        QCOMPARE(only("<call:1>A <name:4>" + odd.toUtf8() + "<eor>", "NAME"), odd); // characters, not halves
    }

    void headers_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::newRow("none") << QByteArray();
        QTest::newRow("text") << QByteArray("A log <of mine>, <b>old</b>\n<eoh>\n");
        QTest::newRow("wrong length") << QByteArray("<adif_ver:4>1.0<eoh>\r\n");
        QTest::newRow("length far too big") << QByteArray("<adif_ver:99>1.0<eoh>\r\n");
        QTest::newRow("length past the end") << QByteArray("<adif_ver:9999>1.0<EOH>\r\n");
        QTest::newRow("upper case, blanks") << QByteArray("x <ADIF_VER:5>3.1.4 < EOH >");
        QTest::newRow("user fields") << QByteArray("<USERDEF1:19:E>SweaterSize,{S,M,L}\n<EOH>\n");
    }
    void headers()
    {
        QFETCH(QByteArray, header);
        QCOMPARE(only(header + "<call:6>DL1ABC <band:3>20M<eor>\r\n", "CALL"), QStringLiteral("DL1ABC"));
    }

    void missingEndMarks()
    {
        // One contact a line: a CALL that begins a line begins a contact.
        Outcome outcome = read("<call:1>A <band:3>20M\r\n<call:1>B <band:3>40M<eor>\r\n <CALL:1>C");
        QCOMPARE(outcome.contacts.size(), 3);
        QCOMPARE(outcome.contacts.at(1), QStringLiteral("B\t\t\t\t40M\t\t\t\t\t"));
        outcome = read("<call:99999>A\n<call:1>B<eor>");
        QCOMPARE(outcome.faults, QList<AdifFault>({AdifFault::LengthTooBig}));
        QCOMPARE(outcome.contacts.size(), 1);
        outcome = read("<CALL:1\n<CALL:1>B<EOR>\n<call:1>C<eor><call:");
        QCOMPARE(outcome.contacts.size(), 2);
        QCOMPARE(outcome.faults, QList<AdifFault>({AdifFault::BadCall, AdifFault::BadCall}));
        QCOMPARE(outcome.faultLines, QList<qint64>({1, 3}));
        // On one line it is a field said twice.
        QCOMPARE(only("<call:1>A <call:1>B<eor>", "CALL"), QStringLiteral("A"));
    }

    void rawText()
    {
        const AdifText text = foreign::prepareAdif("<eoh>\n<call:1>A<eor>\n <call:1>B <eor> x");
        const auto source = foreign::openAdif(text);
        AdifRecord record;
        QVERIFY(source->next(record));
        QCOMPARE(record.raw.toByteArray(), QByteArray("<call:1>A<eor>"));
        QVERIFY(source->next(record));
        QCOMPARE(record.raw.toByteArray(), QByteArray("<call:1>B <eor>"));
        QVERIFY(!source->next(record));
        QCOMPARE(source->position(), source->size());
    }

    void xmlForm()
    {
        const QByteArray head =
            "<?xml version=\"1.0\"?>\n<ADX><HEADER><ADIF_VER>3.1.4</ADIF_VER></HEADER>\n<RECORDS>\n";
        const Outcome outcome =
            read(head + "<RECORD><call>DL1ABC</call><NAME>Hans &amp; Co</NAME><NAME_INTL>" +
                 QStringLiteral("Ганс").toUtf8() +
                 "</NAME_INTL></RECORD>\n<RECORD><APP PROGRAMID=\"X\" "
                 "FIELDNAME=\"QTH\">Riga</APP><CALL>YL1A</CALL>"
                 "</RECORD><RECORD/></RECORDS></ADX>");
        QCOMPARE(outcome.contacts,
                 QStringList({QStringLiteral("DL1ABC\t\t\t\t\t\t\t\t\tГанс"), "YL1A\t\t\t\t\t\t\t\tRiga\t"}));
        QCOMPARE(outcome.faults, QList<AdifFault>({AdifFault::Empty}));
        QCOMPARE(outcome.lines, QList<qint64>({4, 5}));
        const Outcome broken = read(head + "<RECORD><CALL>A</CALL></RECORD><RECORD><CALL>B</CA");
        QCOMPARE(broken.contacts.size(), 1);
        QCOMPARE(broken.faults, QList<AdifFault>({AdifFault::BadXml}));
        const Outcome between = read(head + "<RECORD><CALL>A</CALL></RECORD> <<< ");
        QCOMPARE(between.contacts.size(), 1);
        QCOMPARE(between.faults, QList<AdifFault>({AdifFault::BadXml}));
    }

    void filesThatCannotBeRead()
    {
        for (const QString &path : {QStringLiteral("/nonexistent/x.adi"), QDir::tempPath()}) {
            QString told;
            try {
                (void)foreign::loadAdif(path);
            } catch (const foreign::Error &error) {
                told = error.text();
            }
            QVERIFY2(!told.isEmpty(), qPrintable(path));
        }
    }

    void mutilated()
    {
        // However a file is damaged, reading ends, and a good record after the damage is still found.
        std::mt19937 random(20261121);
        const QByteArray last = "\r\n<eor>\r\n<call:6>ZZ9ZZZ<eor>\r\n";
        for (const char *name : {"v3_utf8_len_bytes.adi", "own_layout.adi", "lotw_report.adi", "cp866.adi"}) {
            const QByteArray whole = fixture(QLatin1String(name));
            for (int round = 0; round < 400; ++round) {
                QByteArray bytes = whole;
                for (int i = 0; i < 1 + round % 5; ++i) {
                    const auto at = static_cast<qsizetype>(random() % static_cast<unsigned>(bytes.size()));
                    switch (random() % 4) {
                    case 0:
                        bytes[at] = static_cast<char>(random());
                        break;
                    case 1:
                        bytes.remove(at, 1 + static_cast<qsizetype>(random() % 8));
                        break;
                    case 2:
                        bytes.insert(at, "<:>9"[random() % 4]);
                        break;
                    default:
                        bytes.insert(at, bytes.mid(static_cast<qsizetype>(random() % 100), 30));
                        break;
                    }
                }
                const Outcome outcome = read(bytes + last);
                QVERIFY(!outcome.contacts.isEmpty());
                QCOMPARE(outcome.contacts.back(), QStringLiteral("ZZ9ZZZ\t\t\t\t\t\t\t\t\t"));
            }
        }
    }
};

QTEST_GUILESS_MAIN(AdifReaderTest)
#include "adifreader.moc"
