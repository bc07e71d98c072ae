#include "awards/ui/frmdiplom.h"

#include "awards/ui/awardpanels.h"
#include "awards/ui/blankview.h"
#include "store/opening.h"
#include "ui/widgets.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QShowEvent>

#include <utility>

namespace awards {

namespace {

const QString kAwards = QStringLiteral("Дипломы");
const QString kChooseRegion =
    QStringLiteral("Дипломы России лежат по областям: выберите область в списке рядом.");
const QString kCountryPrefixes = QStringLiteral("DXCC");

/// The list's first row counts as chosen while none is: it is shown so.
void showCurrent(ui::DbList *list)
{
    if (list->chosenText().isEmpty())
        list->setCurrentIndex(list->model()->index(0, 0));
}

} // namespace

frmDIPLOM::frmDIPLOM(const Services &services)
    : QWidget(nullptr, Qt::Window), m_services(services), m_sources(services.databases), m_rules(m_sources),
      m_picking(m_sources)
{
    setObjectName(QStringLiteral("frmDIPLOM"));
    setWindowTitle(QStringLiteral("Diplom"));
    setAttribute(Qt::WA_QuitOnClose, false);
    m_turn = new ui::WindowTurn(this, services.messages);
    m_turn->tellInFront(m_sources.open());
    connect(m_turn, &ui::WindowTurn::came, this, &frmDIPLOM::came);
    connect(m_turn, &ui::WindowTurn::left, this, &frmDIPLOM::saveLeft);
    buildLayout();
    connectCatalogue();
    connectPicking();
    connectBlank();
}

frmDIPLOM::~frmDIPLOM()
{
    for (QWidget *watched : std::initializer_list<QWidget *>{m_pick->DBGrid1, m_catalogue->txtstran1,
                                                             m_catalogue->TXTDIPL1, m_catalogue->txtpol1})
        watched->removeEventFilter(this); // what happens to them on the way concerns nobody
    ui::deleteContent(this);
}

// ---- the window

void frmDIPLOM::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (event->spontaneous())
        return;
    if (std::exchange(m_shown, true))
        readAgain();
    focusCatalogue();
}

/// Other windows have written the tables meanwhile. What was chosen stays so.
void frmDIPLOM::readAgain()
{
    const std::array<std::pair<store::DataSource *, ui::DbList *>, 3> lists = {
        {{&m_sources.Regions, m_catalogue->DBListRegion},
         {&m_sources.Prefixes, m_pick->DBListPref},
         {&m_sources.RusPrefixes, m_pick->DBListRus}}};
    for (const auto &[source, list] : lists) {
        const QString chosen = list->chosenText();
        m_turn->tellInFront(store::refreshEach({source}));
        if (!chosen.isEmpty())
            list->choose(chosen);
    }
    const QModelIndex call = m_pick->DBListCall->currentIndex();
    const QString chosenCall = m_pick->DBListCall->chosenText();
    m_turn->tellInFront(
        store::refreshEach({&m_sources.Calls, &m_sources.Station, &m_sources.Callbook, &m_sources.Blank}));
    // Where new callsigns have moved it, it is not looked for: the list may be the whole log.
    const QModelIndex now = m_pick->DBListCall->model()->index(call.row(), 0);
    if (!chosenCall.isEmpty() && now.data().toString() == chosenCall)
        m_pick->DBListCall->setCurrentIndex(now);
}

/// The bureau and the application's window change the same blank.
void frmDIPLOM::came()
{
    if (!m_blank->grid()->editing())
        m_status->quietly([this] { m_blank->grid()->readAgain(); });
}

/// The operator has gone to another window, which reads the same files.
void frmDIPLOM::saveLeft()
{
    m_turn->save(*m_status, {&m_sources.Blank, &m_sources.Station, &m_sources.Rules});
}

