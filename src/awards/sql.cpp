#include "awards/sql.h"

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

QString blankCounts()
{
    return QStringLiteral("SELECT count(*),count(DISTINCT nullif(ccall,'')),count(DISTINCT nullif(CONTR,'')),"
                          "count(DISTINCT nullif(bband,'')) FROM tbllogTEMP");
}

QString blankRowsWithoutCard()
{
    return QStringLiteral(
        "SELECT count(*) FROM tbllogTEMP AS b WHERE ifnull(length(b.QSLP),0)=0 AND NOT EXISTS("
        "SELECT 1 FROM TBLLOG1 AS l WHERE l.ccall=b.ccall AND b.ccall<>'' AND length(l.QSLP)>0 "
        "AND l.bband=b.bband AND l.ddate=b.ddate)");
}

// ---- the application

SqlText titleTable()
{
    return u"tbltitul";
}

} // namespace awards::sql
