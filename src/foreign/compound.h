#pragma once

#include "foreign/byteview.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <optional>
#include <vector>

namespace foreign {

/// Compound document: a file that holds named streams as a disk holds files, in sectors that a table links to
/// chains. Only the streams directly under the root are told, not those of embedded documents.
/// Whatever the file says, memory stays within a small multiple of its size and every chain ends.
class CompoundFile {
public:
    /// The bytes begin as a compound document does.
    [[nodiscard]] static bool recognised(QByteArrayView bytes);

    /// Keeps the bytes. Throws Error where header, sector table or directory are damaged.
    explicit CompoundFile(QByteArray bytes);

    /// A stream by its name without regard to letter case. Throws Error where its sectors are not all there.
    [[nodiscard]] std::optional<QByteArray> stream(const QString &name) const;

private:
    struct Entry {
        quint32 start = 0;
        quint32 size = 0;
    };

    void readSectorTable();
    void readDirectory(quint32 start);
    [[nodiscard]] ByteView sector(quint32 number) const;
    [[nodiscard]] QByteArray chain(quint32 start) const;
    [[nodiscard]] QByteArray smallStream(const Entry &entry) const;

    QByteArray m_bytes;
    ByteView m_file;
    int m_sectorShift = 0;
    quint32 m_sectorCount = 0;
    std::vector<quint32> m_next; ///< per sector the one that follows it
    QHash<QString, Entry> m_streams;
    QByteArray m_smallSectors; ///< contents of all short streams, in sectors of 64 bytes
    QByteArray m_smallNext;
    quint32 m_smallLimit = 0; ///< streams shorter than this lie in the small sectors
};

} // namespace foreign
