#pragma once

#include "store/folder.h"

#include <QString>
#include <QStringView>

namespace store {

class Library;

/// Path of a file that the program names with its drive, such as "c:\radio\TblLog.XLS". On Windows it is used
/// as it stands. Elsewhere the drive letter is a folder of `programFolder` ("c/radio/TblLog.XLS"), and every
/// element is looked up without regard to letter case; from the first one that is not there the path goes on
/// as given. Makes nothing. Throws Error where `choose` is asked for one of several names that differ in
/// letter case only and gives none of them; without it the first one counts.
[[nodiscard]] QString fixedPath(const QString &programFolder, QStringView path,
                                const ChooseFile &choose = {});
/// The same in the program folder of an installation.
[[nodiscard]] QString fixedPath(const Library &databases, QStringView path);

/// fixedPath() of a database: a name without extension takes ".mdb".
[[nodiscard]] QString fixedDatabase(const Library &databases, QStringView path);

} // namespace store
