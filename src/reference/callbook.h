#pragma once

#include "store/datasource.h"

#include <QList>

namespace reference {

/// What the log frame shows of a station. Not stored anywhere.
struct StationInLog {
    QString call;
    QString name;
    QString qth;
    QString qslvia;
};

/// The callbook's window without the window: look-up of a station in log and callbook, making a record.
class Callbook {
public:
    explicit Callbook(store::Library &databases);

    /// Gives every source its file and its record source and runs each; no station is looked up yet. Gives
    /// the errors of those that could not be opened, one per file; the others work.
    [[nodiscard]] QList<store::Error> open();

    /// Looks a callsign up. `known` is emptied, then filled from the contacts with the station: of town, name
    /// and QSL route the last one in the table's order that is not empty counts, each for itself. Record
    /// stands on the callbook's row, or is empty. Throws Error: where the record shown before could not be
    /// saved nothing has changed; otherwise the call stays empty, and what could be read is there.
    void lookUp(const QString &call, StationInLog &known);

    /// Lists the callsigns of the log that begin with a text. Throws Error.
    void listCalls(const QString &text);

    /// Stores a new record with what stands in the log frame, whether there is one already or not. Throws
    /// Error, and then no record has been begun.
    void add(const StationInLog &known);

private:
    void readLog(const QString &call, StationInLog &known);

    store::Library &m_databases;

public:
    store::DataSource Calls;  ///< callsigns of the log
    store::DataSource Log;    ///< contacts with the station
    store::DataSource Record; ///< the station's record in the callbook
};

} // namespace reference
