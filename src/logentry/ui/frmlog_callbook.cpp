// What the main window writes into the callbook and the contest list.
#include "logentry/ui/entrypanels.h"
#include "logentry/ui/frmlog.h"

#include <QScopeGuard>

namespace logentry {

/// The callbook's window may have changed the record that is shown. The fields of the contact stay as typed.
void frmlog::readCallbookPanel()
{
    if (!m_fields.callbookShown)
        return;
    Attempts attempt; // what the status line tells stays
    attempt([this] {
        m_sources.Data12.refresh();
        m_fields.callbookShown = !m_sources.Data12.isEmpty();
    });
    if (attempt.firstError())
        showStatus(attempt.firstError());
    showPanels();
}

void frmlog::cmbaddbuk_Click()
{
    m_entry->txtcall->reportChange(); // the last letter's key may still be down
    readFields();
    const QString line = m_tasks.addToCallbook();
    readCallbookPanel();
    m_status->setText(line);
    m_status->setToolTip({});
}

void frmlog::cmbcalbuk_Click()
{
    const auto hidden = qScopeGuard([this] { lblwait->hide(); });
    const QString line = m_tasks.contestList(this, [this] {
        lblwait->show();
        lblwait->repaint();
    });
    m_status->setText(line);
    m_status->setToolTip({});
}

} // namespace logentry
