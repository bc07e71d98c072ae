// "Add calbuk" of the main window: the station being logged goes into the callbook.
#include "support/reference.h"

#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

using testsupport::addRecord;
using testsupport::callbookTables;
using testsupport::Installation;
using testsupport::kFullRecord;
using testsupport::kRecordFields;
using testsupport::sendKey;
using testsupport::Window;

namespace {

constexpr auto kBook = "dbcalbuk.mdb";
const QString kQuestion = QStringLiteral("ХА ХА: Такой позывной есть в calbuk.Изменить данные ?");
const QString kWarning = QStringLiteral("ХИ ХИ: Введите QTH или Имя ");

/// The main window with a callbook of two records.
struct Logging : Window {
    explicit Logging(const std::function<void(Installation &)> &prepare = callbookTables) : Window(prepare) {}

    [[nodiscard]] QStringList records(const char *fields = kRecordFields) const
    {
        return installation.rows(
            QLatin1String(kBook),
            QStringLiteral("SELECT %1 FROM tblcalbuk ORDER BY rowid").arg(QLatin1String(fields)));
    }
    void enter(const char *field, const char *text)
    {
        click(field);
        press(Qt::Key_A, Qt::ControlModifier);
        press(Qt::Key_Delete);
        type(QString::fromUtf8(text));
    }
    [[nodiscard]] bool quiet() const
    {
        return messages.asked.isEmpty() && messages.told.isEmpty() && messages.errors.isEmpty();
    }
    [[nodiscard]] QString contact() const
    {
        return QStringList({text("txtcall"), text("txtqth"), text("txtname"), text("txtqslvia")})
            .join(QLatin1Char('|'));
    }
};

} // namespace

class CallbookAddingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void button()
    {
        const Logging l;
        QCOMPARE(l.find<QPushButton>("cmbaddbuk")->text(), QStringLiteral("Add calbuk"));
        QVERIFY(!l.find<QPushButton>("cmbaddbuk")->toolTip().isEmpty());
        QVERIFY(!l.find<QPushButton>("cmbaddbuk")->accessibleName().isEmpty());
    }

    // ---- a station without a record

    void newStation()
    {
        Logging l;
        l.type(QStringLiteral("on4a"));
        l.enter("txtqth", "gent");
        l.enter("txtname", "jan");
        l.enter("txtqslvia", "on5x");
        const QString before = l.contact();
        l.click("cmbaddbuk");
        const QStringList typed = before.split(QLatin1Char('|'));
        QCOMPARE(l.records().constLast(),
                 QStringLiteral("ON4A||%1||||%2|||%3").arg(typed[2], typed[1], typed[3]));
        QCOMPARE(typed[1].toUpper(), QStringLiteral("GENT"));
        QCOMPARE(typed[2].toUpper(), QStringLiteral("JAN"));
        QCOMPARE(typed[3], QStringLiteral("ON5X"));
        QCOMPARE(l.records().size(), 3);
        QCOMPARE(l.records().front(), QString::fromUtf8(kFullRecord));
        QCOMPARE(l.contact(), before); // the contact stays as typed
        QCOMPARE(l.focus(), QStringLiteral("txtqslvia"));
        QVERIFY(l.find<QGroupBox>("frmbuk")->isVisible()); // what has been stored
        QCOMPARE(l.text("buk_ccall"), QStringLiteral("ON4A"));
        QVERIFY(l.status().contains(QStringLiteral("ON4A")));
        QVERIFY(l.quiet());
    }

    void newStationWithNothingButACallsign()
    {
        Logging l;
        l.type(QStringLiteral("on4a"));
        l.click("cmbaddbuk");
        QCOMPARE(l.records().constLast(), QStringLiteral("ON4A|||||||||")); // no field is checked
        QVERIFY(l.quiet());                                                 // and nothing is warned of
    }

    void secondPressFindsTheRecord()
    {
        Logging l;
        l.type(QStringLiteral("on4a"));
        l.enter("txtqth", "gent");
        l.enter("txtname", "jan");
        l.click("cmbaddbuk");
        l.click("cmbaddbuk");
        QCOMPARE(l.records().size(), 3);
        QCOMPARE(l.messages.asked, QStringList(kQuestion));
        QCOMPARE(l.messages.told, QStringList());
    }

    void withoutACallsign()
    {
        Logging l;
        l.type(QStringLiteral("x"));
        l.press(Qt::Key_Backspace);
        l.enter("txtname", "jan");
        const QString name = l.text("txtname");
        l.click("cmbaddbuk");
        QCOMPARE(l.records().size(), 3);
        QCOMPARE(l.records().constLast(), QStringLiteral("||%1|||||||").arg(name));
        QVERIFY(l.quiet());
        l.click("cmbaddbuk"); // a record without a callsign counts for none
        QCOMPARE(l.records().size(), 4);
        QCOMPARE(l.records().mid(0, 2), Logging().records());
        QVERIFY(l.quiet());
    }

    void emptyCallbook()
    {
        Logging l([](Installation &) {});
        l.click("cmbaddbuk");
        QCOMPARE(l.records(), QStringList("|||||||||"));
        QVERIFY(l.quiet());
    }

    void atTheStart()
    {
        Logging l;
        const QStringList before = l.records();
        l.enter("txtname", "jan");
        l.click("cmbaddbuk"); // no station yet: neither of the records is this one's
        QCOMPARE(l.records().mid(0, 2), before);
        QVERIFY(!l.messages.asked.contains(kQuestion));
    }

    void afterAContact()
    {
        Logging l;
        l.type(QStringLiteral("ua3abc"));
        l.press(Qt::Key_F4);
        QCOMPARE(l.text("txtcall"), QString());
        l.enter("txtname", "jan");
        l.enter("txtqth", "gent");
        l.click("cmbaddbuk");
        QCOMPARE(l.records().front(), QString::fromUtf8(kFullRecord)); // the last station's is not touched
        QVERIFY(!l.messages.asked.contains(kQuestion));
    }

    // ---- a station with a record

    void answeredOk()
    {
        Logging l;
        l.type(QStringLiteral("ua3abc"));
        l.enter("txtqth", "омск");
        l.enter("txtname", "глеб");
        l.enter("txtqslvia", "r9z");
        const QStringList typed = l.contact().split(QLatin1Char('|'));
        l.click("cmbaddbuk");
        QCOMPARE(l.messages.asked, QStringList(kQuestion));
        QCOMPARE(l.messages.told, QStringList());
        QCOMPARE(l.records(),
                 QStringList({QStringLiteral("UA3ABC|Петров|%1|Иванович|101000|Московская|%2|ул. Мира, "
                                             "1|1-23|%3")
                                  .arg(typed[2], typed[1], typed[3]),
                              "G3XYZ||John|||||||"}));
        QCOMPARE(l.text("buk_nname"), typed[2]); // the panel shows it
        QCOMPARE(l.text("buk_qth"), typed[1]);
        QCOMPARE(l.text("buk_qslvia"), typed[3]);
        QCOMPARE(l.contact().split(QLatin1Char('|')), typed);
        QCOMPARE(l.messages.errors, QStringList());
    }

    void answeredCancel_data()
    {
        QTest::addColumn<QString>("town");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("warned");
        QTest::newRow("both") << "ОМСК"
                              << "ГЛЕБ" << false;
        QTest::newRow("no town") << ""
                                 << "ГЛЕБ" << true;
        QTest::newRow("no name") << "ОМСК"
                                 << "" << true;
        QTest::newRow("none") << ""
                              << "" << true;
    }
    void answeredCancel()
    {
        QFETCH(QString, town);
        QFETCH(QString, name);
        QFETCH(bool, warned);
        Logging l;
        l.messages.yes = false;
        l.type(QStringLiteral("ua3abc"));
        l.enter("txtqth", qPrintable(town));
        l.enter("txtname", qPrintable(name));
        l.click("cmbaddbuk");
        QCOMPARE(l.messages.asked, QStringList(kQuestion));
        QCOMPARE(l.messages.told, warned ? QStringList(kWarning) : QStringList()); // once at most
        QCOMPARE(l.records(), Logging().records());
        QCOMPARE(l.text("txtqth").toUpper(), town);
        QCOMPARE(l.status(), QString());
    }

    void emptyEntries_data()
    {
        QTest::addColumn<QString>("town");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("stored");
        QTest::newRow("no town") << ""
                                 << "ГЛЕБ"
                                 << "ГЛЕБ|МОСКВА";
        QTest::newRow("no name") << "ОМСК"
                                 << ""
                                 << "ОЛЕГ|ОМСК";
        QTest::newRow("none") << ""
                              << ""
                              << "ОЛЕГ|МОСКВА";
    }
    void emptyEntries()
    {
        QFETCH(QString, town);
        QFETCH(QString, name);
        QFETCH(QString, stored);
        Logging l;
        l.type(QStringLiteral("ua3abc"));
        l.enter("txtqth", qPrintable(town));
        l.enter("txtname", qPrintable(name));
        l.enter("txtqslvia", "r9z");
        l.click("cmbaddbuk");
        QCOMPARE(l.messages.asked, QStringList(kQuestion));
        QCOMPARE(l.messages.told, QStringList(kWarning));           // whatever was answered
        QCOMPARE(l.records("nname,qth").front().toUpper(), stored); // an empty entry takes nothing away
        QCOMPARE(l.records("qslvia").front(), QStringLiteral("R9Z"));
    }

    void emptyRouteTakesTheStoredOneAway()
    {
        Logging l;
        l.type(QStringLiteral("ua3abc"));
        QCOMPARE(l.text("txtqslvia"), QStringLiteral("RW3XX"));
        l.enter("txtqslvia", "");
        l.click("cmbaddbuk");
        QCOMPARE(l.records("qslvia").front(), QString());
        QCOMPARE(l.records().front(),
                 QStringLiteral("UA3ABC|Петров|Олег|Иванович|101000|Московская|Москва|ул. Мира, 1|1-23|"));
        QCOMPARE(l.messages.told, QStringList());
    }

    void storedBeforeTheSecondMessage()
    {
        Logging l;
        l.type(QStringLiteral("ua3abc"));
        l.enter("txtname", "");
        l.enter("txtqth", "омск");
        l.installation.sql(QLatin1String(kBook),
                           QStringLiteral("CREATE TRIGGER no BEFORE UPDATE ON tblcalbuk BEGIN SELECT "
                                          "RAISE(ABORT,'нельзя'); END"));
        l.click("cmbaddbuk");
        QCOMPARE(l.messages.errors.size(), 1);
        QCOMPARE(l.messages.told, QStringList()); // the change was tried first, and its failure is told
        l.installation.sql(QLatin1String(kBook), QStringLiteral("DROP TRIGGER no"));
        QCOMPARE(l.records(), Logging().records());
        l.press(Qt::Key_Tab);
        l.edit("txtcall")->setFocus();
        l.press(Qt::Key_End);
        l.type(QStringLiteral("x")); // the next look-up does not store it
        QCOMPARE(l.records(), Logging().records());
    }

    void callsignWithoutRegardToCase()
    {
        Logging l([](Installation &in) {
            callbookTables(in);
            addRecord(in, "ccall=on4a|nname=Jan");
        });
        l.type(QStringLiteral("on4a"));
        l.enter("txtqth", "gent");
        l.click("cmbaddbuk");
        QCOMPARE(l.messages.asked, QStringList(kQuestion));
        QCOMPARE(l.records("ccall").constLast(), QStringLiteral("on4a"));
        QCOMPARE(l.records("qth").constLast().toUpper(), QStringLiteral("GENT"));
    }

    void anotherStationsRecord_data()
    {
        QTest::addColumn<QString>("town");
        QTest::newRow("all typed") << QStringLiteral("ОМСК");
        QTest::newRow("no town") << QString();
    }
    void anotherStationsRecord()
    {
        QFETCH(QString, town);
        Logging l;
        l.type(QStringLiteral("ua3abc"));
        l.enter("txtname", "глеб");
        l.enter("txtqth", qPrintable(town));
        l.edit("txtcall")->setText(QStringLiteral("ON4A")); // no key has looked it up
        l.click("cmbaddbuk");
        QCOMPARE(l.records(), Logging().records()); // the last look-up's record is not this station's
        QCOMPARE(l.messages.asked, QStringList());
        QCOMPARE(l.messages.told, town.isEmpty() ? QStringList(kWarning) : QStringList());
    }

    void firstOfTwoRecordsIsChanged()
    {
        Logging l([](Installation &in) {
            callbookTables(in);
            addRecord(in, "ccall=UA3ABC|nname=Второй");
        });
        l.type(QStringLiteral("ua3abc"));
        l.enter("txtname", "глеб");
        l.click("cmbaddbuk");
        QCOMPARE(l.records("nname").front().toUpper(), QStringLiteral("ГЛЕБ"));
        QCOMPARE(l.records("nname").constLast(), QStringLiteral("Второй"));
        QCOMPARE(l.records().size(), 3);
    }

    // ---- odd texts, keys that are still down

    void oddTexts()
    {
        Logging l;
        l.type(QStringLiteral("on4a"));
        l.edit("txtqth")->setText(QStringLiteral("L'Aquila \"x\" <b>"));
        l.edit("txtname")->setText(QStringLiteral("O'Neill; %1"));
        l.click("cmbaddbuk");
        QCOMPARE(l.records("nname,qth").constLast(), QStringLiteral("O'Neill; %1|L'Aquila \"x\" <b>"));
        QVERIFY(l.quiet());
    }

    void letterStillDown_data()
    {
        QTest::addColumn<bool>("mouse");
        QTest::newRow("mouse") << true;
        QTest::newRow("without taking the focus") << false; // as a screen reader presses it
    }
    void letterStillDown()
    {
        QFETCH(bool, mouse);
        Logging l;
        l.type(QStringLiteral("ua3ab"));
        sendKey(QTest::Press, Qt::Key_C, QStringLiteral("c"));
        if (mouse)
            l.click("cmbaddbuk");
        else
            l.find<QPushButton>("cmbaddbuk")->click();
        // The record of the whole callsign is asked about.
        QCOMPARE(l.messages.asked, QStringList(kQuestion));
        QCOMPARE(l.records(), Logging().records()); // with what the look-up has put into the fields
    }

    void byKeyboard()
    {
        Logging l;
        l.type(QStringLiteral("on4a"));
        l.find<QPushButton>("cmbaddbuk")->setFocus();
        l.press(Qt::Key_Return);
        QCOMPARE(l.records("ccall").constLast(), QStringLiteral("ON4A"));
    }

    // ---- files

    void callbookMissing()
    {
        Logging l([](Installation &in) {
            callbookTables(in);
            if (!QFile::remove(in.file(QLatin1String(kBook))))
                qFatal("not removed");
        });
        l.messages.errors.clear(); // told at the start
        l.type(QStringLiteral("on4a"));
        l.enter("txtname", "jan");
        const QString contact = l.contact();
        l.click("cmbaddbuk");
        QCOMPARE(l.messages.errors.size(), 1);
        QVERIFY2(l.messages.errors.front().contains(QLatin1String(kBook)),
                 qPrintable(l.messages.errors.front()));
        QCOMPARE(l.contact(), contact);
        QVERIFY(!QFile::exists(l.installation.file(QLatin1String(kBook))));
    }

    void callbookLocked()
    {
        Logging l;
        l.type(QStringLiteral("on4a"));
        l.enter("txtname", "jan");
        const QString contact = l.contact();
        store::Connection other(l.installation.file(QLatin1String(kBook)), store::OpenMode::ReadWrite);
        other.exec(QStringLiteral("BEGIN IMMEDIATE"));
        l.click("cmbaddbuk");
        QCOMPARE(l.messages.errors.size(), 1);
        QVERIFY2(l.messages.errors.front().contains(QStringLiteral("занят")),
                 qPrintable(l.messages.errors.front()));
        other.exec(QStringLiteral("ROLLBACK"));
        QCOMPARE(l.contact(), contact);
        QCOMPARE(l.records().size(), 2);
        l.click("cmbaddbuk");
        QCOMPARE(l.records().size(), 3);
        QCOMPARE(l.messages.errors.size(), 1);
    }
};

QTEST_MAIN(CallbookAddingTest)
#include "callbookadding.moc"
