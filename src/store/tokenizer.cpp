#include "store/tokenizer.h"

#include "store/error.h"

namespace store {

namespace {

bool isNameStart(QChar c)
{
    return c.isLetter() || c == QLatin1Char('_');
}

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

[[noreturn]] void fail(const QString &statement, const QString &why)
{
    throw Error(ErrorKind::BadText, {}, why, statement);
}

/// Reads the text that opens at `at`; leaves `at` after its closing quote.
QString quoted(const QString &statement, qsizetype &at)
{
    const QChar quote = statement[at];
    QString content;
    for (++at; at < statement.size(); ++at) {
        if (statement[at] != quote) {
            content += statement[at];
            continue;
        }
        if (at + 1 < statement.size() && statement[at + 1] == quote) {
            content += quote;
            ++at;
            continue;
        }
        ++at;
        return content;
    }
    fail(statement, QStringLiteral("незакрытая кавычка"));
}

QString bracketed(const QString &statement, qsizetype &at)
{
    const qsizetype close = statement.indexOf(QLatin1Char(']'), at);
    if (close < 0)
        fail(statement, QStringLiteral("незакрытая скобка"));
    QString name = statement.mid(at + 1, close - at - 1);
    at = close + 1;
    return name;
}

} // namespace

QList<Token> tokenize(const QString &statement)
{
    QList<Token> tokens;
    qsizetype at = 0;
    while (at < statement.size()) {
        const QChar c = statement[at];
        if (c.isSpace()) {
            ++at;
            continue;
        }
        Token token;
        token.begin = at;
        if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            token.kind = TokenKind::Text;
            token.text = quoted(statement, at);
        } else if (c == QLatin1Char('[')) {
            token.kind = TokenKind::Name;
            token.text = bracketed(statement, at);
        } else if (isNameStart(c)) {
            token.kind = TokenKind::Name;
            while (at < statement.size() && (isNameStart(statement[at]) || isDigit(statement[at])))
                token.text += statement[at++];
        } else if (isDigit(c)) {
            token.kind = TokenKind::Number;
            while (at < statement.size() && (isDigit(statement[at]) || statement[at] == QLatin1Char('.')))
                token.text += statement[at++];
        } else {
            token.kind = TokenKind::Symbol;
            const QString two = statement.mid(at, 2);
            if (two == QLatin1String("<>") || two == QLatin1String("<=") || two == QLatin1String(">="))
                token.text = two;
            else if (QStringLiteral("=<>(),.*;-+").contains(c))
                token.text = c;
            else
                fail(statement, QStringLiteral("недопустимый знак «%1»").arg(c));
            at += token.text.size();
        }
        token.end = at;
        tokens.append(token);
    }
    tokens.append({TokenKind::End, {}, statement.size(), statement.size()});
    return tokens;
}

} // namespace store
