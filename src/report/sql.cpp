#include "report/sql.h"

#include "store/dialect.h"

namespace report::sql {

store::SqlText rows(const QString &table, const QString &filled, const QString &order)
{
    if (filled.isEmpty() && order.isEmpty())
        return table;
    store::SqlText text;
    text.text(u"select * from ").text(table);
    if (!filled.isEmpty())
        text.text(u" where len(").text(filled).text(u")>'0'");
    if (!order.isEmpty())
        text.text(u" order by ").text(order);
    return text;
}

QString firstRow(const QString &table, const QString &field)
{
    return QStringLiteral("SELECT %1 FROM %2 ORDER BY rowid LIMIT 1")
        .arg(store::bracketedName(field), store::bracketedName(table));
}

QString keys(const QString &table)
{
    return QStringLiteral("SELECT rowid FROM %1").arg(store::bracketedName(table));
}

QString station(const QString &table, const QStringList &fields)
{
    QStringList columns = {QStringLiteral("rowid")};
    for (const QString &field : fields)
        columns.append(store::bracketedName(field));
    return QStringLiteral("SELECT %1 FROM %2 WHERE ccall=? COLLATE NOCASE ORDER BY rowid LIMIT 1")
        .arg(columns.join(u','), store::bracketedName(table));
}

} // namespace report::sql
