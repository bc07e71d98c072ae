// The counts of the blank: small blanks by hand, random ones against plain loops.
#include "awards/blanksummary.h"
#include "awards/sql.h"
#include "base/date.h"
#include "support/installation.h"

#include <QSet>
#include <QTest>

#include <algorithm>
#include <random>

using awards::BlankCount;
using awards::BlankSummary;
using testsupport::Installation;

namespace {

constexpr auto kLog = "dbiaru.mdb";

/// A row of the blank or of the log; a null text is stored as NULL.
struct Contact {
    QString call;
    QString date;
    QString band;
    QString country;
    QString card;
};

QString literal(const QString &text)
{
    return text.isNull() ? QStringLiteral("NULL") : QStringLiteral("'%1'").arg(text);
}

void keep(const Installation &in, const char *table, const QList<Contact> &contacts)
{
    QStringList rows;
    for (const Contact &contact : contacts)
        rows.append(QStringLiteral("(%1,%2,%3,%4,%5)")
                        .arg(literal(contact.call), literal(contact.date), literal(contact.band),
                             literal(contact.country), literal(contact.card)));
    if (!rows.isEmpty())
        in.sql(QLatin1String(kLog), QStringLiteral("INSERT INTO %1(ccall,ddate,bband,CONTR,QSLP) VALUES%2")
                                        .arg(QLatin1String(table), rows.join(QLatin1Char(','))));
}

/// "call|date|band|country|card" a row, separated by ";"; "-" is NULL, what is left out at the end empty.
QList<Contact> contacts(const QString &text)
{
    QList<Contact> list;
    const QStringList rows = text.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString &row : rows) {
        const QStringList parts = row.split(QLatin1Char('|'));
        const auto part = [&](int index) {
            const QString value = parts.value(index);
            return value == QLatin1String("-") ? QString() : value.isNull() ? QStringLiteral("") : value;
        };
        list.append({part(0), part(1), part(2), part(3), part(4)});
    }
    return list;
}

bool sameDay(const QString &a, const QString &b)
{
    const auto first = base::parseLogDate(a);
    return a == b || (first && first == base::parseLogDate(b));
}

/// The same counts by plain loops.
BlankSummary counted(const QList<Contact> &blank, const QList<Contact> &log)
{
    BlankSummary summary;
    QSet<QString> calls;
    QSet<QString> countries;
    QSet<QString> bands;
    for (const Contact &row : blank) {
        ++summary.rows;
        calls.insert(row.call.toUpper());
        countries.insert(row.country.toUpper());
        bands.insert(row.band.toUpper());
        if (row.call.isEmpty()) {
            ++summary.nameless;
            continue;
        }
        const bool confirmed =
            !row.card.isEmpty() || std::any_of(log.begin(), log.end(), [&](const Contact &contact) {
                return !contact.card.isEmpty() && contact.call.toUpper() == row.call.toUpper() &&
                       contact.band.toUpper() == row.band.toUpper() && sameDay(contact.date, row.date);
            });
        summary.unconfirmed += confirmed ? 0 : 1;
    }
    for (QSet<QString> *set : {&calls, &countries, &bands})
        set->remove(QString());
    summary.calls = calls.size();
    summary.countries = countries.size();
    summary.bands = bands.size();
    return summary;
}

QList<qint64> numbers(const BlankSummary &summary)
{
    return {summary.rows,      summary.nameless, summary.calls,
            summary.countries, summary.bands,    summary.unconfirmed};
}

BlankSummary summaryOf(Installation &in, int piece)
{
    BlankCount count(in.databases);
    count.begin(in.file(QLatin1String(kLog)));
    while (!count.step(piece))
        ;
    return count.summary();
}

} // namespace

class BlankSummaryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void counts_data()
    {
        QTest::addColumn<QString>("blank");
        QTest::addColumn<QString>("log");
        QTest::addColumn<QList<qint64>>("expected"); // rows, nameless, calls, countries, bands, unconfirmed
        const auto row = [](const char *name, const char *blank, const char *log,
                            const QList<qint64> &expected) {
            QTest::newRow(name) << QString::fromUtf8(blank) << QString::fromUtf8(log) << expected;
        };
        row("nothing", "", "R1A|05.03.26|14|RUSSIAN|+", {0, 0, 0, 0, 0, 0});
        row("one", "R1A|05.03.26|14|RUSSIAN", "", {1, 0, 1, 1, 1, 1});
        row("the same twice", "R1A|05.03.26|14|RUSSIAN;R1A|05.03.26|14|RUSSIAN", "", {2, 0, 1, 1, 1, 2});
        row("letter case", "R1A|05.03.26|14m|Russian;r1a|06.03.26|14M|RUSSIAN", "", {2, 0, 1, 1, 1, 2});
        row("empty and null", "R1A|||;R1B|-|-|-", "", {2, 0, 2, 0, 0, 2});
        row("no callsign", "|||;-|-|-|-;R1A|05.03.26|14|RUSSIAN", "", {3, 2, 1, 1, 1, 1});
        row("confirmed", "R1A|05.03.26|14|", "R1A|05.03.26|14||+", {1, 0, 1, 0, 1, 0});
        row("any text is a mark", "R1A|05.03.26|14|", "R1A|05.03.26|14||0", {1, 0, 1, 0, 1, 0});
        row("worked only", "R1A|05.03.26|14|", "R1A|05.03.26|14||;R1A|05.03.26|14||-", {1, 0, 1, 0, 1, 1});
        row("another band", "R1A|05.03.26|14|", "R1A|05.03.26|7||+", {1, 0, 1, 0, 1, 1});
        row("another day", "R1A|05.03.26|14|", "R1A|06.03.26|14||+", {1, 0, 1, 0, 1, 1});
        row("another call", "R1A|05.03.26|14|", "R1AB|05.03.26|14||+", {1, 0, 1, 0, 1, 1});
        row("day written otherwise", "R1A|5.3.26|14|", "R1A|05.03.2026|14||+", {1, 0, 1, 0, 1, 0});
        row("of another century", "R1A|05.03.26|14|", "R1A|05.03.1926|14||+", {1, 0, 1, 0, 1, 1});
        row("no dates", "R1A|31.02.26|14|;R1B||14|", "R1A|31.2.26|14||+;R1B|-|14||+", {2, 0, 2, 0, 1, 1});
        row("no dates, the same text", "R1A|март|14|", "R1A|март|14||+", {1, 0, 1, 0, 1, 0});
        row("case of the log", "r1a|05.03.26|14m|", "R1A|05.03.26|14M||+", {1, 0, 1, 0, 1, 0});
        row("no band", "R1A|05.03.26||", "R1A|05.03.26|-||+", {1, 0, 1, 0, 0, 0});
        row("mark of the blank's own", "R1A|05.03.26|14||+", "", {1, 0, 1, 0, 1, 0});
        row("no callsign in the log either", "|05.03.26|14|", "|05.03.26|14||+", {1, 1, 0, 0, 1, 0});
    }
    void counts()
    {
        QFETCH(QString, blank);
        QFETCH(QString, log);
        Installation in;
        keep(in, "tbllogTEMP", contacts(blank));
        keep(in, "TBLLOG1", contacts(log));
        for (const int piece : {1, 2, 1000})
            QTEST(numbers(summaryOf(in, piece)), "expected");
    }

    void randomRows_data()
    {
        QTest::addColumn<int>("seed");
        for (int seed = 1; seed <= 12; ++seed)
            QTest::addRow("%d", seed) << seed;
    }
    void randomRows()
    {
        QFETCH(int, seed);
        std::mt19937 random(static_cast<unsigned>(seed));
        const auto one = [&](const QStringList &texts) {
            return texts[std::uniform_int_distribution<qsizetype>(0, texts.size() - 1)(random)];
        };
        const QString null;
        const QString empty = QStringLiteral("");
        const auto contact = [&] {
            return Contact{one({"R1A", "r1a", "R1B", "DL1X", "dl1x", "UA9", empty, null}),
                           one({"05.03.26", "5.3.26", "05.03.2026", "5.03.26", "06.03.26", "6.3.2026",
                                "31.02.26", "31.2.26", "x", empty, null}),
                           one({"14", "7", "10m", "10M", empty, null}),
                           one({"RUSSIAN", "Russian", "GERMANY", empty, null}),
                           one({"+", "05.04.26", empty, empty, null})};
        };
        QList<Contact> blank;
        QList<Contact> log;
        for (int i = 0; i < 150; ++i) {
            blank.append(contact());
            if (one({"0", "1", "2"}) != QLatin1String("0"))
                blank.last().card = empty;
            log.append(contact());
        }
        Installation in;
        keep(in, "tbllogTEMP", blank);
        keep(in, "TBLLOG1", log);
        const BlankSummary expected = counted(blank, log);
        QVERIFY(expected.unconfirmed > 0 && expected.unconfirmed < expected.rows);
        for (const int piece : {7, 150, 1000})
            QCOMPARE(numbers(summaryOf(in, piece)), numbers(expected));
    }

    /// However long the log: each row of the blank goes to its confirmed contacts at once.
    void logIsNotReadThrough()
    {
        Installation in;
        store::Connection &log = in.databases.connection(in.file(QLatin1String(kLog)));
        QStringList plan;
        store::Cursor cursor =
            log.run(QStringLiteral("EXPLAIN QUERY PLAN ") + awards::sql::blankRowsWithoutCard(),
                    {qint64{0}, qint64{500}});
        while (cursor.next())
            plan.append(cursor.text(3));
        const QString whole = plan.join(QLatin1Char(';'));
        QVERIFY2(whole.contains(QLatin1String("SEARCH l USING INDEX zh_log_confirmed (ccall=?)")),
                 qPrintable(whole));
    }

    void line()
    {
        QCOMPARE(awards::summaryLine({12, 0, 10, 5, 3, 4}),
                 QStringLiteral("Строк: 12    позывных: 10    стран: 5    диапазонов: 3    без карточки: 4"));
        QCOMPARE(
            awards::summaryLine({13, 1, 10, 5, 3, 4}),
            QStringLiteral("Строк: 13    позывных: 10    стран: 5    диапазонов: 3    без карточки: 4    "
                           "без позывного: 1"));
    }

    void countsInPieces()
    {
        Installation in;
        store::Connection &log = in.databases.connection(in.file(QLatin1String(kLog)));
        keep(in, "tbllogTEMP", contacts(QStringLiteral("A1A;A2A;A3A;A4A;A5A")));
        BlankCount count(in.databases);
        QVERIFY(count.done()); // nothing to count so far
        count.begin(log.path());
        QCOMPARE(count.summary().rows, 5);
        QVERIFY(!count.done());
        QVERIFY(!count.step(3));
        QCOMPARE(count.summary().unconfirmed, 3);
        QVERIFY(count.step(3));
        QCOMPARE(count.summary().unconfirmed, 5);
        const qint64 statements = log.statementCount();
        QVERIFY(count.step(3));
        QCOMPARE(log.statementCount(), statements);
        count.begin(log.path()); // from the beginning
        QVERIFY(!count.step(5)); // another row may follow
        QVERIFY(count.step(5));
        QCOMPARE(count.summary().unconfirmed, 5);
    }

    void fileThatIsNotThere()
    {
        Installation in;
        BlankCount count(in.databases);
        QVERIFY_THROWS_EXCEPTION(store::Error, count.begin(in.file(QStringLiteral("none.mdb"))));
        QVERIFY(count.step(1));
        QCOMPARE(count.summary().rows, 0);
    }
};

QTEST_GUILESS_MAIN(BlankSummaryTest)
#include "blanksummary.moc"
