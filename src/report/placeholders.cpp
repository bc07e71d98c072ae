#include "report/placeholders.h"

#include <algorithm>
#include <array>

namespace report {

namespace {

constexpr qsizetype kShown = 40;             ///< characters of what is refused
constexpr QLatin1String kCallFormat("call"); ///< a route as a callsign, no date

struct Word {
    const char16_t *name;
    Quantity quantity;
};
constexpr std::array<Word, 6> kWords = {{{u"page", Quantity::Page},
                                         {u"pages", Quantity::Pages},
                                         {u"row", Quantity::Row},
                                         {u"rows", Quantity::Rows},
                                         {u"card", Quantity::Card},
                                         {u"cards", Quantity::Cards}}};
constexpr std::array<Word, 6> kOfAField = {{{u"different", Quantity::Different},
                                            {u"filled", Quantity::Filled},
                                            {u"first", Quantity::First},
                                            {u"last", Quantity::Last},
                                            {u"earliest", Quantity::Earliest},
                                            {u"latest", Quantity::Latest}}};

template <std::size_t Size>
const Word *find(const std::array<Word, Size> &words, QStringView name)
{
    const auto found = std::find_if(words.begin(), words.end(), [name](const Word &word) {
        return name.compare(QStringView(word.name), Qt::CaseInsensitive) == 0;
    });
    return found == words.end() ? nullptr : found;
}

bool isName(QStringView text)
{
    return !text.isEmpty() &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c.isLetterOrNumber() || c == u'_'; });
}

/// Day, month, year and what stands between them. The toolkit would take more, and print what it does not
/// know.
bool isDateFormat(QStringView format)
{
    static constexpr std::array<const char16_t *, 7> kParts = {u"d",    u"dd", u"MM",  u"MMM",
                                                               u"MMMM", u"yy", u"yyyy"};
    for (qsizetype i = 0; i < format.size();) {
        if (QStringView(u" ./-,:").contains(format[i])) {
            ++i;
            continue;
        }
        const qsizetype from = i;
        while (i < format.size() && format[i] == format[from])
            ++i;
        const QStringView part = format.mid(from, i - from);
        if (std::none_of(kParts.begin(), kParts.end(),
                         [part](const char16_t *known) { return part == QStringView(known); }))
            return false;
    }
    return true;
}

[[noreturn]] void refuse(QStringView placeholder)
{
    throw TemplateError{QStringLiteral("непонятное поле {%1}").arg(placeholder.left(kShown))};
}

} // namespace

Piece parsePlaceholder(QStringView text, const FieldIndex &fieldIndex)
{
    const QStringView whole = text;
    Piece piece;
    if (const qsizetype colon = text.indexOf(u':'); colon >= 0) {
        piece.text = text.mid(colon + 1).trimmed().toString();
        if (!isDateFormat(piece.text) && piece.text.compare(kCallFormat, Qt::CaseInsensitive) != 0)
            throw TemplateError{QStringLiteral("непонятный вид даты {%1}").arg(text.left(kShown))};
        text = text.first(colon);
    }
    text = text.trimmed();
    if (const Word *word = find(kWords, text)) {
        piece.quantity = word->quantity;
        return piece;
    }
    piece.quantity = Quantity::Field;
    if (const qsizetype blank = text.indexOf(u' '); blank >= 0) {
        const Word *word = find(kOfAField, text.first(blank));
        if (word == nullptr)
            refuse(whole);
        piece.quantity = word->quantity;
        text = text.mid(blank + 1).trimmed();
    }
    QString table;
    if (const qsizetype dot = text.indexOf(u'.'); dot >= 0 && piece.quantity == Quantity::Field) {
        piece.quantity = Quantity::Other;
        table = text.first(dot).toString();
        text = text.mid(dot + 1);
        if (!isName(table))
            refuse(whole);
    }
    if (!isName(text))
        refuse(whole);
    piece.field = fieldIndex(table, text.toString());
    return piece;
}

Template parseTemplate(QStringView text, const FieldIndex &fieldIndex)
{
    Template pieces;
    QString literal;
    const auto flush = [&] {
        if (!literal.isEmpty())
            pieces.append({Quantity::Literal, literal, -1});
        literal.clear();
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'{') {
            literal += text[i];
            continue;
        }
        if (i + 1 < text.size() && text[i + 1] == u'{') {
            literal += text[++i];
            continue;
        }
        const qsizetype close = text.indexOf(u'}', i);
        if (close < 0)
            throw TemplateError{QStringLiteral("нет закрывающей скобки }")};
        flush();
        pieces.append(parsePlaceholder(text.mid(i + 1, close - i - 1), fieldIndex));
        i = close;
    }
    flush();
    return pieces;
}

QList<Condition> parseConditions(QStringView text, const FieldIndex &fieldIndex)
{
    QList<Condition> conditions;
    for (QStringView name : text.split(u',', Qt::SkipEmptyParts)) {
        name = name.trimmed();
        Condition condition;
        condition.negated = name.startsWith(u'!');
        if (condition.negated)
            name = name.mid(1);
        condition.value = parsePlaceholder(name, fieldIndex);
        conditions.append(condition);
    }
    return conditions;
}

} // namespace report
