#include "logentry/ui/entrypanels.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QVBoxLayout>

#include <utility>

namespace logentry {

using ui::makeButton;
using ui::makeDisplay;
using ui::makeEdit;
using ui::makeLabel;

namespace {

QVBoxLayout *captioned(QWidget *parent, const QString &caption, QWidget *field)
{
    auto *column = new QVBoxLayout;
    column->setSpacing(1);
    column->addWidget(makeLabel(parent, caption, field));
    column->addWidget(field);
    return column;
}

QLabel *hint(QWidget *parent, const char *name, const QString &text)
{
    QLabel *label = makeLabel(parent, text);
    label->setObjectName(QLatin1String(name));
    QSizePolicy keep = label->sizePolicy();
    keep.setRetainSizeWhenHidden(true); // the window must not jump while a callsign is typed
    label->setSizePolicy(keep);
    return label;
}

constexpr int kGap = 12; ///< between groups of buttons, in pixels

struct Form {
    interchange::AdifForm form;
    const char16_t *caption;
};
constexpr std::array<Form, 4> kForms = {{
    {interchange::AdifForm::Ascii, u"ADIF 3.1 .adi, латинские буквы"},
    {interchange::AdifForm::Utf8, u"ADIF 3.1 .adi, UTF-8"},
    {interchange::AdifForm::Windows1251, u"ADIF 3.1 .adi, Windows-1251"},
    {interchange::AdifForm::Xml, u"ADIF 3.1 .adx"},
}};

} // namespace

EntryPanel::EntryPanel(QWidget *parent) : QGroupBox(QStringLiteral("Связь"), parent)
{
    txtcall = makeEdit(this, "txtcall", QStringLiteral("Позывной корреспондента"), 14);
    ui::enlarge(txtcall, 2.5, true);
    txtcall->setMinimumWidth(ui::editWidth(txtcall, 9)); // thirteen of most letters
    txtrstr = makeEdit(this, "txtrstr", QStringLiteral("Принятый рапорт"), 6);
    txtrsts = makeEdit(this, "txtrsts", QStringLiteral("Переданный рапорт"), 6);
    for (ui::FilterEdit *report : {txtrstr, txtrsts}) {
        ui::enlarge(report, 1.5, false);
        report->setMaximumWidth(ui::editWidth(report, 4));
    }
    txtqth = makeEdit(this, "txtqth", QStringLiteral("Город корреспондента (QTH)"), 13);
    txtname = makeEdit(this, "txtname", QStringLiteral("Имя оператора"), 13);
    txtqth->setToolTip(txtqth->toolTip() + QStringLiteral(". Двойной щелчок или Ctrl+F5 запоминает город"));
    txtname->setToolTip(txtname->toolTip() + QStringLiteral(". Двойной щелчок или Ctrl+F6 запоминает имя"));
    txtqslvia = makeEdit(this, "txtqslvia", QStringLiteral("QSL via: через кого слать карточку"), 13);
    cmbadd = makeButton(this, "cmbadd", QStringLiteral("Ввод"), QStringLiteral("Записать связь в журнал"));
    cmbruskey = makeButton(this, "cmbruskey", QStringLiteral("Рус/Lat"),
                           QStringLiteral("Сменить раскладку клавиатуры"));
    cmbruskey->setFocusPolicy(Qt::TabFocus); // a click must not take the focus from the field being typed in
    lblwwod = hint(this, "lblwwod", QStringLiteral("F4 - Ввод QSO "));
    lblqth = hint(this, "lblqth", QStringLiteral("F5 - Ввод QTH"));
    lblname = hint(this, "lblname", QStringLiteral("F6 - Ввод Name"));
    lblqth->hide();
    lblname->hide();

    auto *top = new QGridLayout;
    top->setVerticalSpacing(1);
    const auto place = [&](int column, const QString &caption, QWidget *field) {
        top->addWidget(makeLabel(this, caption, field), 0, column);
        top->addWidget(field, 1, column);
        field->setMinimumHeight(txtcall->sizeHint().height());
    };
    place(0, QStringLiteral("Позывной"), txtcall);
    place(1, QStringLiteral("RST прин."), txtrstr);
    place(2, QStringLiteral("RST перед."), txtrsts);
    auto *buttons = new QVBoxLayout;
    buttons->addWidget(cmbruskey);
    buttons->addWidget(cmbadd);
    top->addLayout(buttons, 0, 3, 2, 1);
    top->setColumnStretch(0, 1);
    auto *bottom = new QHBoxLayout;
    bottom->addLayout(captioned(this, QStringLiteral("QTH"), txtqth), 1);
    bottom->addLayout(captioned(this, QStringLiteral("Имя"), txtname), 1);
    bottom->addLayout(captioned(this, QStringLiteral("QSL via"), txtqslvia), 1);
    auto *hints = new QHBoxLayout;
    hints->addWidget(lblqth, 1);
    hints->addWidget(lblname, 1);
    hints->addWidget(lblwwod, 1);
    auto *column = new QVBoxLayout(this);
    column->setSpacing(7);
    column->addLayout(top);
    column->addLayout(bottom);
    column->addLayout(hints);
    column->addStretch();
}

ClockPanel::ClockPanel(QWidget *parent) : QGroupBox(QStringLiteral("Дата и время"), parent)
{
    txtdate = makeEdit(this, "txtdate", QStringLiteral("Дата связи, дд.мм.гг"), 8);
    txttime = makeEdit(this, "txttime", QStringLiteral("Время связи"), 8);
    for (ui::FilterEdit *edit : {txtdate, txttime}) {
        ui::enlarge(edit, 1.6, true);
        edit->setMinimumWidth(ui::editWidth(edit, 7));
    }
    Label10 = makeLabel(this, QStringLiteral("UTC"));
    Label10->setObjectName(QStringLiteral("Label10"));
    ui::enlarge(Label10, 1.2, true);
    Label10->setToolTip(QStringLiteral("Всемирное или местное время: щёлкните или нажмите пробел"));
    Label10->setAccessibleName(QStringLiteral("База времени"));
    Label10->setFocusPolicy(Qt::TabFocus);
    Label10->setCursor(Qt::PointingHandCursor);
    Label10->setMinimumWidth(Label10->fontMetrics().horizontalAdvance(QStringLiteral("Местное")) + 6);
    Label10->installEventFilter(this);

    auto *row = new QHBoxLayout(this);
    row->addWidget(txtdate, 1);
    row->addWidget(txttime, 1);
    row->addWidget(Label10);
}

bool ClockPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == Label10) {
        const bool clicked = event->type() == QEvent::MouseButtonRelease &&
                             static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton;
        const bool pressed =
            event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Space;
        if (clicked || pressed) {
            Q_EMIT timeBaseClicked();
            return true;
        }
    }
    return QGroupBox::eventFilter(watched, event);
}

