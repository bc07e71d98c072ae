#pragma once

#include "report/snapshot.h"
#include "store/sqlite.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

namespace report {

/// True for a table with a record for each of many stations, the callbook. A placeholder that names it stands
/// for the record of the row's station; of any other table for that of its first record.
[[nodiscard]] bool isStationTable(QStringView table);

/// Fields of a report's table that name the station a row's mail goes to, the first that is known before the
/// next: the QSL route, then the callsign. Only those that the table has (`columns`); empty where it has
/// neither. In the blank the route stands in CONTR, which in the log is the country; there it is QSLVIA.
[[nodiscard]] QStringList stationFields(QStringView table, const QStringList &columns);

/// Callsign of such a field: without "via " and the blanks around.
[[nodiscard]] QString stationCall(QStringView field);

/// Finds the records of stations for rows, and keeps each one that it found once. All come from one state of
/// the table: nothing may write to its file meanwhile.
class StationFinder {
public:
    /// `fields` of the table are kept. Throws Error.
    StationFinder(store::Connection &connection, const QString &table, const QStringList &fields);

    /// Number in records() of the record of the first of the row's fields that has one, the one stored first
    /// of several; letter case does not count. -1 for none. Throws Error.
    [[nodiscard]] int find(const QList<QByteArrayView> &rowFields);

    [[nodiscard]] const Snapshot &records() const noexcept { return m_records; }

private:
    [[nodiscard]] int recordOf(const QString &call);

    store::Connection &m_connection;
    store::Cursor m_hold; ///< keeps the file from being locked and released again at every look-up
    QString m_sql;
    int m_fields;
    Snapshot m_records;
    QHash<QByteArray, int> m_recordOfFields; ///< what rows brought before
    QHash<qint64, int> m_recordOfKey;        ///< by key in the table
};

} // namespace report
