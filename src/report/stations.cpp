#include "report/stations.h"

#include "report/sql.h"

namespace report {

bool isStationTable(QStringView table)
{
    return table.compare(u"tblcalbuk", Qt::CaseInsensitive) == 0;
}

QStringList stationFields(QStringView table, const QStringList &columns)
{
    const bool isBlank = table.compare(u"tbllogTEMP", Qt::CaseInsensitive) == 0;
    QStringList fields;
    for (const QString &field :
         {isBlank ? QStringLiteral("CONTR") : QStringLiteral("QSLVIA"), QStringLiteral("ccall")})
        if (columns.contains(field, Qt::CaseInsensitive))
            fields.append(field);
    return fields;
}

QString stationCall(QStringView field)
{
    constexpr QStringView kVia = u"via ";
    const QStringView text = field.trimmed();
    const bool via = text.startsWith(kVia, Qt::CaseInsensitive);
    return (via ? text.mid(kVia.size()).trimmed() : text).toString();
}

StationFinder::StationFinder(store::Connection &connection, const QString &table, const QStringList &fields)
    : m_connection(connection), m_hold(connection.run(sql::keys(table))), m_sql(sql::station(table, fields)),
      m_fields(int(fields.size())), m_records(m_fields)
{
    (void)m_hold.next();
}

int StationFinder::find(const QList<QByteArrayView> &rowFields)
{
    QByteArray all;
    for (const QByteArrayView field : rowFields) {
        all.append(field);
        all.append('\0');
    }
    if (const auto known = m_recordOfFields.constFind(all); known != m_recordOfFields.constEnd())
        return *known;
    int record = -1;
    for (const QByteArrayView field : rowFields)
        if (const QString call = stationCall(QString::fromUtf8(field)); record < 0 && !call.isEmpty())
            record = recordOf(call);
    m_recordOfFields.insert(all, record);
    return record;
}

int StationFinder::recordOf(const QString &call)
{
    store::Cursor found = m_connection.run(m_sql, {call});
    if (!found.next())
        return -1;
    const qint64 key = found.number(0);
    if (const auto known = m_recordOfKey.constFind(key); known != m_recordOfKey.constEnd())
        return *known;
    const auto record = int(m_records.rows());
    for (int field = 0; field < m_fields; ++field)
        m_records.add(found.utf8(field + 1));
    m_recordOfKey.insert(key, record);
    return record;
}

} // namespace report
