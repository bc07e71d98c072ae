// Writing ADIF 3.1: what every form looks like to the letter of the format, and what the import makes of it.
#include "interchange/adifwriter.h"

#include "foreign/adifreader.h"
#include "interchange/adifimport.h"
#include "support/installation.h"

#include <QFile>
#include <QTest>
#include <QXmlStreamReader>

using interchange::AdifContact;
using interchange::AdifForm;
using interchange::AdifOmission;
using interchange::AdifWriter;
using testsupport::Installation;

Q_DECLARE_METATYPE(AdifForm)

namespace {

const interchange::AdifHeader kHead = {QDateTime(QDate(2026, 3, 5), QTime(14, 7, 9), Qt::UTC),
                                       QStringLiteral("1.2"), QStringLiteral("ra3xyz")};

AdifContact contact()
{
    AdifContact c;
    c.ccall = QStringLiteral("UA3ABC");
    c.ddate = QStringLiteral("05.03.02");
    c.ttime = QStringLiteral("14:07");
    c.bband = QStringLiteral("14");
    c.rsts = QStringLiteral("599");
    c.rstr = QStringLiteral("579");
    c.ps1 = QStringLiteral("CW");
    c.QTH = QStringLiteral("Щёлково");
    c.NNAME = QStringLiteral("Пётр");
    c.QSLVIA = QStringLiteral("RW3XXX");
    c.QSLP = QStringLiteral("+");
    c.QSLO = QStringLiteral("07.04.2002");
    c.CONTR = QStringLiteral("RUSSIAN");
    c.CONT = QStringLiteral("EU");
    return c;
}

QByteArray written(AdifForm form, const QList<AdifContact> &contacts,
                   std::vector<AdifWriter::Omitted> *omitted = {})
{
    QByteArray bytes;
    AdifWriter writer(form, kHead, [&](QByteArrayView piece) { bytes.append(piece); });
    qint64 row = 0;
    for (const AdifContact &one : contacts)
        (void)writer.write(one, ++row);
    writer.finish();
    if (omitted != nullptr)
        *omitted = writer.omitted();
    return bytes;
}

/// Fields "NAME=value" of the tagged form, read by the letter: a tag, exactly as many bytes, blanks, a tag.
QStringList strictFields(const QByteArray &bytes)
{
    QStringList fields;
    qsizetype at = bytes.indexOf('<');
    while (at >= 0 && at < bytes.size()) {
        const qsizetype end = bytes.indexOf('>', at);
        const QList<QByteArray> parts = bytes.mid(at + 1, end - at - 1).split(':');
        const qsizetype length = parts.size() == 2 ? parts.at(1).toLongLong() : 0;
        fields.append(QString::fromLatin1(parts.at(0) + '=' + bytes.mid(end + 1, length)));
        at = end + 1 + length;
        while (at < bytes.size() && (bytes[at] == ' ' || bytes[at] == '\r' || bytes[at] == '\n'))
            ++at;
        if (at < bytes.size() && bytes[at] != '<')
            return {QStringLiteral("no tag at %1").arg(at)};
    }
    return fields;
}

QString fieldOf(const QByteArray &bytes, const char *name)
{
    const foreign::AdifText text = foreign::prepareAdif(bytes);
    const auto source = foreign::openAdif(text);
    foreign::AdifRecord record;
    return source->next(record) ? record.text(name) : QStringLiteral("no record");
}

} // namespace

class AdifWriterTest : public QObject {
    Q_OBJECT

    static void forms()
    {
        QTest::addColumn<AdifForm>("form");
        QTest::newRow("ASCII") << AdifForm::Ascii;
        QTest::newRow("UTF-8") << AdifForm::Utf8;
        QTest::newRow("Windows-1251") << AdifForm::Windows1251;
        QTest::newRow("XML") << AdifForm::Xml;
    }

private Q_SLOTS:
    void asciiToTheLetter()
    {
        const QByteArray bytes = written(AdifForm::Ascii, {contact()});
        QCOMPARE(bytes,
                 QByteArray("Zhurnal\r\n<ADIF_VER:5>3.1.4 \r\n<CREATED_TIMESTAMP:15>20260305 140709 \r\n"
                            "<PROGRAMID:7>Zhurnal \r\n<PROGRAMVERSION:3>1.2 \r\n<EOH>\r\n"
                            "<CALL:6>UA3ABC <QSO_DATE:8>20020305 <TIME_ON:4>1407 <BAND:3>20M <MODE:2>CW "
                            "<RST_SENT:3>599 <RST_RCVD:3>579 <NAME:5>Pyotr <QTH:11>Shchyolkovo "
                            "<QSL_VIA:6>RW3XXX <QSL_RCVD:1>Y <QSL_SENT:1>Y <QSLSDATE:8>20020407 "
                            "<COUNTRY:7>RUSSIAN <CONT:2>EU <STATION_CALLSIGN:6>RA3XYZ <EOR>\r\n"));
        QVERIFY(foreign::isAscii(bytes));
    }

