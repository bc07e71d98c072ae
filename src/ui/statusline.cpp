#include "ui/statusline.h"

namespace ui {

StatusLine::StatusLine(Messages &messages, QWidget *parent) : QLabel(parent), m_messages(messages)
{
    setObjectName(QStringLiteral("lblitog"));
    setAccessibleName(QStringLiteral("Итог"));
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // a long line must not widen the window
    constexpr int kMargins = 6;
    setMinimumHeight(fontMetrics().height() + kMargins);
}

bool StatusLine::asked(const std::function<void()> &operation)
{
    try {
        operation();
        return true;
    } catch (const store::Error &error) {
        m_messages.error(error);
        return false;
    }
}

void StatusLine::typed(const std::function<void()> &operation)
{
    try {
        operation();
        tell(QString());
    } catch (const store::Error &error) {
        tell(error);
    }
}

bool StatusLine::quietly(const std::function<void()> &operation)
{
    const QString before = text();
    const QString details = toolTip();
    try {
        operation();
        setText(before); // what is shown on the way may have written into it
        setToolTip(details);
        return true;
    } catch (const store::Error &error) {
        tell(error);
        return false;
    }
}

void StatusLine::tell(const QString &text)
{
    setText(text);
    setToolTip({});
}

void StatusLine::tell(const store::Error &error)
{
    setText(error.line());
    setToolTip(error.details());
}

} // namespace ui
