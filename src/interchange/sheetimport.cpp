#include "interchange/sheetimport.h"

#include "foreign/error.h"
#include "foreign/workbook.h"
#include "store/datasource.h"

#include <QFileInfo>

#include <algorithm>

namespace interchange {

namespace {

constexpr int kChunkRows = 1000;

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

/// Adds the rows from `first` to before `end` in one transaction.
void addRows(store::DataSource &target, store::Connection &database, const foreign::Sheet &sheet,
             const QStringList &fields, int first, int end)
{
    std::optional<store::Patience> patience(database);
    store::Transaction transaction(database);
    for (int row = first; row < end; ++row) {
        target.addNew();
        for (int column = 0; column < fields.size(); ++column)
            target.setField(fields[column], sheet.text(row, column));
        target.update();
    }
    patience.emplace(database); // each row stored has ended it
    transaction.commit();
}

} // namespace

SheetResult importSheet(store::Library &databases, const QString &workbook, const SheetTarget &into,
                        const SheetSteps &steps)
{
    const foreign::Sheet sheet = sheetOf(workbook);
    int end = 0;
    while (end < sheet.rowCount() && !sheet.text(end, 0).isEmpty())
        ++end;
    SheetResult result;
    result.rows = end;
    for (int row = end; row < sheet.rowCount(); ++row)
        result.notTaken += sheet.isBlankRow(row) ? 0 : 1;

    store::Connection &connection = databases.connection(into.database);
    store::requireWritable(connection, into.table.toString(), into.fields);
    if (end == 0)
        return result;
    databases.makeVerifiedCopy(into.database, steps.copying);
    store::DataSource target(QStringLiteral("import"), databases);
    target.setFirstPage(1); // only its fields are wanted
    target.setDatabaseName(into.database);
    target.setRecordSource(into.table);
    target.refresh();
    while (result.added < end && !result.stopped) {
        const int first = static_cast<int>(result.added);
        const int next = std::min(first + kChunkRows, end);
        try {
            addRows(target, connection, sheet, into.fields, first, next);
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
