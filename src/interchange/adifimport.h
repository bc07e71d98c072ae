#pragma once

#include "foreign/adifreader.h"
#include "interchange/heldcontacts.h"
#include "store/library.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace interchange {

enum class AdifReaderKind {
    OwnLines, ///< the program's own layout, a contact a line
    Full,     ///< any other ADIF file
};
/// For the window, Russian.
[[nodiscard]] QString readerText(AdifReaderKind kind);

enum class SkipReason : quint8 {
    NoCall,
    UnreadableCall,
    Empty,
    LengthTooBig,
    BadCall,
    CutOff,
    BadXml,
    BrokenLine, ///< own layout: the import ends at this line
    NotRead,    ///< own layout: the lines behind a broken one
    NotWritten, ///< the log could not be written; these contacts are not in it
};
/// Russian, without a full stop.
[[nodiscard]] QString skipText(SkipReason reason);

/// Records that did not come into the log.
struct Skipped {
    qint64 line = 0; ///< of the first of them in the file
    qint64 records = 1;
    SkipReason reason = SkipReason::NoCall;
};

/// How far an import is.
struct ImportProgress {
    enum class Phase { Copying, Reading };
    Phase phase = Phase::Reading;
    qint64 done = 0;  ///< of the file, or of the copy of the log
    qint64 total = 0; ///< in the same unit
    qint64 records = 0;
    qint64 added = 0;
};

struct ImportResult {
    AdifReaderKind reader = AdifReaderKind::Full;
    QString coding;            ///< "UTF-8", ...
    bool isAdif = true;        ///< false: nothing in the file looks like ADIF
    qint64 records = 0;        ///< "Записей": contacts, in the own layout lines of every kind
    qint64 added = 0;          ///< "Добавлено": rows that are in the log for good
    qint64 withoutContact = 0; ///< own layout: header and lines without a call; in other files none
    std::vector<Skipped> skipped;
    std::vector<qint64> withoutDate; ///< lines of contacts added without a date: theirs is missing or none
    std::vector<qint64> withoutTime; ///< and without a time
    qint64 held = 0;                 ///< contacts added that the log held already: same call, date and band
    bool stopped = false;
    std::optional<store::Error> failure; ///< the log could not be written any further
    QString copy;                        ///< of the log as it was; empty where nothing was to be added

    /// Records told in `skipped`. Always: records = added + skippedRecords() + withoutContact.
    [[nodiscard]] qint64 skippedRecords() const;
};

/// Import of one ADIF file into the log. No question, no duplicate refused; what the log held already can be
/// taken out again afterwards.
class AdifImport {
public:
    /// Told every few thousand records; false stops, and what has been added stays. Must not touch databases.
    using Step = std::function<bool(const ImportProgress &)>;

    /// Reads the file and decides which reader is to take it. Throws store::Error (Unreadable).
    AdifImport(store::Library &databases, QString logPath, const QString &filePath);

    [[nodiscard]] AdifReaderKind reader() const noexcept { return m_reader; }
    [[nodiscard]] const QString &coding() const noexcept { return m_text.codingName; }

    /// Once. Contacts are added in their order, in commits of whole rows, after a verified copy of the log.
    /// The full reader resolves the country from the callsign; the own layout leaves it empty, as it always
    /// has. The operator mark is the last three characters of the path. Throws store::Error where nothing has
    /// been written; a failure later on stands in the result, with the rows that are in the log.
    [[nodiscard]] ImportResult run(const Step &step);

    struct Removal {
        qint64 removed = 0;
        qint64 kept = 0; ///< gone or changed since the import; they stay as they are
    };
    /// Takes exactly the contacts out that run() counted as held already, all or none, after another verified
    /// copy. A second call finds nothing more. Throws store::Error.
    Removal removeRepeats(const store::Progress &progress = {});

private:
    struct Repeat {
        qint64 key;
        qint64 ordinal; ///< of the rows added
        Fingerprint row;
    };
    class Run;

    store::Library &m_databases;
    QString m_logPath;
    QString m_mark;
    foreign::AdifText m_text;
    AdifReaderKind m_reader;
    std::vector<Repeat> m_repeats;
};

} // namespace interchange
