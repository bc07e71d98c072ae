#include "logentry/revision.h"

#include "base/text.h"
#include "logentry/sql.h"
#include "store/countrytable.h"
#include "store/tablewalk.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace logentry {

namespace {

const QByteArray kRussia = QByteArrayLiteral("RUSSIAN");

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
    explicit Countries(Sources &sources)
        : m_source(sources.Data3), m_table(sources.databases().connection(m_source.databaseName()))
    {}

    /// Country of the longest beginning that is a prefix; empty where none is.
    [[nodiscard]] QByteArray of(QByteArrayView call)
    {
        return store::CountryTable::isPlain(call) ? m_table.of(call)
                                                  : asked(QString::fromUtf8(call)).toUtf8();
    }

private:
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
    store::CountryTable m_table;
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
