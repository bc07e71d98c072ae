#include "reference/countryupdate.h"

#include "base/number.h"
#include "reference/countrymatch.h"
#include "reference/sql.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace reference {

namespace {

using Country = CountryMatch::Country;

QString databasePath(store::Library &databases)
{
    return databases.path(u"\\dbdxcc1.mdb");
}

/// Whether no other callsign begins with this one.
bool standsAlone(const QString &call)
{
    constexpr qsizetype kSuffix = 3;
    if (call.contains(QLatin1Char('/')))
        return true;
    const auto digit = std::find_if(call.crbegin(), call.crend(), [](QChar c) { return c.isDigit(); });
    return digit != call.crend() && digit - call.crbegin() >= kSuffix;
}

/// What the file says of a key, in the forms of the table.
struct Answer {
    const Country *country = nullptr; ///< null where the file has the key, but nobody knows of which country
    bool exact = false;
    QString continent;
    int cqZone = 0;
    int ituZone = 0;
    std::optional<Coordinates> position; ///< the key's own
    Coordinates countryPosition;
};

Coordinates placeOf(const foreign::CountryPosition &position)
{
    return {position.latitude, position.longitude};
}

Answer answerOf(const foreign::CountryEntity &entity, const foreign::CountryKey &key, const Country *country)
{
    Answer answer;
    answer.country = country;
    answer.exact = key.exact;
    answer.continent = key.continent.isEmpty() ? entity.continent : key.continent;
    answer.cqZone = key.cqZone.value_or(entity.cqZone);
    answer.ituZone = key.ituZone.value_or(entity.ituZone);
    if (key.position)
        answer.position = placeOf(*key.position);
    answer.countryPosition = placeOf(entity.position);
    return answer;
}

bool isOf(const CountryRow &row, const Country &country)
{
    return folded(row.pref) == folded(country.pref);
}

bool isNumber(const QString &text, int value)
{
    const std::optional<double> number = base::parseNumber(text);
    return number && *number == value;
}

/// Takes over continent and zones that differ in more than their form.
void setZones(CountryRow &row, const Answer &answer)
{
    if (folded(row.kont) != answer.continent)
        row.kont = answer.continent;
    if (!isNumber(row.cq, answer.cqZone))
        row.cq = QString::number(answer.cqZone);
    if (!isNumber(row.iaru, answer.ituZone))
        row.iaru = QString::number(answer.ituZone);
}

/// Whether the row need not go for what the file says.
bool agrees(const CountryRow &row, const Answer &answer)
{
    if (answer.country == nullptr)
        return true;
    CountryRow zoned = row;
    setZones(zoned, answer);
    return isOf(row, *answer.country) && zoned == row;
}

QString answerText(const Answer *answer)
{
    if (answer == nullptr)
        return QStringLiteral("в файле такого префикса нет");
    return QStringLiteral("по файлу: %1, %2, CQ %3, ITU %4")
        .arg(answer->country->name, answer->continent, QString::number(answer->cqZone),
             QString::number(answer->ituZone));
}

class Planner {
public:
    Planner(const CountryRows &table, const foreign::CountryFile &file)
        : m_table(table), m_file(file), m_match(table, file)
    {}

    CountryPlan plan()
    {
        m_plan.tableState = m_table.state();
        m_plan.remarks = m_match.remarks();
        collectKeys();
        for (auto key = m_answers.cbegin(); key != m_answers.cend(); ++key)
            if (key->country != nullptr)
                compare(key.key(), *key);
        for (const StoredCountryRow &stored : m_table.rows())
            judge(stored);
        sortChanges();
        nameNewCountries();
        return std::move(m_plan);
    }

private:
    void collectKeys()
    {
        for (qsizetype i = 0; i < m_file.entities.size(); ++i) {
            const foreign::CountryEntity &entity = m_file.entities[i];
            m_plan.fileCountries += entity.starred ? 0 : 1;
            const Country *country = m_match.of(i);
            for (const foreign::CountryKey &key : entity.keys)
                if (country != nullptr && key.exact && country->hasPrefix && !standsAlone(key.text))
                    m_leftOut.insert(key.text, country);
                else
                    take(key.text, answerOf(entity, key, country));
        }
        m_plan.leftOutCalls = static_cast<int>(m_leftOut.size());
    }