StationPanel::StationPanel(QWidget *parent) : QGroupBox(QStringLiteral("Корреспондент"), parent)
{
    txtcontr = makeEdit(this, "txtcontr", QStringLiteral("Страна (DXCC)"), 11);
    ui::enlarge(txtcontr, 1.5, true);
    txtQSO = makeDisplay(this, "txtQSO", QStringLiteral("Позывных этой страны в журнале"), 6);
    TXTQSL = makeDisplay(this, "TXTQSL", QStringLiteral("Позывных этой страны, приславших QSL"), 6);
    txtdist = makeDisplay(this, "txtdist", QStringLiteral("Расстояние, км"), 6);
    txtaz = makeDisplay(this, "txtaz", QStringLiteral("Азимут, градусы"), 4);
    auto *grid = new QGridLayout(this);
    grid->addWidget(makeLabel(this, QStringLiteral("Страна"), txtcontr), 0, 0);
    grid->addWidget(txtcontr, 0, 1, 1, 3);
    grid->addWidget(makeLabel(this, QStringLiteral("Дист."), txtdist), 1, 0);
    grid->addWidget(txtdist, 1, 1);
    grid->addWidget(makeLabel(this, QStringLiteral("Азимут"), txtaz), 1, 2);
    grid->addWidget(txtaz, 1, 3);
    grid->addWidget(makeLabel(this, QStringLiteral("QSO"), txtQSO), 2, 0);
    grid->addWidget(txtQSO, 2, 1);
    grid->addWidget(makeLabel(this, QStringLiteral("QSL"), TXTQSL), 2, 2);
    grid->addWidget(TXTQSL, 2, 3);
}

