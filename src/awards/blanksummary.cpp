#include "awards/blanksummary.h"

#include "awards/sql.h"

#include <QStringList>

namespace awards {

BlankSummary summarize(store::Library &databases, const QString &logPath)
{
    store::Connection &log = databases.connection(logPath);
    BlankSummary summary;
    {
        store::Cursor cursor = log.run(sql::blankCounts());
        if (cursor.next())
            summary = {cursor.number(0), cursor.number(1), cursor.number(2),
                       cursor.number(3), cursor.number(4), 0};
    }
    summary.unconfirmed = log.singleNumber(sql::blankRowsWithoutCard());
    return summary;
}

QString summaryLine(const BlankSummary &summary)
{
    const auto part = [](const char16_t *name, qint64 number) {
        return QStringLiteral("%1: %2").arg(QString::fromUtf16(name), QString::number(number));
    };
    QStringList parts = {part(u"Строк", summary.rows), part(u"позывных", summary.calls),
                         part(u"стран", summary.countries), part(u"диапазонов", summary.bands),
                         part(u"без карточки", summary.unconfirmed)};
    if (summary.nameless > 0)
        parts.append(part(u"без позывного", summary.nameless));
    return parts.join(QStringLiteral("    "));
}

} // namespace awards
