#pragma once

#include <QString>

namespace report {

/// Runs report layouts for the windows that have something to print. Tests only note what was asked for.
class Reports {
public:
    Reports() = default;
    Reports(const Reports &) = delete;
    Reports &operator=(const Reports &) = delete;
    virtual ~Reports();

    /// Fills the layout in `layoutFile` (full path) from the table that it names and shows the pages, from
    /// where they are printed or saved. What stands in the table now is what is shown, whatever happens to it
    /// afterwards. Tells the operator itself what does not work; nothing is printed then.
    virtual void print(const QString &layoutFile) = 0;
};

} // namespace report
