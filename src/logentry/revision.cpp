#include "logentry/revision.h"

#include "base/text.h"
#include "logentry/sql.h"
#include "store/tablewalk.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace logentry {

namespace {

const QByteArray kRussia = QByteArrayLiteral("RUSSIAN");

/// Letters, digits and signs that a prefix is made of. Callsigns with anything else (blanks, quotes,
/// Cyrillic) are rare: the queries themselves tell what those match.
bool isPlain(QByteArrayView text)
{
    return std::all_of(text.cbegin(), text.cend(), [](char c) { return c > ' ' && c < 0x7f && c != '\''; });
}

/// Names by prefix, for the longest one that a callsign begins with: one step a character. Takes plain texts
/// only.
class PrefixTree {
public:
    /// Of callsigns and of prefixes; a table with texts beyond all reason must not fill the memory.
    static constexpr qsizetype kLongest = 24;

    PrefixTree() : m_nodes(1), m_names(1) {}

    /// Of several names for one prefix the first counts, and an empty one counts as no row.
    void add(QByteArrayView prefix, QByteArrayView name)
    {
        std::size_t node = 0;
        for (const char c : prefix) {
            std::uint32_t next = m_nodes[node].next[place(c)];
            if (next == 0) {
                next = static_cast<std::uint32_t>(m_nodes.size());
                m_nodes[node].next[place(c)] = next;
                m_nodes.emplace_back();
            }
            node = next;
        }
        Node &end = m_nodes[node];
        if (end.taken)
            return;
        end.taken = true;
        if (!name.isEmpty()) {
            end.name = m_names.size();
            m_names.append(name.toByteArray());
        }
    }

    [[nodiscard]] const QByteArray &longest(QByteArrayView call) const
    {
        std::size_t node = 0;
        qsizetype name = 0;
        for (const char c : call) {
            node = m_nodes[node].next[place(c)];
            if (node == 0)
                break;
            if (m_nodes[node].name != 0)
                name = m_nodes[node].name;
        }
        return m_names[name];
    }

private:
    static constexpr char kFirst = ' ' + 1;
    static constexpr std::size_t kPlaces = 0x7f - kFirst;
    struct Node {
        std::array<std::uint32_t, kPlaces> next{};
        qsizetype name = 0;
        bool taken = false;
    };
    static std::size_t place(char c)
    {
        return static_cast<std::size_t>((c >= 'a' && c <= 'z' ? c - 0x20 : c) - kFirst);
    }

    std::vector<Node> m_nodes;
    QList<QByteArray> m_names;
};

std::u16string keyOf(QStringView text)
{
    std::u16string key;
    key.reserve(static_cast<std::size_t>(text.size()));
    for (const QChar c : text)
        key += c >= QLatin1Char('a') && c <= QLatin1Char('z') ? static_cast<char16_t>(c.unicode() - 0x20)
                                                              : c.unicode();
    return key;
}

struct KeyHash {
    using is_transparent = void;
    std::size_t operator()(std::u16string_view key) const noexcept
    {
        return std::hash<std::u16string_view>()(key);
    }
};

template <typename Value>
using ByKey = std::unordered_map<std::u16string, Value, KeyHash, std::equal_to<>>;

/// The country table in memory: a million callsigns are resolved, each by all its beginnings.
class Countries {
public:
    explicit Countries(Sources &sources) : m_source(sources.Data3)
    {
        enum : std::size_t { Prefix, Name };
        store::TableWalk table(sources.databases().connection(m_source.databaseName()),
                               QStringLiteral("tbldxcc"), {QStringLiteral("prf"), QStringLiteral("strana")},
                               {});
        while (table.readChunk())
            for (std::size_t row = 0; row < table.rows(); ++row) {
                // What does not fit begins no callsign that fits.
                if (fits(table.utf8(row, Prefix)))
                    m_names.add(table.utf8(row, Prefix), table.utf8(row, Name));
            }
    }

    /// Country of the longest beginning that is a prefix; empty where none is.
    [[nodiscard]] QByteArray of(QByteArrayView call)
    {
        return fits(call) ? m_names.longest(call) : asked(QString::fromUtf8(call)).toUtf8();
    }

private:
    static bool fits(QByteArrayView text) { return text.size() <= PrefixTree::kLongest && isPlain(text); }

    QString asked(const QString &call)
    {
        QString name;
        for (qsizetype length = 1; length <= call.size(); ++length) {
            try {
                m_source.setRecordSource(sql::countryForRevision(call.left(length)));
                m_source.refresh();
            } catch (const store::Error &error) {
                if (error.kind() != store::ErrorKind::BadText)
                    throw;
                break; // a quote in the callsign: no longer beginning can be asked for
            }
            const QString found = m_source.field(QStringLiteral("strana"));
            if (!found.isEmpty())
                name = found;
        }
        return name;
    }

