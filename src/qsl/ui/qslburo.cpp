#include "qsl/ui/qslburo.h"

#include "qsl/sql.h"
#include "qsl/ui/bureaupanels.h"
#include "store/opening.h"
#include "ui/widgets.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QScopeGuard>
#include <QShowEvent>

#include <utility>

namespace qsl {

namespace {

/// The list's first row counts as chosen while none is: it is shown so.
void showCurrent(ui::DbList *list)
{
    if (!list->currentIndex().isValid())
        list->setCurrentIndex(list->model()->index(0, 0));
}

} // namespace

QSLburo::QSLburo(const Services &services)
    : m_services(services), m_sources(services.databases), m_statistics(m_sources), m_marking(m_sources)
{
    setObjectName(QStringLiteral("QSLburo"));
    setWindowTitle(QStringLiteral("QSL Бюро"));
    setAttribute(Qt::WA_QuitOnClose, false);
    m_turn = new ui::WindowTurn(this, services.messages);
    m_turn->tellInFront(m_sources.open());
    connect(m_turn, &ui::WindowTurn::activated, this, [this] {
        readAgain(m_sources.Data13);
        Form_GotFocus();
    });
    connect(m_turn, &ui::WindowTurn::came, this, &QSLburo::came);
    connect(m_turn, &ui::WindowTurn::left, this, &QSLburo::saveLeft);
    m_reportFile = store::joinSuffix(services.databases.folder(), u"\\qsl.rpt");
    buildMenu();
    buildLayout();
    connectLists();
    connectBlank();
    connectEntry();
}

QSLburo::~QSLburo()
{
    // The fields read from the data sources, which are members: they must go first. What happens to them on
    // the way concerns nobody.
    if (QWidget *inside = focusWidget())
        inside->clearFocus(); // leaving a field writes into the status line, which is deleted first
    for (QWidget *watched : std::initializer_list<QWidget *>{DBGrid1, m_lists->txtserch, m_lists->DBList1})
        watched->removeEventFilter(this);
    delete takeCentralWidget();
}

// ---- the window

void QSLburo::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    if (event->spontaneous())
        return;
    if (std::exchange(m_shown, true)) // other windows have written meanwhile
        m_turn->tellInFront(
            store::refreshEach({&m_sources.Data1, &m_sources.Data3, &m_sources.Data6, &m_sources.Data14}));
    m_lists->txtserch->setFocus();
}

void QSLburo::closeEvent(QCloseEvent *event)
{
    // Each for itself: what can be saved must not be given up with what cannot.
    bool saved = DBGrid1->saveRow();
    saved = m_blank->DBGrid2->saveRow() && saved;
    for (store::DataSource *source : {&m_sources.Data13, &m_sources.Data14})
        saved = m_status->asked([source] { ui::savePending(*source); }) && saved;
    if (!saved && !m_services.messages.askYesNo(QStringLiteral("Правка не сохранена. Закрыть окно без неё?"),
                                                ui::programTitle())) {
        event->ignore();
        return;
    }
    for (store::DataSource *source :
         {&m_sources.Data1, &m_sources.Data3, &m_sources.Data13, &m_sources.Data14})
        source->cancelUpdate();
    event->accept();
}

/// The awards' windows fill the same blank.
void QSLburo::came()
{
    if (!m_blank->DBGrid2->editing())
        m_status->quietly([this] { m_blank->DBGrid2->readAgain(); });
}

/// The operator has gone to another window, which reads the same files.
void QSLburo::saveLeft()
{
    m_turn->save(*m_status, {&m_sources.Data1, &m_sources.Data3, &m_sources.Data13, &m_sources.Data14});
}

bool QSLburo::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == DBGrid1 && event->type() == QEvent::KeyPress)
        return gridKey(*static_cast<QKeyEvent *>(event));
    if (watched == m_lists->DBList1 && event->type() == QEvent::KeyPress)
        return listKey(*static_cast<QKeyEvent *>(event));
    if (watched == m_lists->txtserch && event->type() == QEvent::FocusIn) {
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        // The focus comes back with the window, a box or a menu: nothing new is searched for.
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason &&
            reason != Qt::MenuBarFocusReason)
            txtserch_GotFocus();
    }
    return QMainWindow::eventFilter(watched, event);
}

QString QSLburo::country() const
{
    return m_countPanel->txtstrana->text();
}

void QSLburo::setCountry(const QString &name)
{
    m_countPanel->txtstrana->setText(name);
}

