// The built program in a real X server, worked with by keys alone; what it stored is read with the engine
// itself after it has ended.
#include "e2e/desktop.h"

#include <QDateTime>
#include <QDir>
#include <QRandomGenerator>
#include <QTest>
#include <QTimeZone>

#include <array>
#include <chrono>
#include <cstring>
#include <sys/inotify.h>
#include <thread>
#include <unistd.h>

using e2e::Installation;
using e2e::Key;
using e2e::Layout;
using e2e::Program;
using e2e::Service;
using e2e::waitFor;

namespace {

const QString kLog = QStringLiteral("dbiaru.mdb");
const QString kCaption = QStringLiteral("Журнал радиолюбителя от Zarnik (ex.Tovelk , Mirsan)");
const QString kContacts = QStringLiteral("SELECT ccall,ddate,ttime,bband,rsts,rstr,mult,point,ps,ps1,PS2,QTH,"
                                         "NNAME,QSLVIA,QSLP,QSLO,CONTR,CONT,PRF FROM TBLLOG1 ORDER BY rowid");
enum Column { Ccall, Ddate, Ttime }; // of kContacts
constexpr int kTabsToDate = 8;       // from the callsign field
constexpr int kTabsToLayout = 7;
constexpr int kTabsBackToOwnCall = 5;

/// A contact as the log must hold it. Where date and time are empty, the clock has given them.
struct Contact {
    QString ccall;
    QString contr;
    QString bband = QStringLiteral("14");
    QString ps1 = QStringLiteral("SSB");
    QString rsts = QStringLiteral("59");
    QString rstr = QStringLiteral("59");
    QString qth = {};
    QString name = {};
    QString via = {};
    QString ddate = {};
    QString ttime = {};
};

/// The row of a contact as kContacts gives it.
QStringList row(const Contact &contact, const QString &operatorMark)
{
    const QString none;
    return {contact.ccall, contact.ddate, contact.ttime, contact.bband, contact.rsts,
            contact.rstr,  none,          none,          none,          contact.ps1,
            none,          contact.qth,   contact.name,  contact.via,   none,
            none,          contact.contr, none,          operatorMark};
}

QDateTime now()
{
    return QDateTime::currentDateTimeUtc();
}

/// Whether a row's date and time are those of a clock that ticked between the two moments.
bool withinRun(const QStringList &stored, const QDateTime &from, const QDateTime &to)
{
    QDateTime minute = from;
    minute.setTime(QTime(from.time().hour(), from.time().minute()));
    for (; minute <= to; minute = minute.addSecs(60))
        if (stored[Ddate] == minute.toString(u"dd.MM.yy") && stored[Ttime] == minute.toString(u"HH:mm"))
            return true;
    return false;
}

/// Sees the log's rollback journal come and go: it goes at the moment in which a row is safe.
class JournalWatch {
public:
    explicit JournalWatch(const QString &folder) : m_descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        m_watching = ::inotify_add_watch(m_descriptor, QFile::encodeName(folder).constData(),
                                         IN_CREATE | IN_DELETE) >= 0;
    }
    JournalWatch(const JournalWatch &) = delete;
    JournalWatch &operator=(const JournalWatch &) = delete;
    ~JournalWatch() { ::close(m_descriptor); }

    [[nodiscard]] bool watching() const noexcept { return m_watching; }
    /// Rows begun; takes what has happened since the last call into account.
    [[nodiscard]] int begun()
    {
        read();
        return m_begun;
    }
    /// Rows that are safe.
    [[nodiscard]] int committed()
    {
        read();
        return m_committed;
    }

private:
    void read()
    {
        alignas(inotify_event) std::array<char, 4096> buffer{};
        ssize_t length = 0;
        while ((length = ::read(m_descriptor, buffer.data(), buffer.size())) > 0) {
            for (ssize_t at = 0; at < length;) {
                const auto *event = reinterpret_cast<const inotify_event *>(buffer.data() + at);
                if (event->len > 0 && std::strcmp(event->name, "dbiaru.mdb-journal") == 0)
                    ++((event->mask & IN_CREATE) != 0 ? m_begun : m_committed);
                at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            }
        }
    }

    int m_descriptor;
    bool m_watching = false;
    int m_begun = 0;
    int m_committed = 0;
};

} // namespace

