#include "reference/ui/rusdx.h"

#include "reference/keyfilters.h"
#include "reference/sql.h"
#include "store/opening.h"
#include "ui/widgets.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QShowEvent>
#include <QVBoxLayout>

namespace reference {

namespace {

constexpr qsizetype kSearchLength = 5;

/// Columns of the grid, each headed by its field's name.
QList<ui::GridColumn> columns()
{
    struct Column {
        const char *field;
        int width;
    };
    QList<ui::GridColumn> list;
    for (const auto &[field, width] : {Column{"pref", 6},
                                       {"gorod", 34},
                                       {"kodcrk", 8},
                                       {"kodsrr", 8},
                                       {"prf", 6},
                                       {"itu", 6},
                                       {"cq", 6},
                                       {"gradN", 9},
                                       {"gradE", 9},
                                       {"dolg", 9},
                                       {"Shir", 9}})
        list.append({QLatin1String(field), QLatin1String(field), width});
    return list;
}

} // namespace

rusdx::rusdx(const Services &services)
    : m_services(services), Data1(QStringLiteral("Data1"), services.databases)
{
    setObjectName(QStringLiteral("rusdx"));
    setWindowTitle(QStringLiteral("Россия"));
    setAttribute(Qt::WA_QuitOnClose, false);
    Data1.setDatabaseName(services.databases.path(u"\\dbrusdx.mdb"));
    Data1.setRecordSource(sql::regionTable());
    m_turn = new ui::WindowTurn(this, services.messages);
    m_turn->tellInFront(store::refreshEach({&Data1}));
    buildLayout();
    connect(m_turn, &ui::WindowTurn::came, this,
            [this] { m_status->quietly([this] { DBGrid1->readAgain(); }); });
}

rusdx::~rusdx()
{
    ui::deleteContent(this);
}

void rusdx::buildLayout()
{
    auto *content = new QWidget(this);
    m_status = new ui::StatusLine(m_services.messages, this);
    txtserch = ui::makeEdit(
        content, "txtserch",
        QStringLiteral("Префикс области или его начало: цифры и латинские буквы, до 5 знаков"), 8);
    txtserch->setFilter([](QChar typed, qsizetype length, const QKeyEvent *) {
        return codeKey(typed, length, kSearchLength);
    });
    Command1 = ui::makeButton(content, "Command1", QStringLiteral("Выход"), QStringLiteral("Закрыть окно"));
    DBGrid1 = new ui::DbGrid(
        Data1, columns(),
        [this](const std::function<void()> &operation) { return m_status->asked(operation); }, content);
    DBGrid1->setObjectName(QStringLiteral("DBGrid1"));
    DBGrid1->setAccessibleName(QStringLiteral("Области России"));
    DBGrid1->setToolTip(QStringLiteral("Таблица областей России. Здесь она только для просмотра"));
    DBGrid1->setEditTriggers(QAbstractItemView::NoEditTriggers);

    auto *top = new QHBoxLayout;
    top->addWidget(ui::makeLabel(content, QStringLiteral("Поиск"), txtserch));
    top->addWidget(txtserch);
    top->addStretch(1);
    top->addWidget(Command1);
    auto *whole = new QVBoxLayout(content);
    ui::compact(whole);
    whole->addLayout(top);
    whole->addWidget(DBGrid1, 1);
    constexpr QSize kWanted(1040, 600);
    ui::fillScrolled(this, content, kWanted, m_status);

    setTabOrder(txtserch, DBGrid1);
    setTabOrder(DBGrid1, Command1);
    connect(txtserch, &ui::FilterEdit::keyReleased, this, &rusdx::txtserch_KeyUp);
    connect(Command1, &QPushButton::clicked, this, &QWidget::close);
    connect(
        DBGrid1->sourceModel(), &ui::SourceModel::failed, this,
        [this](const store::Error &error) { m_status->tell(error); }, Qt::QueuedConnection);
}

void rusdx::txtserch_KeyUp(int key)
{
    m_status->typed([this] { store::requery(Data1, sql::regionsByPrefix(txtserch->text())); });
    if (key == Qt::Key_Down)
        DBGrid1->setFocus();
}

void rusdx::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (event->spontaneous())
        return;
    txtserch->setFocus();
    txtserch->selectAll();
}

void rusdx::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        if (!event->isAutoRepeat())
            close();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace reference
