#include "report/layoutreader.h"

#include "report/artwork.h"
#include "report/elementnames.h"
#include "report/placeholders.h"
#include "report/svgvalues.h"
#include "store/error.h"
#include "store/schema.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace report {

namespace {

constexpr double kSmallestPage = 10; // millimetres
constexpr double kLargestPage = 2000;
constexpr double kSmallestText = 0.1;
constexpr double kLargestText = 300;
constexpr int kMostRows = 1000;
constexpr double kTolerance = 0.5; // millimetres by which things may be too large
constexpr auto kSvg = "http://www.w3.org/2000/svg";

constexpr std::array<const char *, 11> kTextProperties = {
    "font-family", "font-size", "font-weight", "font-style", "letter-spacing", "fill",
    "text-anchor", "display",   "visibility",  "opacity",    "fill-opacity"};

bool isSvg(const QXmlStreamReader &reader)
{
    return reader.namespaceUri().isEmpty() || reader.namespaceUri() == QLatin1String(kSvg);
}

double scaleX(const Affine &t)
{
    return std::hypot(t.a, t.b);
}

double scaleY(const Affine &t)
{
    return std::hypot(t.c, t.d);
}

/// Whether what lies under it comes to a place and a size that can be drawn.
bool isDrawable(const Affine &t)
{
    const auto parts = {t.a, t.b, t.c, t.d, t.e, t.f};
    return std::all_of(parts.begin(), parts.end(),
                       [](double part) { return std::abs(part) <= svg::kLargestNumber; });
}

} // namespace

LayoutReader::LayoutReader(const QByteArray &bytes, const QString &path) : m_bytes(bytes), m_reader(bytes)
{
    m_layout.path = path;
    collectStyleRules(bytes);
}

void LayoutReader::fail(const QString &what, qint64 line) const
{
    const qint64 shown = line > 0 ? line : m_reader.lineNumber();
    throw store::Error(store::ErrorKind::Unreadable, m_layout.path,
                       QStringLiteral("строка %1: %2").arg(QString::number(shown), what));
}

/// Throws where the document is no XML.
void LayoutReader::checkReader() const
{
    if (m_reader.error() == QXmlStreamReader::PrematureEndOfDocumentError)
        fail(QStringLiteral("файл обрывается"));
    if (m_reader.hasError())
        fail(QStringLiteral("это не правильный XML (%1)").arg(m_reader.errorString()));
}

/// Style sheets may stand behind what they are for. Errors are found when the document is read.
void LayoutReader::collectStyleRules(const QByteArray &bytes)
{
    if (!bytes.contains("<style"))
        return;
    QXmlStreamReader reader(bytes);
    while (!reader.atEnd() && reader.readNext() != QXmlStreamReader::DTD)
        if (reader.isStartElement() && reader.name() == QLatin1String("style"))
            m_classes.insert(svg::classRules(reader.readElementText(QXmlStreamReader::IncludeChildElements)));
}

Layout LayoutReader::read()
{
    while (!m_reader.atEnd() && !m_reader.isStartElement()) {
        m_reader.readNext();
        // An internal subset could define entities that grow without end when they are put in.
        if (m_reader.isDTD() && m_reader.text().contains(u'['))
            fail(QStringLiteral("объявления внутри DOCTYPE не допускаются"));
    }
    checkReader();
    if (m_reader.name() != QLatin1String("svg") || !isSvg(m_reader))
        fail(QStringLiteral("это не рисунок SVG"));
    State state;
    state.style.families = {QStringLiteral("DejaVu Sans")};
    constexpr double kDefaultSize = 16;
    state.style.size = kDefaultSize;
    readRoot(state);
    m_openIds.append(attribute("id"));
    children(state);
    while (!m_reader.atEnd())
        m_reader.readNext();
    checkReader();
    checkWhole();
    for (int part = 0; part < kPartCount; ++part)
        m_layout.parts.at(std::size_t(part)).artwork = extractArtwork(m_bytes, PartName(part), m_viewBox);
    return std::move(m_layout);
}

