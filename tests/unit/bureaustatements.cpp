// Every statement of the bureau on random logs, against the same questions answered by walking the contacts.
#include "qsl/sql.h"
#include "store/datasource.h"
#include "store/schema.h"
#include "store/sqlite.h"
#include "support/installation.h"

#include <sqlite3.h>

#include <QFile>
#include <QSet>
#include <QTest>

#include <algorithm>
#include <map>
#include <optional>
#include <random>

using testsupport::Installation;

using namespace Qt::StringLiterals;

namespace {

constexpr auto kLog = "dbiaru.mdb";
constexpr int kContacts = 500;
constexpr int kEdits = 120;
using Field = std::optional<QString>; ///< nothing is a null

struct Contact {
    Field call;
    Field band;
    Field country;
    Field sent;
    Field received;
    Field key;
    Field date;
    Field time;
};

const QList<Field> kBands = {u"1,8"_s, u"3,5"_s, u"7"_s,        u"10"_s,  u"14"_s,  u"18"_s,
                             u"21"_s,  u"24"_s,  u"28"_s,       u"144"_s, u"14 "_s, u"20m"_s,
                             u"20M"_s, u""_s,    u"диапазон"_s, {}};
const QList<Field> kCountries = {u"RUSSIAN"_s,  u"RUSSIAN"_s, u"RUSSIAN"_s, u"Russian"_s,
                                 u"RUSSIAN "_s, u"USA"_s,     u"usa"_s,     u"GERMANY"_s,
                                 u"GERMANY "_s, u"\""_s,      u"\" "_s,     u""_s,
                                 u" "_s,        u"Россия"_s,  u"%1"_s,      {}};
const QList<Field> kMarks = {{}, u""_s, u""_s, u" "_s, u"05.03.26"_s, u"+"_s, u"да"_s};
const QList<Field> kKeys = {u"ABC"_s, u"ABC"_s, u"abc"_s, u"ABC "_s, u"XYZ"_s, u"Я"_s, u""_s, {}};
const QList<Field> kDates = {u"05.03.26"_s, u"5.3.2026"_s, u"06.03.26"_s, u"31.02.26"_s, u""_s, {}};
const QStringList kRegions = {u"3A"_s, u"3a"_s, u"9X"_s, u"1Б"_s, u"3"_s, u""_s, u"A "_s};

class RandomLog {
public:
    explicit RandomLog(unsigned seed) : m_engine(seed) {}

    [[nodiscard]] int below(qsizetype limit)
    {
        return static_cast<int>(m_engine() % static_cast<unsigned>(limit));
    }
    template <typename List>
    const auto &from(const List &list)
    {
        return list[below(list.size())];
    }
    Field call()
    {
        static const QStringList odd = {u""_s,     u"U"_s,    u"UA"_s,      u"UA3"_s,
                                        u"UA3A"_s, u"РА1Б"_s, u"UA3ABC "_s, u" "_s};
        switch (below(12)) {
        case 0:
            return {};
        case 1:
        case 2:
            return from(odd);
        default:
            break;
        }
        static const QStringList beginnings = {u"UA"_s, u"ua"_s, u"RA"_s, u"DL"_s, u"R"_s};
        static const QStringList regions = {u"3A"_s, u"3a"_s, u"9X"_s, u"1B"_s, u"1Б"_s};
        QString text = from(beginnings) + from(regions);
        for (int i = below(3); i >= 0; --i)
            text += QChar(static_cast<char16_t>(u'A' + below(6)));
        return text;
    }
    Contact contact()
    {
        return {call(),       from(kBands), from(kCountries), from(kMarks),
                from(kMarks), from(kKeys),  from(kDates),     u"12:0%1"_s.arg(below(3))};
    }

private:
    std::mt19937 m_engine;
};

/// Writes the log as another program would, with a connection of its own, and remembers what stands there.
class Writer {
public:
    explicit Writer(const QString &path) : m_connection(path, store::OpenMode::ReadWrite) {}

