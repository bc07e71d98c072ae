// Layout and connections of the main window; what its handlers do is in frmlog.cpp.
#include "calc/ui/calculatorpanel.h"
#include "cw/ui/keyerpanel.h"
#include "geo/ui/locatorpanel.h"
#include "logentry/keyrules.h"
#include "logentry/ui/bandpanel.h"
#include "logentry/ui/entrypanels.h"
#include "logentry/ui/frmlog.h"
#include "ui/boundfield.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScreen>
#include <QScrollArea>
#include <QStatusBar>
#include <QVBoxLayout>

namespace logentry {

namespace {

struct LogColumn {
    const char *field;
    const char16_t *heading;
    int width; ///< in characters
};

/// Columns of the grid of contacts. They never change; what a query does not deliver stands empty.
constexpr std::array<LogColumn, 19> kLogColumns = {{
    {"ccall", u"Call", 9},
    {"ddate", u"Date", 8},
    {"ttime", u"UTC", 5},
    {"bband", u"Band", 4},
    {"rsts", u"RSTs", 4},
    {"rstr", u"RSTr", 4},
    {"mult", u"mult", 3},
    {"point", u"point", 3},
    {"ps", u"ps", 2},
    {"ps1", u"Мод", 5},
    {"PS2", u"PS2", 3},
    {"QTH", u"QTH", 11},
    {"NNAME", u"Name", 9},
    {"QSLVIA", u"QSL via", 8},
    {"QSLP", u"QSL(пол)", 8},
    {"QSLO", u"QSL(отп)", 10},
    {"CONTR", u"Country(DXCC)", 12},
    {"CONT", u"CONT", 4},
    {"PRF", u"op", 5},
}};

} // namespace

frmlog::frmlog(const Services &services)
    : m_services(services), m_sources(services.databases), m_lookups(m_sources, m_fields, m_state),
      m_recorder(m_sources, m_fields, m_state, services.emergency),
      m_completion(m_sources, m_fields, m_state),
      m_tasks(services.messages, services.progress, services.dialogs, m_sources, m_fields, m_state,
              m_lookups),
      m_periodTasks(services.messages, services.progress, m_sources),
      m_morse(services.keyLine, services.pacer), m_menu(this)
{
    setObjectName(QStringLiteral("frmlog"));
    setWindowTitle(QStringLiteral("Журнал радиолюбителя от Zarnik (ex.Tovelk , Mirsan)"));
    buildLayout();
    load();
    showFields();
    connectEntry();
    connectReports();
    connectNames();
    connectClock();
    connectBands();
    connectOwnStation();
    connectLists();
    connectLocator();
    connectMenu();
    connectPeriod();
    m_entry->txtcall->setFocus();
    qApp->installEventFilter(this); // the window sees every key before the focused field does
    m_morse.watchInput();
    // Where the window scrolls, the field being typed into is in sight however the focus came there.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) {
        if (now != nullptr && m_scroll->isAncestorOf(now))
            m_scroll->ensureWidgetVisible(now);
    });
    m_timer.setInterval(1000);
    connect(&m_timer, &QTimer::timeout, this, &frmlog::tick);
    m_timer.start();
}

