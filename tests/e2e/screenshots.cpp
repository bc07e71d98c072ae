// Pictures of the windows for the documentation: screenshots FOLDER
#include "e2e/desktop.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>

#include <array>
#include <cstdio>

using e2e::Installation;
using e2e::Key;
using e2e::Program;

namespace {

constexpr int kWidth = 1366;
constexpr int kHeight = 768;
constexpr int kEveningMinutes = 100;
const QString kLog = QStringLiteral("dbiaru.mdb");
const QString kStation = QStringLiteral("RA9CDX"); ///< the one that is being typed

struct Row {
    const char *ccall, *bband, *ps1, *rsts, *rstr, *qth, *name, *via, *contr;
};

constexpr std::array<Row, 14> kEvening = {{
    {"UA4HAB", "14", "SSB", "59", "59", "Самара", "Сергей", "", "RUSSIAN"},
    {"EW1AA", "14", "SSB", "59", "57", "Минск", "Алесь", "", "BELARUS"},
    {"DL1ABC", "14", "SSB", "59", "59", "Berlin", "Hans", "", "GERMANY"},
    {"UR5ABC", "14", "SSB", "59", "58", "Сумы", "Микола", "", "UKRAINE"},
    {"K1ABC", "14", "CW", "599", "579", "Boston", "Joe", "W1XYZ", "USA"},
    {"JA1XYZ", "21", "CW", "599", "559", "Tokyo", "Ken", "", "JAPAN"},
    {"R3DAA", "7", "SSB", "59", "59", "Коломна", "Олег", "", "RUSSIAN"},
    {"G3XYZ", "14", "CW", "599", "599", "London", "John", "", "ENGLAND"},
    {"F5ABC", "14", "SSB", "58", "59", "Lyon", "Pierre", "", "FRANCE"},
    {"UA3ABC", "7", "SSB", "59", "59", "Москва", "Иван", "RW3AA", "RUSSIAN"},
    {"OK1ABC", "3,5", "CW", "599", "599", "Praha", "Jiri", "", "CZECH REP"},
    {"SP5ABC", "3,5", "SSB", "59", "59", "Warszawa", "Adam", "", "POLAND"},
    {"RX1CQ", "3,5", "SSB", "59", "57", "Гатчина", "Юрий", "", "RUSSIAN"},
    {"RA9CDX", "3,5", "SSB", "59", "59", "Екатеринбург", "Игорь", "RW9CF", "RUSSIAN"},
}};

struct Earlier {
    const char *ddate, *ttime, *bband, *ps1, *report, *card;
};

constexpr std::array<Earlier, 6> kEarlier = {{
    {"12.03.98", "17:42", "14", "SSB", "59", "02.09.98"},
    {"05.11.03", "06:15", "3,5", "CW", "599", ""},
    {"22.06.09", "20:03", "7", "CW", "599", "15.01.10"},
    {"30.10.16", "08:51", "21", "SSB", "59", ""},
    {"14.02.21", "15:27", "14", "RTTY", "599", ""},
    {"01.08.25", "18:09", "28", "SSB", "57", ""},
}};

bool fill(const Installation &installation)
{
    bool ok =
        installation.sql(QStringLiteral("dbcontest.mdb"),
                         QStringLiteral("UPDATE tbltit SET ccall='RA3XYZ',GradN='55',MinN='45',GradE='37',"
                                        "MinE='37'")) &&
        installation.sql(
            QStringLiteral("dbcalbuk.mdb"),
            QStringLiteral("INSERT INTO tblcalbuk(ccall,fam,nname,otch,indeks,obl,qth,adres,telefon,qslvia) "
                           "VALUES('RA9CDX','Кузнецов','Игорь','Петрович','620014','Свердловская',"
                           "'Екатеринбург','ул. Мира, д. 12, кв. 34','(343) 123-45-67','RW9CF')"));
    const QString insert =
        QStringLiteral("INSERT INTO TBLLOG1(ccall,ddate,ttime,bband,rsts,rstr,ps1,QTH,NNAME,"
                       "QSLVIA,QSLP,CONTR,PRF) VALUES(?,?,?,?,?,?,?,?,?,?,?,?,'XYZ')");
    for (const Earlier &row : kEarlier)
        ok = ok && installation.sql(
                       kLog, insert,
                       {kStation, QLatin1String(row.ddate), QLatin1String(row.ttime),
                        QLatin1String(row.bband), QLatin1String(row.report), QLatin1String(row.report),
                        QLatin1String(row.ps1), QStringLiteral("Екатеринбург"), QStringLiteral("Игорь"),
                        QStringLiteral("RW9CF"), QLatin1String(row.card), QStringLiteral("RUSSIAN")});
    QDateTime time = QDateTime::currentDateTimeUtc().addSecs(-qint64{kEveningMinutes} * 60);
    for (const Row &row : kEvening) {
        ok = ok && installation.sql(kLog, insert,
                                    {QLatin1String(row.ccall), time.toString(u"dd.MM.yy"),
                                     time.toString(u"HH:mm"), QLatin1String(row.bband),
                                     QLatin1String(row.rsts), QLatin1String(row.rstr), QLatin1String(row.ps1),
                                     QString::fromUtf8(row.qth), QString::fromUtf8(row.name),
                                     QLatin1String(row.via), QString(), QLatin1String(row.contr)});
        time = time.addSecs(qint64{60} * (3 + row.ccall[0] % 7));
    }
    return ok && installation.sql(QStringLiteral("dbhelp.mdb"),
                                  QStringLiteral("UPDATE tbltitul SET contest='Олег Иванов', "
                                                 "adresstrit='300000 Тула, а/я 12', txtps1='TRX 100 W', "
                                                 "txtps2='ANT GP', txtps3='LOC KO84TE'"));
}

/// A desktop with dark colours, set as the operator would: in the settings of the desktop environment.
bool makeDark(const Installation &installation, Program &program, const e2e::Desktop &desktop)
{
    const QString config = installation.environment(desktop).value(QStringLiteral("XDG_CONFIG_HOME"));
    QFile file(config + QStringLiteral("/kdeglobals"));
    if (!QDir().mkpath(config) || !file.open(QIODevice::WriteOnly))
        return false;
    file.write("[Colors:Button]\nBackgroundNormal=49,54,59\nForegroundNormal=252,252,252\n"
               "[Colors:Selection]\nBackgroundNormal=61,174,233\nForegroundNormal=252,252,252\n"
               "[Colors:Tooltip]\nBackgroundNormal=49,54,59\nForegroundNormal=252,252,252\n"
               "[Colors:View]\nBackgroundNormal=27,30,32\nBackgroundAlternate=35,38,41\n"
               "ForegroundNormal=252,252,252\nForegroundLink=29,153,243\nForegroundVisited=155,89,182\n"
               "[Colors:Window]\nBackgroundNormal=42,46,50\nForegroundNormal=252,252,252\n");
    program.setEnvironment(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("KDE"));
    program.setEnvironment(QStringLiteral("KDE_FULL_SESSION"), QStringLiteral("true"));
    program.setEnvironment(QStringLiteral("KDE_SESSION_VERSION"), QStringLiteral("5"));
    return true;
}

/// A picture that no longer changes: two in a row.
bool save(e2e::Desktop &desktop, e2e::Window window, const QString &file)
{
    QImage last;
    const bool still = e2e::waitFor([&] {
        const QImage now = desktop.picture(window);
        const bool same = !now.isNull() && now == last;
        last = now;
        return same;
    });
    return still && last.save(file);
}

/// Mode CW, keyer and calculator, all by keyboard.
bool openPanels(e2e::Desktop &desktop, Program &program)
{
    constexpr int kFromBandToMode = 9; // from the button of 14 MHz
    desktop.press(Key::Up);
    for (int i = 0; i < kFromBandToMode; ++i)
        desktop.press(Key::Tab);
    desktop.press(Key::Enter);
    desktop.press(Key::Right);
    desktop.press(Key::Enter);
    if (desktop.focusedText() != kStation || !program.choose(e2e::Service::Keyer) ||
        !program.choose(e2e::Service::Calculator))
        return false;
    desktop.type(QStringLiteral("12,5*4"));
    return desktop.focusedText() == QLatin1String("4");
}

/// Three contacts in the blank, the country of the last one counted, and the cards in the preview.
bool bureau(e2e::Desktop &desktop, Program &program, const QString &folder, const QString &shade)
{
    constexpr int kFromContactsToInfo = 24;
    constexpr int kFromContactsToPrint = 9;
    const e2e::Window window = program.openBureau();
    if (window == 0)
        return false;
    desktop.type(QStringLiteral("k1"));
    desktop.press(Key::Enter, 2);
    desktop.press(Key::Escape);
    desktop.type(kStation.toLower());
    desktop.press(Key::Enter, 2);
    desktop.press(Key::Down);
    desktop.press(Key::Enter);
    desktop.press(Key::Tab, kFromContactsToInfo);
    desktop.press(Key::Enter);
    if (!save(desktop, window, folder + QStringLiteral("/bureau-%1.png").arg(shade)))
        return false;
    desktop.press(Key::BackTab, kFromContactsToInfo - kFromContactsToPrint);
    desktop.press(Key::Enter);
    const e2e::Window preview = program.waitForWindow(QStringLiteral("Просмотр печати"));
    if (preview == 0 || !save(desktop, preview, folder + QStringLiteral("/cards-%1.png").arg(shade)))
        return false;
    desktop.press(Key::Escape);
    return e2e::waitFor([&] { return desktop.windows(program.process()).size() == 2; }) &&
           desktop.focus(window) && program.closeBureau();
}

/// The rules of an award, the contacts with one station, and the blank that the bureau has filled.
bool awards(e2e::Desktop &desktop, Program &program, const QString &folder, const QString &shade)
{
    constexpr int kFromRulesToPrefixes = 4;
    constexpr int kFromContactsBackToExit = 10;
    desktop.press(Key::Alt);
    desktop.press(Key::Right);
    desktop.press(Key::Enter);
    const e2e::Window window = program.waitForWindow(QStringLiteral("Diplom"));
    if (window == 0)
        return false;
    desktop.press(Key::Down);
    desktop.press(Key::Enter);
    desktop.press(Key::Down);
    desktop.press(Key::Enter);
    desktop.press(Key::Tab, kFromRulesToPrefixes);
    desktop.type(QStringLiteral("ua"));
    desktop.press(Key::Enter, 2);
    if (!save(desktop, window, folder + QStringLiteral("/awards-%1.png").arg(shade)))
        return false;
    desktop.press(Key::BackTab, kFromContactsBackToExit);
    desktop.press(Key::Enter);
    return e2e::waitFor([&] { return desktop.windows(program.process()).size() == 1; }) &&
           desktop.focus(program.window());
}

/// The window behind an item of the menu bar, with a word typed into its search.
bool searched(e2e::Desktop &desktop, Program &program, int item, const QString &caption, const QString &word,
              const QString &file)
{
    desktop.press(Key::Alt);
    desktop.press(Key::Right, item);
    desktop.press(Key::Enter);
    const e2e::Window window = program.waitForWindow(caption);
    if (window == 0)
        return false;
    desktop.type(word);
    if (!save(desktop, window, file))
        return false;
    desktop.press(Key::Escape);
    return e2e::waitFor([&] { return desktop.windows(program.process()).size() == 1; }) &&
           desktop.focus(program.window());
}

/// The callbook's record of the station, and the prefixes of its country.
bool tables(e2e::Desktop &desktop, Program &program, const QString &folder, const QString &shade)
{
    constexpr int kCountries = 2; // places in the menu bar
    constexpr int kCallbook = 3;
    return searched(desktop, program, kCallbook, QStringLiteral("База"), kStation.toLower(),
                    folder + QStringLiteral("/callbook-%1.png").arg(shade)) &&
           searched(desktop, program, kCountries, QStringLiteral("DXCC"), QStringLiteral("ra9"),
                    folder + QStringLiteral("/countries-%1.png").arg(shade));
}

bool pictures(e2e::Desktop &desktop, const QString &folder, bool dark)
{
    const Installation installation;
    {
        Program first(desktop, installation);
        if (!installation.isValid() || !first.start() || !first.leave())
            return false;
    }
    if (!fill(installation))
        return false;
    Program program(desktop, installation);
    if (dark && !makeDark(installation, program, desktop))
        return false;
    if (!program.start() || !desktop.resize(program.window(), kWidth, kHeight))
        return false;
    const QString shade = dark ? QStringLiteral("dark") : QStringLiteral("light");
    // A recorded contact leaves the whole day in the grid. What can be copied afterwards tells that it is
    // done.
    desktop.type(QStringLiteral("yu1aa"));
    desktop.press(Key::F4);
    desktop.press(Key::Tab);
    if (desktop.focusedText() != QLatin1String("59"))
        return false;
    desktop.press(Key::BackTab);
    if (!save(desktop, program.window(), folder + QStringLiteral("/evening-%1.png").arg(shade)))
        return false;
    desktop.type(kStation.toLower());
    if (desktop.focusedText() != kStation)
        return false;
    desktop.press(Key::Right); // takes the mark away again
    return save(desktop, program.window(), folder + QStringLiteral("/main-%1.png").arg(shade)) &&
           openPanels(desktop, program) &&
           save(desktop, program.window(), folder + QStringLiteral("/panels-%1.png").arg(shade)) &&
           bureau(desktop, program, folder, shade) && awards(desktop, program, folder, shade) &&
           tables(desktop, program, folder, shade) && program.leave();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QString folder = QCoreApplication::arguments().value(1);
    if (folder.isEmpty() || !QDir().mkpath(folder)) {
        std::fputs("usage: screenshots FOLDER\n", stderr);
        return 2;
    }
    e2e::Desktop desktop;
    if (!desktop.start()) {
        std::fprintf(stderr, "%s\n", qPrintable(desktop.problem()));
        return 1;
    }
    if (!pictures(desktop, folder, false) || !pictures(desktop, folder, true)) {
        std::fputs("the program did not do what the pictures need\n", stderr);
        return 1;
    }
    return 0;
}
