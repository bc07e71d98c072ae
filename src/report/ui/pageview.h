#pragma once

#include "report/ui/pagepainter.h"

#include <QAbstractScrollArea>

class QPainter;

namespace report {

/// One page of a document on a grey desk, painted when it is shown. The paper is white in a dark desktop too.
class PageView final : public QAbstractScrollArea {
    Q_OBJECT

public:
    enum class Fit { Page, Width, None };

    /// Both outlive the view.
    PageView(const Document &document, const PagePainter &pages, QWidget *parent);

    [[nodiscard]] qint64 page() const noexcept { return m_page; }
    /// Shows a page, from its beginning; one that there is not: the nearest.
    void setPage(qint64 page);

    /// Zoom in per cent of the paper's own size on this screen.
    [[nodiscard]] double zoom() const noexcept;
    [[nodiscard]] Fit fit() const noexcept { return m_fit; }
    void setZoom(double perCent);
    void setFit(Fit fit);
    /// The next zoom of the list, larger or smaller.
    void zoomBy(int steps);

    static constexpr double kLeastZoom = 50;
    static constexpr double kMostZoom = 400;

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void pageChanged(qint64 page);
    void zoomChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void arrange();
    void paintPlaces(QPainter &painter) const;
    [[nodiscard]] double pixelsPerMillimetre() const;
    [[nodiscard]] QRectF paper() const;

    const Document &m_document;
    const PagePainter &m_pages;
    qint64 m_page = 1;
    Fit m_fit = Fit::Page;
    double m_zoom = 100;
};

} // namespace report
