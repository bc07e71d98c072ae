#include "bench/genlog.h"

#include "base/date.h"
#include "logentry/bands.h"
#include "logentry/modes.h"
#include "store/dialect.h"
#include "store/error.h"
#include "store/folder.h"
#include "store/library.h"
#include "store/schema.h"
#include "store/sqlite.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QList>
#include <QSet>
#include <QStringList>

#include <algorithm>
#include <random>
#include <utility>

namespace bench {

namespace {

constexpr std::uint64_t kSeed = 20240229;
constexpr int kCallsPerMillion = 300'000;
constexpr qint64 kMillion = 1'000'000;
constexpr qint64 kCallbookEntries = 20'000;
constexpr int kOneRussianIn = 3;
constexpr int kCardsReceivedPercent = 30;
constexpr int kCardsSentPercent = 35;
constexpr int kManagerPercent = 5;
constexpr int kLongestCall = 13;
constexpr int kLongestName = 13;
const QString kRussia = QStringLiteral("RUSSIAN");
const QString kOwnCall = QStringLiteral("UA3ABC");
const QString kOwnKey = QStringLiteral("ABC");

/// The engine's numbers are the same everywhere; the standard distributions are not, so none is used.
class Dice {
public:
    /// 0 to below `limit`.
    qsizetype below(qsizetype limit)
    {
        return static_cast<qsizetype>(m_engine() % static_cast<std::uint64_t>(limit));
    }
    bool percent(int chance) { return below(100) < chance; }
    QChar letter() { return QChar(static_cast<char16_t>(u'A' + below(26))); }
    QChar digit() { return QChar(static_cast<char16_t>(u'0' + below(10))); }
    template <typename List>
    const auto &from(const List &list)
    {
        return list[below(list.size())];
    }
    template <typename List>
    void shuffle(List &list)
    {
        for (qsizetype i = list.size() - 1; i > 0; --i)
            std::swap(list[i], list[below(i + 1)]);
    }

private:
    std::mt19937_64 m_engine{kSeed};
};

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

/// Reference tables of the installation, as the program itself sees them.
struct Reference {
    QHash<QString, QString> countryOfPrefix;
    QHash<QString, QStringList> prefixesOfCountry;
    QStringList countries;                      ///< sorted; Russia too
    QList<std::pair<QString, QString>> regions; ///< key of two characters, region code
    QHash<QString, QStringList> townsOfRegion;
    QStringList russianNames;
    QStringList otherNames;

    [[nodiscard]] QString countryOf(const QString &call) const
    {
        for (qsizetype length = call.size(); length > 0; --length) {
            const auto found = countryOfPrefix.constFind(call.left(length));
            if (found != countryOfPrefix.constEnd())
                return *found;
        }
        return {};
    }
};

Reference readReference(store::Library &library)
{
    Reference reference;
    {
        store::Cursor row =
            library.connection(library.path(u"\\dbdxcc1.mdb"))
                .run(QStringLiteral("SELECT prf,strana FROM tbldxcc WHERE length(strana)>0 ORDER BY rowid"));
        while (row.next()) {
            reference.countryOfPrefix.insert(row.text(0), row.text(1));
            reference.prefixesOfCountry[row.text(1)].append(row.text(0));
        }
    }
    reference.countries = reference.prefixesOfCountry.keys();
    reference.countries.sort();
    QHash<QString, QString> centres;
    {
        store::Cursor row = library.connection(library.path(u"\\dbrusdx.mdb"))
                                .run(QStringLiteral("SELECT pref,prf,gorod FROM tblrus ORDER BY rowid"));
        while (row.next()) {
            reference.regions.append({row.text(0), row.text(1)});
            centres.insert(row.text(1), row.text(2));
        }
    }
    store::Connection &names = library.connection(library.path(u"\\dbname.mdb"));
    {
        store::Cursor row = names.run(QStringLiteral("SELECT prf,gorod FROM tblgorod ORDER BY rowid"));
        while (row.next())
            reference.townsOfRegion[row.text(0)].append(row.text(1));
    }
    for (auto it = centres.cbegin(); it != centres.cend(); ++it)
        if (!reference.townsOfRegion.contains(it.key()))
            reference.townsOfRegion[it.key()].append(it.value());
    {
        store::Cursor row = names.run(QStringLiteral("SELECT nname FROM tblNAME ORDER BY rowid"));
        while (row.next()) {
            const bool russian = row.text(0).front().unicode() >= 0x400;
            (russian ? reference.russianNames : reference.otherNames).append(row.text(0));
        }
    }
    if (reference.countries.isEmpty() || reference.regions.isEmpty() || reference.russianNames.isEmpty() ||
        reference.otherNames.isEmpty())
        throw store::Error(store::ErrorKind::Missing, library.folder(),
                           QStringLiteral("the installation has no reference data"));
    return reference;
}

/// A station that the log knows.
struct Station {
    QString call;
    QString country;
    QString town;
    QString name;
    QString manager; ///< QSL route, mostly empty
};

class Stations {
public:
    Stations(const Reference &reference, Dice &dice) : m_reference(reference), m_dice(dice)
    {
        // Where the traffic is: of a hundred foreign stations some ninety are of these countries.
        constexpr std::pair<const char *, int> kBusy[] = {
            {"USA", 14},     {"JAPAN", 10},      {"GERMANY", 9}, {"ITALY", 8},       {"UKRAINE", 8},
            {"POLAND", 5},   {"SPAIN", 5},       {"ENGLAND", 4}, {"FRANCE", 4},      {"CZECH REP", 3},
            {"HUNGARY", 2},  {"SWEDEN", 2},      {"FINLAND", 2}, {"NETHERLANDS", 2}, {"ROMANIA", 2},
            {"BULGARIA", 2}, {"KAZAKHSTAN", 2},  {"BELARUS", 2}, {"CANADA", 2},      {"BRAZIL", 1},
            {"CHINA", 1},    {"SLOVENIA", 1},    {"SERBIA", 1},  {"CROATIA", 1},     {"BELGIUM", 1},
            {"DENMARK", 1},  {"NORWAY", 1},      {"AUSTRIA", 1}, {"LITHUANIA", 1},   {"AUSTRALIA", 1},
            {"GREECE", 1},   {"SWITZERLAND", 1}, {"TURKEY", 1},  {"ARGENTINA", 1}};
        constexpr int kOthers = 9; // of the rest together
        for (const QString &country : m_reference.countries)
            if (country != kRussia)
                m_others.append(country);
        for (const auto &[country, weight] : kBusy)
            for (int i = 0; i < weight; ++i)
                m_busy.append(QLatin1String(country));
        for (int i = 0; i < kOthers; ++i)
            m_busy.append(QString());
    }

