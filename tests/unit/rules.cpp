#include "logentry/bands.h"
#include "logentry/clockrules.h"
#include "logentry/keyrules.h"
#include "logentry/modes.h"
#include "logentry/ownkey.h"
#include "support/installation.h"

#include <QTest>

using namespace logentry;
using testsupport::FixedClock;

class RulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ownKey_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("key");
        QTest::newRow("0") << ""
                           << "";
        QTest::newRow("1") << "A"
                           << "A";
        QTest::newRow("3") << "AB1"
                           << "AB1";
        QTest::newRow("4") << "AB1C"
                           << "AB1C";
        QTest::newRow("5") << "AB1CD"
                           << "CD";
        QTest::newRow("6") << "RA3XYZ"
                           << "XYZ";
        QTest::newRow("8") << "AB1CDEFG"
                           << "CDEFG";
        QTest::newRow("9") << "AB1CDEFGH"
                           << "DEFGH";
        QTest::newRow("10") << "AB1CDEFGHI"
                            << "EFGHI";
        QTest::newRow("13") << "AB1CDEFGHIJKL"
                            << "HIJKL";
    }
    void ownKey()
    {
        QFETCH(QString, call);
        QFETCH(QString, key);
        QCOMPARE(ownCallKey(call), key);
    }

    void bandTexts()
    {
        QStringList texts;
        QStringList captions;
        for (int i = 0; i < kBandCount; ++i) {
            texts.append(bandText(i));
            captions.append(bandCaption(i));
        }
        QCOMPARE(texts,
                 QStringList({"1,8", "3,5", "7", "14", "21", "28", "10", "18", "24", "144", "430", "1200"}));
        QCOMPARE(captions,
                 QStringList({"1,8", "3,5", "7", "14", "21", "28", "10", "18", "24", "144", "430", "1,2"}));
    }
    void bandAtStart()
    {
        const BandSelector bands;
        QCOMPARE(bands.band(), QStringLiteral("14"));
        QCOMPARE(bands.index(), 3);
        QCOMPARE(bands.label(), QStringLiteral("14 MHz"));
        for (int i = 0; i < kBandCount; ++i)
            QCOMPARE(bands.marked(i), i == 3);
    }
    void clickResetsTenButtonsOnly()
    {
        BandSelector bands;
        bands.click(10);
        QCOMPARE(bands.band(), QStringLiteral("430"));
        QVERIFY(!bands.marked(3));
        bands.click(3);
        QVERIFY(bands.marked(10)); // keeps its mark
        QVERIFY(bands.marked(3));
        bands.click(11);
        QCOMPARE(bands.band(), QStringLiteral("1200"));
        QCOMPARE(bands.label(), QStringLiteral("1200 MHz"));
        bands.click(9);
        QVERIFY(bands.marked(10) && bands.marked(11) && bands.marked(9) && !bands.marked(3));
    }
    void arrowsMoveTheMark()
    {
        BandSelector bands;
        bands.keyReleased(Qt::Key_Left);
        QCOMPARE(bands.band(), QStringLiteral("7"));
        QVERIFY(!bands.marked(3) && bands.marked(2));
        bands.keyReleased(Qt::Key_Up);
        bands.keyReleased(Qt::Key_Up);
        QCOMPARE(bands.index(), 0);
        bands.keyReleased(Qt::Key_Left);
        QCOMPARE(bands.index(), 0);
        QVERIFY(bands.marked(0));
        for (int i = 0; i < 11; ++i)
            bands.keyReleased(i % 2 == 0 ? Qt::Key_Right : Qt::Key_Down);
        QCOMPARE(bands.index(), 11);
        QCOMPARE(bands.band(), QStringLiteral("1200")); // the button reads "1,2"
        bands.keyReleased(Qt::Key_Right);
        QCOMPARE(bands.index(), 11);
        QVERIFY(bands.marked(11));
    }
    void anyKeyMarksTheCurrentBand()
    {
        BandSelector bands;
        bands.click(10);
        bands.keyReleased(Qt::Key_Left); // an arrow does take the mark of 430 away
        QVERIFY(!bands.marked(10));
        QCOMPARE(bands.band(), QStringLiteral("144"));
        bands.keyReleased(Qt::Key_A);
        QVERIFY(bands.marked(9));
    }

    void modes()
    {
        QCOMPARE(modeCaptions(), QStringList({"SSB", "CW", "SSTV", "FM", "MT63", "PSK", "RTTY"}));
        const QStringList reports = {"59", "599", "595", "595", "599", "599", "599"};
        for (int i = 0; i < reports.size(); ++i)
            QCOMPARE(modeReport(modeCaptions()[i]), reports[i]);
        QCOMPARE(modeReport(QStringLiteral("AM")), QString());
    }

    void clockUtc()
    {
        FixedClock clock;
        auto texts = tick(clock, true, true, {});
        QCOMPARE(texts.date, QStringLiteral("05.03.26"));
        QCOMPARE(texts.time, QStringLiteral("14:07:09"));
        clock.now = QDateTime(QDate(2026, 12, 31), QTime(23, 59, 59), Qt::UTC);
        QCOMPARE(tick(clock, true, true, {}).date, QStringLiteral("31.12.26"));
        clock.now = clock.now.addSecs(1);
        texts = tick(clock, true, true, {});
        QCOMPARE(texts.date, QStringLiteral("01.01.27"));
        QCOMPARE(texts.time, QStringLiteral("00:00:00"));
    }
    void clockLocal()
    {
        FixedClock clock;
        auto texts = tick(clock, true, false, {});
        QCOMPARE(texts.date, QStringLiteral("05.03.26")); // 05.03.2026 cut
        QCOMPARE(texts.time, QStringLiteral("09:05:00")); // 9:05:00 padded
        clock.localNow = QDateTime(QDate(2026, 3, 5), QTime(19, 5, 0));
        QCOMPARE(tick(clock, true, false, {}).time, QStringLiteral("19:05:00"));
    }
    void clockManual_data()
    {
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("time");
        QTest::addColumn<QString>("newDate");
        QTest::addColumn<QString>("newTime");
        QTest::newRow("long date") << "01.02.2002"
                                   << "9:05:00"
                                   << "01.02.02"
                                   << "09:05:00";
        QTest::newRow("eight and nine") << "1.2.2002"
                                        << "9:05"
                                        << "1.2.2002"
                                        << "9:05";
        QTest::newRow("nine") << "1.02.2002"
                              << "09:05:00"
                              << "1.02.2002"
                              << "09:05:00";
        QTest::newRow("any ten") << "абвгдежзик"
                                 << "абвгдеж"
                                 << "абвгдеик"
                                 << "0абвгдеж";
        QTest::newRow("empty") << ""
                               << ""
                               << ""
                               << "";
    }
    void clockManual()
    {
        QFETCH(QString, date);
        QFETCH(QString, time);
        QFETCH(QString, newDate);
        QFETCH(QString, newTime);
        FixedClock clock;
        const auto texts = tick(clock, false, true, {date, time});
        QCOMPARE(texts.date, newDate);
        QCOMPARE(texts.time, newTime);
    }

    void callsignKeys_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("entered");
        QTest::addColumn<bool>("switched");
        QTest::newRow("letter") << "a"
                                << "A" << false;
        QTest::newRow("digit") << "3"
                               << "3" << false;
        QTest::newRow("slash") << "/"
                               << "/" << false;
        QTest::newRow("hyphen") << "-"
                                << "" << false;
        QTest::newRow("blank") << " "
                               << "" << false;
        QTest::newRow("full stop") << "."
                                   << "" << false;
        QTest::newRow("Cyrillic, small") << "ф"
                                         << "A" << true;
        QTest::newRow("Cyrillic, capital") << "Й"
                                           << "Q" << true;
        QTest::newRow("Cyrillic letter on a sign key") << "э"
                                                       << "" << true;
        QTest::newRow("yu is on the full stop") << "ю"
                                                << "" << true;
        QTest::newRow("yo is no letter of the table's range") << "ё"
                                                              << "" << false;
        QTest::newRow("umlaut") << "ü"
                                << "" << false;
        QTest::newRow("Chinese") << "中"
                                 << "" << false;
        QTest::newRow("apostrophe") << "'"
                                    << "" << false;
        QTest::newRow("Backspace") << QString(QChar(8)) << QString(QChar(8)) << false;
    }
    void callsignKeys()
    {
        static testsupport::Installation in;
        static store::DataSource keys(QStringLiteral("Data14"), in.databases);
        keys.setDatabaseName(in.file(QStringLiteral("dbcall.mdb")));
        keys.setRecordSource(u"tblfont");
        QFETCH(QString, typed);
        QFETCH(QString, entered);
        QFETCH(bool, switched);
        const TypedKey key = callsignKey(typed.front(), 0, keys);
        QCOMPARE(key.character, entered.isEmpty() ? QChar() : entered.front());
        QCOMPARE(key.switchLayout, switched);
        const TypedKey last = callsignKey(QLatin1Char('a'), 12, keys);
        QCOMPARE(last.character, QLatin1Char('A'));
        QVERIFY(callsignKey(QLatin1Char('a'), 13, keys).character.isNull()); // the fourteenth
        QCOMPARE(callsignKey(QChar(8), 13, keys).character, QChar(8));       // Backspace passes
    }
    void everyCyrillicKeyHasItsLatinOne()
    {
        testsupport::Installation in;
        store::DataSource keys(QStringLiteral("Data14"), in.databases);
        keys.setDatabaseName(in.file(QStringLiteral("dbcall.mdb")));
        const QString russian = QStringLiteral("йцукенгшщзфывапролдячсмить");
        const QString latin = QStringLiteral("QWERTYUIOPASDFGHJKLZXCVBNM");
        for (qsizetype i = 0; i < russian.size(); ++i)
            QCOMPARE(callsignKey(russian[i], 0, keys).character, latin[i]);
    }

    void reportAndHemisphereKeys()
    {
        QCOMPARE(reportKey(QLatin1Char('5')).character, QLatin1Char('5'));
        QVERIFY(reportKey(QLatin1Char('a')).character.isNull());
        QVERIFY(reportKey(QChar(u'Я')).character.isNull());
        QVERIFY(reportKey(QLatin1Char(' ')).character.isNull());
        QVERIFY(reportKey(QChar(0x0663)).character.isNull()); // an Arabic digit
        QCOMPARE(hemisphereKey(QLatin1Char('w'), u"WE").character, QLatin1Char('W'));
        QVERIFY(hemisphereKey(QLatin1Char('N'), u"WE").character.isNull());
        QCOMPARE(hemisphereKey(QLatin1Char('s'), u"NS").character, QLatin1Char('S'));
        QCOMPARE(upperKey(QChar(u'я')).character, QChar(u'Я'));
    }
};

QTEST_GUILESS_MAIN(RulesTest)
#include "rules.moc"
