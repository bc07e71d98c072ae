#include "logentry/callbookrecord.h"

namespace logentry {

namespace {

const QString kCall = QStringLiteral("ccall");
const QString kTown = QStringLiteral("qth");
const QString kName = QStringLiteral("nname");
const QString kRoute = QStringLiteral("qslvia");

} // namespace

CallbookRecord::CallbookRecord(Sources &sources, const EntryFields &fields)
    : m_callbook(sources.Data12), m_fields(fields)
{}

void CallbookRecord::readAgain()
{
    m_callbook.refresh();
}

bool CallbookRecord::isThere()
{
    return !m_callbook.field(kCall).isEmpty();
}

bool CallbookRecord::isOfStation()
{
    return m_callbook.field(kCall).compare(m_fields.txtcall, Qt::CaseInsensitive) == 0;
}

void CallbookRecord::change()
{
    if (!m_fields.txtqth.isEmpty())
        m_callbook.setField(kTown, m_fields.txtqth);
    if (!m_fields.txtname.isEmpty())
        m_callbook.setField(kName, m_fields.txtname);
    m_callbook.setField(kRoute, m_fields.txtqslvia);
    store();
}

void CallbookRecord::add()
{
    m_callbook.addNew();
    m_callbook.setField(kCall, m_fields.txtcall);
    m_callbook.setField(kTown, m_fields.txtqth);
    m_callbook.setField(kName, m_fields.txtname);
    m_callbook.setField(kRoute, m_fields.txtqslvia);
    store();
}

void CallbookRecord::store()
{
    try {
        m_callbook.refresh();
    } catch (const store::Error &) {
        m_callbook.cancelUpdate(); // the next look-up must not store it
        throw;
    }
}

} // namespace logentry
