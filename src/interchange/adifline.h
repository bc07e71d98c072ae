#pragma once

#include "foreign/adifreader.h"

#include <QString>
#include <QStringView>

#include <variant>

namespace interchange {

/// A contact from one line of the program's own ADIF layout, ready for the log.
struct AdifLineContact {
    QString ccall;
    QString ddate;
    QString ttime;
    QString bband;
    QString rsts;
    QString rstr;
    QString ps1;
    QString QTH;
    QString NNAME;
};

enum class AdifLineVerdict {
    NoContact, ///< "call:" does not stand in it
    Broken,    ///< the import ends here
};

/// Reads a line of the program's own layout. Tag names are searched as lower-case text wherever they stand,
/// so the first occurrence counts and the file must be one that isOwnLayout() knows. Kept as operators know
/// it: a time of six digits takes its seconds for minutes; a frequency is cut to five characters and stands
/// as the band until a band follows; a band beyond the six of the export is stored unchanged; a date that the
/// calendar has not stays empty. Call and reports are cut to 14 characters, town and name to 15, mode to 5. A
/// length that is missing, no number or negative breaks the line; one beyond its end takes the rest of it.
[[nodiscard]] std::variant<AdifLineContact, AdifLineVerdict> readAdifLine(QStringView line);

/// Lines end with CR LF, CR or LF.
class AdifLines {
public:
    explicit AdifLines(const foreign::AdifText &text);

    /// The next line without its end; false behind the last one. What follows the last line end counts as a
    /// line when it is not empty; an old end-of-file mark ends the file.
    bool next();
    [[nodiscard]] QByteArrayView bytes() const noexcept { return m_line; }
    [[nodiscard]] QString text() const { return foreign::decode(m_line, m_coding); }
    [[nodiscard]] qint64 number() const noexcept { return m_number; }
    [[nodiscard]] qint64 position() const noexcept { return m_at; }

private:
    QByteArrayView m_bytes;
    foreign::TextCoding m_coding;
    QByteArrayView m_line;
    qsizetype m_at = 0;
    qint64 m_number = 0;
};

/// Whether the program's own line reader is to read a file; anything else is read by the full reader, which
/// knows more. The file is of the own layout when nothing in it speaks of another writer:
///  * no byte order mark; the first line that is not blank may be the export's header (version 1.0 and
///    <eoh>, nothing else);
///  * every other line that is not blank begins with "<call:"; where "<eor>" stands in it, it ends the line.
///    A remark without any "<" may stand behind the header or a whole contact.
///    The last line has one: what a file that was cut off has lost, only the full reader tells;
///  * every tag is one that the line reader takes (an empty qsl_via or comment may stand beside, as in the
///    emergency file), in lower case, without a type but for the date's ":d";
///  * dates have that type, all or some of them.
/// A damaged tag (no ">", no number) says nothing about the writer: it breaks its line when it comes to that.
[[nodiscard]] bool isOwnLayout(const foreign::AdifText &text);

} // namespace interchange
