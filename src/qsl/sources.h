#pragma once

#include "store/datasource.h"

#include <QList>

namespace qsl {

/// The bureau's fourteen data sources, under their own names.
class Sources {
public:
    explicit Sources(store::Library &databases);

    /// Gives every source its file and its record source and runs each. Gives the errors of those that could
    /// not be opened, one per file; the others work.
    [[nodiscard]] QList<store::Error> open();

    [[nodiscard]] const QString &logPath() const noexcept { return m_logPath; }
    [[nodiscard]] store::Library &databases() const noexcept { return m_databases; }

private:
    store::Library &m_databases;
    QString m_logPath;

public:
    store::DataSource Data1;  ///< the grid of contacts
    store::DataSource Data2;  ///< country look-ups
    store::DataSource Data3;  ///< the blank: contacts chosen for cards
    store::DataSource Data4;  ///< counts per band
    store::DataSource Data5;  ///< the log row that is entered by hand
    store::DataSource Data6;  ///< list of callsigns
    store::DataSource Data7;  ///< list of country prefixes
    store::DataSource Data8;  ///< list of region prefixes
    store::DataSource Data9;  ///< name of the region
    store::DataSource Data10; ///< the contact being marked
    store::DataSource Data11; ///< callbook row
    store::DataSource Data12; ///< counts of the whole log
    store::DataSource Data13; ///< own station record
    store::DataSource Data14; ///< sender lines
};

} // namespace qsl
