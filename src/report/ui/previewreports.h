#pragma once

#include "report/layout.h"
#include "report/reports.h"
#include "report/ui/printing.h"
#include "store/library.h"
#include "ui/filedialogs.h"
#include "ui/messages.h"
#include "ui/progress.h"

#include <QList>
#include <QPointer>
#include <QWidget>

#include <memory>

namespace report {

/// What reports are shown with. All outlive them.
struct Services {
    store::Library &databases;
    ui::Messages &messages;
    ui::Progress &progress;
    ui::FileDialogs &dialogs;
};

/// Shows reports in preview windows, one for each report that is run. The windows go with it.
class PreviewReports final : public Reports {
public:
    /// `printing`: the printers; the system's where none is given.
    explicit PreviewReports(const Services &services, std::unique_ptr<Printing> printing = nullptr);
    ~PreviewReports() override;

    void print(const QString &layoutFile) override;

    /// The windows that are open, the oldest first.
    [[nodiscard]] QList<QWidget *> windows() const;

private:
    [[nodiscard]] Layout layout(const QString &path) const;

    Services m_services;
    std::unique_ptr<Printing> m_printing;
    QList<QPointer<QWidget>> m_windows;
};

} // namespace report
