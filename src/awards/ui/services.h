#pragma once

#include "report/reports.h"
#include "store/library.h"
#include "ui/messages.h"

namespace awards {

/// What the windows of this folder work with. All outlive them.
struct Services {
    store::Library &databases;
    ui::Messages &messages;
    report::Reports &reports;
};

} // namespace awards
