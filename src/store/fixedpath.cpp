#include "store/fixedpath.h"

#include "store/error.h"
#include "store/library.h"

#include <QDir>
#include <QFileInfo>

namespace store {

#ifndef Q_OS_WIN
namespace {

/// The entry of a folder, found without regard to letter case; empty where there is none.
QString entry(const QString &folder, const QString &name, QDir::Filters kind, const ChooseFile &choose)
{
    QStringList found;
    const QStringList entries = QDir(folder).entryList(kind | QDir::Hidden | QDir::System, QDir::Name);
    for (const QString &candidate : entries)
        if (candidate.compare(name, Qt::CaseInsensitive) == 0)
            found.append(folder + QLatin1Char('/') + candidate);
    if (found.isEmpty())
        return {};
    if (found.size() == 1 || !choose)
        return found.front();
    QString chosen = choose(found);
    if (!found.contains(chosen))
        throw Error(ErrorKind::NotChosen, found.front(), {});
    return chosen;
}

} // namespace
#endif

QString fixedPath(const QString &programFolder, QStringView path, const ChooseFile &choose)
{
#ifdef Q_OS_WIN
    Q_UNUSED(programFolder)
    Q_UNUSED(choose)
    return QDir::fromNativeSeparators(path.toString());
#else
    QString plain = path.toString();
    plain.remove(QLatin1Char(':'));
    const QStringList elements = plain.split(QLatin1Char('\\'), Qt::SkipEmptyParts);
    QString result = programFolder;
    for (qsizetype i = 0; i < elements.size(); ++i) {
        const bool last = i + 1 == elements.size();
        const QString found =
            entry(result, elements[i], last ? QDir::Filters(QDir::Files) : QDir::Dirs | QDir::NoDotAndDotDot,
                  choose);
        if (found.isEmpty())
            return result + QLatin1Char('/') + elements.mid(i).join(QLatin1Char('/'));
        result = found;
    }
    return result;
#endif
}

QString fixedPath(const Library &databases, QStringView path)
{
    return fixedPath(databases.folder(), path, databases.chooser());
}

QString fixedDatabase(const Library &databases, QStringView path)
{
    QString full = path.toString();
    const QString name = full.mid(full.lastIndexOf(QLatin1Char('\\')) + 1);
    if (!name.contains(QLatin1Char('.')))
        full += QStringLiteral(".mdb");
    return fixedPath(databases, full);
}

} // namespace store
