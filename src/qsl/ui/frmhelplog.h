#pragma once

#include "qsl/ui/services.h"
#include "store/datasource.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QWidget>

#include <optional>

namespace qsl {

/// The help window: one text of hints from the help file, read anew whenever the window comes to the front.
/// The text is the operator's own: what is typed into it is saved when the window is left, read anew or
/// closed. Closing unloads: shown again, the window starts as a new one.
class frmhelplog : public QWidget {
    Q_OBJECT

public:
    explicit frmhelplog(const Services &services, QWidget *parent = nullptr);
    ~frmhelplog() override;

protected:
    bool event(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void buildLayout();
    void load();
    void activated();
    void typed();
    /// Saves a pending edit. False where it failed; the edit stays pending and the window says so.
    bool save();
    void showText(const QString &text);
    /// A failure is a line of the window: a box over it would activate it anew, and so on.
    void showFailure(const store::Error &error);
    void clearFailure();

    Services m_services;
    store::DataSource Data1;
    QPlainTextEdit *txthelp;
    QPushButton *Command1;
    QLabel *lblstatus;

    bool m_loaded = false;
    bool m_showing = false;   ///< the text is being set by the window itself
    bool m_lineFeeds = false; ///< the stored text ends its lines with a line feed alone
    /// As the source last gave it, or as it has been changed since.
    std::optional<QString> m_delivered;
};

} // namespace qsl
