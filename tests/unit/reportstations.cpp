// Callbook records in layouts: whose record a row gets, and the sticker with and without an address.
#include "report/document.h"
#include "report/shipped.h"
#include "report/stations.h"
#include "store/error.h"
#include "store/sqlite.h"
#include "support/installation.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

using namespace report;
using testsupport::Installation;

namespace {

const QString kLog = QStringLiteral("dbiaru.mdb");
const QString kBook = QStringLiteral("dbcalbuk.mdb");

Layout layout(const QByteArray &attributes, const QByteArray &body)
{
    return readLayout("<svg xmlns='http://www.w3.org/2000/svg' width='100mm' height='100mm' "
                      "viewBox='0 0 100 100' " +
                          attributes + ">\n" + body + "</svg>",
                      QStringLiteral("/x/a.rpt"));
}

/// Lines "row:text" of a table.
Layout list(const QByteArray &text, const QByteArray &table = "tbllogTEMP")
{
    return layout("data-table='" + table + "'",
                  "<g id='detail' data-height='5' data-rows='9'><text y='9'>{row}:" + text + "</text></g>");
}

QString quoted(const char *text)
{
    return QString::fromUtf8(text).replace(QLatin1Char('\''), QLatin1String("''"));
}

void blank(const Installation &in, const char *call, const char *route = "", const char *date = "01.01.26")
{
    in.sql(kLog,
           QStringLiteral("INSERT INTO tbllogTEMP(ccall,CONTR,ddate,ttime) VALUES('%1','%2','%3','10:00')")
               .arg(quoted(call), quoted(route), quoted(date)));
}

void book(const Installation &in, const char *call, const char *surname, const char *address = "")
{
    in.sql(kBook, QStringLiteral("INSERT INTO tblcalbuk(ccall,fam,adres) VALUES('%1','%2','%3')")
                      .arg(quoted(call), quoted(surname), quoted(address)));
}

QStringList texts(const Document &document, qint64 page = 1)
{
    QStringList result;
    const PageContent content = document.page(page);
    for (const PlacedLine &line : content.lines)
        result.append(line.texts.join(QString()).trimmed());
    return result;
}

QStringList read(const Layout &what, Installation &in)
{
    return texts(*Document::read(what, in.databases));
}

QString refusal(const Layout &what, Installation &in)
{
    try {
        (void)Document::read(what, in.databases);
        return QStringLiteral("read");
    } catch (const store::Error &error) {
        return QStringLiteral("%1 %2").arg(int(error.kind())).arg(error.engineText());
    }
}

Layout stickers()
{
    return readLayout(shippedLayout(QStringLiteral("qsl1.rpt")), QStringLiteral("qsl1.rpt"));
}

} // namespace

class ReportStationsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whoseRecord_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("route");
        QTest::addColumn<QString>("found");
        const auto row = [](const char *name, const char *call, const char *route, const char *found) {
            QTest::newRow(name) << QString::fromUtf8(call) << QString::fromUtf8(route)
                                << QString::fromUtf8(found);
        };
        row("callsign", "R3AA", "", "Аникин");
        row("route", "R3AA", "RW3BB", "Боков");
        row("via", "R3AA", "via RW3BB", "Боков");
        row("VIA and blanks", "R3AA", "  VIA   RW3BB ", "Боков");
        row("Via", "R3AA", "Via rw3bb", "Боков");
        row("via alone", "R3AA", "via", "Аникин");
        row("no blank after it", "R3AA", "VIARW3BB", "Аникин");
        row("letter case", " r3aa ", "", "Аникин");
        row("letter case of the book", "UA1CC", "", "Волков");
        row("letter case of the route", "R3AA", "Ua1Cc", "Волков");
        row("unknown route", "R3AA", "DL1XX", "Аникин");
        row("bureau", "R3AA", "buro", "Аникин");
        row("route without callsign", "", "RW3BB", "Боков");
        row("nobody", "R9ZZ", "DL1XX", "");
        row("nobody, no route", "R9ZZ", "", "");
        row("portable is another callsign", "R3AA/P", "", "");
        row("apostrophe", "O'NEIL", "", "Он");
        row("apostrophe in the route", "R3AA", "O'NEIL", "Он");
        row("only an apostrophe", "'", "'", "");
        row("statement", "R9ZZ", "x' or '1'='1", "");
        row("wildcards", "R3A_", "%", "");
    }
    void whoseRecord()
    {
        QFETCH(QString, call);
        QFETCH(QString, route);
        QFETCH(QString, found);
        Installation in;
        book(in, "R3AA", "Аникин");
        book(in, "RW3BB", "Боков");
        book(in, "ua1cc", "Волков");
        book(in, "O'NEIL", "Он");
        blank(in, call.toUtf8().constData(), route.toUtf8().constData());
        QCOMPARE(read(list("{tblcalbuk.fam}"), in), QStringList(QStringLiteral("1:") + found));
    }

    void everyFieldOfTheRecord()
    {
        Installation in;
        in.sql(kBook,
               QStringLiteral("INSERT INTO tblcalbuk VALUES('R3AA','Фам','Имя','Отч','392000','Обл','Город',"
                              "'Адрес','12-34','RW3BB')"));
        blank(in, "R3AA");
        QCOMPARE(read(list("{tblcalbuk.ccall} {tblcalbuk.fam} {tblcalbuk.nname} {tblcalbuk.otch} "
                           "{tblcalbuk.indeks} {tblcalbuk.obl} {tblcalbuk.qth} {tblcalbuk.adres} "
                           "{tblcalbuk.telefon} {TBLCALBUK.QslVia}"),
                      in),
                 QStringList(QStringLiteral("1:R3AA Фам Имя Отч 392000 Обл Город Адрес 12-34 RW3BB")));
    }

    void everyRowItsOwn()
    {
        Installation in;
        book(in, "R3AA", "Аникин");
        book(in, "RW3BB", "Боков");
        book(in, "R3AA", "второй");
        for (const char *call : {"RW3BB", "R9ZZ", "R3AA", "rw3bb", "R3AA"})
            blank(in, call);
        blank(in, "R3AA", "RW3BB");
        QCOMPARE(read(list("{ccall} {tblcalbuk.fam}"), in),
                 QStringList({"1:RW3BB Боков", "2:R9ZZ", "3:R3AA Аникин", "4:rw3bb Боков", "5:R3AA Аникин",
                              "6:R3AA Боков"}));
        // The layout need not show anything of the row itself.
        QCOMPARE(read(list("{tblcalbuk.fam}"), in).at(2), QStringLiteral("3:Аникин"));
    }

    void aRecordWithoutTheFieldIsTheRecordAllTheSame()
    {
        Installation in;
        book(in, "R3AA", "Аникин", "ул. Мира, 1");
        book(in, "RW3BB", "");
        blank(in, "R3AA", "RW3BB");
        QCOMPARE(read(list("{tblcalbuk.ccall}|{tblcalbuk.fam}|{tblcalbuk.adres}"), in),
                 QStringList(QStringLiteral("1:RW3BB||")));
    }

    void conditionsAndPlaces()
    {
        Installation in;
        book(in, "R3AA", "Аникин");
        book(in, "RW3BB", "Боков");
        blank(in, "R9ZZ");
        blank(in, "R3AA");
        blank(in, "R3AA");
        blank(in, "R3AA", "RW3BB");
        const Layout cards =
            layout("data-table='tbllogTEMP'",
                   "<text y='3'>page {tblcalbuk.fam}.</text><g id='card' data-columns='1' data-rows='4' "
                   "data-width='40' data-height='20' data-group='ccall CONTR'><text x='1' y='5' "
                   "data-if='tblcalbuk.fam'>card {tblcalbuk.fam}</text><text x='1' y='5' "
                   "data-if='!tblcalbuk.fam'>none"
                   "</text><g id='detail' data-height='4' data-rows='2'><text x='1' y='12'>{tblcalbuk.fam};"
                   "</text></g></g>");
        QCOMPARE(read(cards, in), QStringList({"page .", "none", ";", "card Аникин", "Аникин;", "Аникин;",
                                               "card Боков", "Боков;"}));
    }

    void callsignOfARoute()
    {
        Installation in;
        for (const char *route : {"via RW3BB", " VIA  rw3bb", "RW3BB", "via", "viaduct", ""})
            blank(in, "R3AA", route);
        QCOMPARE(read(list("{CONTR:call}."), in),
                 QStringList({"1:RW3BB.", "2:rw3bb.", "3:RW3BB.", "4:via.", "5:viaduct.", "6:."}));
    }

    void emptyTable()
    {
        Installation in;
        book(in, "R3AA", "Аникин");
        QCOMPARE(
            read(layout("data-table='tbllogTEMP'", "<text y='3'>page {tblcalbuk.fam}.</text><g id='detail' "
                                                   "data-height='5' data-rows='9'/>"),
                 in),
            QStringList(QStringLiteral("page .")));
    }

    /// In the log the route has its own field, and the blank's is the country.
    void logHasItsOwnRoute()
    {
        Installation in;
        book(in, "R3AA", "Аникин");
        book(in, "RW3BB", "Боков");
        book(in, "RUSSIAN", "страна");
        in.sql(QStringLiteral("dbprint.mdb"),
               QStringLiteral("INSERT INTO tblprint(ccall,QSLVIA,CONTR) VALUES('R3AA','via RW3BB','RUSSIAN'),"
                              "('R3AA','','RUSSIAN')"));
        QCOMPARE(read(list("{tblcalbuk.fam}", "tblprint"), in), QStringList({"1:Боков", "2:Аникин"}));
    }

    void tableOfOtherFields()
    {
        Installation in;
        book(in, "R3AA", "Аникин");
        QCOMPARE(read(list("{fam}={tblcalbuk.fam}", "tblcalbuk"), in), QStringList("1:Аникин=Аникин"));
        QCOMPARE(refusal(list("{prf} {tblcalbuk.fam}", "tbldxcc"), in),
                 QStringLiteral("%1 строка 2: для {tblcalbuk.fam} в таблице tbldxcc нет позывного (ccall)")
                     .arg(int(store::ErrorKind::Unreadable)));
    }

    void fieldThatTheBookHasNot()
    {
        Installation in;
        QCOMPARE(refusal(list("{tblcalbuk.gorod}"), in),
                 QStringLiteral("%1 строка 2: неизвестное поле {tblcalbuk.gorod}")
                     .arg(int(store::ErrorKind::Unreadable)));
    }

    void bookThatCannotBeRead()
    {
        Installation in;
        blank(in, "R3AA");
        QVERIFY(QFile::remove(in.file(kBook)));
        QCOMPARE(refusal(stickers(), in), QStringLiteral("%1 файла нет").arg(int(store::ErrorKind::Missing)));
        QCOMPARE(read(list("{ccall}"), in), QStringList("1:R3AA")); // who does not ask is not stopped
    }

    void bookOfAnotherProgramLocked()
    {
        Installation in;
        blank(in, "R3AA");
        book(in, "R3AA", "Аникин");
        {
            store::Connection other(in.file(kBook), store::OpenMode::ReadWrite);
            other.exec(QStringLiteral("BEGIN EXCLUSIVE"));
            QVERIFY(refusal(stickers(), in).startsWith(QString::number(int(store::ErrorKind::Locked))));
        }
        QCOMPARE(read(list("{tblcalbuk.fam}"), in), QStringList("1:Аникин"));
    }

    void changesAfterwardsDoNotShow()
    {
        Installation in;
        book(in, "R3AA", "Аникин");
        blank(in, "R3AA");
        const auto document = Document::read(list("{tblcalbuk.fam}"), in.databases);
        in.databases.connection(in.databases.path(u"\\dbcalbuk.mdb"))
            .exec(QStringLiteral("DELETE FROM tblcalbuk"));
        QCOMPARE(texts(*document), QStringList("1:Аникин"));
    }

    void eachRecordIsKeptOnce()
    {
        Installation in;
        book(in, "R3AA", "Аникин");
        book(in, "RW3BB", "Боков");
        store::Connection &connection = in.databases.connection(in.databases.path(u"\\dbcalbuk.mdb"));
        StationFinder finder(connection, QStringLiteral("tblcalbuk"), {QStringLiteral("fam")});
        const qint64 before = connection.statementCount();
        QCOMPARE(finder.find({"RW3BB", "R3AA"}), 0);
        QCOMPARE(finder.find({"RW3BB", "R3AA"}), 0);
        QCOMPARE(connection.statementCount(), before + 1); // what is known is not looked up again
        QCOMPARE(finder.find({"", "R3AA"}), 1);
        QCOMPARE(finder.find({"via rw3bb", "x"}), 0);
        QCOMPARE(finder.find({"", ""}), -1);
        QCOMPARE(finder.records().rows(), 2);
        QCOMPARE(finder.records().text(1, 0), QStringLiteral("Аникин"));
    }

    /// Ten thousand different stations in a callbook of fifty thousand.
    void manyRows()
    {
        Installation in;
        in.sql(kBook,
               QStringLiteral(
                   "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<50000) "
                   "INSERT INTO tblcalbuk(ccall,fam,adres) SELECT 'R'||i||'A','Ф'||i,'ул. '||i FROM n"));
        in.sql(kLog, QStringLiteral(
                         "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<10000) "
                         "INSERT INTO tbllogTEMP(ccall,CONTR) SELECT 'r'||(i*5)||'a','via X'||i FROM n"));
        const auto elapsed = [&](const QByteArray &text) {
            QElapsedTimer timer;
            timer.start();
            const auto document = Document::read(list(text), in.databases);
            const qint64 needed = timer.elapsed();
            if (document->rows() != 10000)
                qFatal("%d rows", int(document->rows()));
            return needed;
        };
        const qint64 without = elapsed("{ccall}");
        const qint64 with = elapsed("{ccall} {tblcalbuk.fam} {tblcalbuk.adres}");
        qInfo("10000 rows: %d ms, with the callbook %d ms", int(without), int(with));
        QVERIFY(with < 2000); // without the index it would be minutes
        const auto document = Document::read(list("{tblcalbuk.adres}"), in.databases);
        QCOMPARE(texts(*document, 1112).last(), QStringLiteral("10000:ул. 50000"));
    }

    // ---- the shipped sticker

    void stickerWithAnAddress()
    {
        Installation in;
        in.sql(kBook, QStringLiteral(
                          "INSERT INTO tblcalbuk(ccall,fam,nname,otch,indeks,obl,qth,adres) VALUES('RW3BB',"
                          "'Боков','Борис','Борисович','392000','Тамбовская обл.','Тамбов','ул. Мира, 1')"));
        in.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall='R1ABC'"));
        blank(in, "R3AA", "RW3BB");
        blank(in, "R3AA", "RW3BB", "02.01.26"); // one sticker all the same
        const auto document = Document::read(stickers(), in.databases);
        QCOMPARE(document->cards(), 1);
        QCOMPARE(texts(*document),
                 QStringList({"To Radio", "de R1ABC", "R3AA", "via RW3BB", "Боков Борис Борисович",
                              "ул. Мира, 1", "Тамбов, Тамбовская обл.", "392000"}));
    }

    void stickerWithPartsOfAnAddress_data()
    {
        QTest::addColumn<QString>("values");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("no patronymic")
            << "'Боков','Борис','','1','О','Г','А'" << QStringList({"Боков Борис", "А", "Г, О", "1"});
        QTest::newRow("first name") << "'','Борис','','1','О','Г','А'"
                                    << QStringList({"Борис", "А", "Г, О", "1"});
        QTest::newRow("no name") << "'','','','1','О','Г','А'" << QStringList({"R3AA", "А", "Г, О", "1"});
        QTest::newRow("no region") << "'Боков','','','1','','Г','А'" << QStringList({"Боков", "А", "Г", "1"});
        QTest::newRow("no town") << "'Боков','','','1','О','','А'" << QStringList({"Боков", "А", "О", "1"});
        QTest::newRow("no index") << "'Боков','','',NULL,NULL,NULL,'А'" << QStringList({"Боков", "А"});
    }
    void stickerWithPartsOfAnAddress()
    {
        QFETCH(QString, values);
        QFETCH(QStringList, lines);
        Installation in;
        in.sql(kBook, QStringLiteral("INSERT INTO tblcalbuk(ccall,fam,nname,otch,indeks,obl,qth,adres) "
                                     "VALUES('R3AA',%1)")
                          .arg(values));
        blank(in, "R3AA");
        QCOMPARE(read(stickers(), in).mid(3), lines);
    }

    void stickerWithoutAnAddress()
    {
        Installation in;
        book(in, "R3AA", "Аникин", "  "); // a name alone is no address
        blank(in, "R3AA", "buro");
        blank(in, "R3AA", "BURO", "02.01.26");
        blank(in, "R9ZZ");
        const auto document = Document::read(stickers(), in.databases);
        QCOMPARE(document->cards(), 2);
        const QStringList head = {"Date", "UTC", "MHz", "RST", "2-way"};
        QCOMPARE(texts(*document),
                 QStringList({"To Radio", "de", "R3AA", "via buro"}) + head +
                     QStringList({"01 Jan 2026", "10:00", "02 Jan 2026", "10:00", "To Radio", "de", "R9ZZ"}) +
                     head + QStringList({"01 Jan 2026", "10:00"}));
    }
};

QTEST_GUILESS_MAIN(ReportStationsTest)
#include "reportstations.moc"
