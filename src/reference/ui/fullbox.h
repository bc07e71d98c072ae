#pragma once

#include <QLineEdit>
#include <QObject>

class QKeyEvent;

namespace reference {

/// A box that holds as many characters as it takes swallows keys, Backspace, cutting and undoing too: it can
/// only be shortened with Delete or by overtyping a selection. The callbook has always worked so, and those
/// who know it rely on a full box not being spoilt in passing. Moving, copying, Enter and Tab go through.
class FullBox : public QObject {
    Q_OBJECT

public:
    FullBox(QLineEdit *box, qsizetype most);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] static bool goesThrough(const QKeyEvent &key);

    QLineEdit *m_box;
    qsizetype m_most;
};

} // namespace reference
