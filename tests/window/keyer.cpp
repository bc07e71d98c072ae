// The Morse keyer in the main window: message keys, typed text, what waits meanwhile, Esc, ports.
#include "support/window.h"

#include "cw/morse.h"
#include "cw/ui/keyerpanel.h"
#include "ui/keyrepeat.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QWindow>

using testsupport::Installation;
using testsupport::Window;

namespace {

/// Element strings of the messages sent so far, read back from the trace.
QStringList messages(const Window &w)
{
    QStringList list;
    bool key = false;
    QString elements;
    for (const QString &step : w.line.trace) {
        if (step == QLatin1String("RTS 1")) {
            elements.clear();
        } else if (step == QLatin1String("DTR 1") || step == QLatin1String("DTR 0")) {
            key = step.endsWith(QLatin1Char('1'));
        } else if (step == QLatin1String("RTS 0")) {
            list.append(elements);
        } else if (step.startsWith(QLatin1String("wait "))) {
            const double length = step.mid(5).toDouble();
            if (key)
                elements += length > 150 ? QLatin1Char('3') : QLatin1Char('1'); // at bar 50 a dash lasts 180
            else if (length > 100 && length < 200)
                elements += QLatin1Char('0'); // two units; one unit is 60, the tail 245
        }
    }
    return list;
}

QString played(const QString &text)
{
    return cw::elementString(text).chopped(1); // the last silence is not played
}

/// A window with the panel open.
struct Station {
    Station()
        : w([](Installation &in) {
              in.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall='RA3XYZ'"));
          })
    {
        w.find<QPushButton>("CMBMOD")->setText(QStringLiteral("CW"));
        w.action("MNUCW")->trigger();
    }
    Window w;
};

} // namespace

class KeyerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void panelByMenu()
    {
        Window w([](Installation &in) {
            in.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall='RA3XYZ'"));
        });
        auto *panel = w.find<cw::KeyerPanel>("FRCW");
        auto *mode = w.find<QPushButton>("CMBMOD");
        QVERIFY(w.action("MNUCW")->isEnabled());
        w.action("MNUCW")->trigger();
        QVERIFY(panel->isHidden()); // the mode is SSB
        mode->setText(QStringLiteral("CW"));
        w.edit("txtf2")->setText(QStringLiteral("other"));
        w.action("MNUCW")->trigger();
        QVERIFY(panel->isVisible());
        QCOMPARE(w.text("txtf2"), QStringLiteral("RA3XYZ"));
        w.action("MNUCW")->trigger();
        QVERIFY(panel->isHidden());
        w.action("MNUCW")->trigger();
        QVERIFY(panel->isVisible());
        mode->setText(QStringLiteral("SSB"));
        w.edit("txtf3")->setFocus();
        w.action("MNUCW")->trigger();
        QVERIFY(panel->isHidden());
        QCOMPARE(w.focus(), QStringLiteral("txtcall")); // not in a field that has gone
        w.action("MNUCW")->trigger();
        QVERIFY(panel->isHidden());
    }

    void textsAtStart()
    {
        Station s;
        const QMap<QString, QString> texts = {{"txtf1", "cq cq de"},    {"txtf2", "RA3XYZ"},
                                              {"txtf3", "PSE K"},       {"TXTF7", "my qth moscow"},
                                              {"TXTF8", "my name is "}, {"TXTF9", "vy73 best dx gb"},
                                              {"TXTF11", "корресп."}};
        for (auto text = texts.cbegin(); text != texts.cend(); ++text)
            QCOMPARE(s.w.text(qPrintable(text.key())), text.value());
        QStringList labels;
        for (const QLabel *label : s.w.find<cw::KeyerPanel>("FRCW")->findChildren<QLabel *>())
            labels.append(label->text());
        QVERIFY(labels.contains(QStringLiteral("TX с клавиатуры")));
        QVERIFY(labels.contains(QStringLiteral("Скорость")));
        auto *bar = s.w.find<QAbstractSlider>("HScroll2");
        QCOMPARE(bar->minimum(), 1);
        QCOMPARE(bar->maximum(), 100);
        QCOMPARE(bar->value(), 50);
    }

    void messageKeys()
    {
        Station s;
        Window &w = s.w;
        // F11 first: a key released in the callsign field puts the callsign into its message.
        struct Key {
            Qt::Key key;
            const char16_t *text;
        };
        const QList<Key> keys = {{Qt::Key_F11, u"корресп."},      {Qt::Key_F1, u"cq cq de"},
                                 {Qt::Key_F2, u"RA3XYZ"},         {Qt::Key_F3, u"PSE K"},
                                 {Qt::Key_F7, u"my qth moscow"},  {Qt::Key_F8, u"my name is "},
                                 {Qt::Key_F9, u"vy73 best dx gb"}};
        for (const Key &key : keys) {
            w.line.trace.clear();
            w.press(key.key);
            QCOMPARE(messages(w), QStringList({played(QString::fromUtf16(key.text))}));
            QCOMPARE(w.line.trace.front(), QStringLiteral("open 1"));
            QCOMPARE(w.line.trace.last(), QStringLiteral("close"));
        }
        w.line.trace.clear();
        w.press(Qt::Key_F10); // opens the menu, sends nothing
        if (QWidget *menu = QApplication::activePopupWidget())
            menu->close();
        w.press(Qt::Key_F6);
        w.press(Qt::Key_F1, Qt::ControlModifier);
        w.press(Qt::Key_F1, Qt::AltModifier);
        QCOMPARE(w.line.trace, QStringList());
        w.action("MNUCW")->trigger();
        w.press(Qt::Key_F1);
        QCOMPARE(w.line.trace, QStringList()); // the panel is hidden
        QVERIFY(w.messages.told.isEmpty());
    }

    void heldKeySendsOnce()
    {
        Station s;
        QWidget *call = s.w.edit("txtcall");
        QTest::sendKeyEvent(QTest::Press, call, Qt::Key_F1, QString(), Qt::NoModifier);
        for (int i = 0; i < 5; ++i) {
            QKeyEvent up(QEvent::KeyRelease, Qt::Key_F1, Qt::NoModifier, QString(), true);
            QApplication::sendEvent(call, &up);
            QKeyEvent down(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier, QString(), true);
            QApplication::sendEvent(call, &down);
        }
        QCOMPARE(s.w.line.messages(), 0);
        QTest::sendKeyEvent(QTest::Release, call, Qt::Key_F1, QString(), Qt::NoModifier);
        QCOMPARE(s.w.line.messages(), 1);
    }

    /// Where the platform reports a held key's release once, its repetitions come as presses like the first.
    void repetitionsAreMarked()
    {
        QWidget window;
        window.show();
        QWindow *handle = window.windowHandle();
        struct Seen : QObject {
            QList<bool> repeated;
            bool eventFilter(QObject *watched, QEvent *event) override
            {
                if (watched->isWindowType() && event->type() == QEvent::KeyPress)
                    repeated.append(static_cast<QKeyEvent *>(event)->isAutoRepeat());
                return false;
            }
        } seen;
        ui::RepeatMarker marker;
        qApp->installEventFilter(&seen);
        qApp->installEventFilter(&marker);
        quint32 time = 0;
        const auto event = [&](quint32 code, quint32 at, bool repeated = false) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, code, code, 0, QStringLiteral("a"),
                            repeated);
            press.setTimestamp(at);
            QCoreApplication::sendEvent(handle, &press);
        };
        const auto press = [&](quint32 code) {
            marker.pressed(code, ++time);
            event(code, time);
        };
        constexpr quint32 kOne = 38;
        constexpr quint32 kOther = 39;
        press(kOne);
        press(kOne); // held
        press(kOther);
        press(kOne); // its release was never reported, but a key repeats only while it is the last one
        marker.released(kOne);
        press(kOne);
        marker.released(kOther); // of an earlier key
        press(kOne);
        marker.forget();
        press(kOne);
        event(kOne, ++time, true); // marked already
        event(0, ++time);          // no key of a keyboard
        event(0, time);
        QCOMPARE(seen.repeated,
                 QList<bool>({false, true, false, false, false, true, false, true, false, false}));
        // Events may come later than the reports, as those that had to wait do.
        seen.repeated.clear();
        marker.forget();
        for (quint32 at = 101; at <= 103; ++at)
            marker.pressed(kOne, at);
        marker.released(kOne);
        for (quint32 at = 101; at <= 103; ++at)
            event(kOne, at);
        QCOMPARE(seen.repeated, QList<bool>({false, true, true}));
    }

    void stationInItsMessage()
    {
        Station s;
        Window &w = s.w;
        w.type(QStringLiteral("dl1a"));
        // The last letter is still down when F11 goes.
        QTest::sendKeyEvent(QTest::Press, w.edit("txtcall"), Qt::Key_B, QStringLiteral("b"), Qt::NoModifier);
        w.press(Qt::Key_F11);
        QCOMPARE(messages(w), QStringList({played(QStringLiteral("DL1AB"))}));
        QCOMPARE(w.text("TXTF11"), QStringLiteral("DL1AB"));
    }

    void typedTextGoesAtOnce()
    {
        Station s;
        Window &w = s.w;
        w.press(Qt::Key_F12);
        QCOMPARE(w.focus(), QStringLiteral("TXklaw"));
        QString before;
        w.line.beforeWait = [&](int index) {
            if (index == 1)
                before += w.text("TXklaw") + QLatin1Char('|');
        };
        w.type(QStringLiteral("aЖ 7"));
        QCOMPARE(messages(w), QStringList({"13", "1113", "0", "33111"}));
        QCOMPARE(w.text("TXklaw"), QStringLiteral("aЖ 7"));
        QCOMPARE(before, QStringLiteral("|a|aЖ|aЖ |")); // the character goes out, then it is entered
        w.press(Qt::Key_Backspace);
        w.press(Qt::Key_Left);
        QApplication::clipboard()->setText(QStringLiteral("sos"));
        QTest::keyClick(w.edit("TXklaw"), Qt::Key_V, Qt::ControlModifier);
        QKeyEvent repeated(QEvent::KeyPress, Qt::Key_E, Qt::NoModifier, QStringLiteral("e"), true);
        QApplication::sendEvent(w.edit("TXklaw"), &repeated);
        QCOMPARE(messages(w).size(), 4); // nothing that was not typed goes on the air
        QCOMPARE(w.text("TXklaw"), QStringLiteral("aЖ "));
        w.press(Qt::Key_F12);
        QVERIFY(!w.edit("TXklaw")->isVisible());
        QCOMPARE(w.text("TXklaw"), QString());
        QCOMPARE(w.focus(), QStringLiteral("txtcall"));
    }

    void textIsShownWhileItIsSent()
    {
        Station s;
        Window &w = s.w;
        w.edit("txtf1")->setText(QStringLiteral("e t"));
        QStringList shown;
        w.line.beforeWait = [&](int) {
            const auto *field = w.edit("txtpered");
            const QString state = field->text() + QLatin1Char(':') + field->selectedText();
            if (shown.isEmpty() || shown.last() != state)
                shown.append(state);
        };
        w.press(Qt::Key_F1);
        QCOMPARE(shown, QStringList({"e t:e", "e t:e ", "e t:e t"}));
        QCOMPARE(w.text("txtpered"), QString());
    }

    void speedBar()
    {
        Station s;
        Window &w = s.w;
        auto *bar = w.find<QAbstractSlider>("HScroll2");
        const auto shown = [&] { return w.find<QLabel>("lblwpm")->text(); };
        QCOMPARE(shown(), QStringLiteral("20 слов/мин"));
        w.edit("txtf1")->setText(QStringLiteral("e"));
        w.press(Qt::Key_F1);
        QVERIFY(w.line.trace.contains(QStringLiteral("wait 60")));
        QVERIFY(w.line.trace.contains(QStringLiteral("wait 244.8")));
        w.line.trace.clear();
        w.press(Qt::Key_F1);
        QVERIFY(w.line.trace.contains(QStringLiteral("wait 61.2")));
        bar->setFocus();
        w.press(Qt::Key_Right);
        QCOMPARE(bar->value(), 51);
        w.line.trace.clear();
        w.press(Qt::Key_F1);
        QVERIFY(w.line.trace.contains(QStringLiteral("wait 60"))); // (101 - 51) * 3000 passes
        bar->setValue(91);
        QCOMPARE(shown(), QStringLiteral("100 слов/мин"));
        bar->setValue(1);
        QCOMPARE(shown(), QStringLiteral("10 слов/мин"));
    }

    void inputWaitsAndComesInOrder()
    {
        Station s;
        Window &w = s.w;
        w.edit("txtf1")->setText(QStringLiteral("ee"));
        w.edit("txtf3")->setText(QStringLiteral("tt"));
        QString duringSending;
        w.line.beforeWait = [&](int index) {
            if (index != 2 || w.line.messages() != 1)
                return;
            w.type(QStringLiteral("dl1a"));
            w.press(Qt::Key_F3); // a message that waits
            w.type(QStringLiteral("b"));
            w.click("CMBBAND1_2");
            QCloseEvent close; // of the desktop's frame
            QCoreApplication::sendEvent(w.log->windowHandle(), &close);
            QVERIFY(!close.isAccepted());
            duringSending = w.text("txtcall");
        };
        w.press(Qt::Key_F1);
        QCOMPARE(duringSending, QString());
        w.line.beforeWait = nullptr;
        QCoreApplication::processEvents();
        QCOMPARE(messages(w), QStringList({played(QStringLiteral("ee")), played(QStringLiteral("tt"))}));
        QCOMPARE(w.text("txtcall"), QStringLiteral("DL1AB"));
        QCOMPARE(w.find<QLabel>("lblband")->text(), QStringLiteral("7 MHz"));
        QVERIFY(!w.log->isVisible()); // closing waited as well, and came last
    }

    /// Widgets that ignore a message key's release pass it on to their parents: once is enough.
    void sentOnceWhateverHasTheFocus_data()
    {
        QTest::addColumn<QString>("focused");
        for (const char *name : {"txtcall", "CMBBAND1_4", "CMBMOD", "DBGrid1", "HScroll2", "Option1",
                                 "cmbadd", "txtf1", "TXTLOK", "Label10"})
            QTest::newRow(name) << name;
    }
    void sentOnceWhateverHasTheFocus()
    {
        QFETCH(QString, focused);
        Station s;
        Window &w = s.w;
        for (const bool escape : {false, true}) {
            w.line.trace.clear();
            w.find<QWidget>(qPrintable(focused))->setFocus();
            QCOMPARE(w.focus(), focused);
            w.line.beforeWait = [&](int index) {
                if (index != 3)
                    return;
                w.press(Qt::Key_X);
                w.press(Qt::Key_Home);
                w.press(Qt::Key_Alt, Qt::AltModifier);
                w.click("txtcontr");
                if (escape)
                    w.press(Qt::Key_Escape);
            };
            w.press(Qt::Key_F7);
            w.line.beforeWait = nullptr;
            QCoreApplication::processEvents();
            QCOMPARE(w.line.messages(), 1);
            QCOMPARE(w.focus(), QStringLiteral("txtcontr"));
        }
    }

    void typedAheadInTheKeyboardField()
    {
        Station s;
        Window &w = s.w;
        w.press(Qt::Key_F12);
        w.line.beforeWait = [&](int index) {
            if (index == 1 && w.line.messages() == 1)
                w.type(QStringLiteral("et"));
            if (index == 1 && w.line.messages() == 2)
                w.type(QStringLiteral("i")); // behind what waits already
        };
        w.type(QStringLiteral("a"));
        QCoreApplication::processEvents();
        QCOMPARE(messages(w), QStringList({"13", "1", "3", "11"}));
        QCOMPARE(w.text("TXklaw"), QStringLiteral("aeti"));
    }

    void escapeStops()
    {
        Station s;
        Window &w = s.w;
        w.edit("txtf1")->setText(QStringLiteral("tttttttttt"));
        w.line.beforeWait = [&](int index) {
            if (index != 4 || w.line.messages() != 1)
                return;
            w.type(QStringLiteral("q"));
            w.press(Qt::Key_F1); // waits to be sent
            w.press(Qt::Key_Escape);
            w.press(Qt::Key_F3); // pressed after Esc: is sent
            w.type(QStringLiteral("w"));
        };
        w.press(Qt::Key_F1);
        QCoreApplication::processEvents();
        // Two dashes and a gap: the dash that was being keyed is cut, none follows, nor does what waited.
        QCOMPARE(messages(w), QStringList({"303", played(QStringLiteral("PSE K"))}));
        QVERIFY(!w.line.rts && !w.line.dtr);
        QCOMPARE(w.line.trace.last(), QStringLiteral("close"));
        QCOMPARE(w.text("txtcall"), QStringLiteral("QW")); // nothing typed is lost
        QVERIFY(w.messages.told.isEmpty());
        w.press(Qt::Key_Escape); // and when nothing is being sent Esc does nothing
        QCOMPARE(messages(w).size(), 2);
    }

    void charactersTypedAheadOfEscapeAreKeptUnsent()
    {
        Station s;
        Window &w = s.w;
        w.press(Qt::Key_F12);
        w.line.beforeWait = [&](int index) {
            if (index == 1 && w.line.messages() == 1) {
                w.type(QStringLiteral("xy"));
                w.press(Qt::Key_Escape);
            }
        };
        w.type(QStringLiteral("a"));
        QCoreApplication::processEvents();
        QCOMPARE(w.line.messages(), 1);
        QCOMPARE(w.text("TXklaw"), QStringLiteral("axy"));
        w.type(QStringLiteral("e"));
        QCOMPARE(w.line.messages(), 2);
    }

    void clockAndPaintingGoOn()
    {
        Station s;
        Window &w = s.w;
        QString shown;
        w.line.beforeWait = [&](int) {
            w.clock.now = w.clock.now.addSecs(1);
            QTRY_COMPARE_WITH_TIMEOUT(w.text("txttime"), w.clock.now.toString(QStringLiteral("hh:mm:ss")),
                                      3000);
            shown = w.text("txttime");
            w.line.beforeWait = nullptr;
        };
        w.press(Qt::Key_F1);
        QCOMPARE(shown, QStringLiteral("14:07:10"));
    }

    void busyPort()
    {
        Station s;
        Window &w = s.w;
        w.edit("txtf1")->setText(QStringLiteral("e"));
        constexpr int kCalls = 5; // open, RTS, DTR up and down, RTS down
        for (int failAt = 1; failAt <= kCalls; ++failAt) {
            w.messages.told.clear();
            w.line.failAt = failAt;
            w.press(Qt::Key_F1);
            QCOMPARE(w.messages.told, QStringList({"Zhurnal: Порт занят"}));
            QCOMPARE(w.text("txtpered"), QStringLiteral("Com1 /dev/ttyS0: нет устройства"));
            QVERIFY(!w.line.rts && !w.line.dtr);
        }
        // The field keeps what was typed, and the window goes on working.
        w.press(Qt::Key_F12);
        w.messages.told.clear();
        w.line.failAt = 1;
        w.type(QStringLiteral("a"));
        QCOMPARE(w.messages.told.size(), 1);
        QCOMPARE(w.text("TXklaw"), QStringLiteral("a"));
        w.line.failAt = 0;
        w.line.trace.clear();
        w.press(Qt::Key_F1);
        QCOMPARE(messages(w), QStringList({"1"}));
    }

    void portChoice()
    {
        Station s;
        Window &w = s.w;
        for (int i = 1; i <= 4; ++i) {
            auto *option = w.find<QRadioButton>(qPrintable(QStringLiteral("Option%1").arg(i)));
            option->click();
            QCOMPARE(w.focus(), QStringLiteral("txtcall"));
            w.line.trace.clear();
            w.press(Qt::Key_F1);
            QCOMPARE(w.line.trace.front(), QStringLiteral("open %1").arg(i));
        }
        // By keyboard: an arrow key goes to the next port and takes it.
        w.find<QRadioButton>("Option1")->click();
        w.find<QWidget>("Option1")->setFocus();
        w.press(Qt::Key_Right);
        QCOMPARE(w.find<cw::KeyerPanel>("FRCW")->port(), 2);
        QVERIFY(w.find<QRadioButton>("Option2")->isChecked());
        QCOMPARE(w.find<QWidget>("Option1")->toolTip(), QStringLiteral("/dev/ttyS0"));
        QCOMPARE(w.find<QWidget>("Option2")->toolTip(), QStringLiteral("/dev/ttyUSB0"));
        QCOMPARE(w.find<QWidget>("Option3")->toolTip(), QStringLiteral("Такого порта в компьютере нет"));
    }

    void secondMessageIsTheOwnCallsign()
    {
        Station s;
        Window &w = s.w;
        auto *message = w.edit("txtf2");
        message->setFocus();
        message->selectAll();
        w.type(QStringLiteral("UA1ZZ"));
        w.edit("txtcall")->setFocus();
        QCOMPARE(w.text("txtNcall"), QStringLiteral("UA1ZZ"));
        QCOMPARE(
            w.installation.rows(QStringLiteral("dbcontest.mdb"), QStringLiteral("SELECT ccall FROM tbltit")),
            QStringList({"UA1ZZ"}));
    }

    void emptyMessage()
    {
        Station s;
        s.w.edit("txtf1")->clear();
        s.w.press(Qt::Key_F1);
        QCOMPARE(s.w.line.trace, QStringList({"open 1", "RTS 1", "wait 244.8", "RTS 0", "close"}));
    }
};

QTEST_MAIN(KeyerTest)
#include "keyer.moc"