QString LayoutReader::attribute(const char *name) const
{
    return m_reader.attributes().value(QLatin1String(name)).trimmed().toString();
}

/// A length in user units. Throws where it is none or, unless there is something `otherwise`, is missing.
double LayoutReader::number(const char *name, std::optional<double> otherwise) const
{
    const QString text = attribute(name);
    if (text.isEmpty() && otherwise)
        return *otherwise;
    if (text.isEmpty())
        fail(QStringLiteral("нет атрибута %1").arg(QLatin1String(name)));
    bool ok = false;
    const double value = QString(text).replace(u',', u'.').toDouble(&ok);
    if (!ok || !std::isfinite(value))
        fail(QStringLiteral("в атрибуте %1 не число: %2").arg(QLatin1String(name), text.left(20)));
    if (std::abs(value) > svg::kLargestNumber)
        fail(QStringLiteral("невозможное число в %1").arg(QLatin1String(name)));
    return value;
}

int LayoutReader::count(const char *name) const
{
    const double value = number(name);
    if (value < 1 || value > kMostRows || value != std::floor(value))
        fail(QStringLiteral("атрибут %1 должен быть целым числом от 1 до %2")
                 .arg(QLatin1String(name), QString::number(kMostRows)));
    return int(value);
}

void LayoutReader::readRoot(State &state)
{
    m_layout.table = attribute("data-table");
    m_layout.file = attribute("data-file");
    m_layout.filled = attribute("data-filled");
    m_layout.order = attribute("data-order");
    m_layout.tableLine = m_reader.lineNumber();
    if (m_layout.table.isEmpty())
        fail(QStringLiteral("не указана таблица (data-table)"));
    findFile();
    readPageSize(state);
    const double size = state.style.size;
    State root = inner(state);
    applyProperties(root, {}, size);
    root.transform = state.transform; // a transformation of the root itself means nothing
    state = root;
    if (!attribute(kPagesAttribute.data()).isEmpty())
        fail(QStringLiteral("data-pages бывает у группы или текста, а не у всего рисунка"));
}

void LayoutReader::findFile()
{
    if (m_layout.file.isEmpty()) {
        for (const store::FileLayout &file : store::fileLayouts())
            for (const store::TableLayout &table : file.tables)
                if (m_layout.file.isEmpty() && m_layout.table.compare(table.name, Qt::CaseInsensitive) == 0)
                    m_layout.file = file.name;
        if (m_layout.file.isEmpty())
            fail(QStringLiteral("неизвестная таблица %1").arg(m_layout.table.left(40)));
    }
    const store::FileLayout *file = store::fileLayout(m_layout.file);
    if (file == nullptr)
        fail(QStringLiteral("неизвестный файл %1").arg(m_layout.file.left(40)));
    m_layout.file = file->name;
}

void LayoutReader::readPageSize(State &state)
{
    const auto width = svg::millimetres(attribute("width"));
    const auto height = svg::millimetres(attribute("height"));
    if (!width || !height)
        fail(QStringLiteral("не указан размер страницы (width и height, например 210mm)"));
    if (*width < kSmallestPage || *height < kSmallestPage || *width > kLargestPage || *height > kLargestPage)
        fail(QStringLiteral("невозможный размер страницы: %1 x %2 мм").arg(*width).arg(*height));
    m_layout.width = *width;
    m_layout.height = *height;
    constexpr double kPixels = svg::kPixelsPerInch / svg::kMillimetresPerInch;
    QList<double> box = {0, 0, *width * kPixels, *height * kPixels};
    if (const QString text = attribute("viewBox"); !text.isEmpty()) {
        const auto given = svg::numbers(text);
        if (!given || given->size() != 4 || !((*given)[2] > 0) || !((*given)[3] > 0))
            fail(QStringLiteral("непонятный viewBox"));
        box = *given;
    }
    const double scale = std::min(*width / box[2], *height / box[3]);
    constexpr double kSmallestScale = 1e-6;
    constexpr double kLargestScale = 1e6;
    if (!(scale > kSmallestScale && scale < kLargestScale) || std::abs(box[0] * scale) > kLargestScale ||
        std::abs(box[1] * scale) > kLargestScale)
        fail(QStringLiteral("непонятный viewBox"));
    // The box lies in the middle of the page, as drawing programs show it.
    const double left = box[0] - (*width / scale - box[2]) / 2;
    const double top = box[1] - (*height / scale - box[3]) / 2;
    state.transform = {scale, 0, 0, scale, -left * scale, -top * scale};
    const auto part = [](double value) { return QString::number(value, 'g', 12); };
    m_viewBox = QStringList{part(left), part(top), part(*width / scale), part(*height / scale)}.join(u' ');
}

