#include "reference/ui/fullbox.h"

#include <QKeyEvent>

#include <array>

namespace reference {

FullBox::FullBox(QLineEdit *box, qsizetype most) : QObject(box), m_box(box), m_most(most)
{
    box->installEventFilter(this);
}

bool FullBox::goesThrough(const QKeyEvent &key)
{
    constexpr std::array kOtherKeys = {Qt::Key_Return,  Qt::Key_Enter,  Qt::Key_Tab,
                                       Qt::Key_Backtab, Qt::Key_Escape, Qt::Key_Delete};
    for (const Qt::Key other : kOtherKeys)
        if (key.key() == other)
            return true;
    if (key.matches(QKeySequence::Copy) || key.matches(QKeySequence::SelectAll) ||
        key.matches(QKeySequence::Paste)) // what is pasted is measured by the box's filter
        return true;
    // Keys that shorten the text are known by themselves: not every keyboard gives them a character.
    constexpr std::array kShortening = {QKeySequence::Cut, QKeySequence::Undo, QKeySequence::Redo,
                                        QKeySequence::DeleteCompleteLine, QKeySequence::DeleteEndOfLine};
    for (const QKeySequence::StandardKey shortening : kShortening)
        if (key.matches(shortening))
            return false;
    if (key.key() == Qt::Key_Backspace)
        return false;
    // Characters are measured by the filter, which counts what stays beside a selection; a key without one
    // moves the cursor, or is no key of a text.
    return key.text().isEmpty() || key.text().front().isPrint();
}

bool FullBox::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && m_box->text().size() >= m_most &&
        !goesThrough(*static_cast<QKeyEvent *>(event)))
        return true;
    return QObject::eventFilter(watched, event);
}

} // namespace reference
