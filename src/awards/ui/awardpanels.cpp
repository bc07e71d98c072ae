#include "awards/ui/awardpanels.h"

#include "ui/widgets.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QTextCursor>
#include <QVBoxLayout>

namespace awards {

using ui::makeButton;
using ui::makeDisplay;
using ui::makeEdit;
using ui::makeLabel;

namespace {

ui::DbList *makeList(QWidget *parent, store::DataSource &source, const char *field, const char *name,
                     const QString &tip, int characters)
{
    auto *list = new ui::DbList(source, QLatin1String(field), parent);
    list->setObjectName(QLatin1String(name));
    list->setToolTip(tip);
    list->setAccessibleName(tip);
    constexpr int kLeastRows = 4;
    list->setMinimumHeight(kLeastRows * list->fontMetrics().lineSpacing());
    list->setMinimumWidth(ui::editWidth(list, characters));
    return list;
}

QPlainTextEdit *makeText(QWidget *parent, const char *name, const QString &tip)
{
    auto *edit = new QPlainTextEdit(parent);
    edit->setObjectName(QLatin1String(name));
    edit->setToolTip(tip);
    edit->setAccessibleName(tip);
    edit->setTabChangesFocus(true);
    constexpr int kLeastRows = 4;
    edit->setMinimumHeight(kLeastRows * edit->fontMetrics().lineSpacing());
    return edit;
}

/// A field that only shows what a source delivers.
ui::FilterEdit *makeShown(QWidget *parent, store::DataSource &source, const char *field, const char *name,
                          const QString &tip, int characters, const ui::BoundField::Run &run)
{
    ui::FilterEdit *edit = makeDisplay(parent, name, tip, characters);
    new ui::BoundField(edit, source, QLatin1String(field), run); // the edit owns it
    return edit;
}

} // namespace

// ---- the catalogue

CataloguePanel::CataloguePanel(Sources &sources, const ui::BoundField::Run &run, QWidget *parent)
    : QGroupBox(QStringLiteral("Каталог"), parent)
{
    makeControls(sources, run);
    new ui::BoundText(TXTDIPTEXT, sources.Rules, QStringLiteral("diptext"), run); // the edit owns it
    makeLayout();
    showRegions(false);
    showEntry(false);
}

void CataloguePanel::makeControls(Sources &sources, const ui::BoundField::Run &run)
{
    Label1 = new ui::ClickLabel(this, "Label1", QStringLiteral("Страна"),
                                QStringLiteral("Щелчок по слову «Россия» убирает список областей"));
    Label2 = makeLabel(this, QStringLiteral("Дипломы"));
    Label2->setObjectName(QStringLiteral("Label2"));
    Label3 = makeLabel(this, QStringLiteral("Положение"));
    Label3->setObjectName(QStringLiteral("Label3"));
    for (QLabel *label : {static_cast<QLabel *>(Label1), Label2, Label3})
        ui::enlarge(label, 1.1, true);
    Label2->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // the longest region widens nothing
    DBListStrana = makeList(this, sources.Countries, "strana", "DBListStrana",
                            QStringLiteral("Страны, которые выдают дипломы"), 13);
    DBListRegion =
        makeList(this, sources.Regions, "prf", "DBListRegion", QStringLiteral("Коды областей России"), 3);
    DBListRegion->setFixedWidth(ui::editWidth(DBListRegion, 4));
    DBListDiplom = makeList(this, sources.Awards, "diplom", "DBListDiplom",
                            QStringLiteral("Дипломы страны или области"), 14);
    m_entry = new QWidget(this);
    txtstran1 =
        makeEdit(m_entry, "txtstran1",
                 QStringLiteral("Страна нового диплома. Двойной щелчок в списке стран берёт её оттуда"), 12);
    txtpref1 = makeDisplay(m_entry, "txtpref1", QStringLiteral("Область нового диплома России"), 3);
    txtpref1->setFixedWidth(ui::editWidth(txtpref1, 4));
    TXTDIPL1 = makeEdit(m_entry, "TXTDIPL1", QStringLiteral("Название нового диплома"), 12);
    TXTDIPTEXT = makeText(this, "TXTDIPTEXT",
                          QStringLiteral("Положение о дипломе. Текст можно править: он сохраняется, когда "
                                         "вы уходите из него"));
    TXTPREF = makeShown(this, sources.Rules, "pref", "TXTPREF", QStringLiteral("Область диплома"), 3, run);
    TXTPREF->setFixedWidth(ui::editWidth(TXTPREF, 4));
    txtpol1 = makeText(this, "txtpol1", QStringLiteral("Положение о новом дипломе"));
    cmbadd = makeButton(this, "cmbadd", QStringLiteral("Новый"), QStringLiteral("Добавить новый диплом"));
    cmbdel =
        makeButton(this, "cmbdel", QStringLiteral("Удалить"), QStringLiteral("Удалить выбранный диплом"));
    Command1 = makeButton(this, "Command1", QStringLiteral("Выход"), QStringLiteral("Закрыть окно"));
}

void CataloguePanel::makeLayout()
{
    auto *lists = new QGridLayout;
    lists->setSpacing(4);
    lists->addWidget(Label1, 0, 0);
    lists->addWidget(Label2, 0, 2);
    lists->addWidget(DBListStrana, 1, 0);
    lists->addWidget(DBListRegion, 1, 1);
    lists->addWidget(DBListDiplom, 1, 2);
    lists->setColumnStretch(0, 2);
    lists->setColumnStretch(2, 3);
    auto *entry = new QGridLayout(m_entry);
    entry->setContentsMargins(0, 0, 0, 0);
    entry->setSpacing(4);
    entry->addWidget(makeLabel(m_entry, QStringLiteral("Страна"), txtstran1), 0, 0);
    entry->addWidget(txtstran1, 0, 1);
    entry->addWidget(makeLabel(m_entry, QStringLiteral("область"), txtpref1), 0, 2);
    entry->addWidget(txtpref1, 0, 3);
    entry->addWidget(makeLabel(m_entry, QStringLiteral("Диплом"), TXTDIPL1), 1, 0);
    entry->addWidget(TXTDIPL1, 1, 1, 1, 3);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmbadd);
    buttons->addWidget(cmbdel);
    buttons->addStretch();
    buttons->addWidget(Command1);
    auto *column = new QVBoxLayout(this);
    ui::compact(column);
    column->addLayout(lists, 4);
    column->addWidget(m_entry);
    auto *heading = new QHBoxLayout;
    heading->addWidget(Label3, 1);
    m_region = makeLabel(this, QStringLiteral("область"), TXTPREF);
    heading->addWidget(m_region);
    heading->addWidget(TXTPREF);
    column->addLayout(heading);
    column->addWidget(TXTDIPTEXT, 5);
    column->addWidget(txtpol1, 5);
    column->addLayout(buttons);
}

