#include "report/artwork.h"

#include "report/elementnames.h"

#include <QSet>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <array>
#include <utility>

namespace report {

namespace {

/// What stands around shapes, or serves them.
bool isKept(const QString &name)
{
    static const QSet<QString> others = {QStringLiteral("defs"), QStringLiteral("style"),
                                         QStringLiteral("stop"), QStringLiteral("linearGradient"),
                                         QStringLiteral("radialGradient")};
    return isGroup(name) || isShape(name) || others.contains(name);
}

class Filter {
public:
    Filter(const QByteArray &bytes, PartName part) : m_reader(bytes), m_wanted(part), m_writer(&m_result) {}

    QByteArray run(const QString &viewBox)
    {
        if (!m_reader.readNextStartElement())
            return {};
        m_writer.writeStartElement(QStringLiteral("svg"));
        m_writer.writeAttribute(QStringLiteral("xmlns"), QStringLiteral("http://www.w3.org/2000/svg"));
        m_writer.writeAttribute(QStringLiteral("xmlns:xlink"),
                                QStringLiteral("http://www.w3.org/1999/xlink"));
        writeAttributes({QStringLiteral("viewBox"), QStringLiteral("width"), QStringLiteral("height"),
                         QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("preserveAspectRatio"),
                         QStringLiteral("version"), QStringLiteral("baseProfile")});
        m_writer.writeAttribute(QStringLiteral("viewBox"), viewBox);
        while (m_reader.readNextStartElement())
            element(PartName::Page, false);
        m_writer.writeEndElement();
        return m_anything && !m_reader.hasError() ? m_result : QByteArray();
    }

private:
    /// The reader stands on the start of an element, which lies in the part `in`.
    void element(PartName in, bool inDefinitions)
    {
        const QString name = m_reader.name().toString();
        const QString space = m_reader.namespaceUri().toString();
        const bool drawing = space.isEmpty() || space == QLatin1String("http://www.w3.org/2000/svg");
        const bool definitions = inDefinitions || name == QLatin1String("defs");
        if (!drawing || !isKept(name)) {
            m_reader.skipCurrentElement();
            return;
        }
        if (!definitions && name == QLatin1String("g"))
            (void)isPartId(m_reader.attributes().value(QLatin1String("id")).toString(), &in);
        if (!definitions && in == PartName::Page &&
            m_reader.attributes().value(kPagesAttribute).trimmed() == kPagesOfRows)
            in = PartName::Rows;
        if (!definitions && isShape(name)) {
            if (in != m_wanted) {
                m_reader.skipCurrentElement();
                return;
            }
            m_anything = true;
        }
        m_writer.writeStartElement(name);
        writeAttributes({});
        if (name == QLatin1String("style")) {
            m_writer.writeCharacters(m_reader.readElementText(QXmlStreamReader::IncludeChildElements));
        } else {
            while (m_reader.readNextStartElement())
                element(in, definitions);
        }
        m_writer.writeEndElement();
    }

    void writeAttributes(const QSet<QString> &without)
    {
        const QXmlStreamAttributes attributes = m_reader.attributes();
        QSet<QString> written;
        for (const QXmlStreamAttribute &attribute : attributes) {
            const QString name = attribute.name().toString();
            const bool link = name == QLatin1String("href");
            if ((!attribute.namespaceUri().isEmpty() && !link) || without.contains(name) ||
                name.startsWith(QLatin1String("data-")) || written.contains(name))
                continue;
            if (name == QLatin1String("spreadMethod"))
                continue; // the renderer repeats a tiny gradient for hours
            written.insert(name);
            m_writer.writeAttribute(link ? QStringLiteral("xlink:href") : name, attribute.value().toString());
        }
    }

    QXmlStreamReader m_reader;
    PartName m_wanted;
    QByteArray m_result;
    QXmlStreamWriter m_writer;
    bool m_anything = false;
};

} // namespace

bool isPartId(const QString &id, PartName *name)
{
    static const std::array<std::pair<QLatin1String, PartName>, 4> ids = {
        {{QLatin1String("title"), PartName::Title},
         {QLatin1String("card"), PartName::Card},
         {QLatin1String("detail"), PartName::Detail},
         {QLatin1String("summary"), PartName::Summary}}};
    for (const auto &[known, part] : ids)
        if (id == known) {
            *name = part;
            return true;
        }
    return false;
}

QByteArray extractArtwork(const QByteArray &bytes, PartName part, const QString &viewBox)
{
    return Filter(bytes, part).run(viewBox);
}

} // namespace report