class Evening : public QObject {
    Q_OBJECT

private:
    /// Files of a first start, then the station's own callsign in its place.
    [[nodiscard]] bool prepare(const Installation &installation, const QString &ownCall = {});
    void chooseNextMode(Key direction, int bandButtonsBefore);
    [[nodiscard]] bool toggleLayoutButton();

    e2e::Desktop m_desktop;

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void evening();
    void restart();
    void layoutSwitch();
    void scriptOfTheStation();
    void overlappingKeys_data();
    void overlappingKeys();
    void enterOnRecordButton();
    void periodExport();
    void secondProgram();
    void killedWhileRecording();
};

void Evening::initTestCase()
{
    QVERIFY2(m_desktop.start(), qPrintable(m_desktop.problem()));
}

void Evening::cleanup()
{
    m_desktop.lockLayout(Layout::Latin);
}

void Evening::cleanupTestCase()
{
    m_desktop.stop();
}

bool Evening::prepare(const Installation &installation, const QString &ownCall)
{
    Program program(m_desktop, installation);
    if (!installation.isValid() || !program.start() || !program.leave())
        return false;
    return ownCall.isEmpty() || installation.sql(QStringLiteral("dbcontest.mdb"),
                                                 QStringLiteral("UPDATE tbltit SET ccall=?"), {ownCall});
}

/// From the callsign field to the mode button, and there one mode on or back.
void Evening::chooseNextMode(Key direction, int bandButtonsBefore)
{
    constexpr int kBands = 12;
    m_desktop.press(Key::Up);
    m_desktop.press(Key::Tab, kBands - bandButtonsBefore);
    m_desktop.press(Key::Space);
    m_desktop.press(direction);
    m_desktop.press(Key::Enter);
}

