// The calculator's panel by itself: its keys by mouse and keyboard, its display, its messages.
#include "support/window.h"

#include "calc/ui/calculatorpanel.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QSignalSpy>

using calc::CalculatorPanel;
using testsupport::FakeMessages;

namespace {

struct Control {
    const char *name;
    const char *caption;
};

/// Every key, from the top left to the bottom right.
constexpr std::array kKeys = {
    Control{"cmbmc", "MC"},       Control{"cmbdej1_1", "M+"},  Control{"cmbdej1_2", "M-"},
    Control{"cmbdej1_0", "+/-"},  Control{"cmbdej1_3", "кор"}, Control{"cmbnr_7", "7"},
    Control{"cmbnr_8", "8"},      Control{"cmbnr_9", "9"},     Control{"cmbdej_3", "/"},
    Control{"cmbdej1_4", "00>0"}, Control{"cmbnr_4", "4"},     Control{"cmbnr_5", "5"},
    Control{"cmbnr_6", "6"},      Control{"cmbdej_2", "*"},    Control{"cmbdej_4", "C"},
    Control{"cmbnr_1", "1"},      Control{"cmbnr_2", "2"},     Control{"cmbnr_3", "3"},
    Control{"cmbdej_1", "-"},     Control{"cmbsum", "="},      Control{"cmbnr_0", "0"},
    Control{"cmbnr_10", ","},     Control{"cmbdej_0", "+"},
};

/// The panel in a window that counts the keys that reach it.
class Desk : public QWidget {
public:
    Desk()
    {
        auto *row = new QHBoxLayout(this);
        panel = new CalculatorPanel(messages, this);
        row->addWidget(panel);
        after = new QLineEdit(this);
        row->addWidget(after);
        show();
        activateWindow();
        if (!QTest::qWaitForWindowActive(this))
            qFatal("the window does not get active");
        panel->open();
    }

    [[nodiscard]] QPushButton *key(const char *name) const
    {
        auto *button = findChild<QPushButton *>(QLatin1String(name));
        if (button == nullptr)
            qFatal("no %s", name);
        return button;
    }
    [[nodiscard]] ui::FilterEdit *box(const char *name) const
    {
        auto *edit = findChild<ui::FilterEdit *>(QLatin1String(name));
        if (edit == nullptr)
            qFatal("no %s", name);
        return edit;
    }
    [[nodiscard]] QString display() const { return box("txtrzK")->text(); }
    [[nodiscard]] QString memory() const { return box("txtMr")->text(); }
    [[nodiscard]] static QString focus()
    {
        return QApplication::focusWidget() == nullptr ? QString() : QApplication::focusWidget()->objectName();
    }

    void click(const char *name) { QTest::mouseClick(key(name), Qt::LeftButton); }
    /// Clicks the keys with these captions.
    void clicks(const QString &captions)
    {
        const QStringList words = captions.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        for (const QString &word : words)
            for (const Control &control : kKeys)
                if (word == QString::fromUtf8(control.caption))
                    click(control.name);
    }
    /// Types characters, whatever has the focus.
    static void type(const QString &text)
    {
        for (const QChar c : text)
            QTest::sendKeyEvent(QTest::Click, QApplication::focusWidget(), Qt::Key(c.toUpper().unicode()),
                                QString(c), Qt::NoModifier);
    }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    /// Ctrl with a letter, with the control character that a keyboard gives.
    static void control(Qt::Key letter)
    {
        QKeyEvent event(QEvent::KeyPress, letter, Qt::ControlModifier,
                        QString(QChar(static_cast<char16_t>(letter - Qt::Key_A + 1))));
        QApplication::sendEvent(QApplication::focusWidget(), &event);
    }
    static void hold(Qt::Key key, const QString &text)
    {
        const auto send = [&](QEvent::Type type, bool repeated) {
            QKeyEvent event(type, key, Qt::NoModifier, text, repeated);
            QApplication::sendEvent(QApplication::focusWidget(), &event);
        };
        send(QEvent::KeyPress, false);
        for (int i = 0; i < 5; ++i)
            send(QEvent::KeyPress, true);
        send(QEvent::KeyRelease, false);
    }

    FakeMessages messages;
    CalculatorPanel *panel;
    QLineEdit *after;
    QList<int> passedOn;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() != Qt::Key_Shift && event->key() != Qt::Key_Control && event->key() != Qt::Key_Alt)
            passedOn.append(event->key());
    }
};

} // namespace

class CalculatorPanelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void captions()
    {
        const Desk desk;
        QCOMPARE(desk.panel->objectName(), QStringLiteral("FrKalk"));
        QCOMPARE(desk.panel->title(), QStringLiteral("Калькулятор"));
        QCOMPARE(desk.panel->findChildren<QPushButton *>().size(), qsizetype{kKeys.size()});
        for (const Control &control : kKeys) {
            const QPushButton *key = desk.key(control.name);
            QCOMPARE(key->text(), QString::fromUtf8(control.caption));
            QVERIFY(!key->toolTip().isEmpty());
            QVERIFY(!key->accessibleName().isEmpty());
        }
        for (const char *name : {"txtrzK", "txtMr"}) {
            const ui::FilterEdit *box = desk.box(name);
            QVERIFY(box->isReadOnly());
            QVERIFY(box->text().isEmpty());
            QVERIFY(!box->toolTip().isEmpty());
            QVERIFY(!box->accessibleName().isEmpty());
            QVERIFY(box->alignment().testFlag(Qt::AlignRight));
        }
        const auto labels = desk.panel->findChildren<QLabel *>();
        QCOMPARE(labels.size(), 1);
        QCOMPARE(labels.front()->text(), QStringLiteral("MR"));
        QCOMPARE(labels.front()->buddy(), desk.box("txtMr"));
    }

    void nothingIsCut()
    {
        const Desk desk;
        for (const Control &control : kKeys) {
            const QPushButton *key = desk.key(control.name);
            QVERIFY2(key->fontMetrics().horizontalAdvance(key->text()) + 6 <= key->width(), control.name);
            QVERIFY2(key->fontMetrics().height() <= key->height(), control.name);
        }
        for (const char *name : {"txtrzK", "txtMr"}) {
            const QString longest = QStringLiteral("-1,23456789012346e-123");
            const ui::FilterEdit *box = desk.box(name);
            QVERIFY2(box->fontMetrics().horizontalAdvance(longest) + 8 <= box->width(), name);
        }
        QCOMPARE(desk.panel->width(), desk.panel->sizeHint().width());
    }

    void everyButton()
    {
        Desk desk;
        desk.clicks(QStringLiteral("1 2 3 4 5 6 7 8 9 0"));
        QCOMPARE(desk.display(), QStringLiteral("1234567890"));
        desk.clicks(QStringLiteral("C"));
        QCOMPARE(desk.display(), QString());
        desk.clicks(QStringLiteral(", 5"));
        QCOMPARE(desk.display(), QStringLiteral("0,5"));
        desk.clicks(QStringLiteral("+ 2 ="));
        QCOMPARE(desk.display(), QStringLiteral("2,5"));
        desk.clicks(QStringLiteral("* 4 ="));
        QCOMPARE(desk.display(), QStringLiteral("10"));
        desk.clicks(QStringLiteral("- 1 ="));
        QCOMPARE(desk.display(), QStringLiteral("9"));
        desk.clicks(QStringLiteral("кор"));
        QCOMPARE(desk.display(), QStringLiteral("3"));
        desk.clicks(QStringLiteral("/ 8 ="));
        QCOMPARE(desk.display(), QStringLiteral("0,375"));
        desk.clicks(QStringLiteral("+/-"));
        QCOMPARE(desk.display(), QStringLiteral("-0,375"));
        desk.clicks(QStringLiteral("00>0"));
        QCOMPARE(desk.display(), QStringLiteral("-0,37"));
        desk.clicks(QStringLiteral("M+"));
        QCOMPARE(desk.memory(), QStringLiteral("-0,37"));
        desk.clicks(QStringLiteral("M+"));
        QCOMPARE(desk.memory(), QStringLiteral("-0,74"));
        desk.clicks(QStringLiteral("1 M-"));
        QCOMPARE(desk.memory(), QStringLiteral("-1,74"));
        desk.clicks(QStringLiteral("MC"));
        QCOMPARE(desk.memory(), QString());
        QCOMPARE(desk.display(), QStringLiteral("1"));
        QVERIFY(desk.messages.told.isEmpty());
    }

    void sequences_data()
    {
        QTest::addColumn<QString>("display");
        QTest::newRow("7 / 0 =") << "0";
        QTest::newRow("=") << "0";
        QTest::newRow("5 - 5 - 3 + 2 =") << "5";
        QTest::newRow("5 - 5 - 3 =") << "-3";
        QTest::newRow("5 + 3 +") << "8";
        QTest::newRow("5 + 3 + - 2 =") << "6";
        QTest::newRow("2 , 5 +/- , 1") << "-2,5,1";
    }
    void sequences()
    {
        QFETCH(QString, display);
        Desk desk;
        desk.clicks(QString::fromUtf8(QTest::currentDataTag()));
        QCOMPARE(desk.display(), display);
    }

    void typed_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("display");
        QTest::newRow("digits") << "1234567890"
                                << "1234567890";
        QTest::newRow("comma") << "1,5"
                               << "1,5";
        QTest::newRow("point") << "1.5"
                               << "1,5";
        QTest::newRow("point and comma") << "1.,5"
                                         << "1,5";
        QTest::newRow("+") << "5+3="
                           << "8";
        QTest::newRow("-") << "5-3="
                           << "2";
        QTest::newRow("*") << "5*3="
                           << "15";
        QTest::newRow("/") << "5/2="
                           << "2,5";
        QTest::newRow("chain") << "2+3*4-6/2="
                               << "7";
        QTest::newRow("small c") << "5c"
                                 << "";
        QTest::newRow("capital C") << "5C7"
                                   << "7";
        QTest::newRow("small Cyrillic") << "5с"
                                        << "";
        QTest::newRow("capital Cyrillic") << "5С7"
                                          << "7";
        QTest::newRow("other signs") << "5x%ёЖ 3;:"
                                     << "53";
        QTest::newRow("other digits") << "5٣３²"
                                      << "5";
    }
    void typed()
    {
        QFETCH(QString, text);
        QFETCH(QString, display);
        const Desk desk;
        QCOMPARE(Desk::focus(), QStringLiteral("txtrzK"));
        Desk::type(text);
        QCOMPARE(desk.display(), display);
    }

    void namedKeys()
    {
        const Desk desk;
        Desk::type(QStringLiteral("5+34"));
        Desk::press(Qt::Key_Backspace);
        QCOMPARE(desk.display(), QStringLiteral("3"));
        Desk::press(Qt::Key_Return);
        QCOMPARE(desk.display(), QStringLiteral("8"));
        Desk::type(QStringLiteral("*2"));
        Desk::press(Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(desk.display(), QStringLiteral("16"));
        Desk::press(Qt::Key_Delete);
        QCOMPARE(desk.display(), QString());
        QTest::sendKeyEvent(QTest::Click, desk.box("txtrzK"), Qt::Key_Comma, QStringLiteral(","),
                            Qt::KeypadModifier);
        QTest::sendKeyEvent(QTest::Click, desk.box("txtrzK"), Qt::Key_7, QStringLiteral("7"),
                            Qt::KeypadModifier);
        QTest::sendKeyEvent(QTest::Click, desk.box("txtrzK"), Qt::Key_Plus, QStringLiteral("+"),
                            Qt::ShiftModifier);
        QTest::sendKeyEvent(QTest::Click, desk.box("txtrzK"), Qt::Key_1, QStringLiteral("1"), Qt::NoModifier);
        Desk::press(Qt::Key_Return);
        QCOMPARE(desk.display(), QStringLiteral("1,7"));
        QVERIFY(desk.passedOn.isEmpty());
    }

    void heldKeys()
    {
        const Desk desk;
        Desk::type(QStringLiteral("5+3"));
        Desk::hold(Qt::Key_Return, QStringLiteral("\r"));
        QCOMPARE(desk.display(), QStringLiteral("8"));
        Desk::hold(Qt::Key_Enter, QStringLiteral("\r"));
        QCOMPARE(desk.display(), QStringLiteral("0")); // one more evaluation, not six
        Desk::type(QStringLiteral("5+3"));
        Desk::hold(Qt::Key_Equal, QStringLiteral("="));
        QCOMPARE(desk.display(), QStringLiteral("8"));
        Desk::hold(Qt::Key_1, QStringLiteral("1"));
        QCOMPARE(desk.display(), QStringLiteral("111111"));
        Desk::hold(Qt::Key_Backspace, QStringLiteral("\b"));
        QCOMPARE(desk.display(), QString());
        desk.key("cmbnr_7")->setFocus();
        Desk::hold(Qt::Key_Return, QStringLiteral("\r"));
        QCOMPARE(desk.display(), QStringLiteral("7"));
        QVERIFY(desk.passedOn.isEmpty());
    }

    void otherKeysPassOn()
    {
        const Desk desk;
        Desk::type(QStringLiteral("5+3"));
        const QList<int> keys = {Qt::Key_F1,   Qt::Key_F4,   Qt::Key_F12,     Qt::Key_Up,
                                 Qt::Key_Left, Qt::Key_Home, Qt::Key_PageDown};
        for (const int key : keys)
            Desk::press(Qt::Key(key));
        QCOMPARE(desk.passedOn, keys);
        Desk::press(Qt::Key_5, Qt::ControlModifier);
        Desk::press(Qt::Key_C, Qt::AltModifier);
        Desk::press(Qt::Key_Return, Qt::ControlModifier);
        Desk::press(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(desk.passedOn.size(), keys.size() + 4);
        QCOMPARE(desk.display(), QStringLiteral("3"));
        QCOMPARE(desk.panel->calculator().accumulator(), 5.0);
    }

    void resultCanBeCopied()
    {
        const Desk desk;
        Desk::type(QStringLiteral("5/2="));
        QApplication::clipboard()->setText(QStringLiteral("77"));
        Desk::control(Qt::Key_A);
        Desk::control(Qt::Key_C);
        QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("2,5"));
        QCOMPARE(desk.display(), QStringLiteral("2,5"));
        QApplication::clipboard()->setText(QStringLiteral("77"));
        Desk::press(Qt::Key_Insert, Qt::ShiftModifier); // nothing is pasted past the calculator
        QCOMPARE(desk.display(), QStringLiteral("2,5"));
    }

    void shortcutsDoNotTakeItsKeys()
    {
        Desk desk;
        QStringList triggered;
        for (const char *shortcut : {"5", "+", "Return", "Backspace", "Del", "Esc", "C", "F5"}) {
            auto *action = new QAction(&desk);
            action->setShortcut(QKeySequence(QLatin1String(shortcut)));
            connect(action, &QAction::triggered, &desk,
                    [&triggered, shortcut] { triggered.append(QLatin1String(shortcut)); });
            desk.addAction(action);
        }
        const QSignalSpy closing(desk.panel, &CalculatorPanel::closeAsked);
        for (const Qt::Key key : {Qt::Key_5, Qt::Key_Plus, Qt::Key_3, Qt::Key_Return})
            Desk::press(key);
        QCOMPARE(desk.display(), QStringLiteral("8"));
        Desk::press(Qt::Key_Backspace);
        QCOMPARE(desk.display(), QString());
        Desk::press(Qt::Key_5);
        Desk::press(Qt::Key_Delete);
        Desk::press(Qt::Key_5);
        Desk::press(Qt::Key_C);
        QCOMPARE(desk.display(), QString());
        Desk::press(Qt::Key_Escape);
        QCOMPARE(closing.size(), 1);
        QCOMPARE(triggered, QStringList());
        Desk::press(Qt::Key_F5);
        QCOMPARE(triggered, QStringList({QStringLiteral("F5")}));
    }

    void faultMessages()
    {
        Desk desk;
        desk.clicks(QStringLiteral("5 M-"));
        QCOMPARE(desk.messages.told, QStringList({QStringLiteral("Калькулятор: Память пуста.")}));
        QCOMPARE(desk.display(), QStringLiteral("5"));
        QCOMPARE(desk.memory(), QString());
        desk.clicks(QStringLiteral("+/- кор"));
        QCOMPARE(desk.messages.told.size(), 2);
        QCOMPARE(desk.messages.told.back(),
                 QStringLiteral("Калькулятор: Корень из отрицательного числа не извлекается."));
        QCOMPARE(desk.display(), QStringLiteral("-5"));
        desk.clicks(QStringLiteral("C"));
        Desk::type(QStringLiteral("1") + QString(308, QLatin1Char('0')) + QStringLiteral("*1000="));
        QCOMPARE(desk.messages.told.size(), 3);
        QCOMPARE(desk.messages.told.back(), QStringLiteral("Калькулятор: Число слишком велико."));
        QCOMPARE(desk.display(), QStringLiteral("1000"));
        QCOMPARE(Desk::focus(), QStringLiteral("txtrzK"));
        QVERIFY(desk.messages.errors.isEmpty());
    }

    void esc()
    {
        Desk desk;
        const QSignalSpy closing(desk.panel, &CalculatorPanel::closeAsked);
        desk.clicks(QStringLiteral("5 M+"));
        Desk::press(Qt::Key_Escape);
        QCOMPARE(closing.size(), 1);
        QCOMPARE(desk.display(), QStringLiteral("5")); // whoever shows the panel hides it
        QVERIFY(desk.panel->isVisible());
        desk.key("cmbnr_3")->setFocus();
        Desk::press(Qt::Key_Escape);
        QCOMPARE(closing.size(), 2);
        QVERIFY(desk.passedOn.isEmpty());
    }

    void tabReachesEveryButton()
    {
        const Desk desk;
        QStringList expected;
        for (const Control &control : kKeys)
            expected.append(QLatin1String(control.name));
        QStringList walk;
        for (std::size_t i = 0; i < kKeys.size(); ++i) {
            Desk::press(Qt::Key_Tab);
            walk.append(Desk::focus());
        }
        QCOMPARE(walk, expected);
        Desk::press(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), desk.after);
        Desk::press(Qt::Key_Backtab);
        QCOMPARE(Desk::focus(), expected.back());
        Desk::press(Qt::Key_Tab);
        Desk::press(Qt::Key_Tab);
        QCOMPARE(Desk::focus(), QStringLiteral("txtrzK")); // round again, past the memory
        Desk::press(Qt::Key_Backtab);
        QCOMPARE(QApplication::focusWidget(), desk.after);
    }

    void enterAndSpacePressButtons()
    {
        const Desk desk;
        const auto pressBy = [&](const char *name, Qt::Key key) {
            desk.key(name)->setFocus(Qt::TabFocusReason);
            Desk::press(key);
            QCOMPARE(Desk::focus(), QLatin1String(name)); // the next press of the same key follows
        };
        pressBy("cmbnr_5", Qt::Key_Return);
        pressBy("cmbnr_5", Qt::Key_Space);
        pressBy("cmbdej1_1", Qt::Key_Enter);
        QCOMPARE(desk.display(), QStringLiteral("55"));
        QCOMPARE(desk.memory(), QStringLiteral("55"));
        pressBy("cmbdej_0", Qt::Key_Space);
        Desk::type(QStringLiteral("5")); // digits count wherever in the panel the focus is
        pressBy("cmbsum", Qt::Key_Return);
        QCOMPARE(desk.display(), QStringLiteral("60"));
        pressBy("cmbmc", Qt::Key_Space);
        QCOMPARE(desk.memory(), QString());
        QVERIFY(desk.passedOn.isEmpty());
    }

    void mouseLeavesTheFocusToTheDisplay()
    {
        Desk desk;
        desk.after->setFocus();
        desk.click("cmbnr_5");
        QCOMPARE(Desk::focus(), QStringLiteral("txtrzK"));
        desk.key("cmbnr_7")->setFocus(Qt::TabFocusReason);
        desk.click("cmbnr_7"); // also where Tab had led to it
        QCOMPARE(Desk::focus(), QStringLiteral("txtrzK"));
        Desk::type(QStringLiteral("+3"));
        Desk::press(Qt::Key_Return);
        QCOMPARE(desk.display(), QStringLiteral("60"));
        QTest::mouseClick(desk.box("txtMr"), Qt::LeftButton);
        QCOMPARE(Desk::focus(), QStringLiteral("txtMr"));
        Desk::type(QStringLiteral("42"));
        QCOMPARE(desk.display(), QStringLiteral("42"));
        QCOMPARE(desk.memory(), QString());
        desk.after->setFocus();
        Desk::type(QStringLiteral("9"));
        QCOMPARE(desk.after->text(), QStringLiteral("9"));
        QCOMPARE(desk.display(), QStringLiteral("42"));
    }

    void opening()
    {
        Desk desk;
        desk.clicks(QStringLiteral("5 M+ + 1 , 5"));
        desk.panel->hide();
        QVERIFY(Desk::focus() != QStringLiteral("txtrzK"));
        desk.panel->open();
        QVERIFY(desk.panel->isVisible());
        QCOMPARE(Desk::focus(), QStringLiteral("txtrzK"));
        QCOMPARE(desk.display(), QString());
        QCOMPARE(desk.memory(), QStringLiteral("5"));
        Desk::type(QStringLiteral("2,5="));
        QCOMPARE(desk.display(), QStringLiteral("7,5"));
    }
};

QTEST_MAIN(CalculatorPanelTest)
#include "calculator.moc"