    void take(const QString &key, const Answer &answer)
    {
        const auto known = m_answers.find(key);
        if (known == m_answers.end()) {
            m_answers.insert(key, answer);
            return;
        }
        if (answer.country == nullptr)
            return;
        if (known->country == nullptr || (answer.exact && !known->exact)) {
            *known = answer;
            return;
        }
        if (known->country != answer.country && known->exact == answer.exact)
            m_plan.remarks.append(QStringLiteral("%1 стоит в файле у двух стран, %2 и %3; взята первая.")
                                      .arg(key, known->country->name, answer.country->name));
    }

    void compare(const QString &key, const Answer &answer)
    {
        ++m_plan.fileKeys;
        if (m_table.isOwn(key))
            return;
        const StoredCountryRow *stored = m_table.row(key);
        if (stored == nullptr) {
            append(CountryChangeKind::Add, 0, {}, newRow(key, answer));
            return;
        }
        if (folded(stored->row.pref).isEmpty())
            return; // judge() counts it among those that stay
        const CountryRow after = renewed(stored->row, answer);
        if (after == stored->row)
            ++m_plan.same;
        else
            append(CountryChangeKind::Change, stored->key, stored->row, after);
    }

    CountryRow newRow(const QString &key, const Answer &answer) const
    {
        CountryRow row;
        row.prf = key;
        row.pref = answer.country->pref;
        row.strana = answer.country->name;
        setZones(row, answer);
        setCoordinates(row, newPosition(key, answer));
        return row;
    }

    CountryRow renewed(CountryRow row, const Answer &answer) const
    {
        const bool moved = !isOf(row, *answer.country);
        if (moved)
            row.pref = answer.country->pref;
        if (moved || folded(row.strana).isEmpty())
            row.strana = answer.country->name;
        setZones(row, answer);
        const std::optional<Coordinates> now = coordinates(row);
        if (now && !moved && !answer.position)
            return row;
        const Coordinates wanted = newPosition(row.prf.toUpper(), answer);
        if (!now || !samePlace(*now, wanted))
            setCoordinates(row, wanted);
        return row;
    }

    Coordinates newPosition(const QString &key, const Answer &answer) const
    {
        if (answer.position)
            return *answer.position;
        for (qsizetype size = key.size() - 1; size > 0; --size) {
            const StoredCountryRow *shorter = m_table.row(key.left(size));
            if (shorter == nullptr || !isOf(shorter->row, *answer.country))
                continue;
            if (const std::optional<Coordinates> place = coordinates(shorter->row))
                return *place;
        }
        return answer.countryPosition;
    }

    /// Of a row that the file does not have: it goes or it stays.
    void judge(const StoredCountryRow &stored)
    {
        if (stored.own) {
            ++m_plan.own;
            return;
        }
        const QString key = stored.row.prf.toUpper();
        const bool counts = m_table.row(key) == &stored && !folded(stored.row.pref).isEmpty();
        const auto direct = m_answers.constFind(key);
        if (counts && !m_table.isOwn(key) && direct != m_answers.cend() && direct->country != nullptr)
            return; // compared already
        const Answer *answer = answerFor(key);
        if (!counts || !isContradicted(stored.row, key, answer)) {
            ++m_plan.kept;
        } else if (m_table.isRepeated(key)) {
            ++m_plan.kept;
            m_plan.remarks.append(
                QStringLiteral("Префикс %1 есть в таблице несколько раз; его строки оставлены, хотя %2.")
                    .arg(key, answerText(answer)));
        } else {
            m_plan.unanswered += answer == nullptr ? 1 : 0;
            append(CountryChangeKind::Remove, stored.key, stored.row, {}, answerText(answer));
        }
    }

    bool isContradicted(const CountryRow &row, const QString &key, const Answer *answer) const
    {
        const Country *country = m_match.byPref(folded(row.pref));
        if (country == nullptr || !country->listed || !country->hasPrefix || !isCountryKey(key))
            return false;
        if (m_leftOut.value(key) == country)
            return false;
        return answer == nullptr || !agrees(row, *answer);
    }

