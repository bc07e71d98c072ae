// Layouts filled with rows: what stands on which page, which contacts share a card, what is counted.
#include "report/document.h"
#include "report/shipped.h"
#include "store/error.h"
#include "support/installation.h"

#include <QTest>

using namespace report;
using testsupport::Installation;

namespace {

constexpr auto kSize = "width='100mm' height='100mm' viewBox='0 0 100 100' ";

Layout layout(const QByteArray &attributes, const QByteArray &body)
{
    return readLayout("<svg xmlns='http://www.w3.org/2000/svg' " + QByteArray(kSize) + attributes + ">\n" +
                          body + "</svg>",
                      QStringLiteral("/x/a.rpt"));
}

/// A list of `rows` rows a page with a header and a summary of `summary` millimetres.
Layout list(int rows, double summary = 0,
            const QByteArray &header = "<text y='3'>p{page}/{pages} r{row}</text>")
{
    QByteArray body = header;
    body += "<g id='detail' data-height='5' data-rows='" + QByteArray::number(rows) +
            "'><path d='M0 14h9'/><text x='10' y='13'>{row}:{ccall}</text></g>";
    if (summary > 0)
        body += "<g id='summary' data-height='" + QByteArray::number(summary) +
                "'><text x='10' y='18'>sum {rows}</text></g>";
    return layout("data-table='tblprint'", body);
}

/// Cards of `lines` contacts, two by two on a sheet.
Layout cards(int lines, const QByteArray &attributes = "data-group='ccall CONTR'")
{
    return layout(
        "data-table='tbllogTEMP' data-order='cdate(ddate),ttime'",
        "<g id='card' data-columns='2' data-rows='2' data-width='40' data-height='30' data-pitch-x='45' "
        "data-pitch-y='50' " +
            attributes +
            "><rect width='40' height='30'/><text x='1' y='5'>{ccall}</text><text x='20' y='5' "
            "data-if='CONTR'>via {CONTR}</text><g id='detail' data-height='4' data-rows='" +
            QByteArray::number(lines) + "'><text x='1' y='12'>{ddate} {ttime}</text></g></g>");
}

void fillPrint(const Installation &in, int count)
{
    in.sql(QStringLiteral("dbprint.mdb"),
           QStringLiteral(
               "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1) INSERT INTO "
               "tblprint(ccall,ddate,ttime,CONTR,QSLP) SELECT 'R'||i||'A',printf('%02d.03.26',i),'10:00',"
               "CASE i%2 WHEN 0 THEN 'Россия' ELSE 'россия' END,CASE i%3 WHEN 0 THEN '+' ELSE '' END "
               "FROM n WHERE %1>0")
               .arg(count));
}

void blank(const Installation &in, const char *call, const char *date, const char *time,
           const char *route = "")
{
    in.sql(QStringLiteral("dbiaru.mdb"),
           QStringLiteral("INSERT INTO tbllogTEMP(ccall,ddate,ttime,CONTR) VALUES('%1','%2','%3','%4')")
               .arg(QString::fromUtf8(call), QString::fromUtf8(date), QString::fromUtf8(time),
                    QString::fromUtf8(route)));
}

/// Texts of a page, "text @x,y" each, place in whole millimetres.
QStringList texts(const Document &document, qint64 page, bool places = false)
{
    QStringList result;
    const PageContent content = document.page(page);
    for (const PlacedLine &line : content.lines) {
        QString text = line.texts.join(QString());
        if (places)
            text += QStringLiteral(" @%1,%2").arg(qRound(line.toPage.e)).arg(qRound(line.toPage.f));
        result.append(text);
    }
    return result;
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

QString unreadable(const char *what)
{
    return QStringLiteral("%1 %2").arg(int(store::ErrorKind::Unreadable)).arg(QString::fromUtf8(what));
}

} // namespace

class ReportPagesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void rowsOnPages()
    {
        Installation in;
        fillPrint(in, 7);
        const auto document = Document::read(list(3), in.databases);
        QCOMPARE(document->rows(), 7);
        QCOMPARE(document->pages(), 3);
        QCOMPARE(texts(*document, 1, true),
                 QStringList({QStringLiteral("p1/3 r1 @0,3"), QStringLiteral("1:R1A @10,13"),
                              QStringLiteral("2:R2A @10,18"), QStringLiteral("3:R3A @10,23")}));
        QCOMPARE(texts(*document, 3), QStringList({QStringLiteral("p3/3 r7"), QStringLiteral("7:R7A")}));
        const PageContent content = document->page(1);
        QCOMPARE(content.artwork.size(), 3); // the path of each row
        QCOMPARE(content.artwork[2].dy, 10.0);
    }

