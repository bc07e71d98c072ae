#pragma once

#include "interchange/adifwriter.h"
#include "interchange/ownlayout.h"
#include "store/library.h"
#include "store/sqltext.h"

#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

namespace interchange {

/// Told what a long operation is doing and how far it is; false ends it. Must not touch the database.
using Step = std::function<bool(const QString &what, qint64 done, qint64 total)>;

struct ExportResult {
    bool stopped = false; ///< by the operator: no file has been written, no row changed
    qint64 contacts = 0;  ///< of the whole period
    qint64 kept = 0;      ///< contacts that the files written hold
    qint64 undated = 0;   ///< contacts whose date or time is none
    /// ADIF 3.1: contacts that are not in the file, or lack something there.
    std::vector<AdifWriter::Omitted> omitted;
    QStringList files;   ///< written
    qint64 repaired = 0; ///< rows of the log into which what the export replaced was written
    /// The files are written, but the rows could not be changed, or not all of them.
    std::optional<store::Error> repairFailure;
};

/// Exports contacts in the program's own layout. lastPiece() and numbered() replace long reports by "599" and
/// fill empty modes, in the log too: after the files are in place and a verified copy of the log is made, row
/// by row in chunks. All functions throw store::Error; then no file has taken the place of an older one.
class AdifExport {
public:
    AdifExport(store::Library &databases, QString logPath);

    /// A period into one file, piece after piece of 500 contacts, each of which replaces the one before: only
    /// the last piece stays, of exactly 500 contacts the header alone. The carried-on band begins empty in
    /// every piece. Writes no file where there is no contact.
    [[nodiscard]] ExportResult lastPiece(const store::SqlText &contacts, const QString &path,
                                         const Step &step);
    /// All contacts into one file; the log is only read.
    [[nodiscard]] ExportResult whole(const store::SqlText &contacts, const QString &path, const Step &step);
    /// All contacts into one file of ADIF 3.1, which other programs and services read; the log is only read.
    [[nodiscard]] ExportResult modern(const store::SqlText &contacts, const QString &path, AdifForm form,
                                      const AdifHeader &header, const Step &step);
    /// All contacts into files of 500 named `path` and the number from 0 on; a last one with the header alone
    /// where 500 divides their number. `band`: the carried-on band, which goes on from file to file and from
    /// export to export. Writes no file where there is no contact. All files take their names together at the
    /// end.
    [[nodiscard]] ExportResult numbered(const store::SqlText &contacts, const QString &path, QByteArray &band,
                                        const Step &step);

private:
    struct Repair {
        qint64 key;
        Replaced replaced;
    };
    using BeginPiece = std::function<void(QByteArray &text)>;
    using TakePiece = std::function<void(const QByteArray &text, qint64 records)>;

    /// Reads all contacts and hands over their lines in pieces of `pieceRecords`, the last one with fewer, or
    /// none. Calls nothing where there is no contact.
    void compose(const store::SqlText &contacts, OwnLayoutWriter &writer, qint64 pieceRecords,
                 const BeginPiece &beginPiece, const TakePiece &take, const Step &step);
    void repair(const Step &step);

    store::Library &m_databases;
    QString m_logPath;
    ExportResult m_result;
    QList<Repair> m_repairs;
};

} // namespace interchange