    void lengthsAreBytes()
    {
        for (const AdifForm form : {AdifForm::Ascii, AdifForm::Utf8, AdifForm::Windows1251}) {
            const QStringList fields = strictFields(written(form, {contact(), contact()}));
            QCOMPARE(fields.count(QStringLiteral("CALL=UA3ABC")), 2);
            QCOMPARE(fields.back(), QStringLiteral("EOR="));
            QCOMPARE(fields.filter(QStringLiteral("NAME=")).size(), 2);
        }
        QVERIFY(written(AdifForm::Utf8, {contact()}).contains("<NAME:8>" + QStringLiteral("Пётр ").toUtf8()));
        QVERIFY(written(AdifForm::Windows1251, {contact()}).contains("<NAME:4>\xCF\xB8\xF2\xF0 "));
    }

    void xml()
    {
        AdifContact odd = contact();
        odd.NNAME = QStringLiteral("<Пётр> & \"Ко\"");
        const QByteArray bytes = written(AdifForm::Xml, {odd});
        QXmlStreamReader xml(bytes);
        QStringList elements;
        while (!xml.atEnd()) {
            xml.readNext();
            if (xml.isStartElement())
                elements.append(xml.name().toString());
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
        QCOMPARE(elements.mid(0, 8), QStringList({"ADX", "HEADER", "ADIF_VER", "CREATED_TIMESTAMP",
                                                  "PROGRAMID", "PROGRAMVERSION", "RECORDS", "RECORD"}));
        QVERIFY(elements.contains(QStringLiteral("NAME")) && elements.contains(QStringLiteral("QTH_INTL")));
        QVERIFY(!elements.contains(QStringLiteral("COUNTRY_INTL"))); // Latin letters need none
        QCOMPARE(fieldOf(bytes, "NAME"), QStringLiteral("<Pyotr> & \"Ko\""));
        QCOMPARE(fieldOf(bytes, "NAME_INTL"), odd.NNAME);
    }

    void noContact()
    {
        for (const AdifForm form : {AdifForm::Ascii, AdifForm::Xml}) {
            const foreign::AdifText text = foreign::prepareAdif(written(form, {}));
            const auto source = foreign::openAdif(text);
            foreign::AdifRecord record;
            QVERIFY(!source->next(record));
            QVERIFY(source->isAdif());
        }
        QCOMPARE(interchange::adifSuffix(AdifForm::Xml), QStringLiteral("adx"));
        QCOMPARE(interchange::adifSuffix(AdifForm::Utf8), QStringLiteral("adi"));
    }

    void bands_data()
    {
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("band");
        QTest::addColumn<QString>("frequency");
        const char *cases[][3] = {
            {"1,8", "160M", ""},       {"3,5", "80M", ""},   {"7", "40M", ""},     {"10", "30M", ""},
            {"10,1", "30M", "10.1"},   {"14", "20M", ""},    {"18", "17M", ""},    {"21", "15M", ""},
            {"24", "12M", ""},         {"28", "10M", ""},    {"50", "6M", ""},     {"70", "4M", ""},
            {"144", "2M", ""},         {"430", "70CM", ""},  {"1200", "23CM", ""}, {"1260", "23CM", "1260"},
            {"14,02", "20M", "14.02"}, {"14025", "20M", ""}, {"12,5", "", "12.5"}, {"30M", "30M", ""},
            {"20m", "20M", ""},        {"", "", ""},         {"lunar", "", ""}};
        for (const auto &one : cases)
            QTest::addRow("%s", one[0])
                << QString::fromLatin1(one[0]) << QString::fromLatin1(one[1]) << QString::fromLatin1(one[2]);
    }
    void bands()
    {
        QFETCH(QString, band);
        QFETCH(QString, frequency);
        AdifContact one = contact();
        one.bband = QString::fromLatin1(QTest::currentDataTag());
        std::vector<AdifWriter::Omitted> omitted;
        const QByteArray bytes = written(AdifForm::Ascii, {one}, &omitted);
        QCOMPARE(fieldOf(bytes, "BAND"), band);
        QCOMPARE(fieldOf(bytes, "FREQ"), frequency);
        QCOMPARE(omitted.size(), std::size_t(band.isEmpty() && frequency.isEmpty() ? 1 : 0));
    }

    void modes_data()
    {
        QTest::addColumn<QString>("log");
        QTest::addColumn<QString>("report");
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("submode");
        const char *cases[][4] = {{"SSB", "59", "SSB", ""},
                                  {"CW", "599", "CW", ""},
                                  {"SSTV", "595", "SSTV", ""},
                                  {"FM", "595", "FM", ""},
                                  {"MT63", "599", "MT63", ""},
                                  {"PSK", "599", "PSK", ""},
                                  {"RTTY", "599", "RTTY", ""},
                                  {"", "599", "CW", ""},
                                  {"", "59", "SSB", ""},
                                  {"usb", "59", "SSB", "USB"},
                                  {"FT4", "-10", "MFSK", "FT4"},
                                  {"FT8", "", "FT8", ""},
                                  {"PSK31", "599", "PSK", "PSK31"},
                                  {"DSTAR", "59", "DIGITALVOICE", "DSTAR"}};
        for (const auto &one : cases)
            QTest::addRow("%s %s", one[0], one[1])
                << QString::fromLatin1(one[0]) << QString::fromLatin1(one[1]) << QString::fromLatin1(one[2])
                << QString::fromLatin1(one[3]);
    }
    void modes()
    {
        QFETCH(QString, log);
        QFETCH(QString, report);
        AdifContact one = contact();
        one.ps1 = log;
        one.rsts = report;
        const QByteArray bytes = written(AdifForm::Ascii, {one});
        QTEST(fieldOf(bytes, "MODE"), "mode");
        QTEST(fieldOf(bytes, "SUBMODE"), "submode");
    }

    void whatCannotBeWrittenIsTold()
    {
        QList<AdifContact> contacts(6, contact());
        contacts[1].ccall = QStringLiteral("  ");
        contacts[2].ddate = QStringLiteral("30.02.02");
        contacts[3].ddate.clear();
        contacts[4].ttime = QStringLiteral("25:00");
        contacts[5].bband.clear();
        std::vector<AdifWriter::Omitted> omitted;
        const QByteArray bytes = written(AdifForm::Ascii, contacts, &omitted);
        QCOMPARE(bytes.count("<EOR>"), 3);
        QStringList told;
        for (const auto &one : omitted)
            told.append(QStringLiteral("%1 %2 %3").arg(one.row).arg(one.call).arg(int(one.omission)));
        QCOMPARE(told, QStringList({"2  0", "3 UA3ABC 1", "4 UA3ABC 1", "5 UA3ABC 2", "6 UA3ABC 3"}));
        for (const AdifOmission one :
             {AdifOmission::NoCall, AdifOmission::NoDate, AdifOmission::NoTime, AdifOmission::NoBand})
            QVERIFY(!interchange::omissionText(one).isEmpty());
    }

    void times_data()
    {
        QTest::addColumn<QString>("adif");
        QTest::newRow("14:07") << "1407";
        QTest::newRow("9:05") << "0905";
        QTest::newRow("14:07:09") << "140709";
        QTest::newRow("1407") << "1407";
        QTest::newRow("24:00") << "";
        QTest::newRow("14:7") << "";
        QTest::newRow("a:bc") << "";
        QTest::newRow("") << "";
    }
    void times()
    {
        AdifContact one = contact();
        one.ttime = QString::fromLatin1(QTest::currentDataTag());
        QTEST(fieldOf(written(AdifForm::Ascii, {one}), "TIME_ON"), "adif");
    }

    void oddTexts()
    {
        AdifContact one = contact();
        one.NNAME = QStringLiteral("Ян\r\nи <eor>");
        one.QTH = QStringLiteral("東京 \U0001F600");
        one.ps = QStringLiteral("привет");
        one.CONT = QStringLiteral("Europe");
        one.QSLO = QStringLiteral(" ");
        one.QSLP.clear();
        const QByteArray utf8 = written(AdifForm::Utf8, {one});
        QCOMPARE(fieldOf(utf8, "NAME"), QStringLiteral("Ян  и <eor>"));
        QCOMPARE(fieldOf(utf8, "QTH"), one.QTH);
        QCOMPARE(fieldOf(utf8, "COMMENT"), one.ps);
        QCOMPARE(fieldOf(utf8, "CONT"), QString());
        QCOMPARE(fieldOf(utf8, "QSL_SENT"), QStringLiteral("Y")); // a blank counts as a mark
        QCOMPARE(fieldOf(utf8, "QSL_RCVD"), QString());
        QCOMPARE(fieldOf(written(AdifForm::Windows1251, {one}), "QTH"), QStringLiteral("?? ?"));
        QCOMPARE(fieldOf(written(AdifForm::Xml, {one}), "QTH_INTL"), one.QTH);
    }

    void piecesAndFailures()
    {
        qint64 pieces = 0;
        qint64 size = 0;
        AdifWriter writer(AdifForm::Ascii, kHead, [&](QByteArrayView piece) {
            ++pieces;
            size += piece.size();
        });
        for (int i = 0; i < 5000; ++i)
            QVERIFY(writer.write(contact(), i));
        QVERIFY(pieces > 5); // a big log is not kept in memory
        writer.finish();
        QVERIFY(size > 1'000'000);
        QCOMPARE(writer.written(), 5000);
        AdifWriter failing(AdifForm::Ascii, kHead, [](QByteArrayView) { throw std::runtime_error("full"); });
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, failing.finish());
    }

