#pragma once

#include "ui/boundfield.h"

#include <QPlainTextEdit>

namespace ui {

/// Binds a text of several lines to a field of a data source's current row, as BoundField binds one line. The
/// ends of lines stay as the stored text has them; a text without any gets line feeds.
class BoundText : public QObject {
    Q_OBJECT

public:
    BoundText(QPlainTextEdit *edit, store::DataSource &source, QString field, BoundField::Run run);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void show();
    void typed();

    QPlainTextEdit *m_edit;
    store::DataSource &m_source;
    QString m_field;
    BoundField::Run m_run;
    bool m_showing = false;
    bool m_carriageReturns = false;
};

} // namespace ui
