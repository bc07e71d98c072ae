#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace foreign {

/// How the bytes of a text file stand for characters.
enum class TextCoding { Utf8, Utf16Le, Utf16Be, Windows1251, Ibm866, KoiR };

/// What detectCoding() found.
struct DetectedCoding {
    TextCoding coding = TextCoding::Utf8;
    qsizetype mark = 0; ///< length of the byte order mark that the file begins with
};

/// Coding of a whole file. A byte order mark tells; valid UTF-8 is UTF-8 (plain ASCII too, and a file cut off
/// within its last character); anything else is Windows-1251, unless the letters and their case say clearly
/// that it is IBM866 or KOI8-R. A long text in UTF-8 stays so where a few characters are damaged: loggers
/// that cut names by bytes write such files, and in another coding every name of it would be lost.
[[nodiscard]] DetectedCoding detectCoding(QByteArrayView bytes);

/// The best coding of bytes of which it is known that a character is a byte each: Windows-1251, IBM866 or
/// KOI8-R. For names in old databases and sheets.
[[nodiscard]] TextCoding detectByteCoding(QByteArrayView bytes);

/// Name for the operator: "UTF-8", "Windows-1251", "IBM866", "KOI8-R", "UTF-16".
[[nodiscard]] QString codingName(TextCoding coding);

[[nodiscard]] bool isAscii(QByteArrayView bytes) noexcept;

/// Text of a piece of a file. A piece of UTF-8 must not begin or end within a character; what is damaged
/// becomes U+FFFD.
[[nodiscard]] QString decode(QByteArrayView bytes, TextCoding coding);

/// Appends the piece to `target` in UTF-8.
void appendUtf8(QByteArray &target, QByteArrayView bytes, TextCoding coding);

} // namespace foreign
