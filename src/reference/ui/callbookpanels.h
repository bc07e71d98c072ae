#pragma once

#include "reference/callbook.h"
#include "ui/boundfield.h"
#include "ui/filteredit.h"
#include "ui/statusline.h"

#include <QGroupBox>
#include <QList>

namespace reference {

/// What the log knows of the station. Call is shown; the other boxes can be corrected before a record is made
/// of them.
class LogFrame : public QGroupBox {
    Q_OBJECT

public:
    explicit LogFrame(QWidget *parent);

    void show(const StationInLog &known);
    [[nodiscard]] StationInLog known() const;

    ui::FilterEdit *txtlogcall;
    ui::FilterEdit *txtlogname;
    ui::FilterEdit *txtlogqth;
    ui::FilterEdit *txtlogqslvia;
};

/// The station's record in the callbook, edited in place: its boxes are bound to the row.
class RecordFrame : public QGroupBox {
    Q_OBJECT

public:
    RecordFrame(store::DataSource &record, ui::StatusLine &status, QWidget *parent);

    /// All ten boxes are empty: the station has no record.
    [[nodiscard]] bool isEmpty() const;
    /// The boxes take no text where nothing could store it.
    void lock(bool locked);

    /// txtccall, txtfam, ... in the order of the Enter key.
    [[nodiscard]] const QList<ui::FilterEdit *> &boxes() const noexcept { return m_boxes; }
    /// The first box that a new record leaves empty.
    [[nodiscard]] ui::FilterEdit *txtfam() const { return m_boxes[1]; }

Q_SIGNALS:
    /// A letter was typed into a locked box.
    void refused();

private:
    QList<ui::FilterEdit *> m_boxes;
};

} // namespace reference
