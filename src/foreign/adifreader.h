#pragma once

#include "foreign/textfile.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace foreign {

/// Why a record is not what its writer meant.
enum class AdifFault : quint8 {
    None,
    Empty,        ///< an end mark without any field
    LengthTooBig, ///< a field says that it goes on behind the end of the file
    BadCall,      ///< the tag of the callsign has no ">"
    CutOff,       ///< the file ends within the record
    BadXml,       ///< the XML form breaks off here; nothing after it can be read
};

struct AdifField {
    QByteArrayView name;  ///< as written
    QByteArrayView value; ///< in the file's coding, without the white space at its ends
};

/// One contact as it stands in a file. Views point into the file's bytes or into the reader and are good
/// until the next record is read.
struct AdifRecord {
    qint64 line = 0;    ///< of its first tag, counted from 1
    QByteArrayView raw; ///< as written, from the first tag on
    std::vector<AdifField> fields;
    TextCoding coding = TextCoding::Utf8;
    AdifFault fault = AdifFault::None; ///< anything but None: no contact is to be made of it

    /// Value of the first field of that name (given in upper case); empty where there is none.
    [[nodiscard]] QByteArrayView value(QByteArrayView upperName) const noexcept;
    [[nodiscard]] bool has(QByteArrayView upperName) const noexcept;
    [[nodiscard]] QString text(QByteArrayView upperName) const;
};

/// Records of an ADIF file, one after the other. Every record comes out exactly once, whole or with its
/// fault, so that what was read equals what was taken and what has to be reported.
class AdifSource {
public:
    AdifSource() = default;
    AdifSource(const AdifSource &) = delete;
    AdifSource &operator=(const AdifSource &) = delete;
    virtual ~AdifSource() = default;

    /// Reads the next record into `record`; false at the end of the file.
    [[nodiscard]] virtual bool next(AdifRecord &record) = 0;
    /// Bytes gone through.
    [[nodiscard]] virtual qint64 position() const = 0;
    [[nodiscard]] virtual qint64 size() const = 0;
    /// Something in it looked like ADIF, be it without any record.
    [[nodiscard]] virtual bool isAdif() const = 0;
};

/// The tagged form (.adi), of every version and every writer's habits:
///  * tags in any letter case, blanks within them, with or without type; a tag without a length is skipped;
///  * a value is taken by its length before tags are looked for. The length counts bytes or characters,
///    line ends as one or as two: the first reading that ends before white space and the next "<" or the end
///    of the file holds. Where none does, a value that runs over a tag ends before it, any other is taken by
///    the letter and what follows up to the next "<" is ignored;
///  * everything before <eoh> is header; without one the whole file is records;
///  * text between fields is ignored;
///  * a CALL that begins a line, in a record that has one already, begins a new record: an <eor> is missing;
///  * a CALL without ">" makes its record a faulty one, so that it is not lost among the text between fields;
///  * the last record may lack its <eor>, unless the file ends within a tag or value.
class AdifReader final : public AdifSource {
public:
    /// `bytes` live as long as the reader. `coding` is UTF-8 or a byte coding.
    AdifReader(QByteArrayView bytes, TextCoding coding);

    [[nodiscard]] bool next(AdifRecord &record) override;
    [[nodiscard]] qint64 position() const override { return m_at; }
    [[nodiscard]] qint64 size() const override { return m_bytes.size(); }
    [[nodiscard]] bool isAdif() const override { return m_sawTag; }

private:
    struct Tag {
        qsizetype begin = 0; ///< of "<"
        qsizetype end = 0;   ///< behind ">"
        QByteArrayView name;
        std::optional<quint64> length;
        bool isBadCall = false; ///< "<call:" without ">"; `end` is behind "<"
    };
    enum class End { Eor, Call, File };

    [[nodiscard]] std::optional<Tag> tagAt(qsizetype at) const;
    [[nodiscard]] bool isBadCallAt(qsizetype at) const;
    [[nodiscard]] std::optional<Tag> nextTag(qsizetype from) const;
    [[nodiscard]] bool lands(qsizetype at) const;
    [[nodiscard]] qsizetype endOfValue(const Tag &tag) const;
    [[nodiscard]] qsizetype charactersEnd(qsizetype begin, quint64 count, bool lineEndIsOne) const;
    [[nodiscard]] qsizetype withShortLineEnds(qsizetype begin, quint64 count) const;
    [[nodiscard]] bool beginsLine(qsizetype at) const;
    void skipHeader();
    End readFields(AdifRecord &record);
    [[nodiscard]] qint64 lineOf(qsizetype at);

    QByteArrayView m_bytes;
    TextCoding m_coding;
    qsizetype m_at = 0;
    qsizetype m_recordBegin = 0;
    qsizetype m_lineAt = 0; ///< lines are counted up to here
    qint64 m_line = 1;
    bool m_sawTag = false;
};

using AdifText = TextFile;
[[nodiscard]] AdifText prepareAdif(QByteArray bytes);

/// Reads a file whole and prepares it. Throws Error.
[[nodiscard]] AdifText loadAdif(const QString &path);

/// The reader that suits the text: the XML form or the tagged one. `text` lives as long as it.
[[nodiscard]] std::unique_ptr<AdifSource> openAdif(const AdifText &text);

} // namespace foreign
