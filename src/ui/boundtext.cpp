#include "ui/boundtext.h"

#include <QEvent>

#include <utility>

namespace ui {

BoundText::BoundText(QPlainTextEdit *edit, store::DataSource &source, QString field, BoundField::Run run)
    : QObject(edit), m_edit(edit), m_source(source), m_field(std::move(field)), m_run(std::move(run))
{
    connect(&m_source, &store::DataSource::currentChanged, this, &BoundText::show);
    connect(m_edit, &QPlainTextEdit::textChanged, this, &BoundText::typed);
    m_edit->installEventFilter(this);
    show();
}

bool BoundText::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut)
        m_run([this] { savePending(m_source); });
    return QObject::eventFilter(watched, event);
}

void BoundText::show()
{
    m_run([this] {
        QString text = m_source.field(m_field);
        // Without a row, or in a file that is only read, nothing could take what is typed.
        m_edit->setReadOnly(m_source.failed() || (m_source.eof() && !m_source.addPending()) ||
                            !m_source.updatable());
        m_carriageReturns = text.contains(QLatin1String("\r\n"));
        text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
        if (m_edit->toPlainText() == text)
            return; // the place in it stays
        m_showing = true;
        m_edit->setPlainText(text);
        m_showing = false;
    });
}

void BoundText::typed()
{
    if (m_showing)
        return;
    QString text = m_edit->toPlainText();
    if (m_carriageReturns)
        text.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    m_run([&] { m_source.setField(m_field, text); });
}

} // namespace ui
