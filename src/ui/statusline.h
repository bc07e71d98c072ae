#pragma once

#include "ui/messages.h"

#include <QLabel>

#include <functional>

namespace ui {

/// A window's line of results and of failures that are no reason for a box.
class StatusLine : public QLabel {
    Q_OBJECT

public:
    StatusLine(Messages &messages, QWidget *parent);

    /// Runs something asked for: a failure is a message. False where it failed.
    bool asked(const std::function<void()> &operation);
    /// Runs queries of a typed key: a failure goes into the line, success clears it.
    void typed(const std::function<void()> &operation);
    /// Runs what the operator did not ask for, such as reading rows anew: a failure goes into the line,
    /// otherwise the line stays as it is. False where it failed.
    bool quietly(const std::function<void()> &operation);

    void tell(const QString &text);
    void tell(const store::Error &error);

private:
    Messages &m_messages;
};

} // namespace ui
