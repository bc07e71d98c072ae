// Layouts with a title page: what stands on it and on the pages after it, and what is refused.
#include "report/document.h"
#include "report/shipped.h"
#include "store/error.h"
#include "support/installation.h"

#include <QTest>

using namespace report;
using testsupport::Installation;

namespace {

const QByteArray kTitle = "<g id='title'><rect width='50' height='50'/><text y='50'>T {rows}</text></g>\n";
const QByteArray kHead =
    "<g data-pages='rows'><path d='M0 9h90'/><text y='8'>call r{row} {ccall}</text></g>\n";
const QByteArray kDetail = "<g id='detail' data-height='5' data-rows='3'><text x='10' "
                           "y='13'>{row}:{ccall}</text></g>\n";
const QByteArray kSummary = "<g id='summary' data-height='5'><text x='10' y='18'>sum {rows}</text></g>\n";
const QByteArray kFoot = "<text y='99'>p{page}/{pages}</text>\n";
const QByteArray kCard =
    "<g id='card' data-columns='1' data-rows='1' data-width='90' data-height='90'>\n" + kDetail + "</g>";

/// A layout of a hundred millimetres whose body begins in line 2.
Layout layout(const QByteArray &body)
{
    return readLayout("<svg xmlns='http://www.w3.org/2000/svg' width='100mm' height='100mm' viewBox='0 0 100 "
                      "100' data-table='tblprint'>\n" +
                          body + "</svg>",
                      QStringLiteral("/x/a.rpt"));
}

QString refusal(const QByteArray &body)
{
    try {
        (void)layout(body);
        return QStringLiteral("read");
    } catch (const store::Error &error) {
        return error.engineText();
    }
}

void fill(const Installation &in, int count)
{
    in.sql(QStringLiteral("dbprint.mdb"),
           QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1) INSERT "
                          "INTO tblprint(ccall,ddate,CONTR) SELECT 'R'||i||'A',printf('%02d.03.26',i),'' "
                          "FROM n WHERE %1>0")
               .arg(count));
}

QStringList texts(const Document &document, qint64 page)
{
    QStringList result;
    const PageContent content = document.page(page);
    for (const PlacedLine &line : content.lines)
        result.append(line.texts.join(QString()));
    return result;
}

/// All pages, with a bar between them.
QString allTexts(const Document &document)
{
    QStringList result;
    for (qint64 page = 1; page <= document.pages(); ++page)
        result.append(texts(document, page).join(u' '));
    return result.join(QStringLiteral(" | "));
}

QList<PartName> artwork(const Document &document, qint64 page)
{
    QList<PartName> result;
    const PageContent content = document.page(page);
    for (const PlacedArtwork &placed : content.artwork)
        result.append(placed.part);
    return result;
}

} // namespace

class ReportTitleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void comesOnceBeforeTheRows_data()
    {
        QTest::addColumn<int>("rows");
        QTest::addColumn<bool>("summary");
        QTest::addColumn<QString>("all");
        const auto row = [](int rows, bool summary, const char *all) {
            QTest::newRow(qPrintable(QStringLiteral("%1 rows%2").arg(rows).arg(summary ? ", summary" : "")))
                << rows << summary << QString::fromLatin1(all);
        };
        row(0, false, "p1/1 T 0");
        row(0, true, "p1/1 T 0");
        row(1, false, "p1/2 T 1 | p2/2 call r1 R1A 1:R1A");
        row(3, false, "p1/2 T 3 | p2/2 call r1 R1A 1:R1A 2:R2A 3:R3A");
        row(4, false, "p1/3 T 4 | p2/3 call r1 R1A 1:R1A 2:R2A 3:R3A | p3/3 call r4 R4A 4:R4A");
        row(2, true, "p1/2 T 2 | p2/2 call r1 R1A 1:R1A 2:R2A sum 2");
        row(3, true, "p1/3 T 3 | p2/3 call r1 R1A 1:R1A 2:R2A 3:R3A | p3/3 call r  sum 3");
        row(4, true, "p1/3 T 4 | p2/3 call r1 R1A 1:R1A 2:R2A 3:R3A | p3/3 call r4 R4A 4:R4A sum 4");
    }
    void comesOnceBeforeTheRows()
    {
        QFETCH(int, rows);
        QFETCH(bool, summary);
        QFETCH(QString, all);
        Installation in;
        fill(in, rows);
        // Where the groups stand in the file does not count.
        for (const QByteArray &body : {kTitle + kHead + kDetail + (summary ? kSummary : "") + kFoot,
                                       kFoot + (summary ? kSummary : "") + kDetail + kHead + kTitle})
            QCOMPARE(allTexts(*Document::read(layout(body), in.databases)), all);
    }

    void artworkStandsWithItsTexts()
    {
        Installation in;
        fill(in, 1);
        const auto document =
            Document::read(layout(kTitle + kHead + kDetail + "<g><circle r='5'/></g>"), in.databases);
        QCOMPARE(artwork(*document, 1), QList<PartName>({PartName::Page, PartName::Title}));
        QCOMPARE(artwork(*document, 2), QList<PartName>({PartName::Page, PartName::Rows}));
        const Layout &read = document->layout();
        QVERIFY(read.titlePage);
        QVERIFY(read.part(PartName::Page).artwork.contains("circle"));
        QVERIFY(!read.part(PartName::Page).artwork.contains("rect"));
        QVERIFY(!read.part(PartName::Page).artwork.contains("path"));
        QVERIFY(read.part(PartName::Title).artwork.contains("rect"));
        QVERIFY(read.part(PartName::Rows).artwork.contains("path"));
        QVERIFY(!read.part(PartName::Rows).artwork.contains("data-"));
    }

    void pagesOfSingleElements()
    {
        Installation in;
        fill(in, 1);
        const auto document = Document::read(
            layout("<g transform='translate(5,0)'><path data-pages=' rows ' d='M0 1h1'/><path d='M0 2h1'/>"
                   "<text y='5' data-pages='rows'>a</text><text y='6'>b</text>"
                   "<g data-pages='rows'><g data-pages='rows'><text y='7'>c</text></g>" +
                   kDetail + kSummary + "</g></g>" + kTitle),
            in.databases);
        QCOMPARE(allTexts(*document), QStringLiteral("b T 1 | b a c 1:R1A sum 1"));
        const Layout &read = document->layout();
        QVERIFY(read.part(PartName::Page).artwork.contains("M0 2h1"));
        QVERIFY(!read.part(PartName::Page).artwork.contains("M0 1h1"));
        QVERIFY(read.part(PartName::Rows).artwork.contains("M0 1h1"));
        QCOMPARE(read.part(PartName::Detail).lines.front().toPage.e, 15.0);
    }

    /// A layout whose title page was taken out prints as a list; a heading that is called one stays.
    void withoutATitlePage()
    {
        Installation in;
        const QByteArray body = kHead + kDetail + kFoot + "<g id='header'><text y='3'>head</text></g>";
        QCOMPARE(allTexts(*Document::read(layout(body), in.databases)), QStringLiteral("p1/1 head call r "));
        fill(in, 4);
        QCOMPARE(allTexts(*Document::read(layout(body), in.databases)),
                 QStringLiteral("p1/2 head call r1 R1A 1:R1A 2:R2A 3:R3A | p2/2 head call r4 R4A 4:R4A"));
        const QByteArray hidden = "<g id='title' style='display:none'><text y='5'>T</text></g>";
        QCOMPARE(allTexts(*Document::read(layout(body + hidden), in.databases)),
                 allTexts(*Document::read(layout(body), in.databases)));
    }

    void valuesOnTheTitlePage()
    {
        Installation in;
        fill(in, 5);
        in.sql(QStringLiteral("dbprint.mdb"),
               QStringLiteral("INSERT INTO tblprint(ccall) VALUES(''),('r1a')"));
        in.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall='R1ABC'"));
        const auto document = Document::read(
            layout("<g id='title'><text y='5'>{tbltit.ccall} {rows} {filled ccall} {different ccall} {first "
                   "ddate} {last ccall} {page}/{pages}</text></g>" +
                   kDetail + "<text y='9'>[{ccall}]</text>"),
            in.databases);
        QCOMPARE(texts(*document, 1),
                 QStringList({QStringLiteral("[]"), QStringLiteral("R1ABC 7 6 5 01.03.26 r1a 1/4")}));
        QCOMPARE(texts(*document, 2).first(), QStringLiteral("[R1A]"));
    }

    void datesOfAllRows()
    {
        Installation in;
        const Layout list = layout("<text y='5'>{earliest ddate}..{latest ddate:d MMM yyyy}<tspan "
                                   "data-if='!earliest ddate'> none</tspan></text>" +
                                   kDetail);
        QCOMPARE(texts(*Document::read(list, in.databases), 1).first(), QStringLiteral(".. none"));
        in.sql(QStringLiteral("dbprint.mdb"),
               QStringLiteral("INSERT INTO tblprint(ddate) VALUES(''),('later'),(NULL),('31.02.26')"));
        QCOMPARE(texts(*Document::read(list, in.databases), 1).first(), QStringLiteral(".. none"));
        in.sql(QStringLiteral("dbprint.mdb"),
               QStringLiteral("INSERT INTO tblprint(ddate) VALUES('05.03.26'),(' 31.12.98 '),('01.04.26'),"
                              "('02.01.26'),('')"));
        QCOMPARE(texts(*Document::read(list, in.databases), 1).first(),
                 QStringLiteral("31.12.98..1 Apr 2026"));
    }

    void countsOfNothingAreEmpty()
    {
        Installation in;
        const Layout list = layout("<text y='5'>x<tspan data-if='rows'> rows</tspan><tspan data-if='filled "
                                   "CONTR'> filled</tspan><tspan data-if='!different CONTR'> no country"
                                   "</tspan><tspan data-if='page'> page</tspan></text>" +
                                   kDetail);
        QCOMPARE(texts(*Document::read(list, in.databases), 1).first(), QStringLiteral("x no country page"));
        fill(in, 1);
        QCOMPARE(texts(*Document::read(list, in.databases), 1).first(),
                 QStringLiteral("x rows no country page"));
        in.sql(QStringLiteral("dbprint.mdb"), QStringLiteral("UPDATE tblprint SET CONTR='0'"));
        QCOMPARE(texts(*Document::read(list, in.databases), 1).first(), QStringLiteral("x rows filled page"));
    }

    // ---- refusals

    void refused_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("what");
        const auto row = [](const char *name, const QByteArray &body, const char *what) {
            QTest::newRow(name) << body << QString::fromUtf8(what);
        };
        row("title before cards", kTitle + kCard,
            "строка 3: у карточек не бывает титульного листа (группы title)");
        row("title after cards", kCard + "\n" + kTitle,
            "строка 5: у карточек не бывает титульного листа (группы title)");
        row("twice", kTitle + kDetail + kTitle, "строка 4: вторая группа title");
        row("within itself", "<g id='title'>\n<g id='title'/></g>" + kDetail,
            "строка 3: вторая группа title");
        row("rows in the title", "<g id='title'>\n" + kDetail + "</g>",
            "строка 3: группа detail не может стоять здесь");
        row("summary in the title", "<g id='title'>\n" + kSummary + "</g>" + kDetail,
            "строка 3: группа summary не может стоять здесь");
        row("card in the title", "<g id='title'>\n" + kCard + "</g>",
            "строка 3: группа card не может стоять здесь");
        row("in the rows", "<g id='detail' data-height='5' data-rows='3'>\n<g id='title'/></g>",
            "строка 3: группа title не может стоять здесь");
        row("in the summary", kDetail + "<g id='summary' data-height='5'>\n<g id='title'/></g>",
            "строка 4: группа title не может стоять здесь");
        row("on the pages of rows", "<g data-pages='rows'>\n<g id='title'/></g>" + kDetail,
            "строка 3: группа title не может стоять здесь");
        row("title alone", kTitle, "строка 3: нет группы с id=\"detail\"");
        row("other pages", "\n<g data-pages='title'/>" + kDetail,
            "строка 3: в data-pages может стоять только rows, а не title");
        row("pages of the title", "<g id='title' data-pages='rows'/>" + kDetail,
            "строка 2: data-pages бывает только вне групп title, card, detail и summary");
        row("pages in the title", "<g id='title'>\n<text data-pages='rows'>a</text></g>" + kDetail,
            "строка 3: data-pages бывает только вне групп title, card, detail и summary");
        row("pages of the rows", "<g id='detail' data-height='5' data-rows='3' data-pages='rows'/>",
            "строка 2: data-pages бывает только вне групп title, card, detail и summary");
        row("pages in the summary",
            kDetail + "<g id='summary' data-height='5'>\n<path d='M0 0h1' data-pages='rows'/></g>",
            "строка 4: data-pages бывает только вне групп title, card, detail и summary");
        row("pages of a part", "<text>a\n<tspan data-pages='rows'>b</tspan></text>" + kDetail,
            "строка 3: data-pages бывает у всего текста, а не у его части");
        row("pages of cards", "\n<g data-pages='rows'/>" + kCard,
            "строка 3: у карточек не бывает data-pages: титульного листа у них нет");
        row("cards on pages of rows", "<g data-pages='rows'>\n" + kCard + "</g>",
            "строка 3: группа card не может стоять здесь");
        row("clone of a shape of the title",
            "<g id='title'><path id='p' d='M0 0h1'/></g>\n<use href='#p'/>" + kDetail,
            "строка 3: <use> повторяет рисунок из другой группы, разъедините копию");
        row("clone on the title page",
            "<g id='title'><use href='#p'/></g>\n<g id='p'><path d='M0 0h1'/></g>" + kDetail,
            "строка 2: <use> повторяет рисунок из другой группы, разъедините копию");
        row("clone of a group of which a part is elsewhere",
            "<g id='p'><path d='M0 0h1'/><path data-pages='rows' d='M0 0h1'/></g><use href='#p'/>" + kDetail,
            "строка 2: <use> повторяет рисунок из другой группы, разъедините копию");
        row("field", "<g id='title'>\n<text>{ccall}</text></g>" + kDetail,
            "строка 3: на титульном листе нет строк, вместо {ccall} напишите {first ccall}");
        row("field with a format", "<g id='title'><text>{ddate:dd MMM}</text></g>" + kDetail,
            "строка 2: на титульном листе нет строк, вместо {ddate} напишите {first ddate}");
        row("condition", "<g id='title' data-if='!CONTR'>\n<text>a</text></g>" + kDetail,
            "строка 3: на титульном листе нет строк, вместо {CONTR} напишите {first CONTR}");
        row("row number", "<g id='title'><text>{row}</text></g>" + kDetail,
            "строка 2: на титульном листе нет строк, {row} там пусто");
        row("callbook", "<g id='title'><text>{tblcalbuk.adres}</text></g>" + kDetail,
            "строка 2: на титульном листе нет строк, {tblcalbuk.adres} там пусто");
    }
    void refused()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, what);
        QCOMPARE(refusal(body), what);
    }

    void clonesOfTheSamePart()
    {
        QCOMPARE(refusal("<defs><path id='d' d='M0 0h1'/></defs><g id='title'><path id='t' d='M0 1h1'/><use "
                         "href='#t'/><use href='#d'/></g><use href='#d'/><g data-pages='rows'><path id='r' "
                         "d='M0 2h1'/></g><use href='#r' data-pages='rows'/><use href='#d'/>" +
                         kDetail),
                 QStringLiteral("read"));
    }

    void pagesOfTheWholeDrawing()
    {
        QString said;
        try {
            (void)readLayout("<svg width='9cm' height='9cm' data-table='tblprint'\n data-pages='rows'>" +
                                 kDetail + "</svg>",
                             QStringLiteral("a.rpt"));
        } catch (const store::Error &error) {
            said = error.engineText();
        }
        QCOMPARE(said,
                 QStringLiteral("строка 2: data-pages бывает у группы или текста, а не у всего рисунка"));
    }
};

QTEST_GUILESS_MAIN(ReportTitleTest)
#include "reporttitle.moc"
