#include "interchange/adifwriter.h"

#include "base/bandplan.h"
#include "base/date.h"
#include "base/number.h"
#include "base/text.h"
#include "base/translit.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace interchange {

namespace {

constexpr qsizetype kPiece = 65'536;

QString oneLine(QString text)
{
    for (QChar &c : text)
        if (c.unicode() < ' ' || c.unicode() == 0x7f)
            c = QLatin1Char(' ');
    return text.trimmed();
}

/// Windows-1251; what the code page lacks in Latin letters, as near as they come.
QByteArray toCp1251(const QString &text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const int code = base::cp1251Code(text[i]);
        if (code >= 0)
            bytes.append(static_cast<char>(code));
        else
            bytes.append(base::toAscii(QStringView(text).mid(i, 1)).toLatin1());
    }
    return bytes;
}

QByteArray encoded(const QString &text, AdifForm form)
{
    switch (form) {
    case AdifForm::Utf8:
        return text.toUtf8();
    case AdifForm::Windows1251:
        return toCp1251(text);
    default:
        return base::toAscii(text).toLatin1();
    }
}

/// Text of an XML element. Characters that XML cannot hold do not come through oneLine() but for a few.
QByteArray escaped(const QString &text)
{
    QString plain = text.toHtmlEscaped();
    plain.removeIf([](QChar c) { return c.unicode() >= 0xFFFE; });
    return plain.toUtf8();
}

QString adifDate(QDate date)
{
    return date.toString(u"yyyyMMdd");
}

/// "hhmm", or "hhmmss" where the log has seconds; empty for a text that is no time.
QString adifTime(const QString &text)
{
    const auto time = base::parseLogTime(text);
    if (!time)
        return {};
    const QString seconds = text.trimmed().section(QLatin1Char(':'), 2);
    constexpr uint kMinute = 60;
    const bool known = seconds.size() == 2 && seconds.toUInt() < kMinute;
    return time->toString(u"HHmm") + (known ? seconds : QString());
}

struct Mode {
    QString mode;
    QString submode;
};

/// Mode and submode of the format for a mode of the log.
Mode adifMode(const QString &name)
{
    if (name == QLatin1String("USB") || name == QLatin1String("LSB"))
        return {QStringLiteral("SSB"), name};
    static const QStringList kOfMfsk = {QStringLiteral("FT4"), QStringLiteral("JS8"), QStringLiteral("Q65"),
                                        QStringLiteral("FST4")};
    if (kOfMfsk.contains(name))
        return {QStringLiteral("MFSK"), name};
    static const QStringList kOfPsk = {QStringLiteral("PSK31"), QStringLiteral("PSK63"),
                                       QStringLiteral("PSK63F"), QStringLiteral("PSK125")};
    if (kOfPsk.contains(name))
        return {QStringLiteral("PSK"), name};
    if (name == QLatin1String("DSTAR") || name == QLatin1String("C4FM") || name == QLatin1String("DMR"))
        return {QStringLiteral("DIGITALVOICE"), name};
    return {name, {}};
}

bool isContinent(const QString &code)
{
    static const QStringList kContinents = {QStringLiteral("NA"), QStringLiteral("SA"), QStringLiteral("EU"),
                                            QStringLiteral("AF"), QStringLiteral("OC"), QStringLiteral("AS"),
                                            QStringLiteral("AN")};
    return kContinents.contains(code);
}

} // namespace

QString adifSuffix(AdifForm form)
{
    return form == AdifForm::Xml ? QStringLiteral("adx") : QStringLiteral("adi");
}

QString omissionText(AdifOmission omission)
{
    switch (omission) {
    case AdifOmission::NoCall:
        return QStringLiteral("не записана: нет позывного");
    case AdifOmission::NoDate:
        return QStringLiteral("не записана: нет верной даты");
    case AdifOmission::NoTime:
        return QStringLiteral("записана без времени: нет верного времени");
    case AdifOmission::NoBand:
        return QStringLiteral("записана без диапазона: нет известного диапазона");
    }
    return {};
}

AdifWriter::AdifWriter(AdifForm form, const AdifHeader &head, Sink sink)
    : m_form(form), m_sink(std::move(sink)), m_ownCall(oneLine(head.ownCall).toUpper())
{
    header(head);
}

