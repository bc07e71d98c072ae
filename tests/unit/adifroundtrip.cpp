// What the program exports in its own layout comes back the same: the real export read by the real import.
#include "interchange/adifexport.h"
#include "interchange/sql.h"
#include "support/importing.h"

#include <QTest>

#include <random>

using interchange::AdifExport;
using testsupport::Installation;
using testsupport::kLog;

namespace {

const char *const kFields = "ccall,ddate,ttime,bband,rsts,rstr,ps1";

/// Contacts as the main window records them, in the order of an export.
void fill(const Installation &in, int count)
{
    std::mt19937 random(7);
    const auto pick = [&](const QStringList &texts) { return texts[int(random() % texts.size())]; };
    store::Connection log(in.file(QLatin1String(kLog)), store::OpenMode::ReadWrite);
    store::Transaction transaction(log);
    for (int i = 0; i < count; ++i)
        log.exec(QStringLiteral("INSERT INTO TBLLOG1(ccall,ddate,ttime,bband,rsts,rstr,ps1,QTH,PRF) "
                                "VALUES(?,?,?,?,?,?,?,'Москва','ABC')"),
                 {pick({"UA1ABC", "R1A/P", "РК3А", "K1'X", "DL/UA3ABC/P"}),
                  QStringLiteral("%1.%2.%3")
                      .arg(i % 28 + 1, 2, 10, QLatin1Char('0'))
                      .arg(i % 12 + 1, 2, 10, QLatin1Char('0'))
                      .arg((i * 7 + 30) % 100, 2, 10, QLatin1Char('0')),
                  QStringLiteral("%1:%2")
                      .arg(i % 24, 2, 10, QLatin1Char('0'))
                      .arg(i % 60, 2, 10, QLatin1Char('0')),
                  pick({"1,8", "3,5", "7", "14", "21", "28"}), pick({"59", "599", "5", "пят", ""}),
                  pick({"59", "579", "339"}), pick({"CW", "SSB", "RTTY", "PSK", "MT63"})});
    transaction.commit();
}

QStringList sorted(const Installation &in)
{
    QStringList rows = testsupport::column(in, kFields);
    rows.replaceInStrings(QStringLiteral(","), QStringLiteral("|"));
    rows.sort();
    return rows;
}

bool goOn(const QString &, qint64, qint64)
{
    return true;
}

} // namespace

class AdifRoundTripTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void numberedFiles()
    {
        Installation from;
        fill(from, 1200);
        QByteArray band;
        const auto result =
            AdifExport(from.databases, from.file(QLatin1String(kLog)))
                .numbered(interchange::sql::allContacts(), from.file(QStringLiteral("LOG_ADIF")), band, goOn);
        QCOMPARE(result.files.size(), 3);
        Installation to;
        for (const QString &file : result.files) {
            const auto imported = testsupport::importFile(to, file);
            QVERIFY(imported.reader == interchange::AdifReaderKind::OwnLines);
            QVERIFY(testsupport::adds(imported));
            QCOMPARE(imported.skippedRecords(), 0);
        }
        QCOMPARE(sorted(to), sorted(from));
        QCOMPARE(
            to.rows(QLatin1String(kLog), QStringLiteral("SELECT DISTINCT PRF FROM TBLLOG1 ORDER BY PRF")),
            QStringList({"IF0", "IF1", "IF2"}));
    }

    void wholePeriod()
    {
        Installation from;
        fill(from, 600);
        const QString path = from.file(QStringLiteral("UA1ABC.adi"));
        (void)AdifExport(from.databases, from.file(QLatin1String(kLog)))
            .whole(interchange::sql::contactsOfPeriod(u"01.01.30", u"31.12.29"), path, goOn);
        Installation to;
        const auto imported = testsupport::importFile(to, path);
        QCOMPARE(imported.records, 601);
        QCOMPARE(imported.added, 600);
        QCOMPARE(sorted(to), sorted(from));
    }

    /// What is no date or time goes out as zeros and comes back as none.
    void datesAndTimesThatAreNone()
    {
        Installation from;
        from.sql(QLatin1String(kLog),
                 QStringLiteral("INSERT INTO TBLLOG1(ccall,ddate,ttime,bband,rsts,rstr,ps1) VALUES"
                                "('R1A','31.02.02','ночь','14','59','59','SSB')"));
        const QString path = from.file(QStringLiteral("out.adi"));
        (void)AdifExport(from.databases, from.file(QLatin1String(kLog)))
            .whole(interchange::sql::allContacts(), path, goOn);
        Installation to;
        const auto imported = testsupport::importFile(to, path);
        QCOMPARE(imported.withoutDate, std::vector<qint64>{2});
        QCOMPARE(testsupport::column(to, kFields), QStringList("R1A||00:00|14|59|59|SSB"));
    }

    /// The same log through ADIF 3.1 in each of its forms.
    void modernForms()
    {
        Installation from;
        from.sql(QLatin1String(kLog),
                 QStringLiteral(
                     "INSERT INTO TBLLOG1(ccall,ddate,ttime,bband,rsts,rstr,ps1,QTH,NNAME,QSLVIA,QSLP) VALUES"
                     "('R1A','05.03.02','1407','10','59','59','SSB','Клин','Олег','RW3A','+'),"
                     "('DL1B','06.03.02','9:05','14','599','579','CW','Berlin','Hans','','')"));
        for (const auto form :
             {interchange::AdifForm::Utf8, interchange::AdifForm::Windows1251, interchange::AdifForm::Xml}) {
            const QString path = from.file(QStringLiteral("out.") + interchange::adifSuffix(form));
            const auto result = AdifExport(from.databases, from.file(QLatin1String(kLog)))
                                    .modern(interchange::sql::allContacts(), path, form,
                                            {QDateTime(QDate(2026, 3, 5), QTime(), Qt::UTC),
                                             QStringLiteral("1"), QStringLiteral("UA1ABC")},
                                            goOn);
            QCOMPARE(result.kept, 2);
            QVERIFY(result.omitted.empty());
            Installation to;
            const auto imported = testsupport::importFile(to, path);
            QVERIFY(imported.reader == interchange::AdifReaderKind::Full);
            QCOMPARE(
                testsupport::column(to, "ccall,ddate,ttime,bband,rsts,rstr,ps1,QTH,NNAME,QSLVIA,QSLP,CONTR"),
                QStringList({"R1A|05.03.02|14:07|10|59|59|SSB|Клин|Олег|RW3A|+|RUSSIAN",
                             "DL1B|06.03.02|09:05|14|599|579|CW|Berlin|Hans|||GERMANY"}));
        }
    }
};

QTEST_GUILESS_MAIN(AdifRoundTripTest)
#include "adifroundtrip.moc"
