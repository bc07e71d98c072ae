#include "interchange/adifline.h"

#include "base/date.h"
#include "interchange/ownlayout.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

namespace interchange {

namespace {

constexpr qsizetype kCallWidth = 14;
constexpr qsizetype kReportWidth = 14;
constexpr qsizetype kTextWidth = 15;
constexpr qsizetype kModeWidth = 5;
constexpr qsizetype kFrequencyWidth = 5;

/// A line that cannot be read.
struct Breach {};

bool isBlank(char c) noexcept
{
    return static_cast<unsigned char>(c) <= ' ';
}

qsizetype lengthIn(QStringView text)
{
    bool ok = false;
    const int length = text.trimmed().toInt(&ok);
    if (!ok || length < 0)
        throw Breach();
    return length;
}

/// White space, then a tag or the end of the line.
bool lands(QStringView line, qsizetype at)
{
    const QStringView rest = line.mid(at).trimmed();
    return rest.isEmpty() || rest.front() == QLatin1Char('<');
}

/// `length` counts characters, unless only counted in bytes of UTF-8 it ends before a tag or the end of the
/// line: that is the shorter reading, and the longer one may reach an end by running over all that follows.
QStringView valueOf(QStringView line, qsizetype begin, qsizetype length)
{
    qsizetype bytes = 0;
    qsizetype size = 0;
    for (; begin + size < line.size() && bytes < length; ++size) {
        const char16_t c = line[begin + size].unicode();
        bytes += c < 0x80 ? 1 : (c < 0x800 || QChar::isSurrogate(c) ? 2 : 3);
    }
    return bytes == length && lands(line, begin + size) ? line.mid(begin, size) : line.mid(begin, length);
}

/// Value of a tag found by its name; nothing where the name does not stand in the line.
std::optional<QStringView> tagValue(QStringView line, QLatin1String name,
                                    QLatin1String close = QLatin1String(">"))
{
    const qsizetype found = line.indexOf(name);
    if (found < 0)
        return std::nullopt;
    const qsizetype begin = found + name.size();
    const qsizetype end = line.indexOf(close, begin);
    if (end < 0)
        throw Breach();
    return valueOf(line, end + close.size(), lengthIn(line.mid(begin, end - begin)));
}

QStringView callOf(QStringView line)
{
    const qsizetype begin = line.indexOf(QLatin1String("call:")) + 5;
    const qsizetype end = line.indexOf(QLatin1Char('>')); // the first one of the whole line
    if (end < begin)
        throw Breach();
    return valueOf(line, end + 1, lengthIn(line.mid(begin, end - begin)));
}

QString logDate(QStringView value)
{
    const QString date = QStringLiteral("%1.%2.%3").arg(value.right(2), value.mid(4, 2), value.mid(2, 2));
    return base::parseLogDate(date) ? date : QString();
}

QString logBand(QStringView value)
{
    const QByteArrayView label = ownLayoutLabel(value.toUtf8());
    return label.isEmpty() ? value.toString() : QString::fromLatin1(label);
}

AdifLineContact contactOf(QStringView line)
{
    AdifLineContact contact;
    contact.ccall = callOf(line).left(kCallWidth).toString();
    if (const auto date = tagValue(line, QLatin1String("qso_date:"), QLatin1String(":d>")))
        contact.ddate = logDate(*date);
    if (const auto time = tagValue(line, QLatin1String("time_on:")))
        contact.ttime = QStringLiteral("%1:%2").arg(time->left(2), time->right(2));
    if (const auto frequency = tagValue(line, QLatin1String("freq:")))
        contact.bband = frequency->left(kFrequencyWidth).toString();
    if (const auto band = tagValue(line, QLatin1String("band:")))
        contact.bband = logBand(*band);
    if (const auto mode = tagValue(line, QLatin1String("mode:")))
        contact.ps1 = mode->left(kModeWidth).toString();
    if (const auto report = tagValue(line, QLatin1String("rst_sent:")))
        contact.rsts = report->left(kReportWidth).toString();
    if (const auto report = tagValue(line, QLatin1String("rst_rcvd:")))
        contact.rstr = report->left(kReportWidth).toString();
    if (const auto town = tagValue(line, QLatin1String("qth:")))
        contact.QTH = town->left(kTextWidth).toString();
    if (const auto name = tagValue(line, QLatin1String("name:")))
        contact.NNAME = name->left(kTextWidth).toString();
    return contact;
}

/// What the lines of a file say about who wrote it.
struct Evidence {
    bool anything = false; ///< a header or a contact
    bool foreign = false;
    bool datesWithType = false;
    bool datesWithoutType = false;
    bool cutOff = false; ///< the last contact has no end mark
};

bool isOwnHeader(QByteArrayView line)
{
    static constexpr QByteArrayView kBegin("<adif_ver:");
    static constexpr QByteArrayView kEnd(">1.0<eoh>");
    if (!line.startsWith(kBegin) || !line.endsWith(kEnd) || line.size() <= kBegin.size() + kEnd.size())
        return false;
    const QByteArrayView length = line.sliced(kBegin.size(), line.size() - kBegin.size() - kEnd.size());
    return std::all_of(length.cbegin(), length.cend(), [](char c) { return c >= '0' && c <= '9'; });
}

bool isTaken(QByteArrayView name)
{
    static constexpr std::array<QByteArrayView, 10> kTaken = {
        "call", "rst_sent", "rst_rcvd", "mode", "band", "qso_date", "time_on", "freq", "qth", "name"};
    return std::find(kTaken.begin(), kTaken.end(), name) != kTaken.end();
}

/// A tag "name:length>" or "name:length:type>" from `at` on, behind its "<".
struct WholeTag {
    QByteArrayView name;
    qsizetype length = 0;
    QByteArrayView type;
    qsizetype end = 0; ///< behind ">"
};
std::optional<WholeTag> wholeTag(QByteArrayView line, qsizetype at)
{
    constexpr qsizetype kLongest = 1'000'000;
    WholeTag tag;
    const qsizetype close = line.indexOf('>', at);
    const qsizetype colon = line.indexOf(':', at);
    if (close < 0 || colon < 0 || colon > close || colon == at)
        return std::nullopt;
    tag.name = line.sliced(at, colon - at);
    const auto inName = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    };
    if (!std::all_of(tag.name.cbegin(), tag.name.cend(), inName))
        return std::nullopt;
    qsizetype next = colon + 1;
    for (; line[next] >= '0' && line[next] <= '9'; ++next)
        tag.length = std::min(kLongest, tag.length * 10 + (line[next] - '0'));
    if (next == colon + 1 || (line[next] != ':' && line[next] != '>'))
        return std::nullopt;
    if (line[next] == ':')
        tag.type = line.sliced(next + 1, close - next - 1);
    tag.end = close + 1;
    return tag;
}

void weighTag(const WholeTag &tag, Evidence &evidence)
{
    const bool isDate = tag.name == QByteArrayView("qso_date");
    const bool isEmptyExtra =
        tag.length == 0 && (tag.name == QByteArrayView("qsl_via") || tag.name == QByteArrayView("comment"));
    evidence.foreign = evidence.foreign || (!isTaken(tag.name) && !isEmptyExtra) ||
                       (!tag.type.isEmpty() && !(isDate && tag.type == QByteArrayView("d")));
    if (isDate)
        (tag.type.isEmpty() ? evidence.datesWithoutType : evidence.datesWithType) = true;
}

/// `line` has no white space at its end.
void weighLine(QByteArrayView line, foreign::TextCoding coding, Evidence &evidence)
{
    constexpr QByteArrayView kEnd("<eor>");
    if (evidence.anything && !evidence.cutOff && !line.contains('<') && !line.contains("call:"))
        return; // a remark between two contacts, which the line reader passes over
    if (!line.startsWith("<call:")) {
        evidence.foreign = true;
        return;
    }
    evidence.anything = true;
    evidence.cutOff = !line.endsWith(kEnd);
    const qsizetype end = line.size() - (evidence.cutOff ? 0 : kEnd.size());
    for (qsizetype at = line.indexOf('<'); at >= 0 && at < end && !evidence.foreign;
         at = line.indexOf('<', at)) {
        ++at;
        if (line.sliced(at).startsWith("eor>") || line.sliced(at).startsWith("EOR>")) {
            evidence.foreign = true; // several contacts on the line, or something behind the end of one
        } else if (const auto tag = wholeTag(line, at)) {
            weighTag(*tag, evidence);
            qsizetype value = 0;
            for (at = tag->end; value < tag->length && at < end; ++value) {
                ++at;
                while (coding == foreign::TextCoding::Utf8 && at < end &&
                       (static_cast<unsigned char>(line[at]) & 0xC0) == 0x80)
                    ++at;
            }
        }
    }
}

} // namespace