void LayoutReader::children(const State &state)
{
    while (m_reader.readNextStartElement())
        element(state);
    checkReader();
}

/// The reader stands on the start of an element within `around`.
void LayoutReader::element(const State &around)
{
    countElement(around);
    const QString name = m_reader.name().toString();
    if (!isSvg(m_reader)) {
        m_reader.skipCurrentElement();
        return;
    }
    if (name == QLatin1String("title") && around.depth == 1) {
        m_layout.title =
            m_reader.readElementText(QXmlStreamReader::IncludeChildElements).simplified().left(100);
        return;
    }
    if (name == QLatin1String("style")) {
        checkSheet(m_reader.readElementText(QXmlStreamReader::IncludeChildElements));
        return;
    }
    if (isRemark(name)) {
        m_reader.skipCurrentElement();
        return;
    }
    checkElement();
    const QString id = attribute("id");
    m_openIds.append(id);
    if (name == QLatin1String("text")) {
        State state = inner(around);
        readPages(state);
        text(state);
    } else if (name == QLatin1String("defs")) {
        definitions(around.depth, around.unprinted.isEmpty() ? name : around.unprinted);
    } else {
        State state = inner(around);
        if (!isGroup(name) && state.unprinted.isEmpty())
            state.unprinted = name;
        if (isShape(name))
            checkReach(state.transform);
        if (!around.unprinted.isEmpty() || !(isGroup(name) || isShape(name)))
            remember(state.unprinted);
        PartName part = around.part;
        if (name == QLatin1String("g") && isPartId(id, &part)) {
            state.part = part;
            partBegins(part, around.part, state);
        }
        readPages(state);
        if (isShape(name) && around.unprinted.isEmpty())
            drawnIn(state.part, name == QLatin1String("use"));
        if (isForeignText(name) && state.visible)
            refuseText(name);
        else
            children(state);
    }
    m_openIds.removeLast();
}

/// What only serves others, in the element `within`: no text of it is printed.
void LayoutReader::definitions(int depth, const QString &within)
{
    State state;
    state.depth = depth + 1;
    while (m_reader.readNextStartElement()) {
        countElement(state);
        const QString name = m_reader.name().toString();
        const bool ours = isSvg(m_reader);
        if (!ours || (isRemark(name) && name != QLatin1String("style"))) {
            m_reader.skipCurrentElement();
            continue;
        }
        if (name == QLatin1String("style")) {
            checkSheet(m_reader.readElementText(QXmlStreamReader::IncludeChildElements));
            continue;
        }
        checkElement();
        m_openIds.append(attribute("id"));
        if (within != QLatin1String("defs") || !(isGroup(name) || isShape(name)))
            remember(within != QLatin1String("defs") ? within : name);
        if (name == QLatin1String("text"))
            refuseText(within);
        else if (isForeignText(name))
            refuseText(name);
        else
            definitions(state.depth, isGroup(name) || name == QLatin1String("defs") ? within : name);
        m_openIds.removeLast();
    }
    checkReader();
}

