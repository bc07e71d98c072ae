#include "bench/awardswork.h"

#include "awards/blanksummary.h"
#include "awards/picking.h"
#include "bench/bare.h"

#include <functional>

namespace bench {

namespace {

constexpr Budget kListBudget{50, 150};

QStringList texts(store::Library &library, const QString &path, const QString &sql)
{
    QStringList list;
    store::Cursor row = library.connection(path).run(sql);
    while (row.next())
        list.append(row.text(0));
    return list;
}

/// What a click on each of these takes, the first page of what it shows included.
void clicks(QTextStream &out, const QString &name, const QStringList &values, store::DataSource &shown,
            const std::function<void(const QString &)> &click)
{
    Samples took;
    for (const QString &value : values) {
        const QElapsedTimer timer = started();
        click(value);
        (void)shown.knownRows();
        took.add(milliseconds(timer));
    }
    printFigure(out, name, took, kListBudget);
}

class Filling {
public:
    Filling(QTextStream &out, awards::Sources &sources, awards::Picking &picking)
        : m_out(out), m_sources(sources), m_picking(picking)
    {}

    void measure(const QString &name, const QStringList &entries, awards::EntryKind kind, bool confirmed)
    {
        Samples filling;
        QElapsedTimer timer = started();
        const awards::FillResult result = m_picking.fill(entries, kind, confirmed, [](int) {});
        filling.add(milliseconds(timer));
        printFigure(m_out, QStringLiteral("%1, %2 rows").arg(name).arg(result.rows), filling);
        countBlank();
        m_picking.emptyBlank();
    }

private:
    void countBlank()
    {
        constexpr int kRowsOfAPiece = 500; // as the window takes them
        awards::BlankCount count(m_sources.databases());
        Samples pieces;
        QElapsedTimer timer = started();
        count.begin(m_sources.logPath());
        pieces.add(milliseconds(timer));
        while (!count.done()) {
            timer = started();
            (void)count.step(kRowsOfAPiece);
            pieces.add(milliseconds(timer));
        }
        printFigure(m_out, QStringLiteral("a piece of the line below this blank"), pieces);
    }

    QTextStream &m_out;
    awards::Sources &m_sources;
    awards::Picking &m_picking;
};

} // namespace

void measureAwards(QTextStream &out, const QString &folder, int samples)
{
    store::Library library({folder, false}, folder);
    awards::Sources sources(library);
    Samples opening;
    const QElapsedTimer timer = started();
    const QList<store::Error> errors = sources.open();
    opening.add(milliseconds(timer));
    if (!errors.isEmpty())
        throw errors.front();
    printFigure(out, QStringLiteral("opening the sources of the awards"), opening);

    awards::Picking picking(sources);
    const QString log = sources.logPath();
    const QStringList countries =
        texts(library, library.path(u"\\dbdxcc1.mdb"),
              QStringLiteral("SELECT DISTINCT PREF FROM tbldxcc WHERE length(PREF)>0 ORDER BY PREF"));
    const QStringList regions =
        texts(library, library.path(u"\\dbrusdx.mdb"),
              QStringLiteral("SELECT DISTINCT pref FROM tblrus WHERE length(pref)>0 ORDER BY pref"));
    const QStringList calls = texts(
        library, log, QStringLiteral("SELECT ccall FROM TBLLOG1 WHERE rowid%997=1 LIMIT %1").arg(samples));
    clicks(out, QStringLiteral("click on a country's prefix"), countries, sources.Calls,
           [&](const QString &prefix) { (void)picking.chooseCountryPrefix(prefix); });
    clicks(out, QStringLiteral("click on a region's prefix"), regions, sources.Calls,
           [&](const QString &prefix) { picking.chooseRegionPrefix(prefix); });
    clicks(out, QStringLiteral("click on a callsign"), calls, sources.Station,
           [&](const QString &call) { (void)picking.chooseCall(call); });

    Filling filling(out, sources, picking);
    for (const bool confirmed : {false, true}) {
        const QString cards = confirmed ? QStringLiteral(" with a card") : QString();
        filling.measure(QStringLiteral("blank from callsigns%1").arg(cards), calls, awards::EntryKind::Call,
                        confirmed);
        filling.measure(QStringLiteral("blank from prefixes%1").arg(cards), countries,
                        awards::EntryKind::Prefix, confirmed);
    }
}

} // namespace bench
