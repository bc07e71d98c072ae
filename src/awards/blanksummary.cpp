#include "awards/blanksummary.h"

#include "awards/sql.h"

#include <QStringList>

#include <limits>

namespace awards {

void BlankCount::begin(const QString &logPath)
{
    m_path = logPath;
    m_summary = {};
    m_last = std::numeric_limits<qint64>::min();
    m_done = true; // where the counting fails there is nothing to go on with
    store::Cursor cursor = m_databases.connection(m_path).run(sql::blankCounts());
    if (cursor.next())
        m_summary = {cursor.number(0), cursor.number(1), cursor.number(2),
                     cursor.number(3), cursor.number(4), 0};
    m_done = false;
}

bool BlankCount::step(int rows)
{
    if (m_done)
        return true;
    m_done = true;
    store::Cursor cursor =
        m_databases.connection(m_path).run(sql::blankRowsWithoutCard(), {m_last, qint64{rows}});
    if (!cursor.next() || cursor.number(0) == 0)
        return true;
    m_last = cursor.number(1);
    m_summary.unconfirmed += cursor.number(2);
    m_done = cursor.number(0) < rows;
    return m_done;
}

QString summaryLine(const BlankSummary &summary, bool complete)
{
    const auto part = [](const char16_t *name, qint64 number, bool known = true) {
        return QStringLiteral("%1: %2").arg(QString::fromUtf16(name),
                                            known ? QString::number(number) : QStringLiteral("..."));
    };
    QStringList parts = {part(u"Строк", summary.rows), part(u"позывных", summary.calls),
                         part(u"стран", summary.countries), part(u"диапазонов", summary.bands),
                         part(u"без карточки", summary.unconfirmed, complete)};
    if (summary.nameless > 0)
        parts.append(part(u"без позывного", summary.nameless));
    return parts.join(QStringLiteral("    "));
}

} // namespace awards
