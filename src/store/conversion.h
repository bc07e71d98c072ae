#pragma once

#include "foreign/jetcodepage.h"
#include "foreign/jetfile.h"
#include "store/error.h"
#include "store/folder.h"
#include "store/schema.h"

#include <QList>
#include <QString>

#include <functional>
#include <optional>

namespace store {

/// A genuine old database (Jet) of an installation, and the name under which its rows belong.
struct OldFile {
    QString source; ///< the file itself, or the original that a conversion has kept
    QString target; ///< one of the eleven names, as it is spelled in the folder
};

/// Asked where the code page in a file's header does not fit its texts. Gives the code page to read them in,
/// 0 where the operator chooses none: the file is then left alone.
using ChooseCodePage = std::function<int(const QString &path, const foreign::CodePageDoubt &doubt)>;

/// Told how many of the steps are done (a row read, a row compared). False stops the conversion.
using ConversionProgress = std::function<bool(qint64 done, qint64 total)>;

struct ConversionOptions {
    foreign::JetOptions reader;
    ChooseCodePage chooseCodePage; ///< without it what fits best is taken
    /// Tables and columns that the new file has in any case; without it those of the file's name, or of a
    /// log.
    const FileLayout *layout = nullptr;
};

struct Conversion {
    struct Table {
        QString name;
        qint64 rows = 0;
    };
    QString original; ///< where the old file stands now
    QList<Table> tables;

    [[nodiscard]] qint64 rows() const;
};

/// The old databases of a folder: those under one of the eleven names, and the kept originals of those names
/// that are gone. `path` gives the place of one of the eleven names.
[[nodiscard]] QList<OldFile> findOldFiles(const QString &folder,
                                          const std::function<QString(const QString &name)> &path);

/// Rows that the file claims; 0 where it cannot be read.
[[nodiscard]] qint64 claimedRows(const QString &path, foreign::JetOptions reader);

/// Converts an old database into the file `file.target`: every table, row and column; values become texts as
/// foreign::jetText() says. The source is read a second time and compared with the new file row by row. Only
/// then does the new file take the name; the original stays beside it as NAME.jet.mdb (.jet2 ... where that
/// is taken). At any moment the name belongs to the whole old file or to the whole new one. Nothing where
/// `progress` wanted to stop; the folder is then as it was, as after any Error.
std::optional<Conversion> convertJet(const OldFile &file, const ConversionOptions &options,
                                     const ConversionProgress &progress);

/// The same into a new file anywhere, for instance of a log to be merged. The source stays where it is.
/// `newPath` must not exist.
std::optional<Conversion> convertJetTo(const QString &jetPath, const QString &newPath,
                                       const ConversionOptions &options, const ConversionProgress &progress);

/// Removes what conversions that were cut off have left in a folder.
void removeConversionLeftovers(const QString &folder);

} // namespace store
