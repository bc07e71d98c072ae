#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

namespace store {

enum class ErrorKind {
    Missing,      ///< the file is not there
    CannotOpen,   ///< the file is there and cannot be opened
    NotChosen,    ///< several files have the name apart from letter case, and the operator took none
    Foreign,      ///< the file is no database of this program
    Jet,          ///< the file is a genuine Jet database, to be converted
    MissingTable, ///< a database without the table that was asked for
    Newer,        ///< a file written by a newer version of the program
    Damaged,
    Locked,
    ReadOnly,
    DiskFull,
    InputOutput,
    Gone,       ///< the row to be changed is gone or another one now; the engine's words are what was typed
    Outdated,   ///< a file is no longer what a prepared change was made from; nothing has been written
    BadText,    ///< a statement that is none, or that a value broke
    BadDate,    ///< a typed date that is none
    Unreadable, ///< a file of another program, not read; the engine's words are Russian and say why
    Unwritable, ///< a file for other programs, not written; the engine's words are Russian and say why
    Other
};

/// What the store throws. Carries what an operator can be told and what the engine said.
class Error : public std::exception {
public:
    Error(ErrorKind kind, QString file, QString engineText, QString sql = {}, int code = 0);

    [[nodiscard]] ErrorKind kind() const noexcept { return m_kind; }
    /// The engine's extended result code, 0 where the engine was not asked.
    [[nodiscard]] int code() const noexcept { return m_code; }
    [[nodiscard]] const QString &file() const noexcept { return m_file; }
    /// The engine's own words alone.
    [[nodiscard]] const QString &engineText() const noexcept { return m_engineText; }
    [[nodiscard]] const QString &sql() const noexcept { return m_sql; }

    /// What failed: one or two Russian sentences for a message box.
    [[nodiscard]] QString text() const;
    /// The engine's own words, the file and the statement, for "details".
    [[nodiscard]] QString details() const;
    /// text() and the engine's words in one line, for the status line.
    [[nodiscard]] QString line() const;
    const char *what() const noexcept override { return m_what.constData(); }

private:
    ErrorKind m_kind;
    int m_code;
    QString m_file;
    QString m_engineText;
    QString m_sql;
    QByteArray m_what;
};

} // namespace store
