#include "calc/ui/calculatorpanel.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>

#include <algorithm>
#include <array>

namespace calc {

namespace {

struct Key {
    const char *name;
    QString caption;
    QString tip;
    int row;
    int column;
    int rows = 1;
    int columns = 1;
};

/// Caption of the calculator's key that a typed key stands for; empty for a key that is none of its.
QString typedCaption(const QKeyEvent &event)
{
    if ((event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0)
        return {};
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return QStringLiteral("=");
    case Qt::Key_Backspace:
        return QStringLiteral("00>0");
    case Qt::Key_Delete:
        return QStringLiteral("C");
    default:
        break;
    }
    // By the character, not by the key: the keypad, both layouts and every keyboard are alike then.
    QString typed = event.text();
    if (typed.size() != 1)
        return {};
    if (QStringLiteral("0123456789,+-*/=").contains(typed))
        return typed;
    if (typed == QLatin1String("."))
        return QStringLiteral(",");
    if (QStringLiteral("cC\u0441\u0421").contains(typed)) // the Cyrillic letter is on the same key
        return QStringLiteral("C");
    return {};
}

QString faultText(Fault fault)
{
    switch (fault) {
    case Fault::MemoryEmpty:
        return QStringLiteral("Память пуста.");
    case Fault::NegativeRoot:
        return QStringLiteral("Корень из отрицательного числа не извлекается.");
    case Fault::TooLarge:
        return QStringLiteral("Число слишком велико.");
    case Fault::None:
        break;
    }
    return {};
}

} // namespace

CalculatorPanel::CalculatorPanel(ui::Messages &messages, QWidget *parent)
    : QGroupBox(QStringLiteral("Калькулятор"), parent), m_messages(messages)
{
    setObjectName(QStringLiteral("FrKalk"));
    m_display = makeBox("txtrzK", QStringLiteral("Число или результат"), 1.1);
    m_display->setFocusPolicy(Qt::StrongFocus); // the keyboard's way in
    m_memory = makeBox("txtMr", QStringLiteral("Число в памяти"), 1.0);

    auto *grid = new QGridLayout(this);
    grid->setSpacing(3);
    constexpr int kColumns = 5;
    grid->addWidget(m_display, 0, 0, 1, kColumns);
    auto *memoryRow = new QHBoxLayout;
    memoryRow->addWidget(ui::makeLabel(this, QStringLiteral("MR"), m_memory));
    memoryRow->addWidget(m_memory);
    grid->addLayout(memoryRow, 1, 0, 1, kColumns);

    // From the top left to the bottom right, as Tab goes.
    const auto digitTip = [](const char *digit) { return QStringLiteral("Цифра ") + QLatin1String(digit); };
    const std::array<Key, 23> keys = {{
        {"cmbmc", QStringLiteral("MC"), QStringLiteral("Очистить память"), 2, 0},
        {"cmbdej1_1", QStringLiteral("M+"), QStringLiteral("Прибавить к памяти"), 2, 1},
        {"cmbdej1_2", QStringLiteral("M-"), QStringLiteral("Вычесть из памяти"), 2, 2},
        {"cmbdej1_0", QStringLiteral("+/-"), QStringLiteral("Сменить знак"), 2, 3},
        {"cmbdej1_3", QStringLiteral("кор"), QStringLiteral("Квадратный корень"), 2, 4},
        {"cmbnr_7", QStringLiteral("7"), digitTip("7"), 3, 0},
        {"cmbnr_8", QStringLiteral("8"), digitTip("8"), 3, 1},
        {"cmbnr_9", QStringLiteral("9"), digitTip("9"), 3, 2},
        {"cmbdej_3", QStringLiteral("/"), QStringLiteral("Разделить"), 3, 3},
        {"cmbdej1_4", QStringLiteral("00>0"), QStringLiteral("Стереть последний знак (Backspace)"), 3, 4},
        {"cmbnr_4", QStringLiteral("4"), digitTip("4"), 4, 0},
        {"cmbnr_5", QStringLiteral("5"), digitTip("5"), 4, 1},
        {"cmbnr_6", QStringLiteral("6"), digitTip("6"), 4, 2},
        {"cmbdej_2", QStringLiteral("*"), QStringLiteral("Умножить"), 4, 3},
        {"cmbdej_4", QStringLiteral("C"), QStringLiteral("Сброс, память остаётся (Delete)"), 4, 4},
        {"cmbnr_1", QStringLiteral("1"), digitTip("1"), 5, 0},
        {"cmbnr_2", QStringLiteral("2"), digitTip("2"), 5, 1},
        {"cmbnr_3", QStringLiteral("3"), digitTip("3"), 5, 2},
        {"cmbdej_1", QStringLiteral("-"), QStringLiteral("Вычесть"), 5, 3},
        {"cmbsum", QStringLiteral("="), QStringLiteral("Равно (Enter)"), 5, 4, 2, 1},
        {"cmbnr_0", QStringLiteral("0"), digitTip("0"), 6, 0, 1, 2},
        {"cmbnr_10", QStringLiteral(","), QStringLiteral("Десятичная запятая"), 6, 2},
        {"cmbdej_0", QStringLiteral("+"), QStringLiteral("Сложить"), 6, 3},
    }};
    for (const Key &key : keys)
        grid->addWidget(makeKey(key.name, key.caption, key.tip), key.row, key.column, key.rows, key.columns);
    for (int column = 0; column < kColumns; ++column)
        grid->setColumnStretch(column, 1);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Maximum);
}