    void add(const Contact &contact)
    {
        m_connection.exec(u"INSERT INTO TBLLOG1(ccall) VALUES('')"_s);
        const qint64 key = m_connection.lastRowId();
        set(key, contact);
    }
    /// One row at once: every column in the INSERT itself.
    void addAtOnce(const Contact &contact)
    {
        store::Values values;
        QStringList marks;
        for (const Field &field : fields(contact)) {
            marks.append(field ? u"?"_s : u"NULL"_s);
            if (field)
                values.append(*field);
        }
        m_connection.exec(
            u"INSERT INTO TBLLOG1(ccall,bband,CONTR,QSLO,QSLP,PRF,ddate,ttime) VALUES(%1)"_s.arg(
                marks.join(u',')),
            values);
        contacts[m_connection.lastRowId()] = contact;
    }
    void set(qint64 key, const Contact &contact)
    {
        static const QStringList names = {u"ccall"_s, u"bband"_s, u"CONTR"_s, u"QSLO"_s,
                                          u"QSLP"_s,  u"PRF"_s,   u"ddate"_s, u"ttime"_s};
        store::Values values;
        QStringList parts;
        const QList<Field> wanted = fields(contact);
        for (qsizetype i = 0; i < names.size(); ++i) {
            parts.append(names[i] + (wanted[i] ? u"=?"_s : u"=NULL"_s));
            if (wanted[i])
                values.append(*wanted[i]);
        }
        values.append(key);
        m_connection.exec(u"UPDATE TBLLOG1 SET %1 WHERE rowid=?"_s.arg(parts.join(u',')), values);
        contacts[key] = contact;
    }
    void remove(qint64 key)
    {
        m_connection.exec(u"DELETE FROM TBLLOG1 WHERE rowid=?"_s, {key});
        contacts.erase(key);
    }
    void transaction(const char *word) { m_connection.exec(QLatin1String(word)); }

    std::map<qint64, Contact> contacts;

private:
    static QList<Field> fields(const Contact &of)
    {
        return {of.call, of.band, of.country, of.sent, of.received, of.key, of.date, of.time};
    }
    store::Connection m_connection;
};

// ---- what the statements mean, told once more

QString read(const Field &field)
{
    return field.value_or(QString());
}

/// Equal without regard to letter case; blanks at the end of what is asked for may be missing in the row.
bool equal(const Field &stored, const QString &asked)
{
    QString bare = asked;
    while (bare.endsWith(u' '))
        bare.chop(1);
    return read(stored).compare(asked, Qt::CaseInsensitive) == 0 ||
           read(stored).compare(bare, Qt::CaseInsensitive) == 0;
}

/// Different values of columns of Latin letters: these without regard to case, null and empty as one.
QString latinValue(const Field &field)
{
    QString text = read(field);
    for (QChar &c : text)
        if (c >= u'a' && c <= u'z')
            c = QChar(static_cast<char16_t>(c.unicode() - u'a' + u'A'));
    return text;
}

bool hasCountry(const Contact &contact)
{
    return !equal(contact.country, u"\""_s);
}
bool isSent(const Contact &contact)
{
    return !read(contact.sent).isEmpty();
}
bool isReceived(const Contact &contact)
{
    return !read(contact.received).isEmpty();
}
bool inRegion(const Contact &contact, const QString &region)
{
    return equal(contact.country, u"RUSSIAN"_s) && equal(read(contact.call).mid(2, 2), region);
}

/// A row of the grid, as far as the test looks.
QString shownContact(const Contact &contact)
{
    return read(contact.call) + u'|' + read(contact.band) + u'|' + read(contact.sent) + u'|' +
           read(contact.time);
}

class Checker {
public:
    Checker(store::Library &library, const QString &path, const std::map<qint64, Contact> &contacts)
        : m_source(u"Data4"_s, library), m_contacts(contacts)
    {
        m_source.setDatabaseName(path);
    }

