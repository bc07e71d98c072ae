#include "interchange/adifimport.h"

#include "foreign/error.h"
#include "interchange/adifline.h"
#include "interchange/adifmapping.h"
#include "store/countrytable.h"
#include "store/rowwriter.h"
#include "store/schema.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace interchange {

namespace {

constexpr qint64 kRecordsPerStep = 2000;

QString logTable()
{
    return QStringLiteral("TBLLOG1");
}

foreign::AdifText load(const QString &path)
{
    try {
        return foreign::loadAdif(path);
    } catch (const foreign::Error &error) {
        throw store::Error(store::ErrorKind::Unreadable, path, error.text());
    }
}

SkipReason reasonOf(foreign::AdifFault fault)
{
    switch (fault) {
    case foreign::AdifFault::LengthTooBig:
        return SkipReason::LengthTooBig;
    case foreign::AdifFault::BadCall:
        return SkipReason::BadCall;
    case foreign::AdifFault::CutOff:
        return SkipReason::CutOff;
    case foreign::AdifFault::BadXml:
        return SkipReason::BadXml;
    default:
        return SkipReason::Empty;
    }
}

/// Columns of the log that an import leaves alone.
QStringList otherColumns()
{
    QStringList names;
    for (const store::ColumnLayout &column : store::tableLayout(logTable())->columns)
        if (!importColumns().contains(column.name, Qt::CaseInsensitive))
            names.append(column.name);
    return names;
}

/// Fingerprint of a row as an import writes it; the columns it leaves alone are empty.
template <typename Texts>
Fingerprint rowPrint(const Texts &texts)
{
    constexpr char kBetween = '\x1f';
    QByteArray joined;
    for (const auto &text : texts)
        joined.append(text).append(kBetween);
    return fingerprint(joined);
}

} // namespace

QString readerText(AdifReaderKind kind)
{
    return kind == AdifReaderKind::OwnLines ? QStringLiteral("построчное чтение (собственный вид программы)")
                                            : QStringLiteral("полное чтение (файл другой программы)");
}

QString skipText(SkipReason reason)
{
    switch (reason) {
    case SkipReason::NoCall:
        return QStringLiteral("нет позывного");
    case SkipReason::UnreadableCall:
        return QStringLiteral("позывной не читается");
    case SkipReason::Empty:
        return QStringLiteral("запись пуста");
    case SkipReason::LengthTooBig:
        return QStringLiteral("указанная длина поля больше остатка файла");
    case SkipReason::BadCall:
        return QStringLiteral("у тега позывного нет знака >");
    case SkipReason::CutOff:
        return QStringLiteral("файл обрывается внутри записи");
    case SkipReason::BadXml:
        return QStringLiteral("разметка XML повреждена, дальше файл не читается");
    case SkipReason::BrokenLine:
        return QStringLiteral("строка не читается, импорт закончен на ней");
    case SkipReason::NotRead:
        return QStringLiteral("строки после неё не прочитаны");
    case SkipReason::NotWritten:
        return QStringLiteral("не записано в журнал");
    }
    return {};
}

qint64 ImportResult::skippedRecords() const
{
    return std::accumulate(skipped.begin(), skipped.end(), qint64(0),
                           [](qint64 sum, const Skipped &some) { return sum + some.records; });
}

/// One run over the file.
class AdifImport::Run {
public:
    Run(AdifImport &import, const Step &step) : m_import(import), m_step(step)
    {
        m_result.reader = import.m_reader;
        m_result.coding = import.m_text.codingName;
    }

    ImportResult go()
    {
        try {
            m_import.m_reader == AdifReaderKind::OwnLines ? readLines() : readRecords();
            if (m_writer)
                m_writer->commit();
        } catch (const store::Error &error) {
            if (!m_writer)
                throw; // nothing has been written
            m_result.failure = error;
        }
        settle();
        return std::move(m_result);
    }

private:
    void readLines()
    {
        AdifLines lines(m_import.m_text);
        const qint64 size = m_import.m_text.bytes.size();
        while (!m_result.stopped && lines.next()) {
            ++m_result.records;
            const auto read = readAdifLine(lines.text());
            if (const auto *contact = std::get_if<AdifLineContact>(&read)) {
                mapLine(*contact, m_row);
                add(lines.number());
            } else if (std::get<AdifLineVerdict>(read) == AdifLineVerdict::NoContact) {
                ++m_result.withoutContact;
            } else {
                skip(lines.number(), SkipReason::BrokenLine);
                const qint64 first = lines.number() + 1;
                qint64 rest = 0;
                while (lines.next())
                    ++rest;
                m_result.records += rest;
                if (rest > 0)
                    skip(first, SkipReason::NotRead, rest);
            }
            tell(lines.position(), size);
        }
    }

    void readRecords()
    {
        const auto source = foreign::openAdif(m_import.m_text);
        foreign::AdifRecord record;
        while (!m_result.stopped && source->next(record)) {
            ++m_result.records;
            if (record.fault != foreign::AdifFault::None)
                skip(record.line, reasonOf(record.fault));
            else
                take(record);
            tell(source->position(), source->size());
        }
        m_result.isAdif = source->isAdif() || m_result.records > 0;
    }

    void take(const foreign::AdifRecord &record)
    {
        switch (mapRecord(record, m_row)) {
        case Mapped::NoCall:
            skip(record.line, SkipReason::NoCall);
            return;
        case Mapped::UnreadableCall:
            skip(record.line, SkipReason::UnreadableCall);
            return;
        case Mapped::NoDate: // told with the others that have none
        case Mapped::Good:
            break;
        }
        add(record.line);
    }