    void emptyTableGivesOnePage()
    {
        Installation in;
        const auto document = Document::read(list(3, 5), in.databases);
        QCOMPARE(document->pages(), 1);
        QCOMPARE(texts(*document, 1, true),
                 QStringList({QStringLiteral("p1/1 r @0,3"), QStringLiteral("sum 0 @10,13")}));
        const auto sheet = Document::read(cards(3), in.databases);
        QCOMPARE(sheet->pages(), 1);
        sheet->setFirstPlace(4);
        QCOMPARE(sheet->pages(), 1);
        QVERIFY(texts(*sheet, 1).isEmpty());
        QVERIFY(sheet->page(1).artwork.isEmpty());
    }

    void summaryFollowsTheLastRow_data()
    {
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("pages");
        QTest::addColumn<QString>("where");
        QTest::newRow("1") << 1 << 1 << "sum 1 @10,18";
        QTest::newRow("room for it") << 2 << 1 << "sum 2 @10,23";
        QTest::newRow("no room") << 3 << 2 << "sum 3 @10,13";
        QTest::newRow("next page") << 5 << 2 << "sum 5 @10,23";
    }
    void summaryFollowsTheLastRow()
    {
        QFETCH(int, rows);
        QFETCH(int, pages);
        QFETCH(QString, where);
        Installation in;
        fillPrint(in, rows);
        const auto document = Document::read(list(3, 5), in.databases);
        QCOMPARE(document->pages(), qint64(pages));
        for (int page = 1; page < pages; ++page)
            QVERIFY(texts(*document, page).filter(QStringLiteral("sum")).isEmpty());
        QCOMPARE(texts(*document, pages, true).last(), where);
    }

    void storedOrderUnlessTheLayoutHasOne()
    {
        Installation in;
        const QString insert =
            QStringLiteral("INSERT INTO tblprint(ccall,ddate) VALUES('B1','02.01.26'),('C1','01.02.25'),"
                           "('A1','03.01.26')");
        in.sql(QStringLiteral("dbprint.mdb"), insert);
        const QByteArray body = "<g id='detail' data-height='5' data-rows='9'><text y='9'>{ccall}</text></g>";
        QCOMPARE(texts(*Document::read(layout("data-table='TBLPRINT'", body), in.databases), 1),
                 QStringList({QStringLiteral("B1"), QStringLiteral("C1"), QStringLiteral("A1")}));
        QCOMPARE(
            texts(*Document::read(layout("data-table='tblprint' data-order='ccall'", body), in.databases), 1),
            QStringList({QStringLiteral("A1"), QStringLiteral("B1"), QStringLiteral("C1")}));
        in.sql(QStringLiteral("dbprint.mdb"),
               QStringLiteral("INSERT INTO tblprint(ccall) VALUES(''),(NULL),('D1')"));
        QCOMPARE(texts(*Document::read(
                           layout("data-table='tblprint' data-filled='CCALL' data-order='ccall desc'", body),
                           in.databases),
                       1),
                 QStringList({QStringLiteral("D1"), QStringLiteral("C1"), QStringLiteral("B1"),
                              QStringLiteral("A1")}));
        QCOMPARE(
            texts(*Document::read(layout("data-table='tblprint' data-filled='ddate'", body), in.databases),
                  1),
            QStringList({QStringLiteral("B1"), QStringLiteral("C1"), QStringLiteral("A1")}));
        in.sql(QStringLiteral("dbprint.mdb"),
               QStringLiteral("DELETE FROM tblprint WHERE ddate IS NULL OR ddate=''"));
        QCOMPARE(texts(*Document::read(layout("data-table='tblprint' data-order='cdate(ddate) desc'", body),
                                       in.databases),
                       1),
                 QStringList({QStringLiteral("A1"), QStringLiteral("B1"), QStringLiteral("C1")}));
    }

