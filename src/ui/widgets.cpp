#include "ui/widgets.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>

namespace ui {

namespace {

class EnterButton final : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (enter && !event->isAutoRepeat())
            click();
        else if (!enter)
            QPushButton::keyPressEvent(event);
    }
};

} // namespace

int editWidth(const QWidget *widget, int characters)
{
    constexpr int kFrame = 14;
    return characters * widget->fontMetrics().horizontalAdvance(QLatin1Char('W')) * 4 / 5 + kFrame;
}

FilterEdit *makeEdit(QWidget *parent, const char *name, const QString &tip, int characters)
{
    auto *edit = new FilterEdit(parent);
    edit->setObjectName(QLatin1String(name));
    edit->setToolTip(tip);
    edit->setAccessibleName(tip);
    edit->setMinimumWidth(editWidth(edit, characters));
    return edit;
}

FilterEdit *makeDisplay(QWidget *parent, const char *name, const QString &tip, int characters)
{
    FilterEdit *edit = makeEdit(parent, name, tip, characters);
    edit->setReadOnly(true);
    edit->setFocusPolicy(Qt::ClickFocus);
    return edit;
}

QPushButton *makeButton(QWidget *parent, const char *name, const QString &caption, const QString &tip)
{
    auto *button = new EnterButton(caption, parent);
    button->setObjectName(QLatin1String(name));
    button->setToolTip(tip);
    button->setAccessibleName(tip.isEmpty() ? caption : tip);
    button->setAutoDefault(false);
    return button;
}

QLabel *makeLabel(QWidget *parent, const QString &text, QWidget *buddy)
{
    auto *label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    if (buddy != nullptr)
        label->setBuddy(buddy);
    return label;
}

void fillScrolled(QWidget *window, QWidget *content, QSize wanted, QWidget *foot)
{
    auto *area = new QScrollArea(window);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(content);
    auto *whole = new QVBoxLayout(window);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(0);
    whole->addWidget(area, 1);
    if (foot != nullptr) {
        foot->setContentsMargins(8, 2, 8, 4);
        whole->addWidget(foot);
    }
    constexpr QSize kFrame(20, 60); // the window's own and the desktop's bars
    window->resize(window->screen() != nullptr ? wanted.boundedTo(window->screen()->availableSize() - kFrame)
                                               : wanted);
    // Where the window scrolls, what has the focus is in sight.
    QObject::connect(qApp, &QApplication::focusChanged, area, [area](QWidget *, QWidget *now) {
        if (now == nullptr || !area->isAncestorOf(now))
            return;
        // The whole of it, not only its text cursor.
        constexpr int kAround = 10;
        const QRect place(now->mapTo(area->widget(), QPoint()), now->size());
        const QSize half = (place.size() / 2 + QSize(kAround, kAround))
                               .boundedTo(area->viewport()->size() / 2 - QSize(1, 1));
        area->ensureVisible(place.center().x(), place.center().y(), half.width(), half.height());
    });
}

void onceOthersHaveSaved(QObject *context, const std::function<void()> &function)
{
    const auto behind = [=] {
        if (QApplication::mouseButtons() == Qt::NoButton) {
            QMetaObject::invokeMethod(context, function, Qt::QueuedConnection);
            return;
        }
        constexpr int kReserve = 50; // milliseconds
        QTimer::singleShot(QApplication::doubleClickInterval() + kReserve, context, function);
    };
    QMetaObject::invokeMethod(context, behind, Qt::QueuedConnection);
}

void deleteContent(QWidget *window)
{
    if (QWidget *inside = window->focusWidget())
        inside->clearFocus();
    qDeleteAll(window->findChildren<QWidget *>(Qt::FindDirectChildrenOnly));
}

void upperCased(FilterEdit *edit)
{
    edit->setFilter([](QChar typed, qsizetype, const QKeyEvent *) { return typed.toUpper(); });
}

void keepPlace(QWidget *widget)
{
    QSizePolicy keep = widget->sizePolicy();
    keep.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(keep);
}

void compact(QLayout *layout)
{
    layout->setContentsMargins(8, 4, 8, 4);
    layout->setSpacing(4);
}

void enlarge(QWidget *widget, double factor, bool bold)
{
    QFont font = widget->font();
    font.setPointSizeF(font.pointSizeF() * factor);
    font.setBold(bold);
    widget->setFont(font);
}

} // namespace ui
