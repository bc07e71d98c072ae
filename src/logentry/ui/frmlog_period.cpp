// Handlers of the main window that take contacts out of the log or bring them in: the period panel, the
// workbook.
#include "logentry/ui/entrypanels.h"
#include "logentry/ui/frmlog.h"

#include <QPushButton>

namespace logentry {

void frmlog::cmbxls_Click()
{
    const QString line = m_tasks.importSpreadsheet(this);
    if (line.isEmpty())
        return;
    logChanged();
    m_status->setText(line);
}

// ---- contacts of a period

void frmlog::mnuvur_Click()
{
    if (!m_period->isHidden()) {
        m_period->hide();
        m_entry->txtcall->setFocus();
        return;
    }
    m_period->txtdatmin->setText(m_clock->txtdate->text());
    m_period->txtdatmax->setText(m_clock->txtdate->text());
    m_period->showResult({});
    typed([this] { showDefaultPath(); });
    m_period->show();
    m_period->txtdatmin->setFocus();
}

void frmlog::Pechat()
{
    m_period->showResult({});
    if (!DBGrid1->saveRow())
        return; // what is printed is what has been seen
    const std::optional<qint64> contacts =
        m_periodTasks.fillPrintTable(m_period->txtdatmin->text(), m_period->txtdatmax->text());
    if (!contacts)
        return;
    m_reportFile = store::joinSuffix(m_services.databases.folder(), u"\\vurnal.rpt");
    m_period->showResult(QStringLiteral("Для печати отобрано связей: %1.").arg(*contacts));
    m_services.reports.print(m_reportFile);
}

void frmlog::cmbwtabl_Click()
{
    readFields();
    if (m_state.ownCallKey.isEmpty())
        m_lookups.deriveOwnKey();
    m_period->showResult({});
    if (!DBGrid1->saveRow() ||
        !m_periodTasks.showInGrid(m_period->txtdatmin->text(), m_period->txtdatmax->text()))
        return;
    DBGrid1->scrollToTop();
    const int contacts = m_sources.Data5.recordCount();
    m_status->setText(contacts == 0 ? QStringLiteral("За этот период связей нет.")
                                    : QStringLiteral("За период связей: %1.").arg(contacts));
    m_status->setToolTip({});
}

void frmlog::cmbput_Click()
{
    const QString chosen = m_services.dialogs.fileToSave(
        this, QStringLiteral("Где будет ADIF файл"), m_period->txtput->text(),
        {QStringLiteral("ADIF (*.adi *.adif *.adx)"), QStringLiteral("Все файлы (*)")});
    if (!chosen.isEmpty())
        m_period->txtput->setText(chosen);
    typed([this] { showDefaultPath(); });
}

void frmlog::cbmotchet_Click(bool whole)
{
    readFields();
    if (m_state.ownCallKey.isEmpty())
        m_lookups.deriveOwnKey();
    m_period->showResult({});
    if (m_fields.txtNcall.isEmpty()) {
        m_period->showResult(QStringLiteral("Сначала введите свой позывной."));
        return;
    }
    const QString first = m_period->txtdatmin->text();
    const QString last = m_period->txtdatmax->text();
    const QString path = m_period->txtput->text();
    m_period->showResult(whole
                             ? m_periodTasks.exportWhole(first, last, path, m_period->form(),
                                                         {m_services.clock.utc(),
                                                          QStringLiteral(ZHURNAL_VERSION), m_fields.txtNcall})
                             : m_periodTasks.exportInPieces(first, last, path));
    if (!whole)
        logChanged(); // reports and modes may have been replaced
}

} // namespace logentry
