#include "awards/blanksummary.h"

#include "awards/sql.h"

namespace awards {

BlankSummary summarize(store::Library &databases, const QString &logPath)
{
    store::Connection &log = databases.connection(logPath);
    BlankSummary summary;
    {
        store::Cursor cursor = log.run(sql::blankCounts());
        if (cursor.next())
            summary = {cursor.number(0), cursor.number(1), cursor.number(2), cursor.number(3), 0};
    }
    summary.unconfirmed = log.singleNumber(sql::blankRowsWithoutCard());
    return summary;
}

QString summaryLine(const BlankSummary &summary)
{
    return QStringLiteral("Строк: %1    позывных: %2    стран: %3    диапазонов: %4    без карточки: %5")
        .arg(QString::number(summary.rows), QString::number(summary.calls),
             QString::number(summary.countries), QString::number(summary.bands),
             QString::number(summary.unconfirmed));
}

} // namespace awards