void frmDIPLOM::closeEvent(QCloseEvent *event)
{
    // Each for itself: what can be saved must not be given up with what cannot.
    const bool stationSaved = m_pick->DBGrid1->saveRow();
    const bool blankSaved = m_blank->grid()->saveRow();
    const bool rulesSaved = m_status->asked([this] { ui::savePending(m_sources.Rules); });
    const bool saved = stationSaved && blankSaved && rulesSaved;
    const auto closeAllTheSame = [this](const QString &what) {
        return m_services.messages.askYesNo(what, ui::programTitle());
    };
    if ((!saved && !closeAllTheSame(QStringLiteral("Правка не сохранена. Закрыть окно без неё?"))) ||
        (m_catalogue->entryTyped() &&
         !closeAllTheSame(QStringLiteral("Новый диплом не записан. Закрыть окно без него?")))) {
        event->ignore();
        return;
    }
    for (store::DataSource *source : {&m_sources.Station, &m_sources.Blank, &m_sources.Rules})
        source->cancelUpdate();
    event->accept();
}

bool frmDIPLOM::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_pick->DBGrid1 && event->type() == QEvent::KeyPress)
        return gridKey(*static_cast<QKeyEvent *>(event));
    const auto *key = event->type() == QEvent::KeyPress ? static_cast<QKeyEvent *>(event) : nullptr;
    if (key != nullptr && key->key() == Qt::Key_Escape && !key->isAutoRepeat() &&
        m_catalogue->isEntry(watched)) {
        giveEntryUp();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

// ---- the catalogue

void frmDIPLOM::showRegionName()
{
    const QString name = m_catalogue->DBListRegion->chosenText().isEmpty() ? QString() : m_rules.regionName();
    m_catalogue->Label2->setText(name.isEmpty() ? kAwards : name);
}

bool frmDIPLOM::leaveRules()
{
    if (m_status->asked([this] { ui::savePending(m_sources.Rules); })) {
        m_award.clear();
        return true;
    }
    m_catalogue->DBListStrana->choose(m_country);
    m_catalogue->DBListRegion->choose(m_region);
    m_catalogue->DBListDiplom->choose(m_award);
    return false;
}

void frmDIPLOM::DBListStrana_Click(const QString &country)
{
    if (leaveRules())
        chooseCountry(country);
}

void frmDIPLOM::DBListRegion_Click(const QString &code)
{
    if (leaveRules())
        chooseRegion(code);
}

void frmDIPLOM::chooseCountry(const QString &country)
{
    m_country = country;
    m_catalogue->txtstran1->setText(country);
    // Another country leaves the list of regions as it is: only a click on its heading hides it.
    if (isRussia(country))
        m_catalogue->showRegions(true);
    m_status->asked([&] {
        if (isRussia(country))
            showRegionName();
        m_rules.listAwards(country, m_catalogue->DBListRegion->chosenText());
    });
    if (isRussia(country) && m_catalogue->DBListRegion->chosenText().isEmpty())
        m_status->tell(kChooseRegion);
}

void frmDIPLOM::chooseRegion(const QString &code)
{
    m_region = code;
    if (m_status->text() == kChooseRegion)
        m_status->tell(QString());
    m_catalogue->txtpref1->setText(code);
    m_status->asked([&] { m_rules.chooseRegion(m_country, code); });
    m_status->asked([this] { showRegionName(); });
}

void frmDIPLOM::DBListDiplom_Click(const QString &award)
{
    if (!leaveRules())
        return;
    m_award = award;
    m_status->asked([&] { m_rules.showRules(award, m_country); });
}

/// Leaves the list of awards as it is.
void frmDIPLOM::Label1_Click()
{
    if (m_catalogue->Label1->text() != QStringView(kRussia))
        return;
    m_catalogue->showRegions(false);
    m_catalogue->Label2->setText(kAwards);
}

void frmDIPLOM::cmbadd_Click()
{
    m_status->tell(QString());
    if (!m_catalogue->entryShown())
        beginEntry();
    else
        storeEntry();
}

void frmDIPLOM::beginEntry()
{
    m_catalogue->showEntry(true);
    m_catalogue->emptyRules();
    m_catalogue->txtstran1->setFocus();
    m_catalogue->txtstran1->selectAll(); // another country is typed over it
}

void frmDIPLOM::storeEntry()
{
    const NewAward award = m_catalogue->entry();
    if (award.name.isEmpty()) {
        if (!award.rules.isEmpty())
            m_status->tell(QStringLiteral("Без названия диплом не записан. Набранное положение: «Новый», "
                                          "затем Ctrl+Z в его поле."));
        m_catalogue->showEntry(false);
        focusCatalogue();
        return;
    }
    const QString region = m_catalogue->DBListRegion->chosenText();
    if (!m_status->asked([&] { m_rules.add(award, region); }))
        return; // what was typed stays in the boxes
    m_status->asked([&] {
        m_sources.Writer.refresh();
        // None is chosen where the last award of the country has just been deleted.
        if (m_catalogue->DBListStrana->chosenText() != award.country)
            m_sources.Countries.refresh();
    });
    // Told before the lists: they cannot show a country with an apostrophe, whose award is stored all the
    // same.
    m_catalogue->showEntry(false);
    m_status->tell(QStringLiteral("Записан диплом: %1").arg(award.name));
    listNewAward(award.country, region);
    m_catalogue->clearEntry();
    focusCatalogue();
}

void frmDIPLOM::giveEntryUp()
{
    if (m_catalogue->entryTyped() &&
        !m_services.messages.askYesNo(QStringLiteral("Новый диплом не записан. Убрать набранное?"),
                                      ui::programTitle()))
        return;
    m_catalogue->clearEntry();
    m_catalogue->showEntry(false);
    focusCatalogue();
}

/// As by a click on the country of the new award, for Russia on its region.
void frmDIPLOM::listNewAward(const QString &country, const QString &region)
{
    m_catalogue->DBListStrana->choose(country);
    if (!isRussia(country)) {
        chooseCountry(country);
        return;
    }
    m_country = country;
    m_catalogue->showRegions(true);
    chooseRegion(region);
}

void frmDIPLOM::focusCatalogue()
{
    if (m_catalogue->DBListRegion->isHidden())
        m_catalogue->DBListStrana->setFocus();
    else
        m_catalogue->DBListRegion->setFocus();
}

/// The name alone decides: of two countries' awards of one name the one stored first goes.
void frmDIPLOM::cmbdel_Click()
{
    const QString award = m_catalogue->DBListDiplom->chosenText();
    if (award.isEmpty() || !m_status->asked([&] { m_rules.findForDeletion(award); }))
        return;
    const bool wanted = m_services.messages.askOk(award, QStringLiteral("DELETE"));
    std::optional<QString> country;
    if (wanted)
        m_status->asked([&] { country = m_rules.deleteFound(); });
    m_status->asked([this] { m_rules.listAgain(); });
    m_catalogue->DBListStrana->choose(m_country);
    if (!country) {
        m_catalogue->DBListDiplom->choose(award); // it is still there
        return;
    }
    m_status->asked([this] { m_rules.showRules({}, m_country); });
    m_status->tell(QStringLiteral("Удалён диплом: %1 (%2)").arg(award, *country));
}

// ---- picking contacts

void frmDIPLOM::cmbdxcc_Click()
{
    const bool toRegions = m_pick->cmbdxcc->text() == kCountryPrefixes;
    m_pick->cmbdxcc->setText(toRegions ? QString::fromUtf16(kRussia) : kCountryPrefixes);
    m_pick->DBListPref->setVisible(!toRegions);
    m_pick->DBListRus->setVisible(toRegions);
    if (toRegions) {
        m_pick->txtgorod->show(); // for good: it takes the country's name as well
        showCurrent(m_pick->DBListRus);
        DBListRus_Click(m_pick->DBListRus->chosenText());
    } else {
        showCurrent(m_pick->DBListPref);
        DBListPref_Click(m_pick->DBListPref->chosenText());
        takePrefix(m_pick->DBListPref->chosenText());
    }
}

void frmDIPLOM::DBListPref_Click(const QString &prefix)
{
    m_status->asked([&] { m_pick->showCountry(m_picking.chooseCountryPrefix(prefix)); });
}

/// A click on a prefix also puts it into the selection list; moving through the list does not.
void frmDIPLOM::takePrefix(const QString &prefix)
{
    if (frWyb->isVisible() && frWyb->kind() == EntryKind::Prefix)
        frWyb->append(prefix);
}

void frmDIPLOM::DBListRus_Click(const QString &prefix)
{
    if (m_pick->DBListRus->isHidden())
        return;
    m_status->asked([&] {
        m_picking.chooseRegionPrefix(prefix);
        m_pick->showRegion(m_sources.PrefixRegion);
    });
}

void frmDIPLOM::DBListCall_Click(const QString &call)
{
    m_status->asked([&] {
        m_pick->clearCallbook(); // should the callbook not be read, it says nothing of another station
        const bool town = m_picking.chooseCall(call);
        m_pick->showCallbook(m_sources.Callbook);
        if (town)
            m_pick->txtqth->show(); // from now on it stays
    });
}

bool frmDIPLOM::gridKey(const QKeyEvent &event)
{
    if (event.modifiers() != Qt::NoModifier && event.modifiers() != Qt::KeypadModifier)
        return false;
    const int row = m_pick->DBGrid1->currentIndex().row();
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (row >= 0 && !event.isAutoRepeat())
            carry(row);
        return true;
    case Qt::Key_Escape:
        if (m_sources.Station.editPending())
            return false; // the grid drops it: here contacts are picked, and a stray key must not change the
                          // log
        m_pick->DBListCall->setFocus();
        return true;
    default:
        return false;
    }
}

