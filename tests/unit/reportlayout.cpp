// Layouts as they are read: pages, groups, texts and their styles, and what is said of those that are none.
#include "report/layout.h"
#include "report/shipped.h"
#include "report/svgvalues.h"
#include "store/error.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace report;

namespace {

const QByteArray kHead = "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' "
                         "width='210mm' height='297mm' viewBox='0 0 210 297' data-table='tblprint'>";
const QByteArray kDetail =
    "<g id='detail' data-height='5' data-rows='10'><text x='10' y='20'>{ccall}</text></g>";

Layout read(const QByteArray &body, const QByteArray &head = kHead)
{
    return readLayout(head + body + "</svg>", QStringLiteral("/x/a.rpt"));
}

/// What a layout is refused with; "read" where it is not.
QString refusal(const QByteArray &bytes)
{
    try {
        (void)readLayout(bytes, QStringLiteral("/x/a.rpt"));
        return QStringLiteral("read");
    } catch (const store::Error &error) {
        return error.kind() == store::ErrorKind::Unreadable
                   ? error.engineText()
                   : QStringLiteral("kind %1").arg(int(error.kind()));
    }
}

const TextLine &onlyLine(const Layout &layout, PartName part = PartName::Page)
{
    if (layout.part(part).lines.size() != 1)
        qFatal("%d lines", int(layout.part(part).lines.size()));
    return layout.part(part).lines.front();
}

QString literal(const Segment &segment)
{
    return segment.text.size() == 1 && segment.text[0].quantity == Quantity::Literal ? segment.text[0].text
                                                                                     : QString();
}

/// A reader that never ends would hang the test; one that takes long is as bad.
void mustEnd(const QByteArray &bytes)
{
    QElapsedTimer timer;
    timer.start();
    const QString result = refusal(bytes);
    if (result.isEmpty() || timer.elapsed() > 5000)
        qFatal("%s after %lld ms", qPrintable(result), timer.elapsed());
}

} // namespace

class ReportLayoutTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shippedOnesAreRead()
    {
        QCOMPARE(shippedLayouts(), QStringList({QStringLiteral("diplom.rpt"), QStringLiteral("qsl.rpt"),
                                                QStringLiteral("qsl1.rpt"), QStringLiteral("vurnal.rpt")}));
        const Layout award =
            readLayout(shippedLayout(QStringLiteral("diplom.rpt")), QStringLiteral("diplom.rpt"));
        QVERIFY(award.titlePage && !award.sheet);
        QCOMPARE(award.table, QStringLiteral("tbllogTEMP"));
        QCOMPARE(award.order, QStringLiteral("ccall"));
        QCOMPARE(award.rowsPerPage, 40);
        const Layout cards = readLayout(shippedLayout(QStringLiteral("QSL.RPT")), QStringLiteral("qsl.rpt"));
        QCOMPARE(cards.width, 297.0);
        QCOMPARE(cards.height, 210.0);
        QCOMPARE(cards.table, QStringLiteral("tbllogTEMP"));
        QCOMPARE(cards.file, QStringLiteral("dbiaru.mdb"));
        QVERIFY(cards.sheet);
        QCOMPARE(cards.sheet->columns * cards.sheet->rows, 4);
        const Layout stickers =
            readLayout(shippedLayout(QStringLiteral("qsl1.rpt")), QStringLiteral("qsl1.rpt"));
        QVERIFY(stickers.sheet);
        QCOMPARE(stickers.sheet->columns, 3);
        QCOMPARE(stickers.sheet->rows, 8);
        const Layout log =
            readLayout(shippedLayout(QStringLiteral("vurnal.rpt")), QStringLiteral("vurnal.rpt"));
        QVERIFY(!log.sheet);
        QCOMPARE(log.table, QStringLiteral("tblprint"));
        QVERIFY(!log.part(PartName::Detail).artwork.isEmpty());
        QVERIFY(shippedLayout(QStringLiteral("other.rpt")).isEmpty());
    }

    void millimetresWhateverTheUnits_data()
    {
        QTest::addColumn<QByteArray>("size");
        QTest::addColumn<QByteArray>("place");
        QTest::newRow("mm") << QByteArray("width='210mm' height='297mm' viewBox='0 0 210 297'")
                            << QByteArray("x='21' y='29.7'");
        QTest::newRow("px") << QByteArray("width='793.700787' height='1122.519685'")
                            << QByteArray("x='79.3700787' y='112.2519685'");
        QTest::newRow("pt")
            << QByteArray("width='595.275591pt' height='841.889764pt' viewBox='0 0 595.275591 841.889764'")
            << QByteArray("x='59.5275591' y='84.1889764'");
        QTest::newRow("moved box") << QByteArray("width='21cm' height='29.7cm' viewBox='-5 -7 2100 2970'")
                                   << QByteArray("x='205' y='290'");
        QTest::newRow("values with units")
            << QByteArray("width='210mm' height='297mm'") << QByteArray("x='21mm' y='29.7mm'");
    }
    void millimetresWhateverTheUnits()
    {
        QFETCH(QByteArray, size);
        QFETCH(QByteArray, place);
        const Layout layout =
            read("<text " + place + ">a</text>" + kDetail, "<svg " + size + " data-table='tblprint'>");
        QVERIFY(qAbs(layout.width - 210) < 0.001);
        QVERIFY(qAbs(layout.height - 297) < 0.001);
        QVERIFY(qAbs(onlyLine(layout).toPage.e - 21) < 0.001);
        QVERIFY(qAbs(onlyLine(layout).toPage.f - 29.7) < 0.001);
    }

    void pageOfAnotherShapeStaysUndistorted()
    {
        const Layout layout =
            read("<text x='0' y='0'>a</text>" + kDetail,
                 "<svg width='200mm' height='100mm' viewBox='0 0 100 100' data-table='tblprint'>");
        QCOMPARE(onlyLine(layout).toPage.a, 1.0);
        QCOMPARE(onlyLine(layout).toPage.e, 50.0);
    }

    void transformsOfGroupsAndTexts()
    {
        const Layout layout = read("<g transform='translate(10,20)'><g transform='matrix(2,0,0,2,1,1)'>"
                                   "<text x='3' y='4' transform='scale(0.5)'>a</text></g></g>" +
                                   kDetail);
        const Affine &to = onlyLine(layout).toPage;
        QCOMPARE(to.a, 1.0);
        QCOMPARE(to.e, 14.0);
        QCOMPARE(to.f, 25.0);
        const auto turned = svg::transform(u" rotate(90 10 20) , translate(5)");
        QVERIFY(turned);
        const Point p = turned->map({0, 0});
        QVERIFY(qAbs(p.x - 30) < 1e-9 && qAbs(p.y - 15) < 1e-9);
        for (const char16_t *bad :
             {u"translate(1", u"turn(3)", u"matrix(1 2 3)", u"scale(a)", u"rotate(1 2)", u")("})
            QVERIFY2(!svg::transform(QStringView(bad)), qPrintable(QString::fromUtf16(bad)));
    }

    void stylesFromAttributesClassesAndStyle()
    {
        const Layout layout =
            read("<style>/* x */ .big, .other { font-size: 9px; fill: #f00 } text{fill:lime}</style>"
                 "<g font-size='4' font-family='&apos;Liberation Serif&apos;, serif'>"
                 "<text class='big' style='font-weight:bold;font-style:italic;fill:#123456'>a</text>"
                 "<text text-anchor='end' fill='rgb(255, 0,50%)' fill-opacity='1'>b</text></g>" +
                 kDetail);
        QCOMPARE(layout.part(PartName::Page).lines.size(), 2);
        const TextStyle &first = layout.styles[layout.part(PartName::Page).lines[0].segments[0].style];
        QCOMPARE(first.size, 9.0);
        QCOMPARE(first.weight, 700);
        QVERIFY(first.italic);
        QCOMPARE(first.colour, 0x123456U);
        QCOMPARE(first.families, QStringList({QStringLiteral("Liberation Serif"), QStringLiteral("serif")}));
        const TextStyle &second = layout.styles[layout.part(PartName::Page).lines[1].segments[0].style];
        QCOMPARE(second.size, 4.0);
        QCOMPARE(layout.part(PartName::Page).lines[1].anchor, Anchor::End);
    }

    void colours()
    {
        QCOMPARE(svg::colour(u"#abc").value_or(1), 0xaabbccU);
        QCOMPARE(svg::colour(u" Navy ").value_or(1), 0x000080U);
        QCOMPARE(svg::colour(u"rgb(100%,0%,0%)").value_or(1), 0xff0000U);
        QCOMPARE(svg::colour(u"rgb(1,2,3)").value_or(1), 0x010203U);
        for (const char16_t *bad : {u"none", u"#12", u"#xyz", u"rgb(1,2)", u"url(#a)", u""})
            QVERIFY(!svg::colour(QStringView(bad)));
    }

    void tspansAreLinesOrPieces()
    {
        const Layout layout = read(
            "<text x=\"10\" y=\"20\" data-width=\"30\">\n  one <tspan font-weight=\"bold\">two</tspan>\n "
            "three\n<tspan x=\"11\" y=\"25\">four</tspan><tspan x=\"12\" dy=\"2em\" "
            "font-size=\"5\">five</tspan></text>" +
            kDetail);
        const QList<TextLine> &lines = layout.part(PartName::Page).lines;
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[0].segments.size(), 3);
        QCOMPARE(literal(lines[0].segments[0]), QStringLiteral("one "));
        QCOMPARE(literal(lines[0].segments[1]), QStringLiteral("two"));
        QCOMPARE(literal(lines[0].segments[2]), QStringLiteral(" three"));
        QCOMPARE(lines[0].width, 30.0);
        QCOMPARE(lines[1].toPage.e, 11.0);
        QCOMPARE(lines[1].toPage.f, 25.0);
        QCOMPARE(lines[1].width, 30.0);
        QCOMPARE(lines[2].toPage.e, 12.0);
        QCOMPARE(lines[2].toPage.f, 35.0);
    }

    void placeholders()
    {
        const Layout layout = read(
            "<text>{page}/{ pages } {{x} {tbltit.ccall} {different CCALL} {first ddate:dd.MM.yyyy}</text>" +
            kDetail);
        const Template &text = onlyLine(layout).segments[0].text;
        QList<Quantity> quantities;
        for (const Piece &piece : text)
            if (piece.quantity != Quantity::Literal)
                quantities.append(piece.quantity);
        QCOMPARE(quantities, QList<Quantity>({Quantity::Page, Quantity::Pages, Quantity::Other,
                                              Quantity::Different, Quantity::First}));
        QCOMPARE(text[3].text, QStringLiteral(" {x} "));
        QCOMPARE(text.last().text, QStringLiteral("dd.MM.yyyy"));
        QCOMPARE(layout.fields.size(), 2); // whatever the letter case
        QCOMPARE(layout.others.size(), 1);
        QCOMPARE(layout.others[0].table, QStringLiteral("tbltit"));
    }

    void artworkIsWithoutTexts()
    {
        const Layout layout =
            read("<defs><linearGradient id='g'><stop offset='0'/></linearGradient></defs>"
                 "<g transform='translate(1,2)' id='header'><rect width='5' height='5' "
                 "data-x='1'/><text>a</text></g>"
                 "<g id='detail' data-height='5' data-rows='3'><path d='M0 0h9'/><text>{ccall}</text></g>"
                 "<g id='summary' data-height='5'><text>sum</text></g>");
        const QByteArray page = layout.part(PartName::Page).artwork;
        QVERIFY(page.contains("<rect") && page.contains("translate(1,2)") && page.contains("linearGradient"));
        QVERIFY(!page.contains("text") && !page.contains("data-") && !page.contains("M0 0h9"));
        const QByteArray detail = layout.part(PartName::Detail).artwork;
        QVERIFY(detail.contains("M0 0h9") && !detail.contains("<rect"));
        QVERIFY(layout.part(PartName::Summary).artwork.isEmpty());
        QCOMPARE(layout.part(PartName::Page).lines.size(), 1);
        QCOMPARE(layout.part(PartName::Summary).lines.size(), 1);
    }

    void hiddenTextsStayAway()
    {
        const Layout layout = read("<g style='display:none'><text>a</text></g><text fill='none'>b</text>"
                                   "<text visibility='hidden'>c</text><text>  </text>" +
                                   kDetail);
        QVERIFY(layout.part(PartName::Page).lines.isEmpty());
    }

    void errorsNameTheLine_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("what");
        const auto row = [](const char *name, const QByteArray &bytes, const QString &what) {
            QTest::newRow(name) << bytes << what;
        };
        const auto body = [](const QByteArray &content) { return kHead + content + "</svg>"; };
        row("empty", "", QStringLiteral("строка 1: файл обрывается"));
        row("no XML", "hello", QStringLiteral("строка 1: это не правильный XML"));
        row("cut", kHead + kDetail, QStringLiteral("строка 1: файл обрывается"));
        row("no SVG", "<html></html>", QStringLiteral("строка 1: это не рисунок SVG"));
        row("other svg", "<svg xmlns='urn:x'/>", QStringLiteral("строка 1: это не рисунок SVG"));
        row("no table", "\n<svg width=\"9cm\" height=\"9cm\"/>",
            QStringLiteral("строка 2: не указана таблица (data-table)"));
        row("unknown table", "<svg width='9cm' height='9cm' data-table='tblx'/>",
            QStringLiteral("строка 1: неизвестная таблица tblx"));
        row("unknown file", "<svg width='9cm' height='9cm' data-table='tblprint' data-file='../x.mdb'/>",
            QStringLiteral("строка 1: неизвестный файл ../x.mdb"));
        row("no size", "<svg viewBox='0 0 9 9' data-table='tblprint'/>",
            QStringLiteral("строка 1: не указан размер страницы"));
        row("per cent", "<svg width='100%' height='100%' data-table='tblprint'/>",
            QStringLiteral("строка 1: не указан размер страницы"));
        row("huge page", "<svg width='9000mm' height='90mm' data-table='tblprint'/>",
            QStringLiteral("строка 1: невозможный размер страницы"));
        row("tiny page", "<svg width='1mm' height='90mm' data-table='tblprint'/>",
            QStringLiteral("строка 1: невозможный размер страницы"));
        row("negative page", "<svg width='-90mm' height='90mm' data-table='tblprint'/>",
            QStringLiteral("строка 1: невозможный размер страницы"));
        row("zero box", "<svg width='90mm' height='90mm' viewBox='0 0 0 9' data-table='tblprint'/>",
            QStringLiteral("строка 1: непонятный viewBox"));
        row("bad box", "<svg width='90mm' height='90mm' viewBox='0 0 9' data-table='tblprint'/>",
            QStringLiteral("строка 1: непонятный viewBox"));
        row("no detail", body(""), QStringLiteral("строка 1: нет группы с id=\"detail\""));
        row("two details", body(kDetail + "\n" + kDetail), QStringLiteral("строка 2: вторая группа detail"));
        row("no height", body("<g id='detail' data-rows='3'/>"),
            QStringLiteral("строка 1: нет атрибута data-height"));
        row("zero height", body("<g id='detail' data-height='0' data-rows='3'/>"),
            QStringLiteral("строка 1: невозможная высота строки"));
        row("flat", body("<g transform='scale(1,0)'><g id='detail' data-height='5' data-rows='3'/></g>"),
            QStringLiteral("строка 1: невозможная высота строки"));
        row("no number", body("<g id='detail' data-height='five' data-rows='3'/>"),
            QStringLiteral("строка 1: в атрибуте data-height не число: five"));
        row("rows", body("<g id='detail' data-height='5' data-rows='2.5'/>"),
            QStringLiteral("строка 1: атрибут data-rows должен быть целым числом от 1 до 1000"));
        row("higher than the page", body("\n\n<g id=\"detail\" data-height=\"50\" data-rows=\"6\"/>"),
            QStringLiteral("строка 3: строки detail не помещаются на странице"));
        row("field", body("\n" + kDetail + "\n<text>{no such}</text>"),
            QStringLiteral("строка 3: непонятное поле {no such}"));
        row("brace", body("\n<text>{ccall</text>" + kDetail),
            QStringLiteral("строка 2: нет закрывающей скобки }"));
        row("empty field", body("<text>{}</text>"), QStringLiteral("строка 1: непонятное поле {}"));
        row("field with quotes", body("<text>{a]b}</text>"),
            QStringLiteral("строка 1: непонятное поле {a]b}"));
        row("condition", body("<text data-if=\"a b\">x</text>"),
            QStringLiteral("строка 1: непонятное поле {a b}"));
        row("transform", body("<g transform='wobble(3)'/>"),
            QStringLiteral("строка 1: непонятный transform: wobble(3)"));
        row("letters", body("<text font-size='0'>a</text>"),
            QStringLiteral("строка 1: невозможный размер букв"));
        row("giant letters", body("<text font-size='1e9'>a</text>"),
            QStringLiteral("строка 1: невозможный размер букв"));
        row("place", body("<text x='left'>a</text>"),
            QStringLiteral("строка 1: непонятное место текста: left"));
        row("width", body("<text data-width='-2'>a</text>"),
            QStringLiteral("строка 1: data-width меньше нуля"));
        row("linked picture", body("<image xlink:href='/dev/zero'/>"),
            QStringLiteral("строка 1: картинка должна быть внедрена"));
        row("use of a file", body("<use xlink:href='x.svg#a'/>"),
            QStringLiteral("строка 1: ссылки на другие файлы не допускаются"));
        row("import", body("<style>@import url(x.css);</style>"),
            QStringLiteral("строка 1: ссылки на другие файлы не допускаются"));
        row("use of a use",
            body("<defs><g id='a'><use xlink:href='#b'/></g></defs><use xlink:href='#a'/>" + kDetail),
            QStringLiteral("строка 1: вложенные ссылки use не допускаются"));
        row("entities",
            "<?xml version=\"1.0\"?>\n<!DOCTYPE svg [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]>" + kHead +
                kDetail + "</svg>",
            QStringLiteral("строка 2: объявления внутри DOCTYPE не допускаются"));
        const auto card = [&](const QByteArray &attributes) {
            return body("<g id=\"card\" " + attributes + ">" + kDetail + "</g>");
        };
        row("card without width", card("data-columns='2' data-rows='2'"),
            QStringLiteral("строка 1: нет атрибута data-width"));
        row("zero pitch",
            card("data-columns='2' data-rows='2' data-width='50' data-height='60' data-pitch-x='0'"),
            QStringLiteral("строка 1: шаг карточек меньше самой карточки"));
        row("cards off the page", card("data-columns='2' data-rows='2' data-width='150' data-height='60'"),
            QStringLiteral("строка 1: карточки не помещаются на странице"));
        row("card of no size", card("data-columns='2' data-rows='2' data-width='0' data-height='60'"),
            QStringLiteral("строка 1: невозможный размер карточки"));
        row("detail higher than the card",
            card("data-columns='1' data-rows='1' data-width='90' data-height='20'"),
            QStringLiteral("строка 1: строки detail не помещаются на карточке"));
        row("detail beside the card",
            body("<g id='card' data-columns='1' data-rows='1' data-width='90' data-height='60'/>" + kDetail),
            QStringLiteral("строка 1: группа detail должна стоять внутри группы card"));
        row("detail before the card",
            body(kDetail + "<g id='card' data-columns='1' data-rows='1' data-width='90' data-height='60'/>"),
            QStringLiteral("строка 1: группа detail должна стоять внутри группы card"));
        row("summary in the detail",
            body("<g id='detail' data-height='5' data-rows='3'><g id='summary' data-height='5'/></g>"),
            QStringLiteral("строка 1: группа summary не может стоять здесь"));
        row("summary", body(kDetail + "<g id='summary' data-height='500'/>"),
            QStringLiteral("строка 1: невозможная высота группы summary"));
        row("deep", body(QByteArray("<g>").repeated(300) + QByteArray("</g>").repeated(300)),
            QStringLiteral("строка 1: слишком много вложенных групп"));
        row("traced photograph", body("<path d='" + QByteArray("L1 0").repeated(200000) + "'/>"),
            QStringLiteral("строка 1: слишком сложный рисунок"));
        row("many", body(QByteArray("<g/>").repeated(60000)),
            QStringLiteral("строка 1: слишком много элементов"));
    }
    void errorsNameTheLine()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, what);
        const QString said = refusal(bytes);
        QVERIFY2(said.startsWith(what), qPrintable(said));
    }

    void harmlessDoctypeIsTaken()
    {
        QCOMPARE(refusal("<!DOCTYPE svg PUBLIC '-//W3C//DTD SVG 1.1//EN' "
                         "'http://www.w3.org/Graphics/SVG/1.1/DTD/svg11.dtd'>" +
                         kHead + kDetail + "</svg>"),
                 QStringLiteral("read"));
    }

    void whatDrawingProgramsAdd()
    {
        const QByteArray head = "<svg xmlns='http://www.w3.org/2000/svg' "
                                "xmlns:inkscape='http://www.inkscape.org/namespaces/inkscape' "
                                "xmlns:sodipodi='http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd' "
                                "width='210mm' height='297mm' "
                                "viewBox='0 0 210 297' inkscape:version='1.2' data-table='tblprint'>";
        const Layout layout = read(
            "<sodipodi:namedview id='base'><inkscape:grid type='xygrid'/></sodipodi:namedview>"
            "<metadata><x>y</x></metadata><g inkscape:groupmode='layer' id='layer1' "
            "transform='translate(0,-5)'>"
            "<text xml:space='preserve' "
            "style='font-style:normal;font-size:4.2px;line-height:1.25;font-family:sans-serif' x='10' y='20'>"
            "<tspan sodipodi:role='line' x='10' y='20' style='stroke-width:0.26'>Call {ccall}</tspan></text>"
            "<rect inkscape:label='r' width='3' height='3'/></g>" +
                kDetail,
            head);
        QCOMPARE(onlyLine(layout).toPage.f, 15.0);
        QCOMPARE(layout.styles[onlyLine(layout).segments[0].style].size, 4.2);
        QVERIFY(!layout.part(PartName::Page).artwork.contains("inkscape"));
    }

    void filesThatAreNone()
    {
        const QTemporaryDir folder;
        const auto kind = [](const QString &path) {
            try {
                (void)readLayoutFile(path);
                return -1;
            } catch (const store::Error &error) {
                return int(error.kind());
            }
        };
        QCOMPARE(kind(folder.filePath(QStringLiteral("none.rpt"))), int(store::ErrorKind::Missing));
        QCOMPARE(kind(folder.path()), int(store::ErrorKind::Unreadable));
        QCOMPARE(kind(QStringLiteral("/dev/zero")), int(store::ErrorKind::Unreadable));
        QCOMPARE(refusal(QByteArray(kLargestLayout + 1, ' ')), QStringLiteral("он слишком велик"));
    }

    // ---- damage

    void cutAnywhere()
    {
        const QByteArray whole = shippedLayout(QStringLiteral("qsl.rpt"));
        int refused = 0;
        for (qsizetype size = 0; size < whole.trimmed().size(); size += 7) {
            mustEnd(whole.first(size));
            refused += refusal(whole.first(size)) != QLatin1String("read") ? 1 : 0;
        }
        QCOMPARE(refused, int((whole.trimmed().size() + 6) / 7));
    }

    void bytesChanged()
    {
        QRandomGenerator random(20260305);
        int refused = 0;
        const QStringList names = shippedLayouts();
        for (int round = 0; round < 1500; ++round) {
            QByteArray bytes = shippedLayout(names[round % names.size()]);
            for (int change = random.bounded(1, 12); change > 0; --change)
                bytes[random.bounded(int(bytes.size()))] = char(random.bounded(256));
            mustEnd(bytes);
            refused += refusal(bytes) != QLatin1String("read") ? 1 : 0;
        }
        QVERIFY(refused > 500 && refused < 1500);
    }
};

QTEST_GUILESS_MAIN(ReportLayoutTest)
#include "reportlayout.moc"
