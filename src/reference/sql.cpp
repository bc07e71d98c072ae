#include "reference/sql.h"

#include "store/schema.h"

namespace reference::sql {

using store::SqlText;

SqlText allCalls()
{
    return u"select distinct ccall from tbllog1 order by ccall";
}

SqlText callsFrom(QStringView text)
{
    return SqlText().text(u"select distinct ccall from tbllog1 where ccall like'").value(text).text(u"*'");
}

SqlText stationInLog(QStringView call)
{
    return SqlText().text(u"select ccall,nname,qth,qslvia from tbllog1 where ccall='").value(call).text(u"'");
}

SqlText callbookRecord(QStringView call)
{
    return SqlText().text(u"select * from tblcalbuk where ccall='").value(call).text(u"'");
}

SqlText noRecord()
{
    return u"select * from tblcalbuk where ccall='' and ccall<>''";
}

SqlText callbookTable()
{
    return u"tblcalbuk";
}

SqlText callbookByCall()
{
    return u"select * from tblcalbuk order by ccall";
}

QString callbookContents(const QStringList &fields)
{
    QString sum = QStringLiteral("0");
    for (int i = 0; i < fields.size(); ++i)
        sum += QStringLiteral("+%1*(ifnull(%2,'')<>'')").arg(QString::number(1U << unsigned(i)), fields[i]);
    return QStringLiteral("SELECT rowid,ccall,%1 FROM tblcalbuk ORDER BY rowid").arg(sum);
}

QString addToCallbook(const QStringList &fields)
{
    return QStringLiteral("INSERT INTO tblcalbuk(%1) VALUES(?%2)")
        .arg(fields.join(QLatin1Char(',')), QStringLiteral(",?").repeated(fields.size() - 1));
}

QString fillCallbookRecord(const QStringList &fields)
{
    QStringList set;
    for (const QString &field : fields)
        set.append(QStringLiteral("%1=CASE WHEN ifnull(%1,'')='' THEN ? ELSE %1 END").arg(field));
    return QStringLiteral("UPDATE tblcalbuk SET %1 WHERE rowid=?").arg(set.join(QLatin1Char(',')));
}

QString changesByOthers()
{
    return QStringLiteral("PRAGMA data_version");
}

SqlText allCountries()
{
    return u"SELECT * FROM  tbldxcc ORDER BY PRF";
}

SqlText countryTable()
{
    return u"tbldxcc";
}

SqlText countriesByPrefix(QStringView text)
{
    return SqlText().text(u"select * from tbldxcc where prf like'").value(text).text(u"*' order by prf");
}

SqlText countriesByName(QStringView text)
{
    return SqlText().text(u"select * from tbldxcc where strana like'").value(text).text(u"*'");
}

QString countryRows()
{
    return QStringLiteral("SELECT rowid,prf,PREF,strana,kont,cq,iaru,GradN,GradE,Dolg,Shir,%1 FROM tbldxcc "
                          "ORDER BY rowid")
        .arg(store::ownRowColumn());
}

QString addCountryRow()
{
    return QStringLiteral("INSERT INTO tbldxcc(prf,PREF,strana,kont,cq,iaru,GradN,GradE,Dolg,Shir) "
                          "VALUES(?,?,?,?,?,?,?,?,?,?)");
}

QString changeCountryRow()
{
    return QStringLiteral(
        "UPDATE tbldxcc SET PREF=?,strana=?,kont=?,cq=?,iaru=?,GradN=?,GradE=?,Dolg=?,Shir=? "
        "WHERE rowid=?");
}

QString removeCountryRow()
{
    return QStringLiteral("DELETE FROM tbldxcc WHERE rowid=?");
}

SqlText regionTable()
{
    return u"tblrus";
}

SqlText regionsByPrefix(QStringView text)
{
    return SqlText().text(u"select * from tblrus where pref like'").value(text).text(u"*' order by pref");
}

} // namespace reference::sql
