#include "reference/countrymatch.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace reference {

namespace {

constexpr qsizetype kLongestPref = 5;
constexpr qsizetype kLongestName = 14;
constexpr int kNone = -1;

QString russia()
{
    return QStringLiteral("UA");
}
QString asiaticRussia()
{
    return QStringLiteral("UA9");
}

/// Upper case without slashes.
QString normalised(const QString &prefix)
{
    return prefix.toUpper().remove(QLatin1Char('/'));
}

QString normalPref(const foreign::CountryEntity &entity)
{
    return normalised(entity.prefix).left(kLongestPref);
}

/// The file's name in the form of ours: capital letters, digits and blanks, 14 characters.
QString normalName(const QString &name)
{
    QString kept;
    for (const QChar c : name.normalized(QString::NormalizationForm_D).toUpper())
        if ((c >= QLatin1Char('A') && c <= QLatin1Char('Z')) ||
            (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c.isSpace())
            kept.append(c);
    return kept.simplified().left(kLongestName).trimmed();
}

} // namespace

CountryMatch::CountryMatch(const CountryRows &table, const foreign::CountryFile &file)
    : m_table(table), m_file(file), m_ofEntity(file.entities.size(), kNone)
{
    matchByPrefix();
    matchByKeys();
    makeNewCountries();
    matchStarred();
    markListed();
}

const CountryMatch::Country *CountryMatch::of(qsizetype entity) const
{
    const int country = m_ofEntity[entity];
    return country == kNone ? nullptr : &m_countries[country];
}

const CountryMatch::Country *CountryMatch::byPref(const QString &pref) const
{
    const auto found = m_byPref.constFind(pref);
    return found == m_byPref.cend() ? nullptr : &m_countries[*found];
}

/// Principal prefix that the entity would have in our table.
QString CountryMatch::homeOf(const foreign::CountryEntity &entity) const
{
    const QString pref = normalPref(entity);
    const bool partOfRussia = pref == asiaticRussia() && m_table.country(pref) == nullptr;
    return partOfRussia ? russia() : pref;
}

void CountryMatch::matchByPrefix()
{
    for (qsizetype i = 0; i < m_file.entities.size(); ++i) {
        const foreign::CountryEntity &entity = m_file.entities[i];
        if (entity.starred)
            continue;
        const QString pref = homeOf(entity);
        const bool known = m_table.country(pref) != nullptr || pref == russia();
        if (known && (!m_claimed.contains(pref) || pref == russia()))
            claim(i, pref);
    }
}

void CountryMatch::matchByKeys()
{
    std::vector<std::pair<Majority, qsizetype>> wishes;
    for (qsizetype i = 0; i < m_file.entities.size(); ++i)
        if (!m_file.entities[i].starred && m_ofEntity[i] == kNone)
            if (const Majority found = unclaimedMajority(m_file.entities[i]); !found.pref.isEmpty())
                wishes.emplace_back(found, i);
    std::stable_sort(wishes.begin(), wishes.end(),
                     [](const auto &a, const auto &b) { return a.first.keys > b.first.keys; });
    for (const auto &[wish, entity] : wishes)
        if (!m_claimed.contains(wish.pref))
            claim(entity, wish.pref);
}

CountryMatch::Majority CountryMatch::majority(const foreign::CountryEntity &entity) const
{
    QHash<QString, int> votes;
    int all = 0;
    for (const foreign::CountryKey &key : entity.keys) {
        const StoredCountryRow *stored = m_table.row(key.text);
        const QString pref =
            stored != nullptr && !m_table.isOwn(key.text) ? folded(stored->row.pref) : QString();
        if (pref.isEmpty())
            continue;
        ++votes[pref];
        ++all;
    }
    for (auto vote = votes.cbegin(); vote != votes.cend(); ++vote)
        if (2 * vote.value() > all)
            return {vote.key(), vote.value()};
    return {};
}

/// Principal prefix, folded, that the table answers a whole callsign with; empty where it has none, or where
/// that is the operator's doing.
QString CountryMatch::countryOfCall(const QString &call) const
{
    for (qsizetype size = call.size(); size > 0; --size) {
        const QString key = call.left(size);
        if (const StoredCountryRow *stored = m_table.row(key))
            return m_table.isOwn(key) ? QString() : folded(stored->row.pref);
    }
    return {};
}

/// Of the countries that no entity has by its prefix. What is known by whole callsigns alone need not have
/// any of them as a key of ours: Bouvet's 3Y0J is answered by 3Y0.
CountryMatch::Majority CountryMatch::unclaimedMajority(const foreign::CountryEntity &entity) const
{
    QHash<QString, int> votes;
    int all = 0;
    for (const foreign::CountryKey &key : entity.keys) {
        const StoredCountryRow *stored = m_table.row(key.text);
        QString pref;
        if (key.exact)
            pref = countryOfCall(key.text);
        else if (stored != nullptr && !m_table.isOwn(key.text))
            pref = folded(stored->row.pref);
        if (pref.isEmpty() || m_claimed.contains(pref))
            continue;
        ++votes[pref];
        ++all;
    }
    for (auto vote = votes.cbegin(); vote != votes.cend(); ++vote)
        if (2 * vote.value() > all)
            return {vote.key(), vote.value()};
    return {};
}

void CountryMatch::makeNewCountries()
{
    for (qsizetype i = 0; i < m_file.entities.size(); ++i) {
        const foreign::CountryEntity &entity = m_file.entities[i];
        if (entity.starred || m_ofEntity[i] != kNone)
            continue;
        const QString wanted = normalPref(entity);
        const QString pref = freePref(wanted);
        if (pref != wanted)
            m_remarks.append(QStringLiteral("Префикс %1 занят другой страной, у «%2» будет %3.")
                                 .arg(wanted, entity.name, pref));
        claim(i, pref);
    }
}

void CountryMatch::matchStarred()
{
    for (qsizetype i = 0; i < m_file.entities.size(); ++i) {
        const foreign::CountryEntity &entity = m_file.entities[i];
        if (!entity.starred)
            continue;
        m_ofEntity[i] = starredHome(entity);
        if (m_ofEntity[i] == kNone)
            m_remarks.append(QStringLiteral("«%1» (*%2) пропущена: неизвестно, к какой стране она относится.")
                                 .arg(entity.name, entity.prefix));
    }
}

int CountryMatch::starredHome(const foreign::CountryEntity &entity)
{
    const QString prefix = normalised(entity.prefix);
    const StoredCountryRow *stored = m_table.isOwn(prefix) ? nullptr : m_table.row(prefix);
    QString pref = stored != nullptr ? folded(stored->row.pref) : QString();
    if (pref.isEmpty())
        pref = majority(entity).pref;
    if (!pref.isEmpty())
        return countryFor(pref, entity);

    int home = kNone;
    qsizetype longest = 0;
    const auto offer = [&](qsizetype country, const QString &start) {
        if (start.size() > longest && prefix.startsWith(start)) {
            longest = start.size();
            home = m_ofEntity[country];
        }
    };
    for (qsizetype i = 0; i < m_file.entities.size(); ++i) {
        if (m_file.entities[i].starred)
            continue;
        offer(i, normalised(m_file.entities[i].prefix));
        for (const foreign::CountryKey &key : m_file.entities[i].keys)
            if (!key.exact)
                offer(i, key.text);
    }
    return home;
}

/// What the file lists in full can show that a row of ours is out of date. Half of Russia cannot: the other
/// half's rows would seem to be unknown.
void CountryMatch::markListed()
{
    bool european = false;
    bool asiatic = m_table.country(asiaticRussia()) != nullptr;
    for (qsizetype i = 0; i < m_file.entities.size(); ++i) {
        const foreign::CountryEntity &entity = m_file.entities[i];
        if (m_ofEntity[i] == kNone)
            continue;
        Country &country = m_countries[m_ofEntity[i]];
        country.listed = country.listed || !entity.starred;
        country.hasPrefix = country.hasPrefix || std::any_of(entity.keys.cbegin(), entity.keys.cend(),
                                                             [](const auto &key) { return !key.exact; });
        european = european || (!entity.starred && normalPref(entity) == russia());
        asiatic = asiatic || (!entity.starred && normalPref(entity) == asiaticRussia());
    }
    if (const auto whole = m_byPref.constFind(russia()); whole != m_byPref.cend())
        m_countries[*whole].listed = m_countries[*whole].listed && european && asiatic;
}

/// The country under a folded principal prefix; made where it is the first of it.
int CountryMatch::countryFor(const QString &pref, const foreign::CountryEntity &entity)
{
    if (const auto known = m_byPref.constFind(pref); known != m_byPref.cend())
        return *known;
    const CountryRows::Country *ours = m_table.country(pref);
    Country country;
    country.pref = ours != nullptr ? ours->pref : pref;
    country.name = ours != nullptr ? ours->name : QString();
    country.isNew = ours == nullptr;
    if (country.name.isEmpty())
        country.name = newName(pref, entity);
    m_countries.append(country);
    const int number = static_cast<int>(m_countries.size()) - 1;
    m_byPref.insert(pref, number);
    return number;
}

void CountryMatch::claim(qsizetype number, const QString &pref)
{
    m_ofEntity[number] = countryFor(pref, m_file.entities[number]);
    m_claimed.insert(pref);
}

bool CountryMatch::isTaken(const QString &pref) const
{
    return m_table.country(pref) != nullptr || m_byPref.contains(pref);
}

QString CountryMatch::freePref(const QString &wanted) const
{
    QString pref = wanted;
    for (int number = 2; isTaken(pref); ++number) {
        const QString digits = QString::number(number);
        pref = wanted.left(kLongestPref - digits.size()) + digits;
    }
    return pref;
}

/// Two countries of one name would be one in the log and in the awards.
QString CountryMatch::newName(const QString &pref, const foreign::CountryEntity &entity)
{
    QString wanted = pref == russia() ? QStringLiteral("RUSSIAN") : normalName(entity.name);
    if (wanted.isEmpty())
        wanted = pref;
    QString name = wanted;
    const auto with = [&](const QString &mark) {
        return wanted.left(kLongestName - 1 - mark.size()).trimmed() + QLatin1Char(' ') + mark;
    };
    if (isUsedName(name)) {
        name = with(pref);
        for (int number = 2; isUsedName(name); ++number)
            name = with(QString::number(number));
        m_remarks.append(
            QStringLiteral("Название «%1» занято другой страной, у %2 будет «%3».").arg(wanted, pref, name));
    }
    m_newNames.insert(name);
    return name;
}

bool CountryMatch::isUsedName(const QString &name) const
{
    return m_table.isName(name) || m_newNames.contains(name);
}

} // namespace reference
