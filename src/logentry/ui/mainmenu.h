#pragma once

#include <QAction>
#include <QMainWindow>
#include <QMenu>

namespace logentry {

/// Menu of the main window, every item under its own name. Items whose window does not exist yet are
/// disabled.
class MainMenu {
public:
    explicit MainMenu(QMainWindow *window);

    QAction *mnuqsl;
    QAction *mnudipl;
    QAction *mnudxcc;
    QAction *mnubuk;
    QMenu *mnucerw; ///< "Сервис"; also pops up under the right mouse button
    QAction *mnuwwod;
    QAction *MNUCW;
    QAction *mnurewiz;
    QAction *mnucalk;
    QAction *mnulist;
    QAction *mnuhelp;
    QAction *mnulog;
    QAction *mnuzaglog;
    QAction *cmbawto;
    QAction *mnuvur;
    QAction *mnuDob;
    QMenu *mnuexpo;
    QAction *mnuadex;
    QAction *mnuexit;
};

} // namespace logentry
