#include "qsl/ui/bureaupanels.h"

#include "ui/widgets.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace qsl {

using ui::compact;
using ui::keepPlace;
using ui::makeButton;
using ui::makeDisplay;
using ui::makeEdit;
using ui::makeLabel;
using ui::upperCased;

namespace {

constexpr int kCountCharacters = 5;

void bound(ui::FilterEdit *edit, store::DataSource &source, const QString &field,
           const ui::BoundField::Run &run)
{
    new ui::BoundField(edit, source, field, run); // the edit owns it
}

ui::FilterEdit *makeCount(QWidget *parent, const QString &name, const QString &tip)
{
    ui::FilterEdit *box = makeDisplay(parent, name.toLatin1().constData(), tip, kCountCharacters);
    box->setAlignment(Qt::AlignRight);
    box->setMaximumHeight(box->fontMetrics().height() + 6);
    return box;
}

QString indexed(const char *name, int index)
{
    return QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(index);
}

struct Column {
    const char *field;
    const char16_t *heading;
    int width; ///< in characters
};

QList<ui::GridColumn> gridColumns(const Column *columns, qsizetype count)
{
    QList<ui::GridColumn> list;
    for (qsizetype i = 0; i < count; ++i)
        list.append(
            {QLatin1String(columns[i].field), QString::fromUtf16(columns[i].heading), columns[i].width});
    return list;
}

constexpr std::array<Column, 8> kBlankColumns = {{{"ccall", u"Call", 12},
                                                  {"ddate", u"Date", 9},
                                                  {"ttime", u"ttime", 6},
                                                  {"bband", u"bband", 5},
                                                  {"rsts", u"rsts", 5},
                                                  {"rstr", u"rstr", 5},
                                                  {"point", u"point", 6},
                                                  {"CONTR", u"QSL VIA", 14}}};

struct BlankField {
    const char *name;
    const char *field;
    const char16_t *caption;
    int width;
};
constexpr std::array<BlankField, 7> kBlankFields = {{{"TXTCALL", "ccall", u"Позывной", 11},
                                                     {"TXTDATE", "ddate", u"Дата", 8},
                                                     {"TXTTIME", "ttime", u"Время", 5},
                                                     {"TXTBAND", "bband", u"Диапазон", 4},
                                                     {"TXTRSTS", "rsts", u"RSTs", 4},
                                                     {"txtmod", "mult", u"Вид", 5},
                                                     {"TXTQSLVIA", "CONTR", u"QSL VIA", 11}}};

struct HandColumn {
    const char16_t *caption;
    const char16_t *tip;
    int width;
};
constexpr std::array<HandColumn, kHandFields> kHandColumns = {
    {{u"Call", u"Позывной", 11},
     {u"Date", u"Дата, дд.мм.гг", 8},
     {u"Time", u"Время, чч:мм", 5},
     {u"Band", u"Диапазон", 4},
     {u"RSTr", u"Принятый рапорт", 4},
     {u"Rsts", u"Переданный рапорт", 4},
     {u"QTH", u"Город", 10},
     {u"Name", u"Имя", 9},
     {u"QSL via", u"QSL via", 9},
     {u"QSL p", u"Отметка о полученной карточке", 6}}};

struct SenderField {
    const char *name;
    const char *field;
    const char16_t *caption;
    const char16_t *tip;
};
constexpr std::array<SenderField, 5> kSenderFields = {
    {{"txtcontest", "contest", u"Имя, звание", u"Не более 25 символов"},
     {"txtadresstrit", "adresstrit", u"Адрес", u"Не более 25 символов"},
     {"txtps1", "txtps1", u"Строка 1", u"Первая строка на карточке"},
     {"txtps2", "txtps2", u"Строка 2", u"Вторая строка на карточке"},
     {"txtps3", "txtps3", u"Строка 3", u"Третья строка на карточке"}}};

} // namespace

