#include "report/ui/pdffile.h"

#include "store/error.h"
#include "store/safefile.h"

#include <QIODevice>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>

#include <optional>

namespace report {

namespace {

/// Hands what is written on to a safe file and keeps its failure, which must not be thrown through Qt.
class SafeDevice final : public QIODevice {
public:
    explicit SafeDevice(store::SafeFile &file) : m_file(file) { open(QIODevice::WriteOnly); }

    [[nodiscard]] bool isSequential() const override { return true; }
    void check() const
    {
        if (m_failure)
            throw store::Error(*m_failure);
    }
    [[nodiscard]] bool failed() const noexcept { return m_failure.has_value(); }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *data, qint64 size) override
    {
        if (m_failure)
            return -1;
        try {
            m_file.write(QByteArrayView(data, size));
            return size;
        } catch (const store::Error &error) {
            m_failure = error;
            return -1;
        }
    }

private:
    store::SafeFile &m_file;
    std::optional<store::Error> m_failure;
};

QPageLayout paper(const Document &document)
{
    const QSizeF size(document.layout().width, document.layout().height);
    const bool landscape = size.width() > size.height();
    const QPageSize page(landscape ? size.transposed() : size, QPageSize::Millimeter, QString(),
                         QPageSize::FuzzyMatch);
    return {page, landscape ? QPageLayout::Landscape : QPageLayout::Portrait, QMarginsF()};
}

} // namespace

bool paintPages(const Document &document, QPagedPaintDevice &device, qint64 first, qint64 last,
                const PageStep &step)
{
    QPageLayout layout = paper(document);
    layout.setMode(QPageLayout::FullPageMode);
    device.setPageLayout(layout);
    const PagePainter pages(document);
    QPainter painter;
    if (!painter.begin(&device))
        return false;
    const double perMillimetreX = device.logicalDpiX() / 25.4;
    const double perMillimetreY = device.logicalDpiY() / 25.4;
    for (qint64 page = first; page <= last; ++page) {
        if (!step(page - first, last - first + 1) || (page > first && !device.newPage()))
            return false;
        painter.save();
        painter.scale(perMillimetreX, perMillimetreY);
        pages.paint(painter, page);
        painter.restore();
    }
    return painter.end();
}

bool writePdf(const Document &document, const QString &path, const PageStep &step)
{
    store::SafeFile file(path);
    SafeDevice device(file);
    bool complete = false;
    bool stopped = false;
    {
        QPdfWriter writer(&device);
        constexpr int kResolution = 1200;
        writer.setResolution(kResolution);
        writer.setTitle(document.layout().title);
        writer.setCreator(QStringLiteral("Zhurnal"));
        complete = paintPages(document, writer, 1, document.pages(), [&](qint64 done, qint64 total) {
            stopped = !step(done, total);
            return !stopped && !device.failed();
        });
    }
    device.check();
    if (stopped)
        return false;
    if (!complete)
        throw store::Error(store::ErrorKind::Unwritable, path, QStringLiteral("страницы не построены"));
    file.finish();
    file.publish();
    return true;
}

} // namespace report
