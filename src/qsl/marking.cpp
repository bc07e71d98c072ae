#include "qsl/marking.h"

#include "base/date.h"
#include "qsl/sql.h"

namespace qsl {

namespace {

constexpr std::array<const char *, kHandFields> kHandFieldNames = {
    "ccall", "ddate", "ttime", "bband", "rstr", "rsts", "QTH", "NNAME", "QSLVIA", "QSLP"};

QString field(const char *name)
{
    return QString::fromLatin1(name);
}

struct ReportAndMode {
    QString report;
    QString mode;
};

/// What a report sent says of the mode; nothing for a report of another length.
std::optional<ReportAndMode> blankReport(const QString &report, const BlankQuestions &questions)
{
    constexpr qsizetype kContest = 4; ///< with a serial number behind it
    const QString cw = QStringLiteral("CW");
    const QString ssb = QStringLiteral("SSB");
    if (report.size() >= kContest) {
        if (questions.contestIs599())
            return ReportAndMode{QStringLiteral("599"), cw};
        return ReportAndMode{QStringLiteral("59"), ssb};
    }
    if (report.size() == 3)
        return ReportAndMode{report, cw};
    if (report.size() == 2)
        return ReportAndMode{report, ssb};
    return std::nullopt;
}

} // namespace

QString ownCallKey(const QString &ownCall, const QString &before)
{
    if (ownCall.size() > 4)
        return ownCall.mid(3);
    return ownCall.size() == 3 ? ownCall : before;
}

QString handField(int index)
{
    return field(kHandFieldNames[index]);
}

QString Marking::cell(int row, const char *name)
{
    return m_sources.Data1.text(row, field(name));
}

void Marking::copyToBlank(int row, const BlankQuestions &questions)
{
    m_sources.Data1.moveTo(row);
    const QString call = cell(row, "ccall");
    m_sources.Data3.addNew();
    try {
        fillBlank(row, questions);
        m_sources.Data1.update(); // a time that was asked for
        m_sources.Data3.update();
    } catch (const store::Error &) {
        m_sources.Data3.cancelUpdate();
        throw;
    }
    m_blankCall = call;
    m_sources.Data3.refresh();
    m_sources.Data5.setRecordSource(sql::contactsAtTime(m_blankCall, cell(row, "ttime")));
    m_sources.Data5.refresh();
}

void Marking::fillBlank(int row, const BlankQuestions &questions)
{
    store::DataSource &blank = m_sources.Data3;
    const QString call = cell(row, "ccall");
    blank.setField(field("ccall"), call);
    blank.setField(field("bband"), cell(row, "bband"));
    blank.setField(field("ddate"), cell(row, "ddate"));
    lookUpCallbook(call);

    if (cell(row, "ttime").isEmpty())
        m_sources.Data1.setField(field("ttime"), questions.time());
    if (const auto time = base::blankTime(cell(row, "ttime")))
        blank.setField(field("ttime"), *time);

    if (const auto sent = blankReport(cell(row, "rsts"), questions)) {
        blank.setField(field("rsts"), sent->report);
        blank.setField(field("mult"), sent->mode);
    }
    const QString route = cell(row, "qslvia");
    const QString bookRoute = m_callbookFailure ? QString() : m_sources.Data11.field(field("qslvia"));
    blank.setField(field("CONTR"), route.isEmpty() ? bookRoute : route);
    // The log's own mode goes before the guess from the report.
    if (const QString mode = cell(row, "PS1"); !mode.isEmpty())
        blank.setField(field("mult"), mode);
}

/// A callbook that cannot be read costs the route, not the card. What breaks the statement is an error.
void Marking::lookUpCallbook(const QString &call)
{
    m_callbookFailure.reset();
    m_sources.Data11.setRecordSource(sql::callbookEntry(call));
    try {
        m_sources.Data11.refresh();
    } catch (const store::Error &error) {
        if (error.kind() == store::ErrorKind::BadText)
            throw;
        m_callbookFailure = error;
    }
}

MarkResult Marking::markSent(const QDate &today, const Step &step)
{
    MarkResult result;
    store::DataSource &blank = m_sources.Data3;
    m_sources.Data1.update();
    blank.refresh(); // other windows put contacts into the blank too; an edit is saved first
    if (blank.isEmpty())
        return result;
    blank.moveLast();
    const int rows = blank.recordCount();
    blank.moveFirst();
    store::Connection &log = m_sources.databases().connection(m_sources.logPath());
    const store::Patience patience(log);
    store::Transaction transaction(log);
    for (int row = 1; row <= rows; ++row) {
        const Unmarked here{row, blank.field(field("ccall")), blank.field(field("ddate"))};
        store::DataSource &contact = m_sources.Data10;
        try {
            contact.setRecordSource(sql::contactToMark(blank.field(field("bband")), here.call, here.date));
            contact.refresh();
            if (contact.isEmpty())
                result.notFound.append(here);
            else
                ++result.contacts;
            contact.setField(field("qslo"), today.toString(QStringLiteral("dd.MM.yyyy")));
            contact.update();
        } catch (const store::Error &error) {
            contact.cancelUpdate();
            const bool badDate = error.kind() == store::ErrorKind::BadDate;
            if (!badDate && error.kind() != store::ErrorKind::BadText)
                throw;
            result = {};
            result.refused = here;
            result.reason = badDate ? QStringLiteral("неверная дата: ") + here.date
                                    : QStringLiteral("недопустимый знак в позывном, диапазоне или дате");
            return result;
        }
        if (!step(row, rows)) {
            result.stopped = true;
            return result;
        }
        blank.moveNext();
    }
    transaction.commit();
    return result;
}

void Marking::emptyBlank()
{
    m_sources.databases().execute(m_sources.logPath(), sql::emptyBlank());
    m_sources.Data3.cancelUpdate(); // the row is gone
    m_sources.Data3.refresh();
}

void Marking::addContact(const HandEntry &entry, const QString &ownKey, const QString &country)
{
    store::DataSource &row = m_sources.Data5;
    if (row.failed())
        row.setRecordSource(sql::logTable()); // a callsign in the statement had broken it
    row.addNew();
    try {
        for (int i = 0; i < kHandFields; ++i)
            row.setField(handField(i), entry[i]);
        row.setField(field("PRF"), ownKey);
        row.setField(field("CONTR"), country);
        row.update();
    } catch (const store::Error &) {
        row.cancelUpdate();
        throw;
    }
}

} // namespace qsl