ListPanel::ListPanel(Sources &sources, const ui::BoundField::Run &run, QWidget *parent)
    : QGroupBox(QStringLiteral("Позывные"), parent)
{
    txtnewcall = makeEdit(this, "txtnewcall", QStringLiteral("Введите свой позывной"), 10);
    upperCased(txtnewcall);
    bound(txtnewcall, sources.Data13, QStringLiteral("ccall"), run);
    txtserch = makeEdit(this, "txtserch", QStringLiteral("Поиск позывного по его началу"), 10);
    ui::enlarge(txtserch, 1.4, true);
    DBList1 = new ui::DbList(sources.Data6, QStringLiteral("CCALL"), this);
    DBList1->setObjectName(QStringLiteral("DBList1"));
    DBList1->setToolTip(QStringLiteral("Позывные. Выбранный показывается в журнале справа"));
    DBList1->setAccessibleName(QStringLiteral("Позывные"));
    DBList2 = new ui::DbList(sources.Data7, QStringLiteral("pref"), this);
    DBList2->setObjectName(QStringLiteral("DBList2"));
    DBList2->setToolTip(QStringLiteral("Префиксы стран"));
    DBList2->setAccessibleName(DBList2->toolTip());
    DBList3 = new ui::DbList(sources.Data8, QStringLiteral("pref"), this);
    DBList3->setObjectName(QStringLiteral("DBList3"));
    DBList3->setToolTip(QStringLiteral("Префиксы областей России"));
    DBList3->setAccessibleName(DBList3->toolTip());
    keepPlace(DBList2); // both lists have the same place
    DBList2->hide();
    DBList3->hide();
    lblnazw = makeLabel(this, QStringLiteral("DXCC"));
    lblnazw->setObjectName(QStringLiteral("lblnazw"));
    Command3 = makeButton(this, "Command3", QStringLiteral("Полученные"),
                          QStringLiteral("Позывные, от которых получена карточка"));
    for (ui::DbList *list : {DBList1, DBList2, DBList3}) {
        constexpr int kLeastRows = 5;
        list->setMinimumHeight(kLeastRows * list->fontMetrics().lineSpacing());
    }
    DBList1->setMinimumWidth(ui::editWidth(DBList1, 11));
    for (ui::DbList *list : {DBList2, DBList3})
        list->setFixedWidth(ui::editWidth(list, 6));

    auto *grid = new QGridLayout(this);
    grid->addWidget(makeLabel(this, QStringLiteral("Свой"), txtnewcall), 0, 0);
    grid->addWidget(txtnewcall, 0, 1, 1, 2);
    grid->addWidget(makeLabel(this, QStringLiteral("Поиск"), txtserch), 1, 0);
    grid->addWidget(txtserch, 1, 1, 1, 2);
    grid->addWidget(lblnazw, 2, 2);
    grid->addWidget(DBList1, 3, 0, 1, 2);
    grid->addWidget(DBList2, 3, 2);
    grid->addWidget(DBList3, 3, 2);
    grid->addWidget(Command3, 4, 0, 1, 3);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(3, 1);
}