OwnStationPanel::OwnStationPanel(QWidget *parent) : QGroupBox(QStringLiteral("Моя станция"), parent)
{
    txtNcall = makeEdit(this, "txtNcall", QStringLiteral("Свой позывной"), 12);
    txtNcall->setPlaceholderText(QStringLiteral("Введите свой позывной (не менее 5 знаков)"));
    txtGradN = makeEdit(this, "txtGradN", QStringLiteral("Своя широта, градусы (северная)"), 2);
    txtMinN = makeEdit(this, "txtMinN", QStringLiteral("Своя широта, минуты"), 2);
    txtGradE = makeEdit(this, "txtGradE", QStringLiteral("Своя долгота, градусы (восточная)"), 2);
    txtMinE = makeEdit(this, "txtMinE", QStringLiteral("Своя долгота, минуты"), 2);
    constexpr int kLongestNumber = 20; // no number that the program shows is longer
    for (ui::FilterEdit *number : {txtGradN, txtMinN, txtGradE, txtMinE})
        number->setMaxLength(kLongestNumber);
    auto *row = new QHBoxLayout;
    row->addWidget(makeLabel(this, QStringLiteral("N"), txtGradN));
    row->addWidget(txtGradN);
    row->addWidget(makeLabel(this, QStringLiteral("°")));
    row->addWidget(txtMinN);
    row->addWidget(makeLabel(this, QStringLiteral("′   E"), txtGradE));
    row->addWidget(txtGradE);
    row->addWidget(makeLabel(this, QStringLiteral("°")));
    row->addWidget(txtMinE);
    row->addWidget(makeLabel(this, QStringLiteral("′")));
    auto *column = new QVBoxLayout(this);
    column->addWidget(txtNcall);
    column->addLayout(row);
}

TownPanel::TownPanel(store::DataSource &towns, store::DataSource &names, QWidget *parent)
    : QGroupBox(QStringLiteral("Города и имена"), parent)
{
    setObjectName(QStringLiteral("FrGorod"));
    DBList2 = new ui::DbList(towns, QStringLiteral("gorod"), this);
    DBList2->setObjectName(QStringLiteral("DBList2"));
    DBList2->setToolTip(QStringLiteral("Города области"));
    DBList2->setAccessibleName(QStringLiteral("Города области"));
    DBList3 = new ui::DbList(names, QStringLiteral("nname"), this);
    DBList3->setObjectName(QStringLiteral("DBList3"));
    DBList3->setToolTip(QStringLiteral("Имена"));
    DBList3->setAccessibleName(QStringLiteral("Имена"));
    auto *row = new QHBoxLayout(this);
    row->addWidget(DBList2, 3);
    row->addWidget(DBList3, 2);
}

