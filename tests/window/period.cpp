// The period panel and the spreadsheet button of the main window, as the operator uses them.
#include "support/window.h"

#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

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

QString result(const Window &w)
{
    return w.find<QLabel>("lblitog")->text();
}

} // namespace

class PeriodTest : public QObject {
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
        QCOMPARE(w.focus(), QStringLiteral("cmbpecat"));
        w.edit("txtput")->setFocus();
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
        QVERIFY2(result(w).startsWith(QStringLiteral("Записано связей: 2 в UA1ABC.")), qPrintable(result(w)));
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
        QVERIFY2(result(w).contains(QStringLiteral("За период связей 501, в файле из них последние 1:")),
                 qPrintable(result(w)));
        QVERIFY(w.messages.told.isEmpty());
        w.click("cmbwse");
        QCOMPARE(content(path).count("<eor>"), 501);
        QVERIFY2(result(w).startsWith(QStringLiteral("Записано связей: 501 в UA1ABC.")),
                 qPrintable(result(w)));
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
            result(w).startsWith(QStringLiteral("Записано связей: 501 в %1. Замечаний: 1 (?: ").arg(file)),
            qPrintable(result(w)));
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
        QCOMPARE(result(w), QStringLiteral("Сначала введите свой позывной."));
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
        QCOMPARE(result(w), QStringLiteral("За этот период связей нет, файл не записан."));
        w.edit("txtdatmin")->setText(QStringLiteral("31.02.26"));
        w.click("cbmotchet");
        QCOMPARE(w.messages.errors.size(), 1);
        QCOMPARE(result(w), QString()); // no older result stays
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
};

QTEST_MAIN(PeriodTest)
#include "period.moc"
