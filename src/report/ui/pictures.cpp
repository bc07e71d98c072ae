#include "report/ui/pictures.h"

#include "store/error.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>

#include <algorithm>
#include <array>

namespace report {

namespace {

[[noreturn]] void fail(const Layout &layout, const Picture &picture, const QString &what)
{
    throw store::Error(store::ErrorKind::Unreadable, layout.path,
                       QStringLiteral("строка %1: %2").arg(QString::number(picture.line), what));
}

bool isRaster(const QByteArray &format)
{
    constexpr std::array<const char *, 6> kFormats = {"png", "jpeg", "jpg", "gif", "bmp", "webp"};
    return std::any_of(kFormats.begin(), kFormats.end(),
                       [&format](const char *known) { return format == known; });
}

/// Its pixels.
qint64 check(const Layout &layout, const Picture &picture)
{
    QByteArray bytes = picture.bytes;
    QBuffer buffer(&bytes);
    (void)buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    if (!isRaster(reader.format()))
        fail(layout, picture, QStringLiteral("внедрённая картинка не читается (нужна PNG или JPEG)"));
    const QSize size = reader.size();
    if (qint64{size.width()} * size.height() > kMostPixels)
        fail(layout, picture,
             QStringLiteral("картинка слишком велика: %1 x %2 точек").arg(size.width()).arg(size.height()));
    // Read as the renderer does it, which has no picture where a part of one is missing.
    const QImage image = QImage::fromData(picture.bytes);
    if (image.isNull())
        fail(layout, picture, QStringLiteral("внедрённая картинка не читается (повреждена)"));
    return qint64{image.width()} * image.height();
}

} // namespace

void checkPictures(const Layout &layout)
{
    qint64 pixels = 0;
    for (const Picture &picture : layout.pictures) {
        pixels += check(layout, picture);
        if (pixels > kMostPixelsOfAll)
            fail(layout, picture, QStringLiteral("картинки вместе слишком велики"));
    }
}

} // namespace report
