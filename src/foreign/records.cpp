#include "foreign/records.h"

#include <QLatin1String>

#include <algorithm>

namespace foreign {

namespace {

constexpr int kContinue = 0x3c;
constexpr qsizetype kHeadSize = 4;

} // namespace

Record Records::next()
{
    const int id = m_stream.u16(m_at);
    const qsizetype length = m_stream.u16(m_at + 2);
    const ByteView body = m_stream.part(m_at + kHeadSize, length);
    m_at += kHeadSize + length;
    return {id, body};
}

std::vector<ByteView> Records::withContinuations(const Record &record)
{
    std::vector<ByteView> parts{record.body};
    while (m_stream.size() - m_at >= kHeadSize && m_stream.u16(m_at) == kContinue)
        parts.push_back(next().body);
    return parts;
}

/// The part that holds the next byte.
ByteView &BodyReader::current()
{
    while (m_part < m_parts.size() && m_at >= m_parts[m_part].size()) {
        ++m_part;
        m_at = 0;
    }
    if (m_part == m_parts.size())
        throw Error(QStringLiteral("файл повреждён: текст в книге обрывается"));
    return m_parts[m_part];
}

bool BodyReader::atEnd()
{
    while (m_part < m_parts.size() && m_at >= m_parts[m_part].size()) {
        ++m_part;
        m_at = 0;
    }
    return m_part == m_parts.size();
}

void BodyReader::advance(qsizetype bytes)
{
    m_at += bytes;
}

quint8 BodyReader::u8()
{
    const quint8 value = current().u8(m_at);
    advance(1);
    return value;
}

quint16 BodyReader::u16()
{
    const quint16 low = u8();
    return static_cast<quint16>(low | u8() << 8);
}

quint32 BodyReader::u32()
{
    const quint32 low = u16();
    return low | static_cast<quint32>(u16()) << 16;
}

void BodyReader::skip(qint64 bytes)
{
    while (bytes > 0) {
        const qint64 step = std::min<qint64>(bytes, current().size() - m_at);
        advance(step);
        bytes -= step;
    }
}

QByteArray BodyReader::bytes(qsizetype count)
{
    QByteArray result;
    while (count > 0) {
        const qsizetype step = std::min(count, current().size() - m_at);
        result.append(current().part(m_at, step).bytes());
        advance(step);
        count -= step;
    }
    return result;
}

QString BodyReader::unicode(bool longLength)
{
    enum : quint8 { Wide = 1, Phonetic = 4, Runs = 8 };
    qsizetype left = longLength ? u16() : u8();
    quint8 flags = u8();
    const qint64 runs = (flags & Runs) != 0 ? u16() : 0;
    const qint64 phonetic = (flags & Phonetic) != 0 ? u32() : 0;
    QString text;
    while (left > 0) {
        while (m_at >= m_parts[m_part].size())
            flags = u8(); // the record that goes on says anew how wide its characters are
        const ByteView &part = current();
        const qsizetype room = part.size() - m_at;
        if ((flags & Wide) != 0) {
            const qsizetype step = std::min(left, room / 2);
            if (step == 0)
                throw Error(QStringLiteral("файл повреждён: текст в книге обрывается"));
            for (qsizetype i = 0; i < step; ++i)
                text += QChar(part.u16(m_at + 2 * i));
            advance(2 * step);
            left -= step;
        } else {
            const qsizetype step = std::min(left, room);
            text += QLatin1String(part.part(m_at, step).bytes());
            advance(step);
            left -= step;
        }
    }
    constexpr qint64 kRunSize = 4;
    skip(kRunSize * runs + phonetic);
    return text;
}

} // namespace foreign
