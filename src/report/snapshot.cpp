#include "report/snapshot.h"

#include <algorithm>

namespace report {

namespace {

constexpr qsizetype kChunk = 1 << 20;
constexpr unsigned kMore = 0x80;
constexpr int kBits = 7;

void appendSize(QByteArray &bytes, std::size_t size)
{
    while (size >= kMore) {
        bytes.append(char(size % kMore | kMore));
        size >>= kBits;
    }
    bytes.append(char(size));
}

std::size_t takeSize(const char *&at)
{
    std::size_t size = 0;
    for (int shift = 0;; shift += kBits) {
        const auto byte = static_cast<unsigned char>(*at++);
        size |= std::size_t(byte % kMore) << shift;
        if (byte < kMore)
            return size;
    }
}

} // namespace

void Snapshot::add(QByteArrayView utf8)
{
    appendSize(m_row, std::size_t(utf8.size()));
    m_row.append(utf8);
    if (++m_inRow < m_fields)
        return;
    if (m_chunks.empty() || m_chunks.back().size() + m_row.size() > kChunk) {
        m_chunks.emplace_back();
        m_chunks.back().reserve(std::max(kChunk, m_row.size()));
    }
    m_places.push_back({quint32(m_chunks.size() - 1), quint32(m_chunks.back().size())});
    m_chunks.back().append(m_row);
    m_row.resize(0);
    m_inRow = 0;
}

qint64 Snapshot::rows() const noexcept
{
    return qint64(m_places.size());
}

QByteArrayView Snapshot::utf8(qint64 row, int field) const
{
    const Place place = m_places.at(std::size_t(row));
    const char *at = m_chunks[place.chunk].constData() + place.offset;
    for (int i = 0; i < field; ++i) {
        const std::size_t size = takeSize(at);
        at += size;
    }
    const std::size_t size = takeSize(at);
    return {at, qsizetype(size)};
}

} // namespace report