CountPanel::CountPanel(Sources &sources, const ui::BoundField::Run &run, QWidget *parent)
    : QGroupBox(QStringLiteral("Карточки"), parent)
{
    lbldxcc = new ui::ClickLabel(this, "lbldxcc", QStringLiteral("ALL"), QStringLiteral("Кликни меня"));
    ui::enlarge(lbldxcc, 1.4, true);
    lbldxcc->setMinimumWidth(lbldxcc->fontMetrics().horizontalAdvance(QStringLiteral("Россия")) + 8);
    txtstrana = new ui::ClickLabel(this, "txtstrana", {},
                                   QStringLiteral("Выбранная страна. Щелчок показывает связи с ней"));
    ui::enlarge(txtstrana, 1.2, true);
    LBLGOR = makeLabel(this, QString());
    LBLGOR->setObjectName(QStringLiteral("LBLGOR"));
    LBLGOR->setToolTip(QStringLiteral("Выбранная область"));
    ui::enlarge(LBLGOR, 1.2, true);
    for (QLabel *label : {static_cast<QLabel *>(txtstrana), LBLGOR}) {
        label->setFrameShape(QFrame::StyledPanel);
        label->setMinimumHeight(label->fontMetrics().height() + 8);
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    }
    LBLGOR->hide();
    txtstr = makeDisplay(this, "txtstr", QStringLiteral("Найденная страна"), 14);
    bound(txtstr, sources.Data2, QStringLiteral("strana"), run);
    txtstr->hide();
    txtas = makeLabel(this, QStringLiteral("Ждать !!!"));
    txtas->setObjectName(QStringLiteral("txtas"));
    ui::enlarge(txtas, 1.2, true);
    keepPlace(txtas);
    txtas->hide();
    cmbinfo = makeButton(this, "cmbinfo", QStringLiteral("Инфо"), QStringLiteral("информация о  стране"));
    Command1 =
        makeButton(this, "Command1", QStringLiteral("Итого"), QStringLiteral("Информация о странах DXCC"));

    auto *grid = new QGridLayout;
    grid->setVerticalSpacing(1);
    grid->addWidget(lbldxcc, 0, 0);
    const std::array<QString, 3> headings = {QStringLiteral("Отпр."), QStringLiteral("Пол."),
                                             QStringLiteral("QSO")};
    for (int column = 0; column < 3; ++column)
        grid->addWidget(makeLabel(this, headings[column]), 0, column + 1, Qt::AlignRight);
    for (int band = 0; band < kBands; ++band) {
        const QString text = QString::fromUtf16(kBandTexts[band]);
        lblband[band] = new ui::ClickLabel(this, indexed("lblband", band).toLatin1().constData(), text,
                                           QStringLiteral("Позывные на диапазоне %1").arg(text));
        lblband[band]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        txtotpr[band] =
            makeCount(this, indexed("txtotpr", band), QStringLiteral("Отправлено на %1").arg(text));
        TXTPOL[band] = makeCount(this, indexed("TXTPOL", band), QStringLiteral("Получено на %1").arg(text));
        txtQSO[band] = makeCount(this, indexed("txtQSO", band), QStringLiteral("Сработано на %1").arg(text));
        grid->addWidget(lblband[band], band + 1, 0);
        grid->addWidget(txtotpr[band], band + 1, 1);
        grid->addWidget(TXTPOL[band], band + 1, 2);
        grid->addWidget(txtQSO[band], band + 1, 3);
    }
    grid->addWidget(makeLabel(this, QStringLiteral("Итого")), kBands + 1, 0, Qt::AlignRight);
    const std::array<QString, 3> totalTips = {QStringLiteral("Стран, куда отправлены карточки"),
                                              QStringLiteral("Стран, откуда получены карточки"),
                                              QStringLiteral("Сработано стран")};
    for (int column = 0; column < 3; ++column) {
        txttot[column] = makeCount(this, indexed("txttot", column), totalTips[column]);
        grid->addWidget(txttot[column], kBands + 1, column + 1);
    }
    txttotqsl = makeCount(this, QStringLiteral("txttotqsl"),
                          QStringLiteral("Позывных, от которых получена карточка"));
    TQSO = makeCount(this, QStringLiteral("TQSO"), QStringLiteral("Связей в журнале"));
    TCAL = makeCount(this, QStringLiteral("TCAL"), QStringLiteral("Позывных в журнале"));
    auto *whole = new QGridLayout;
    whole->setVerticalSpacing(1);
    int column = 0;
    for (const auto &[caption, box] :
         {std::pair(QStringLiteral("QSL от"), txttotqsl), std::pair(QStringLiteral("Всего QSO"), TQSO),
          std::pair(QStringLiteral("Позывных"), TCAL)}) {
        whole->addWidget(makeLabel(this, caption, box), 0, column);
        whole->addWidget(box, 1, column++);
    }
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmbinfo);
    buttons->addWidget(Command1);
    buttons->addWidget(txtas, 1);
    auto *all = new QVBoxLayout(this);
    compact(all);
    all->addWidget(txtstrana); // the longest region takes the whole width
    all->addWidget(LBLGOR);
    all->addLayout(grid);
    all->addLayout(whole);
    all->addLayout(buttons);
    all->addStretch();
}

void CountPanel::show(const Counts &counts)
{
    for (int band = 0; band < kBands; ++band) {
        txtotpr[band]->showText(counts.sent[band]);
        TXTPOL[band]->showText(counts.received[band]);
        txtQSO[band]->showText(counts.worked[band]);
    }
    for (int column = 0; column < 3; ++column)
        txttot[column]->showText(counts.totals[column]);
    txttotqsl->showText(counts.confirmedCalls);
    TQSO->showText(counts.contacts);
    TCAL->showText(counts.calls);
}

void CountPanel::showBusy()
{
    txtas->show();
    txtas->repaint();
}

