#include "reference/ui/dxcc1.h"

#include "reference/keyfilters.h"
#include "reference/ui/countrypanels.h"
#include "reference/ui/updatepanel.h"
#include "store/opening.h"
#include "store/schema.h"
#include "ui/widgets.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QShowEvent>
#include <QVBoxLayout>

#include <utility>

namespace reference {

namespace {

constexpr qsizetype kCodeLength = 5;
constexpr qsizetype kNameLength = 15;

/// Columns of the grid, each headed by its field's name.
QList<ui::GridColumn> columns()
{
    struct Column {
        const char *field;
        int width;
    };
    QList<ui::GridColumn> list;
    for (const auto &[field, width] : {Column{"prf", 9},
                                       {"strana", 17},
                                       {"kont", 6},
                                       {"iaru", 6},
                                       {"cq", 6},
                                       {"PREF", 8},
                                       {"GradN", 9},
                                       {"GradE", 9},
                                       {"Dolg", 9},
                                       {"Shir", 9}})
        list.append({QLatin1String(field), QLatin1String(field), width});
    return list;
}

} // namespace

dxcc1::dxcc1(const Services &services) : m_services(services), m_countries(services.databases)
{
    setObjectName(QStringLiteral("dxcc1"));
    setWindowTitle(QStringLiteral("DXCC"));
    setAttribute(Qt::WA_QuitOnClose, false);
    m_turn = new ui::WindowTurn(this, services.messages);
    m_turn->tellInFront(m_countries.open());
    buildLayout();
    setTabOrders();
    connectControls();
    connect(m_turn, &ui::WindowTurn::came, this, &dxcc1::came);
    connect(m_turn, &ui::WindowTurn::left, this, &dxcc1::saveLeft);
}

dxcc1::~dxcc1()
{
    ui::deleteContent(this);
}

// ---- parts

void dxcc1::buildLayout()
{
    auto *content = new QWidget(this);
    m_status = new ui::StatusLine(m_services.messages, this);
    constexpr int kPrefixCharacters = 8;
    txtserch = ui::makeEdit(content, "txtserch", QStringLiteral("Поиск по началу позывного (Pref)"),
                            kPrefixCharacters);
    txtserch->setPlaceholderText(QStringLiteral("Pref"));
    txtserch1 =
        ui::makeEdit(content, "txtserch1", QStringLiteral("Поиск по названию страны"), int(kNameLength));
    txtserch1->setPlaceholderText(QStringLiteral("Страна"));
    for (const auto &[edit, most] : {std::pair{txtserch, kCodeLength}, std::pair{txtserch1, kNameLength}})
        edit->setFilter([most = most](QChar typed, qsizetype length, const QKeyEvent *) {
            return codeKey(typed, length, most);
        });
    m_entry = new CountryEntryFrame(content);
    m_update = new UpdatePanel(content);
    m_update->hide();
    cmbfile = ui::makeButton(content, "cmbfile", QStringLiteral("Из файла..."),
                             QStringLiteral("Обновить таблицу из файла стран радиолюбителей (cty.dat)"));
    Command1 = ui::makeButton(content, "Command1", QStringLiteral("Россия"),
                              QStringLiteral("Открыть таблицу областей России"));
    cmbexit = ui::makeButton(content, "cmbexit", QStringLiteral("Выход"), QStringLiteral("Закрыть окно"));
    DBGrid1 = new ui::DbGrid(
        m_countries.Data1, columns(),
        [this](const std::function<void()> &operation) { return m_status->asked(operation); }, content);
    DBGrid1->setObjectName(QStringLiteral("DBGrid1"));
    DBGrid1->setAccessibleName(QStringLiteral("Таблица стран"));
    DBGrid1->setToolTip(QStringLiteral("F2 или двойной щелчок исправляет ячейку, Delete удаляет строку"));
    DBGrid1->setCellRules(
        [](int column, QChar typed, qsizetype length) {
            return countryCellKey(columns()[column].field, typed, length);
        },
        [this](int column, const QString &text) { return cellText(columns()[column].field, text); });
    // A stray letter must not change a country.
    DBGrid1->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::DoubleClicked);

    auto *top = new QHBoxLayout;
    top->addWidget(ui::makeLabel(content, QStringLiteral("Поиск"), txtserch));
    top->addWidget(txtserch);
    top->addWidget(txtserch1);
    top->addStretch(1);
    top->addWidget(cmbfile);
    top->addWidget(Command1);
    top->addWidget(cmbexit);
    auto *whole = new QVBoxLayout(content);
    ui::compact(whole);
    whole->addLayout(top);
    whole->addWidget(m_entry);
    whole->addWidget(DBGrid1, 1);
    whole->addWidget(m_update, 1);
    constexpr QSize kWanted(840, 640);
    ui::fillScrolled(this, content, kWanted, m_status);
}

