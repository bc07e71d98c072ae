#include "support/application.h"

namespace testsupport {

namespace {

const QString kHelp = QStringLiteral("dbhelp.mdb");
const QString kLog = QStringLiteral("dbiaru.mdb");

void activate(QWidget &window)
{
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window))
        qFatal("the window does not get active");
    // The window left saves, then this one reads, then the blank is counted.
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
}

} // namespace

Application::Application(const std::function<void(Installation &)> &prepare, bool readOnly, QSize size)
    : WithRig(prepare), Driven(w), databases({w.installation.folder(), readOnly}, w.installation.userFolder())
{
    window = std::make_unique<awards::frmdipin>(
        awards::Services{readOnly ? databases : w.installation.databases, w.messages, w.reports});
    drive(*window, size);
}

QStringList Application::blank(const char *fields) const
{
    return w.installation.rows(
        kLog, QStringLiteral("SELECT %1 FROM tbllogTEMP ORDER BY rowid").arg(QString::fromUtf8(fields)));
}

QString Application::title(const char *fields) const
{
    return w.installation
        .rows(kHelp, QStringLiteral("SELECT %1 FROM tbltitul ORDER BY rowid").arg(QString::fromUtf8(fields)))
        .value(0);
}

void Application::helpSql(const char *statement) const
{
    w.installation.sql(kHelp, QString::fromUtf8(statement));
}

void Application::logSql(const char *statement) const
{
    w.installation.sql(kLog, QString::fromUtf8(statement));
}

QString Application::counts() const
{
    QCoreApplication::processEvents();
    return text("lblsvod");
}

void Application::leave()
{
    activate(*w.log);
}

void Application::comeBack()
{
    activate(*window);
}

} // namespace testsupport
