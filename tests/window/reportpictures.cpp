// Embedded pictures that can be drawn or are refused before anything is shown, and texts that are seen
// through.
#include "report/ui/pdffile.h"
#include "support/reportdesk.h"

#include <QBuffer>
#include <QImage>

#include <algorithm>

using namespace report;
using namespace testsupport::reports;

namespace {

/// A layout with something on its page, which begins in line 2.
QByteArray pageWith(const QByteArray &body)
{
    return "<svg xmlns='http://www.w3.org/2000/svg' width='100mm' height='40mm' viewBox='0 0 100 40' "
           "data-table='tblprint'>\n" +
           body + "<g id='detail' data-height='5' data-rows='2'/></svg>";
}

QByteArray fileOf(const QImage &image, const char *format)
{
    QBuffer buffer;
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, format))
        qFatal("no %s", format);
    return buffer.data();
}

QByteArray embedded(const QByteArray &bytes, const QByteArray &type = "image/png")
{
    return "<image width='20' height='20' href='data:" + type + ";base64," + bytes.toBase64() + "'/>";
}

int darkest(const QImage &image)
{
    int found = 255;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            found = std::min(found, qGray(image.pixel(x, y)));
    return found;
}

} // namespace

class ReportPicturesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- pictures

    void picturesThatWouldBeLeftAway_data()
    {
        QTest::addColumn<QByteArray>("picture");
        QTest::addColumn<QString>("what");
        const QString none = QStringLiteral("строка 3: внедрённая картинка не читается (нужна PNG или JPEG)");
        const QString damaged = QStringLiteral("строка 3: внедрённая картинка не читается (повреждена)");
        QImage noise(60, 60, QImage::Format_RGB32);
        for (int i = 0; i < 3600; ++i)
            noise.setPixel(i / 60, i % 60, QRgb(0xff000000 | (qHash(i) & 0xffffff)));
        const QByteArray png = fileOf(noise, "PNG");
        QTest::newRow("no picture") << embedded(QByteArray::fromBase64("AAAA")) << none;
        QTest::newRow("empty") << embedded("") << none;
        QTest::newRow("drawing") << embedded("<svg xmlns='http://www.w3.org/2000/svg' width='9' "
                                             "height='9'><rect width='9' height='9'/></svg>",
                                             "image/svg+xml")
                                 << none;
        QTest::newRow("cut") << embedded(png.first(png.size() / 2)) << damaged;
        QTest::newRow("head only") << embedded(png.first(40)) << damaged;
        QImage huge(16000, 16000, QImage::Format_Mono);
        huge.fill(0);
        QTest::newRow("huge") << embedded(fileOf(huge, "PNG"))
                              << QStringLiteral("строка 3: картинка слишком велика: 16000 x 16000 точек");
        QImage large(5000, 5000, QImage::Format_Mono);
        large.fill(0);
        const QByteArray one = embedded(fileOf(large, "PNG"));
        QTest::newRow("too many large ones")
            << one + one + "\n" + one << QStringLiteral("строка 3: картинки вместе слишком велики");
    }
    void picturesThatWouldBeLeftAway()
    {
        QFETCH(QByteArray, picture);
        QFETCH(QString, what);
        Desk desk;
        const QByteArray body =
            picture.contains("\n") ? "<g>" + picture + "</g>" : "<g>\n" + picture + "</g>";
        desk.reports->print(desk.write(QStringLiteral("a.rpt"), pageWith(body)));
        QVERIFY(desk.reports->windows().isEmpty());
        QCOMPARE(desk.messages.errors.size(), 1);
        QVERIFY2(desk.messages.errors.front().contains(what), qPrintable(desk.messages.errors.front()));
    }

    void picturesThatAreDrawn()
    {
        Desk desk;
        QImage image(30, 30, QImage::Format_RGB32);
        image.fill(Qt::blue);
        for (const char *format : {"PNG", "JPEG", "BMP"}) {
            const auto document =
                Document::read(readLayout(pageWith(embedded(fileOf(image, format))), QStringLiteral("a.rpt")),
                               desk.installation.databases);
            QCOMPARE(inked(picture(*document)), QRect(kRim, kRim, 160, 160));
        }
    }

    // ---- opacity

    void opacityOnScreenAndInThePdf_data()
    {
        QTest::addColumn<QByteArray>("attributes");
        QTest::addColumn<int>("grey");
        QTest::newRow("none") << QByteArray() << 0;
        QTest::newRow("half") << QByteArray("opacity='0.5'") << 127;
        QTest::newRow("quarter") << QByteArray("style='opacity:0.5;fill-opacity:50%'") << 191;
        QTest::newRow("nothing") << QByteArray("fill-opacity='0'") << 255;
    }
    void opacityOnScreenAndInThePdf()
    {
        QFETCH(QByteArray, attributes);
        QFETCH(int, grey);
        Desk desk;
        const QByteArray layout =
            pageWith("<g " + attributes + "><text x='10' y='30' font-size='25'>\xE2\x96\x88WORD</text></g>");
        const auto document =
            Document::read(readLayout(layout, QStringLiteral("a.rpt")), desk.installation.databases);
        QVERIFY2(qAbs(darkest(picture(*document)) - grey) <= 2,
                 qPrintable(QString::number(darkest(picture(*document)))));
        const QString pdf = desk.installation.file(QStringLiteral("a.pdf"));
        QVERIFY(writePdf(*document, pdf, [](qint64, qint64) { return true; }));
        QCOMPARE(pdfText(pdf).contains(QLatin1String("WORD")), grey < 255);
        (void)outputOf(QStringLiteral("pdftoppm"),
                       {QStringLiteral("-r"), QStringLiteral("100"), QStringLiteral("-png"),
                        QStringLiteral("-singlefile"), pdf, desk.installation.file(QStringLiteral("page"))});
        const QImage page(desk.installation.file(QStringLiteral("page.png")));
        QVERIFY(!page.isNull());
        QVERIFY2(qAbs(darkest(page) - grey) <= 2, qPrintable(QString::number(darkest(page))));
    }
};

QTEST_MAIN(ReportPicturesTest)
#include "reportpictures.moc"