CallbookPanel::CallbookPanel(QWidget *parent) : QGroupBox(QStringLiteral("Callbook"), parent)
{
    setObjectName(QStringLiteral("frmbuk"));
    struct Place {
        const char *field;
        QString caption;
        int row, column, span;
    };
    constexpr int kWhole = 3;
    const std::array<Place, 10> places = {{
        {"ccall", QStringLiteral("Позывной"), 0, 0, 1},
        {"indeks", QStringLiteral("Индекс"), 0, 2, 1},
        {"fam", QStringLiteral("Фамилия"), 1, 0, kWhole},
        {"nname", QStringLiteral("Имя"), 2, 0, kWhole},
        {"otch", QStringLiteral("Отчество"), 3, 0, kWhole},
        {"qth", QStringLiteral("Город"), 4, 0, kWhole},
        {"adres", QStringLiteral("Адрес"), 5, 0, kWhole},
        {"obl", QStringLiteral("Область"), 6, 0, kWhole},
        {"telefon", QStringLiteral("Телефон"), 7, 0, kWhole},
        {"qslvia", QStringLiteral("QSL via"), 8, 0, kWhole},
    }};
    auto *grid = new QGridLayout(this);
    grid->setVerticalSpacing(1);
    grid->setHorizontalSpacing(4);
    for (const Place &place : places) {
        ui::FilterEdit *edit =
            makeDisplay(this, (QByteArray("buk_") + place.field).constData(), place.caption, 5);
        m_boxes.append({QLatin1String(place.field), edit});
        grid->addWidget(makeLabel(this, place.caption, edit), place.row, place.column);
        grid->addWidget(edit, place.row, place.column + 1, 1, place.span);
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
}

void CallbookPanel::showEntry(store::DataSource &callbook)
{
    for (const Box &box : std::as_const(m_boxes)) {
        box.edit->showText(callbook.field(box.field));
        box.edit->setCursorPosition(0);
        box.edit->setToolTip(box.edit->accessibleName() + QStringLiteral(": ") + box.edit->text());
    }
}

PeriodPanel::PeriodPanel(QWidget *parent) : QGroupBox(QStringLiteral("Вывод QSO за период"), parent)
{
    setObjectName(QStringLiteral("Frexpo"));
    txtdatmin = makeEdit(this, "txtdatmin", QStringLiteral("Первый день периода"), 8);
    txtdatmax = makeEdit(this, "txtdatmax", QStringLiteral("Последний день периода"), 8);
    cmbpecat = makeButton(this, "cmbpecat", QStringLiteral("Печать"),
                          QStringLiteral("Показать журнал за период для печати или сохранения в PDF"));
    cmbwtabl = makeButton(this, "cmbwtabl", QStringLiteral("в Таблицу"),
                          QStringLiteral("Показать связи за период в таблице связей"));
    txtput = makeEdit(this, "txtput", QStringLiteral("Где будет ADIF файл"), 24);
    cmbput = makeButton(this, "cmbput", QStringLiteral("Выбрать путь"), QStringLiteral("Выбрать файл ADIF"));
    cbmotchet =
        makeButton(this, "cbmotchet", QStringLiteral("ADIF"),
                   QStringLiteral("Записать период в файл ADIF частями по 500 связей: в файле остаётся "
                                  "последняя часть"));
    cmbwse = makeButton(this, "cmbwse", QStringLiteral("Весь период в один файл"),
                        QStringLiteral("Записать все связи периода в файл; журнал не меняется"));
    cmbzakr = makeButton(this, "cmbzakr", QStringLiteral("Закрыть"), QStringLiteral("Закрыть панель"));
    cmbformat = new QComboBox(this);
    cmbformat->setObjectName(QStringLiteral("cmbformat"));
    cmbformat->setToolTip(QStringLiteral("Вид файла для «Весь период в один файл»"));
    cmbformat->setAccessibleName(cmbformat->toolTip());
    cmbformat->addItem(QStringLiteral("ADIF 1.0, как у кнопки ADIF"));
    for (const auto &[form, caption] : kForms)
        cmbformat->addItem(QString::fromUtf16(caption), static_cast<int>(form));
    lblitog = makeLabel(this, QString());
    lblitog->setObjectName(QStringLiteral("lblitog"));
    lblitog->setAccessibleName(QStringLiteral("Итог"));
    lblitog->setWordWrap(true);
    auto *period = new QHBoxLayout;
    for (const auto &[caption, day] :
         {std::pair{QStringLiteral("с"), txtdatmin}, std::pair{QStringLiteral("по"), txtdatmax}}) {
        period->addWidget(makeLabel(this, caption, day));
        period->addWidget(day);
    }
    period->addSpacing(kGap);
    period->addWidget(cmbpecat);
    period->addWidget(cmbwtabl);
    period->addStretch(1);
    auto *file = new QHBoxLayout;
    file->addWidget(makeLabel(this, QStringLiteral("  Где будет ADIF файл"), txtput));
    file->addWidget(txtput, 1);
    file->addWidget(cmbput);
    auto *exports = new QHBoxLayout;
    exports->addWidget(cbmotchet);
    exports->addSpacing(kGap);
    exports->addWidget(cmbwse);
    exports->addWidget(cmbformat);
    exports->addStretch();
    exports->addWidget(cmbzakr);
    auto *column = new QVBoxLayout(this);
    column->setSpacing(4);
    column->addLayout(period);
    column->addLayout(file);
    column->addLayout(exports);
    column->addWidget(lblitog);
    lblitog->hide(); // takes no room until there is something to say
}

std::optional<interchange::AdifForm> PeriodPanel::form() const
{
    const QVariant chosen = cmbformat->currentData();
    return chosen.isValid() ? std::optional(static_cast<interchange::AdifForm>(chosen.toInt()))
                            : std::nullopt;
}

void PeriodPanel::showResult(const QString &text)
{
    lblitog->setText(text);
    lblitog->setVisible(!text.isEmpty());
}

} // namespace logentry
