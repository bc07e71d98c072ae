#pragma once

#include <QString>
#include <QStringView>

namespace foreign {

/// Goes through the format text of a cell ("0.00", "dd/mm/yy;@"). Quoted and escaped characters come as
/// literals, bracketed words as a whole; room left for a character and fill are passed over, since a field
/// could not hold them.
class FormatCode {
public:
    enum class What { Sign, Literal, Bracket, End };

    explicit FormatCode(QStringView code) : m_code(code) {}

    What next();
    /// What next() came upon, without quotes and brackets.
    [[nodiscard]] const QString &text() const noexcept { return m_text; }
    [[nodiscard]] QChar sign() const { return m_text.front(); }
    /// Places read so far.
    [[nodiscard]] qsizetype place() const noexcept { return m_at; }
    /// The word comes next, in whatever letter case.
    [[nodiscard]] bool follows(QStringView word) const;
    /// Length of the name of the general format that begins with the sign just read; 0 where there is none.
    [[nodiscard]] qsizetype generalLength() const;
    void skip(qsizetype count) noexcept { m_at += count; }

private:
    [[nodiscard]] QString until(char16_t end);

    QStringView m_code;
    qsizetype m_at = 0;
    QString m_text;
};

/// The sign holds the place of a digit.
[[nodiscard]] inline bool isDigitPlace(QChar sign) noexcept
{
    return sign == u'0' || sign == u'#' || sign == u'?';
}

/// Length of the name of the general format that a text begins with, also as a Russian program writes it; 0
/// where it begins with anything else.
[[nodiscard]] qsizetype generalLength(QStringView code);

} // namespace foreign
