#include "foreign/textfile.h"

#include "foreign/error.h"

#include <QFile>
#include <QFileInfo>

namespace foreign {

TextFile prepareText(QByteArray bytes)
{
    TextFile text;
    const DetectedCoding found = detectCoding(bytes);
    text.codingName = codingName(found.coding);
    text.marked = found.mark > 0;
    if (found.coding == TextCoding::Utf16Le || found.coding == TextCoding::Utf16Be) {
        text.bytes = decode(QByteArrayView(bytes).sliced(found.mark), found.coding).toUtf8();
    } else {
        text.coding = found.coding;
        text.bytes = std::move(bytes);
        text.bytes.remove(0, found.mark);
    }
    return text;
}

QByteArray readWhole(const QString &path, qint64 largest, const QString &tooLarge)
{
    QFile file(path);
    if (QFileInfo(path).isDir())
        throw Error(QStringLiteral("это папка, а не файл"));
    if (!file.open(QIODevice::ReadOnly))
        throw Error(QStringLiteral("файл не открывается: ") + file.errorString());
    if (file.size() > largest)
        throw Error(tooLarge);
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError || bytes.size() < file.size())
        throw Error(QStringLiteral("файл не читается до конца: ") + file.errorString());
    return bytes;
}

} // namespace foreign