void frmlog::buildLayout()
{
    auto *centre = new QWidget(this);
    m_entry = new EntryPanel(centre);
    m_clock = new ClockPanel(centre);
    m_station = new StationPanel(centre);
    m_band = new BandPanel(centre);
    m_keyer = new cw::KeyerPanel(m_morse, m_services.messages, centre);
    m_calculator = new calc::CalculatorPanel(m_services.messages, centre);
    m_period = new PeriodPanel(centre);
    DBList1 = new ui::DbList(m_sources.Data16, QStringLiteral("ccall"), centre);
    DBList1->setObjectName(QStringLiteral("DBList1"));
    DBList1->setToolTip(QStringLiteral("Позывные, с которыми были связи"));
    DBList1->setAccessibleName(DBList1->toolTip());
    DBList1->setFixedWidth(ui::editWidth(DBList1, 14));
    QList<ui::GridColumn> columns;
    QList<int> widths;
    for (const LogColumn &column : kLogColumns) {
        columns.append({QLatin1String(column.field), QString::fromUtf16(column.heading)});
        widths.append(column.width);
    }
    DBGrid1 = new ui::DbGrid(
        m_sources.Data5, columns, [this](const std::function<void()> &operation) { return asked(operation); },
        centre);
    DBGrid1->setObjectName(QStringLiteral("DBGrid1"));
    DBGrid1->setAccessibleName(QStringLiteral("Связи"));
    DBGrid1->setColumnWidths(widths);
    m_locator = new geo::LocatorPanel(centre);
    m_callbook = new CallbookPanel(centre);
    m_towns = new TownPanel(m_sources.Data8, m_sources.Data10, centre);
    m_own = new OwnStationPanel(centre);
    m_keyer->hide();
    m_period->hide();
    m_calculator->hide();

    auto *head = new QHBoxLayout;
    auto *known = new QVBoxLayout;
    known->addWidget(m_clock);
    known->addWidget(m_station, 1);
    head->addWidget(m_entry, 3);
    head->addLayout(known, 2);
    auto *contacts = new QHBoxLayout;
    contacts->addWidget(DBList1);
    contacts->addWidget(DBGrid1, 1);
    contacts->addWidget(m_calculator, 0, Qt::AlignTop);
    auto *left = new QVBoxLayout;
    left->addLayout(head);
    left->addWidget(m_band);
    left->addWidget(m_keyer);
    left->addWidget(m_period);
    left->addLayout(contacts, 1);
    auto *side = new QWidget(centre);
    constexpr int kSideCharacters = 52; // the hint in the empty own-callsign field
    side->setFixedWidth(std::max(kSideCharacters * fontMetrics().averageCharWidth(), 332));
    auto *right = new QVBoxLayout(side);
    right->setContentsMargins(0, 0, 0, 0);
    right->addWidget(m_locator);
    right->addWidget(m_callbook);
    right->addWidget(m_towns, 1);
    right->addStretch();
    right->addWidget(m_own);
    auto *row = new QHBoxLayout(centre);
    row->setContentsMargins(6, 4, 6, 4);
    row->addLayout(left, 1);
    row->addWidget(side);
    m_scroll = new QScrollArea(this); // a small screen or a large font scrolls, nothing is squeezed
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    m_scroll->setWidget(centre);
    setCentralWidget(m_scroll);
    constexpr QSize kWanted(1366, 768);
    resize(screen() != nullptr ? kWanted.boundedTo(screen()->availableSize()) : kWanted);

    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("lblstatus"));
    m_status->setTextFormat(Qt::PlainText);
    m_status->setAccessibleName(QStringLiteral("Строка сообщений"));
    m_status->setMinimumWidth(1); // a long message is cut, it does not widen the window
    txtlog = new QLabel(QStringLiteral("Идет парралельная запись в dblog.mdb"), this);
    txtlog->setObjectName(QStringLiteral("txtlog"));
    txtlog->hide();
    statusBar()->addWidget(m_status, 1);
    statusBar()->addPermanentWidget(txtlog);
    lblwait = new QLabel(QStringLiteral("Минутку !!!"), this);
    lblwait->setObjectName(QStringLiteral("lblwait"));
    lblwait->hide();
    statusBar()->addPermanentWidget(lblwait);
    cmbaddbuk =
        ui::makeButton(this, "cmbaddbuk", QStringLiteral("Add calbuk"),
                       QStringLiteral("Записать станцию в адресную книгу: позывной, город, имя и путь QSL"));
    cmbcalbuk = ui::makeButton(this, "cmbcalbuk", QStringLiteral("cmbcalbuk"),
                               QStringLiteral("Перенести список позывных соревнований из TblLOG1.XLS в базу "
                                              "dbQRZ или очистить её"));
    for (QPushButton *button : {cmbaddbuk, cmbcalbuk}) {
        button->setFlat(true);
        button->setFocusPolicy(Qt::TabFocus); // a click leaves the focus in the contact that is being typed
        statusBar()->addPermanentWidget(button);
    }
    cmbxls = ui::makeButton(this, "cmbxls", QStringLiteral("Excel > LOG"),
                            QStringLiteral("Перенести связи в журнал из книги TblLog.xls"));
    cmbxls->setFlat(true);
    statusBar()->addPermanentWidget(cmbxls);
    const QList<QWidget *> order = {m_entry->txtcall, m_entry->txtrstr,   m_entry->txtrsts,
                                    m_entry->txtqth,  m_entry->txtname,   m_entry->txtqslvia,
                                    m_entry->cmbadd,  m_entry->cmbruskey, m_clock->txtdate,
                                    m_clock->txttime, m_clock->Label10,   m_station->txtcontr};
    const QList<QWidget *> period = {
        m_period->txtdatmin, m_period->txtdatmax, m_period->cmbpecat, m_period->cmbwtabl,  m_period->txtput,
        m_period->cmbput,    m_period->cbmotchet, m_period->cmbwse,   m_period->cmbformat, m_period->cmbzakr};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
    for (qsizetype i = 1; i < period.size(); ++i)
        setTabOrder(period[i - 1], period[i]);
    setTabOrder(DBGrid1, cmbaddbuk);
    setTabOrder(cmbaddbuk, cmbcalbuk);
    setTabOrder(cmbcalbuk, cmbxls); // Shift+Tab from the callsign still leads to the own station
}

