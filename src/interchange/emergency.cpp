#include "interchange/emergency.h"

#include "base/date.h"
#include "base/text.h"
#include "interchange/ownlayout.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace interchange {

namespace {

QString tag(const char *name, const QString &value)
{
    return QStringLiteral(" <%1:%2>%3").arg(QLatin1String(name)).arg(value.size()).arg(value);
}

QString band(const QString &label)
{
    const QByteArrayView known = ownLayoutBand(label.toUtf8());
    return known.isEmpty() ? tag("freq", label) : tag("band", QString::fromLatin1(known));
}

bool flush(QFile &file)
{
    if (!file.flush())
        return false;
#ifdef Q_OS_UNIX
    return ::fsync(file.handle()) == 0;
#else
    return true;
#endif
}

} // namespace

QString emergencyLine(const EmergencyContact &contact)
{
    QString line = tag("call", contact.ccall).mid(1);
    line += tag("rst_sent", contact.rsts) + tag("rst_rcvd", contact.rstr) + tag("mode", contact.ps1) +
            band(contact.bband);
    const auto date = base::parseLogDate(contact.ddate);
    if (date)
        line += QStringLiteral(" <qso_date:8:d>") + date->toString(u"yyyyMMdd");
    const auto time = base::parseLogTime(contact.ttime);
    if (time)
        line += QStringLiteral(" <time_on:4>") + time->toString(u"HHmm");
    QStringList untold; // what was typed and is no date or time stays readable
    if (!date && !contact.ddate.isEmpty())
        untold.append(contact.ddate);
    if (!time && !contact.ttime.isEmpty())
        untold.append(contact.ttime);
    if (!untold.isEmpty())
        line += tag("comment", untold.join(QLatin1Char(' ')));
    line += tag("qth", contact.QTH) + tag("name", contact.NNAME) + tag("qsl_via", contact.QSLVIA);
    line += QStringLiteral("<eor>");
    line.replace(QLatin1Char('\r'), QLatin1Char(' '));
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return line;
}

EmergencyFile::EmergencyFile(QStringList folders) : m_folders(std::move(folders)) {}

QString EmergencyFile::append(const EmergencyContact &contact)
{
    const QByteArray line = base::cp1251Bytes(emergencyLine(contact)) + "\r\n";
    m_lastPath.clear();
    for (const QString &folder : std::as_const(m_folders)) {
        QDir().mkpath(folder); // the user's data folder may not have been needed before
        QFile file(folder + QStringLiteral("/avaria.adi"));
        const bool isNew = !file.exists();
        if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
            continue;
        const qint64 before = file.size();
        const QByteArray text =
            (isNew || before == 0 ? OwnLayoutWriter::header().toByteArray() : QByteArray()) + line;
        if (file.write(text) == text.size() && flush(file)) {
            m_lastPath = file.fileName();
            m_sizeBefore = before;
            m_sizeAfter = file.size();
            return m_lastPath;
        }
        file.resize(before); // half a line helps nobody
        file.close();
        if (isNew)
            file.remove();
    }
    return {};
}

void EmergencyFile::takeBack()
{
    QFile file(m_lastPath);
    if (m_lastPath.isEmpty() || QFileInfo(m_lastPath).size() != m_sizeAfter)
        return;
    if (m_sizeBefore == 0)
        file.remove();
    else
        file.resize(m_sizeBefore);
    m_lastPath.clear();
}

} // namespace interchange
