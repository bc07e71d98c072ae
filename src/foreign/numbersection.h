#pragma once

#include <QString>
#include <QStringView>

#include <vector>

namespace foreign {

class FormatCode;

/// A number with up to 15 significant digits and a decimal comma, as a cell without a format shows it.
[[nodiscard]] QString generalText(double value);

/// One section of a number's format, such as "#,##0.00" or "0.0E+00". Numbers have a decimal comma and a
/// plain blank between thousands; colours are passed over.
class NumberSection {
public:
    explicit NumberSection(QStringView code);

    /// A fraction or a condition stands in it: neither is followed, its number is shown as General.
    [[nodiscard]] bool asGeneral() const noexcept { return m_asGeneral; }
    /// The shown text of a finite number that is not negative; with a sign before it where `minus`.
    [[nodiscard]] QString text(double magnitude, bool minus) const;

private:
    enum class Piece { Zero, Optional, Point, Literal, General, Exponent };
    struct Token {
        Piece piece = Piece::Literal;
        QString literal; ///< of Exponent: "+" where the sign is always shown
    };
    using Place = std::vector<Token>::const_iterator;
    struct Seen {
        bool point = false;
        bool exponent = false;
        bool digits = false;
        int commas = 0; ///< since the last place of a digit
    };

    void add(Piece piece, const QString &literal = {}) { m_tokens.push_back({piece, literal}); }
    void takeBracket(const QString &inside);
    void takeDigitPlace(QChar sign, Seen &seen);
    void takeSign(FormatCode &reader, Seen &seen);
    void endDigits(Seen &seen);

    [[nodiscard]] static bool isDigit(const Token &token) noexcept;
    [[nodiscard]] bool has(Piece piece) const;
    [[nodiscard]] Place find(Piece piece, Place end) const;
    [[nodiscard]] QString plain(double magnitude, bool minus) const;
    [[nodiscard]] QString scientific(Place mark, double magnitude, bool minus) const;

    std::vector<Token> m_tokens;
    int m_decimals = 0;
    int m_shift = 0; ///< power of ten by which the value is multiplied before it is shown
    bool m_thousands = false;
    bool m_asGeneral = false;
};

} // namespace foreign
