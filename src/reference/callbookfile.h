#pragma once

#include "foreign/delimited.h"
#include "store/library.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <optional>
#include <vector>

namespace reference {

/// The callbook of an installation: table tblcalbuk of its file.
[[nodiscard]] QString callbookPath(store::Library &databases);

/// Its ten fields in the order in which they are written to a file; the callsign is the first.
[[nodiscard]] const QStringList &callbookFields();

/// Told from time to time how far the work has come; false stops it.
using CallbookStep = std::function<bool(qint64 done, qint64 total)>;

/// Lines of a file of which something is to be told.
struct CallbookLines {
    static constexpr qsizetype kNamed = 10;

    qint64 count = 0;
    QList<qint64> first; ///< numbers of the first kNamed ones

    void add(qint64 line)
    {
        if (++count <= kNamed)
            first.append(line);
    }
};

/// What a file would bring into the callbook.
struct CallbookExamination {
    qint64 records = 0;    ///< behind the header; rows without anything in them are none
    qint64 newCalls = 0;   ///< different callsigns that are not in the callbook: so many records are added
    qint64 knownCalls = 0; ///< different callsigns that are in it
    qint64 repeated = 0;   ///< records with a callsign that has stood further up
    qint64 filling = 0;    ///< records that fill an empty field of one that is there, or of one further up
    CallbookLines withoutCall; ///< left out
    CallbookLines tooMany;     ///< with values behind the last column: left out, nobody knows what is what
    CallbookLines tooFew;      ///< taken; what they lack is empty
    QString codingName;
    QStringList fields;         ///< of the callbook, that the file has
    QStringList unknownColumns; ///< as written, left out; also a second one for the same field
    bool stopped = false;       ///< the figures are those of a part of the file
};

struct CallbookImportSteps {
    store::Progress copying; ///< of the callbook, before it is changed
    CallbookStep adding;     ///< in records; the rows gone through until a stop stay
};

/// Records of the file by what has become of them, together all that were gone through.
struct CallbookImportResult {
    qint64 added = 0;
    qint64 filled = 0;    ///< their callsign was there; at least one empty field got a value
    qint64 unchanged = 0; ///< their callsign was there; nothing to fill
    qint64 skipped = 0;   ///< without a callsign, or with too many columns
    bool stopped = false;
    std::optional<store::Error> failed; ///< the import ended here; the figures are those of what is stored
};

/// A file of separated fields that the callbook is filled from. Its first row names the columns: by the names
/// of the callbook's fields or by their labels ("Позывной", "Фамилия", ...), in any order and letter case.
///
/// A callsign (trimmed, in capitals, compared without regard to letter case) that the callbook lacks becomes
/// a new record. Where it is there, only empty fields of the record stored first are filled: nothing that
/// somebody wrote is overwritten. White space at a value's ends goes, a line end within it becomes a blank.
class CallbookFile {
public:
    /// Reads the file. Throws store::Error of the kind Missing or Unreadable, also where the first row names
    /// no callsign.
    CallbookFile(store::Library &databases, const QString &path);

    /// Goes through the whole file and changes nothing. `step` counts bytes. Throws store::Error.
    [[nodiscard]] CallbookExamination examine(const CallbookStep &step = {});

    /// Adds and fills, in chunks of whole records, each committed; a verified copy of the callbook is made
    /// before the first change. A file that is damaged anywhere changes nothing. Throws store::Error, and
    /// then nothing has been changed.
    [[nodiscard]] CallbookImportResult import(const CallbookImportSteps &steps = {});

private:
    static constexpr std::size_t kValues = 9; ///< fields without the callsign

    enum class RowKind { Blank, WithoutCall, TooMany, Record };
    struct Row {
        RowKind kind = RowKind::Blank;
        bool tooFew = false;
        QString call;
        std::array<QString, kValues> values;
        unsigned filled = 0; ///< bit n: value n is not empty
    };
    class Calls;
    class Target;

    void readHeader(foreign::DelimitedReader &reader);
    [[nodiscard]] bool next(foreign::DelimitedReader &reader);
    void takeRow();
    void check();
    [[nodiscard]] QString cleaned(const foreign::DelimitedField &field) const;
    void importRows(foreign::DelimitedReader &reader, Target &target, const CallbookStep &step,
                    CallbookImportResult &result);

    store::Library &m_databases;
    QString m_path;
    foreign::TextFile m_text;
    std::vector<int> m_columns; ///< per column of the file the field's number; -1 for one left out
    QStringList m_unknown;
    std::optional<qint64> m_rows; ///< records, once the file has been gone through to its end
    foreign::DelimitedRecord m_record;
    Row m_row;
};

enum class CallbookSeparator : char { Semicolon = ';', Tab = '\t' };

struct CallbookExportResult {
    qint64 records = 0;
    QString codingName;   ///< "Windows-1251", or "UTF-8" where that cannot hold or tell the characters
    bool stopped = false; ///< and nothing has been written
};

/// Writes all records in the order of their callsigns, behind a row with the names of the fields; lines end
/// with CR LF. Values stand as they are, in quotes where they hold a quote, a separator or a line end.
/// Written in Windows-1251; where a character is none of those, or the letters are such that a reader would
/// take them for another coding's, in UTF-8 with a byte order mark. Throws store::Error, and then what stood
/// under the name is still there. `step` counts records, from the beginning again for the second coding;
/// where it stops the work, nothing is written either.
CallbookExportResult exportCallbook(store::Library &databases, const QString &path,
                                    CallbookSeparator separator, const CallbookStep &step = {});

} // namespace reference