void CataloguePanel::showEntry(bool shown)
{
    m_entry->setVisible(shown);
    for (QWidget *box : std::initializer_list<QWidget *>{txtstran1, TXTDIPL1, txtpol1})
        box->setVisible(shown);
    for (QWidget *display : std::initializer_list<QWidget *>{TXTDIPTEXT, m_region, TXTPREF})
        display->setVisible(!shown);
}

bool CataloguePanel::entryShown() const
{
    return !txtpol1->isHidden();
}

bool CataloguePanel::entryTyped() const
{
    return entryShown() && (!TXTDIPL1->text().isEmpty() || !txtpol1->document()->isEmpty());
}

NewAward CataloguePanel::entry() const
{
    return {txtstran1->text(), TXTDIPL1->text(), txtpol1->toPlainText()};
}

bool CataloguePanel::isEntry(const QObject *box) const
{
    return box == txtstran1 || box == TXTDIPL1 || box == txtpol1;
}

void CataloguePanel::clearEntry()
{
    txtstran1->clear();
    TXTDIPL1->clear();
    txtpol1->clear();
}

void CataloguePanel::emptyRules()
{
    QTextCursor all(txtpol1->document());
    all.select(QTextCursor::Document);
    all.removeSelectedText();
}

void CataloguePanel::showRegions(bool shown)
{
    DBListRegion->setVisible(shown);
    Label1->setText(shown ? QString::fromUtf16(kRussia) : QStringLiteral("Страна"));
}

// ---- picking contacts