    template <typename Condition>
    void countsRows(const store::SqlText &text, const Condition &condition)
    {
        compareCount(text, std::count_if(m_contacts.begin(), m_contacts.end(),
                                         [&](const auto &one) { return condition(one.second); }));
    }

    template <typename Condition>
    void countsCountries(const store::SqlText &text, const Condition &condition)
    {
        QSet<QString> values;
        for (const auto &[key, contact] : m_contacts)
            if (condition(contact))
                values.insert(latinValue(contact.country));
        compareCount(text, values.size());
        compareValues(text, values);
    }

    template <typename Condition>
    void callsigns(const store::SqlText &text, const Condition &condition)
    {
        QSet<QString> values;
        for (const auto &[key, contact] : m_contacts)
            if (condition(contact))
                values.insert(latinValue(contact.call));
        compareCount(text, values.size());
        compareValues(text, values);
    }

    /// Rows of the grid in the order of a column.
    template <typename Condition>
    void rows(const store::SqlText &text, const QString &order, const Condition &condition)
    {
        QStringList wanted;
        for (const auto &[key, contact] : m_contacts)
            if (condition(contact))
                wanted.append(shownContact(contact));
        compareCount(text, wanted.size());
        run(text);
        while (m_source.canFetchMore())
            m_source.fetchMore();
        QStringList found;
        QString before;
        for (int row = 0; row < m_source.knownRows(); ++row) {
            const auto field = [&](const char *name) { return m_source.text(row, QLatin1String(name)); };
            found.append(field("ccall") + u'|' + field("bband") + u'|' + field("qslo") + u'|' +
                         field("ttime"));
            const QString now = order.isEmpty() ? QString() : latinValue(m_source.text(row, order));
            if (now < before)
                fail(text, u"order"_s);
            before = now;
        }
        wanted.sort();
        found.sort();
        if (found != wanted)
            fail(text, u"rows"_s);
    }

    [[nodiscard]] int compared() const noexcept { return m_compared; }
    [[nodiscard]] const QStringList &failures() const noexcept { return m_failures; }

private:
    void fail(const store::SqlText &text, const QString &what)
    {
        m_failures.append(what + u": "_s + text.toString());
    }

    void run(const store::SqlText &text)
    {
        // Now as a list shows it, now as a source that only counts.
        m_source.setFirstPage(++m_compared % 3 == 0 ? 1 : m_compared % 3 == 1 ? 7 : 64);
        m_source.setRecordSource(text);
        m_source.refresh();
    }

    void compareCount(const store::SqlText &text, qint64 wanted)
    {
        run(text);
        qint64 found = 0;
        if (!m_source.isEmpty()) {
            m_source.moveLast();
            found = m_source.recordCount();
        }
        if (found != wanted)
            fail(text, u"%1 instead of %2"_s.arg(found).arg(wanted));
        if (m_source.eof() != (wanted == 0))
            fail(text, u"end"_s);
    }

    void compareValues(const store::SqlText &text, const QSet<QString> &wanted)
    {
        run(text);
        while (m_source.canFetchMore())
            m_source.fetchMore();
        QStringList found;
        for (int row = 0; row < m_source.knownRows(); ++row)
            found.append(latinValue(m_source.text(row, m_source.fieldNames().front())));
        QStringList sorted(wanted.begin(), wanted.end());
        sorted.sort();
        if (found != sorted)
            fail(text, u"values"_s);
        // The last one, once counted, is where moving there leads.
        run(text);
        m_source.moveLast();
        if (!sorted.isEmpty() && latinValue(m_source.field(m_source.fieldNames().front())) != sorted.back())
            fail(text, u"last value"_s);
    }