    void add(qint64 line)
    {
        if (!m_writer)
            prepareLog();
        if (m_countries)
            m_row[kCountry] = m_countries->of(m_row[kCall]);
        m_row[kMark] = m_mark;
        std::array<QByteArrayView, kImportColumns> texts;
        std::copy(m_row.begin(), m_row.end(), texts.begin());
        if (m_writer->committed() != m_committed || m_added == m_committed) {
            m_committed = m_writer->committed();
            m_chunkLine = line; // the first line of what a failure would lose
        }
        if (m_row[kDate].isEmpty())
            m_undated.push_back({m_added, line});
        if (m_row[kTime].isEmpty())
            m_untimed.push_back({m_added, line});
        ++m_added;
        const qint64 key = m_writer->add(texts);
        if (m_held->contains(m_row[kCall], m_row[kDate], m_row[kBand]))
            m_import.m_repeats.push_back({key, m_added - 1, rowPrint(m_row)});
    }

    void prepareLog()
    {
        store::Library &databases = m_import.m_databases;
        store::Connection &log = databases.connection(m_import.m_logPath);
        if (m_import.m_reader == AdifReaderKind::Full)
            m_countries.emplace(databases.connection(databases.path(u"\\dbdxcc1.mdb")));
        m_held.emplace(log, logTable());
        m_mark = m_import.m_mark.toUtf8();
        m_result.copy = databases.makeVerifiedCopy(m_import.m_logPath, [this](qint64 done, qint64 total) {
            (void)m_step({ImportProgress::Phase::Copying, done, total, m_result.records, 0});
        });
        m_writer.emplace(log, logTable(), importColumns());
    }

    void skip(qint64 line, SkipReason reason, qint64 records = 1)
    {
        m_result.skipped.push_back({line, records, reason});
    }

    void tell(qint64 done, qint64 total)
    {
        if (m_result.records % kRecordsPerStep == 0)
            m_result.stopped =
                !m_step({ImportProgress::Phase::Reading, done, total, m_result.records, m_added});
    }

    /// Counts only what is in the log.
    void settle()
    {
        m_result.added = m_writer ? m_writer->committed() : 0;
        if (m_added > m_result.added)
            skip(m_chunkLine, SkipReason::NotWritten, m_added - m_result.added);
        auto &repeats = m_import.m_repeats;
        std::erase_if(repeats, [&](const Repeat &repeat) { return repeat.ordinal >= m_result.added; });
        m_result.held = static_cast<qint64>(repeats.size());
        for (auto [from, to] :
             {std::pair{&m_undated, &m_result.withoutDate}, std::pair{&m_untimed, &m_result.withoutTime}})
            for (const auto &[ordinal, line] : *from)
                if (ordinal < m_result.added)
                    to->push_back(line);
        const qint64 size = m_import.m_text.bytes.size();
        if (!m_result.stopped && !m_result.failure)
            (void)m_step({ImportProgress::Phase::Reading, size, size, m_result.records, m_result.added});
    }

    AdifImport &m_import;
    const Step &m_step;
    ImportResult m_result;
    ImportRow m_row;
    QByteArray m_mark;
    std::optional<store::CountryTable> m_countries;
    std::optional<HeldContacts> m_held;
    std::optional<store::RowWriter> m_writer;
    std::vector<std::pair<qint64, qint64>> m_undated; ///< ordinal and line
    std::vector<std::pair<qint64, qint64>> m_untimed;
    qint64 m_added = 0;
    qint64 m_committed = 0;
    qint64 m_chunkLine = 0;
};

AdifImport::AdifImport(store::Library &databases, QString logPath, const QString &filePath)
    : m_databases(databases), m_logPath(std::move(logPath)), m_text(load(filePath)),
      m_reader(isOwnLayout(m_text) ? AdifReaderKind::OwnLines : AdifReaderKind::Full)
{
    constexpr qsizetype kShortestMarked = 4;
    if (filePath.size() >= kShortestMarked)
        m_mark = filePath.right(3);
}

ImportResult AdifImport::run(const Step &step)
{
    m_repeats.clear();
    ImportResult result = Run(*this, step).go();
    m_text.bytes.clear(); // as big as the file
    return result;
}

AdifImport::Removal AdifImport::removeRepeats(const store::Progress &progress)
{
    Removal removal;
    if (m_repeats.empty())
        return removal;
    store::Connection &log = m_databases.connection(m_logPath);
    (void)m_databases.makeVerifiedCopy(m_logPath);
    std::vector<qint64> keys;
    keys.reserve(m_repeats.size());
    for (const Repeat &repeat : m_repeats)
        keys.push_back(repeat.key);
    const auto untouched = [this](std::size_t index, std::span<const QByteArrayView> texts) {
        const auto others = texts.subspan(kImportColumns);
        return std::all_of(others.begin(), others.end(),
                           [](QByteArrayView text) { return text.isEmpty(); }) &&
               rowPrint(texts.first(kImportColumns)) == m_repeats[index].row;
    };
    removal.removed =
        store::removeRows(log, logTable(), keys, importColumns() + otherColumns(), untouched, progress);
    removal.kept = static_cast<qint64>(m_repeats.size()) - removal.removed;
    m_repeats.clear();
    return removal;
}

} // namespace interchange
