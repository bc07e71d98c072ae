#pragma once

#include "store/datasource.h"

#include <QList>

namespace logentry {

/// The main window's twenty data sources, under their own names.
class Sources {
public:
    explicit Sources(store::Library &library);

    /// Gives every source its file and its record source, the main log first, and runs each. Gives the errors
    /// of those that could not be opened, one per file; the others work.
    [[nodiscard]] QList<store::Error> open();

    /// Path of the main log, formed at open().
    [[nodiscard]] const QString &mainLogPath() const noexcept { return m_mainLogPath; }
    [[nodiscard]] store::Library &databases() const noexcept { return m_library; }

private:
    void ensureOwnStation();

    store::Library &m_library;
    QString m_mainLogPath;

public:
    store::DataSource Data1;  ///< the row that a new contact is written into
    store::DataSource Data2;  ///< callsigns already worked
    store::DataSource Data3;  ///< country row of the callsign being entered
    store::DataSource Data4;  ///< counts
    store::DataSource Data5;  ///< the grid of contacts
    store::DataSource Data6;  ///< log look-ups
    store::DataSource Data7;  ///< log look-ups
    store::DataSource Data8;  ///< town list
    store::DataSource Data9;  ///< region row of a Russian callsign
    store::DataSource Data10; ///< name list
    store::DataSource Data11; ///< name row
    store::DataSource Data12; ///< callbook row
    store::DataSource Data13; ///< log look-ups
    store::DataSource Data14; ///< transliteration row
    store::DataSource Data15; ///< parallel log row
    store::DataSource Data16; ///< list of worked callsigns
    store::DataSource Data17; ///< town row
    store::DataSource Data18; ///< own station record
    store::DataSource Data19; ///< contacts of a period
    store::DataSource Data20; ///< transliteration row
};

} // namespace logentry
