#pragma once

#include <QByteArray>

namespace foreign {

/// Magnitude of a number as the 15 decimal digits that a spreadsheet reckons with, so that 1,005 rounds to
/// 1,01 although its binary value is a little less. The sign is the caller's.
class Decimal {
public:
    /// `magnitude`: finite, not negative.
    explicit Decimal(double magnitude);

    [[nodiscard]] bool isZero() const noexcept { return m_digits.isEmpty(); }
    /// Exponent of the first digit: 0 for 1 to 9,99; 0 for zero.
    [[nodiscard]] int exponent() const noexcept { return isZero() ? 0 : m_point - 1; }
    /// Multiplies by a power of ten.
    void shift(int power) noexcept { m_point += power; }
    /// Rounds to a number of decimals, halves away from zero.
    void round(int decimals);
    /// Digits before the decimal point, none for a number below 1.
    [[nodiscard]] QByteArray whole() const;
    /// Digit behind the decimal point, counted from 0.
    [[nodiscard]] char decimal(int index) const;

private:
    void trim();

    QByteArray m_digits; ///< without zeros at either end
    int m_point = 0;     ///< the value is 0,DIGITS times ten to this power
};

} // namespace foreign
