#include "base/text.h"
#include "reference/callbookfile.h"
#include "reference/sql.h"
#include "store/rowreader.h"
#include "store/safefile.h"

#include <algorithm>
#include <optional>

namespace reference {

namespace {

constexpr qint64 kStepRows = 1000;

/// Text of a callbook file in one of the two codings.
class CallbookText {
public:
    CallbookText(CallbookSeparator separator, bool utf8)
        : m_separator(static_cast<char>(separator)), m_utf8(utf8)
    {
        if (utf8)
            m_bytes = "\xEF\xBB\xBF";
        for (const QString &field : callbookFields())
            append(field.toUtf8());
        endLine();
    }

    void append(QByteArrayView utf8)
    {
        if (!m_atLineBegin)
            m_bytes.append(m_separator);
        m_atLineBegin = false;
        const bool quoted = std::any_of(utf8.begin(), utf8.end(), [this](char c) {
            return c == '"' || c == m_separator || c == '\r' || c == '\n';
        });
        if (!quoted && foreign::isAscii(utf8) && !utf8.contains('\0')) {
            m_bytes.append(utf8);
            return;
        }
        QString text = QString::fromUtf8(utf8);
        text.replace(QChar(u'\0'), QChar(u' ')); // no text file has one
        if (quoted)
            text = u'"' + text.replace(QLatin1String("\""), QLatin1String("\"\"")) + u'"';
        appendText(text);
    }
    void endLine()
    {
        m_bytes.append("\r\n");
        m_atLineBegin = true;
    }
    /// The text can be written and will be read as what it is.
    [[nodiscard]] bool fits() const
    {
        return m_utf8 || (m_fits && (foreign::isAscii(m_bytes) || foreign::detectCoding(m_bytes).coding ==
                                                                      foreign::TextCoding::Windows1251));
    }
    [[nodiscard]] bool canGoOn() const noexcept { return m_fits; }
    [[nodiscard]] const QByteArray &bytes() const noexcept { return m_bytes; }
    [[nodiscard]] QString codingName() const
    {
        return foreign::codingName(m_utf8 ? foreign::TextCoding::Utf8 : foreign::TextCoding::Windows1251);
    }

private:
    void appendText(const QString &text)
    {
        if (m_utf8) {
            m_bytes.append(text.toUtf8());
            return;
        }
        m_fits = m_fits &&
                 std::all_of(text.cbegin(), text.cend(), [](QChar c) { return base::cp1251Code(c) >= 0; });
        m_bytes.append(base::cp1251Bytes(text));
    }

    char m_separator;
    bool m_utf8;
    bool m_fits = true;
    bool m_atLineBegin = true;
    QByteArray m_bytes;
};

/// Composes all records; ends early with one that the coding cannot hold, and where a step stops it.
CallbookExportResult compose(store::Connection &callbook, CallbookText &text, const CallbookStep &step)
{
    CallbookExportResult result;
    result.codingName = text.codingName();
    store::RowReader reader(callbook, sql::callbookByCall(), callbookFields());
    while (text.canGoOn() && reader.next()) {
        for (int field = 0; field < callbookFields().size(); ++field)
            text.append(reader.utf8(field));
        text.endLine();
        ++result.records;
        if (step && result.records % kStepRows == 0 && !step(result.records, reader.total())) {
            result.stopped = true;
            break;
        }
    }
    return result;
}

} // namespace

CallbookExportResult exportCallbook(store::Library &databases, const QString &path,
                                    CallbookSeparator separator, const CallbookStep &step)
{
    store::SafeFile file(path);
    store::Connection &callbook = databases.connection(callbookPath(databases));
    std::optional<CallbookText> text;
    CallbookExportResult result;
    for (const bool utf8 : {false, true}) {
        text.emplace(separator, utf8);
        result = compose(callbook, *text, step);
        if (result.stopped)
            return result;
        if (text->fits())
            break;
    }
    file.write(text->bytes());
    file.finish();
    file.publish();
    return result;
}

} // namespace reference
