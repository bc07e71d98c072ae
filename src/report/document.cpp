#include "report/document.h"

#include "base/date.h"
#include "base/text.h"
#include "report/sql.h"
#include "store/error.h"
#include "store/rowreader.h"
#include "store/schema.h"

#include <QDate>
#include <QHash>
#include <QLocale>
#include <QSet>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace report {

namespace {

[[noreturn]] void fail(const Layout &layout, qint64 line, const QString &what)
{
    throw store::Error(store::ErrorKind::Unreadable, layout.path,
                       QStringLiteral("строка %1: %2").arg(QString::number(line), what));
}

QString formatted(const QString &value, const QString &format)
{
    if (format.compare(QLatin1String("call"), Qt::CaseInsensitive) == 0)
        return stationCall(value);
    const auto date = format.isEmpty() ? std::nullopt : base::parseLogDate(value);
    // A card goes abroad: months have their English names whatever the computer speaks.
    return date ? QLocale::c().toString(*date, format) : value;
}

QString fileOfTable(const QString &table)
{
    for (const store::FileLayout &file : store::fileLayouts())
        for (const store::TableLayout &known : file.tables)
            if (table.compare(known.name, Qt::CaseInsensitive) == 0)
                return file.name;
    return {};
}

QString databasePath(store::Library &databases, const QString &file)
{
    return databases.path(QString(u'\\' + file));
}

} // namespace

Document::Document(Layout layout, int fields) : m_layout(std::move(layout)), m_rows(fields) {}

std::unique_ptr<Document> Document::read(Layout layout, store::Library &databases, const Step &step)
{
    const int fields = std::max(1, int(layout.fields.size()));
    std::unique_ptr<Document> document(new Document(std::move(layout), fields));
    const QString path = databasePath(databases, document->m_layout.file);
    const QStringList columns = store::columnNames(databases.connection(path), document->m_layout.table);
    QStringList names;
    document->checkFields(columns, names);
    std::optional<StationLink> stations = document->readOthers(databases, columns);
    if (!document->readRows(databases, path, names, stations, step))
        return nullptr;
    document->countTotals();
    document->makeCards();
    return document;
}

void Document::checkFields(const QStringList &columns, QStringList &names) const
{
    if (columns.isEmpty())
        fail(m_layout, m_layout.tableLine,
             QStringLiteral("в файле %1 нет таблицы %2").arg(m_layout.file, m_layout.table.left(40)));
    if (!m_layout.filled.isEmpty() && !columns.contains(m_layout.filled, Qt::CaseInsensitive))
        fail(m_layout, m_layout.tableLine,
             QStringLiteral("неизвестное поле data-filled=\"%1\"").arg(m_layout.filled.left(40)));
    for (const FieldName &field : m_layout.fields) {
        if (!columns.contains(field.name, Qt::CaseInsensitive))
            fail(m_layout, field.line, QStringLiteral("неизвестное поле {%1}").arg(field.name.left(40)));
        names.append(field.name);
    }
    if (names.isEmpty()) // a row is counted even where nothing of it is printed
        names.append(columns.front());
}

bool Document::readRows(store::Library &databases, const QString &path, QStringList names,
                        std::optional<StationLink> &stations, const Step &step)
{
    constexpr qint64 kStep = 4096;
    const auto kept = int(names.size());
    if (stations)
        names += stations->fields;
    const auto reader = [&] {
        try {
            return store::RowReader(databases.connection(path),
                                    sql::rows(m_layout.table, m_layout.filled, m_layout.order), names);
        } catch (const store::Error &error) {
            if (m_layout.order.isEmpty() ||
                (error.kind() != store::ErrorKind::BadText && error.kind() != store::ErrorKind::BadDate &&
                 error.kind() != store::ErrorKind::Other))
                throw;
            fail(m_layout, m_layout.tableLine,
                 QStringLiteral("непонятный порядок строк data-order=\"%1\"").arg(m_layout.order.left(60)));
        }
    };
    store::RowReader rows = reader();
    for (qint64 done = 0; rows.next(); ++done) {
        if (step && done % kStep == 0 && !step(done, rows.total()))
            return false;
        for (int field = 0; field < kept; ++field)
            m_rows.add(rows.utf8(field));
        if (!stations)
            continue;
        QList<QByteArrayView> ofStation;
        for (int field = kept; field < names.size(); ++field)
            ofStation.append(rows.utf8(field));
        m_stationOfRow.push_back(stations->finder.find(ofStation));
    }
    if (stations)
        m_stations = stations->finder.records();
    return true;
}

