#pragma once

#include "base/clock.h"
#include "interchange/emergency.h"
#include "logentry/lookups.h"
#include "logentry/recorder.h"
#include "logentry/sources.h"
#include "store/library.h"

#include <QTemporaryDir>

namespace testsupport {

/// A clock that stands still until a test moves it.
class FixedClock final : public base::Clock {
public:
    QDateTime now = QDateTime(QDate(2026, 3, 5), QTime(14, 7, 9), Qt::UTC);
    QDateTime localNow = QDateTime(QDate(2026, 3, 5), QTime(9, 5, 0));
    [[nodiscard]] QDateTime utc() const override { return now; }
    [[nodiscard]] QDateTime local() const override { return localNow; }
};

/// A fresh installation in a folder of its own, all files made.
class Installation {
public:
    Installation();

    [[nodiscard]] QString folder() const { return m_folder.path(); }
    [[nodiscard]] QString userFolder() const { return m_user.path(); }
    [[nodiscard]] QString file(const QString &name) const { return m_folder.filePath(name); }
    /// Runs SQL on one of the files through a connection of its own, as another program would.
    void sql(const QString &fileName, const QString &statement) const;
    /// Rows of a query, columns joined by "|", through a connection of its own.
    [[nodiscard]] QStringList rows(const QString &fileName, const QString &query) const;
    /// Adds a contact to the main log.
    void addContact(const QString &call, const QString &date, const QString &country,
                    const QString &card = {}) const;

private:
    QTemporaryDir m_folder;
    QTemporaryDir m_user;

public:
    store::Library databases;
};

/// The logic of the main window without the window.
class Desk {
public:
    explicit Desk(Installation &installation);

    void type(const QString &call); ///< key by key, each released

    logentry::Sources sources;
    logentry::EntryFields fields;
    logentry::EntryState state;
    logentry::Lookups lookups;
    interchange::EmergencyFile emergency;
    logentry::Recorder recorder;
};

} // namespace testsupport
