#pragma once

#include "jetread/text.h"

#include <glib.h> // first: the next header includes it inside extern "C"

#include <mdbtools.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace jetread {

/// Bytes of a value that stands on a page, good until the next page is read.
struct Slot {
    unsigned start = 0; ///< offset in the page
    unsigned size = 0;
    bool gone = false;    ///< deleted, or the far end of a moved row
    bool pointer = false; ///< holds the place to which the row has moved
};

/// A table of the file with what can be said about it before its rows are read.
struct Table {
    std::string name;                  ///< UTF-8
    MdbTableDef *definition = nullptr; ///< null where it cannot be read
    std::uint32_t claimedRows = 0;

    [[nodiscard]] std::size_t columnCount() const { return definition ? definition->num_cols : 0; }
    [[nodiscard]] const MdbColumn &column(std::size_t i) const
    {
        return *static_cast<const MdbColumn *>(g_ptr_array_index(definition->columns, i));
    }
};

/// How the rows of a table ended.
struct TableEnd {
    std::uint32_t rows = 0;
    std::uint32_t unreadable = 0;
    bool damaged = false; ///< pages that cannot be right; rows may be missing
};

/// One old database, open for reading. Pages, tables and rows only; nothing here trusts what the file says.
/// What the library under it allocates is left to the end of the process.
class Database {
public:
    /// `codePage` reads the texts of a Jet 3 file in another code page than its header names; 0 does not.
    Database(const std::string &path, int codePage);
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;
    ~Database() = default;

    [[nodiscard]] bool isOpen() const noexcept { return m_mdb != nullptr; }
    [[nodiscard]] bool jet3() const noexcept { return m_mdb->f->jet_version == MDB_VER_JET3; }
    [[nodiscard]] bool jet4() const noexcept { return m_mdb->f->jet_version == MDB_VER_JET4; }
    [[nodiscard]] int headerCodePage() const noexcept { return jet3() ? m_mdb->f->code_page : 0; }
    [[nodiscard]] int usedCodePage() const noexcept { return m_codePage; }
    [[nodiscard]] bool codePageKnown() const noexcept { return m_decoder != nullptr; }

    /// The operator's tables; nothing where the list of tables is damaged.
    [[nodiscard]] std::optional<std::vector<Table>> tables();

    /// One row: the fields of the library, in the order of the table's columns, on the current page.
    using RowHandler = std::function<bool(const std::vector<MdbField> &fields)>;
    /// Calls `handle` for each living row, once, in the order of the row slots. False from it counts the row
    /// as unreadable.
    TableEnd readRows(const Table &table, const RowHandler &handle);

    /// Bytes of a field on the current page.
    [[nodiscard]] std::string_view field(const MdbField &field) const;
    /// Bytes of a memo or OLE field: inline, elsewhere, or a chain of pieces. False where they are not all
    /// there.
    [[nodiscard]] bool longValue(std::string_view reference, std::string &bytes);
    void decode(std::string_view raw, std::string &utf8) { m_decoder->decode(raw, utf8); }

private:
    [[nodiscard]] MdbTableDef *readDefinition(MdbCatalogEntry *entry);
    [[nodiscard]] MdbCatalogEntry *makeEntry(const char *name, unsigned long page) const;
    [[nodiscard]] std::optional<Slot> slot(const unsigned char *page, unsigned row) const;
    [[nodiscard]] unsigned slotCount(const unsigned char *page) const;
    [[nodiscard]] std::optional<std::string_view> pieceElsewhere(std::uint32_t place);
    [[nodiscard]] bool fetchMovedRow(Slot &at, unsigned long owner);
    [[nodiscard]] bool crack(MdbTableDef *definition, const Slot &at, std::vector<MdbField> &fields);
    [[nodiscard]] std::vector<std::uint32_t> markedPages(const MdbTableDef *definition);
    void readPage(MdbTableDef *definition, const RowHandler &handle, std::vector<MdbField> &fields,
                  TableEnd &end);

    MdbHandle *m_mdb = nullptr;
    int m_codePage = 0;
    std::unique_ptr<TextDecoder> m_decoder;
    std::uint64_t m_fileSize = 0;
    std::uint64_t m_longBytes = 0; ///< of long values so far; they share no bytes, so never beyond the file
    std::set<std::uint32_t> m_farEnds; ///< moved rows read so far
};

} // namespace jetread
