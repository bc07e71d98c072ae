// The callbook and the country table in a real X server, by keys alone: records made and edited, contacts
// that use them, a callbook filled from a text file, a country added, the table renewed from a country file.
#include "e2e/desktop.h"

#include <QFile>
#include <QTest>

#include <algorithm>

using e2e::Installation;
using e2e::Key;
using e2e::Program;

namespace {

const QString kLog = QStringLiteral("dbiaru.mdb");
const QString kCallbook = QStringLiteral("dbcalbuk.mdb");
const QString kCountries = QStringLiteral("dbdxcc1.mdb");

/// A record of the country file: Monaco in another zone, and a prefix of it that our table does not have.
constexpr auto kCountryFile = "Monaco:                   20:  28:  EU:   43.73:    -7.40:    -1.0:  3A:\n"
                              "    3A,3A99;\n";

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

class CallbookEvening : public QObject {
    Q_OBJECT

private:
    /// Opens the window behind the so-many-th item of the menu bar; 0 where none comes.
    [[nodiscard]] e2e::Window open(Program &program, int item, const QString &caption);
    /// Whether the program shows a window whose caption begins so.
    [[nodiscard]] bool shown(const Program &program, const QString &caption) const;
    /// Waits until the main window is alone and gives it the focus.
    [[nodiscard]] bool alone(const Program &program);
    /// Types a path into the file dialog that comes, and Enter until it is gone.
    [[nodiscard]] bool giveFile(Program &program, const QString &path);
    /// Answers the question with that caption.
    [[nodiscard]] bool sayYes(Program &program, const QString &caption);
    /// Waits until a query of a file that the program works on gives a row.
    [[nodiscard]] bool stored(const QString &file, const QString &query) const;
    void makeRecords();
    void addCountry();
    [[nodiscard]] QStringList column(const QString &query, const QString &file) const;

    e2e::Desktop m_desktop;
    Installation m_installation;

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_desktop.start(), qPrintable(m_desktop.problem())); }
    void cleanupTestCase() { m_desktop.stop(); }

    void evening();
};

e2e::Window CallbookEvening::open(Program &program, int item, const QString &caption)
{
    m_desktop.press(Key::Alt);
    m_desktop.press(Key::Right, item);
    m_desktop.press(Key::Enter);
    return program.waitForWindow(caption);
}

bool CallbookEvening::shown(const Program &program, const QString &caption) const
{
    const QList<e2e::Window> windows = m_desktop.windows(program.process());
    return std::any_of(windows.begin(), windows.end(),
                       [&](e2e::Window window) { return m_desktop.caption(window).startsWith(caption); });
}

bool CallbookEvening::alone(const Program &program)
{
    return e2e::waitFor([&] { return m_desktop.windows(program.process()).size() == 1; }) &&
           m_desktop.focus(program.window());
}

bool CallbookEvening::giveFile(Program &program, const QString &path)
{
    constexpr int kTries = 5; // Enter may take a name out of the dialog's list first
    constexpr int kEach = 3000;
    const QString caption = QStringLiteral("Файл");
    if (program.waitForWindow(caption) == 0)
        return false;
    m_desktop.type(path);
    bool gone = false;
    for (int i = 0; i < kTries && !gone; ++i) {
        m_desktop.press(Key::Enter);
        gone = e2e::waitFor([&] { return !shown(program, caption); }, kEach);
    }
    return gone;
}

bool CallbookEvening::sayYes(Program &program, const QString &caption)
{
    if (program.waitForWindow(caption) == 0)
        return false;
    m_desktop.press(Key::Left); // from "Нет"
    m_desktop.press(Key::Enter);
    return e2e::waitFor([&] { return !shown(program, caption); });
}

bool CallbookEvening::stored(const QString &file, const QString &query) const
{
    return e2e::waitFor([&] { return !m_installation.rows(file, query).isEmpty(); });
}

/// From "Найти"; ends there.
void CallbookEvening::makeRecords()
{
    m_desktop.type(QStringLiteral("ra9cdx"));
    m_desktop.press(Key::Enter); // to "Добавить"
    m_desktop.press(Key::Enter);
    for (const char *text :
         {"Kuznetsov", "igor", "Petrovich", "620014", "Sverdlovsk", "ekaterinburg", "Mira 12", "", "rw9cf"}) {
        m_desktop.type(QLatin1String(text));
        m_desktop.press(Key::Enter);
    }
    m_desktop.type(QStringLiteral("k1abc")); // over the callsign that stands there
    m_desktop.press(Key::Enter, 2);
    m_desktop.type(QStringLiteral("Smith"));
}

/// From the search by prefix; ends in the first box of the entry frame.
void CallbookEvening::addCountry()
{
    m_desktop.press(Key::Tab, 2);
    for (const char *text : {"q1", "testland", "eu", "28", "15", "q1"}) {
        m_desktop.type(QLatin1String(text));
        m_desktop.press(Key::Enter);
    }
    m_desktop.press(Key::Enter); // "Добавить"
}

