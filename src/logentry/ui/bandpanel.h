#pragma once

#include "logentry/bands.h"
#include "ui/widgets.h"

#include <QGroupBox>
#include <QSet>

#include <array>

namespace logentry {

/// Twelve band buttons, the band label, the mode button and, while it is open, the panel of modes.
class BandPanel : public QGroupBox {
    Q_OBJECT

public:
    explicit BandPanel(QWidget *parent = nullptr);

    /// Shows which buttons are marked and the band label.
    void showBand(const BandSelector &bands);
    void focusBand(int index);
    void openModes();
    void closeModes();

    QPushButton *CMBMOD;
    QLabel *lblband;

Q_SIGNALS:
    void bandClicked(int index);
    void bandKeyReleased(int key);
    /// Enter on a band button.
    void bandEntered();
    void modeClicked();
    /// A mode button was clicked, or Enter was pressed on it.
    void modeChosen(const QString &caption);
    /// Esc in the panel of modes.
    void modesLeft();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool filterBand(QEvent *event);
    bool filterMode(QPushButton *button, QEvent *event);

    std::array<QPushButton *, kBandCount> m_bands{};
    QList<QPushButton *> m_modes;
    QGroupBox *m_modePanel;
    QSet<int> m_keysDown;
};

} // namespace logentry