    void roundTrip_data() { forms(); }
    void roundTrip()
    {
        QFETCH(AdifForm, form);
        QList<AdifContact> contacts(14, contact());
        const char *labels[] = {"1,8", "3,5", "7",   "14",  "21",   "28", "10",
                                "18",  "24",  "144", "430", "1200", "50", "70"};
        const char *modes[] = {"SSB", "CW", "SSTV", "FM", "MT63", "PSK", "RTTY"};
        for (qsizetype i = 0; i < contacts.size(); ++i) {
            contacts[i].bband = QLatin1String(labels[i]);
            contacts[i].ps1 = QLatin1String(modes[i % 7]);
            contacts[i].ttime = QStringLiteral("%1:00").arg(i, 2, 10, QLatin1Char('0'));
        }
        contacts[1].ddate = QStringLiteral("31.12.99");
        contacts[2].QTH = QStringLiteral("Київ");
        contacts[3].NNAME = QStringLiteral("O'Neil");
        Installation in;
        QFile file(in.file(QStringLiteral("out.adi")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(written(form, contacts));
        file.close();
        interchange::AdifImport import(in.databases, in.file(QStringLiteral("dbiaru.mdb")), file.fileName());
        QVERIFY(import.reader() == interchange::AdifReaderKind::Full);
        const auto result = import.run([](const auto &) { return true; });
        QCOMPARE(result.added, contacts.size());
        QVERIFY(result.skipped.empty());
        QStringList expected;
        for (const AdifContact &one : contacts) {
            const bool latin = form == AdifForm::Ascii;
            const QString town =
                one.QTH == QStringLiteral("Київ") ? QStringLiteral("Kiyiv") : QStringLiteral("Shchyolkovo");
            expected.append(
                QStringList({one.ccall, one.ddate, one.ttime, one.bband, one.rsts, one.rstr, one.ps1,
                             latin ? town : one.QTH,
                             latin && one.NNAME.startsWith(u'П') ? QStringLiteral("Pyotr") : one.NNAME,
                             one.QSLVIA, one.QSLP, one.QSLO, one.CONTR})
                    .join(QLatin1Char('|')));
        }
        QCOMPARE(in.rows(QStringLiteral("dbiaru.mdb"),
                         QStringLiteral(
                             "SELECT ccall,ddate,ttime,bband,rsts,rstr,ps1,QTH,NNAME,QSLVIA,QSLP,QSLO,CONTR "
                             "FROM TBLLOG1 ORDER BY rowid")),
                 expected);
    }
};

QTEST_GUILESS_MAIN(AdifWriterTest)
#include "adifwriter.moc"
