#include "interchange/sql.h"

namespace interchange::sql {

using store::SqlText;

SqlText contactsOfPeriod(QStringView first, QStringView last)
{
    return SqlText()
        .text(u"select * from tbllog1 where ddate >= dateValue('")
        .value(first)
        .text(u"') and ddate <= DateValue ('")
        .value(last)
        .text(u"') order by cdate(ddate),ttime,ccall");
}

SqlText allContacts()
{
    return u"select * from tbllog1 order by cdate(ddate),ttime ";
}

QString replaceSentReport()
{
    return QStringLiteral("UPDATE TBLLOG1 SET rsts='599' WHERE rowid=? AND length(rsts)>3");
}

QString replaceReceivedReport()
{
    return QStringLiteral("UPDATE TBLLOG1 SET rstr='599' WHERE rowid=? AND length(rstr)>3");
}

QString fillMode()
{
    return QStringLiteral("UPDATE TBLLOG1 SET ps1=? WHERE rowid=? AND ifnull(ps1,'')=''");
}

} // namespace interchange::sql
