#pragma once

#include "report/layout.h"
#include "report/snapshot.h"
#include "report/stations.h"
#include "store/library.h"

#include <QList>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace report {

/// Told from time to time how far the reading is; false stops it.
using Step = std::function<bool(qint64 done, qint64 total)>;

/// A part's artwork on a page, moved by so many millimetres from where the layout has it.
struct PlacedArtwork {
    PartName part;
    double dx;
    double dy;
};

/// A line of text on a page with its values put in.
struct PlacedLine {
    const TextLine *line;
    QStringList texts; ///< of its segments; empty for one that is not printed
    Affine toPage;     ///< from user units, whose origin is the line's place, to millimetres
    double width;      ///< what it may take, user units
};

/// What is drawn on one page, artwork first.
struct PageContent {
    QList<PlacedArtwork> artwork;
    QList<PlacedLine> lines;
};

/// A layout filled with the rows of its table as they were when it was read. Changes of the table later on
/// do not show.
class Document {
public:
    /// Reads the rows; nothing else is ever read from the databases. Throws Error: Unreadable with the line
    /// of the layout for a table or field that is not there, whatever else fails as it is. Null where `step`
    /// stopped it.
    [[nodiscard]] static std::unique_ptr<Document> read(Layout layout, store::Library &databases,
                                                        const Step &step = {});

    [[nodiscard]] const Layout &layout() const noexcept { return m_layout; }
    [[nodiscard]] qint64 rows() const noexcept { return m_rows.rows(); }
    /// Cards that hold all rows; 0 for a layout without cards.
    [[nodiscard]] qint64 cards() const noexcept { return qint64(m_cards.size()); }
    /// Places for cards on a sheet; 0 for a layout without cards.
    [[nodiscard]] int placesPerSheet() const noexcept;

    /// The first card goes to this place of the first sheet, counted from 1, line by line. What lies
    /// outside of the sheet is taken for the nearest one.
    void setFirstPlace(int place);
    [[nodiscard]] int firstPlace() const noexcept { return m_firstPlace; }

    /// At least one.
    [[nodiscard]] qint64 pages() const;
    /// Content of a page, from 1 to pages(). Points into the document.
    [[nodiscard]] PageContent page(qint64 number) const;

private:
    struct Card {
        quint32 first; ///< index in m_order
        quint32 count;
    };
    /// Where the values of a text come from.
    struct Context {
        qint64 page = 1;
        qint64 row = -1; ///< index in the snapshot; -1 for none
        qint64 rowNumber = 0;
        qint64 card = 0;
        double dx = 0;
        double dy = 0;
        Area border;
    };
    /// Value of a placeholder that names another table.
    struct OtherValue {
        QString text;          ///< the same everywhere
        int stationField = -1; ///< or that of the row's station
    };
    /// How the rows find their stations.
    struct StationLink {
        StationFinder finder;
        QStringList fields; ///< of the rows
    };
    /// What is counted over all rows, or the row that was looked for in all.
    struct Total {
        Quantity quantity;
        int field;
        qint64 value;
    };

    Document(Layout layout, int fields);

    void checkFields(const QStringList &columns, QStringList &names) const;
    [[nodiscard]] bool readRows(store::Library &databases, const QString &path, QStringList names,
                                std::optional<StationLink> &stations, const Step &step);
    [[nodiscard]] std::optional<StationLink> readOthers(store::Library &databases,
                                                        const QStringList &columns);
    [[nodiscard]] StationLink stationLink(store::Library &databases, const QStringList &columns,
                                          const QList<FieldName> &wanted) const;
    void countTotals();
    [[nodiscard]] qint64 counted(Quantity quantity, int field) const;
    [[nodiscard]] qint64 rowOfDate(int field, bool latest) const;
    void makeCards();

    [[nodiscard]] int titlePages() const noexcept { return m_layout.titlePage ? 1 : 0; }
    [[nodiscard]] qint64 summaryPage() const;
    void titlePage(PageContent &content, const Context &context) const;
    void listPage(PageContent &content, Context context) const;
    void sheetPage(PageContent &content, Context context) const;
    void card(PageContent &content, Context context, const Card &card) const;
    void put(PageContent &content, PartName part, const Context &context) const;
    void put(PageContent &content, const TextLine &line, const Context &context) const;
    [[nodiscard]] QString value(const Piece &piece, const Context &context) const;
    [[nodiscard]] bool holds(const Condition &condition, const Context &context) const;
    [[nodiscard]] qint64 total(const Piece &piece) const;
    [[nodiscard]] QString otherValue(int other, qint64 row) const;
    [[nodiscard]] QString text(const Segment &segment, const Context &context) const;

    Layout m_layout;
    Snapshot m_rows;
    QList<OtherValue> m_others; ///< of Layout::others
    Snapshot m_stations{1};
    std::vector<qint32> m_stationOfRow; ///< -1 for none; empty where no text asks for it
    QList<Total> m_totals;
    std::vector<quint32> m_order; ///< rows as the cards take them
    std::vector<Card> m_cards;
    int m_firstPlace = 1;
};

} // namespace report