void QSLburo::setCalls(const store::SqlText &calls)
{
    m_sources.Data6.setRecordSource(calls);
    m_sources.Data6.refresh();
}

void QSLburo::setContacts(const store::SqlText &contacts)
{
    store::requery(m_sources.Data1, contacts);
}

// ---- own callsign

void QSLburo::Form_GotFocus()
{
    m_ownCallKey = ownCallKey(m_lists->txtnewcall->text(), m_ownCallKey);
}

/// Another window may have changed its rows. What the status line tells stays.
void QSLburo::readAgain(store::DataSource &source)
{
    if (source.editPending())
        return;
    m_status->quietly([&] { source.refresh(); });
}

void QSLburo::needOwnKey()
{
    if (m_ownCallKey.isEmpty())
        Form_GotFocus();
}

void QSLburo::txtnewcall_KeyUp()
{
    Form_GotFocus();
    m_status->typed([this] { m_sources.Data13.refresh(); });
}

// ---- lists

void QSLburo::lbldxcc_Click()
{
    m_selector.advance();
    const Selection selection = m_selector.selection();
    m_countPanel->lbldxcc->setText(m_selector.caption());
    m_lists->DBList2->setVisible(selection == Selection::Country);
    m_lists->DBList3->setVisible(selection == Selection::Region);
    m_countPanel->txtstrana->setVisible(selection != Selection::Region);
    m_countPanel->LBLGOR->setVisible(selection == Selection::Region);
    m_lists->lblnazw->setText(m_selector.heading());
    switch (selection) {
    case Selection::Country:
        showCurrent(m_lists->DBList2);
        DBList2_Click();
        break;
    case Selection::Region:
        showCurrent(m_lists->DBList3);
        DBList3_Click();
        break;
    case Selection::All:
        m_status->asked([this] { setCalls(sql::allCallsSorted()); });
        break;
    }
}

void QSLburo::DBList1_Click(const QString &call)
{
    m_status->asked([&] {
        setContacts(sql::contactsOfCall(call));
        if (m_selector.selection() != Selection::All)
            return;
        m_chosenCall = call;
        setCountry(m_statistics.countryOfCall(m_chosenCall, country()));
    });
}

void QSLburo::DBList2_Click()
{
    if (m_selector.selection() != Selection::Country)
        return;
    Statistics::clearCounts(m_counts);
    m_countPanel->show(m_counts);
    m_status->asked([this] {
        setCountry(m_statistics.countryOfPrincipalPrefix(m_lists->DBList2->text()));
        setCalls(sql::callsOfCountry(country()));
    });
}

void QSLburo::DBList3_Click()
{
    if (m_selector.selection() != Selection::Region)
        return;
    Statistics::clearCounts(m_counts);
    m_countPanel->show(m_counts);
    m_status->asked([this] {
        const QString region = m_lists->DBList3->text();
        setCalls(sql::callsOfRegion(region, m_ownCallKey));
        m_sources.Data9.setRecordSource(sql::nameOfRegion(region));
        m_sources.Data9.refresh();
    });
}

void QSLburo::showRegionName()
{
    m_status->typed(
        [this] { m_countPanel->LBLGOR->setText(m_sources.Data9.field(QStringLiteral("gorod"))); });
}

void QSLburo::lblband_Click(int band)
{
    const QString text = m_countPanel->lblband[band]->text();
    m_status->asked([&] {
        switch (m_selector.selection()) {
        case Selection::All:
            setCalls(sql::callsOnBand(text, m_ownCallKey));
            break;
        case Selection::Region:
            setCalls(sql::callsOfRegionOnBand(m_lists->DBList3->text(), text, m_ownCallKey));
            break;
        case Selection::Country:
            setCalls(sql::callsOfCountryOnBand(text, country(), m_ownCallKey));
            break;
        }
    });
}

void QSLburo::txtstrana_Click()
{
    m_status->asked([this] { setContacts(sql::contactsOfCountry(country(), m_ownCallKey)); });
}

void QSLburo::Command3_Click()
{
    m_status->asked([this] { setCalls(sql::callsWithCard()); });
}

// ---- search

QChar QSLburo::searchFilter(QChar typed, qsizetype length) const
{
    constexpr qsizetype kMost = 14;
    const QChar upper = typed.toUpper();
    const bool allowed =
        QStringView(u"0123456789ASDFGHJKLQWERTYUIOPZXCVBNM/").contains(upper) && length < kMost;
    return allowed ? upper : QChar();
}

void QSLburo::txtserch_GotFocus()
{
    Statistics::clearAllBands(m_counts);
    m_countPanel->show(m_counts);
    setCountry({});
}

