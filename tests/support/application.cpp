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

void application::filled(const Installation &in)
{
    in.sql(QStringLiteral("dbhelp.mdb"),
           QStringLiteral("UPDATE tbltitul SET award='W-100-U',DDATE='01.02.03',wybor='да',ccall='UA3XYZ',"
                          "nname='Иван Иванов',ADRESSTR1='ул. Мира, 5',adresgor='Тула',adresstran='Россия',"
                          "bband='14',mod='CW',contest='имя на карточке'"));
    addBlank(in, "ccall=R2A|ddate=06.03.26|ttime=11:12|bband=7|rsts=599|contr=RUSSIAN");
    addBlank(in, "ccall=DL1X|ddate=05.03.26|ttime=10:11|bband=14|rsts=59|rstr=57|mult=SSB|point=3|"
                 "ps=примечание|ps1=RTTY|contr=GERMANY");
}

std::function<void(Installation &)> application::longBlank(int rows)
{
    return [rows](Installation &in) {
        in.sql(QStringLiteral("dbiaru.mdb"),
               QStringLiteral("WITH RECURSIVE n(i) AS (VALUES(1000) UNION ALL SELECT i+1 FROM n WHERE i<%1) "
                              "INSERT INTO tbllogTEMP(ccall,bband) SELECT 'R'||i,'14' FROM n")
                   .arg(1000 + rows - 1));
    };
}

} // namespace testsupport
