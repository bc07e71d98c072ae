// Parts of the bureau window and how they are connected.
#include "qsl/ui/bureaupanels.h"
#include "qsl/ui/qslburo.h"
#include "ui/menubar.h"
#include "ui/widgets.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace qsl {

namespace {

struct Column {
    const char *field;
    const char16_t *heading;
    int width; ///< in characters
};
constexpr std::array<Column, 11> kColumns = {{{"ccall", u"Позывной", 11},
                                              {"bband", u"bband", 5},
                                              {"qslo", u"отпр.", 10},
                                              {"qslp", u"пол.", 8},
                                              {"ddate", u"Date", 8},
                                              {"ttime", u"ttime", 5},
                                              {"rsts", u"RSTs", 6},
                                              {"qslvia", u"QSL via", 9},
                                              {"rstr", u"rstr", 6},
                                              {"prf", u"prf", 5},
                                              {"PS1", u"PS1", 5}}};

QAction *add(QMenuBar *bar, const char *name, const QString &caption)
{
    auto *action = new QAction(caption, bar);
    action->setObjectName(QLatin1String(name));
    bar->addAction(action);
    return action;
}

} // namespace

void QSLburo::buildMenu()
{
    auto *bar = new ui::MenuBar(this);
    setMenuBar(bar);
    mnulog = add(bar, "mnulog", QStringLiteral("Журнал"));
    mnudxcc = add(bar, "mnudxcc", QStringLiteral("DXCC"));
    mnuexit = add(bar, "mnuexit", QStringLiteral("Выход"));
    connect(mnuexit, &QAction::triggered, this, &QWidget::close);
}

void QSLburo::buildLayout()
{
    auto *central = new QWidget(this);
    auto *content = new QWidget(central);
    m_status = new ui::StatusLine(m_services.messages, central); // first: what follows may have to tell
    const auto run = [this](const std::function<void()> &operation) { m_status->typed(operation); };
    const auto runAsked = [this](const std::function<void()> &operation) {
        return m_status->asked(operation);
    };

    m_lists = new ListPanel(m_sources, run, content);
    m_countPanel = new CountPanel(m_sources, run, content);
    m_blank = new BlankPanel(m_sources, runAsked, run, content);
    m_hand = new HandPanel(m_sources, run, content);
    m_sender = new SenderPanel(m_sources, run, content);
    QList<ui::GridColumn> columns;
    for (const Column &column : kColumns)
        columns.append({QLatin1String(column.field), QString::fromUtf16(column.heading), column.width});
    DBGrid1 = new ui::DbGrid(m_sources.Data1, columns, runAsked, content);
    DBGrid1->setObjectName(QStringLiteral("DBGrid1"));
    DBGrid1->setAccessibleName(QStringLiteral("Журнал"));
    DBGrid1->setToolTip(QStringLiteral("Enter или двойной щелчок: в бланк. F1: все связи с этим позывным. "
                                       "Буквы и цифры меняют отметки и QSL via, F2 любую ячейку"));
    constexpr int kSent = 2;
    constexpr int kReceived = 3;
    constexpr int kRoute = 7;
    DBGrid1->setTypedColumns({kSent, kReceived, kRoute}); // what is written while cards are sorted
    DBGrid1->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);

    auto *log = new QVBoxLayout;
    log->addWidget(ui::makeLabel(
        content, QStringLiteral("LOG - (dubleClik - выбранная запись переносится в QSLбланк)"), DBGrid1));
    log->addWidget(DBGrid1, 5);
    log->addWidget(m_blank, 4);
    auto *counts = new QVBoxLayout;
    counts->addWidget(m_countPanel, 1);
    counts->addWidget(m_sender);
    auto *upper = new QHBoxLayout;
    upper->addWidget(m_lists);
    upper->addLayout(counts);
    upper->addLayout(log, 1);
    auto *whole = new QVBoxLayout(content);
    whole->setContentsMargins(6, 2, 6, 2); // the screen of a small laptop holds the whole window
    for (QLayout *layout : {static_cast<QLayout *>(log), static_cast<QLayout *>(counts),
                            static_cast<QLayout *>(upper), static_cast<QLayout *>(whole)})
        layout->setSpacing(4);
    whole->addLayout(upper, 1);
    whole->addWidget(m_hand);
    setCentralWidget(central);
    constexpr QSize kWanted(1340, 690);
    ui::fillScrolled(central, content, kWanted, m_status);
    resize(central->size());
    setTabOrders();
}

