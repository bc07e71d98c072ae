#include "store/functions.h"

#include "base/date.h"
#include "base/text.h"
#include "store/sqlite.h"

#include <sqlite3.h>

namespace store {

namespace {

QString argument(sqlite3_value *value)
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_value_text(value));
    if (bytes == nullptr)
        return {};
    return QString::fromUtf8(bytes, sqlite3_value_bytes(value));
}

void giveText(sqlite3_context *context, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    sqlite3_result_text(context, bytes.constData(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
}

void likeFunction(sqlite3_context *context, int, sqlite3_value **arguments)
{
    sqlite3_result_int(context, matchesPattern(argument(arguments[0]), argument(arguments[1])) ? 1 : 0);
}

void foldFunction(sqlite3_context *context, int, sqlite3_value **arguments)
{
    giveText(context, base::foldCase(argument(arguments[0])));
}

void dateFunction(sqlite3_context *context, int, sqlite3_value **arguments)
{
    const auto date = base::parseLogDate(argument(arguments[0]));
    if (date)
        giveText(context, date->toString(u"yyyy-MM-dd"));
    else
        sqlite3_result_null(context);
}

/// Next character of UTF-8 text of one or two bytes a character; 0 for longer ones and for damaged text.
char16_t shortCharacter(const unsigned char *&at, const unsigned char *end)
{
    const unsigned char first = *at++;
    if (first < 0x80)
        return first;
    if (first < 0xC2 || first > 0xDF || at == end || (*at & 0xC0) != 0x80)
        return 0;
    return static_cast<char16_t>((first & 0x1F) << 6 | (*at++ & 0x3F));
}

int russianCollation(void *, int sizeA, const void *a, int sizeB, const void *b)
{
    // A sort of names calls this thousands of times: Latin and Cyrillic are compared where they lie.
    const auto *atA = static_cast<const unsigned char *>(a);
    const auto *atB = static_cast<const unsigned char *>(b);
    const unsigned char *endA = atA + sizeA;
    const unsigned char *endB = atB + sizeB;
    while (atA != endA && atB != endB) {
        const char16_t ca = shortCharacter(atA, endA);
        const char16_t cb = shortCharacter(atB, endB);
        if (ca == 0 || cb == 0)
            return base::compareRussian(QString::fromUtf8(static_cast<const char *>(a), sizeA),
                                        QString::fromUtf8(static_cast<const char *>(b), sizeB));
        const QChar qa(ca);
        const QChar qb(cb);
        if (const int order = ca == cb ? 0 : base::compareRussian(QStringView(&qa, 1), QStringView(&qb, 1)))
            return order;
    }
    return atA == endA ? (atB == endB ? 0 : -1) : 1;
}

/// Whether `c` (folded) is in the set that stands between "[" and "]".
bool inSet(QStringView set, QChar c)
{
    bool negated = false;
    if (!set.isEmpty() && set.front() == QLatin1Char('!')) {
        negated = true;
        set = set.mid(1);
    }
    bool found = false;
    for (qsizetype i = 0; i < set.size(); ++i) {
        const QChar low = set[i].toUpper();
        QChar high = low;
        if (i + 2 < set.size() && set[i + 1] == QLatin1Char('-')) {
            high = set[i + 2].toUpper();
            i += 2;
        }
        found = found || (c >= low && c <= high);
    }
    return found != negated;
}

/// Length of the pattern's first element; `matched` tells whether it takes `c`.
qsizetype element(QStringView pattern, QChar c, bool &matched)
{
    c = c.toUpper();
    const QChar first = pattern.front();
    if (first == QLatin1Char('?')) {
        matched = true;
        return 1;
    }
    if (first == QLatin1Char('#')) {
        matched = c >= QLatin1Char('0') && c <= QLatin1Char('9');
        return 1;
    }
    if (first == QLatin1Char('[')) {
        const qsizetype end = pattern.indexOf(QLatin1Char(']'));
        if (end > 0) {
            matched = inSet(pattern.mid(1, end - 1), c);
            return end + 1;
        }
    }
    matched = first.toUpper() == c;
    return 1;
}

} // namespace

bool matchesPattern(QStringView pattern, QStringView text)
{
    // Greedy with one point of return: linear but for the last "*", so hostile patterns stay harmless.
    qsizetype p = 0;
    qsizetype t = 0;
    qsizetype starPattern = -1;
    qsizetype starText = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == QLatin1Char('*')) {
            starPattern = ++p;
            starText = t;
            continue;
        }
        if (p < pattern.size()) {
            bool matched = false;
            const qsizetype length = element(pattern.mid(p), text[t], matched);
            if (matched) {
                p += length;
                ++t;
                continue;
            }
        }
        if (starPattern < 0)
            return false;
        p = starPattern;
        t = ++starText;
    }
    while (p < pattern.size() && pattern[p] == QLatin1Char('*'))
        ++p;
    return p == pattern.size();
}

QString dateKeyExpression(const QString &column)
{
    QString arms;
    for (const int yearDigits : {2, 4}) {
        for (const int dayDigits : {2, 1}) {
            for (const int monthDigits : {2, 1}) {
                const QString digit = QStringLiteral("[0-9]");
                const QString form = digit.repeated(dayDigits) + u'.' + digit.repeated(monthDigits) + u'.' +
                                     digit.repeated(yearDigits);
                const auto piece = [&](int from, int size) {
                    return QStringLiteral("substr(%1,%2,%3)").arg(column).arg(from).arg(size);
                };
                const auto twoDigits = [&](int from, int size) {
                    return size == 2 ? piece(from, 2) : QStringLiteral("'0'||") + piece(from, 1);
                };
                const int monthAt = dayDigits + 2;
                const int yearAt = monthAt + monthDigits + 1;
                QString iso;
                if (yearDigits == 2)
                    iso = QStringLiteral("CASE WHEN %1<'30' THEN '20' ELSE '19' END||").arg(piece(yearAt, 2));
                iso += QStringLiteral("%1||'-'||%2||'-'||%3")
                           .arg(piece(yearAt, yearDigits), twoDigits(monthAt, monthDigits),
                                twoDigits(1, dayDigits));
                // A moved date turns 31 February into 3 March; only what it leaves alone is a day of the
                // calendar.
                arms +=
                    QStringLiteral(" WHEN %1 GLOB '%2' THEN CASE WHEN date(%3,'+0 days')=(%3) THEN %3 END")
                        .arg(column, form, iso);
            }
        }
    }
    return QStringLiteral("CASE") + arms + QStringLiteral(" END");
}

void registerFunctions(Connection &connection)
{
    sqlite3 *db = connection.handle();
    const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY;
    if (sqlite3_create_function_v2(db, "jet_like", 2, flags, nullptr, likeFunction, nullptr, nullptr,
                                   nullptr) != SQLITE_OK ||
        sqlite3_create_function_v2(db, "ru_fold", 1, flags, nullptr, foldFunction, nullptr, nullptr,
                                   nullptr) != SQLITE_OK ||
        sqlite3_create_function_v2(db, "jet_date", 1, flags, nullptr, dateFunction, nullptr, nullptr,
                                   nullptr) != SQLITE_OK ||
        sqlite3_create_collation_v2(db, "RUSSIAN", SQLITE_UTF8, nullptr, russianCollation, nullptr) !=
            SQLITE_OK)
        throw connection.lastError();
}

} // namespace store