PickPanel::PickPanel(Sources &sources, const ui::DbGrid::Run &asked, QWidget *parent)
    : QGroupBox(QStringLiteral("Связи"), parent)
{
    cmbdxcc = makeButton(this, "cmbdxcc", QStringLiteral("DXCC"), QStringLiteral("Нажми меня"));
    DBListPref = makeList(this, sources.Prefixes, "pref", "DBListPref", QStringLiteral("Префиксы стран"), 5);
    DBListRus = makeList(this, sources.RusPrefixes, "PREF", "DBListRus",
                         QStringLiteral("Префиксы областей России"), 5);
    DBListCall =
        makeList(this, sources.Calls, "ccall", "DBListCall", QStringLiteral("Сработанные позывные"), 11);
    txtstrana = makeDisplay(this, "txtstrana", QStringLiteral("Страна префикса"), 14);
    txtgorod = makeDisplay(this, "txtgorod", QStringLiteral("Область"), 14);
    txtpref = makeDisplay(this, "txtpref", QStringLiteral("Префикс области"), 3);
    txtprf = makeDisplay(this, "txtprf", QStringLiteral("Код области"), 3);
    txtccall = makeDisplay(this, "txtccall", QStringLiteral("Позывной в адресной книге"), 10);
    txtnname = makeDisplay(this, "txtnname", QStringLiteral("Имя из адресной книги"), 10);
    txtqth = makeDisplay(this, "txtqth", QStringLiteral("Город из адресной книги"), 13);
    Check1 = new QCheckBox(QStringLiteral("Страны"), this);
    Check1->setObjectName(QStringLiteral("Check1"));
    Check1->setToolTip(QStringLiteral("Переносить в бланк и страну связи"));
    const QList<ui::GridColumn> columns = {{QStringLiteral("ccall"), QStringLiteral("Call"), 11},
                                           {QStringLiteral("ddate"), QStringLiteral("Date"), 9},
                                           {QStringLiteral("ttime"), QStringLiteral("time"), 6},
                                           {QStringLiteral("bband"), QStringLiteral("Band"), 5},
                                           {QStringLiteral("rsts"), QStringLiteral("rsts"), 5},
                                           {QStringLiteral("rstr"), QStringLiteral("rstr"), 7},
                                           {QStringLiteral("ps1"), QStringLiteral("Вид"), 5},
                                           {QStringLiteral("QSLP"), QStringLiteral("QSL пол."), 9},
                                           {QStringLiteral("CONTR"), QStringLiteral("Country"), 13}};
    DBGrid1 = new ui::DbGrid(sources.Station, columns, asked, this);
    DBGrid1->setObjectName(QStringLiteral("DBGrid1"));
    DBGrid1->setAccessibleName(QStringLiteral("Связи со станцией. Enter переносит связь в бланк"));
    DBGrid1->setToolTip(QStringLiteral("dubleClik - выбранная запись переносится в бланк"));
    DBGrid1->setEditTriggers(QAbstractItemView::EditKeyPressed); // F2: a stray letter must not change the log
    makeLayout();
    DBListRus->hide();
    txtgorod->hide();
    txtqth->hide();
}

void PickPanel::makeLayout()
{
    auto *place = new QGridLayout; // country and region of the prefix
    place->setSpacing(4);
    ui::keepPlace(txtgorod);
    ui::keepPlace(txtqth);
    place->addWidget(makeLabel(this, QStringLiteral("Страна"), txtstrana), 0, 0);
    place->addWidget(txtstrana, 0, 1);
    place->addWidget(makeLabel(this, QStringLiteral("Область"), txtpref), 0, 2);
    place->addWidget(txtpref, 0, 3);
    place->addWidget(txtprf, 0, 4);
    place->addWidget(txtgorod, 0, 5);
    for (ui::FilterEdit *code : {txtpref, txtprf})
        code->setFixedWidth(ui::editWidth(code, 5));
    place->setColumnStretch(1, 3);
    place->setColumnStretch(5, 3);
    auto *book = new QHBoxLayout;
    book->addWidget(makeLabel(this, QStringLiteral("Callbuk"), txtccall));
    book->addWidget(txtccall, 2);
    book->addWidget(txtnname, 2);
    book->addWidget(txtqth, 3);
    book->addWidget(Check1);
    auto *station = new QVBoxLayout;
    station->addLayout(place);
    station->addWidget(DBGrid1, 1);
    station->addLayout(book);
    auto *lists = new QGridLayout;
    lists->setSpacing(4);
    for (ui::DbList *list : {DBListPref, DBListRus})
        list->setFixedWidth(ui::editWidth(list, 6));
    lists->addWidget(cmbdxcc, 0, 0);
    lists->addWidget(makeLabel(this, QStringLiteral("Позывные"), DBListCall), 0, 1);
    lists->addWidget(DBListPref, 1, 0);
    lists->addWidget(DBListRus, 1, 0);
    lists->addWidget(DBListCall, 1, 1);
    cmbdxcc->setFixedWidth(DBListPref->maximumWidth());
    DBListCall->setFixedWidth(ui::editWidth(DBListCall, 12));
    auto *row = new QHBoxLayout(this);
    ui::compact(row);
    row->addLayout(lists);
    row->addLayout(station, 1);
}

void PickPanel::showCountry(const QString &country)
{
    txtstrana->showText(country);
    txtgorod->showText(country);
    txtpref->showText({});
    txtprf->showText({});
}