    store::DataSource m_source;
    const std::map<qint64, Contact> &m_contacts;
    int m_compared = 0;
    QStringList m_failures;
};

void checkTotals(Checker &check)
{
    using namespace qsl;
    for (const Field &band : {Field(u"1,8"_s), Field(u"14"_s), Field(u"14 "_s), Field(u"20M"_s), Field(u""_s),
                              Field(u"Диапазон"_s), Field(u"99"_s)}) {
        const auto onBand = [&](const Contact &c) { return hasCountry(c) && equal(c.band, *band); };
        check.countsCountries(sql::countriesSent(*band),
                              [&](const Contact &c) { return onBand(c) && isSent(c); });
        check.countsCountries(sql::countriesReceived(*band),
                              [&](const Contact &c) { return onBand(c) && isReceived(c); });
        check.countsCountries(sql::countriesWorked(*band), onBand);
    }
    check.countsCountries(sql::allCountriesSent(),
                          [](const Contact &c) { return hasCountry(c) && isSent(c); });
    check.countsCountries(sql::allCountriesReceived(),
                          [](const Contact &c) { return hasCountry(c) && isReceived(c); });
    check.countsCountries(sql::allCountriesWorked(), hasCountry);
    check.callsigns(sql::confirmedCalls(), isReceived);
    check.callsigns(sql::callsWithCard(), isReceived);
    const auto all = [](const Contact &) { return true; };
    check.callsigns(sql::differentCalls(), all);
    check.callsigns(sql::allCalls(), all);
    check.callsigns(sql::allCallsSorted(), all);
    check.countsRows(sql::allContacts(), all);
    check.rows(sql::contactsAtStart(), u"ccall"_s, all);
}

void checkCountries(Checker &check, RandomLog &random)
{
    using namespace qsl;
    for (const QString &country : {u"RUSSIAN"_s, u"russian"_s, u"RUSSIAN "_s, u"USA"_s, u"GERMANY "_s,
                                   u"\""_s, u""_s, u" "_s, u"россия"_s, u"%1"_s, u"NOWHERE"_s}) {
        const auto here = [&](const Contact &c) { return equal(c.country, country); };
        check.callsigns(sql::callsOfCountry(country), here);
        for (int i = 0; i < 3; ++i) {
            const QString band = read(random.from(kBands));
            const QString key = read(random.from(kKeys));
            const auto counted = [&](const Contact &c) {
                return here(c) && hasCountry(c) && equal(c.band, band);
            };
            check.countsRows(sql::countrySent(country, band),
                             [&](const Contact &c) { return counted(c) && isSent(c); });
            check.countsRows(sql::countryReceived(country, band),
                             [&](const Contact &c) { return counted(c) && isReceived(c); });
            check.countsRows(sql::countryWorked(country, band), counted);
            check.callsigns(sql::callsOfCountryOnBand(band, country, key), [&](const Contact &c) {
                return here(c) && equal(c.band, band) && equal(c.key, key);
            });
            check.rows(sql::contactsOfCountry(country, key), u"ccall"_s, [&](const Contact &c) {
                return equal(c.country, country + u' ') && equal(c.key, key);
            });
        }
    }
}

void checkRegions(Checker &check, RandomLog &random)
{
    using namespace qsl;
    for (const QString &region : kRegions) {
        for (int i = 0; i < 3; ++i) {
            const QString band = read(random.from(kBands));
            const QString key = read(random.from(kKeys));
            const auto here = [&](const Contact &c) { return inRegion(c, region) && equal(c.band, band); };
            check.callsigns(sql::regionSent(band, region),
                            [&](const Contact &c) { return here(c) && isSent(c); });
            check.callsigns(sql::regionReceived(band, region),
                            [&](const Contact &c) { return here(c) && isReceived(c); });
            check.callsigns(sql::regionWorked(band, region), here);
            check.callsigns(sql::callsOfRegion(region, key),
                            [&](const Contact &c) { return inRegion(c, region) && equal(c.key, key); });
            check.callsigns(sql::callsOfRegionOnBand(region, band, key),
                            [&](const Contact &c) { return here(c) && equal(c.key, key); });
        }
    }
}

void checkSearch(Checker &check, RandomLog &random)
{
    using namespace qsl;
    for (const QString &beginning : {u""_s, u"U"_s, u"ua3"_s, u"UA3A"_s, u"РА"_s, u"QQ"_s}) {
        for (const Field &key : kKeys)
            check.callsigns(sql::callsFrom(beginning, read(key)), [&](const Contact &c) {
                return (beginning.isEmpty() || read(c.call).startsWith(beginning, Qt::CaseInsensitive)) &&
                       equal(c.key, read(key));
            });
    }
    for (int i = 0; i < 12; ++i) {
        const QString call = read(random.call());
        const QString key = read(random.from(kKeys));
        const QString band = read(random.from(kBands));
        const auto ofCall = [&](const Contact &c) { return equal(c.call, call); };
        check.rows(sql::contactsOfFoundCall(call, key), u"ccall"_s,
                   [&](const Contact &c) { return ofCall(c) && equal(c.key, key); });
        check.rows(sql::contactsOfCall(call), u"ccall"_s, ofCall);
        check.rows(sql::contactsOfCallByBand(call), u"bband"_s, ofCall);
        check.rows(sql::contactsAtTime(call, u"12:01"_s), {},
                   [&](const Contact &c) { return ofCall(c) && equal(c.time, u"12:01"_s); });
        check.rows(sql::contactToMark(band, call, u"5.03.26"_s), {}, [&](const Contact &c) {
            return ofCall(c) && equal(c.band, band) &&
                   (read(c.date) == u"05.03.26" || read(c.date) == u"5.3.2026");
        });
        check.callsigns(sql::callsOnBand(band, key),
                        [&](const Contact &c) { return equal(c.band, band) && equal(c.key, key); });
    }
}

void checkAll(store::Library &library, const QString &path, const std::map<qint64, Contact> &contacts,
              unsigned seed)
{
    RandomLog random(seed);
    Checker check(library, path, contacts);
    checkTotals(check);
    checkCountries(check, random);
    checkRegions(check, random);
    checkSearch(check, random);
    QVERIFY2(check.failures().isEmpty(), qPrintable(check.failures().join(u'\n')));
    QVERIFY(check.compared() > 500);
}

void edit(Writer &writer, RandomLog &random)
{
    for (int i = 0; i < kEdits && !writer.contacts.empty(); ++i) {
        const auto one =
            std::next(writer.contacts.begin(), random.below(static_cast<qsizetype>(writer.contacts.size())));
        Contact contact = one->second;
        switch (random.below(6)) {
        case 0:
            writer.remove(one->first);
            break;
        case 1:
            writer.add(random.contact());
            break;
        case 2:
            contact.sent = random.from(kMarks);
            writer.set(one->first, contact);
            break;
        case 3:
            contact.country = random.from(kCountries);
            contact.call = random.call();
            writer.set(one->first, contact);
            break;
        case 4:
            contact.band = random.from(kBands);
            writer.set(one->first, contact);
            break;
        default:
            writer.set(one->first, random.contact());
        }
    }
}

} // namespace

class BureauStatementsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void randomLogs_data()
    {
        QTest::addColumn<unsigned>("seed");
        for (unsigned seed = 1; seed <= 6; ++seed)
            QTest::newRow(qPrintable(QString::number(seed))) << seed;
    }
    void randomLogs()
    {
        QFETCH(unsigned, seed);
        const Installation in;
        const QString path = in.file(QLatin1String(kLog));
        store::Library library({in.folder(), false}, in.userFolder());
        RandomLog random(seed);
        Writer writer(path);
        checkAll(library, path, writer.contacts, seed);
        writer.transaction("BEGIN");
        for (int i = 0; i < kContacts; ++i)
            writer.addAtOnce(random.contact());
        writer.transaction("COMMIT");
        checkAll(library, path, writer.contacts, seed);
        for (int round = 0; round < 3; ++round) {
            writer.transaction("BEGIN");
            edit(writer, random);
            writer.transaction("COMMIT");
            checkAll(library, path, writer.contacts, seed + 100 + static_cast<unsigned>(round));
        }
        (void)library.execute(path, u"DELETE tbllog1.* FROM tbllog1;");
        writer.contacts.clear();
        checkAll(library, path, writer.contacts, seed);
    }

    /// A log of the first layout that must not be written answers the same, only slower.
    void readOnlyLogOfTheFirstLayout()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QLatin1String(kLog));
        QFile script(QStringLiteral(TEST_DATA "/log_version1.sql"));
        QVERIFY(script.open(QIODevice::ReadOnly));
        store::Connection::create(path)->execScript(QString::fromUtf8(script.readAll()));
        RandomLog random(77);
        Writer writer(path);
        writer.transaction("DELETE FROM TBLLOG1");
        writer.transaction("BEGIN");
        for (int i = 0; i < kContacts; ++i) {
            Contact contact = random.contact();
            contact.call = read(contact.call); // its counters knew a null callsign from an empty one
            writer.addAtOnce(contact);
        }
        writer.transaction("COMMIT");
        store::Library library({folder.path(), true}, folder.path());
        checkAll(library, path, writer.contacts, 77);
        QVERIFY(!library.connection(path).keepsTally());
    }

    /// No statement that a key or a click runs may walk through the table itself.
    void plans()
    {
        const Installation in;
        store::Library library({in.folder(), false}, in.userFolder());
        store::DataSource source(u"Data1"_s, library);
        source.setDatabaseName(in.file(QLatin1String(kLog)));
        using namespace qsl;
        QList<store::SqlText> texts = {sql::contactsAtStart(), sql::allCalls(),        sql::allCallsSorted(),
                                       sql::callsWithCard(),   sql::confirmedCalls(),  sql::differentCalls(),
                                       sql::allContacts(),     sql::allCountriesSent()};
        for (const QString &key : {u"ABC"_s, u""_s}) {
            for (const QString &value : {u"UA3"_s, u""_s})
                texts << sql::callsFrom(value, key) << sql::contactsOfFoundCall(value, key);
            texts << sql::callsOnBand(u"14", key);
            for (const QString &region : {u"3A"_s, u""_s})
                texts << sql::callsOfRegion(region, key) << sql::callsOfRegionOnBand(region, u"14", key)
                      << sql::regionSent(u"14", region) << sql::regionReceived(u"14", region)
                      << sql::regionWorked(u"14", region);
            for (const QString &country : {u"RUSSIAN"_s, u"USA"_s, u""_s})
                texts << sql::callsOfCountryOnBand(u"14", country, key)
                      << sql::contactsOfCountry(country, key) << sql::callsOfCountry(country)
                      << sql::countrySent(country, u"14");
        }
        store::Connection &log = library.connection(source.databaseName());
        QSet<QString> texted;
        for (const store::SqlText &text : std::as_const(texts)) {
            source.setRecordSource(text);
            source.refresh();
            for (sqlite3_stmt *one = sqlite3_next_stmt(log.handle(), nullptr); one != nullptr;
                 one = sqlite3_next_stmt(log.handle(), one))
                texted.insert(QString::fromUtf8(sqlite3_sql(one)));
        }
        int plans = 0;
        for (const QString &sql : std::as_const(texted)) {
            if (!sql.contains(u"tbllog1", Qt::CaseInsensitive))
                continue;
            store::Cursor cursor = log.run(u"EXPLAIN QUERY PLAN "_s + sql);
            while (cursor.next()) {
                const QString step = cursor.text(3);
                const bool table = step.startsWith(u"SCAN") &&
                                   step.contains(u"tbllog1", Qt::CaseInsensitive) &&
                                   !step.contains(u" INDEX ");
                const bool sorted = step.startsWith(u"USE TEMP B-TREE FOR ORDER BY");
                // Parts are asked one by one; only beside a null callsign both at once.
                const bool bothAtOnce = step.contains(u"MULTI-INDEX") && !sql.contains(u" UNION ");
                QVERIFY2(!table && !sorted && !bothAtOnce, qPrintable(step + u": "_s + sql));
                ++plans;
            }
        }
        QVERIFY(plans > 30);
    }
};

QTEST_GUILESS_MAIN(BureauStatementsTest)
#include "bureaustatements.moc"
