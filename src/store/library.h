#pragma once

#include "store/folder.h"
#include "store/sqlite.h"
#include "store/sqltext.h"

#include <QHash>
#include <QStringList>

#include <functional>
#include <map>
#include <memory>

namespace store {

struct FileLayout;

/// Told from time to time how far a long operation has come. Must not touch the database.
using Progress = std::function<void(qint64 done, qint64 total)>;

/// All database files of an installation: where they are, and their one connection each. Every data source of
/// every window goes through the same Library.
class Library {
public:
    /// `folder`: where the databases lie; `userFolder`: where verified copies go.
    Library(DataFolder folder, QString userFolder, ChooseFile choose = {});
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;
    ~Library();

    [[nodiscard]] const QString &folder() const noexcept { return m_folder.path; }
    [[nodiscard]] bool readOnly() const noexcept { return m_folder.readOnly; }
    [[nodiscard]] const QString &userFolder() const noexcept { return m_userFolder; }
    /// Asks which of several files is meant; empty where nobody can be asked.
    [[nodiscard]] const ChooseFile &chooser() const noexcept { return m_choose; }

    /// Full path of a file of the program folder from a suffix such as "\dbiaru.mdb": the file that is there,
    /// whatever its letter case, else the name as given. Asks at most once per name which of several is
    /// meant.
    [[nodiscard]] QString path(QStringView suffix);

    /// The connection to a file; opened at the first use and kept. Throws Error (and tries again at the next
    /// use). One of the eleven files is brought to the current layout first: indexes, counters and columns it
    /// lacks are added in one transaction after a verified copy of a log.
    [[nodiscard]] Connection &connection(const QString &path);
    /// Opened files that cannot be written by their own rights.
    [[nodiscard]] QStringList readOnlyFiles() const;
    /// Closes a file, for instance before it is replaced.
    void close(const QString &path);

    /// Runs one bulk command, a DELETE or an INSERT ... SELECT, on a file: all or nothing. Gives the number
    /// of rows. INSERT ... SELECT matches columns by name; a column that a log table lacks is added to it,
    /// any other is left out. Throws Error, also where the file has been taken away meanwhile.
    qint64 execute(const QString &path, const SqlText &command, const Progress &progress = {});

    /// Makes the files that are not there, with their tables and the reference data. Never touches a file
    /// that is there, and leaves a name alone whose old original ("NAME.jet.mdb") waits to be converted.
    /// Gives the names made. Throws Error.
    QStringList createMissingFiles();

    /// Copy of a database in the user's data folder, checked, before a bulk change; the newest ten are kept.
    /// Gives its path. Throws Error, and then no copy is left behind.
    QString makeVerifiedCopy(const QString &path, const Progress &progress = {});

    /// Error for a file that cannot be a database of ours, judged by its first bytes; nothing where it can.
    [[nodiscard]] static std::optional<Error> inspect(const QString &path);

private:
    void createFile(const FileLayout &layout, const QString &path);
    void bringUpToDate(Connection &connection, const FileLayout &layout);
    qint64 runDelete(const QString &path, const SqlText &command);
    qint64 runInsert(const QString &path, const SqlText &command, const Progress &progress);

    DataFolder m_folder;
    QString m_userFolder;
    ChooseFile m_choose;
    QHash<QString, QString> m_paths; ///< lower-case name to chosen path
    std::map<QString, std::unique_ptr<Connection>> m_connections;
    QHash<QString, Connection *> m_byPath; ///< the same connections under the paths they were asked for
};

/// Makes a copy of `connection`'s database at `target` with the engine's backup call, then opens the copy and
/// checks it: integrity and the row count of every table. Throws Error and removes the copy where anything
/// differs.
void copyVerified(Connection &connection, const QString &target, const Progress &progress = {});

/// Names of the columns of a table; empty where there is no such table.
[[nodiscard]] QStringList columnNames(Connection &connection, const QString &table,
                                      const QString &schema = QStringLiteral("main"));

/// Throws Error where a table is not there, lacks one of the fields, or cannot be written: before a bulk
/// change begins.
void requireWritable(Connection &connection, const QString &table, const QStringList &fields);

} // namespace store
