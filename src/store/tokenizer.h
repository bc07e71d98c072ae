#pragma once

#include <QList>
#include <QString>

namespace store {

enum class TokenKind { Name, Number, Text, Symbol, End };

struct Token {
    TokenKind kind = TokenKind::End;
    QString text;        ///< a name or symbol as written; the content of a text, doubled quotes made single
    qsizetype begin = 0; ///< place in the statement, the quotes of a text included
    qsizetype end = 0;
};

/// Cuts a statement of the windows' dialect into tokens; the last one is End. Texts stand between ' or ".
/// Names may stand in [ ]. Throws Error (BadText) at an unclosed text or a character that is no part of the
/// dialect.
[[nodiscard]] QList<Token> tokenize(const QString &statement);

} // namespace store
