#include "ui/filteredit.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>

#include <memory>

namespace ui {

namespace {

/// A key is known by its place on the keyboard: its meaning changes with the layout while it is held.
quint64 keyIdentity(const QKeyEvent &event)
{
    return event.nativeScanCode() != 0 ? quint64{event.nativeScanCode()}
                                       : (quint64{1} << 32) | static_cast<quint64>(event.key());
}

/// A copied text for a field of one line: line ends and tabs part words, and those around it are not meant.
QString inOneLine(const QString &text)
{
    QString line;
    bool between = false;
    for (const QChar c : text) {
        const bool parts = c == u'\n' || c == u'\r' || c == u'\t' || c == QChar::LineSeparator ||
                           c == QChar::ParagraphSeparator;
        if (!parts && between && !line.isEmpty())
            line += u' ';
        between = parts;
        if (!parts)
            line += c;
    }
    return line;
}

bool isText(QChar c)
{
    return c.category() != QChar::Other_Control && c.unicode() != QChar::LineSeparator &&
           c.unicode() != QChar::ParagraphSeparator;
}

} // namespace

FilterEdit::FilterEdit(QWidget *parent) : QLineEdit(parent)
{
    setAcceptDrops(false); // a drop would pass the filter by
    fadePlaceholder();
    connect(this, &QLineEdit::textEdited, this, [this] { m_changeUnreported = true; });
}

void FilterEdit::reportChange()
{
    if (!m_changeUnreported)
        return;
    m_changeUnreported = false;
    Q_EMIT keyReleased(m_lastKey);
}

void FilterEdit::showText(const QString &text)
{
    if (this->text() != text)
        setText(text);
}

QString FilterEdit::filtered(const QString &text, qsizetype length, const QKeyEvent *event)
{
    m_entering = text;
    QString entered;
    for (const QChar c : text) {
        if (!isText(c))
            continue;
        const QChar passed = m_filter ? m_filter(c, length + entered.size(), event) : c;
        if (!passed.isNull())
            entered += passed;
    }
    return entered;
}

void FilterEdit::insertFiltered(const QString &text, const QKeyEvent *event)
{
    if (isReadOnly())
        return;
    const QString entered = filtered(text, this->text().size() - selectedText().size(), event);
    if (!entered.isEmpty())
        insert(entered);
}

void FilterEdit::keyPressEvent(QKeyEvent *event)
{
    m_down.insert(keyIdentity(*event));
    m_lastKey = event->key();
    Q_EMIT keyPressing(event);
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat())
            Q_EMIT enterPressed();
        event->accept();
        return;
    }
    if (event->matches(QKeySequence::Paste)) {
        insertFiltered(inOneLine(QApplication::clipboard()->text()), nullptr);
        event->accept();
        return;
    }
    const QString text = event->text();
    const bool command =
        (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0 &&
        (event->modifiers() & Qt::GroupSwitchModifier) == 0;
    if (!text.isEmpty() && isText(text.front()) && !command) {
        insertFiltered(text, event);
        event->accept();
        return;
    }
    if ((event->key() == Qt::Key_Up || event->key() == Qt::Key_Down) &&
        event->modifiers() == Qt::NoModifier) {
        event->accept(); // its release moves the focus
        return;
    }
    if (!text.isEmpty() && isText(text.front())) {
        event->ignore(); // Alt with a letter belongs to the menu
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void FilterEdit::keyReleaseEvent(QKeyEvent *event)
{
    QLineEdit::keyReleaseEvent(event);
    // A held key is released once, when it goes up; a repeated letter is a change all the same.
    const bool own = event->isAutoRepeat() ? m_changeUnreported : m_down.remove(keyIdentity(*event));
    if (own) {
        m_changeUnreported = false;
        Q_EMIT keyReleased(event->key());
    }
}

void FilterEdit::inputMethodEvent(QInputMethodEvent *event)
{
    if (event->commitString().isEmpty()) {
        QLineEdit::inputMethodEvent(event);
        return;
    }
    const QString entered = filtered(
        event->commitString(), text().size() - selectedText().size() - event->replacementLength(), nullptr);
    QInputMethodEvent passed(event->preeditString(), event->attributes());
    passed.setCommitString(entered, event->replacementStart(), event->replacementLength());
    QLineEdit::inputMethodEvent(&passed);
    m_lastKey = 0;
    reportChange();
    event->accept();
}

void FilterEdit::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::MiddleButton) {
        if (QApplication::clipboard()->supportsSelection())
            insertFiltered(inOneLine(QApplication::clipboard()->text(QClipboard::Selection)), nullptr);
        m_lastKey = 0;
        reportChange();
        event->accept();
        return;
    }
    QLineEdit::mouseReleaseEvent(event);
}

void FilterEdit::mouseDoubleClickEvent(QMouseEvent *event)
{
    QLineEdit::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton)
        Q_EMIT doubleClicked();
}

void FilterEdit::contextMenuEvent(QContextMenuEvent *event)
{
    const std::unique_ptr<QMenu> menu(createStandardContextMenu());
    const auto actions = menu->actions();
    for (QAction *action : actions) {
        if (!action->text().startsWith(QLineEdit::tr("&Paste"))) // its name is not the same everywhere
            continue;
        action->disconnect();
        QObject::connect(action, &QAction::triggered, this,
                         [this] { insertFiltered(inOneLine(QApplication::clipboard()->text()), nullptr); });
    }
    menu->exec(event->globalPos());
    m_lastKey = 0;
    reportChange();
}

/// Dark desktops are known whose placeholder colour is that of a light one.
void FilterEdit::fadePlaceholder()
{
    constexpr int kHalf = 128;
    QPalette colours = palette();
    QColor faded = colours.color(QPalette::Text);
    faded.setAlpha(kHalf);
    if (colours.color(QPalette::PlaceholderText) == faded)
        return;
    colours.setColor(QPalette::PlaceholderText, faded);
    setPalette(colours);
}

void FilterEdit::changeEvent(QEvent *event)
{
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        fadePlaceholder();
}

void FilterEdit::focusOutEvent(QFocusEvent *event)
{
    m_down.clear();
    QLineEdit::focusOutEvent(event);
    reportChange();
}

} // namespace ui
