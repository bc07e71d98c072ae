#include "support/bureau.h"

#include <QAction>
#include <QApplication>
#include <QPushButton>
#include <QWindow>

namespace testsupport {

namespace {

constexpr auto kLog = "dbiaru.mdb";

QStringList stored(const Installation &in, const char *table, const char *fields)
{
    return in.rows(QLatin1String(kLog), QStringLiteral("SELECT %1 FROM %2 ORDER BY rowid")
                                            .arg(QString::fromUtf8(fields), QLatin1String(table)));
}

} // namespace

void addRow(const Installation &in, const QString &fileName, const QString &table, const QString &row)
{
    store::Connection connection(in.file(fileName), store::OpenMode::ReadWrite);
    QStringList names;
    QStringList marks;
    store::Values values;
    const QStringList parts = row.split(QLatin1Char('|'));
    for (const QString &part : parts) {
        names.append(part.section(QLatin1Char('='), 0, 0));
        marks.append(QStringLiteral("?"));
        values.append(part.section(QLatin1Char('='), 1));
    }
    connection.exec(QStringLiteral("INSERT INTO %1(%2) VALUES(%3)")
                        .arg(table, names.join(QLatin1Char(',')), marks.join(QLatin1Char(','))),
                    values);
}

void addLog(const Installation &in, const char *row)
{
    addRow(in, QLatin1String(kLog), QStringLiteral("TBLLOG1"), QString::fromUtf8(row));
}

void addBlank(const Installation &in, const char *row)
{
    addRow(in, QLatin1String(kLog), QStringLiteral("tbllogTEMP"), QString::fromUtf8(row));
}

void smallTables(const Installation &in)
{
    in.sql(QStringLiteral("dbdxcc1.mdb"),
           QStringLiteral("DELETE FROM tbldxcc; INSERT INTO tbldxcc(prf,PREF,strana) VALUES"
                          "('DA','DL','GERMANY'),('DL','DL','GERMANY'),('F','F','FRANCE'),"
                          "('UA','UA','RUSSIAN'),('UA9','UA','RUSSIAN'),('X','','NOWHERE')"));
    in.sql(QStringLiteral("dbrusdx.mdb"),
           QStringLiteral("DELETE FROM tblrus; INSERT INTO tblrus(pref,gorod,prf) VALUES"
                          "('9A','Челябинск','CB'),('3A','старая запись','0'),('3A','Москва','MA'),"
                          "('','ничья','NN'),('5O','забытая','0')"));
    in.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall='UA3XYZ'"));
}

Bureau::Bureau(const std::function<void(Installation &)> &prepare, bool readOnly)
    : w(prepare), databases({w.installation.folder(), readOnly}, w.installation.userFolder())
{
    window = std::make_unique<qsl::QSLburo>(qsl::Services{readOnly ? databases : w.installation.databases,
                                                          w.clock, w.messages, w.progress, w.reports});
    window->resize(1366, 768);
    window->show();
    window->activateWindow();
    if (!QTest::qWaitForWindowActive(window.get()))
        qFatal("the window does not get active");
    QCoreApplication::processEvents(); // what could not be opened is told over the window
}

QString Bureau::text(const char *name) const
{
    auto *widget = find<QWidget>(name);
    if (auto *label = qobject_cast<QLabel *>(widget))
        return label->text();
    if (auto *button = qobject_cast<QPushButton *>(widget))
        return button->text();
    return find<ui::FilterEdit>(name)->text();
}

QStringList Bureau::texts(const char *name, int count) const
{
    QStringList all;
    for (int i = 0; i < count; ++i)
        all.append(text(qPrintable(QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(i))));
    return all;
}

bool Bureau::hasLabel(const char *caption) const
{
    const auto labels = window->findChildren<QLabel *>();
    return std::any_of(labels.begin(), labels.end(), [&](const QLabel *label) {
        return label->isVisible() && label->text() == QString::fromUtf8(caption);
    });
}

QPoint Bureau::place(const QWidget *widget, const QPoint &inside) const
{
    if (!widget->isVisible())
        qFatal("%s is hidden", qPrintable(widget->objectName()));
    return widget->mapTo(window.get(), inside);
}

void Bureau::click(const char *name)
{
    auto *widget = find<QWidget>(name);
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      place(widget, widget->rect().center()));
}

void Bureau::clickMenu(const char *name)
{
    const QMenuBar *bar = window->menuBar();
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      place(bar, bar->actionGeometry(find<QAction>(name)).center()));
}

void Bureau::clickRow(const char *list, const char *row)
{
    auto *view = find<ui::DbList>(list);
    const auto index = static_cast<int>(rows(list).indexOf(QString::fromUtf8(row)));
    if (index < 0)
        qFatal("no %s in %s", row, list);
    const QModelIndex item = view->model()->index(index, 0);
    view->scrollTo(item);
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      place(view->viewport(), view->visualRect(item).center()));
}

QPoint Bureau::cellPlace(const char *grid, int row, int column) const
{
    auto *view = find<ui::DbGrid>(grid);
    const QModelIndex item = view->model()->index(row, column);
    if (!item.isValid())
        qFatal("no row %d in %s", row, grid);
    view->scrollTo(item);
    return place(view->viewport(), view->visualRect(item).center());
}

void Bureau::clickCell(const char *grid, int row, int column)
{
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, Qt::NoModifier, cellPlace(grid, row, column));
}

void Bureau::doubleClickCell(const char *grid, int row, int column)
{
    QTest::mouseDClick(window->windowHandle(), Qt::LeftButton, Qt::NoModifier, cellPlace(grid, row, column));
}

void Bureau::enter(const char *field, const char *text)
{
    click(field);
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_Delete);
    type(text);
}

QStringList Bureau::rows(const char *list) const
{
    const auto *model = find<ui::DbList>(list)->model();
    QStringList all;
    for (int row = 0; row < model->rowCount(); ++row)
        all.append(model->index(row, 0).data().toString());
    return all;
}

QString Bureau::cell(const char *grid, int row, int column) const
{
    return find<ui::DbGrid>(grid)->model()->index(row, column).data().toString();
}

QStringList Bureau::column(const char *grid, int column) const
{
    QStringList all;
    for (int row = 0; row < find<ui::DbGrid>(grid)->model()->rowCount(); ++row)
        all.append(cell(grid, row, column));
    return all;
}

QString Bureau::gridRow(const char *grid, int row) const
{
    QStringList all;
    for (int column = 0; column < find<ui::DbGrid>(grid)->model()->columnCount(); ++column)
        all.append(cell(grid, row, column));
    return all.join(QLatin1Char('|'));
}

QStringList Bureau::headings(const char *grid) const
{
    const auto *model = find<ui::DbGrid>(grid)->model();
    QStringList all;
    for (int column = 0; column < model->columnCount(); ++column)
        all.append(model->headerData(column, Qt::Horizontal).toString());
    return all;
}

QStringList Bureau::log(const char *fields) const
{
    return stored(w.installation, "TBLLOG1", fields);
}

QStringList Bureau::blank(const char *fields) const
{
    return stored(w.installation, "tbllogTEMP", fields);
}

bool Bureau::quiet() const
{
    return w.messages.asked.isEmpty() && w.messages.told.isEmpty() && w.messages.errors.isEmpty();
}

} // namespace testsupport
