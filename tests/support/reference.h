#pragma once

#include "app/windows.h"
#include "reference/ui/dxcc1.h"
#include "reference/ui/frmcalbuk.h"
#include "reference/ui/rusdx.h"
#include "support/bureau.h"

namespace testsupport {

/// Adds a row to callbook, country table or region table: "field=value|field=value".
void addRecord(const Installation &in, const char *row);
void addCountry(const Installation &in, const char *row);
void addRegion(const Installation &in, const char *row);

/// A log of five stations and a callbook that knows two of them, UA3ABC with all its fields.
void callbookTables(const Installation &in);
/// Seven countries, not in the order of their codes.
void countryTable(const Installation &in);
/// Six regions, not in the order of their prefixes.
void regionTable(const Installation &in);

/// Fields of a record in the order of its boxes.
inline constexpr auto kRecordFields = "ccall,fam,nname,otch,indeks,obl,qth,adres,telefon,qslvia";
/// What callbookTables() stores of UA3ABC.
inline constexpr auto kFullRecord =
    "UA3ABC|Петров|Олег|Иванович|101000|Московская|Москва|ул. Мира, 1|1-23|RW3XX";

/// Key events with the text that the platform gives them.
void sendKey(QTest::KeyAction action, Qt::Key key, const QString &text = {},
             Qt::KeyboardModifiers modifiers = Qt::NoModifier);

/// A window of the reference tables beside the main one.
class ReferenceWindow : public WithRig, public Driven {
public:
    /// `readOnly`: the databases' folder must not be written.
    ReferenceWindow(const std::function<void(Installation &)> &prepare, bool readOnly);

    /// Runs SQL on a file as another program would.
    void sql(const char *file, const char *statement) const;
    /// Caption of the label that belongs to a box.
    [[nodiscard]] QString labelOf(const char *box) const;
    /// Title of the frame in which a control stands.
    [[nodiscard]] QString frameOf(const char *name) const;
    void paste(const char *text);
    void setFocus(const char *name) { find<QWidget>(name)->setFocus(); }
    [[nodiscard]] int messages() const; ///< questions, messages and errors so far
    /// Controls that Tab does not reach, or that are out of sight when it does.
    [[nodiscard]] QStringList missedByTab();
    /// Controls without an accessible name or a tool tip.
    [[nodiscard]] QStringList unnamed() const;
    /// The window closed and opened once more.
    void reopen();

    store::Library databases; ///< of the window alone where the folder must not be written

protected:
    [[nodiscard]] reference::Services services();

private:
    [[nodiscard]] QList<QWidget *> controls() const;
    bool m_readOnly;
};

class Callbook : public ReferenceWindow {
public:
    explicit Callbook(const std::function<void(Installation &)> &prepare = callbookTables,
                      bool readOnly = false);

    [[nodiscard]] QString logFrame() const; ///< call, name, town and QSL route, joined by "|"
    [[nodiscard]] QString boxes() const;    ///< of the record, joined by "|"
    /// Rows of the callbook's file, in the order they were stored.
    [[nodiscard]] QStringList records(const char *fields = kRecordFields) const;
    [[nodiscard]] QString record(const char *call, const char *fields = kRecordFields) const;
    void lookUp(const char *call) { enter("txtserch", call); }

    std::unique_ptr<reference::frmcalbuk> window;
};

class CountryWindow : public ReferenceWindow {
public:
    explicit CountryWindow(const std::function<void(Installation &)> &prepare = countryTable,
                           bool readOnly = false);

    [[nodiscard]] QStringList stored(const char *fields = "prf,strana,kont,iaru,cq,PREF,own") const;
    /// What stands in the six entry boxes, joined by "|".
    [[nodiscard]] QString entry() const;
    /// Types into the six boxes, from the first one on.
    void typeEntry(const QStringList &texts);

    std::unique_ptr<reference::dxcc1> window;
};

class RegionWindow : public ReferenceWindow {
public:
    explicit RegionWindow(const std::function<void(Installation &)> &prepare = regionTable,
                          bool readOnly = false);

    std::unique_ptr<reference::rusdx> window;
};

class NoOldDatabases final : public interchange::OldDatabases {
public:
    [[nodiscard]] bool convertTo(const QString &, const QString &) override { return false; }
    [[nodiscard]] bool convertInPlace(const QString &) override { return false; }
};

/// The main window and the windows that its menu opens.
class Desktop : public WithRig {
public:
    explicit Desktop(const std::function<void(Installation &)> &prepare);

    /// Opens a window by the main window's menu and works in it from then on.
    template <typename Window>
    [[nodiscard]] Window &open(const char *action)
    {
        w.action(action)->trigger();
        return shown<Window>();
    }
    /// The window of a kind that is shown.
    template <typename Window>
    [[nodiscard]] static Window &shown()
    {
        const QList<QWidget *> all = QApplication::topLevelWidgets();
        for (QWidget *window : all)
            if (auto *found = qobject_cast<Window *>(window); found != nullptr && found->isVisible()) {
                toFront(*found);
                return *found;
            }
        qFatal("no such window is shown");
    }
    static void toFront(QWidget &window);

    NoOldDatabases old;
    app::Windows windows;
};

/// One of the desktop's windows.
class Beside : public Driven {
public:
    Beside(Desktop &desktop, QWidget &window) : Driven(desktop.w) { drive(window); }
};

} // namespace testsupport
