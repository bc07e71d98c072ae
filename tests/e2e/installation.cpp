// The folder with the program and its files that a run works on.
#include "e2e/desktop.h"

#include <QDir>
#include <QFile>

#include <sqlite3.h>

namespace e2e {

Installation::Installation()
{
    m_valid = m_scratch.isValid() && QDir().mkpath(folder()) &&
              QDir().mkpath(m_scratch.filePath(QStringLiteral("home"))) &&
              QDir().mkpath(m_scratch.filePath(QStringLiteral("run"))) &&
              QFile::setPermissions(m_scratch.filePath(QStringLiteral("run")),
                                    QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner) &&
              QFile::copy(QStringLiteral(ZHURNAL_PROGRAM), program());
}

QProcessEnvironment Installation::environment(const Desktop &desktop) const
{
    const QProcessEnvironment session = QProcessEnvironment::systemEnvironment();
    QProcessEnvironment own;
    for (const char *name : {"PATH", "LD_LIBRARY_PATH", "QT_PLUGIN_PATH", "TMPDIR", "ASAN_OPTIONS",
                             "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
        const QString key = QLatin1String(name);
        if (session.contains(key))
            own.insert(key, session.value(key));
    }
    const QString home = m_scratch.filePath(QStringLiteral("home"));
    own.insert(QStringLiteral("HOME"), home);
    own.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/.config"));
    own.insert(QStringLiteral("XDG_DATA_HOME"), home + QStringLiteral("/.local/share"));
    own.insert(QStringLiteral("XDG_CACHE_HOME"), home + QStringLiteral("/.cache"));
    own.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_scratch.filePath(QStringLiteral("run")));
    own.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    own.insert(QStringLiteral("TZ"), QStringLiteral("Europe/Moscow"));
    own.insert(QStringLiteral("DISPLAY"), desktop.displayName());
    own.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    // Without an address a message bus would be started, which nobody would end.
    own.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("disabled:"));
    return own;
}

namespace {

/// A database file opened with the engine itself, past everything of the program's.
class Database {
public:
    explicit Database(const QString &path)
    {
        if (sqlite3_open_v2(qPrintable(path), &m_handle, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK)
            complain(path);
    }
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;
    ~Database() { sqlite3_close(m_handle); }

    [[nodiscard]] bool run(const QString &text, const QStringList &values, QList<QStringList> &rows) const
    {
        sqlite3_stmt *statement = nullptr;
        const QByteArray sql = text.toUtf8();
        if (sqlite3_prepare_v2(m_handle, sql.constData(), -1, &statement, nullptr) != SQLITE_OK) {
            complain(text);
            return false;
        }
        for (int i = 0; i < values.size(); ++i)
            sqlite3_bind_text(statement, i + 1, values[i].toUtf8().constData(), -1, SQLITE_TRANSIENT);
        int code = SQLITE_ROW;
        while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
            QStringList row;
            for (int i = 0; i < sqlite3_column_count(statement); ++i) {
                const auto *value = reinterpret_cast<const char *>(sqlite3_column_text(statement, i));
                row.append(value == nullptr ? QStringLiteral("NULL") : QString::fromUtf8(value));
            }
            rows.append(row);
        }
        if (code != SQLITE_DONE)
            complain(text);
        sqlite3_finalize(statement);
        return code == SQLITE_DONE;
    }

private:
    void complain(const QString &what) const
    {
        qWarning("%s: %s", qPrintable(what), sqlite3_errmsg(m_handle));
    }

    sqlite3 *m_handle = nullptr;
};

} // namespace

bool Installation::sql(const QString &name, const QString &statement, const QStringList &values) const
{
    QList<QStringList> none;
    return Database(file(name)).run(statement, values, none);
}

QList<QStringList> Installation::rows(const QString &name, const QString &query) const
{
    QList<QStringList> rows;
    if (!Database(file(name)).run(query, {}, rows))
        rows.clear();
    return rows;
}

} // namespace e2e