void frmlog::connectEntry()
{
    ui::FilterEdit *call = m_entry->txtcall;
    const auto filter = [this](QChar c, qsizetype length, const QKeyEvent *event) {
        return callsignFilter(c, length, event);
    };
    call->setFilter(filter);
    m_entry->txtqslvia->setFilter(filter);
    connect(call, &ui::FilterEdit::keyPressing, this, [this] {
        if (m_state.ownCallKey.isEmpty()) {
            readFields();
            m_lookups.deriveOwnKey();
        }
    });
    connect(call, &ui::FilterEdit::enterPressed, this, &frmlog::callsignEntered);
    connect(call, &ui::FilterEdit::keyReleased, this, &frmlog::callsignKeyReleased);
    connect(m_entry->cmbadd, &QPushButton::clicked, this, &frmlog::cmbadd_Click);
    connect(m_entry->cmbruskey, &QPushButton::clicked, this,
            [this] { m_services.keyboard.activatePrevious(); });
}

void frmlog::connectReports()
{
    const auto digits = [](QChar c, qsizetype, const QKeyEvent *) { return reportKey(c).character; };
    m_entry->txtrstr->setFilter(digits);
    m_entry->txtrsts->setFilter(digits);
    connect(m_entry->txtrstr, &ui::FilterEdit::enterPressed, this, [this] {
        if (!m_state.enterRecords)
            focusAndSelect(m_entry->txtrsts);
    });
    connect(m_entry->txtrsts, &ui::FilterEdit::enterPressed, this, [this] {
        if (!m_state.enterRecords)
            m_entry->txtqth->setFocus();
    });
    connect(m_entry->txtrstr, &ui::FilterEdit::keyReleased, this, [this](int key) {
        if (key == Qt::Key_Down)
            focusAndSelect(m_entry->txtrsts);
        else if (key == Qt::Key_Up)
            m_entry->txtcall->setFocus();
    });
    connect(m_entry->txtrsts, &ui::FilterEdit::keyReleased, this, [this](int key) {
        if (key == Qt::Key_Down)
            m_entry->txtqth->setFocus();
        else if (key == Qt::Key_Up)
            focusAndSelect(m_entry->txtrstr);
    });
}

