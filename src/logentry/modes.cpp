#include "logentry/modes.h"

#include <QHash>

namespace logentry {

const QStringList &modeCaptions()
{
    static const QStringList captions = {
        QStringLiteral("SSB"),  QStringLiteral("CW"),  QStringLiteral("SSTV"), QStringLiteral("FM"),
        QStringLiteral("MT63"), QStringLiteral("PSK"), QStringLiteral("RTTY")};
    return captions;
}

QString modeReport(const QString &caption)
{
    static const QHash<QString, QString> reports = {
        {QStringLiteral("SSB"), QStringLiteral("59")},   {QStringLiteral("CW"), QStringLiteral("599")},
        {QStringLiteral("SSTV"), QStringLiteral("595")}, {QStringLiteral("FM"), QStringLiteral("595")},
        {QStringLiteral("MT63"), QStringLiteral("599")}, {QStringLiteral("PSK"), QStringLiteral("599")},
        {QStringLiteral("RTTY"), QStringLiteral("599")}};
    return reports.value(caption);
}

} // namespace logentry
