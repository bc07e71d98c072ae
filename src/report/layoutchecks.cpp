// What the layout reader refuses of the artwork, and why: texts that would not be printed, pictures and
// outlines that the renderer would leave away, numbers that break a PDF.
#include "report/elementnames.h"
#include "report/layoutreader.h"
#include "report/stations.h"
#include "report/svgvalues.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace report {

namespace {

constexpr int kMostElements = 50000;
constexpr int kDeepest = 100;
constexpr int kMostUses = 2000;
constexpr qsizetype kMostGeometry = 300000; ///< characters; a traced photograph has more

/// Numbers that may stand in attributes, in a style and in a style sheet.
constexpr std::array<const char *, 5> kProperties = {"stroke-width", "stroke-dasharray", "stroke-dashoffset",
                                                     "stroke-miterlimit", "letter-spacing"};
/// Numbers, and lists of them, that are attributes only.
constexpr std::array<const char *, 22> kAttributes = {
    "x",  "y",  "x1", "y1", "x2", "y2",    "cx",     "cy",     "r",      "rx",     "ry",
    "fx", "fy", "fr", "dx", "dy", "width", "height", "offset", "rotate", "points", "d"};

/// The first property whose value is no number that can be drawn; empty where all can.
QString absurdProperty(const QHash<QString, QString> &properties)
{
    for (const char *name : kProperties)
        if (svg::largest(properties.value(QLatin1String(name))) > svg::kLargestNumber)
            return QLatin1String(name);
    return {};
}

} // namespace

void LayoutReader::countElement(const State &state)
{
    if (++m_elements > kMostElements)
        fail(QStringLiteral("слишком много элементов"));
    if (state.depth > kDeepest)
        fail(QStringLiteral("слишком много вложенных групп"));
}

void LayoutReader::countGeometry()
{
    for (const char *outline : {"d", "points"})
        m_geometry += m_reader.attributes().value(QLatin1String(outline)).size();
    if (m_geometry > kMostGeometry)
        fail(QStringLiteral("слишком сложный рисунок"));
}

/// Counts and checks what the element on which the reader stands says by itself.
void LayoutReader::checkElement()
{
    checkLinks();
    countGeometry();
    checkNumbers();
}

/// A coordinate beyond all bounds, or none at all, makes a PDF that no program shows.
void LayoutReader::checkNumbers()
{
    const QXmlStreamAttributes attributes = m_reader.attributes();
    const auto checked = [&](const char *name) {
        const double largest = svg::largest(attributes.value(QLatin1String(name)));
        if (largest > svg::kLargestNumber)
            fail(QStringLiteral("невозможное число в %1").arg(QLatin1String(name)));
        return largest;
    };
    m_largest = 0;
    for (const char *name : kProperties)
        m_largest = std::max(m_largest, checked(name));
    for (const char *name : kAttributes)
        m_largest = std::max(m_largest, checked(name));
    (void)checked("transform");
    (void)checked("gradientTransform");
    if (!svg::isOutline(attributes.value(QLatin1String("d"))))
        fail(QStringLiteral("непонятный контур: %1").arg(attribute("d").left(40)));
    if (const QString name = absurdProperty(svg::declarations(attribute("style"))); !name.isEmpty())
        fail(QStringLiteral("невозможное число в %1").arg(name));
}

/// The same on the page, where groups may have made it larger.
void LayoutReader::checkReach(const Affine &toPage) const
{
    const double scale =
        std::max({std::abs(toPage.a), std::abs(toPage.b), std::abs(toPage.c), std::abs(toPage.d)});
    if (m_largest * scale > svg::kLargestNumber)
        fail(QStringLiteral("рисунок больше всякой страницы"));
}

void LayoutReader::checkSheet(const QString &sheet) const
{
    if (sheet.contains(QLatin1String("@import"), Qt::CaseInsensitive))
        fail(QStringLiteral("ссылки на другие файлы не допускаются"));
    const QStringList rules = sheet.split(u'}');
    for (const QString &rule : rules) {
        const QString name = absurdProperty(svg::declarations(rule.mid(rule.indexOf(u'{') + 1)));
        if (!name.isEmpty())
            fail(QStringLiteral("невозможное число в %1").arg(name));
    }
}

/// Nothing leads out of the document, and nothing multiplies itself.
void LayoutReader::checkLinks()
{
    const QString name = m_reader.name().toString();
    const bool use = name == QLatin1String("use");
    if (!use && name != QLatin1String("image"))
        return;
    // The same link may stand there twice, with and without a namespace; which of them is taken differs.
    QString link;
    const QXmlStreamAttributes attributes = m_reader.attributes();
    for (const QXmlStreamAttribute &attribute : attributes) {
        if (attribute.name() != QLatin1String("href"))
            continue;
        if (!link.isEmpty() && link != attribute.value().trimmed())
            fail(QStringLiteral("две разные ссылки у одного элемента"));
        link = attribute.value().trimmed().toString();
    }
    if (use)
        checkUse(link);
    else
        checkPicture(link);
}

