#include "foreign/adxreader.h"

#include <algorithm>

namespace foreign {

namespace {

bool named(QStringView element, QLatin1String name)
{
    return element.compare(name, Qt::CaseInsensitive) == 0;
}

} // namespace

bool looksLikeAdx(QByteArrayView bytes) noexcept
{
    while (!bytes.isEmpty() && static_cast<unsigned char>(bytes.front()) <= ' ')
        bytes = bytes.sliced(1);
    const QByteArray head = bytes.first(std::min<qsizetype>(bytes.size(), 5)).toByteArray().toUpper();
    return head == "<?XML" || head == "<ADX>" || head == "<ADX ";
}

AdxReader::AdxReader(QByteArrayView bytes)
    : m_xml(QByteArray::fromRawData(bytes.data(), bytes.size())), m_size(bytes.size())
{}

bool AdxReader::next(AdifRecord &record)
{
    record.line = 0;
    record.raw = {};
    record.fields.clear();
    record.coding = TextCoding::Utf8;
    record.fault = AdifFault::None;
    if (m_broken)
        return false;
    while (!m_xml.atEnd()) {
        m_xml.readNext();
        if (!m_xml.isStartElement())
            continue;
        m_sawRoot = m_sawRoot || named(m_xml.name(), QLatin1String("ADX"));
        if (named(m_xml.name(), QLatin1String("RECORD"))) {
            record.line = m_xml.lineNumber();
            readRecord(record);
            return true;
        }
    }
    if (!m_xml.hasError() || m_size == 0)
        return false;
    m_broken = true;
    record.line = m_xml.lineNumber();
    record.fault = AdifFault::BadXml;
    return true;
}

void AdxReader::readRecord(AdifRecord &record)
{
    m_texts.clear();
    m_places.clear();
    while (m_xml.readNextStartElement()) {
        const QXmlStreamAttributes attributes = m_xml.attributes();
        const QStringView given = attributes.value(QLatin1String("FIELDNAME"));
        m_texts.append(given.isEmpty() ? m_xml.name().toUtf8() : given.toUtf8());
        const qsizetype nameEnd = m_texts.size();
        m_texts.append(m_xml.readElementText(QXmlStreamReader::SkipChildElements).trimmed().toUtf8());
        m_places.push_back({nameEnd, m_texts.size()});
    }
    if (m_xml.hasError()) {
        m_broken = true;
        record.fault = AdifFault::BadXml;
        return;
    }
    qsizetype begin = 0;
    const QByteArrayView texts(m_texts);
    for (const Place &place : m_places) {
        record.fields.push_back({texts.sliced(begin, place.nameEnd - begin),
                                 texts.sliced(place.nameEnd, place.valueEnd - place.nameEnd)});
        begin = place.valueEnd;
    }
    record.raw = texts;
    if (record.fields.empty())
        record.fault = AdifFault::Empty;
}

} // namespace foreign
