// What the main window writes into the callbook and the contest list.
#include "logentry/ui/entrypanels.h"
#include "logentry/ui/frmlog.h"

#include <QScopeGuard>

#include <optional>

namespace logentry {

/// The station's record may have been made or changed meanwhile. The fields of the contact stay as typed.
void frmlog::readCallbookPanel()
{
    const QString call = m_entry->txtcall->text();
    if (call.isEmpty())
        return;
    Attempts attempt; // what the status line tells stays
    attempt([&] {
        m_sources.Data12.refresh();
        const QString found = m_sources.Data12.field(QStringLiteral("ccall"));
        m_fields.callbookShown = found.compare(call, Qt::CaseInsensitive) == 0;
    });
    if (attempt.firstError())
        showStatus(attempt.firstError());
    showPanels();
}

void frmlog::cmbaddbuk_Click()
{
    m_entry->txtcall->reportChange(); // the last letter's key may still be down
    readFields();
    showStatus(std::nullopt); // what the last one did is not said of this one
    const QString line = m_tasks.addToCallbook();
    readCallbookPanel();
    m_status->setText(line);
    m_status->setToolTip({});
}

void frmlog::cmbcalbuk_Click()
{
    const auto hidden = qScopeGuard([this] { lblwait->hide(); });
    showStatus(std::nullopt);
    const QString line = m_tasks.contestList(this, [this] {
        lblwait->show();
        lblwait->repaint();
    });
    m_status->setText(line);
    m_status->setToolTip({});
}

} // namespace logentry
