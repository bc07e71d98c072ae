#pragma once

#include "report/layout.h"

#include <QHash>
#include <QSet>
#include <QXmlStreamReader>

#include <array>
#include <optional>

namespace report {

/// Reads one layout. See readLayout().
class LayoutReader {
public:
    LayoutReader(const QByteArray &bytes, const QString &path);

    [[nodiscard]] Layout read();

private:
    /// What an element takes over from those around it.
    struct State {
        Affine transform;
        PartName part = PartName::Page;
        TextStyle style;
        bool visible = true;
        bool filled = true;
        bool preserve = false; ///< blanks in texts count
        Anchor anchor = Anchor::Start;
        QList<Condition> conditions;
        double groupOpacity = 1; ///< of all elements around, this one included
        double ownOpacity = 1;
        double fillOpacity = 1;
        QString unprinted; ///< element around whose texts are not printed; empty for none
        int depth = 0;
    };
    /// Text of one style as it stands in the file.
    struct RawSegment {
        State state;
        double shift;
        QString text;
        qint64 line;
    };
    struct RawLine {
        double x = 0;
        double y = 0;
        double width = 0;
        Anchor anchor = Anchor::Start;
        Affine toPage;
        QList<RawSegment> segments;
    };

    /// An element that repeats another one.
    struct Use {
        QString id; ///< of what it leads to
        qint64 line;
        std::optional<PartName> part; ///< that it is drawn in; none where it is not drawn
    };

    [[noreturn]] void fail(const QString &what, qint64 line = 0) const;
    void checkReader() const;
    void countElement(const State &state);
    void countGeometry();
    void checkElement();
    void checkNumbers();
    void checkReach(const Affine &toPage) const;
    void checkSheet(const QString &sheet) const;
    void checkLinks();
    void checkUse(const QString &link);
    void checkPicture(const QString &link);
    void checkUses() const;
    void drawnIn(PartName part, bool use);
    void checkTitle(const Segment &segment, qint64 line) const;
    void refuseText(const QString &within);
    void remember(QStringView unprinted);
    void collectStyleRules(const QByteArray &bytes);

    void readRoot(State &state);
    void readPageSize(State &state);
    void element(const State &around);
    void children(const State &state);
    void definitions(int depth, const QString &within);
    void readPages(State &state);
    void partBegins(PartName part, PartName around, const State &state);
    void cardBegins(const State &state);
    void detailBegins(const State &state);

    [[nodiscard]] State inner(const State &around);
    void applyProperties(State &state, const QHash<QString, QString> &properties, double parentSize);

    void text(const State &state);
    void textContent(const State &state, QList<RawLine> &lines, double shift);
    void beginLine(const State &state, QList<RawLine> &lines);
    [[nodiscard]] static RawLine tidy(RawLine line);
    void addLine(const RawLine &line);

    [[nodiscard]] int fieldIndex(const QString &fieldTable, const QString &name, qint64 line);
    [[nodiscard]] int styleIndex(const TextStyle &style);
    [[nodiscard]] Template parsed(const QString &text, qint64 line);
    [[nodiscard]] double number(const char *attribute, std::optional<double> otherwise = {}) const;
    [[nodiscard]] int count(const char *attribute) const;
    [[nodiscard]] QString attribute(const char *name) const;

    [[nodiscard]] bool seen(PartName part) const { return m_seen.at(std::size_t(part)); }
    void checkWhole() const;
    void findFile();

    QByteArray m_bytes;
    QXmlStreamReader m_reader;
    Layout m_layout;
    QString m_viewBox; ///< of the artwork
    QHash<QString, QHash<QString, QString>> m_classes;
    int m_elements = 0;
    qsizetype m_geometry = 0; ///< characters of outlines
    double m_largest = 0;     ///< number of the element, user units
    std::array<bool, kPartCount> m_seen = {};
    qint64 m_pagesLine = 0; ///< of the first data-pages
    QStringList m_openIds;
    QSet<QString> m_idsWithUse;
    QSet<QString> m_idsWithText;
    QHash<QString, QString> m_unprinted; ///< element that is not drawn around an id, or with it
    QList<Use> m_used;
    QHash<QString, unsigned> m_partsOfId; ///< a bit for each part that has a shape in the element
};

} // namespace report
