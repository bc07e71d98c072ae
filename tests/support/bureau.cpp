#include "support/bureau.h"

namespace testsupport {

namespace {

constexpr auto kLog = "dbiaru.mdb";

QStringList stored(const Installation &in, const char *table, const char *fields)
{
    return in.rows(QLatin1String(kLog), QStringLiteral("SELECT %1 FROM %2 ORDER BY rowid")
                                            .arg(QString::fromUtf8(fields), QLatin1String(table)));
}

} // namespace

void addRow(const Installation &in, const QString &fileName, const QString &table, const QString &row)
{
    store::Connection connection(in.file(fileName), store::OpenMode::ReadWrite);
    QStringList names;
    QStringList marks;
    store::Values values;
    const QStringList parts = row.split(QLatin1Char('|'));
    for (const QString &part : parts) {
        names.append(part.section(QLatin1Char('='), 0, 0));
        marks.append(QStringLiteral("?"));
        values.append(part.section(QLatin1Char('='), 1));
    }
    connection.exec(QStringLiteral("INSERT INTO %1(%2) VALUES(%3)")
                        .arg(table, names.join(QLatin1Char(',')), marks.join(QLatin1Char(','))),
                    values);
}

void addLog(const Installation &in, const char *row)
{
    addRow(in, QLatin1String(kLog), QStringLiteral("TBLLOG1"), QString::fromUtf8(row));
}

void addBlank(const Installation &in, const char *row)
{
    addRow(in, QLatin1String(kLog), QStringLiteral("tbllogTEMP"), QString::fromUtf8(row));
}

void smallTables(const Installation &in)
{
    in.sql(QStringLiteral("dbdxcc1.mdb"),
           QStringLiteral("DELETE FROM tbldxcc; INSERT INTO tbldxcc(prf,PREF,strana) VALUES"
                          "('DA','DL','GERMANY'),('DL','DL','GERMANY'),('F','F','FRANCE'),"
                          "('UA','UA','RUSSIAN'),('UA9','UA','RUSSIAN'),('X','','NOWHERE')"));
    in.sql(QStringLiteral("dbrusdx.mdb"),
           QStringLiteral("DELETE FROM tblrus; INSERT INTO tblrus(pref,gorod,prf) VALUES"
                          "('9A','Челябинск','CB'),('3A','старая запись','0'),('3A','Москва','MA'),"
                          "('','ничья','NN'),('5O','забытая','0')"));
    in.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall='UA3XYZ'"));
}

void bureauContacts(const Installation &in)
{
    smallTables(in);
    addLog(in, "ccall=UA3ABC|bband=14|contr=RUSSIAN|ddate=01.02.03|ttime=10:11|rsts=599|rstr=579|qslo=a|"
               "qslp=b|qslvia=RX3A|prf=XYZ|ps1=CW");
    for (const char *row :
         {"ccall=DL1AB|bband=7|contr=GERMANY|ddate=02.02.03|prf=XYZ|rstr=57|ps1=SSB",
          "ccall=DL1AA|bband=21|contr=GERMANY|prf=XYZ", "ccall=DL1AA|bband=14|contr=GERMANY|prf=OLD",
          "ccall=DL1AA|bband=14|contr=GERMANY|prf=XYZ|rstr=55|ps1=PSK",
          "ccall=DL2/P|bband=14|contr=GERMANY|prf=OLD", "ccall=F5AB|bband=14|contr=FRANCE|prf=XYZ"})
        addLog(in, row);
}

Bureau::Bureau(const std::function<void(Installation &)> &prepare, bool readOnly)
    : WithRig(prepare), Driven(w), databases({w.installation.folder(), readOnly}, w.installation.userFolder())
{
    window = std::make_unique<qsl::QSLburo>(qsl::Services{readOnly ? databases : w.installation.databases,
                                                          w.clock, w.messages, w.progress, w.reports});
    drive(*window);
}

QStringList Bureau::log(const char *fields) const
{
    return stored(w.installation, "TBLLOG1", fields);
}

QStringList Bureau::blank(const char *fields) const
{
    return stored(w.installation, "tbllogTEMP", fields);
}

} // namespace testsupport
