#include "cw/ui/keyerpanel.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>

namespace cw {

KeyerPanel::KeyerPanel(Keyer &keyer, ui::Messages &messages, QWidget *parent)
    : QGroupBox(QStringLiteral("CW"), parent), m_keyer(keyer), m_messageBoxes(messages)
{
    setObjectName(QStringLiteral("FRCW"));
    auto *grid = new QGridLayout(this);
    grid->setVerticalSpacing(4);
    makeMessages(grid);
    TXklaw = ui::makeEdit(this, "TXklaw", QStringLiteral("TX с клавиатуры: каждый знак передаётся сразу"), 8);
    TXklaw->setFilter([this](QChar c, qsizetype, const QKeyEvent *event) { return typed(c, event); });
    m_keyboardLabel = ui::makeLabel(this, QStringLiteral("TX с клавиатуры"), TXklaw);
    m_keyboardLabel->setToolTip(QStringLiteral("F12 открывает и закрывает поле"));
    QSizePolicy keep = TXklaw->sizePolicy();
    keep.setRetainSizeWhenHidden(true);
    TXklaw->setSizePolicy(keep);
    TXklaw->hide();
    m_keyed = ui::makeDisplay(this, "txtpered", QStringLiteral("Передаваемый текст"), 12);
    m_keyed->setPlaceholderText(QStringLiteral("Esc прерывает передачу"));

    auto *keyboard = new QHBoxLayout; // over two columns: its label is longer than the keys' names
    keyboard->setSpacing(6);
    keyboard->addWidget(ui::makeLabel(this, QStringLiteral("F12")));
    keyboard->addWidget(m_keyboardLabel);
    keyboard->addWidget(TXklaw, 1);
    grid->addLayout(keyboard, 1, 6, 1, 2);
    auto *settings = new QHBoxLayout;
    settings->setSpacing(8);
    makeSpeed(settings);
    makePorts(settings);
    settings->addWidget(ui::makeLabel(this, QStringLiteral("Передаётся"), m_keyed));
    settings->addWidget(m_keyed, 2);
    grid->addLayout(settings, 2, 0, 1, 8);

    connect(&m_keyer, &Keyer::keying, this, &KeyerPanel::showKeyed);
    connect(&m_keyer, &Keyer::ended, this, [this] {
        m_keyed->clear();
        showSpeed();
    });
    setPort(1);
    showSpeed();
}

void KeyerPanel::makeMessages(QGridLayout *grid)
{
    struct Message {
        const char *name;
        int key;
        QString label;
        QString text;
    };
    const std::array<Message, 7> messages = {{
        {"txtf1", Qt::Key_F1, QStringLiteral("F1"), QStringLiteral("cq cq de")},
        {"txtf2", Qt::Key_F2, QStringLiteral("F2"), QString()},
        {"txtf3", Qt::Key_F3, QStringLiteral("F3"), QStringLiteral("PSE K")},
        {"TXTF7", Qt::Key_F7, QStringLiteral("F7"), QStringLiteral("my qth moscow")},
        {"TXTF8", Qt::Key_F8, QStringLiteral("F8"), QStringLiteral("my name is ")},
        {"TXTF9", Qt::Key_F9, QStringLiteral("F9"), QStringLiteral("vy73 best dx gb")},
        {"TXTF11", Qt::Key_F11, QStringLiteral("F11"), QStringLiteral("корресп.")},
    }};
    int place = 0;
    for (const Message &message : messages) {
        ui::FilterEdit *edit =
            ui::makeEdit(this, message.name, QStringLiteral("Сообщение клавиши ") + message.label, 10);
        edit->setText(message.text);
        m_messages.insert(message.key, edit);
        const int row = place / 4;
        const int column = place % 4 * 2;
        grid->addWidget(ui::makeLabel(this, message.label, edit), row, column);
        grid->addWidget(edit, row, column + 1);
        ++place;
    }
    for (int column = 1; column < 8; column += 2)
        grid->setColumnStretch(column, 1);
    txtf2 = m_messages.value(Qt::Key_F2);
    TXTF11 = m_messages.value(Qt::Key_F11);
}

void KeyerPanel::makeSpeed(QHBoxLayout *row)
{
    HScroll2 = new QSlider(Qt::Horizontal, this);
    HScroll2->setObjectName(QStringLiteral("HScroll2"));
    HScroll2->setRange(Speed::kSlowest, Speed::kFastest);
    HScroll2->setValue(Speed::kStart);
    HScroll2->setMinimumWidth(ui::editWidth(this, 10));
    HScroll2->setToolTip(QStringLiteral("Скорость передачи"));
    HScroll2->setAccessibleName(QStringLiteral("Скорость"));
    m_wordsPerMinute = ui::makeLabel(this, QString());
    m_wordsPerMinute->setObjectName(QStringLiteral("lblwpm"));
    m_wordsPerMinute->setMinimumWidth(
        m_wordsPerMinute->fontMetrics().horizontalAdvance(QStringLiteral("1000 слов/мин")));
    connect(HScroll2, &QSlider::valueChanged, this, [this](int bar) {
        m_keyer.speed().setBar(bar);
        showSpeed();
    });
    row->addWidget(ui::makeLabel(this, QStringLiteral("Скорость"), HScroll2));
    row->addWidget(HScroll2, 1);
    row->addWidget(m_wordsPerMinute);
}

void KeyerPanel::makePorts(QHBoxLayout *row)
{
    for (int i = 0; i < 4; ++i) {
        auto *option = new QRadioButton(QStringLiteral("Com%1").arg(i + 1), this);
        option->setObjectName(QStringLiteral("Option%1").arg(i + 1));
        m_ports[static_cast<std::size_t>(i)] = option;
        row->addWidget(option);
        connect(option, &QRadioButton::clicked, this, [this, i] {
            setPort(i + 1);
            Q_EMIT portChosen(i + 1);
        });
    }
}

void KeyerPanel::showEvent(QShowEvent *event)
{
    QGroupBox::showEvent(event);
    for (std::size_t i = 0; i < m_ports.size(); ++i) {
        const QString device = m_keyer.line().deviceName(static_cast<int>(i) + 1);
        m_ports[i]->setToolTip(device.isEmpty() ? QStringLiteral("Такого порта в компьютере нет") : device);
    }
}

void KeyerPanel::showSpeed()
{
    m_wordsPerMinute->setText(QStringLiteral("%1 слов/мин").arg(m_keyer.speed().wordsPerMinute()));
}

void KeyerPanel::showKeyed(const QString &text, qsizetype characters)
{
    m_keyed->setText(text);
    m_keyed->setToolTip(m_keyed->accessibleName());
    m_keyed->setSelection(0,
                          static_cast<int>(characters)); // what is out already, the running character with it
}

void KeyerPanel::send(const QString &text)
{
    const Result result = m_keyer.send(text, m_port);
    if (result.outcome != Outcome::Busy)
        return;
    const QString device = m_keyer.line().deviceName(m_port);
    const QString port = QStringLiteral("Com%1 %2").arg(m_port).arg(device).trimmed();
    m_keyed->setText(port + QStringLiteral(": ") + result.reason);
    m_keyed->setCursorPosition(0);
    m_keyed->setToolTip(m_keyed->text());
    m_messageBoxes.inform(QStringLiteral("Порт занят"), ui::programTitle());
}

QChar KeyerPanel::typed(QChar c, const QKeyEvent *event)
{
    // The field shows what went on the air: nothing pasted, and nothing from a key that is only held.
    if (event == nullptr || event->isAutoRepeat())
        return {};
    send(QString(c));
    return c;
}

void KeyerPanel::setPort(int port)
{
    m_port = port;
    m_ports[static_cast<std::size_t>(port - 1)]->setChecked(true);
}

bool KeyerPanel::keyboardFieldShown() const
{
    return !TXklaw->isHidden();
}

bool KeyerPanel::toggleKeyboardField()
{
    if (keyboardFieldShown()) {
        TXklaw->clear();
        TXklaw->hide();
        return false;
    }
    TXklaw->show();
    TXklaw->setFocus();
    return true;
}

} // namespace cw
