// Parts of the awards window and how they are connected.
#include "awards/ui/awardpanels.h"
#include "awards/ui/blankview.h"
#include "awards/ui/frmdiplom.h"
#include "ui/widgets.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace awards {

void frmDIPLOM::buildLayout()
{
    auto *content = new QWidget(this);
    m_status = new ui::StatusLine(m_services.messages, this); // first: what follows may have to tell
    const auto run = [this](const std::function<void()> &operation) { m_status->typed(operation); };
    const auto runAsked = [this](const std::function<void()> &operation) {
        return m_status->asked(operation);
    };
    m_catalogue = new CataloguePanel(m_sources, run, content);
    m_pick = new PickPanel(m_sources, runAsked, content);
    auto *blank = new QGroupBox(QStringLiteral("Бланк"), content);
    m_blank = new BlankView(m_services.databases, m_sources.Blank, "DBGrid2", *m_status, blank);
    frWyb = new SelectionFrame(blank);
    frWyb->hide();
    cmbblanc = ui::makeButton(blank, "cmbblanc", QStringLiteral("Бланк"), QStringLiteral("Просмотр бланка"));
    Command3 =
        ui::makeButton(blank, "Command3", QStringLiteral("Очистить"), QStringLiteral("Очистить бланк"));
    cmbUsl = ui::makeButton(blank, "cmbUsl", QStringLiteral("Выбор"),
                            QStringLiteral("Показать или убрать выбор условий"));

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmbblanc);
    buttons->addWidget(cmbUsl);
    buttons->addSpacing(ui::editWidth(blank, 3));
    buttons->addWidget(Command3); // away from the frame's "Очистить", because it asks nothing
    buttons->addStretch();
    auto *column = new QVBoxLayout;
    column->addWidget(m_blank, 1);
    column->addLayout(buttons);
    auto *lower = new QHBoxLayout(blank);
    ui::compact(lower);
    lower->addLayout(column, 1);
    lower->addWidget(frWyb);
    auto *right = new QVBoxLayout;
    right->addWidget(m_pick, 1);
    right->addWidget(blank, 1);
    auto *upper = new QHBoxLayout;
    upper->addWidget(m_catalogue, 2);
    upper->addLayout(right, 5);
    auto *whole = new QVBoxLayout(content);
    whole->setContentsMargins(6, 2, 6, 2); // the screen of a small laptop holds the whole window
    for (QBoxLayout *layout : std::initializer_list<QBoxLayout *>{right, upper, whole})
        layout->setSpacing(4);
    whole->addLayout(upper, 1);
    constexpr QSize kWanted(1340, 690);
    ui::fillScrolled(this, content, kWanted, m_status);
    setTabOrders();
}

