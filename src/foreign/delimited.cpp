#include "foreign/delimited.h"

#include "foreign/error.h"

#include <algorithm>

namespace foreign {

namespace {

constexpr char kQuote = '"';

bool isLineEnd(char c) noexcept
{
    return c == '\n' || c == '\r';
}

bool isBlank(char c) noexcept
{
    return c == ' ' || c == '\t';
}

char separatorOf(QByteArrayView bytes)
{
    const auto *at =
        std::find_if(bytes.begin(), bytes.end(), [](char c) { return !isBlank(c) && !isLineEnd(c); });
    while (at != bytes.begin() && !isLineEnd(at[-1])) // a table whose first column has no name
        --at;
    qsizetype tabs = 0;
    qsizetype semicolons = 0;
    bool quoted = false;
    for (; at != bytes.end() && !isLineEnd(*at); ++at) {
        quoted = quoted != (*at == kQuote);
        tabs += !quoted && *at == '\t' ? 1 : 0;
        semicolons += !quoted && *at == ';' ? 1 : 0;
    }
    return tabs > 0 && tabs >= semicolons ? '\t' : ';';
}

[[noreturn]] void fail(qint64 line, const QString &what)
{
    throw Error(QStringLiteral("строка %1: ").arg(line) + what);
}

} // namespace

QString DelimitedField::text(TextCoding coding) const
{
    QString text = decode(raw, coding);
    if (quoted)
        text.replace(QLatin1String("\"\""), QLatin1String("\""));
    return text;
}

DelimitedReader::DelimitedReader(QByteArrayView bytes) : m_bytes(bytes)
{
    constexpr char kEndOfFile = 0x1A;
    while (!m_bytes.isEmpty() && m_bytes.back() == kEndOfFile)
        m_bytes.chop(1);
    m_separator = separatorOf(m_bytes);
}

bool DelimitedReader::endsField(qsizetype at) const noexcept
{
    return at >= m_bytes.size() || m_bytes[at] == m_separator || isLineEnd(m_bytes[at]);
}

void DelimitedReader::takeLineEnd()
{
    if (atEnd())
        return;
    const bool pair = m_bytes[m_at] == '\r' && m_at + 1 < m_bytes.size() && m_bytes[m_at + 1] == '\n';
    m_at += pair ? 2 : 1;
    ++m_line;
}

void DelimitedReader::skipBlankLines()
{
    while (!atEnd()) {
        qsizetype at = m_at;
        while (at < m_bytes.size() && isBlank(m_bytes[at]) && m_bytes[at] != m_separator)
            ++at;
        if (at < m_bytes.size() && !isLineEnd(m_bytes[at]))
            return;
        m_at = at;
        takeLineEnd();
    }
}

/// Reads the field that begins with the quote at the current place; false where its quotes mean nothing.
bool DelimitedReader::readQuoted(DelimitedField &field)
{
    const qsizetype begin = m_at + 1;
    qint64 line = m_line;
    qsizetype at = begin;
    for (; at < m_bytes.size() && at - begin <= kLongestField; ++at) {
        const char c = m_bytes[at];
        if (c == '\n' || (c == '\r' && (at + 1 == m_bytes.size() || m_bytes[at + 1] != '\n')))
            ++line;
        if (line - m_line >= kMostLines)
            fail(m_line, QStringLiteral("поле, начатое кавычкой, тянется больше чем на %1 строк; "
                                        "похоже, кавычка не закрыта")
                             .arg(kMostLines));
        if (c != kQuote)
            continue;
        if (at + 1 < m_bytes.size() && m_bytes[at + 1] == kQuote) {
            ++at;
            continue;
        }
        qsizetype behind = at + 1;
        while (!endsField(behind) && isBlank(m_bytes[behind]))
            ++behind;
        if (endsField(behind)) {
            field = {m_bytes.sliced(begin, at - begin), true};
            m_at = behind;
            m_line = line;
            return true;
        }
        if (line == m_line)
            return false;
        fail(m_line, QStringLiteral("поле начато кавычкой, но не закрыто (следующая кавычка — в строке %1, "
                                    "и после неё нет разделителя)")
                         .arg(line));
    }
    if (at < m_bytes.size())
        fail(m_line, QStringLiteral("поле длиннее %1 байт").arg(kLongestField));
    fail(m_line, QStringLiteral("поле начато кавычкой, но не закрыто до конца файла"));
}

DelimitedField DelimitedReader::readPlain()
{
    const qsizetype begin = m_at;
    while (!endsField(m_at))
        ++m_at;
    if (m_at - begin > kLongestField)
        fail(m_line, QStringLiteral("поле длиннее %1 байт").arg(kLongestField));
    return {m_bytes.sliced(begin, m_at - begin), false};
}

DelimitedField DelimitedReader::readField()
{
    DelimitedField field;
    if (!atEnd() && m_bytes[m_at] == kQuote && readQuoted(field))
        return field;
    return readPlain();
}

bool DelimitedReader::next(DelimitedRecord &record)
{
    record.fields.clear();
    skipBlankLines();
    record.line = m_line;
    if (atEnd())
        return false;
    for (;;) {
        if (record.fields.size() == kMostFields)
            fail(m_line, QStringLiteral("больше %1 полей").arg(kMostFields));
        record.fields.push_back(readField());
        if (atEnd() || m_bytes[m_at] != m_separator)
            break;
        ++m_at;
    }
    takeLineEnd();
    return true;
}

TextFile prepareDelimited(QByteArray bytes)
{
    if (bytes.isEmpty())
        throw Error(QStringLiteral("файл пуст"));
    TextFile text = prepareText(std::move(bytes));
    if (text.bytes.contains('\0'))
        throw Error(
            QStringLiteral("это не текстовый файл (или текст UTF-16 без метки в начале; сохраните его "
                           "в UTF-8)"));
    return text;
}

TextFile loadDelimited(const QString &path)
{
    constexpr qint64 kLargest = 512LL * 1024 * 1024;
    return prepareDelimited(
        readWhole(path, kLargest, QStringLiteral("файл больше 512 мегабайт; разделите его на части")));
}

} // namespace foreign
