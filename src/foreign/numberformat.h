#pragma once

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
    enum class Piece { Zero, Optional, Point, Literal, General, Exponent };
    struct Token {
        Piece piece = Piece::Literal;
        QString literal; ///< of Exponent: "+" where the sign is always shown
    };
    struct Section {
        std::vector<Token> tokens;
        int decimals = 0;
        int shift = 0; ///< power of ten by which the value is multiplied before it is shown
        bool thousands = false;
        bool asGeneral = false; ///< something that is not followed stands in it
    };

    [[nodiscard]] static Section parsed(QStringView code);
    [[nodiscard]] static bool isPlace(const Token &token) noexcept;
    [[nodiscard]] static QString shown(const Section &section, double magnitude, bool minus);
    [[nodiscard]] static QString shownScientific(const Section &section, std::size_t mark, double magnitude,
                                                 bool minus);
    [[nodiscard]] QString shownNumber(double value) const;

    Kind m_kind = Kind::Number;
    bool m_elapsed = false; ///< hours are not cut at 24
    std::vector<Section> m_sections;
};

} // namespace foreign
