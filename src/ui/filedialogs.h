#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace ui {

/// Choosing files. Tests choose themselves.
class FileDialogs {
public:
    FileDialogs() = default;
    FileDialogs(const FileDialogs &) = delete;
    FileDialogs &operator=(const FileDialogs &) = delete;
    virtual ~FileDialogs() = default;

    /// A file to open; empty where the operator chooses none. `start`: folder or file that the dialog stands
    /// on at first; `filters`: "description (pattern pattern)" each.
    [[nodiscard]] virtual QString fileToOpen(QWidget *parent, const QString &title, const QString &start,
                                             const QStringList &filters) = 0;
    /// A path to save to; empty where the operator chooses none. Whether a file that is there may be replaced
    /// has been asked.
    [[nodiscard]] virtual QString fileToSave(QWidget *parent, const QString &title, const QString &start,
                                             const QStringList &filters) = 0;
};

/// The platform's dialogs.
class SystemFileDialogs final : public FileDialogs {
public:
    [[nodiscard]] QString fileToOpen(QWidget *parent, const QString &title, const QString &start,
                                     const QStringList &filters) override;
    [[nodiscard]] QString fileToSave(QWidget *parent, const QString &title, const QString &start,
                                     const QStringList &filters) override;
};

} // namespace ui
