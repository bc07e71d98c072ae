// An evening with cards in a real X server, by keys alone; what the log holds is read after the program has
// ended.
#include "e2e/desktop.h"

#include <QDate>
#include <QTest>

using e2e::Installation;
using e2e::Key;
using e2e::Program;

namespace {

const QString kLog = QStringLiteral("dbiaru.mdb");
constexpr int kTabsToMark = 11; // from the grid of contacts

} // namespace

class BureauEvening : public QObject {
    Q_OBJECT

private:
    /// A log of five contacts of the station RA3XYZ.
    [[nodiscard]] bool prepare(const Installation &installation);
    [[nodiscard]] static QStringList column(const Installation &installation, const QString &query);

    e2e::Desktop m_desktop;

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_desktop.start(), qPrintable(m_desktop.problem())); }
    void cleanupTestCase() { m_desktop.stop(); }

    void marking();
    void receivedCardSurvivesAKill();
};

bool BureauEvening::prepare(const Installation &installation)
{
    Program program(m_desktop, installation);
    if (!installation.isValid() || !program.start() || !program.leave())
        return false;
    bool ok =
        installation.sql(QStringLiteral("dbcontest.mdb"), QStringLiteral("UPDATE tbltit SET ccall='RA3XYZ'"));
    for (const char *call : {"UA4HAB", "DL1ABC", "UA3ABC", "UA3ABD", "K1ABC"})
        ok = ok && installation.sql(kLog,
                                    QStringLiteral("INSERT INTO TBLLOG1(ccall,ddate,ttime,bband,rsts,rstr,"
                                                   "ps1,CONTR,PRF) VALUES(?,'05.03.24','18:20','14','59',"
                                                   "'59','SSB','RUSSIAN','XYZ')"),
                                    {QLatin1String(call)});
    return ok;
}

QStringList BureauEvening::column(const Installation &installation, const QString &query)
{
    QStringList texts;
    const QList<QStringList> rows = installation.rows(kLog, query);
    for (const QStringList &row : rows)
        texts.append(row.join(QLatin1Char('|')));
    return texts;
}

void BureauEvening::marking()
{
    const Installation installation;
    QVERIFY(prepare(installation));
    Program program(m_desktop, installation);
    QVERIFY(program.start());
    QVERIFY(program.openBureau() != 0);
    m_desktop.type(QStringLiteral("ua3abd"));
    m_desktop.press(Key::Enter); // to the contacts
    m_desktop.press(Key::Enter); // into the blank
    m_desktop.press(Key::Escape);
    m_desktop.type(QStringLiteral("dl"));
    m_desktop.press(Key::Enter, 2);
    const QDate before = QDate::currentDate();
    m_desktop.press(Key::Tab, kTabsToMark);
    m_desktop.press(Key::Enter);
    // The focus is in the search: what is typed now finds the next station.
    m_desktop.type(QStringLiteral("K1ABC"));
    QCOMPARE(m_desktop.focusedText(), QStringLiteral("K1ABC"));
    const QDate after = QDate::currentDate();
    QVERIFY(program.closeBureau());
    QVERIFY(program.leave());
    const QStringList marks =
        column(installation, QStringLiteral("SELECT ccall,QSLO FROM TBLLOG1 WHERE QSLO<>'' ORDER BY rowid"));
    const auto expected = [](const QDate &day) {
        const QString mark = day.toString(u"dd.MM.yyyy");
        return QStringList{QStringLiteral("DL1ABC|") + mark, QStringLiteral("UA3ABD|") + mark};
    };
    QVERIFY2(marks == expected(before) || marks == expected(after),
             qPrintable(marks.join(QStringLiteral("; "))));
    QCOMPARE(column(installation, QStringLiteral("SELECT ccall FROM tbllogTEMP")), QStringList());
}

void BureauEvening::receivedCardSurvivesAKill()
{
    const Installation installation;
    QVERIFY(prepare(installation));
    Program program(m_desktop, installation);
    QVERIFY(program.start());
    QVERIFY(program.openBureau() != 0);
    m_desktop.type(QStringLiteral("ua3"));
    m_desktop.press(Key::Enter);
    m_desktop.press(Key::Right, 3);
    m_desktop.type(QStringLiteral("ok"));
    m_desktop.press(Key::Escape); // drops what is being typed
    m_desktop.type(QStringLiteral("tnx"));
    m_desktop.press(Key::Enter);
    m_desktop.press(Key::Escape); // to the search, which saves the row
    m_desktop.type(QStringLiteral("R"));
    QCOMPARE(m_desktop.focusedText(), QStringLiteral("R"));
    program.kill();
    QCOMPARE(column(installation, QStringLiteral("SELECT ccall,QSLP FROM TBLLOG1 WHERE QSLP<>''")),
             QStringList{"UA3ABC|TNX"});
}

QTEST_GUILESS_MAIN(BureauEvening)
#include "bureauevening.moc"
