#include "awards/ui/frmdipin.h"

#include "awards/sql.h"
#include "store/folder.h"
#include "store/opening.h"
#include "ui/widgets.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QShowEvent>
#include <QVBoxLayout>

#include <array>
#include <utility>

namespace awards {

namespace {

struct TitleField {
    const char *name;
    const char *field;
    const char16_t *caption; ///< empty: the hint in the box says what it is
    const char16_t *tip;
    const char16_t *hint;
};
constexpr std::array<TitleField, 9> kTitleFields = {
    {{"txtaward", "award", u"AWARD", u"Название диплома", u""},
     {"txtDDATE", "DDATE", u"date of basic award", u"Дата основного диплома, если заявка на наклейку к нему",
      u""},
     {"txtwybor", "wybor", u"QSL-card enclosed", u"Приложенные QSL-карточки", u""},
     {"txtccall", "ccall", u"Call", u"Позывной заявителя", u""},
     {"txtnname", "nname", u"", u"Имя и фамилия заявителя", u"Имя и фамилия"},
     {"txtADRESSTR1", "ADRESSTR1", u"", u"Улица, дом и квартира заявителя", u"Улица, дом, квартира"},
     {"txtadresgor", "adresgor", u"", u"Город заявителя", u"Город"},
     {"txtadresstran", "adresstran", u"", u"Страна заявителя", u"Страна"},
     {"txtbband", "bband", u"Band", u"Диапазон, за работу на котором просят диплом", u""}}};
constexpr int kCall = 3;
constexpr int kTitleCharacters = 20;

} // namespace

frmdipin::frmdipin(const Services &services)
    : m_services(services), Data1(QStringLiteral("Data1"), services.databases),
      Data2(QStringLiteral("Data2"), services.databases)
{
    setObjectName(QStringLiteral("frmdipin"));
    setWindowTitle(QStringLiteral("Diplom"));
    setAttribute(Qt::WA_QuitOnClose, false);
    Data1.setDatabaseName(services.databases.path(u"\\dbhelp.mdb"));
    Data1.setRecordSource(sql::titleTable());
    Data2.setDatabaseName(services.databases.path(u"\\dbiaru.mdb"));
    Data2.setRecordSource(sql::blank());
    m_turn = new ui::WindowTurn(this, services.messages);
    m_turn->tellInFront(store::refreshEach({&Data1, &Data2}));
    connect(m_turn, &ui::WindowTurn::came, this, &frmdipin::came);
    connect(m_turn, &ui::WindowTurn::left, this, &frmdipin::saveLeft);
    buildLayout();
    bindTitlePage();
    connectBoxes();
    lockTitle();
}

frmdipin::~frmdipin()
{
    ui::deleteContent(this);
}

// ---- parts

void frmdipin::buildLayout()
{
    auto *content = new QWidget(this);
    m_status = new ui::StatusLine(m_services.messages, this);
    QGroupBox *title = makeTitlePage(content);
    cmbrep = ui::makeButton(content, "cmbrep", QStringLiteral("Печать"),
                            QStringLiteral("Показать заявку: титульный лист и бланк. Оттуда её печатают"));
    cmbend = ui::makeButton(content, "cmbend", QStringLiteral("Выход"), QStringLiteral("Закрыть окно"));
    for (QPushButton *button : {cmbrep, cmbend})
        button->setFocusPolicy(Qt::TabFocus); // a click saves by itself, and its failure is told once
    auto *blank = new QGroupBox(QStringLiteral("Бланк"), content);
    m_blank = new BlankView(m_services.databases, Data2, "DBGrid1", *m_status, blank);
    auto *inside = new QVBoxLayout(blank);
    ui::compact(inside);
    inside->addWidget(m_blank);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmbrep, 1);
    buttons->addWidget(cmbend, 1);
    auto *left = new QVBoxLayout;
    left->addWidget(title);
    left->addLayout(buttons);
    left->addStretch();
    auto *upper = new QHBoxLayout;
    upper->addLayout(left);
    upper->addWidget(blank, 1);
    auto *whole = new QVBoxLayout(content);
    whole->addLayout(upper, 1);
    constexpr QSize kWanted(1160, 640);
    ui::fillScrolled(this, content, kWanted, m_status);
}

QGroupBox *frmdipin::makeTitlePage(QWidget *parent)
{
    auto *box = new QGroupBox(QStringLiteral("Титульный лист"), parent);
    auto *grid = new QGridLayout(box);
    ui::compact(grid);
    const auto addRow = [&](const char *name, const char16_t *caption, const char16_t *tip) {
        ui::FilterEdit *edit = ui::makeEdit(box, name, QString::fromUtf16(tip), kTitleCharacters);
        const int row = grid->rowCount();
        if (*caption != u'\0')
            grid->addWidget(ui::makeLabel(box, QString::fromUtf16(caption), edit), row, 0);
        grid->addWidget(edit, row, 1);
        return edit;
    };
    for (const TitleField &field : kTitleFields) {
        m_bound.append(addRow(field.name, field.caption, field.tip));
        m_bound.constLast()->setPlaceholderText(QString::fromUtf16(field.hint));
    }
    ui::upperCased(m_bound[kCall]);
    txtemission =
        addRow("txtemission", u"Emission",
               u"Вид излучения. Этот текст остаётся только в окне: он не сохраняется и не печатается");
    grid->setColumnStretch(1, 1);
    return box;
}

