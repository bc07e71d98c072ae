// The period panel, the revision window and the spreadsheet button, as the operator uses them.
#include "app/olddatabases.h"
#include "interchange/ui/fdob.h"
#include "support/window.h"

#include <QComboBox>
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

void ownCall(const Installation &in, const QString &call)
{
    in.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall='%1'").arg(call));
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

QString contact(const Window &w)
{
    return w.find<QLabel>("lblitog")->text();
}

} // namespace

class InterchangeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- the period panel

    void panelOpensAndCloses()
    {
        Window w;
        auto *panel = w.find<QGroupBox>("Frexpo");
        QVERIFY(panel->isHidden());
        QCOMPARE(panel->title(), QStringLiteral("Вывод QSO за период"));
        w.edit("txtdatmin")->setText(QStringLiteral("old"));
        QVERIFY(w.action("mnuvur")->isEnabled());
        w.action("mnuvur")->trigger();
        QVERIFY(panel->isVisible());
        QCOMPARE(w.text("txtdatmin"), QStringLiteral("05.03.26"));
        QCOMPARE(w.text("txtdatmax"), QStringLiteral("05.03.26"));
        QCOMPARE(w.focus(), QStringLiteral("txtdatmin"));
        w.press(Qt::Key_Return);
        QCOMPARE(w.focus(), QStringLiteral("txtdatmax"));
        w.press(Qt::Key_Return);
        QCOMPARE(w.focus(), QStringLiteral("txtput"));
        w.press(Qt::Key_Return);
        QCOMPARE(w.focus(), QStringLiteral("cbmotchet"));
        w.action("mnuvur")->trigger();
        QVERIFY(panel->isHidden());
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        w.action("mnuvur")->trigger();
        w.click("cmbzakr");
        QVERIFY(panel->isHidden());
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
    }

    void captionsOfThePanel()
    {
        Window w;
        QCOMPARE(w.find<QPushButton>("cmbput")->text(), QStringLiteral("Выбрать путь"));
        QCOMPARE(w.find<QPushButton>("cbmotchet")->text(), QStringLiteral("ADIF"));
        QCOMPARE(w.find<QPushButton>("cmbwse")->text(), QStringLiteral("Весь период в один файл"));
        QStringList labels;
        for (const QLabel *label : w.find<QGroupBox>("Frexpo")->findChildren<QLabel *>())
            labels.append(label->text());
        QVERIFY(labels.contains(QStringLiteral("  Где будет ADIF файл")));
    }

    void exportOfADay()
    {
        Window w([](Installation &in) {
            ownCall(in, QStringLiteral("UA1ABC"));
            fill(in, 2);
            fill(in, 1, QStringLiteral("04.03.26"));
        });
        w.action("mnuvur")->trigger();
        const QString path = w.installation.file(QStringLiteral("UA1ABC"));
        QCOMPARE(w.text("txtput"), path);
        w.click("cbmotchet");
        QCOMPARE(content(path),
                 QByteArray("<adif_ver:4>1.0<eoh>\r\n"
                            "<call:3>R1A <rst_sent:3>599 <rst_rcvd:2>59 <mode:2>CW <band:3>20M "
                            "<qso_date:8:d>20260305 <time_on:4>1000<eor>\r\n"
                            "<call:3>R2A <rst_sent:3>599 <rst_rcvd:2>59 <mode:2>CW <band:3>20M "
                            "<qso_date:8:d>20260305 <time_on:4>1000<eor>\r\n"));
        QCOMPARE(log(w.installation, "rsts,ps1"), QStringList({"599|CW", "599|CW", "5999|"}));
        QVERIFY2(contact(w).startsWith(QStringLiteral("Записано связей: 2 в UA1ABC.")),
                 qPrintable(contact(w)));
        QVERIFY(w.messages.told.isEmpty() && w.messages.errors.isEmpty() && w.messages.asked.isEmpty());
    }

    void lastPieceIsTold()
    {
        Window w([](Installation &in) {
            ownCall(in, QStringLiteral("UA1ABC"));
            fill(in, 501);
        });
        w.action("mnuvur")->trigger();
        w.click("cbmotchet");
        const QString path = w.installation.file(QStringLiteral("UA1ABC"));
        QCOMPARE(content(path).count("<eor>"), 1);
        QVERIFY2(contact(w).contains(QStringLiteral("За период связей 501, в файле из них последние 1:")),
                 qPrintable(contact(w)));
        QVERIFY(w.messages.told.isEmpty());
        w.click("cmbwse");
        QCOMPARE(content(path).count("<eor>"), 501);
        QVERIFY2(contact(w).startsWith(QStringLiteral("Записано связей: 501 в UA1ABC.")),
                 qPrintable(contact(w)));
    }

    void wholePeriodChangesNoRow()
    {
        Window w([](Installation &in) {
            ownCall(in, QStringLiteral("UA1ABC"));
            fill(in, 2);
        });
        w.action("mnuvur")->trigger();
        w.click("cmbwse");
        QCOMPARE(log(w.installation, "rsts,ps1"), QStringList({"5999|", "5999|"}));
        QCOMPARE(content(w.installation.file(QStringLiteral("UA1ABC"))).count("<rst_sent:3>599 "), 2);
    }

    void wholePeriodForOtherPrograms_data()
    {
        QTest::addColumn<int>("item");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("ASCII") << 1 << "UA1ABC.adi" << QByteArray("<NAME:4>Oleg");
        QTest::newRow("UTF-8") << 2 << "UA1ABC.adi" << QByteArray("<NAME:8>\xD0\x9E\xD0\xBB\xD0\xB5\xD0\xB3");
        QTest::newRow("Windows-1251") << 3 << "UA1ABC.adi" << QByteArray("<NAME:4>\xCE\xEB\xE5\xE3");
        QTest::newRow("ADX") << 4 << "UA1ABC.adx"
                             << QByteArray("<NAME_INTL>\xD0\x9E\xD0\xBB\xD0\xB5\xD0\xB3</NAME_INTL>");
    }
    void wholePeriodForOtherPrograms()
    {
        QFETCH(int, item);
        QFETCH(QString, file);
        QFETCH(QByteArray, name);
        Window w([](Installation &in) {
            ownCall(in, QStringLiteral("UA1ABC"));
            fill(in, 501);
            in.sql(QLatin1String(kLog),
                   QStringLiteral("UPDATE TBLLOG1 SET NNAME='Олег'; INSERT INTO "
                                  "TBLLOG1(ccall,ddate,ttime,bband) VALUES('','05.03.26','','14')"));
        });
        const QStringList before = log(w.installation, "ccall,rsts,ps1,NNAME");
        w.action("mnuvur")->trigger();
        w.find<QComboBox>("cmbformat")->setCurrentIndex(item);
        w.click("cmbwse");
        const QByteArray text = content(w.installation.file(file));
        QVERIFY2(text.contains(name), text.left(600).constData());
        QVERIFY(text.contains("R501A"));
        QVERIFY(text.contains("UA1ABC")); // the own station
        QVERIFY2(text.contains("3.1"), text.left(300).constData());
        QCOMPARE(log(w.installation, "ccall,rsts,ps1,NNAME"), before);
        QVERIFY2(
            contact(w).startsWith(QStringLiteral("Записано связей: 501 в %1. Замечаний: 1 (?: ").arg(file)),
            qPrintable(contact(w)));
        QVERIFY(!QFile::exists(w.installation.file(QStringLiteral("UA1ABC"))));
    }

    void withoutOwnCallsignNothingIsExported()
    {
        Window w([](Installation &in) { fill(in, 1); });
        w.action("mnuvur")->trigger();
        w.edit("txtput")->setText(w.installation.file(QStringLiteral("out")));
        w.click("cbmotchet");
        w.click("cmbwse");
        QVERIFY(!QFile::exists(w.installation.file(QStringLiteral("out"))));
        QCOMPARE(log(w.installation, "rsts"), QStringList("5999"));
        QVERIFY(w.messages.errors.isEmpty());
        QCOMPARE(contact(w), QStringLiteral("Сначала введите свой позывной."));
    }

    void emptyPeriodAndBadTexts()
    {
        Window w([](Installation &in) {
            ownCall(in, QStringLiteral("UA1ABC"));
            fill(in, 1);
        });
        w.action("mnuvur")->trigger();
        const QString path = w.text("txtput");
        w.edit("txtdatmin")->setText(QStringLiteral("06.03.26"));
        w.click("cbmotchet");
        QCOMPARE(contact(w), QStringLiteral("За этот период связей нет, файл не записан."));
        w.edit("txtdatmin")->setText(QStringLiteral("31.02.26"));
        w.click("cbmotchet");
        QCOMPARE(w.messages.errors.size(), 1);
        QCOMPARE(contact(w), QString()); // no older result stays
        w.edit("txtdatmin")->setText(QStringLiteral("05.03.26"));
        w.edit("txtdatmax")->setText(QStringLiteral("05.03.26"));
        w.edit("txtput")->setText(w.installation.file(QStringLiteral("нет/такой")));
        w.click("cbmotchet");
        QCOMPARE(w.messages.errors.size(), 2);
        QVERIFY2(w.messages.errors.back().contains(QStringLiteral("не записан")),
                 qPrintable(w.messages.errors.back()));
        QCOMPARE(log(w.installation, "rsts"), QStringList("5999"));
        QVERIFY(!QFile::exists(path));
    }

    void pathIsChosen()
    {
        Window w([](Installation &in) { ownCall(in, QStringLiteral("UA1ABC/P")); });
        w.action("mnuvur")->trigger();
        const QString standard = w.installation.file(QStringLiteral("UA1ABC-P"));
        QCOMPARE(w.text("txtput"), standard);
        w.dialogs.chosen = QStringLiteral("/some/where.adi");
        w.click("cmbput");
        QCOMPARE(w.text("txtput"), QStringLiteral("/some/where.adi"));
        w.dialogs.chosen.clear();
        w.click("cmbput");
        QCOMPARE(w.text("txtput"), QStringLiteral("/some/where.adi")); // cancelled: as it was
        w.edit("txtput")->clear();
        w.click("cmbput");
        QCOMPARE(w.text("txtput"), standard);
        QVERIFY(w.dialogs.opened.front().startsWith(QStringLiteral("save: ")));
    }

    void ownCallsignTypedFirst()
    {
        Window w;
        w.edit("txtNcall")->setFocus();
        w.type(QStringLiteral("ua1abc"));
        w.action("mnuvur")->trigger();
        QCOMPARE(w.text("txtput"), w.installation.file(QStringLiteral("UA1ABC")));
    }

    // ---- the spreadsheet

    void workbookAtItsPlace()
    {
        Window w([](Installation &in) {
            QVERIFY(QDir(in.folder()).mkpath(QStringLiteral("c/Radio")));
            QVERIFY(QFile::copy(QStringLiteral(TEST_DATA "/xls/biff8/TblLog.XLS"),
                                in.file(QStringLiteral("c/Radio/tbllog.xls"))));
        });
        w.messages.yes = false;
        w.click("cmbxls");
        QCOMPARE(w.messages.asked,
                 QStringList(QStringLiteral("Сохранение данных: Перенести данные в Журнал из TblLog.xls ?")));
        QCOMPARE(log(w.installation).size(), 0);
        w.messages.yes = true;
        w.click("cmbxls");
        QCOMPARE(log(w.installation).size(), 13);
        QVERIFY2(w.status().startsWith(QStringLiteral("Из tbllog.xls добавлено связей: 13 из 13.")),
                 qPrintable(w.status()));
        w.click("cmbxls");
        QCOMPARE(log(w.installation).size(), 26);
        QVERIFY(w.messages.told.isEmpty() && w.messages.errors.isEmpty());
        QVERIFY(w.dialogs.opened.isEmpty());
    }

    void workbookIsChosen()
    {
        Window w;
        w.click("cmbxls");
        QCOMPARE(w.dialogs.opened.size(), 1);
        QVERIFY2(w.dialogs.opened.front().contains(w.installation.file(QStringLiteral("c/radio/TblLog.XLS"))),
                 qPrintable(w.dialogs.opened.front()));
        QCOMPARE(log(w.installation).size(), 0);
        w.dialogs.chosen = QStringLiteral(TEST_DATA "/xls/biff5/TblLog.XLS");
        w.click("cmbxls");
        QCOMPARE(log(w.installation).size(), 13);
        w.dialogs.chosen = QStringLiteral(TEST_DATA "/xls/broken/junk.xls");
        w.click("cmbxls");
        QCOMPARE(w.messages.errors.size(), 1);
        QCOMPARE(log(w.installation).size(), 13);
    }

    // ---- the revision window

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
        r.click("Command3");
        QCOMPARE(r.old.asked, QStringList(QStringLiteral("to: ") + path));
        QCOMPARE(log(r.w.installation), QStringList({"R8X", "R9OLD"}));
        QCOMPARE(content(path), jet);
        QCOMPARE(QDir(r.w.installation.userFolder()).entryList({"merge-*"}, QDir::Dirs), QStringList());
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

QTEST_MAIN(InterchangeTest)
#include "interchange.moc"
