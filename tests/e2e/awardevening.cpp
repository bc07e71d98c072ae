// An application for an award in a real X server, by keys alone, over a log of 10,000 contacts: the award,
// the contacts by region, by list and one by one, the title page, the pages as PDF.
#include "bench/genlog.h"
#include "e2e/desktop.h"

#include <QFileInfo>
#include <QProcess>
#include <QTest>

#include <algorithm>

using e2e::Installation;
using e2e::Key;
using e2e::Program;

namespace {

const QString kLog = QStringLiteral("dbiaru.mdb");
constexpr qint64 kContacts = 10000;

QString pdfText(const QString &path)
{
    QProcess reader;
    reader.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), path, QStringLiteral("-")});
    return reader.waitForFinished() && reader.exitCode() == 0
               ? QString::fromUtf8(reader.readAllStandardOutput())
               : QString();
}

} // namespace

class AwardEvening : public QObject {
    Q_OBJECT

private:
    /// Waits for a further window of the program and gives it the focus; 0 where none comes.
    [[nodiscard]] e2e::Window further(const Program &program);
    /// Waits until so many windows are left and gives one of them the focus.
    [[nodiscard]] bool back(const Program &program, qsizetype left, e2e::Window to);
    void addAward();
    void pickByRegion();
    void pickByList();
    void fillTitle();
    [[nodiscard]] QStringList column(const QString &query, const QString &file = kLog) const;

    e2e::Desktop m_desktop;
    Installation m_installation;
    QList<e2e::Window> m_known;
    QStringList m_listed; ///< callsigns of the selection list

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_desktop.start(), qPrintable(m_desktop.problem())); }
    void cleanupTestCase() { m_desktop.stop(); }

    void application();
};

e2e::Window AwardEvening::further(const Program &program)
{
    e2e::Window found = 0;
    const auto isNew = [&](e2e::Window window) {
        return !m_known.contains(window) && m_desktop.caption(window) != QString();
    };
    const bool came = e2e::waitFor([&] {
        const QList<e2e::Window> windows = m_desktop.windows(program.process());
        const auto at = std::find_if(windows.begin(), windows.end(), isNew);
        found = at == windows.end() ? 0 : *at;
        return found != 0;
    });
    m_known.append(found);
    return came && m_desktop.focus(found) ? found : 0;
}

bool AwardEvening::back(const Program &program, qsizetype left, e2e::Window to)
{
    return e2e::waitFor([&] { return m_desktop.windows(program.process()).size() == left; }) &&
           m_desktop.focus(to);
}

QStringList AwardEvening::column(const QString &query, const QString &file) const
{
    QStringList texts;
    const QList<QStringList> rows = m_installation.rows(file, query);
    for (const QStringList &row : rows)
        texts.append(row.join(QLatin1Char('|')));
    return texts;
}

/// From the list of countries; ends in the list of regions.
void AwardEvening::addAward()
{
    m_desktop.press(Key::Down, 4); // Россия
    m_desktop.press(Key::Enter);
    m_desktop.type(QStringLiteral("ma")); // the list finds the code
    m_desktop.press(Key::Enter);
    m_desktop.press(Key::Tab, 2);
    m_desktop.press(Key::Enter); // "Новый"
    m_desktop.press(Key::Enter); // the country is the chosen one
    m_desktop.type(QStringLiteral("OBLAST 5"));
    m_desktop.press(Key::Enter);
    m_desktop.type(QStringLiteral("Five stations, it's easy"));
    m_desktop.press(Key::Enter);
    m_desktop.type(QStringLiteral("Since 1999"));
    m_desktop.press(Key::Tab);
    m_desktop.press(Key::Enter); // "Новый" again
}

/// From the list of regions; ends in the grid of the station.
void AwardEvening::pickByRegion()
{
    m_desktop.press(Key::Tab, 5);
    m_desktop.press(Key::Enter); // "DXCC", which becomes "Россия"
    m_desktop.press(Key::Tab);
    m_desktop.press(Key::Enter); // the first prefix; on to its callsigns
    m_desktop.press(Key::Enter); // the first callsign; on to its contacts
    m_desktop.press(Key::Enter); // into the blank
    m_desktop.press(Key::Escape);
    m_desktop.press(Key::Down);
    m_desktop.press(Key::Enter);
    m_desktop.press(Key::Enter);
}

/// From the grid of the station; ends in the entry box of the selection list.
void AwardEvening::pickByList()
{
    m_desktop.press(Key::Tab);
    m_desktop.press(Key::Space); // "Страны"
    m_desktop.press(Key::Tab, 3);
    m_desktop.press(Key::Enter); // "Выбор"
    for (const QString &call : std::as_const(m_listed)) {
        m_desktop.type(call.toLower());
        m_desktop.press(Key::Enter);
    }
    m_desktop.press(Key::Tab, 5);
    m_desktop.press(Key::Enter); // "Выбрать"
}

