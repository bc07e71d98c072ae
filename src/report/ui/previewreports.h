#pragma once

#include "report/reports.h"
#include "store/library.h"
#include "ui/filedialogs.h"
#include "ui/messages.h"
#include "ui/progress.h"

namespace report {

/// What reports are shown with. All outlive them.
struct Services {
    store::Library &databases;
    ui::Messages &messages;
    ui::Progress &progress;
    ui::FileDialogs &dialogs;
};

/// Shows reports in the preview window.
class PreviewReports final : public Reports {
public:
    explicit PreviewReports(const Services &services);
    ~PreviewReports() override;

    void print(const QString &layoutFile) override;

private:
    Services m_services;
};

} // namespace report