/// Reads what is the same for all rows; gives how the rest is found for each.
std::optional<Document::StationLink> Document::readOthers(store::Library &databases,
                                                          const QStringList &columns)
{
    QList<FieldName> ofStations;
    for (const FieldName &field : std::as_const(m_layout.others)) {
        const QString file = fileOfTable(field.table);
        if (file.isEmpty())
            fail(m_layout, field.line,
                 QStringLiteral("неизвестная таблица {%1.%2}").arg(field.table, field.name));
        store::Connection &connection = databases.connection(databasePath(databases, file));
        if (!store::columnNames(connection, field.table).contains(field.name, Qt::CaseInsensitive))
            fail(m_layout, field.line,
                 QStringLiteral("неизвестное поле {%1.%2}").arg(field.table, field.name));
        if (isStationTable(field.table)) {
            m_others.append({{}, int(ofStations.size())});
            ofStations.append(field);
        } else {
            m_others.append({connection.single(sql::firstRow(field.table, field.name)).value_or(QString())});
        }
    }
    if (ofStations.isEmpty())
        return std::nullopt;
    return stationLink(databases, columns, ofStations);
}

Document::StationLink Document::stationLink(store::Library &databases, const QStringList &columns,
                                            const QList<FieldName> &wanted) const
{
    const QStringList byFields = stationFields(m_layout.table, columns);
    const FieldName &first = wanted.front();
    if (byFields.isEmpty())
        fail(m_layout, first.line,
             QStringLiteral("для {%1.%2} в таблице %3 нет позывного (ccall)")
                 .arg(first.table, first.name, m_layout.table.left(40)));
    QStringList names;
    for (const FieldName &field : wanted)
        names.append(field.name);
    store::Connection &connection = databases.connection(databasePath(databases, fileOfTable(first.table)));
    return {StationFinder(connection, first.table, names), byFields};
}

namespace {

bool isTotal(Quantity quantity)
{
    return quantity == Quantity::Different || quantity == Quantity::Filled ||
           quantity == Quantity::Earliest || quantity == Quantity::Latest;
}

} // namespace

/// Counts what any text of the layout asks for.
void Document::countTotals()
{
    const auto add = [this](const Piece &piece) {
        if (!isTotal(piece.quantity))
            return;
        for (const Total &known : std::as_const(m_totals))
            if (known.quantity == piece.quantity && known.field == piece.field)
                return;
        const bool date = piece.quantity == Quantity::Earliest || piece.quantity == Quantity::Latest;
        m_totals.append({piece.quantity, piece.field,
                         date ? rowOfDate(piece.field, piece.quantity == Quantity::Latest)
                              : counted(piece.quantity, piece.field)});
    };
    for (const Part &part : m_layout.parts)
        for (const TextLine &line : part.lines)
            for (const Segment &segment : line.segments) {
                std::for_each(segment.text.begin(), segment.text.end(), add);
                for (const Condition &condition : segment.conditions)
                    add(condition.value);
            }
}

/// How many rows have something in a field, or how many different things.
qint64 Document::counted(Quantity quantity, int field) const
{
    qint64 filled = 0;
    QSet<QString> values;
    for (qint64 row = 0; row < rows(); ++row) {
        if (m_rows.utf8(row, field).isEmpty())
            continue;
        ++filled;
        if (quantity == Quantity::Different)
            values.insert(base::foldCase(m_rows.text(row, field).trimmed()));
    }
    return quantity == Quantity::Different ? qint64(values.size()) : filled;
}

/// The first row with the earliest or latest date in a field; -1 where none has a date.
qint64 Document::rowOfDate(int field, bool latest) const
{
    qint64 found = -1;
    QDate best;
    for (qint64 row = 0; row < rows(); ++row) {
        const auto date = base::parseLogDate(m_rows.text(row, field).trimmed());
        if (!date || (found >= 0 && (latest ? *date <= best : *date >= best)))
            continue;
        found = row;
        best = *date;
    }
    return found;
}

/// Rows that agree in the group's fields come onto one card, wherever they stand in the table; the cards
/// come in the order of their first rows. Without such fields every row is a group of its own.
void Document::makeCards()
{
    if (!m_layout.sheet)
        return;
    QHash<QString, qsizetype> groupOfKey;
    std::vector<std::vector<quint32>> groups;
    for (qint64 row = 0; row < rows(); ++row) {
        QString key;
        for (const int field : std::as_const(m_layout.sheet->groupFields))
            key += base::foldCase(m_rows.text(row, field).trimmed()) + QChar(u'\n');
        const qsizetype group =
            key.isEmpty() ? qsizetype(groups.size()) : groupOfKey.value(key, qsizetype(groups.size()));
        if (group == qsizetype(groups.size())) {
            groups.emplace_back();
            if (!key.isEmpty())
                groupOfKey.insert(key, group);
        }
        groups[std::size_t(group)].push_back(quint32(row));
    }
    const auto perCard = std::size_t(m_layout.rowsPerPage);
    for (const std::vector<quint32> &group : groups)
        for (std::size_t from = 0; from < group.size(); from += perCard) {
            const std::size_t count = std::min(perCard, group.size() - from);
            m_cards.push_back({quint32(m_order.size()), quint32(count)});
            m_order.insert(m_order.end(), group.begin() + std::ptrdiff_t(from),
                           group.begin() + std::ptrdiff_t(from + count));
        }
}

