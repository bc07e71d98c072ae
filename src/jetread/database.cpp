#include "jetread/database.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>

namespace jetread {

namespace {

constexpr unsigned kGone = 0x8000;
constexpr unsigned kPointer = 0x4000;
constexpr unsigned kOffsetMask = 0x1fff;
constexpr unsigned long kCatalogPage = 2;
constexpr unsigned long kSystemObject = 0x80000002UL;
constexpr std::uint32_t kInline = 0x80000000U;
constexpr std::uint32_t kOnePiece = 0x40000000U;
constexpr std::uint32_t kLengthMask = 0x3fffffffU;
constexpr unsigned kReferenceSize = 12;
constexpr unsigned kPlaceSize = 4;

std::uint32_t number32(std::string_view bytes, std::size_t at)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value |= std::uint32_t{static_cast<unsigned char>(bytes[at + i])} << (8 * i);
    return value;
}

unsigned number16(const unsigned char *bytes)
{
    return bytes[0] | (unsigned{bytes[1]} << 8);
}

int fieldNumber(std::string_view bytes, std::size_t size)
{
    if (bytes.size() < size)
        return 0;
    return size == 2
               ? static_cast<std::int16_t>(number16(reinterpret_cast<const unsigned char *>(bytes.data())))
               : static_cast<int>(number32(bytes, 0));
}

int columnIndex(const MdbTableDef *definition, const char *name)
{
    for (unsigned i = 0; i < definition->num_cols; ++i) {
        const auto *column = static_cast<const MdbColumn *>(g_ptr_array_index(definition->columns, i));
        if (g_ascii_strcasecmp(column->name, name) == 0)
            return static_cast<int>(i);
    }
    return -1;
}

/// What remains of a table that was deleted and not yet cleared away.
bool isRemnant(const std::string &name)
{
    return g_ascii_strncasecmp(name.c_str(), "~TMPCLP", 7) == 0;
}

} // namespace

Database::Database(const std::string &path, int codePage)
{
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return;
    m_fileSize = static_cast<std::uint64_t>(status.st_size);
    if (codePage != 0) // names of tables and columns are decoded by the library
        ::setenv("MDB_JET3_CHARSET", codePageName(codePage).c_str(), 1);
    m_mdb = mdb_open(path.c_str(), MDB_NOFLAGS);
    if (m_mdb == nullptr)
        return;
    if (!jet3()) {
        m_decoder = std::make_unique<UnicodeDecoder>();
        return;
    }
    constexpr int kWestern = 1252; // what the library takes where the header names none
    m_codePage = codePage != 0 ? codePage : headerCodePage() != 0 ? headerCodePage() : kWestern;
    auto decoder = std::make_unique<CodePageDecoder>(m_codePage);
    if (decoder->known())
        m_decoder = std::move(decoder);
}

MdbCatalogEntry *Database::makeEntry(const char *name, unsigned long page) const
{
    auto *entry = g_new0(MdbCatalogEntry, 1);
    entry->mdb = m_mdb;
    entry->object_type = MDB_TABLE;
    entry->table_pg = page;
    g_strlcpy(entry->object_name, name, sizeof entry->object_name);
    return entry;
}

/// The library uses the parts of a definition without a look at whether they are there.
MdbTableDef *Database::readDefinition(MdbCatalogEntry *entry)
{
    const std::uint64_t pages = m_fileSize / static_cast<std::uint64_t>(m_mdb->fmt->pg_size);
    if (entry->table_pg == 0 || entry->table_pg >= pages)
        return nullptr;
    MdbTableDef *definition = mdb_read_table(entry);
    if (definition == nullptr || definition->usage_map == nullptr || definition->map_sz == 0 ||
        definition->num_cols == 0 || definition->num_cols > MDB_MAX_COLS)
        return nullptr;
    if (mdb_read_columns(definition) == nullptr || definition->columns == nullptr ||
        definition->columns->len != definition->num_cols)
        return nullptr;
    return definition;
}

