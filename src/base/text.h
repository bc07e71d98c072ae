#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

namespace base {

/// Code of `c` in the Windows-1251 code page, 0 to 255; -1 for a character that the page has not.
/// Key filters compare these codes ("192 to 255 is a Cyrillic letter"), whatever the platform's own encoding.
[[nodiscard]] int cp1251Code(QChar c) noexcept;

/// The text in Windows-1251, a byte a character; "?" for a character that the page has not.
[[nodiscard]] QByteArray cp1251Bytes(QStringView text);

/// True for the letters that stand at 192 to 255 of Windows-1251: А to я without Ё and ё.
[[nodiscard]] bool isCp1251Cyrillic(QChar c) noexcept;

/// True where one of those letters, or Ё or ё, stands in the text.
[[nodiscard]] bool hasCyrillic(QStringView text) noexcept;

[[nodiscard]] bool isAscii(QStringView text) noexcept;

/// Key under which two texts that differ only in letter case are equal, Cyrillic included. Е and Ё differ.
[[nodiscard]] QString foldCase(QStringView text);

/// Russian alphabetical order without regard to case: negative, 0 or positive. Ё stands right after Е,
/// Latin letters and digits before Cyrillic. 0 exactly where foldCase() gives equal keys.
[[nodiscard]] int compareRussian(QStringView a, QStringView b) noexcept;

/// The text without the blanks at its end.
[[nodiscard]] QStringView withoutTrailingBlanks(QStringView text) noexcept;

} // namespace base
