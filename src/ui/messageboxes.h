#pragma once

#include "ui/activewindow.h"
#include "ui/messages.h"

namespace ui {

/// Messages as modal boxes over the window in use.
class MessageBoxes final : public Messages {
public:
    [[nodiscard]] bool askYesNo(const QString &text, const QString &title) override;
    [[nodiscard]] bool askOk(const QString &text, const QString &title) override;
    void inform(const QString &text, const QString &title) override;
    [[nodiscard]] QString choose(const QString &text, const QString &title,
                                 const QStringList &options) override;
    [[nodiscard]] QString askText(const QString &prompt, const QString &title) override;
    [[nodiscard]] int chooseCodePage(const QString &file, const foreign::CodePageDoubt &doubt) override;
    void error(const store::Error &error) override;
    [[nodiscard]] NotStoredChoice notStored(const store::Error &error, const QString &contact,
                                            const QString &whereSaved) override;

private:
    ActiveWindow m_active;
};

} // namespace ui