void frmDIPLOM::setTabOrders()
{
    const QList<QWidget *> order = {m_catalogue->DBListStrana,
                                    m_catalogue->DBListRegion,
                                    m_catalogue->DBListDiplom,
                                    m_catalogue->TXTDIPTEXT,
                                    m_catalogue->txtstran1,
                                    m_catalogue->TXTDIPL1,
                                    m_catalogue->txtpol1,
                                    m_catalogue->cmbadd,
                                    m_catalogue->cmbdel,
                                    m_pick->cmbdxcc,
                                    m_pick->DBListPref,
                                    m_pick->DBListRus,
                                    m_pick->DBListCall,
                                    m_pick->DBGrid1,
                                    m_pick->Check1,
                                    m_blank->grid(),
                                    cmbblanc,
                                    cmbUsl,
                                    Command3,
                                    frWyb->txtWybor,
                                    frWyb->ListWybor,
                                    frWyb->opWyb[0],
                                    frWyb->opWyb[1],
                                    frWyb->chekQsl,
                                    frWyb->cmbListclear,
                                    frWyb->cmbWybor,
                                    m_catalogue->Command1,
                                    m_catalogue->Label1};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void frmDIPLOM::connectCatalogue()
{
    const auto list = [this](ui::DbList *view, void (frmDIPLOM::*click)(const QString &), QWidget *next) {
        connect(view, &ui::DbList::chosen, this, click);
        connect(view, &ui::DbList::reached, this, click);
        connect(view, &ui::DbList::confirmed, next, [next] { next->setFocus(); });
    };
    list(m_catalogue->DBListRegion, &frmDIPLOM::DBListRegion_Click, m_catalogue->DBListDiplom);
    list(m_catalogue->DBListDiplom, &frmDIPLOM::DBListDiplom_Click, m_catalogue->TXTDIPTEXT);
    connect(m_catalogue->DBListStrana, &ui::DbList::chosen, this, &frmDIPLOM::DBListStrana_Click);
    connect(m_catalogue->DBListStrana, &ui::DbList::reached, this, &frmDIPLOM::DBListStrana_Click);
    connect(m_catalogue->DBListStrana, &ui::DbList::confirmed, this, [this] {
        (m_catalogue->DBListRegion->isHidden() ? m_catalogue->DBListDiplom : m_catalogue->DBListRegion)
            ->setFocus();
    });
    connect(m_catalogue->DBListStrana, &QListView::doubleClicked, this, [this](const QModelIndex &index) {
        if (m_catalogue->entryShown())
            m_catalogue->txtstran1->setText(index.data().toString());
    });
    connect(m_catalogue->txtstran1, &ui::FilterEdit::enterPressed, m_catalogue->TXTDIPL1,
            [this] { m_catalogue->TXTDIPL1->setFocus(); });
    connect(m_catalogue->TXTDIPL1, &ui::FilterEdit::enterPressed, m_catalogue->txtpol1,
            [this] { m_catalogue->txtpol1->setFocus(); });
    for (QWidget *box : std::initializer_list<QWidget *>{m_catalogue->txtstran1, m_catalogue->TXTDIPL1,
                                                         m_catalogue->txtpol1})
        box->installEventFilter(this);
    connect(m_catalogue->Label1, &ui::ClickLabel::clicked, this, &frmDIPLOM::Label1_Click);
    connect(m_catalogue->cmbadd, &QPushButton::clicked, this, &frmDIPLOM::cmbadd_Click);
    connect(m_catalogue->cmbdel, &QPushButton::clicked, this, &frmDIPLOM::cmbdel_Click);
    connect(m_catalogue->Command1, &QPushButton::clicked, this, &QWidget::close);
}

void frmDIPLOM::connectPicking()
{
    const auto prefixTaken = [this](const QString &prefix) {
        DBListPref_Click(prefix);
        takePrefix(prefix);
    };
    connect(m_pick->cmbdxcc, &QPushButton::clicked, this, &frmDIPLOM::cmbdxcc_Click);
    connect(m_pick->DBListPref, &ui::DbList::chosen, this, prefixTaken);
    connect(m_pick->DBListPref, &ui::DbList::reached, this, &frmDIPLOM::DBListPref_Click);
    connect(m_pick->DBListPref, &ui::DbList::confirmed, this, [this](const QString &prefix) {
        takePrefix(prefix);
        if (!frWyb->isVisible() || frWyb->kind() != EntryKind::Prefix)
            m_pick->DBListCall->setFocus();
    });
    connect(m_pick->DBListRus, &ui::DbList::chosen, this, &frmDIPLOM::DBListRus_Click);
    connect(m_pick->DBListRus, &ui::DbList::reached, this, &frmDIPLOM::DBListRus_Click);
    connect(m_pick->DBListRus, &ui::DbList::confirmed, m_pick->DBListCall,
            [this] { m_pick->DBListCall->setFocus(); });
    connect(m_pick->DBListCall, &ui::DbList::chosen, this, &frmDIPLOM::DBListCall_Click);
    connect(m_pick->DBListCall, &ui::DbList::reached, this, &frmDIPLOM::DBListCall_Click);
    connect(m_pick->DBListCall, &ui::DbList::confirmed, m_pick->DBGrid1,
            [this] { m_pick->DBGrid1->setFocus(); });
    m_pick->DBGrid1->installEventFilter(this);
    connect(m_pick->DBGrid1, &QTableView::doubleClicked, this,
            [this](const QModelIndex &index) { carry(index.row()); });
    connect(&m_sources.Station, &store::DataSource::rowChanged, this, [this] {
        if (!m_sources.Station.editPending()) // a cell that was typed into has been saved
            Q_EMIT logChanged();
    });
    for (const ui::SourceModel *model :
         {m_pick->DBGrid1->sourceModel(), m_pick->DBListCall->sourceModel(),
          m_catalogue->DBListDiplom->sourceModel(), m_catalogue->DBListStrana->sourceModel()})
        connect(model, &ui::SourceModel::failed, this,
                [this](const store::Error &error) { m_status->tell(error); });
}

void frmDIPLOM::connectBlank()
{
    connect(cmbblanc, &QPushButton::clicked, this, &frmDIPLOM::cmbblanc_Click);
    connect(Command3, &QPushButton::clicked, this, &frmDIPLOM::Command3_Click);
    connect(cmbUsl, &QPushButton::clicked, this, &frmDIPLOM::cmbUsl_Click);
    connect(frWyb->cmbListclear, &QPushButton::clicked, this, &frmDIPLOM::cmbListclear_Click);
    connect(frWyb->cmbWybor, &QPushButton::clicked, this, &frmDIPLOM::cmbWybor_Click);
    connect(frWyb->txtWybor, &ui::FilterEdit::enterPressed, frWyb, [this] {
        frWyb->append(frWyb->txtWybor->text());
        frWyb->txtWybor->clear();
    });
}

} // namespace awards
