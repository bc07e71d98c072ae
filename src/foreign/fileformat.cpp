#include "foreign/fileformat.h"

#include <algorithm>

namespace foreign {

namespace {

QString withAdvice(const QString &what, const QString &it)
{
    return QStringLiteral("это %1; откройте %2 и сохраните как «Книга Excel 97–2003 (*.xls)»").arg(what, it);
}

QString zipContents(const QByteArray &bytes)
{
    constexpr qsizetype kTypeAt = 30; // an OpenDocument file begins with an entry that names its type
    if (bytes.mid(kTypeAt, 128).contains("opendocument"))
        return withAdvice(QStringLiteral("таблица OpenDocument (.ods)"), QStringLiteral("её"));
    return withAdvice(QStringLiteral("книга Excel 2007 или новее (.xlsx)"), QStringLiteral("её"));
}

bool isOldWorkbook(const QByteArray &bytes)
{
    constexpr char kBof = 9;
    return bytes.size() >= 4 && bytes[0] == kBof && (bytes[1] == 0 || bytes[1] == 2 || bytes[1] == 4) &&
           bytes[2] <= 8 && bytes[3] == 0;
}

bool isText(const QByteArray &bytes)
{
    return std::none_of(bytes.begin(), bytes.end(), [](char c) {
        return c >= 0 && c < ' ' && c != '\t' && c != '\r' && c != '\n' && c != '\f' && c != 0x1a;
    });
}

} // namespace

bool isBareWorkbook(QByteArrayView bytes)
{
    return bytes.size() >= 8 && bytes[0] == 9 && bytes[1] == 8 && bytes[4] == 0 &&
           (bytes[5] == 5 || bytes[5] == 6);
}

QString whyNoWorkbook(const QByteArray &bytes)
{
    constexpr qsizetype kJudged = 4096;
    const QByteArray head = bytes.left(kJudged);
    if (bytes.isEmpty())
        return QStringLiteral("файл пуст");
    if (head.startsWith("PK\3\4"))
        return zipContents(head);
    if (isOldWorkbook(head))
        return withAdvice(QStringLiteral("книга Excel 4.0 или старше"), QStringLiteral("её"));
    if (!isText(head))
        return QStringLiteral("это не книга Excel, или она повреждена");
    QByteArray start = head.trimmed().toLower();
    if (start.startsWith("\xef\xbb\xbf"))
        start = start.mid(3).trimmed();
    if (start.startsWith("<?xml"))
        return withAdvice(QStringLiteral("файл XML, а не книга Excel"), QStringLiteral("его"));
    if (start.startsWith('<'))
        return withAdvice(QStringLiteral("страница HTML, а не книга Excel"), QStringLiteral("её"));
    return withAdvice(QStringLiteral("текстовый файл, а не книга Excel"), QStringLiteral("его"));
}

} // namespace foreign
