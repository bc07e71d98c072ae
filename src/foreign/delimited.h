#pragma once

#include "foreign/textfile.h"

#include <QByteArrayView>
#include <QString>

#include <vector>

namespace foreign {

/// A field as it stands in the file, without the quotes around it.
struct DelimitedField {
    QByteArrayView raw;
    bool quoted = false; ///< two quotes in `raw` stand for one

    [[nodiscard]] QString text(TextCoding coding) const;
};

/// One record. Its views point into the file's bytes.
struct DelimitedRecord {
    qint64 line = 0; ///< at which it begins, counted from 1
    std::vector<DelimitedField> fields;
};

/// Records of a text of fields separated by tabs or by semicolons, one after the other:
///  * the first line that is not blank tells the separator: whichever of the two stands there more often
///    outside of quotes, the tab where both do alike;
///  * a record ends with LF, CR LF or CR; blank lines between records are none;
///  * a field in double quotes may hold separators, line ends and doubled quotes. Behind its closing quote
///    only blanks may stand; where something else does on the same line, none of the field's quotes mean
///    anything, as programs write that know no quotes;
///  * a quote elsewhere is a character like others;
///  * an old end-of-file mark (0x1A) at the end is no part of the text.
///
/// What cannot be what its writer meant ends the reading with Error, which names the line: a quote that is
/// not closed, or only by a quote on a later line that something follows; a field in quotes of more than
/// kMostLines lines, which an unclosed quote makes of those behind it; too long a field; too many fields.
class DelimitedReader {
public:
    static constexpr qsizetype kLongestField = 65'536; ///< in bytes
    static constexpr std::size_t kMostFields = 1'000;
    static constexpr int kMostLines = 50;

    /// `bytes`, in UTF-8 or a byte coding, live as long as the reader and its records.
    explicit DelimitedReader(QByteArrayView bytes);

    /// ';' or '\t'.
    [[nodiscard]] char separator() const noexcept { return m_separator; }
    /// Reads the next record into `record`; false at the end. Throws Error.
    [[nodiscard]] bool next(DelimitedRecord &record);
    /// Bytes gone through.
    [[nodiscard]] qint64 position() const noexcept { return m_at; }
    [[nodiscard]] qint64 size() const noexcept { return m_bytes.size(); }

private:
    [[nodiscard]] bool atEnd() const noexcept { return m_at >= m_bytes.size(); }
    [[nodiscard]] bool endsField(qsizetype at) const noexcept;
    void skipBlankLines();
    void takeLineEnd();
    [[nodiscard]] DelimitedField readField();
    [[nodiscard]] bool readQuoted(DelimitedField &field);
    [[nodiscard]] DelimitedField readPlain();

    QByteArrayView m_bytes;
    char m_separator = ';';
    qsizetype m_at = 0;
    qint64 m_line = 1;
};

/// A file ready for DelimitedReader. Throws Error, also for an empty file, one that is larger than any list
/// of stations, and one that is no text.
[[nodiscard]] TextFile loadDelimited(const QString &path);
[[nodiscard]] TextFile prepareDelimited(QByteArray bytes);

} // namespace foreign
