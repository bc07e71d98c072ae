#pragma once

#include "foreign/byteview.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace foreign {

/// One record of a workbook's stream.
struct Record {
    int id = 0;
    ByteView body;
};

/// The records of a stream, one after the other. A record longer than the stream throws Error.
class Records {
public:
    Records(ByteView stream, qsizetype at) : m_stream(stream), m_at(at) {}

    [[nodiscard]] bool atEnd() const noexcept { return m_at >= m_stream.size(); }
    [[nodiscard]] Record next();
    /// The body of a record just read and of the CONTINUE records behind it, which are passed over.
    [[nodiscard]] std::vector<ByteView> withContinuations(const Record &record);

private:
    ByteView m_stream;
    qsizetype m_at;
};

/// Reads through the body of a record that may go on in other ones. Behind its end everything throws Error.
class BodyReader {
public:
    explicit BodyReader(std::vector<ByteView> parts) : m_parts(std::move(parts)) {}

    /// No byte is left.
    [[nodiscard]] bool atEnd();
    [[nodiscard]] quint8 u8();
    [[nodiscard]] quint16 u16();
    [[nodiscard]] quint32 u32();
    void skip(qint64 bytes);
    [[nodiscard]] QByteArray bytes(qsizetype count);
    /// Text in Unicode behind its length of two bytes, or of one: flags, then characters of one or two bytes,
    /// which may change at the seam of two records. Runs of fonts and phonetic data are passed over.
    [[nodiscard]] QString unicode(bool longLength = true);

private:
    [[nodiscard]] ByteView &current();
    void advance(qsizetype bytes);

    std::vector<ByteView> m_parts;
    std::size_t m_part = 0;
    qsizetype m_at = 0;
};

} // namespace foreign