void Evening::evening()
{
    const Installation installation;
    QVERIFY(prepare(installation));
    QVERIFY(installation.sql(
        QStringLiteral("dbcalbuk.mdb"),
        QStringLiteral("INSERT INTO tblcalbuk(ccall,fam,nname,otch,indeks,obl,qth,adres,telefon,qslvia) "
                       "VALUES('UA3ABC','Иванов','Иван','Иванович','101000','Москва','Москва',"
                       "'ул. Лесная, 1','123-45-67','RW3AA')")));
    QCOMPARE(installation.rows(kLog, kContacts).size(), 0);

    Program program(m_desktop, installation);
    QVERIFY(program.start());
    QCOMPARE(program.caption(), kCaption);

    // The own station, once.
    m_desktop.press(Key::BackTab, kTabsBackToOwnCall);
    m_desktop.type(QStringLiteral("ra3xyz"));
    for (const char *number : {"55", "45", "37", "37"}) {
        m_desktop.press(Key::Tab);
        m_desktop.type(QLatin1String(number));
    }
    m_desktop.press(Key::Tab); // the last field of the window; the callsign is the first

    const QDateTime begin = now().addSecs(-2); // the clock stands for up to a second
    QList<Contact> typed;
    const auto contact = [&](const char *call, const char *country) -> Contact & {
        Contact next;
        if (!typed.isEmpty()) { // band and mode stay
            next.bband = typed.constLast().bband;
            next.ps1 = typed.constLast().ps1;
            next.rsts = next.rstr =
                next.ps1 == QLatin1String("CW") ? QStringLiteral("599") : QStringLiteral("59");
        }
        next.ccall = QLatin1String(call);
        next.contr = QLatin1String(country);
        typed.append(next);
        m_desktop.type(next.ccall.toLower());
        return typed.last();
    };

    Contact *one = &contact("UA3ABC", "RUSSIAN"); // in the callbook
    one->qth = QStringLiteral("Москва");
    one->name = QStringLiteral("Иван");
    one->via = QStringLiteral("RW3AA");
    m_desktop.press(Key::F4);

    one = &contact("R3ABC", "RUSSIAN"); // not in it; reports typed over
    one->rstr = QStringLiteral("57");
    one->rsts = QStringLiteral("58");
    m_desktop.press(Key::Enter);
    m_desktop.type(one->rstr);
    m_desktop.press(Key::Enter);
    m_desktop.type(one->rsts);
    m_desktop.press(Key::F4);

    contact("UR5ABC", "UKRAINE");
    m_desktop.press(Key::F4);
    contact("EW1AA", "BELARUS");
    m_desktop.press(Key::F4);
    contact("DL1ABC", "GERMANY");
    m_desktop.press(Key::F4);
    contact("K1ABC", "USA");
    m_desktop.press(Key::F4);
    contact("DL/UA3ABC/P", "GERMANY");
    m_desktop.press(Key::F4);

    m_desktop.lockLayout(Layout::Russian); // the operator has forgotten to switch
    contact("UA9CDX", "RUSSIAN");
    m_desktop.press(Key::F4);
    QVERIFY(waitFor([&] { return m_desktop.layout() == Layout::Latin; }));

    one = &contact("R3DAA", "RUSSIAN"); // town and name from the lists, first entry of each
    one->qth = QStringLiteral("Авсюнино");
    one->name = QStringLiteral("Aaron");
    m_desktop.press(Key::F5);
    m_desktop.press(Key::F6);
    m_desktop.press(Key::F4);

    one = &contact("RK4HXX", "RUSSIAN"); // typed in Russian; the QSL route puts the keyboard back to Latin
    one->qth = QStringLiteral("Новокуйбышевс"); // one character more is cut
    one->name = QStringLiteral("Пётр");
    one->via = QStringLiteral("RW4HW");
    m_desktop.press(Key::Enter, 3);
    m_desktop.lockLayout(Layout::Russian);
    m_desktop.typeRussian(QStringLiteral("Новокуйбышевск"));
    m_desktop.press(Key::Enter);
    m_desktop.typeRussian(one->name);
    m_desktop.press(Key::Enter);
    m_desktop.type(QStringLiteral("rw4hw"));
    m_desktop.press(Key::F4);
    QVERIFY(waitFor([&] { return m_desktop.layout() == Layout::Latin; }));

    m_desktop.press(Key::Up); // one band on
    m_desktop.press(Key::Right);
    m_desktop.press(Key::Enter);
    contact("JA1XYZ", "JAPAN").bband = QStringLiteral("21");
    m_desktop.press(Key::F4);

    chooseNextMode(Key::Tab, 4);
    one = &contact("G3XYZ", "ENGLAND");
    one->ps1 = QStringLiteral("CW");
    one->rsts = one->rstr = QStringLiteral("599");
    m_desktop.press(Key::F4);

    contact("I2ABC", "ITALY").rstr = QStringLiteral("579");
    m_desktop.press(Key::Enter);
    m_desktop.type(QStringLiteral("5x7,9")); // what is no digit does not appear
    m_desktop.press(Key::F4);

    m_desktop.press(Key::Up); // to the last band and against the end
    m_desktop.press(Key::Down, 9);
    m_desktop.press(Key::Enter);
    contact("R2AA", "RUSSIAN").bband = QStringLiteral("1200");
    m_desktop.press(Key::F4);

    m_desktop.press(Key::Up);
    m_desktop.press(Key::Left, 10);
    m_desktop.press(Key::Enter);
    chooseNextMode(Key::BackTab, 1);
    one = &contact("F5ABC", "FRANCE");
    one->bband = QStringLiteral("3,5");
    one->ps1 = QStringLiteral("SSB");
    one->rsts = one->rstr = QStringLiteral("59");
    m_desktop.press(Key::F4);

    QVERIFY(program.choose(Service::TimeMode)); // date and time typed
    one = &contact("UA1OMS", "RUSSIAN");
    one->ddate = QStringLiteral("01.02.02");
    one->ttime = QStringLiteral("9:05");
    one->rstr = QStringLiteral("55");
    one->rsts = QStringLiteral("56");
    for (const char *text : {"01.02.2002", "9:05", "55", "56"}) {
        m_desktop.press(Key::Enter);
        m_desktop.type(QLatin1String(text));
    }
    m_desktop.press(Key::F4);

    one = &contact("UA3ABC", "RUSSIAN"); // date and time stay; Enter looks the callbook up
    one->ddate = QStringLiteral("01.02.02");
    one->ttime = QStringLiteral("9:05");
    one->qth = QStringLiteral("Москва");
    one->name = QStringLiteral("Иван");
    one->via = QStringLiteral("RW3AA");
    m_desktop.press(Key::Enter, 4);
    m_desktop.press(Key::F4);

    QVERIFY(program.choose(Service::TimeMode)); // and by the clock again, from its next tick on
    m_desktop.press(Key::Tab, kTabsToDate + 1);
    QVERIFY(waitFor([&] { return m_desktop.focusedText().size() == 8; }));
    m_desktop.press(Key::BackTab, kTabsToDate + 1);

    QVERIFY(program.choose(Service::EntryKey)); // Enter records
    contact("LZ1ABC", "BULGARIA");
    m_desktop.press(Key::F4); // does nothing now
    m_desktop.press(Key::Enter);
    contact("YU1AA", "SERBIA");
    m_desktop.press(Key::Enter);
    QVERIFY(program.choose(Service::EntryKey));

    one = &contact("K2ABC", "USA"); // field by field, and the button
    one->qth = QStringLiteral("O'Fallon \"W\"");
    one->name = QStringLiteral("Joe \"Mac\" O'N");
    one->via = QStringLiteral("W2XYZ");
    m_desktop.press(Key::Enter, 3);
    m_desktop.type(one->qth);
    m_desktop.press(Key::Enter);
    m_desktop.type(one->name);
    m_desktop.press(Key::Enter);
    m_desktop.type(QStringLiteral("w2-xyz")); // a callsign has no "-"
    m_desktop.press(Key::Enter);
    m_desktop.press(Key::Space);

    QVERIFY2(program.leave(), qPrintable(program.complaints()));
    const QDateTime end = now();
    QCOMPARE(program.complaints(), QString());

    QList<QStringList> stored = installation.rows(kLog, kContacts);
    QCOMPARE(typed.size(), 20);
    QCOMPARE(stored.size(), typed.size());
    for (qsizetype i = 0; i < typed.size(); ++i) {
        if (typed[i].ddate.isEmpty()) {
            QVERIFY2(withinRun(stored[i], begin, end), qPrintable(stored[i].join(QLatin1Char('|'))));
            stored[i][Ddate].clear();
            stored[i][Ttime].clear();
        }
        QCOMPARE(stored[i], row(typed[i], QStringLiteral("XYZ")));
    }
    const QList<QStringList> own = {{QStringLiteral("RA3XYZ"), QStringLiteral("55"), QStringLiteral("45"),
                                     QStringLiteral("37"), QStringLiteral("37"), QString(), QString()}};
    QCOMPARE(installation.rows(QStringLiteral("dbcontest.mdb"),
                               QStringLiteral("SELECT ccall,GradN,MinN,GradE,MinE,Dolg,Shir FROM tbltit")),
             own);
    const QList<QStringList> empty = {{QStringLiteral("0")}};
    QCOMPARE(installation.rows(QStringLiteral("dblog.mdb"), QStringLiteral("SELECT count(*) FROM TBLLOG1")),
             empty);
    QVERIFY(!QFile::exists(installation.file(QStringLiteral("avaria.adi"))));
    QVERIFY(!QFile::exists(installation.file(kLog + QStringLiteral("-journal"))));
}

