// The revision window, as the operator uses it.
#include "app/olddatabases.h"
#include "interchange/ui/fdob.h"
#include "support/window.h"

#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>

using interchange::Fdob;
using testsupport::Installation;
using testsupport::Window;

namespace {

constexpr auto kLog = "dbiaru.mdb";

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

/// Contacts of 05.03.26, the day of the fixed clock.
void fill(const Installation &in, int count, const QString &day = QStringLiteral("05.03.26"))
{
    in.sql(QLatin1String(kLog),
           QStringLiteral(
               "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1) INSERT INTO "
               "TBLLOG1(ccall,ddate,ttime,bband,rsts,rstr,ps1) SELECT 'R'||i||'A', '%2', '10:00', '14', "
               "'5999', '59', '' FROM n")
               .arg(count)
               .arg(day));
}

QStringList log(const Installation &in, const char *fields = "ccall")
{
    return in.rows(QLatin1String(kLog),
                   QStringLiteral("SELECT %1 FROM TBLLOG1 ORDER BY rowid").arg(QLatin1String(fields)));
}

/// Old databases that are "converted" into a fresh log with the contact R9OLD.
class FakeOldDatabases final : public interchange::OldDatabases {
public:
    QStringList asked;
    bool gaveUp = false;

    [[nodiscard]] bool convertTo(const QString &oldFile, const QString &newFile) override
    {
        asked.append(QStringLiteral("to: ") + oldFile);
        return !gaveUp && put(newFile);
    }
    [[nodiscard]] bool convertInPlace(const QString &oldFile) override
    {
        asked.append(QStringLiteral("in place: ") + oldFile);
        return !gaveUp && QFile::remove(oldFile) && put(oldFile);
    }

private:
    [[nodiscard]] static bool put(const QString &path)
    {
        const Installation fresh;
        fresh.addContact(QStringLiteral("R9OLD"), QStringLiteral("05.03.02"), QStringLiteral("RUSSIAN"));
        return QFile::copy(fresh.file(QLatin1String(kLog)), path);
    }
};

/// The revision window beside the main one.
struct Revision {
    Window w;
    FakeOldDatabases old;
    Fdob fdob{interchange::Services{w.installation.databases, w.messages, w.progress, w.dialogs, old}};

    explicit Revision(const std::function<void(Installation &)> &prepare = {}) : w(prepare)
    {
        fdob.show();
        fdob.activateWindow();
        if (!QTest::qWaitForWindowActive(&fdob))
            qFatal("the window does not get active");
    }
    template <typename Widget = ui::FilterEdit>
    [[nodiscard]] Widget *find(const char *name) const
    {
        auto *widget = fdob.findChild<Widget *>(QLatin1String(name));
        if (widget == nullptr)
            qFatal("no %s", name);
        return widget;
    }
    void click(const char *name)
    {
        auto *button = find<QPushButton>(name);
        QTest::mouseClick(fdob.windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          button->mapTo(&fdob, button->rect().center()));
    }
    void choose(const char *button, const QString &path)
    {
        w.dialogs.chosen = path;
        click(button);
    }
    [[nodiscard]] QString text(const char *name) const { return find(name)->text(); }
    [[nodiscard]] QString result() const { return find<QLabel>("lblitog")->text(); }
    [[nodiscard]] QString ownLog() const { return w.installation.file(QLatin1String(kLog)); }
};

} // namespace

class RevisionWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void captionsOfTheWindow()
    {
        Revision r;
        QCOMPARE(r.fdob.windowTitle(), QStringLiteral("Ревизия"));
        QCOMPARE(r.find<QPushButton>("Command1")->text(), QStringLiteral("Откуда"));
        QCOMPARE(r.find<QPushButton>("Command2")->text(), QStringLiteral("Куда"));
        QCOMPARE(r.find<QPushButton>("Command3")->text(), QStringLiteral("Выполнить"));
        QCOMPARE(r.find<QPushButton>("Command4")->text(), QStringLiteral("Выход"));
        QCOMPARE(r.find<QPushButton>("cmbAdif")->text(), QStringLiteral("ADIF"));
        QStringList labels;
        for (const QLabel *label : r.fdob.findChildren<QLabel *>())
            labels.append(label->text());
        for (const char *caption : {"Всего QSO", "Новых QSO", "Осталось проверить"})
            QVERIFY(labels.contains(QString::fromUtf8(caption)));
        for (const char *name : {"Text3", "Text4", "Text5"})
            QCOMPARE(r.text(name), QStringLiteral("0"));
        r.click("Command4");
        QVERIFY(r.fdob.isHidden());
    }

    void wrongFileNames_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::newRow("none chosen") << ""
                                     << "";
        QTest::newRow("no source") << ""
                                   << "/a/dbiaru.mdb";
        QTest::newRow("no target") << "/a/dbiaru.mdb"
                                   << "";
        QTest::newRow("another name") << "/a/log.mdb"
                                      << "/a/dbiaru.mdb";
        QTest::newRow("another target") << "/a/dbiaru.mdb"
                                        << "/a/dblog.mdb";
    }
    void wrongFileNames()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        Revision r;
        r.choose("Command1", from);
        r.choose("Command2", to);
        r.w.messages.errors.clear(); // the files are not there, which is told at once
        r.click("Command3");
        QCOMPARE(r.w.messages.told,
                 QStringList(QStringLiteral("XA _ XA: Неверно выбран файл ( dbiaru.mdb )")));
        QVERIFY(r.w.messages.errors.isEmpty());
    }

    void filesAreChosen()
    {
        Revision r;
        Installation other;
        other.addContact(QStringLiteral("R7X"), QStringLiteral("05.03.02"), QStringLiteral("RUSSIAN"));
        const QString path = other.file(QLatin1String(kLog));
        r.choose("Command1", path);
        QCOMPARE(r.text("Text1"), path);
        QCOMPARE(r.text("txtbas1_0"), QStringLiteral("R7X"));
        QCOMPARE(r.text("txtbas1_12"), QStringLiteral("RUSSIAN"));
        QCOMPARE(r.text("txtbas2_0"), QString());
        QVERIFY2(r.w.dialogs.opened.front().contains(QStringLiteral("База данных (dbiaru.mdb")),
                 qPrintable(r.w.dialogs.opened.front()));
        r.choose("Command1", QString());
        QCOMPARE(r.text("Text1"), path); // cancelled
    }

    void merges()
    {
        Installation other;
        other.addContact(QStringLiteral("R7X"), QStringLiteral("05.03.02"), QStringLiteral("RUSSIAN"));
        other.addContact(QStringLiteral("R8X"), QStringLiteral("05.03.02"), QStringLiteral("RUSSIAN"),
                         QStringLiteral("+"));
        Revision r([](Installation &in) {
            in.addContact(QStringLiteral("R8X"), QStringLiteral("05.03.02"), QStringLiteral("RUSSIAN"));
        });
        QSignalSpy changed(&r.fdob, &Fdob::logChanged);
        r.choose("Command1", other.file(QLatin1String(kLog)));
        r.choose("Command2", r.ownLog());
        r.click("Command3");
        QCOMPARE(log(r.w.installation, "ccall,QSLP"), QStringList({"R8X|+", "R7X|"}));
        QCOMPARE(r.text("Text4"), QStringLiteral("2"));
        QCOMPARE(r.text("Text3"), QStringLiteral("1"));
        QCOMPARE(r.text("Text5"), QStringLiteral("0"));
        QVERIFY2(
            r.result().startsWith(QStringLiteral("Готово. Новых связей: 1. Отметок и маршрутов добавлено")),
            qPrintable(r.result()));
        QCOMPARE(changed.size(), 1);
        QVERIFY(r.w.messages.told.isEmpty() && r.w.messages.asked.isEmpty() && r.w.messages.errors.isEmpty());
        // The other way round, names in capitals too.
        QVERIFY(QFile::rename(other.file(QLatin1String(kLog)), other.file(QStringLiteral("DBIARU.MDB"))));
        r.choose("Command1", r.ownLog());
        r.choose("Command2", other.file(QStringLiteral("DBIARU.MDB")));
        r.click("Command3");
        QCOMPARE(r.text("Text3"), QStringLiteral("0"));
    }

    void stopIsTold()
    {
        Installation other;
        fill(other, 2000);
        Revision r;
        r.choose("Command1", other.file(QLatin1String(kLog)));
        r.choose("Command2", r.ownLog());
        r.w.progress.atStep = [&r] {
            if (r.text("Text3") == QLatin1String("1000"))
                r.w.progress.stopNow = true;
        };
        r.click("Command3");
        QVERIFY(r.w.progress.stoppable);
        QCOMPARE(log(r.w.installation).size(), 1000);
        QCOMPARE(r.text("Text5"), QStringLiteral("1000"));
        QVERIFY2(r.result().startsWith(QStringLiteral("Остановлено")), qPrintable(r.result()));
    }

    void errorHasItsNumber()
    {
        Installation other;
        other.addContact(QStringLiteral("R7X"), QStringLiteral("05.03.02"), QStringLiteral("RUSSIAN"));
        Revision r([](Installation &in) {
            in.sql(QLatin1String(kLog),
                   QStringLiteral("CREATE TRIGGER no BEFORE INSERT ON TBLLOG1 BEGIN SELECT "
                                  "RAISE(ABORT,'нельзя'); END"));
        });
        r.choose("Command1", other.file(QLatin1String(kLog)));
        r.choose("Command2", r.ownLog());
        r.click("Command3");
        QCOMPARE(r.w.messages.told.size(), 1);
        QVERIFY2(r.w.messages.told.front().contains(QStringLiteral("Ошибка 1811")),
                 qPrintable(r.w.messages.told.front()));
        QCOMPARE(log(r.w.installation).size(), 0);
    }

    void oldSourceIsReadAndStaysWhatItIs()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QLatin1String(kLog));
        const QByteArray jet("\0\1\0\0Standard Jet DB\0\0\0\0\0\0\0\0\0\0\0\0\0", 32);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(jet) == jet.size());
        file.close();
        Revision r([](Installation &in) {
            in.addContact(QStringLiteral("R8X"), QStringLiteral("05.03.02"), QStringLiteral("RUSSIAN"));
        });
        r.choose("Command1", path);
        QCOMPARE(r.text("txtbas1_0"), QString()); // its rows are not known yet
        r.choose("Command2", r.ownLog());
        QVERIFY(QDir(r.w.installation.userFolder()).removeRecursively()); // nothing has needed it yet
        r.click("Command3");
        QCOMPARE(r.old.asked, QStringList(QStringLiteral("to: ") + path));
        QCOMPARE(log(r.w.installation), QStringList({"R8X", "R9OLD"}));
        QCOMPARE(content(path), jet);
        QCOMPARE(QDir(r.w.installation.userFolder()).entryList({"merge*"}, QDir::Dirs), QStringList());
        r.old.gaveUp = true;
        r.click("Command3");
        QCOMPARE(log(r.w.installation).size(), 2);
        QVERIFY(r.w.messages.errors.isEmpty());
    }

    void oldTargetIsOfferedToBeConverted()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QLatin1String(kLog));
        QFile file(path);
        const QByteArray jet("\0\1\0\0Standard Jet DB\0\0\0\0\0\0\0\0\0\0\0\0\0", 32);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(jet) == jet.size());
        file.close();
        Revision r([](Installation &in) {
            in.addContact(QStringLiteral("R8X"), QStringLiteral("05.03.02"), QStringLiteral("RUSSIAN"));
        });
        r.choose("Command1", r.ownLog());
        r.w.messages.yes = false;
        r.choose("Command2", path);
        QCOMPARE(r.w.messages.asked.size(), 1);
        QVERIFY(r.w.messages.asked.front().contains(QStringLiteral("Преобразовать сейчас?")));
        r.click("Command3");
        QCOMPARE(r.w.messages.asked.size(), 2);
        QCOMPARE(r.old.asked, QStringList());
        r.w.messages.yes = true;
        r.click("Command3");
        QCOMPARE(r.old.asked, QStringList(QStringLiteral("in place: ") + path));
        store::Connection converted(path, store::OpenMode::ReadWrite);
        QCOMPARE(converted.singleNumber(QStringLiteral("SELECT count(*) FROM TBLLOG1")), 2);
    }

    void genuineOldLogs_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("Access 97") << "jet3/dbiaru.mdb";
        QTest::newRow("Access 2000") << "jet4/dbiaru.mdb";
    }
    /// A genuine old log with all its odd rows, merged twice and into itself.
    void genuineOldLogs()
    {
        QFETCH(QString, file);
        Window w;
        foreign::JetOptions reader;
        reader.program = QStringLiteral(ZHURNAL_JETREAD);
        app::OldDatabases old(w.messages, w.progress, reader);
        Fdob fdob({w.installation.databases, w.messages, w.progress, w.dialogs, old});
        const auto choose = [&](const char *button, const QString &path) {
            w.dialogs.chosen = path;
            fdob.findChild<QPushButton *>(QLatin1String(button))->click();
        };
        const auto execute = [&] { fdob.findChild<QPushButton *>(QStringLiteral("Command3"))->click(); };
        const auto text = [&](const char *name) {
            return fdob.findChild<ui::FilterEdit *>(QLatin1String(name))->text();
        };
        QTemporaryDir folder;
        const QString path = folder.filePath(QLatin1String(kLog));
        QVERIFY(QFile::copy(QStringLiteral(TEST_DATA "/") + file, path));
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner));
        const QByteArray before = content(path);
        choose("Command1", path);
        choose("Command2", w.installation.file(QLatin1String(kLog)));
        execute();
        const QStringList merged = log(w.installation, "ccall,ddate,bband,rsts,QTH,NNAME,QSLP,QSLO,QSLVIA");
        QCOMPARE(text("Text4"), QStringLiteral("508"));
        QCOMPARE(text("Text3"), QString::number(merged.size()));
        QVERIFY(merged.size() > 490);
        execute();
        QCOMPARE(text("Text3"), QStringLiteral("0"));
        QCOMPARE(log(w.installation, "ccall,ddate,bband,rsts,QTH,NNAME,QSLP,QSLO,QSLVIA"), merged);
        QCOMPARE(content(path), before);

        w.messages.asked.clear();
        choose("Command2", path); // as a target it is converted where it lies
        QCOMPARE(w.messages.asked.size(), 1);
        QCOMPARE(content(folder.filePath(QStringLiteral("dbiaru.jet.mdb"))), before);
        choose("Command1", path);
        execute();
        QCOMPARE(text("Text4"), QStringLiteral("508"));
        QCOMPARE(text("Text3"), QStringLiteral("0"));
        choose("Command1", w.installation.file(QLatin1String(kLog)));
        execute();
        QCOMPARE(text("Text3"), QStringLiteral("0"));
        QVERIFY2(w.messages.errors.isEmpty() && w.messages.told.isEmpty(),
                 qPrintable(w.messages.told.join("\n")));
    }

    void numberedExport()
    {
        Revision r([](Installation &in) { fill(in, 501); });
        r.click("cmbAdif");
        QCOMPARE(content(r.w.installation.file(QStringLiteral("LOG_ADIF0"))).count("<eor>"), 500);
        QCOMPARE(content(r.w.installation.file(QStringLiteral("LOG_ADIF1"))).count("<eor>"), 1);
        QVERIFY2(
            r.result().startsWith(QStringLiteral("Записано связей: 501, файлов: 2 (последний — LOG_ADIF1).")),
            qPrintable(r.result()));
        QCOMPARE(log(r.w.installation, "rsts").count(QStringLiteral("599")), 501);
        QVERIFY(r.w.messages.asked.isEmpty() && r.w.messages.told.isEmpty() && r.w.messages.errors.isEmpty());
    }

    void numberedExportCarriesTheBandFromClickToClick()
    {
        Revision r([](Installation &in) {
            in.sql(QLatin1String(kLog),
                   QStringLiteral("INSERT INTO TBLLOG1(ccall,ddate,ttime,bband,rsts,rstr) VALUES"
                                  "('R1A','05.03.26','10:00','144','59','59'),"
                                  "('R1B','05.03.26','11:00','7','59','59')"));
        });
        const QString file = r.w.installation.file(QStringLiteral("LOG_ADIF0"));
        r.click("cmbAdif");
        QVERIFY(content(file).contains("<band:0>"));
        r.click("cmbAdif");
        QVERIFY(!content(file).contains("<band:0>"));
    }

    void emptyLogIsExportedInSilence()
    {
        Revision r;
        r.click("Command5");
        QVERIFY(!r.result().isEmpty());
        r.click("cmbAdif");
        QVERIFY(!QFile::exists(r.w.installation.file(QStringLiteral("LOG_ADIF0"))));
        QVERIFY(r.result().isEmpty());
        QVERIFY(r.w.messages.told.isEmpty() && r.w.messages.errors.isEmpty());
    }

    void datesAndTimesAreRepaired()
    {
        Revision r([](Installation &in) {
            in.sql(QLatin1String(kLog),
                   QStringLiteral("INSERT INTO TBLLOG1(ccall,ddate,ttime) VALUES('R1A','05-Mar-02','905')"));
        });
        r.click("Command5");
        QCOMPARE(log(r.w.installation, "ddate,ttime"), QStringList("05.03.02|9:05"));
        QCOMPARE(r.result(), QStringLiteral("Готово. Просмотрено связей: 1. Исправлено дат: 1, времён: 1."));
        QCOMPARE(r.text("txtbas1_1"), QStringLiteral("05.03.02"));
    }

    void groupsAreDraggedAndDropped()
    {
        Revision r;
        r.fdob.resize(900, 700);
        for (const char *name : {"Frame1", "Frame2", "Frame3"}) {
            auto *group = r.find<QWidget>(name);
            QCoreApplication::processEvents(); // the others close up
            group->raise();
            const QPoint press = group->mapTo(&r.fdob, QPoint(group->width() - 3, group->height() - 2));
            const QPoint drop(13, 17);
            QTest::mousePress(r.fdob.windowHandle(), Qt::LeftButton, Qt::NoModifier, press);
            QTest::mouseMove(r.fdob.windowHandle(), press - QPoint(40, 30));
            QTest::mouseMove(r.fdob.windowHandle(), drop);
            QTest::mouseRelease(r.fdob.windowHandle(), Qt::LeftButton, Qt::NoModifier, drop);
            QCOMPARE(group->pos(), QPoint(std::min(drop.x(), r.fdob.width() - group->width()),
                                          std::min(drop.y(), r.fdob.height() - group->height())));
        }
        // A click moves nothing.
        auto *group = r.find<QWidget>("Frame2");
        const QPoint before = group->pos();
        QTest::mouseClick(r.fdob.windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          group->mapTo(&r.fdob, QPoint(group->width() - 3, group->height() - 2)));
        QCOMPARE(group->pos(), before);
        // What was dragged stays within a window made smaller, and is in its place when it is opened again.
        r.fdob.resize(500, 400);
        QCoreApplication::processEvents();
        QVERIFY(group->parentWidget()->rect().contains(group->geometry()));
        r.fdob.close();
        r.fdob.show();
        QCoreApplication::processEvents();
        QVERIFY(r.find<QWidget>("Frame1")->y() < r.find<QWidget>("Frame2")->y());
        QVERIFY(r.find<QWidget>("Frame2")->y() < r.find<QWidget>("Frame3")->y());
    }

    void everyControlHasANameToTheEar()
    {
        Revision r;
        for (const QWidget *widget : r.fdob.findChildren<QWidget *>()) {
            const bool speaks = qobject_cast<const QAbstractButton *>(widget) != nullptr ||
                                qobject_cast<const QLineEdit *>(widget) != nullptr;
            if (speaks)
                QVERIFY2(!widget->accessibleName().isEmpty(), qPrintable(widget->objectName()));
        }
    }
};

QTEST_MAIN(RevisionWindowTest)
#include "revisionwindow.moc"
