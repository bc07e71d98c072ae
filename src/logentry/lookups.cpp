#include "logentry/lookups.h"

#include "logentry/ownkey.h"
#include "logentry/sql.h"

#include <Qt>

namespace logentry {

namespace {

const QString kRussia = QStringLiteral("UA");

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

} // namespace

QString regionKeyOf(QStringView call, const QString &previous)
{
    constexpr qsizetype kShortest = 4;
    if (call.size() < kShortest)
        return previous;
    if (isDigit(call[2]))
        return call.mid(2, 2).toString();
    return call.mid(1, isDigit(call[1]) ? 2 : 1).toString();
}

void Attempts::operator()(const std::function<void()> &operation)
{
    try {
        operation();
    } catch (const store::Error &error) {
        if (!m_error)
            m_error = error;
    }
}

Lookups::Lookups(Sources &sources, EntryFields &fields, EntryState &state)
    : m_sources(sources), m_fields(fields), m_state(state)
{}

void Lookups::STRAN()
{
    store::DataSource &countries = m_sources.Data3;
    const QString call = m_fields.txtcall;
    if (call.isEmpty())
        return;
    Attempts attempt; // counts or a region that cannot be read do not keep the country from being found
    for (qsizetype i = 1; i <= call.size(); ++i) {
        countries.setRecordSource(sql::countryOfPrefix(call.left(i)));
        countries.refresh();
        const QString name = countries.field(QStringLiteral("strana"));
        if (name.isEmpty())
            continue;
        m_fields.txtcontr = name;
        m_state.principalPrefix = countries.field(QStringLiteral("PREF"));
        attempt([this] { QSOQSL(); });
    }
    if (m_state.principalPrefix != kRussia) {
        m_fields.townPanelShown = false;
        // The source still stands on the row of the whole callsign, so the position follows only while that
        // is itself a prefix; further letters leave it.
        if (!countries.field(QStringLiteral("Shir")).isEmpty())
            m_position.take(m_fields.position, countries.field(QStringLiteral("Shir")),
                            countries.field(QStringLiteral("Dolg")));
    } else {
        attempt([this] { RUSS(); });
    }
    m_position.Distanc(m_fields.position);
    if (m_state.principalPrefix == QLatin1String("EU") || m_state.principalPrefix == QLatin1String("UR")) {
        m_fields.townPanelShown = true;
        m_fields.nameHintShown = true;
    }
    if (attempt.firstError())
        throw store::Error(*attempt.firstError());
}

void Lookups::RUSS()
{
    m_fields.townPanelShown = true;
    m_fields.townHintShown = true;
    m_fields.nameHintShown = true;
    m_state.regionKey = regionKeyOf(m_fields.txtcall, m_state.regionKey);
    store::DataSource &regions = m_sources.Data9;
    regions.setRecordSource(sql::regionOfKey(m_state.regionKey));
    regions.refresh();
    Attempts attempt; // the position does not depend on the towns
    attempt([&] {
        m_sources.Data8.setRecordSource(sql::townsOfRegion(regions.field(QStringLiteral("prf"))));
        m_sources.Data8.refresh();
    });
    if (!regions.field(QStringLiteral("Shir")).isEmpty())
        m_position.take(m_fields.position, regions.field(QStringLiteral("Shir")),
                        regions.field(QStringLiteral("dolg")));
    if (attempt.firstError())
        throw store::Error(*attempt.firstError());
}

void Lookups::QSOQSL()
{
    if (m_fields.txtcontr.isEmpty())
        return;
    store::DataSource &counts = m_sources.Data4;
    const auto count = [&counts](const store::SqlText &text) {
        counts.setRecordSource(text);
        counts.refresh();
        if (counts.isEmpty())
            return QStringLiteral("0");
        counts.moveLast();
        return QString::number(counts.recordCount());
    };
    m_fields.TXTQSL = count(sql::confirmedCalls(m_fields.txtcontr));
    m_fields.txtQSO = count(sql::workedCalls(m_fields.txtcontr));
}

void Lookups::WWOD()
{
    store::DataSource &grid = m_sources.Data5;
    if (m_fields.txtcall.isEmpty()) {
        grid.setRecordSource(sql::contactsOfDay(m_fields.txtdate));
        grid.refresh();
        return;
    }
    if (m_state.listShown) {
        m_sources.Data16.setRecordSource(sql::workedCallsFrom(m_fields.txtcall));
        m_sources.Data16.refresh();
    }
    showContactsWith(m_fields.txtcall);
}

void Lookups::showContactsWith(const QString &call)
{
    m_sources.Data5.setRecordSource(sql::contactsWith(call));
    m_sources.Data5.refresh();
}

void Lookups::bukcal()
{
    store::DataSource &callbook = m_sources.Data12;
    m_fields.callbookShown = false;
    const QString call = m_fields.txtcall;
    callbook.setRecordSource(sql::callbookEntry(call));
    callbook.refresh();
    const QString found = callbook.field(QStringLiteral("ccall"));
    m_fields.callbookShown = !found.isEmpty() && found.compare(call, Qt::CaseInsensitive) == 0;
    const auto entry = [&](const char *name) {
        return m_fields.callbookShown ? callbook.field(QLatin1String(name)) : QString();
    };
    m_fields.txtqth = entry("qth");
    m_fields.txtname = entry("nname");
    m_fields.txtqslvia = entry("qslvia");
}

std::optional<store::Error> Lookups::callsignKeyReleased(int key)
{
    Attempts attempt;
    if (m_state.keyerShown)
        m_fields.TXTF11 = m_fields.txtcall;
    attempt([this] { WWOD(); });
    attempt([this] { STRAN(); });
    if (key != Qt::Key_F5 && key != Qt::Key_F6)
        attempt([this] { bukcal(); });
    if (m_fields.txtcall.isEmpty())
        clearForEmptyCallsign();
    return attempt.firstError();
}

void Lookups::clearForEmptyCallsign()
{
    m_fields.txtcontr.clear();
    m_fields.txtqth.clear();
    m_fields.txtname.clear();
    m_fields.txtqslvia.clear();
    m_fields.TXTQSL.clear();
    m_fields.callbookShown = false;
    m_sources.Data12.setRecordSource(sql::callbookEntry({})); // where it is read next: no station's record
}

void Lookups::deriveOwnKey()
{
    m_state.ownCallKey = ownCallKey(m_fields.txtNcall);
}

} // namespace logentry
