#include "interchange/logmerge.h"

#include "interchange/sql.h"
#include "store/dialect.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

namespace interchange {

namespace {

/// Fields of a row in the order in which they are copied; the last three may be filled on either side. The
/// numbers are those of the walk over the source.
enum Field : std::size_t {
    Call,
    Date,
    Time,
    Band,
    Sent,
    Received,
    Mode,
    Town,
    Name,
    Country,
    Mark,
    CardIn,
    CardOut,
    Route,
    FieldCount
};
const QStringList kRead = {QStringLiteral("ccall"), QStringLiteral("ddate"), QStringLiteral("ttime"),
                           QStringLiteral("bband"), QStringLiteral("rsts"),  QStringLiteral("rstr"),
                           QStringLiteral("ps1"),   QStringLiteral("QTH"),   QStringLiteral("NNAME"),
                           QStringLiteral("CONTR"), QStringLiteral("PRF")};
const QStringList kExchanged = {QStringLiteral("QSLP"), QStringLiteral("QSLO"), QStringLiteral("QSLVIA")};
constexpr std::array<Field, 4> kTested = {Call, Date, Band, Sent};

constexpr qint64 kStepRows = 500;

/// One file, also under two names.
bool sameFile(const QString &a, const QString &b)
{
    std::error_code failed;
    return std::filesystem::equivalent(QFile::encodeName(a).toStdString(), QFile::encodeName(b).toStdString(),
                                       failed);
}

/// A text that every comparison takes as it stands: the statement for such texts is the same each time.
bool isPlain(QByteArrayView text)
{
    return !text.isEmpty() && text.back() != ' ' && std::none_of(text.begin(), text.end(), [](char c) {
        return (c & 0x80) != 0 || c == '\'' || c == '\0';
    });
}

} // namespace

LogMerge::LogMerge(store::Library &databases, QString sourcePath, QString targetPath, Source use)
    : m_databases(databases), m_sourcePath(std::move(sourcePath)), m_targetPath(std::move(targetPath)),
      m_sourceWritable(use == Source::Exchanges)
{}

void LogMerge::run(const Step &step, const store::Progress &copying)
{
    m_counters = {};
    store::Connection &source = m_databases.connection(m_sourcePath);
    m_source.emplace(source, QStringLiteral("TBLLOG1"), kRead, kExchanged);
    m_counters.total = m_source->total();
    if (m_counters.total == 0)
        return;
    if (sameFile(m_sourcePath, m_targetPath)) {
        m_counters.examined = m_counters.total;
        return;
    }
    m_target = &m_databases.connection(m_targetPath);
    if (m_target->readOnly())
        throw store::Error(store::ErrorKind::ReadOnly, m_targetPath, QStringLiteral("файл не для записи"));
    m_sourceWritable = m_sourceWritable && !source.readOnly();
    m_databases.makeVerifiedCopy(m_targetPath, copying);
    if (m_sourceWritable)
        m_databases.makeVerifiedCopy(m_sourcePath, copying);

    const store::Patience patience(*m_target);
    const store::Patience sourcePatience(source);
    m_counters.stopped = !step(m_counters);
    while (!m_counters.stopped && m_source->readChunk())
        mergeChunk(step);
    (void)step(m_counters);
}

/// The target's changes of a chunk are committed before the source's: whichever of them a kill takes away is
/// made again by the next merge, from what the other file holds.
void LogMerge::mergeChunk(const Step &step)
{
    store::Transaction transaction(*m_target);
    for (std::size_t row = 0; row < m_source->rows() && !m_counters.stopped; ++row) {
        if (const auto match = find(row))
            exchangeMarks(row, *match);
        else
            addRow(row);
        ++m_counters.examined;
        if (m_counters.examined % kStepRows == 0)
            m_counters.stopped = !step(m_counters);
    }
    transaction.commit();
    if (m_sourceWritable)
        m_counters.markedBack += m_source->writeChunk();
}

/// The first row of the target that is the same contact.
std::optional<LogMerge::Match> LogMerge::find(std::size_t row)
{
    const store::TableWalk &source = *m_source;
    const bool plain = std::all_of(kTested.begin(), kTested.end(),
                                   [&](Field field) { return isPlain(source.utf8(row, field)); });
    store::Values values;
    QString lookup = m_plainLookup;
    if (plain && !lookup.isEmpty()) {
        for (const Field field : kTested)
            values.append(source.text(row, field));
    } else {
        const store::SelectQuery query = store::translateSelect(sql::sameContact(
            source.text(row, Call), source.text(row, Date), source.text(row, Band), source.text(row, Sent)));
        lookup = sql::firstWithMarks(query.where);
        values = query.arguments;
        if (plain && values.size() == static_cast<qsizetype>(kTested.size()))
            m_plainLookup = lookup;
    }
    store::Cursor cursor = m_target->run(lookup, values);
    if (!cursor.next())
        return std::nullopt;
    return Match{cursor.number(0),
                 {cursor.utf8(1).toByteArray(), cursor.utf8(2).toByteArray(), cursor.utf8(3).toByteArray()}};
}

void LogMerge::addRow(std::size_t row)
{
    static const QString insert = sql::addContact(kRead + kExchanged);
    store::Values values;
    for (std::size_t field = 0; field < FieldCount; ++field)
        values.append(m_source->text(row, field));
    m_target->exec(insert, values);
    ++m_counters.added;
}

/// Marks flow both ways, each into an empty field only.
void LogMerge::exchangeMarks(std::size_t row, const Match &match)
{
    static const QString update = sql::setMarks(kExchanged);
    bool changed = false;
    bool back = false;
    store::Values values;
    for (std::size_t i = 0; i < std::size(match.marks); ++i) {
        const std::size_t field = CardIn + i;
        const QByteArray ours = match.marks[i];
        const bool take = ours.isEmpty() && !m_source->utf8(row, field).isEmpty();
        changed |= take;
        values.append(take ? m_source->text(row, field) : QString::fromUtf8(ours));
        if (!ours.isEmpty() && m_source->utf8(row, field).isEmpty()) {
            back = true;
            if (m_sourceWritable)
                m_source->setUtf8(row, field, ours);
        }
    }
    if (changed) {
        values.append(match.key);
        m_target->exec(update, values);
        ++m_counters.marked;
    }
    if (back && !m_sourceWritable)
        ++m_counters.keptBack;
}

// ---- dates and times

std::optional<QString> repairedDate(const QString &date)
{
    static constexpr std::array<QLatin1String, 12> kMonths = {
        QLatin1String("Jan"), QLatin1String("Feb"), QLatin1String("Mar"), QLatin1String("Apr"),
        QLatin1String("May"), QLatin1String("Jun"), QLatin1String("Jul"), QLatin1String("Aug"),
        QLatin1String("Sep"), QLatin1String("Oct"), QLatin1String("Nov"), QLatin1String("Dec")};
    const QStringView name = QStringView(date).mid(3, 3);
    const auto month = std::find(kMonths.begin(), kMonths.end(), name);
    if (month == kMonths.end())
        return std::nullopt;
    const auto number = std::distance(kMonths.begin(), month) + 1;
    return date.left(2) + QStringLiteral(".%1.").arg(number, 2, 10, QLatin1Char('0')) + date.right(2);
}

std::optional<QString> repairedTime(const QString &time)
{
    const bool digits = std::all_of(time.begin(), time.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    if (!digits || time.size() < 3 || time.size() > 4)
        return std::nullopt;
    return time.chopped(2) + QLatin1Char(':') + time.right(2);
}

RepairCounters repairDatesAndTimes(store::Library &databases, const QString &logPath,
                                   const std::function<bool(qint64 done, qint64 total)> &step,
                                   const store::Progress &copying)
{
    enum : std::size_t { DateField, TimeField };
    RepairCounters counters;
    store::TableWalk log(databases.connection(logPath), QStringLiteral("TBLLOG1"), {},
                         {QStringLiteral("ddate"), QStringLiteral("ttime")});
    bool copied = false;
    while (!counters.stopped && log.readChunk()) {
        qint64 dates = 0;
        qint64 times = 0;
        for (std::size_t row = 0; row < log.rows(); ++row) {
            if (const auto date = repairedDate(log.text(row, DateField))) {
                log.setText(row, DateField, *date);
                ++dates;
            }
            if (const auto time = repairedTime(log.text(row, TimeField))) {
                log.setText(row, TimeField, *time);
                ++times;
            }
        }
        if (dates + times > 0 && !copied) {
            databases.makeVerifiedCopy(logPath, copying);
            copied = true;
        }
        (void)log.writeChunk();
        counters.dates += dates;
        counters.times += times;
        counters.visited = log.visited();
        counters.stopped = !step(log.visited(), log.total()) && log.visited() < log.total();
    }
    return counters;
}

} // namespace interchange
