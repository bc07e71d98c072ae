// The contest list of the main window: both questions, the files at their places or chosen.
#include "support/sheetwriter.h"
#include "support/window.h"

#include <QAbstractButton>
#include <QDir>
#include <QLabel>

using testsupport::Installation;
using testsupport::SheetWriter;
using testsupport::Window;

namespace {

const QString kBook = QStringLiteral("D/ARCHIVE/TblLOG1.XLS");
const QString kDatabase = QStringLiteral("D/ARCHIVE/dbQRZ.mdb");
const QString kTransfer = QStringLiteral("Сохранение данных: Перенести данные в Журнал из Tblcalbuk.xls ?");
const QString kEmpty = QStringLiteral("Удаление данных: Очистить Базу соревнований ?");

void makeBook(const QString &path, const QStringList &calls)
{
    SheetWriter writer;
    int row = 0;
    for (const QString &call : calls)
        writer.text(row, 0, call).text(row, 1, QStringLiteral("zone %1").arg(row)), ++row;
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(writer.finished()) > 0);
}

void makeDatabase(const QString &path)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    const auto database = store::Connection::create(path);
    database->exec(QStringLiteral("CREATE TABLE tblQRZ(ccall TEXT,AALL TEXT)"));
    database->exec(QStringLiteral("INSERT INTO tblQRZ VALUES('OLD','1')"));
}

/// The main window beside both files at their places.
void bothFiles(Installation &in)
{
    makeBook(in.file(kBook),
             {QStringLiteral("UA1A"), QStringLiteral("UA2B"), QString(), QStringLiteral("UA3C")});
    makeDatabase(in.file(kDatabase));
}

QStringList listed(const QString &path)
{
    store::Connection database(path, store::OpenMode::ReadOnly);
    QStringList rows;
    store::Cursor row = database.run(QStringLiteral("SELECT ccall||'|'||AALL FROM tblQRZ ORDER BY rowid"));
    while (row.next())
        rows.append(row.text(0));
    return rows;
}

bool waiting(const Window &w)
{
    return w.find<QLabel>("lblwait")->isVisible();
}

} // namespace

class ContestListWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void texts()
    {
        Window w(bothFiles);
        QCOMPARE(w.find<QAbstractButton>("cmbcalbuk")->text(), QStringLiteral("cmbcalbuk"));
        QCOMPARE(w.find<QLabel>("lblwait")->text(), QStringLiteral("Минутку !!!"));
        QVERIFY(!waiting(w));
    }

    /// The second question comes whatever the first answer was.
    void bothRefused()
    {
        Window w(bothFiles);
        w.messages.yes = false;
        w.click("cmbcalbuk");
        QCOMPARE(w.messages.asked, (QStringList{kTransfer, kEmpty}));
        QCOMPARE(listed(w.installation.file(kDatabase)), QStringList("OLD|1"));
        QVERIFY(w.messages.errors.isEmpty() && w.messages.told.isEmpty() && w.dialogs.opened.isEmpty());
        QCOMPARE(w.status(), QString());
    }

    /// Up to the first row without a callsign; the label stands while the rows go in.
    void transferred()
    {
        Window w(bothFiles);
        w.messages.answers = {true, false};
        bool seen = false;
        w.progress.atStep = [&] { seen = seen || waiting(w); };
        w.click("cmbcalbuk");
        QCOMPARE(w.messages.asked, (QStringList{kTransfer, kEmpty}));
        QCOMPARE(listed(w.installation.file(kDatabase)),
                 (QStringList{"OLD|1", "UA1A|zone 0", "UA2B|zone 1"}));
        QVERIFY(seen);
        QVERIFY(!waiting(w));
        QCOMPARE(w.status(), QStringLiteral("Из TblLOG1.XLS в dbQRZ.mdb перенесено строк: 2 из 2. Начиная со "
                                            "строки без позывного не взято строк: 2."));
        QVERIFY(
            w.installation.rows(QStringLiteral("dbcontest.mdb"), QStringLiteral("SELECT ccall FROM tblQRZ"))
                .isEmpty());
    }

    void emptiedAlone()
    {
        Window w(bothFiles);
        w.messages.answers = {false, true};
        w.click("cmbcalbuk");
        QCOMPARE(listed(w.installation.file(kDatabase)), QStringList());
        QCOMPARE(w.status(), QStringLiteral("База соревнований очищена, удалено строк: 1."));
        QVERIFY(!waiting(w));
    }

    /// Imports, and then empties the table again.
    void transferredAndEmptied()
    {
        Window w(bothFiles);
        w.click("cmbcalbuk");
        QCOMPARE(listed(w.installation.file(kDatabase)), QStringList());
        QVERIFY(w.status().endsWith(QStringLiteral("База соревнований очищена, удалено строк: 3.")));
    }

    /// A file that is not at its place is chosen; chosen for the first question it serves for the second.
    void filesAreChosen()
    {
        Window w;
        const QString database = w.installation.file(QStringLiteral("elsewhere/list.mdb"));
        makeDatabase(database);
        makeBook(w.installation.file(kBook), {QStringLiteral("UA1A")});
        w.dialogs.chosen = database;
        w.messages.answers = {true, false};
        w.click("cmbcalbuk");
        QCOMPARE(w.dialogs.opened.size(), 1);
        QVERIFY(w.dialogs.opened.front().contains(w.installation.file(kDatabase)));
        QCOMPARE(listed(database), (QStringList{"OLD|1", "UA1A|zone 0"}));
        w.click("cmbcalbuk");
        QCOMPARE(w.dialogs.opened.size(), 2);
        QCOMPARE(listed(database), QStringList());
    }

    /// Nothing is chosen: nothing happens, and the second question comes all the same.
    void nothingChosen()
    {
        Window w;
        w.click("cmbcalbuk");
        QCOMPARE(w.messages.asked, (QStringList{kTransfer, kEmpty}));
        QCOMPARE(w.dialogs.opened.size(), 2); // the workbook, and the database to be emptied
        QVERIFY(w.dialogs.opened.front().contains(w.installation.file(kBook)));
        QVERIFY(w.messages.errors.isEmpty());
        QVERIFY(!waiting(w));
    }

    void damagedFiles()
    {
        Window w(bothFiles);
        QFile book(w.installation.file(kBook));
        QVERIFY(book.open(QIODevice::WriteOnly) && book.write("no workbook") > 0);
        book.close();
        w.messages.answers = {true, false};
        w.click("cmbcalbuk");
        QCOMPARE(w.messages.errors.size(), 1);
        QCOMPARE(w.messages.asked, (QStringList{kTransfer, kEmpty}));
        QCOMPARE(listed(w.installation.file(kDatabase)), QStringList("OLD|1"));
        QVERIFY(!waiting(w));
        store::Connection(w.installation.file(kDatabase), store::OpenMode::ReadWrite)
            .exec(QStringLiteral("DROP TABLE tblQRZ"));
        w.messages.answers = {false, true};
        w.click("cmbcalbuk");
        QCOMPARE(w.messages.errors.size(), 2);
        QVERIFY(!waiting(w));
    }

    /// What was typed stays, and the contact is recorded afterwards.
    void typedContactStays()
    {
        Window w(bothFiles);
        w.type(QStringLiteral("r9abc"));
        w.click("cmbcalbuk");
        QCOMPARE(w.text("txtcall"), QStringLiteral("R9ABC"));
    }
};

QTEST_MAIN(ContestListWindowTest)
#include "contestlist.moc"
