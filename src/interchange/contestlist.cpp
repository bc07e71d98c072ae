#include "interchange/contestlist.h"

#include "interchange/sql.h"
#include "store/fixedpath.h"

namespace interchange {

QString contestWorkbook(const store::Library &databases)
{
    return store::fixedPath(databases, u"D:\\ARCHIVE\\TblLOG1.XLS");
}

QString contestDatabase(const store::Library &databases)
{
    return store::fixedDatabase(databases, u"D:\\ARCHIVE\\dbQRZ");
}

SheetResult importContestList(store::Library &databases, const QString &workbook, const QString &database,
                              const SheetSteps &steps)
{
    const QStringList fields = {QStringLiteral("ccall"), QStringLiteral("AALL")};
    return importSheet(databases, workbook, {database, sql::contestTable(), fields}, steps);
}

qint64 emptyContestList(store::Library &databases, const QString &database)
{
    return databases.execute(database, sql::emptyContestTable());
}

} // namespace interchange
