#include "store/dialect.h"

#include "base/date.h"
#include "base/text.h"
#include "store/functions.h"
#include "store/schema.h"
#include "store/tokenizer.h"

#include <utility>

namespace store {

namespace {

/// A piece of a condition on its way to SQLite.
struct Operand {
    enum class Kind {
        Column,       ///< a field of the table
        Literal,      ///< a text between quotes
        Length,       ///< len(...)
        Middle,       ///< mid(...)
        DateKey,      ///< a stored date as "yyyy-mm-dd"
        DateArgument, ///< a typed date; `text` is its key or empty for null
        Other         ///< a number or another expression
    };
    Kind kind = Kind::Other;
    QString sql;
    Values arguments;
    QString text; ///< content of a literal, name of a column or of the one whose length or part it is
};

struct Condition {
    QString sql;
    Values arguments;
    /// Conditions that exclude each other and together are this one; empty where it was not parted.
    QList<SelectBranch> branches = {};
    /// The length that this condition finds to be 0; empty for any other condition.
    QString noLength = {};
};

/// Both conditions; parted where one of them is, as long as the parts stay few.
Condition both(const Condition &left, const Condition &right)
{
    constexpr qsizetype kMostBranches = 6;
    Condition result{left.sql + QStringLiteral(" AND ") + right.sql, left.arguments + right.arguments};
    if (left.branches.isEmpty() && right.branches.isEmpty())
        return result;
    const auto parts = [](const Condition &of) {
        return of.branches.isEmpty() ? QList<SelectBranch>{{of.sql, of.arguments}} : of.branches;
    };
    const QList<SelectBranch> first = parts(left);
    const QList<SelectBranch> second = parts(right);
    if (first.size() * second.size() > kMostBranches)
        return result;
    for (const SelectBranch &a : first)
        for (const SelectBranch &b : second)
            result.branches.append({a.where + QStringLiteral(" AND ") + b.where, a.arguments + b.arguments});
    return result;
}

/// Only other programs write nulls.
const QString kIsNull = QStringLiteral("unlikely(%1 IS NULL)");
const QString kFoldedColumn = QStringLiteral("ru_fold(ifnull(%1,''))");

class Parser {
public:
    explicit Parser(const SqlText &source) : m_source(source), m_tokens(tokenize(source.toString()))
    {
        for (const SqlText::Span &span : source.values())
            if (!insideText(span))
                fail(QStringLiteral("значение нарушает выражение"));
    }

    [[nodiscard]] bool atKeyword(const char *word) const
    {
        return peek().kind == TokenKind::Name &&
               peek().text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
    }
    bool takeKeyword(const char *word)
    {
        if (!atKeyword(word))
            return false;
        ++m_at;
        return true;
    }
    void needKeyword(const char *word)
    {
        if (!takeKeyword(word))
            fail(QStringLiteral("ожидалось «%1»").arg(QLatin1String(word)));
    }

    SelectQuery select();
    DeleteCommand deletion();
    InsertCommand insertion();
    void end();

    [[noreturn]] void fail(const QString &why) const
    {
        throw Error(ErrorKind::BadText, {}, why, m_source.toString());
    }

private:
    [[nodiscard]] const Token &peek(qsizetype ahead = 0) const
    {
        return m_tokens[std::min(m_at + ahead, m_tokens.size() - 1)];
    }
    [[nodiscard]] bool atSymbol(const char *symbol, qsizetype ahead = 0) const
    {
        return peek(ahead).kind == TokenKind::Symbol && peek(ahead).text == QLatin1String(symbol);
    }
    bool takeSymbol(const char *symbol)
    {
        if (!atSymbol(symbol))
            return false;
        ++m_at;
        return true;
    }
    void needSymbol(const char *symbol)
    {
        if (!takeSymbol(symbol))
            fail(QStringLiteral("ожидалось «%1»").arg(QLatin1String(symbol)));
    }
    QString needName();
    [[nodiscard]] bool insideText(const SqlText::Span &span) const;
    [[nodiscard]] QString columnName();
    QString fileClause();
    void selectList(SelectQuery &query);
    void orderBy(SelectQuery &query);