    /// That many different stations in the order in which the log meets them.
    QList<Station> make(qint64 count)
    {
        QList<Station> stations;
        stations.reserve(count);
        for (const QString &country : std::as_const(m_others))
            if (stations.size() < count - count / kOneRussianIn)
                add(stations, country);
        while (stations.size() < count) {
            const bool russian = stations.size() % kOneRussianIn == 0;
            const QString busy = m_dice.from(m_busy);
            add(stations, russian ? kRussia : busy.isEmpty() ? m_dice.from(m_others) : busy);
        }
        m_dice.shuffle(stations);
        return stations;
    }

private:
    /// A new station of a country; nothing where the country's few callsigns are all given out.
    void add(QList<Station> &stations, const QString &country)
    {
        constexpr int kTries = 40;
        for (int i = 0; i < kTries; ++i) {
            Station station = country == kRussia ? russian() : foreign(country);
            if (station.call.size() > kLongestCall || m_reference.countryOf(station.call) != country ||
                m_calls.contains(station.call))
                continue;
            m_calls.insert(station.call);
            station.country = country;
            station.town.truncate(kLongestName);
            station.name.truncate(kLongestName);
            stations.append(station);
            return;
        }
    }

    /// UA3ABC, RA9XY, R3XYZ: the digit and the letter behind it are a key of the region table.
    Station russian()
    {
        static const QStringList beginnings = {
            QStringLiteral("R"),  QStringLiteral("R"),  QStringLiteral("RA"), QStringLiteral("RK"),
            QStringLiteral("RN"), QStringLiteral("RU"), QStringLiteral("RV"), QStringLiteral("RW"),
            QStringLiteral("RX"), QStringLiteral("RZ"), QStringLiteral("UA"), QStringLiteral("UA"),
            QStringLiteral("UA"), QStringLiteral("UB"), QStringLiteral("UC"), QStringLiteral("UD")};
        const auto &[key, code] = m_dice.from(m_reference.regions);
        Station station;
        station.call = m_dice.from(beginnings);
        station.call += key;
        station.call += m_dice.letter();
        if (!m_dice.percent(15))
            station.call += m_dice.letter();
        station.town = m_dice.from(m_reference.townsOfRegion[code]);
        station.name = m_dice.from(m_reference.russianNames);
        return station;
    }

    Station foreign(const QString &country)
    {
        Station station;
        station.call = completed(m_dice.from(m_reference.prefixesOfCountry[country]));
        station.town = madeUpTown();
        station.name = m_dice.from(m_reference.otherNames);
        if (m_dice.percent(kManagerPercent))
            station.manager = completed(m_dice.percent(50) ? QStringLiteral("DL") : QStringLiteral("W"));
        return station;
    }

