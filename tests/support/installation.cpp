#include "support/installation.h"

#include <QDir>
#include <QTest>

namespace testsupport {

namespace {

/// One installation made the real way; the tests work on copies of its files.
const QString &model()
{
    static const QTemporaryDir folder;
    static const QString path = [] {
        store::Library library({folder.path(), false}, folder.path());
        (void)library.createMissingFiles();
        return folder.path();
    }();
    return path;
}

} // namespace

Installation::Installation() : databases({m_folder.path(), false}, m_user.path())
{
    const QStringList names = QDir(model()).entryList(QDir::Files);
    for (const QString &name : names)
        if (!QFile::copy(model() + QLatin1Char('/') + name, file(name)))
            qFatal("%s is not copied", qPrintable(name));
}

void Installation::sql(const QString &fileName, const QString &statement) const
{
    store::Connection connection(file(fileName), store::OpenMode::ReadWrite);
    connection.execScript(statement);
}

QStringList Installation::rows(const QString &fileName, const QString &query) const
{
    store::Connection connection(file(fileName), store::OpenMode::ReadWrite); // undoes a torn write first
    store::Cursor cursor = connection.run(query);
    QStringList rows;
    while (cursor.next()) {
        QStringList columns;
        for (int i = 0; i < cursor.columnCount(); ++i)
            columns.append(cursor.isNull(i) ? QStringLiteral("NULL") : cursor.text(i));
        rows.append(columns.join(QLatin1Char('|')));
    }
    return rows;
}

void Installation::addContact(const QString &call, const QString &date, const QString &country,
                              const QString &card) const
{
    store::Connection connection(file(QStringLiteral("dbiaru.mdb")), store::OpenMode::ReadWrite);
    connection.exec(QStringLiteral("INSERT INTO TBLLOG1(ccall,ddate,CONTR,QSLP) VALUES(?,?,?,?)"),
                    {call, date, country, card});
}

Desk::Desk(Installation &installation)
    : sources(installation.databases), lookups(sources, fields, state),
      emergency({installation.folder(), installation.userFolder()}),
      recorder(sources, fields, state, emergency)
{
    const auto errors = sources.open();
    if (!errors.isEmpty())
        qWarning("%s", errors.front().what());
    fields.txtrsts = state.defaultReport;
    fields.txtrstr = state.defaultReport;
    fields.txtdate = QStringLiteral("05.03.26");
    fields.txttime = QStringLiteral("14:07:09");
}

void Desk::type(const QString &call)
{
    fields.txtcall.clear();
    for (const QChar c : call) {
        fields.txtcall += c;
        const auto error = lookups.callsignKeyReleased(c.unicode());
        if (error)
            qWarning("%s", error->what());
    }
}

} // namespace testsupport
