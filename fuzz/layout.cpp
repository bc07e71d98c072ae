// Any bytes are a layout whose parts can be drawn, or they are refused with words.
// Seeds: the layouts in data/reports.
#include "report/layout.h"
#include "store/error.h"

#include <QXmlStreamReader>

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace {

void demand(bool holds)
{
    if (!holds)
        __builtin_trap();
}

/// What goes to the renderer is a document of its own, without texts and without a way out.
void checkArtwork(const QByteArray &artwork)
{
    QXmlStreamReader reader(artwork);
    while (!reader.atEnd()) {
        reader.readNext();
        demand(!reader.isDTD() && !reader.isEntityReference());
        if (!reader.isStartElement())
            continue;
        demand(reader.name() != QLatin1String("text"));
        const auto link =
            reader.attributes().value(QLatin1String("http://www.w3.org/1999/xlink"), QLatin1String("href"));
        demand(reader.name() != QLatin1String("image") ||
               link.trimmed().startsWith(QLatin1String("data:"), Qt::CaseInsensitive));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    try {
        const report::Layout layout = report::readLayout(bytes, QStringLiteral("a.rpt"));
        demand(layout.width >= 10 && layout.height >= 10 && layout.rowsPerPage >= 1);
        demand(!layout.sheet || (layout.sheet->columns >= 1 && layout.sheet->rows >= 1));
        demand(!layout.sheet || !layout.titlePage);
        for (const report::TextStyle &style : layout.styles)
            demand(style.opacity >= 0 && style.opacity <= 1);
        for (const report::Part &part : layout.parts) {
            checkArtwork(part.artwork);
            for (const report::TextLine &line : part.lines) {
                demand(!line.segments.isEmpty() && std::isfinite(line.toPage.e) && line.width >= 0);
                for (const report::Segment &segment : line.segments)
                    demand(segment.style >= 0 && segment.style < layout.styles.size());
            }
        }
    } catch (const store::Error &error) {
        demand(!error.engineText().isEmpty());
    }
    return 0;
}