void QSLburo::txtserch_KeyUp(int key)
{
    needOwnKey();
    m_status->typed([this] {
        const QString text = m_lists->txtserch->text();
        setCalls(sql::callsFrom(text, m_ownCallKey));
        setContacts(sql::contactsOfFoundCall(m_lists->DBList1->text(), m_ownCallKey));
        if (!text.isEmpty())
            setCountry(m_statistics.countryOfCall(text, country()));
    });
    if (key == Qt::Key_Down)
        m_lists->DBList1->setFocus();
}

void QSLburo::toSearch()
{
    m_lists->txtserch->setFocus();
    m_lists->txtserch->selectAll(); // the next callsign replaces the last one
}

// ---- counts

void QSLburo::cmbinfo_Click()
{
    if (m_selector.selection() == Selection::Region)
        countRegion();
    else
        info();
}

void QSLburo::countRegion()
{
    const auto done = qScopeGuard([this] {
        m_countPanel->show(m_counts);
        m_countPanel->txtas->hide();
    });
    m_countPanel->showBusy();
    m_status->asked([this] { m_statistics.countRegion(m_lists->DBList3->text(), m_counts); });
}

void QSLburo::info()
{
    if (country().isEmpty())
        Command1_Click();
    const auto done = qScopeGuard([this] {
        m_countPanel->show(m_counts);
        m_countPanel->txtas->hide();
    });
    m_countPanel->showBusy();
    m_status->asked([this] {
        m_sources.Data4.refresh();
        if (!country().isEmpty())
            m_statistics.countCountry(country(), m_counts);
    });
}

void QSLburo::Command1_Click()
{
    const auto done = qScopeGuard([this] {
        m_countPanel->show(m_counts);
        m_countPanel->txtas->hide();
    });
    m_status->asked([this] {
        if (m_selector.selection() != Selection::Region) {
            setCountry({});
            m_countPanel->showBusy();
            m_statistics.countCountries(m_counts);
        }
        m_statistics.countLog(m_counts);
    });
}

// ---- contacts and the blank

bool QSLburo::gridKey(const QKeyEvent &event)
{
    const int row = DBGrid1->currentIndex().row();
    if (event.modifiers() != Qt::NoModifier && event.modifiers() != Qt::KeypadModifier)
        return false;
    switch (event.key()) {
    case Qt::Key_F1:
        if (row >= 0 && !event.isAutoRepeat())
            showCallsOnAllBands(row);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (row >= 0 && !event.isAutoRepeat())
            copyToBlank(row);
        return true;
    case Qt::Key_Escape: // a mark that was typed is saved on the way, not dropped: the next search follows
        if (DBGrid1->saveRow() || giveRowUp())
            toSearch();
        return true;
    default:
        return false;
    }
}

bool QSLburo::listKey(const QKeyEvent &event)
{
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!event.isAutoRepeat()) {
            DBList1_Click(m_lists->DBList1->text());
            DBGrid1->setFocus();
        }
        return true;
    case Qt::Key_Escape:
        toSearch();
        return true;
    default:
        return false;
    }
}

/// Without this way out a row that can never be saved would hold the operator for good.
bool QSLburo::giveRowUp()
{
    if (!m_services.messages.askYesNo(QStringLiteral("Правка строки не сохранена. Отказаться от неё?"),
                                      ui::programTitle()))
        return false;
    m_sources.Data1.cancelUpdate();
    return true;
}

void QSLburo::showCallsOnAllBands(int row)
{
    m_status->asked(
        [&] { setContacts(sql::contactsOfCallByBand(m_sources.Data1.text(row, QStringLiteral("ccall")))); });
    DBGrid1->setCurrentIndex(DBGrid1->model()->index(0, 0));
}

void QSLburo::copyToBlank(int row)
{
    if (!DBGrid1->saveRow())
        return;
    bool timeAsked = false;
    const BlankQuestions questions{
        [&] {
            timeAsked = true;
            return m_services.messages.askText(QStringLiteral("Введите время !!! "),
                                               QStringLiteral("Нет времени связи"));
        },
        [this] {
            return m_services.messages.askYesNo(QStringLiteral("Если 599 жми OK ,иначе RST=59"),
                                                QStringLiteral("RST из контеста !!!"));
        }};
    m_status->tell(QString());
    if (m_status->asked([&] { m_marking.copyToBlank(row, questions); }))
        tellBlank();
    DBGrid1->setCurrentIndex(DBGrid1->model()->index(row, 0));
    if (timeAsked)
        Q_EMIT logChanged();
}

