#include "store/dialect.h"
#include "base/text.h"

#include "support/installation.h"

#include <QTest>

#include <random>

using store::ErrorKind;
using store::SqlText;
using testsupport::Installation;

namespace {

ErrorKind kindOf(const std::function<void()> &operation)
{
    try {
        operation();
    } catch (const store::Error &error) {
        return error.kind();
    }
    return ErrorKind::Other;
}

} // namespace

/// Every form of statement that the windows hand over, run on real rows.
class DialectTest : public QObject {
    Q_OBJECT

    Installation m_in;

    QStringList column(const QString &file, const SqlText &text, const char *field)
    {
        store::DataSource source(QStringLiteral("t"), m_in.databases);
        source.setDatabaseName(m_in.file(file));
        source.setRecordSource(text);
        source.refresh();
        QStringList values;
        source.moveLast();
        for (int i = 0; i < source.recordCount(); ++i)
            values.append(source.text(i, QLatin1String(field)));
        return values;
    }
    QStringList calls(const SqlText &text) { return column(QStringLiteral("dbiaru.mdb"), text, "ccall"); }

private Q_SLOTS:
    void initTestCase()
    {
        m_in.sql(QStringLiteral("dbiaru.mdb"),
                 QStringLiteral("INSERT INTO TBLLOG1(ccall,ddate,ttime,bband,rsts,CONTR,QSLP,QTH,PRF) VALUES"
                                "('UA3ABC','05.03.26','10:00','14','59','RUSSIAN','да','Москва','ABC'),"
                                "('DL1XX','06.03.26','09:00','7','599','GERMANY','','Köln','ABC'),"
                                "('RA9QQ','5.3.26','08:00','14','59','RUSSIAN',' ','МОСКВА',''),"
                                "('dl1xx','05.03.2026','07:00','3,5','59','germany',NULL,'Ёлкино',NULL),"
                                "('K1AB','нет','06:00','21','59','\"','','Елкино','X'),"
                                "('G3O','31.12.99','05:00','14','59','','','O''Brien','X');"));
    }