void frmlog::connectNames()
{
    const auto onEnter = [this](ui::FilterEdit *from, QWidget *to) {
        connect(from, &ui::FilterEdit::enterPressed, this, [this, to] {
            if (!m_state.enterRecords)
                to->setFocus();
        });
    };
    onEnter(m_entry->txtqth, m_entry->txtname);
    onEnter(m_entry->txtname, m_entry->txtqslvia);
    onEnter(m_entry->txtqslvia, m_entry->cmbadd);
    for (ui::FilterEdit *field : {m_entry->txtqth, m_entry->txtname})
        field->setFilter([this, field](QChar c, qsizetype, const QKeyEvent *event) {
            return scriptFilter(field, c, event);
        });
    connect(m_entry->txtqth, &ui::FilterEdit::keyReleased, this, &frmlog::townKeyReleased);
    connect(m_entry->txtname, &ui::FilterEdit::keyReleased, this, &frmlog::nameKeyReleased);
    connect(m_entry->txtqth, &ui::FilterEdit::doubleClicked, this, &frmlog::learnTown);
    connect(m_entry->txtname, &ui::FilterEdit::doubleClicked, this, &frmlog::learnName);
    connect(m_entry->txtqslvia, &ui::FilterEdit::keyReleased, this, [this](int key) {
        if (key == Qt::Key_Up)
            m_entry->txtname->setFocus();
        else if (key == Qt::Key_Down)
            m_entry->cmbadd->setFocus();
    });
}

void frmlog::connectLocator()
{
    m_locator->TSHIR->setFilter(
        [](QChar c, qsizetype, const QKeyEvent *) { return hemisphereKey(c, u"NS").character; });
    m_locator->TDOLG->setFilter(
        [](QChar c, qsizetype, const QKeyEvent *) { return hemisphereKey(c, u"WE").character; });
    connect(m_locator->cmbkoor, &QPushButton::clicked, this, &frmlog::cmbkoor_Click);
    connect(m_locator->cmblok, &QPushButton::clicked, this, &frmlog::cmblok_Click);
    connect(m_locator->TXTLOK, &ui::FilterEdit::enterPressed, this, &frmlog::cmbkoor_Click);
}

void frmlog::connectClock()
{
    connect(m_clock, &ClockPanel::timeBaseClicked, this, &frmlog::timeBaseClicked);
    connect(m_clock->txtdate, &ui::FilterEdit::enterPressed, this, [this] {
        if (!m_state.enterRecords)
            focusAndSelect(m_clock->txttime);
    });
    connect(m_clock->txttime, &ui::FilterEdit::enterPressed, this, [this] {
        if (!m_state.enterRecords)
            focusAndSelect(m_entry->txtrstr);
    });
}

void frmlog::connectBands()
{
    connect(m_band, &BandPanel::bandClicked, this, &frmlog::bandClicked);
    connect(m_band, &BandPanel::bandKeyReleased, this, &frmlog::bandKeyReleased);
    connect(m_band, &BandPanel::bandEntered, this, [this] {
        if (!m_state.enterRecords)
            m_entry->txtcall->setFocus();
    });
    connect(m_band, &BandPanel::modeClicked, m_band, &BandPanel::openModes);
    connect(m_band, &BandPanel::modeChosen, this, &frmlog::modeChosen);
    connect(m_band, &BandPanel::modesLeft, this, [this] {
        m_band->closeModes();
        m_entry->txtcall->setFocus();
    });
}

void frmlog::connectOwnStation()
{
    const auto run = [this](const std::function<void()> &operation) { typed(operation); };
    const auto bind = [&](ui::FilterEdit *edit, const char *field) {
        new ui::BoundField(edit, m_sources.Data18, QLatin1String(field), run); // the edit owns it
    };
    bind(m_own->txtNcall, "ccall");
    bind(m_own->txtGradN, "GradN");
    bind(m_own->txtMinN, "MinN");
    bind(m_own->txtGradE, "GradE");
    bind(m_own->txtMinE, "MinE");
    bind(m_keyer->txtf2,
         "ccall"); // the second message is the own callsign itself: what is typed there changes it
    ui::FilterEdit *call = m_own->txtNcall;
    call->setFilter([](QChar c, qsizetype, const QKeyEvent *) { return upperKey(c).character; });
    connect(call, &ui::FilterEdit::keyPressing, this, &frmlog::ownCallsignKeyPressed);
    connect(call, &ui::FilterEdit::keyReleased, this, [this] {
        readFields();
        m_lookups.deriveOwnKey();
    });
    connect(call, &ui::FilterEdit::enterPressed, this, [this] {
        if (!m_state.enterRecords)
            m_entry->txtcall->setFocus();
    });
    readFields();
    m_lookups.deriveOwnKey();
}

