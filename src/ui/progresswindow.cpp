#include "ui/progresswindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace ui {

namespace {

QString grouped(qint64 number)
{
    return QLocale(QLocale::Russian).toString(number);
}

} // namespace

class ProgressWindow::Dialog final : public QDialog {
public:
    Dialog(QWidget *parent, const QString &title, bool stoppable)
        : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
          m_label(new QLabel(this)), m_bar(new QProgressBar(this)), m_stoppable(stoppable)
    {
        setObjectName(QStringLiteral("frmprogress"));
        setWindowTitle(title);
        setModal(true);
        m_label->setTextFormat(Qt::PlainText);
        m_bar->setObjectName(QStringLiteral("progress"));
        m_bar->setAccessibleName(title);
        m_bar->setRange(0, kParts);
        constexpr int kCharacters = 52;
        setMinimumWidth(kCharacters * fontMetrics().averageCharWidth());
        auto *column = new QVBoxLayout(this);
        column->addWidget(m_label);
        column->addWidget(m_bar);
        if (stoppable) {
            auto *stop = new QPushButton(QStringLiteral("Остановить"), this);
            stop->setObjectName(QStringLiteral("cmbstop"));
            stop->setToolTip(QStringLiteral("Остановить; сделанное остаётся"));
            stop->setAutoDefault(false);
            connect(stop, &QPushButton::clicked, this, [this] { m_stopped = true; });
            column->addWidget(stop, 0, Qt::AlignRight);
        }
    }

    void showPart(const QString &what, qint64 done, qint64 total)
    {
        m_label->setText(QStringLiteral("%1: %2 из %3").arg(what, grouped(done), grouped(total)));
        m_bar->setValue(total > 0 ? static_cast<int>(done * kParts / total) : 0);
    }

    [[nodiscard]] bool stopped() const noexcept { return m_stopped; }

protected:
    void reject() override
    {
        if (m_stoppable)
            m_stopped = true; // Esc; the operation itself closes the window
    }
    void closeEvent(QCloseEvent *event) override { event->ignore(); }

private:
    static constexpr int kParts = 1000;
    QLabel *m_label;
    QProgressBar *m_bar;
    bool m_stoppable;
    bool m_stopped = false;
};

ProgressWindow::ProgressWindow() = default;

ProgressWindow::~ProgressWindow() = default;

void ProgressWindow::begin(const QString &title, bool stoppable)
{
    m_dialog = std::make_unique<Dialog>(m_active.window(), title, stoppable);
    m_sinceBegin.start();
}

bool ProgressWindow::advance(const QString &what, qint64 done, qint64 total)
{
    if (!m_dialog)
        return true;
    constexpr int kPaintEvery = 40;      // ms
    constexpr int kShortOperation = 150; // ms
    if (!m_dialog->isVisible()) {
        if (m_sinceBegin.elapsed() < kShortOperation)
            return true;
        m_dialog->show();
        m_sincePainted.start();
    }
    if (done == 0 || done == total || m_sincePainted.elapsed() >= kPaintEvery) {
        m_dialog->showPart(what, done, total);
        QCoreApplication::processEvents();
        m_sincePainted.restart();
    }
    return !m_dialog->stopped();
}

void ProgressWindow::end()
{
    m_dialog.reset();
}

} // namespace ui
