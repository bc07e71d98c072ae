#pragma once

#include "foreign/jetcodepage.h"
#include "store/error.h"

#include <QString>
#include <QStringList>

namespace ui {

/// Title of every message that is the program's own: its name.
[[nodiscard]] QString programTitle();

enum class NotStoredChoice { Retry, GiveBack };

/// The messages and questions of the program. Tests answer them themselves.
class Messages {
public:
    Messages() = default;
    Messages(const Messages &) = delete;
    Messages &operator=(const Messages &) = delete;
    virtual ~Messages() = default;

    /// Yes/No question; only "Да" gives true. "Нет" is the button that Enter presses.
    [[nodiscard]] virtual bool askYesNo(const QString &text, const QString &title) = 0;
    /// "ОК" and "Отмена"; only "ОК" gives true. "Отмена" is the button that Enter presses.
    [[nodiscard]] virtual bool askOk(const QString &text, const QString &title) = 0;
    virtual void inform(const QString &text, const QString &title) = 0;
    /// One of several; empty where the operator gives no answer.
    [[nodiscard]] virtual QString choose(const QString &text, const QString &title,
                                         const QStringList &options) = 0;
    /// One line of text typed by the operator; empty where nothing is typed or no answer is given.
    [[nodiscard]] virtual QString askText(const QString &prompt, const QString &title) = 0;
    /// The code page in which the texts of an old file can be read, picked by the first rows; 0 where the
    /// operator gives no answer.
    [[nodiscard]] virtual int chooseCodePage(const QString &file, const foreign::CodePageDoubt &doubt) = 0;
    /// Failure of something that was asked for; the engine's words stand under "details".
    virtual void error(const store::Error &error) = 0;
    /// A contact could not be stored; `contact` shows it, `whereSaved` tells where it is kept meanwhile.
    [[nodiscard]] virtual NotStoredChoice notStored(const store::Error &error, const QString &contact,
                                                    const QString &whereSaved) = 0;
};

/// Runs the body of a slot; a failure of the store becomes a message. Nothing is thrown through Qt.
template <typename Body>
void guarded(Messages &messages, Body &&body)
{
    try {
        body();
    } catch (const store::Error &error) {
        messages.error(error);
    }
}

} // namespace ui
