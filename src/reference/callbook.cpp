#include "reference/callbook.h"

#include "reference/sql.h"
#include "store/opening.h"

#include <optional>

namespace reference {

Callbook::Callbook(store::Library &databases)
    : m_databases(databases), Calls(QStringLiteral("Calls"), databases),
      Log(QStringLiteral("Log"), databases), Record(QStringLiteral("Record"), databases)
{}

QList<store::Error> Callbook::open()
{
    const QString log = m_databases.path(u"\\dbiaru.mdb");
    Calls.setDatabaseName(log);
    Log.setDatabaseName(log);
    Record.setDatabaseName(m_databases.path(u"\\dbcalbuk.mdb"));
    Calls.setRecordSource(sql::allCalls());
    // No station yet: a whole table would show its first row in the boxes.
    Log.setRecordSource(sql::stationInLog({}));
    Record.setRecordSource(sql::noRecord());
    Record.setFirstPage(1);
    return store::refreshEach({&Calls, &Log, &Record});
}

void Callbook::readLog(const QString &call, StationInLog &known)
{
    store::requery(Log, sql::stationInLog(call), sql::stationInLog({}));
    known.call = call;
    for (; !Log.eof(); Log.moveNext()) {
        const auto take = [this](QString &target, const char *field) {
            if (const QString text = Log.field(QLatin1String(field)); !text.isEmpty())
                target = text;
        };
        take(known.qth, "qth");
        take(known.name, "nname");
        take(known.qslvia, "qslvia");
    }
}

void Callbook::lookUp(const QString &call, StationInLog &known)
{
    Record.update();
    known = {};
    std::optional<store::Error> failure;
    const auto attempt = [&failure](const auto &operation) {
        try {
            operation();
        } catch (const store::Error &error) {
            failure = error;
        }
    };
    attempt([&] { readLog(call, known); });
    // Whatever became of the log: the boxes must not go on showing another station's record.
    attempt([&] { store::requery(Record, sql::callbookRecord(call), sql::noRecord()); });
    if (!failure)
        return;
    known.call.clear(); // no record is made of a station that could not be looked up
    throw store::Error(*failure);
}

void Callbook::listCalls(const QString &text)
{
    store::requery(Calls, sql::callsFrom(text), sql::allCalls());
}

void Callbook::add(const StationInLog &known)
{
    Record.addNew();
    Record.setField(QStringLiteral("ccall"), known.call);
    Record.setField(QStringLiteral("qth"), known.qth);
    Record.setField(QStringLiteral("nname"), known.name);
    Record.setField(QStringLiteral("qslvia"), known.qslvia);
    try {
        Record.refresh();
    } catch (const store::Error &) {
        Record.cancelUpdate();
        throw;
    }
}

} // namespace reference