void frmdipin::bindTitlePage()
{
    const auto run = [this](const std::function<void()> &operation) { m_status->typed(operation); };
    for (std::size_t i = 0; i < kTitleFields.size(); ++i)
        new ui::BoundField(m_bound[qsizetype(i)], Data1, QLatin1String(kTitleFields[i].field), run);
    for (ui::FilterEdit *edit : std::as_const(m_bound))
        connect(edit, &ui::FilterEdit::keyPressing, this, [this, edit](const QKeyEvent *event) {
            if (edit->isReadOnly() && !event->text().isEmpty() && event->text().front().isPrint())
                m_status->tell(m_lock);
        });
}

void frmdipin::connectBoxes()
{
    QList<QWidget *> order(m_bound.cbegin(), m_bound.cend());
    order += {txtemission, cmbrep, cmbend, m_blank->grid()};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
    for (qsizetype i = 0; i <= m_bound.size(); ++i) { // as Tab does: the text is selected
        QWidget *next = order[i + 1];
        connect(qobject_cast<ui::FilterEdit *>(order[i]), &ui::FilterEdit::enterPressed, next,
                [next] { next->setFocus(Qt::TabFocusReason); });
    }
    connect(cmbrep, &QPushButton::clicked, this, &frmdipin::cmbrep_Click);
    connect(cmbend, &QPushButton::clicked, this, &QWidget::close);
}

// ---- title page

void frmdipin::lockTitle()
{
    const QString before = std::exchange(m_lock, QString());
    m_status->quietly([this] { m_lock = lockReason(); });
    for (ui::FilterEdit *edit : std::as_const(m_bound))
        edit->setReadOnly(!m_lock.isEmpty());
    if (m_lock != before)
        m_status->tell(m_lock);
}

QString frmdipin::lockReason()
{
    if (Data1.failed())
        return QStringLiteral("Титульный лист не прочитан, его поля закрыты.");
    if (Data1.isEmpty())
        return QStringLiteral("В файле dbhelp.mdb нет строки титульного листа, его поля закрыты.");
    if (!Data1.updatable())
        return QStringLiteral("Файл dbhelp.mdb открыт только для чтения, поля титульного листа закрыты.");
    return {};
}

// ---- printing

void frmdipin::cmbrep_Click()
{
    // The report reads the files: what is typed must stand there.
    const bool titleStored = m_status->asked([this] { Data1.refresh(); });
    lockTitle();
    if (!titleStored || !m_blank->grid()->saveRow() ||
        !m_status->asked([this] { m_blank->grid()->readAgain(); }))
        return;
    m_status->tell(QString());
    m_services.reports.print(store::joinSuffix(m_services.databases.folder(), u"\\diplom.rpt"));
}

// ---- showing, leaving, closing

void frmdipin::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (event->spontaneous())
        return;
    if (std::exchange(m_shown, true)) { // other windows have written meanwhile
        m_turn->tellInFront(store::refreshEach({&Data1, &Data2}));
        lockTitle();
    }
    m_bound.constFirst()->setFocus();
    m_bound.constFirst()->selectAll(); // as Tab would
}

/// The other windows change the same rows. What the status line tells stays.
void frmdipin::came()
{
    if (!Data1.editPending()) {
        m_status->quietly([this] { Data1.refresh(); });
        lockTitle();
    }
    if (!m_blank->grid()->editing())
        m_status->quietly([this] { m_blank->grid()->readAgain(); });
}

/// The operator has gone to another window: what has been typed here must stand in the files that it reads.
void frmdipin::saveLeft()
{
    m_turn->save(*m_status, {&Data1, &Data2});
}

void frmdipin::closeEvent(QCloseEvent *event)
{
    const bool blankSaved = m_blank->grid()->saveRow();
    const bool titleSaved = m_status->asked([this] { Data1.update(); });
    if (!(blankSaved && titleSaved) &&
        !m_services.messages.askYesNo(QStringLiteral("Правка не сохранена. Закрыть окно без неё?"),
                                      ui::programTitle())) {
        event->ignore();
        return;
    }
    Data1.cancelUpdate();
    Data2.cancelUpdate(); // an open cell shows again what is stored
    event->accept();
}

void frmdipin::keyPressEvent(QKeyEvent *event)
{
    // A key held down since it dropped the edit of a cell does not go on to close the window.
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        if (!event->isAutoRepeat())
            close();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace awards
