#include "interchange/emergency.h"

#include <QDir>
#include <QFile>
#include <QStringDecoder>
#include <QTemporaryDir>
#include <QTest>

using interchange::EmergencyContact;
using interchange::EmergencyFile;

namespace {

EmergencyContact contact()
{
    EmergencyContact c;
    c.ccall = QStringLiteral("UA3ABC");
    c.ddate = QStringLiteral("05.03.02");
    c.ttime = QStringLiteral("14:07");
    c.bband = QStringLiteral("14");
    c.rsts = QStringLiteral("599");
    c.rstr = QStringLiteral("579");
    c.ps1 = QStringLiteral("CW");
    c.QTH = QStringLiteral("Москва");
    c.NNAME = QStringLiteral("Ёж");
    c.QSLVIA = QStringLiteral("RW3XX");
    return c;
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("?");
}

} // namespace

class EmergencyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void line()
    {
        QCOMPARE(interchange::emergencyLine(contact()),
                 QStringLiteral("<call:6>UA3ABC <rst_sent:3>599 <rst_rcvd:3>579 <mode:2>CW <band:3>20M "
                                "<qso_date:8:d>20020305 "
                                "<time_on:4>1407 <qth:6>Москва <name:2>Ёж <qsl_via:5>RW3XX<eor>"));
        EmergencyContact c = contact();
        c.bband = QStringLiteral("1200");
        c.ddate = QStringLiteral("не дата");
        c.ttime = QStringLiteral("99");
        c.QTH = QStringLiteral("A\r\nB");
        const QString line = interchange::emergencyLine(c);
        QVERIFY(line.contains(QStringLiteral("<freq:4>1200 ")));
        QVERIFY(!line.contains(QStringLiteral("qso_date")));
        QVERIFY(!line.contains(QStringLiteral("time_on")));
        QVERIFY(line.contains(QStringLiteral("<comment:10>не дата 99")));
        QVERIFY(!line.contains(QLatin1Char('\n')));
    }

    void appendedInWindows1251AndTakenBack()
    {
        QTemporaryDir folder;
        EmergencyFile file({folder.path()});
        const QString path = file.append(contact());
        QCOMPARE(path, folder.filePath(QStringLiteral("avaria.adi")));
        const QByteArray first = read(path);
        QVERIFY(first.startsWith("<adif_ver:4>1.0<eoh>\r\n<call:6>UA3ABC"));
        QVERIFY(first.endsWith("<eor>\r\n"));
        QStringDecoder decoder("windows-1251");
        QVERIFY(QString(decoder(first)).contains(QStringLiteral("<name:2>Ёж ")));
        QCOMPARE(file.append(contact()), path);
        QVERIFY(read(path).size() > first.size());
        file.takeBack();
        QCOMPARE(read(path), first);
        file.takeBack(); // only the last one
        QCOMPARE(read(path), first);
        EmergencyFile again({folder.path()});
        again.takeBack();
        QCOMPARE(read(path), first);
    }

    void nextFolderWhereOneRefuses()
    {
        QTemporaryDir folder;
        QFile plain(folder.filePath(QStringLiteral("plain")));
        QVERIFY(plain.open(QIODevice::WriteOnly));
        EmergencyFile file({plain.fileName(), folder.path()}); // a file is no folder
        QCOMPARE(file.append(contact()), folder.filePath(QStringLiteral("avaria.adi")));
        EmergencyFile nowhere({plain.fileName()});
        QCOMPARE(nowhere.append(contact()), QString());
        EmergencyFile made(
            {folder.filePath(QStringLiteral("new/user"))}); // a folder that is not there yet is made
        QCOMPARE(made.append(contact()), folder.filePath(QStringLiteral("new/user/avaria.adi")));
        // A full disk: the device takes nothing.
        QVERIFY(QDir().mkpath(folder.filePath(QStringLiteral("full"))));
        QVERIFY(QFile::link(QStringLiteral("/dev/full"), folder.filePath(QStringLiteral("full/avaria.adi"))));
        EmergencyFile full({folder.filePath(QStringLiteral("full")), folder.path()});
        QCOMPARE(full.append(contact()), folder.filePath(QStringLiteral("avaria.adi")));
    }

    void charactersOutsideTheCodePage()
    {
        QTemporaryDir folder;
        EmergencyFile file({folder.path()});
        EmergencyContact c = contact();
        c.QTH = QStringLiteral("京都");
        const QByteArray bytes = read(file.append(c));
        QVERIFY(bytes.contains("<qth:2>??"));
        QVERIFY(bytes.contains("<call:6>UA3ABC"));
    }
};

QTEST_GUILESS_MAIN(EmergencyTest)
#include "emergency.moc"
