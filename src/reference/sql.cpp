#include "reference/sql.h"

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

SqlText regionTable()
{
    return u"tblrus";
}

SqlText regionsByPrefix(QStringView text)
{
    return SqlText().text(u"select * from tblrus where pref like'").value(text).text(u"*' order by pref");
}

} // namespace reference::sql
