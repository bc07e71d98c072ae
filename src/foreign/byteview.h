#pragma once

#include "foreign/error.h"

#include <QByteArrayView>
#include <QtEndian>

#include <cstring>

namespace foreign {

/// Bytes of a file, read with a check of every place: what lies outside throws Error. Numbers are little
/// endian. Does not own the bytes.
class ByteView {
public:
    ByteView() = default;
    explicit ByteView(QByteArrayView bytes) noexcept : m_bytes(bytes) {}

    [[nodiscard]] qsizetype size() const noexcept { return m_bytes.size(); }
    [[nodiscard]] QByteArrayView bytes() const noexcept { return m_bytes; }

    [[nodiscard]] quint8 u8(qsizetype at) const { return number<quint8>(at); }
    [[nodiscard]] quint16 u16(qsizetype at) const { return number<quint16>(at); }
    [[nodiscard]] quint32 u32(qsizetype at) const { return number<quint32>(at); }
    [[nodiscard]] double f64(qsizetype at) const
    {
        const auto bits = number<quint64>(at);
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

    [[nodiscard]] ByteView part(qsizetype at, qsizetype length) const
    {
        check(at, length);
        return ByteView(m_bytes.sliced(at, length));
    }
    [[nodiscard]] ByteView from(qsizetype at) const
    {
        check(at, 0);
        return ByteView(m_bytes.sliced(at));
    }

private:
    template <typename T>
    [[nodiscard]] T number(qsizetype at) const
    {
        check(at, sizeof(T));
        return qFromLittleEndian<T>(m_bytes.data() + at);
    }
    void check(qsizetype at, qsizetype length) const
    {
        if (at < 0 || length < 0 || at > m_bytes.size() || length > m_bytes.size() - at)
            throw Error(QStringLiteral("файл повреждён или обрезан"));
    }

    QByteArrayView m_bytes;
};

} // namespace foreign
