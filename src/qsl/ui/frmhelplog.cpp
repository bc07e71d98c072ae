#include "qsl/ui/frmhelplog.h"

#include "qsl/sql.h"
#include "ui/widgets.h"

#include <QCloseEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScreen>
#include <QScrollBar>
#include <QShowEvent>
#include <QVBoxLayout>

namespace qsl {

namespace {

const QString kField = QStringLiteral("txthelp");

} // namespace

frmhelplog::frmhelplog(const Services &services, QWidget *parent)
    : QWidget(parent, Qt::Window), m_services(services), Data1(QStringLiteral("Data1"), services.databases)
{
    setObjectName(QStringLiteral("frmhelplog"));
    setWindowTitle(QStringLiteral("Подсказки"));
    setAttribute(Qt::WA_QuitOnClose, false);
    buildLayout();
    load();
    connect(txthelp, &QPlainTextEdit::textChanged, this, &frmhelplog::typed);
    connect(Command1, &QPushButton::clicked, this, &QWidget::close);
}

frmhelplog::~frmhelplog()
{
    (void)save(); // the program may end without closing its windows one by one
}

void frmhelplog::buildLayout()
{
    txthelp = new QPlainTextEdit(this);
    txthelp->setObjectName(QStringLiteral("txthelp"));
    txthelp->setToolTip(QStringLiteral("Подсказки. Текст можно править: он сохраняется, когда вы уходите из "
                                       "окна"));
    txthelp->setAccessibleName(QStringLiteral("Подсказки"));
    txthelp->setTabChangesFocus(true);
    txthelp->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont)); // keys and texts stand in columns
    lblstatus = ui::makeLabel(this, QString());
    lblstatus->setObjectName(QStringLiteral("lblstatus"));
    lblstatus->setAccessibleName(QStringLiteral("Строка сообщений"));
    lblstatus->setWordWrap(true);
    Command1 = ui::makeButton(this, "Command1", QStringLiteral("Выход"), QStringLiteral("Закрыть окно"));
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(lblstatus, 1);
    bottom->addWidget(Command1);
    auto *column = new QVBoxLayout(this);
    column->addWidget(txthelp, 1);
    column->addLayout(bottom);
    setTabOrder(Command1, txthelp);
}

/// The window as it is when it is new.
void frmhelplog::load()
{
    m_loaded = true;
    Data1.setDatabaseName(m_services.databases.path(u"\\dbhelp.mdb"));
    m_delivered.reset();
    showText(QStringLiteral("F5 - Ввести название города\nF4 - Ввод QSO"));
    txthelp->setReadOnly(true); // until the text is there
    clearFailure();
    Command1->setFocus(); // keys pressed by chance must not change the text

    constexpr int kCharacters = 91;
    constexpr int kLines = 60;
    constexpr int kMargins = 40;    // of the window, the field and its text
    constexpr QSize kFrame(20, 60); // the window's own and the desktop's bars
    const QFontMetrics metrics = txthelp->fontMetrics();
    const QSize wanted(metrics.horizontalAdvance(QString(kCharacters, QLatin1Char('0'))) + kMargins +
                           txthelp->verticalScrollBar()->sizeHint().width(),
                       kLines * metrics.lineSpacing());
    resize(screen() != nullptr ? wanted.boundedTo(screen()->availableSize() - kFrame) : wanted);
}

// ---- the text

void frmhelplog::showText(const QString &text)
{
    m_showing = true;
    txthelp->setPlainText(text);
    m_showing = false;
}

void frmhelplog::activated()
{
    try {
        Data1.setRecordSource(sql::helpText());
        Data1.refresh(); // a pending edit is saved first
        const QString text = Data1.field(kField);
        // Only another text is shown anew, so that the place in it stays.
        if (text != m_delivered)
            showText(text);
        m_delivered = text;
        m_lineFeeds = !text.contains(QLatin1Char('\r'));
        // Without a row, or in a file that is only read, nothing could take what is typed.
        txthelp->setReadOnly(Data1.isEmpty() ||
                             m_services.databases.connection(Data1.databaseName()).readOnly());
        clearFailure();
    } catch (const store::Error &error) {
        showFailure(error);
    }
}

void frmhelplog::typed()
{
    if (m_showing)
        return;
    QString text = txthelp->toPlainText();
    if (!m_lineFeeds)
        text.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    try {
        Data1.setField(kField, text);
        m_delivered = text;
    } catch (const store::Error &error) {
        showFailure(error);
    }
}

bool frmhelplog::save()
{
    if (!Data1.editPending())
        return true;
    try {
        Data1.update();
        clearFailure();
        return true;
    } catch (const store::Error &error) {
        showFailure(error);
        return false;
    }
}

void frmhelplog::showFailure(const store::Error &error)
{
    lblstatus->setText(error.line());
    lblstatus->setToolTip(error.details());
    if (!Data1.editPending())
        txthelp->setReadOnly(true);
}

void frmhelplog::clearFailure()
{
    lblstatus->clear();
    lblstatus->setToolTip({});
}

// ---- showing, leaving, closing

bool frmhelplog::event(QEvent *event)
{
    if (m_loaded && event->type() == QEvent::WindowActivate)
        activated();
    else if (m_loaded && event->type() == QEvent::WindowDeactivate)
        (void)save();
    return QWidget::event(event);
}

void frmhelplog::showEvent(QShowEvent *event)
{
    if (!m_loaded && !event->spontaneous())
        load();
    QWidget::showEvent(event);
}

void frmhelplog::closeEvent(QCloseEvent *event)
{
    if (!save()) {
        const QString question = QStringLiteral("Правка подсказок не сохранена. %1\n\nЗакрыть окно без неё?")
                                     .arg(lblstatus->text());
        if (!m_services.messages.askYesNo(question, windowTitle())) {
            event->ignore();
            return;
        }
        Data1.cancelUpdate();
    }
    m_loaded = false;
    event->accept();
}

void frmhelplog::keyPressEvent(QKeyEvent *event)
{
    // Keys that the button leaves: the text scrolls without having the focus.
    QScrollBar *bar = txthelp->verticalScrollBar();
    switch (event->key()) {
    case Qt::Key_Escape:
        close();
        return;
    case Qt::Key_PageDown:
        bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
        return;
    case Qt::Key_PageUp:
        bar->triggerAction(QAbstractSlider::SliderPageStepSub);
        return;
    case Qt::Key_Home:
        bar->triggerAction(QAbstractSlider::SliderToMinimum);
        return;
    case Qt::Key_End:
        bar->triggerAction(QAbstractSlider::SliderToMaximum);
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace qsl
