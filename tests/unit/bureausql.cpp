// Statements of the bureau and the help window, letter for letter.
#include "qsl/sql.h"

#include <QTest>

using store::SqlText;
namespace sql = qsl::sql;

class BureauSqlTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void statements_data()
    {
        QTest::addColumn<QString>("made");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, const SqlText &made, const char *text) {
            QTest::newRow(name) << made.toString() << QString::fromUtf8(text);
        };
        row("log", sql::logTable(), "TBLLOG1");
        row("contacts at start", sql::contactsAtStart(),
            "Select ccall,bband,qslo,qslp,ddate,ttime,rsts,qslvia,rstr,prf,PS1  from TBLLOG1 order by ccall");
        row("blank", sql::blank(), "select * from tbllogTemp order by bband");
        row("calls", sql::allCalls(), "SELECT distinct CCALL FROM TBLLOG1");
        row("countries", sql::countryTable(), "tbldxcc");
        row("country prefixes", sql::countryPrefixes(),
            "select distinct pref from tbldxcc  where len(pref)>'0'  order by pref");
        row("regions", sql::regionTable(), "tblrus");
        row("region prefixes", sql::regionPrefixes(),
            "select distinct pref from tblrus where len(pref)>'0'  order by pref");
        row("callbook", sql::callbookTable(), "tblcalbuk");
        row("own station", sql::ownStationTable(), "tbltit");
        row("sender", sql::titleTable(), "tbltitul");

        row("calls sorted", sql::allCallsSorted(), "select distinct ccall from tblLOG1  order by ccall");
        row("calls with card", sql::callsWithCard(),
            "SELECT distinct CCALL FROM TBLLOG1 where len(qslp)>'0'");
        row("calls of country", sql::callsOfCountry(u"GERMANY"),
            "select distinct ccall from tblLOG1 where contr='GERMANY' order by ccall");
        row("calls of region", sql::callsOfRegion(u"3A", u"ABC"),
            "select DISTINCT CCALL from TBLlog1 where MID(CCALL,3,2)='3A' and contr='RUSSIAN' AND PRF='ABC'");
        row("calls from", sql::callsFrom(u"UA", u"ABC"),
            "select distinct ccall from tblLOG1 where ccall like'UA*' AND PRF='ABC' order by ccall");
        row("calls on band", sql::callsOnBand(u"14", u"ABC"),
            "select distinct ccall from tblLOG1 where bband='14' AND PRF='ABC' order by ccall");
        row("calls of region on band", sql::callsOfRegionOnBand(u"3A", u"14", u"ABC"),
            "select DISTINCT CCALL from TBLlog1 where MID(CCALL,3,2)='3A' and bband='14' and "
            "contr='RUSSIAN' AND PRF='ABC'");
        row("calls of country on band", sql::callsOfCountryOnBand(u"14", u"GERMANY", u"ABC"),
            "select distinct ccall from tblLOG1 where bband='14' AND CONTR='GERMANY' AND PRF='ABC' order by "
            "ccall");

        row("contacts of call", sql::contactsOfCall(u"UA3ABC"),
            "select  ccall,bband,qslo,qslp,ddate,ttime,rsts,qslvia,prf,ps1 from tblLOG1 where CCALL='UA3ABC' "
            "order by ccall");
        row("contacts of found call", sql::contactsOfFoundCall(u"UA3ABC", u"XYZ"),
            "select  ccall,bband,qslo,qslp,ddate,ttime,rsts,qslvia,prf from tblLOG1 where ccall ='UA3ABC' "
            "AND PRF='XYZ' order by ccall");
        row("contacts of country", sql::contactsOfCountry(u"GERMANY", u"XYZ"),
            "select  ccall,bband,qslo,qslp,ddate,ttime,rsts,qslvia from tblLOG1 where contr='GERMANY ' AND "
            "PRF='XYZ' order by ccall");
        row("contacts by band", sql::contactsOfCallByBand(u"UA3ABC"),
            "select  ccall,bband,qslo,qslp,ddate,ttime,rsts,qslvia from tblLOG1 where ccall='UA3ABC' order "
            "by bband");
        row("contacts at time", sql::contactsAtTime(u"UA3ABC", u"14:07"),
            "select * from tbllog1 where ccall='UA3ABC' and ttime='14:07'");

        row("country of principal prefix", sql::countryOfPrincipalPrefix(u"UA"),
            "select strana from tbldxcc where pref='UA'");
        row("country of prefix", sql::countryOfPrefix(u"UA3"), "select strana from tbldxcc where prf='UA3'");
        row("name of region", sql::nameOfRegion(u"3A"),
            "select DISTINCT GOROD from tblrus where PREF='3A' AND NOT(PRF='0')");
        row("callbook entry", sql::callbookEntry(u"UA3ABC"), "select  * from tblCALBUK where CCALL='UA3ABC'");

        row("region sent", sql::regionSent(u"14", u"3A"),
            "select distinct ccall from tblLOG1 where bband='14' and contr='RUSSIAN' and len(qslo)>'0' AND "
            "MID(CCALL,3,2)='3A'");
        row("region received", sql::regionReceived(u"14", u"3A"),
            "select  distinct ccall from tblLOG1 where contr='RUSSIAN' and bband='14'  and len(qslp)>'0' AND "
            "MID(CCALL,3,2)='3A'");
        row("region worked", sql::regionWorked(u"14", u"3A"),
            "select  distinct ccall from tblLOG1 where contr='RUSSIAN'  AND MID(CCALL,3,2)='3A' and "
            "bband='14'");
        row("country sent", sql::countrySent(u"GERMANY", u"1,8"),
            "select  qslo from tblLOG1 where contr='GERMANY' and bband='1,8' and contr<>'\"' and "
            "len(qslo)>'0'");
        row("country received", sql::countryReceived(u"GERMANY", u"1,8"),
            "select  qslp from tblLOG1 where contr='GERMANY' and bband='1,8' and contr<>'\"' and "
            "len(qslp)>'0'");
        row("country worked", sql::countryWorked(u"GERMANY", u"1,8"),
            "select  CCALL from tblLOG1 where contr='GERMANY' and bband='1,8' and contr<>'\"'");
        row("countries sent", sql::countriesSent(u"28"),
            "select distinct contr from tblLOG1 where bband='28' and contr<>'\"' and len(qslo)>'0'");
        row("countries received", sql::countriesReceived(u"28"),
            "select  distinct contr from tblLOG1 where  bband='28' and contr<>'\"' and len(qslp)>'0'");
        row("countries worked", sql::countriesWorked(u"28"),
            "select  distinct contr from tblLOG1 where  bband='28' and contr<>'\"'");
        row("all countries sent", sql::allCountriesSent(),
            "select distinct contr from tblLOG1 where  contr<>'\"' and len(qslo)>'0'");
        row("all countries received", sql::allCountriesReceived(),
            "select  distinct contr from tblLOG1 where  contr<>'\"' and len(qslp)>'0'");
        row("all countries worked", sql::allCountriesWorked(),
            "select  distinct contr from tblLOG1 where contr<>'\"'");
        row("confirmed calls", sql::confirmedCalls(),
            "select distinct ccall from tblLOG1 where len(qslp)>'0' order by ccall");
        row("all contacts", sql::allContacts(), "select ccall from tbllog1");
        row("different calls", sql::differentCalls(), "select distinct ccall from tblLOG1 ");

        row("contact to mark", sql::contactToMark(u"14", u"UA3ABC", u"05.03.26"),
            "select * from tblLOG1 where bband='14' and ccall='UA3ABC' and ddate=DateValue('05.03.26')");
        row("empty blank", sql::emptyBlank(), "DELETE tbllogTEMP.* FROM tbllogTEMP;");
        row("help", sql::helpText(), "select txthelp from tblhelp where contest='heLp'");
    }
    void statements()
    {
        QFETCH(QString, made);
        QTEST(made, "text");
    }
};

QTEST_GUILESS_MAIN(BureauSqlTest)
#include "bureausql.moc"