void AdifWriter::header(const AdifHeader &head)
{
    if (m_form == AdifForm::Xml) {
        line("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
        line("<ADX>");
        line("<HEADER>");
    } else {
        line("Zhurnal");
    }
    const auto one = [this](const char *name, const QString &text) {
        field(name, text);
        line({});
    };
    one("ADIF_VER", QStringLiteral("3.1.4"));
    one("CREATED_TIMESTAMP", head.created.toUTC().toString(u"yyyyMMdd HHmmss"));
    one("PROGRAMID", QStringLiteral("Zhurnal"));
    one("PROGRAMVERSION", head.version);
    line(m_form == AdifForm::Xml ? QByteArrayView("</HEADER>\r\n<RECORDS>") : QByteArrayView("<EOH>"));
}

bool AdifWriter::write(const AdifContact &contact, qint64 row)
{
    const QString call = oneLine(contact.ccall).toUpper();
    if (call.isEmpty()) {
        omit(row, call, AdifOmission::NoCall);
        return false;
    }
    const auto date = base::parseLogDate(contact.ddate);
    if (!date) {
        omit(row, call, AdifOmission::NoDate);
        return false;
    }
    if (m_form == AdifForm::Xml)
        m_buffer.append("<RECORD>");
    field("CALL", call);
    field("QSO_DATE", adifDate(*date));
    const QString time = adifTime(contact.ttime);
    field("TIME_ON", time);
    if (time.isEmpty())
        omit(row, call, AdifOmission::NoTime);
    bandFields(contact, row);
    modeFields(contact);
    field("RST_SENT", oneLine(contact.rsts));
    field("RST_RCVD", oneLine(contact.rstr));
    textField("NAME", oneLine(contact.NNAME));
    textField("QTH", oneLine(contact.QTH));
    field("QSL_VIA", oneLine(contact.QSLVIA));
    cardFields("QSL_RCVD", "QSLRDATE", contact.QSLP);
    cardFields("QSL_SENT", "QSLSDATE", contact.QSLO);
    textField("COUNTRY", oneLine(contact.CONTR));
    if (const QString continent = oneLine(contact.CONT).toUpper(); isContinent(continent))
        field("CONT", continent);
    textField("COMMENT", oneLine(contact.ps));
    textField("NOTES", oneLine(contact.PS2));
    field("STATION_CALLSIGN", m_ownCall);
    line(m_form == AdifForm::Xml ? QByteArrayView("</RECORD>") : QByteArrayView("<EOR>"));
    ++m_written;
    return true;
}

void AdifWriter::bandFields(const AdifContact &contact, qint64 row)
{
    const QString label = oneLine(contact.bband);
    const base::Band *band = base::bandOfLabel(label);
    if (band == nullptr)
        band = base::bandOfAdifName(label); // an import may have left the foreign name
    if (band != nullptr) {
        field("BAND", QLatin1String(band->adif));
        return;
    }
    const auto number = base::parseNumber(label);
    if (!number || *number <= 0.0) {
        omit(row, oneLine(contact.ccall).toUpper(), AdifOmission::NoBand);
        return;
    }
    band = base::bandOfFrequency(label);
    if (band != nullptr)
        field("BAND", QLatin1String(band->adif));
    // A frequency that makes sense in kHz only is none in MHz.
    if (band == nullptr || (*number >= band->low && *number <= band->high))
        field("FREQ", base::formatNumber(*number).replace(QLatin1Char(','), QLatin1Char('.')));
}

void AdifWriter::modeFields(const AdifContact &contact)
{
    constexpr qsizetype kTelegraphReport = 3;
    QString name = oneLine(contact.ps1).toUpper();
    if (name.isEmpty())
        name = contact.rsts.size() >= kTelegraphReport ? QStringLiteral("CW") : QStringLiteral("SSB");
    const Mode mode = adifMode(name);
    field("MODE", mode.mode);
    field("SUBMODE", mode.submode);
}

void AdifWriter::cardFields(const char *status, const char *dateName, const QString &mark)
{
    if (mark.isEmpty())
        return; // a blank counts as a mark
    field(status, QStringLiteral("Y"));
    if (const auto date = base::parseLogDate(mark))
        field(dateName, adifDate(*date));
}

/// A field of Latin letters and digits.
void AdifWriter::field(const char *name, const QString &text)
{
    if (text.isEmpty())
        return;
    if (m_form == AdifForm::Xml) {
        const QByteArray value = escaped(base::toAscii(text));
        m_buffer.append('<').append(name).append('>').append(value).append("</").append(name).append('>');
        return;
    }
    const QByteArray value = encoded(text, m_form);
    m_buffer.append('<').append(name).append(':').append(QByteArray::number(value.size())).append('>');
    m_buffer.append(value).append(' ');
}

/// A field that may hold the operator's own letters.
void AdifWriter::textField(const char *name, const QString &text)
{
    field(name, text);
    if (m_form != AdifForm::Xml || base::isAscii(text))
        return;
    m_buffer.append('<').append(name).append("_INTL>").append(escaped(text));
    m_buffer.append("</").append(name).append("_INTL>");
}

void AdifWriter::omit(qint64 row, const QString &call, AdifOmission omission)
{
    m_omitted.push_back({row, call, omission});
}

void AdifWriter::line(QByteArrayView text)
{
    m_buffer.append(text).append("\r\n");
    handOn(false);
}

void AdifWriter::handOn(bool all)
{
    if (m_buffer.isEmpty() || (!all && m_buffer.size() < kPiece))
        return;
    m_sink(m_buffer);
    m_buffer.resize(0);
}

void AdifWriter::finish()
{
    if (m_form == AdifForm::Xml)
        line("</RECORDS>\r\n</ADX>");
    handOn(true);
}

} // namespace interchange
