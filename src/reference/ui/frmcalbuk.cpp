#include "reference/ui/frmcalbuk.h"

#include "reference/ui/callbookpanels.h"
#include "store/opening.h"
#include "ui/boundfield.h"
#include "ui/widgets.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScopeGuard>
#include <QShowEvent>
#include <QVBoxLayout>

#include <optional>
#include <utility>

namespace reference {

frmcalbuk::frmcalbuk(const Services &services)
    : m_services(services), m_callbook(services.databases), m_tasks(services)
{
    setObjectName(QStringLiteral("frmcalbuk"));
    setWindowTitle(QStringLiteral("База "));
    setAttribute(Qt::WA_QuitOnClose, false);
    m_turn = new ui::WindowTurn(this, services.messages);
    m_turn->tellInFront(m_callbook.open());
    buildLayout();
    connectBoxes();
    connect(m_turn, &ui::WindowTurn::came, this, &frmcalbuk::came);
    connect(m_turn, &ui::WindowTurn::left, this, &frmcalbuk::saveLeft);
    lockRecord();
}

frmcalbuk::~frmcalbuk()
{
    ui::deleteContent(this);
}

// ---- parts

void frmcalbuk::buildLayout()
{
    auto *content = new QWidget(this);
    m_status = new ui::StatusLine(m_services.messages, this);
    constexpr int kCallCharacters = 14;
    txtserch = ui::makeEdit(content, "txtserch", QStringLiteral("Позывной или его начало"), kCallCharacters);
    ui::upperCased(txtserch);
    DBList1 = new ui::DbList(m_callbook.Calls, QStringLiteral("ccall"), content);
    DBList1->setObjectName(QStringLiteral("DBList1"));
    DBList1->setToolTip(QStringLiteral("Позывные журнала"));
    DBList1->setAccessibleName(DBList1->toolTip());
    DBList1->setMinimumWidth(ui::editWidth(DBList1, kCallCharacters));
    m_log = new LogFrame(content);
    m_record = new RecordFrame(m_callbook.Record, *m_status, content);
    cmbadd =
        ui::makeButton(content, "cmbadd", QStringLiteral("Добавить"),
                       QStringLiteral("1. Набрать в окне (Найти) позывной  2. Нажать кнопку (Добавить)"));
    cmbimport = ui::makeButton(content, "cmbimport", QStringLiteral("Из файла..."),
                               QStringLiteral("Пополнить базу из текстового файла"));
    cmbexport = ui::makeButton(content, "cmbexport", QStringLiteral("В файл..."),
                               QStringLiteral("Записать всю базу в текстовый файл"));
    Command1 = ui::makeButton(content, "Command1", QStringLiteral("Закрыть"), QStringLiteral("Закрыть окно"));

    auto *search = new QHBoxLayout;
    search->addWidget(ui::makeLabel(content, QStringLiteral("Найти"), txtserch));
    search->addWidget(txtserch, 1);
    auto *left = new QVBoxLayout;
    left->addLayout(search);
    left->addWidget(DBList1, 1);
    auto *buttons = new QHBoxLayout;
    for (QPushButton *button : {cmbadd, cmbimport, cmbexport, Command1})
        buttons->addWidget(button, 1);
    auto *right = new QVBoxLayout;
    right->addWidget(m_log);
    right->addWidget(m_record);
    right->addLayout(buttons);
    right->addWidget(makeHelp(content));
    right->addStretch();
    auto *whole = new QHBoxLayout(content);
    ui::compact(whole);
    whole->addLayout(left, 2);
    whole->addLayout(right, 5);
    constexpr QSize kWanted(860, 520);
    ui::fillScrolled(this, content, kWanted, m_status);
}

QGroupBox *frmcalbuk::makeHelp(QWidget *parent)
{
    auto *box = new QGroupBox(parent);
    auto *lines = new QVBoxLayout(box);
    ui::compact(lines);
    for (const char16_t *line :
         {u"Чтобы добавить новую инфо", u"1. набрать в окне (Найти) позывной", u"2. Нажать кнопку (Добавить)",
          u"3. Затем можно изменять инфо в базе", u"PS - Адресс - не более 50 знаков"})
        lines->addWidget(ui::makeLabel(box, QString::fromUtf16(line)));
    return box;
}

void frmcalbuk::connectBoxes()
{
    QList<QWidget *> order = {txtserch, DBList1, m_log->txtlogname, m_log->txtlogqth, m_log->txtlogqslvia,
                              cmbadd};
    for (ui::FilterEdit *box : m_record->boxes())
        order.append(box);
    order += {cmbimport, cmbexport, Command1};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
    const auto onEnter = [](ui::FilterEdit *from,
                            QWidget *to) { // the text is selected, a button's frame shown
        connect(from, &ui::FilterEdit::enterPressed, to, [to] { to->setFocus(Qt::ShortcutFocusReason); });
    };
    onEnter(m_log->txtlogname, m_log->txtlogqth);
    onEnter(m_log->txtlogqth, m_log->txtlogqslvia);
    onEnter(m_log->txtlogqslvia, cmbadd);
    for (qsizetype i = 1; i < m_record->boxes().size(); ++i)
        onEnter(m_record->boxes()[i - 1], m_record->boxes()[i]);
    onEnter(m_record->boxes().constLast(), txtserch); // the next station
    connect(txtserch, &ui::FilterEdit::enterPressed, this, [this] {
        txtserch->reportChange(); // the last letter's key may still be down
        (m_record->isEmpty() ? static_cast<QWidget *>(cmbadd) : m_record->txtfam())
            ->setFocus(Qt::ShortcutFocusReason); // which shows its frame
    });
    connect(txtserch, &ui::FilterEdit::keyReleased, this, &frmcalbuk::txtserch_KeyUp);
    connect(DBList1, &ui::DbList::chosen, this, &frmcalbuk::DBList1_Click);
    connect(DBList1, &ui::DbList::reached, this, &frmcalbuk::DBList1_Click);
    connect(
        DBList1->sourceModel(), &ui::SourceModel::failed, this,
        [this](const store::Error &error) { m_status->tell(error); }, Qt::QueuedConnection);
    connect(&m_callbook.Record, &store::DataSource::wasReset, this, &frmcalbuk::lockRecord);
    connect(m_record, &RecordFrame::refused, this, [this] { m_status->tell(lockReason()); });
    connect(cmbadd, &QPushButton::clicked, this, &frmcalbuk::cmbadd_Click);
    connect(cmbimport, &QPushButton::clicked, this, &frmcalbuk::cmbimport_Click);
    connect(cmbexport, &QPushButton::clicked, this, &frmcalbuk::cmbexport_Click);
    connect(Command1, &QPushButton::clicked, this, &QWidget::close);
}

// ---- look-up

void frmcalbuk::lookUp(const QString &call)
{
    StationInLog known = m_log->known();
    const auto shown = qScopeGuard([&] { m_log->show(known); });
    m_callbook.lookUp(call, known);
}

void frmcalbuk::txtserch_KeyUp(int key)
{
    const QString text = txtserch->text();
    m_status->typed([&] {
        std::optional<store::Error> failure; // a callbook that cannot be read leaves the list of callsigns
        try {
            lookUp(text);
        } catch (const store::Error &error) {
            failure = error;
        }
        m_callbook.listCalls(text);
        if (failure)
            throw store::Error(*failure);
    });
    if (key == Qt::Key_Down)
        enterList();
}

/// From the search into the list: its first station is looked up at once.
void frmcalbuk::enterList()
{
    DBList1->setFocus();
    if (!DBList1->chosenText().isEmpty() || DBList1->model()->rowCount() == 0)
        return;
    DBList1->setCurrentIndex(DBList1->model()->index(0, 0));
    DBList1_Click(DBList1->chosenText());
}

void frmcalbuk::DBList1_Click(const QString &call)
{
    m_status->tell(QString());
    m_status->asked([&] {
        if (call.isEmpty()) {
            StationInLog known = m_log->known();
            known.name.clear();
            known.qth.clear();
            known.qslvia.clear();
            m_log->show(known);
            return;
        }
        lookUp(call);
    });
}

// ---- the record

QString frmcalbuk::lockReason()
{
    store::DataSource &record = m_callbook.Record;
    if (record.failed())
        return QStringLiteral("База не прочитана, её поля закрыты.");
    if (record.isEmpty())
        return QStringLiteral(
            "Записи об этой станции нет. Наберите позывной в окне «Найти» и нажмите «Добавить».");
    if (!record.updatable())
        return QStringLiteral("Файл dbcalbuk.mdb открыт только для чтения, поля базы закрыты.");
    return {};
}

void frmcalbuk::lockRecord()
{
    m_status->quietly([this] { m_record->lock(!lockReason().isEmpty()); });
}

void frmcalbuk::cmbadd_Click()
{
    const StationInLog known = m_log->known();
    if (!m_record->isEmpty() || known.call.isEmpty())
        return;
    // The main window may have made one since the look-up, or a file that was busy hides it.
    if (!m_status->asked([this] { m_callbook.Record.refresh(); }) || !m_record->isEmpty())
        return;
    if (!m_status->asked([&] { m_callbook.add(known); }))
        return;
    m_status->tell(QStringLiteral("Записано в базу: %1").arg(known.call));
    m_record->txtfam()->setFocus();
}

// ---- text files

/// What was typed into the record must be there for the file to be compared with, and to be written into one.
bool frmcalbuk::saveRecord()
{
    return m_status->asked([this] { ui::savePending(m_callbook.Record); });
}

void frmcalbuk::cmbimport_Click()
{
    if (!saveRecord())
        return;
    const QString line = m_tasks.importFile(this);
    m_status->asked([this] { m_callbook.Record.refresh(); });
    m_status->tell(line);
}

void frmcalbuk::cmbexport_Click()
{
    if (saveRecord())
        m_status->tell(m_tasks.exportFile(this));
}

// ---- showing, leaving, closing

void frmcalbuk::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (event->spontaneous())
        return;
    if (std::exchange(m_shown, true)) // other windows have written meanwhile
        m_turn->tellInFront(store::refreshEach({&m_callbook.Calls, &m_callbook.Record}));
    txtserch->setFocus();
    txtserch->selectAll(); // the next callsign replaces the last one
}

/// The main window writes the same record, and contacts into the log.
void frmcalbuk::came()
{
    if (!m_callbook.Record.editPending())
        m_status->quietly([this] { m_callbook.Record.refresh(); });
}

/// The operator has gone to another window, which reads the same record.
void frmcalbuk::saveLeft()
{
    m_turn->save(*m_status, {&m_callbook.Record});
}

void frmcalbuk::closeEvent(QCloseEvent *event)
{
    if (!saveRecord() &&
        !m_services.messages.askYesNo(QStringLiteral("Правка не сохранена. Закрыть окно без неё?"),
                                      ui::programTitle())) {
        event->ignore();
        return;
    }
    m_callbook.Record.cancelUpdate();
    event->accept();
}

void frmcalbuk::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        if (!event->isAutoRepeat())
            close();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace reference