void QSLburo::tellBlank()
{
    m_status->asked([this] { m_sources.Data3.fetchAll(); }); // a long blank has been read in part
    QString text = QStringLiteral("В бланке: %1").arg(m_sources.Data3.knownRows());
    if (const auto &failure = m_marking.callbookFailure())
        text += QStringLiteral(". Адресная книга: ") + failure->line();
    m_status->tell(text);
}

void QSLburo::CMBQSL_Click()
{
    needOwnKey();
    m_reportFile = store::joinSuffix(m_services.databases.folder(), u"\\qsl.rpt");
    if (m_status->asked([this] {
            m_sources.Data3.update();
            m_sources.Data13.update();
            m_sources.Data14.refresh(); // the report sees the last edit
        }))
        m_services.reports.print(m_reportFile);
}

void QSLburo::Command2_Click()
{
    m_reportFile = store::joinSuffix(m_services.databases.folder(), u"\\qsl1.rpt");
    if (m_status->asked([this] {
            m_sources.Data3.update();
            m_sources.Data14.refresh();
        }))
        m_services.reports.print(m_reportFile);
}

void QSLburo::cmbqslotpr_Click()
{
    needOwnKey();
    m_status->asked([this] { markBlank(); });
    toSearch();
}

void QSLburo::markBlank()
{
    MarkResult result;
    {
        const ui::ProgressScope scope(m_services.progress, QStringLiteral("Отметка об отправке QSL"), true);
        result = m_marking.markSent(m_services.clock.local().date(), [this](int done, int total) {
            return m_services.progress.advance(QStringLiteral("Карточки"), done, total);
        });
    }
    if (result.stopped) {
        showBlankRow(0);
        m_status->tell(QStringLiteral("Остановлено: ничего не отмечено."));
        return;
    }
    if (result.refused) {
        showBlankRow(result.refused->row - 1);
        m_services.messages.inform(
            QStringLiteral("Ничего не отмечено. Строка %1 бланка (%2): %3.")
                .arg(QString::number(result.refused->row), result.refused->call, result.reason),
            ui::programTitle());
        return;
    }
    const auto done = qScopeGuard([this] { // the marks are on disk, whatever becomes of the blank
        m_status->asked([this] { m_sources.Data1.refresh(); });
        Q_EMIT logChanged();
    });
    m_marking.emptyBlank();
    m_hand->clear();
    tellMarked(result);
}

void QSLburo::tellMarked(const MarkResult &result)
{
    const QString marked = QStringLiteral("Отмечено карточек: %1.").arg(result.contacts);
    m_status->tell(marked);
    if (result.notFound.isEmpty())
        return;
    constexpr qsizetype kNamed = 30;
    QStringList named;
    for (const Unmarked &row : result.notFound.mid(0, kNamed))
        named.append(row.call + QLatin1Char(' ') + row.date);
    if (result.notFound.size() > kNamed)
        named.append(QStringLiteral("..."));
    m_status->tell(marked + QStringLiteral(" Нет в журнале: %1.").arg(result.notFound.size()));
    m_services.messages.inform(
        QStringLiteral("Нет в журнале и не отмечено связей бланка: %1.\n\n%2")
            .arg(QString::number(result.notFound.size()), named.join(QStringLiteral(", "))),
        ui::programTitle());
}

/// The fields show the source's row, and the marking has gone from row to row: the grid follows.
void QSLburo::showBlankRow(int row)
{
    m_sources.Data3.moveTo(row);
    m_blank->DBGrid2->setCurrentIndex(m_blank->DBGrid2->model()->index(row, 0));
}

void QSLburo::CMBDEL_Click()
{
    if (m_status->asked([this] { m_marking.emptyBlank(); })) {
        m_hand->clear();
        m_status->tell(QString());
    }
    toSearch();
}

// ---- entry by hand

void QSLburo::cmbadd_Click()
{
    const HandEntry entry = m_hand->entry();
    if (entry[0].isEmpty())
        return;
    if (!m_status->asked([&] { m_marking.addContact(entry, m_ownCallKey, country()); }))
        return; // what was typed stays in the fields
    m_hand->clear();
    m_status->asked([this] {
        m_sources.Data5.refresh();
        m_sources.Data1.refresh();
    });
    m_status->tell(QStringLiteral("Записано: %1").arg(entry[0]));
    m_hand->txtcall1[0]->setFocus();
    Q_EMIT logChanged();
}

} // namespace qsl
