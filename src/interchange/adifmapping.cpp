#include "interchange/adifmapping.h"

#include "base/bandplan.h"
#include "base/date.h"
#include "base/number.h"

#include <algorithm>

namespace interchange {

namespace {

constexpr qsizetype kCallWidth = 14;
constexpr qsizetype kReportWidth = 14;
constexpr qsizetype kTextWidth = 15;
constexpr qsizetype kModeWidth = 5;
constexpr qsizetype kRouteWidth = 30;
constexpr qsizetype kUnknownBandWidth = 10;
constexpr qsizetype kFrequencyWidth = 5;

bool isControl(QChar c) noexcept
{
    return c.unicode() < ' ' || c.unicode() == 0x7f;
}

/// Without control characters, cut to `width` but never within a character.
QString tidy(QString text, qsizetype width)
{
    if (std::any_of(text.cbegin(), text.cend(), isControl)) {
        QString plain;
        for (const QChar c : std::as_const(text)) {
            if (!isControl(c))
                plain += c;
            else if (!plain.isEmpty() && plain.back() != QLatin1Char(' '))
                plain += QLatin1Char(' ');
        }
        text = plain.trimmed();
    }
    if (text.size() <= width)
        return text;
    return text.left(text[width - 1].isHighSurrogate() ? width - 1 : width);
}

bool isDigits(QStringView text) noexcept
{
    return std::all_of(text.cbegin(), text.cend(),
                       [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); });
}

QDate dateIn(QStringView text)
{
    if (text.size() != 8 || !isDigits(text))
        return {};
    return {text.left(4).toInt(), text.mid(4, 2).toInt(), text.right(2).toInt()};
}

QString logDate(QDate date)
{
    constexpr int kFirst = 1930; // two digits of a year mean these hundred years
    constexpr int kLast = 2029;
    if (!date.isValid())
        return {};
    return date.year() >= kFirst && date.year() <= kLast ? base::logDate(date) : base::shortDate(date);
}

QString logTime(const QString &text)
{
    if ((text.size() != 4 && text.size() != 6) || !isDigits(text))
        return {};
    const QStringView view(text);
    if (view.left(2).toInt() > 23 || view.mid(2, 2).toInt() > 59)
        return {};
    return text.left(2) + QLatin1Char(':') + text.mid(2, 2);
}

QString label(const base::Band &band)
{
    return QString::fromUtf16(band.label);
}

QString logBand(const QString &name, const QString &frequency)
{
    if (const base::Band *band = base::bandOfAdifName(name))
        return label(*band);
    if (const base::Band *band = base::bandOfFrequency(frequency))
        return label(*band);
    if (!name.isEmpty()) {
        const base::Band *band = base::bandOfLabel(name); // some write the band as a frequency
        return band == nullptr ? name.left(kUnknownBandWidth) : label(*band);
    }
    const auto number = base::parseNumber(frequency);
    return number ? base::formatNumber(*number).left(kFrequencyWidth) : QString();
}

/// The log's name of a mode; empty where it has none of its own.
QString ownMode(const QString &name)
{
    static const QStringList kAsTheyAre = {
        QStringLiteral("SSB"),  QStringLiteral("CW"),  QStringLiteral("SSTV"), QStringLiteral("FM"),
        QStringLiteral("MT63"), QStringLiteral("PSK"), QStringLiteral("RTTY")};
    if (kAsTheyAre.contains(name))
        return name;
    if (name == QLatin1String("USB") || name == QLatin1String("LSB"))
        return QStringLiteral("SSB");
    static const QStringList kPhaseShift = {QStringLiteral("PSK"), QStringLiteral("BPSK"),
                                            QStringLiteral("QPSK"), QStringLiteral("FSKPSK")};
    for (const QString &family : kPhaseShift)
        if (name.startsWith(family) && isDigits(QStringView(name).mid(family.size())))
            return QStringLiteral("PSK");
    return {};
}

QString logMode(const QString &mode, const QString &submode)
{
    // Groups whose members are modes of their own to those who use them.
    static const QStringList kGroups = {QStringLiteral("MFSK"), QStringLiteral("DYNAMIC"),
                                        QStringLiteral("DIGITALVOICE"), QStringLiteral("DATA"),
                                        QStringLiteral("DIGI")};
    for (const QString &name : {submode, mode})
        if (QString own = ownMode(name); !own.isEmpty())
            return own;
    const bool fromSubmode = !submode.isEmpty() && (mode.isEmpty() || kGroups.contains(mode));
    return fromSubmode ? submode : mode;
}

/// Mark of a card from its status and date; empty where it is not among `yes`.
QString cardMark(const foreign::AdifRecord &record, const char *status, const char *dateName,
                 QLatin1String yes)
{
    const QByteArrayView value = record.value(status);
    if (value.size() != 1 || !yes.contains(QLatin1Char(value.front()), Qt::CaseInsensitive))
        return {};
    const QDate date = dateIn(record.text(dateName));
    return date.isValid() ? base::shortDate(date) : QStringLiteral("+");
}

/// The callsign in capital Latin letters: Cyrillic ones that look the same were typed under the wrong layout.
QString latinCall(QString call)
{
    static const QString kCyrillic = QStringLiteral("АВЕЗКМНОРСТУХ");
    static const QString kLatin = QStringLiteral("ABE3KMHOPCTYX");
    call = call.toUpper();
    for (QChar &c : call)
        if (const qsizetype at = kCyrillic.indexOf(c); at >= 0)
            c = kLatin[at];
    return call;
}

bool isCall(const QString &call)
{
    const bool hasSign =
        std::any_of(call.cbegin(), call.cend(), [](QChar c) { return c.isLetterOrNumber(); });
    return hasSign && std::all_of(call.cbegin(), call.cend(),
                                  [](QChar c) { return !isControl(c) && c.unicode() < 0x80; });
}

void put(ImportRow &row, ImportColumn column, const QString &text)
{
    row[column] = text.toUtf8();
}

/// Text of the field in the operator's own letters, else of the plain one.
QString national(const foreign::AdifRecord &record, const char *intl, const char *plain)
{
    const QString text = tidy(record.text(intl), kTextWidth);
    return text.isEmpty() ? tidy(record.text(plain), kTextWidth) : text;
}

} // namespace

