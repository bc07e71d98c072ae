#pragma once

#include "reference/countries.h"
#include "ui/filteredit.h"

#include <QGroupBox>
#include <QList>
#include <QPushButton>

namespace reference {

/// The frame in which a row of the country table is typed.
class CountryEntryFrame : public QGroupBox {
    Q_OBJECT

public:
    explicit CountryEntryFrame(QWidget *parent);

    [[nodiscard]] CountryEntry entry() const;
    void clear();

    ui::FilterEdit *txtprf1;
    ui::FilterEdit *txtstrana;
    ui::FilterEdit *txtkont;
    ui::FilterEdit *txtiaru; ///< ITU zone
    ui::FilterEdit *txtcq;   ///< CQ zone
    ui::FilterEdit *txtPREF;
    QPushButton *cmbadd;

private:
    void connectEnter();
};

} // namespace reference