void dxcc1::setTabOrders()
{
    const QList<QWidget *> order = {
        txtserch,         txtserch1,        m_entry->txtprf1,   m_entry->txtstrana,
        m_entry->txtkont, m_entry->txtiaru, m_entry->txtcq,     m_entry->txtPREF,
        m_entry->cmbadd,  DBGrid1,          m_update->lstobnow, m_update->cmbda,
        m_update->cmbnet, cmbfile,          Command1,           cmbexit};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void dxcc1::connectControls()
{
    for (ui::FilterEdit *search : {txtserch, txtserch1})
        connect(search, &ui::FilterEdit::enterPressed, m_entry->cmbadd,
                [this] { m_entry->cmbadd->setFocus(Qt::ShortcutFocusReason); });
    connect(txtserch, &ui::FilterEdit::keyReleased, this, &dxcc1::txtserch_KeyUp);
    connect(txtserch1, &ui::FilterEdit::keyReleased, this, &dxcc1::txtserch1_KeyUp);
    connect(m_entry->cmbadd, &QPushButton::clicked, this, &dxcc1::cmbadd_Click);
    connect(cmbfile, &QPushButton::clicked, this, &dxcc1::cmbfile_Click);
    connect(m_update->cmbda, &QPushButton::clicked, this, &dxcc1::cmbda_Click);
    connect(m_update->cmbnet, &QPushButton::clicked, this, &dxcc1::cmbnet_Click);
    connect(Command1, &QPushButton::clicked, this, &dxcc1::regionsAsked);
    connect(cmbexit, &QPushButton::clicked, this, &QWidget::close);
    connect(DBGrid1, &ui::DbGrid::deleteAsked, this, &dxcc1::deleteRow);
    connect(DBGrid1, &ui::DbGrid::editRefused, this, &dxcc1::tellLocked);
    connect(&m_countries.Data1, &store::DataSource::rowChanged, this, &dxcc1::markOwn);
    connect(
        DBGrid1->sourceModel(), &ui::SourceModel::failed, this,
        [this](const store::Error &error) { m_status->tell(error); }, Qt::QueuedConnection);
}

// ---- search

void dxcc1::txtserch_KeyUp(int key)
{
    m_status->typed([this] { m_countries.searchPrefix(txtserch->text()); });
    if (key == Qt::Key_Down)
        DBGrid1->setFocus();
}

void dxcc1::txtserch1_KeyUp(int key)
{
    m_status->typed([this] { m_countries.searchName(txtserch1->text()); });
    if (key == Qt::Key_Down)
        DBGrid1->setFocus();
}

// ---- rows

void dxcc1::cmbadd_Click()
{
    m_entry->txtstrana->showText(countryName(m_entry->txtstrana->text()));
    const CountryEntry entry = m_entry->entry();
    if (!canBeAdded(entry)) {
        // Both are needed, whatever the text says.
        m_services.messages.inform(QStringLiteral("Введите Pref. или Префикс"), QStringLiteral("Ошибка"));
    } else if (m_status->asked([&] { m_countries.add(entry); })) {
        m_entry->clear();
        m_status->tell(QStringLiteral("Добавлено: %1").arg(entry.prf));
        m_status->asked([this] { DBGrid1->readAgain(); });
    }
    m_entry->txtprf1->setFocus();
}

/// A row without one of its codes would be found by nobody; a name with two blanks would be another country.
std::optional<QString> dxcc1::cellText(const QString &field, const QString &text)
{
    QString taken = text.simplified();
    if (!taken.isEmpty() || (field != QLatin1String("prf") && field != QLatin1String("PREF")))
        return taken;
    m_status->tell(QStringLiteral("Pref и Префикс не бывают пустыми: в ячейке осталось прежнее."));
    return std::nullopt;
}

void dxcc1::tellLocked()
{
    bool locked = false;
    if (m_status->quietly([&] { locked = !m_countries.Data1.updatable(); }) && locked)
        m_status->tell(QStringLiteral("Файл dbdxcc1.mdb открыт только для чтения, исправить строку нельзя."));
}

void dxcc1::deleteRow(int row)
{
    store::DataSource &countries = m_countries.Data1;
    const QString question =
        QStringLiteral("Удалить строку %1  %2 ?")
            .arg(countries.text(row, QStringLiteral("prf")), countries.text(row, QStringLiteral("strana")));
    if (m_services.messages.askYesNo(question, QStringLiteral("Удаление данных")))
        m_status->asked([&] { countries.removeRow(row); });
}

void dxcc1::markOwn(int row)
{
    store::DataSource &countries = m_countries.Data1;
    const QString own = QStringLiteral("1");
    if (countries.editPending() && row == countries.currentRow() &&
        countries.field(store::ownRowColumn()) != own)
        countries.setField(store::ownRowColumn(), own);
}

// ---- renewal

void dxcc1::showTable(bool shown)
{
    for (QWidget *part : std::initializer_list<QWidget *>{txtserch, txtserch1, cmbfile})
        part->setEnabled(shown);
    for (QWidget *part : std::initializer_list<QWidget *>{m_entry, DBGrid1})
        part->setVisible(shown);
}

void dxcc1::cmbfile_Click()
{
    if (!DBGrid1->saveRow())
        return;
    const QString file = m_services.dialogs.fileToOpen(
        this, QStringLiteral("Файл стран"), m_file.isEmpty() ? m_services.databases.folder() : m_file,
        {QStringLiteral("Файлы стран (*.dat *.cty *.txt *.DAT *.CTY *.TXT)"),
         QStringLiteral("Все файлы (*)")});
    if (file.isEmpty())
        return;
    m_file = file;
    askRenewal();
}

/// Compares the file with the table as both are now.
void dxcc1::askRenewal()
{
    m_update->dismiss();
    showTable(true);
    CountryPlan plan;
    if (!m_status->asked([&] { plan = planCountryUpdate(m_services.databases, m_file); }))
        return;
    if (plan.isEmpty()) {
        m_status->tell(QStringLiteral("Таблица стран уже такая, как в файле."));
        return;
    }
    m_status->tell(QString());
    showTable(false);
    m_update->ask(m_file, plan);
}

void dxcc1::renew()
{
    const ui::ProgressScope scope(m_services.progress, QStringLiteral("Обновление таблицы стран"), false);
    (void)applyCountryPlan(m_services.databases, m_update->plan(), [this](qint64 copied, qint64 total) {
        (void)m_services.progress.advance(QStringLiteral("Копия таблицы, страниц"), copied, total);
    });
}

void dxcc1::cmbda_Click()
{
    bool outdated = false;
    const bool done = m_status->asked([&] {
        try {
            renew();
        } catch (const store::Error &error) {
            outdated = error.kind() == store::ErrorKind::Outdated;
            throw;
        }
    });
    if (outdated)
        askRenewal(); // what would be done now
    if (!done)
        return; // the question stays: another attempt, or "Нет"
    m_status->tell(QStringLiteral("Таблица стран обновлена: добавлено %1, изменено %2, удалено %3.")
                       .arg(m_update->plan().added)
                       .arg(m_update->plan().changed)
                       .arg(m_update->plan().removed));
    m_update->dismiss();
    showTable(true);
    m_status->asked([this] { DBGrid1->readAgain(); });
    txtserch->setFocus();
}

void dxcc1::cmbnet_Click()
{
    m_update->dismiss();
    showTable(true);
    m_status->tell(QStringLiteral("Таблица стран осталась как была."));
    cmbfile->setFocus(Qt::ShortcutFocusReason);
}

// ---- showing, leaving, closing

void dxcc1::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (event->spontaneous())
        return;
    if (std::exchange(m_shown, true)) // the program may have written meanwhile
        m_turn->tellInFront(store::refreshEach({&m_countries.Data1}));
    if (!m_update->isHidden()) {
        m_update->cmbnet->setFocus(); // the question is still open
        return;
    }
    txtserch->setFocus();
    txtserch->selectAll();
}

void dxcc1::came()
{
    if (!DBGrid1->editing())
        m_status->quietly([this] { DBGrid1->readAgain(); });
}

/// Resolving reads the same rows.
void dxcc1::saveLeft()
{
    m_turn->save(*m_status, {&m_countries.Data1});
}

void dxcc1::closeEvent(QCloseEvent *event)
{
    if (!DBGrid1->saveRow() &&
        !m_services.messages.askYesNo(QStringLiteral("Правка не сохранена. Закрыть окно без неё?"),
                                      ui::programTitle())) {
        event->ignore();
        return;
    }
    m_countries.Data1.cancelUpdate();
    event->accept();
}

void dxcc1::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        if (event->isAutoRepeat())
            return;
        if (m_update->isHidden())
            close();
        else
            cmbnet_Click();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace reference
