#pragma once

#include "base/clock.h"
#include "report/reports.h"
#include "store/library.h"
#include "ui/messages.h"
#include "ui/progress.h"

namespace qsl {

/// What the windows of this folder work with. All outlive them.
struct Services {
    store::Library &databases;
    const base::Clock &clock;
    ui::Messages &messages;
    ui::Progress &progress;
    report::Reports &reports;
};

} // namespace qsl
