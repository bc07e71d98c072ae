#include "awards/sql.h"

#include "store/functions.h"

namespace awards::sql {

using store::SqlText;

namespace {

/// Condition of a contact with a received card, in the form that the lists of the blank have always used.
QStringView cardCondition(bool confirmed)
{
    return confirmed ? QStringView(u" and not(len(qslp)='0')") : QStringView();
}

} // namespace

// ---- the catalogue

SqlText countries()
{
    return u"select distinct strana from tbldiplom order by strana asc";
}

SqlText regions()
{
    return u"select distinct prf  from tblrus WHERE NOT(prf=\"\")  order by prf";
}

SqlText awardTable()
{
    return u"tbldiplom";
}

SqlText awardsOfCountry(QStringView country)
{
    return SqlText()
        .text(u"select diplom from tblDIPLOM where strana='")
        .value(country)
        .text(u"' order by diplom asc");
}

SqlText awardsOfRegion(QStringView country, QStringView region)
{
    return SqlText()
        .text(u"select * from tblDIPLOM where strana='")
        .value(country)
        .text(u"' and pref='")
        .value(region)
        .text(u"' order by diplom asc");
}

SqlText rules(QStringView award, QStringView country)
{
    return SqlText()
        .text(u"select * from tblDIPLOM where diplom='")
        .value(award)
        .text(u"' and strana='")
        .value(country)
        .text(u"'");
}

SqlText awardToDelete(QStringView award)
{
    return SqlText().text(u"select * from tbldiplom where diplom='").value(award).text(u"'");
}

SqlText region(QStringView code)
{
    return SqlText().text(u"select * from tblrus where prf='").value(code).text(u"'");
}

// ---- picking contacts

SqlText logTable()
{
    return u"TBLLOG1";
}

SqlText countryTable()
{
    return u"tbldxcc";
}

SqlText regionTable()
{
    return u"tblrus";
}

SqlText callbookTable()
{
    return u"tblcalbuk";
}

SqlText countryPrefixes()
{
    return u"select distinct pref  from tbldxcc where len(pref)>'0'  order by pref";
}

SqlText regionPrefixes()
{
    return u"select distinct PREF  from tblrus where len(pref)>'0'  ORDER BY PREF";
}

SqlText countryOfPrefix(QStringView prefix)
{
    return SqlText().text(u"select STRANA  from TBLDXCC where pref='").value(prefix).text(u"'");
}

SqlText callsOfCountry(QStringView country)
{
    return SqlText().text(u"select distinct ccall from TBLlog1 where CONTR='").value(country).text(u"'");
}

/// UA3AB and R3AB: the region's prefix stands behind the first two letters or behind the first one.
SqlText callsOfRegion(QStringView prefix)
{
    return SqlText()
        .text(u"select DISTINCT CCALL from TBLlog1 where contr ='RUSSIAN' AND MID(CCALL,3,2)='")
        .value(prefix)
        .text(u"' or MID(CCALL,2,2)='")
        .value(prefix)
        .text(u"' and contr ='RUSSIAN'");
}

SqlText regionOfPrefix(QStringView prefix)
{
    return SqlText()
        .text(u"select DISTINCT PREF,GOROD,PRF from tblrus where PREF='")
        .value(prefix)
        .text(u"' AND NOT(PRF='0')");
}

SqlText contactsOfCall(QStringView call)
{
    return SqlText().text(u"select * from TBLlog1 where ccall='").value(call).text(u"'");
}

SqlText callbookEntry(QStringView call)
{
    return SqlText().text(u"select ccall,nname,qth from TBLcalbuk where ccall='").value(call).text(u"'");
}

// ---- the blank

SqlText blank()
{
    return u"select * from tbllogTemp order by ccall";
}

SqlText emptyBlank()
{
    return u"DELETE tbllogTEMP.* FROM tbllogTEMP;";
}

SqlText contactOfCall(QStringView call, bool confirmed)
{
    return SqlText()
        .text(u"select  * from tbllog1 where ccall='")
        .value(call)
        .text(u"'")
        .text(cardCondition(confirmed))
        .text(u" order by contr");
}

SqlText contactOfCountry(QStringView country, bool confirmed)
{
    return SqlText()
        .text(u"select *  from TBLlog1 where contr='")
        .value(country)
        .text(u"'")
        .text(cardCondition(confirmed));
}

/// A function's result has no collation of its own, so letter case would count without one.
QString blankCounts()
{
    const QString different = QStringLiteral("count(DISTINCT nullif(%1,'') COLLATE NOCASE)");
    return QStringLiteral("SELECT count(*),count(*)-count(nullif(ccall,'')),%1,%2,%3 FROM tbllogTEMP")
        .arg(different.arg(QStringLiteral("ccall")), different.arg(QStringLiteral("CONTR")),
             different.arg(QStringLiteral("bband")));
}

/// The callsign and the mark are looked up in the index of confirmed callsigns. Most days are written alike:
/// only where the texts differ are they read as dates.
QString blankRowsWithoutCard()
{
    return QStringLiteral("SELECT count(*),max(key),count(CASE WHEN b.ccall<>'' AND "
                          "ifnull(length(b.QSLP),0)=0 AND NOT EXISTS(SELECT 1 FROM TBLLOG1 AS l WHERE "
                          "l.ccall=b.ccall AND length(l.QSLP)>0 AND "
                          "ifnull(l.bband,'')=ifnull(b.bband,'') COLLATE NOCASE AND "
                          "(ifnull(l.ddate,'')=ifnull(b.ddate,'') OR (%1)=(%2))) THEN 1 END) FROM "
                          "(SELECT rowid AS key,ccall,bband,ddate,QSLP FROM tbllogTEMP WHERE rowid>? ORDER "
                          "BY rowid LIMIT ?) AS b")
        .arg(store::dateKeyExpression(QStringLiteral("l.ddate")),
             store::dateKeyExpression(QStringLiteral("b.ddate")));
}

// ---- the application

SqlText titleTable()
{
    return u"tbltitul";
}

} // namespace awards::sql
