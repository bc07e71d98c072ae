#include "support/driven.h"

#include <QAction>
#include <QApplication>
#include <QPushButton>
#include <QWindow>

namespace testsupport {

void Driven::drive(QWidget &window, QSize size)
{
    m_root = &window;
    window.resize(size);
    window.show();
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window))
        qFatal("the window does not get active");
    // What could not be opened is told over the window, and what others may have written is read.
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
}

QString Driven::text(const char *name) const
{
    auto *widget = find<QWidget>(name);
    if (auto *label = qobject_cast<QLabel *>(widget))
        return label->text();
    if (auto *button = qobject_cast<QPushButton *>(widget))
        return button->text();
    return find<ui::FilterEdit>(name)->text();
}

QStringList Driven::texts(const char *name, int count) const
{
    QStringList all;
    for (int i = 0; i < count; ++i)
        all.append(text(qPrintable(QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(i))));
    return all;
}

bool Driven::hasLabel(const char *caption) const
{
    const auto labels = root().findChildren<QLabel *>();
    return std::any_of(labels.begin(), labels.end(), [&](const QLabel *label) {
        return label->isVisible() && label->text() == QString::fromUtf8(caption);
    });
}

QPoint Driven::place(const QWidget *widget, const QPoint &inside) const
{
    if (!widget->isVisible())
        qFatal("%s is hidden", qPrintable(widget->objectName()));
    return widget->mapTo(&root(), inside);
}

void Driven::click(const char *name)
{
    auto *widget = find<QWidget>(name);
    QTest::mouseClick(root().windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      place(widget, widget->rect().center()));
}

void Driven::doubleClick(const char *name)
{
    auto *widget = find<QWidget>(name);
    QTest::mouseDClick(root().windowHandle(), Qt::LeftButton, Qt::NoModifier,
                       place(widget, widget->rect().center()));
}

void Driven::clickMenu(const char *name)
{
    const auto *bar = root().findChild<QMenuBar *>();
    QTest::mouseClick(root().windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      place(bar, bar->actionGeometry(find<QAction>(name)).center()));
}

void Driven::clickRow(const char *list, const char *row)
{
    auto *view = find<ui::DbList>(list);
    const auto index = static_cast<int>(rows(list).indexOf(QString::fromUtf8(row)));
    if (index < 0)
        qFatal("no %s in %s", row, list);
    const QModelIndex item = view->model()->index(index, 0);
    view->scrollTo(item);
    QTest::mouseClick(root().windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      place(view->viewport(), view->visualRect(item).center()));
}

QPoint Driven::cellPlace(const char *grid, int row, int column) const
{
    auto *view = find<ui::DbGrid>(grid);
    const QModelIndex item = view->model()->index(row, column);
    if (!item.isValid())
        qFatal("no row %d in %s", row, grid);
    view->scrollTo(item);
    return place(view->viewport(), view->visualRect(item).center());
}

void Driven::clickCell(const char *grid, int row, int column)
{
    QTest::mouseClick(root().windowHandle(), Qt::LeftButton, Qt::NoModifier, cellPlace(grid, row, column));
}

void Driven::doubleClickCell(const char *grid, int row, int column)
{
    QTest::mouseDClick(root().windowHandle(), Qt::LeftButton, Qt::NoModifier, cellPlace(grid, row, column));
}

void Driven::enter(const char *field, const char *text)
{
    click(field);
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_Delete);
    type(text);
}

QStringList Driven::rows(const char *list) const
{
    const auto *model = find<ui::DbList>(list)->model();
    QStringList all;
    for (int row = 0; row < model->rowCount(); ++row)
        all.append(model->index(row, 0).data().toString());
    return all;
}

QString Driven::cell(const char *grid, int row, int column) const
{
    return find<ui::DbGrid>(grid)->model()->index(row, column).data().toString();
}

QStringList Driven::column(const char *grid, int column) const
{
    QStringList all;
    for (int row = 0; row < find<ui::DbGrid>(grid)->model()->rowCount(); ++row)
        all.append(cell(grid, row, column));
    return all;
}

QString Driven::gridRow(const char *grid, int row) const
{
    QStringList all;
    for (int column = 0; column < find<ui::DbGrid>(grid)->model()->columnCount(); ++column)
        all.append(cell(grid, row, column));
    return all.join(QLatin1Char('|'));
}

QStringList Driven::headings(const char *grid) const
{
    const auto *model = find<ui::DbGrid>(grid)->model();
    QStringList all;
    for (int column = 0; column < model->columnCount(); ++column)
        all.append(model->headerData(column, Qt::Horizontal).toString());
    return all;
}

bool Driven::quiet() const
{
    return m_rig.messages.asked.isEmpty() && m_rig.messages.told.isEmpty() && m_rig.messages.errors.isEmpty();
}

} // namespace testsupport
