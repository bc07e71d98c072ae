#include "awards/picking.h"

#include "awards/sql.h"
#include "base/date.h"
#include "store/opening.h"

#include <optional>

namespace awards {

namespace {

QString field(const char *name)
{
    return QString::fromLatin1(name);
}

/// Report of a contact as the application takes it: without a contest's serial number. Nothing for one of
/// fewer than two characters.
std::optional<QString> blankReport(const QString &report, const BlankQuestions &questions)
{
    if (report.size() > 3)
        return questions.contestIs599() ? QStringLiteral("599") : QStringLiteral("59");
    return report.size() >= 2 ? std::optional(report) : std::nullopt;
}

} // namespace

QString Picking::chooseCountryPrefix(const QString &prefix)
{
    store::requery(m_sources.PrefixCountry, sql::countryOfPrefix(prefix));
    QString country = m_sources.PrefixCountry.field(field("STRANA"));
    store::requery(m_sources.Calls, sql::callsOfCountry(country));
    return country;
}

void Picking::chooseRegionPrefix(const QString &prefix)
{
    store::requery(m_sources.Calls, sql::callsOfRegion(prefix));
    store::requery(m_sources.PrefixRegion, sql::regionOfPrefix(prefix));
}

bool Picking::chooseCall(const QString &call)
{
    store::requery(m_sources.Station, sql::contactsOfCall(call));
    store::requery(m_sources.Callbook, sql::callbookEntry(call));
    return m_sources.Callbook.field(field("ccall")).compare(call, Qt::CaseInsensitive) == 0 &&
           !m_sources.Callbook.field(field("qth")).isEmpty();
}

QString Picking::cell(int row, const char *name)
{
    return m_sources.Station.text(row, field(name));
}

void Picking::carry(int row, bool withCountry, const BlankQuestions &questions)
{
    m_sources.Station.moveTo(row);
    m_sources.Blank.addNew();
    try {
        fillRow(row, withCountry, questions);
        m_sources.Station.update(); // a time that was asked for
        m_sources.Blank.update();
    } catch (const store::Error &) {
        m_sources.Blank.cancelUpdate();
        throw;
    }
    m_sources.Blank.refresh();
}

void Picking::fillRow(int row, bool withCountry, const BlankQuestions &questions)
{
    store::DataSource &blank = m_sources.Blank;
    for (const char *name : {"ccall", "bband", "ddate"})
        blank.setField(field(name), cell(row, name));
    if (cell(row, "ttime").isEmpty())
        m_sources.Station.setField(field("ttime"), questions.time());
    if (const auto time = base::blankTime(cell(row, "ttime")))
        blank.setField(field("ttime"), *time);
    // The report that was received goes where a card shows the one sent: applications have always been made
    // so.
    if (const auto report = blankReport(cell(row, "rstr"), questions))
        blank.setField(field("rsts"), *report);
    if (withCountry)
        blank.setField(field("CONTR"), cell(row, "CONTR"));
}

void Picking::lookUp(const QString &entry, EntryKind kind, bool confirmed)
{
    if (kind == EntryKind::Call) {
        store::requery(m_sources.Lookup, sql::contactOfCall(entry, confirmed));
        return;
    }
    store::requery(m_sources.PrefixCountry, sql::countryOfPrefix(entry));
    store::requery(m_sources.Lookup,
                   sql::contactOfCountry(m_sources.PrefixCountry.field(field("STRANA")), confirmed));
}

FillResult Picking::fill(const QStringList &entries, EntryKind kind, bool confirmed,
                         const std::function<void(int)> &at)
{
    FillResult result;
    store::DataSource &blank = m_sources.Blank;
    blank.update();
    store::Connection &log = m_sources.databases().connection(m_sources.logPath());
    const store::Patience patience(log);
    store::Transaction transaction(log);
    try {
        for (int i = 0; i <= entries.size(); ++i) {
            at(i);
            const QString entry = entries.value(i); // empty behind the last one
            blank.addNew();
            lookUp(entry, kind, confirmed);
            for (const char *name : {"ccall", "ddate", "ttime", "rsts", "CONTR", "bband"})
                blank.setField(field(name), m_sources.Lookup.field(field(name)));
            if (m_sources.Lookup.isEmpty() && i < entries.size())
                result.notFound.append(entry);
            blank.update();
            ++result.rows;
        }
    } catch (const store::Error &) {
        blank.cancelUpdate();
        throw;
    }
    transaction.commit();
    blank.refresh();
    return result;
}

void Picking::emptyBlank()
{
    m_sources.databases().execute(m_sources.logPath(), sql::emptyBlank());
    m_sources.Blank.cancelUpdate(); // the row is gone
    m_sources.Blank.refresh();
}

} // namespace awards