    void valuesCountedOverAllRows()
    {
        Installation in;
        fillPrint(in, 6);
        in.sql(QStringLiteral("dbprint.mdb"),
               QStringLiteral("INSERT INTO tblprint(ccall,ddate,CONTR) VALUES('r1a','bad','')"));
        const auto document = Document::read(list(2, 0,
                                                  "<text y='3'>{rows} {different ccall} {different CONTR} "
                                                  "{filled QSLP} {first ddate} {last ddate}|{first "
                                                  "ddate:d MMMM yyyy}|{last ddate:yyyy}</text>"),
                                             in.databases);
        QCOMPARE(texts(*document, 2).front(), QStringLiteral("7 6 1 2 01.03.26 bad|1 March 2026|bad"));
    }

    void tablesOfOneRow()
    {
        Installation in;
        in.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall='R1ABC'"));
        in.sql(QStringLiteral("dbhelp.mdb"), QStringLiteral("UPDATE tbltitul SET contest='Иван', ccall='x'"));
        const auto document = Document::read(
            list(2, 0, "<text y='3'>{tbltit.ccall} {TBLTITUL.Contest}{tbltitul.txtps1}.</text>"),
            in.databases);
        QCOMPARE(texts(*document, 1).front(), QStringLiteral("R1ABC Иван."));
    }

    void conditions()
    {
        Installation in;
        fillPrint(in, 3);
        const auto document = Document::read(
            layout("data-table='tblprint'",
                   "<g id='detail' data-height='5' data-rows='9'><text y='9'>{row}<tspan "
                   "data-if='QSLP'> yes</tspan><tspan data-if='!QSLP, ccall'> no</tspan></text>"
                   "<text y='9' data-if='QTH'>never</text></g>"),
            in.databases);
        QCOMPARE(texts(*document, 1),
                 QStringList({QStringLiteral("1 no"), QStringLiteral("2 no"), QStringLiteral("3 yes")}));
    }

    // ---- cards

    void contactsOfOneStationShareACard()
    {
        Installation in;
        blank(in, "JA1A", "07.01.26", "10:00");
        blank(in, "DL1A", "02.01.26", "09:00");
        blank(in, "ja1a ", "05.01.26", "09:00");
        blank(in, "JA1A", "06.01.26", "09:00", "JP1X");
        blank(in, "JA1A", "01.01.26", "09:00");
        const auto document = Document::read(cards(3), in.databases);
        QCOMPARE(document->cards(), 3);
        QCOMPARE(document->pages(), 1);
        QCOMPARE(texts(*document, 1, true),
                 QStringList({QStringLiteral("JA1A @1,5"), QStringLiteral("01.01.26 09:00 @1,12"),
                              QStringLiteral("05.01.26 09:00 @1,16"), QStringLiteral("07.01.26 10:00 @1,20"),
                              QStringLiteral("DL1A @46,5"), QStringLiteral("02.01.26 09:00 @46,12"),
                              QStringLiteral("JA1A @1,55"), QStringLiteral("via JP1X @20,55"),
                              QStringLiteral("06.01.26 09:00 @1,62")}));
    }

    void moreContactsThanACardTakes()
    {
        Installation in;
        for (int i = 1; i <= 7; ++i)
            blank(in, "JA1A", QByteArray("0" + QByteArray::number(i) + ".01.26").constData(), "10:00");
        blank(in, "DL1A", "09.01.26", "09:00");
        const auto document = Document::read(cards(3), in.databases);
        QCOMPARE(document->cards(), 4);
        QCOMPARE(texts(*document, 1).filter(QStringLiteral("JA1A")).size(), 3);
        QCOMPARE(texts(*document, 1).filter(QStringLiteral("10:00")).size(), 7);
    }

    void withoutAGroupEveryContactHasItsCard()
    {
        Installation in;
        blank(in, "JA1A", "01.01.26", "10:00");
        blank(in, "JA1A", "02.01.26", "10:00");
        QCOMPARE(Document::read(cards(3, ""), in.databases)->cards(), 2);
    }

    void firstPlaceOfAStartedSheet()
    {
        Installation in;
        for (const char *call : {"A1A", "B1B", "C1C", "D1D"})
            blank(in, call, "01.01.26", "10:00");
        const auto document = Document::read(cards(3), in.databases);
        QCOMPARE(document->pages(), 1);
        document->setFirstPlace(3);
        QCOMPARE(document->pages(), 2);
        QCOMPARE(texts(*document, 1, true).first(), QStringLiteral("A1A @1,55"));
        QCOMPARE(texts(*document, 1).size(), 4);
        QCOMPARE(texts(*document, 2, true).first(), QStringLiteral("C1C @1,5"));
        document->setFirstPlace(99);
        QCOMPARE(document->firstPlace(), 4);
        document->setFirstPlace(-1);
        QCOMPARE(document->firstPlace(), 1);
    }

