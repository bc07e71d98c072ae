#pragma once

#include <QString>

namespace ui {

/// Shows how far a long operation is. The window takes no input meanwhile, but paints.
class Progress {
public:
    Progress() = default;
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    virtual ~Progress() = default;

    /// `stoppable`: the operator may end the operation where it is.
    virtual void begin(const QString &title, bool stoppable) = 0;
    /// `done` of `total` of the step `what`; lets the windows paint. False where the operator wants to stop.
    [[nodiscard]] virtual bool advance(const QString &what, qint64 done, qint64 total) = 0;
    virtual void end() = 0;
};

/// begin() ... end().
class ProgressScope {
public:
    ProgressScope(Progress &progress, const QString &title, bool stoppable) : m_progress(progress)
    {
        m_progress.begin(title, stoppable);
    }
    ProgressScope(const ProgressScope &) = delete;
    ProgressScope &operator=(const ProgressScope &) = delete;
    ~ProgressScope() { m_progress.end(); }

private:
    Progress &m_progress;
};

} // namespace ui
