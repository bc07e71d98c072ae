#include "logentry/ui/bandpanel.h"

#include "logentry/modes.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace logentry {

namespace {

/// Colours of the band buttons: value 255 of the platform's blue-green-red order is pure red.
const QColor kUnmarked(255, 0, 0);
const QColor kMarked(0xE0, 0xE0, 0xE0);

/// Button in one flat colour; the style's own would shade it.
class BandButton final : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        const QRect box = rect().adjusted(0, 0, -1, -1);
        painter.fillRect(box, palette().color(QPalette::Button));
        painter.setPen(isDown() ? Qt::black : QColor(0x60, 0x60, 0x60));
        painter.drawRect(box);
        if (hasFocus()) {
            painter.setPen(QPen(Qt::black, 2));
            painter.drawRect(box.adjusted(3, 3, -2, -2));
        }
        painter.setPen(palette().color(QPalette::ButtonText));
        painter.drawText(rect(), Qt::AlignCenter, text());
    }
};

void colour(QPushButton *button, const QColor &background)
{
    if (button->palette().color(QPalette::Button) == background)
        return;
    QPalette palette = button->palette();
    palette.setColor(QPalette::Button, background);
    palette.setColor(QPalette::ButtonText, Qt::black); // readable on both, on a dark desktop too
    button->setPalette(palette);
}

bool isEnter(int key)
{
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace

BandPanel::BandPanel(QWidget *parent) : QGroupBox(QStringLiteral("Диапазон и вид излучения"), parent)
{
    auto *row = new QHBoxLayout;
    row->setSpacing(3);
    for (int i = 0; i < kBandCount; ++i) {
        const QByteArray name = "CMBBAND1_" + QByteArray::number(i);
        auto *button = new BandButton(bandCaption(i), this);
        button->setObjectName(QLatin1String(name));
        button->setToolTip(bandText(i) + QStringLiteral(" МГц"));
        button->setAccessibleName(button->toolTip());
        QFont font = button->font();
        font.setBold(true);
        button->setFont(font);
        button->setMinimumWidth(button->fontMetrics().horizontalAdvance(QStringLiteral("0000")) + 10);
        button->installEventFilter(this);
        connect(button, &QPushButton::clicked, this, [this, i] { Q_EMIT bandClicked(i); });
        m_bands[static_cast<std::size_t>(i)] = button;
        row->addWidget(button, 1);
    }
    lblband = ui::makeLabel(this, QString());
    lblband->setObjectName(QStringLiteral("lblband"));
    ui::enlarge(lblband, 1.4, true);
    lblband->setMinimumWidth(lblband->fontMetrics().horizontalAdvance(QStringLiteral("1200 MHz")));
    lblband->setAlignment(Qt::AlignCenter);
    CMBMOD = ui::makeButton(this, "CMBMOD", QStringLiteral("SSB"), QStringLiteral("Вид излучения"));
    ui::enlarge(CMBMOD, 1.2, true);
    connect(CMBMOD, &QPushButton::clicked, this, &BandPanel::modeClicked);
    row->addWidget(lblband);
    row->addWidget(CMBMOD);

    m_modePanel = new QGroupBox(QStringLiteral("Вид излучения"), this);
    m_modePanel->setObjectName(QStringLiteral("FMod"));
    auto *modes = new QHBoxLayout(m_modePanel);
    for (const QString &caption : modeCaptions()) {
        const QByteArray name = "CmbMod1_" + QByteArray::number(m_modes.size());
        QPushButton *button = ui::makeButton(m_modePanel, name.constData(), caption,
                                             QStringLiteral("Вид излучения ") + caption);
        button->installEventFilter(this);
        connect(button, &QPushButton::clicked, this, [this, button] { Q_EMIT modeChosen(button->text()); });
        m_modes.append(button);
        modes->addWidget(button);
    }
    m_modePanel->hide();
    auto *column = new QVBoxLayout(this);
    column->addLayout(row);
    column->addWidget(m_modePanel);
}

void BandPanel::showBand(const BandSelector &bands)
{
    for (int i = 0; i < kBandCount; ++i)
        colour(m_bands[static_cast<std::size_t>(i)], bands.marked(i) ? kMarked : kUnmarked);
    lblband->setText(bands.label());
}

void BandPanel::focusBand(int index)
{
    m_bands[static_cast<std::size_t>(index)]->setFocus();
}

void BandPanel::openModes()
{
    m_modePanel->show();
    QPushButton *current = m_modes.front();
    for (QPushButton *button : std::as_const(m_modes))
        if (button->text() == CMBMOD->text())
            current = button;
    current->setFocus();
}

void BandPanel::closeModes()
{
    m_modePanel->hide();
}

bool BandPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return QGroupBox::eventFilter(watched, event);
    auto *button = qobject_cast<QPushButton *>(watched);
    const bool handled = m_modes.contains(button) ? filterMode(button, event) : filterBand(event);
    return handled || QGroupBox::eventFilter(watched, event);
}

bool BandPanel::filterBand(QEvent *event)
{
    const auto *key = static_cast<QKeyEvent *>(event);
    const bool arrow = key->key() == Qt::Key_Left || key->key() == Qt::Key_Right ||
                       key->key() == Qt::Key_Up || key->key() == Qt::Key_Down;
    if (event->type() == QEvent::KeyRelease) {
        // A key that went down elsewhere, or is only repeated, is no key of the bands.
        if (!key->isAutoRepeat() && m_keysDown.remove(key->key()))
            Q_EMIT bandKeyReleased(key->key());
        return false; // the space bar's click comes with its release
    }
    if (!key->isAutoRepeat())
        m_keysDown.insert(key->key());
    if (isEnter(key->key())) {
        m_keysDown.clear();
        if (!key->isAutoRepeat())
            Q_EMIT bandEntered();
        return true;
    }
    return arrow; // the release moves the mark; the press must not move the focus
}

bool BandPanel::filterMode(QPushButton *button, QEvent *event)
{
    const auto *key = static_cast<QKeyEvent *>(event);
    if (event->type() != QEvent::KeyPress || key->isAutoRepeat())
        return false;
    if (isEnter(key->key())) {
        Q_EMIT modeChosen(button->text());
        return true;
    }
    if (key->key() == Qt::Key_Escape) {
        Q_EMIT modesLeft();
        return true;
    }
    return false;
}

} // namespace logentry