void frmDIPLOM::carry(int row)
{
    if (!m_pick->DBGrid1->saveRow())
        return;
    const BlankQuestions questions{
        [this] {
            return m_services.messages.askText(QStringLiteral("Введите время !!! "),
                                               QStringLiteral("Нет времени связи"));
        },
        [this] {
            return m_services.messages.askYesNo(QStringLiteral("Если 599 жми OK ,иначе RST=59"),
                                                QStringLiteral("RST из контеста !!!"));
        }};
    m_status->tell(QString());
    if (m_status->asked([&] { m_picking.carry(row, m_pick->Check1->isChecked(), questions); }))
        m_status->tell(
            QStringLiteral("В бланк: %1").arg(m_sources.Station.text(row, QStringLiteral("ccall"))));
    m_pick->DBGrid1->setCurrentIndex(m_pick->DBGrid1->model()->index(row, 0));
}

// ---- the blank

void frmDIPLOM::cmbblanc_Click()
{
    if (m_blank->grid()->saveRow() && m_status->asked([this] { m_blank->grid()->readAgain(); }))
        Q_EMIT applicationAsked();
}

void frmDIPLOM::Command3_Click()
{
    if (m_status->asked([this] { m_picking.emptyBlank(); }))
        m_status->tell(QStringLiteral("Бланк пуст."));
}

