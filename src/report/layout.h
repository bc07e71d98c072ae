#pragma once

#include "report/affine.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>

namespace report {

/// What a placeholder stands for.
enum class Quantity {
    Literal,   ///< no placeholder: the text itself
    Field,     ///< field of the row; outside of the detail of the first row of the page or card
    Other,     ///< field of another table: of its only row, or of the record of the row's station
    Page,      ///< number of the page, from 1
    Pages,     ///< how many there are
    Row,       ///< number of the row, from 1
    Rows,      ///< how many there are
    Card,      ///< number of the card, from 1
    Cards,     ///< how many there are
    Different, ///< how many different values a field has, empty ones apart; letter case does not count
    Filled,    ///< how many rows have something in a field
    First,     ///< field of the first row
    Last,      ///< field of the last row
    Earliest,  ///< field of the row with the earliest date in it
    Latest     ///< field of the row with the latest date in it
};

struct Piece {
    Quantity quantity = Quantity::Literal;
    QString text; ///< of a literal; of any other piece the format of a date ("dd.MM.yyyy"), "call", or empty
    int field = -1; ///< index in Layout::fields, or in Layout::others
};

/// Text with placeholders.
using Template = QList<Piece>;

/// Printed only where the value is not empty, or (`negated`) only where it is. A count of nothing is empty.
struct Condition {
    Piece value;
    bool negated = false;
};

struct TextStyle {
    QStringList families;
    double size = 0; ///< user units
    int weight = 400;
    bool italic = false;
    double letterSpacing = 0; ///< user units
    quint32 colour = 0;       ///< 0xRRGGBB
    double opacity = 1;       ///< 0 to 1

    [[nodiscard]] bool operator==(const TextStyle &) const = default;
};

/// Part of a line that is written in one style.
struct Segment {
    int style = 0;    ///< index in Layout::styles
    double shift = 0; ///< down from the line, user units
    Template text;
    QList<Condition> conditions;
};

enum class Anchor { Start, Middle, End };

struct TextLine {
    Affine toPage; ///< from user units, whose origin is the line's place, to millimetres of the page
    Anchor anchor = Anchor::Start;
    double width = 0; ///< longer texts are narrowed to it; user units; 0: to the border
    QList<Segment> segments;
};

/// What is drawn together: texts, and the artwork under them.
struct Part {
    QByteArray artwork; ///< an SVG document of the whole page without texts; empty for none
    QList<TextLine> lines;
};

enum class PartName {
    Page,  ///< every page
    Title, ///< the title page
    Rows,  ///< every page but the title page
    Card,
    Detail,
    Summary
};
inline constexpr int kPartCount = 6;

/// A field that the layout names, and where.
struct FieldName {
    QString table; ///< empty: the report's own
    QString name;
    qint64 line = 0;
};

/// A picture that the artwork shows, as its file would be. Whether it can be read is not known here.
struct Picture {
    QByteArray bytes;
    qint64 line = 0;
};

/// How cards lie on the sheet. Lengths in millimetres.
struct Sheet {
    int columns = 1;
    int rows = 1;
    double pitchX = 0;
    double pitchY = 0;
    Area card;              ///< the first one
    QList<int> groupFields; ///< rows that agree in these lie on one card

    /// The card's place on the sheet, counted from 0, line by line.
    [[nodiscard]] Area place(int number) const noexcept
    {
        const int row = number / columns;
        return card.moved((number - row * columns) * pitchX, row * pitchY);
    }
};

/// A report layout as its file describes it.
struct Layout {
    QString path;
    QString title;    ///< may be empty
    double width = 0; ///< of the page, millimetres
    double height = 0;
    QString file; ///< name of the database
    QString table;
    QString filled;          ///< rows in which this field is empty are left away; empty: none are
    QString order;           ///< terms of an ORDER BY of the windows' dialect; empty: as stored
    qint64 tableLine = 0;    ///< line that names the table
    QList<FieldName> fields; ///< of the rows
    QList<FieldName> others; ///< of other tables
    QList<TextStyle> styles;
    QList<Picture> pictures;
    std::array<Part, kPartCount> parts;
    double rowStepX = 0; ///< from row to row, millimetres
    double rowStepY = 0;
    int rowsPerPage = 0;      ///< or per card
    double summaryHeight = 0; ///< millimetres; 0 without one
    bool titlePage = false;   ///< a page without rows comes first
    std::optional<Sheet> sheet;

    [[nodiscard]] const Part &part(PartName name) const { return parts.at(std::size_t(name)); }
};

/// Reads a layout. Throws Error: Missing, CannotOpen, or Unreadable with the line and what is wrong in
/// Russian. Whether the fields exist is not known here.
[[nodiscard]] Layout readLayoutFile(const QString &path);

/// The same from bytes; `path` is for messages.
[[nodiscard]] Layout readLayout(const QByteArray &bytes, const QString &path);

/// Largest layout file, in bytes: room for embedded pictures.
inline constexpr qint64 kLargestLayout = 16LL * 1024 * 1024;

} // namespace report