/// What stands outside of the groups, and keeps off the title page.
void LayoutReader::readPages(State &state)
{
    const QString pages = attribute(kPagesAttribute.data());
    if (pages.isEmpty())
        return;
    if (pages != kPagesOfRows)
        fail(QStringLiteral("в data-pages может стоять только rows, а не %1").arg(pages.left(20)));
    if (state.part != PartName::Page && state.part != PartName::Rows)
        fail(QStringLiteral("data-pages бывает только вне групп title, card, detail и summary"));
    state.part = PartName::Rows;
    if (m_pagesLine == 0)
        m_pagesLine = m_reader.lineNumber();
}

void LayoutReader::partBegins(PartName part, PartName around, const State &state)
{
    if (seen(part))
        fail(QStringLiteral("вторая группа %1").arg(attribute("id")));
    const bool ofRows = part == PartName::Detail || part == PartName::Summary;
    if (around != PartName::Page && !(around == PartName::Card && part == PartName::Detail) &&
        !(around == PartName::Rows && ofRows))
        fail(QStringLiteral("группа %1 не может стоять здесь").arg(attribute("id")));
    if ((part == PartName::Title && seen(PartName::Card)) ||
        (part == PartName::Card && seen(PartName::Title)))
        fail(QStringLiteral("у карточек не бывает титульного листа (группы title)"));
    if (part == PartName::Detail && seen(PartName::Card) && around != PartName::Card)
        fail(QStringLiteral("группа detail должна стоять внутри группы card"));
    m_seen.at(std::size_t(part)) = true;
    if (part == PartName::Card)
        cardBegins(state);
    else if (part == PartName::Detail)
        detailBegins(state);
    else if (part == PartName::Title)
        m_layout.titlePage = state.visible;
    else
        m_layout.summaryHeight = number("data-height") * scaleY(state.transform);
}

void LayoutReader::cardBegins(const State &state)
{
    if (seen(PartName::Detail))
        fail(QStringLiteral("группа detail должна стоять внутри группы card"));
    Sheet sheet;
    sheet.columns = count("data-columns");
    sheet.rows = count("data-rows");
    const double width = number("data-width");
    const double height = number("data-height");
    if (!(width > 0) || !(height > 0))
        fail(QStringLiteral("невозможный размер карточки"));
    const double x = number("data-x", 0);
    const double y = number("data-y", 0);
    sheet.pitchX = number("data-pitch-x", width) * scaleX(state.transform);
    sheet.pitchY = number("data-pitch-y", height) * scaleY(state.transform);
    sheet.card = mapped(state.transform, {x, y, x + width, y + height});
    const double cardWidth = sheet.card.right - sheet.card.left;
    const double cardHeight = sheet.card.bottom - sheet.card.top;
    if ((sheet.columns > 1 && sheet.pitchX < cardWidth - kTolerance) ||
        (sheet.rows > 1 && sheet.pitchY < cardHeight - kTolerance))
        fail(QStringLiteral("шаг карточек меньше самой карточки"));
    if (sheet.card.left < -kTolerance || sheet.card.top < -kTolerance ||
        sheet.card.right + (sheet.columns - 1) * sheet.pitchX > m_layout.width + kTolerance ||
        sheet.card.bottom + (sheet.rows - 1) * sheet.pitchY > m_layout.height + kTolerance)
        fail(QStringLiteral("карточки не помещаются на странице"));
    const qint64 line = m_reader.lineNumber();
    const QStringList names = attribute("data-group").replace(u',', u' ').split(u' ', Qt::SkipEmptyParts);
    for (const QString &name : names)
        sheet.groupFields.append(fieldIndex({}, name, line));
    m_layout.sheet = sheet;
}

void LayoutReader::detailBegins(const State &state)
{
    const double height = number("data-height");
    m_layout.rowsPerPage = count("data-rows");
    m_layout.rowStepX = state.transform.c * height;
    m_layout.rowStepY = state.transform.d * height;
    const double step = std::hypot(m_layout.rowStepX, m_layout.rowStepY);
    constexpr double kSmallestStep = 0.1;
    if (!(height > 0) || !(step >= kSmallestStep))
        fail(QStringLiteral("невозможная высота строки"));
    const bool onCard = seen(PartName::Card);
    const double room = onCard ? m_layout.sheet->card.bottom - m_layout.sheet->card.top : m_layout.height;
    if (std::abs(m_layout.rowStepY) * m_layout.rowsPerPage > room + kTolerance ||
        std::abs(m_layout.rowStepX) * m_layout.rowsPerPage > m_layout.width + kTolerance)
        fail(onCard ? QStringLiteral("строки detail не помещаются на карточке")
                    : QStringLiteral("строки detail не помещаются на странице"));
}

