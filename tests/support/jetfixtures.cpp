#include "support/jetfixtures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace testsupport {

namespace {

QStringList lines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s is not there", qPrintable(path));
    QStringList list = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    list.removeLast(); // behind the last line end
    return list;
}

std::optional<QString> field(const QString &text)
{
    if (text == QLatin1String("\\N"))
        return std::nullopt;
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != QLatin1Char('\\')) {
            plain += text[i];
            continue;
        }
        switch (text[++i].unicode()) {
        case 't':
            plain += QLatin1Char('\t');
            break;
        case 'n':
            plain += QLatin1Char('\n');
            break;
        case 'r':
            plain += QLatin1Char('\r');
            break;
        default:
            plain += text[i];
        }
    }
    return plain;
}

} // namespace

QString dataFile(const QString &name)
{
    return QStringLiteral(TEST_DATA "/") + name;
}

TsvTable expectedTable(const QString &mdbPath, const QString &table)
{
    const QString path = mdbPath.chopped(3) + table + QStringLiteral(".tsv");
    const QStringList text = lines(path);
    TsvTable result;
    result.columns = text.front().split(QLatin1Char('\t'));
    for (qsizetype i = 1; i < text.size(); ++i) {
        QList<std::optional<QString>> row;
        const QStringList fields = text[i].split(QLatin1Char('\t'));
        for (const QString &one : fields)
            row.append(field(one));
        result.rows.append(row);
    }
    return result;
}

QStringList expectedTypes(const QString &mdbPath, const QString &table)
{
    const QFileInfo info(mdbPath);
    const QString name = info.fileName().remove(QStringLiteral("_hdr1252")); // the same tables
    QStringList types;
    const QStringList schema = lines(info.dir().filePath(QStringLiteral("schema.tsv")));
    for (const QString &line : schema) {
        const QStringList parts = line.split(QLatin1Char('\t'));
        if (parts[0] == name && parts[1] == table)
            types.append(parts[3]);
    }
    return types;
}

QStringList expectedTables(const QString &mdbPath)
{
    const QFileInfo info(mdbPath);
    const QString begin = info.completeBaseName() + QLatin1Char('.');
    QStringList tables;
    const QStringList texts = info.dir().entryList({begin + QStringLiteral("*.tsv")}, QDir::Files);
    for (const QString &text : texts)
        tables.append(text.mid(begin.size()).chopped(4));
    return tables;
}

} // namespace testsupport
