#include "report/ui/previewreports.h"

#include "report/document.h"
#include "report/shipped.h"
#include "report/ui/frmpreview.h"
#include "store/error.h"
#include "store/folder.h"

#include <QFileInfo>

#include <utility>

namespace report {

PreviewReports::PreviewReports(const Services &services, std::unique_ptr<Printing> printing)
    : m_services(services), m_printing(printing ? std::move(printing) : systemPrinting())
{}

PreviewReports::~PreviewReports()
{
    for (const QPointer<QWidget> &window : std::as_const(m_windows))
        delete window.data();
}

QList<QWidget *> PreviewReports::windows() const
{
    QList<QWidget *> open;
    for (const QPointer<QWidget> &window : m_windows)
        if (window)
            open.append(window.data());
    return open;
}

/// The operator's layout. Where there is none and none can be written, the one that comes with the program.
Layout PreviewReports::layout(const QString &path) const
{
    const QFileInfo info(path);
    const QString found = store::findFile(info.path(), info.fileName(), m_services.databases.chooser());
    const QByteArray shipped = shippedLayout(info.fileName());
    if (!QFileInfo::exists(found) && m_services.databases.readOnly() && !shipped.isEmpty())
        return readLayout(shipped, path);
    return readLayoutFile(found);
}

void PreviewReports::print(const QString &layoutFile)
{
    m_windows.removeAll(QPointer<QWidget>());
    ui::guarded(m_services.messages, [&] {
        std::unique_ptr<Document> document;
        {
            const ui::ProgressScope scope(m_services.progress, QStringLiteral("Подготовка печати"), true);
            document =
                Document::read(layout(layoutFile), m_services.databases, [this](qint64 done, qint64 total) {
                    return m_services.progress.advance(QStringLiteral("Прочитано строк"), done, total);
                });
        }
        if (!document)
            return;
        auto window = std::make_unique<frmPreview>(m_services, *m_printing, std::move(document));
        m_windows.append(QPointer<QWidget>(window.get()));
        window.release()->show(); // deletes itself when it is closed
    });
}

} // namespace report
