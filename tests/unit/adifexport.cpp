// Export in the program's own ADIF layout: bytes, pieces, what it writes back into the log, failures.
#include "interchange/adifexport.h"
#include "interchange/sql.h"
#include "store/safefile.h"
#include "support/faultyvfs.h"
#include "support/installation.h"

#include <QDir>
#include <QTest>

#include <csignal>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using interchange::AdifExport;
using interchange::ExportResult;
using interchange::OwnLayoutContact;
using interchange::OwnLayoutWriter;
using testsupport::FaultyDisk;
using testsupport::Installation;

namespace {

constexpr auto kLog = "dbiaru.mdb";
const QByteArray kHeader = "<adif_ver:4>1.0<eoh>\r\n";

struct Contact {
    QString call = QStringLiteral("UA1ABC");
    QString date = QStringLiteral("05.03.02");
    QString time = QStringLiteral("14:07");
    QString band = QStringLiteral("14");
    QString sent = QStringLiteral("599");
    QString received = QStringLiteral("579");
    QString mode = QStringLiteral("CW");
};

void add(const Installation &in, const QList<Contact> &contacts)
{
    store::Connection log(in.file(QLatin1String(kLog)), store::OpenMode::ReadWrite);
    store::Transaction transaction(log);
    for (const Contact &contact : contacts)
        log.exec(QStringLiteral(
                     "INSERT INTO TBLLOG1(ccall,ddate,ttime,bband,rsts,rstr,ps1) VALUES(?,?,?,?,?,?,?)"),
                 {contact.call, contact.date, contact.time, contact.band, contact.sent, contact.received,
                  contact.mode});
    transaction.commit();
}

QList<Contact> many(int count)
{
    QList<Contact> contacts;
    for (int i = 0; i < count; ++i)
        contacts.append({.call = QStringLiteral("UA%1AA").arg(i)});
    return contacts;
}

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

bool goOn(const QString &, qint64, qint64)
{
    return true;
}

QByteArray line(const Contact &contact, const QByteArray &band = {})
{
    OwnLayoutWriter writer;
    writer.setBand(band);
    QByteArray bytes;
    const QByteArray texts[] = {contact.band.toUtf8(), contact.date.toUtf8(),     contact.time.toUtf8(),
                                contact.sent.toUtf8(), contact.received.toUtf8(), contact.call.toUtf8(),
                                contact.mode.toUtf8()};
    (void)writer.append(bytes, {texts[0], texts[1], texts[2], texts[3], texts[4], texts[5], texts[6]});
    return bytes;
}

QStringList calls(const QByteArray &text)
{
    QStringList found;
    for (const QByteArray &record : text.split('\n'))
        if (record.startsWith("<call:"))
            found.append(QString::fromLatin1(record.mid(record.indexOf('>') + 1).split(' ').front()));
    return found;
}

} // namespace

class AdifExportTest : public QObject {
    Q_OBJECT

    FaultyDisk m_disk;