    Condition orExpression();
    Condition andExpression();
    Condition notExpression();
    Condition comparison();
    Condition like(const Operand &left);
    Condition compare(const Operand &left, const QString &op, const Operand &right);
    Condition compareLiteral(const Operand &left, const QString &op, const QString &literal);
    Operand operand();
    Operand function(const QString &name);
    Operand dateOf(const Operand &argument) const;

    SqlText m_source;
    QList<Token> m_tokens;
    qsizetype m_at = 0;
    QString m_table; ///< the table whose columns the expression names
    int m_depth = 0;
    int m_negations = 0;
    bool m_onlyTallied = true; ///< no column so far by which the log is not tallied
    int m_marks = 0;           ///< lengths of card marks asked
    int m_marksTallied = 0;    ///< of them compared with 0
};

bool Parser::insideText(const SqlText::Span &span) const
{
    for (const Token &token : m_tokens)
        if (token.kind == TokenKind::Text && token.begin < span.begin && span.end < token.end)
            return true;
    return false;
}

QString Parser::needName()
{
    if (peek().kind != TokenKind::Name)
        fail(QStringLiteral("ожидалось имя"));
    return m_tokens[m_at++].text;
}

/// name or table.name
QString Parser::columnName()
{
    QString name = needName();
    if (takeSymbol("."))
        name = needName();
    return name;
}

QString Parser::fileClause()
{
    if (!takeKeyword("in"))
        return {};
    if (peek().kind != TokenKind::Text)
        fail(QStringLiteral("ожидался путь к файлу"));
    return m_tokens[m_at++].text;
}

void Parser::selectList(SelectQuery &query)
{
    if (takeSymbol("*"))
        return;
    if (peek().kind == TokenKind::Name && atSymbol(".", 1) && atSymbol("*", 2)) {
        m_at += 3;
        return;
    }
    do {
        query.columns.append(columnName());
    } while (takeSymbol(","));
}

SelectQuery Parser::select()
{
    SelectQuery query;
    needKeyword("select");
    query.distinct = takeKeyword("distinct");
    selectList(query);
    needKeyword("from");
    query.table = needName();
    m_table = query.table;
    query.inFile = fileClause();
    if (takeKeyword("where")) {
        const qsizetype begin = m_at;
        const Condition condition = orExpression();
        query.where = condition.sql;
        query.arguments = condition.arguments;
        query.branches = condition.branches;
        // CONTR ='X'  or  CONTR ='X' AND len(qslp)>'0', of different callsigns: the log keeps these two
        // counted.
        const auto is = [&](qsizetype ahead, TokenKind kind, const char *text) {
            const Token &token = m_tokens[std::min(begin + ahead, m_tokens.size() - 1)];
            return token.kind == kind &&
                   (text == nullptr || token.text.compare(QLatin1String(text), Qt::CaseInsensitive) == 0);
        };
        const bool country = query.distinct && query.columns.size() == 1 &&
                             query.columns.front().compare(u"ccall", Qt::CaseInsensitive) == 0 &&
                             is(0, TokenKind::Name, "contr") && is(1, TokenKind::Symbol, "=") &&
                             is(2, TokenKind::Text, nullptr);
        const bool cards = country && is(3, TokenKind::Name, "and") && is(4, TokenKind::Name, "len") &&
                           is(5, TokenKind::Symbol, "(") && is(6, TokenKind::Name, "qslp") &&
                           is(7, TokenKind::Symbol, ")") && is(8, TokenKind::Symbol, ">") &&
                           is(9, TokenKind::Text, "0") && m_at == begin + 10;
        if (country && (cards || m_at == begin + 3)) {
            const QString literal = m_tokens[begin + 2].text;
            query.countsCountry =
                !literal.isEmpty() && !literal.endsWith(QLatin1Char(' ')) && base::isAscii(literal);
            query.countsCards = cards;
            query.countedCountry = literal;
        }
        if (tableLayout(query.table) != nullptr && tableLayout(query.table)->exactCaseFirst &&
            is(0, TokenKind::Name, nullptr) && is(1, TokenKind::Symbol, "=") &&
            is(2, TokenKind::Text, nullptr)) {
            query.order.append(
                QStringLiteral("%1=? COLLATE BINARY DESC").arg(bracketedName(m_tokens[begin].text)));
            query.orderArguments.append(m_tokens[begin + 2].text);
        }
    }
    query.asksTallied = m_onlyTallied && m_marks == m_marksTallied;
    orderBy(query);
    return query;
}

void Parser::orderBy(SelectQuery &query)
{
    if (!takeKeyword("order"))
        return;
    needKeyword("by");
    query.order.clear();
    query.orderArguments.clear();
    bool plainColumns = true;
    do {
        QString term;
        const Operand key = operand();
        query.orderColumns.append(key.text);
        plainColumns = plainColumns && key.kind == Operand::Kind::Column;
        if (key.kind == Operand::Kind::Column)
            term = key.sql + (isLatinColumn(m_table, key.text) ? QStringLiteral(" COLLATE NOCASE")
                                                               : QStringLiteral(" COLLATE RUSSIAN"));
        else if (key.kind == Operand::Kind::DateKey)
            term = key.sql;
        else
            fail(QStringLiteral("недопустимая сортировка"));
        if (takeKeyword("desc"))
            term += QStringLiteral(" DESC");
        else
            takeKeyword("asc");
        query.order.append(term);
    } while (takeSymbol(","));
    if (!plainColumns)
        query.orderColumns.clear();
}

DeleteCommand Parser::deletion()
{
    DeleteCommand command;
    needKeyword("delete");
    if (takeSymbol("*")) {
        // DELETE * FROM t
    } else if (!atKeyword("from")) {
        needName();
        needSymbol(".");
        needSymbol("*");
    }
    needKeyword("from");
    command.table = needName();
    m_table = command.table;
    if (takeKeyword("where")) {
        const Condition condition = orExpression();
        command.where = condition.sql;
        command.arguments = condition.arguments;
    }
    return command;
}

InsertCommand Parser::insertion()
{
    InsertCommand command;
    needKeyword("insert");
    needKeyword("into");
    command.table = needName();
    command.inFile = fileClause();
    command.select = select();
    return command;
}

void Parser::end()
{
    takeSymbol(";");
    if (peek().kind != TokenKind::End)
        fail(QStringLiteral("лишнее после конца команды: «%1»").arg(peek().text));
}

Condition Parser::orExpression()
{
    constexpr int kDeepest =
        64; // values are spliced, so nesting is the statement's own; a guard all the same
    if (++m_depth > kDeepest)
        fail(QStringLiteral("слишком сложное выражение"));
    Condition left = andExpression();
    while (takeKeyword("or")) {
        const Condition right = andExpression();
        left = {QStringLiteral("(%1 OR %2)").arg(left.sql, right.sql), left.arguments + right.arguments};
    }
    --m_depth;
    return left;
}

Condition Parser::andExpression()
{
    Condition left = notExpression();
    while (takeKeyword("and")) {
        const Condition right = notExpression();
        left = both(left, right);
    }
    return left;
}

Condition Parser::notExpression()
{
    if (takeKeyword("not")) {
        if (++m_depth > 64)
            fail(QStringLiteral("слишком сложное выражение"));
        ++m_negations; // a null must count as empty also where its comparison is turned round
        const Condition inner = notExpression();
        --m_negations;
        --m_depth;
        if (!inner.noLength.isEmpty() && m_negations == 0)
            return {inner.noLength + QStringLiteral(">0"), inner.arguments}; // as the partial indexes say it
        return {QStringLiteral("NOT (%1)").arg(inner.sql), inner.arguments};
    }
    if (takeSymbol("(")) {
        const Condition inner = orExpression();
        needSymbol(")");
        return {QStringLiteral("(%1)").arg(inner.sql), inner.arguments, {}, inner.noLength};
    }
    return comparison();
}

Condition Parser::comparison()
{
    const Operand left = operand();
    if (takeKeyword("like"))
        return like(left);
    if (takeKeyword("is")) {
        const bool negated = takeKeyword("not");
        needKeyword("null");
        // Null and empty are one thing.
        return {QStringLiteral("ifnull(%1,'')%2''")
                    .arg(left.sql, negated ? QStringLiteral("<>") : QStringLiteral("=")),
                left.arguments};
    }
    for (const char *op : {"=", "<>", "<=", ">=", "<", ">"})
        if (takeSymbol(op))
            return compare(left, QLatin1String(op), operand());
    fail(QStringLiteral("ожидалось сравнение"));
}

Condition Parser::like(const Operand &left)
{
    const Operand pattern = operand();
    if (pattern.kind != Operand::Kind::Literal)
        fail(QStringLiteral("ожидался образец в кавычках"));
    const QString text = pattern.text;
    Condition condition;
    condition.arguments = left.arguments;
    const QString stem = text.chopped(text.isEmpty() ? 0 : 1);
    const bool plainPrefix = text.endsWith(QLatin1Char('*')) && base::isAscii(stem) &&
                             !stem.contains(QLatin1Char('*')) && !stem.contains(QLatin1Char('?')) &&
                             !stem.contains(QLatin1Char('#')) && !stem.contains(QLatin1Char('['));
    if (plainPrefix && stem.isEmpty()) {
        condition.sql = QStringLiteral("1");
        condition.arguments.clear();
        return condition;
    }
    if (plainPrefix && left.kind == Operand::Kind::Column && isLatinColumn(m_table, left.text)) {
        // A range, which an index serves. U+10FFFF sorts after every text that begins with the stem.
        condition.sql = QStringLiteral("(%1>=? COLLATE NOCASE AND %1<? COLLATE NOCASE)").arg(left.sql);
        condition.arguments += Values{stem, stem + QString(QChar(0xDBFF)) + QString(QChar(0xDFFF))};
        return condition;
    }
    condition.sql = QStringLiteral("jet_like(?,ifnull(%1,''))").arg(left.sql);
    condition.arguments.prepend(text);
    return condition;
}

Condition Parser::compare(const Operand &left, const QString &op, const Operand &right)
{
    using Kind = Operand::Kind;
    if (left.kind == Kind::Literal && right.kind != Kind::Literal) {
        static const QHash<QString, QString> turned = {{QStringLiteral("<"), QStringLiteral(">")},
                                                       {QStringLiteral(">"), QStringLiteral("<")},
                                                       {QStringLiteral("<="), QStringLiteral(">=")},
                                                       {QStringLiteral(">="), QStringLiteral("<=")}};
        return compare(right, turned.value(op, op), left);
    }
    if (right.kind == Kind::DateArgument || left.kind == Kind::DateArgument || left.kind == Kind::DateKey ||
        right.kind == Kind::DateKey) {
        // Dates are compared as dates, whatever stands on the other side.
        const Operand a = dateOf(left);
        const Operand b = dateOf(right);
        return {a.sql + op + b.sql, a.arguments + b.arguments};
    }
    if (right.kind == Kind::Literal)
        return compareLiteral(left, op, right.text);
    Condition condition{left.sql + op + right.sql, left.arguments + right.arguments};
    if (left.kind == Kind::Column && right.kind == Kind::Column)
        condition.sql =
            QStringLiteral("ifnull(%1,'')%2ifnull(%3,'') COLLATE RUSSIAN").arg(left.sql, op, right.sql);
    return condition;
}

Condition Parser::compareLiteral(const Operand &left, const QString &op, const QString &literal)
{
    using Kind = Operand::Kind;
    if (left.kind == Kind::Literal)
        fail(QStringLiteral("сравнение двух значений"));
    Condition condition;
    condition.arguments = left.arguments;
    if (left.kind == Kind::Length) {
        // A number against a text: the text is taken as a number. It stays in the statement, so that partial
        // indexes over the same condition are found.
        bool isNumber = false;
        const int number = literal.trimmed().toInt(&isNumber);
        if (!isNumber)
            fail(QStringLiteral("несоответствие типов: «%1»").arg(literal));
        const bool plain = op == QLatin1String(">") && m_negations == 0; // null fails this test without help
        m_marksTallied += number == 0 && isTalliedMark(left.text) ? 1 : 0;
        condition.sql =
            (plain ? left.sql : QStringLiteral("ifnull(%1,0)").arg(left.sql)) + op + QString::number(number);
        if (op == QLatin1String("=") && number == 0)
            condition.noLength = left.sql;
        return condition;
    }
    // A literal with blanks at its end equals itself and itself without them.
    const QString bare = base::withoutTrailingBlanks(literal).toString();
    const bool ascii = base::isAscii(literal);
    const bool blanks = bare.size() != literal.size();
    // Told that most rows have the value, the engine looks for a better index than that of such a column.
    const QString weighed = left.kind == Kind::Column && isCoarseColumn(m_table, left.text)
                                ? QStringLiteral("likely(%1)")
                                : QStringLiteral("%1");
    if (op == QLatin1String("=") || op == QLatin1String("<>")) {
        const bool equal = op == QLatin1String("=");
        if (literal.isEmpty()) {
            const bool part = left.kind == Kind::Middle && left.arguments.isEmpty() && !left.text.isEmpty();
            if (equal && (part || left.kind == Kind::Column)) {
                // Two steps in an index instead of a walk through the table. A part is null where its column
                // is.
                condition.branches = {{weighed.arg(left.sql + QStringLiteral("='' COLLATE NOCASE")), {}},
                                      {kIsNull.arg(bracketedName(left.text)), {}}};
                condition.sql = QStringLiteral("(%1 OR %2)")
                                    .arg(condition.branches[0].where, condition.branches[1].where);
            } else {
                condition.sql = QStringLiteral("ifnull(%1,'')%2''").arg(left.sql, op);
            }
        } else if (ascii && !blanks) {
            const QString field = m_negations > 0 ? QStringLiteral("ifnull(%1,'')").arg(left.sql) : left.sql;
            // The value that a partial index is about stays in the statement, so that the index is found.
            const bool stays = left.kind == Kind::Column && isPartOfIndex(m_table, left.text, literal);
            const QString operand = stays ? QStringLiteral("'%1' COLLATE NOCASE").arg(literal)
                                          : QStringLiteral("? COLLATE NOCASE");
            condition.sql = equal ? weighed.arg(field + QLatin1Char('=') + operand)
                                  : field + QStringLiteral(" IS NOT ") + operand;
            if (!stays)
                condition.arguments += literal;
        } else {
            const QString key = ascii ? (equal && !bare.isEmpty() && m_negations == 0
                                             ? QStringLiteral("%1 COLLATE NOCASE")
                                             : QStringLiteral("ifnull(%1,'') COLLATE NOCASE"))
                                      : kFoldedColumn;
            condition.sql =
                key.arg(left.sql) + (equal ? QStringLiteral(" IN(?,?)") : QStringLiteral(" NOT IN(?,?)"));
            condition.arguments +=
                Values{ascii ? literal : base::foldCase(literal), ascii ? bare : base::foldCase(bare)};
            if (ascii && equal && m_negations == 0 && left.kind == Kind::Column) {
                const QString one = weighed.arg(left.sql + QStringLiteral("=? COLLATE NOCASE"));
                condition.branches = {{one, {literal}}, {one, {bare}}};
                if (bare.isEmpty())
                    condition.branches.append({kIsNull.arg(left.sql), {}});
            }
        }
        return condition;
    }
    const bool latin = ascii && left.kind == Kind::Column && isLatinColumn(m_table, left.text);
    condition.sql = QStringLiteral("ifnull(%1,'')%2? COLLATE %3")
                        .arg(left.sql, op, latin ? QStringLiteral("NOCASE") : QStringLiteral("RUSSIAN"));
    condition.arguments += literal;
    return condition;
}

Operand Parser::operand()
{
    const Token token = peek();
    switch (token.kind) {
    case TokenKind::Text:
        ++m_at;
        return {Operand::Kind::Literal, QStringLiteral("?"), {token.text}, token.text};
    case TokenKind::Number:
        ++m_at;
        return {Operand::Kind::Other, token.text, {}, {}};
    case TokenKind::Name:
        if (atSymbol("(", 1)) {
            m_at += 2;
            return function(token.text);
        } else {
            const QString name = columnName();
            m_onlyTallied = m_onlyTallied && (isTalliedColumn(name) || isTalliedMark(name));
            m_marks += isTalliedMark(name) ? 1 : 0;
            return {Operand::Kind::Column, bracketedName(name), {}, name};
        }
    case TokenKind::Symbol:
    case TokenKind::End:
        break;
    }
    fail(QStringLiteral("ожидалось поле или значение"));
}

Operand Parser::function(const QString &name)
{
    QList<Operand> arguments;
    if (!atSymbol(")")) {
        do {
            if (++m_depth > 64)
                fail(QStringLiteral("слишком сложное выражение"));
            arguments.append(operand());
            --m_depth;
        } while (takeSymbol(","));
    }
    needSymbol(")");
    const QString lower = name.toLower();
    if (lower == QLatin1String("len") && arguments.size() == 1)
        return {Operand::Kind::Length, QStringLiteral("length(%1)").arg(arguments[0].sql),
                arguments[0].arguments,
                arguments[0].kind == Operand::Kind::Column ? arguments[0].text : QString()};
    if (lower == QLatin1String("mid") && (arguments.size() == 2 || arguments.size() == 3)) {
        QStringList parts;
        Values values;
        for (const Operand &argument : std::as_const(arguments)) {
            parts.append(argument.sql);
            values += argument.arguments;
        }
        return {Operand::Kind::Middle, QStringLiteral("substr(%1)").arg(parts.join(QLatin1Char(','))), values,
                arguments[0].kind == Operand::Kind::Column ? arguments[0].text : QString()};
    }
    if ((lower == QLatin1String("datevalue") || lower == QLatin1String("cdate")) && arguments.size() == 1) {
        const Operand &argument = arguments.front();
        if (argument.kind != Operand::Kind::Literal)
            return dateOf(argument);
        Operand typed{Operand::Kind::DateArgument, QStringLiteral("NULL"), {}, {}};
        if (argument.text.trimmed().isEmpty())
            return typed;
        const auto date = base::parseLogDate(argument.text);
        if (!date)
            throw Error(ErrorKind::BadDate, {}, QStringLiteral("«%1» не дата").arg(argument.text),
                        m_source.toString());
        typed.sql = QStringLiteral("?");
        typed.arguments = {date->toString(u"yyyy-MM-dd")};
        return typed;
    }
    fail(QStringLiteral("неизвестная функция «%1»").arg(name));
}

/// The operand as a date key: a stored text read as a date (null where it is none), a typed date as it is.
Operand Parser::dateOf(const Operand &argument) const
{
    using Kind = Operand::Kind;
    if (argument.kind == Kind::DateKey || argument.kind == Kind::DateArgument)
        return argument;
    if (argument.kind == Kind::Column && argument.text.compare(u"ddate", Qt::CaseInsensitive) == 0)
        return {Kind::DateKey, dateKeyExpression(QStringLiteral("ddate")), {}, {}};
    return {Kind::DateKey, QStringLiteral("jet_date(%1)").arg(argument.sql), argument.arguments, {}};
}

bool isTableName(const QString &text)
{
    if (text.isEmpty() || !(text.front().isLetter() || text.front() == QLatin1Char('_')))
        return false;
    for (const QChar c : text)
        if (!c.isLetterOrNumber() && c != QLatin1Char('_'))
            return false;
    return true;
}

} // namespace

QString bracketedName(const QString &name)
{
    return QLatin1Char('[') + name + QLatin1Char(']');
}

SelectQuery translateSelect(const SqlText &text)
{
    if (isTableName(text.toString().trimmed())) {
        SelectQuery query;
        query.table = text.toString().trimmed();
        return query;
    }
    Parser parser(text);
    SelectQuery query = parser.select();
    parser.end();
    return query;
}

DeleteCommand translateDelete(const SqlText &text)
{
    Parser parser(text);
    DeleteCommand command = parser.deletion();
    parser.end();
    return command;
}

InsertCommand translateInsert(const SqlText &text)
{
    Parser parser(text);
    InsertCommand command = parser.insertion();
    parser.end();
    return command;
}

CommandKind commandKind(const SqlText &text)
{
    const Parser parser(text);
    if (parser.atKeyword("delete"))
        return CommandKind::Delete;
    if (parser.atKeyword("insert"))
        return CommandKind::Insert;
    parser.fail(QStringLiteral("допустимы только DELETE и INSERT"));
}

} // namespace store
