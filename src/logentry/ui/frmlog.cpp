#include "logentry/ui/frmlog.h"

#include "base/text.h"
#include "calc/ui/calculatorpanel.h"
#include "cw/ui/keyerpanel.h"
#include "geo/locator.h"
#include "geo/ui/locatorpanel.h"
#include "logentry/clockrules.h"
#include "logentry/keyrules.h"
#include "logentry/modes.h"
#include "logentry/ui/bandpanel.h"
#include "logentry/ui/entrypanels.h"
#include "ui/boundfield.h"
#include "ui/widgets.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollArea>

namespace logentry {

frmlog::~frmlog()
{
    // The views read from the data sources, which are members: they must go first.
    qApp->removeEventFilter(this);
    disconnect(qApp, nullptr, this, nullptr);
    m_timer.stop();
    delete takeCentralWidget();
}

void frmlog::load()
{
    m_openingErrors = m_sources.open();
    readFields(); // the design texts of the controls
    m_reportFile = store::joinSuffix(m_services.databases.folder(), u"\\vurnal.rpt");
    m_fields.txtrsts = m_state.defaultReport;
    m_fields.txtrstr = m_state.defaultReport;
    m_band->showBand(m_bands);
}

// ---- the fields of the window

void frmlog::readFields()
{
    m_fields.txtcall = m_entry->txtcall->text();
    m_fields.txtrstr = m_entry->txtrstr->text();
    m_fields.txtrsts = m_entry->txtrsts->text();
    m_fields.txtqth = m_entry->txtqth->text();
    m_fields.txtname = m_entry->txtname->text();
    m_fields.txtqslvia = m_entry->txtqslvia->text();
    m_fields.txtcontr = m_station->txtcontr->text();
    m_fields.txtQSO = m_station->txtQSO->text();
    m_fields.TXTQSL = m_station->TXTQSL->text();
    m_fields.txtdate = m_clock->txtdate->text();
    m_fields.txttime = m_clock->txttime->text();
    m_fields.txtNcall = m_own->txtNcall->text();
    m_fields.TXTF11 = m_keyer->TXTF11->text();
    geo::PositionFields &position = m_fields.position;
    position.TXTSIRG = m_locator->TXTSIRG->text();
    position.TXTSHIRM = m_locator->TXTSHIRM->text();
    position.TXTDG = m_locator->TXTDG->text();
    position.TXTDN = m_locator->TXTDN->text();
    position.TSHIR = m_locator->TSHIR->text();
    position.TDOLG = m_locator->TDOLG->text();
    position.TXTLOK = m_locator->TXTLOK->text();
    position.txtdist = m_station->txtdist->text();
    position.txtaz = m_station->txtaz->text();
    position.txtGradN = m_own->txtGradN->text();
    position.txtMinN = m_own->txtMinN->text();
    position.txtGradE = m_own->txtGradE->text();
    position.txtMinE = m_own->txtMinE->text();
    m_state.keyerShown = !m_keyer->isHidden();
    m_state.mode = m_band->CMBMOD->text();
    m_state.band = m_bands.band();
}

void frmlog::showFields()
{
    m_entry->txtcall->showText(m_fields.txtcall);
    m_entry->txtrstr->showText(m_fields.txtrstr);
    m_entry->txtrsts->showText(m_fields.txtrsts);
    m_entry->txtqth->showText(m_fields.txtqth);
    m_entry->txtname->showText(m_fields.txtname);
    m_entry->txtqslvia->showText(m_fields.txtqslvia);
    m_station->txtcontr->showText(m_fields.txtcontr);
    m_station->txtQSO->showText(m_fields.txtQSO);
    m_station->TXTQSL->showText(m_fields.TXTQSL);
    m_clock->txtdate->showText(m_fields.txtdate);
    m_clock->txttime->showText(m_fields.txttime);
    m_keyer->TXTF11->showText(m_fields.TXTF11);
    const geo::PositionFields &position = m_fields.position;
    m_locator->TXTSIRG->showText(position.TXTSIRG);
    m_locator->TXTSHIRM->showText(position.TXTSHIRM);
    m_locator->TXTDG->showText(position.TXTDG);
    m_locator->TXTDN->showText(position.TXTDN);
    m_locator->TSHIR->showText(position.TSHIR);
    m_locator->TDOLG->showText(position.TDOLG);
    m_locator->TXTLOK->showText(position.TXTLOK);
    m_station->txtdist->showText(position.txtdist);
    m_station->txtaz->showText(position.txtaz);
    showPanels();
}

void frmlog::showPanels()
{
    if (m_fields.townPanelShown && m_towns->isHidden()) {
        Attempts attempt; // what the status line tells of the look-ups before stays
        attempt([this] { m_completion.listsShown(); });
        if (attempt.firstError())
            showStatus(attempt.firstError());
    }
    m_towns->setVisible(m_fields.townPanelShown);
    m_entry->lblqth->setVisible(m_fields.townHintShown);
    m_entry->lblname->setVisible(m_fields.nameHintShown);
    m_callbook->setVisible(m_fields.callbookShown);
    if (m_fields.callbookShown)
        m_callbook->showEntry(m_sources.Data12);
    DBList1->setVisible(m_state.listShown);
}

// ---- failures

void frmlog::showStatus(const std::optional<store::Error> &error)
{
    m_status->setText(error ? error->line() : QString());
    m_status->setToolTip(error ? error->details() : QString());
}

void frmlog::typed(const std::function<void()> &operation)
{
    Attempts attempt;
    attempt(operation);
    showStatus(attempt.firstError());
}

bool frmlog::asked(const std::function<void()> &operation)
{
    try {
        operation();
        return true;
    } catch (const store::Error &error) {
        m_services.messages.error(error);
        return false;
    }
}

// ---- keys of the window

bool frmlog::propagated(QWidget *widget, const QKeyEvent *event)
{
    // A key that a field ignores goes on to its parents as the same event; the window has seen it then.
    const bool again = event == m_lastKeyEvent && event->timestamp() == m_lastKeyTime && m_lastKeyWidget &&
                       widget != m_lastKeyWidget && widget->isAncestorOf(m_lastKeyWidget);
    m_lastKeyEvent = event;
    m_lastKeyTime = event->timestamp();
    m_lastKeyWidget = widget;
    return again;
}

bool frmlog::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        auto *widget = qobject_cast<QWidget *>(watched);
        const auto *key = static_cast<QKeyEvent *>(event);
        if (widget != nullptr && widget->window() == this && !propagated(widget, key)) {
            if (event->type() == QEvent::KeyPress) {
                const bool pressable =
                    qobject_cast<QAbstractButton *>(widget) != nullptr || m_calculator->isAncestorOf(widget);
                if (formKeyDown(*key) && pressable)
                    return true; // this Enter has recorded; it presses no button or "=" too
            } else
                formKeyUp(key->key(), !key->isAutoRepeat() && !m_modifiedKeys.remove(key->key()) &&
                                          (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == 0);
        }
    }
    if (event->type() == QEvent::MouseButtonRelease) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        const auto *widget = qobject_cast<QWidget *>(watched);
        // Entry fields have a menu of their own.
        if (mouse->button() == Qt::RightButton && widget != nullptr && widget->window() == this &&
            qobject_cast<const QLineEdit *>(widget) == nullptr) {
            m_menu.mnucerw->popup(mouse->globalPosition().toPoint());
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

bool frmlog::formKeyDown(const QKeyEvent &event)
{
    m_givenBack = false;
    m_recordedByKey = false;
    if (event.isAutoRepeat())
        return false;
    // Alt+F4 whose Alt goes up first is no F4.
    if ((event.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) != 0)
        m_modifiedKeys.insert(event.key());
    else
        m_modifiedKeys.remove(event.key());
    const bool enter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (enter && m_state.enterRecords) {
        cmbadd_Click();
        return true;
    }
    if (event.key() == Qt::Key_Menu || (event.key() == Qt::Key_F10 && event.modifiers() == Qt::NoModifier))
        m_menu.mnucerw->popup(mapToGlobal(QPoint(0, 0)) + QPoint(width() / 4, height() / 6));
    if (event.modifiers() == Qt::ControlModifier && event.key() == Qt::Key_F5)
        learnTown();
    if (event.modifiers() == Qt::ControlModifier && event.key() == Qt::Key_F6)
        learnName();
    return false;
}

void frmlog::formKeyUp(int keyCode, bool functionKey)
{
    m_recordedByKey = functionKey && keyCode == Qt::Key_F4 && !m_state.enterRecords;
    if (m_recordedByKey)
        cmbadd_Click();
    if (functionKey && !m_keyer->isHidden())
        keyerKeyReleased(keyCode);
    // Code 0 is what a handler of this window sets a key to when it has used it up. None does so today; the
    // test stays, because a handler that will must record in this mode.
    if (!m_keyer->keyboardFieldShown() && m_state.enterRecords && keyCode == 0)
        cmbadd_Click();
    if (functionKey && keyCode == Qt::Key_F5 && m_fields.townPanelShown)
        takeTown();
    if (functionKey && keyCode == Qt::Key_F6 && m_fields.townPanelShown)
        takeName();
}

void frmlog::keyerKeyReleased(int keyCode)
{
    if (const ui::FilterEdit *message = m_keyer->messageField(keyCode)) {
        m_entry->txtcall->reportChange(); // the station's last letter may still be down
        m_keyer->send(message->text());
    }
    if (keyCode == Qt::Key_F12 && !m_keyer->toggleKeyboardField())
        m_entry->txtcall->setFocus();
}

void frmlog::takeTown()
{
    if (const QString town = m_towns->DBList2->text(); !town.isEmpty()) // an empty list takes nothing away
        m_entry->txtqth->setText(town);
    m_entry->txtname->setFocus();
}

void frmlog::takeName()
{
    if (const QString name = m_towns->DBList3->text(); !name.isEmpty())
        m_entry->txtname->setText(name);
    m_entry->txtqth->setFocus();
}

// ---- activation, focus, closing

bool frmlog::event(QEvent *event)
{
    if (event->type() == QEvent::WindowActivate) {
        readFields();
        m_lookups.deriveOwnKey();
        if (!m_leftForDialog)
            activated();
        m_leftForDialog = false;
    } else if (event->type() == QEvent::WindowDeactivate) {
        m_leftForDialog =
            QApplication::activeModalWidget() != nullptr || QApplication::activePopupWidget() != nullptr;
    }
    return QMainWindow::event(event);
}

/// The own station's record could not be read at the start (its file was busy): once more, now that it is
/// wanted.
void frmlog::retryOwnStation()
{
    if (m_sources.Data18.failed())
        readOwnStation();
}

void frmlog::readOwnStation()
{
    if (m_sources.Data18.editPending())
        return;
    const QString status = m_status->text(); // what it tells stays, unless this fails
    const QString details = m_status->toolTip();
    Attempts attempt;
    attempt([this] { m_sources.Data18.refresh(); });
    m_status->setText(status);
    m_status->setToolTip(details);
    if (attempt.firstError())
        showStatus(attempt.firstError());
    readFields();
    m_lookups.deriveOwnKey();
}

void frmlog::activated()
{
    readOwnStation(); // the bureau may have changed it
    m_keyer->setPort(1);
    typed([this] {
        m_period->txtput->clear();
        showDefaultPath();
    });
    ui::onceOthersHaveSaved(this, [this] { readCallbookPanel(); });
}

/// The default export file is named after the own callsign, without extension; a "/" in it would be a folder.
void frmlog::showDefaultPath()
{
    const QString folder = store::joinSuffix(m_services.databases.folder(), u"\\");
    if (!m_period->txtput->text().isEmpty() && m_period->txtput->text() != folder)
        return; // the folder alone stands there since before the own callsign was typed
    QString name = m_sources.Data18.field(QStringLiteral("ccall"));
    name.replace(QLatin1Char('/'), QLatin1Char('-'));
    m_period->txtput->setText(folder + name);
}

void frmlog::logChanged()
{
    typed([this] {
        m_sources.Data5.refresh();
        m_sources.Data16.refresh();
    });
}

void frmlog::closeEvent(QCloseEvent *event)
{
    const bool saved = DBGrid1->saveRow() && asked([this] { m_sources.Data18.update(); });
    if (!saved && !m_services.messages.askYesNo(
                      QStringLiteral("Правка не сохранена. Закончить работу без неё?"), ui::programTitle())) {
        event->ignore();
        return;
    }
    event->accept();
    Q_EMIT closed();
}

// ---- clock

void frmlog::tick()
{
    if (m_station->txtcontr->text().isEmpty()) {
        m_station->txtQSO->clear();
        m_station->TXTQSL->clear();
    }
    const ClockTexts texts = logentry::tick(m_services.clock, m_state.automaticTime, m_state.utc,
                                            {m_clock->txtdate->text(), m_clock->txttime->text()});
    m_clock->txtdate->showText(texts.date);
    m_clock->txttime->showText(texts.time);
}

void frmlog::timeBaseClicked()
{
    m_state.utc = m_clock->Label10->text() != QString::fromUtf16(kUtcCaption);
    m_clock->Label10->setText(QString::fromUtf16(m_state.utc ? kUtcCaption : kLocalCaption));
}

void frmlog::cmbawto_Click()
{
    m_state.automaticTime = m_menu.cmbawto->text() != QString::fromUtf16(kAutomaticCaption);
    m_menu.cmbawto->setText(QString::fromUtf16(m_state.automaticTime ? kAutomaticCaption : kManualCaption));
    if (!m_state.automaticTime) {
        m_clock->txtdate->clear();
        m_clock->txttime->clear();
    } else {
        tick(); // at once: a contact recorded now must not get the date and time typed for another one
    }
    m_entry->txtcall->setFocus();
}

// ---- callsign

QChar frmlog::callsignFilter(QChar c, qsizetype length, const QKeyEvent *event)
{
    TypedKey key;
    typed([&] { key = callsignKey(c, length, m_sources.Data14); });
    if (key.switchLayout && event != nullptr)
        m_services.keyboard.leaveLayoutOf(*event);
    return key.character;
}

QChar frmlog::scriptFilter(const ui::FilterEdit *field, QChar c, const QKeyEvent *event)
{
    // A pasted text with Cyrillic letters was written in Cyrillic: its signs are meant as they are.
    const bool cyrillic =
        event != nullptr ? m_services.keyboard.isCyrillic(*event) : base::hasCyrillic(field->entering());
    TypedKey key{c, false};
    typed([&] { key = m_completion.scriptKey(c, cyrillic); });
    if (key.switchLayout && event != nullptr)
        m_services.keyboard.leaveLayoutOf(*event);
    return key.character;
}

void frmlog::callsignEntered()
{
    if (m_entry->txtcall->text().isEmpty() || m_state.enterRecords)
        return;
    if (m_state.automaticTime) {
        focusAndSelect(m_entry->txtrstr);
        return;
    }
    readFields();
    typed([this] { m_lookups.bukcal(); });
    showFields();
    focusAndSelect(m_clock->txtdate);
}

void frmlog::callsignKeyReleased(int key)
{
    if (key == Qt::Key_F4 && m_givenBack)
        return; // the texts that recording has just put back must not be looked up away
    if (m_recordedByKey && m_entry->txtcall->text().isEmpty()) {
        // The key has just recorded, and the day is shown: no query of a key in the empty field would find
        // anything else.
        readFields();
        m_lookups.clearForEmptyCallsign();
        showFields();
        return;
    }
    readFields();
    if (key == Qt::Key_Up)
        m_band->focusBand(m_bands.index());
    if (key == Qt::Key_Down && !m_fields.txtcall.isEmpty())
        focusAndSelect(m_entry->txtrstr);
    showStatus(m_lookups.callsignKeyReleased(key));
    showFields();
    DBGrid1->showLastRow(); // the newest of the day, or of the station
}

// ---- town and name

void frmlog::nameKeyReleased(int key)
{
    if (key == Qt::Key_Up)
        m_entry->txtqth->setFocus();
    if (key == Qt::Key_Down)
        m_entry->txtqslvia->setFocus();
    readFields();
    typed([this] { m_completion.narrowNames(); });
}

void frmlog::townKeyReleased(int key)
{
    readFields();
    typed([this] { m_completion.narrowTowns(); });
    if (key == Qt::Key_Down)
        m_entry->txtname->setFocus();
    if (key == Qt::Key_Up)
        focusAndSelect(m_entry->txtrsts);
}

void frmlog::learnName()
{
    readFields();
    asked([this] { m_completion.learnName(); });
}

void frmlog::learnTown()
{
    readFields();
    asked([this] { m_completion.learnTown(); });
}

// ---- locator

void frmlog::cmbkoor_Click()
{
    readFields();
    if (geo::cmbkoor(m_fields.position, m_lookups.position()))
        showFields();
    else
        m_services.messages.inform(QStringLiteral("НЕВЕРНЫЙ ВВОД ЛОКАТОРА"), QStringLiteral("ОШИБКА !!!"));
}

void frmlog::cmblok_Click()
{
    readFields();
    if (geo::cmblok(m_fields.position, m_lookups.position()))
        showFields();
    else
        m_services.messages.inform(QStringLiteral("Координаты нужно вводить полностью "),
                                   QStringLiteral("Ошибка ввода"));
}

// ---- bands and modes

void frmlog::bandClicked(int index)
{
    m_bands.click(index);
    m_band->showBand(m_bands);
}

void frmlog::bandKeyReleased(int key)
{
    const int before = m_bands.index();
    m_bands.keyReleased(key);
    m_band->showBand(m_bands);
    if (m_bands.index() != before)
        m_band->focusBand(
            m_bands.index()); // the focus goes with the mark, so that the space bar never moves it back
}

void frmlog::modeChosen(const QString &caption)
{
    const QString report = modeReport(caption);
    if (!report.isEmpty()) {
        m_entry->txtrsts->setText(report);
        m_entry->txtrstr->setText(report);
    }
    m_band->CMBMOD->setText(caption);
    m_state.defaultReport = m_entry->txtrsts->text();
    m_band->closeModes();
    m_entry->txtcall->setFocus();
}

void frmlog::focusAndSelect(ui::FilterEdit *field)
{
    field->setFocus();
    field->selectAll(); // a default report, the date of the contact before: typed over
}

// ---- own station

void frmlog::ownCallsignKeyPressed()
{
    readFields();
    m_lookups.deriveOwnKey();
    typed([this] { m_sources.Data18.refresh(); });
}

// ---- menu

void frmlog::mnuwwod_Click()
{
    const QString f4 = QStringLiteral("F4 - Ввод");
    m_state.enterRecords = m_menu.mnuwwod->text() != f4;
    m_menu.mnuwwod->setText(m_state.enterRecords ? f4 : QStringLiteral("Enter - Ввод"));
    m_entry->lblwwod->setText(m_state.enterRecords ? QStringLiteral("Enter - Ввод")
                                                   : QStringLiteral("F4 - Ввод QSO"));
}

void frmlog::mnulist_Click()
{
    m_state.listShown = !m_state.listShown;
    DBList1->setVisible(m_state.listShown);
    m_entry->txtcall->setFocus();
}

void frmlog::MNUCW_Click()
{
    if (m_keyer->isHidden() && m_band->CMBMOD->text() == QLatin1String("CW")) {
        m_keyer->show();
        m_keyer->txtf2->setText(m_own->txtNcall->text());
        return;
    }
    const bool focused = m_keyer->isAncestorOf(QApplication::focusWidget());
    m_keyer->hide();
    if (focused)
        m_entry->txtcall->setFocus();
}

void frmlog::mnucalk_Click()
{
    if (m_calculator->isHidden()) {
        m_calculator->open();
        QTimer::singleShot(0, this,
                           [this] { m_scroll->ensureWidgetVisible(m_calculator); }); // laid out by then
        return;
    }
    m_calculator->hide();
    m_entry->txtcall->setFocus();
}

void frmlog::mnulog_Click()
{
    m_tasks.switchParallelLog();
    m_menu.mnulog->setText(m_state.parallelLog ? QStringLiteral("Прекратиь запись в log.mdb")
                                               : QStringLiteral("Записывать в  log.mdb"));
    txtlog->setVisible(m_state.parallelLog);
}

void frmlog::mnuzaglog_Click()
{
    DBGrid1->saveRow();
    m_tasks.loadParallelLog();
    DBGrid1->showLastRow();
}

void frmlog::mnurewiz_Click()
{
    DBGrid1->saveRow();
    readFields();
    const std::optional<QString> line = m_tasks.reviseCountries();
    if (!line)
        return;
    showFields();
    m_status->setText(*line);
    m_status->setToolTip({});
    DBGrid1->showLastRow();
    focusAndSelect(m_entry->txtcall); // it may show the last contact: the next letter typed replaces it
}

// ---- recording

void frmlog::cmbadd_Click()
{
    retryOwnStation();
    m_entry->txtcall->reportChange(); // the last letter's key may still be down
    DBGrid1->saveRow();
    readFields();
    const RecordOutcome outcome = m_recorder.cmbadd_Click();
    showFields();
    finishRecording(outcome);
    DBGrid1->showLastRow();
    m_entry->txtcall->setFocus();
}

void frmlog::finishRecording(RecordOutcome outcome)
{
    const Contact &contact = m_recorder.contact();
    const QString shown = QStringLiteral("%1   %2  %3   %4 МГц %5   RST %6 / %7\n%8   %9   QSL via: %10")
                              .arg(contact.ccall, contact.ddate, contact.ttime, contact.bband, contact.ps1,
                                   contact.rsts, contact.rstr, contact.QTH, contact.NNAME)
                              .arg(contact.QSLVIA);
    while (outcome.notStored || outcome.notInParallelLog) {
        QString whereSaved;
        if (!outcome.notStored)
            whereSaved = QStringLiteral("В основной журнал связь записана, в параллельный нет.");
        else if (!outcome.emergencyFile.isEmpty())
            whereSaved = QStringLiteral("Связь в журнал не записана. Она сохранена в файле %1.")
                             .arg(outcome.emergencyFile);
        else
            whereSaved = QStringLiteral(
                "Связь в журнал не записана, и в файл avaria.adi тоже. Не закрывайте программу: "
                "устраните причину и нажмите «Повторить».");
        const store::Error error = outcome.notStored ? *outcome.notStored : *outcome.notInParallelLog;
        if (m_services.messages.notStored(error, shown, whereSaved) == ui::NotStoredChoice::GiveBack) {
            m_recorder.giveBack();
            m_givenBack = true;
            showFields();
            return;
        }
        outcome = m_recorder.retry();
    }
    showStatus(outcome.notShown);
}

void frmlog::deleteRow(int row)
{
    const QString call = m_sources.Data5.text(row, QStringLiteral("ccall"));
    const QString date = m_sources.Data5.text(row, QStringLiteral("ddate"));
    const QString time = m_sources.Data5.text(row, QStringLiteral("ttime"));
    const QString question = QStringLiteral("Удалить связь %1  %2  %3 ?").arg(call, date, time);
    if (m_services.messages.askYesNo(question, QStringLiteral("Удаление данных")))
        asked([&] { m_sources.Data5.removeRow(row); });
}

} // namespace logentry