/// State within the element that the reader stands on.
LayoutReader::State LayoutReader::inner(const State &around)
{
    State state = around;
    ++state.depth;
    state.ownOpacity = 1;
    const QXmlStreamAttributes attributes = m_reader.attributes();
    if (const auto text = attributes.value(QLatin1String("transform")); !text.isEmpty()) {
        const auto transform = svg::transform(text);
        if (!transform)
            fail(QStringLiteral("непонятный transform: %1").arg(text.left(40)));
        state.transform = around.transform * *transform;
        if (!isDrawable(state.transform))
            fail(QStringLiteral("непонятный transform: %1").arg(text.left(40)));
    }
    QHash<QString, QString> properties;
    for (const char *property : kTextProperties)
        if (attributes.hasAttribute(QLatin1String(property)))
            properties.insert(QLatin1String(property), attribute(property));
    applyProperties(state, properties, around.style.size);
    const QStringList classes = attribute("class").split(u' ', Qt::SkipEmptyParts);
    for (const QString &name : classes)
        applyProperties(state, m_classes.value(name), around.style.size);
    applyProperties(state, svg::declarations(attribute("style")), around.style.size);
    // A group is seen through as a whole, a filling is only where no other is given.
    state.groupOpacity = around.groupOpacity * state.ownOpacity;
    state.style.opacity = state.groupOpacity * state.fillOpacity;
    const auto space =
        attributes.value(QLatin1String("http://www.w3.org/XML/1998/namespace"), QLatin1String("space"));
    if (!space.isEmpty())
        state.preserve = space == QLatin1String("preserve");
    if (const QString condition = attribute("data-if"); !condition.isEmpty()) {
        const qint64 line = m_reader.lineNumber();
        try {
            state.conditions += parseConditions(condition, [&](const QString &table, const QString &name) {
                return fieldIndex(table, name, line);
            });
        } catch (const TemplateError &error) {
            fail(error.text);
        }
    }
    return state;
}

void LayoutReader::applyProperties(State &state, const QHash<QString, QString> &properties, double parentSize)
{
    for (auto it = properties.begin(); it != properties.end(); ++it) {
        const QString &name = it.key();
        const QString &value = it.value();
        if (name == QLatin1String("font-family")) {
            if (const QStringList families = svg::families(value); !families.isEmpty())
                state.style.families = families;
        } else if (name == QLatin1String("font-size")) {
            if (value.endsWith(u'%'))
                state.style.size = parentSize * QStringView(value).chopped(1).toDouble() / 100;
            else if (const auto size = svg::length(value, parentSize))
                state.style.size = *size;
        } else if (name == QLatin1String("font-weight")) {
            state.style.weight = svg::weight(value);
        } else if (name == QLatin1String("font-style")) {
            state.style.italic = value == QLatin1String("italic") || value == QLatin1String("oblique");
        } else if (name == QLatin1String("letter-spacing")) {
            state.style.letterSpacing = svg::length(value, state.style.size).value_or(0);
        } else if (name == QLatin1String("fill")) {
            state.filled = value != QLatin1String("none");
            if (const auto colour = svg::colour(value))
                state.style.colour = *colour;
        } else if (name == QLatin1String("opacity")) {
            state.ownOpacity = svg::opacity(value).value_or(state.ownOpacity);
        } else if (name == QLatin1String("fill-opacity")) {
            state.fillOpacity = svg::opacity(value).value_or(state.fillOpacity);
        } else if (name == QLatin1String("text-anchor")) {
            state.anchor = value == QLatin1String("middle") ? Anchor::Middle
                           : value == QLatin1String("end")  ? Anchor::End
                                                            : Anchor::Start;
        } else if (name == QLatin1String("display")) {
            state.visible = state.visible && value != QLatin1String("none");
        } else if (name == QLatin1String("visibility")) {
            state.visible = state.visible && value != QLatin1String("hidden");
        }
    }
}