std::variant<AdifLineContact, AdifLineVerdict> readAdifLine(QStringView line)
{
    if (!line.contains(QLatin1String("call:")))
        return AdifLineVerdict::NoContact;
    try {
        return contactOf(line);
    } catch (const Breach &) {
        return AdifLineVerdict::Broken;
    }
}

AdifLines::AdifLines(const foreign::AdifText &text) : m_bytes(text.bytes), m_coding(text.coding)
{
    constexpr char kEndOfFile = 0x1A;
    qsizetype end = m_bytes.size();
    while (end > 0 && (m_bytes[end - 1] == kEndOfFile || m_bytes[end - 1] == '\0'))
        --end;
    if (end < m_bytes.size() && m_bytes[end] == kEndOfFile)
        m_bytes = m_bytes.first(end);
}

bool AdifLines::next()
{
    if (m_at >= m_bytes.size())
        return false;
    const qsizetype begin = m_at;
    while (m_at < m_bytes.size() && m_bytes[m_at] != '\r' && m_bytes[m_at] != '\n')
        ++m_at;
    m_line = m_bytes.sliced(begin, m_at - begin);
    if (m_at < m_bytes.size())
        m_at += m_bytes[m_at] == '\r' && m_at + 1 < m_bytes.size() && m_bytes[m_at + 1] == '\n' ? 2 : 1;
    ++m_number;
    return true;
}

bool isOwnLayout(const foreign::AdifText &text)
{
    if (text.marked)
        return false;
    Evidence evidence;
    bool first = true;
    for (AdifLines lines(text); !evidence.foreign && lines.next();) {
        QByteArrayView line = lines.bytes();
        while (!line.isEmpty() && isBlank(line.back()))
            line.chop(1);
        if (line.isEmpty())
            continue;
        if (first && isOwnHeader(line))
            evidence.anything = true;
        else
            weighLine(line, text.coding, evidence);
        first = false;
    }
    return evidence.anything && !evidence.foreign && !evidence.cutOff &&
           (evidence.datesWithType || !evidence.datesWithoutType);
}

} // namespace interchange
