// PDF files of reports, and how their pages are painted: texts in their places, nothing outside, damaged
// artwork.
#include "report/shipped.h"
#include "report/ui/pdffile.h"
#include "support/reportdesk.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>

#include <csignal>
#include <sys/resource.h>

using namespace report;
using namespace testsupport::reports;

namespace {

/// A blank of five stations without an address and four with: of the manager, own, too long, foreign.
void fillStickers(const Desk &desk)
{
    desk.installation.sql(
        QStringLiteral("dbcalbuk.mdb"),
        QStringLiteral(
            "INSERT INTO tblcalbuk(ccall,fam,nname,otch,indeks,obl,qth,adres) VALUES"
            "('RW3BB','Боков','Борис','Борисович','392000','Тамбовская обл.','Тамбов','ул. Мира, 1'),"
            "('R3AA','Аникин','','','101000','','Москва','а/я 88'),"
            "('RA9ZZZ/"
            "P','Константинопольский','Всеволод-Святослав','Апполинарьевич','632640','Ханты-Мансийский "
            "автономный округ - Югра','р.п. Красногвардейский-на-Волге','ул. Маршала Советского Союза "
            "Рокоссовского, д. 125, корп. 3, строение 2, кв. 456'),"
            "('DL9XYZ','Müller','Jürgen','','D-10115','Germany','Berlin','Invalidenstraße 117'),"
            "('R1A','Без адреса','','','','','Тверь','')"));
    desk.installation.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall='R1ABC'"));
    desk.blank(5);
    desk.installation.sql(
        QStringLiteral("dbiaru.mdb"),
        QStringLiteral("INSERT INTO tbllogTEMP(ccall,ddate,ttime,bband,rsts,mult,CONTR) VALUES"
                       "('R3BBB','06.03.26','11:11','432','599','CW','via RW3BB'),"
                       "('r3aa','06.03.26','11:12','432','599','CW',''),"
                       "('RA9ZZZ/P','06.03.26','11:13','432','599','CW','BURO'),"
                       "('EA8/DL1ABC/P','06.03.26','11:14','432','599','CW','DL9XYZ')"));
}

} // namespace

class ReportPdfTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { (void)std::signal(SIGXFSZ, SIG_IGN); }

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

    void addressesInThePdf()
    {
        Desk desk;
        fillStickers(desk);
        QWidget *window = desk.showShipped(QStringLiteral("qsl1.rpt"));
        desk.dialogs.chosen = desk.installation.file(QStringLiteral("stickers.pdf"));
        click(window, "cmbpdf");
        const QString path = desk.dialogs.chosen;
        QCOMPARE(pdfPages(path), 1);
        const QString text = pdfText(path);
        for (const char *expected :
             {"Константинопольский Всеволод-Святослав Апполинарьевич",
              "ул. Маршала Советского Союза Рокоссовского", "р.п. Красногвардейский-на-Волге", "ул. Мира, 1",
              "Тамбов, Тамбовская обл.", "392000", "via RW3BB", "Invalidenstraße 117", "05 Mar 2026", "R5A"})
            QVERIFY2(text.contains(QString::fromUtf8(expected)), expected);
        QCOMPARE(text.count(QStringLiteral("392000")), 1);
        QVERIFY(!text.contains(QStringLiteral("via via")));
        QCOMPARE(text.count(QStringLiteral("2-way")), 5); // only the stations without an address
    }

    /// Sheets are cut by hand and fed a little askew: a rim of five millimetres stays white.
    void stickersKeepTheirRim()
    {
        Desk desk;
        fillStickers(desk);
        const auto document =
            Document::read(readLayout(shippedLayout(QStringLiteral("qsl1.rpt")), QStringLiteral("a.rpt")),
                           desk.installation.databases);
        const QImage sheet = picture(*document);
        for (int place = 0; place < int(document->cards()); ++place) {
            const Area area = document->layout().sheet->place(place);
            const QRect sticker(kRim + qRound(area.left * 8), kRim + qRound(area.top * 8), 70 * 8, 37 * 8);
            const QRect ink = inked(sheet.copy(sticker));
            QVERIFY2(ink.height() > 15 * 8, qPrintable(QString::number(place)));
            QVERIFY2(ink.top() >= 35 && ink.bottom() <= 37 * 8 - 30, qPrintable(QString::number(place)));
            QVERIFY2(ink.left() >= 44 && ink.right() <= 64 * 8 + 4, qPrintable(QString::number(place)));
        }
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
        // A folder that is not there.
        desk.dialogs.chosen = desk.installation.file(QStringLiteral("none/a.pdf"));
        click(window, "cmbpdf");
        QCOMPARE(desk.messages.errors.size(), 1);
        QVERIFY(desk.messages.errors.takeFirst().contains(QStringLiteral("не записан")));
        // The name of a database or a layout gets an ending of its own: the file stays.
        for (const char *name : {"dbiaru.mdb", "vurnal.rpt"}) {
            const QString path = desk.installation.file(QLatin1String(name));
            (void)report::createMissingLayouts(desk.installation.databases);
            const QByteArray before = content(path);
            desk.dialogs.chosen = path;
            click(window, "cmbpdf");
            QCOMPARE(content(path), before);
            QCOMPARE(pdfPages(path + QStringLiteral(".pdf")), 250);
        }
        QVERIFY(QDir(desk.installation.folder()).entryList({QStringLiteral("*.zhurnal-part")}).isEmpty());
        // And then it works.
        desk.dialogs.chosen = desk.installation.file(QStringLiteral("a.pdf"));
        click(window, "cmbpdf");
        QCOMPARE(pdfPages(desk.dialogs.chosen), 250);
        QVERIFY(desk.messages.errors.isEmpty());
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
};

QTEST_MAIN(ReportPdfTest)
#include "reportpdf.moc"
