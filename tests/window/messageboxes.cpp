// Boxes of messages and questions: their buttons, and what Enter and Esc do.
#include "ui/messageboxes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

/// What the box showed, and whether the key closed it.
struct Seen {
    QString title;
    QString text;
    QStringList buttons;
    QString defaultButton; ///< set by the program, whatever the platform's order of buttons is
    bool plain = false;
    bool closed = false;
};

/// Presses a key in the box that opens next.
class Answer {
public:
    explicit Answer(Qt::Key key)
    {
        QTimer::singleShot(0, &m_context, [this, key] { press(key); });
    }
    [[nodiscard]] const Seen &seen() const noexcept { return m_seen; }

private:
    void press(Qt::Key key)
    {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (box == nullptr || !QTest::qWaitForWindowActive(box)) {
            QTimer::singleShot(0, &m_context, [this, key] { press(key); });
            return;
        }
        m_seen.title = box->windowTitle();
        m_seen.text = box->text();
        m_seen.plain = box->textFormat() == Qt::PlainText;
        const auto buttons = box->buttons();
        for (const QAbstractButton *button : buttons)
            m_seen.buttons.append(button->text());
        m_seen.defaultButton = box->defaultButton() != nullptr ? box->defaultButton()->text() : QString();
        QTest::keyClick(box->windowHandle(), key);
        m_seen.closed = !box->isVisible();
        if (!m_seen.closed)
            box->reject();
    }

    QObject m_context;
    Seen m_seen;
};

} // namespace

class MessageBoxesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void questionsAreRefusedByEnterAndEsc()
    {
        ui::MessageBoxes messages;
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
            const Answer first(key);
            QVERIFY(!messages.askOk(QStringLiteral("Диплом <b>"), QStringLiteral("DELETE")));
            QVERIFY(first.seen().closed);
            const Answer second(key);
            QVERIFY(!messages.askYesNo(QStringLiteral("Закрыть?"), QStringLiteral("Zhurnal")));
            QVERIFY(second.seen().closed);
        }
    }
    void okAndCancel()
    {
        ui::MessageBoxes messages;
        const Answer answer(Qt::Key_Escape);
        QVERIFY(!messages.askOk(QStringLiteral("Диплом <b>"), QStringLiteral("DELETE")));
        QCOMPARE(answer.seen().title, QStringLiteral("DELETE"));
        QCOMPARE(answer.seen().text, QStringLiteral("Диплом <b>"));
        QVERIFY(answer.seen().plain);
        QCOMPARE(answer.seen().defaultButton, QStringLiteral("Отмена"));
        QStringList buttons = answer.seen().buttons;
        buttons.sort();
        QCOMPARE(buttons, QStringList({QStringLiteral("ОК"), QStringLiteral("Отмена")}));
    }
    void longTextsLeaveTheButtonsOnTheScreen()
    {
        ui::MessageBoxes messages;
        const Answer answer(Qt::Key_Escape);
        QVERIFY(!messages.askOk(QString(20000, u'W'), QStringLiteral("DELETE")));
        QCOMPARE(answer.seen().text, QString(1200, u'W') + QStringLiteral("…"));
    }
    void okIsReachedByTab()
    {
        ui::MessageBoxes messages;
        QTimer::singleShot(0, qApp, [] {
            QWidget *box = QApplication::activeModalWidget();
            QVERIFY(QTest::qWaitForWindowActive(box));
            QTest::keyClick(box->windowHandle(), Qt::Key_Tab);
            QTest::keyClick(box->windowHandle(), Qt::Key_Return);
        });
        QVERIFY(messages.askOk(QStringLiteral("Диплом"), QStringLiteral("DELETE")));
    }
    void enterClosesAFailure()
    {
        ui::MessageBoxes messages;
        const Answer answer(Qt::Key_Return);
        messages.error(store::Error(store::ErrorKind::BadText, QStringLiteral("dbiaru.mdb"),
                                    QStringLiteral("незакрытая кавычка")));
        QVERIFY2(answer.seen().closed, "the details were opened instead");
        QCOMPARE(answer.seen().defaultButton, QStringLiteral("ОК"));
        QVERIFY(answer.seen().buttons.contains(QStringLiteral("Подробности")));
    }
};

QTEST_MAIN(MessageBoxesTest)
#include "messageboxes.moc"