std::optional<std::vector<Table>> Database::tables()
{
    MdbTableDef *catalog = readDefinition(makeEntry("MSysObjects", kCatalogPage));
    if (catalog == nullptr)
        return std::nullopt;
    const int id = columnIndex(catalog, "Id");
    const int name = columnIndex(catalog, "Name");
    const int type = columnIndex(catalog, "Type");
    const int flags = columnIndex(catalog, "Flags");
    if (id < 0 || name < 0 || type < 0 || flags < 0)
        return std::nullopt;
    struct Found {
        std::string name;
        unsigned long page;
    };
    std::vector<Found> found;
    const Table list{"MSysObjects", catalog, catalog->num_rows};
    const TableEnd end = readRows(list, [&](const std::vector<MdbField> &fields) {
        const auto number = [&](int column, std::size_t size) {
            return fieldNumber(field(fields[static_cast<std::size_t>(column)]), size);
        };
        constexpr int kKindMask = 0x7f;
        constexpr unsigned kPageMask = 0xffffff;
        if ((number(type, 2) & kKindMask) != MDB_TABLE ||
            (static_cast<std::uint32_t>(number(flags, 4)) & kSystemObject) != 0)
            return true;
        Found table{{}, static_cast<std::uint32_t>(number(id, 4)) & kPageMask};
        decode(field(fields[static_cast<std::size_t>(name)]), table.name);
        if (!isRemnant(table.name))
            found.push_back(table);
        return true;
    });
    if (end.damaged || end.unreadable != 0 || end.rows == 0 || end.rows < list.claimedRows)
        return std::nullopt;
    std::vector<Table> tables;
    for (const Found &one : found) {
        Table table{one.name, readDefinition(makeEntry(one.name.c_str(), one.page)), 0};
        if (table.definition != nullptr)
            table.claimedRows = table.definition->num_rows;
        tables.push_back(table);
    }
    return tables;
}

unsigned Database::slotCount(const unsigned char *page) const
{
    return number16(page + m_mdb->fmt->row_count_offset);
}

/// Rows fill a page from its end; each ends where the one before it begins.
std::optional<Slot> Database::slot(const unsigned char *page, unsigned row) const
{
    const unsigned size = static_cast<unsigned>(m_mdb->fmt->pg_size);
    const unsigned table = m_mdb->fmt->row_count_offset + 2U;
    const unsigned rows = slotCount(page);
    const unsigned tableEnd = table + (2 * rows);
    if (row >= rows || tableEnd > size)
        return std::nullopt;
    const unsigned char *entries = page + table;
    const unsigned entry = number16(entries + (std::size_t{2} * row));
    const unsigned end = row == 0 ? size : number16(entries + (std::size_t{2} * (row - 1))) & kOffsetMask;
    Slot slot;
    slot.start = entry & kOffsetMask;
    slot.gone = (entry & kGone) != 0;
    slot.pointer = (entry & kPointer) != 0;
    if (slot.start < tableEnd || slot.start > end || end > size)
        return std::nullopt;
    slot.size = end - slot.start;
    return slot;
}

/// A piece of a long value, by page and row. It lies in the second page buffer.
std::optional<std::string_view> Database::pieceElsewhere(std::uint32_t place)
{
    if (mdb_read_alt_pg(m_mdb, place >> 8) != m_mdb->fmt->pg_size || m_mdb->alt_pg_buf[0] != MDB_PAGE_DATA)
        return std::nullopt;
    const auto at = slot(m_mdb->alt_pg_buf, place & 0xff);
    if (!at || at->pointer)
        return std::nullopt;
    return std::string_view(reinterpret_cast<const char *>(m_mdb->alt_pg_buf) + at->start, at->size);
}

bool Database::longValue(std::string_view reference, std::string &bytes)
{
    bytes.clear();
    if (reference.size() < kReferenceSize)
        return reference.empty();
    const std::uint32_t head = number32(reference, 0);
    const std::uint32_t length = head & kLengthMask;
    if ((head & kInline) != 0) {
        bytes.assign(reference.substr(kReferenceSize));
        return bytes.size() == length;
    }
    if (length > m_fileSize)
        return false;
    std::uint32_t place = number32(reference, 4);
    if ((head & kOnePiece) != 0) {
        const auto piece = pieceElsewhere(place);
        if (!piece || piece->size() != length)
            return false;
        bytes.assign(*piece);
    }
    while ((head & kOnePiece) == 0 && place != 0) {
        const auto piece = pieceElsewhere(place);
        // A piece without bytes would let a circle go on for ever.
        if (!piece || piece->size() <= kPlaceSize || bytes.size() + piece->size() - kPlaceSize > length)
            return false;
        bytes.append(piece->substr(kPlaceSize));
        place = number32(*piece, 0);
    }
    m_longBytes += bytes.size();
    return bytes.size() == length && m_longBytes <= m_fileSize;
}

std::string_view Database::field(const MdbField &field) const
{
    if (field.is_null != 0 || field.siz <= 0)
        return {};
    return {reinterpret_cast<const char *>(m_mdb->pg_buf) + field.start, static_cast<std::size_t>(field.siz)};
}

