#pragma once

#include <QLineEdit>
#include <QSet>

#include <functional>

namespace ui {

/// Entry field whose characters pass a filter, however they come in: typed, pasted, composed or dropped with
/// the middle button. Characters that are no text (line ends, tabs, other control characters) never enter; in
/// a pasted text line ends and tabs become blanks.
class FilterEdit : public QLineEdit {
    Q_OBJECT

public:
    /// Gives the character to enter for a typed one, or a null character to swallow it. `length` is the
    /// number of characters that stay in the field beside it; `event` is the key, null for a paste.
    using Filter = std::function<QChar(QChar typed, qsizetype length, const QKeyEvent *event)>;

    explicit FilterEdit(QWidget *parent = nullptr);
    void setFilter(Filter filter) { m_filter = std::move(filter); }

    /// The whole text of which characters are passing the filter now.
    [[nodiscard]] const QString &entering() const noexcept { return m_entering; }

    /// Reports a change whose key has not gone up yet, if there is one.
    void reportChange();

    /// Sets the text past the filter and leaves the cursor where it was if the text is the same.
    void showText(const QString &text);

Q_SIGNALS:
    /// A key goes down in the field, before it has its effect.
    void keyPressing(const QKeyEvent *event);
    /// Enter or the keypad's Enter.
    void enterPressed();
    /// A key goes up that went down in this field. A key that went down elsewhere and only brought the focus
    /// here is no key of this field. Comes also, once, for a change whose key is still down when the field is
    /// left, and for text that came without a key (then 0): no change of the text stays without it.
    void keyReleased(int key);
    void doubleClicked();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void fadePlaceholder();
    void insertFiltered(const QString &text, const QKeyEvent *event);
    [[nodiscard]] QString filtered(const QString &text, qsizetype length, const QKeyEvent *event);

    Filter m_filter;
    QString m_entering;
    QSet<quint64> m_down;
    bool m_changeUnreported = false;
    int m_lastKey = 0;
};

} // namespace ui
