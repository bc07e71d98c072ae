#include "jetread/values.h"

#include <algorithm>

namespace jetread {

using foreign::jet::ValueKind;

namespace {

constexpr std::size_t kNumericSize = 17;

std::uint64_t signedNumber(std::string_view bytes, std::size_t size)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
    if (size == 2)
        return static_cast<std::uint64_t>(std::int64_t{static_cast<std::int16_t>(value)});
    if (size == 4)
        return static_cast<std::uint64_t>(std::int64_t{static_cast<std::int32_t>(value)});
    return value;
}

/// Decimal digits of a number of four 32-bit words, the highest first.
std::string digits(std::uint32_t (&words)[4])
{
    constexpr std::uint64_t kBase = 10;
    std::string text;
    while (std::any_of(std::begin(words), std::end(words), [](std::uint32_t word) { return word != 0; })) {
        std::uint64_t rest = 0;
        for (std::uint32_t &word : words) {
            const std::uint64_t value = (rest << 32) | word;
            word = static_cast<std::uint32_t>(value / kBase);
            rest = value % kBase;
        }
        text.push_back(static_cast<char>('0' + rest));
    }
    std::reverse(text.begin(), text.end());
    return text;
}

} // namespace

bool ValueWriter::writeFixed(int type, std::string_view bytes, Payload &payload)
{
    const auto integer = [&](std::size_t size, ValueKind kind) {
        if (bytes.size() < size)
            return false;
        payload.kind(kind);
        payload.number64(signedNumber(bytes, size));
        return true;
    };
    const auto raw = [&](std::size_t size, ValueKind kind) {
        if (bytes.size() < size)
            return false;
        payload.kind(kind);
        payload.raw(bytes.substr(0, size));
        return true;
    };
    switch (type) {
    case MDB_BYTE:
        return integer(1, ValueKind::Integer);
    case MDB_INT:
        return integer(2, ValueKind::Integer);
    case MDB_LONGINT:
        return integer(4, ValueKind::Integer);
    case MDB_MONEY:
        return integer(8, ValueKind::Money);
    case MDB_FLOAT:
        return raw(4, ValueKind::Single);
    case MDB_DOUBLE:
        return raw(8, ValueKind::Double);
    case MDB_DATETIME:
        return raw(8, ValueKind::Date);
    case MDB_REPID:
        return raw(16, ValueKind::Guid);
    default:
        return false;
    }
}

/// A sign byte, then sixteen bytes: four words, the highest first, each little-endian.
bool ValueWriter::writeNumeric(const MdbColumn &column, std::string_view bytes, Payload &payload)
{
    constexpr unsigned char kNegative = 0x80;
    constexpr int kMostDecimals = 28;
    // The library has taken the two for each other in some of its versions; a scale is never beyond its
    // precision.
    const int decimals = std::min(column.col_scale, column.col_prec);
    if (bytes.size() < kNumericSize || decimals < 0 || decimals > kMostDecimals)
        return false;
    std::uint32_t words[4] = {};
    for (std::size_t i = 0; i < 4; ++i)
        for (std::size_t j = 0; j < 4; ++j)
            words[i] |= std::uint32_t{static_cast<unsigned char>(bytes[1 + (4 * i) + j])} << (8 * j);
    std::string text = digits(words);
    const auto scale = static_cast<std::size_t>(decimals);
    if (text.size() <= scale)
        text.insert(0, scale + 1 - text.size(), '0');
    if (scale > 0)
        text.insert(text.size() - scale, 1, '.');
    if ((static_cast<unsigned char>(bytes[0]) & kNegative) != 0)
        text.insert(0, 1, '-');
    payload.kind(ValueKind::Decimal);
    payload.text(text);
    return true;
}

bool ValueWriter::write(const MdbColumn &column, const MdbField &field, Payload &payload)
{
    if (column.col_type == MDB_BOOL) { // kept where other columns say whether they are null
        payload.kind(ValueKind::Boolean);
        payload.byte(field.is_null != 0 ? 0 : 1);
        return true;
    }
    if (field.is_null != 0) {
        payload.kind(ValueKind::Null);
        return true;
    }
    const std::string_view bytes = m_database.field(field);
    switch (column.col_type) {
    case MDB_TEXT:
    case MDB_MEMO:
        if (column.col_type == MDB_MEMO && !m_database.longValue(bytes, m_long))
            return false;
        m_database.decode(column.col_type == MDB_MEMO ? std::string_view(m_long) : bytes, m_text);
        payload.kind(ValueKind::Text);
        payload.text(m_text);
        return true;
    case MDB_OLE:
        if (!m_database.longValue(bytes, m_long))
            return false;
        payload.kind(ValueKind::Binary);
        payload.text(m_long);
        return true;
    case MDB_BINARY:
        payload.kind(ValueKind::Binary);
        payload.text(bytes);
        return true;
    case MDB_NUMERIC:
        return writeNumeric(column, bytes, payload);
    default:
        return writeFixed(column.col_type, bytes, payload);
    }
}

} // namespace jetread
