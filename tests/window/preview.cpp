// The preview of a report, as the operator uses it, and the PDF that comes out of it.
#include "report/document.h"
#include "report/shipped.h"
#include "report/ui/pagepainter.h"
#include "report/ui/pageview.h"
#include "report/ui/pdffile.h"
#include "report/ui/previewreports.h"
#include "support/window.h"

#include <QApplication>
#include <QBuffer>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPdfWriter>
#include <QProcess>
#include <QPushButton>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSet>
#include <QSpinBox>
#include <QWheelEvent>
#include <QWindow>

#include <csignal>
#include <sys/resource.h>

using namespace report;
using testsupport::Installation;

namespace {

/// A printer that keeps what it prints.
class RecordedPrinting final : public Printing {
public:
    bool there = true;
    bool chosen = true;
    int first = 1;
    int last = 0; ///< 0: all
    int aborted = 0;
    QList<PrintWish> wishes;
    QBuffer paper;

    [[nodiscard]] bool available() const override { return there; }
    [[nodiscard]] std::unique_ptr<PrintTarget> choose(QWidget *parent, const PrintWish &wish) override
    {
        wishes.append(wish);
        if (!chosen || parent == nullptr)
            return nullptr;
        paper.close();
        paper.setData({});
        if (!paper.open(QIODevice::WriteOnly))
            return nullptr;
        return std::make_unique<Target>(*this, last > 0 ? last : wish.pages);
    }

private:
    class Target final : public PrintTarget {
    public:
        Target(RecordedPrinting &owner, int last) : m_owner(owner), m_last(last) {}
        [[nodiscard]] QPagedPaintDevice &device() override { return m_writer; }
        [[nodiscard]] int firstPage() const override { return m_owner.first; }
        [[nodiscard]] int lastPage() const override { return m_last; }
        void abort() override { ++m_owner.aborted; }

    private:
        RecordedPrinting &m_owner;
        int m_last;
        QPdfWriter m_writer{&m_owner.paper};
    };
};

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

/// Output of one of the programs that look into PDF files.
QString outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qFatal("%s: %s", qPrintable(program), process.readAllStandardError().constData());
    return QString::fromUtf8(process.readAllStandardOutput());
}

QString pdfText(const QString &path)
{
    return outputOf(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), path, QStringLiteral("-")});
}

int pdfPages(const QString &path)
{
    const QStringList lines = outputOf(QStringLiteral("pdfinfo"), {path}).split(u'\n');
    for (const QString &line : lines)
        if (line.startsWith(QLatin1String("Pages:")))
            return line.mid(6).trimmed().toInt();
    return -1;
}

constexpr auto kList =
    "<svg xmlns='http://www.w3.org/2000/svg' width='100mm' height='60mm' viewBox='0 0 100 60' "
    "data-table='tblprint'><title>Проба</title><text x='5' y='8' font-size='4'>Лист {page} из "
    "{pages}</text><g id='detail' data-height='5' data-rows='8'><path d='M5 16h90' "
    "stroke='#000' stroke-width='0.2'/><text x='5' y='15' font-size='3'>{row} {ccall} {QTH}</text></g></svg>";

/// Reports in the preview, on a fresh installation.
struct Desk {
    Installation installation;
    testsupport::FakeMessages messages;
    testsupport::FakeProgress progress;
    testsupport::FakeDialogs dialogs;
    RecordedPrinting *printing = new RecordedPrinting; ///< the reports own it
    std::unique_ptr<PreviewReports> reports = std::make_unique<PreviewReports>(
        Services{installation.databases, messages, progress, dialogs}, std::unique_ptr<Printing>(printing));

