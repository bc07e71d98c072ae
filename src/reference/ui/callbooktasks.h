#pragma once

#include "reference/callbookfile.h"
#include "reference/ui/services.h"

class QWidget;

namespace reference {

/// The course of filling the callbook from a text file and of writing it into one: file dialog, question,
/// progress. Each gives the line to show afterwards; empty where nothing was done. What fails is a message.
class CallbookTasks {
public:
    explicit CallbookTasks(const Services &services);

    /// `window`: over which the dialog stands.
    [[nodiscard]] QString importFile(QWidget *window);
    [[nodiscard]] QString exportFile(QWidget *window);

private:
    [[nodiscard]] QString importFrom(const QString &path);
    [[nodiscard]] CallbookExamination examine(CallbookFile &file);
    [[nodiscard]] CallbookStep showing(const QString &what);

    Services m_services;
    QString m_file; ///< that was read last
};

} // namespace reference
