#pragma once

#include "store/datasource.h"

#include <QList>

namespace reference {

/// A row as it is typed into the entry frame of the country table.
struct CountryEntry {
    QString prf;
    QString strana;
    QString kont;
    QString iaru; ///< ITU zone
    QString cq;   ///< CQ zone
    QString PREF;
};

/// A country's name as it is stored: the box takes one character more than the table.
[[nodiscard]] QString countryName(const QString &typed);

/// Both codes are needed.
[[nodiscard]] bool canBeAdded(const CountryEntry &entry) noexcept;

/// The country table's window without the window.
class Countries {
public:
    explicit Countries(store::Library &databases);

    /// Gives both sources their file and their record source and runs each. Gives the errors, one per file.
    [[nodiscard]] QList<store::Error> open();

    /// Rows of which the code begins with a text. Throws Error, and then the table stays listed as before at
    /// the next reading.
    void searchPrefix(const QString &text);
    /// Rows of which the country's name begins with a text, in the order in which they were stored.
    void searchName(const QString &text);

    /// Stores a row and marks it as the operator's own; its coordinates stay empty. There is no check for a
    /// row with the same code. Throws Error, and then nothing has been added.
    void add(const CountryEntry &entry);

    store::DataSource Data1; ///< the grid
    store::DataSource Data2; ///< the row that is added

private:
    store::Library &m_databases;
};

} // namespace reference
