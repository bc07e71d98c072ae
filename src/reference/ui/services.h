#pragma once

#include "store/library.h"
#include "ui/filedialogs.h"
#include "ui/messages.h"
#include "ui/progress.h"

namespace reference {

/// What the windows of this folder work with. All outlive them.
struct Services {
    store::Library &databases;
    ui::Messages &messages;
    ui::Progress &progress;
    ui::FileDialogs &dialogs;
};

} // namespace reference
