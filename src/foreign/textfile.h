#pragma once

#include "foreign/textcoding.h"

#include <QByteArray>
#include <QString>

namespace foreign {

/// A text file's bytes ready to be read: coding found out, byte order mark taken off, UTF-16 made UTF-8.
struct TextFile {
    QByteArray bytes;
    TextCoding coding = TextCoding::Utf8; ///< of `bytes`
    QString codingName;                   ///< of the file, for the operator
    bool marked = false;                  ///< the file began with a byte order mark
};

[[nodiscard]] TextFile prepareText(QByteArray bytes);

/// Bytes of a whole file. Throws Error where it cannot be read to its end, and with `tooLarge` where it is
/// larger than `largest`.
[[nodiscard]] QByteArray readWhole(const QString &path, qint64 largest, const QString &tooLarge);

} // namespace foreign