/// Puts the page to which a row has moved in the place of the current one.
bool Database::fetchMovedRow(Slot &at, unsigned long owner)
{
    constexpr int kMostMoves = 8;
    for (int i = 0; i < kMostMoves && at.pointer; ++i) {
        if (at.size < kPlaceSize)
            return false;
        const std::string_view place(reinterpret_cast<const char *>(m_mdb->pg_buf) + at.start, kPlaceSize);
        const std::uint32_t there = number32(place, 0);
        if (!m_farEnds.insert(there).second || mdb_read_alt_pg(m_mdb, there >> 8) != m_mdb->fmt->pg_size ||
            m_mdb->alt_pg_buf[0] != MDB_PAGE_DATA ||
            static_cast<unsigned long>(mdb_get_int32(m_mdb->alt_pg_buf, 4)) != owner)
            return false;
        const auto found = slot(m_mdb->alt_pg_buf, there & 0xff);
        if (!found)
            return false;
        std::memcpy(m_mdb->pg_buf, m_mdb->alt_pg_buf, sizeof m_mdb->pg_buf);
        at = *found;
    }
    return !at.pointer && at.size > 0;
}

bool Database::crack(MdbTableDef *definition, const Slot &at, std::vector<MdbField> &fields)
{
    std::fill(fields.begin(), fields.end(), MdbField{});
    if (mdb_crack_row(definition, static_cast<int>(at.start), at.size, fields.data()) < 0)
        return false;
    const long first = at.start;
    const long end = first + at.size;
    return std::all_of(fields.begin(), fields.begin() + definition->num_cols, [&](const MdbField &field) {
        return field.is_null != 0 || field.siz == 0 ||
               (field.siz > 0 && field.start >= first && long{field.start} + field.siz <= end);
    });
}

void Database::readPage(MdbTableDef *definition, const RowHandler &handle, std::vector<MdbField> &fields,
                        TableEnd &end)
{
    const unsigned rows = slotCount(m_mdb->pg_buf);
    if (m_mdb->fmt->row_count_offset + 2U + (2 * rows) > static_cast<unsigned>(m_mdb->fmt->pg_size)) {
        end.damaged = true;
        return;
    }
    unsigned char page[MDB_PGSIZE];
    std::memcpy(page, m_mdb->pg_buf, sizeof page);
    for (unsigned row = 0; row < rows; ++row) {
        auto at = slot(page, row);
        if (at && at->gone)
            continue;
        const bool moved = at && at->pointer;
        if (at && (!moved || fetchMovedRow(*at, definition->entry->table_pg)) && at->size > 0 &&
            crack(definition, *at, fields) && handle(fields))
            ++end.rows;
        else
            ++end.unreadable;
        if (moved)
            std::memcpy(m_mdb->pg_buf, page, sizeof page);
    }
}

/// Numbers of the pages that the table's map marks, ascending. The map is a bitmap in the definition itself,
/// or a list of pages full of bits.
std::vector<std::uint32_t> Database::markedPages(const MdbTableDef *definition)
{
    const std::string_view map(reinterpret_cast<const char *>(definition->usage_map), definition->map_sz);
    const std::uint64_t pageSize = static_cast<std::uint64_t>(m_mdb->fmt->pg_size);
    const std::uint64_t pages = m_fileSize / pageSize;
    std::vector<std::uint32_t> marked;
    const auto addBits = [&](std::string_view bits, std::uint64_t first) {
        for (std::uint64_t i = 0; i < bits.size() * 8 && first + i < pages; ++i)
            if (((static_cast<unsigned char>(bits[i / 8]) >> (i % 8)) & 1U) != 0)
                marked.push_back(static_cast<std::uint32_t>(first + i));
    };
    constexpr std::size_t kInlineHead = 5;
    constexpr std::size_t kPageHead = 4;
    if (map[0] == 0 && map.size() > kInlineHead) {
        addBits(map.substr(kInlineHead), number32(map, 1));
    } else if (map[0] == 1) {
        const std::uint64_t perPage = (pageSize - kPageHead) * 8;
        for (std::size_t i = 0; 1 + (4 * (i + 1)) <= map.size(); ++i) {
            const std::uint32_t page = number32(map, 1 + (4 * i));
            if (page == 0 || mdb_read_alt_pg(m_mdb, page) != m_mdb->fmt->pg_size)
                continue;
            const std::string_view bytes(reinterpret_cast<const char *>(m_mdb->alt_pg_buf), pageSize);
            addBits(bytes.substr(kPageHead), i * perPage);
        }
    }
    return marked;
}

TableEnd Database::readRows(const Table &table, const RowHandler &handle)
{
    TableEnd end;
    MdbTableDef *definition = table.definition;
    std::vector<MdbField> fields(definition->num_cols + 1);
    m_farEnds.clear();
    const std::vector<std::uint32_t> pages = markedPages(definition);
    for (const std::uint32_t page : pages)
        if (mdb_read_pg(m_mdb, page) == m_mdb->fmt->pg_size && m_mdb->pg_buf[0] == MDB_PAGE_DATA &&
            static_cast<unsigned long>(mdb_get_int32(m_mdb->pg_buf, 4)) == definition->entry->table_pg)
            readPage(definition, handle, fields, end);
    return end;
}

} // namespace jetread