    store::DataSource &m_source;
    PrefixTree m_names;
};

/// Keys of the regions that have a position.
class PlacedRegions {
public:
    explicit PlacedRegions(Sources &sources)
    {
        enum : std::size_t { Key, Latitude };
        store::TableWalk table(sources.databases().connection(sources.Data9.databaseName()),
                               QStringLiteral("tblrus"), {QStringLiteral("pref"), QStringLiteral("Shir")},
                               {});
        while (table.readChunk())
            for (std::size_t row = 0; row < table.rows(); ++row)
                m_placed.try_emplace(keyOf(table.text(row, Key)), !table.text(row, Latitude).isEmpty());
    }

    [[nodiscard]] bool contains(const QString &key) const
    {
        const auto found = m_placed.find(keyOf(key));
        return found != m_placed.end() && found->second;
    }

private:
    ByKey<bool> m_placed;
};

/// A Russian row as RUSS met it.
struct RussianRow {
    QString call;
    QString keyBefore;
};

/// What the rows leave behind in the window's fields.
struct Trail {
    QString call; ///< of the last row
    QByteArray country;
    std::optional<RussianRow> lastRussian;
    std::optional<RussianRow> lastPlaced; ///< the last one whose region has a position
    bool found = false;                   ///< a prefix matched in some row
};

} // namespace

QString revisionMark(const QString &ownCall)
{
    switch (ownCall.size()) {
    case 6:
        return ownCall.right(3);
    case 5:
        return ownCall.right(2);
    default:
        return {};
    }
}

Revision::Revision(Sources &sources, EntryFields &fields, EntryState &state, Lookups &lookups)
    : m_sources(sources), m_fields(fields), m_state(state), m_lookups(lookups)
{}

Revision::Result Revision::run(const Step &step)
{
    enum : std::size_t { Call, Country, Mark };
    m_sources.Data1.refresh();
    store::TableWalk log(m_sources.databases().connection(m_sources.mainLogPath()), QStringLiteral("TBLLOG1"),
                         {QStringLiteral("ccall")}, {QStringLiteral("CONTR"), QStringLiteral("PRF")});
    Result result;
    if (log.total() == 0)
        return result;
    Countries countries(m_sources);
    const PlacedRegions regions(m_sources);
    const QByteArray mark = revisionMark(m_sources.Data18.field(QStringLiteral("ccall"))).toUtf8();
    Trail trail;
    trail.country = m_fields.txtcontr.toUtf8();
    result.stopped = !step(0, log.total());
    while (!result.stopped && log.readChunk()) {
        for (std::size_t row = 0; row < log.rows(); ++row) {
            const QByteArray found = countries.of(log.utf8(row, Call));
            if (!found.isEmpty()) {
                trail.country = found;
                trail.found = true;
            }
            if (trail.country == kRussia) {
                trail.lastRussian = RussianRow{log.text(row, Call), m_state.regionKey};
                m_state.regionKey = regionKeyOf(trail.lastRussian->call, m_state.regionKey);
                if (regions.contains(m_state.regionKey))
                    trail.lastPlaced = trail.lastRussian;
            }
            log.setUtf8(row, Country, trail.country);
            if (log.utf8(row, Mark).isEmpty())
                log.setUtf8(row, Mark, mark);
        }
        trail.call = log.text(log.rows() - 1, Call);
        result.changed += log.writeChunk();
        result.visited = log.visited();
        result.stopped = !step(log.visited(), log.total());
    }
    if (result.visited == 0)
        return result;

    // What every row would have shown on the way has been passed over; what the last ones leave stands here.
    Attempts attempt;
    for (const auto &russian : {trail.lastPlaced, trail.lastRussian}) {
        if (!russian)
            continue;
        m_fields.txtcall = russian->call;
        m_state.regionKey = russian->keyBefore;
        attempt([this] { m_lookups.RUSS(); });
    }
    m_fields.txtcall = trail.call;
    m_fields.txtcontr = QString::fromUtf8(trail.country);
    m_fields.townPanelShown = trail.country == kRussia;
    if (trail.found)
        attempt([this] { m_lookups.QSOQSL(); });
    for (store::DataSource *source : {&m_sources.Data1, &m_sources.Data5})
        attempt([source] { source->refresh(); });
    result.notShown = attempt.firstError();
    return result;
}

} // namespace logentry
