#pragma once

#include <QString>
#include <QStringView>

#include <span>

namespace base {

/// An amateur band: how the log and other programs call it.
struct Band {
    const char16_t *label; ///< in the log: the frequency in MHz with a decimal comma
    const char *adif;      ///< ADIF name in upper case
    double low;            ///< MHz, both ends included
    double high;
};

/// Bands that have a button in the main window, in the order of the buttons.
inline constexpr int kButtonBands = 12;

/// All bands, those with a button first. The one table of them.
[[nodiscard]] std::span<const Band> bandPlan() noexcept;

/// Band by its ADIF name, in any letter case; null for an unknown one.
[[nodiscard]] const Band *bandOfAdifName(QStringView name) noexcept;

/// Band by its label in the log ("3,5"), with a full stop too ("3.5"); null for an unknown one.
[[nodiscard]] const Band *bandOfLabel(QStringView label) noexcept;

/// Band that a frequency lies in. MHz are meant, as the format has it; a number that makes sense only in kHz
/// or Hz is taken so, and what is a short-wave band in kHz is that before it is a microwave band in MHz.
/// A band's label counts as a frequency in it. Null for a frequency outside the bands and for no number.
[[nodiscard]] const Band *bandOfFrequency(QStringView text);

} // namespace base