void Evening::restart()
{
    const Installation installation;
    QVERIFY(prepare(installation));
    {
        Program program(m_desktop, installation);
        QVERIFY(program.start());
        m_desktop.press(Key::BackTab, kTabsBackToOwnCall);
        m_desktop.type(QStringLiteral("ra3xyz"));
        m_desktop.press(Key::Enter); // back to the callsign
        m_desktop.press(Key::Up);
        m_desktop.press(Key::Right, 3);
        m_desktop.press(Key::Enter);
        chooseNextMode(Key::Tab, 6);
        QVERIFY(program.choose(Service::TimeMode));
        m_desktop.type(QStringLiteral("ua3abc"));
        m_desktop.press(Key::Enter);
        m_desktop.type(QStringLiteral("02.03.99"));
        m_desktop.press(Key::Enter);
        m_desktop.type(QStringLiteral("17:20"));
        QVERIFY(program.choose(Service::EntryKey));
        m_desktop.press(Key::Enter);
        QVERIFY2(program.leave(), qPrintable(program.complaints()));
    }
    const Contact first{.ccall = QStringLiteral("UA3ABC"),
                        .contr = QStringLiteral("RUSSIAN"),
                        .bband = QStringLiteral("10"),
                        .ps1 = QStringLiteral("CW"),
                        .rsts = QStringLiteral("599"),
                        .rstr = QStringLiteral("599"),
                        .ddate = QStringLiteral("02.03.99"),
                        .ttime = QStringLiteral("17:20")};
    QCOMPARE(installation.rows(kLog, kContacts), QList<QStringList>({row(first, QStringLiteral("XYZ"))}));

    Program program(m_desktop, installation);
    QVERIFY(program.start());
    m_desktop.press(Key::BackTab, kTabsBackToOwnCall);
    QCOMPARE(m_desktop.focusedText(), QStringLiteral("RA3XYZ"));
    m_desktop.press(Key::Tab, kTabsBackToOwnCall);
    const QDateTime begin = now().addSecs(-2);
    m_desktop.type(QStringLiteral("ua3abc"));
    m_desktop.press(Key::Enter); // does not record any more
    m_desktop.press(Key::F4);
    QVERIFY2(program.leave(), qPrintable(program.complaints()));

    QList<QStringList> stored = installation.rows(kLog, kContacts);
    QCOMPARE(stored.size(), 2);
    QCOMPARE(stored[0], row(first, QStringLiteral("XYZ")));
    QVERIFY2(withinRun(stored[1], begin, now()), qPrintable(stored[1].join(QLatin1Char('|'))));
    stored[1][Ddate].clear();
    stored[1][Ttime].clear();
    QCOMPARE(stored[1], row({.ccall = QStringLiteral("UA3ABC"), .contr = QStringLiteral("RUSSIAN")},
                            QStringLiteral("XYZ")));
}

