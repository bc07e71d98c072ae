#pragma once

#include <QList>
#include <QString>
#include <QStringView>

namespace store {

/// A statement as the windows compose it: quoted pieces with values spliced between them as they stand, no
/// escaping. Remembers where the values lie, so that a value that would break out of its quotes is an error
/// and never another effect.
class SqlText {
public:
    struct Span {
        qsizetype begin;
        qsizetype end;
    };

    SqlText() = default;
    SqlText(QString text) : m_text(std::move(text)) {} // NOLINT: a table name or a whole text is a statement
    SqlText(const char16_t *text) : m_text(QString::fromUtf16(text)) {} // NOLINT

    /// Appends a piece of the statement's own text.
    SqlText &text(QStringView piece)
    {
        m_text += piece;
        return *this;
    }
    /// Appends a value between the quotes that the pieces around it bring.
    SqlText &value(QStringView value)
    {
        const qsizetype begin = m_text.size();
        m_text += value;
        m_values.append({begin, m_text.size()});
        return *this;
    }
    /// Appends a value with its apostrophes doubled: for file paths, and for single keys that may be a quote.
    SqlText &doubled(QStringView value)
    {
        QString escaped = value.toString();
        escaped.replace(QLatin1Char('\''), QLatin1String("''"));
        return this->value(escaped);
    }

    [[nodiscard]] const QString &toString() const noexcept { return m_text; }
    [[nodiscard]] const QList<Span> &values() const noexcept { return m_values; }
    [[nodiscard]] bool isEmpty() const noexcept { return m_text.isEmpty(); }

private:
    QString m_text;
    QList<Span> m_values;
};

} // namespace store
