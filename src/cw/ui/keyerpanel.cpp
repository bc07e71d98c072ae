#include "cw/ui/keyerpanel.h"

#include <QGridLayout>
#include <QHBoxLayout>

namespace cw {

KeyerPanel::KeyerPanel(QWidget *parent) : QGroupBox(QStringLiteral("CW"), parent)
{
    setObjectName(QStringLiteral("FRCW"));
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
    auto *grid = new QGridLayout(this);
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
    TXTF11 = m_messages.value(Qt::Key_F11);
    TXklaw = ui::makeEdit(this, "TXklaw", QStringLiteral("TX с клавиатуры"), 10);
    m_keyboardLabel = ui::makeLabel(this, QStringLiteral("F12  TX с клавиатуры"), TXklaw);
    grid->addWidget(m_keyboardLabel, 2, 0, 1, 2);
    grid->addWidget(TXklaw, 2, 2, 1, 2);
    TXklaw->hide();
    auto *ports = new QHBoxLayout;
    for (int i = 0; i < 4; ++i) {
        auto *option = new QRadioButton(QStringLiteral("Com%1").arg(i + 1), this);
        option->setObjectName(QStringLiteral("Option%1").arg(i + 1));
        m_ports[static_cast<std::size_t>(i)] = option;
        ports->addWidget(option);
        connect(option, &QRadioButton::clicked, this, [this, i] {
            setPort(i + 1);
            Q_EMIT portChosen(i + 1);
        });
    }
    ports->addStretch();
    grid->addLayout(ports, 2, 4, 1, 4);
    setPort(1);
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
