#include "interchange/sql.h"

namespace interchange::sql {

using store::SqlText;

SqlText logTable()
{
    return u"TBLLOG1";
}

SqlText noContact()
{
    return u"select * from tbllog1 where ccall='' and ccall='-'";
}

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

SqlText sameContact(QStringView call, QStringView date, QStringView band, QStringView sent)
{
    return SqlText()
        .text(u"select * from tbllog1 where ccall='")
        .doubled(call)
        .text(u"' and ddate='")
        .doubled(date)
        .text(u"' and bband='")
        .doubled(band)
        .text(u"' and rsts='")
        .doubled(sent)
        .text(u"'");
}

QString firstWithMarks(const QString &condition)
{
    return QStringLiteral("SELECT rowid,QSLP,QSLO,QSLVIA FROM TBLLOG1 WHERE %1 ORDER BY rowid LIMIT 1")
        .arg(condition);
}

QString addContact(const QStringList &fields)
{
    return QStringLiteral("INSERT INTO TBLLOG1(%1) VALUES(?%2)")
        .arg(fields.join(QLatin1Char(',')), QStringLiteral(",?").repeated(fields.size() - 1));
}

QString setMarks(const QStringList &fields)
{
    return QStringLiteral("UPDATE TBLLOG1 SET %1=? WHERE rowid=?").arg(fields.join(QStringLiteral("=?,")));
}

SqlText contestTable()
{
    return u"tblQRZ";
}

SqlText emptyContestTable()
{
    return u"DELETE tblQRZ.* FROM tblQRZ;";
}

} // namespace interchange::sql
