#include "report/ui/pageview.h"

#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <cmath>

namespace report {

namespace {

constexpr int kMargin = 12; ///< desk around the paper, pixels
constexpr double kMillimetresPerInch = 25.4;
constexpr double kScreenInch = 96; ///< of a hundred per cent: what a desktop takes for an inch
constexpr std::array<double, 11> kZooms = {50, 67, 75, 90, 100, 125, 150, 200, 250, 300, 400};

} // namespace

PageView::PageView(const Document &document, const PagePainter &pages, QWidget *parent)
    : QAbstractScrollArea(parent), m_document(document), m_pages(pages)
{
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::StyledPanel);
    constexpr int kLine = 24;
    verticalScrollBar()->setSingleStep(kLine);
    horizontalScrollBar()->setSingleStep(kLine);
}

QSize PageView::sizeHint() const
{
    constexpr QSize kWanted(900, 640);
    return kWanted;
}

void PageView::setPage(qint64 page)
{
    const qint64 last = m_document.pages();
    m_page = std::clamp<qint64>(page, 1, last);
    verticalScrollBar()->setValue(0);
    viewport()->update();
    Q_EMIT pageChanged(m_page);
}

double PageView::pixelsPerMillimetre() const
{
    const QSizeF size = m_pages.pageSize();
    const double width = std::max(1, viewport()->width() - 2 * kMargin) / size.width();
    const double height = std::max(1, viewport()->height() - 2 * kMargin) / size.height();
    switch (m_fit) {
    case Fit::Page:
        return std::min(width, height);
    case Fit::Width:
        return width;
    case Fit::None:
        break;
    }
    return m_zoom / 100 * kScreenInch / kMillimetresPerInch;
}

double PageView::zoom() const noexcept
{
    return pixelsPerMillimetre() * 100 * kMillimetresPerInch / kScreenInch;
}

void PageView::setZoom(double perCent)
{
    m_fit = Fit::None;
    m_zoom = std::clamp(perCent, kLeastZoom, kMostZoom);
    arrange();
    Q_EMIT zoomChanged();
}

void PageView::setFit(Fit fit)
{
    m_fit = fit;
    arrange();
    Q_EMIT zoomChanged();
}

void PageView::zoomBy(int steps)
{
    constexpr double kSame = 0.5;
    const double now = zoom();
    if (steps > 0) {
        const auto *next =
            std::find_if(kZooms.begin(), kZooms.end(), [now](double z) { return z > now + kSame; });
        setZoom(next == kZooms.end() ? kMostZoom : *next);
    } else {
        double wanted = kLeastZoom;
        for (const double z : kZooms)
            if (z < now - kSame)
                wanted = z;
        setZoom(wanted);
    }
}

QRectF PageView::paper() const
{
    const QSizeF size = m_pages.pageSize() * pixelsPerMillimetre();
    const auto at = [](double room, double paperSize, int scrolled) {
        return std::floor(std::max(double(kMargin), (room - paperSize) / 2)) - scrolled;
    };
    return {QPointF(at(viewport()->width(), size.width(), horizontalScrollBar()->value()),
                    at(viewport()->height(), size.height(), verticalScrollBar()->value())),
            size};
}

void PageView::arrange()
{
    const QSizeF size = m_pages.pageSize() * pixelsPerMillimetre();
    const auto set = [](QScrollBar *bar, double content, int room) {
        bar->setPageStep(room);
        bar->setRange(0, std::max(0, int(std::ceil(content)) + 2 * kMargin - room));
    };
    set(horizontalScrollBar(), m_fit == Fit::None ? size.width() : 0, viewport()->width());
    set(verticalScrollBar(), m_fit == Fit::Page ? 0 : size.height(), viewport()->height());
    viewport()->update();
}

void PageView::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    arrange();
    if (m_fit != Fit::None)
        Q_EMIT zoomChanged();
}

/// Where cards and stickers lie on the sheet, to count free ones by. Only on the screen.
void PageView::paintPlaces(QPainter &painter) const
{
    const auto &sheet = m_document.layout().sheet;
    if (!sheet)
        return;
    QPen pen(QColor(Qt::lightGray), 0, Qt::DotLine);
    pen.setCosmetic(true);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    for (int number = 0; number < m_document.placesPerSheet(); ++number) {
        const Area place = sheet->place(number);
        painter.drawRect(QRectF(QPointF(place.left, place.top), QPointF(place.right, place.bottom)));
    }
}

void PageView::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    const QColor desk = palette().color(QPalette::Window).darker(118);
    painter.fillRect(event->rect(), desk);
    const QRectF area = paper();
    constexpr double kShadow = 3;
    painter.fillRect(area.translated(kShadow, kShadow), desk.darker(160));
    painter.fillRect(area, Qt::white);
    const double scale = pixelsPerMillimetre();
    const QRectF seen = QRectF(event->rect()).intersected(area).translated(-area.topLeft());
    if (seen.isEmpty())
        return;
    painter.translate(area.topLeft());
    painter.scale(scale, scale);
    paintPlaces(painter);
    m_pages.paint(painter, m_page, {seen.topLeft() / scale, seen.size() / scale});
}

void PageView::keyPressEvent(QKeyEvent *event)
{
    const auto scroll = [](QScrollBar *bar, int steps) {
        bar->setValue(bar->value() + steps * bar->singleStep());
    };
    switch (event->key()) {
    case Qt::Key_Up:
        scroll(verticalScrollBar(), -1);
        break;
    case Qt::Key_Down:
        scroll(verticalScrollBar(), 1);
        break;
    case Qt::Key_Left:
        scroll(horizontalScrollBar(), -1);
        break;
    case Qt::Key_Right:
        scroll(horizontalScrollBar(), 1);
        break;
    default:
        event->ignore();
    }
}

/// Scrolls within the page and on to the next one at its end; with Ctrl it zooms.
void PageView::wheelEvent(QWheelEvent *event)
{
    const int turn = event->angleDelta().y();
    if (turn == 0)
        return;
    event->accept();
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        zoomBy(turn > 0 ? 1 : -1);
        return;
    }
    QScrollBar *bar = verticalScrollBar();
    const int limit = turn > 0 ? bar->minimum() : bar->maximum();
    if (bar->value() != limit) {
        constexpr int kLines = 3;
        constexpr int kNotch = 120;
        bar->setValue(bar->value() - turn * kLines * bar->singleStep() / kNotch);
        return;
    }
    const qint64 wanted = m_page + (turn > 0 ? -1 : 1);
    if (wanted < 1 || wanted > m_document.pages())
        return;
    setPage(wanted);
    if (turn > 0)
        bar->setValue(bar->maximum());
}

} // namespace report