    void equalityIgnoresCase()
    {
        QCOMPARE(calls(u"select * from tbllog1 where ccall='DL1XX'"), QStringList({"DL1XX", "dl1xx"}));
        QCOMPARE(calls(u"SELECT * FROM TBLlog1 WHERE QTH='москва'"), QStringList({"UA3ABC", "RA9QQ"}));
        QCOMPARE(calls(u"select * from tbllog1 where qth='ёлкино'"), QStringList({"dl1xx"}));
        QCOMPARE(calls(u"select * from tbllog1 where qth='Елкино'"), QStringList({"K1AB"}));
    }
    void blanksAtTheEndOfALiteral()
    {
        QCOMPARE(calls(u"select ccall from tblLOG1 where contr='GERMANY ' order by ccall"),
                 QStringList({"DL1XX", "dl1xx"}));
        QCOMPARE(calls(u"select ccall from tblLOG1 where QSLP=' '").size(),
                 5); // the blank one and the empty ones
        QCOMPARE(calls(u"select ccall from tblLOG1 where qth='МОСКВА  '"), QStringList({"UA3ABC", "RA9QQ"}));
        QCOMPARE(calls(u"select ccall from tblLOG1 where contr<>'GERMANY ' and ccall like'dl*'"),
                 QStringList());
    }
    void nullAndEmptyAreOne()
    {
        QCOMPARE(calls(u"select * from tbllog1 where PRF=''"), QStringList({"RA9QQ", "dl1xx"}));
        QCOMPARE(calls(u"select * from tbllog1 where PRF=\"\""), QStringList({"RA9QQ", "dl1xx"}));
        QCOMPARE(calls(u"select * from tbllog1 where NOT(PRF=\"\")").size(), 4);
        QCOMPARE(calls(u"select * from tbllog1 where prf<>'X'"),
                 QStringList({"UA3ABC", "DL1XX", "RA9QQ", "dl1xx"}));
        QCOMPARE(calls(u"select * from tbllog1 where not prf='X'"),
                 QStringList({"UA3ABC", "DL1XX", "RA9QQ", "dl1xx"}));
        QCOMPARE(calls(u"select * from tbllog1 where not(len(qslp)>'0')").size(), 4);
        QCOMPARE(column(QStringLiteral("dbiaru.mdb"), u"select distinct qslp from tbllog1", "qslp"),
                 QStringList({"", " ", "да"}));
        QCOMPARE(column(QStringLiteral("dbiaru.mdb"), u"select distinct prf from tbllog1", "prf"),
                 QStringList({"", "ABC", "X"}));
    }
    void lengthAgainstText()
    {
        QCOMPARE(calls(u"select * from tbllog1 where len(qslp)>'0'"), QStringList({"UA3ABC", "RA9QQ"}));
        QCOMPARE(calls(u"select * from tbllog1 where not(len(qslp)='0')"), QStringList({"UA3ABC", "RA9QQ"}));
        QCOMPARE(calls(u"select * from tbllog1 where not((len(qslp)='0'))"),
                 QStringList({"UA3ABC", "RA9QQ"}));
        QCOMPARE(calls(u"select * from tbllog1 where not(not(len(qslp)='0'))").size(), 4);
        QCOMPARE(calls(u"select * from tbllog1 where not(len(qslp)='0' and ccall='K1AB')").size(), 5);
        QCOMPARE(calls(u"select * from tbllog1 where not(len(qslp)='0' or ccall='RA9QQ')"),
                 QStringList({"UA3ABC"}));
        QCOMPARE(calls(u"select * from tbllog1 where not(not(len(qslp)='0') or ccall='K1AB')").size(), 3);
        QCOMPARE(calls(u"select * from tbllog1 where len(qslp)='0'").size(), 4);
        QCOMPARE(int(kindOf([&] { (void)calls(u"select * from tbllog1 where len(qslp)>'x'"); })),
                 int(ErrorKind::BadText));
    }
    void quoteInsideApostrophes()
    {
        QCOMPARE(calls(u"select * from tblLOG1 where contr<>'\"' and contr='\"'"), QStringList());
        QCOMPARE(calls(u"select * from tblLOG1 where contr='\"'"), QStringList({"K1AB"}));
        QCOMPARE(calls(u"select * from tblLOG1 where contr<>'\"'").size(), 5);
        QCOMPARE(calls(u"select * from tblLOG1 where QTH='O''Brien'"), QStringList({"G3O"}));
    }
    void dates()
    {
        QCOMPARE(calls(u"select * from tbllog1 where ddate=datevalue('05.03.26')"),
                 QStringList({"UA3ABC", "RA9QQ", "dl1xx"}));
        QCOMPARE(calls(u"select * from tbllog1 where ddate >= dateValue('05.03.26') and ddate <= DateValue "
                       u"('06.03.2026') order by cdate(ddate),ttime,ccall"),
                 QStringList({"dl1xx", "RA9QQ", "UA3ABC", "DL1XX"}));
        QCOMPARE(calls(u"select * from tbllog1 order by cdate(ddate),ttime ").front(),
                 QStringLiteral("K1AB"));
        QCOMPARE(calls(u"select * from tbllog1 where ddate=datevalue('')"), QStringList());
        QCOMPARE(calls(u"select * from tbllog1 where ddate<>datevalue('')"), QStringList());
        QCOMPARE(
            int(kindOf([&] { (void)calls(u"select * from tbllog1 where ddate=datevalue('32.01.26')"); })),
            int(ErrorKind::BadDate));
        QCOMPARE(calls(u"select * from tbllog1 where ddate='05.03.26'"), QStringList({"UA3ABC"})); // as texts
    }
    void firstRowIsTheOneStoredFirst()
    {
        QCOMPARE(calls(u"select * from tbllog1 where contr='RUSSIAN' and bband='14'").front(),
                 QStringLiteral("UA3ABC"));
        QCOMPARE(calls(u"TBLLOG1").front(), QStringLiteral("UA3ABC"));
        QCOMPARE(calls(u"tbllog1").size(), 6);
    }
    void distinctIsAscendingAndCaseBlind()
    {
        QCOMPARE(calls(u"select distinct ccall  from tbllog1").size(), 5);
        QCOMPARE(calls(u"select distinct ccall  from tbllog1").front(), QStringLiteral("DL1XX"));
        QCOMPARE(calls(u"SELECT DISTINCT CCALL FROM TBLLOG1 ORDER BY CCALL").back(),
                 QStringLiteral("UA3ABC"));
        QCOMPARE(column(QStringLiteral("dbiaru.mdb"), u"select distinct QTH from tbllog1", "QTH"),
                 QStringList({"Köln", "O'Brien", "Елкино", "Ёлкино", "Москва"}));
    }
    void prefixLists()
    {
        QCOMPARE(calls(u"select distinct ccall from tblLOG1 where ccall like'dl*'"), QStringList({"DL1XX"}));
        QCOMPARE(calls(u"select distinct ccall from tblLOG1 where ccall like'*'").size(), 5);
        QCOMPARE(calls(u"select distinct ccall from tblLOG1 where ccall like'?A*'"),
                 QStringList({"RA9QQ", "UA3ABC"}));
        QCOMPARE(calls(u"select * from tblLOG1 where QTH like'моск*'"), QStringList({"UA3ABC", "RA9QQ"}));
    }
    void andBeforeOr()
    {
        QCOMPARE(
            calls(u"select DISTINCT CCALL from TBLlog1 where contr ='RUSSIAN' AND MID(CCALL,3,2)='3A' or "
                  u"MID(CCALL,2,2)='A9' and contr ='RUSSIAN'"),
            QStringList({"RA9QQ", "UA3ABC"}));
        QCOMPARE(calls(u"select ccall from tbllog1 where ccall='K1AB' or ccall='G3O' and bband='7'"),
                 QStringList({"K1AB"}));
    }
    void exactCaseOfKeysFirst()
    {
        const QString keys = QStringLiteral("dbcall.mdb");
        QCOMPARE(column(keys, u"select * from tblfont where rus='ф'", "engl").front(), QStringLiteral("a"));
        QCOMPARE(column(keys, u"select * from tblfont where rus='Ф'", "engl").front(), QStringLiteral("A"));
        QCOMPARE(column(keys, u"select * from tblfont where engl='q'", "rus").front(), QStringLiteral("й"));
        QCOMPARE(column(keys, u"select * from tblfont where engl=''''", "rus").size(), 2);
    }
    void oneStatementOnly()
    {
        for (const char16_t *text :
             {u"select * from tbllog1; select 1", u"select * from tbllog1 union select * from x",
              u"delete from tbllog1", u"drop table tbllog1", u"PRAGMA user_version",
              u"select * from tbllog1 where ccall='A", u"select load_extension('x') from tbllog1",
              u"select * from tbllog1 -- x", u"", u"select * from tbllog1 where",
              u"select * from tbllog1 limit 1", u"attach 'x' as y"}) {
            bool failed = false;
            try {
                (void)calls(text);
            } catch (const store::Error &) {
                failed = true;
            }
            QVERIFY2(failed, qPrintable(QString::fromUtf16(text)));
        }
        QCOMPARE(calls(u"select * from tbllog1;").size(), 6);
        QCOMPARE(int(kindOf([&] { (void)calls(u"select nothing from tbllog1"); })), int(ErrorKind::BadText));
        QCOMPARE(int(kindOf([&] { (void)calls(u"select * from tblnone"); })), int(ErrorKind::MissingTable));
    }
    void valuesNeverBreakOut_data()
    {
        QTest::addColumn<QString>("value");
        QTest::newRow("apostrophe") << "O'Brien";
        QTest::newRow("always true") << "' or ''='";
        QTest::newRow("second statement") << "'; delete from tbllog1; select '";
        QTest::newRow("union") << "' union select * from sqlite_master where ''='";
        QTest::newRow("odd") << "'''";
    }
    void valuesNeverBreakOut()
    {
        QFETCH(QString, value);
        const SqlText text = SqlText().text(u"select * from tbllog1 where qth='").value(value).text(u"'");
        QCOMPARE(int(kindOf([&] { (void)calls(text); })), int(ErrorKind::BadText));
    }
    void harmlessValues()
    {
        for (const char16_t *value : {u"", u"\"", u";", u"--", u"%", u"*", u"]", u"[", u"?", u"\\"}) {
            const SqlText text =
                SqlText().text(u"select * from tbllog1 where ccall='").value(value).text(u"'");
            QCOMPARE(calls(text), QStringList());
        }
        // Two apostrophes are one apostrophe of the value: no other effect.
        QCOMPARE(calls(SqlText().text(u"select * from tbllog1 where qth='").value(u"O''Brien").text(u"'")),
                 QStringList({"G3O"}));
        QCOMPARE(calls(SqlText().text(u"select * from tbllog1 where qth='").doubled(u"O'Brien").text(u"'")),
                 QStringList({"G3O"}));
    }
    /// Random values of quotes, words and blanks: the result is an error or what a comparison in C++ says.
    void randomValues()
    {
        std::mt19937 random(1);
        const QString letters = QStringLiteral("'\"; -*OorBin=()[]Мо");
        for (int round = 0; round < 3000; ++round) {
            QString value;
            const int length = int(random() % 10);
            for (int i = 0; i < length; ++i)
                value += letters[qsizetype(random() % std::size_t(letters.size()))];
            const SqlText text = SqlText().text(u"select * from tbllog1 where qth='").value(value).text(u"'");
            try {
                const QString literal =
                    base::foldCase(QString(value).replace(QStringLiteral("''"), QStringLiteral("'")));
                const QString bare = base::withoutTrailingBlanks(literal).toString();
                QStringList expected;
                for (const char16_t *town :
                     {u"Москва", u"Köln", u"МОСКВА", u"Ёлкино", u"Елкино", u"O'Brien"}) {
                    const QString stored = base::foldCase(QString::fromUtf16(town));
                    if (stored == literal || stored == bare)
                        expected.append(stored);
                }
                QCOMPARE(column(QStringLiteral("dbiaru.mdb"), text, "QTH").size(), expected.size());
            } catch (const store::Error &error) {
                QCOMPARE(int(error.kind()), int(ErrorKind::BadText));
                QVERIFY(value.contains(QLatin1Char('\'')));
            }
        }
        QCOMPARE(calls(u"TBLLOG1").size(), 6);
    }
    void bulkCommands()
    {
        const QString log = m_in.file(QStringLiteral("dbiaru.mdb"));
        QCOMPARE(m_in.databases.execute(
                     log, u"INSERT INTO tbllogtemp  SELECT * From  tbllog1  WHERE contr='RUSSIAN'"),
                 2);
        QCOMPARE(calls(u"select * from tbllogTemp order by ccall"), QStringList({"RA9QQ", "UA3ABC"}));
        QCOMPARE(m_in.databases.execute(log, u"DELETE tbllogTEMP.* FROM tbllogTEMP;"), 2);
        QCOMPARE(calls(u"select * from tbllogTemp order by bband"), QStringList());

        const QString print = m_in.file(QStringLiteral("dbprint.mdb"));
        const SqlText period =
            SqlText()
                .text(u"INSERT INTO tblprint  SELECT * From  tbllog1 in '")
                .doubled(log)
                .text(u"' WHERE ddate >=DateValue('05.03.26') and ddate <=DateValue('06.03.26') order "
                      u"by cdate(ddate),ttime");
        QCOMPARE(m_in.databases.execute(print, period), 4);
        QCOMPARE(column(QStringLiteral("dbprint.mdb"), u"tblprint", "ccall"),
                 QStringList({"dl1xx", "RA9QQ", "UA3ABC", "DL1XX"}));
        QCOMPARE(m_in.databases.execute(print, u"DELETE tblprint.* FROM tblprint;"), 4);

        m_in.sql(QStringLiteral("dblog.mdb"),
                 QStringLiteral("ALTER TABLE TBLLOG1 ADD COLUMN extra TEXT DEFAULT '';"
                                "INSERT INTO TBLLOG1(ccall,extra) VALUES('P1','e')"));
        const SqlText transfer = SqlText()
                                     .text(u"INSERT INTO tbllog1 in '")
                                     .doubled(log)
                                     .text(u"'  SELECT tbllog1.* From tbllog1 ;");
        QCOMPARE(m_in.databases.execute(m_in.file(QStringLiteral("dblog.mdb")), transfer), 1);
        QCOMPARE(m_in.rows(QStringLiteral("dbiaru.mdb"),
                           QStringLiteral("SELECT ccall,extra,ps1,QTH FROM TBLLOG1 WHERE ccall='P1'")),
                 QStringList({"P1|e||"}));
        QCOMPARE(
            column(QStringLiteral("dblog.mdb"),
                   SqlText().text(u"select * From tbllog1 in '").doubled(log).text(u"' where ccall='P1'"),
                   "ccall"),
            QStringList({"P1"}));
        QCOMPARE(
            m_in.databases.execute(m_in.file(QStringLiteral("dblog.mdb")), u"DELETE tbllog1.* FROM tbllog1;"),
            1);
        m_in.sql(QStringLiteral("dbiaru.mdb"), QStringLiteral("DELETE FROM TBLLOG1 WHERE ccall='P1'"));

        for (const char16_t *text :
             {u"select * from tbllog1", u"DELETE tbllog1.* FROM tbllog1; DELETE x.* FROM x",
              u"UPDATE tbllog1 set ccall=''", u"INSERT INTO tbllog1 VALUES(1)"})
            QCOMPARE(int(kindOf([&] { (void)m_in.databases.execute(log, text); })), int(ErrorKind::BadText));
        QCOMPARE(calls(u"TBLLOG1").size(), 6);
    }
};

QTEST_GUILESS_MAIN(DialectTest)
#include "dialect.moc"
