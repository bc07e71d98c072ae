#pragma once

#include "jetread/database.h"
#include "jetread/output.h"

namespace jetread {

/// Turns the fields of rows into values of the stream.
class ValueWriter {
public:
    explicit ValueWriter(Database &database) : m_database(database) {}

    /// False where the field cannot be what its column says.
    [[nodiscard]] bool write(const MdbColumn &column, const MdbField &field, Payload &payload);

private:
    [[nodiscard]] static bool writeFixed(int type, std::string_view bytes, Payload &payload);
    [[nodiscard]] static bool writeNumeric(const MdbColumn &column, std::string_view bytes, Payload &payload);

    Database &m_database;
    std::string m_long;
    std::string m_text;
};

} // namespace jetread
