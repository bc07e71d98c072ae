#include "reference/ui/callbookpanels.h"

#include "reference/keyfilters.h"
#include "reference/ui/fullbox.h"
#include "ui/widgets.h"

#include <QGridLayout>
#include <QKeyEvent>

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

namespace reference {

namespace {

constexpr qsizetype kRouteLength = 14;

struct Box {
    const char *name;
    const char *field;
    const char16_t *caption;
    const char16_t *tip;
    qsizetype most;
    Capitals capitals;
    int row, column, span;
};
constexpr int kWhole = 3;
constexpr std::array<Box, 10> kBoxes = {{
    {"txtccall", "ccall", u"Call", u"Позывной", kNoLimit, Capitals::AsTyped, 0, 0, 1},
    {"txtfam", "fam", u"Фамилия", u"Фамилия", kNoLimit, Capitals::AsTyped, 0, 2, 1},
    {"txtnname", "nname", u"Имя", u"Имя, до 14 знаков", 14, Capitals::First, 1, 0, 1},
    {"txtotch", "otch", u"Отчество", u"Отчество", kNoLimit, Capitals::AsTyped, 1, 2, 1},
    {"txtindeks", "indeks", u"Индекс", u"Почтовый индекс", kNoLimit, Capitals::AsTyped, 2, 0, 1},
    {"txtobl", "obl", u"Область", u"Область", kNoLimit, Capitals::AsTyped, 2, 2, 1},
    {"txtqth", "qth", u"Город", u"Город, до 25 знаков", 25, Capitals::First, 3, 0, kWhole},
    {"txtadres", "adres", u"Адресс", u"Улица, дом, квартира, до 50 знаков", 50, Capitals::AsTyped, 4, 0,
     kWhole},
    {"txttelefon", "telefon", u"Телефон", u"Телефон", kNoLimit, Capitals::AsTyped, 5, 0, 1},
    {"txtqslvia", "qslvia", u"QSL Via", u"Через кого посылать QSL, до 14 знаков", kRouteLength, Capitals::All,
     5, 2, 1},
}};

void setFilter(ui::FilterEdit *edit, qsizetype most, Capitals capitals)
{
    edit->setFilter([=](QChar typed, qsizetype length, const QKeyEvent *) {
        return callbookKey(typed, length, most, capitals);
    });
    if (most != kNoLimit)
        new FullBox(edit, most); // the edit owns it
}

} // namespace

// ---- the log's

LogFrame::LogFrame(QWidget *parent) : QGroupBox(QStringLiteral("LOG"), parent)
{
    setObjectName(QStringLiteral("FrLog"));
    constexpr int kNarrow = 12;
    constexpr int kWide = 20;
    txtlogcall = ui::makeDisplay(this, "txtlogcall", QStringLiteral("Позывной, который искали"), kNarrow);
    txtlogname =
        ui::makeEdit(this, "txtlogname", QStringLiteral("Имя по журналу. Здесь не сохраняется"), kWide);
    txtlogqth =
        ui::makeEdit(this, "txtlogqth", QStringLiteral("Город по журналу. Здесь не сохраняется"), kWide);
    txtlogqslvia = ui::makeEdit(this, "txtlogqslvia",
                                QStringLiteral("Путь QSL по журналу. Здесь не сохраняется"), kNarrow);
    setFilter(txtlogqslvia, kRouteLength, Capitals::All);
    auto *grid = new QGridLayout(this);
    ui::compact(grid);
    int place = 0;
    for (const auto &[caption, edit] : {std::pair{"Call", txtlogcall}, std::pair{"Name", txtlogname},
                                        std::pair{"QSL Via", txtlogqslvia}, std::pair{"QTH", txtlogqth}}) {
        grid->addWidget(ui::makeLabel(this, QLatin1String(caption), edit), place / 2, place % 2 * 2);
        grid->addWidget(edit, place / 2, place % 2 * 2 + 1);
        ++place;
    }
    grid->setColumnStretch(1, 2);
    grid->setColumnStretch(3, 3);
}

void LogFrame::show(const StationInLog &known)
{
    txtlogcall->showText(known.call);
    txtlogname->showText(known.name);
    txtlogqth->showText(known.qth);
    txtlogqslvia->showText(known.qslvia);
}

StationInLog LogFrame::known() const
{
    return {txtlogcall->text(), txtlogname->text(), txtlogqth->text(), txtlogqslvia->text()};
}

// ---- the callbook's

RecordFrame::RecordFrame(store::DataSource &record, ui::StatusLine &status, QWidget *parent)
    : QGroupBox(QStringLiteral("База"), parent)
{
    setObjectName(QStringLiteral("FrBaza"));
    auto *grid = new QGridLayout(this);
    ui::compact(grid);
    constexpr int kCharacters = 16;
    for (const Box &box : kBoxes) {
        ui::FilterEdit *edit = ui::makeEdit(this, box.name, QString::fromUtf16(box.tip), kCharacters);
        setFilter(edit, box.most, box.capitals);
        new ui::BoundField( // the edit owns it
            edit, record, QLatin1String(box.field),
            [&status](const std::function<void()> &operation) { status.typed(operation); },
            [&status](const std::function<void()> &operation) { status.quietly(operation); });
        connect(edit, &ui::FilterEdit::keyPressing, this, [this, edit](const QKeyEvent *event) {
            if (edit->isReadOnly() && !event->text().isEmpty() && event->text().front().isPrint())
                Q_EMIT refused();
        });
        grid->addWidget(ui::makeLabel(this, QString::fromUtf16(box.caption), edit), box.row, box.column);
        grid->addWidget(edit, box.row, box.column + 1, 1, box.span);
        m_boxes.append(edit);
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
}

bool RecordFrame::isEmpty() const
{
    return std::all_of(m_boxes.cbegin(), m_boxes.cend(),
                       [](const ui::FilterEdit *box) { return box->text().isEmpty(); });
}

void RecordFrame::lock(bool locked)
{
    for (ui::FilterEdit *box : std::as_const(m_boxes))
        box->setReadOnly(locked);
}

} // namespace reference
