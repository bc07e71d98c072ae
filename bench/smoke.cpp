// bench_smoke: a small log comes out as promised, and the benchmarks run on it.
#include "bench/genlog.h"
#include "store/error.h"
#include "store/folder.h"
#include "store/library.h"
#include "store/schema.h"
#include "store/sqlite.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>

namespace {

constexpr qint64 kContacts = 2000;

class Checks {
public:
    template <typename Value>
    void equal(const char *what, const Value &found, const Value &wanted)
    {
        if (found == wanted)
            return;
        m_failed = true;
        QTextStream(stderr) << what << ": " << found << ", not " << wanted << '\n';
    }
    [[nodiscard]] bool failed() const noexcept { return m_failed; }

private:
    bool m_failed = false;
};

QString contacts(const QString &folder)
{
    store::Library library({folder, false}, folder);
    store::Connection &log = library.connection(library.path(u"\\dbiaru.mdb"));
    QString text;
    store::Cursor row = log.run(QStringLiteral("SELECT * FROM TBLLOG1 ORDER BY rowid"));
    while (row.next())
        for (int column = 0; column < row.columnCount(); ++column)
            text += row.text(column) + QLatin1Char('\t');
    return text;
}

void checkLog(Checks &checks, const QString &folder, qint64 countries)
{
    store::Library library({folder, false}, folder);
    store::Connection &log = library.connection(library.path(u"\\dbiaru.mdb"));
    const auto number = [&log](const QString &sql) { return log.singleNumber(sql); };
    checks.equal("contacts", number(QStringLiteral("SELECT count(*) FROM TBLLOG1")), kContacts);
    checks.equal("callsigns", number(QStringLiteral("SELECT count(DISTINCT ccall) FROM TBLLOG1")),
                 bench::generatedCalls(kContacts));
    checks.equal("countries", number(QStringLiteral("SELECT count(DISTINCT CONTR) FROM TBLLOG1")), countries);
    checks.equal("bands", number(QStringLiteral("SELECT count(DISTINCT bband) FROM TBLLOG1")), qint64{12});
    checks.equal("days in order",
                 number(QStringLiteral("SELECT count(*) FROM (SELECT jet_date(ddate) AS day, "
                                       "lag(jet_date(ddate)) OVER (ORDER BY rowid) AS before FROM TBLLOG1) "
                                       "WHERE day IS NULL OR day<before")),
                 qint64{0});
    checks.equal("integrity", log.single(QStringLiteral("PRAGMA integrity_check")).value_or(QString()),
                 QStringLiteral("ok"));
    const QString wrong = QStringLiteral(
        "SELECT count(*) FROM (SELECT CONTR,count(DISTINCT ccall) AS worked,count(DISTINCT CASE WHEN "
        "length(QSLP)>0 THEN ccall END) AS confirmed FROM TBLLOG1 GROUP BY CONTR) AS log LEFT JOIN %1 AS "
        "kept ON kept.contr=log.CONTR WHERE kept.calls IS NOT worked OR kept.cards IS NOT confirmed");
    checks.equal("countries whose counters are wrong", number(wrong.arg(store::countryCountersTable())),
                 qint64{0});
    checks.equal("counted countries",
                 number(QStringLiteral("SELECT count(*) FROM ") + store::countryCountersTable()), countries);
    checks.equal("tallied contacts that the log has not, or the other way round",
                 number(QStringLiteral(
                     "SELECT count(*) FROM (SELECT upper(bband) AS b,upper(CONTR) AS c,length(QSLO)>0 AS s,"
                     "length(QSLP)>0 AS r,count(*) AS n FROM TBLLOG1 GROUP BY b,c,s,r) AS log LEFT JOIN "
                     "zh_tally AS kept ON kept.bband=b AND kept.CONTR=c AND length(kept.QSLO)=s AND "
                     "length(kept.QSLP)=r WHERE kept.contacts IS NOT n")),
                 qint64{0});
    checks.equal("tallied contacts",
                 number(QStringLiteral("SELECT sum(contacts) FROM ") + store::tallyTable()), kContacts);
    for (const QString &object : {QStringLiteral("zh_log_call"), QStringLiteral("zh_log_insert")})
        checks.equal(
            "objects of that name",
            log.singleNumber(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name=?"), {object}),
            qint64{1});
}

/// Runs a benchmark: it ends well and prints these figures.
void checkProgram(Checks &checks, const QString &name, const QStringList &arguments,
                  const QList<const char *> &figures)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationDirPath() + QLatin1Char('/') + name, arguments);
    const bool ended = process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit;
    checks.equal("exit code of the benchmark", ended ? process.exitCode() : -1, 0);
    const QByteArray text = process.readAllStandardOutput();
    for (const char *figure : figures)
        checks.equal(figure, static_cast<int>(text.contains(figure)), 1);
}