void AwardEvening::fillTitle()
{
    for (const char *text :
         {"OBLAST 5", "", "42", "RA3XYZ", "Ivan Petrov", "Lenina 1, apt. 2", "Khimki", "Russia", "14", ""}) {
        m_desktop.type(QLatin1String(text));
        m_desktop.press(Key::Enter);
    }
}

void AwardEvening::application()
{
    QVERIFY(m_installation.isValid());
    (void)bench::generateLog(m_installation.folder(), kContacts);
    m_listed = column(
        QStringLiteral("SELECT DISTINCT ccall FROM TBLLOG1 WHERE CONTR<>'RUSSIAN' ORDER BY rowid LIMIT 60"));
    QCOMPARE(m_listed.size(), 60);

    Program program(m_desktop, m_installation);
    QVERIFY(program.start());
    m_known = m_desktop.windows(program.process());
    m_desktop.press(Key::Alt);
    m_desktop.press(Key::Right);
    m_desktop.press(Key::Enter);
    const e2e::Window awards = further(program);
    QVERIFY(awards != 0);
    QCOMPARE(m_desktop.caption(awards), QStringLiteral("Diplom"));
    addAward();
    pickByRegion();
    pickByList();
    QCOMPARE(m_desktop.focusedText(1000), QString()); // done: the entry box is empty and waits for the next
    m_desktop.press(Key::BackTab, 3);
    m_desktop.press(Key::Enter); // "Бланк"
    const e2e::Window title = further(program);
    QVERIFY(title != 0);
    QCOMPARE(m_desktop.caption(title), QStringLiteral("Diplom"));
    fillTitle();
    m_desktop.press(Key::Enter); // "Печать"
    const e2e::Window preview = further(program);
    QVERIFY(preview != 0);
    QVERIFY(m_desktop.caption(preview).startsWith(QStringLiteral("Просмотр печати")));
    m_desktop.pressControl('s');
    QVERIFY(further(program) != 0);
    const QString pdf = m_installation.file(QStringLiteral("oblast.pdf"));
    m_desktop.type(pdf);
    m_desktop.press(Key::Enter);
    QVERIFY(back(program, 4, preview));
    QVERIFY(e2e::waitFor([&] { return QFileInfo::exists(pdf); }));
    m_desktop.press(Key::Escape);
    QVERIFY(back(program, 3, title));
    m_desktop.press(Key::Escape);
    QVERIFY(back(program, 2, awards));
    m_desktop.press(Key::Tab, 9);
    m_desktop.press(Key::Enter); // "Выход"
    QVERIFY(back(program, 1, program.window()));
    QVERIFY(program.leave());

    QCOMPARE(column(QStringLiteral("SELECT strana,pref,diptext FROM tbldiplom WHERE diplom='OBLAST 5'"),
                    QStringLiteral("dbdiplom.mdb")),
             QStringList{QStringLiteral("Россия|MA|Five stations, it's easy\nSince 1999")});
    const QStringList byHand =
        column(QStringLiteral("SELECT ccall,CONTR FROM tbllogTEMP ORDER BY rowid LIMIT 2"));
    const QStringList region = column(QStringLiteral(
        "SELECT DISTINCT ccall,'' FROM TBLLOG1 WHERE CONTR='RUSSIAN' AND (substr(ccall,3,2)='0A' OR "
        "substr(ccall,2,2)='0A') ORDER BY ccall LIMIT 2"));
    QCOMPARE(byHand, region); // "Страны" was not set yet
    const QStringList listed =
        column(QStringLiteral("SELECT ccall FROM tbllogTEMP ORDER BY rowid LIMIT -1 OFFSET 2"));
    QCOMPARE(listed, m_listed + QStringList{QString()}); // and the entry behind the last one
    QCOMPARE(column(QStringLiteral("SELECT award,wybor,ccall,nname,ADRESSTR1,adresgor,adresstran,bband "
                                   "FROM tbltitul"),
                    QStringLiteral("dbhelp.mdb")),
             QStringList{QStringLiteral("OBLAST 5|42|RA3XYZ|Ivan Petrov|Lenina 1, apt. 2|Khimki|Russia|14")});
    const QString text = pdfText(pdf);
    for (const QString &call : std::as_const(m_listed))
        QVERIFY2(text.contains(call), qPrintable(call));
    for (const char *piece : {"OBLAST 5", "RA3XYZ", "Ivan Petrov", "Lenina 1, apt. 2", "Khimki",
                              "Page 1 of 3", "Page 3 of 3", "62"})
        QVERIFY2(text.contains(QLatin1String(piece)), piece);
}

QTEST_GUILESS_MAIN(AwardEvening)
#include "awardevening.moc"
