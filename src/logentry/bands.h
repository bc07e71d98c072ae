#pragma once

#include "base/bandplan.h"

#include <QString>

#include <array>

namespace logentry {

inline constexpr int kBandCount = base::kButtonBands;

/// Band text that a contact gets, by the index of its button: the frequency in MHz with a decimal comma.
[[nodiscard]] QString bandText(int index);

/// Text on the button: the band text, but "1,2" for 1200 MHz.
[[nodiscard]] QString bandCaption(int index);

/// The current band and which of the twelve buttons are shown as marked.
class BandSelector {
public:
    [[nodiscard]] const QString &band() const noexcept { return m_band; }
    [[nodiscard]] int index() const noexcept { return m_index; }
    [[nodiscard]] bool marked(int index) const { return m_marked.at(static_cast<std::size_t>(index)); }
    /// "14 MHz"
    [[nodiscard]] QString label() const;

    /// A click marks its button and takes the marks of the first ten away: 430 and 1200 MHz keep theirs.
    /// Operators know it so; their grey tells which VHF band was used last.
    void click(int index);

    /// A key released on a band button: Left and Up move the mark down, Right and Down up, not past the ends.
    /// Any key then marks the button at the current index and takes its band.
    void keyReleased(int key);

private:
    std::array<bool, kBandCount> m_marked{false, false, false, true};
    QString m_band = QStringLiteral("14");
    int m_index = 3;
};

} // namespace logentry