    /// A prefix with the digit and the letters that make a callsign of it.
    QString completed(const QString &prefix)
    {
        if (prefix.contains(u'/'))
            return prefix; // the key of one station
        static const QString oneLetterSeries = QStringLiteral("BFGIKMNRUW");
        qsizetype national = 2;
        if (prefix.size() < 2 || (isDigit(prefix[1]) && oneLetterSeries.contains(prefix[0])))
            national = 1;
        QString call = prefix;
        const QString rest = prefix.mid(national);
        if (std::none_of(rest.cbegin(), rest.cend(), isDigit))
            call += m_dice.digit();
        qsizetype letters = 0;
        while (letters < call.size() && !isDigit(call[call.size() - 1 - letters]))
            ++letters;
        const qsizetype wanted = m_dice.percent(25) ? 2 : 3;
        for (qsizetype i = letters; i < std::max(wanted, letters + (letters < 2 ? 1 : 0)); ++i)
            call += m_dice.letter();
        return call;
    }

    QString madeUpTown()
    {
        static const QStringList syllables =
            QStringLiteral("ba den mar to li sun ver ko ra no stad bur lo mi "
                           "san ter ga ne pol vi")
                .split(u' ');
        QString town;
        for (qsizetype i = 2 + m_dice.below(2); i > 0; --i)
            town += m_dice.from(syllables);
        town[0] = town[0].toUpper();
        return town;
    }

    const Reference &m_reference;
    Dice &m_dice;
    QStringList m_others;
    QStringList m_busy; ///< a country as often as its weight; empty: any
    QSet<QString> m_calls;
};

/// The moment of a contact: equal steps over the years.
struct Moment {
    QString date;
    QString time;
};

Moment momentOf(qint64 row, qint64 rows)
{
    const QDate first(1999, 1, 1);
    const QDate behind(2024, 1, 1);
    constexpr qint64 kMinutesADay = 1440;
    const qint64 minutes = first.daysTo(behind) * kMinutesADay;
    const qint64 minute = row * minutes / rows;
    const int ofDay = static_cast<int>(minute % kMinutesADay);
    return {base::logDate(first.addDays(minute / kMinutesADay)),
            QStringLiteral("%1:%2").arg(ofDay / 60, 2, 10, QChar(u'0')).arg(ofDay % 60, 2, 10, QChar(u'0'))};
}

QString logDateAfter(qint64 row, qint64 rows, qint64 later)
{
    return momentOf(std::min(rows - 1, row + later), rows).date;
}

QStringList bandTexts(Dice &dice)
{
    // Short waves carry nearly everything, but each of the twelve bands is there.
    constexpr int kWeights[logentry::kBandCount] = {4, 12, 20, 30, 16, 8, 3, 5, 3, 2, 1, 1};
    QStringList bands;
    for (int band = 0; band < logentry::kBandCount; ++band)
        for (int i = 0; i < kWeights[band]; ++i)
            bands.append(logentry::bandText(band));
    dice.shuffle(bands);
    return bands;
}

/// Indexes and triggers of the program on a table: they come back when its layout's statements run.
void dropObjects(store::Connection &connection, const QString &table)
{
    QStringList drops;
    {
        store::Cursor row = connection.run(
            QStringLiteral(
                "SELECT type,name FROM sqlite_master WHERE tbl_name=? COLLATE NOCASE AND name GLOB "
                "'zh_*' AND type IN('index','trigger')"),
            {table});
        while (row.next())
            drops.append(QStringLiteral("DROP %1 %2").arg(row.text(0), store::bracketedName(row.text(1))));
    }
    for (const QString &drop : std::as_const(drops))
        connection.exec(drop);
}

void fillLog(store::Connection &connection, const QList<Station> &stations, qint64 contacts, Dice &dice)
{
    const store::TableLayout &table = store::fileLayouts().front().tables.front();
    const QStringList bands = bandTexts(dice);
    const QStringList &modes = logentry::modeCaptions();
    store::Transaction transaction(connection);
    dropObjects(connection, table.name);
    const QString insert =
        QStringLiteral(
            "INSERT INTO %1(ccall,ddate,ttime,bband,rsts,rstr,ps1,QTH,NNAME,QSLVIA,QSLP,QSLO,CONTR,"
            "PRF) VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?,?)")
            .arg(store::bracketedName(table.name));
    const qint64 calls = stations.size();
    qint64 met = 0; // stations that the log has so far
    for (qint64 row = 0; row < contacts; ++row) {
        qint64 index = met;
        if (met < calls && (met == 0 || (row + 1) * calls / contacts > met)) {
            ++met;
        } else {
            // Of two the one met first: old friends are worked more often.
            index = std::min(dice.below(met), dice.below(met));
        }
        const Station &station = stations[index];
        const Moment moment = momentOf(row, contacts);
        const QString &mode = modes[dice.percent(50) ? dice.below(2) : dice.below(modes.size())];
        const QString report = logentry::modeReport(mode);
        const auto reported = [&] {
            QString heard = report;
            if (dice.percent(20))
                heard[1] = QChar(static_cast<char16_t>(u'5' + dice.below(5)));
            return heard;
        };
        const QString sent = reported();
        const QString received = reported();
        const bool hasCard = dice.percent(kCardsReceivedPercent);
        const bool sentCard = dice.percent(kCardsSentPercent);
        connection.exec(insert, {station.call, moment.date, moment.time, dice.from(bands), sent, received,
                                 mode, station.town, station.name, station.manager,
                                 hasCard ? logDateAfter(row, contacts, contacts / 50) : QString(),
                                 sentCard ? logDateAfter(row, contacts, contacts / 300) : QString(),
                                 station.country, kOwnKey});
    }
    for (const QString &object : table.objects)
        connection.exec(object);
    transaction.commit();
}

qint64 fillCallbook(store::Connection &connection, const QList<Station> &stations, Dice &dice)
{
    const store::TableLayout &table = *store::tableLayout(u"tblcalbuk");
    const qint64 entries = std::min<qint64>(kCallbookEntries, stations.size());
    store::Transaction transaction(connection);
    const QString insert = QStringLiteral("INSERT INTO %1(ccall,fam,nname,indeks,qth,adres,qslvia) "
                                          "VALUES(?,?,?,?,?,?,?)")
                               .arg(store::bracketedName(table.name));
    for (qint64 i = 0; i < entries; ++i) {
        const Station &station = stations[i * stations.size() / entries];
        const bool russian = station.country == kRussia;
        connection.exec(insert, {station.call, russian ? QStringLiteral("Иванов") : QStringLiteral("Smith"),
                                 station.name, QString::number(100'000 + dice.below(600'000)), station.town,
                                 russian ? QStringLiteral("ул. Мира, %1").arg(1 + dice.below(200))
                                         : QStringLiteral("Main Str %1").arg(1 + dice.below(200)),
                                 station.manager});
    }
    transaction.commit();
    return entries;
}

/// The own station, so that the window shows distance and bearing and marks new contacts.
void fillOwnStation(store::Connection &connection)
{
    connection.exec(
        QStringLiteral("UPDATE tbltit SET ccall=?,GradN='55',MinN='45',GradE='37',MinE='37',Shir='55,75',"
                       "Dolg='37,62'"),
        {kOwnCall});
}

/// The file that tells how many contacts were made.
QString markOf(const QString &folder)
{
    return QDir(folder).filePath(QStringLiteral("made-up-contacts.txt"));
}

void mark(const QString &folder, qint64 contacts)
{
    QFile file(markOf(folder));
    if (!file.open(QIODevice::WriteOnly) || file.write(QByteArray::number(contacts)) < 0)
        throw store::Error(store::ErrorKind::InputOutput, file.fileName(), file.errorString());
}

} // namespace

