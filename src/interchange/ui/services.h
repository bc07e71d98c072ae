#pragma once

#include "store/library.h"
#include "ui/filedialogs.h"
#include "ui/messages.h"
#include "ui/progress.h"

namespace interchange {

/// Databases of an old installation, which the program reads but does not work on.
class OldDatabases {
public:
    OldDatabases() = default;
    OldDatabases(const OldDatabases &) = delete;
    OldDatabases &operator=(const OldDatabases &) = delete;
    virtual ~OldDatabases() = default;

    /// Reads an old database into a new file of this program; the old one stays as it is. Shows its progress
    /// and asks what it must. False where the operator gave up. Throws store::Error.
    [[nodiscard]] virtual bool convertTo(const QString &oldFile, const QString &newFile) = 0;
    /// Converts an old database where it lies; the original stays beside it under another name.
    [[nodiscard]] virtual bool convertInPlace(const QString &oldFile) = 0;
};

/// What the windows of this folder work with. All outlive them.
struct Services {
    store::Library &databases;
    ui::Messages &messages;
    ui::Progress &progress;
    ui::FileDialogs &dialogs;
    OldDatabases &oldDatabases;
};

} // namespace interchange