    /// What the longest key of the file says that this one begins with; null where there is none.
    const Answer *answerFor(const QString &key) const
    {
        for (qsizetype size = key.size(); size > 0; --size) {
            const auto found = m_answers.constFind(key.left(size));
            if (found != m_answers.cend())
                return &*found;
        }
        return nullptr;
    }

    void append(CountryChangeKind kind, qint64 key, const CountryRow &before, const CountryRow &after,
                const QString &answer = {})
    {
        switch (kind) {
        case CountryChangeKind::Add:
            ++m_plan.added;
            break;
        case CountryChangeKind::Change:
            ++m_plan.changed;
            break;
        case CountryChangeKind::Remove:
            ++m_plan.removed;
        }
        m_plan.changes.append({kind, key, before, after, answer});
    }

    void sortChanges()
    {
        std::sort(m_plan.changes.begin(), m_plan.changes.end(),
                  [](const CountryChange &a, const CountryChange &b) {
                      return a.kind != b.kind ? a.kind < b.kind : a.prf() < b.prf();
                  });
    }

    /// Those that get a row; all keys of a country may be somebody else's.
    void nameNewCountries()
    {
        QSet<QString> written;
        for (const CountryChange &change : std::as_const(m_plan.changes))
            written.insert(change.after.pref);
        for (const Country &country : m_match.countries())
            if (country.isNew && written.contains(country.pref))
                m_plan.newCountries.append(country.name);
    }

    const CountryRows &m_table;
    const foreign::CountryFile &m_file;
    CountryMatch m_match;
    QHash<QString, Answer> m_answers;          ///< by key
    QHash<QString, const Country *> m_leftOut; ///< whole callsigns that become no rows
    CountryPlan m_plan;
};

void requireUnchanged(store::Connection &countries, const CountryPlan &plan)
{
    if (CountryRows(countries).state() != plan.tableState)
        throw store::Error(store::ErrorKind::Outdated, countries.path(), {});
}

store::Values countryValues(const CountryRow &row)
{
    return {row.pref, row.strana, row.kont, row.cq, row.iaru, row.gradN, row.gradE, row.dolg, row.shir};
}

void write(store::Connection &countries, const CountryChange &change)
{
    switch (change.kind) {
    case CountryChangeKind::Add:
        countries.exec(sql::addCountryRow(), store::Values{change.after.prf} + countryValues(change.after));
        break;
    case CountryChangeKind::Change:
        countries.exec(sql::changeCountryRow(), countryValues(change.after) + store::Values{change.key});
        break;
    case CountryChangeKind::Remove:
        countries.exec(sql::removeCountryRow(), {change.key});
    }
}

} // namespace

CountryPlan planCountryUpdate(store::Library &databases, const foreign::CountryFile &file)
{
    const CountryRows table(databases.connection(databasePath(databases)));
    return Planner(table, file).plan();
}

CountryPlan planCountryUpdate(store::Library &databases, const QString &path)
{
    foreign::CountryFile file;
    try {
        file = foreign::readCountriesFile(path);
    } catch (const foreign::Error &error) {
        throw store::Error(store::ErrorKind::Unreadable, path, error.text());
    }
    if (const store::Connection &countries = databases.connection(databasePath(databases));
        countries.readOnly())
        throw store::Error(store::ErrorKind::ReadOnly, countries.path(), {}); // nothing to look at and to ask
    return planCountryUpdate(databases, file);
}

QString applyCountryPlan(store::Library &databases, const CountryPlan &plan, const store::Progress &progress)
{
    if (plan.isEmpty())
        return {};
    const QString path = databasePath(databases);
    store::Connection &countries = databases.connection(path);
    if (countries.readOnly())
        throw store::Error(store::ErrorKind::ReadOnly, countries.path(), {});
    requireUnchanged(countries, plan);
    QString copy = databases.makeVerifiedCopy(path, progress);
    const store::Patience patience(countries);
    store::Transaction transaction(countries);
    requireUnchanged(countries, plan); // another program may have written meanwhile
    for (const CountryChange &change : plan.changes)
        write(countries, change);
    transaction.commit();
    return copy;
}

} // namespace reference
