#include "ui/boundfield.h"

#include <QFocusEvent>

#include <utility>

namespace ui {

namespace {

void readAnew(store::DataSource &source)
{
    try {
        source.refresh();
    } catch (const store::Error &) {
        source.cancelUpdate(); // it shows nothing, and its next reading tells why
    }
}

} // namespace

void savePending(store::DataSource &source)
{
    try {
        source.update();
    } catch (const store::Error &error) {
        const bool gone = error.kind() == store::ErrorKind::Gone;
        if (gone || error.kind() == store::ErrorKind::ReadOnly)
            source.cancelUpdate(); // the field shows again what is there
        if (gone)                  // not now: a view may be in the middle of going from row to row
            QMetaObject::invokeMethod(
                &source, [&source] { readAnew(source); }, Qt::QueuedConnection);
        throw;
    }
}

BoundField::BoundField(QLineEdit *edit, store::DataSource &source, QString field, Run run, Run reading)
    : QObject(edit), m_edit(edit), m_source(source), m_field(std::move(field)), m_run(std::move(run)),
      m_reading(reading ? std::move(reading) : m_run)
{
    connect(&m_source, &store::DataSource::currentChanged, this, [this] { show(); });
    // Another field bound to the same one has been typed into.
    connect(&m_source, &store::DataSource::rowChanged, this, [this](int row) {
        if (row == m_source.currentRow())
            show();
    });
    connect(m_edit, &QLineEdit::textEdited, this, [this](const QString &text) {
        m_typed = true;
        m_run([&] { m_source.setField(m_field, text); });
        if (m_source.editPending())
            show(); // a source that has only now been opened shows its row; the typed text goes before it
    });
    connect(m_edit, &QLineEdit::editingFinished, this, [this] {
        m_typed = false;
        m_run([this] { savePending(m_source); });
    });
    m_edit->installEventFilter(this);
    show();
}

/// The field tells that it is left only where it has been typed into. A window that comes in front, such as
/// the message of this very failure, leaves no field.
bool BoundField::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut && !m_typed && m_source.editPending()) {
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason)
            m_run([this] { savePending(m_source); });
    }
    return QObject::eventFilter(watched, event);
}

void BoundField::show()
{
    m_reading([this] {
        const QString text = m_source.field(m_field);
        if (m_edit->text() == text)
            return;
        m_edit->setText(text);
        if (!m_edit->hasFocus())
            m_edit->setCursorPosition(0); // a text longer than the field is read from its beginning
    });
}

} // namespace ui
