#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

namespace foreign {

/// A file of another program cannot be read, as a whole or from some place on.
class Error : public std::exception {
public:
    /// `text`: Russian, what is wrong with the file, without the file's name and without a full stop.
    explicit Error(QString text);

    [[nodiscard]] const QString &text() const noexcept { return m_text; }
    const char *what() const noexcept override { return m_what.constData(); }

private:
    QString m_text;
    QByteArray m_what;
};

} // namespace foreign