void LayoutReader::text(const State &state)
{
    if (!state.unprinted.isEmpty()) {
        refuseText(state.unprinted);
        return;
    }
    QList<RawLine> lines;
    lines.append(RawLine());
    beginLine(state, lines);
    lines.removeFirst();
    textContent(state, lines, 0);
    for (const RawLine &line : std::as_const(lines))
        addLine(tidy(line));
}

/// A line at the place that the element of the reader names; where it names none, at that of the line before.
void LayoutReader::beginLine(const State &state, QList<RawLine> &lines)
{
    const auto place = [this, &state](const char *name, double otherwise) {
        const QString list = attribute(name);
        const QString first = list.section(u' ', 0, 0, QString::SectionSkipEmpty).section(u',', 0, 0);
        if (first.isEmpty())
            return otherwise;
        const auto value = svg::length(first, state.style.size);
        if (!value)
            fail(QStringLiteral("непонятное место текста: %1").arg(list.left(20)));
        return *value;
    };
    RawLine line;
    line.x = place("x", lines.last().x) + place("dx", 0);
    line.y = place("y", lines.last().y) + place("dy", 0);
    line.width = number("data-width", lines.last().width);
    if (line.width < 0)
        fail(QStringLiteral("data-width меньше нуля"));
    line.anchor = state.anchor;
    line.toPage = state.transform;
    lines.append(line);
}

void LayoutReader::textContent(const State &state, QList<RawLine> &lines, double shift)
{
    while (!m_reader.atEnd()) {
        m_reader.readNext();
        if (m_reader.isEndElement())
            break;
        if (m_reader.isCharacters())
            lines.last().segments.append({state, shift, m_reader.text().toString(), m_reader.lineNumber()});
        if (m_reader.isCharacters() && !m_reader.isWhitespace())
            m_idsWithText.unite({m_openIds.begin(), m_openIds.end()});
        if (!m_reader.isStartElement())
            continue;
        countElement(state);
        const QString name = m_reader.name().toString();
        if (!isSvg(m_reader) || (name != QLatin1String("tspan") && name != QLatin1String("textPath") &&
                                 name != QLatin1String("a"))) {
            if (isSvg(m_reader) && !isRemark(name))
                refuseText(name);
            else
                m_reader.skipCurrentElement();
            continue;
        }
        checkNumbers();
        if (!attribute(kPagesAttribute.data()).isEmpty())
            fail(QStringLiteral("data-pages бывает у всего текста, а не у его части"));
        const State within = inner(state);
        const bool placed = !attribute("x").isEmpty() || !attribute("y").isEmpty();
        double lower = shift;
        if (placed)
            beginLine(within, lines);
        else
            lower += svg::length(attribute("dy"), within.style.size).value_or(0);
        textContent(within, lines, lower);
    }
    checkReader();
}

/// Blanks as a drawing program shows them: runs are one, and none stand at the ends.
LayoutReader::RawLine LayoutReader::tidy(RawLine line)
{
    bool blankBefore = true;
    for (RawSegment &segment : line.segments) {
        QString text;
        for (QChar c : std::as_const(segment.text)) {
            const bool blank = c == u' ' || c == u'\n' || c == u'\r' || c == u'\t';
            if (blank && blankBefore && !segment.state.preserve)
                continue;
            blankBefore = blank;
            text += blank ? QChar(u' ') : c;
        }
        segment.text = text;
    }
    for (qsizetype i = line.segments.size() - 1; i >= 0; --i) {
        RawSegment &segment = line.segments[i];
        while (!segment.state.preserve && segment.text.endsWith(u' '))
            segment.text.chop(1);
        if (!segment.text.isEmpty())
            break;
    }
    return line;
}