int Document::placesPerSheet() const noexcept
{
    return m_layout.sheet ? m_layout.sheet->columns * m_layout.sheet->rows : 0;
}

void Document::setFirstPlace(int place)
{
    m_firstPlace = std::clamp(place, 1, std::max(1, placesPerSheet()));
}

qint64 Document::pages() const
{
    const auto filled = [](qint64 things, qint64 perPage) { return (things + perPage - 1) / perPage; };
    if (m_layout.sheet)
        return std::max<qint64>(1, filled(cards() + (cards() > 0 ? m_firstPlace - 1 : 0), placesPerSheet()));
    if (m_layout.titlePage && rows() == 0)
        return 1;
    return std::max(titlePages() + std::max<qint64>(1, filled(rows(), m_layout.rowsPerPage)), summaryPage());
}

/// The page on which the summary stands; 0 where there is none.
qint64 Document::summaryPage() const
{
    if (m_layout.summaryHeight <= 0 || (m_layout.titlePage && rows() == 0))
        return 0;
    const qint64 perPage = m_layout.rowsPerPage;
    const qint64 full = std::max<qint64>(0, rows() - 1) / perPage; // pages before the one of the last row
    const double step = std::hypot(m_layout.rowStepX, m_layout.rowStepY);
    const double room = double(perPage - (rows() - full * perPage)) * step;
    constexpr double kTolerance = 0.01;
    return titlePages() + full + (m_layout.summaryHeight <= room + kTolerance ? 1 : 2);
}

PageContent Document::page(qint64 number) const
{
    PageContent content;
    Context context;
    context.page = number;
    context.border = {0, 0, m_layout.width, m_layout.height};
    if (m_layout.sheet)
        sheetPage(content, context);
    else if (number <= titlePages())
        titlePage(content, context);
    else
        listPage(content, context);
    return content;
}

/// No row stands on it, so that fields of rows are empty.
void Document::titlePage(PageContent &content, const Context &context) const
{
    put(content, PartName::Page, context);
    put(content, PartName::Title, context);
}

void Document::listPage(PageContent &content, Context context) const
{
    const qint64 perPage = m_layout.rowsPerPage;
    const qint64 first = (context.page - titlePages() - 1) * perPage;
    const qint64 count = std::clamp<qint64>(rows() - first, 0, perPage);
    const Context whole = [&] {
        Context of = context;
        of.row = count > 0 ? first : -1;
        of.rowNumber = count > 0 ? first + 1 : 0;
        return of;
    }();
    put(content, PartName::Page, whole);
    put(content, PartName::Rows, whole);
    for (qint64 i = 0; i < count; ++i) {
        context.row = first + i;
        context.rowNumber = first + i + 1;
        context.dx = double(i) * m_layout.rowStepX;
        context.dy = double(i) * m_layout.rowStepY;
        put(content, PartName::Detail, context);
    }
    if (context.page != summaryPage())
        return;
    // The layout has the summary right under the one row that it shows.
    Context below = whole;
    below.dx = double(count - 1) * m_layout.rowStepX;
    below.dy = double(count - 1) * m_layout.rowStepY;
    put(content, PartName::Summary, below);
}

void Document::sheetPage(PageContent &content, Context context) const
{
    const Sheet &sheet = *m_layout.sheet;
    const qint64 places = placesPerSheet();
    const qint64 firstCard = (context.page - 1) * places - (m_firstPlace - 1);
    const auto cardAt = [&](qint64 index) -> const Card * {
        return index >= 0 && index < cards() ? &m_cards[std::size_t(index)] : nullptr;
    };
    if (const Card *first = cardAt(std::max<qint64>(0, firstCard))) {
        context.row = m_order[first->first];
        context.rowNumber = qint64(first->first) + 1;
        context.card = std::max<qint64>(0, firstCard) + 1;
    }
    put(content, PartName::Page, context);
    for (qint64 place = 0; place < places; ++place) {
        const Card *here = cardAt(firstCard + place);
        if (here == nullptr)
            continue;
        context.card = firstCard + place + 1;
        context.border = sheet.place(int(place));
        context.dx = context.border.left - sheet.card.left;
        context.dy = context.border.top - sheet.card.top;
        card(content, context, *here);
    }
}