void LayoutReader::checkUse(const QString &link)
{
    if (!link.startsWith(u'#'))
        fail(QStringLiteral("ссылки на другие файлы не допускаются"));
    m_used.append({link.mid(1), m_reader.lineNumber(), {}});
    if (m_used.size() > kMostUses)
        fail(QStringLiteral("слишком много элементов"));
    for (const QString &id : std::as_const(m_openIds))
        m_idsWithUse.insert(id);
    m_idsWithUse.insert(attribute("id"));
}

/// Keeps the picture for those who can read it. The renderer takes it as it is taken here, and leaves away
/// what it cannot read.
void LayoutReader::checkPicture(const QString &link)
{
    if (!link.startsWith(QLatin1String("data:"), Qt::CaseInsensitive))
        fail(QStringLiteral("картинка должна быть внедрена в файл, а не быть ссылкой"));
    const QString mark = QStringLiteral("base64,");
    const qsizetype at = link.lastIndexOf(mark);
    if (!link.startsWith(QLatin1String("data:")) || at < 0)
        fail(QStringLiteral("внедрённая картинка не читается (нужна PNG или JPEG)"));
    m_layout.pictures.append(
        {QByteArray::fromBase64(link.mid(at + mark.size()).toLatin1()), m_reader.lineNumber()});
}

/// Reads an element whose text is not printed, to its end. Throws where it has any.
void LayoutReader::refuseText(const QString &within)
{
    const qint64 line = m_reader.lineNumber();
    for (int depth = 1; depth > 0 && !m_reader.atEnd();) {
        m_reader.readNext();
        if (m_reader.isStartElement() && isRemark(m_reader.name()))
            m_reader.skipCurrentElement();
        else if (m_reader.isStartElement())
            ++depth;
        else if (m_reader.isEndElement())
            --depth;
        else if (m_reader.isCharacters() && !m_reader.isWhitespace())
            fail(QStringLiteral("текст внутри <%1> не печатается").arg(within), line);
    }
    checkReader();
}

/// The reader stands on an element that is not printed by itself. Its copies would show nothing.
void LayoutReader::remember(QStringView unprinted)
{
    if (const QString id = attribute("id"); !id.isEmpty())
        m_unprinted.insert(id, unprinted.toString());
}

/// What "use" leads to is artwork that is there and has nothing of its own to repeat.
void LayoutReader::checkUses() const
{
    for (const auto &[id, line, part] : m_used) {
        if (m_idsWithText.contains(id))
            fail(QStringLiteral("<use> повторяет текст, разъедините копию"), line);
        if (m_idsWithUse.contains(id))
            fail(QStringLiteral("вложенные ссылки use не допускаются"), line);
        if (const QString within = m_unprinted.value(id); !within.isEmpty())
            fail(QStringLiteral("<use> повторяет <%1>, а он не печатается; разъедините копию").arg(within),
                 line);
        if (part && (m_partsOfId.value(id) & ~(1U << unsigned(*part))) != 0)
            fail(QStringLiteral("<use> повторяет рисунок из другой группы, разъедините копию"), line);
    }
}

/// The shape on which the reader stands belongs to the artwork of a part; others do not have it.
void LayoutReader::drawnIn(PartName part, bool use)
{
    for (const QString &id : std::as_const(m_openIds))
        if (!id.isEmpty())
            m_partsOfId[id] |= 1U << unsigned(part);
    if (use)
        m_used.last().part = part;
}

/// On the title page stands no row whose field could be printed.
void LayoutReader::checkTitle(const Segment &segment, qint64 line) const
{
    const auto check = [this, line](const Piece &piece) {
        if (piece.quantity == Quantity::Field)
            fail(QStringLiteral("на титульном листе нет строк, вместо {%1} напишите {first %1}")
                     .arg(m_layout.fields[piece.field].name.left(40)),
                 line);
        if (piece.quantity == Quantity::Row)
            fail(QStringLiteral("на титульном листе нет строк, {row} там пусто"), line);
        if (piece.quantity == Quantity::Other && isStationTable(m_layout.others[piece.field].table))
            fail(QStringLiteral("на титульном листе нет строк, {%1.%2} там пусто")
                     .arg(m_layout.others[piece.field].table, m_layout.others[piece.field].name.left(40)),
                 line);
    };
    std::for_each(segment.text.begin(), segment.text.end(), check);
    for (const Condition &condition : segment.conditions)
        check(condition.value);
}

} // namespace report
