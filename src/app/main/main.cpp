#include "app/program.h"
#include "ui/messageboxes.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QStandardPaths>
#include <QStyleFactory>
#include <QTranslator>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("zhurnal"));
    QApplication::setApplicationDisplayName(QString());
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QTranslator russian; // the platform's own menus and dialogs
    if (russian.load(QStringLiteral("qtbase_ru"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&russian);

    ui::MessageBoxes messages;
    app::Program program(messages, QApplication::applicationDirPath(),
                         QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    if (!program.start())
        return 1;
    QObject::connect(program.mainWindow(), &logentry::frmlog::closed, &application, &QApplication::quit);
    return QApplication::exec();
}
