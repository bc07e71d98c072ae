#include "store/folder.h"

#include "store/error.h"
#include "store/schema.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace store {

namespace {

QStringList sameName(const QString &folder, const QString &name)
{
    QStringList found;
    const QStringList entries =
        QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name); // also broken links
    for (const QString &entry : entries)
        if (entry.compare(name, Qt::CaseInsensitive) == 0)
            found.append(folder + QLatin1Char('/') + entry);
    return found;
}

bool holdsAny(const QString &folder)
{
    for (const FileLayout &file : fileLayouts())
        if (!sameName(folder, file.name).isEmpty())
            return true;
    return false;
}

} // namespace

bool folderWritable(const QString &folder)
{
#ifdef Q_OS_UNIX
    return ::access(QFile::encodeName(folder).constData(), W_OK | X_OK) == 0;
#else
    return QFileInfo(folder).isWritable();
#endif
}

DataFolder chooseDataFolder(const QString &programFolder, const QString &userFolder)
{
    if (folderWritable(programFolder))
        return {programFolder, false};
    if (holdsAny(programFolder))
        return {programFolder, true};
    if (!QDir().mkpath(userFolder) || !folderWritable(userFolder))
        throw Error(ErrorKind::CannotOpen, userFolder, QStringLiteral("в папку нельзя записывать"));
    return {QDir(userFolder).absolutePath(), false};
}

QString findFile(const QString &folder, const QString &name, const ChooseFile &choose)
{
    QString full = name;
    if (QFileInfo(name).suffix().isEmpty())
        full += QStringLiteral(".mdb");
    const QStringList found = sameName(folder, full);
    if (found.isEmpty())
        return folder + QLatin1Char('/') + full;
    if (found.size() == 1 || !choose)
        return found.front();
    QString chosen = choose(found);
    if (!found.contains(chosen))
        throw Error(ErrorKind::NotChosen, found.front(), {});
    return chosen;
}

QString joinSuffix(const QString &folder, QStringView suffix)
{
    QString tail = suffix.toString();
#ifndef Q_OS_WIN
    tail.replace(QLatin1Char('\\'), QLatin1Char('/'));
#endif
    return folder + tail;
}

bool syncFile(QFile &file)
{
    const bool flushed = file.flush();
#ifdef Q_OS_UNIX
    return ::fsync(file.handle()) == 0 && flushed;
#else
    return flushed;
#endif
}

void syncFolder(const QString &folder)
{
#ifdef Q_OS_UNIX
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
#else
    Q_UNUSED(folder)
#endif
}

bool syncFileSystem(const QString &folder)
{
#ifdef Q_OS_LINUX
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool synced = ::syncfs(descriptor) == 0;
    ::close(descriptor);
    return synced;
#else
    Q_UNUSED(folder)
    return false;
#endif
}

} // namespace store