    // ---- room

    void roomOfATextEndsAtTheBorder()
    {
        Installation in;
        blank(in, "A1A", "01.01.26", "10:00");
        const auto document = Document::read(
            layout("data-table='tbllogTEMP'",
                   "<g id='card' transform='translate(10,20)' data-columns='1' data-rows='1' data-width='40' "
                   "data-height='30'>"
                   "<text x='15' y='5'>start</text><text x='15' y='5' text-anchor='end'>end</text>"
                   "<text x='15' y='5' text-anchor='middle'>middle</text><text x='15' y='5' "
                   "data-width='9'>given</text>"
                   "<text x='35' y='5' data-width='9'>border</text><text x='15' y='5' transform='rotate(90 "
                   "15 5)'>down</text>"
                   "<text x='7' y='2.5' transform='scale(2)'>scaled</text><text x='-1' y='5'>beside</text>"
                   "<g id='detail' data-height='5' data-rows='2'/></g>"),
            in.databases);
        QStringList widths;
        const PageContent content = document->page(1);
        for (const PlacedLine &line : content.lines)
            widths.append(QStringLiteral("%1 %2").arg(line.texts.join(QString())).arg(line.width));
        QCOMPARE(widths, QStringList({QStringLiteral("start 25"), QStringLiteral("end 15"),
                                      QStringLiteral("middle 30"), QStringLiteral("given 9"),
                                      QStringLiteral("border 5"), QStringLiteral("down 25"),
                                      QStringLiteral("scaled 13")}));
    }

    void lineEndsOfAValueAreBlanks()
    {
        Installation in;
        in.sql(QStringLiteral("dbprint.mdb"),
               QStringLiteral("INSERT INTO tblprint(ccall) VALUES('A'||char(10)||'B'||char(9)||'C')"));
        QCOMPARE(texts(*Document::read(list(3), in.databases), 1).last(), QStringLiteral("1:A B C"));
    }

    // ---- the table

    void changesAfterwardsDoNotShow()
    {
        Installation in;
        fillPrint(in, 2);
        const auto document = Document::read(list(3), in.databases);
        in.sql(QStringLiteral("dbprint.mdb"), QStringLiteral("DELETE FROM tblprint"));
        QCOMPARE(texts(*document, 1).last(), QStringLiteral("2:R2A"));
    }

    void writingWhileShown()
    {
        Installation in;
        fillPrint(in, 2);
        const auto document = Document::read(list(3), in.databases);
        in.databases.connection(in.databases.path(u"\\dbprint.mdb"))
            .exec(QStringLiteral("DELETE FROM tblprint"));
        QCOMPARE(document->rows(), 2);
    }

    void readingCanBeStopped()
    {
        Installation in;
        fillPrint(in, 5000);
        qint64 steps = 0;
        QVERIFY(!Document::read(list(3), in.databases, [&](qint64 done, qint64 total) {
            ++steps;
            return done == 0 && total == 5000;
        }));
        QCOMPARE(steps, 2);
    }

    void manyRowsStayInOrder()
    {
        Installation in;
        fillPrint(in, 60000);
        const auto document = Document::read(list(10), in.databases);
        QCOMPARE(document->pages(), 6000);
        QCOMPARE(texts(*document, 6000).last(), QStringLiteral("60000:R60000A"));
        QCOMPARE(texts(*document, 4321).last(), QStringLiteral("43210:R43210A"));
    }

