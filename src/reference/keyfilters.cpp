#include "reference/keyfilters.h"

namespace reference {

namespace {

bool isDigit(QChar c) noexcept
{
    return c >= u'0' && c <= u'9';
}

} // namespace

QChar codeKey(QChar typed, qsizetype length, qsizetype most) noexcept
{
    const QChar upper = typed.toUpper();
    const bool allowed = isDigit(upper) || (upper >= u'A' && upper <= u'Z');
    return allowed && (most == kNoLimit || length < most) ? upper : QChar();
}

QChar zoneKey(QChar typed) noexcept
{
    return isDigit(typed) ? typed : QChar();
}

QChar countryCellKey(QStringView field, QChar typed, qsizetype length) noexcept
{
    constexpr qsizetype kCallsign = 12; // of expeditions that have no prefix of their own
    constexpr qsizetype kName = 14;
    constexpr qsizetype kContinent = 3;
    constexpr qsizetype kPrefix = 5;
    if (field == u"prf")
        return typed == u'/' && length < kCallsign ? typed : codeKey(typed, length, kCallsign);
    if (field == u"strana")
        return typed == u' ' && length < kName ? typed : codeKey(typed, length, kName);
    if (field == u"kont")
        return codeKey(typed, length, kContinent);
    if (field == u"PREF")
        return codeKey(typed, length, kPrefix);
    if (field == u"iaru" || field == u"cq")
        return zoneKey(typed);
    if (typed == u'.')
        return u','; // numbers have a decimal comma
    return typed == u',' || typed == u'-' ? typed : zoneKey(typed);
}

QChar callbookKey(QChar typed, qsizetype length, qsizetype most, Capitals capitals) noexcept
{
    if (most != kNoLimit && length >= most)
        return {};
    const bool upper = capitals == Capitals::All || (capitals == Capitals::First && length == 0);
    return upper ? typed.toUpper() : typed;
}

} // namespace reference