void checkPrograms(Checks &checks, const QString &folder)
{
    checkProgram(checks, QStringLiteral("zhurnal-bench"),
                 {QStringLiteral("--folder"), folder, QStringLiteral("--samples"), QStringLiteral("3")},
                 {"start to a usable window", "key release", "F4 to the day's grid", "statements"});
    checkProgram(checks, QStringLiteral("zhurnal-bench-bulk"),
                 {QStringLiteral("--folder"), folder, QStringLiteral("--runs"), QStringLiteral("1"),
                  QStringLiteral("--parallel"), QStringLiteral("500"), QStringLiteral("--keyer"),
                  QStringLiteral("2"), QStringLiteral("--rows"), QStringLiteral("2000")},
                 {"error of an edge", "the last edge", "revision, nothing changes",
                  "revision, every row changes", "load of 500 parallel contacts", "times the bare work",
                  "print table, filled once more", "conversion, compared row by row"});
    checkProgram(checks, QStringLiteral("zhurnal-bench-bureau"),
                 {QStringLiteral("--folder"), folder, QStringLiteral("--samples"), QStringLiteral("3")},
                 {"opening the sources", "the totals, 33 counts", "27 counts of \"RUSSIAN\"",
                  "27 counts of region", "key release in the search, a key of none", "contacts at the start",
                  "lists, no key, as all contacts", "click on a region's prefix",
                  "blank from prefixes with a card"});
    checkProgram(checks, QStringLiteral("zhurnal-bench-interchange"),
                 {QStringLiteral("--folder"), folder, QStringLiteral("--runs"), QStringLiteral("1"),
                  QStringLiteral("--merged"), QStringLiteral("600")},
                 {"ADIF export into one file", "ADIF export into files of 500", "ADIF import of",
                  "merge of two logs of 600 contacts, 300 new", "times the bare work"});
    checkProgram(checks, QStringLiteral("zhurnal-bench-reference"),
                 {QStringLiteral("--folder"), folder, QStringLiteral("--samples"), QStringLiteral("3"),
                  QStringLiteral("--records"), QStringLiteral("2000")},
                 {"key release, callbook", "key release, country by prefix", "key release, country by name",
                  "key release, region"});
    checkProgram(
        checks, QStringLiteral("zhurnal-bench-report"),
        {QStringLiteral("--rows"), QStringLiteral("500"), QStringLiteral("--runs"), QStringLiteral("1")},
        {"log of a period, 500 contacts to PDF", "preview of 500 contacts, read", "one page painted"});
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir first;
    const QTemporaryDir second;
    Checks checks;
    try {
        const bench::GeneratedLog made = bench::generateLog(first.path(), kContacts);
        checkLog(checks, first.path(), made.countries);
        (void)bench::generateLog(second.path(), kContacts);
        checks.equal("two logs of one size",
                     static_cast<int>(contacts(first.path()) == contacts(second.path())), 1);
        checkPrograms(checks, first.path());
        checkLog(checks, first.path(), made.countries); // the window's has taken its contacts out again
        checks.equal("the log after the benchmarks",
                     static_cast<int>(contacts(first.path()) == contacts(second.path())), 1);
    } catch (const store::Error &error) {
        QTextStream(stderr) << error.details() << '\n';
        return 1;
    }
    return checks.failed() ? 1 : 0;
}
