#pragma once

#include "logentry/lookups.h"
#include "ui/filedialogs.h"
#include "ui/messages.h"
#include "ui/progress.h"

namespace logentry {

/// The questions and the course of the menu's work on the whole log: parallel log and country revision.
class LogTasks {
public:
    LogTasks(ui::Messages &messages, ui::Progress &progress, ui::FileDialogs &dialogs, Sources &sources,
             EntryFields &fields, EntryState &state, Lookups &lookups);

    /// "mnulog": switches the parallel log off, or on after its questions. Whether it is on stands in the
    /// state.
    void switchParallelLog();
    /// "mnuzaglog": appends the parallel log to the main log and empties it, each if wanted. What fails ends
    /// it: rows that could not be loaded are not offered for emptying.
    void loadParallelLog();
    /// "mnurewiz": country revision of the whole log. Gives the line to show afterwards; nothing where it was
    /// not wanted. A contact that was being typed stands in the fields again.
    [[nodiscard]] std::optional<QString> reviseCountries();

    /// "cmbxls": the rows of a workbook into the log. Where the workbook is not at its fixed place, the
    /// operator chooses one; `window`: over which. Gives the line to show afterwards; empty where nothing was
    /// wanted.
    [[nodiscard]] QString importSpreadsheet(QWidget *window);

    /// "cmbaddbuk": the station being logged into the callbook, after the question where it is there already.
    /// Gives the line to show afterwards; empty where nothing was stored.
    [[nodiscard]] QString addToCallbook();

    /// "cmbcalbuk": callsigns of a contest from the workbook at its fixed place into the contest database,
    /// and the question whether that is to be emptied, whatever the first answer was. A file that is not at
    /// its place is chosen by the operator. `waiting` is run once the import has been wanted. Gives the line
    /// to show afterwards; empty where nothing was done.
    [[nodiscard]] QString contestList(QWidget *window, const std::function<void()> &waiting);

private:
    [[nodiscard]] store::Progress showing(const QString &what);
    [[nodiscard]] QString placed(const QString &path, const QString &title, const QStringList &filters,
                                 QWidget *window);
    [[nodiscard]] QString contestDatabase(QWidget *window);
    /// Gives the line to show; the database that was chosen for it goes into `database`.
    [[nodiscard]] QString importContestList(QWidget *window, QString &database);
    void emptyParallelLog();
    void showTypedAgain(const EntryFields &typed);

    ui::Messages &m_messages;
    ui::Progress &m_progress;
    ui::FileDialogs &m_dialogs;
    Sources &m_sources;
    EntryFields &m_fields;
    EntryState &m_state;
    Lookups &m_lookups;
};

} // namespace logentry
