#include "logentry/ui/mainmenu.h"

#include "logentry/clockrules.h"
#include "ui/menubar.h"

namespace logentry {

namespace {

QAction *add(QWidget *menu, const char *name, const QString &caption)
{
    auto *action = new QAction(caption, menu);
    action->setObjectName(QLatin1String(name));
    menu->addAction(action);
    return action;
}

QMenu *addMenu(QMenu *menu, const char *name, const QString &caption)
{
    menu->setTitle(caption);
    menu->setObjectName(QLatin1String(name));
    menu->menuAction()->setObjectName(QLatin1String(name));
    return menu;
}

} // namespace

MainMenu::MainMenu(QMainWindow *window)
{
    auto *bar = new ui::MenuBar(window);
    window->setMenuBar(bar);
    mnuqsl = add(bar, "mnuqsl", QStringLiteral("QSL-бюро"));
    mnudipl = add(bar, "mnudipl", QStringLiteral("Дипломы"));
    mnudxcc = add(bar, "mnudxcc", QStringLiteral("DXCC"));
    mnubuk = add(bar, "mnubuk", QStringLiteral("Callbuk"));
    mnucerw = addMenu(new QMenu(bar), "mnucerw", QStringLiteral("Сервис"));
    bar->addMenu(mnucerw);
    mnuwwod = add(mnucerw, "mnuwwod", QStringLiteral("Enter - Ввод"));
    MNUCW = add(mnucerw, "MNUCW", QStringLiteral("CW"));
    mnurewiz = add(mnucerw, "mnurewiz", QStringLiteral("Ревизия"));
    mnucalk = add(mnucerw, "mnucalk", QStringLiteral("Калькулятор"));
    mnulist = add(mnucerw, "mnulist", QStringLiteral("Лист"));
    mnuhelp = add(mnucerw, "mnuhelp", QStringLiteral("Помощь"));
    mnulog = add(mnucerw, "mnulog", QStringLiteral("Записывать в  log.mdb"));
    mnuzaglog = add(mnucerw, "mnuzaglog", QStringLiteral("Загрузка из log.mdb"));
    cmbawto = add(mnucerw, "cmbawto", QString::fromUtf16(kAutomaticCaption));
    mnuvur = add(mnucerw, "mnuvur", QStringLiteral("QSO за период"));
    mnuDob = add(mnucerw, "mnuDob", QStringLiteral("Добавить QSO"));
    mnuexpo = addMenu(new QMenu(mnucerw), "mnuexpo", QStringLiteral("Импорт"));
    mnucerw->addMenu(mnuexpo);
    mnuadex = add(mnuexpo, "mnuadex", QStringLiteral("ADIF > LOG"));
    mnuexit = add(mnucerw, "mnuexit", QStringLiteral("Выход"));
}

} // namespace logentry
