// The shipped award application: its title page, its list, and that nothing of either is lost.
#include "report/shipped.h"
#include "report/ui/pdffile.h"
#include "support/reportdesk.h"

#include <QLabel>
#include <QMap>
#include <QRegularExpression>
#include <QSpinBox>

using namespace report;
using namespace testsupport::reports;

namespace {

/// An award's blank, and the application made of it.
struct Application {
    Desk desk;

    void heading(const QString &assignments) const
    {
        desk.installation.sql(QStringLiteral("dbhelp.mdb"),
                              QStringLiteral("UPDATE tbltitul SET ") + assignments);
    }
    void contacts(int count) const
    {
        desk.installation.sql(
            QStringLiteral("dbiaru.mdb"),
            QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1) "
                           "INSERT INTO tbllogTEMP(ccall,ddate,ttime,bband,rsts,rstr,CONTR,ps) SELECT "
                           "'R'||(1000+i)||'A','05.03.26','10:00','14','599','589','JAPAN','note'||i "
                           "FROM n WHERE %1>0")
                .arg(count));
    }
    [[nodiscard]] std::unique_ptr<Document> document()
    {
        const QString name = QStringLiteral("diplom.rpt");
        return Document::read(readLayout(shippedLayout(name), name), desk.installation.databases);
    }
    /// What a PDF of it says, page by page.
    [[nodiscard]] QStringList pages()
    {
        const auto filled = document();
        const QString path = desk.installation.file(QStringLiteral("diplom.pdf"));
        if (!writePdf(*filled, path, [](qint64, qint64) { return true; }))
            qFatal("no PDF");
        QStringList result = pdfText(path).split(u'\f');
        result.removeLast(); // after the last page's end
        return result;
    }
};

/// Texts of a page in lines as they stand on it, by their place from the top in millimetres.
QMap<int, QStringList> linesOf(const Document &document, qint64 page)
{
    QMap<int, QStringList> result;
    const PageContent content = document.page(page);
    for (const PlacedLine &line : content.lines)
        result[qRound(line.toPage.f)].append(line.texts.join(QString()));
    return result;
}

constexpr auto kWhole = "award='Worked All Oblasts',DDATE='05.03.19',wybor='112',ccall='RA3XYZ',nname='Ivan "
                        "Petrov',ADRESSTR1='ul. Mira 1',adresgor='392000 Tambov',adresstran='Russia',"
                        "bband='14 MHz'";

/// The title page where the fields of the bits in `filled` have something, the others nothing.
void checkFilled(Application &application, int filled)
{
    const QStringList fields = {QStringLiteral("nname"),    QStringLiteral("ADRESSTR1"),
                                QStringLiteral("adresgor"), QStringLiteral("adresstran"),
                                QStringLiteral("bband"),    QStringLiteral("DDATE"),
                                QStringLiteral("wybor")};
    const auto has = [filled](int field) { return (filled >> field) % 2 == 1; };
    QStringList assignments;
    for (int field = 0; field < fields.size(); ++field)
        assignments.append(QStringLiteral("%1='%2'").arg(
            fields[field], has(field) ? QStringLiteral("v%1").arg(field) : QString()));
    application.heading(assignments.join(u','));
    QStringList address;
    for (const int field : {0, 1})
        if (has(field))
            address.append(QStringLiteral("v%1").arg(field));
    if (has(2) || has(3))
        address.append(has(2) && has(3) ? QStringLiteral("v2, v3")
                       : has(2)         ? QStringLiteral("v2")
                                        : QStringLiteral("v3"));
    const QStringList labels = {QStringLiteral("Band"), QStringLiteral("Date of basic award"),
                                QStringLiteral("QSL cards enclosed")};
    QList<QStringList> facts;
    for (const int field : {4, 5, 6})
        if (has(field))
            facts.append(QStringList{labels[field - 4], QStringLiteral("v%1").arg(field)});
    const auto lines = linesOf(*application.document(), 1);
    const QList<int> addressPlaces = {112, 119, 125};
    const QList<int> factPlaces = {159, 165, 171};
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(lines.value(addressPlaces[i]), i < address.size() ? QStringList(address[i]) : QStringList());
        QCOMPARE(lines.value(factPlaces[i]), i < facts.size() ? facts[i] : QStringList());
    }
}

} // namespace

class ReportAwardTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void titlePageAndList()
    {
        Application application;
        application.heading(QLatin1String(kWhole));
        application.contacts(3);
        application.desk.installation.sql(
            QStringLiteral("dbiaru.mdb"),
            QStringLiteral("INSERT INTO tbllogTEMP(ccall,ddate,CONTR) VALUES('VK9/RA9WWW/MM1','17.11.98',"
                           "'ANTIGUA & BARBUDA'),('r1001a','01.01.26','japan'),(NULL,NULL,NULL)"));
        const QStringList pages = application.pages();
        QCOMPARE(pages.size(), 2);
        for (const char *expected :
             {"Worked All Oblasts", "RA3XYZ", "Ivan Petrov", "ul. Mira 1", "392000 Tambov, Russia", "14 MHz",
              "Date of basic award", "05 Mar 2019", "QSL cards enclosed", "112", "17 Nov 1998", "05 Mar 2026",
              "Signature of the applicant", "Page 1 of 2"})
            QVERIFY2(pages[0].contains(QLatin1String(expected)), expected);
        for (const char *unexpected : {"Remarks", "R1001A"})
            QVERIFY2(!pages[0].contains(QLatin1String(unexpected)), unexpected);
        const auto numbers = linesOf(*application.document(), 1).value(146);
        QCOMPARE(numbers, QStringList({QStringLiteral("5"), QStringLiteral("4"), QStringLiteral("2")}));
        for (const char *expected : {"Worked All Oblasts", "RA3XYZ", "RST", "Remarks", "VK9/RA9WWW/MM1",
                                     "ANTIGUA & BARBUDA", "R1003A", "note3", "589", "Page 2 of 2"})
            QVERIFY2(pages[1].contains(QLatin1String(expected)), expected);
        QVERIFY(!pages[1].contains(QLatin1String("Signature")));
    }

    void nothingIsLost_data()
    {
        QTest::addColumn<int>("contacts");
        QTest::addColumn<int>("pages");
        QTest::newRow("none") << 0 << 1;
        QTest::newRow("one") << 1 << 2;
        QTest::newRow("a full page") << 40 << 2;
        QTest::newRow("one more") << 41 << 3;
        QTest::newRow("many") << 200 << 6;
    }
    void nothingIsLost()
    {
        QFETCH(int, contacts);
        QFETCH(int, pages);
        Application application;
        application.contacts(contacts);
        const QStringList texts = application.pages();
        QCOMPARE(int(texts.size()), pages);
        QCOMPARE(int(texts.filter(QStringLiteral("Remarks")).size()), pages - 1);
        QCOMPARE(int(texts.filter(QStringLiteral("Signature of the applicant")).size()), 1);
        for (int page = 1; page <= pages; ++page)
            QVERIFY(texts[page - 1].contains(
                QStringLiteral("Page %1 of %2").arg(QString::number(page), QString::number(pages))));
        for (int i = 1; i <= contacts; ++i) {
            const QString line =
                QStringLiteral("^ *%1 +R%2A +05 Mar 2026 +10:00 +14 +599 / 589 +JAPAN +note%1$")
                    .arg(QString::number(i), QString::number(1000 + i));
            const QRegularExpression expected(line, QRegularExpression::MultilineOption);
            QVERIFY2(texts[1 + (i - 1) / 40].contains(expected), qPrintable(line));
        }
    }

    /// Entries that matched no contact have left rows in the blank, which are none of the application.
    void rowsWithoutCallAreLeftAway()
    {
        Application application;
        application.desk.installation.sql(
            QStringLiteral("dbiaru.mdb"),
            QStringLiteral("INSERT INTO tbllogTEMP(ccall,ddate,rsts) VALUES('','',''),(NULL,NULL,NULL),"
                           "('B1B','05.03.26','599'),('','06.03.26','59'),('C1C','07.03.26','')"));
        const auto filled = application.document();
        QCOMPARE(int(filled->rows()), 2);
        const auto lines = linesOf(*filled, 2);
        QCOMPARE(lines.value(35), QStringList({QStringLiteral("1"), QStringLiteral("B1B"),
                                               QStringLiteral("05 Mar 2026"), QStringLiteral("599")}));
        QCOMPARE(lines.value(42),
                 QStringList({QStringLiteral("2"), QStringLiteral("C1C"), QStringLiteral("07 Mar 2026")}));
        QCOMPARE(linesOf(*filled, 1).value(146).first(), QStringLiteral("2"));
    }

    void valuesAsTheyAre()
    {
        Application application;
        const QString award = QStringLiteral("Диплом \"<Мир & Дружба>\" {rows}");
        application.heading(QStringLiteral("award='%1',nname='Ёлкин О''Нил'").arg(award));
        application.desk.installation.sql(
            QStringLiteral("dbiaru.mdb"),
            QStringLiteral("INSERT INTO tbllogTEMP(ccall,ps) VALUES('B1B','<b>Тамбов</b> & \"ЁЩ\"')"));
        const QStringList pages = application.pages();
        for (const QString &page : pages)
            QVERIFY2(page.contains(award), qPrintable(page));
        QVERIFY(pages[0].contains(QStringLiteral("Ёлкин О'Нил")));
        QVERIFY(pages[1].contains(QStringLiteral("<b>Тамбов</b> & \"ЁЩ\"")));
    }

    // ---- what is empty

    void ownCallWhereNoneIsGiven()
    {
        Application application;
        application.contacts(1);
        application.desk.installation.sql(QStringLiteral("dbcontest.mdb"),
                                          QStringLiteral("UPDATE tbltit SET ccall='R1ABC'"));
        for (const QString &page : application.pages())
            QCOMPARE(page.count(QStringLiteral("R1ABC")), 1);
        application.heading(QStringLiteral("ccall='R9XYZ'"));
        for (const QString &page : application.pages()) {
            QCOMPARE(page.count(QStringLiteral("R9XYZ")), 1);
            QVERIFY(!page.contains(QStringLiteral("R1ABC")));
        }
    }

    void emptyFieldsLeaveNoGap()
    {
        Application application;
        for (int filled = 0; filled < 128; ++filled) // a bit for each field
            checkFilled(application, filled);
    }

    void nothingToCount()
    {
        Application application;
        const auto lines = linesOf(*application.document(), 1);
        const QString dash = QStringLiteral("–");
        QCOMPARE(lines.value(146), QStringList({QStringLiteral("0"), QStringLiteral("0"), dash, dash}));
        QCOMPARE(application.pages().size(), 1);
    }

    // ---- room

    void longestValuesStayInTheFrame()
    {
        Application application;
        const QString text(300, QChar(u'Ш'));
        application.heading(QStringLiteral("award='%1',DDATE='%1',wybor='%1',ccall='%1',nname='%1',"
                                           "ADRESSTR1='%1',adresgor='%1',adresstran='%1',bband='%1'")
                                .arg(text));
        application.desk.installation.sql(
            QStringLiteral("dbiaru.mdb"),
            QStringLiteral("INSERT INTO tbllogTEMP(ccall,ddate,ttime,bband,rsts,rstr,CONTR,ps) "
                           "VALUES('%1','%1','%1','%1','%1','%1','%1','%1')")
                .arg(text));
        const auto filled = application.document();
        const QImage title = picture(*filled, 1);
        const auto strip = [](const QImage &image, int left, int top, int right, int bottom) {
            return inked(image.copy(kRim + left * 8, kRim + top * 8, (right - left) * 8, (bottom - top) * 8));
        };
        for (const int left : {0, 15, 186, 199}) // beside the frame, and between it and the texts
            QVERIFY(strip(title, left, 15, left + 9, 275).isNull());
        QVERIFY(!strip(title, 30, 48, 180, 58).isNull());
        const QImage list = picture(*filled, 2);
        QVERIFY(strip(list, 0, 0, 11, 297).isNull());
        QVERIFY(strip(list, 199, 0, 210, 297).isNull());
        QVERIFY(!strip(list, 58, 32, 195, 37).isNull());
        // No column runs into the next.
        for (const double left : {21.5, 52.0, 74.0, 84.5, 96.0, 125.5, 161.0})
            QVERIFY2(inked(list.copy(kRim + int(left * 8), kRim + 32 * 8, 4, 4 * 8)).isNull(),
                     qPrintable(QString::number(left)));
    }

    // ---- the file and the window

    void operatorsOwnLayoutStays()
    {
        Application application;
        store::Library &databases = application.desk.installation.databases;
        QVERIFY(createMissingLayouts(databases).contains(QStringLiteral("diplom.rpt")));
        const QString path = application.desk.installation.file(QStringLiteral("diplom.rpt"));
        QCOMPARE(content(path), shippedLayout(QStringLiteral("diplom.rpt")));
        (void)application.desk.write(QStringLiteral("diplom.rpt"), "mine");
        QVERIFY(createMissingLayouts(databases).isEmpty());
        QCOMPARE(content(path), QByteArray("mine"));
    }

    void inThePreview()
    {
        Application application;
        application.contacts(41);
        QWidget *window = application.desk.showShipped(QStringLiteral("diplom.rpt"));
        QCOMPARE(window->windowTitle(), QStringLiteral("Просмотр печати: Заявка на диплом"));
        QCOMPARE(find<QLabel>(window, "lblstr")->text(), QStringLiteral("из 3"));
        press(window, Qt::Key_End);
        QCOMPARE(find<QSpinBox>(window, "txtstr")->value(), 3);
        QCOMPARE(window->findChild<QSpinBox *>(QStringLiteral("txtmesto")), nullptr);
        application.desk.dialogs.chosen = application.desk.installation.file(QStringLiteral("a.pdf"));
        press(window, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(application.desk.dialogs.opened.first().section(u'|', 1, 1),
                 application.desk.installation.file(QStringLiteral("diplom.pdf")));
        QCOMPARE(pdfPages(application.desk.dialogs.chosen), 3);
    }
};

QTEST_MAIN(ReportAwardTest)
#include "reportaward.moc"
