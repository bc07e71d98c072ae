// Statements of the callbook, the country table and the region table letter for letter, and what their boxes
// let in.
#include "reference/countries.h"
#include "reference/keyfilters.h"
#include "reference/sql.h"

#include <QTest>

namespace sql = reference::sql;
using reference::Capitals;
using reference::kNoLimit;

class ReferenceStatementsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void statements_data()
    {
        QTest::addColumn<QString>("made");
        QTest::addColumn<QString>("wanted");
        const QString x = QStringLiteral("UA3");
        const auto add = [](const char *name, const store::SqlText &made, const char16_t *wanted) {
            QTest::newRow(name) << made.toString() << QString::fromUtf16(wanted);
        };
        add("callsigns", sql::allCalls(), u"select distinct ccall from tbllog1 order by ccall");
        add("callsigns from", sql::callsFrom(x),
            u"select distinct ccall from tbllog1 where ccall like'UA3*'");
        add("station", sql::stationInLog(x), u"select ccall,nname,qth,qslvia from tbllog1 where ccall='UA3'");
        add("record", sql::callbookRecord(x), u"select * from tblcalbuk where ccall='UA3'");
        add("countries", sql::allCountries(), u"SELECT * FROM  tbldxcc ORDER BY PRF");
        add("by prefix", sql::countriesByPrefix(x),
            u"select * from tbldxcc where prf like'UA3*' order by prf");
        add("by name", sql::countriesByName(x), u"select * from tbldxcc where strana like'UA3*'");
        add("country table", sql::countryTable(), u"tbldxcc");
        add("regions", sql::regionTable(), u"tblrus");
        add("regions by prefix", sql::regionsByPrefix(x),
            u"select * from tblrus where pref like'UA3*' order by pref");
    }

    void statements()
    {
        QFETCH(const QString, made);
        QFETCH(const QString, wanted);
        QCOMPARE(made, wanted);
    }

    /// Digits and Latin capitals; no blank, no punctuation, no Cyrillic, also not the letters that look
    /// alike.
    void codeKeys()
    {
        const QString let = QStringLiteral("0123456789ASDFGHJKLQWERTYUIOPZXCVBNM");
        for (char16_t code = 27; code < 0x460; ++code) {
            const QChar typed(code);
            const QChar upper = typed.toUpper();
            QCOMPARE(reference::codeKey(typed, 0, 5), let.contains(upper) ? upper : QChar());
        }
        QCOMPARE(reference::codeKey(u'a', 4, 5), QChar(u'A'));
        QCOMPARE(reference::codeKey(u'a', 5, 5), QChar());
        QCOMPARE(reference::codeKey(u'a', 1000, kNoLimit), QChar(u'A'));
    }

    void zoneKeys()
    {
        for (char16_t code = 27; code < 0x460; ++code) {
            const QChar typed(code);
            const bool digit = typed >= u'0' && typed <= u'9';
            QCOMPARE(reference::zoneKey(typed), digit ? typed : QChar());
        }
    }

    void callbookKeys()
    {
        QCOMPARE(reference::callbookKey(u'и', 0, 14, Capitals::First), QChar(u'И'));
        QCOMPARE(reference::callbookKey(u'и', 1, 14, Capitals::First), QChar(u'и'));
        QCOMPARE(reference::callbookKey(u'и', 13, 14, Capitals::First), QChar(u'и'));
        QCOMPARE(reference::callbookKey(u'и', 14, 14, Capitals::First), QChar());
        QCOMPARE(reference::callbookKey(u'q', 13, 14, Capitals::All), QChar(u'Q'));
        QCOMPARE(reference::callbookKey(u'q', 14, 14, Capitals::All), QChar());
        QCOMPARE(reference::callbookKey(u'q', 0, kNoLimit, Capitals::AsTyped), QChar(u'q'));
        QCOMPARE(reference::callbookKey(u'q', 1000, kNoLimit, Capitals::AsTyped), QChar(u'q'));
    }

    void names()
    {
        QCOMPARE(reference::countryName(QStringLiteral("ABCDEFGHIJKLMNO")), QStringLiteral("ABCDEFGHIJKLMN"));
        QCOMPARE(reference::countryName(QStringLiteral("ABCDEFGHIJKLMN")), QStringLiteral("ABCDEFGHIJKLMN"));
        QCOMPARE(reference::countryName(QStringLiteral("AB")), QStringLiteral("AB"));
        const auto entry = [](const char16_t *prf, const char16_t *PREF) {
            reference::CountryEntry typed;
            typed.prf = QString::fromUtf16(prf);
            typed.PREF = QString::fromUtf16(PREF);
            return typed;
        };
        QVERIFY(reference::canBeAdded(entry(u"A", u"B")));
        QVERIFY(!reference::canBeAdded(entry(u"A", u"")));
        QVERIFY(!reference::canBeAdded(entry(u"", u"B")));
        QVERIFY(!reference::canBeAdded(entry(u"", u"")));
    }
};

QTEST_GUILESS_MAIN(ReferenceStatementsTest)
#include "referencestatements.moc"
