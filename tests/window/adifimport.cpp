// The ADIF import window, as the operator uses it.
#include "interchange/ui/fdob.h"
#include "interchange/ui/frmexpo.h"
#include "support/window.h"

#include <QDir>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>

using interchange::frmExpo;
using testsupport::Installation;
using testsupport::Window;

namespace {

constexpr auto kLog = "dbiaru.mdb";
const QByteArray kHeader = "<adif_ver:4>1.0<eoh>\r\n";

class NoOldDatabases final : public interchange::OldDatabases {
public:
    [[nodiscard]] bool convertTo(const QString &, const QString &) override { return false; }
    [[nodiscard]] bool convertInPlace(const QString &) override { return false; }
};

QByteArray contact(const QByteArray &call)
{
    return "<call:" + QByteArray::number(call.size()) + ">" + call +
           " <rst_sent:3>599 <rst_rcvd:3>579 <mode:2>CW <band:3>20M <qso_date:8:d>20020305 "
           "<time_on:4>1407<eor>\r\n";
}

struct Import {
    Window w;
    NoOldDatabases old;
    frmExpo window{interchange::Services{w.installation.databases, w.messages, w.progress, w.dialogs, old}};

    Import()
    {
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window))
            qFatal("the window does not get active");
    }
    template <typename Widget = ui::FilterEdit>
    [[nodiscard]] Widget *find(const char *name) const
    {
        auto *widget = window.findChild<Widget *>(QLatin1String(name));
        if (widget == nullptr)
            qFatal("no %s", name);
        return widget;
    }
    void click(const char *name)
    {
        auto *button = find<QPushButton>(name);
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          button->mapTo(&window, button->rect().center()));
    }
    /// Imports a file of these bytes.
    void import(const QByteArray &bytes, const QString &name = QStringLiteral("in.adi"))
    {
        w.dialogs.chosen = w.installation.file(name);
        QFile file(w.dialogs.chosen);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("no file");
        file.close();
        click("cmbExpo");
    }
    [[nodiscard]] QString text(const char *name) const { return find(name)->text(); }
    [[nodiscard]] QString label(const char *name) const { return find<QLabel>(name)->text(); }
    [[nodiscard]] QString skipped() const { return find<QPlainTextEdit>("txtpropusk")->toPlainText(); }
    [[nodiscard]] QStringList log(const char *fields = "ccall") const
    {
        return w.installation.rows(
            QLatin1String(kLog),
            QStringLiteral("SELECT %1 FROM TBLLOG1 ORDER BY rowid").arg(QLatin1String(fields)));
    }
};

} // namespace

class AdifImportWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void captions()
    {
        Import i;
        QCOMPARE(i.window.windowTitle(), QStringLiteral("Импорт из Adif файлов"));
        QCOMPARE(i.find<QPushButton>("cmbExpo")->text(), QStringLiteral("Импорт"));
        QCOMPARE(i.find<QPushButton>("cmbpowtor")->text(), QStringLiteral("Убрать повторы"));
        QVERIFY(!i.find<QPushButton>("cmbpowtor")->isEnabled());
        QStringList labels;
        for (const QLabel *label : i.window.findChildren<QLabel *>())
            labels.append(label->text());
        QVERIFY(labels.contains(QStringLiteral("Записей")));
        QVERIFY(labels.contains(QStringLiteral("Добавлено")));
        for (int field = 0; field < 10; ++field)
            QVERIFY(!i.find(qPrintable(QStringLiteral("txtL_%1").arg(field)))->accessibleName().isEmpty());
        QVERIFY(i.w.action("mnuadex")->isEnabled());
    }

    void ownLayout()
    {
        Import i;
        QSignalSpy changed(&i.window, &frmExpo::logChanged);
        i.import(kHeader + contact("R1A") + contact("R1B"));
        QCOMPARE(
            i.log("ccall,ddate,ttime,bband,rsts,rstr,ps1,PRF,CONTR"),
            QStringList({"R1A|05.03.02|14:07|14|599|579|CW|adi|", "R1B|05.03.02|14:07|14|599|579|CW|adi|"}));
        QCOMPARE(i.text("txtput"), i.w.dialogs.chosen);
        QCOMPARE(i.text("txtkol"), QStringLiteral("3")); // the header counts
        QCOMPARE(i.text("txtdob"), QStringLiteral("2"));
        QVERIFY2(
            i.label("lblreader").contains(interchange::readerText(interchange::AdifReaderKind::OwnLines)),
            qPrintable(i.label("lblreader")));
        QCOMPARE(i.skipped(), QString());
        QCOMPARE(i.text("txtL_0"), QStringLiteral("R1B"));
        QCOMPARE(i.text("txtL_9"), QStringLiteral("adi"));
        QCOMPARE(changed.size(), 1);
        QVERIFY(i.w.messages.asked.isEmpty() && i.w.messages.told.isEmpty() && i.w.messages.errors.isEmpty());
        QCOMPARE(QDir(i.w.installation.userFolder()).entryList({"dbiaru.*.mdb"}).size(), 1);
    }

    void anotherLoggersFile()
    {
        Import i;
        i.import("Header\n<ADIF_VER:5>3.1.0\n<EOH>\n<CALL:6>DL1ABC\n<QSO_DATE:8>20020305\n<TIME_ON:6>140730\n"
                 "<BAND:3>20m\n<MODE:3>SSB\n<NAME:4>Hans\n<COUNTRY:7>Germany\n<EOR>\n<QSO_DATE:8>20020305\n<"
                 "EOR>\n");
        QCOMPARE(i.log("ccall,ddate,ttime,bband,ps1,NNAME,CONTR"),
                 QStringList("DL1ABC|05.03.02|14:07|14|SSB|Hans|GERMANY"));
        QCOMPARE(i.text("txtkol"), QStringLiteral("2"));
        QCOMPARE(i.text("txtdob"), QStringLiteral("1"));
        QVERIFY2(i.label("lblreader").contains(interchange::readerText(interchange::AdifReaderKind::Full)),
                 qPrintable(i.label("lblreader")));
        QVERIFY2(i.skipped().startsWith(QStringLiteral("Строка 12: ")), qPrintable(i.skipped()));
        QVERIFY2(i.label("lblitog").contains(QStringLiteral("Не взято записей: 1.")),
                 qPrintable(i.label("lblitog")));
    }

    void repeatsAreTakenOutAgain()
    {
        Import i;
        i.import(kHeader + contact("R1A") + contact("R1B"));
        i.import(kHeader + contact("R1A") + contact("R1C"));
        QCOMPARE(i.log(), QStringList({"R1A", "R1B", "R1A", "R1C"})); // no duplicate is refused
        QVERIFY2(i.label("lblitog").contains(QStringLiteral("уже были (позывной, дата, диапазон): 1.")),
                 qPrintable(i.label("lblitog")));
        QVERIFY(i.find<QPushButton>("cmbpowtor")->isEnabled());
        i.click("cmbpowtor");
        QCOMPARE(i.log(), QStringList({"R1A", "R1B", "R1C"}));
        QCOMPARE(i.label("lblitog"), QStringLiteral("Убрано повторов: 1."));
        QVERIFY(!i.find<QPushButton>("cmbpowtor")->isEnabled());
        QVERIFY(i.w.messages.asked.isEmpty());
    }

    void cancelledDialogDoesNothing()
    {
        Import i;
        i.import(kHeader + contact("R1A"));
        i.w.dialogs.chosen.clear();
        i.click("cmbExpo");
        QCOMPARE(i.log().size(), 1);
        QCOMPARE(i.text("txtdob"), QStringLiteral("1"));
    }

    void filesThatAreNone()
    {
        Import i;
        i.import(QByteArray());
        QCOMPARE(i.text("txtdob"), QStringLiteral("0"));
        i.import("START-OF-LOG: 2.0\nQSO: 14000 CW\n");
        QCOMPARE(i.log().size(), 0);
        QVERIFY2(i.label("lblitog").startsWith(QStringLiteral("В файле нет записей ADIF")),
                 qPrintable(i.label("lblitog")));
        i.w.dialogs.chosen = i.w.installation.file(QStringLiteral("gone.adi"));
        i.click("cmbExpo");
        QCOMPARE(i.w.messages.errors.size(), 1);
        QCOMPARE(i.log().size(), 0);
    }

    void whatTheExportWritesComesBack()
    {
        Import i;
        QByteArray file = kHeader;
        for (int n = 0; n < 600; ++n)
            file += contact("R" + QByteArray::number(n) + "A");
        i.import(file);
        QCOMPARE(i.log().size(), 600);
        QCOMPARE(i.text("txtkol"), QStringLiteral("601"));
    }

    void stopKeepsWhatIsIn()
    {
        Import i;
        QByteArray file = kHeader;
        for (int n = 0; n < 60'000; ++n)
            file += contact("R" + QByteArray::number(n) + "A");
        int steps = 0;
        i.w.progress.atStep = [&] { i.w.progress.stopNow = ++steps > 8; };
        i.import(file);
        QVERIFY(i.w.progress.stoppable);
        const auto rows = i.log().size();
        QVERIFY2(rows < 60'000, qPrintable(QString::number(rows)));
        QCOMPARE(i.text("txtdob"), QString::number(rows));
        QVERIFY2(i.label("lblitog").startsWith(QStringLiteral("Остановлено")),
                 qPrintable(i.label("lblitog")));
    }

    /// A log that cannot be read ends neither window: an old one that was not converted, junk, none at all.
    void windowsOverALogThatIsNone_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("old") << QByteArray("\0\1\0\0Standard Jet DB\0\0\0\0\0\0\0\0\0\0\0\0\0", 32);
        QTest::newRow("junk") << QByteArray("what is this?");
        QTest::newRow("damaged") << QByteArray("SQLite format 3\0", 16) + QByteArray(8000, 'x');
        QTest::newRow("missing") << QByteArray();
    }
    void windowsOverALogThatIsNone()
    {
        QFETCH(QByteArray, bytes);
        Window w([&](Installation &in) {
            QFile log(in.file(QLatin1String(kLog)));
            QVERIFY(log.remove());
            if (!bytes.isEmpty())
                QVERIFY(log.open(QIODevice::WriteOnly) && log.write(bytes) == bytes.size());
        });
        NoOldDatabases old;
        const interchange::Services services{w.installation.databases, w.messages, w.progress, w.dialogs,
                                             old};
        frmExpo import(services);
        interchange::Fdob revision(services);
        import.show();
        revision.show();
        w.messages.errors.clear();
        revision.cmbAdif_Click();
        QCOMPARE(w.messages.errors.size(), 1);
        revision.Command5_Click();
        QCOMPARE(w.messages.errors.size(), 2);
        QFile file(w.installation.file(QStringLiteral("in.adi")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(kHeader + contact("R1A")) > 0);
        file.close();
        w.dialogs.chosen = file.fileName();
        import.cmbExpo_Click();
        QVERIFY(w.messages.errors.size() >= 3);
    }

    void failureIsTold()
    {
        Import i;
        i.w.installation.sql(
            QLatin1String(kLog),
            QStringLiteral("CREATE TRIGGER no BEFORE INSERT ON TBLLOG1 WHEN new.ccall='R1B' BEGIN "
                           "SELECT RAISE(ABORT,'нельзя'); END"));
        i.import(kHeader + contact("R1A") + contact("R1B") + contact("R1C"));
        QCOMPARE(i.w.messages.errors.size(), 1);
        QCOMPARE(i.log().size(), 0); // the whole chunk
        QCOMPARE(i.text("txtdob"), QStringLiteral("0"));
        QVERIFY2(i.skipped().contains(QStringLiteral("не записано в журнал")), qPrintable(i.skipped()));
    }
};

QTEST_MAIN(AdifImportWindowTest)
#include "adifimport.moc"
