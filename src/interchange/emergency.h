#pragma once

#include <QString>
#include <QStringList>

namespace interchange {

/// A contact as the emergency file keeps it: texts of the log's fields.
struct EmergencyContact {
    QString ccall;
    QString ddate; ///< as typed
    QString ttime;
    QString bband; ///< band label
    QString rsts;
    QString rstr;
    QString ps1;
    QString QTH;
    QString NNAME;
    QString QSLVIA;
};

/// The contact as one line of ADIF without line end: call first, so that the program's own line reader takes
/// it. The six bands that the line layout maps are written as "band", any other label as "freq", which comes
/// back as the same label. A date or time that is none goes into a comment.
[[nodiscard]] QString emergencyLine(const EmergencyContact &contact);

/// Appends contacts that could not be stored to "avaria.adi" in the first of `folders` that takes it, flushed
/// to the disk. Windows-1251, CR LF.
class EmergencyFile {
public:
    explicit EmergencyFile(QStringList folders);

    /// Path of the file that took the line; empty where no folder did.
    QString append(const EmergencyContact &contact);
    /// Takes the line appended last out again (the contact was stored after all), if nothing came after it.
    void takeBack();

private:
    QStringList m_folders;
    QString m_lastPath;
    qint64 m_sizeBefore = 0;
    qint64 m_sizeAfter = 0;
};

} // namespace interchange
