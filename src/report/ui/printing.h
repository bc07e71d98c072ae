#pragma once

#include <QSizeF>
#include <QString>

#include <memory>

class QPagedPaintDevice;
class QWidget;

namespace report {

/// What is going to be printed.
struct PrintWish {
    QString title;
    QSizeF paper; ///< millimetres
    int pages = 1;
    int currentPage = 1;
};

/// A printer that the operator has chosen, and what of the document.
class PrintTarget {
public:
    PrintTarget() = default;
    PrintTarget(const PrintTarget &) = delete;
    PrintTarget &operator=(const PrintTarget &) = delete;
    virtual ~PrintTarget() = default;

    [[nodiscard]] virtual QPagedPaintDevice &device() = 0;
    [[nodiscard]] virtual int firstPage() const = 0;
    [[nodiscard]] virtual int lastPage() const = 0;
    /// What has been painted so far does not go to paper.
    virtual void abort() = 0;
};

/// Printers. Tests bring a recording one.
class Printing {
public:
    Printing() = default;
    Printing(const Printing &) = delete;
    Printing &operator=(const Printing &) = delete;
    virtual ~Printing() = default;

    /// There is a printer to choose.
    [[nodiscard]] virtual bool available() const = 0;
    /// Asks the operator; null where nothing is to be printed.
    [[nodiscard]] virtual std::unique_ptr<PrintTarget> choose(QWidget *parent, const PrintWish &wish) = 0;
};

/// The system's printers and its dialog.
[[nodiscard]] std::unique_ptr<Printing> systemPrinting();

} // namespace report
