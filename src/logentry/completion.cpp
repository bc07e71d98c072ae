#include "logentry/completion.h"

#include "base/text.h"
#include "logentry/sql.h"

namespace logentry {

namespace {

bool isCyrillicStation(const QString &principalPrefix)
{
    return principalPrefix == QLatin1String("UA") || principalPrefix == QLatin1String("UR") ||
           principalPrefix == QLatin1String("EU");
}

/// Codes that the keys of the Latin layout give.
bool isLatinKey(QChar c)
{
    constexpr int kFirst = 27;
    constexpr int kLast = 190;
    const int code = base::cp1251Code(c);
    return code >= kFirst && code <= kLast;
}

/// The character in the other script, null where the key table has none.
QChar pairOf(store::DataSource &keys, const store::SqlText &query, const QString &field)
{
    keys.setRecordSource(query);
    keys.refresh();
    const QString found = keys.field(field);
    return found.isEmpty() ? QChar() : found.front();
}

/// Adds a row to a table of words unless the query of `source` has found it there.
void addUnlessFound(store::DataSource &source, const store::SqlText &query,
                    const std::initializer_list<std::pair<QString, QString>> &fields)
{
    source.setRecordSource(query);
    source.refresh();
    if (!source.isEmpty())
        return;
    try {
        source.addNew();
        for (const auto &[field, text] : fields)
            source.setField(field, text);
        source.update();
    } catch (const store::Error &) {
        source.cancelUpdate(); // the word stands in its field still, to be learnt once more
        throw;
    }
}

} // namespace

Completion::Completion(Sources &sources, EntryFields &fields, EntryState &state)
    : m_sources(sources), m_fields(fields), m_state(state)
{}

TypedKey Completion::scriptKey(QChar typed, bool fromCyrillicLayout)
{
    if (!isCyrillicStation(m_state.principalPrefix)) {
        if (!base::isCp1251Cyrillic(typed))
            return {typed, false};
        const QChar latin = pairOf(m_sources.Data14, sql::latinOfKey(typed), QStringLiteral("engl"));
        return {latin.isNull() ? typed : latin, true};
    }
    if (fromCyrillicLayout || !isLatinKey(typed))
        return {typed, false};
    const QChar cyrillic = pairOf(m_sources.Data20, sql::cyrillicOfKey(typed), QStringLiteral("rus"));
    if (cyrillic.isNull())
        return {typed, false};
    return {cyrillic, true};
}

QString Completion::region()
{
    return m_sources.Data9.field(QStringLiteral("prf"));
}

void Completion::narrowNames()
{
    m_namesNarrowed = true;
    m_sources.Data10.setRecordSource(sql::namesFrom(m_fields.txtname));
    m_sources.Data10.refresh();
}

void Completion::showAllNames()
{
    m_sources.Data10.setRecordSource(sql::allNames());
    m_sources.Data10.refresh();
    m_namesNarrowed = false;
}

void Completion::listsShown()
{
    if (m_namesNarrowed && m_fields.txtname.isEmpty())
        showAllNames();
}

void Completion::narrowTowns()
{
    m_sources.Data8.setRecordSource(sql::townsFrom(m_fields.txtqth, region()));
    m_sources.Data8.refresh();
}

void Completion::learnName()
{
    if (!m_fields.townPanelShown || m_fields.txtname.isEmpty())
        return;
    addUnlessFound(m_sources.Data11, sql::nameEqual(m_fields.txtname),
                   {{QStringLiteral("nname"), m_fields.txtname}});
    showAllNames();
}

void Completion::learnTown()
{
    if (!m_fields.townPanelShown || m_fields.txtqth.isEmpty())
        return;
    addUnlessFound(m_sources.Data17, sql::townEqual(m_fields.txtqth),
                   {{QStringLiteral("gorod"), m_fields.txtqth}, {QStringLiteral("prf"), region()}});
    m_sources.Data8.setRecordSource(sql::townsOfRegionUnsorted(region()));
    m_sources.Data8.refresh();
}

} // namespace logentry
