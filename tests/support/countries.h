#pragma once

// The country table and country files, made and read as texts.

#include "reference/countryupdate.h"
#include "support/installation.h"

#include <QFile>

namespace testsupport {

inline QString countryDatabase()
{
    return QStringLiteral("dbdxcc1.mdb");
}

/// Puts these rows in place of the table's: "prf PREF kont cq iaru Shir Dolg NAME", or "own ..." for one of
/// the operator's. "-" is empty; the name may have blanks.
inline void setCountries(const Installation &in, const QStringList &rows)
{
    QStringList values;
    for (const QString &row : rows) {
        QStringList parts = row.split(QLatin1Char(' '));
        const bool own = parts.constFirst() == QLatin1String("own");
        if (own)
            parts.removeFirst();
        const QString name = parts.mid(7).join(QLatin1Char(' '));
        const auto text = [](const QString &part) {
            return part == QLatin1String("-") ? QStringLiteral("''") : QStringLiteral("'%1'").arg(part);
        };
        values.append(QStringLiteral("(%1,%2,%3,%4,%5,%6,%7,%7,%6,%8,%9)")
                          .arg(text(parts[0]), text(parts[1]), text(parts[2]), text(parts[3]), text(parts[4]),
                               text(parts[5]), text(parts[6]), text(name),
                               own ? text(QStringLiteral("1")) : text(QStringLiteral("-"))));
    }
    in.sql(countryDatabase(), QStringLiteral("DELETE FROM tbldxcc"));
    if (!values.isEmpty())
        in.sql(countryDatabase(),
               QStringLiteral(
                   "INSERT INTO tbldxcc(prf,PREF,kont,cq,iaru,Shir,Dolg,GradE,GradN,strana,own) VALUES") +
                   values.join(QLatin1Char(',')));
}

/// The table in its stored order, in the form of setCountries().
inline QStringList countries(const Installation &in)
{
    QStringList rows;
    for (const QString &row :
         in.rows(countryDatabase(),
                 QStringLiteral("SELECT prf,PREF,kont,cq,iaru,Shir,Dolg,strana,GradN,GradE,own FROM "
                                "tbldxcc ORDER BY rowid"))) {
        QStringList parts = row.split(QLatin1Char('|'));
        if (parts[8] != parts[5] || parts[9] != parts[6])
            qFatal("the two positions of %s differ", qPrintable(row));
        const bool own = parts[10] == QLatin1String("1");
        parts = parts.mid(0, 8);
        for (QString &part : parts)
            if (part.isEmpty())
                part = QStringLiteral("-");
        rows.append((own ? QStringLiteral("own ") : QString()) + parts.join(QLatin1Char(' ')));
    }
    return rows;
}

/// A record of a file. In zone 14 and 28 of Europe, 51 degrees north and 10 east, unless `rest` says
/// otherwise: "CQ: ITU: continent: latitude: longitude (west positive)".
inline QByteArray record(const QByteArray &prefix, const QByteArray &keys,
                         const QByteArray &name = "Some Country",
                         const QByteArray &rest = "14: 28: EU: 51.00: -10.00")
{
    return name + ": " + rest + ": -1.0: " + prefix + ":\n    " + keys + ";\n";
}

inline reference::CountryPlan planOf(Installation &in, const QByteArray &file)
{
    return reference::planCountryUpdate(in.databases, foreign::readCountries(file));
}

/// Entries of a plan: "+ row", "~ prf what", "- prf why"; rows as in setCountries().
inline QStringList entries(const reference::CountryPlan &plan)
{
    QStringList lines;
    for (const reference::CountryChange &change : plan.changes) {
        const reference::CountryRow &row = change.after;
        switch (change.kind) {
        case reference::CountryChangeKind::Add:
            lines.append(QStringList{QStringLiteral("+"), row.prf, row.pref, row.kont, row.cq, row.iaru,
                                     row.shir, row.dolg, row.strana}
                             .join(QLatin1Char(' ')));
            break;
        case reference::CountryChangeKind::Change:
            lines.append(QStringLiteral("~ %1 %2").arg(row.prf, change.what()));
            break;
        case reference::CountryChangeKind::Remove:
            lines.append(QStringLiteral("- %1 %2").arg(change.prf(), change.what()));
        }
    }
    return lines;
}

inline QByteArray sampleCountries(const QString &folder)
{
    QFile file(folder + QStringLiteral("/country/sample.cty"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("the sample does not open");
    return file.readAll();
}

} // namespace testsupport