void QSLburo::setTabOrders()
{
    QList<QWidget *> order = {m_lists->txtnewcall, m_lists->txtserch, m_lists->DBList1, m_lists->DBList2,
                              m_lists->DBList3,    m_lists->Command3, DBGrid1,          m_blank->DBGrid2};
    for (ui::FilterEdit *edit : m_blank->fields)
        order.append(edit);
    order += {m_blank->CMBQSL, m_blank->Command2, m_blank->cmbqslotpr, m_blank->CMBDEL};
    order += {m_countPanel->lbldxcc, m_countPanel->txtstrana};
    for (ui::ClickLabel *label : m_countPanel->lblband)
        order.append(label);
    order += {m_countPanel->cmbinfo, m_countPanel->Command1};
    for (ui::FilterEdit *edit : m_sender->fields)
        order.append(edit);
    for (ui::FilterEdit *edit : m_hand->txtcall1)
        order.append(edit);
    order.append(m_hand->cmbadd);
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void QSLburo::connectLists()
{
    m_lists->txtserch->setFilter(
        [this](QChar typed, qsizetype length, const QKeyEvent *) { return searchFilter(typed, length); });
    m_lists->txtserch->installEventFilter(this);
    m_lists->DBList1->installEventFilter(this);
    connect(m_lists->txtserch, &ui::FilterEdit::keyReleased, this, &QSLburo::txtserch_KeyUp);
    connect(m_lists->txtserch, &ui::FilterEdit::enterPressed, DBGrid1, [this] { DBGrid1->setFocus(); });
    connect(m_lists->txtnewcall, &ui::FilterEdit::keyReleased, this, &QSLburo::txtnewcall_KeyUp);
    connect(m_lists->txtnewcall, &ui::FilterEdit::enterPressed, m_lists->txtserch,
            [this] { m_lists->txtserch->setFocus(); });
    connect(m_lists->DBList1, &ui::DbList::chosen, this, &QSLburo::DBList1_Click);
    connect(m_lists->DBList1, &ui::DbList::reached, this, &QSLburo::DBList1_Click);
    connect(m_lists->DBList2, &ui::DbList::chosen, this, &QSLburo::DBList2_Click);
    connect(m_lists->DBList2, &ui::DbList::reached, this, &QSLburo::DBList2_Click);
    connect(m_lists->DBList3, &ui::DbList::chosen, this, &QSLburo::DBList3_Click);
    connect(m_lists->DBList3, &ui::DbList::reached, this, &QSLburo::DBList3_Click);
    connect(m_lists->Command3, &QPushButton::clicked, this, &QSLburo::Command3_Click);
    connect(m_countPanel->lbldxcc, &ui::ClickLabel::clicked, this, &QSLburo::lbldxcc_Click);
    connect(m_countPanel->txtstrana, &ui::ClickLabel::clicked, this, &QSLburo::txtstrana_Click);
    for (int band = 0; band < kBands; ++band)
        connect(m_countPanel->lblband[band], &ui::ClickLabel::clicked, this,
                [this, band] { lblband_Click(band); });
    connect(m_countPanel->cmbinfo, &QPushButton::clicked, this, &QSLburo::cmbinfo_Click);
    connect(m_countPanel->Command1, &QPushButton::clicked, this, &QSLburo::Command1_Click);
    connect(&m_sources.Data9, &store::DataSource::currentChanged, this, &QSLburo::showRegionName);
}

void QSLburo::connectBlank()
{
    DBGrid1->installEventFilter(this);
    connect(DBGrid1, &QTableView::doubleClicked, this,
            [this](const QModelIndex &index) { copyToBlank(index.row()); });
    connect(&m_sources.Data1, &store::DataSource::rowChanged, this, [this] {
        if (!m_sources.Data1.editPending()) // a cell that was typed into has been saved
            Q_EMIT logChanged();
    });
    connect(m_blank->DBGrid2, &ui::DbGrid::deleteAsked, this,
            [this](int row) { m_status->asked([&] { m_sources.Data3.removeRow(row); }); });
    connect(m_blank->CMBQSL, &QPushButton::clicked, this, &QSLburo::CMBQSL_Click);
    connect(m_blank->Command2, &QPushButton::clicked, this, &QSLburo::Command2_Click);
    connect(m_blank->cmbqslotpr, &QPushButton::clicked, this, &QSLburo::cmbqslotpr_Click);
    connect(m_blank->CMBDEL, &QPushButton::clicked, this, &QSLburo::CMBDEL_Click);
    for (ui::DbGrid *grid : {DBGrid1, m_blank->DBGrid2})
        connect(grid->sourceModel(), &ui::SourceModel::failed, this,
                [this](const store::Error &error) { m_status->tell(error); });
}

void QSLburo::connectEntry()
{
    const auto next = [](ui::FilterEdit *from, QWidget *to) {
        connect(from, &ui::FilterEdit::enterPressed, to, [to] { to->setFocus(); });
    };
    for (int i = 0; i + 1 < kHandFields; ++i)
        next(m_hand->txtcall1[i], m_hand->txtcall1[i + 1]);
    next(m_hand->txtcall1[kHandFields - 1], m_hand->cmbadd);
    connect(m_hand->cmbadd, &QPushButton::clicked, this, &QSLburo::cmbadd_Click);
    for (qsizetype i = 0; i + 1 < m_blank->fields.size(); ++i)
        next(m_blank->fields[i], m_blank->fields[i + 1]);
    next(m_blank->fields.constLast(), m_blank->CMBQSL);
    for (qsizetype i = 0; i + 1 < m_sender->fields.size(); ++i)
        next(m_sender->fields[i], m_sender->fields[i + 1]);
    next(m_sender->fields.constLast(), m_blank->CMBQSL);
}

} // namespace qsl