BlankPanel::BlankPanel(Sources &sources, const ui::DbGrid::Run &asked, const ui::BoundField::Run &run,
                       QWidget *parent)
    : QGroupBox(QStringLiteral("QSLбланк"), parent)
{
    DBGrid2 =
        new ui::DbGrid(sources.Data3, gridColumns(kBlankColumns.data(), kBlankColumns.size()), asked, this);
    DBGrid2->setObjectName(QStringLiteral("DBGrid2"));
    DBGrid2->setAccessibleName(QStringLiteral("QSLбланк"));
    DBGrid2->setToolTip(QStringLiteral("Связи для карточек. Del убирает строку из бланка"));
    CMBQSL = makeButton(this, "CMBQSL", QStringLiteral("Печать QSL"),
                        QStringLiteral("Карточки для связей бланка"));
    Command2 = makeButton(this, "Command2", QStringLiteral("Накл."),
                          QStringLiteral("Адресные наклейки для связей бланка"));
    cmbqslotpr =
        makeButton(this, "cmbqslotpr", QStringLiteral("Отметка "), QStringLiteral("Ометка об отправке QSL"));
    CMBDEL = makeButton(this, "CMBDEL", QStringLiteral("Очистить"), QStringLiteral("Очистить бланк QSL"));

    auto *row = new QGridLayout;
    row->setVerticalSpacing(1);
    int place = 0;
    for (const BlankField &field : kBlankFields) {
        const QString caption = QString::fromUtf16(field.caption);
        ui::FilterEdit *edit =
            makeEdit(this, field.name, QStringLiteral("Бланк: %1").arg(caption), field.width);
        upperCased(edit);
        bound(edit, sources.Data3, QLatin1String(field.field), run);
        fields.append(edit);
        row->addWidget(makeLabel(this, caption, edit), 0, place);
        row->addWidget(edit, 1, place);
        row->setColumnStretch(place++, field.width);
    }
    TXTBUKVIA = makeDisplay(this, "TXTBUKVIA", QStringLiteral("QSL via из адресной книги"), 9);
    bound(TXTBUKVIA, sources.Data11, QStringLiteral("qslvia"), run);
    row->addWidget(makeLabel(this, QStringLiteral("Callbuk via"), TXTBUKVIA), 0, place);
    row->addWidget(TXTBUKVIA, 1, place);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(CMBQSL);
    buttons->addWidget(Command2);
    buttons->addStretch();
    buttons->addWidget(cmbqslotpr);
    buttons->addWidget(CMBDEL);
    auto *column = new QVBoxLayout(this);
    compact(column);
    column->addWidget(DBGrid2, 1);
    column->addLayout(row);
    column->addLayout(buttons);
}

HandPanel::HandPanel(Sources &sources, const ui::BoundField::Run &run, QWidget *parent)
    : QGroupBox(QStringLiteral("Ввод связи вручную"), parent)
{
    auto *grid = new QGridLayout(this);
    compact(grid);
    grid->setVerticalSpacing(2);
    for (int i = 0; i < kHandFields; ++i) {
        const HandColumn &column = kHandColumns[i];
        const QString tip = QString::fromUtf16(column.tip);
        txtcall1[i] = makeEdit(this, indexed("txtcall1", i).toLatin1().constData(), tip, column.width);
        upperCased(txtcall1[i]);
        txtcall2[i] = makeDisplay(this, indexed("txtcall2", i).toLatin1().constData(),
                                  QStringLiteral("Запись журнала: %1").arg(tip), column.width);
        bound(txtcall2[i], sources.Data5, handField(i), run);
        grid->addWidget(makeLabel(this, QString::fromUtf16(column.caption), txtcall1[i]), 0, i + 1);
        grid->addWidget(txtcall1[i], 1, i + 1);
        grid->addWidget(txtcall2[i], 2, i + 1);
        grid->setColumnStretch(i + 1, column.width);
    }
    grid->addWidget(makeLabel(this, QStringLiteral("Новая")), 1, 0);
    grid->addWidget(makeLabel(this, QStringLiteral("В журнале")), 2, 0);
    cmbadd = makeButton(this, "cmbadd", QStringLiteral("Add New"),
                        QStringLiteral("Записать введённую связь в журнал"));
    txt1prf = makeDisplay(this, "txt1prf", QStringLiteral("Запись журнала: op"), 5);
    bound(txt1prf, sources.Data5, QStringLiteral("PRF"), run);
    txt1contr = makeDisplay(this, "txt1contr", QStringLiteral("Запись журнала: страна"), 9);
    bound(txt1contr, sources.Data5, QStringLiteral("CONTR"), run);
    grid->addWidget(cmbadd, 1, kHandFields + 1, 1, 2);
    grid->addWidget(txt1prf, 2, kHandFields + 1);
    grid->addWidget(txt1contr, 2, kHandFields + 2);
}

HandEntry HandPanel::entry() const
{
    HandEntry entry;
    for (int i = 0; i < kHandFields; ++i)
        entry[i] = txtcall1[i]->text();
    return entry;
}

void HandPanel::clear()
{
    for (ui::FilterEdit *edit : txtcall1)
        edit->clear();
}

SenderPanel::SenderPanel(Sources &sources, const ui::BoundField::Run &run, QWidget *parent)
    : QGroupBox(QStringLiteral("Отправитель на карточке"), parent)
{
    auto *grid = new QGridLayout(this);
    compact(grid);
    grid->setVerticalSpacing(2);
    int row = 0;
    for (const SenderField &field : kSenderFields) {
        const QString tip = QString::fromUtf16(field.tip);
        ui::FilterEdit *edit = makeEdit(this, field.name, tip, 14);
        bound(edit, sources.Data14, QLatin1String(field.field), run);
        fields.append(edit);
        grid->addWidget(makeLabel(this, QString::fromUtf16(field.caption), edit), row, 0);
        grid->addWidget(edit, row++, 1);
    }
    grid->setColumnStretch(1, 1);
}

} // namespace qsl
