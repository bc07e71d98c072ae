#include "interchange/spreadsheet.h"

#include "foreign/error.h"
#include "foreign/workbook.h"
#include "store/datasource.h"
#include "store/fixedpath.h"

#include <QFileInfo>

#include <algorithm>

namespace interchange {

namespace {

constexpr int kChunkRows = 1000;

QString table()
{
    return QStringLiteral("TBLLOG1");
}

/// Fields of the log in the order of the sheet's columns.
const QStringList &fields()
{
    static const QStringList names = {
        QStringLiteral("ccall"),  QStringLiteral("ddate"), QStringLiteral("ttime"), QStringLiteral("bband"),
        QStringLiteral("rsts"),   QStringLiteral("rstr"),  QStringLiteral("qth"),   QStringLiteral("NNAME"),
        QStringLiteral("QSLVIA"), QStringLiteral("QSLP"),  QStringLiteral("QSLO")};
    return names;
}

foreign::Sheet sheetOf(const QString &workbook)
{
    if (!QFileInfo::exists(workbook))
        throw store::Error(store::ErrorKind::Missing, workbook, QStringLiteral("файла нет"));
    try {
        return foreign::readSheetFile(workbook, QStringLiteral("Tbl"));
    } catch (const foreign::Error &error) {
        throw store::Error(store::ErrorKind::Unreadable, workbook, error.text());
    }
}

/// A log that cannot take the rows is told before it is copied.
void check(store::Connection &log)
{
    const QStringList present = store::columnNames(log, table());
    if (present.isEmpty())
        throw store::Error(store::ErrorKind::MissingTable, log.path(),
                           QStringLiteral("нет таблицы %1").arg(table()));
    for (const QString &field : fields())
        if (!present.contains(field, Qt::CaseInsensitive))
            throw store::Error(store::ErrorKind::Other, log.path(),
                               QStringLiteral("в таблице %1 нет поля %2").arg(table(), field));
    if (log.readOnly())
        throw store::Error(store::ErrorKind::ReadOnly, log.path(), {});
}

/// Adds the rows from `first` to before `end` in one transaction.
void addRows(store::DataSource &target, store::Connection &log, const foreign::Sheet &sheet, int first,
             int end)
{
    std::optional<store::Patience> patience(log);
    store::Transaction transaction(log);
    for (int row = first; row < end; ++row) {
        target.addNew();
        for (int column = 0; column < fields().size(); ++column)
            target.setField(fields()[column], sheet.text(row, column));
        target.update();
    }
    patience.emplace(log); // each row stored has ended it
    transaction.commit();
}

} // namespace

QString spreadsheetPath(const store::Library &databases)
{
    return store::fixedPath(databases, u"c:\\radio\\TblLog.XLS");
}

QString spreadsheetLog(store::Library &databases)
{
    QString fixed = store::fixedDatabase(databases, u"c:\\radio\\dbiaru");
    return QFileInfo::exists(fixed) ? fixed : databases.path(u"\\dbiaru.mdb");
}

SpreadsheetResult importSpreadsheet(store::Library &databases, const QString &workbook, const QString &log,
                                    const SpreadsheetSteps &steps)
{
    const foreign::Sheet sheet = sheetOf(workbook);
    int end = 0;
    while (end < sheet.rowCount() && !sheet.text(end, 0).isEmpty())
        ++end;
    SpreadsheetResult result;
    result.rows = end;
    for (int row = end; row < sheet.rowCount(); ++row)
        result.notTaken += sheet.isBlankRow(row) ? 0 : 1;

    store::Connection &connection = databases.connection(log);
    check(connection);
    if (end == 0)
        return result;
    databases.makeVerifiedCopy(log, steps.copying);
    store::DataSource target(QStringLiteral("import"), databases);
    target.setFirstPage(1); // only its fields are wanted
    target.setDatabaseName(log);
    target.setRecordSource(table());
    target.refresh();
    while (result.added < end && !result.stopped) {
        const int first = static_cast<int>(result.added);
        const int next = std::min(first + kChunkRows, end);
        try {
            addRows(target, connection, sheet, first, next);
        } catch (const store::Error &error) {
            if (first == 0)
                throw;
            target.cancelUpdate();
            result.failed = error;
            return result;
        }
        result.added = next;
        result.stopped = steps.adding && !steps.adding(next, end) && next < end;
    }
    return result;
}

} // namespace interchange
