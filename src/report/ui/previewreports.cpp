#include "report/ui/previewreports.h"

namespace report {

PreviewReports::PreviewReports(const Services &services) : m_services(services) {}

PreviewReports::~PreviewReports() = default;

void PreviewReports::print(const QString &layoutFile)
{
    m_services.messages.inform(QStringLiteral("Отчёт %1 ещё не печатается.").arg(layoutFile),
                               ui::programTitle());
}

} // namespace report
