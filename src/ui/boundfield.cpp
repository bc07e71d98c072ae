#include "ui/boundfield.h"

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
        m_run([&] { m_source.setField(m_field, text); });
        if (m_source.editPending())
            show(); // a source that has only now been opened shows its row; the typed text goes before it
    });
    connect(m_edit, &QLineEdit::editingFinished, this, [this] { m_run([this] { savePending(m_source); }); });
    show();
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
