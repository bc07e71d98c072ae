#pragma once

#include "ui/messages.h"

#include <QPointer>
#include <QWidget>

namespace ui {

/// Messages as modal boxes over the active window.
class MessageBoxes final : public Messages {
public:
    explicit MessageBoxes(QWidget *parent = nullptr) : m_parent(parent) {}
    void setParent(QWidget *parent) { m_parent = parent; }

    [[nodiscard]] bool askYesNo(const QString &text, const QString &title) override;
    void inform(const QString &text, const QString &title) override;
    [[nodiscard]] QString choose(const QString &text, const QString &title,
                                 const QStringList &options) override;
    [[nodiscard]] int chooseCodePage(const QString &file, const foreign::CodePageDoubt &doubt) override;
    void error(const store::Error &error) override;
    [[nodiscard]] NotStoredChoice notStored(const store::Error &error, const QString &contact,
                                            const QString &whereSaved) override;

private:
    [[nodiscard]] QWidget *over() const;

    QPointer<QWidget> m_parent; ///< where no window is active
};

} // namespace ui
