#pragma once

#include "awards/catalogue.h"
#include "awards/picking.h"
#include "ui/boundfield.h"
#include "ui/boundtext.h"
#include "ui/clicklabel.h"
#include "ui/dbgrid.h"
#include "ui/dblist.h"
#include "ui/filteredit.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include <array>

namespace awards {

/// The catalogue: countries, regions of Russia, awards, the rules of the chosen one, entry of a new one.
class CataloguePanel : public QGroupBox {
    Q_OBJECT

public:
    CataloguePanel(Sources &sources, const ui::BoundField::Run &run, QWidget *parent);

    /// The boxes of a new award are shown in place of the rules.
    void showEntry(bool shown);
    [[nodiscard]] bool entryShown() const;
    /// Something has been typed for a new award.
    [[nodiscard]] bool entryTyped() const;
    [[nodiscard]] NewAward entry() const;
    /// One of the boxes of a new award.
    [[nodiscard]] bool isEntry(const QObject *box) const;
    void clearEntry();
    /// Empties the box of the rules; its undo (Ctrl+Z) brings back what stood there.
    void emptyRules();
    /// The list of regions and the heading "Россия", or neither.
    void showRegions(bool shown);

    ui::ClickLabel *Label1; ///< heading of the countries
    QLabel *Label2;         ///< heading of the awards
    QLabel *Label3;         ///< heading of the rules
    ui::DbList *DBListStrana;
    ui::DbList *DBListRegion;
    ui::DbList *DBListDiplom;
    QPlainTextEdit *TXTDIPTEXT; ///< rules of the chosen award
    ui::FilterEdit *TXTPREF;    ///< its region
    ui::FilterEdit *txtstran1;  ///< new award: country
    ui::FilterEdit *txtpref1;   ///< new award: region
    ui::FilterEdit *TXTDIPL1;   ///< new award: name
    QPlainTextEdit *txtpol1;    ///< new award: rules
    QPushButton *cmbadd;
    QPushButton *cmbdel;
    QPushButton *Command1;

private:
    void makeControls(Sources &sources, const ui::BoundField::Run &run);
    void makeLayout();

    QWidget *m_entry;
    QLabel *m_region;
};

/// Prefixes, the callsigns worked with them, and the contacts with one station.
class PickPanel : public QGroupBox {
    Q_OBJECT

public:
    PickPanel(Sources &sources, const ui::DbGrid::Run &asked, QWidget *parent);

    // What was chosen last. The boxes are bound to nothing: before the first choice a source stands on the
    // first row of its table, which would be taken for an answer. The functions throw store::Error.
    void showCountry(const QString &country);
    void showRegion(store::DataSource &region);
    void showCallbook(store::DataSource &station);
    void clearCallbook();

    QPushButton *cmbdxcc;
    ui::DbList *DBListPref; ///< country prefixes
    ui::DbList *DBListRus;  ///< Russian region prefixes
    ui::DbList *DBListCall; ///< callsigns worked
    ui::FilterEdit *txtstrana;
    ui::FilterEdit *txtgorod; ///< region, or the country picked after it
    ui::FilterEdit *txtpref;
    ui::FilterEdit *txtprf;
    ui::FilterEdit *txtccall; ///< callbook
    ui::FilterEdit *txtnname;
    ui::FilterEdit *txtqth;
    QCheckBox *Check1;
    ui::DbGrid *DBGrid1;

private:
    void makeLayout();
};

/// The selection frame: callsigns or prefixes whose first contacts fill the blank in one go.
class SelectionFrame : public QGroupBox {
    Q_OBJECT

public:
    explicit SelectionFrame(QWidget *parent);

    [[nodiscard]] QStringList entries() const;
    [[nodiscard]] EntryKind kind() const;
    void append(const QString &entry);
    void markEntry(int index);

    std::array<QRadioButton *, 2> opWyb{};
    QCheckBox *chekQsl;
    ui::FilterEdit *txtWybor;
    QListWidget *ListWybor;
    QPushButton *cmbListclear;
    QPushButton *cmbWybor;

protected:
    /// Delete takes the marked entry out of the list; a double click on "Выбрать" is one click.
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace awards
