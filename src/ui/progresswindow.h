#pragma once

#include "ui/progress.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QPointer>

#include <memory>

namespace ui {

/// Progress in a small window of its own before the active one. It comes up at once and keeps the input from
/// the windows behind it; Esc and its button stop what may be stopped.
class ProgressWindow final : public Progress {
public:
    ProgressWindow();
    ~ProgressWindow() override;

    void setParent(QWidget *parent) { m_parent = parent; }

    void begin(const QString &title, bool stoppable) override;
    [[nodiscard]] bool advance(const QString &what, qint64 done, qint64 total) override;
    void end() override;

private:
    class Dialog;
    QPointer<QWidget> m_parent;
    std::unique_ptr<Dialog> m_dialog;
    QElapsedTimer m_sincePainted;
};

} // namespace ui