QStringList CallbookEvening::column(const QString &query, const QString &file) const
{
    QStringList texts;
    const QList<QStringList> rows = m_installation.rows(file, query);
    for (const QStringList &row : rows)
        texts.append(row.join(QLatin1Char('|')));
    return texts;
}

void CallbookEvening::evening()
{
    constexpr int kCountryItem = 2; // places in the menu bar
    constexpr int kCallbookItem = 3;
    constexpr int kFromSearchToImport = 16;
    constexpr int kFromSearchToRenewal = 10;
    QVERIFY(m_installation.isValid());
    const QString stations = m_installation.file(QStringLiteral("stations.csv"));
    QVERIFY(
        write(stations, QByteArray("ccall;nname;qth\r\nua1aaa;\xC8\xE2\xE0\xED;\xCC\xEE\xF1\xEA\xE2\xE0\r\n"
                                   "RA9CDX;Oleg;Perm\r\n"))); // Windows-1251
    const QString countries = m_installation.file(QStringLiteral("new.dat"));
    QVERIFY(write(countries, kCountryFile));

    Program program(m_desktop, m_installation);
    QVERIFY(program.start());
    e2e::Window window = open(program, kCallbookItem, QStringLiteral("База"));
    QVERIFY(window != 0);
    makeRecords();
    m_desktop.press(Key::Escape); // saves what was typed last
    QVERIFY(alone(program));
    m_desktop.type(QStringLiteral("ra9cdx"));
    m_desktop.press(Key::F4);

    window = open(program, kCallbookItem, QStringLiteral("База"));
    QVERIFY(window != 0);
    m_desktop.press(Key::Tab, kFromSearchToImport);
    m_desktop.press(Key::Enter);
    QVERIFY(giveFile(program, stations));
    QVERIFY(sayYes(program, QStringLiteral("Пополнение базы"))); // after what was found
    QVERIFY(stored(kCallbook, QStringLiteral("SELECT 1 FROM tblcalbuk WHERE ccall='UA1AAA'")));
    QVERIFY(e2e::waitFor([&] { return m_desktop.windows(program.process()).size() == 2; }) &&
            m_desktop.focus(window));
    m_desktop.press(Key::Escape);
    QVERIFY(alone(program));

    window = open(program, kCountryItem, QStringLiteral("DXCC"));
    QVERIFY(window != 0);
    addCountry();
    m_desktop.press(Key::Escape);
    QVERIFY(alone(program));
    m_desktop.type(QStringLiteral("q1abc"));
    m_desktop.press(Key::F4);

    window = open(program, kCountryItem, QStringLiteral("DXCC"));
    QVERIFY(window != 0);
    m_desktop.press(Key::Tab, kFromSearchToRenewal);
    m_desktop.press(Key::Enter);
    QVERIFY(giveFile(program, countries));
    QVERIFY(e2e::waitFor([&] { return m_desktop.windows(program.process()).size() == 2; }) &&
            m_desktop.focus(window));
    m_desktop.press(Key::BackTab); // from "Нет"
    m_desktop.press(Key::Enter);   // "Да"
    QVERIFY(stored(kCountries, QStringLiteral("SELECT 1 FROM tbldxcc WHERE prf='3A99'")));
    QVERIFY(e2e::waitFor([&] { return m_desktop.windows(program.process()).size() == 2; }) &&
            m_desktop.focus(window));
    m_desktop.press(Key::Escape);
    QVERIFY(alone(program));
    m_desktop.type(QStringLiteral("3a99x"));
    m_desktop.press(Key::F4);
    QVERIFY(program.leave());

    QCOMPARE(
        column(QStringLiteral("SELECT * FROM tblcalbuk ORDER BY rowid"), kCallbook),
        (QStringList{QStringLiteral("RA9CDX|Kuznetsov|Igor|Petrovich|620014|Sverdlovsk|Ekaterinburg|Mira "
                                    "12||RW9CF"),
                     QStringLiteral("K1ABC|Smith||||||||"), QStringLiteral("UA1AAA||Иван||||Москва|||")}));
    QCOMPARE(column(QStringLiteral("SELECT ccall,QTH,NNAME,QSLVIA,CONTR FROM TBLLOG1 ORDER BY rowid"), kLog),
             (QStringList{QStringLiteral("RA9CDX|Ekaterinburg|Igor|RW9CF|RUSSIAN"),
                          QStringLiteral("Q1ABC||||TESTLAND"), QStringLiteral("3A99X||||MONACO")}));
    QCOMPARE(column(QStringLiteral("SELECT prf,strana,cq,own FROM tbldxcc WHERE prf IN ('Q1','3A','3A99') "
                                   "ORDER BY prf"),
                    kCountries),
             (QStringList{QStringLiteral("3A|MONACO|20|"), QStringLiteral("3A99|MONACO|20|"),
                          QStringLiteral("Q1|TESTLAND|15|1")}));
}

QTEST_GUILESS_MAIN(CallbookEvening)

#include "callbookevening.moc"
