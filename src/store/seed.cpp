#include "store/seed.h"

#include "store/dialect.h"
#include "store/schema.h"
#include "store/sqlite.h"

#include <QFile>

// A static library's resources are linked only where something names them.
static void initSeedResource()
{
    Q_INIT_RESOURCE(seed);
}

namespace store {

namespace {

QString readResource(const QString &name)
{
    initSeedResource();
    QFile file(QStringLiteral(":/seed/") + name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll());
}

QString unescaped(const QString &field)
{
    if (!field.contains(QLatin1Char('\\')))
        return field;
    QString text;
    for (qsizetype i = 0; i < field.size(); ++i) {
        if (field[i] != QLatin1Char('\\') || i + 1 == field.size()) {
            text += field[i];
            continue;
        }
        const QChar next = field[++i];
        text += next == QLatin1Char('n')   ? QLatin1Char('\n')
                : next == QLatin1Char('t') ? QLatin1Char('\t')
                                           : next;
    }
    return text;
}

} // namespace

QList<QStringList> parseTsv(const QString &text)
{
    QList<QStringList> rows;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (line.isEmpty())
            continue;
        QStringList fields = line.split(QLatin1Char('\t'));
        for (QString &field : fields)
            field = unescaped(field);
        rows.append(fields);
    }
    return rows;
}

void seedTable(Connection &connection, const TableLayout &table)
{
    const QList<QStringList> rows = parseTsv(readResource(table.name + QStringLiteral(".tsv")));
    if (!rows.isEmpty()) {
        QStringList names;
        QStringList marks;
        for (const QString &column : rows.front()) {
            names.append(bracketedName(column));
            marks.append(QStringLiteral("?"));
        }
        const QString sql =
            QStringLiteral("INSERT INTO %1(%2) VALUES(%3)")
                .arg(bracketedName(table.name), names.join(QLatin1Char(',')), marks.join(QLatin1Char(',')));
        for (qsizetype i = 1; i < rows.size(); ++i) {
            Values values;
            for (const QString &field : rows[i])
                values.append(field);
            connection.exec(sql, values);
        }
    }
    seedSingleRow(connection, table);
}

bool mustHaveRow(const QString &table)
{
    return table.compare(QLatin1String("tbltit"), Qt::CaseInsensitive) == 0 ||
           table.compare(QLatin1String("tbltitul"), Qt::CaseInsensitive) == 0 ||
           table.compare(QLatin1String("tblhelp"), Qt::CaseInsensitive) == 0;
}

void seedSingleRow(Connection &connection, const TableLayout &table)
{
    if (table.name == QLatin1String("tbltit") || table.name == QLatin1String("tbltitul")) {
        if (connection.singleNumber(QStringLiteral("SELECT count(*) FROM ") + table.name) == 0)
            connection.exec(QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(table.name));
    } else if (table.name == QLatin1String("tblhelp")) {
        if (connection.singleNumber(
                QStringLiteral("SELECT count(*) FROM tblhelp WHERE contest='heLp' COLLATE NOCASE")) == 0)
            connection.exec(QStringLiteral("INSERT INTO tblhelp(contest,TXTHELP) VALUES('heLp',?)"),
                            {readResource(QStringLiteral("tblhelp.txt"))});
    }
}

} // namespace store
