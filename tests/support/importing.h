#pragma once

#include "interchange/adifimport.h"
#include "support/installation.h"

#include <QFile>
#include <QtDebug>

namespace testsupport {

inline constexpr auto kLog = "dbiaru.mdb";
inline const QString kFixtures = QStringLiteral(TEST_DATA "/adif/");
inline const QByteArray kHeader = "<adif_ver:4>1.0<eoh>\r\n";

inline bool goOn(const interchange::ImportProgress &)
{
    return true;
}

inline QString put(const Installation &in, const QByteArray &bytes,
                   const QString &name = QStringLiteral("import.adi"))
{
    QFile file(in.file(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("%s is not written", qPrintable(name));
    return file.fileName();
}

inline interchange::ImportResult importFile(Installation &in, const QString &path)
{
    interchange::AdifImport import(in.databases, in.file(QLatin1String(kLog)), path);
    return import.run(goOn);
}

inline interchange::ImportResult importBytes(Installation &in, const QByteArray &bytes)
{
    return importFile(in, put(in, bytes));
}

inline QStringList contacts(const Installation &in)
{
    return in.rows(
        QLatin1String(kLog),
        QStringLiteral("SELECT ccall,ddate,ttime,bband,rsts,rstr,ps1,QTH,NNAME FROM TBLLOG1 ORDER BY rowid"));
}

inline QStringList column(const Installation &in, const char *expression)
{
    return in.rows(QLatin1String(kLog),
                   QStringLiteral("SELECT %1 FROM TBLLOG1 ORDER BY rowid").arg(QLatin1String(expression)));
}

inline bool adds(const interchange::ImportResult &result)
{
    return result.records == result.added + result.skippedRecords() + result.withoutContact;
}

inline QByteArray ownLines(int count, int first = 0)
{
    QByteArray bytes = kHeader;
    for (int i = first; i < first + count; ++i)
        bytes += QStringLiteral("<call:7>DL%1 <rst_sent:3>599 <rst_rcvd:3>579 <mode:2>CW <band:3>20M "
                                "<qso_date:8:d>20020305 <time_on:4>1407<eor>\r\n")
                     .arg(i, 5, 10, QLatin1Char('0'))
                     .toLatin1();
    return bytes;
}

} // namespace testsupport
