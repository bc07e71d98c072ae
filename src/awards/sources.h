#pragma once

#include "store/datasource.h"

#include <QList>

namespace awards {

/// The data sources of the awards window, named by what they show.
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
    // The catalogue.
    store::DataSource Countries; ///< that issue awards
    store::DataSource Regions;   ///< codes of Russian regions
    store::DataSource Awards;    ///< of the chosen country or region
    store::DataSource Rules;     ///< row of the chosen award
    store::DataSource Writer;    ///< the row that is added
    store::DataSource Deleting;  ///< the rows of the name that is to go
    store::DataSource Region;    ///< row of the chosen region

    // Picking contacts.
    store::DataSource Prefixes;      ///< list of country prefixes
    store::DataSource RusPrefixes;   ///< list of Russian region prefixes
    store::DataSource PrefixCountry; ///< country of the chosen prefix
    store::DataSource PrefixRegion;  ///< region of the chosen prefix
    store::DataSource Calls;         ///< callsigns worked
    store::DataSource Station;       ///< contacts with one station
    store::DataSource Callbook;      ///< what the callbook knows of the station
    store::DataSource Lookup;        ///< the contact for an entry of the selection list
    store::DataSource Blank;         ///< contacts chosen for the application
};

} // namespace awards