void frmDIPLOM::cmbUsl_Click()
{
    frWyb->setVisible(frWyb->isHidden());
    if (frWyb->isVisible())
        frWyb->txtWybor->setFocus();
}

void frmDIPLOM::cmbListclear_Click()
{
    frWyb->ListWybor->clear();
    frWyb->txtWybor->setFocus();
}

void frmDIPLOM::cmbWybor_Click()
{
    m_status->tell(QString());
    if (!m_blank->grid()->saveRow())
        return; // the row that cannot be saved keeps the focus
    FillResult result;
    int entry = 0;
    const QStringList entries = frWyb->entries();
    if (m_status->asked([&] {
            result = m_picking.fill(entries, frWyb->kind(), frWyb->chekQsl->isChecked(),
                                    [&](int index) { entry = index; });
        }))
        tellFilled(result);
    else
        frWyb->markEntry(entry); // the one that could not be looked up
    frWyb->txtWybor->setFocus();
}

void frmDIPLOM::tellFilled(const FillResult &result)
{
    QString text = QStringLiteral("В бланк добавлено строк: %1.").arg(result.rows);
    QStringList notFound = result.notFound;
    for (QString &entry : notFound)
        if (entry.isEmpty())
            entry = QStringLiteral("(пусто)");
    if (!notFound.isEmpty())
        text += QStringLiteral(" Нет связей: %1.").arg(notFound.join(QStringLiteral(", ")));
    if (const QString left = frWyb->txtWybor->text(); !left.isEmpty())
        text += QStringLiteral(" Не в списке осталось: %1 (Enter добавит).").arg(left);
    m_status->tell(text);
    m_status->setToolTip(text); // the whole of a long line
}

} // namespace awards
