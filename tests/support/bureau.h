#pragma once

#include "qsl/ui/qslburo.h"
#include "support/window.h"
#include "ui/dbgrid.h"
#include "ui/dblist.h"

#include <QLabel>
#include <QMenuBar>

namespace testsupport {

/// Adds a row to a table: "field=value|field=value".
void addRow(const Installation &in, const QString &fileName, const QString &table, const QString &row);
/// Adds a contact to the log.
void addLog(const Installation &in, const char *row);
/// Adds a contact to the blank.
void addBlank(const Installation &in, const char *row);

/// Countries DL GERMANY, F FRANCE and UA RUSSIAN, regions 3A and 9A, own callsign UA3XYZ (its key is XYZ).
void smallTables(const Installation &in);

/// The bureau window beside the main one.
class Bureau {
public:
    /// `readOnly`: the databases' folder must not be written.
    explicit Bureau(const std::function<void(Installation &)> &prepare = smallTables, bool readOnly = false);

    template <typename Widget = ui::FilterEdit>
    [[nodiscard]] Widget *find(const char *name) const
    {
        auto *widget = window->findChild<Widget *>(QLatin1String(name));
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
    void clickMenu(const char *name);
    void clickRow(const char *list, const char *row); ///< the row of a list with this text
    void clickCell(const char *grid, int row, int column);
    void doubleClickCell(const char *grid, int row, int column = 0);
    void type(const char *text) { w.type(QString::fromUtf8(text)); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) { w.press(key, modifiers); }
    void enter(const char *field, const char *text); ///< clicks into a field and types over what is there

    [[nodiscard]] QStringList rows(const char *list) const;
    [[nodiscard]] QString cell(const char *grid, int row, int column) const;
    [[nodiscard]] QStringList column(const char *grid, int column) const;
    [[nodiscard]] QString gridRow(const char *grid, int row) const; ///< cells joined by "|"
    [[nodiscard]] QStringList headings(const char *grid) const;

    /// Rows of the file, in the order they were stored.
    [[nodiscard]] QStringList log(const char *fields) const;
    [[nodiscard]] QStringList blank(const char *fields = "ccall") const;

    /// No question, no message, no error.
    [[nodiscard]] bool quiet() const;

    Window w;
    store::Library databases; ///< of the bureau alone where the folder must not be written
    std::unique_ptr<qsl::QSLburo> window;

private:
    [[nodiscard]] QPoint place(const QWidget *widget, const QPoint &inside) const;
    [[nodiscard]] QPoint cellPlace(const char *grid, int row, int column) const;
};

} // namespace testsupport
