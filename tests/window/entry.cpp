// Callsign, reports, bands, modes, recording: keys and mouse in the real window.
#include "support/window.h"

#include "ui/dbgrid.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QLabel>
#include <QPushButton>

using testsupport::Installation;
using testsupport::Window;

namespace {

constexpr auto kLog = "dbiaru.mdb";

void callbookRow(Installation &in)
{
    in.sql(QStringLiteral("dbcalbuk.mdb"),
           QStringLiteral(
               "INSERT INTO tblcalbuk(ccall,fam,nname,otch,indeks,obl,qth,adres,telefon,qslvia) VALUES"
               "('UA3ABC','Петров','Олег','Иванович','101000','Московская','Москва','ул. Мира, "
               "1','1-23','RW3XX')"));
}

} // namespace

class EntryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void callsignKeys()
    {
        Window w;
        w.type(QStringLiteral("ua3-abc/p. "));
        QCOMPARE(w.text("txtcall"), QStringLiteral("UA3ABC/P"));
        w.type(QStringLiteral("1234567"));
        QCOMPARE(w.text("txtcall"), QStringLiteral("UA3ABC/P12345")); // thirteen
        w.type(QStringLiteral("X"));
        QCOMPARE(w.text("txtcall").size(), 13);
        w.press(Qt::Key_Backspace);
        QCOMPARE(w.text("txtcall"), QStringLiteral("UA3ABC/P1234"));
        // A key in the middle of a full field is refused, nothing is pushed out.
        w.type(QStringLiteral("5"));
        w.edit("txtcall")->setCursorPosition(2);
        w.type(QStringLiteral("Q"));
        QCOMPARE(w.text("txtcall"), QStringLiteral("UA3ABC/P12345"));
        // Typing over a selection works in a full field.
        w.edit("txtcall")->setSelection(0, 2);
        w.type(QStringLiteral("r"));
        QCOMPARE(w.text("txtcall"), QStringLiteral("R3ABC/P12345"));
    }

    void cyrillicKeys()
    {
        Window w;
        w.type(QStringLiteral("гф3фис"));
        QCOMPARE(w.text("txtcall"), QStringLiteral("UA3ABC"));
        QCOMPARE(w.keyboard.left, 5); // each Cyrillic key asks for the other layout
        w.type(QStringLiteral("ё"));
        QCOMPARE(w.text("txtcall"), QStringLiteral("UA3ABC"));
        QCOMPARE(w.text("txtcontr"), QStringLiteral("RUSSIAN"));
    }

    void pastes_data()
    {
        QTest::addColumn<QString>("pasted");
        QTest::addColumn<QString>("entered");
        QTest::newRow("plain") << "ua3abc"
                               << "UA3ABC";
        QTest::newRow("long") << QString(10000, QLatin1Char('a')) << QString(13, QLatin1Char('A'));
        QTest::newRow("blanks and signs") << " ua3 - abc! "
                                          << "UA3ABC";
        QTest::newRow("Cyrillic") << "гф3фис"
                                  << "UA3ABC";
        QTest::newRow("lines") << "UA3\nABC\r\n\t"
                               << "UA3ABC";
        QTest::newRow("NUL and controls") << QString::fromLatin1("U\0A\x1b", 4) << "UA";
        QTest::newRow("other scripts") << "中文العربية"
                                       << "";
        QTest::newRow("pairs") << QStringLiteral("😀UA3") << "UA3";
        QTest::newRow("lone surrogate") << QString(QChar(0xD800)) + QStringLiteral("UA3") << "UA3";
        QTest::newRow("SQL") << "'; DROP TABLE TBLLOG1;--"
                             << "DROPTABLETBLL";
    }
    void pastes()
    {
        QFETCH(QString, pasted);
        QFETCH(QString, entered);
        Window w;
        QApplication::clipboard()->setText(pasted);
        for (const char *field : {"txtcall", "txtqslvia"}) {
            auto *edit = w.edit(field);
            edit->clear();
            edit->setFocus();
            QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
            QCOMPARE(edit->text(), entered);
            edit->clear();
            QTest::keyClick(edit, Qt::Key_Insert, Qt::ShiftModifier);
            QCOMPARE(edit->text(), entered);
            edit->clear();
            QInputMethodEvent composed;
            composed.setCommitString(pasted);
            QApplication::sendEvent(edit, &composed);
            QCOMPARE(edit->text(), entered);
        }
    }

    void textFieldsTakeAnyText()
    {
        Window w;
        w.keyboard.cyrillic = true;
        w.type(QStringLiteral("ua3abc")); // town and name go by the station's script
        for (const char *field : {"txtqth", "txtname", "txtcontr", "txtdate", "txttime"}) {
            auto *edit = w.edit(field);
            edit->clear();
            edit->setFocus();
            w.type(QStringLiteral("O'Брайен \"Ё\""));
            QCOMPARE(edit->text(), QStringLiteral("O'Брайен \"Ё\""));
            edit->clear();
            QApplication::clipboard()->setText(QString::fromLatin1("a\r\nb\0c", 6) +
                                               QString(20000, QChar(u'ж')));
            QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
            QVERIFY(edit->text().startsWith(QStringLiteral("a bc")));
            QVERIFY(!edit->text().contains(QChar(0)));
        }
    }

    void reports()
    {
        Window w;
        for (const char *field : {"txtrstr", "txtrsts"}) {
            auto *edit = w.edit(field);
            edit->setFocus();
            edit->clear();
            w.type(QStringLiteral("5a9я -"));
            QCOMPARE(edit->text(), QStringLiteral("59"));
            QApplication::clipboard()->setText(QStringLiteral("5x9\n9"));
            edit->clear();
            QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
            QCOMPARE(edit->text(), QStringLiteral("599"));
        }
    }

    void enterWalk()
    {
        Window w;
        w.press(Qt::Key_Return); // an empty callsign keeps the focus
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        w.type(QStringLiteral("dl1a"));
        QStringList walk;
        for (int i = 0; i < 6; ++i) {
            w.press(Qt::Key_Return);
            walk.append(w.focus());
        }
        QCOMPARE(walk, QStringList({"txtrstr", "txtrsts", "txtqth", "txtname", "txtqslvia", "cmbadd"}));
        w.action("mnuwwod")->trigger(); // mode 1: Enter does not walk (an empty callsign records nothing)
        w.edit("txtcall")->clear();
        for (const char *field :
             {"txtrstr", "txtrsts", "txtqth", "txtname", "txtqslvia", "txtdate", "txttime", "txtNcall"}) {
            w.edit(field)->setFocus();
            QTest::keyClick(w.edit(field), Qt::Key_Return);
            QCOMPARE(w.focus(), QStringLiteral("txtcall")); // recording ends in the callsign field
        }
    }

    void defaultReportIsTypedOver()
    {
        Window w;
        w.type(QStringLiteral("dl1a"));
        w.press(Qt::Key_Return);
        w.type(QStringLiteral("57"));
        QCOMPARE(w.text("txtrstr"), QStringLiteral("57"));
    }

    void secondContactInManualMode()
    {
        Window w;
        w.action("cmbawto")->trigger();
        const auto contact = [&](const char *call, const char *date, const char *time) {
            w.type(QLatin1String(call));
            w.press(Qt::Key_Return);
            w.type(QLatin1String(date));
            w.press(Qt::Key_Return);
            w.type(QLatin1String(time));
            w.press(Qt::Key_F4);
        };
        contact("dl1a", "1.2.2002", "9:05");
        contact("dl1b", "02.02.2002", "10:15");
        QCOMPARE(
            w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall,ddate,ttime FROM TBLLOG1")),
            QStringList({"DL1A|1.2.2002|9:05", "DL1B|02.02.02|10:15"}));
    }

    void heldKeys()
    {
        Window w;
        const auto hold = [](Qt::Key key, const QString &text) {
            const auto send = [&](QEvent::Type type, bool repeated) {
                QKeyEvent event(type, key, Qt::NoModifier, text, repeated);
                QApplication::sendEvent(QApplication::focusWidget(), &event);
            };
            send(QEvent::KeyPress, false);
            for (int i = 0; i < 5; ++i) { // what the server sends while a key is held
                send(QEvent::KeyRelease, true);
                send(QEvent::KeyPress, true);
            }
            send(QEvent::KeyRelease, false);
        };
        w.type(QStringLiteral("dl1a"));
        hold(Qt::Key_Up, QString()); // to the bands, and no further
        QCOMPARE(w.focus(), QStringLiteral("CMBBAND1_3"));
        QCOMPARE(w.find<QLabel>("lblband")->text(), QStringLiteral("14 MHz"));
        w.edit("txtcall")->setFocus();
        hold(Qt::Key_Down, QString());
        QCOMPARE(w.focus(), QStringLiteral("txtrstr"));
        w.edit("txtcall")->setFocus();
        w.edit("txtcall")->clear();
        hold(Qt::Key_K, QStringLiteral("k"));
        QCOMPARE(w.text("txtcall"), QStringLiteral("KKKKKK"));
        QCOMPARE(w.text("txtcontr"), QStringLiteral("USA"));
    }

    void pasteWithTheMouseIsLookedUp()
    {
        Window w(callbookRow);
        if (!QApplication::clipboard()->supportsSelection()) {
            QInputMethodEvent composed; // the same road: text without a key
            composed.setCommitString(QStringLiteral("ua3abc"));
            QApplication::sendEvent(w.edit("txtcall"), &composed);
        } else {
            QApplication::clipboard()->setText(QStringLiteral("ua3abc"), QClipboard::Selection);
            QTest::mouseClick(w.edit("txtcall"), Qt::MiddleButton);
        }
        QCOMPARE(w.text("txtcall"), QStringLiteral("UA3ABC"));
        QCOMPARE(w.text("txtname"), QStringLiteral("Олег"));
        QCOMPARE(w.text("txtcontr"), QStringLiteral("RUSSIAN"));
    }

    void paintedBandColours()
    {
        Window w;
        for (const auto &[name, colour] : {std::pair("CMBBAND1_0", QColor(255, 0, 0)),
                                           std::pair("CMBBAND1_3", QColor(0xE0, 0xE0, 0xE0))}) {
            const QImage picture = w.find<QPushButton>(name)->grab().toImage();
            QCOMPARE(picture.pixelColor(6, 6), colour);
        }
    }

    void manualModeWalk()
    {
        Window w(callbookRow);
        w.action("cmbawto")->trigger();
        w.type(QStringLiteral("ua3abc"));
        w.edit("txtqth")->setText(QStringLiteral("Тула"));
        w.press(Qt::Key_Return); // the callbook is looked up once more, then the date
        QCOMPARE(w.text("txtqth"), QStringLiteral("Москва"));
        QCOMPARE(w.focus(), QStringLiteral("txtdate"));
        w.type(QStringLiteral("1.2.2002"));
        w.press(Qt::Key_Return);
        QCOMPARE(w.focus(), QStringLiteral("txttime"));
        w.type(QStringLiteral("9:05"));
        w.press(Qt::Key_Return);
        QCOMPARE(w.focus(), QStringLiteral("txtrstr"));
        w.press(Qt::Key_F4);
        QCOMPARE(
            w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT ddate,ttime,QTH FROM TBLLOG1")),
            QStringList({"1.2.2002|9:05|Москва"}));
        QCOMPARE(w.gridCalls(), QStringList({"UA3ABC"}));
    }

    void arrows()
    {
        Window w;
        w.press(Qt::Key_Down);
        QCOMPARE(w.focus(), QStringLiteral("txtcall")); // empty
        w.type(QStringLiteral("dl1a"));
        w.press(Qt::Key_Down);
        QCOMPARE(w.focus(), QStringLiteral("txtrstr"));
        w.press(Qt::Key_Up);
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        w.press(Qt::Key_Down);
        w.press(Qt::Key_Down);
        QCOMPARE(w.focus(), QStringLiteral("txtrsts"));
        w.press(Qt::Key_Up);
        QCOMPARE(w.focus(), QStringLiteral("txtrstr"));
        w.press(Qt::Key_Down);
        w.press(Qt::Key_Down);
        QCOMPARE(w.focus(), QStringLiteral("txtqth"));
        w.press(Qt::Key_Down);
        QCOMPARE(w.focus(), QStringLiteral("txtname"));
        w.press(Qt::Key_Down);
        QCOMPARE(w.focus(), QStringLiteral("txtqslvia"));
        w.edit("txtcall")->setFocus();
        w.press(Qt::Key_Up);
        QCOMPARE(w.focus(), QStringLiteral("CMBBAND1_3"));
    }

    void bandsByKeyboard()
    {
        Window w;
        w.press(Qt::Key_Up);
        w.press(Qt::Key_Right);
        QCOMPARE(w.find<QLabel>("lblband")->text(), QStringLiteral("21 MHz"));
        QCOMPARE(w.focus(), QStringLiteral("CMBBAND1_4"));
        const auto colour = [&](const char *name) {
            return w.find<QPushButton>(name)->palette().color(QPalette::Button);
        };
        QCOMPARE(colour("CMBBAND1_3"), QColor(255, 0, 0));
        QCOMPARE(colour("CMBBAND1_4"), QColor(0xE0, 0xE0, 0xE0));
        w.press(Qt::Key_Left);
        w.press(Qt::Key_Up);
        QCOMPARE(w.find<QLabel>("lblband")->text(), QStringLiteral("7 MHz"));
        w.press(Qt::Key_Return);
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        w.type(QStringLiteral("dl1a"));
        w.press(Qt::Key_F4);
        QCOMPARE(w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT bband FROM TBLLOG1")),
                 QStringList({"7"}));
    }

    void bandsByMouse()
    {
        Window w;
        const auto button = [&](int i) {
            return w.find<QPushButton>(qPrintable(QStringLiteral("CMBBAND1_%1").arg(i)));
        };
        QTest::mouseClick(button(10), Qt::LeftButton);
        QTest::mouseClick(button(3), Qt::LeftButton);
        QCOMPARE(button(10)->palette().color(QPalette::Button), QColor(0xE0, 0xE0, 0xE0));
        QTest::mouseClick(button(11), Qt::LeftButton);
        QCOMPARE(w.find<QLabel>("lblband")->text(), QStringLiteral("1200 MHz"));
        QCOMPARE(button(11)->text(), QStringLiteral("1,2"));
    }

    void modes()
    {
        Window w;
        auto *mode = w.find<QPushButton>("CMBMOD");
        auto *panel = w.find<QWidget>("FMod");
        const QStringList captions = {"SSB", "CW", "SSTV", "FM", "MT63", "PSK", "RTTY"};
        const QStringList reports = {"59", "599", "595", "595", "599", "599", "599"};
        for (int i = 0; i < captions.size(); ++i) {
            QTest::mouseClick(mode, Qt::LeftButton);
            QVERIFY(panel->isVisible());
            QVERIFY(w.focus().startsWith(QStringLiteral("CmbMod1_")));
            auto *button = w.find<QPushButton>(qPrintable(QStringLiteral("CmbMod1_%1").arg(i)));
            QCOMPARE(button->text(), captions[i]);
            if (i % 2 == 0)
                QTest::mouseClick(button, Qt::LeftButton);
            else
                QTest::keyClick(button, Qt::Key_Return);
            QVERIFY(!panel->isVisible());
            QCOMPARE(mode->text(), captions[i]);
            QCOMPARE(w.text("txtrsts"), reports[i]);
            QCOMPARE(w.text("txtrstr"), reports[i]);
            QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        }
        // FM stays for the next contact with its 595.
        QTest::mouseClick(mode, Qt::LeftButton);
        QTest::mouseClick(w.find<QPushButton>("CmbMod1_3"), Qt::LeftButton);
        w.type(QStringLiteral("dl1a"));
        w.edit("txtrsts")->setText(QStringLiteral("55"));
        w.press(Qt::Key_F4);
        QCOMPARE(w.text("txtrsts") + w.text("txtrstr"), QStringLiteral("595595"));
        QCOMPARE(
            w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT ps1,rsts,rstr FROM TBLLOG1")),
            QStringList({"FM|55|595"}));
    }

    void knownStation()
    {
        Window w([](Installation &in) {
            callbookRow(in);
            in.addContact(QStringLiteral("UA3ABC"), QStringLiteral("01.01.20"), QStringLiteral("RUSSIAN"),
                          QStringLiteral("+"));
            in.addContact(QStringLiteral("UA3XX"), QStringLiteral("01.01.20"), QStringLiteral("RUSSIAN"));
            in.sql(QStringLiteral("dbcontest.mdb"),
                   QStringLiteral("UPDATE tbltit SET GradN='55',MinN='45',GradE='37',MinE='37'"));
        });
        w.type(QStringLiteral("ua3abc"));
        QCOMPARE(w.gridCalls(), QStringList({"UA3ABC"}));
        QCOMPARE(w.text("txtcontr"), QStringLiteral("RUSSIAN"));
        QCOMPARE(w.text("txtQSO"), QStringLiteral("2"));
        QCOMPARE(w.text("TXTQSL"), QStringLiteral("1"));
        QVERIFY(w.find<QWidget>("FrGorod")->isVisible());
        QVERIFY(w.find<QLabel>("lblqth")->isVisible());
        QVERIFY(w.find<QLabel>("lblname")->isVisible());
        QVERIFY(w.find<QWidget>("frmbuk")->isVisible());
        const QStringList fields = {"ccall", "fam", "nname", "otch",    "indeks",
                                    "obl",   "qth", "adres", "telefon", "qslvia"};
        const QStringList values = {"UA3ABC",     "Петров", "Олег",        "Иванович", "101000",
                                    "Московская", "Москва", "ул. Мира, 1", "1-23",     "RW3XX"};
        for (qsizetype i = 0; i < fields.size(); ++i)
            QCOMPARE(w.text(qPrintable(QStringLiteral("buk_") + fields[i])), values[i]);
        QCOMPARE(w.text("txtname"), QStringLiteral("Олег"));
        QCOMPARE(w.text("txtdist"), QStringLiteral("0"));
        w.press(Qt::Key_Backspace);
        QVERIFY(!w.find<QWidget>("frmbuk")->isVisible());
        QCOMPARE(w.text("txtname"), QString());
        for (int i = 0; i < 5; ++i)
            w.press(Qt::Key_Backspace);
        QCOMPARE(w.text("txtcontr") + w.text("TXTQSL"), QString());
        w.log->tick();
        QCOMPARE(w.text("txtQSO"), QString());
    }

    void townAndNameByF5AndF6()
    {
        Window w;
        w.press(Qt::Key_F5); // the panel is hidden
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        w.type(QStringLiteral("ua3abc"));
        w.press(Qt::Key_F5);
        QVERIFY(!w.text("txtqth").isEmpty());
        QCOMPARE(w.focus(), QStringLiteral("txtname"));
        w.press(Qt::Key_F6);
        QVERIFY(!w.text("txtname").isEmpty());
        QCOMPARE(w.focus(), QStringLiteral("txtqth"));
        QVERIFY(!w.text("txtqth").isEmpty());
    }

    /// A key that only brings the focus here is no key of the callsign field: what was typed beside it stays.
    void foreignReleaseKeepsTheOtherFields()
    {
        Window w;
        w.type(QStringLiteral("dl1a"));
        w.edit("txtqth")->setText(QStringLiteral("Bonn"));
        w.press(Qt::Key_Up);
        QCOMPARE(w.text("txtqth"), QString()); // Up was pressed in the callsign field
        w.edit("txtqth")->setText(QStringLiteral("Bonn"));
        w.press(Qt::Key_Return); // from the band button back to the callsign field
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        QCOMPARE(w.text("txtqth"), QStringLiteral("Bonn"));
    }

    void recordedByButton()
    {
        Window w;
        w.type(QStringLiteral("dl1a"));
        w.edit("txtqth")->setText(QStringLiteral("12345678901234"));
        QTest::mouseClick(w.find<QPushButton>("cmbadd"), Qt::LeftButton);
        QCOMPARE(
            w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall,QTH,CONTR FROM TBLLOG1")),
            QStringList({"DL1A|1234567890123|GERMANY"}));
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        QVERIFY(!w.find<QLabel>("lblqth")->isVisible());
        QCOMPARE(w.gridCalls(), QStringList({"DL1A"}));
    }

    void recordedByEnterOnTheButton()
    {
        Window w;
        w.type(QStringLiteral("dl1a"));
        for (int i = 0; i < 6; ++i)
            w.press(Qt::Key_Return);
        QCOMPARE(w.focus(), QStringLiteral("cmbadd"));
        w.press(Qt::Key_Return);
        QCOMPARE(w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall FROM TBLLOG1")),
                 QStringList({"DL1A"}));
        // In Enter mode the Enter that records does not press the button under it.
        w.action("mnuwwod")->trigger();
        w.type(QStringLiteral("dl1b"));
        w.find<QPushButton>("CMBMOD")->setFocus();
        w.press(Qt::Key_Return);
        QCOMPARE(w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall FROM TBLLOG1")),
                 QStringList({"DL1A", "DL1B"}));
        QVERIFY(!w.find<QWidget>("FMod")->isVisible());
    }

    /// Fast fingers: the next key goes down before the last letter's goes up.
    void overlappingKeys_data()
    {
        QTest::addColumn<int>("next");
        QTest::newRow("Enter") << int(Qt::Key_Return);
        QTest::newRow("Tab") << int(Qt::Key_Tab);
        QTest::newRow("F4") << int(Qt::Key_F4);
    }
    void overlappingKeys()
    {
        QFETCH(int, next);
        Window w(callbookRow);
        auto *call = w.edit("txtcall");
        w.type(QStringLiteral("ua3ab"));
        QTest::sendKeyEvent(QTest::Press, call, Qt::Key_C, QStringLiteral("c"), Qt::NoModifier);
        w.press(Qt::Key(next)); // C is still down
        QTest::sendKeyEvent(QTest::Release, QApplication::focusWidget(), Qt::Key_C, QStringLiteral("c"),
                            Qt::NoModifier);
        if (next != Qt::Key_F4)
            w.press(Qt::Key_F4);
        QCOMPARE(w.installation.rows(QLatin1String(kLog),
                                     QStringLiteral("SELECT ccall,QTH,NNAME,QSLVIA,CONTR FROM TBLLOG1")),
                 QStringList({"UA3ABC|Москва|Олег|RW3XX|RUSSIAN"}));
    }

    void overlappingEnterInEnterMode()
    {
        Window w(callbookRow);
        w.action("mnuwwod")->trigger();
        w.type(QStringLiteral("ua3ab"));
        QTest::sendKeyEvent(QTest::Press, w.edit("txtcall"), Qt::Key_C, QStringLiteral("c"), Qt::NoModifier);
        w.press(Qt::Key_Return);
        QCOMPARE(w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall,QTH FROM TBLLOG1")),
                 QStringList({"UA3ABC|Москва"}));
    }

    void newestContactIsInSight()
    {
        Window w([](Installation &in) {
            in.sql(QLatin1String(kLog),
                   QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<900) "
                                  "INSERT INTO TBLLOG1(ccall,ddate) SELECT 'A'||i,'05.03.26' FROM n"));
        });
        w.type(QStringLiteral("zz1zz"));
        w.press(Qt::Key_F4);
        auto *grid = w.find<ui::DbGrid>("DBGrid1");
        QCOMPARE(grid->model()->rowCount(), 901);
        const QModelIndex last = grid->model()->index(900, 0);
        QCOMPARE(last.data().toString(), QStringLiteral("ZZ1ZZ"));
        QVERIFY(grid->viewport()->rect().contains(grid->visualRect(last).center()));
    }

    // ---- failures

    void typedBadDateIsAStatusLine()
    {
        Window w;
        w.action("cmbawto")->trigger();
        w.edit("txtdate")->setText(QStringLiteral("45.45.45"));
        w.type(QStringLiteral("d"));
        QCOMPARE(w.status(), QString());
        w.press(Qt::Key_Backspace); // the day's contacts
        QVERIFY(w.status().contains(QStringLiteral("неверная дата")));
        QCOMPARE(w.messages.errors + w.messages.told, QStringList());
        w.type(QStringLiteral("d")); // the next query succeeds
        QCOMPARE(w.status(), QString());
        w.edit("txtdate")->setText(QString()); // an empty date is null: no rows, no message
        w.press(Qt::Key_Backspace);
        QCOMPARE(w.status(), QString());
        w.edit("txtdate")->setText(QStringLiteral("45.45.45"));
        w.type(QStringLiteral("dl1a"));
        w.press(Qt::Key_F4);
        QVERIFY(w.status().contains(QStringLiteral("неверная дата")));
        QCOMPARE(w.messages.errors, QStringList());
        QCOMPARE(w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall FROM TBLLOG1")),
                 QStringList({"DL1A"}));
    }

    void dateWithAnApostrophe()
    {
        Window w;
        w.action("cmbawto")->trigger();
        w.edit("txtdate")->setText(QStringLiteral("05.03.26' or ''='"));
        w.type(QStringLiteral("d"));
        w.press(Qt::Key_Backspace);
        QVERIFY(!w.status().isEmpty());
        QCOMPARE(w.gridCalls(), QStringList());
    }

    void contactThatCannotBeStored()
    {
        Window w;
        w.type(QStringLiteral("ua3abc"));
        w.edit("txtname")->setText(QStringLiteral("Олег"));
        store::Connection other(w.installation.file(QLatin1String(kLog)), store::OpenMode::ReadWrite);
        auto lock = std::make_unique<store::Transaction>(other);
        w.press(Qt::Key_F4); // given back
        QCOMPARE(w.messages.errors, QStringList({"Файл dbiaru.mdb занят другой программой."}));
        QVERIFY(w.messages.notStoredContacts.front().contains(QStringLiteral("UA3ABC")));
        QVERIFY(w.messages.notStoredContacts.front().contains(QStringLiteral("Олег")));
        QVERIFY(w.messages.whereSaved.front().contains(QStringLiteral("avaria.adi")));
        QCOMPARE(w.text("txtcall"), QStringLiteral("UA3ABC"));
        QCOMPARE(w.text("txtname"), QStringLiteral("Олег"));
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
        // Tried again while the box is open and the other program lets go.
        w.messages.choices = {ui::NotStoredChoice::Retry};
        w.messages.beforeChoice = [&lock] { lock.reset(); };
        w.press(Qt::Key_F4);
        QCOMPARE(w.installation.rows(QLatin1String(kLog), QStringLiteral("SELECT ccall,NNAME FROM TBLLOG1")),
                 QStringList({"UA3ABC|Олег"}));
        QCOMPARE(w.text("txtcall"), QString());
        QCOMPARE(w.gridCalls(), QStringList({"UA3ABC"}));
    }
};

QTEST_MAIN(EntryTest)
#include "entry.moc"
