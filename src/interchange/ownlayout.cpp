#include "interchange/ownlayout.h"

#include "base/date.h"
#include "base/text.h"

#include <QString>

#include <algorithm>
#include <array>

namespace interchange {

namespace {

const QByteArray kNoDate = QByteArrayLiteral("00000000");

struct Band {
    QByteArrayView label;
    QByteArrayView adif;
};
constexpr std::array<Band, 6> kBands = {{
    {"1,8", "160M"},
    {"3,5", "80M"},
    {"7", "40M"},
    {"14", "20M"},
    {"21", "15M"},
    {"28", "10M"},
}};

bool isPlain(QByteArrayView utf8) noexcept
{
    return std::none_of(utf8.begin(), utf8.end(), [](char c) { return (c & 0x80) != 0; });
}

qsizetype characters(QByteArrayView utf8)
{
    return isPlain(utf8) ? utf8.size() : QString::fromUtf8(utf8).size();
}

void appendTag(QByteArray &line, QByteArrayView name, QByteArrayView utf8)
{
    const QByteArray encoded = isPlain(utf8) ? QByteArray() : base::cp1251Bytes(QString::fromUtf8(utf8));
    const QByteArrayView value = encoded.isEmpty() ? utf8 : QByteArrayView(encoded);
    line.append(name);
    line.append(QByteArray::number(value.size()));
    line.append('>');
    line.append(value);
}

/// A report of more than three characters goes out as "599".
QByteArrayView report(QByteArrayView utf8, bool &replaced)
{
    constexpr qsizetype kLongest = 3;
    replaced = characters(utf8) > kLongest;
    return replaced ? QByteArrayView("599") : utf8;
}

} // namespace

QByteArrayView ownLayoutBand(QByteArrayView label) noexcept
{
    const auto known =
        std::find_if(kBands.begin(), kBands.end(), [&](const Band &band) { return band.label == label; });
    return known == kBands.end() ? QByteArrayView() : known->adif;
}

QByteArrayView ownLayoutLabel(QByteArrayView band) noexcept
{
    const auto known =
        std::find_if(kBands.begin(), kBands.end(), [&](const Band &one) { return one.adif == band; });
    return known == kBands.end() ? QByteArrayView() : known->label;
}

Replaced OwnLayoutWriter::append(QByteArray &lines, const OwnLayoutContact &contact)
{
    Replaced replaced;
    const QByteArrayView sent = report(contact.rsts, replaced.rsts);
    const QByteArrayView received = report(contact.rstr, replaced.rstr);
    QByteArrayView mode = contact.ps1;
    if (mode.isEmpty()) {
        constexpr qsizetype kMorseReport = 3;
        const bool morse = characters(sent) >= kMorseReport;
        replaced.ps1 = morse ? Replaced::Mode::Cw : Replaced::Mode::Ssb;
        mode = morse ? QByteArrayView("CW") : QByteArrayView("SSB");
    }
    if (const QByteArrayView band = ownLayoutBand(contact.bband); !band.isEmpty())
        m_band = band.toByteArray();

    appendTag(lines, "<call:", contact.ccall);
    appendTag(lines, " <rst_sent:", sent);
    appendTag(lines, " <rst_rcvd:", received);
    appendTag(lines, " <mode:", mode);
    appendTag(lines, " <band:", m_band);
    appendDate(lines, contact.ddate);
    const bool timed = appendTime(lines, contact.ttime);
    if (!timed || m_lastWritten == kNoDate)
        ++m_undated;
    lines.append("<eor>\r\n");
    return replaced;
}

void OwnLayoutWriter::appendDate(QByteArray &lines, QByteArrayView date)
{
    if (m_lastWritten.isEmpty() || date != QByteArrayView(m_lastDate)) {
        const auto parsed = base::parseLogDate(QString::fromUtf8(date));
        m_lastDate = date.toByteArray();
        m_lastWritten = parsed ? parsed->toString(u"yyyyMMdd").toLatin1() : kNoDate;
    }
    lines.append(" <qso_date:8:d>");
    lines.append(m_lastWritten);
}

bool OwnLayoutWriter::appendTime(QByteArray &lines, QByteArrayView time)
{
    const auto parsed = base::parseLogTime(QString::fromUtf8(time));
    lines.append(" <time_on:4>");
    for (const int number : {parsed ? parsed->hour() : 0, parsed ? parsed->minute() : 0}) {
        lines.append(static_cast<char>('0' + number / 10));
        lines.append(static_cast<char>('0' + number % 10));
    }
    return parsed.has_value();
}

} // namespace interchange
