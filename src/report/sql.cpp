#include "report/sql.h"

#include "store/dialect.h"

namespace report::sql {

store::SqlText rows(const QString &table, const QString &order)
{
    if (order.isEmpty())
        return table;
    store::SqlText text;
    text.text(u"select * from ").text(table).text(u" order by ").text(order);
    return text;
}

QString firstRow(const QString &table, const QString &field)
{
    return QStringLiteral("SELECT %1 FROM %2 ORDER BY rowid LIMIT 1")
        .arg(store::bracketedName(field), store::bracketedName(table));
}

} // namespace report::sql