void LayoutReader::addLine(const RawLine &line)
{
    TextLine result;
    PartName part = PartName::Page;
    for (const RawSegment &raw : line.segments) {
        part = raw.state.part;
        if (raw.text.isEmpty())
            continue;
        const double height = raw.state.style.size * scaleY(raw.state.transform);
        if (!(height >= kSmallestText && height <= kLargestText))
            fail(QStringLiteral("невозможный размер букв"), raw.line);
        Segment segment;
        segment.shift = raw.shift;
        segment.text = parsed(raw.text, raw.line);
        segment.conditions = raw.state.conditions;
        segment.style = styleIndex(raw.state.style);
        if (part == PartName::Title)
            checkTitle(segment, raw.line);
        if (raw.state.visible && raw.state.filled)
            result.segments.append(segment);
    }
    if (result.segments.isEmpty())
        return;
    result.toPage = line.toPage * Affine{1, 0, 0, 1, line.x, line.y};
    if (!isDrawable(result.toPage))
        fail(QStringLiteral("непонятное место текста"), line.segments.front().line);
    result.anchor = line.anchor;
    result.width = line.width;
    m_layout.parts.at(std::size_t(part)).lines.append(result);
}

int LayoutReader::styleIndex(const TextStyle &style)
{
    const qsizetype known = m_layout.styles.indexOf(style);
    if (known >= 0)
        return int(known);
    m_layout.styles.append(style);
    return int(m_layout.styles.size() - 1);
}

int LayoutReader::fieldIndex(const QString &fieldTable, const QString &name, qint64 line)
{
    QList<FieldName> &list = fieldTable.isEmpty() ? m_layout.fields : m_layout.others;
    for (qsizetype i = 0; i < list.size(); ++i)
        if (list[i].name.compare(name, Qt::CaseInsensitive) == 0 &&
            list[i].table.compare(fieldTable, Qt::CaseInsensitive) == 0)
            return int(i);
    constexpr qsizetype kMostFields = 500;
    if (list.size() >= kMostFields)
        fail(QStringLiteral("слишком много полей"), line);
    list.append({fieldTable, name, line});
    return int(list.size() - 1);
}

Template LayoutReader::parsed(const QString &text, qint64 line)
{
    try {
        return parseTemplate(text, [&](const QString &fieldTable, const QString &name) {
            return fieldIndex(fieldTable, name, line);
        });
    } catch (const TemplateError &error) {
        fail(error.text, line);
    }
}

/// What can be said when everything has been read.
void LayoutReader::checkWhole() const
{
    if (!seen(PartName::Detail))
        fail(QStringLiteral("нет группы с id=\"detail\""));
    if (m_layout.sheet && seen(PartName::Summary))
        fail(QStringLiteral("у карточек не бывает группы summary"));
    if (m_layout.sheet && m_pagesLine > 0)
        fail(QStringLiteral("у карточек не бывает data-pages: титульного листа у них нет"), m_pagesLine);
    const double step = std::hypot(m_layout.rowStepX, m_layout.rowStepY);
    if (seen(PartName::Summary) &&
        !(m_layout.summaryHeight > 0 && m_layout.summaryHeight <= step * m_layout.rowsPerPage + kTolerance))
        fail(QStringLiteral("невозможная высота группы summary"));
    checkUses();
}

Layout readLayoutFile(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        throw store::Error(store::ErrorKind::Missing, path, QString());
    if (!info.isFile())
        throw store::Error(store::ErrorKind::Unreadable, path, QStringLiteral("это не файл"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw store::Error(store::ErrorKind::CannotOpen, path, file.errorString());
    return readLayout(file.read(kLargestLayout + 1), path);
}

Layout readLayout(const QByteArray &bytes, const QString &path)
{
    if (bytes.size() > kLargestLayout)
        throw store::Error(store::ErrorKind::Unreadable, path, QStringLiteral("он слишком велик"));
    return LayoutReader(bytes, path).read();
}

} // namespace report
