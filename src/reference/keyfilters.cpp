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

QChar callbookKey(QChar typed, qsizetype length, qsizetype most, Capitals capitals) noexcept
{
    if (most != kNoLimit && length >= most)
        return {};
    const bool upper = capitals == Capitals::All || (capitals == Capitals::First && length == 0);
    return upper ? typed.toUpper() : typed;
}

} // namespace reference
