#pragma once

#include "support/window.h"
#include "ui/dbgrid.h"
#include "ui/dblist.h"

#include <QLabel>
#include <QMenuBar>

namespace testsupport {

/// The main window on a fresh installation, made before the window that is worked beside it.
struct WithRig {
    explicit WithRig(const std::function<void(Installation &)> &prepare = {}) : w(prepare) {}
    Window w;
};

/// A window worked with the mouse and the keyboard, its controls found by name.
class Driven {
public:
    explicit Driven(Window &rig) : m_rig(rig) {}

    template <typename Widget = ui::FilterEdit>
    [[nodiscard]] Widget *find(const char *name) const
    {
        auto *widget = root().findChild<Widget *>(QLatin1String(name));
        if (widget == nullptr)
            qFatal("no %s", name);
        return widget;
    }
    /// Text of a field, a label or a button.
    [[nodiscard]] QString text(const char *name) const;
    [[nodiscard]] QStringList texts(const char *name, int count) const; ///< of an array of fields
    [[nodiscard]] QString tip(const char *name) const { return find<QWidget>(name)->toolTip(); }
    [[nodiscard]] bool shown(const char *name) const { return find<QWidget>(name)->isVisible(); }
    [[nodiscard]] bool hasLabel(const char *caption) const;
    [[nodiscard]] QString status() const { return text("lblitog"); }

    void click(const char *name);
    void doubleClick(const char *name); ///< as the platform sends it: a click, and the second one as double
    void clickMenu(const char *name);
    void clickRow(const char *list, const char *row); ///< the row of a list with this text
    void clickCell(const char *grid, int row, int column);
    void doubleClickCell(const char *grid, int row, int column = 0);
    void type(const char *text) { m_rig.type(QString::fromUtf8(text)); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) { m_rig.press(key, modifiers); }
    void enter(const char *field, const char *text); ///< clicks into a field and types over what is there

    [[nodiscard]] QStringList rows(const char *list) const;
    [[nodiscard]] QString cell(const char *grid, int row, int column) const;
    [[nodiscard]] QStringList column(const char *grid, int column) const;
    [[nodiscard]] QString gridRow(const char *grid, int row) const; ///< cells joined by "|"
    [[nodiscard]] QStringList headings(const char *grid) const;

    /// No question, no message, no error.
    [[nodiscard]] bool quiet() const;

protected:
    /// Shows the window that is to be worked, before the others.
    void drive(QWidget &window, QSize size = {1366, 768});
    [[nodiscard]] QWidget &root() const { return *m_root; }

private:
    [[nodiscard]] QPoint place(const QWidget *widget, const QPoint &inside) const;
    [[nodiscard]] QPoint cellPlace(const char *grid, int row, int column) const;

    Window &m_rig;
    QWidget *m_root = nullptr;
};

} // namespace testsupport
