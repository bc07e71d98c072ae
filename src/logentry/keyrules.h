#pragma once

#include "store/datasource.h"

#include <QChar>
#include <QString>

namespace logentry {

inline constexpr int kCallsignLimit = 13;
inline constexpr int kStoredNameLimit = 13; ///< town and name are cut to this when recorded

[[nodiscard]] const QString &callsignCharacters();

/// What becomes of a typed character.
struct TypedKey {
    QChar character;           ///< null: the key is swallowed
    bool switchLayout = false; ///< it came from the Cyrillic layout and the Latin one is wanted
};

/// Key filter of the callsign and QSL route fields: upper case, Cyrillic keys become the Latin letters of the
/// same keys through the transliteration source, anything but callsign characters is swallowed, and
/// everything once `length` characters fill the field.
[[nodiscard]] TypedKey callsignKey(QChar typed, qsizetype length, store::DataSource &transliteration);

/// Reports take digits only.
[[nodiscard]] TypedKey reportKey(QChar typed);

/// Hemisphere boxes: upper case, one of two letters.
[[nodiscard]] TypedKey hemisphereKey(QChar typed, QStringView letters);

/// Every key is turned into its upper-case form.
[[nodiscard]] TypedKey upperKey(QChar typed);

} // namespace logentry
