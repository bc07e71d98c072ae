#include "report/shipped.h"

#include "store/safefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

// A static library's resources are linked only where something names them.
static void initLayouts()
{
    Q_INIT_RESOURCE(layouts);
}

namespace report {

QStringList shippedLayouts()
{
    initLayouts();
    return QDir(QStringLiteral(":/reports")).entryList(QDir::Files, QDir::Name);
}

QByteArray shippedLayout(const QString &name)
{
    const QStringList names = shippedLayouts();
    for (const QString &known : names) {
        QFile file(QStringLiteral(":/reports/") + known);
        if (known.compare(name, Qt::CaseInsensitive) == 0 && file.open(QIODevice::ReadOnly))
            return file.readAll();
    }
    return {};
}

QStringList createMissingLayouts(store::Library &databases)
{
    QStringList made;
    if (databases.readOnly())
        return made;
    const QStringList names = shippedLayouts();
    for (const QString &name : names) {
        const QString path = databases.path(QString(u'\\' + name));
        const QFileInfo info(path);
        if (info.exists() || info.isSymLink())
            continue;
        store::SafeFile file(path);
        file.write(shippedLayout(name));
        file.finish();
        file.publish();
        made.append(name);
    }
    return made;
}

} // namespace report
