#include "support/awards.h"

#include <QListWidget>
#include <QPlainTextEdit>

namespace testsupport {

namespace {

constexpr auto kAwards = "dbdiplom.mdb";
constexpr auto kLog = "dbiaru.mdb";

QStringList stored(const Installation &in, const char *file, const char *table, const char *fields)
{
    return in.rows(QLatin1String(file), QStringLiteral("SELECT %1 FROM %2 ORDER BY rowid")
                                            .arg(QString::fromUtf8(fields), QLatin1String(table)));
}

} // namespace

void addAward(const Installation &in, const char *row)
{
    addRow(in, QLatin1String(kAwards), QStringLiteral("tbldiplom"), QString::fromUtf8(row));
}

void awardTables(const Installation &in)
{
    smallTables(in);
    in.sql(QLatin1String(kAwards), QStringLiteral("DELETE FROM tbldiplom"));
    for (const char *row :
         {"strana=GERMANY|diplom=WAE|diptext=Европа", "strana=FRANCE|diplom=DPF|diptext=провинции",
          "strana=FRANCE|diplom=DDFM|diptext=департаменты", "strana=Россия|diplom=Урал|pref=CB|diptext=урал",
          "strana=Россия|diplom=Столица|pref=MA|diptext=москва",
          "strana=Россия|diplom=Кремль|pref=MA|diptext=башни", "strana=Россия|diplom=Ничей|diptext=нигде",
          "strana=GERMANY|diplom=DPF|diptext=второй"})
        addAward(in, row);
}

void awardContacts(const Installation &in)
{
    awardTables(in);
    for (const char *row :
         {"ccall=UA3AB|bband=14|contr=RUSSIAN|ddate=01.02.03|ttime=10:11|rsts=559|rstr=579|ps1=CW|qslp=+",
          "ccall=R3AB|bband=7|contr=RUSSIAN|ddate=02.02.03|ttime=934|rstr=59",
          "ccall=UA9AA|bband=21|contr=RUSSIAN|ddate=03.02.03|rstr=5|rsts=59",
          "ccall=DL1AA|bband=14|contr=GERMANY|ddate=04.02.03|ttime=12:34:56|rsts=58|rstr=599001",
          "ccall=DL1AA|bband=7|contr=GERMANY|ddate=05.02.03|ttime=1234|rsts=56|rstr=57|qslp=да",
          "ccall=DL1AB|bband=14|contr=GERMANY|ddate=06.02.03|ttime=12|rstr=595",
          "ccall=F5AB|bband=14|contr=FRANCE|ddate=07.02.03|ttime=5|rstr=55|rsts=54",
          "ccall=XX1X|bband=28|ddate=08.02.03|ttime=1:00"})
        addLog(in, row);
    const QString book = QStringLiteral("dbcalbuk.mdb");
    in.sql(book, QStringLiteral("DELETE FROM tblcalbuk"));
    for (const char *row : {"ccall=dl1aa|nname=Hans|qth=Köln", "ccall=F5AB|nname=Jean|qth="})
        addRow(in, book, QStringLiteral("tblcalbuk"), QString::fromUtf8(row));
}

Awards::Awards(const std::function<void(Installation &)> &prepare, bool readOnly)
    : WithRig(prepare), Driven(w), databases({w.installation.folder(), readOnly}, w.installation.userFolder())
{
    window = std::make_unique<awards::frmDIPLOM>(
        awards::Services{readOnly ? databases : w.installation.databases, w.messages, w.reports});
    drive(*window);
}

QStringList Awards::awards(const char *fields) const
{
    return stored(w.installation, kAwards, "tbldiplom", fields);
}

QStringList Awards::log(const char *fields) const
{
    return stored(w.installation, kLog, "TBLLOG1", fields);
}

QStringList Awards::blank(const char *fields) const
{
    return stored(w.installation, kLog, "tbllogTEMP", fields);
}

void Awards::sql(const char *file, const char *statement) const
{
    w.installation.sql(QLatin1String(file), QString::fromUtf8(statement));
}

QString Awards::lines(const char *box) const
{
    return find<QPlainTextEdit>(box)->toPlainText();
}

void Awards::write(const char *box, const char *text)
{
    click(box);
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_Delete);
    const QStringList all = QString::fromUtf8(text).split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < all.size(); ++i) {
        if (i > 0)
            press(Qt::Key_Return);
        w.type(all[i]);
    }
}

QStringList Awards::entries() const
{
    const auto *list = find<QListWidget>("ListWybor");
    QStringList all;
    for (int row = 0; row < list->count(); ++row)
        all.append(list->item(row)->text());
    return all;
}

bool Awards::entryShown() const
{
    const bool visible = shown("txtstran1");
    if (shown("TXTDIPL1") != visible || shown("txtpol1") != visible || shown("TXTDIPTEXT") == visible)
        qFatal("the boxes of a new award do not take turns with the rules");
    return visible;
}

void Awards::addNew(const char *country, const char *name, const char *rules)
{
    tick("cmbadd");
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_Delete);
    type(country);
    press(Qt::Key_Return);
    type(name);
    press(Qt::Key_Return);
    type(rules);
    press(Qt::Key_Tab);
    if (w.focus() != QLatin1String("cmbadd"))
        qFatal("Tab goes to %s", qPrintable(w.focus()));
    press(Qt::Key_Space);
}

void Awards::tick(const char *name)
{
    find<QWidget>(name)->setFocus();
    press(Qt::Key_Space);
}

int Awards::messages() const
{
    const auto &all = w.messages;
    return static_cast<int>(all.errors.size() + all.told.size() + all.asked.size());
}

void Awards::doubleClickRow(const char *list, const char *row)
{
    auto *view = find<ui::DbList>(list);
    const auto index = static_cast<int>(rows(list).indexOf(QString::fromUtf8(row)));
    if (index < 0)
        qFatal("no %s in %s", row, list);
    clickRow(list, row);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier,
                       view->visualRect(view->model()->index(index, 0)).center());
}

void Awards::reopen()
{
    window->close();
    window->show();
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window.get()))
        qFatal("the window does not get active");
    QCoreApplication::processEvents();
}

bool award::activate(QWidget &window)
{
    window.activateWindow();
    return QTest::qWaitForWindowActive(&window);
}

} // namespace testsupport
