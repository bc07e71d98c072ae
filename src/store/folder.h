#pragma once

#include <QFile>
#include <QString>
#include <QStringList>

#include <functional>

namespace store {

/// Where the databases lie and whether they may be written.
struct DataFolder {
    QString path; ///< absolute, without a separator at its end
    bool readOnly = false;
};

/// The program's own folder; the user's data folder only where the program's folder refuses writing by its
/// rights and holds none of the eleven files. Where it holds any and refuses writing, they are opened for
/// reading. A full disk does not count as refusing. Creates the user's folder. Throws Error where neither can
/// be used.
[[nodiscard]] DataFolder chooseDataFolder(const QString &programFolder, const QString &userFolder);

/// The folder may be written by its rights (files can be made in it). Asks the system, writes nothing.
[[nodiscard]] bool folderWritable(const QString &folder);

/// Asked when a folder holds several files whose names differ in letter case only; gives one of them.
using ChooseFile = std::function<QString(const QStringList &paths)>;

/// Throws Error where the operator chooses none of several.
/// Path of the file `name` in `folder`, found without regard to letter case; the name as given where there is
/// none. A name without extension takes ".mdb".
[[nodiscard]] QString findFile(const QString &folder, const QString &name, const ChooseFile &choose);

/// Path from a folder and a suffix that begins with a backslash, as the program's texts have it: "\" becomes
/// the platform's separator.
[[nodiscard]] QString joinSuffix(const QString &folder, QStringView suffix);

/// Flushes an open file to the disk. False where the disk did not take it.
bool syncFile(QFile &file);

/// Flushes a folder's entries to the disk, so that a new name survives a power cut.
void syncFolder(const QString &folder);

/// Flushes everything that waits to be written to the folder's file system. False where the system cannot do
/// that, or it failed.
[[nodiscard]] bool syncFileSystem(const QString &folder);

} // namespace store
