#include "report/ui/printing.h"

#include <QPageLayout>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>

#include <algorithm>

namespace report {

namespace {

class SystemTarget final : public PrintTarget {
public:
    explicit SystemTarget(const PrintWish &wish) : m_wish(wish)
    {
        m_printer.setDocName(wish.title);
        m_printer.setCreator(QStringLiteral("Zhurnal"));
        m_printer.setFullPage(true);
        const bool landscape = wish.paper.width() > wish.paper.height();
        m_printer.setPageSize(QPageSize(landscape ? wish.paper.transposed() : wish.paper,
                                        QPageSize::Millimeter, QString(), QPageSize::FuzzyMatch));
        m_printer.setPageOrientation(landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
    }

    [[nodiscard]] bool ask(QWidget *parent)
    {
        QPrintDialog dialog(&m_printer, parent);
        dialog.setObjectName(QStringLiteral("dlgpecat"));
        dialog.setWindowTitle(QStringLiteral("Печать"));
        dialog.setOption(QAbstractPrintDialog::PrintCurrentPage);
        dialog.setMinMax(1, m_wish.pages);
        return dialog.exec() == QDialog::Accepted;
    }

    [[nodiscard]] QPagedPaintDevice &device() override { return m_printer; }
    [[nodiscard]] int firstPage() const override
    {
        if (m_printer.printRange() == QPrinter::CurrentPage)
            return m_wish.currentPage;
        return m_printer.printRange() == QPrinter::PageRange ? std::max(1, m_printer.fromPage()) : 1;
    }
    [[nodiscard]] int lastPage() const override
    {
        if (m_printer.printRange() == QPrinter::CurrentPage)
            return m_wish.currentPage;
        const bool range = m_printer.printRange() == QPrinter::PageRange && m_printer.toPage() > 0;
        return range ? std::min(m_wish.pages, m_printer.toPage()) : m_wish.pages;
    }
    void abort() override { m_printer.abort(); }

private:
    PrintWish m_wish;
    QPrinter m_printer{QPrinter::HighResolution};
};

class SystemPrinting final : public Printing {
public:
    [[nodiscard]] bool available() const override { return !QPrinterInfo::availablePrinterNames().isEmpty(); }
    [[nodiscard]] std::unique_ptr<PrintTarget> choose(QWidget *parent, const PrintWish &wish) override
    {
        auto target = std::make_unique<SystemTarget>(wish);
        if (!target->ask(parent))
            return nullptr;
        return target;
    }
};

} // namespace

std::unique_ptr<Printing> systemPrinting()
{
    return std::make_unique<SystemPrinting>();
}

} // namespace report