void frmlog::connectLists()
{
    connect(DBList1, &ui::DbList::chosen, this,
            [this](const QString &call) { asked([&] { m_lookups.showContactsWith(call); }); });
    connect(DBList1, &ui::DbList::reached, this,
            [this](const QString &call) { typed([&] { m_lookups.showContactsWith(call); }); });
    connect(DBGrid1, &ui::DbGrid::deleteAsked, this, &frmlog::deleteRow);
    const auto failed = [this](const store::Error &error) { showStatus(error); };
    for (const ui::SourceModel *model : {DBGrid1->sourceModel(), DBList1->sourceModel(),
                                         m_towns->DBList2->sourceModel(), m_towns->DBList3->sourceModel()})
        connect(model, &ui::SourceModel::failed, this, failed, Qt::QueuedConnection);
    connect(m_keyer, &cw::KeyerPanel::portChosen, this, [this] { m_entry->txtcall->setFocus(); });
    connect(m_calculator, &calc::CalculatorPanel::closeAsked, this, &frmlog::mnucalk_Click);
}

void frmlog::connectPeriod()
{
    connect(m_period->cmbzakr, &QPushButton::clicked, this, [this] {
        m_period->hide();
        m_entry->txtcall->setFocus();
    });
    connect(m_period->cmbpecat, &QPushButton::clicked, this, &frmlog::Pechat);
    connect(m_period->cmbwtabl, &QPushButton::clicked, this, &frmlog::cmbwtabl_Click);
    connect(m_period->cmbput, &QPushButton::clicked, this, &frmlog::cmbput_Click);
    connect(m_period->cbmotchet, &QPushButton::clicked, this, [this] { cbmotchet_Click(false); });
    connect(m_period->cmbwse, &QPushButton::clicked, this, [this] { cbmotchet_Click(true); });
    const auto onEnter = [this](ui::FilterEdit *from, QWidget *to) {
        connect(from, &ui::FilterEdit::enterPressed, this, [this, to] {
            if (!m_state.enterRecords)
                to->setFocus();
        });
    };
    onEnter(m_period->txtdatmin, m_period->txtdatmax);
    onEnter(m_period->txtdatmax, m_period->cmbpecat);
    onEnter(m_period->txtput, m_period->cbmotchet);
}

void frmlog::connectMenu()
{
    connect(cmbxls, &QPushButton::clicked, this, &frmlog::cmbxls_Click);
    connect(cmbaddbuk, &QPushButton::clicked, this, &frmlog::cmbaddbuk_Click);
    connect(cmbcalbuk, &QPushButton::clicked, this, &frmlog::cmbcalbuk_Click);
    connect(m_menu.mnuvur, &QAction::triggered, this, &frmlog::mnuvur_Click);
    connect(m_menu.mnuwwod, &QAction::triggered, this, &frmlog::mnuwwod_Click);
    connect(m_menu.mnulist, &QAction::triggered, this, &frmlog::mnulist_Click);
    connect(m_menu.MNUCW, &QAction::triggered, this, &frmlog::MNUCW_Click);
    connect(m_menu.mnucalk, &QAction::triggered, this, &frmlog::mnucalk_Click);
    connect(m_menu.mnulog, &QAction::triggered, this, &frmlog::mnulog_Click);
    connect(m_menu.mnuzaglog, &QAction::triggered, this, &frmlog::mnuzaglog_Click);
    connect(m_menu.mnurewiz, &QAction::triggered, this, &frmlog::mnurewiz_Click);
    connect(m_menu.cmbawto, &QAction::triggered, this, &frmlog::cmbawto_Click);
    connect(m_menu.mnuexit, &QAction::triggered, this, &QWidget::close);
}

} // namespace logentry
