#pragma once

#include "ui/activewindow.h"
#include "ui/progress.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QPointer>

#include <memory>

namespace ui {

/// Progress in a small window of its own before the one in use. It comes up at once and keeps the input from
/// the windows behind it; Esc and its button stop what may be stopped.
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
    QElapsedTimer m_sincePainted;
};

} // namespace ui