    static ExportResult lastPiece(Installation &in, const QString &path)
    {
        return AdifExport(in.databases, in.file(QLatin1String(kLog)))
            .lastPiece(interchange::sql::contactsOfPeriod(u"01.01.90", u"31.12.29"), path, goOn);
    }
    static ExportResult numbered(Installation &in, QByteArray &band)
    {
        return AdifExport(in.databases, in.file(QLatin1String(kLog)))
            .numbered(interchange::sql::allContacts(), in.file(QStringLiteral("LOG_ADIF")), band, goOn);
    }
    static QStringList log(const Installation &in)
    {
        return in.rows(QLatin1String(kLog),
                       QStringLiteral("SELECT rsts,rstr,ps1 FROM TBLLOG1 ORDER BY rowid"));
    }

private Q_SLOTS:
    void cleanup() { FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull); }

    void statements()
    {
        QCOMPARE(interchange::sql::contactsOfPeriod(u"01.03.02", u"02.03.02").toString(),
                 QStringLiteral(
                     "select * from tbllog1 where ddate >= dateValue('01.03.02') and ddate <= DateValue "
                     "('02.03.02') order by cdate(ddate),ttime,ccall"));
        QCOMPARE(interchange::sql::allContacts().toString(),
                 QStringLiteral("select * from tbllog1 order by cdate(ddate),ttime "));
        QCOMPARE(
            interchange::sql::sameContact(u"R1A", u"05.03.02", u"14", u"599").toString(),
            QStringLiteral("select * from tbllog1 where ccall='R1A' and ddate='05.03.02' and bband='14' and "
                           "rsts='599'"));
        QCOMPARE(interchange::sql::logTable().toString(), QStringLiteral("TBLLOG1"));
    }

    void record_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QByteArray>("expected");
        const auto row = [](const char *name, const char *field, const char *value, const char *expected) {
            QTest::newRow(name) << field << QString::fromUtf8(value) << QByteArray(expected);
        };
        row("as it stands", "", "",
            "<call:6>UA1ABC <rst_sent:3>599 <rst_rcvd:3>579 <mode:2>CW <band:3>20M "
            "<qso_date:8:d>20020305 <time_on:4>1407<eor>\r\n");
        row("no callsign", "call", "", "<call:0> ");
        row("Russian callsign: characters counted", "call", "РК3А", "<call:4>\xD0\xCA\x33\xC0 ");
        row("a character that the code page lacks", "call", "A中B", "<call:3>A?B ");
        row("apostrophe", "call", "UA1'A", "<call:5>UA1'A ");
        row("long report sent", "sent", "5999", " <rst_sent:3>599 ");
        row("long report received", "received", "59 plus", " <rst_rcvd:3>599 ");
        row("long Russian report", "sent", "пять", " <rst_sent:3>599 ");
        row("short Russian report", "sent", "пят", " <rst_sent:3>\xEF\xFF\xF2 ");
        row("short report", "sent", "5", " <rst_sent:1>5 ");
        row("empty report", "received", "", " <rst_rcvd:0> ");
        row("160", "band", "1,8", " <band:4>160M ");
        row("80", "band", "3,5", " <band:3>80M ");
        row("40", "band", "7", " <band:3>40M ");
        row("15", "band", "21", " <band:3>15M ");
        row("10", "band", "28", " <band:3>10M ");
        row("band without a name, first", "band", "10,1", " <band:0> ");
        row("band with a point", "band", "3.5", " <band:0> ");
        row("band with a blank", "band", "14 ", " <band:0> ");
        row("year 99", "date", "31.12.99", " <qso_date:8:d>19991231 ");
        row("year 29", "date", "01.02.29", " <qso_date:8:d>20290201 ");
        row("year 30", "date", "1.2.30", " <qso_date:8:d>19300201 ");
        row("four-digit year", "date", "05.03.1917", " <qso_date:8:d>19170305 ");
        row("no date", "date", "", " <qso_date:8:d>00000000 ");
        row("a day that is none", "date", "31.02.02", " <qso_date:8:d>00000000 ");
        row("foreign date", "date", "05-Mar-02", " <qso_date:8:d>00000000 ");
        row("short hour", "time", "9:05", " <time_on:4>0905<");
        row("with seconds", "time", "14:07:59", " <time_on:4>1407<");
        row("bare digits", "time", "1407", " <time_on:4>1407<");
        row("three bare digits", "time", "905", " <time_on:4>0905<");
        row("midnight", "time", "00:00", " <time_on:4>0000<");
        row("no time", "time", "", " <time_on:4>0000<");
        row("an hour that is none", "time", "24:00", " <time_on:4>0000<");
        row("a minute that is none", "time", "12:60", " <time_on:4>0000<");
        row("words", "time", "ночь", " <time_on:4>0000<");
        row("two colons at once", "time", "12::30", " <time_on:4>0000<");
        row("a long number", "time", "99999999999", " <time_on:4>0000<");
    }
    void record()
    {
        QFETCH(QString, field);
        QFETCH(QString, value);
        QFETCH(QByteArray, expected);
        Contact contact;
        const QHash<QString, QString *> places = {{"call", &contact.call},
                                                  {"date", &contact.date},
                                                  {"time", &contact.time},
                                                  {"band", &contact.band},
                                                  {"sent", &contact.sent},
                                                  {"received", &contact.received},
                                                  {"", nullptr}};
        if (QString *place = places.value(field))
            *place = value;
        const QByteArray written = line(contact);
        QVERIFY2(written.contains(expected), written.constData());
        QVERIFY(written.endsWith("<eor>\r\n"));
        QCOMPARE(written.count('\n'), 1);
    }

    void emptyMode_data()
    {
        QTest::addColumn<QString>("sent");
        QTest::addColumn<QByteArray>("mode");
        QTest::newRow("59") << "59" << QByteArray("SSB");
        QTest::newRow("599") << "599" << QByteArray("CW");
        QTest::newRow("5999, sent as 599") << "5999" << QByteArray("CW");
        QTest::newRow("none") << "" << QByteArray("SSB");
        QTest::newRow("three letters") << "пят" << QByteArray("CW");
    }
    void emptyMode()
    {
        QFETCH(QString, sent);
        QFETCH(QByteArray, mode);
        const QByteArray written = line({.sent = sent, .mode = {}});
        QVERIFY2(written.contains(" <mode:" + QByteArray::number(mode.size()) + ">" + mode + " "),
                 written.constData());
        QVERIFY(line({.mode = QStringLiteral("PSK")}).contains(" <mode:3>PSK "));
    }

    void bandIsCarriedOn()
    {
        OwnLayoutWriter writer;
        QByteArray lines;
        for (const char *band : {"2", "21", "144", "10,1", "7", "430"})
            (void)writer.append(lines, {band, "05.03.02", "14:07", "59", "59", "R1A", "SSB"});
        QByteArrayList bands;
        for (const QByteArray &record : lines.split('\n').mid(0, 6))
            bands.append(record.mid(record.indexOf("<band:")).split(' ').front());
        QCOMPARE(bands, QByteArrayList({"<band:0>", "<band:3>15M", "<band:3>15M", "<band:3>15M",
                                        "<band:3>40M", "<band:3>40M"}));
    }

    void periodWritesBack()
    {
        Installation in;
        add(in, {{.call = "R1A", .sent = "5999", .received = "59", .mode = ""},
                 {.call = "R1B", .sent = "59", .received = "599+", .mode = ""},
                 {.call = "R1C"}});
        const QString path = in.file(QStringLiteral("UA1ABC"));
        const ExportResult result = lastPiece(in, path);
        QCOMPARE(
            content(path),
            kHeader +
                "<call:3>R1A <rst_sent:3>599 <rst_rcvd:2>59 <mode:2>CW <band:3>20M <qso_date:8:d>20020305 "
                "<time_on:4>1407<eor>\r\n"
                "<call:3>R1B <rst_sent:2>59 <rst_rcvd:3>599 <mode:3>SSB <band:3>20M <qso_date:8:d>20020305 "
                "<time_on:4>1407<eor>\r\n"
                "<call:3>R1C <rst_sent:3>599 <rst_rcvd:3>579 <mode:2>CW <band:3>20M <qso_date:8:d>20020305 "
                "<time_on:4>1407<eor>\r\n");
        QCOMPARE(log(in), QStringList({"599|59|CW", "59|599|SSB", "599|579|CW"}));
        QCOMPARE(result.contacts, 3);
        QCOMPARE(result.kept, 3);
        QCOMPARE(result.repaired, 2);
        QVERIFY(!result.repairFailure);
        QCOMPARE(QDir(in.userFolder()).entryList({"dbiaru.*.mdb"}).size(), 1); // the copy made before
        QCOMPARE(QDir(in.folder()).entryList({"*part"}), QStringList());
    }

    void nothingToWriteBackMakesNoCopy()
    {
        Installation in;
        add(in, many(3));
        const ExportResult result = lastPiece(in, in.file(QStringLiteral("out")));
        QCOMPARE(result.repaired, 0);
        QCOMPARE(QDir(in.userFolder()).entryList({"*.mdb"}), QStringList());
    }

    void orderAndBordersOfThePeriod()
    {
        Installation in;
        add(in, {{.call = "LATE", .date = "07.03.02"},
                 {.call = "B", .date = "05.03.02", .time = "10:00"},
                 {.call = "A", .date = "05.03.02", .time = "10:00"},
                 {.call = "FIRST", .date = "04.03.2002", .time = "23:00"},
                 {.call = "EARLY", .date = "03.03.02"},
                 {.call = "NODATE", .date = "31.02.02"},
                 {.call = "LAST", .date = "6.3.02", .time = "09:00"}});
        const QString path = in.file(QStringLiteral("out"));
        AdifExport exporter(in.databases, in.file(QLatin1String(kLog)));
        (void)exporter.lastPiece(interchange::sql::contactsOfPeriod(u"04.03.02", u"06.03.02"), path, goOn);
        QCOMPARE(calls(content(path)), QStringList({"FIRST", "A", "B", "LAST"}));

        QByteArray band;
        (void)exporter.numbered(interchange::sql::allContacts(), in.file(QStringLiteral("N")), band, goOn);
        QCOMPARE(calls(content(in.file(QStringLiteral("N0")))),
                 QStringList({"NODATE", "EARLY", "FIRST", "B", "A", "LAST", "LATE"}));
    }

    void emptyPeriodWritesNoFile()
    {
        Installation in;
        const QString path = in.file(QStringLiteral("out"));
        QCOMPARE(lastPiece(in, path).contacts, 0);
        QVERIFY(!QFile::exists(path));
        QByteArray band;
        QCOMPARE(numbered(in, band).files, QStringList());
        QVERIFY(!QFile::exists(in.file(QStringLiteral("LOG_ADIF0"))));
        QCOMPARE(AdifExport(in.databases, in.file(QLatin1String(kLog)))
                     .whole(interchange::sql::allContacts(), path, goOn)
                     .files,
                 QStringList());
        QVERIFY(!QFile::exists(path));
    }

    void typedDateThatIsNoneIsAnError()
    {
        Installation in;
        add(in, many(1));
        AdifExport exporter(in.databases, in.file(QLatin1String(kLog)));
        const QString path = in.file(QStringLiteral("out"));
        QVERIFY_THROWS_EXCEPTION(
            store::Error, (void)exporter.lastPiece(
                              interchange::sql::contactsOfPeriod(u"31.02.02", u"05.03.02"), path, goOn));
        QVERIFY_THROWS_EXCEPTION(store::Error, (void)exporter.lastPiece(interchange::sql::contactsOfPeriod(
                                                                            u"1') or ('1'='1", u"05.03.02"),
                                                                        path, goOn));
        // No date typed: no rows, no message.
        QCOMPARE(
            exporter.lastPiece(interchange::sql::contactsOfPeriod(u"", u"05.03.02"), path, goOn).contacts, 0);
        QVERIFY(!QFile::exists(path));
    }

    void periodInPieces_data()
    {
        QTest::addColumn<int>("contacts");
        QTest::addColumn<int>("kept");
        QTest::newRow("one") << 1 << 1;
        QTest::newRow("499") << 499 << 499;
        QTest::newRow("500: none") << 500 << 0;
        QTest::newRow("501: one") << 501 << 1;
        QTest::newRow("999") << 999 << 499;
        QTest::newRow("1000: none") << 1000 << 0;
    }
    void periodInPieces()
    {
        QFETCH(int, contacts);
        QFETCH(int, kept);
        Installation in;
        add(in, many(contacts));
        const QString path = in.file(QStringLiteral("out"));
        const ExportResult result = lastPiece(in, path);
        const QByteArray text = content(path);
        QVERIFY(text.startsWith(kHeader));
        QCOMPARE(calls(text).size(), kept);
        QCOMPARE(text.count("<eoh>"), 1);
        QCOMPARE(result.contacts, contacts);
        QCOMPARE(result.kept, kept);
    }

    void everyPieceOfAPeriodBeginsWithoutBand()
    {
        Installation in;
        QList<Contact> contacts = many(501);
        contacts[500].band = QStringLiteral("144");
        for (Contact &contact : contacts)
            contact.date = QStringLiteral("05.03.02");
        contacts[500].date = QStringLiteral("06.03.02");
        add(in, contacts);
        const QString path = in.file(QStringLiteral("out"));
        (void)lastPiece(in, path);
        QVERIFY2(content(path).contains(" <band:0> "), content(path).constData());
        // Written as a whole the band of the contact before is carried on.
        (void)AdifExport(in.databases, in.file(QLatin1String(kLog)))
            .whole(interchange::sql::allContacts(), path, goOn);
        QVERIFY(!content(path).contains(" <band:0> "));
    }

    void numberedFiles_data()
    {
        QTest::addColumn<int>("contacts");
        QTest::addColumn<QList<int>>("inFiles");
        QTest::newRow("1") << 1 << QList<int>{1};
        QTest::newRow("500") << 500 << QList<int>{500, 0};
        QTest::newRow("501") << 501 << QList<int>{500, 1};
        QTest::newRow("1000") << 1000 << QList<int>{500, 500, 0};
    }
    void numberedFiles()
    {
        QFETCH(int, contacts);
        QFETCH(QList<int>, inFiles);
        Installation in;
        add(in, many(contacts));
        QByteArray band;
        const ExportResult result = numbered(in, band);
        QCOMPARE(result.files.size(), inFiles.size());
        for (int i = 0; i < inFiles.size(); ++i) {
            const QByteArray text = content(in.file(QStringLiteral("LOG_ADIF%1").arg(i)));
            QVERIFY(text.startsWith(kHeader));
            QCOMPARE(calls(text).size(), inFiles[i]);
        }
        QVERIFY(!QFile::exists(in.file(QStringLiteral("LOG_ADIF%1").arg(inFiles.size()))));
        QCOMPARE(band, QByteArray("20M"));
    }

    void bandGoesOnFromExportToExport()
    {
        Installation in;
        add(in, {{.band = "144"}, {.time = "15:00", .band = "21"}});
        QByteArray band;
        (void)numbered(in, band);
        const QString first = in.file(QStringLiteral("LOG_ADIF0"));
        QVERIFY(content(first).contains(" <band:0> "));
        (void)numbered(in, band);
        QVERIFY(!content(first).contains(" <band:0> "));
        QCOMPARE(content(first).count(" <band:3>15M "), 2);
    }

    void numberedWritesBackAndReplacesOlderFiles()
    {
        Installation in;
        QFile older(in.file(QStringLiteral("LOG_ADIF0")));
        QVERIFY(older.open(QIODevice::WriteOnly) && older.write("older") == 5);
        older.close();
        add(in, {{.sent = "5999", .mode = ""}});
        QByteArray band;
        QCOMPARE(numbered(in, band).repaired, 1);
        QCOMPARE(log(in), QStringList("599|579|CW"));
        QVERIFY(content(older.fileName()).startsWith(kHeader));
    }

    void wholePeriodLeavesTheLogAlone()
    {
        Installation in;
        QList<Contact> contacts = many(1001);
        contacts[7].sent = QStringLiteral("5999");
        contacts[8].mode.clear();
        add(in, contacts);
        const QStringList before = log(in);
        const QString path = in.file(QStringLiteral("out"));
        const ExportResult result = AdifExport(in.databases, in.file(QLatin1String(kLog)))
                                        .whole(interchange::sql::allContacts(), path, goOn);
        QCOMPARE(result.kept, 1001);
        QCOMPARE(result.repaired, 0);
        QCOMPARE(log(in), before);
        const QByteArray text = content(path);
        QVERIFY(text.startsWith(kHeader));
        QCOMPARE(text.count("<eoh>"), 1);
        QCOMPARE(calls(text).size(), 1001);
        QVERIFY(!text.contains("5999"));
        QVERIFY(!text.contains("<mode:0>"));
        QCOMPARE(QDir(in.userFolder()).entryList({"*.mdb"}), QStringList());
    }

    void contactsWithoutDateAreCounted()
    {
        Installation in;
        add(in, {{}, {.date = "31.02.02"}, {.time = "?"}});
        const ExportResult result =
            AdifExport(in.databases, in.file(QLatin1String(kLog)))
                .whole(interchange::sql::allContacts(), in.file(QStringLiteral("out")), goOn);
        QCOMPARE(result.undated, 2);
    }

    void stoppedExportChangesNothing()
    {
        Installation in;
        QList<Contact> contacts = many(4001);
        contacts[0].mode.clear();
        add(in, contacts);
        const QString path = in.file(QStringLiteral("out"));
        AdifExport exporter(in.databases, in.file(QLatin1String(kLog)));
        const auto stop = [](const QString &, qint64, qint64) { return false; };
        QByteArray band = "40M";
        QVERIFY(exporter.lastPiece(interchange::sql::allContacts(), path, stop).stopped);
        QVERIFY(exporter.whole(interchange::sql::allContacts(), path, stop).stopped);
        QVERIFY(exporter.numbered(interchange::sql::allContacts(), path, band, stop).stopped);
        QCOMPARE(band, QByteArray("40M"));
        QCOMPARE(QDir(in.folder()).entryList({"out*"}), QStringList());
        QCOMPARE(log(in).front(), QStringLiteral("599|579|"));
    }

    void badPath_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("no folder") << "none/out";
        QTest::newRow("a folder") << ".";
        QTest::newRow("no name") << "";
    }
    void badPath()
    {
        QFETCH(QString, name);
        Installation in;
        add(in, {{.sent = "5999"}});
        const QString path = in.file(name);
        QVERIFY_THROWS_EXCEPTION(store::Error, (void)lastPiece(in, path));
        QCOMPARE(log(in), QStringList("5999|579|CW")); // the export ended before the log was touched
    }

    void databasesAndProgramsAreNotReplaced_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("the log") << "dbiaru.mdb";
        QTest::newRow("its name in capitals") << "DBIARU.MDB";
        QTest::newRow("a database that is not there") << "dbprint.mdb";
        QTest::newRow("a link to the log") << "link";
        QTest::newRow("a database under another name") << "copy.adi";
        QTest::newRow("an old database") << "old.adi";
        QTest::newRow("a program") << "zhurnal";
    }
    void databasesAndProgramsAreNotReplaced()
    {
        QFETCH(QString, name);
        Installation in;
        add(in, {{.sent = "5999"}});
        const QString log = in.file(QLatin1String(kLog));
        QVERIFY(QFile::copy(log, in.file(QStringLiteral("copy.adi"))));
        QVERIFY(QFile::link(log, in.file(QStringLiteral("link"))));
        const auto put = [&](const char *file, const QByteArray &bytes) {
            QFile out(in.file(QLatin1String(file)));
            return out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size();
        };
        QVERIFY(put("old.adi", QByteArray("\0\1\0\0Standard Jet DB\0\0\0\0", 23)));
        QVERIFY(put("zhurnal", QByteArray("\x7f"
                                          "ELF program",
                                          12)));
        if (name == QLatin1String("dbprint.mdb"))
            QVERIFY(QFile::remove(in.file(name)));
        const QString path = in.file(name);
        const QByteArray before = content(path);
        AdifExport exporter(in.databases, log);
        QVERIFY_THROWS_EXCEPTION(store::Error,
                                 (void)exporter.whole(interchange::sql::allContacts(), path, goOn));
        QVERIFY_THROWS_EXCEPTION(store::Error, (void)lastPiece(in, path));
        QVERIFY_THROWS_EXCEPTION(store::Error, (void)exporter.modern(interchange::sql::allContacts(), path,
                                                                     interchange::AdifForm::Utf8, {}, goOn));
        QCOMPARE(content(path), before);
        QCOMPARE(AdifExportTest::log(in), QStringList("5999|579|CW"));
    }

    void olderExportSurvivesAFailingDisk()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        Installation in;
        QList<Contact> contacts = many(600);
        contacts[0].sent = QStringLiteral("5999");
        add(in, contacts);
        const QString path = in.file(QStringLiteral("out"));
        (void)in.databases.connection(in.file(QLatin1String(kLog)));
        rlimit normal{};
        QCOMPARE(::getrlimit(RLIMIT_FSIZE, &normal), 0);
        int failures = 0;
        for (const rlim_t bytes : {rlim_t(0), rlim_t(1), rlim_t(9000), rlim_t(20000)}) {
            QFile older(path);
            QVERIFY(older.open(QIODevice::WriteOnly) && older.write("older") == 5);
            older.close();
            rlimit small = normal;
            small.rlim_cur = bytes;
            QCOMPARE(::setrlimit(RLIMIT_FSIZE, &small), 0);
            AdifExport exporter(in.databases, in.file(QLatin1String(kLog)));
            const auto run = [&](const std::function<void()> &exporting) {
                try {
                    exporting();
                } catch (const store::Error &) {
                    ++failures;
                }
            };
            run([&] { (void)exporter.whole(interchange::sql::allContacts(), path, goOn); });
            run([&] { (void)lastPiece(in, path); });
            QByteArray band;
            run([&] {
                (void)exporter.numbered(interchange::sql::allContacts(), in.file(QStringLiteral("LOG_ADIF")),
                                        band, goOn);
            });
            QCOMPARE(::setrlimit(RLIMIT_FSIZE, &normal), 0);
            const QByteArray text = content(path);
            QVERIFY(text == "older" || (text.startsWith(kHeader) && text.endsWith("<eor>\r\n")));
            QCOMPARE(QDir(in.folder()).entryList({"*part"}), QStringList());
            QVERIFY(!QFile::exists(in.file(QStringLiteral("LOG_ADIF0")))); // all or none
        }
        QVERIFY(failures >= 8);
    }

    /// A program killed at any moment of an export: the older file or the whole new one.
    void olderExportSurvivesAKill()
    {
        Installation in;
        add(in, many(4000));
        const QString path = in.file(QStringLiteral("out"));
        (void)in.databases.connection(in.file(QLatin1String(kLog)));
        std::mt19937 random(3);
        int older = 0;
        constexpr int kRounds = 30;
        for (int round = 0; round < kRounds; ++round) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("older") == 5);
            file.close();
            int ends[2];
            QVERIFY(::pipe(ends) == 0);
            const pid_t child = ::fork();
            if (child == 0) {
                try {
                    store::Library databases({in.folder(), false}, in.userFolder());
                    AdifExport exporter(databases, in.file(QLatin1String(kLog)));
                    (void)databases.connection(in.file(QLatin1String(kLog)));
                    if (::write(ends[1], "x", 1) != 1)
                        ::_exit(3);
                    (void)exporter.whole(interchange::sql::allContacts(), path, goOn);
                } catch (...) {
                    ::_exit(2);
                }
                ::pause();
            }
            ::close(ends[1]);
            char ready = 0;
            QVERIFY(::read(ends[0], &ready, 1) == 1);
            ::close(ends[0]);
            ::usleep(static_cast<useconds_t>(random() % 30'000));
            ::kill(child, SIGKILL);
            int status = 0;
            ::waitpid(child, &status, 0);
            QVERIFY(WIFSIGNALED(status));
            const QByteArray text = content(path);
            older += text == "older" ? 1 : 0;
            QVERIFY(text == "older" || (text.startsWith(kHeader) && calls(text).size() == 4000));
        }
        QVERIFY2(older > 0, "no kill came before the end");
    }

    void failingLogLeavesWholeFilesAndTellsOfTheRows()
    {
        bool succeeded = false;
        int failures = 0;
        for (int n = 1; n <= 80 && !succeeded; ++n) {
            Installation in;
            add(in, {{.sent = "5999"}, {.mode = ""}});
            const QString path = in.file(QStringLiteral("out"));
            (void)in.databases.connection(in.file(QLatin1String(kLog)));
            FaultyDisk::failFrom(n, FaultyDisk::Fault::DiskFull);
            const ExportResult result = lastPiece(in, path);
            FaultyDisk::failFrom(0, FaultyDisk::Fault::DiskFull);
            QCOMPARE(calls(content(path)).size(), 2);
            succeeded = !result.repairFailure;
            failures += succeeded ? 0 : 1;
            QCOMPARE(log(in), succeeded ? QStringList({"599|579|CW", "599|579|CW"})
                                        : QStringList({"5999|579|CW", "599|579|"}));
        }
        QVERIFY(succeeded);
        QVERIFY(failures > 3);
    }

    void filesOnTheDiskTakeTheirNameWhenTheyAreComplete()
    {
        Installation in;
        const QString path = in.file(QStringLiteral("a"));
        {
            store::SafeFile file(path);
            file.write("half");
            QVERIFY(!QFile::exists(path));
        }
        QCOMPARE(QDir(in.folder()).entryList({"a*"}), QStringList());
        QFile real(in.file(QStringLiteral("real")));
        QVERIFY(real.open(QIODevice::WriteOnly));
        real.close();
        QVERIFY(real.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
        QVERIFY(QFile::link(real.fileName(), path));
        // Neither a database nor its journal is ever written over, nor made.
        for (const char *name : {"dbiaru.mdb", "DBIARU.MDB-journal", "dblog.mdb-journal"})
            QVERIFY_THROWS_EXCEPTION(store::Error, store::SafeFile(in.file(QLatin1String(name))));
        store::SafeFile file(path);
        file.write("whole");
        file.finish();
        file.publish();
        QCOMPARE(content(real.fileName()), QByteArray("whole")); // the link stays a link
        QVERIFY(QFileInfo(path).isSymLink());
        QCOMPARE(real.permissions() & (QFile::ReadOther | QFile::ReadGroup), QFile::Permissions());
    }
};

QTEST_GUILESS_MAIN(AdifExportTest)
#include "adifexport.moc"