bool Evening::toggleLayoutButton()
{
    const Layout before = m_desktop.layout();
    m_desktop.press(Key::Space);
    return waitFor([&] { return m_desktop.layout() != before; });
}

void Evening::scriptOfTheStation()
{
    const Installation installation;
    Program program(m_desktop, installation);
    QVERIFY(program.start());

    m_desktop.type(QStringLiteral("dl1abc"));
    m_desktop.press(Key::Enter, 3);
    m_desktop.lockLayout(Layout::Russian);
    m_desktop.typeRussian(QStringLiteral("Иукдшт")); // the keys of Berlin
    QVERIFY(waitFor([&] { return m_desktop.layout() == Layout::Latin; }));
    QCOMPARE(m_desktop.focusedText(), QStringLiteral("Berlin"));
    m_desktop.press(Key::F4);

    m_desktop.type(QStringLiteral("ua3abc"));
    m_desktop.press(Key::Enter, 3);
    m_desktop.type(QStringLiteral("vj")); // the keys of "мо" in the Latin layout
    QVERIFY(waitFor([&] { return m_desktop.layout() == Layout::Russian; }));
    m_desktop.typeRussian(QStringLiteral("сква"));
    m_desktop.type(
        QStringLiteral("? 2/")); // the keys of comma and full stop in the Russian layout: they stay
    QCOMPARE(m_desktop.focusedText(), QStringLiteral("москва, 2."));
    QCOMPARE(m_desktop.layout(), Layout::Russian);
    QVERIFY2(program.leave(), qPrintable(program.complaints()));
}

void Evening::layoutSwitch()
{
    const Installation installation;
    Program program(m_desktop, installation);
    QVERIFY(program.start());

    // All three keys wait in the queue, typed in the Russian layout, before the program sees the first.
    program.freeze();
    m_desktop.lockLayout(Layout::Russian);
    m_desktop.type(QStringLiteral("rax"));
    program.thaw();
    QVERIFY(waitFor([&] { return m_desktop.layout() == Layout::Latin; }));
    QCOMPARE(m_desktop.focusedText(), QStringLiteral("RAX"));
    QCOMPARE(m_desktop.layout(), Layout::Latin); // still, with all keys done

    // A quick operator switches by hand between the queued keys.
    program.freeze();
    m_desktop.press(Key::Backspace);
    m_desktop.lockLayout(Layout::Russian);
    m_desktop.type(QStringLiteral("dl"));
    m_desktop.lockLayout(Layout::Latin);
    m_desktop.type(QStringLiteral("1a"));
    program.thaw();
    QCOMPARE(m_desktop.focusedText(), QStringLiteral("DL1A"));
    QCOMPARE(m_desktop.layout(), Layout::Latin);

    m_desktop.press(Key::Tab, kTabsToLayout);
    QVERIFY(toggleLayoutButton());
    QCOMPARE(m_desktop.layout(), Layout::Russian);
    QVERIFY(toggleLayoutButton());
    QCOMPARE(m_desktop.layout(), Layout::Latin);
    QVERIFY2(program.leave(), qPrintable(program.complaints()));
}