void Document::card(PageContent &content, Context context, const Card &card) const
{
    context.row = m_order[card.first];
    context.rowNumber = qint64(card.first) + 1;
    put(content, PartName::Card, context);
    const double left = context.dx;
    const double top = context.dy;
    for (quint32 i = 0; i < card.count; ++i) {
        context.row = m_order[card.first + i];
        context.rowNumber = qint64(card.first + i) + 1;
        context.dx = left + i * m_layout.rowStepX;
        context.dy = top + i * m_layout.rowStepY;
        put(content, PartName::Detail, context);
    }
}

void Document::put(PageContent &content, PartName part, const Context &context) const
{
    const Part &what = m_layout.part(part);
    if (!what.artwork.isEmpty())
        content.artwork.append({part, context.dx, context.dy});
    for (const TextLine &line : what.lines)
        put(content, line, context);
}

void Document::put(PageContent &content, const TextLine &line, const Context &context) const
{
    PlacedLine placed{&line, {}, line.toPage, 0};
    placed.toPage.e += context.dx;
    placed.toPage.f += context.dy;
    const Point place{placed.toPage.e, placed.toPage.f};
    if (!context.border.holds(place))
        return; // a note beside the page
    const double scale = std::hypot(placed.toPage.a, placed.toPage.b);
    const auto room = [&](double direction) {
        return distanceToBorder(context.border, place,
                                {placed.toPage.a * direction, placed.toPage.b * direction}) /
               scale;
    };
    const double ahead = room(1);
    const double behind = room(-1);
    placed.width = line.anchor == Anchor::Start ? ahead
                   : line.anchor == Anchor::End ? behind
                                                : 2 * std::min(ahead, behind);
    if (line.width > 0)
        placed.width = std::min(placed.width, line.width);
    bool any = false;
    for (const Segment &segment : line.segments) {
        placed.texts.append(text(segment, context));
        any = any || !placed.texts.last().isEmpty();
    }
    if (any)
        content.lines.append(placed);
}

QString Document::text(const Segment &segment, const Context &context) const
{
    for (const Condition &condition : segment.conditions)
        if (!holds(condition, context))
            return {};
    QString result;
    for (const Piece &piece : segment.text)
        result += value(piece, context);
    // One line is one line, whatever a field holds.
    for (QChar &c : result)
        if (c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
            c == QChar::ParagraphSeparator)
            c = u' ';
    return result;
}

/// A count of nothing is as empty as a field without a text.
bool Document::holds(const Condition &condition, const Context &context) const
{
    static constexpr std::array kCounts = {Quantity::Rows, Quantity::Cards, Quantity::Different,
                                           Quantity::Filled};
    const bool count = std::find(kCounts.begin(), kCounts.end(), condition.value.quantity) != kCounts.end();
    const QString text = value(condition.value, context);
    return (text.isEmpty() || (count && text == QLatin1String("0"))) == condition.negated;
}

QString Document::otherValue(int other, qint64 row) const
{
    const OtherValue &value = m_others[other];
    if (value.stationField < 0)
        return value.text;
    const qint32 station = row < 0 ? -1 : m_stationOfRow.at(std::size_t(row));
    return station < 0 ? QString() : m_stations.text(station, value.stationField);
}

QString Document::value(const Piece &piece, const Context &context) const
{
    const auto field = [&](qint64 row) {
        return row < 0 ? QString() : formatted(m_rows.text(row, piece.field).trimmed(), piece.text);
    };
    const auto ordered = [this](qint64 index) {
        if (index < 0 || index >= rows())
            return qint64{-1};
        return m_order.empty() ? index : qint64(m_order[std::size_t(index)]);
    };
    switch (piece.quantity) {
    case Quantity::Literal:
        return piece.text;
    case Quantity::Field:
        return field(context.row);
    case Quantity::Other:
        return formatted(otherValue(piece.field, context.row).trimmed(), piece.text);
    case Quantity::Page:
        return QString::number(context.page);
    case Quantity::Pages:
        return QString::number(pages());
    case Quantity::Row:
        return context.row < 0 ? QString() : QString::number(context.rowNumber);
    case Quantity::Rows:
        return QString::number(rows());
    case Quantity::Card:
        return context.card < 1 ? QString() : QString::number(context.card);
    case Quantity::Cards:
        return QString::number(cards());
    case Quantity::First:
        return field(ordered(0));
    case Quantity::Last:
        return field(ordered(rows() - 1));
    case Quantity::Earliest:
    case Quantity::Latest:
        return field(total(piece));
    case Quantity::Different:
    case Quantity::Filled:
        return QString::number(total(piece));
    }
    return {};
}

qint64 Document::total(const Piece &piece) const
{
    const auto found = std::find_if(m_totals.begin(), m_totals.end(), [&piece](const Total &known) {
        return known.quantity == piece.quantity && known.field == piece.field;
    });
    return found == m_totals.end() ? -1 : found->value;
}

} // namespace report
