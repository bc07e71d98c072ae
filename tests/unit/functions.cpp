#include "store/functions.h"
#include "base/date.h"
#include "base/text.h"
#include "store/sqlite.h"

#include <QTemporaryDir>
#include <QTest>

using store::Connection;

class FunctionsTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;
    std::unique_ptr<Connection> m_db;

private Q_SLOTS:
    void initTestCase() { m_db = Connection::create(m_folder.filePath(QStringLiteral("f.mdb"))); }

    void patterns_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("matches");
        QTest::newRow("prefix") << "UA*"
                                << "UA3ABC" << true;
        QTest::newRow("prefix, case") << "ua*"
                                      << "UA3ABC" << true;
        QTest::newRow("prefix, other") << "UA*"
                                       << "RA3ABC" << false;
        QTest::newRow("all") << "*"
                             << "" << true;
        QTest::newRow("middle") << "*3*"
                                << "UA3ABC" << true;
        QTest::newRow("two stars") << "U*3*C"
                                   << "UA3ABC" << true;
        QTest::newRow("star then more") << "*BC"
                                        << "ABCBC" << true;
        QTest::newRow("one") << "U?3"
                             << "UA3" << true;
        QTest::newRow("one, none") << "U?3"
                                   << "U3" << false;
        QTest::newRow("digit") << "UA#"
                               << "UA3" << true;
        QTest::newRow("digit, letter") << "UA#"
                                       << "UAA" << false;
        QTest::newRow("set") << "U[A-C]3"
                             << "Ub3" << true;
        QTest::newRow("set, out") << "U[A-C]3"
                                  << "UD3" << false;
        QTest::newRow("negated set") << "U[!A-C]3"
                                     << "UD3" << true;
        QTest::newRow("open set is itself") << "U[A"
                                            << "U[A" << true;
        QTest::newRow("Cyrillic") << "моск*"
                                  << "МОСКВА" << true;
        QTest::newRow("yo differs") << "ёлк*"
                                    << "елка" << false;
        QTest::newRow("empty pattern") << ""
                                       << "" << true;
        QTest::newRow("empty pattern, text") << ""
                                             << "A" << false;
        QTest::newRow("percent is itself") << "U%"
                                           << "UA" << false;
    }
    void patterns()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, text);
        QFETCH(bool, matches);
        QCOMPARE(store::matchesPattern(pattern, text), matches);
        QCOMPARE(m_db->singleNumber(QStringLiteral("SELECT jet_like(?,?)"), {pattern, text}),
                 qint64{matches});
    }

    /// The expression that stands in the file's index reads every text as the program itself does.
    void dateKeyAgrees()
    {
        QStringList texts = {
            QStringLiteral("31.02.05"),  QStringLiteral("29.02.24"),  QStringLiteral("29.02.23"),
            QStringLiteral("00.01.05"),  QStringLiteral("01.00.05"),  QStringLiteral("01.13.05"),
            QStringLiteral("1.2.2002"),  QStringLiteral("5.3.02"),    QStringLiteral("05.3.02"),
            QStringLiteral("5.03.1930"), QStringLiteral("01.01.30"),  QStringLiteral("31.12.29"),
            QStringLiteral("05-Mar-02"), QStringLiteral(""),          QStringLiteral("now"),
            QStringLiteral("05.03.2"),   QStringLiteral("05.03.020"), QStringLiteral("99.99.99"),
            QStringLiteral("о5.03.02"),  QStringLiteral("05,03,02"),  QStringLiteral("05.03.02 ")};
        for (int day = 0; day <= 32; ++day)
            for (int month = 0; month <= 13; ++month)
                for (const char *year : {"00", "29", "30", "99", "1999", "2024", "1900"})
                    texts.append(QStringLiteral("%1.%2.%3")
                                     .arg(day, 2, 10, QLatin1Char('0'))
                                     .arg(month, 2, 10, QLatin1Char('0'))
                                     .arg(QLatin1String(year)));
        const QString sql = QStringLiteral("SELECT %1 FROM (SELECT ? AS d)")
                                .arg(store::dateKeyExpression(QStringLiteral("d")));
        for (const QString &text : std::as_const(texts)) {
            const QString key = m_db->single(sql, {text}).value_or(QString());
            const auto date = text.endsWith(QLatin1Char(' ')) ? std::nullopt : base::parseLogDate(text);
            const QString expected = date ? date->toString(u"yyyy-MM-dd") : QString();
            if (key != expected)
                QFAIL(qPrintable(QStringLiteral("«%1»: %2, not %3").arg(text, key, expected)));
        }
    }

    /// The collation of the connection orders as the comparison that it stands for.
    void collationAgrees()
    {
        const QStringList texts = {QString(),
                                   QStringLiteral("a"),
                                   QStringLiteral("B"),
                                   QStringLiteral("Ab"),
                                   QStringLiteral("Ёж"),
                                   QStringLiteral("еж"),
                                   QStringLiteral("ЁЖ"),
                                   QStringLiteral("Ежи"),
                                   QStringLiteral("жук"),
                                   QStringLiteral("Köln"),
                                   QStringLiteral("京都"),
                                   QStringLiteral("я京"),
                                   QStringLiteral("😀"),
                                   QStringLiteral("№ 5"),
                                   QStringLiteral("яя"),
                                   QStringLiteral("ЯЯ")};
        const auto sign = [](qint64 value) { return value < 0 ? -1 : value > 0 ? 1 : 0; };
        for (const QString &a : texts)
            for (const QString &b : texts) {
                const qint64 order = m_db->singleNumber(
                    QStringLiteral("SELECT (?1 > ?2 COLLATE RUSSIAN) - (?1 < ?2 COLLATE RUSSIAN)"), {a, b});
                QCOMPARE(sign(order), sign(base::compareRussian(a, b)));
            }
    }

    void nothingOfOursIsStored()
    {
        QVERIFY(!store::dateKeyExpression(QStringLiteral("ddate")).contains(QStringLiteral("jet_")));
        QVERIFY(!store::dateKeyExpression(QStringLiteral("ddate")).contains(QStringLiteral("RUSSIAN")));
    }
};

QTEST_GUILESS_MAIN(FunctionsTest)
#include "functions.moc"
