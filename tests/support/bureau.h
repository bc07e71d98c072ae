#pragma once

#include "qsl/ui/qslburo.h"
#include "support/driven.h"

namespace testsupport {

/// Adds a row to a table: "field=value|field=value".
void addRow(const Installation &in, const QString &fileName, const QString &table, const QString &row);
/// Adds a contact to the log.
void addLog(const Installation &in, const char *row);
/// Adds a contact to the blank.
void addBlank(const Installation &in, const char *row);

/// Countries DL GERMANY, F FRANCE and UA RUSSIAN, regions 3A and 9A, own callsign UA3XYZ (its key is XYZ).
void smallTables(const Installation &in);

/// The same tables and a log of seven contacts, most under the key XYZ.
void bureauContacts(const Installation &in);

/// The bureau window beside the main one.
class Bureau : public WithRig, public Driven {
public:
    /// `readOnly`: the databases' folder must not be written.
    explicit Bureau(const std::function<void(Installation &)> &prepare = smallTables, bool readOnly = false);

    /// Rows of the file, in the order they were stored.
    [[nodiscard]] QStringList log(const char *fields) const;
    [[nodiscard]] QStringList blank(const char *fields = "ccall") const;

    store::Library databases; ///< of the bureau alone where the folder must not be written
    std::unique_ptr<qsl::QSLburo> window;
};

} // namespace testsupport
