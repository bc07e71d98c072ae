#include "base/date.h"
#include "base/number.h"
#include "base/text.h"

#include <QStringDecoder>
#include <QTest>

class BaseTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void codesOfTheCodePage()
    {
        // Every code decoded by an independent decoder comes back as itself.
        QStringDecoder decoder("windows-1251");
        QVERIFY(decoder.isValid());
        for (int code = 0; code < 256; ++code) {
            if (code == 0x98)
                continue; // unused
            const QString c = decoder(QByteArray(1, static_cast<char>(code)));
            QCOMPARE(c.size(), 1);
            QCOMPARE(base::cp1251Code(c.front()), code);
            QCOMPARE(base::isCp1251Cyrillic(c.front()), code >= 192);
        }
        QCOMPARE(base::cp1251Code(QChar(0x4E00)), -1);
        QCOMPARE(base::cp1251Code(QChar(u'ё')), 184);
    }

    void russianOrder()
    {
        const QStringList sorted = {QString(),
                                    QStringLiteral("10"),
                                    QStringLiteral("Zoo"),
                                    QStringLiteral("Егор"),
                                    QStringLiteral("ежик"),
                                    QStringLiteral("Ёжик"),
                                    QStringLiteral("жук"),
                                    QStringLiteral("яма")};
        for (int i = 0; i < sorted.size(); ++i)
            for (int j = 0; j < sorted.size(); ++j) {
                const int order = base::compareRussian(sorted[i], sorted[j]);
                QCOMPARE(order < 0, i < j);
                QCOMPARE(order == 0, i == j);
            }
        QCOMPARE(base::compareRussian(u"МОСКВА", u"москва"), 0);
        QVERIFY(base::compareRussian(u"Елка", u"Ёлка") != 0);
        QCOMPARE(base::foldCase(u"Ёлка ua"), QStringLiteral("ЁЛКА UA"));
        QVERIFY(base::foldCase(u"е") != base::foldCase(u"ё"));
    }

    void blanks()
    {
        QCOMPARE(base::withoutTrailingBlanks(u"A B  ").toString(), QStringLiteral("A B"));
        QCOMPARE(base::withoutTrailingBlanks(u"   ").toString(), QString());
        QVERIFY(base::isAscii(u"UA3/"));
        QVERIFY(!base::isAscii(u"UAЗ"));
    }

    void numbers_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isNumber");
        QTest::addColumn<double>("value");
        QTest::newRow("comma") << "55,75" << true << 55.75;
        QTest::newRow("point") << "55.75" << true << 55.75;
        QTest::newRow("negative") << "-77,5" << true << -77.5;
        QTest::newRow("blanks") << "  7 " << true << 7.0;
        QTest::newRow("empty") << "" << false << 0.0;
        QTest::newRow("word") << "abc" << false << 0.0;
        QTest::newRow("two commas") << "1,2,3" << false << 0.0;
        QTest::newRow("infinity") << "inf" << false << 0.0;
        QTest::newRow("too large") << "1e999" << false << 0.0;
        QTest::newRow("hex") << "0x10" << false << 0.0;
    }
    void numbers()
    {
        QFETCH(QString, text);
        QFETCH(bool, isNumber);
        QFETCH(double, value);
        const auto parsed = base::parseNumber(text);
        QCOMPARE(parsed.has_value(), isNumber);
        QCOMPARE(parsed.value_or(0.0), value);
        QCOMPARE(base::numberOrZero(text), value);
    }
    void numberTexts()
    {
        QCOMPARE(base::formatNumber(59.5), QStringLiteral("59,5"));
        QCOMPARE(base::formatNumber(-0.0), QStringLiteral("0"));
        QCOMPARE(base::formatNumber(0.1 + 0.2), QStringLiteral("0,3"));
        QCOMPARE(base::formatNumber(1.0 / 3.0), QStringLiteral("0,333333333333333"));
        QCOMPARE(base::formatNumber(123456789012345.0), QStringLiteral("123456789012345"));
    }

    void dates_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QDate>("date");
        QTest::newRow("plain") << "05.03.02" << QDate(2002, 3, 5);
        QTest::newRow("short") << "5.3.02" << QDate(2002, 3, 5);
        QTest::newRow("mixed") << "5.03.02" << QDate(2002, 3, 5);
        QTest::newRow("long year") << "05.03.1987" << QDate(1987, 3, 5);
        QTest::newRow("short, long year") << "1.2.2002" << QDate(2002, 2, 1);
        QTest::newRow("pivot below") << "31.12.29" << QDate(2029, 12, 31);
        QTest::newRow("pivot above") << "01.01.30" << QDate(1930, 1, 1);
        QTest::newRow("leap day") << "29.02.24" << QDate(2024, 2, 29);
        QTest::newRow("no leap day") << "29.02.23" << QDate();
        QTest::newRow("31 April") << "31.04.23" << QDate();
        QTest::newRow("month 13") << "01.13.23" << QDate();
        QTest::newRow("three-digit year") << "01.01.123" << QDate();
        QTest::newRow("two parts") << "01.01" << QDate();
        QTest::newRow("hyphens") << "01-01-23" << QDate();
        QTest::newRow("empty") << "" << QDate();
        QTest::newRow("word") << "вчера" << QDate();
    }
    void dates()
    {
        QFETCH(QString, text);
        QFETCH(QDate, date);
        QCOMPARE(base::parseLogDate(text).value_or(QDate()), date);
    }
    void times_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QTime>("time");
        QTest::newRow("plain") << "14:07" << QTime(14, 7);
        QTest::newRow("short hour") << "9:05" << QTime(9, 5);
        QTest::newRow("seconds") << "14:07:59" << QTime(14, 7);
        QTest::newRow("four digits") << "1407" << QTime(14, 7);
        QTest::newRow("three digits") << "905" << QTime(9, 5);
        QTest::newRow("midnight") << "00:00" << QTime(0, 0);
        QTest::newRow("blanks around") << " 14:07 " << QTime(14, 7);
        for (const char *none :
             {"", ":", "24:00", "12:60", "2400", "1260", "12", "12345", "14:7", "14:", ":07",
              "14:07:", "14:07:1:2", "14.07", "12::30", "-1:30", "ночь", "99999999999"})
            QTest::newRow(none) << QString::fromUtf8(none) << QTime();
    }
    void times()
    {
        QFETCH(QString, text);
        QFETCH(QTime, time);
        QCOMPARE(base::parseLogTime(text).value_or(QTime()), time);
    }
    void dateTexts()
    {
        QCOMPARE(base::logDate(QDate(2002, 3, 5)), QStringLiteral("05.03.02"));
        QCOMPARE(base::shortDate(QDate(2002, 3, 5)), QStringLiteral("05.03.2002"));
        QCOMPARE(base::shortTime(QTime(9, 5, 7)), QStringLiteral("9:05:07"));
        QCOMPARE(base::clockTime(QTime(9, 5, 7)), QStringLiteral("09:05:07"));
    }
};

QTEST_GUILESS_MAIN(BaseTest)
#include "base.moc"
