#pragma once

#include "store/datasource.h"

#include <QLineEdit>
#include <QObject>

#include <functional>

namespace ui {

/// Saves a source's pending edit. In a file that can only be read, and where the row has been deleted
/// meanwhile, the edit is dropped: one that stays pending for ever would stand in the way of everything else.
/// Rows of which one is gone are read anew soon after. Throws Error.
void savePending(store::DataSource &source);

/// Binds an entry field to a field of a data source's current row: shows it, and puts what the operator types
/// into the pending edit, which the source saves when it moves or is refreshed, and this object when the
/// field is left. An edit that could not be saved then is tried again whenever a field of its row is left.
class BoundField : public QObject {
    Q_OBJECT

public:
    /// Runs an operation and shows its failure.
    using Run = std::function<void(const std::function<void()> &)>;

    /// `run` runs what the operator types, `reading` what only shows the row, which may come at any time: it
    /// should leave alone what is told. Without it `run` does both.
    BoundField(QLineEdit *edit, store::DataSource &source, QString field, Run run, Run reading = {});

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void show();

    QLineEdit *m_edit;
    store::DataSource &m_source;
    QString m_field;
    Run m_run;
    Run m_reading;
    bool m_typed = false; ///< since the field was left or Enter pressed in it
};

} // namespace ui
