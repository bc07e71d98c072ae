#include "foreign/adifreader.h"

#include "foreign/adxreader.h"

#include <algorithm>
#include <array>
#include <limits>

namespace foreign {

namespace {

/// Longest text between "<" and ">" that is taken for a tag.
constexpr qsizetype kLongestTag = 256;

/// Longest value whose length is read in other ways too; without a limit a hostile file could take hours.
constexpr quint64 kLongestReread = 1'000'000;

bool isBlank(char c) noexcept
{
    return static_cast<unsigned char>(c) <= ' '; // also NUL and the old end-of-file mark
}

char upper(char c) noexcept
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

bool sameName(QByteArrayView written, QByteArrayView upperName) noexcept
{
    return written.size() == upperName.size() &&
           std::equal(written.cbegin(), written.cend(), upperName.cbegin(),
                      [](char a, char b) { return upper(a) == b; });
}

QByteArrayView trimmed(QByteArrayView text) noexcept
{
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

/// Digits only; a number beyond all files becomes the largest one.
std::optional<quint64> lengthIn(QByteArrayView text) noexcept
{
    constexpr quint64 kBeyond = std::numeric_limits<quint32>::max() * quint64(1024);
    if (text.isEmpty())
        return std::nullopt;
    quint64 value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return std::nullopt;
        value = std::min(value * 10 + static_cast<quint64>(c - '0'), kBeyond);
    }
    return value;
}

bool isName(QByteArrayView text) noexcept
{
    return !text.isEmpty() && std::none_of(text.cbegin(), text.cend(), isBlank);
}

} // namespace

QByteArrayView AdifRecord::value(QByteArrayView upperName) const noexcept
{
    for (const AdifField &field : fields)
        if (sameName(field.name, upperName))
            return field.value;
    return {};
}

bool AdifRecord::has(QByteArrayView upperName) const noexcept
{
    return std::any_of(fields.begin(), fields.end(),
                       [&](const AdifField &field) { return sameName(field.name, upperName); });
}

QString AdifRecord::text(QByteArrayView upperName) const
{
    return decode(value(upperName), coding);
}

AdifReader::AdifReader(QByteArrayView bytes, TextCoding coding) : m_bytes(bytes), m_coding(coding)
{
    skipHeader();
}

/// The tag that begins with the "<" at `at`.
std::optional<AdifReader::Tag> AdifReader::tagAt(qsizetype at) const
{
    const qsizetype limit = std::min(m_bytes.size(), at + kLongestTag);
    qsizetype end = at + 1;
    while (end < limit && m_bytes[end] != '>' && m_bytes[end] != '<')
        ++end;
    if (end == limit || m_bytes[end] == '<')
        return std::nullopt;
    const QByteArrayView inner = m_bytes.sliced(at + 1, end - at - 1);
    const qsizetype colon = inner.indexOf(':');
    Tag tag;
    tag.begin = at;
    tag.end = end + 1;
    tag.name = trimmed(colon < 0 ? inner : inner.first(colon));
    if (!isName(tag.name))
        return std::nullopt;
    if (colon >= 0) {
        const QByteArrayView rest = inner.sliced(colon + 1);
        const qsizetype type = rest.indexOf(':');
        tag.length = lengthIn(trimmed(type < 0 ? rest : rest.first(type)));
    }
    return tag;
}

/// A "<" that begins no tag, but was to begin a callsign's.
bool AdifReader::isBadCallAt(qsizetype at) const
{
    constexpr qsizetype kSize = 4;
    const QByteArrayView rest = m_bytes.sliced(at + 1);
    return rest.size() > kSize && rest[kSize] == ':' && sameName(rest.first(kSize), "CALL");
}

std::optional<AdifReader::Tag> AdifReader::nextTag(qsizetype from) const
{
    for (qsizetype at = m_bytes.indexOf('<', from); at >= 0; at = m_bytes.indexOf('<', at + 1)) {
        if (auto tag = tagAt(at))
            return tag;
        if (isBadCallAt(at)) {
            Tag tag;
            tag.begin = at;
            tag.end = at + 1;
            tag.isBadCall = true;
            return tag;
        }
    }
    return std::nullopt;
}

/// Nothing but white space lies between `at` and the next "<" or the end.
bool AdifReader::lands(qsizetype at) const
{
    while (at < m_bytes.size() && isBlank(m_bytes[at]))
        ++at;
    return at == m_bytes.size() || m_bytes[at] == '<';
}

/// Place behind `count` characters from `begin` on; -1 where the file has not so many.
qsizetype AdifReader::charactersEnd(qsizetype begin, quint64 count, bool lineEndIsOne) const
{
    qsizetype at = begin;
    for (; count > 0; --count) {
        if (at >= m_bytes.size())
            return -1;
        const bool pair =
            lineEndIsOne && m_bytes[at] == '\r' && at + 1 < m_bytes.size() && m_bytes[at + 1] == '\n';
        at += pair ? 2 : 1;
        while (m_coding == TextCoding::Utf8 && at < m_bytes.size() &&
               (static_cast<unsigned char>(m_bytes[at]) & 0xC0) == 0x80)
            ++at;
    }
    return at;
}

/// The same where the writer counted two for each line end and something has made them one since.
qsizetype AdifReader::withShortLineEnds(qsizetype begin, quint64 count) const
{
    qsizetype at = begin;
    while (count > 0) {
        if (at >= m_bytes.size())
            return -1;
        const quint64 cost = m_bytes[at] == '\n' ? 2 : 1;
        if (cost > count)
            return -1;
        count -= cost;
        ++at;
    }
    return at;
}

/// End of a value, or -1 where its length reaches behind the end of the file.
qsizetype AdifReader::endOfValue(const Tag &tag) const
{
    const quint64 length = *tag.length;
    const auto rest = static_cast<quint64>(m_bytes.size() - tag.end);
    qsizetype byLetter = -1;
    if (length <= rest) {
        byLetter = tag.end + static_cast<qsizetype>(length);
        if (lands(byLetter))
            return byLetter;
        const QByteArrayView value = m_bytes.sliced(tag.end, static_cast<qsizetype>(length));
        // In ASCII on one line all readings are the same.
        if (length <= kLongestReread && (!isAscii(value) || value.contains('\n'))) {
            const std::array<qsizetype, 3> readings = {charactersEnd(tag.end, length, false),
                                                       charactersEnd(tag.end, length, true),
                                                       withShortLineEnds(tag.end, length)};
            for (const qsizetype end : readings)
                if (end >= 0 && lands(end))
                    return end;
        }
    } else {
        // Line ends that have become shorter can bring even the last value within the file.
        const bool near = rest <= kLongestReread && length <= 2 * rest;
        const qsizetype end = near ? withShortLineEnds(tag.end, length) : -1;
        return end >= 0 && lands(end) ? end : -1;
    }
    for (qsizetype at = m_bytes.indexOf('<', tag.end); at >= 0 && at < byLetter;
         at = m_bytes.indexOf('<', at + 1)) {
        const auto inner = tagAt(at);
        if (inner && (inner->length || sameName(inner->name, "EOR") || sameName(inner->name, "EOH")))
            return at;
    }
    qsizetype end = byLetter;
    while (m_coding == TextCoding::Utf8 && end < m_bytes.size() && end > tag.end &&
           (static_cast<unsigned char>(m_bytes[end]) & 0xC0) == 0x80)
        ++end; // not half a character
    return end;
}

bool AdifReader::beginsLine(qsizetype at) const
{
    while (at > 0 && (m_bytes[at - 1] == ' ' || m_bytes[at - 1] == '\t'))
        --at;
    return at == 0 || m_bytes[at - 1] == '\n' || m_bytes[at - 1] == '\r';
}

/// A header ends with <eoh>; a file in which an <eor> or the end comes first has none.
void AdifReader::skipHeader()
{
    qsizetype at = 0;
    while (const auto tag = nextTag(at)) {
        if (tag->length || sameName(tag->name, "EOR") || sameName(tag->name, "EOH"))
            m_sawTag = true;
        if (sameName(tag->name, "EOR"))
            return;
        if (sameName(tag->name, "EOH")) {
            m_at = tag->end;
            return;
        }
        const qsizetype end = tag->length ? endOfValue(*tag) : -1;
        at = end < 0 ? tag->end : end;
    }
}

qint64 AdifReader::lineOf(qsizetype at)
{
    for (; m_lineAt < at; ++m_lineAt) {
        const char c = m_bytes[m_lineAt];
        if (c == '\n' || (c == '\r' && (m_lineAt + 1 == m_bytes.size() || m_bytes[m_lineAt + 1] != '\n')))
            ++m_line;
    }
    return m_line;
}

AdifReader::End AdifReader::readFields(AdifRecord &record)
{
    bool hasCall = false;
    while (const auto tag = nextTag(m_at)) {
        const bool isEor = sameName(tag->name, "EOR");
        if (!isEor && !tag->length && !tag->isBadCall) {
            m_at = tag->end;
            continue;
        }
        if (record.line == 0) {
            record.line = lineOf(tag->begin);
            m_recordBegin = tag->begin;
        }
        if (isEor) {
            m_at = tag->end;
            return End::Eor;
        }
        const bool isCall = tag->isBadCall || sameName(tag->name, "CALL");
        if (isCall && hasCall && beginsLine(tag->begin)) {
            m_at = tag->begin;
            return End::Call;
        }
        hasCall = hasCall || isCall;
        if (tag->isBadCall) {
            record.fault = AdifFault::BadCall;
            m_at = tag->end;
            continue;
        }
        const qsizetype end = endOfValue(*tag);
        m_at = end < 0 ? tag->end : end;
        if (end < 0)
            record.fault = AdifFault::LengthTooBig;
        else
            record.fields.push_back({tag->name, trimmed(m_bytes.sliced(tag->end, end - tag->end))});
    }
    return End::File;
}

bool AdifReader::next(AdifRecord &record)
{
    record.line = 0;
    record.fields.clear();
    record.coding = m_coding;
    record.fault = AdifFault::None;
    m_recordBegin = m_bytes.size();
    const End end = readFields(record);
    if (end == End::File) {
        const QByteArrayView rest = trimmed(m_bytes.sliced(m_at));
        m_at = m_bytes.size();
        if (record.fields.empty() && record.fault == AdifFault::None)
            return false; // text after the last record
        if (!rest.isEmpty() && record.fault == AdifFault::None)
            record.fault = AdifFault::CutOff;
    } else if (record.fields.empty() && record.fault == AdifFault::None) {
        record.fault = AdifFault::Empty;
    }
    m_sawTag = true;
    record.raw = m_bytes.sliced(m_recordBegin, m_at - m_recordBegin);
    return true;
}

AdifText prepareAdif(QByteArray bytes)
{
    return prepareText(std::move(bytes));
}

AdifText loadAdif(const QString &path)
{
    constexpr qint64 kLargest = 1'500'000'000; // read whole; ten million contacts are smaller
    return prepareText(
        readWhole(path, kLargest, QStringLiteral("файл больше полутора гигабайт; разделите его на части")));
}

std::unique_ptr<AdifSource> openAdif(const AdifText &text)
{
    if (looksLikeAdx(text.bytes))
        return std::make_unique<AdxReader>(text.bytes);
    return std::make_unique<AdifReader>(text.bytes, text.coding);
}

} // namespace foreign
