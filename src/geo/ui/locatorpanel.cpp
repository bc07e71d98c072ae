#include "geo/ui/locatorpanel.h"

#include <QGridLayout>

namespace geo {

LocatorPanel::LocatorPanel(QWidget *parent) : QGroupBox(QStringLiteral("Локатор"), parent)
{
    setObjectName(QStringLiteral("FrLok"));
    constexpr int kLongestNumber = 20; // no number that the program shows is longer
    const auto number = [this](const char *name, const QString &tip) {
        ui::FilterEdit *edit = ui::makeEdit(this, name, tip, 3);
        edit->setMaxLength(kLongestNumber);
        return edit;
    };
    TXTSIRG = number("TXTSIRG", QStringLiteral("Широта, градусы"));
    TXTSHIRM = number("TXTSHIRM", QStringLiteral("Широта, минуты"));
    TSHIR = ui::makeEdit(this, "TSHIR", QStringLiteral("Северная (N) или южная (S) широта"), 1);
    TXTDG = number("TXTDG", QStringLiteral("Долгота, градусы"));
    TXTDN = number("TXTDN", QStringLiteral("Долгота, минуты"));
    TDOLG = ui::makeEdit(this, "TDOLG", QStringLiteral("Восточная (E) или западная (W) долгота"), 1);
    TXTLOK = ui::makeEdit(this, "TXTLOK", QStringLiteral("Локатор, шесть знаков"), 7);
    for (ui::FilterEdit *letter : {TSHIR, TDOLG})
        letter->setMaxLength(1);
    cmbkoor =
        ui::makeButton(this, "cmbkoor", QStringLiteral("Коорд."), QStringLiteral("Локатор в координаты"));
    cmblok =
        ui::makeButton(this, "cmblok", QStringLiteral("Локатор"), QStringLiteral("Координаты в локатор"));
    TXTLOK->setFilter([](QChar c, qsizetype, const QKeyEvent *) { return c.toUpper(); });

    auto *grid = new QGridLayout(this);
    grid->setHorizontalSpacing(4);
    grid->addWidget(ui::makeLabel(this, QStringLiteral("Широта"), TXTSIRG), 0, 0);
    grid->addWidget(TXTSIRG, 0, 1);
    grid->addWidget(ui::makeLabel(this, QStringLiteral("°")), 0, 2);
    grid->addWidget(TXTSHIRM, 0, 3);
    grid->addWidget(ui::makeLabel(this, QStringLiteral("′")), 0, 4);
    grid->addWidget(TSHIR, 0, 5);
    grid->addWidget(cmblok, 1, 6);
    grid->addWidget(ui::makeLabel(this, QStringLiteral("Долгота"), TXTDG), 1, 0);
    grid->addWidget(TXTDG, 1, 1);
    grid->addWidget(ui::makeLabel(this, QStringLiteral("°")), 1, 2);
    grid->addWidget(TXTDN, 1, 3);
    grid->addWidget(ui::makeLabel(this, QStringLiteral("′")), 1, 4);
    grid->addWidget(TDOLG, 1, 5);
    grid->addWidget(cmbkoor, 2, 6);
    grid->addWidget(ui::makeLabel(this, QStringLiteral("QTH лок."), TXTLOK), 2, 0);
    grid->addWidget(TXTLOK, 2, 1, 1, 5);
}

} // namespace geo
