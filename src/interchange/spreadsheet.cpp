#include "interchange/spreadsheet.h"

#include "interchange/sql.h"
#include "store/fixedpath.h"

#include <QFileInfo>

namespace interchange {

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
    const QStringList fields = {QStringLiteral("ccall"), QStringLiteral("ddate"), QStringLiteral("ttime"),
                                QStringLiteral("bband"), QStringLiteral("rsts"),  QStringLiteral("rstr"),
                                QStringLiteral("qth"),   QStringLiteral("NNAME"), QStringLiteral("QSLVIA"),
                                QStringLiteral("QSLP"),  QStringLiteral("QSLO")};
    return importSheet(databases, workbook, {log, sql::logTable(), fields}, steps);
}

} // namespace interchange
