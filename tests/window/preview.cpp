// The preview of a report, as the operator uses it.
#include "support/reportdesk.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QScopeGuard>
#include <QScreen>
#include <QScrollBar>
#include <QSet>
#include <QSpinBox>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

using namespace report;
using namespace testsupport::reports;

namespace {

/// Controls of the bar that Tab reaches.
QList<QWidget *> controls(const QWidget *window)
{
    QList<QWidget *> result;
    const auto widgets = window->findChildren<QWidget *>();
    for (QWidget *widget : widgets)
        if ((widget->focusPolicy() & Qt::TabFocus) != 0 && widget != view(window) &&
            !widget->objectName().isEmpty() && !widget->objectName().startsWith(QLatin1String("qt_")))
            result.append(widget);
    return result;
}

/// How far from the top of the window the middle of a control's line is.
int lineOf(const QWidget *control)
{
    const QWidget *group = control->parentWidget();
    return group->mapTo(group->window(), group->rect().center()).y();
}

/// Lines of the bar.
QSet<int> placesOfLines(const QWidget *window)
{
    QSet<int> places;
    const QList<QWidget *> all = controls(window);
    for (const QWidget *control : all)
        places.insert(lineOf(control));
    return places;
}

/// Names of the controls from left to right, line by line.
QStringList readingOrder(const QWidget *window)
{
    QList<QWidget *> all = controls(window);
    std::sort(all.begin(), all.end(), [window](const QWidget *a, const QWidget *b) {
        return std::pair(lineOf(a), a->mapTo(window, QPoint()).x()) <
               std::pair(lineOf(b), b->mapTo(window, QPoint()).x());
    });
    QStringList names;
    for (const QWidget *control : std::as_const(all))
        names.append(control->objectName());
    return names;
}

/// Names of the controls as Tab goes from the page.
QStringList tabOrder(const QWidget *window)
{
    const QList<QWidget *> all = controls(window);
    QStringList names;
    QWidget *const page = view(window);
    for (QWidget *next = page->nextInFocusChain(); next != page; next = next->nextInFocusChain())
        if (all.contains(next))
            names.append(next->objectName());
    return names;
}

} // namespace

class PreviewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
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

    // ---- the bar

    /// All of it is on the screen, whatever the letters, in one line where there is room.
    void barFitsTheScreen()
    {
        const QFont before = QApplication::font();
        const auto restored = qScopeGuard([&before] { QApplication::setFont(before); });
        for (const char *name : {"vurnal.rpt", "qsl1.rpt"}) {
            QList<qsizetype> lines;
            for (const int pixels : {6, 9, 12, 16, 20}) {
                QFont font = before;
                font.setPixelSize(pixels);
                QApplication::setFont(font);
                Desk desk;
                desk.rows(5000); // pages of three digits
                desk.blank(30);
                const QWidget *window = desk.showShipped(QLatin1String(name));
                const int needed = window->minimumSizeHint().width();
                QVERIFY2(needed <= window->screen()->availableSize().width(),
                         qPrintable(QStringLiteral("%1 at %2").arg(needed).arg(pixels)));
                QCOMPARE(tabOrder(window), readingOrder(window));
                lines.append(placesOfLines(window).size());
            }
            QVERIFY(std::is_sorted(lines.begin(), lines.end()));
            QCOMPARE(lines.first(), 1);
            QCOMPARE(lines.last(), 2);
        }
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
