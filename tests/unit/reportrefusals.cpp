// What would be left away, or printed elsewhere, when a layout is printed: it is refused as a whole, with its
// line.
#include "report/layout.h"
#include "report/shipped.h"
#include "report/svgvalues.h"
#include "store/error.h"

#include <QTest>

#include <cmath>

using namespace report;

namespace {

const QByteArray kHead = "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' "
                         "width='210mm' height='297mm' viewBox='0 0 210 297' data-table='tblprint'>\n";
const QByteArray kDetail =
    "<g id='detail' data-height='5' data-rows='10'><text x='10' y='20'>{ccall}</text></g>";

/// A layout whose body begins in line 2.
QByteArray page(const QByteArray &body)
{
    return kHead + body + kDetail + "</svg>";
}

Layout read(const QByteArray &body)
{
    return readLayout(page(body), QStringLiteral("/x/a.rpt"));
}

/// What a layout with this body is refused with; "read" where it is not.
QString refusal(const QByteArray &body)
{
    try {
        (void)read(body);
        return QStringLiteral("read");
    } catch (const store::Error &error) {
        return error.kind() == store::ErrorKind::Unreadable
                   ? error.engineText()
                   : QStringLiteral("kind %1").arg(int(error.kind()));
    }
}

/// Opacity of the style of each line of the page.
QList<double> opacities(const Layout &layout)
{
    QList<double> list;
    for (const TextLine &line : layout.part(PartName::Page).lines)
        list.append(layout.styles[line.segments.front().style].opacity);
    return list;
}

} // namespace

class ReportRefusalsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- texts that would not be printed

    void textsOutOfPlace_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("what");
        const auto row = [](const char *name, const QByteArray &body, const char *what) {
            QTest::newRow(name) << body << QString::fromUtf8(what);
        };
        row("symbol", "<g>\n<symbol id='s'>\n<text>a</text></symbol></g>",
            "строка 4: текст внутри <symbol> не печатается");
        row("symbol in defs", "<defs><symbol id='s'><g>\n<text>a</text></g></symbol></defs>",
            "строка 3: текст внутри <symbol> не печатается");
        row("defs", "<defs>\n<g><text><tspan>a</tspan></text></g></defs>",
            "строка 3: текст внутри <defs> не печатается");
        row("defs in a symbol", "<symbol><defs><text>a</text></defs></symbol>",
            "строка 2: текст внутри <symbol> не печатается");
        row("inner svg", "<svg x='50'><text>a</text></svg>", "строка 2: текст внутри <svg> не печатается");
        row("pattern", "<pattern id='p'><text>a</text></pattern>",
            "строка 2: текст внутри <pattern> не печатается");
        row("clip", "<defs><clipPath id='p'><text>a</text></clipPath></defs>",
            "строка 2: текст внутри <clipPath> не печатается");
        row("shape", "<rect width='9' height='9'><text>a</text></rect>",
            "строка 2: текст внутри <rect> не печатается");
        row("other language",
            "<switch>\n<foreignObject><p xmlns='http://www.w3.org/1999/xhtml'>a</p></foreignObject>"
            "</switch>",
            "строка 3: текст внутри <foreignObject> не печатается");
        row("flowing text",
            "<flowRoot><flowRegion><rect width='9' height='9'/></flowRegion>\n<flowPara>a</flowPara>"
            "</flowRoot>",
            "строка 2: текст внутри <flowRoot> не печатается");
        row("flowing text in defs", "<defs><flowRoot><flowPara>a</flowPara></flowRoot></defs>",
            "строка 2: текст внутри <flowRoot> не печатается");
        row("unknown in a text", "<text>a<tref>b</tref></text>",
            "строка 2: текст внутри <tref> не печатается");
        row("clone of a text", "<text id='t'>a</text>\n<use xlink:href='#t' x='5'/>",
            "строка 3: <use> повторяет текст, разъедините копию");
        row("clone before its text", "<use href='#t'/>\n<text id='t'>a</text>",
            "строка 2: <use> повторяет текст, разъедините копию");
        row("clone of a group",
            "<g id='t'><rect width='1' height='1'/><g><text>a</text></g></g>\n<use href='#t'/>",
            "строка 3: <use> повторяет текст, разъедините копию");
        row("clone of a hidden text", "<g display='none'><text id='t'>a</text></g><use href='#t'/>",
            "строка 2: <use> повторяет текст, разъедините копию");
        row("clone of the rows", "<use href='#detail'/>",
            "строка 2: <use> повторяет текст, разъедините копию");
        row("clone of a symbol", "<symbol id='s'><rect width='9' height='9'/></symbol>\n<use href='#s'/>",
            "строка 3: <use> повторяет <symbol>, а он не печатается; разъедините копию");
        row("clone out of a symbol",
            "<defs><symbol><rect id='r' width='9' height='9'/></symbol></defs>\n<use href='#r'/>",
            "строка 3: <use> повторяет <symbol>, а он не печатается; разъедините копию");
    }
    void textsOutOfPlace()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, what);
        QCOMPARE(refusal(body), what);
    }

    void whatShowsNoTextIsTaken_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("clones of artwork")
            << QByteArray("<defs><g id='a'><path d='M0 0h9'/></g></defs><rect id='b' width='1' height='1'/>"
                          "<use href='#a'/><use xlink:href='#b' x='5'/><use href='#a' xlink:href='#a'/>");
        QTest::newRow("symbol that is not used")
            << QByteArray("<defs><symbol id='s'><title>Star</title><path d='M0 0h9'/></symbol></defs>");
        QTest::newRow("empty texts") << QByteArray(
            "<defs><text> </text></defs><flowRoot><flowRegion/><flowPara> \n</flowPara></flowRoot>"
            "<text id='e'></text><use href='#e'/><foreignObject/>");
        QTest::newRow("hidden") << QByteArray(
            "<g display='none'><foreignObject><p xmlns='x'>a</p></foreignObject></g>");
        QTest::newRow("remarks") << QByteArray(
            "<metadata><text>a</text></metadata><desc>b<text>c</text></desc><g><title>d</title></g>"
            "<symbol><desc>e</desc></symbol><text>f<title>g</title></text>");
        QTest::newRow("of a drawing program")
            << QByteArray("<switch><foreignObject requiredExtensions='x'><i xmlns='urn:x'/></foreignObject>"
                          "<g><text>a</text></g></switch>");
    }
    void whatShowsNoTextIsTaken()
    {
        QFETCH(QByteArray, body);
        QCOMPARE(refusal(body), QStringLiteral("read"));
    }

    void clonesOfArtworkAreDrawn()
    {
        const Layout layout =
            read("<defs><g id='a'><path d='M0 0h9'/></g></defs><use xlink:href='#a' x='5'/>");
        const QByteArray artwork = layout.part(PartName::Page).artwork;
        QVERIFY(artwork.contains("M0 0h9") && artwork.contains("xlink:href=\"#a\""));
    }

    // ---- pictures

    void picturesAreKeptWithTheirLines()
    {
        const Layout layout = read("<image href='data:image/png;base64,QUJD'/>\n<defs><image id='i' "
                                   "xlink:href=' data:;base64,\nREVG'/></defs>");
        QCOMPARE(layout.pictures.size(), 2);
        QCOMPARE(layout.pictures[0].bytes, QByteArray("ABC"));
        QCOMPARE(layout.pictures[0].line, 2);
        QCOMPARE(layout.pictures[1].bytes, QByteArray("DEF"));
        QCOMPARE(layout.pictures[1].line, 4);
    }

    void picturesThatAreNone()
    {
        const QString unreadable =
            QStringLiteral("строка 3: внедрённая картинка не читается (нужна PNG или JPEG)");
        QCOMPARE(refusal("\n<image href='data:image/svg+xml;utf8,&lt;svg/>'/>"), unreadable);
        QCOMPARE(refusal("\n<image href='DATA:image/png;base64,QUJD'/>"), unreadable);
        QCOMPARE(refusal("\n<image xlink:href='file:///a.png' href='data:image/png;base64,QUJD'/>"),
                 QStringLiteral("строка 3: две разные ссылки у одного элемента"));
        QCOMPARE(refusal("\n<image href=''/>"),
                 QStringLiteral("строка 3: картинка должна быть внедрена в файл, а не быть ссылкой"));
    }

    // ---- opacity

    void opacityOfTexts()
    {
        const Layout layout =
            read("<style>.half{opacity:0.5} .thin{fill-opacity:25%}</style>"
                 "<text>a</text><text opacity='0.5'>b</text><text fill-opacity='0.25'>c</text>"
                 "<text style='opacity:0.5;fill-opacity:0.5'>d</text><text class='half thin'>e</text>"
                 "<text opacity='0.1' class='half' style='opacity:0.8'>f</text>"
                 "<text opacity='7'>g</text><text opacity='-1'>h</text><text opacity='much'>i</text>"
                 "<text stroke-opacity='0.1'>j</text>");
        QCOMPARE(opacities(layout), QList<double>({1, 0.5, 0.25, 0.25, 0.125, 0.8, 1, 0, 1, 1}));
    }

    void opacityOfGroups()
    {
        const Layout layout = read("<g opacity='0.5' fill-opacity='0.5'><text>a</text><g style='opacity:50%'>"
                                   "<text>b</text><text opacity='0.5'>c</text></g>"
                                   "<text fill-opacity='1'>d</text></g><text>e</text>");
        QCOMPARE(opacities(layout), QList<double>({0.25, 0.125, 0.0625, 0.5, 1}));
    }

    // ---- numbers

    void numbersThatCannotBeDrawn_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("what");
        const auto row = [](const char *name, const QByteArray &body, const char *what) {
            QTest::newRow(name) << body << QString::fromUtf8(what);
        };
        row("outline", "\n<path d='M0 0 L1e38 5'/>", "строка 3: невозможное число в d");
        row("beyond any number", "<path d='M0 0l1e999 5'/>", "строка 2: невозможное число в d");
        row("negative", "<path d='M0 0-2000000 5'/>", "строка 2: невозможное число в d");
        row("nan", "<path d='M nan 0'/>", "строка 2: невозможное число в d");
        row("no outline", "<path d='M0 0 #5'/>", "строка 2: непонятный контур: M0 0 #5");
        row("letters", "<path d='M0 0 word'/>", "строка 2: непонятный контур: M0 0 word");
        row("points", "<polyline points='0,0 inf,3'/>", "строка 2: невозможное число в points");
        row("place", "<rect x='-1e7' width='1' height='1'/>", "строка 2: невозможное число в x");
        row("size", "<rect width='NaN' height='1'/>", "строка 2: невозможное число в width");
        row("unit", "<circle r='2000000mm'/>", "строка 2: невозможное число в r");
        row("line", "<line x2='9' stroke-width='1e30'/>", "строка 2: невозможное число в stroke-width");
        row("style", "<line x2='9' style='stroke:#000;stroke-width:1e30'/>",
            "строка 2: невозможное число в stroke-width");
        row("class", "<style>\n.a{stroke-dasharray:1,Infinity}</style>",
            "строка 3: невозможное число в stroke-dasharray");
        row("text", "<text x='1e7'>a</text>", "строка 2: невозможное число в x");
        row("part of a text", "<text>\n<tspan dy='1e9'>a</tspan></text>", "строка 3: невозможное число в dy");
        row("letter spacing", "<text letter-spacing='1e9'>a</text>",
            "строка 2: невозможное число в letter-spacing");
        row("width of a text", "<text data-width='1e7'>a</text>", "строка 2: невозможное число в data-width");
        row("defs", "<defs>\n<path d='M0 0h1e38'/></defs>", "строка 3: невозможное число в d");
        row("gradient", "<linearGradient gradientTransform='scale(1e20)'/>",
            "строка 2: невозможное число в gradientTransform");
        row("transform", "<g transform='translate(1e7)'/>", "строка 2: невозможное число в transform");
        row("skew", "<g transform='skewX(90)'/>", "строка 2: непонятный transform: skewX(90)");
        row("many scales", "<g transform='scale(10000)'><g transform='scale(10000)'/></g>",
            "строка 2: непонятный transform: scale(10000)");
        row("larger by its group", "<g transform='scale(10000)'>\n<path d='M0 0h10000'/></g>",
            "строка 3: рисунок больше всякой страницы");
        row("far text", "<text transform='scale(100)' x='20000' font-size='0.1'>a</text>",
            "строка 2: непонятное место текста");
    }
    void numbersThatCannotBeDrawn()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, what);
        QCOMPARE(refusal(body), what);
    }

    void numbersThatCanBeDrawn()
    {
        QCOMPARE(refusal("<path d='M-.5.5e1,3 a1 1 0 01.5-.5 h1E-3zM999999-999999T5 5' "
                         "style='stroke-dasharray:none;fill:#1e3888;font-family:Font1e9'/>"
                         "<rect width='100%' height='9mm' rx='auto'/><text rotate='auto' dx='1 2 3'>a</text>"
                         "<linearGradient gradientTransform='matrix(1e-3 0 0 1e5 -50000 1)'/>"
                         "<style>.info{fill:#1e3888;stroke-width:0.26px}</style>"
                         "<g transform='rotate(90 100 100) scale(-1,1)'/>"),
                 QStringLiteral("read"));
        QCOMPARE(svg::largest(u"1,-2.5e1 7"), 25.0);
        QCOMPARE(svg::largest(u"information"), 0.0);
        QVERIFY(std::isinf(svg::largest(u"-inf")));
    }

    // ---- formats of dates

    void dateFormats()
    {
        for (const char *good :
             {"dd.MM.yyyy", "d MMMM yy", "dd MMM yyyy", "yyyy-MM-dd", "dd/MM, yy", "ddMMyyyy", "call", ""})
            QVERIFY2(refusal("<text>{ddate:" + QByteArray(good) + "}</text>") == QLatin1String("read"), good);
        for (const char *bad : {"hh qq %s", "dddd", "ddd", "M", "y", "yyy", "yyyyyy", "DD.MM.YYYY",
                                "dd.mm.yyyy", "'d'", "dd\xC2\xA0MM", "dd_MM"})
            QCOMPARE(refusal("\n<text>{ddate:" + QByteArray(bad) + "}</text>"),
                     QStringLiteral("строка 3: непонятный вид даты {ddate:%1}").arg(QString::fromUtf8(bad)));
        QCOMPARE(refusal("<text data-if='first ddate:hh'>a</text>"),
                 QStringLiteral("строка 2: непонятный вид даты {first ddate:hh}"));
    }
};

QTEST_GUILESS_MAIN(ReportRefusalsTest)
#include "reportrefusals.moc"
