#include "qsl/sql.h"

namespace qsl::sql {

using store::SqlText;

SqlText logTable()
{
    return u"TBLLOG1";
}

SqlText contactsAtStart()
{
    return u"Select ccall,bband,qslo,qslp,ddate,ttime,rsts,qslvia,rstr,prf,PS1  from TBLLOG1 order by ccall";
}

SqlText blank()
{
    return u"select * from tbllogTemp order by bband";
}

SqlText allCalls()
{
    return u"SELECT distinct CCALL FROM TBLLOG1";
}

SqlText countryTable()
{
    return u"tbldxcc";
}

SqlText countryPrefixes()
{
    return u"select distinct pref from tbldxcc  where len(pref)>'0'  order by pref";
}

SqlText regionTable()
{
    return u"tblrus";
}

SqlText regionPrefixes()
{
    return u"select distinct pref from tblrus where len(pref)>'0'  order by pref";
}

SqlText callbookTable()
{
    return u"tblcalbuk";
}

SqlText ownStationTable()
{
    return u"tbltit";
}

SqlText titleTable()
{
    return u"tbltitul";
}

// ---- lists of callsigns

SqlText allCallsSorted()
{
    return u"select distinct ccall from tblLOG1  order by ccall";
}

SqlText callsWithCard()
{
    return u"SELECT distinct CCALL FROM TBLLOG1 where len(qslp)>'0'";
}

SqlText callsOfCountry(QStringView country)
{
    return SqlText()
        .text(u"select distinct ccall from tblLOG1 where contr='")
        .value(country)
        .text(u"' order by ccall");
}

SqlText callsOfRegion(QStringView region, QStringView key)
{
    return SqlText()
        .text(u"select DISTINCT CCALL from TBLlog1 where MID(CCALL,3,2)='")
        .value(region)
        .text(u"' and contr='RUSSIAN' AND PRF='")
        .value(key)
        .text(u"'");
}

SqlText callsFrom(QStringView beginning, QStringView key)
{
    return SqlText()
        .text(u"select distinct ccall from tblLOG1 where ccall like'")
        .value(beginning)
        .text(u"*' AND PRF='")
        .value(key)
        .text(u"' order by ccall");
}

SqlText callsOnBand(QStringView band, QStringView key)
{
    return SqlText()
        .text(u"select distinct ccall from tblLOG1 where bband='")
        .value(band)
        .text(u"' AND PRF='")
        .value(key)
        .text(u"' order by ccall");
}

SqlText callsOfRegionOnBand(QStringView region, QStringView band, QStringView key)
{
    return SqlText()
        .text(u"select DISTINCT CCALL from TBLlog1 where MID(CCALL,3,2)='")
        .value(region)
        .text(u"' and bband='")
        .value(band)
        .text(u"' and contr='RUSSIAN' AND PRF='")
        .value(key)
        .text(u"'");
}

SqlText callsOfCountryOnBand(QStringView band, QStringView country, QStringView key)
{
    return SqlText()
        .text(u"select distinct ccall from tblLOG1 where bband='")
        .value(band)
        .text(u"' AND CONTR='")
        .value(country)
        .text(u"' AND PRF='")
        .value(key)
        .text(u"' order by ccall");
}

// ---- the grid of contacts

SqlText contactsOfCall(QStringView call)
{
    return SqlText()
        .text(u"select  ccall,bband,qslo,qslp,ddate,ttime,rsts,qslvia,prf,ps1 from tblLOG1 where CCALL='")
        .value(call)
        .text(u"' order by ccall");
}

SqlText contactsOfFoundCall(QStringView call, QStringView key)
{
    return SqlText()
        .text(u"select  ccall,bband,qslo,qslp,ddate,ttime,rsts,qslvia,prf from tblLOG1 where ccall ='")
        .value(call)
        .text(u"' AND PRF='")
        .value(key)
        .text(u"' order by ccall");
}

SqlText contactsOfCountry(QStringView country, QStringView key)
{
    return SqlText()
        .text(u"select  ccall,bband,qslo,qslp,ddate,ttime,rsts,qslvia from tblLOG1 where contr='")
        .value(country)
        .text(u" ' AND PRF='")
        .value(key)
        .text(u"' order by ccall");
}

SqlText contactsOfCallByBand(QStringView call)
{
    return SqlText()
        .text(u"select  ccall,bband,qslo,qslp,ddate,ttime,rsts,qslvia from tblLOG1 where ccall='")
        .value(call)
        .text(u"' order by bband");
}

SqlText contactsAtTime(QStringView call, QStringView time)
{
    return SqlText()
        .text(u"select * from tbllog1 where ccall='")
        .value(call)
        .text(u"' and ttime='")
        .value(time)
        .text(u"'");
}

// ---- look-ups

SqlText countryOfPrincipalPrefix(QStringView prefix)
{
    return SqlText().text(u"select strana from tbldxcc where pref='").value(prefix).text(u"'");
}

SqlText countryOfPrefix(QStringView prefix)
{
    return SqlText().text(u"select strana from tbldxcc where prf='").value(prefix).text(u"'");
}

SqlText nameOfRegion(QStringView region)
{
    return SqlText()
        .text(u"select DISTINCT GOROD from tblrus where PREF='")
        .value(region)
        .text(u"' AND NOT(PRF='0')");
}

SqlText callbookEntry(QStringView call)
{
    return SqlText().text(u"select  * from tblCALBUK where CCALL='").value(call).text(u"'");
}

// ---- counts

SqlText regionSent(QStringView band, QStringView region)
{
    return SqlText()
        .text(u"select distinct ccall from tblLOG1 where bband='")
        .value(band)
        .text(u"' and contr='RUSSIAN' and len(qslo)>'0' AND MID(CCALL,3,2)='")
        .value(region)
        .text(u"'");
}

SqlText regionReceived(QStringView band, QStringView region)
{
    return SqlText()
        .text(u"select  distinct ccall from tblLOG1 where contr='RUSSIAN' and bband='")
        .value(band)
        .text(u"'  and len(qslp)>'0' AND MID(CCALL,3,2)='")
        .value(region)
        .text(u"'");
}

SqlText regionWorked(QStringView band, QStringView region)
{
    return SqlText()
        .text(u"select  distinct ccall from tblLOG1 where contr='RUSSIAN'  AND MID(CCALL,3,2)='")
        .value(region)
        .text(u"' and bband='")
        .value(band)
        .text(u"'");
}

SqlText countrySent(QStringView country, QStringView band)
{
    return SqlText()
        .text(u"select  qslo from tblLOG1 where contr='")
        .value(country)
        .text(u"' and bband='")
        .value(band)
        .text(u"' and contr<>'\"' and len(qslo)>'0'");
}

SqlText countryReceived(QStringView country, QStringView band)
{
    return SqlText()
        .text(u"select  qslp from tblLOG1 where contr='")
        .value(country)
        .text(u"' and bband='")
        .value(band)
        .text(u"' and contr<>'\"' and len(qslp)>'0'");
}

SqlText countryWorked(QStringView country, QStringView band)
{
    return SqlText()
        .text(u"select  CCALL from tblLOG1 where contr='")
        .value(country)
        .text(u"' and bband='")
        .value(band)
        .text(u"' and contr<>'\"'");
}

SqlText countriesSent(QStringView band)
{
    return SqlText()
        .text(u"select distinct contr from tblLOG1 where bband='")
        .value(band)
        .text(u"' and contr<>'\"' and len(qslo)>'0'");
}

SqlText countriesReceived(QStringView band)
{
    return SqlText()
        .text(u"select  distinct contr from tblLOG1 where  bband='")
        .value(band)
        .text(u"' and contr<>'\"' and len(qslp)>'0'");
}

SqlText countriesWorked(QStringView band)
{
    return SqlText()
        .text(u"select  distinct contr from tblLOG1 where  bband='")
        .value(band)
        .text(u"' and contr<>'\"'");
}

SqlText allCountriesSent()
{
    return u"select distinct contr from tblLOG1 where  contr<>'\"' and len(qslo)>'0'";
}

SqlText allCountriesReceived()
{
    return u"select  distinct contr from tblLOG1 where  contr<>'\"' and len(qslp)>'0'";
}

SqlText allCountriesWorked()
{
    return u"select  distinct contr from tblLOG1 where contr<>'\"'";
}

SqlText confirmedCalls()
{
    return u"select distinct ccall from tblLOG1 where len(qslp)>'0' order by ccall";
}

SqlText allContacts()
{
    return u"select ccall from tbllog1";
}

SqlText differentCalls()
{
    return u"select distinct ccall from tblLOG1 ";
}

// ---- marking

SqlText contactToMark(QStringView band, QStringView call, QStringView date)
{
    return SqlText()
        .text(u"select * from tblLOG1 where bband='")
        .value(band)
        .text(u"' and ccall='")
        .value(call)
        .text(u"' and ddate=DateValue('")
        .value(date)
        .text(u"')");
}

SqlText emptyBlank()
{
    return u"DELETE tbllogTEMP.* FROM tbllogTEMP;";
}

// ---- help

SqlText helpText()
{
    return u"select txthelp from tblhelp where contest='heLp'";
}

} // namespace qsl::sql