ui::FilterEdit *CalculatorPanel::makeBox(const char *name, const QString &tip, double size)
{
    ui::FilterEdit *box = ui::makeDisplay(this, name, tip, 1);
    ui::enlarge(box, size, false);
    box->setAlignment(Qt::AlignRight);
    constexpr int kFrame = 14;
    const QString longest = QStringLiteral("-0,00000000000000e-000"); // that a result can get
    box->setMinimumWidth(box->fontMetrics().horizontalAdvance(longest) + kFrame);
    box->installEventFilter(this);
    return box;
}

QPushButton *CalculatorPanel::makeKey(const char *name, const QString &caption, const QString &tip)
{
    QPushButton *button = ui::makeButton(this, name, caption, tip);
    // The style's own width would make the panel twice as wide as it need be.
    constexpr int kMargins = 10;
    const QFontMetrics metrics = button->fontMetrics();
    button->setMinimumWidth(kMargins + std::max(metrics.horizontalAdvance(caption),
                                                metrics.horizontalAdvance(QStringLiteral("кор"))));
    button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::MinimumExpanding);
    button->setFocusPolicy(Qt::TabFocus);
    button->installEventFilter(this);
    connect(button, &QPushButton::clicked, this, [this, caption] { press(caption); });
    return button;
}

QSize CalculatorPanel::sizeHint() const
{
    return minimumSizeHint(); // the keys ask for no more
}

void CalculatorPanel::open()
{
    m_calculator.shown();
    showState();
    show();
    m_display->setFocus();
}

void CalculatorPanel::press(const QString &caption)
{
    const Fault fault = m_calculator.press(caption);
    showState();
    if (fault != Fault::None)
        m_messages.inform(faultText(fault), title());
}

void CalculatorPanel::showState()
{
    m_display->showText(m_calculator.display());
    m_memory->showText(m_calculator.memory());
}

bool CalculatorPanel::event(QEvent *event)
{
    // A menu's shortcut must not take a key from the calculator in use.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Escape || !typedCaption(*key).isEmpty()) {
            event->accept();
            return true;
        }
    }
    return QGroupBox::event(event);
}

bool CalculatorPanel::eventFilter(QObject *watched, QEvent *event)
{
    const bool box = watched == m_display || watched == m_memory;
    if (box && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->matches(QKeySequence::Copy) || key->matches(QKeySequence::SelectAll))
            return false; // a result may be taken elsewhere
        event->ignore();  // the box itself would keep it; so it comes to the panel, and from there goes on
        return true;
    }
    // The mouse leaves the focus where typing goes on, also when Tab had brought it to a key.
    if (!box && event->type() == QEvent::MouseButtonPress)
        m_display->setFocus(Qt::MouseFocusReason);
    return QGroupBox::eventFilter(watched, event);
}

void CalculatorPanel::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT closeAsked();
        return;
    }
    const QString caption = typedCaption(*event);
    if (caption.isEmpty()) {
        QGroupBox::keyPressEvent(event);
        return;
    }
    // A held Enter would evaluate again, with nothing pending any more, and so wipe the result out.
    if (caption != QLatin1String("=") || !event->isAutoRepeat())
        press(caption);
}

} // namespace calc
