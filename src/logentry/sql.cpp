#include "logentry/sql.h"

namespace logentry::sql {

using store::SqlText;

namespace {

constexpr char16_t kGridColumns[] =
    u"select ccall,DDATE,ttime,bband,rsts,rstr,ps1,QTH,nNAME,QSLVIA,qslp,qslo,contr,prf from tbllog1 ";

/// pieces[0] value pieces[1]
SqlText splice(QStringView before, QStringView value, QStringView after)
{
    return SqlText().text(before).value(value).text(after);
}

} // namespace

SqlText logTable()
{
    return u"TBLLOG1";
}

SqlText workedCallsUnsorted()
{
    return u"select distinct ccall  from tbllog1";
}

SqlText workedCallsSorted()
{
    return u"SELECT DISTINCT CCALL FROM TBLLOG1 ORDER BY CCALL";
}

SqlText countryTable()
{
    return u"tbldxcc";
}

SqlText regionTable()
{
    return u"tblrus";
}

SqlText allTowns()
{
    return u"select distinct gorod from tblgorod order by gorod";
}

SqlText townTable()
{
    return u"tblgorod";
}

SqlText allNamesAtStart()
{
    return u"select *  from tblNAME  order by nname ";
}

SqlText allNames()
{
    return u"select nname from tblNAME order by nname";
}

SqlText nameTable()
{
    return u"tblname";
}

SqlText callbookTable()
{
    return u"tblcalbuk";
}

SqlText keyTable()
{
    return u"tblfont";
}

SqlText ownStationTable()
{
    return u"tbltit";
}

SqlText countryOfPrefix(QStringView candidate)
{
    return splice(u"select * from tbldxcc where prf='", candidate, u"'");
}

SqlText regionOfKey(QStringView key)
{
    return splice(u"select * from tblrus where pref='", key, u"'");
}

SqlText townsOfRegion(QStringView code)
{
    return splice(u"select gorod from tblgorod where prf='", code, u"' order by gorod");
}

SqlText confirmedCalls(QStringView country)
{
    return splice(u"select distinct ccall from tbllog1 where CONTR ='", country, u"' AND len(qslp)>'0'");
}

SqlText workedCalls(QStringView country)
{
    return splice(u"select distinct ccall from tbllog1 where  CONTR ='", country, u"'");
}

SqlText callbookEntry(QStringView call)
{
    return splice(u"select * from tblcalbuk where ccall='", call, u"'");
}

SqlText latinOfKey(QChar cyrillic)
{
    return SqlText().text(u"select * from tblfont where rus='").doubled(QStringView(&cyrillic, 1)).text(u"'");
}

SqlText contactsOfDay(QStringView date)
{
    return SqlText().text(kGridColumns).text(u"WHERE ddate=datevalue('").value(date).text(u"')");
}

SqlText contactsOfDayAfterRecording(QStringView date)
{
    return SqlText()
        .text(u"select ccall,DDATE,ttime,bband,rsts,rstr,PS1,QTH,nNAME,QSLVIA,qslp,qslo,contr,prf from "
              u"tbllog1 where "
              u"ddate=datevalue('")
        .value(date)
        .text(u"')");
}

SqlText contactsWith(QStringView call)
{
    return SqlText().text(kGridColumns).text(u"where ccall='").value(call).text(u"'");
}

SqlText workedCallsFrom(QStringView beginning)
{
    return splice(u"select distinct ccall from tblLOG1 where ccall like'", beginning, u"*'");
}

SqlText cyrillicOfKey(QChar latin)
{
    return SqlText().text(u"select * from tblfont where engl='").doubled(QStringView(&latin, 1)).text(u"'");
}

SqlText namesFrom(QStringView beginning)
{
    return splice(u"select nname from tblNAME where nname like'", beginning, u"*' ORDER BY NNAME");
}

SqlText townsFrom(QStringView beginning, QStringView region)
{
    return SqlText()
        .text(u"select distinct gorod from tblgorod where gorod like'")
        .value(beginning)
        .text(u"*' and prf='")
        .value(region)
        .text(u"' order by gorod");
}

SqlText nameEqual(QStringView name)
{
    return splice(u"select nname from tblNAME where nname='", name, u"'");
}

SqlText townEqual(QStringView town)
{
    return splice(u"select * from tblgorod where gorod='", town, u"'");
}

SqlText townsOfRegionUnsorted(QStringView region)
{
    return splice(u"select gorod from tblgorod where prf='", region, u"'");
}

SqlText emptyParallelLog()
{
    return u"DELETE tbllog1.* FROM tbllog1;";
}

SqlText loadParallelLog(QStringView mainLogPath)
{
    return SqlText()
        .text(u"INSERT INTO tbllog1 in '")
        .doubled(mainLogPath)
        .text(u"'  SELECT tbllog1.* From tbllog1 ;");
}

SqlText countryForRevision(QStringView candidate)
{
    return splice(u"select pref,kont,strana from tbldxcc where prf='", candidate, u"'");
}

SqlText contactsOfPeriod(QStringView first, QStringView last)
{
    return SqlText()
        .text(u"select * from tbllog1 where ddate >= datevalue('")
        .value(first)
        .text(u"') and ddate <= datevalue('")
        .value(last)
        .text(u"') order by cdate(ddate),ttime");
}

SqlText emptyPrintTable()
{
    return u"DELETE tblprint.* FROM tblprint;";
}

SqlText loadPrintTable(QStringView mainLogPath, QStringView first, QStringView last)
{
    return SqlText()
        .text(u"INSERT INTO tblprint  SELECT * From  tbllog1 in '")
        .doubled(mainLogPath)
        .text(u"' WHERE ddate >=DateValue('")
        .value(first)
        .text(u"') and ddate <=DateValue('")
        .value(last)
        .text(u"') order by cdate(ddate),ttime");
}

} // namespace logentry::sql
