#pragma once

#include "awards/ui/blankview.h"
#include "awards/ui/services.h"
#include "ui/boundfield.h"
#include "ui/filteredit.h"
#include "ui/windowturn.h"

#include <QGroupBox>
#include <QPushButton>
#include <QWidget>

namespace awards {

/// The application for an award: its title page, which is one row of the help file, and the blank. Prints
/// both. Other windows write the same row and the same blank: what is typed is saved when the window is left,
/// and everything is read anew when it comes back. Lives, once made, as long as the program, and so does the
/// text of `txtemission`, which no file has.
class frmdipin : public QWidget {
    Q_OBJECT

public:
    explicit frmdipin(const Services &services);
    ~frmdipin() override;

    void cmbrep_Click();

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void buildLayout();
    [[nodiscard]] QGroupBox *makeTitlePage(QWidget *parent);
    void bindTitlePage();
    void connectBoxes();
    void came();
    void saveLeft();

    /// The boxes take no text while nothing could store it.
    void lockTitle();
    [[nodiscard]] QString lockReason();

    Services m_services;
    store::DataSource Data1; ///< title page
    store::DataSource Data2; ///< blank
    bool m_shown = false;
    QString m_lock; ///< why the title page takes no text; empty where it does

    ui::WindowTurn *m_turn;
    ui::StatusLine *m_status;
    BlankView *m_blank;
    QPushButton *cmbrep;
    QPushButton *cmbend;
    ui::FilterEdit *txtemission;
    QList<ui::FilterEdit *> m_bound; ///< txtaward, txtDDATE, ... in the order of the tab key
};

} // namespace awards
