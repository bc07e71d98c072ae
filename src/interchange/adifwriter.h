#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QDateTime>
#include <QString>

#include <functional>
#include <vector>

namespace interchange {

/// What an ADIF 3.1 file is written as.
enum class AdifForm {
    Ascii,       ///< .adi, names and towns in Latin letters: what the format asks for, read by every program
    Utf8,        ///< .adi in UTF-8, lengths in bytes
    Windows1251, ///< .adi in Windows-1251, for older programs
    Xml,         ///< .adx: Latin letters, and the operator's own in the _INTL fields
};

/// "adi" or "adx".
[[nodiscard]] QString adifSuffix(AdifForm form);

/// Fields of a log row as they stand in the log.
struct AdifContact {
    QString ccall;
    QString ddate;
    QString ttime;
    QString bband;
    QString rsts;
    QString rstr;
    QString ps;
    QString ps1;
    QString PS2;
    QString QTH;
    QString NNAME;
    QString QSLVIA;
    QString QSLP;
    QString QSLO;
    QString CONTR;
    QString CONT;
};

/// What stands in the file's head.
struct AdifHeader {
    QDateTime created; ///< universal time
    QString version;   ///< of the program
    QString ownCall;   ///< the station that keeps the log; empty: not told
};

enum class AdifOmission : quint8 {
    NoCall, ///< not written: no callsign
    NoDate, ///< not written: no date, or none that the calendar has
    NoTime, ///< written without a time: it is none
    NoBand, ///< written without a band: the label is neither a band nor a frequency
};
/// Russian, without a full stop.
[[nodiscard]] QString omissionText(AdifOmission omission);

/// Writes contacts as ADIF 3.1 for today's services. The log is only read: nothing is repaired in it.
///
/// Names: CALL, QSO_DATE, TIME_ON, BAND (FREQ where the label is a frequency in no band), MODE and SUBMODE,
/// RST_SENT, RST_RCVD, NAME, QTH, QSL_VIA, QSL_RCVD with QSLRDATE and QSL_SENT with QSLSDATE (the dates where
/// the mark is one), COUNTRY, CONT, COMMENT (from ps), NOTES (from PS2), STATION_CALLSIGN. Empty fields are
/// left out. A contact without a mode gets CW for a report of three characters or more, else SSB, as the
/// program's own layout has it. A length counts the bytes that follow: in ASCII and Windows-1251 that is the
/// number of characters too, in UTF-8 it is how most readers count.
class AdifWriter {
public:
    using Sink = std::function<void(QByteArrayView)>;

    struct Omitted {
        qint64 row = 0; ///< as given to write()
        QString call;
        AdifOmission omission = AdifOmission::NoCall;
    };

    /// Begins the file. The sink gets it in pieces; what it throws passes through.
    AdifWriter(AdifForm form, const AdifHeader &header, Sink sink);

    /// Writes one contact; false where it cannot be one (see omitted()). `row`: whatever tells the caller
    /// which one it was.
    bool write(const AdifContact &contact, qint64 row);
    /// Ends the file. To be called once, also after no contact.
    void finish();

    [[nodiscard]] qint64 written() const noexcept { return m_written; }
    /// Contacts that were not written, and those that lack something they ought to have.
    [[nodiscard]] const std::vector<Omitted> &omitted() const noexcept { return m_omitted; }

private:
    void field(const char *name, const QString &text);
    void textField(const char *name, const QString &text);
    void header(const AdifHeader &header);
    void bandFields(const AdifContact &contact, qint64 row);
    void modeFields(const AdifContact &contact);
    void cardFields(const char *status, const char *dateName, const QString &mark);
    void omit(qint64 row, const QString &call, AdifOmission omission);
    void line(QByteArrayView text);
    void handOn(bool all);

    AdifForm m_form;
    Sink m_sink;
    QString m_ownCall;
    QByteArray m_buffer;
    qint64 m_written = 0;
    std::vector<Omitted> m_omitted;
};

} // namespace interchange
