#pragma once

#include "ui/activewindow.h"
#include "ui/progress.h"

#include <QDialog>
#include <QElapsedTimer>

#include <memory>

namespace ui {

/// Progress in a small window of its own before the one in use. It keeps the input from the windows behind
/// it; Esc and its button stop what may be stopped. It stays away from operations that are over before
/// anybody could read it: until it comes up nothing is painted and what is typed waits.
class ProgressWindow final : public Progress {
public:
    ProgressWindow();
    ~ProgressWindow() override;

    void begin(const QString &title, bool stoppable) override;
    [[nodiscard]] bool advance(const QString &what, qint64 done, qint64 total) override;
    void end() override;

private:
    class Dialog;
    ActiveWindow m_active;
    std::unique_ptr<Dialog> m_dialog;
    QElapsedTimer m_sinceBegin;
    QElapsedTimer m_sincePainted;
};

} // namespace ui
