// The help window, as the operator uses it.
#include "qsl/ui/frmhelplog.h"
#include "support/window.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>

#include <sqlite3.h>

using testsupport::Installation;

namespace {

const QString kFile = QStringLiteral("dbhelp.mdb");
const QString kDesign = QStringLiteral("F5 - Ввести название города\nF4 - Ввод QSO");

/// The window, and another one of the program to go to.
struct Help {
    explicit Help(const std::function<void(Installation &)> &prepare = {})
    {
        if (prepare)
            prepare(in);
        other.setObjectName(QStringLiteral("other"));
        other.show();
        make();
    }

    void make()
    {
        window = std::make_unique<qsl::frmhelplog>(
            qsl::Services{in.databases, clock, messages, progress, reports});
    }

    static void activate(QWidget &widget)
    {
        widget.show();
        widget.raise();
        widget.activateWindow();
        if (!QTest::qWaitForWindowActive(&widget))
            qFatal("the window does not get active");
    }
    void come() const { activate(*window); }
    void leave() { activate(other); }

    [[nodiscard]] QPlainTextEdit *field() const
    {
        return window->findChild<QPlainTextEdit *>(QStringLiteral("txthelp"));
    }
    [[nodiscard]] QString text() const { return field()->toPlainText(); }
    [[nodiscard]] QString line() const
    {
        return window->findChild<QLabel *>(QStringLiteral("lblstatus"))->text();
    }
    [[nodiscard]] QPushButton *button() const
    {
        return window->findChild<QPushButton *>(QStringLiteral("Command1"));
    }
    void type(const QString &typed) const
    {
        field()->setFocus();
        for (const QChar c : typed)
            QTest::sendKeyEvent(QTest::Click, window->windowHandle(), Qt::Key(c.toUpper().unicode()),
                                QString(c), Qt::NoModifier);
    }
    void press(Qt::Key key) const { QTest::keyClick(window->windowHandle(), key); }

    void store(const QString &text) const
    {
        in.sql(kFile, QStringLiteral("UPDATE tblhelp SET TXTHELP='%1' WHERE contest='heLp'").arg(text));
    }
    [[nodiscard]] QString stored() const
    {
        return in.rows(kFile, QStringLiteral("SELECT TXTHELP FROM tblhelp WHERE contest='heLp'"))
            .join(QLatin1Char('#'));
    }

    Installation in;
    testsupport::FixedClock clock;
    testsupport::FakeMessages messages;
    testsupport::FakeProgress progress;
    testsupport::FakeReports reports;
    QWidget other;
    std::unique_ptr<qsl::frmhelplog> window;
};

void shortText(Installation &in)
{
    in.sql(kFile, QStringLiteral("UPDATE tblhelp SET TXTHELP='first'||char(10)||'second'"));
}

/// Another program that is writing into a file.
class Writer {
public:
    explicit Writer(const QString &path)
    {
        if (sqlite3_open(QFile::encodeName(path).constData(), &m_db) != SQLITE_OK ||
            sqlite3_exec(m_db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr) != SQLITE_OK)
            qFatal("%s", sqlite3_errmsg(m_db));
    }
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;
    ~Writer() { sqlite3_close(m_db); }

private:
    sqlite3 *m_db = nullptr;
};

} // namespace

class HelpWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void captions()
    {
        Help help;
        QCOMPARE(help.window->objectName(), QStringLiteral("frmhelplog"));
        QCOMPARE(help.window->windowTitle(), QStringLiteral("Подсказки"));
        QCOMPARE(help.button()->text(), QStringLiteral("Выход"));
        QVERIFY(!help.field()->accessibleName().isEmpty());
    }

    void designTextUntilTheSourceDelivers()
    {
        Help help(shortText);
        QCOMPARE(help.text(), kDesign);
        help.come();
        QCOMPARE(help.text(), QStringLiteral("first\nsecond"));
        QCOMPARE(help.line(), QString());
    }

    void designTextIsNeverStored()
    {
        Help help(shortText);
        help.window->close();
        help.window.reset();
        QCOMPARE(help.stored(), QStringLiteral("first\nsecond"));
    }

    void readAtEveryActivation()
    {
        Help help(shortText);
        help.come();
        help.leave();
        help.store(QStringLiteral("third"));
        QCOMPARE(help.text(), QStringLiteral("first\nsecond"));
        help.come();
        QCOMPARE(help.text(), QStringLiteral("third"));
        help.leave();
        help.store(QStringLiteral("fourth"));
        help.come();
        QCOMPARE(help.text(), QStringLiteral("fourth"));
    }

    void keyIsFoundInAnyLetterCase()
    {
        Help help([](Installation &in) {
            in.sql(kFile, QStringLiteral("UPDATE tblhelp SET contest='HELP',TXTHELP='capitals'"));
        });
        help.come();
        QCOMPARE(help.text(), QStringLiteral("capitals"));
    }

    void withoutARowTheTextIsEmpty()
    {
        Help help([](Installation &in) {
            in.sql(kFile, QStringLiteral("UPDATE tblhelp SET contest='other',TXTHELP='not this'"));
        });
        help.come();
        QCOMPARE(help.text(), QString());
        QCOMPARE(help.line(), QString());
        help.type(QStringLiteral("lost"));
        QCOMPARE(help.text(), QString()); // nothing is taken that no row could keep
        help.leave();
        help.in.sql(kFile, QStringLiteral("UPDATE tblhelp SET contest='heLp'"));
        help.come();
        QCOMPARE(help.text(), QStringLiteral("not this"));
        help.type(QStringLiteral("X"));
        help.leave();
        QCOMPARE(help.stored(), QStringLiteral("Xnot this"));
    }

    void rowThatGoesAway()
    {
        Help help(shortText);
        help.come();
        help.leave();
        help.in.sql(kFile, QStringLiteral("DELETE FROM tblhelp"));
        help.come();
        QCOMPARE(help.text(), QString());
        QVERIFY(help.field()->isReadOnly());
    }

    void shippedTextFitsTheWindow()
    {
        Help help;
        help.come();
        const QStringList lines = help.text().split(QLatin1Char('\n'));
        QVERIFY2(lines.size() >= 40 && lines.size() <= 72, qPrintable(QString::number(lines.size())));
        for (const QString &line : lines)
            QVERIFY2(line.size() <= 90, qPrintable(line));
        QVERIFY(help.text().contains(QStringLiteral("F4")));
        QVERIFY(!help.field()->horizontalScrollBar()->isVisible());
        QCOMPARE(qRound(help.field()->document()->size().height()), lines.size()); // no line is wrapped
        QCOMPARE(help.field()->verticalScrollBar()->value(), 0);
    }

    // ---- edits

    void editIsSavedWhenTheWindowIsLeft()
    {
        Help help(shortText);
        help.come();
        help.type(QStringLiteral("my "));
        QCOMPARE(help.stored(), QStringLiteral("first\nsecond"));
        help.leave();
        QCOMPARE(help.stored(), QStringLiteral("my first\nsecond"));
        help.come();
        QCOMPARE(help.text(), QStringLiteral("my first\nsecond"));
        QCOMPARE(help.field()->textCursor().position(), 3); // the same text: the place in it stays
    }

    void editIsSavedAtClosing_data()
    {
        QTest::addColumn<int>("how");
        QTest::newRow("Esc") << 0;
        QTest::newRow("button") << 1;
        QTest::newRow("close") << 2;
        QTest::newRow("end of the program") << 3;
    }
    void editIsSavedAtClosing()
    {
        QFETCH(int, how);
        Help help(shortText);
        help.come();
        help.type(QStringLiteral("my "));
        switch (how) {
        case 0:
            help.press(Qt::Key_Escape);
            break;
        case 1:
            help.button()->click();
            break;
        case 2:
            help.window->close();
            break;
        default:
            help.window.reset();
        }
        QCOMPARE(help.stored(), QStringLiteral("my first\nsecond"));
        QVERIFY(!help.window || !help.window->isVisible());
        QVERIFY(help.messages.asked.isEmpty());
    }

    void editIsSavedBeforeTheTextIsReadAnew()
    {
        Help help(shortText);
        help.come();
        help.type(QStringLiteral("my "));
        QEvent again(QEvent::WindowActivate);
        QCoreApplication::sendEvent(help.window.get(), &again);
        QCOMPARE(help.text(), QStringLiteral("my first\nsecond"));
        QCOMPARE(help.stored(), QStringLiteral("my first\nsecond"));
    }

    void lineEndsStayAsTheyWere()
    {
        Help help([](Installation &in) {
            in.sql(kFile, QStringLiteral("UPDATE tblhelp SET TXTHELP='a'||char(13)||char(10)||'b'"));
        });
        help.come();
        QCOMPARE(help.text(), QStringLiteral("a\nb"));
        help.type(QStringLiteral("Ж"));
        help.leave();
        QCOMPARE(help.stored(), QStringLiteral("Жa\r\nb"));
    }

    void quoteInTheText()
    {
        Help help(shortText);
        help.come();
        help.type(QStringLiteral("'\";--"));
        help.leave();
        QCOMPARE(help.stored(), QStringLiteral("'\";--first\nsecond"));
    }

    // ---- what stands in the way

    void missingFileIsALineOfTheWindow()
    {
        Help help([](Installation &in) { QVERIFY(QFile::remove(in.file(kFile))); });
        help.come();
        QCOMPARE(help.text(), kDesign); // nothing has been delivered
        QVERIFY2(help.line().startsWith(QStringLiteral("Файл dbhelp.mdb не найден.")),
                 qPrintable(help.line()));
        QVERIFY(help.field()->isReadOnly());
        QVERIFY(help.messages.errors.isEmpty() && help.messages.told.isEmpty());
        help.press(Qt::Key_Escape);
        QVERIFY(!help.window->isVisible());
        QVERIFY(help.messages.asked.isEmpty());
    }

    void busyFileKeepsTheEdit()
    {
        Help help(shortText);
        help.come();
        help.type(QStringLiteral("my "));
        {
            const Writer writer(help.in.file(kFile));
            help.leave();
            QVERIFY2(help.line().startsWith(QStringLiteral("Файл dbhelp.mdb занят другой программой.")),
                     qPrintable(help.line()));
            help.come();
            QCOMPARE(help.text(), QStringLiteral("my first\nsecond"));
            help.type(QStringLiteral("own "));
            QCOMPARE(help.text(), QStringLiteral("my own first\nsecond"));
            help.messages.yes = false;
            help.window->close();
            QVERIFY(help.window->isVisible()); // not wanted without the edit
            QCOMPARE(help.messages.asked.size(), 1);
            QVERIFY2(help.messages.asked.front().startsWith(
                         QStringLiteral("Подсказки: Правка подсказок не сохранена. Файл dbhelp.mdb занят")),
                     qPrintable(help.messages.asked.front()));
            QCOMPARE(help.text(), QStringLiteral("my own first\nsecond"));
        }
        QVERIFY(help.messages.errors.isEmpty());
        help.window->close(); // free again: no question
        QVERIFY(!help.window->isVisible());
        QCOMPARE(help.messages.asked.size(), 1);
        QCOMPARE(help.stored(), QStringLiteral("my own first\nsecond"));
    }

    void editGivenUp()
    {
        Help help(shortText);
        help.come();
        help.type(QStringLiteral("my "));
        {
            const Writer writer(help.in.file(kFile));
            help.messages.yes = true;
            help.press(Qt::Key_Escape);
            QVERIFY(!help.window->isVisible());
        }
        QCOMPARE(help.stored(), QStringLiteral("first\nsecond"));
        help.come();
        QCOMPARE(help.text(), QStringLiteral("first\nsecond"));
        QCOMPARE(help.line(), QString());
    }

    void rowDeletedByAnotherProgramMeanwhile()
    {
        Help help(shortText);
        help.come();
        help.type(QStringLiteral("my "));
        help.in.sql(kFile, QStringLiteral("DELETE FROM tblhelp"));
        help.leave();
        QCOMPARE(help.line(),
                 QStringLiteral("Строка файла dbhelp.mdb удалена или изменена в другом окне или другой "
                                "программой. Правка не сохранена: «my first\nsecond»."));
        help.come();
        QCOMPARE(help.text(), QStringLiteral("my first\nsecond")); // still there to be copied
        help.messages.yes = true;
        help.window->close();
        QCOMPARE(help.messages.asked.size(), 1);
        QVERIFY(!help.window->isVisible());
    }

    void fileThatIsOnlyReadTakesNoEdit()
    {
        Help help(shortText);
        store::Library files(store::DataFolder{help.in.folder(), true}, help.in.userFolder());
        qsl::frmhelplog window(qsl::Services{files, help.clock, help.messages, help.progress, help.reports});
        Help::activate(window);
        auto *field = window.findChild<QPlainTextEdit *>(QStringLiteral("txthelp"));
        QCOMPARE(field->toPlainText(), QStringLiteral("first\nsecond"));
        QVERIFY(field->isReadOnly());
    }

    // ---- closing and keys

    void shownAgainItStartsAsNew()
    {
        Help help([](Installation &in) {
            in.sql(kFile, QStringLiteral("WITH RECURSIVE n(i,t) AS (SELECT 1,'1' UNION ALL SELECT "
                                         "i+1,t||char(10)||(i+1) FROM n WHERE i<400) UPDATE tblhelp SET "
                                         "TXTHELP=(SELECT t FROM n WHERE i=400)"));
        });
        help.come();
        const QSize size = help.window->size();
        help.field()->verticalScrollBar()->setValue(200);
        help.field()->setFocus();
        help.window->resize(300, 200);
        help.button()->click();
        QVERIFY(!help.window->isVisible());
        QCOMPARE(help.window->windowTitle(), QStringLiteral("Подсказки"));
        help.store(QStringLiteral("new"));
        help.come();
        QCOMPARE(help.text(), QStringLiteral("new"));
        QCOMPARE(help.window->size(), size);
        QCOMPARE(help.field()->verticalScrollBar()->value(), 0);
        QCOMPARE(QApplication::focusWidget(), help.button());
    }

    void keys()
    {
        Help help([](Installation &in) {
            in.sql(kFile, QStringLiteral("WITH RECURSIVE n(i,t) AS (SELECT 1,'1' UNION ALL SELECT "
                                         "i+1,t||char(10)||(i+1) FROM n WHERE i<400) UPDATE tblhelp SET "
                                         "TXTHELP=(SELECT t FROM n WHERE i=400)"));
        });
        help.come();
        const QString text = help.text();
        QCOMPARE(QApplication::focusWidget(), help.button());
        const QScrollBar *bar = help.field()->verticalScrollBar();
        help.press(Qt::Key_PageDown);
        QVERIFY(bar->value() > 0);
        help.press(Qt::Key_PageUp);
        QCOMPARE(bar->value(), 0);
        help.press(Qt::Key_End);
        QCOMPARE(bar->value(), bar->maximum());
        help.press(Qt::Key_Home);
        QCOMPARE(bar->value(), 0);
        QTest::keyClick(help.window->windowHandle(), Qt::Key_Q);
        QCOMPARE(help.text(), text); // letters pressed by chance change nothing
        help.press(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), help.field());
        help.press(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), help.button());
        help.press(Qt::Key_Return);
        QVERIFY(!help.window->isVisible());
        help.come();
        help.field()->setFocus();
        help.press(Qt::Key_Escape);
        QVERIFY(!help.window->isVisible());
    }
};

QTEST_MAIN(HelpWindowTest)
#include "helpwindow.moc"