void Evening::overlappingKeys_data()
{
    QTest::addColumn<bool>("enterRecords");
    QTest::addColumn<bool>("throughReports");
    QTest::newRow("F4 records") << false << false;
    QTest::newRow("Enter to the report, F4") << false << true;
    QTest::newRow("Enter records") << true << false;
}

void Evening::overlappingKeys()
{
    QFETCH(const bool, enterRecords);
    QFETCH(const bool, throughReports);
    const Installation installation;
    QVERIFY(prepare(installation, QStringLiteral("RA3XYZ")));
    QVERIFY(installation.sql(
        QStringLiteral("dbcalbuk.mdb"),
        QStringLiteral("INSERT INTO tblcalbuk(ccall,nname,qth) VALUES('KH6ABC','Joe','Hilo')")));
    Program program(m_desktop, installation);
    QVERIFY(program.start());
    QVERIFY(!enterRecords || program.choose(Service::EntryKey));
    const QDateTime begin = now().addSecs(-2);
    // The last key goes down before C is up.
    m_desktop.typeOverlapping(QStringLiteral("kh6abc"),
                              enterRecords || throughReports ? Key::Enter : Key::F4);
    if (throughReports)
        m_desktop.press(Key::F4);
    QVERIFY2(program.leave(), qPrintable(program.complaints()));
    QList<QStringList> stored = installation.rows(kLog, kContacts);
    QCOMPARE(stored.size(), 1);
    QVERIFY2(withinRun(stored[0], begin, now()), qPrintable(stored[0].join(QLatin1Char('|'))));
    stored[0][Ddate].clear();
    stored[0][Ttime].clear();
    QCOMPARE(stored[0], row({.ccall = QStringLiteral("KH6ABC"),
                             .contr = QStringLiteral("HAWAII"),
                             .qth = QStringLiteral("Hilo"),
                             .name = QStringLiteral("Joe")},
                            QStringLiteral("XYZ")));
}

void Evening::enterOnRecordButton()
{
    const Installation installation;
    Program program(m_desktop, installation);
    QVERIFY(program.start());
    m_desktop.type(QStringLiteral("dl1abc"));
    m_desktop.press(Key::Enter, 6); // reports, town, name, QSL route, button
    m_desktop.press(Key::Enter);
    QVERIFY2(program.leave(), qPrintable(program.complaints()));
    QCOMPARE(installation.rows(kLog, kContacts).size(), 1);
}

void Evening::periodExport()
{
    const Installation installation;
    QVERIFY(prepare(installation, QStringLiteral("RA3XYZ")));
    QVERIFY(installation.sql(
        kLog, QStringLiteral("INSERT INTO TBLLOG1(ccall,ddate,ttime,bband,rsts,rstr,ps1) VALUES"
                             "('R1A','01.03.02','10:00','14','5999','59',''),"
                             "('R1B','02.03.02','11:00','7','59','59','SSB'),"
                             "('R1C','03.03.02','12:00','7','59','59','SSB')")));
    Program program(m_desktop, installation);
    QVERIFY(program.start());
    QVERIFY(program.choose(Service::Period));
    for (const char *day : {"01.03.02", "02.03.02"}) {
        m_desktop.pressControl('a');
        m_desktop.type(QLatin1String(day));
        m_desktop.press(Key::Enter);
    }
    m_desktop.press(Key::Tab, 2); // past printing and the grid
    m_desktop.press(Key::Enter);  // past the path to the button
    m_desktop.press(Key::Space);
    QFile file(installation.file(QStringLiteral("RA3XYZ")));
    QVERIFY(waitFor([&] { return file.exists(); }));
    QVERIFY(program.choose(Service::Period)); // away with the panel
    QVERIFY2(program.leave(), qPrintable(program.complaints()));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(
        file.readAll(),
        QByteArray("<adif_ver:4>1.0<eoh>\r\n"
                   "<call:3>R1A <rst_sent:3>599 <rst_rcvd:2>59 <mode:2>CW <band:3>20M <qso_date:8:d>20020301 "
                   "<time_on:4>1000<eor>\r\n"
                   "<call:3>R1B <rst_sent:2>59 <rst_rcvd:2>59 <mode:3>SSB <band:3>40M <qso_date:8:d>20020302 "
                   "<time_on:4>1100<eor>\r\n"));
    QCOMPARE(installation.rows(kLog, QStringLiteral("SELECT rsts,ps1 FROM TBLLOG1 WHERE ccall='R1A'")),
             QList<QStringList>({{QStringLiteral("599"), QStringLiteral("CW")}}));
}

