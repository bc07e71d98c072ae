#include "support/window.h"

#include "ui/dbgrid.h"

#include <QApplication>
#include <QLabel>
#include <QWindow>

namespace testsupport {

bool FakeMessages::askYesNo(const QString &text, const QString &title)
{
    asked.append(title + QStringLiteral(": ") + text);
    return answers.isEmpty() ? yes : answers.takeFirst();
}

bool FakeMessages::askOk(const QString &text, const QString &title)
{
    return askYesNo(text, title);
}

void FakeProgress::begin(const QString &title, bool mayStop)
{
    steps.append(title);
    stoppable = mayStop;
}

bool FakeProgress::advance(const QString &what, qint64 done, qint64 total)
{
    steps.append(QStringLiteral("%1: %2 of %3").arg(what).arg(done).arg(total));
    if (atStep)
        atStep();
    return !stopNow;
}

void FakeMessages::inform(const QString &text, const QString &title)
{
    told.append(title + QStringLiteral(": ") + text);
}

QString FakeMessages::choose(const QString &text, const QString &title, const QStringList &options)
{
    asked.append(title + QStringLiteral(": ") + text);
    return options.front();
}

QString FakeMessages::askText(const QString &prompt, const QString &title)
{
    asked.append(title + QStringLiteral(": ") + prompt);
    return texts.isEmpty() ? QString() : texts.takeFirst();
}

int FakeMessages::chooseCodePage(const QString &file, const foreign::CodePageDoubt &doubt)
{
    doubted.append(doubt.samples.isEmpty() ? QString() : file);
    return codePage;
}

void FakeMessages::error(const store::Error &error)
{
    errors.append(error.text());
}

ui::NotStoredChoice FakeMessages::notStored(const store::Error &error, const QString &contact,
                                            const QString &where)
{
    errors.append(error.text());
    notStoredContacts.append(contact);
    whereSaved.append(where);
    if (beforeChoice)
        beforeChoice();
    return choices.isEmpty() ? ui::NotStoredChoice::GiveBack : choices.takeFirst();
}

void FakeReports::print(const QString &layoutFile)
{
    printed.append(layoutFile);
    if (atPrint)
        atPrint();
}

QString FakeDialogs::fileToOpen(QWidget *, const QString &title, const QString &start,
                                const QStringList &filters)
{
    opened.append(QStringLiteral("open: %1|%2|%3").arg(title, start, filters.join(QLatin1Char(';'))));
    return chosen;
}

QString FakeDialogs::fileToSave(QWidget *, const QString &title, const QString &start,
                                const QStringList &filters)
{
    opened.append(QStringLiteral("save: %1|%2|%3").arg(title, start, filters.join(QLatin1Char(';'))));
    return chosen;
}

Window::Window(const std::function<void(Installation &)> &prepare)
    : emergency({installation.folder(), installation.userFolder()})
{
    if (prepare)
        prepare(installation);
    log = std::make_unique<logentry::frmlog>(logentry::Services{installation.databases, clock, messages,
                                                                keyboard, emergency, progress, line, line,
                                                                dialogs, reports});
    log->resize(1366, 768);
    log->show();
    log->activateWindow();
    if (!QTest::qWaitForWindowActive(log.get()))
        qFatal("the window does not get active");
    log->tick();
}

QWindow *Window::active() const
{
    QWindow *window = QApplication::focusWindow();
    return window != nullptr ? window : log->windowHandle(); // a menu has just closed
}

void Window::type(const QString &text)
{
    for (const QChar c : text)
        QTest::sendKeyEvent(QTest::Click, active(), Qt::Key(c.toUpper().unicode()), QString(c),
                            Qt::NoModifier);
}

void Window::press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    const QString text = key == Qt::Key_Return ? QStringLiteral("\r") : QString();
    QTest::sendKeyEvent(QTest::Press, active(), key, text, modifiers);
    QTest::sendKeyEvent(QTest::Release, active(), key, text, modifiers);
}

void Window::click(const char *name, Qt::MouseButton button)
{
    auto *widget = find<QWidget>(name);
    QWidget *top = widget->window();
    QTest::mouseClick(top->windowHandle(), button, Qt::NoModifier,
                      widget->mapTo(top, widget->rect().center()));
}

QString Window::focus() const
{
    QWidget *widget = QApplication::focusWidget();
    return widget == nullptr ? QString() : widget->objectName();
}

QString Window::status() const
{
    return find<QLabel>("lblstatus")->text();
}

QStringList Window::gridCalls() const
{
    const auto *model = find<ui::DbGrid>("DBGrid1")->sourceModel();
    QStringList calls;
    for (int row = 0; row < model->rowCount(); ++row)
        calls.append(model->index(row, 0).data().toString());
    return calls;
}

} // namespace testsupport
