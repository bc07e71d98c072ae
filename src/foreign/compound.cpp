#include "foreign/compound.h"

#include <algorithm>
#include <utility>

namespace foreign {

namespace {

constexpr auto kSignature = "\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1";
constexpr qsizetype kHeaderSize = 512;
constexpr int kSmallShift = 6;
constexpr quint32 kFirstSpecial = 0xfffffff0; ///< numbers from here on are marks, no sectors
constexpr quint32 kNone = 0xffffffff;

// Places in the header.
constexpr qsizetype kSectorShiftAt = 30;
constexpr qsizetype kSmallShiftAt = 32;
constexpr qsizetype kDirectoryAt = 48;
constexpr qsizetype kSmallLimitAt = 56;
constexpr qsizetype kSmallTableAt = 60;
constexpr qsizetype kMoreTablesAt = 68;
constexpr qsizetype kTablesAt = 76;

// Places in an entry of the directory.
constexpr qsizetype kEntrySize = 128;
constexpr qsizetype kNameLengthAt = 64;
constexpr qsizetype kTypeAt = 66;
constexpr qsizetype kLeftAt = 68;
constexpr qsizetype kRightAt = 72;
constexpr qsizetype kChildAt = 76;
constexpr qsizetype kStartAt = 116;
constexpr qsizetype kSizeAt = 120;
constexpr quint8 kStream = 2;
constexpr quint8 kRoot = 5;

Error damaged()
{
    return Error(QStringLiteral("файл повреждён или обрезан"));
}

QString entryName(const ByteView &entry)
{
    const int length = std::min<int>(entry.u16(kNameLengthAt), kNameLengthAt) / 2 - 1;
    QString name;
    for (int i = 0; i < length; ++i)
        name += QChar(entry.u16(2 * qsizetype{i}));
    return name.toLower();
}

} // namespace

bool CompoundFile::recognised(QByteArrayView bytes)
{
    return bytes.startsWith(QByteArrayView(kSignature));
}

CompoundFile::CompoundFile(QByteArray bytes) : m_bytes(std::move(bytes)), m_file(m_bytes)
{
    if (!recognised(m_bytes) || m_bytes.size() < kHeaderSize)
        throw damaged();
    m_sectorShift = m_file.u16(kSectorShiftAt);
    if ((m_sectorShift != 9 && m_sectorShift != 12) || m_file.u16(kSmallShiftAt) != kSmallShift)
        throw damaged();
    const qsizetype sectorSize = qsizetype{1} << m_sectorShift;
    // The header takes the place of one sector. The last sector may be cut.
    m_sectorCount = static_cast<quint32>(
        std::min<qsizetype>((m_bytes.size() + sectorSize - 1) / sectorSize - 1, kFirstSpecial));
    m_smallLimit = m_file.u32(kSmallLimitAt);
    readSectorTable();
    readDirectory(m_file.u32(kDirectoryAt));
}

ByteView CompoundFile::sector(quint32 number) const
{
    if (number >= m_sectorCount)
        throw damaged();
    const qsizetype at = (qsizetype{number} + 1) << m_sectorShift;
    return m_file.part(at, std::min(qsizetype{1} << m_sectorShift, m_file.size() - at));
}

/// The header lists the first sectors of the table; where it is longer, a chain of sectors lists the others.
/// The number of sectors that the header tells is not needed: the table is read until every sector of the
/// file is in it or the list ends.
void CompoundFile::readSectorTable()
{
    const auto take = [this](quint32 number) {
        if (number >= kFirstSpecial || m_next.size() >= m_sectorCount)
            return;
        const ByteView part = sector(number);
        for (qsizetype at = 0; at + 4 <= part.size(); at += 4)
            m_next.push_back(part.u32(at));
    };
    for (qsizetype at = kTablesAt; at < kHeaderSize; at += 4)
        take(m_file.u32(at));
    quint32 more = m_file.u32(kMoreTablesAt);
    const qsizetype linkAt = (qsizetype{1} << m_sectorShift) - 4;
    for (quint32 steps = 0; more < kFirstSpecial && m_next.size() < m_sectorCount; ++steps) {
        if (steps > m_sectorCount)
            throw damaged();
        const ByteView list = sector(more);
        for (qsizetype at = 0; at < linkAt; at += 4)
            take(list.u32(at));
        more = list.u32(linkAt);
    }
}

QByteArray CompoundFile::chain(quint32 start) const
{
    QByteArray bytes;
    quint32 steps = 0;
    for (quint32 at = start; at < kFirstSpecial; at = m_next[at]) {
        if (++steps > m_sectorCount || at >= m_next.size())
            throw damaged();
        bytes.append(sector(at).bytes());
    }
    return bytes;
}

/// The entries form a binary tree below the root. Its order is not relied upon: every entry is visited.
void CompoundFile::readDirectory(quint32 start)
{
    const QByteArray bytes = chain(start);
    const ByteView directory(bytes);
    const qsizetype count = directory.size() / kEntrySize;
    if (count == 0)
        throw damaged();
    const ByteView root = directory.part(0, kEntrySize);
    if (root.u8(kTypeAt) != kRoot)
        throw damaged();
    if (root.u32(kStartAt) < kFirstSpecial) {
        m_smallSectors = chain(root.u32(kStartAt));
        m_smallNext = chain(m_file.u32(kSmallTableAt));
    }
    std::vector<bool> seen(static_cast<std::size_t>(count), false);
    std::vector<quint32> waiting{root.u32(kChildAt)};
    while (!waiting.empty()) {
        const quint32 number = waiting.back();
        waiting.pop_back();
        if (number == kNone)
            continue;
        if (number >= count || seen[number])
            throw damaged();
        seen[number] = true;
        const ByteView entry = directory.part(number * kEntrySize, kEntrySize);
        waiting.push_back(entry.u32(kLeftAt));
        waiting.push_back(entry.u32(kRightAt));
        if (entry.u8(kTypeAt) == kStream)
            m_streams.insert(entryName(entry), {entry.u32(kStartAt), entry.u32(kSizeAt)});
    }
}

QByteArray CompoundFile::smallStream(const Entry &entry) const
{
    const ByteView sectors(m_smallSectors);
    const ByteView next(m_smallNext);
    QByteArray bytes;
    for (quint32 at = entry.start; bytes.size() < entry.size; at = next.u32(4 * qsizetype{at})) {
        if (bytes.size() > sectors.size())
            throw damaged(); // the chain runs in a circle
        const qsizetype place = qsizetype{at} << kSmallShift;
        const qsizetype length = std::min<qsizetype>(qsizetype{1} << kSmallShift, entry.size - bytes.size());
        bytes.append(sectors.part(place, length).bytes());
        if (bytes.size() == entry.size)
            break;
    }
    return bytes;
}

std::optional<QByteArray> CompoundFile::stream(const QString &name) const
{
    const auto found = m_streams.constFind(name.toLower());
    if (found == m_streams.constEnd())
        return std::nullopt;
    if (found->size < m_smallLimit)
        return smallStream(*found);
    QByteArray bytes = chain(found->start);
    if (bytes.size() < found->size)
        throw damaged();
    bytes.truncate(found->size);
    return bytes;
}

} // namespace foreign
