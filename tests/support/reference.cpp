#include "support/reference.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QGroupBox>
#include <QPushButton>
#include <QScrollArea>

namespace testsupport {

namespace {

constexpr auto kCallbook = "dbcalbuk.mdb";
constexpr auto kCountries = "dbdxcc1.mdb";
constexpr auto kRegions = "dbrusdx.mdb";

QStringList rowsOf(const Installation &in, const char *file, const char *table, const char *fields)
{
    return in.rows(
        QLatin1String(file),
        QStringLiteral("SELECT %1 FROM %2 ORDER BY rowid").arg(QLatin1String(fields), QLatin1String(table)));
}

} // namespace

void addRecord(const Installation &in, const char *row)
{
    addRow(in, QLatin1String(kCallbook), QStringLiteral("tblcalbuk"), QString::fromUtf8(row));
}

void addCountry(const Installation &in, const char *row)
{
    addRow(in, QLatin1String(kCountries), QStringLiteral("tbldxcc"), QString::fromUtf8(row));
}

void addRegion(const Installation &in, const char *row)
{
    addRow(in, QLatin1String(kRegions), QStringLiteral("tblrus"), QString::fromUtf8(row));
}

void callbookTables(const Installation &in)
{
    in.sql(QLatin1String(kCallbook), QStringLiteral("DELETE FROM tblcalbuk"));
    addRecord(in, "ccall=UA3ABC|fam=Петров|nname=Олег|otch=Иванович|indeks=101000|obl=Московская|qth=Москва|"
                  "adres=ул. Мира, 1|telefon=1-23|qslvia=RW3XX");
    addRecord(in, "ccall=G3XYZ|nname=John");
    addLog(in, "ccall=UA3ABC|nname=ОЛЕГ|qth=МОСКВА|qslvia=R3X|ddate=06.02.03");
    addLog(in, "ccall=DL1AA|nname=HANS|qslvia=DK1XX|ddate=05.02.03");
    addLog(in, "ccall=DL1AA|qth=KOELN|ddate=04.02.03");
    addLog(in, "ccall=DL1AA|nname=HANNES|ddate=03.02.03");
    addLog(in, "ccall=DL1AB|nname=KARL|qth=BONN|ddate=02.02.03");
    addLog(in, "ccall=F5AB|ddate=01.02.03");
    addLog(in, "ccall=ON4A|nname=JAN|qth=GENT|qslvia=ON5X");
}

void countryTable(const Installation &in)
{
    in.sql(QLatin1String(kCountries), QStringLiteral("DELETE FROM tbldxcc"));
    addCountry(in, "prf=UA|PREF=UA|strana=RUSSIAN|kont=EU|iaru=29|cq=16|GradN=55,75|GradE=37,62|Dolg=37,62|"
                   "Shir=55,75");
    for (const char *row :
         {"prf=F|PREF=F|strana=FRANCE|kont=EU|iaru=27|cq=14",
          "prf=DL|PREF=DL|strana=GERMANY|kont=EU|iaru=28|cq=14",
          "prf=DA|PREF=DL|strana=GERMANY|kont=EU|iaru=28|cq=14", "prf=UA9|PREF=UA|strana=RUSSIAN|kont=AS",
          "prf=ZS|PREF=ZS|strana=SOUTH AFRICA", "prf=3B8|PREF=3B8|strana=GAMBIA"})
        addCountry(in, row);
}

void regionTable(const Installation &in)
{
    in.sql(QLatin1String(kRegions), QStringLiteral("DELETE FROM tblrus"));
    addRegion(in, "pref=9A|gorod=Челябинск|kodcrk=CB9|kodsrr=165|prf=CB|itu=30|cq=17|gradN=55,16|gradE=61,4|"
                  "dolg=61,4|Shir=55,16");
    for (const char *row : {"pref=3A|gorod=Москва|prf=MA", "pref=3D|gorod=Московская обл.|prf=MO",
                            "pref=1A|gorod=С.-Петербург", "pref=3AB|gorod=Город", "pref=|gorod=ничья"})
        addRegion(in, row);
}

void sendKey(QTest::KeyAction action, Qt::Key key, const QString &text, Qt::KeyboardModifiers modifiers)
{
    QTest::sendKeyEvent(action, QApplication::focusWindow(), key, text, modifiers);
}

// ---- any of the windows

ReferenceWindow::ReferenceWindow(const std::function<void(Installation &)> &prepare, bool readOnly)
    : WithRig(prepare), Driven(w),
      databases({w.installation.folder(), readOnly}, w.installation.userFolder()), m_readOnly(readOnly)
{}

reference::Services ReferenceWindow::services()
{
    return {m_readOnly ? databases : w.installation.databases, w.messages, w.progress, w.dialogs};
}

void ReferenceWindow::sql(const char *file, const char *statement) const
{
    w.installation.sql(QLatin1String(file), QString::fromUtf8(statement));
}

QString ReferenceWindow::labelOf(const char *box) const
{
    const auto *widget = find<QWidget>(box);
    const auto labels = root().findChildren<QLabel *>();
    for (const QLabel *label : labels)
        if (label->buddy() == widget && label->isVisible())
            return label->text();
    return {};
}

QString ReferenceWindow::frameOf(const char *name) const
{
    for (const QWidget *widget = find<QWidget>(name); widget != nullptr; widget = widget->parentWidget())
        if (const auto *frame = qobject_cast<const QGroupBox *>(widget))
            return frame->title();
    return {};
}

void ReferenceWindow::paste(const char *text)
{
    QApplication::clipboard()->setText(QString::fromUtf8(text));
    sendKey(QTest::Click, Qt::Key_V, QStringLiteral("\x16"), Qt::ControlModifier);
}

int ReferenceWindow::messages() const
{
    const auto &all = w.messages;
    return static_cast<int>(all.errors.size() + all.told.size() + all.asked.size());
}

QList<QWidget *> ReferenceWindow::controls() const
{
    QList<QWidget *> found;
    const auto all = root().findChildren<QWidget *>();
    for (QWidget *widget : all) {
        const bool control = qobject_cast<QLineEdit *>(widget) != nullptr ||
                             qobject_cast<QPushButton *>(widget) != nullptr ||
                             qobject_cast<QAbstractItemView *>(widget) != nullptr;
        const QString name = widget->objectName();
        if (control && widget->isVisibleTo(&root()) && !name.isEmpty() &&
            !name.startsWith(QLatin1String("qt_")))
            found.append(widget);
    }
    return found;
}

QStringList ReferenceWindow::missedByTab()
{
    const auto *area = root().findChild<QScrollArea *>();
    const QList<QWidget *> all = controls();
    QSet<QWidget *> inSight;
    for (int i = 0; i < 2 * all.size(); ++i) {
        QWidget *focus = QApplication::focusWidget();
        const QPoint centre = focus->mapTo(area->viewport(), focus->rect().center());
        if (area->viewport()->rect().contains(centre))
            inSight.insert(focus);
        press(Qt::Key_Tab);
    }
    QStringList missed;
    for (QWidget *widget : all) {
        const auto *edit = qobject_cast<QLineEdit *>(widget);
        const bool display = edit != nullptr && edit->isReadOnly() && edit->focusPolicy() == Qt::ClickFocus;
        if (!display && !inSight.contains(widget))
            missed.append(widget->objectName());
    }
    return missed;
}

QStringList ReferenceWindow::unnamed() const
{
    const QList<QWidget *> all = controls();
    if (all.size() < 3)
        qFatal("the window has no controls");
    QStringList names;
    for (const QWidget *widget : all)
        if (widget->accessibleName().isEmpty() || widget->toolTip().isEmpty())
            names.append(widget->objectName());
    return names;
}

void ReferenceWindow::reopen()
{
    root().close();
    root().show();
    Desktop::toFront(root());
}

// ---- callbook

Callbook::Callbook(const std::function<void(Installation &)> &prepare, bool readOnly)
    : ReferenceWindow(prepare, readOnly)
{
    window = std::make_unique<reference::frmcalbuk>(services());
    drive(*window);
}

QString Callbook::logFrame() const
{
    return QStringList({text("txtlogcall"), text("txtlogname"), text("txtlogqth"), text("txtlogqslvia")})
        .join(QLatin1Char('|'));
}

QString Callbook::boxes() const
{
    QStringList all;
    const QStringList fields = QString::fromLatin1(kRecordFields).split(QLatin1Char(','));
    for (const QString &field : fields)
        all.append(text(qPrintable(QStringLiteral("txt") + field)));
    return all.join(QLatin1Char('|'));
}

QStringList Callbook::records(const char *fields) const
{
    return rowsOf(w.installation, kCallbook, "tblcalbuk", fields);
}

QString Callbook::record(const char *call, const char *fields) const
{
    const QStringList found = w.installation.rows(QLatin1String(kCallbook),
                                                  QStringLiteral("SELECT %1 FROM tblcalbuk WHERE ccall='%2'")
                                                      .arg(QLatin1String(fields), QLatin1String(call)));
    return found.size() == 1 ? found.front() : QStringLiteral("%1 records").arg(found.size());
}

// ---- countries

CountryWindow::CountryWindow(const std::function<void(Installation &)> &prepare, bool readOnly)
    : ReferenceWindow(prepare, readOnly)
{
    window = std::make_unique<reference::dxcc1>(services());
    drive(*window);
}

QStringList CountryWindow::stored(const char *fields) const
{
    return rowsOf(w.installation, kCountries, "tbldxcc", fields);
}

QString CountryWindow::entry() const
{
    QStringList all;
    for (const char *box : {"txtprf1", "txtstrana", "txtkont", "txtiaru", "txtcq", "txtPREF"})
        all.append(text(box));
    return all.join(QLatin1Char('|'));
}

void CountryWindow::typeEntry(const QStringList &texts)
{
    click("txtprf1");
    for (const QString &text : texts) {
        w.type(text);
        press(Qt::Key_Tab);
    }
}

// ---- regions

RegionWindow::RegionWindow(const std::function<void(Installation &)> &prepare, bool readOnly)
    : ReferenceWindow(prepare, readOnly)
{
    window = std::make_unique<reference::rusdx>(services());
    drive(*window);
}

// ---- several windows

Desktop::Desktop(const std::function<void(Installation &)> &prepare)
    : WithRig(prepare), windows({w.installation.databases, w.messages, w.progress, w.dialogs, old},
                                {w.installation.databases, w.clock, w.messages, w.progress, w.reports},
                                {w.installation.databases, w.messages, w.reports},
                                {w.installation.databases, w.messages, w.progress, w.dialogs}, *w.log)
{}

void Desktop::toFront(QWidget &window)
{
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window))
        qFatal("the window does not get active");
    // The window that is left saves, this one reads what others have written.
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
}

} // namespace testsupport
