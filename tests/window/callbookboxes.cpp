// The callbook window's boxes: what may be typed into them, what a full one refuses, when they are stored.
#include "support/reference.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>

using testsupport::addRecord;
using testsupport::Callbook;
using testsupport::callbookTables;
using testsupport::Desktop;
using testsupport::Installation;
using testsupport::kFullRecord;
using testsupport::sendKey;

namespace {

/// A record of which only the callsign is known, looked up.
struct Empty : Callbook {
    Empty()
        : Callbook([](Installation &in) {
              callbookTables(in);
              addRecord(in, "ccall=R1A");
          })
    {
        lookUp("r1a");
    }
    /// Stored text of a box of the record.
    [[nodiscard]] QString storedText(const QString &box) const
    {
        return record("R1A", qPrintable(box.mid(3)));
    }
};

QString letters(int count)
{
    QString text;
    for (int i = 0; i < count; ++i)
        text += QChar('a' + i % 26);
    return text;
}

} // namespace

class CallbookBoxesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // ---- what is entered

    void characters_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("entered");
        const QString mixed = QStringLiteral("иВан o'N. <b>ё");
        for (const char *box : {"txtfam", "txtotch", "txtindeks", "txtobl", "txtadres", "txttelefon"})
            QTest::newRow(box) << box << mixed << mixed;
        QTest::newRow("txtnname") << "txtnname" << mixed << QStringLiteral("ИВан o'N. <b>ё");
        QTest::newRow("txtqth") << "txtqth" << mixed << QStringLiteral("ИВан o'N. <b>ё");
        QTest::newRow("txtqslvia") << "txtqslvia" << mixed << QStringLiteral("ИВАН O'N. <B>Ё");
        QTest::newRow("txtlogqslvia") << "txtlogqslvia" << mixed << QStringLiteral("ИВАН O'N. <B>Ё");
        QTest::newRow("txtnname ё") << "txtnname" << QStringLiteral("ёёё") << QStringLiteral("Ёёё");
        QTest::newRow("txtqth latin") << "txtqth"
                                      << "bONN"
                                      << "BONN";
        QTest::newRow("txtnname blank first") << "txtnname"
                                              << " ab"
                                              << " ab";
    }
    void characters()
    {
        QFETCH(QString, box);
        QFETCH(QString, typed);
        QFETCH(QString, entered);
        Empty c;
        c.click(qPrintable(box));
        c.w.type(typed);
        QCOMPARE(c.text(qPrintable(box)), entered);
        c.press(Qt::Key_Tab);
        if (!box.startsWith(QLatin1String("txtlog")))
            QCOMPARE(c.storedText(box), entered);
        QVERIFY(c.quiet());
    }

    void limits_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<int>("most");
        QTest::newRow("name") << "txtnname" << 14;
        QTest::newRow("town") << "txtqth" << 25;
        QTest::newRow("address") << "txtadres" << 50;
        QTest::newRow("route") << "txtqslvia" << 14;
        QTest::newRow("route of the log") << "txtlogqslvia" << 14;
        for (const char *box : {"txtfam", "txtotch", "txtindeks", "txtobl", "txttelefon", "txtccall",
                                "txtlogname", "txtlogqth"})
            QTest::newRow(box) << box << 300;
    }
    void limits()
    {
        QFETCH(QString, box);
        QFETCH(int, most);
        const bool limited = most < 300;
        Empty c;
        c.enter(qPrintable(box), "");
        c.w.type(letters(most));
        QCOMPARE(c.text(qPrintable(box)).size(), most);
        c.type("z");
        QCOMPARE(c.text(qPrintable(box)).size(), limited ? most : most + 1);
        c.press(Qt::Key_Home);
        c.type("y"); // nothing is pushed out
        QCOMPARE(c.text(qPrintable(box)).front().toLower(), limited ? QChar(u'a') : QChar(u'y'));
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.press(Qt::Key_Delete);
        QCOMPARE(c.text(qPrintable(box)), QString());
        c.paste(qPrintable(letters(most + 10))); // a paste obeys the same limit
        QCOMPARE(c.text(qPrintable(box)).size(), limited ? most : most + 10);
        QVERIFY(c.quiet());
    }

    void cyrillicLettersCountAsOne()
    {
        Empty c;
        c.click("txtnname");
        c.type("абвгдеёжзийклмнопрст");
        QCOMPARE(c.text("txtnname"), QStringLiteral("Абвгдеёжзийклм"));
        c.click("txtqslvia");
        c.paste("абвгдеёжзийклмнопрст");
        c.press(Qt::Key_Tab);
        QCOMPARE(c.record("R1A", "nname,qslvia"), QStringLiteral("Абвгдеёжзийклм|АБВГДЕЁЖЗИЙКЛМ"));
    }

    void firstCharacterOfAPaste()
    {
        Empty c;
        c.click("txtnname");
        c.paste("иван\nпетрович");
        QCOMPARE(c.text("txtnname"), QStringLiteral("Иван петрович"));
        c.click("txtqth");
        c.paste("bonn am rhein");
        QCOMPARE(c.text("txtqth"), QStringLiteral("Bonn am rhein"));
        c.click("txtqslvia");
        c.paste("via dl1aa");
        QCOMPARE(c.text("txtqslvia"), QStringLiteral("VIA DL1AA"));
    }

    void capitalOnlyInAnEmptyBox()
    {
        Empty c;
        c.click("txtnname");
        c.type("ann");
        c.press(Qt::Key_Home);
        c.type("x");
        QCOMPARE(c.text("txtnname"), QStringLiteral("xAnn")); // it was not empty
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.type("bob"); // nothing stays beside the selection
        QCOMPARE(c.text("txtnname"), QStringLiteral("Bob"));
    }

    void composedText()
    {
        Empty c;
        c.click("txtqslvia");
        QInputMethodEvent composed;
        composed.setCommitString(QStringLiteral("r1abcdefghijklmnop"));
        QCoreApplication::sendEvent(c.find("txtqslvia"), &composed);
        QCOMPARE(c.text("txtqslvia"), QStringLiteral("R1ABCDEFGHIJKL"));
    }

    // ---- full boxes

    void fullBoxRefuses_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<int>("most");
        QTest::newRow("name") << "txtnname" << 14;
        QTest::newRow("town") << "txtqth" << 25;
        QTest::newRow("address") << "txtadres" << 50;
        QTest::newRow("route") << "txtqslvia" << 14;
        QTest::newRow("route of the log") << "txtlogqslvia" << 14;
    }
    void fullBoxRefuses()
    {
        QFETCH(QString, box);
        QFETCH(int, most);
        const QByteArray name = box.toLatin1();
        Empty c;
        c.enter(name, "");
        c.w.type(letters(most));
        const QString full = c.text(name);
        QCOMPARE(full.size(), most);
        struct Refused {
            Qt::Key key;
            const char *text;
            Qt::KeyboardModifiers modifiers;
        };
        const QList<Refused> refused = {{Qt::Key_Backspace, "\b", Qt::NoModifier},
                                        {Qt::Key_Backspace, "", Qt::NoModifier},
                                        {Qt::Key_Backspace, "\b", Qt::ShiftModifier},
                                        {Qt::Key_Backspace, "\x7f", Qt::ControlModifier},
                                        {Qt::Key_X, "\x18", Qt::ControlModifier},
                                        {Qt::Key_X, "", Qt::ControlModifier},
                                        {Qt::Key_Z, "\x1a", Qt::ControlModifier},
                                        {Qt::Key_Z, "", Qt::ControlModifier},
                                        {Qt::Key_U, "\x15", Qt::ControlModifier},
                                        {Qt::Key_K, "\x0b", Qt::ControlModifier},
                                        {Qt::Key_Q, "q", Qt::NoModifier},
                                        {Qt::Key_Space, " ", Qt::NoModifier}};
        for (const Refused &key : refused) {
            sendKey(QTest::Click, key.key, QString::fromLatin1(key.text), key.modifiers);
            QCOMPARE(c.text(name), full);
        }
        QApplication::clipboard()->setText(QStringLiteral("untouched"));
        for (const Refused &key : refused) { // with a selection too, but for characters
            c.press(Qt::Key_Home);
            c.press(Qt::Key_End, Qt::ShiftModifier);
            QCOMPARE(c.find(qPrintable(box))->selectedText(), full);
            const bool character = *key.text >= ' ' && *key.text < 0x7f;
            if (character)
                continue;
            sendKey(QTest::Click, key.key, QString::fromLatin1(key.text), key.modifiers);
            QCOMPARE(c.text(name), full);
        }
        QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("untouched"));
    }

    void fullBoxTakes()
    {
        Empty c;
        c.click("txtnname");
        c.w.type(letters(14));
        const QString full = c.text("txtnname");
        // Moving, copying.
        c.press(Qt::Key_Home);
        QCOMPARE(c.find("txtnname")->cursorPosition(), 0);
        c.press(Qt::Key_Right);
        c.press(Qt::Key_Right, Qt::ShiftModifier);
        QCOMPARE(c.find("txtnname")->selectedText(), full.mid(1, 1));
        sendKey(QTest::Click, Qt::Key_C, QStringLiteral("\x03"), Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), full.mid(1, 1));
        QCOMPARE(c.text("txtnname"), full);
        // Overtyping what is selected.
        c.type("щ");
        QCOMPARE(c.text("txtnname"), QStringLiteral("Aщ") + full.mid(2));
        c.press(Qt::Key_Left, Qt::ShiftModifier);
        c.paste("XYZ");
        QCOMPARE(c.text("txtnname"), QStringLiteral("AX") + full.mid(2)); // one place was free
        // Delete, and then Backspace works again.
        c.press(Qt::Key_Home);
        sendKey(QTest::Click, Qt::Key_Delete, QStringLiteral("\x7f"));
        QCOMPARE(c.text("txtnname"), QStringLiteral("X") + full.mid(2));
        c.press(Qt::Key_End);
        sendKey(QTest::Click, Qt::Key_Backspace, QStringLiteral("\b"));
        QCOMPARE(c.text("txtnname").size(), 12);
        // Enter and Tab.
        c.type("zz");
        c.press(Qt::Key_Return);
        QCOMPARE(c.w.focus(), QStringLiteral("txtotch"));
        c.press(Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(c.w.focus(), QStringLiteral("txtnname"));
        sendKey(QTest::Click, Qt::Key_Tab, QStringLiteral("\t"));
        QCOMPARE(c.w.focus(), QStringLiteral("txtotch"));
        QCOMPARE(c.storedText(QStringLiteral("txtnname")).size(), 14);
        QVERIFY(c.quiet());
    }

    void escapeOfAFullBox()
    {
        Empty c;
        c.click("txtnname");
        c.w.type(letters(14));
        sendKey(QTest::Click, Qt::Key_Escape, QStringLiteral("\x1b"));
        QVERIFY(!c.window->isVisible());
        QCOMPARE(c.storedText(QStringLiteral("txtnname")).size(), 14);
    }

    void lastPlace()
    {
        Empty c;
        c.click("txtnname");
        c.w.type(letters(13));
        sendKey(QTest::Click, Qt::Key_Backspace, QStringLiteral("\b")); // not yet full
        QCOMPARE(c.text("txtnname").size(), 12);
        c.type("xyz");
        QCOMPARE(c.text("txtnname").size(), 14);
        QCOMPARE(c.text("txtnname").right(2), QStringLiteral("xy"));
    }

    void storedTextLongerThanTheBoxTakes()
    {
        const QString longer = letters(80);
        Callbook c([&longer](Installation &in) {
            callbookTables(in);
            addRecord(in, qPrintable(QStringLiteral("ccall=R1A|adres=%1|nname=%1").arg(longer)));
        });
        c.lookUp("r1a");
        QCOMPARE(c.text("txtadres"), longer); // shown whole, and not cut
        c.click("txtadres");
        c.press(Qt::Key_End);
        c.type("z");
        sendKey(QTest::Click, Qt::Key_Backspace, QStringLiteral("\b"));
        QCOMPARE(c.text("txtadres"), longer);
        c.press(Qt::Key_Home);
        sendKey(QTest::Click, Qt::Key_Delete, QStringLiteral("\x7f"));
        c.press(Qt::Key_Tab);
        QCOMPARE(c.record("R1A", "adres,nname"), longer.mid(1) + QLatin1Char('|') + longer);
    }

    // ---- without a record

    void boxesTakeNothingWithoutARecord()
    {
        Callbook c;
        c.type("on4a");
        for (const char *box : {"txtccall", "txtfam", "txtnname", "txtotch", "txtindeks", "txtobl", "txtqth",
                                "txtadres", "txttelefon", "txtqslvia"}) {
            c.lookUp("on4a");
            QCOMPARE(c.status(), QString());
            c.click(box);
            c.type("x");
            QCOMPARE(c.text(box), QString());
            QVERIFY2(c.status().contains(QStringLiteral("Записи об этой станции нет")),
                     qPrintable(c.status()));
            c.paste("y");
            QCOMPARE(c.text(box), QString());
        }
        QCOMPARE(c.records().size(), 2);
        QVERIFY(c.quiet());
    }

    void boxesOpenAndCloseWithTheRecord()
    {
        Callbook c;
        QVERIFY(c.find("txtfam")->isReadOnly()); // no station yet
        c.type("ua3abc");
        QVERIFY(!c.find("txtfam")->isReadOnly());
        c.lookUp("u");
        QVERIFY(c.find("txtfam")->isReadOnly());
        c.clickRow("DBList1", "UA3ABC");
        QVERIFY(!c.find("txtfam")->isReadOnly());
    }

    // ---- when an edit is stored

    void editIsStored_data()
    {
        QTest::addColumn<QString>("way");
        for (const char *way : {"tab", "enter", "click", "button", "search", "list", "close", "escape", "add",
                                "main window", "end"})
            QTest::newRow(way) << way;
    }
    void editIsStored()
    {
        QFETCH(QString, way);
        Callbook c;
        c.type("ua3abc");
        c.enter("txtfam", "O'Нил <b> \"x\"");
        QCOMPARE(c.record("UA3ABC", "fam"), QStringLiteral("Петров")); // not yet
        if (way == QLatin1String("tab"))
            c.press(Qt::Key_Tab);
        else if (way == QLatin1String("enter"))
            c.press(Qt::Key_Return);
        else if (way == QLatin1String("click"))
            c.click("txtadres");
        else if (way == QLatin1String("button"))
            c.click("Command1");
        else if (way == QLatin1String("search"))
            c.lookUp("g3xyz");
        else if (way == QLatin1String("list"))
            c.clickRow("DBList1", "UA3ABC");
        else if (way == QLatin1String("close"))
            c.window->close();
        else if (way == QLatin1String("escape"))
            c.press(Qt::Key_Escape);
        else if (way == QLatin1String("main window"))
            Desktop::toFront(*c.w.log);
        else if (way == QLatin1String("add"))
            c.click("cmbadd");
        else
            c.window.reset();
        QCOMPARE(c.record("UA3ABC"),
                 QStringLiteral("UA3ABC|O'Нил <b> \"x\"|Олег|Иванович|101000|Московская|Москва|ул. Мира, 1|"
                                "1-23|RW3XX"));
        QCOMPARE(c.record("G3XYZ"), QStringLiteral("G3XYZ||John|||||||"));
        QVERIFY(c.quiet());
    }

    void everyBoxIsStored()
    {
        Empty c;
        const QList<std::pair<const char *, const char *>> typed = {
            {"txtfam", "Иванов"}, {"txtnname", "иван"},  {"txtotch", "Ильич"},  {"txtindeks", "190000"},
            {"txtobl", "Лен."},   {"txtqth", "гатчина"}, {"txtadres", "а/я 5"}, {"txttelefon", "+7 (1)"},
            {"txtqslvia", "r1b"}, {"txtccall", "R1A/P"}};
        for (const auto &[box, text] : typed)
            c.enter(box, text);
        c.click("txtserch");
        QCOMPARE(c.records().constLast(),
                 QStringLiteral("R1A/P|Иванов|Иван|Ильич|190000|Лен.|Гатчина|а/я 5|+7 (1)|R1B"));
        QCOMPARE(c.text("txtccall"), QStringLiteral("R1A/P"));
        QCOMPARE(c.records().size(), 3);
    }

    void fieldIsEmptied()
    {
        Callbook c;
        c.type("ua3abc");
        c.click("txtadres");
        c.press(Qt::Key_A, Qt::ControlModifier);
        c.press(Qt::Key_Delete);
        c.press(Qt::Key_Tab);
        QCOMPARE(c.record("UA3ABC", "adres,length(adres)"), QStringLiteral("|0"));
    }

    void logFrameIsNotStored()
    {
        Callbook c;
        c.type("ua3abc");
        c.enter("txtlogname", "XX");
        c.enter("txtlogqth", "YY");
        c.enter("txtlogqslvia", "ZZ");
        c.window->close();
        QCOMPARE(c.record("UA3ABC"), QString::fromUtf8(kFullRecord));
        QCOMPARE(c.w.installation.rows(QStringLiteral("dbiaru.mdb"),
                                       QStringLiteral("SELECT nname,qth,qslvia FROM TBLLOG1 "
                                                      "WHERE ccall='UA3ABC'")),
                 QStringList(QStringLiteral("ОЛЕГ|МОСКВА|R3X")));
    }
};

QTEST_MAIN(CallbookBoxesTest)
#include "callbookboxes.moc"
