// What would be left away, or printed elsewhere, when a layout is printed: it is refused as a whole, with its
// line.
#include "report/layout.h"
#include "report/shipped.h"
#include "store/error.h"

#include <QTest>

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
};

QTEST_GUILESS_MAIN(ReportRefusalsTest)
#include "reportrefusals.moc"
