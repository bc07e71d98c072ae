// Entry fields: what is pasted obeys the filter, whatever way it comes in.
#include "ui/filteredit.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>
#include <QTimer>

namespace {

/// At most five characters, no Cyrillic, upper case.
void setUp(ui::FilterEdit &edit)
{
    edit.setFilter([](QChar typed, qsizetype length, const QKeyEvent *) {
        return length < 5 && typed.unicode() < 0x80 ? typed.toUpper() : QChar();
    });
    edit.show();
    edit.activateWindow();
    edit.setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&edit));
}

/// Opens the field's menu with the mouse and presses the item that pastes.
bool pasteByMenu(ui::FilterEdit &edit)
{
    bool done = false;
    QTimer::singleShot(0, &edit, [&done] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (menu == nullptr)
            return;
        const QList<QAction *> actions = menu->actions();
        for (QAction *action : actions)
            if (action->text().endsWith(
                    QKeySequence(QKeySequence::Paste).toString(QKeySequence::NativeText))) {
                QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier,
                                  menu->actionGeometry(action).center());
                done = true;
            }
        if (!done)
            menu->close();
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, edit.rect().center(),
                            edit.mapToGlobal(edit.rect().center()));
    QApplication::sendEvent(&edit, &event);
    return done;
}

} // namespace

class FilterEditTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pasted_data()
    {
        QTest::addColumn<QString>("copied");
        QTest::addColumn<QString>("entered");
        QTest::newRow("plain") << "abc"
                               << "ABC";
        QTest::newRow("too long") << "abcdefgh"
                                  << "ABCDE";
        QTest::newRow("letters that do not enter") << QStringLiteral("aжb") << "AB";
        QTest::newRow("two lines") << "ab\ncd"
                                   << "AB CD";
        QTest::newRow("lines of another system") << "ab\r\ncd"
                                                 << "AB CD";
        QTest::newRow("cells") << "a\tb"
                               << "A B";
        QTest::newRow("a line with its end") << "ab\r\n"
                                             << "AB";
        QTest::newRow("empty lines around") << "\n\nab\n"
                                            << "AB";
        QTest::newRow("blanks that are meant") << " b"
                                               << " B";
        QTest::newRow("nothing") << "\n"
                                 << "";
    }

    void pasted()
    {
        QFETCH(const QString, copied);
        QFETCH(const QString, entered);
        ui::FilterEdit edit;
        setUp(edit);
        QApplication::clipboard()->setText(copied);
        QTest::keyClick(&edit, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(edit.text(), entered);
        edit.clear();
        QVERIFY(pasteByMenu(edit));
        QCOMPARE(edit.text(), entered);
    }

    /// A change without a key is reported.
    void menuReports()
    {
        ui::FilterEdit edit;
        setUp(edit);
        QList<int> keys;
        connect(&edit, &ui::FilterEdit::keyReleased, this, [&keys](int key) { keys.append(key); });
        QApplication::clipboard()->setText(QStringLiteral("ab"));
        QVERIFY(pasteByMenu(edit));
        QCOMPARE(keys, QList<int>{0});
    }
};

QTEST_MAIN(FilterEditTest)
#include "filteredit.moc"
