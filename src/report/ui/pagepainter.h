#pragma once

#include "report/document.h"

#include <QColor>
#include <QFont>
#include <QHash>
#include <QList>
#include <QRectF>
#include <QSizeF>

#include <array>
#include <memory>

class QPainter;
class QSvgRenderer;

namespace report {

/// Paints pages of a document, on whatever a painter paints on. Texts are painted as texts, so that a PDF can
/// be searched; a text that is longer than its place is narrowed, and where it would become too narrow made
/// smaller.
class PagePainter {
public:
    /// The document outlives the painter. Throws Error (Unreadable) where the artwork or one of its
    /// pictures cannot be drawn.
    explicit PagePainter(const Document &document);
    PagePainter(const PagePainter &) = delete;
    PagePainter &operator=(const PagePainter &) = delete;
    ~PagePainter();

    /// Size of a page in millimetres.
    [[nodiscard]] QSizeF pageSize() const;

    /// Paints a page (from 1) whose left upper corner is the painter's origin and whose unit is a millimetre.
    /// Nothing is painted outside of it. Of `exposed`, where given, everything is painted; the rest may stay
    /// out.
    void paint(QPainter &painter, qint64 page, const QRectF &exposed = {}) const;

private:
    /// A text style as it is painted: font of a size at which widths are measured, and known widths.
    struct Face {
        QFont font;
        double unit = 1;    ///< user units per pixel of that font
        double spacing = 0; ///< between letters, pixels of that font
        QColor colour;
        mutable QHash<QChar, double> advances; ///< pixels, of characters met so far
    };

    [[nodiscard]] static Face makeFace(const TextStyle &style);
    [[nodiscard]] static double width(const Face &face, const QString &text);
    [[nodiscard]] static double advance(const Face &face, QChar c);
    static void paintText(QPainter &painter, const Face &face, const QString &text);
    void paintLine(QPainter &painter, const PlacedLine &line) const;

    const Document &m_document;
    std::array<std::unique_ptr<QSvgRenderer>, kPartCount> m_artwork;
    QList<Face> m_faces;
};

} // namespace report
