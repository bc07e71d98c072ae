#include "logentry/recorder.h"

#include "logentry/keyrules.h"
#include "logentry/ownkey.h"
#include "logentry/sql.h"

namespace logentry {

namespace {

/// "dd.mm.yy" from a long date; a date of eight characters or fewer stays as typed.
QString storedDate(const QString &typed)
{
    constexpr qsizetype kLongest = 8;
    if (typed.size() <= kLongest)
        return typed;
    return typed.left(5) + QLatin1Char('.') + typed.right(2);
}

QString storedTime(const QString &shown, bool automatic)
{
    constexpr qsizetype kClockLength = 8; // hh:mm:ss
    if (!automatic)
        return shown;
    return shown.left(shown.size() == kClockLength ? 5 : 4);
}

interchange::EmergencyContact forEmergency(const Contact &contact)
{
    return {contact.ccall, contact.ddate, contact.ttime, contact.bband, contact.rsts,
            contact.rstr,  contact.ps1,   contact.QTH,   contact.NNAME, contact.QSLVIA};
}

} // namespace

Recorder::Recorder(Sources &sources, EntryFields &fields, EntryState &state,
                   interchange::EmergencyFile &emergency)
    : m_sources(sources), m_fields(fields), m_state(state), m_emergency(emergency)
{}

Contact Recorder::composed() const
{
    return {m_fields.txtcall,
            m_fields.txtrstr,
            m_fields.txtrsts,
            m_fields.txtqth,
            m_fields.txtname,
            m_fields.txtqslvia,
            m_state.band,
            storedDate(m_fields.txtdate),
            m_fields.txtcontr,
            m_state.mode,
            storedTime(m_fields.txttime, m_state.automaticTime),
            m_state.ownCallKey};
}

void Recorder::beginMainRow()
{
    store::DataSource &row = m_sources.Data1;
    row.addNew();
    row.setField(QStringLiteral("ccall"), m_contact.ccall);
    row.setField(QStringLiteral("rstr"), m_contact.rstr);
    row.setField(QStringLiteral("rsts"), m_contact.rsts);
    row.setField(QStringLiteral("QTH"), m_contact.QTH);
    row.setField(QStringLiteral("NNAME"), m_contact.NNAME);
    row.setField(QStringLiteral("QSLVIA"), m_contact.QSLVIA);
    row.setField(QStringLiteral("bband"), m_contact.bband);
    row.setField(QStringLiteral("ddate"), m_contact.ddate);
    row.setField(QStringLiteral("CONTR"), m_contact.CONTR);
    row.setField(QStringLiteral("ps1"), m_contact.ps1);
    row.setField(QStringLiteral("ttime"), m_contact.ttime);
    row.setField(QStringLiteral("PRF"), m_contact.PRF);
}

/// The parallel row has every field of the main one but the mode: that is how the parallel log is defined.
void Recorder::beginParallelRow()
{
    store::DataSource &row = m_sources.Data15;
    row.addNew();
    row.setField(QStringLiteral("ccall"), m_contact.ccall);
    row.setField(QStringLiteral("rstr"), m_contact.rstr);
    row.setField(QStringLiteral("rsts"), m_contact.rsts);
    row.setField(QStringLiteral("QTH"), m_contact.QTH);
    row.setField(QStringLiteral("NNAME"), m_contact.NNAME);
    row.setField(QStringLiteral("QSLVIA"), m_contact.QSLVIA);
    row.setField(QStringLiteral("bband"), m_contact.bband);
    row.setField(QStringLiteral("ddate"), m_contact.ddate);
    row.setField(QStringLiteral("CONTR"), m_contact.CONTR);
    row.setField(QStringLiteral("ttime"), m_contact.ttime);
    row.setField(QStringLiteral("PRF"), m_contact.PRF);
}

void Recorder::clearEntry()
{
    m_fields.txtcall.clear();
    m_fields.txtqth.clear();
    m_fields.txtname.clear();
    m_fields.txtqslvia.clear();
    m_fields.txtcontr.clear();
    m_fields.txtrstr = m_state.defaultReport;
    m_fields.txtrsts = m_state.defaultReport;
    m_fields.townPanelShown = false;
    m_fields.callbookShown = false;
    m_fields.townHintShown = false;
    m_fields.nameHintShown = false;
}

void Recorder::storeMain(RecordOutcome &outcome)
{
    try {
        if (!m_sources.Data1.addPending())
            beginMainRow();
        m_sources.Data1.update();
        if (m_contact.ccall == m_lastFailedCall) {
            m_emergency.takeBack(); // the line is this station's own; another contact's is never touched
            m_lastFailedCall.clear();
        }
        m_mainMissing = false;
    } catch (const store::Error &error) {
        if (!m_mainMissing && m_contact.ccall == m_lastFailedCall)
            m_emergency.takeBack(); // given back and tried again: once is enough
        if (!m_mainMissing || m_emergencyPath.isEmpty())
            m_emergencyPath = m_emergency.append(forEmergency(m_contact));
        outcome.emergencyFile = m_emergencyPath;
        m_lastFailedCall = m_contact.ccall;
        m_mainMissing = true;
        outcome.notStored = error;
    }
}

void Recorder::storeParallel(RecordOutcome &outcome)
{
    try {
        if (!m_sources.Data15.addPending())
            beginParallelRow();
        m_sources.Data15.refresh();
        m_parallelMissing = false;
    } catch (const store::Error &error) {
        m_parallelMissing = m_sources.Data15.addPending() || m_parallelMissing;
        if (m_parallelMissing)
            outcome.notInParallelLog = error;
        else
            outcome.notShown = error;
    }
}

void Recorder::showDay()
{
    m_sources.Data5.setRecordSource(sql::contactsOfDayAfterRecording(m_fields.txtdate));
    m_sources.Data5.refresh();
}

void Recorder::showResult(RecordOutcome &outcome)
{
    try {
        m_sources.Data1.refresh();
        showDay();
    } catch (const store::Error &error) {
        outcome.notShown = error;
    }
}

RecordOutcome Recorder::cmbadd_Click()
{
    RecordOutcome outcome;
    if (m_fields.txtcall.isEmpty()) {
        try {
            showDay();
        } catch (const store::Error &error) {
            outcome.notShown = error;
        }
        return outcome;
    }
    m_typed = m_fields;
    m_fields.txtqth.truncate(kStoredNameLimit);
    m_fields.txtname.truncate(kStoredNameLimit);
    if (m_state.ownCallKey.isEmpty())
        m_state.ownCallKey = ownCallKey(m_fields.txtNcall);
    m_contact = composed();
    m_mainMissing = false;
    m_parallelMissing = false;
    const bool nameListShown = m_fields.townPanelShown;
    clearEntry();
    // The panel has just been hidden with the rest; what counts is whether the operator had the names before
    // him.
    if (nameListShown) {
        try {
            m_sources.Data10.setRecordSource(sql::allNames());
            m_sources.Data10.refresh();
        } catch (const store::Error &error) {
            outcome.notShown = error;
        }
    }
    storeMain(outcome);
    if (m_state.parallelLog) {
        m_parallelMissing = true;
        if (outcome.notStored)
            return outcome; // first the main row, at the next try
        storeParallel(outcome);
    }
    if (!outcome.notStored)
        showResult(outcome);
    return outcome;
}

RecordOutcome Recorder::retry()
{
    RecordOutcome outcome;
    if (m_mainMissing)
        storeMain(outcome);
    if (!outcome.notStored && m_parallelMissing)
        storeParallel(outcome);
    if (!outcome.notStored)
        showResult(outcome);
    return outcome;
}

void Recorder::giveBack()
{
    m_sources.Data1.cancelUpdate();
    m_sources.Data15.cancelUpdate();
    if (m_mainMissing)
        m_fields = m_typed;
    m_mainMissing = false;
    m_parallelMissing = false;
}

} // namespace logentry
