// Import of ADIF files into the log: both readers, what is stored and what is reported.
#include "interchange/adifimport.h"

#include "interchange/adifline.h"
#include "interchange/emergency.h"
#include "support/importing.h"

#include <QDir>
#include <QStringConverter>
#include <QTest>

using interchange::AdifImport;
using interchange::AdifReaderKind;
using interchange::ImportResult;
using interchange::SkipReason;

using namespace testsupport;

class AdifImportTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The program's own layout.

    void exportLine()
    {
        Installation in;
        const ImportResult result =
            importBytes(in, kHeader + "<call:6>UA1ABC <rst_sent:3>599 <rst_rcvd:3>579 <mode:2>CW <band:3>20M "
                                      "<qso_date:8:d>20020305 <time_on:4>1407<eor>\r\n");
        QVERIFY(result.reader == AdifReaderKind::OwnLines);
        QCOMPARE(result.records, 2); // the header counts
        QCOMPARE(result.added, 1);
        QCOMPARE(result.withoutContact, 1);
        QVERIFY(result.skipped.empty());
        QCOMPARE(contacts(in), QStringList({"UA1ABC|05.03.02|14:07|14|599|579|CW||"}));
        QCOMPARE(column(in, "PRF||CONTR||mult||QSLP||QSLVIA"), QStringList({"adi"}));
    }

    void lines_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("row");
        const auto add = [](const char *name, const QString &line, const QString &row) {
            QTest::newRow(name) << line << row;
        };
        add("unknown band", "<call:6>UA1ABC <band:3>30M<eor>", "UA1ABC|||30M|||||");
        add("band in lower case", "<call:6>UA1ABC <band:3>20m<eor>", "UA1ABC|||20m|||||");
        add("empty band", "<call:6>UA1ABC <freq:3>7.0 <band:0><eor>", "UA1ABC||||||||");
        for (const auto &[band, label] : {std::pair{"160M", "1,8"},
                                          {"80M", "3,5"},
                                          {"40M", "7"},
                                          {"20M", "14"},
                                          {"15M", "21"},
                                          {"10M", "28"}})
            QTest::addRow("%s", band)
                << QStringLiteral("<call:1>A <band:%1>%2<eor>").arg(strlen(band)).arg(QLatin1String(band))
                << QStringLiteral("A|||%1|||||").arg(QLatin1String(label));
        add("frequency cut", "<call:6>UA1ABC <freq:6>14.025<eor>", "UA1ABC|||14.02|||||");
        add("short frequency", "<call:6>UA1ABC <freq:5>7.005<eor>", "UA1ABC|||7.005|||||");
        add("band replaces frequency", "<call:6>UA1ABC <band:3>40M <freq:6>14.025<eor>", "UA1ABC|||7|||||");
        add("seconds for minutes", "<call:6>UA1ABC <time_on:6>140730<eor>", "UA1ABC||14:30||||||");
        add("three digits of time", "<call:6>UA1ABC <time_on:3>907<eor>", "UA1ABC||90:07||||||");
        add("no such day", "<call:6>UA1ABC <qso_date:8:d>20020230 <time_on:4>1407<eor>",
            "UA1ABC||14:07||||||");
        add("leap day", "<call:6>UA1ABC <qso_date:8:d>20000229<eor>", "UA1ABC|29.02.00|||||||");
        add("short date", "<call:6>UA1ABC <qso_date:4:d>2002<eor>", "UA1ABC||||||||");
        add("call cut", "<call:15>ABCDEFGHIJKLMNO<eor>", "ABCDEFGHIJKLMN||||||||");
        add("call of fourteen", "<call:14>ABCDEFGHIJKLMN<eor>", "ABCDEFGHIJKLMN||||||||");
        add("reports cut", "<call:1>A <rst_sent:15>123456789012345 <rst_rcvd:14>12345678901234<eor>",
            "A||||12345678901234|12345678901234|||");
        add("mode cut", "<call:1>A <mode:6>OLIVIA<eor>", "A||||||OLIVI||");
        add("town and name cut", "<call:1>A <qth:16>ABCDEFGHIJKLMNOP <name:16>ABCDEFGHIJKLMNOP<eor>",
            "A|||||||ABCDEFGHIJKLMNO|ABCDEFGHIJKLMNO");
        add("empty call", "<call:0> <band:3>20M<eor>", "|||14|||||");
        add("length within the value", "<call:3>UA1ABC <name:2>Sergey<eor>", "UA1||||||||Se");
        add("length over the next tag", "<call:1>A <name:12>Sergey <band:3>20M<eor>",
            "A|||14|||||Sergey <band");
        add("length behind the end", "<call:1>A <band:3>20M <name:99>Sergey<eor>", "A|||14|||||Sergey<eor>");
        add("a value said twice", "<call:1>A <call:1>B <band:3>20M <band:3>40M<eor>", "A|||14|||||");
        add("the case of the call stays", "<call:5>ua1ab<eor>", "ua1ab||||||||");
        add("Cyrillic", "<call:1>A <qth:6>Москва <name:6>Сергей<eor>", "A|||||||Москва|Сергей");
        add("apostrophes", "<call:1>A <name:6>O'Neil<eor>", "A||||||||O'Neil");
    }
    void lines()
    {
        QFETCH(QString, line);
        QFETCH(QString, row);
        Installation in;
        const ImportResult result = importBytes(in, kHeader + line.toUtf8() + "\r\n");
        QVERIFY(result.reader == AdifReaderKind::OwnLines);
        QCOMPARE(contacts(in), QStringList({row}));
        QCOMPARE(result.added, 1);
        QVERIFY(adds(result));
    }

    void lengthsInBytes()
    {
        Installation in;
        QByteArray line = "<call:1>A <qth:12>" + QStringLiteral("Москва").toUtf8() + " <name:12>" +
                          QStringLiteral("Сергей").toUtf8() + "<eor>\r\n";
        const ImportResult result = importBytes(in, kHeader + line);
        QVERIFY(result.reader == AdifReaderKind::OwnLines);
        QCOMPARE(contacts(in), QStringList({QStringLiteral("A|||||||Москва|Сергей")}));
    }

    void brokenLineEndsTheImport_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("no bracket") << QByteArray("<call:6 UA1ABC <band:3>20M<eor>");
        QTest::newRow("nothing but its beginning") << QByteArray("<call:6");
        QTest::newRow("no bracket behind another tag") << QByteArray("<call:6>UA1ABC <band:3 20M<eor>");
        QTest::newRow("no type of the date") << QByteArray("<call:6>UA1ABC <qso_date:8>20020305<eor>");
        QTest::newRow("negative length") << QByteArray("<call:-6>UA1ABC <band:3>20M<eor>");
        QTest::newRow("no length") << QByteArray("<call:>UA1ABC <band:3>20M<eor>");
        QTest::newRow("letters as length") << QByteArray("<call:6>UA1ABC <band:x>20M<eor>");
        QTest::newRow("length beyond numbers") << QByteArray("<call:6>UA1ABC <band:99999999999>20M<eor>");
    }
    void brokenLineEndsTheImport()
    {
        QFETCH(QByteArray, line);
        Installation in;
        const ImportResult result =
            importBytes(in, ownLines(2) + line + "\r\n" + ownLines(3).mid(kHeader.size()));
        QVERIFY(result.reader == AdifReaderKind::OwnLines);
        QCOMPARE(result.added, 2);
        QCOMPARE(result.records, 7);
        QCOMPARE(result.withoutContact, 1);
        QCOMPARE(result.skipped.size(), std::size_t(2));
        QVERIFY(result.skipped[0].reason == SkipReason::BrokenLine);
        QCOMPARE(result.skipped[0].line, 4);
        QCOMPARE(result.skipped[0].records, 1);
        QVERIFY(result.skipped[1].reason == SkipReason::NotRead);
        QCOMPARE(result.skipped[1].line, 5);
        QCOMPARE(result.skipped[1].records, 3);
        QVERIFY(adds(result));
        QCOMPARE(contacts(in).size(), 2);
        QVERIFY(!interchange::skipText(SkipReason::BrokenLine).isEmpty());
    }

    void blankLinesAndOldEndMark()
    {
        Installation in;
        const ImportResult result = importBytes(in, "\r\n" + ownLines(2) + "\r\n\x1a");
        QVERIFY(result.reader == AdifReaderKind::OwnLines);
        QCOMPARE(result.records, 5); // header, two blank lines, two contacts
        QCOMPARE(result.added, 2);
        QVERIFY(adds(result));
    }

    void operatorMark()
    {
        Installation in;
        QDir::setCurrent(in.folder());
        (void)put(in, ownLines(1), QStringLiteral("abc"));
        (void)put(in, ownLines(1), QStringLiteral("LOG_ADIF0"));
        (void)importFile(in, QStringLiteral("abc"));
        (void)importFile(in, QStringLiteral("LOG_ADIF0"));
        QDir::setCurrent(QDir::tempPath());
        QCOMPARE(column(in, "PRF"), QStringList({"", "IF0"}));
    }

    // Which reader.

    void choice_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("own");
        const QByteArray line = "<call:6>UA1ABC <band:3>20M <qso_date:8:d>20020305<eor>\r\n";
        QTest::newRow("own") << kHeader + line << true;
        QTest::newRow("no header") << line << true;
        QTest::newRow("a remark between contacts") << kHeader + line + "contest\r\n" + line << true;
        QTest::newRow("a remark with a call") << kHeader + line + "call: again\r\n" + line << false;
        QTest::newRow("a remark within a contact") << kHeader + "<call:6>UA1ABC\r\nnoise\r\n" + line << false;
        QTest::newRow("remarks alone") << QByteArray("one\r\ntwo\r\n") << false;
        QTest::newRow("header with its right length") << "<adif_ver:3>1.0<eoh>\r\n" + line << true;
        QTest::newRow("no dates at all") << kHeader + "<call:6>UA1ABC <band:3>20M<eor>\r\n" << true;
        QTest::newRow("header only") << kHeader << true;
        QTest::newRow("empty") << QByteArray() << false;
        QTest::newRow("blank") << QByteArray("\r\n \r\n") << false;
        QTest::newRow("call is not the first tag") << kHeader + "<band:3>20M <call:6>UA1ABC<eor>\r\n"
                                                   << false;
        QTest::newRow("one such line among others")
            << kHeader + line + "<band:3>20M <call:6>UA1ABC<eor>\r\n" + line << false;
        QTest::newRow("blank before the first tag") << kHeader + " " + line << false;
        QTest::newRow("over several lines") << kHeader + "<call:6>UA1ABC\r\n<band:3>20M\r\n<eor>\r\n"
                                            << false;
        QTest::newRow("several on a line") << kHeader + line.trimmed() + line << false;
        QTest::newRow("capitals") << line.toUpper() << false;
        QTest::newRow("one tag in capitals") << kHeader + "<call:6>UA1ABC <Band:3>20M<eor>\r\n" << false;
        QTest::newRow("EOR in capitals") << kHeader + "<call:6>UA1ABC <band:3>20M<EOR>\r\n" << false;
        QTest::newRow("no type in any date") << kHeader + "<call:6>UA1ABC <qso_date:8>20020305<eor>\r\n"
                                             << false;
        QTest::newRow("type elsewhere") << kHeader + "<call:6>UA1ABC <time_on:4:t>1407<eor>\r\n" << false;
        QTest::newRow("field that the line reader would lose")
            << kHeader + "<call:6>UA1ABC <qsl_via:5>DL1XX<eor>\r\n"
            << false;
        QTest::newRow("the same, empty") << kHeader + "<call:6>UA1ABC <qsl_via:0><eor>\r\n" << true;
        QTest::newRow("later version") << "<adif_ver:5>3.1.4<eoh>\r\n" + line << false;
        QTest::newRow("text before the header") << "My log\r\n" + kHeader + line << false;
        QTest::newRow("byte order mark") << "\xEF\xBB\xBF" + kHeader + line << false;
        QTest::newRow("no end mark") << kHeader + line + "<call:6>UA1ABC <band:3>20M" << false;
        QTest::newRow("a line before the last cut off") << kHeader + line + "<call:6\r\n" + line << true;
        QTest::newRow("damaged tag") << kHeader + line + "<call:6 UA1ABC<eor>\r\n" << true;
    }
    void choice()
    {
        QFETCH(QByteArray, bytes);
        QTEST(interchange::isOwnLayout(foreign::prepareAdif(bytes)), "own");
    }

    void emergencyFile()
    {
        interchange::EmergencyContact contact{QStringLiteral("UA3ABC"),   QStringLiteral("05.03.26"),
                                              QStringLiteral("14:07:09"), QStringLiteral("1200"),
                                              QStringLiteral("59"),       QStringLiteral("58"),
                                              QStringLiteral("SSB"),      QStringLiteral("Тула"),
                                              QStringLiteral("Олег"),     {}};
        const QString expected = QStringLiteral("UA3ABC|05.03.26|14:07|1200|59|58|SSB|Тула|Олег");
        Installation in;
        ImportResult result =
            importBytes(in, kHeader + interchange::emergencyLine(contact).toUtf8() + "\r\n");
        QVERIFY(result.reader == AdifReaderKind::OwnLines);
        contact.QSLVIA = QStringLiteral("DL1XX"); // the line reader does not know it
        result = importBytes(in, kHeader + interchange::emergencyLine(contact).toUtf8() + "\r\n");
        QVERIFY(result.reader == AdifReaderKind::Full);
        QCOMPARE(contacts(in), QStringList({expected, expected}));
        QCOMPARE(column(in, "QSLVIA||CONTR"), QStringList({"", "DL1XXRUSSIAN"}));
        // Every band of the window comes back as itself.
        for (const char *band :
             {"1,8", "3,5", "7", "14", "21", "28", "10", "18", "24", "144", "430", "1200"}) {
            Installation other;
            contact.bband = QLatin1String(band);
            (void)importBytes(other, interchange::emergencyLine(contact).toUtf8());
            QCOMPARE(column(other, "bband"), QStringList({contact.bband}));
        }
    }

    // The full reader.

    void fixtures_data()
    {
        QTest::addColumn<bool>("own");
        QTest::addColumn<qint64>("records");
        QTest::addColumn<qint64>("added");
        const auto own = [](const char *name, qint64 records, qint64 added) {
            QTest::newRow(name) << true << records << added;
        };
        const auto full = [](const char *name, qint64 records, qint64 added) {
            QTest::newRow(name) << false << records << added;
        };
        own("own_layout.adi", 5, 4);
        own("own_layout_lf.adi", 5, 4);
        own("own_layout_noeol.adi", 5, 4);
        own("cr_only.adi", 5, 4);
        own("ctrl_z.adi", 5, 4);
        own("no_header.adi", 4, 4);
        own("nul_bytes.adi", 5, 4);
        own("header_only.adi", 1, 0);
        own("duplicate_fields.adi", 4, 3);
        own("no_closing_bracket.adi", 3, 0);
        own("len_too_short.adi", 3, 2);
        own("len_too_long.adi", 3, 2);
        full("junk_with_tags.adi", 3, 1);
        full("one_physical_line.adi", 4, 4);
        full("upper_case_tags.adi", 4, 4);
        full("mixed_case_types.adi", 4, 4);
        full("v2_multiline_crlf.adi", 4, 4);
        full("v2_multiline_indented.adi", 4, 4);
        full("v3_utf8_len_bytes.adi", 4, 4);
        full("v3_utf8_len_chars.adi", 4, 4);
        full("v3_intl_fields.adi", 4, 4);
        full("cp1251.adi", 4, 4);
        full("cp866.adi", 4, 4);
        full("utf8_bom.adi", 4, 4);
        full("utf16le_bom.adi", 4, 4);
        full("lotw_report.adi", 2, 2);
        full("contest_oneline.adi", 4, 4);
        full("no_type_indicator.adi", 4, 4);
        full("tag_suffix_traps.adi", 1, 1);
        full("angle_brackets_in_values.adi", 1, 1);
        full("bands.adi", 12, 12);
        full("dates_times.adi", 12, 12);
        full("header_no_eoh.adi", 4, 4);
        full("empty.adi", 0, 0);
        full("blank_lines.adi", 0, 0);
        full("no_final_eor.adi", 4, 4);
        full("cut_in_tag.adi", 4, 3);
        full("len_past_eof.adi", 2, 1);
        full("len_huge_number.adi", 4, 1);
        full("len_missing.adi", 2, 2);
        full("len_with_blanks.adi", 1, 1);
        full("empty_records.adi", 6, 1);
        full("binary_junk.adi", 0, 0);
        full("huge_field.adi", 2, 2);
        full("quotes.adi", 1, 1);
        full("sample.adx", 1, 1);
        full("cabrillo.adi", 0, 0);
    }
    void fixtures()
    {
        QFETCH(bool, own);
        QFETCH(qint64, records);
        QFETCH(qint64, added);
        Installation in;
        const ImportResult result = importFile(in, kFixtures + QLatin1String(QTest::currentDataTag()));
        QCOMPARE(result.reader == AdifReaderKind::OwnLines, own);
        QCOMPARE(result.records, records);
        QCOMPARE(result.added, added);
        QVERIFY(adds(result));
        QVERIFY(!result.failure && !result.stopped);
        QCOMPARE(contacts(in).size(), added);
        QCOMPARE(result.copy.isEmpty(), added == 0); // nothing to add: nothing to copy
        // The two readers and every form of the same four contacts agree.
        if (records == 4 && added == 4 && !own) {
            const QStringList rows = contacts(in);
            QVERIFY(rows.at(0).startsWith(QLatin1String("UA1ABC|05.03.02|14:07|14|599|579|CW|")));
            QVERIFY(rows.at(1).startsWith(QLatin1String("RA3XYZ/P|31.12.99|23:59|3,5|59|57|SSB|")));
            QVERIFY(rows.at(2).startsWith(QLatin1String("DL1ABC|29.02.00|00:00|21|599|599|RTTY|")));
            QVERIFY(rows.at(3).startsWith(QLatin1String("UT1AAA|01.07.10|09:05|28|59|59|FM|")));
            QCOMPARE(column(in, "CONTR"), QStringList({"RUSSIAN", "RUSSIAN", "GERMANY", "UKRAINE"}));
            QCOMPARE(column(in, "PRF"), QStringList({"adi", "adi", "adi", "adi"}));
        }
    }

    void namesInEveryCoding_data()
    {
        QTest::addColumn<QString>("coding");
        QTest::newRow("v3_utf8_len_bytes.adi") << "UTF-8";
        QTest::newRow("v3_utf8_len_chars.adi") << "UTF-8";
        QTest::newRow("v3_intl_fields.adi") << "UTF-8";
        QTest::newRow("utf8_bom.adi") << "UTF-8";
        QTest::newRow("cp1251.adi") << "Windows-1251";
        QTest::newRow("cp866.adi") << "IBM866";
        QTest::newRow("koi8") << "KOI8-R";
    }
    void namesInEveryCoding()
    {
        QFETCH(QString, coding);
        Installation in;
        QString path = kFixtures + QLatin1String(QTest::currentDataTag());
        if (coding == QLatin1String("KOI8-R")) {
            QFile file(kFixtures + QStringLiteral("cp866.adi")); // letters that KOI8-R has
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QString text = foreign::decode(file.readAll(), foreign::TextCoding::Ibm866);
            path = put(in, QStringEncoder("KOI8-R")(text));
        }
        AdifImport import(in.databases, in.file(QLatin1String(kLog)), path);
        QCOMPARE(import.coding(), coding);
        QCOMPARE(import.run(goOn).coding, coding);
        QStringList names = column(in, "QTH||' '||NNAME");
        const QString german = names.takeAt(2);
        QVERIFY(german == QStringLiteral("Köln Hans-Jürgen") ||
                german.startsWith(QLatin1String("Koln Hans")));
        const bool few = coding == QLatin1String("IBM866") || coding == QLatin1String("KOI8-R");
        QCOMPARE(names, QStringList({QStringLiteral("Москва Сергей"), QStringLiteral("Калуга Пётр"),
                                     few ? QStringLiteral("Одесса Анна") : QStringLiteral("Київ Олексій")}));
    }

    void bands()
    {
        Installation in;
        (void)importFile(in, kFixtures + QStringLiteral("bands.adi"));
        QCOMPARE(column(in, "bband"),
                 QStringList({"14", "10", "1,8", "144", "430", "7", "", "50", "18", "1200", "14", "3,5"}));
    }

    void datesAndTimes()
    {
        Installation in;
        const ImportResult result = importFile(in, kFixtures + QStringLiteral("dates_times.adi"));
        QCOMPARE(column(in, "ddate||' '||ttime"),
                 QStringList({" 14:07", "05.03.02 14:07", "05.03.02 ", " 14:07", " 14:07", "05.03.02 ",
                              " 00:00", "05.03.02 ", " ", "31.12.69 23:59", "31.12.2038 00:00", " "}));
        // Added without a date, and told.
        QCOMPARE(result.withoutDate, std::vector<qint64>({2, 5, 6, 8, 10, 13}));
        QVERIFY(!result.withoutTime.empty());
        QCOMPARE(
            result.withoutTime.size(),
            size_t(
                in.rows(QLatin1String(kLog), QStringLiteral("SELECT 1 FROM TBLLOG1 WHERE ttime=''")).size()));
    }

    void cards()
    {
        Installation in;
        const ImportResult result = importBytes(
            in, "<EOH>\n<CALL:1>A <QSL_RCVD:1>Y <QSLRDATE:8>20200307 <QSL_SENT:1>y <QSLSDATE:8>20200201 "
                "<QSL_VIA:6>RW3XXX<EOR>\n"
                "<CALL:1>B <QSL_RCVD:1>V <QSL_SENT:1>N<EOR>\n<CALL:1>C <QSL_RCVD:1>N <QSL_SENT:1>Q<EOR>\n"
                "<CALL:1>D <QSL_RCVD:1>Y <QSLRDATE:8>20201399 <QSL_SENT:3>Yes<EOR>\n");
        QCOMPARE(result.added, 4);
        QCOMPARE(column(in, "QSLP||' '||QSLO||' '||QSLVIA"),
                 QStringList({"07.03.2020 01.02.2020 RW3XXX", "+  ", "  ", "+  "}));
    }

    void modes_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("submode");
        QTest::addColumn<QString>("stored");
        const char *cases[][3] = {{"SSB", "USB", "SSB"},
                                  {"USB", "", "SSB"},
                                  {"LSB", "", "SSB"},
                                  {"ssb", "", "SSB"},
                                  {"PSK", "PSK31", "PSK"},
                                  {"PSK31", "", "PSK"},
                                  {"BPSK63", "", "PSK"},
                                  {"QPSK31", "", "PSK"},
                                  {"MFSK", "FT4", "FT4"},
                                  {"MFSK", "", "MFSK"},
                                  {"FT8", "", "FT8"},
                                  {"OLIVIA", "OLIVIA 8/250", "OLIVI"},
                                  {"", "USB", "SSB"},
                                  {"", "JS8", "JS8"},
                                  {"CW", "PCW", "CW"},
                                  {"RTTY", "ASCI", "RTTY"},
                                  {"AM", "", "AM"},
                                  {"DIGITALVOICE", "DSTAR", "DSTAR"},
                                  {"", "", ""}};
        for (const auto &one : cases)
            QTest::addRow("%s %s", one[0], one[1])
                << QString::fromLatin1(one[0]) << QString::fromLatin1(one[1]) << QString::fromLatin1(one[2]);
    }
    void modes()
    {
        QFETCH(QString, mode);
        QFETCH(QString, submode);
        Installation in;
        (void)importBytes(in, QStringLiteral("<EOH><CALL:1>A <MODE:%1>%2 <SUBMODE:%3>%4<EOR>")
                                  .arg(mode.size())
                                  .arg(mode)
                                  .arg(submode.size())
                                  .arg(submode)
                                  .toLatin1());
        QTEST(column(in, "ps1").value(0), "stored");
    }

    void otherFields()
    {
        Installation in;
        const ImportResult result =
            importBytes(in, "<EOH>\r\n<CALL:8> dl1abc  <COUNTRY:7>Germany <CONT:2>EU "
                            "<NAME:6>Hans\r\n<NAME_INTL:0> <QTH:12>New\r\n\r\nYork "
                            "<RST_SENT:16>1234567890123456 <FREQ:4>12.5<EOR>\r\n"
                            "<CALL:4>Q0QQ <NAME:4>Petr <NAME_INTL:8>" +
                                QStringLiteral("Пётр").toUtf8() +
                                " <BAND:5>lunar <QTH:16>ABCDEFGHIJKLMNOP<EOR>\r\n"
                                "<BAND:3>20M<EOR>\r\n<CALL:3>\x01//<EOR>\r\n<CALL:0><EOR>");
        QCOMPARE(contacts(in), QStringList({QStringLiteral("DL1ABC|||12,5|12345678901234|||New York|Hans"),
                                            QStringLiteral("Q0QQ|||lunar||||ABCDEFGHIJKLMNO|Пётр")}));
        // A foreign country name never enters the log; an unknown callsign has none.
        QCOMPARE(column(in, "CONTR||'/'||CONT"), QStringList({"GERMANY/", "/"}));
        QCOMPARE(result.records, 5);
        QCOMPARE(result.skipped.size(), std::size_t(3));
        QVERIFY(result.skipped[0].reason == SkipReason::NoCall && result.skipped[0].line == 7);
        QVERIFY(result.skipped[1].reason == SkipReason::UnreadableCall && result.skipped[1].line == 8);
        QVERIFY(result.skipped[2].reason == SkipReason::NoCall && result.skipped[2].line == 9);
        QVERIFY(adds(result));
    }

    void callsigns_data()
    {
        QTest::addColumn<QString>("written");
        QTest::addColumn<QString>("stored");
        QTest::newRow("small letters") << "dl1abc/p"
                                       << "DL1ABC/P";
        QTest::newRow("Cyrillic letters of the same look") << "UА3АВС"
                                                           << "UA3ABC";
        QTest::newRow("other Cyrillic letters") << "UA3Ж"
                                                << "";
        QTest::newRow("signs only") << "//-"
                                    << "";
        QTest::newRow("control character") << "UA\001"
                                              "3ABC"
                                           << "";
        QTest::newRow("cut") << "VP8/DL1ABCDEF/MM"
                             << "VP8/DL1ABCDEF/";
    }
    void callsigns()
    {
        QFETCH(QString, written);
        QFETCH(QString, stored);
        Installation in;
        const ImportResult result = importBytes(
            in, QStringLiteral("<EOH><CALL:%1>%2<EOR>").arg(written.size()).arg(written).toUtf8());
        QCOMPARE(column(in, "ccall"), stored.isEmpty() ? QStringList() : QStringList({stored}));
        QVERIFY(adds(result));
        if (stored.isEmpty())
            QVERIFY(result.skipped.at(0).reason == SkipReason::UnreadableCall);
    }

    void longValues()
    {
        Installation in;
        (void)importFile(in, kFixtures + QStringLiteral("huge_field.adi"));
        QCOMPARE(column(in, "NNAME"), QStringList({"", QString(15, QChar(u'я'))}));
    }

    void notAdif()
    {
        Installation in;
        QVERIFY(!importFile(in, kFixtures + QStringLiteral("cabrillo.adi")).isAdif);
        QVERIFY(!importFile(in, kFixtures + QStringLiteral("binary_junk.adi")).isAdif);
        QVERIFY(importFile(in, kFixtures + QStringLiteral("own_layout.adi")).isAdif);
        QVERIFY_THROWS_EXCEPTION(store::Error, AdifImport(in.databases, in.file(QLatin1String(kLog)),
                                                          in.file(QStringLiteral("none"))));
    }
};

QTEST_GUILESS_MAIN(AdifImportTest)
#include "adifimport.moc"