void Evening::secondProgram()
{
    const Installation installation;
    QVERIFY(prepare(installation, QStringLiteral("RA3XYZ")));
    Program first(m_desktop, installation);
    QVERIFY(first.start());
    QCOMPARE(first.caption(), kCaption);

    Program second(m_desktop, installation);
    QVERIFY(second.start());
    QCOMPARE(second.caption(), QStringLiteral("Zhurnal")); // its message, not a log
    m_desktop.press(Key::Enter);
    QVERIFY(second.waitForEnd());
    QCOMPARE(second.exitCode(), 1);
    QVERIFY(first.running());

    QVERIFY(m_desktop.focus(first.window()));
    m_desktop.type(QStringLiteral("dl1abc"));
    m_desktop.press(Key::F4);
    m_desktop.type(QStringLiteral("dl1abd"));
    QCOMPARE(m_desktop.focusedText(), QStringLiteral("DL1ABD")); // so the one before it is recorded
    first.kill();

    Program third(m_desktop, installation);
    QVERIFY(third.start());
    QCOMPARE(third.caption(), kCaption);
    m_desktop.type(QStringLiteral("dl1abe"));
    m_desktop.press(Key::F4);
    QVERIFY2(third.leave(), qPrintable(third.complaints()));
    const QList<QStringList> expected = {{QStringLiteral("DL1ABC")}, {QStringLiteral("DL1ABE")}};
    QCOMPARE(installation.rows(kLog, QStringLiteral("SELECT ccall FROM TBLLOG1 ORDER BY rowid")), expected);
}

void Evening::killedWhileRecording()
{
    const Installation installation;
    QVERIFY(prepare(installation, QStringLiteral("RA3XYZ")));
    QRandomGenerator chance(QRandomGenerator::global()->generate());
    QList<QStringList> before;
    constexpr int kRounds = 5;
    constexpr int kTyped = 26;
    for (int round = 0; round < kRounds; ++round) {
        Program program(m_desktop, installation);
        QVERIFY(program.start());
        JournalWatch watch(installation.folder());
        QVERIFY(watch.watching());
        QStringList calls;
        for (int i = 0; i < kTyped; ++i) {
            calls.append(QStringLiteral("UA9%1%2").arg(round).arg(QChar('A' + i)));
            m_desktop.type(calls.constLast().toLower());
            m_desktop.press(Key::F4);
        }
        // In the midst of writing a row, or shortly after.
        const int last = 1 + chance.bounded(kTyped - 1);
        const std::chrono::microseconds later(chance.bounded(3000));
        QVERIFY(waitFor([&] { return watch.begun() >= last; }));
        std::this_thread::sleep_for(later);
        const int safe = watch.committed();
        program.kill();

        const QList<QStringList> intact = {{QStringLiteral("ok")}};
        const QStringList files =
            QDir(installation.folder()).entryList({QStringLiteral("*.mdb")}, QDir::Files);
        QCOMPARE(files.size(), 11);
        for (const QString &file : files)
            QCOMPARE(installation.rows(file, QStringLiteral("PRAGMA integrity_check")), intact);
        const QList<QStringList> stored = installation.rows(kLog, kContacts);
        const qsizetype added = stored.size() - before.size();
        const QByteArray moment =
            QStringLiteral("round %1: killed %2 us after row %3 was begun, %4 safe, %5 there")
                .arg(round)
                .arg(later.count())
                .arg(last)
                .arg(safe)
                .arg(added)
                .toUtf8();
        QVERIFY2(safe >= last - 1 && added >= safe && added <= kTyped, moment.constData());
        QCOMPARE(stored.first(before.size()), before);
        for (qsizetype i = 0; i < added; ++i) {
            QStringList fields = stored[before.size() + i];
            QCOMPARE(fields[Ddate].size(), 8);
            QCOMPARE(fields[Ttime].size(), 5);
            fields[Ddate].clear();
            fields[Ttime].clear();
            QCOMPARE(fields,
                     row({.ccall = calls[i], .contr = QStringLiteral("RUSSIAN")}, QStringLiteral("XYZ")));
        }
        before = stored;
    }
    QVERIFY(before.size() >= kRounds - 1);
}

QTEST_GUILESS_MAIN(Evening)
#include "evening.moc"
