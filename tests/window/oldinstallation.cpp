// The start of the program in a folder with old databases: one question, one progress, one summary.
#include "app/oldinstallation.h"
#include "app/program.h"
#include "support/jetfixtures.h"
#include "support/window.h"
#include "ui/codepagedialog.h"
#include "ui/messageboxes.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

using testsupport::dataFile;
using testsupport::FakeMessages;
using testsupport::FakeProgress;

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("not there");
}

void copyFile(const QString &from, const QString &to)
{
    QVERIFY(QFile::copy(from, to));
    QVERIFY(QFile::setPermissions(to, QFile::ReadOwner | QFile::WriteOwner));
}

/// A program folder with the eleven old files.
struct Folder {
    explicit Folder(const QString &fixtures = QStringLiteral("jet4/"))
    {
        for (const store::FileLayout &layout : store::fileLayouts())
            copyFile(dataFile(fixtures + layout.name), file(layout.name));
    }
    [[nodiscard]] QString file(const QString &name) const { return dir.filePath(name); }
    [[nodiscard]] qsizetype files() const
    {
        return QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).size();
    }
    [[nodiscard]] qint64 rows(const QString &name, const QString &table) const
    {
        store::Connection connection(file(name), store::OpenMode::ReadOnly);
        return connection.singleNumber(QStringLiteral("SELECT count(*) FROM ") + table);
    }

    QTemporaryDir dir;
    QTemporaryDir user;
};

QStringList convert(const Folder &folder, FakeMessages &messages, FakeProgress &progress)
{
    store::Library databases({folder.dir.path(), false}, folder.user.path());
    foreign::JetOptions reader;
    reader.program = QStringLiteral(ZHURNAL_JETREAD);
    return app::OldInstallation(messages, progress, reader).convert(databases);
}

} // namespace

class OldInstallationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void elevenFilesAtOnce_data()
    {
        QTest::addColumn<QString>("fixtures");
        QTest::newRow("Jet 3") << QStringLiteral("jet3/");
        QTest::newRow("Jet 4") << QStringLiteral("jet4/");
    }
    void elevenFilesAtOnce()
    {
        QFETCH(QString, fixtures);
        const Folder folder(fixtures);
        FakeMessages messages;
        FakeProgress progress;
        QCOMPARE(convert(folder, messages, progress), QStringList());
        QCOMPARE(messages.asked.size(), 1);
        QCOMPARE(messages.told.size(), 1);
        QCOMPARE(messages.doubted, QStringList());
        for (const store::FileLayout &layout : store::fileLayouts()) {
            QVERIFY(messages.asked.front().contains(layout.name + QStringLiteral(" — ") + layout.role));
            QVERIFY(messages.told.front().contains(layout.name + QStringLiteral(" — ")));
            const QString original = layout.name.chopped(4) + QStringLiteral(".jet.mdb");
            QVERIFY(messages.told.front().contains(original));
            QCOMPARE(contents(folder.file(original)), contents(dataFile(fixtures + layout.name)));
        }
        QVERIFY(messages.told.front().contains(QStringLiteral("TBLLOG1: 508 строк, tbllogTEMP: 0 строк")));
        QVERIFY(messages.told.front().contains(QStringLiteral("Преобразовано файлов: 11, всего ")));
        QCOMPARE(progress.steps.count(QStringLiteral("Преобразование старых баз")), 1);
        QCOMPARE(progress.steps.count(QStringLiteral("end")), 1);
        QVERIFY(progress.stoppable);
        // One bar over all files: it never goes back and ends full.
        qint64 last = 0;
        for (const QString &step : std::as_const(progress.steps)) {
            const QString numbers = step.section(QStringLiteral(": "), -1);
            if (!step.contains(QStringLiteral("из 11): ")))
                continue;
            const qint64 done = numbers.section(QLatin1Char(' '), 0, 0).toLongLong();
            QVERIFY(done >= last);
            last = done;
        }
        QCOMPARE(last, 2 * (508 + 70 + 33 + 127 + 194 + 181 + 87 + 208 + 41 + 7 + 33 + 12));

        FakeMessages again;
        QCOMPARE(convert(folder, again, progress), QStringList());
        QVERIFY(again.asked.isEmpty() && again.told.isEmpty());
    }

    void refused()
    {
        const Folder folder;
        FakeMessages messages;
        messages.yes = false;
        FakeProgress progress;
        QCOMPARE(convert(folder, messages, progress), QStringList());
        QCOMPARE(messages.asked.size(), 1);
        QVERIFY(messages.told.isEmpty() && progress.steps.isEmpty());
        QCOMPARE(folder.files(), 11);
        QCOMPARE(contents(folder.file(QStringLiteral("dbiaru.mdb"))),
                 contents(dataFile(QStringLiteral("jet4/dbiaru.mdb"))));
    }

    void oneIsBroken()
    {
        const Folder folder;
        const QString log = folder.file(QStringLiteral("dblog.mdb"));
        QVERIFY(QFile::remove(log));
        copyFile(dataFile(QStringLiteral("jet4/broken/zero_data_page.mdb")), log);
        FakeMessages messages;
        FakeProgress progress;
        QCOMPARE(convert(folder, messages, progress), QStringList(log));
        QCOMPARE(messages.told.size(), 1);
        QVERIFY(messages.told.front().contains(QStringLiteral("Преобразовано файлов: 10")));
        QVERIFY(messages.told.front().contains(QStringLiteral(
            "Не преобразованы и оставлены без изменений:\n    dblog.mdb: файл повреждён; прочитано 481 "
            "строк из 508.")));
        QCOMPARE(folder.files(), 21);
        QCOMPARE(contents(log), contents(dataFile(QStringLiteral("jet4/broken/zero_data_page.mdb"))));
    }

    void readingProgramIsMissing()
    {
        const Folder folder;
        FakeMessages messages;
        FakeProgress progress;
        store::Library databases({folder.dir.path(), false}, folder.user.path());
        foreign::JetOptions reader;
        reader.program = folder.file(QStringLiteral("nowhere"));
        QCOMPARE(app::OldInstallation(messages, progress, reader).convert(databases).size(), 11);
        QCOMPARE(messages.told.size(), 1);
        QCOMPARE(messages.told.front().count(QStringLiteral("не запускается программа чтения старых баз")),
                 1);
        QVERIFY(messages.told.front().contains(QStringLiteral("dbiaru.mdb, dblog.mdb, dbcall.mdb")));
        QCOMPARE(folder.files(), 11);
    }

    void stopped()
    {
        const Folder folder;
        FakeMessages messages;
        FakeProgress progress;
        progress.atStep = [&] {
            progress.stopNow = progress.steps.back().startsWith(QStringLiteral("dbname.mdb (4 из 11)"));
        };
        QCOMPARE(convert(folder, messages, progress), QStringList());
        QCOMPARE(messages.told.size(), 1);
        QVERIFY(messages.told.front().contains(QStringLiteral("Преобразовано файлов: 3")));
        QVERIFY(messages.told.front().contains(
            QStringLiteral("Преобразование остановлено. Без изменений остались: "
                           "dbname.mdb, dbdxcc1.mdb, dbrusdx.mdb")));
        QCOMPARE(folder.files(), 14);
    }

    void codePageIsAskedOnce_data()
    {
        QTest::addColumn<int>("codePage");
        QTest::addColumn<qsizetype>("converted");
        QTest::newRow("1251") << 1251 << qsizetype(11);
        QTest::newRow("none") << 0 << qsizetype(9);
    }
    void codePageIsAskedOnce()
    {
        QFETCH(int, codePage);
        QFETCH(qsizetype, converted);
        const Folder folder(QStringLiteral("jet3/"));
        for (const char *name : {"dbiaru.mdb", "dblog.mdb"}) { // both with the wrong header
            QVERIFY(QFile::remove(folder.file(QLatin1String(name))));
            copyFile(dataFile(QStringLiteral("jet3/dbiaru_hdr1252.mdb")), folder.file(QLatin1String(name)));
        }
        FakeMessages messages;
        messages.codePage = codePage;
        FakeProgress progress;
        QCOMPARE(convert(folder, messages, progress).size(), 11 - converted);
        QCOMPARE(messages.doubted, QStringList(QStringLiteral("dbiaru.mdb")));
        QVERIFY(messages.told.front().contains(QStringLiteral("Преобразовано файлов: %1").arg(converted)));
        if (codePage == 0)
            return;
        store::Connection log(folder.file(QStringLiteral("dblog.mdb")), store::OpenMode::ReadOnly);
        QVERIFY(log.singleNumber(QStringLiteral("SELECT count(*) FROM TBLLOG1 WHERE QTH='Москва'")) > 0);
    }

    /// The whole start: the window opens over the converted files.
    void program()
    {
        const Folder folder;
        FakeMessages messages;
        app::Program program(messages, folder.dir.path(), folder.user.path());
        QVERIFY(program.start());
        QCOMPARE(messages.asked.size(), 1);
        QCOMPARE(messages.told.size(), 1);
        QCOMPARE(messages.errors, QStringList());
        QVERIFY(program.mainWindow()->openingErrors().isEmpty());
        QCOMPARE(folder.rows(QStringLiteral("dbiaru.mdb"), QStringLiteral("TBLLOG1")), 508);
    }

    void programWithRefusedConversion()
    {
        const Folder folder;
        FakeMessages messages;
        messages.yes = false;
        app::Program program(messages, folder.dir.path(), folder.user.path());
        QVERIFY(program.start());
        QCOMPARE(messages.asked.size(), 1);
        QCOMPARE(messages.told.size(), 1);
        QCOMPARE(messages.told.front().count(QStringLiteral("формат Jet")), 1);
        for (const store::FileLayout &layout : store::fileLayouts())
            QCOMPARE(messages.told.front().count(layout.name), 1);
        QVERIFY(!messages.told.front().contains(QStringLiteral("не найден")));
        QCOMPARE(folder.files(), 11 + 4); // and the report layouts
    }

    void programWithABrokenLog()
    {
        const Folder folder;
        const QString log = folder.file(QStringLiteral("dbiaru.mdb"));
        QVERIFY(QFile::remove(log));
        copyFile(dataFile(QStringLiteral("jet4/broken/crash_libmdb_a.mdb")), log);
        FakeMessages messages;
        app::Program program(messages, folder.dir.path(), folder.user.path());
        QVERIFY(program.start());
        QCOMPARE(messages.told.size(), 1); // the summary; the file is not told of twice
        QVERIFY(messages.told.front().contains(QStringLiteral("dbiaru.mdb: файл повреждён")));
        QCOMPARE(contents(log), contents(dataFile(QStringLiteral("jet4/broken/crash_libmdb_a.mdb"))));
    }

    void originalWithoutItsFileIsConvertedNotSeeded()
    {
        const Folder folder;
        FakeMessages messages;
        FakeProgress progress;
        QCOMPARE(convert(folder, messages, progress), QStringList());
        QVERIFY(QFile::remove(folder.file(QStringLiteral("dbname.mdb"))));
        FakeMessages refusing;
        refusing.yes = false;
        {
            app::Program program(refusing, folder.dir.path(), folder.user.path());
            QVERIFY(program.start());
            QVERIFY(refusing.asked.front().contains(QStringLiteral("dbname.jet.mdb — имена и города")));
            QVERIFY(!QFile::exists(folder.file(QStringLiteral("dbname.mdb"))));
        }
        FakeMessages agreeing;
        app::Program program(agreeing, folder.dir.path(), folder.user.path());
        QVERIFY(program.start());
        QCOMPARE(folder.rows(QStringLiteral("dbname.mdb"), QStringLiteral("tblgorod")), 194);
    }

    void newerFormatIsRefusedClearly()
    {
        const Folder folder;
        const QString log = folder.file(QStringLiteral("dbiaru.mdb"));
        QVERIFY(QFile::remove(log));
        copyFile(dataFile(QStringLiteral("jet4/broken/version_accdb.mdb")), log);
        FakeMessages messages;
        app::Program program(messages, folder.dir.path(), folder.user.path());
        QVERIFY(program.start());
        QVERIFY(!messages.asked.front().contains(QStringLiteral("dbiaru.mdb — ")));
        QCOMPARE(messages.told.size(), 1);
        QVERIFY(messages.told.front().contains(QStringLiteral("dbiaru.mdb: это база Access 2007 или новее")));
        QVERIFY(messages.told.front().contains(QStringLiteral("Преобразовано файлов: 10")));
    }

    void newerFormatAlone()
    {
        const Folder folder;
        QTemporaryDir other;
        copyFile(dataFile(QStringLiteral("jet4/broken/version_accdb.mdb")),
                 other.filePath(QStringLiteral("dbiaru.mdb")));
        FakeMessages messages;
        app::Program program(messages, other.path(), folder.user.path());
        QVERIFY(program.start());
        QVERIFY(messages.asked.isEmpty());
        QCOMPARE(messages.told.size(), 1);
        QVERIFY(messages.told.front().contains(QStringLiteral("это база Access 2007 или новее")));
        QCOMPARE(contents(other.filePath(QStringLiteral("dbiaru.mdb"))),
                 contents(dataFile(QStringLiteral("jet4/broken/version_accdb.mdb"))));
    }

    void readOnlyFolder()
    {
        const Folder folder;
        FakeMessages messages;
        FakeProgress progress;
        store::Library databases({folder.dir.path(), true}, folder.user.path());
        QCOMPARE(app::OldInstallation(messages, progress).convert(databases), QStringList());
        QVERIFY(messages.asked.isEmpty());
        QCOMPARE(folder.files(), 11);
    }

    void codePageDialog()
    {
        const QString path = dataFile(QStringLiteral("jet3/dbiaru_hdr1252.mdb"));
        foreign::JetOptions reader;
        reader.program = QStringLiteral(ZHURNAL_JETREAD);
        const auto doubt = foreign::doubtCodePage(path, reader);
        QVERIFY(doubt);
        ui::CodePageDialog dialog(QStringLiteral("dbiaru.mdb"), *doubt, nullptr);
        dialog.show();
        QVERIFY(dialog.width() < 1366 && dialog.height() < 768);
        QCOMPARE(dialog.codePage(), 1251);
        for (const foreign::CodePageSample &sample : doubt->samples) {
            auto *button = dialog.findChild<QRadioButton *>(QStringLiteral("opPage_%1").arg(sample.codePage));
            auto *rows = dialog.findChild<QLabel *>(QStringLiteral("rows_%1").arg(sample.codePage));
            QVERIFY(button != nullptr && rows != nullptr);
            QCOMPARE(rows->text().count(QLatin1Char('\n')), sample.rows.size() - 1);
            QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, QPoint(8, button->height() / 2));
            QCOMPARE(dialog.codePage(), sample.codePage);
        }
        QVERIFY(dialog.findChild<QRadioButton *>(QStringLiteral("opPage_1252"))
                    ->text()
                    .contains(QStringLiteral("записана в файле")));

        ui::MessageBoxes boxes;
        const auto answer = [&](const char *button) {
            QTimer::singleShot(0, this, [button] {
                auto *top = QApplication::activeModalWidget();
                top->findChild<QPushButton *>(QLatin1String(button))->click();
            });
            return boxes.chooseCodePage(QStringLiteral("dbiaru.mdb"), *doubt);
        };
        QCOMPARE(answer("cmbok"), 1251);
        QCOMPARE(answer("cmbleave"), 0);
    }
};

QTEST_MAIN(OldInstallationTest)
#include "oldinstallation.moc"
