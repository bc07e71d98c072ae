#include "store/rowreader.h"

#include "store/dialect.h"

namespace store {

RowReader::RowReader(Connection &connection, const SqlText &recordSource, const QStringList &fields)
{
    const SelectQuery query = translateSelect(recordSource);
    if (query.distinct || !query.inFile.isEmpty())
        throw Error(ErrorKind::BadText, connection.path(), QStringLiteral("не строки одной таблицы"),
                    recordSource.toString());
    QStringList names = {QStringLiteral("rowid")};
    for (const QString &field : fields)
        names.append(bracketedName(field));
    QString rows = QStringLiteral(" FROM %1").arg(bracketedName(query.table));
    if (!query.where.isEmpty())
        rows += QStringLiteral(" WHERE ") + query.where;
    QStringList order = query.order;
    order.append(QStringLiteral("rowid")); // rows that the order leaves equal come as they stand in the table
    m_total = connection.singleNumber(QStringLiteral("SELECT count(*)") + rows, query.arguments);
    m_cursor.emplace(
        connection.run(QStringLiteral("SELECT %1%2 ORDER BY %3")
                           .arg(names.join(QLatin1Char(',')), rows, order.join(QLatin1Char(','))),
                       query.arguments + query.orderArguments));
}

} // namespace store