const QStringList &importColumns()
{
    static const QStringList columns = {
        QStringLiteral("ccall"), QStringLiteral("ddate"),  QStringLiteral("ttime"), QStringLiteral("bband"),
        QStringLiteral("rsts"),  QStringLiteral("rstr"),   QStringLiteral("ps1"),   QStringLiteral("QTH"),
        QStringLiteral("NNAME"), QStringLiteral("QSLVIA"), QStringLiteral("QSLP"),  QStringLiteral("QSLO"),
        QStringLiteral("CONTR"), QStringLiteral("PRF")};
    return columns;
}

Mapped mapRecord(const foreign::AdifRecord &record, ImportRow &row)
{
    const QString call = latinCall(record.text("CALL"));
    if (call.isEmpty())
        return Mapped::NoCall;
    if (!isCall(call))
        return Mapped::UnreadableCall;
    put(row, kCall, tidy(call, kCallWidth));
    const QString date = logDate(dateIn(record.text("QSO_DATE")));
    put(row, kDate, date);
    put(row, kTime, logTime(record.text("TIME_ON")));
    put(row, kBand, tidy(logBand(record.text("BAND"), record.text("FREQ")), kUnknownBandWidth));
    put(row, kReportSent, tidy(record.text("RST_SENT"), kReportWidth));
    put(row, kReportReceived, tidy(record.text("RST_RCVD"), kReportWidth));
    put(row, kMode,
        tidy(logMode(record.text("MODE").toUpper(), record.text("SUBMODE").toUpper()), kModeWidth));
    put(row, kTown, national(record, "QTH_INTL", "QTH"));
    put(row, kName, national(record, "NAME_INTL", "NAME"));
    put(row, kRoute, tidy(record.text("QSL_VIA"), kRouteWidth));
    put(row, kCardReceived, cardMark(record, "QSL_RCVD", "QSLRDATE", QLatin1String("YV")));
    put(row, kCardSent, cardMark(record, "QSL_SENT", "QSLSDATE", QLatin1String("Y")));
    row[kCountry].clear();
    row[kMark].clear();
    return date.isEmpty() ? Mapped::NoDate : Mapped::Good;
}

void mapLine(const AdifLineContact &contact, ImportRow &row)
{
    constexpr qsizetype kWhole = 10'000;
    for (QByteArray &value : row)
        value.clear();
    put(row, kCall, tidy(contact.ccall, kWhole));
    put(row, kDate, contact.ddate);
    put(row, kTime, tidy(contact.ttime, kWhole));
    put(row, kBand, tidy(contact.bband, kWhole));
    put(row, kReportSent, tidy(contact.rsts, kWhole));
    put(row, kReportReceived, tidy(contact.rstr, kWhole));
    put(row, kMode, tidy(contact.ps1, kWhole));
    put(row, kTown, tidy(contact.QTH, kWhole));
    put(row, kName, tidy(contact.NNAME, kWhole));
}

} // namespace interchange
