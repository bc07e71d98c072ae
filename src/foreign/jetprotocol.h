#pragma once

#include <cstdint>

/// What the reading program of old databases writes on its standard output, and what its caller takes from
/// it.
///
/// The stream is kMagic, then frames: length of the payload (32 bits), type (8 bits), payload. All numbers
/// are little-endian. A text is its length in bytes (32 bits) and its bytes, UTF-8.
///
///  * File: Jet version (8 bits, 3 or 4), code page of the header, code page used (16 bits each; 0 in Jet 4).
///  * Table, one per table: name, rows that the file claims (32 bits), 1 where the definition cannot be read
///    (8 bits), number of columns (16 bits), per column its type and width (8, 16 bits) and its name.
///  * Begin: number of the table whose rows follow, from 0 (16 bits).
///  * Row: per column one value: its kind (8 bits) and what the kind says.
///  * End of a table: rows written, rows that stand in the file but cannot be read (32 bits each), 1 where
///    pages are missing or wrong (8 bits).
///  * Done: number of all rows (64 bits). A stream without it was cut off.
///  * Failure: one of the reasons below (8 bits); nothing follows.
namespace foreign::jet {

inline constexpr char kMagic[] = "ZHJET01\n";
inline constexpr std::uint32_t kMagicSize = 8;
inline constexpr std::uint32_t kFrameHeadSize = 5;
/// No frame is longer: the longest row of a file that the reader accepts.
inline constexpr std::uint32_t kLongestFrame = 512U * 1024U * 1024U;

enum class Frame : std::uint8_t {
    File = 'F',
    Table = 'T',
    Begin = 'B',
    Row = 'R',
    End = 'E',
    Done = 'Z',
    Failure = 'X',
};

enum class Failure : std::uint8_t {
    CannotOpen = 1,
    NotJet = 2,   ///< also a newer format
    Catalog = 3,  ///< the list of tables is damaged
    CodePage = 4, ///< no such code page
};

/// Type of a column, as in the file.
enum class ColumnType : std::uint8_t {
    Boolean = 1,
    Byte = 2,
    Short = 3,
    Long = 4,
    Money = 5,
    Single = 6,
    Double = 7,
    Date = 8,
    Binary = 9,
    Text = 10,
    Ole = 11,
    Memo = 12,
    Guid = 15,
    Numeric = 16,
};

/// What a value is, and what follows the byte that says so.
enum class ValueKind : std::uint8_t {
    Null = 0,
    Boolean = 1, ///< 8 bits
    Integer = 2, ///< 64 bits
    Single = 3,  ///< 32 bits of the number
    Double = 4,  ///< 64 bits of the number
    Date = 5,    ///< the same; days since 1899-12-30, the time of day is the absolute value of the fraction
    Money = 6,   ///< 64 bits, ten-thousandths
    Decimal = 7, ///< text: digits, a "-" in front, a "." inside
    Text = 8,    ///< text
    Binary = 9,  ///< length and bytes
    Guid = 10,   ///< 16 bytes as in the file
};

} // namespace foreign::jet
