#pragma once

#include "foreign/numbersection.h"

#include <QString>

#include <vector>

namespace foreign {

/// How a cell shows its number, from the format text of a workbook ("0.00", "dd/mm/yy", "General").
/// Whatever a format's own order of day, month and year, dates come as the log writes them: "dd.mm.yy", times
/// as "hh:mm", both as "dd.mm.yy hh:mm". Other numbers follow their format, with a decimal comma and a plain
/// blank between thousands. Colours, conditions and column widths are not followed, fractions are shown as
/// General.
class NumberFormat {
public:
    enum class Kind { Number, Date, Time, DateTime };

    /// General: up to 15 significant digits.
    NumberFormat() = default;
    explicit NumberFormat(const QString &code);
    /// One of the formats that a workbook may name by number without writing it down.
    [[nodiscard]] static NumberFormat builtIn(int number);

    [[nodiscard]] Kind kind() const noexcept { return m_kind; }
    /// The shown text. Days are counted from 1900, or from 1904 on. A value that is no date or no number
    /// gives what a sheet shows in its place.
    [[nodiscard]] QString text(double value, bool from1904) const;

private:
    [[nodiscard]] QString shownNumber(double value) const;

    Kind m_kind = Kind::Number;
    bool m_elapsed = false; ///< hours are not cut at 24
    std::vector<NumberSection> m_sections;
};

} // namespace foreign