void PickPanel::showRegion(store::DataSource &region)
{
    txtstrana->showText({});
    txtgorod->showText(region.field(QStringLiteral("GOROD")));
    txtpref->showText(region.field(QStringLiteral("PREF")));
    txtprf->showText(region.field(QStringLiteral("PRF")));
}

void PickPanel::showCallbook(store::DataSource &station)
{
    txtccall->showText(station.field(QStringLiteral("ccall")));
    txtnname->showText(station.field(QStringLiteral("nname")));
    txtqth->showText(station.field(QStringLiteral("qth")));
}

void PickPanel::clearCallbook()
{
    for (ui::FilterEdit *box : {txtccall, txtnname, txtqth})
        box->showText({});
}

// ---- the selection frame

SelectionFrame::SelectionFrame(QWidget *parent) : QGroupBox(QStringLiteral("Выбор условий"), parent)
{
    setObjectName(QStringLiteral("frWyb"));
    const std::array<QString, 2> captions = {QStringLiteral("Позывным"), QStringLiteral("DXCC")};
    for (std::size_t i = 0; i < opWyb.size(); ++i) {
        opWyb.at(i) = new QRadioButton(captions.at(i), this);
        opWyb.at(i)->setObjectName(QStringLiteral("opWyb_%1").arg(i));
    }
    opWyb[0]->setToolTip(QStringLiteral("В списке позывные"));
    opWyb[1]->setToolTip(QStringLiteral("В списке префиксы стран; щелчок в списке префиксов добавляет его"));
    opWyb[0]->setChecked(true);
    chekQsl = new QCheckBox(QStringLiteral("Нет"), this);
    chekQsl->setObjectName(QStringLiteral("chekQsl"));
    chekQsl->setToolTip(QStringLiteral("Только связи с полученной карточкой QSL"));
    chekQsl->setAccessibleName(chekQsl->toolTip());
    connect(chekQsl, &QCheckBox::toggled, chekQsl,
            [this](bool set) { chekQsl->setText(set ? QStringLiteral("Да") : QStringLiteral("Нет")); });
    txtWybor =
        makeEdit(this, "txtWybor", QStringLiteral("Позывной или префикс; Enter добавляет его в список"), 9);
    ui::upperCased(txtWybor);
    ListWybor = new QListWidget(this);
    ListWybor->setObjectName(QStringLiteral("ListWybor"));
    ListWybor->setToolTip(QStringLiteral("Список выбора. Del убирает запись"));
    ListWybor->setAccessibleName(QStringLiteral("Список выбора"));
    ListWybor->installEventFilter(this);
    cmbListclear =
        makeButton(this, "cmbListclear", QStringLiteral("Очистить"), QStringLiteral("Очистить список"));
    cmbWybor = makeButton(this, "cmbWybor", QStringLiteral("Выбрать"),
                          QStringLiteral("В бланк: первая связь для каждой записи списка"));
    cmbWybor->installEventFilter(this);
    auto *grid = new QGridLayout(this);
    ui::compact(grid);
    grid->addWidget(makeLabel(this, QStringLiteral("Выбор по -")), 0, 0);
    grid->addWidget(opWyb[0], 1, 0);
    grid->addWidget(opWyb[1], 2, 0);
    auto *card = new QHBoxLayout;
    card->addWidget(makeLabel(this, QStringLiteral("QSL"), chekQsl));
    card->addWidget(chekQsl, 1);
    grid->addLayout(card, 3, 0);
    grid->addWidget(cmbListclear, 5, 0);
    grid->addWidget(cmbWybor, 6, 0);
    grid->addWidget(txtWybor, 0, 1);
    grid->addWidget(ListWybor, 1, 1, 6, 1);
    grid->setRowStretch(4, 1);
    ListWybor->setMinimumWidth(ui::editWidth(ListWybor, 9));
    ListWybor->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
}

QStringList SelectionFrame::entries() const
{
    QStringList all;
    for (int row = 0; row < ListWybor->count(); ++row)
        all.append(ListWybor->item(row)->text());
    return all;
}

EntryKind SelectionFrame::kind() const
{
    return opWyb[1]->isChecked() ? EntryKind::Prefix : EntryKind::Call;
}

void SelectionFrame::append(const QString &entry)
{
    ListWybor->addItem(entry);
    ListWybor->scrollToBottom();
}

void SelectionFrame::markEntry(int index)
{
    ListWybor->setCurrentRow(index);
}

bool SelectionFrame::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == cmbWybor && event->type() == QEvent::MouseButtonDblClick)
        return true; // the second click of a double one must not fill the blank once more
    if (watched == ListWybor && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Delete) {
        delete ListWybor->takeItem(ListWybor->currentRow());
        return true;
    }
    return QGroupBox::eventFilter(watched, event);
}

} // namespace awards
