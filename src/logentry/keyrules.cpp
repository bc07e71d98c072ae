#include "logentry/keyrules.h"

#include "base/text.h"
#include "logentry/sql.h"

namespace logentry {

namespace {

/// Codes up to 26 are control keys and pass every filter.
bool isControlKey(QChar c)
{
    constexpr int kLastControl = 26;
    const int code = base::cp1251Code(c);
    return code >= 0 && code <= kLastControl;
}

TypedKey only(QChar c, QStringView allowed)
{
    if (isControlKey(c) || allowed.contains(c))
        return {c, false};
    return {};
}

} // namespace

const QString &callsignCharacters()
{
    static const QString characters = QStringLiteral("0123456789ASDFGHJKLQWERTYUIOPZXCVBNM/");
    return characters;
}

TypedKey callsignKey(QChar typed, qsizetype length, store::DataSource &transliteration)
{
    TypedKey key{typed.toUpper(), false};
    if (isControlKey(key.character))
        return key;
    if (base::isCp1251Cyrillic(key.character)) {
        transliteration.setRecordSource(sql::latinOfKey(key.character));
        transliteration.refresh();
        const QString latin = transliteration.field(QStringLiteral("engl")).toUpper();
        key.character = latin.isEmpty() ? QChar() : latin.front();
        key.switchLayout = true;
    }
    if (key.character.isNull() || !callsignCharacters().contains(key.character) || length >= kCallsignLimit)
        key.character = QChar();
    return key;
}

TypedKey reportKey(QChar typed)
{
    return only(typed, u"0123456789");
}

TypedKey hemisphereKey(QChar typed, QStringView letters)
{
    return only(typed.toUpper(), letters);
}

TypedKey upperKey(QChar typed)
{
    return {typed.toUpper(), false};
}

} // namespace logentry