    void rows(int count) const
    {
        installation.sql(
            QStringLiteral("dbprint.mdb"),
            QStringLiteral(
                "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1) INSERT INTO "
                "tblprint(ccall,ddate,ttime,bband,ps1,rsts,rstr,NNAME,QTH,CONTR) SELECT "
                "'R'||i||'A','05.03.26','10:00','14','CW','599','589','Иван','Тамбов','RUSSIA' FROM n")
                .arg(count));
    }
    void blank(int stations) const
    {
        installation.sql(
            QStringLiteral("dbiaru.mdb"),
            QStringLiteral(
                "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1) INSERT INTO "
                "tbllogTEMP(ccall,ddate,ttime,bband,rsts,mult) SELECT 'R'||i||'A','05.03.26','10:00','14',"
                "'599','CW' FROM n")
                .arg(stations));
    }
    [[nodiscard]] QString write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(installation.file(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("%s", qPrintable(name));
        return file.fileName();
    }
    /// Runs a layout and gives its window.
    QWidget *show(const QByteArray &layout, const QString &name = QStringLiteral("a.rpt"))
    {
        const qsizetype before = reports->windows().size();
        reports->print(write(name, layout));
        const QList<QWidget *> windows = reports->windows();
        if (windows.size() != before + 1)
            qFatal("%s", qPrintable(messages.errors.join(u'\n')));
        windows.last()->activateWindow();
        if (!QTest::qWaitForWindowActive(windows.last()))
            qFatal("the window does not get active");
        return windows.last();
    }
    QWidget *showShipped(const QString &name) { return show(shippedLayout(name), name); }
};

template <typename Widget>
Widget *find(const QWidget *window, const char *name)
{
    auto *widget = window->findChild<Widget *>(QLatin1String(name));
    if (widget == nullptr)
        qFatal("no %s", name);
    return widget;
}

PageView *view(const QWidget *window)
{
    return find<PageView>(window, "Stranica");
}

void press(QWidget *window, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(window->windowHandle(), key, modifiers);
}

void click(const QWidget *window, const char *name)
{
    QTest::mouseClick(find<QPushButton>(window, name), Qt::LeftButton);
}

/// A page as a picture of 8 pixels a millimetre, with a rim of 80 pixels around it.
constexpr int kRim = 80;
QImage picture(const Document &document, qint64 page = 1)
{
    constexpr int kScale = 8;
    const PagePainter pages(document);
    const QSize size = (pages.pageSize() * kScale).toSize();
    QImage image(size + QSize(2 * kRim, 2 * kRim), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.translate(kRim, kRim);
    painter.scale(kScale, kScale);
    pages.paint(painter, page);
    return image;
}

/// What is not white of a picture.
QRect inked(const QImage &image)
{
    QRect area;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y) != QColor(Qt::white))
                area |= QRect(x, y, 1, 1);
    return area;
}

} // namespace

class PreviewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { (void)std::signal(SIGXFSZ, SIG_IGN); }

    // ---- the window

    void opensOnTheFirstPage()
    {
        Desk desk;
        desk.rows(20);
        const QWidget *window = desk.show(kList);
        QCOMPARE(window->objectName(), QStringLiteral("frmPreview"));
        QCOMPARE(window->windowTitle(), QStringLiteral("Просмотр печати: Проба"));
        QCOMPARE(find<QSpinBox>(window, "txtstr")->value(), 1);
        QCOMPARE(find<QLabel>(window, "lblstr")->text(), QStringLiteral("из 3"));
        QCOMPARE(find<QPushButton>(window, "cmbpecat")->text(), QStringLiteral("Печать"));
        QCOMPARE(find<QPushButton>(window, "cmbpdf")->text(), QStringLiteral("PDF"));
        QCOMPARE(find<QPushButton>(window, "cmbzakr")->text(), QStringLiteral("Закрыть"));
        QCOMPARE(find<QComboBox>(window, "cbmasst")->currentText(), QStringLiteral("Вся страница"));
        QCOMPARE(window->findChild<QSpinBox *>(QStringLiteral("txtmesto")), nullptr);
        QCOMPARE(QApplication::focusWidget(), view(window));
        QVERIFY(window->size().width() <= 1366 && window->size().height() <= 768);
        QVERIFY(desk.messages.errors.isEmpty());
    }

    void everyControlSaysWhatItIs()
    {
        Desk desk;
        desk.blank(1);
        const QWidget *window = desk.showShipped(QStringLiteral("qsl.rpt"));
        const auto widgets = window->findChildren<QWidget *>();
        int named = 0;
        for (const QWidget *widget : widgets) {
            if (widget->focusPolicy() == Qt::NoFocus || widget->objectName().isEmpty() ||
                widget->objectName().startsWith(QLatin1String("qt_")))
                continue;
            ++named;
            QVERIFY2(!widget->accessibleName().isEmpty(), qPrintable(widget->objectName()));
            QVERIFY2(!widget->toolTip().isEmpty(), qPrintable(widget->objectName()));
        }
        QCOMPARE(named, 13);
    }

    void pagesByKeyAndButton()
    {
        Desk desk;
        desk.rows(40);
        QWidget *window = desk.show(kList);
        const auto page = [&] { return find<QSpinBox>(window, "txtstr")->value(); };
        QVERIFY(!find<QPushButton>(window, "cmbpred")->isEnabled());
        press(window, Qt::Key_PageDown);
        QCOMPARE(page(), 2);
        press(window, Qt::Key_End);
        QCOMPARE(page(), 5);
        QVERIFY(!find<QPushButton>(window, "cmbsled")->isEnabled());
        press(window, Qt::Key_PageDown);
        QCOMPARE(page(), 5);
        press(window, Qt::Key_PageUp);
        QCOMPARE(page(), 4);
        press(window, Qt::Key_Home);
        QCOMPARE(page(), 1);
        click(window, "cmbsled");
        QCOMPARE(page(), 2);
        click(window, "cmbposl");
        QCOMPARE(page(), 5);
        click(window, "cmbpred");
        QCOMPARE(page(), 4);
        click(window, "cmbperv");
        QCOMPARE(page(), 1);
        find<QSpinBox>(window, "txtstr")->setValue(3);
        QCOMPARE(view(window)->page(), 3);
    }

    void pageNumberIsTyped()
    {
        Desk desk;
        desk.rows(100);
        QWidget *window = desk.show(kList);
        auto *box = find<QSpinBox>(window, "txtstr");
        box->setFocus();
        box->selectAll();
        QTest::keyClicks(box, QStringLiteral("11"));
        QCOMPARE(view(window)->page(), 1);
        QTest::keyClick(box, Qt::Key_Return);
        QCOMPARE(view(window)->page(), 11);
    }

    void zoom()
    {
        Desk desk;
        desk.rows(3);
        QWidget *window = desk.show(kList);
        auto *box = find<QComboBox>(window, "cbmasst");
        const auto choose = [&](const QString &text) {
            box->setCurrentIndex(box->findText(text));
            Q_EMIT box->activated(box->currentIndex());
        };
        choose(QStringLiteral("400 %"));
        QCOMPARE(view(window)->zoom(), 400.0);
        press(window, Qt::Key_Plus, Qt::ControlModifier);
        QCOMPARE(view(window)->zoom(), 400.0);
        press(window, Qt::Key_Minus, Qt::ControlModifier);
        QCOMPARE(view(window)->zoom(), 300.0);
        for (int i = 0; i < 20; ++i)
            press(window, Qt::Key_Minus, Qt::ControlModifier);
        QCOMPARE(view(window)->zoom(), 50.0);
        press(window, Qt::Key_Minus, Qt::ControlModifier);
        QCOMPARE(view(window)->zoom(), 50.0);
        press(window, Qt::Key_Plus, Qt::ControlModifier);
        QCOMPARE(view(window)->zoom(), 67.0);
        QCOMPARE(box->currentText(), QStringLiteral("67 %"));
        choose(QStringLiteral("По ширине"));
        const double pixels = view(window)->zoom() / 100 * 96 / 25.4 * 100;
        QVERIFY(qAbs(pixels + 24 - view(window)->viewport()->width()) < 2);
        choose(QStringLiteral("Вся страница"));
        QVERIFY(view(window)->zoom() / 100 * 96 / 25.4 * 60 < view(window)->viewport()->height());
        QCOMPARE(box->currentText(), QStringLiteral("Вся страница"));
    }

    void paperIsWhiteAndWrittenOn()
    {
        Desk desk;
        desk.rows(8);
        QWidget *window = desk.show(kList);
        const QPalette before = window->palette();
        QPalette dark;
        dark.setColor(QPalette::Window, QColor(40, 40, 40));
        dark.setColor(QPalette::WindowText, Qt::white);
        dark.setColor(QPalette::Base, Qt::black);
        dark.setColor(QPalette::Text, Qt::white);
        for (const QPalette &palette : {before, dark}) {
            window->setPalette(palette);
            const QImage image = view(window)->viewport()->grab().toImage();
            int white = 0;
            int black = 0;
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x) {
                    white += image.pixelColor(x, y) == QColor(Qt::white) ? 1 : 0;
                    black +=
                        image.pixelColor(x, y).lightness() < 60 && image.pixelColor(x, y).lightness() < 35
                            ? 1
                            : 0;
                }
            QVERIFY(white > image.width() * image.height() / 3);
            QVERIFY(black > 500);
        }
    }

    void escCloses()
    {
        Desk desk;
        QWidget *window = desk.show(kList);
        const QPointer<QWidget> gone(window);
        press(window, Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!gone);
        QVERIFY(desk.reports->windows().isEmpty());
    }

    void everyReportHasItsWindow()
    {
        Desk desk;
        desk.rows(2);
        const QPointer<QWidget> first(desk.show(kList));
        desk.installation.sql(QStringLiteral("dbprint.mdb"), QStringLiteral("DELETE FROM tblprint"));
        desk.rows(30);
        const QPointer<QWidget> second(desk.show(kList));
        QCOMPARE(find<QLabel>(first, "lblstr")->text(), QStringLiteral("из 1"));
        QCOMPARE(find<QLabel>(second, "lblstr")->text(), QStringLiteral("из 4"));
        click(second, "cmbzakr");
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(first && !second);
        desk.reports.reset();
        QVERIFY(!first);
    }

    void startedSheet()
    {
        Desk desk;
        desk.blank(24);
        QWidget *window = desk.showShipped(QStringLiteral("qsl1.rpt"));
        auto *place = find<QSpinBox>(window, "txtmesto");
        QCOMPARE(place->maximum(), 24);
        QCOMPARE(find<QLabel>(window, "lblstr")->text(), QStringLiteral("из 1"));
        QVERIFY(!find<QPushButton>(window, "cmbsled")->isEnabled());
        place->setValue(2);
        QCOMPARE(find<QLabel>(window, "lblstr")->text(), QStringLiteral("из 2"));
        QVERIFY(find<QPushButton>(window, "cmbsled")->isEnabled());
        press(window, Qt::Key_End);
        place->setValue(1);
        QCOMPARE(view(window)->page(), 1);
        QCOMPARE(find<QSpinBox>(window, "txtstr")->maximum(), 1);
    }

    // ---- what cannot be shown

    void damagedLayoutIsOneMessage()
    {
        Desk desk;
        desk.reports->print(
            desk.write(QStringLiteral("a.rpt"), QByteArray(kList).replace("{ccall}", "\n{nosuch}")));
        QCOMPARE(
            desk.messages.errors,
            QStringList({QStringLiteral("Файл a.rpt не прочитан: строка 2: неизвестное поле {nosuch}.")}));
        QVERIFY(desk.reports->windows().isEmpty());
        QVERIFY(desk.messages.told.isEmpty());
    }

    void missingLayout()
    {
        Desk desk;
        desk.reports->print(desk.installation.file(QStringLiteral("qsl.rpt")));
        QCOMPARE(desk.messages.errors, QStringList({QStringLiteral("Файл qsl.rpt не найден.")}));
        QVERIFY(desk.reports->windows().isEmpty());
    }

    void missingLayoutOfAReadOnlyFolder()
    {
        Desk desk;
        store::Library readOnly({desk.installation.folder(), true}, desk.installation.userFolder());
        PreviewReports reports({readOnly, desk.messages, desk.progress, desk.dialogs});
        reports.print(desk.installation.file(QStringLiteral("qsl.rpt")));
        QCOMPARE(reports.windows().size(), 1);
        reports.print(desk.installation.file(QStringLiteral("own.rpt")));
        QCOMPARE(desk.messages.errors, QStringList({QStringLiteral("Файл own.rpt не найден.")}));
    }

    void letterCaseOfTheFile()
    {
        Desk desk;
        (void)desk.write(QStringLiteral("VURNAL.RPT"), kList);
        desk.reports->print(desk.installation.file(QStringLiteral("vurnal.rpt")));
        QCOMPARE(desk.reports->windows().size(), 1);
    }

    void readingStopped()
    {
        Desk desk;
        desk.rows(10);
        desk.progress.stopNow = true;
        desk.reports->print(desk.write(QStringLiteral("a.rpt"), kList));
        QVERIFY(desk.reports->windows().isEmpty());
        QVERIFY(desk.messages.errors.isEmpty());
        QVERIFY(desk.progress.stoppable);
        QCOMPARE(desk.progress.steps.last(), QStringLiteral("end"));
    }

    void artworkThatIsDamaged()
    {
        Desk desk;
        QRandomGenerator random(7);
        int shown = 0;
        for (int round = 0; round < 300; ++round) {
            QByteArray bytes =
                shippedLayout(round % 2 == 0 ? QStringLiteral("qsl.rpt") : QStringLiteral("vurnal.rpt"));
            for (int change = random.bounded(1, 4); change > 0; --change)
                bytes[random.bounded(int(bytes.size()))] = "0123456789-.e M\"<%"[random.bounded(18)];
            try {
                const auto document =
                    Document::read(readLayout(bytes, QStringLiteral("a.rpt")), desk.installation.databases);
                const PagePainter pages(*document);
                QImage image(200, 200, QImage::Format_RGB32);
                QPainter painter(&image);
                QElapsedTimer timer;
                timer.start();
                pages.paint(painter, 1);
                QVERIFY2(timer.elapsed() < 5000, bytes.constData());
                ++shown;
            } catch (const store::Error &error) {
                QVERIFY(error.kind() == store::ErrorKind::Unreadable);
            }
        }
        QVERIFY(shown > 50);
    }

    // ---- PDF

    void pdfHasTheTexts()
    {
        Desk desk;
        desk.rows(45);
        desk.installation.sql(QStringLiteral("dbcontest.mdb"),
                              QStringLiteral("UPDATE tbltit SET ccall='RA3XYZ'"));
        desk.installation.sql(
            QStringLiteral("dbprint.mdb"),
            QStringLiteral("UPDATE tblprint SET QTH='Петропавловск-Камчатский, Елизовский район, посёлок "
                           "Термальный', NNAME='Ёлка' WHERE rowid=3"));
        QWidget *window = desk.showShipped(QStringLiteral("vurnal.rpt"));
        const QString path = desk.installation.file(QStringLiteral("журнал.pdf"));
        desk.dialogs.chosen = path;
        press(window, Qt::Key_S, Qt::ControlModifier);
        QVERIFY2(desk.messages.errors.isEmpty(), qPrintable(desk.messages.errors.join(u'\n')));
        QCOMPARE(desk.dialogs.opened,
                 QStringList({QStringLiteral("save: Сохранить в PDF|%1|PDF (*.pdf *.PDF)")
                                  .arg(desk.installation.file(QStringLiteral("vurnal.pdf")))}));
        QCOMPARE(pdfPages(path), 2);
        const QString text = pdfText(path);
        for (const char *expected :
             {"RA3XYZ", "Журнал связей", "R1A", "R45A", "Тамбов", "Ёлка", "посёлок Термальный",
              "Страница 2 из 2", "разных позывных 45", "05.03.2026 – 05.03.2026"})
            QVERIFY2(text.contains(QString::fromUtf8(expected)), expected);
        QVERIFY(outputOf(QStringLiteral("pdffonts"), {path}).contains(QLatin1String("DejaVuSans")));
        QCOMPARE(outputOf(QStringLiteral("pdfimages"), {QStringLiteral("-list"), path}).count(u'\n'),
                 2); // none
        QVERIFY(outputOf(QStringLiteral("pdfinfo"), {path}).contains(QLatin1String("A4")));
        QVERIFY(find<QLabel>(window, "lblitog")->text().contains(path));
        QCOMPARE(desk.progress.steps.last(), QStringLiteral("end"));
        QVERIFY(desk.progress.steps.contains(QStringLiteral("Страниц: 1 of 2")));
    }

    void cardsInThePdf()
    {
        Desk desk;
        desk.blank(5);
        desk.installation.sql(
            QStringLiteral("dbiaru.mdb"),
            QStringLiteral("INSERT INTO tbllogTEMP(ccall,ddate,ttime,bband,rsts,mult,CONTR) VALUES"
                           "('EA8/DL1ABC/P','06.03.26','11:11','432','599','CW','DL9XYZ')"));
        desk.installation.sql(QStringLiteral("dbhelp.mdb"),
                              QStringLiteral("UPDATE tbltitul SET contest='Иван Петров'"));
        QWidget *window = desk.showShipped(QStringLiteral("qsl.rpt"));
        desk.dialogs.chosen = desk.installation.file(QStringLiteral("cards"));
        click(window, "cmbpdf");
        const QString path = desk.installation.file(QStringLiteral("cards.pdf")); // the ending is added
        QCOMPARE(pdfPages(path), 2);
        const QString text = pdfText(path);
        for (const char *expected :
             {"EA8/DL1ABC/P", "via DL9XYZ", "06 Mar 2026", "Иван Петров", "R5A", "PSE QSL"})
            QVERIFY2(text.contains(QString::fromUtf8(expected)), expected);
        QCOMPARE(text.count(QStringLiteral("via ")), 1);
    }

    void pdfKeepsWhatStoodThereUntilItIsComplete()
    {
        Desk desk;
        desk.rows(2000);
        QWidget *window = desk.show(kList);
        desk.dialogs.chosen = desk.installation.file(QStringLiteral("a.pdf"));
        (void)desk.write(QStringLiteral("a.pdf"), "old");
        // Stopped.
        desk.progress.stopNow = true;
        click(window, "cmbpdf");
        QCOMPARE(content(desk.dialogs.chosen), QByteArray("old"));
        QCOMPARE(find<QLabel>(window, "lblitog")->text(), QStringLiteral("Остановлено, файл не записан."));
        desk.progress.stopNow = false;
        // A full disk.
        rlimit normal{};
        QCOMPARE(::getrlimit(RLIMIT_FSIZE, &normal), 0);
        for (const rlim_t limit : {rlim_t{0}, rlim_t{20000}}) {
            rlimit small = normal;
            small.rlim_cur = limit;
            QCOMPARE(::setrlimit(RLIMIT_FSIZE, &small), 0);
            click(window, "cmbpdf");
            QCOMPARE(::setrlimit(RLIMIT_FSIZE, &normal), 0);
            QCOMPARE(desk.messages.errors.size(), 1);
            QVERIFY2(desk.messages.errors.takeFirst().contains(QStringLiteral("не записан")), "");
            QCOMPARE(content(desk.dialogs.chosen), QByteArray("old"));
        }
        // A database, a folder that is not there.
        const QByteArray log = content(desk.installation.file(QStringLiteral("dbiaru.mdb")));
        for (const QString &path : {desk.installation.file(QStringLiteral("dbiaru.mdb")),
                                    desk.installation.file(QStringLiteral("none/a.pdf"))}) {
            desk.dialogs.chosen = path;
            click(window, "cmbpdf");
            QCOMPARE(desk.messages.errors.size(), 1);
            QVERIFY(desk.messages.errors.takeFirst().contains(QStringLiteral("не записан")));
        }
        QCOMPARE(content(desk.installation.file(QStringLiteral("dbiaru.mdb"))), log);
        QVERIFY(QDir(desk.installation.folder()).entryList({QStringLiteral("*.zhurnal-part")}).isEmpty());
        // And then it works.
        desk.dialogs.chosen = desk.installation.file(QStringLiteral("a.pdf"));
        click(window, "cmbpdf");
        QCOMPARE(pdfPages(desk.dialogs.chosen), 250);
        QVERIFY(desk.messages.errors.isEmpty());
    }

    void staysOpenWhileItWrites()
    {
        Desk desk;
        desk.rows(20);
        const QPointer<QWidget> window(desk.show(kList));
        desk.dialogs.chosen = desk.installation.file(QStringLiteral("a.pdf"));
        int asked = 0;
        desk.progress.atStep = [&] {
            ++asked;
            QVERIFY(!window->close());
        };
        click(window, "cmbpdf");
        QCOMPARE(asked, 3);
        QVERIFY(window && window->isVisible());
        QCOMPARE(pdfPages(desk.dialogs.chosen), 3);
        QVERIFY(window->close());
    }

    void wheel()
    {
        Desk desk;
        desk.rows(20);
        QWidget *window = desk.show(kList);
        const auto turn = [&](int angle, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
            const QPointF place = view(window)->viewport()->rect().center();
            QWheelEvent event(place, view(window)->viewport()->mapToGlobal(place), {}, {0, angle},
                              Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
            QApplication::sendEvent(view(window)->viewport(), &event);
        };
        turn(-120); // the whole page is in sight
        QCOMPARE(view(window)->page(), 2);
        turn(120);
        turn(120);
        QCOMPARE(view(window)->page(), 1);
        turn(120, Qt::ControlModifier);
        QCOMPARE(view(window)->fit(), PageView::Fit::None);
        view(window)->setZoom(400);
        QScrollBar *bar = view(window)->verticalScrollBar();
        QVERIFY(bar->maximum() > 0);
        turn(-120);
        QVERIFY(bar->value() > 0);
        QCOMPARE(view(window)->page(), 1);
        for (int i = 0; i < 40 && view(window)->page() == 1; ++i)
            turn(-120);
        QCOMPARE(view(window)->page(), 2);
        QCOMPARE(bar->value(), 0);
        turn(120);
        QCOMPARE(view(window)->page(), 1);
        QCOMPARE(bar->value(), bar->maximum());
        press(window, Qt::Key_Up);
        QVERIFY(bar->value() < bar->maximum());
    }

    void placesShowOnTheScreenOnly()
    {
        Desk desk;
        QWidget *window = desk.showShipped(QStringLiteral("qsl1.rpt"));
        const QImage shown = view(window)->viewport()->grab().toImage();
        int grey = 0;
        for (int x = 0; x < shown.width(); ++x)
            for (int y = 0; y < shown.height(); ++y)
                grey += shown.pixelColor(x, y) == QColor(Qt::lightGray) ? 1 : 0;
        QVERIFY(grey > 500);
        const auto document =
            Document::read(readLayout(shippedLayout(QStringLiteral("qsl1.rpt")), QStringLiteral("a.rpt")),
                           desk.installation.databases);
        QVERIFY(inked(picture(*document)).isNull());
    }

    void noFileChosen()
    {
        Desk desk;
        QWidget *window = desk.show(kList);
        const QStringList before = QDir(desk.installation.folder()).entryList();
        click(window, "cmbpdf");
        QCOMPARE(QDir(desk.installation.folder()).entryList(), before);
        QVERIFY(find<QLabel>(window, "lblitog")->isHidden());
    }

    void tenThousandContacts()
    {
        Desk desk;
        desk.rows(10000);
        const auto document =
            Document::read(readLayout(shippedLayout(QStringLiteral("vurnal.rpt")), QStringLiteral("a.rpt")),
                           desk.installation.databases);
        const QString path = desk.installation.file(QStringLiteral("a.pdf"));
        qint64 steps = 0;
        QVERIFY(writePdf(*document, path, [&](qint64 done, qint64) { return done == steps++; }));
        QCOMPARE(steps, document->pages());
        QCOMPARE(pdfPages(path), int(document->pages()));
        const QStringList words = pdfText(path).split(QRegularExpression(QStringLiteral("\\s+")));
        const QSet<QString> known(words.begin(), words.end());
        int found = 0;
        for (int i = 1; i <= 10000; ++i)
            found += known.contains(QStringLiteral("R%1A").arg(i)) ? 1 : 0;
        QCOMPARE(found, 10000);
    }

    // ---- texts in their places

    void longValuesAreFitted_data()
    {
        QTest::addColumn<QString>("value");
        QTest::newRow("long") << QStringLiteral(
            "Петропавловск-Камчатский, Елизовский район, посёлок Термальный");
        QTest::newRow("very long") << QString(400, u'Ш');
        QTest::newRow("other script")
            << QStringLiteral("東京都千代田区丸の内一丁目九番一号 дом שלום").repeated(3);
        QTest::newRow("combining") << QStringLiteral("e\u0301a\u0308о\u0306").repeated(40);
    }
    void longValuesAreFitted()
    {
        QFETCH(QString, value);
        Desk desk;
        desk.installation.sql(QStringLiteral("dbprint.mdb"),
                              QStringLiteral("INSERT INTO tblprint(ccall,QTH) VALUES('A','%1')").arg(value));
        const auto fitted = [&](const QByteArray &attributes) {
            const QByteArray layout =
                "<svg width='100mm' height='40mm' viewBox='0 0 100 40' data-table='tblprint'><g "
                "id='detail' data-height='5' data-rows='2'><text y='15' font-size='5' " +
                attributes + ">{QTH}</text></g></svg>";
            const auto document =
                Document::read(readLayout(layout, QStringLiteral("a.rpt")), desk.installation.databases);
            return inked(picture(*document)).translated(-kRim, -kRim);
        };
        constexpr int kTolerance = 4; // half a millimetre: letters may lean out of their width
        const QRect given = fitted("x='20' data-width='30'");
        QVERIFY(given.left() >= 160 - kTolerance && given.right() <= 400 + kTolerance);
        QVERIFY(given.width() > 200);
        const QRect end = fitted("x='90' data-width='30' text-anchor='end'");
        QVERIFY(end.left() >= 480 - kTolerance && end.right() <= 720 + kTolerance);
        const QRect paper = fitted("x='20'");
        QVERIFY(paper.right() <= 800 && paper.right() > 700);
        const QRect spaced = fitted("x='20' data-width='30' letter-spacing='1'");
        QVERIFY(spaced.left() >= 160 - kTolerance && spaced.right() <= 400 + kTolerance);
    }

    void nothingOutsideThePage()
    {
        Desk desk;
        desk.rows(3);
        const QByteArray layout =
            "<svg width='100mm' height='40mm' viewBox='0 0 100 40' data-table='tblprint'>"
            "<rect x='-50' y='-50' width='300' height='300' fill='#ff0000'/>"
            "<text x='95' y='39' font-size='30'>WWW</text>"
            "<g id='detail' data-height='5' data-rows='2'><text x='1' y='1' font-size='20'>{ccall}</text>"
            "</g></svg>";
        const auto document =
            Document::read(readLayout(layout, QStringLiteral("a.rpt")), desk.installation.databases);
        QCOMPARE(inked(picture(*document)), QRect(kRim, kRim, 800, 320));
    }

    void shortValuesKeepTheirShape()
    {
        Desk desk;
        desk.rows(1);
        const auto width = [&](const QByteArray &attributes) {
            const QByteArray layout =
                "<svg width='100mm' height='40mm' viewBox='0 0 100 40' data-table='tblprint'><g "
                "id='detail' data-height='5' data-rows='2'><text x='20' y='15' font-size='5' " +
                attributes + ">{ccall}</text></g></svg>";
            const auto document =
                Document::read(readLayout(layout, QStringLiteral("a.rpt")), desk.installation.databases);
            return inked(picture(*document)).size();
        };
        QCOMPARE(width("data-width='40'"), width(""));
        QVERIFY(width("data-width='8'").width() < width("").width());
        QVERIFY(qAbs(width("data-width='8'").height() - width("").height()) <= 2); // narrowed only
        QVERIFY(width("data-width='3'").height() < width("").height());            // made smaller
        QVERIFY(width("letter-spacing='2'").width() > width("").width() + 20);
    }

    // ---- printing

    void printsWhatWasChosen()
    {
        Desk desk;
        desk.rows(40);
        QWidget *window = desk.show(kList);
        press(window, Qt::Key_PageDown);
        desk.printing->first = 2;
        desk.printing->last = 4;
        press(window, Qt::Key_P, Qt::ControlModifier);
        QCOMPARE(desk.printing->wishes.size(), 1);
        QCOMPARE(desk.printing->wishes[0].title, QStringLiteral("Проба"));
        QCOMPARE(desk.printing->wishes[0].paper, QSizeF(100, 60));
        QCOMPARE(desk.printing->wishes[0].pages, 5);
        QCOMPARE(desk.printing->wishes[0].currentPage, 2);
        const QString path = desk.write(QStringLiteral("printed.pdf"), desk.printing->paper.data());
        QCOMPARE(pdfPages(path), 3);
        QVERIFY(pdfText(path).contains(QStringLiteral("Лист 2 из 5")));
        QVERIFY(!pdfText(path).contains(QStringLiteral("Лист 1 из 5")));
        QCOMPARE(find<QLabel>(window, "lblitog")->text(), QStringLiteral("Отправлено на печать страниц: 3."));
        QCOMPARE(desk.printing->aborted, 0);
    }

    void printingNotChosenOrStopped()
    {
        Desk desk;
        desk.rows(40);
        QWidget *window = desk.show(kList);
        desk.printing->chosen = false;
        click(window, "cmbpecat");
        QVERIFY(find<QLabel>(window, "lblitog")->isHidden());
        desk.printing->chosen = true;
        desk.progress.stopNow = true;
        click(window, "cmbpecat");
        QCOMPARE(desk.printing->aborted, 1);
        QCOMPARE(find<QLabel>(window, "lblitog")->text(), QStringLiteral("Печать остановлена."));
        QVERIFY(desk.messages.errors.isEmpty());
    }

    void noPrinter()
    {
        Desk desk;
        QWidget *window = desk.show(kList);
        desk.printing->there = false;
        click(window, "cmbpecat");
        QCOMPARE(desk.messages.told.size(), 1);
        QVERIFY(desk.messages.told[0].contains(QStringLiteral("В системе нет принтера")));
        QVERIFY(desk.printing->wishes.isEmpty());
    }
};

QTEST_MAIN(PreviewTest)
#include "preview.moc"
