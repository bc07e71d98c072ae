#include "report/ui/pagepainter.h"

#include "report/ui/pictures.h"
#include "store/error.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>

namespace report {

namespace {

/// Size of the fonts that are measured, in pixels: large enough that hinting and rounding do not show.
constexpr int kFontPixels = 100;
/// A text is narrowed down to this part of its width before it gets smaller.
constexpr double kNarrowest = 0.62;

bool isGeneric(const QString &family)
{
    return family == QLatin1String("sans-serif") || family == QLatin1String("serif") ||
           family == QLatin1String("monospace");
}

/// Characters whose width does not depend on their neighbours. Others are measured together.
bool standsAlone(QChar c)
{
    constexpr ushort kLastSimple = 0x52f; // Latin, Greek, Cyrillic
    constexpr ushort kCombining = 0x300;
    constexpr ushort kCombiningEnd = 0x36f;
    const ushort code = c.unicode();
    return (code >= u' ' && code <= kLastSimple && (code < kCombining || code > kCombiningEnd)) ||
           (code >= u'\u2010' && code <= u'\u2122');
}

} // namespace

PagePainter::PagePainter(const Document &document) : m_document(document)
{
    checkPictures(document.layout());
    for (std::size_t part = 0; part < m_artwork.size(); ++part) {
        const QByteArray &artwork = document.layout().part(PartName(part)).artwork;
        if (artwork.isEmpty())
            continue;
        auto renderer = std::make_unique<QSvgRenderer>(artwork);
        if (!renderer->isValid())
            throw store::Error(store::ErrorKind::Unreadable, document.layout().path,
                               QStringLiteral("рисунок в нём не разобран"));
        m_artwork.at(part) = std::move(renderer);
    }
    for (const TextStyle &style : document.layout().styles)
        m_faces.append(makeFace(style));
}

PagePainter::~PagePainter() = default;

QSizeF PagePainter::pageSize() const
{
    return {m_document.layout().width, m_document.layout().height};
}

PagePainter::Face PagePainter::makeFace(const TextStyle &style)
{
    Face face;
    QStringList families;
    for (const QString &family : style.families) {
        if (!isGeneric(family)) {
            families.append(family);
            continue;
        }
        face.font.setStyleHint(family == QLatin1String("serif")       ? QFont::Serif
                               : family == QLatin1String("monospace") ? QFont::Monospace
                                                                      : QFont::SansSerif);
    }
    // The font that is always there, last: no letter stays without one.
    families.append(QStringLiteral("DejaVu Sans"));
    face.font.setFamilies(families);
    face.font.setPixelSize(kFontPixels);
    face.font.setWeight(QFont::Weight(style.weight));
    face.font.setItalic(style.italic);
    face.font.setKerning(false);
    face.font.setHintingPreference(QFont::PreferNoHinting);
    face.unit = style.size / kFontPixels;
    face.spacing = style.letterSpacing / face.unit;
    face.colour = QColor::fromRgb(style.colour);
    face.colour.setAlphaF(float(style.opacity));
    return face;
}

/// Width of a text in pixels of the face's font.
double PagePainter::width(const Face &face, const QString &text)
{
    const double spacing = face.spacing * double(text.size());
    if (!std::all_of(text.begin(), text.end(), standsAlone))
        return QFontMetricsF(face.font).horizontalAdvance(text) + spacing;
    double sum = spacing;
    for (const QChar c : text)
        sum += advance(face, c);
    return sum;
}

double PagePainter::advance(const Face &face, QChar c)
{
    auto known = face.advances.constFind(c);
    if (known == face.advances.constEnd())
        known = face.advances.insert(c, QFontMetricsF(face.font).horizontalAdvance(QString(c)));
    return *known;
}

/// Letter by letter where they stand apart: the toolkit's own spacing depends on the device.
void PagePainter::paintText(QPainter &painter, const Face &face, const QString &text)
{
    if (face.spacing == 0) {
        painter.drawText(QPointF(), text);
        return;
    }
    double x = 0;
    for (const QChar c : text) {
        painter.drawText(QPointF(x, 0), QString(c));
        x += advance(face, c) + face.spacing;
    }
}

void PagePainter::paint(QPainter &painter, qint64 page, const QRectF &exposed) const
{
    const PageContent content = m_document.page(page);
    const QRectF paper(QPointF(), pageSize());
    painter.save();
    painter.setClipRect(paper, Qt::IntersectClip);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform);
    for (const PlacedArtwork &artwork : content.artwork) {
        painter.save();
        m_artwork.at(std::size_t(artwork.part))->render(&painter, paper.translated(artwork.dx, artwork.dy));
        painter.restore();
    }
    for (const PlacedLine &line : content.lines) {
        // Whatever its size and direction, a line reaches no further than its width and its letters.
        const double reach = std::hypot(line.toPage.a, line.toPage.b) * line.width +
                             std::hypot(line.toPage.c, line.toPage.d) * 3 *
                                 m_document.layout().styles[line.line->segments.front().style].size;
        const QRectF area(line.toPage.e - reach, line.toPage.f - reach, 2 * reach, 2 * reach);
        if (exposed.isNull() || exposed.intersects(area))
            paintLine(painter, line);
    }
    painter.restore();
}

void PagePainter::paintLine(QPainter &painter, const PlacedLine &line) const
{
    double natural = 0;
    QList<double> widths;
    for (qsizetype i = 0; i < line.texts.size(); ++i) {
        const Face &face = m_faces[line.line->segments[i].style];
        widths.append(width(face, line.texts[i]) * face.unit);
        natural += widths.last();
    }
    if (!(natural > 0) || !(line.width > 0))
        return;
    const double narrowed = std::min(1.0, line.width / natural);
    const double smaller = std::min(1.0, narrowed / kNarrowest); // in both directions
    const double total = natural * narrowed;
    double x = line.line->anchor == Anchor::Start    ? 0
               : line.line->anchor == Anchor::Middle ? -total / 2
                                                     : -total;
    const Affine &to = line.toPage;
    const QTransform page = QTransform(to.a, to.b, to.c, to.d, to.e, to.f) * painter.transform();
    const QTransform before = painter.transform();
    for (qsizetype i = 0; i < line.texts.size(); ++i) {
        if (line.texts[i].isEmpty())
            continue;
        const Segment &segment = line.line->segments[i];
        const Face &face = m_faces[segment.style];
        painter.setTransform(QTransform(face.unit * narrowed, 0, 0, face.unit * smaller, x, segment.shift) *
                             page);
        painter.setFont(face.font);
        painter.setPen(face.colour);
        if (face.colour.alpha() > 0) // a PDF would keep what nobody sees
            paintText(painter, face, line.texts[i]);
        x += widths[i] * narrowed;
    }
    painter.setTransform(before);
}

} // namespace report