std::optional<qint64> generatedContacts(const QString &folder)
{
    QFile file(markOf(folder));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    bool isNumber = false;
    const qint64 contacts = file.readAll().toLongLong(&isNumber);
    return isNumber ? std::optional(contacts) : std::nullopt;
}

qint64 generatedCalls(qint64 contacts) noexcept
{
    return std::max<qint64>(1, contacts * kCallsPerMillion / kMillion);
}

GeneratedLog generateLog(const QString &folder, qint64 contacts)
{
    if (!QDir().mkpath(folder))
        throw store::Error(store::ErrorKind::CannotOpen, folder, QStringLiteral("the folder cannot be made"));
    store::Library library({QDir(folder).absolutePath(), false}, QDir(folder).absolutePath());
    (void)library.createMissingFiles();
    store::Connection &log = library.connection(library.path(u"\\dbiaru.mdb"));
    if (log.single(QStringLiteral("SELECT 1 FROM TBLLOG1 LIMIT 1")))
        throw store::Error(store::ErrorKind::Other, log.path(), QStringLiteral("the log holds contacts"));

    Dice dice;
    const Reference reference = readReference(library);
    const QList<Station> stations = Stations(reference, dice).make(generatedCalls(contacts));
    GeneratedLog made;
    made.contacts = contacts;
    made.calls = stations.size();
    QSet<QString> countries;
    for (const Station &station : stations)
        countries.insert(station.country);
    made.countries = static_cast<int>(countries.size());
    made.callbookEntries = fillCallbook(library.connection(library.path(u"\\dbcalbuk.mdb")), stations, dice);
    fillOwnStation(library.connection(library.path(u"\\dbcontest.mdb")));
    fillLog(log, stations, contacts, dice);
    mark(folder, contacts);
    return made;
}

} // namespace bench
