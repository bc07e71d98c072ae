#include "reference/ui/countrypanels.h"

#include "reference/keyfilters.h"
#include "ui/widgets.h"

#include <QGridLayout>
#include <QKeyEvent>

#include <utility>

namespace reference {

namespace {

constexpr qsizetype kCodeLength = 5;
constexpr qsizetype kNameTyped = 15; // one more than is stored
constexpr qsizetype kContinentLength = 3;

ui::FilterEdit *makeCode(QWidget *parent, const char *name, const char16_t *tip, qsizetype most)
{
    ui::FilterEdit *edit = ui::makeEdit(parent, name, QString::fromUtf16(tip), int(most));
    edit->setFilter(
        [most](QChar typed, qsizetype length, const QKeyEvent *) { return codeKey(typed, length, most); });
    return edit;
}

ui::FilterEdit *makeZone(QWidget *parent, const char *name, const char16_t *tip)
{
    constexpr int kCharacters = 3;
    ui::FilterEdit *edit = ui::makeEdit(parent, name, QString::fromUtf16(tip), kCharacters);
    edit->setFilter([](QChar typed, qsizetype, const QKeyEvent *) { return zoneKey(typed); });
    return edit;
}

} // namespace

CountryEntryFrame::CountryEntryFrame(QWidget *parent)
    : QGroupBox(QStringLiteral("Дополнение базы DXCC"), parent)
{
    setObjectName(QStringLiteral("FrDobaw"));
    txtprf1 =
        makeCode(this, "txtprf1", u"Начало позывного, по которому узнаётся страна: латинские буквы и цифры",
                 kCodeLength);
    txtstrana = makeCode(this, "txtstrana", u"Название страны латинскими буквами без пробелов, до 14 знаков",
                         kNameTyped);
    txtkont = makeCode(this, "txtkont", u"Континент: EU, AS, AF, NA, SA, OC, AN", kContinentLength);
    txtiaru = makeZone(this, "txtiaru", u"Зона ITU");
    txtcq = makeZone(this, "txtcq", u"Зона CQ");
    txtPREF =
        makeCode(this, "txtPREF", u"Основной префикс страны, под которым она стоит в списках", kCodeLength);
    cmbadd = ui::makeButton(this, "cmbadd", QStringLiteral("Добавить"),
                            QStringLiteral("Добавить строку в таблицу стран"));
    auto *grid = new QGridLayout(this);
    ui::compact(grid);
    int column = 0;
    for (const auto &[caption, edit] :
         {std::pair{u"Pref", txtprf1}, std::pair{u"Страна", txtstrana}, std::pair{u"Конт", txtkont},
          std::pair{u"ITU", txtiaru}, std::pair{u"Зона", txtcq}, std::pair{u"Префикс", txtPREF}}) {
        grid->addWidget(ui::makeLabel(this, QString::fromUtf16(caption), edit), 0, column);
        grid->addWidget(edit, 1, column);
        ++column;
    }
    grid->addWidget(cmbadd, 1, column);
    grid->setColumnStretch(1, 1);
    connectEnter();
}

void CountryEntryFrame::connectEnter()
{
    const QList<QWidget *> order = {txtprf1, txtstrana, txtkont, txtiaru, txtcq, txtPREF, cmbadd};
    for (qsizetype i = 1; i < order.size(); ++i) {
        setTabOrder(order[i - 1], order[i]);
        auto *from = qobject_cast<ui::FilterEdit *>(order[i - 1]);
        QWidget *next = order[i];
        connect(from, &ui::FilterEdit::enterPressed, next, [from, next] {
            if (!from->text().isEmpty()) // Enter does not leave an empty box; Tab does
                next->setFocus(Qt::ShortcutFocusReason);
        });
    }
}

CountryEntry CountryEntryFrame::entry() const
{
    return {txtprf1->text(), txtstrana->text(), txtkont->text(),
            txtiaru->text(), txtcq->text(),     txtPREF->text()};
}

void CountryEntryFrame::clear()
{
    for (ui::FilterEdit *box : {txtprf1, txtstrana, txtkont, txtiaru, txtcq, txtPREF})
        box->clear();
}

} // namespace reference