    void whatIsNotThere()
    {
        Installation in;
        const QByteArray detail =
            "<g id='detail' data-height='5' data-rows='9'>\n<text y='9'>{ccall}</text></g>";
        QCOMPARE(refusal(layout("data-table='tblprint'", "\n<text>{nosuch}</text>" + detail), in),
                 unreadable("строка 3: неизвестное поле {nosuch}"));
        QCOMPARE(refusal(layout("data-table='tblother' data-file='dbprint.mdb'", detail), in),
                 unreadable("строка 1: в файле dbprint.mdb нет таблицы tblother"));
        QCOMPARE(refusal(layout("data-table='tblprint'", "<text>{tblx.a}</text>" + detail), in),
                 unreadable("строка 2: неизвестная таблица {tblx.a}"));
        QCOMPARE(refusal(layout("data-table='tblprint'", "<text>{tbltit.a}</text>" + detail), in),
                 unreadable("строка 2: неизвестное поле {tbltit.a}"));
        for (const char *field : {"nosuch", "ccall)>'0' or len(ccall", "len(ccall)"})
            QCOMPARE(
                refusal(layout("data-table='tblprint' data-filled=\"" + QByteArray(field) + "\"", detail),
                        in),
                unreadable(qPrintable(QStringLiteral("строка 1: неизвестное поле data-filled=\"%1\"")
                                          .arg(QLatin1String(field)))));
        for (const char *order :
             {"nosuch", "ccall; delete from tblprint", "ccall desc asc", "cdate(", "1) or (1"})
            QVERIFY2(
                refusal(layout("data-table='tblprint' data-order='" + QByteArray(order) + "'", detail), in)
                    .startsWith(unreadable("строка 1: непонятный порядок строк data-order=")),
                order);
        Installation without;
        QVERIFY(QFile::remove(without.file(QStringLiteral("dbprint.mdb"))));
        QCOMPARE(refusal(layout("data-table='tblprint'", detail), without),
                 QStringLiteral("%1 файла нет").arg(int(store::ErrorKind::Missing)));
    }

    void columnOfAnotherProgram()
    {
        Installation in;
        in.sql(QStringLiteral("dbprint.mdb"), QStringLiteral("ALTER TABLE tblprint ADD COLUMN Заметка TEXT"));
        in.sql(QStringLiteral("dbprint.mdb"),
               QStringLiteral("INSERT INTO tblprint(ccall,Заметка) VALUES('A','да')"));
        const auto document = Document::read(list(3, 0, "<text y='3'>{Заметка}</text>"), in.databases);
        QCOMPARE(texts(*document, 1).front(), QStringLiteral("да"));
    }

    // ---- the shipped layouts

    void missingLayoutsAreMade()
    {
        Installation in;
        QCOMPARE(createMissingLayouts(in.databases), shippedLayouts());
        QCOMPARE(createMissingLayouts(in.databases), QStringList());
        QFile own(in.file(QStringLiteral("qsl.rpt")));
        QVERIFY(own.open(QIODevice::WriteOnly));
        own.write("mine");
        own.close();
        QVERIFY(QFile::remove(in.file(QStringLiteral("diplom.rpt"))));
        QVERIFY(QFile::remove(in.file(QStringLiteral("vurnal.rpt"))));
        QVERIFY(QFile::rename(in.file(QStringLiteral("qsl1.rpt")), in.file(QStringLiteral("QSL1.RPT"))));
        store::Library again({in.folder(), false}, in.userFolder());
        QCOMPARE(createMissingLayouts(again),
                 QStringList({QStringLiteral("diplom.rpt"), QStringLiteral("vurnal.rpt")}));
        QVERIFY(!QFile::exists(in.file(QStringLiteral("qsl1.rpt"))));
        QVERIFY(own.open(QIODevice::ReadOnly));
        QCOMPARE(own.readAll(), QByteArray("mine"));
        QVERIFY(QFile::remove(in.file(QStringLiteral("vurnal.rpt"))));
        store::Library readOnly({in.folder(), true}, in.userFolder());
        QCOMPARE(createMissingLayouts(readOnly), QStringList());
        QVERIFY(!QFile::exists(in.file(QStringLiteral("vurnal.rpt"))));
    }

    void shippedLayoutsFitTheTables()
    {
        Installation in;
        const QStringList names = shippedLayouts();
        for (const QString &name : names)
            QCOMPARE(Document::read(readLayout(shippedLayout(name), name), in.databases)->pages(), 1);
    }

    void shippedCardPrintsNoEmptyRoute()
    {
        Installation in;
        blank(in, "A1A", "01.01.26", "10:00");
        blank(in, "B1B", "05.03.26", "10:00", "B9X");
        const auto document = Document::read(
            readLayout(shippedLayout(QStringLiteral("qsl.rpt")), QStringLiteral("qsl.rpt")), in.databases);
        QCOMPARE(texts(*document, 1).filter(QStringLiteral("via")), QStringList({QStringLiteral("via B9X")}));
        QVERIFY(texts(*document, 1).contains(QStringLiteral("05 Mar 2026")));
    }
};

QTEST_GUILESS_MAIN(ReportPagesTest)
#include "reportpages.moc"
