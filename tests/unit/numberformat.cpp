// Number formats of workbooks: what a cell shows.
#include "foreign/numberformat.h"

#include <QTest>

#include <limits>

using foreign::NumberFormat;

class NumberFormatTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void numbersAsShown_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        const auto row = [](const char16_t *format, double value, const char16_t *text) {
            const QString name = QStringLiteral("%1 %2").arg(QString::fromUtf16(format)).arg(value);
            QTest::newRow(name.toUtf8().constData())
                << QString::fromUtf16(format) << value << QString::fromUtf16(text);
        };
        row(u"General", 14, u"14");
        row(u"General", 1.8, u"1,8");
        row(u"General", -0.5, u"-0,5");
        row(u"General", -0.0, u"0");
        row(u"General", 0.1 + 0.2, u"0,3");
        row(u"General", 1e10, u"10000000000");
        row(u"General", 1e20, u"1E+20");
        row(u"Основной", 7.5, u"7,5");
        row(u"0", 14.5, u"15");
        row(u"0", -14.4, u"-14");
        row(u"0", -0.4, u"0");
        row(u"0", 1e17, u"100000000000000000");
        row(u"0.00", 1.005, u"1,01");
        row(u"0.00", 7, u"7,00");
        row(u"0.00", 0.004, u"0,00");
        row(u"0.00", 999.999, u"1000,00");
        row(u"0.0##", 1.5, u"1,5");
        row(u"0.0##", 1.25, u"1,25");
        row(u"#.##", 0.5, u",5");
        row(u".00", 3.5, u"3,50");
        row(u"0000", 630, u"0630");
        row(u"0000", 12345, u"12345");
        row(u"00\":\"00", 630, u"06:30");
        row(u"00\\.00\\.00", 50302, u"05.03.02");
        row(u"###-##-##", 1234567, u"123-45-67");
        row(u"#,##0", 1234567, u"1 234 567");
        row(u"#,##0", 999, u"999");
        row(u"#,##0.00", -1234.5, u"-1 234,50");
        row(u"00,000", 12, u"00 012");
        row(u"0,", 12345, u"12");
        row(u"0%", 0.256, u"26%");
        row(u"0.00%", 0.25, u"25,00%");
        row(u"0.00E+00", 12345, u"1,23E+04");
        row(u"0.00E+00", 0.00012, u"1,20E-04");
        row(u"0.00E+00", 9.999, u"1,00E+01");
        row(u"0E-0", 500, u"5E2");
        row(u"##0.0E+0", 12345, u"12,3E+3");
        row(u"##0.0E+0", 0.012, u"12,0E-3");
        row(u"0.00E+00", 0, u"0,00E+00");
        row(u"0;(0)", -5, u"(5)");
        row(u"0;-0;\"нет\"", 0, u"нет");
        row(u"0;-0;;@", 0, u"");
        row(u";;;", 5, u"");
        row(u"[Red]0", 5, u"5");
        row(u"[Red]", 5, u"5");
        row(u"0_);[Red](0)", 5, u"5");
        row(u"[$€-407]0", 5, u"€5");
        row(u"#,##0\"р.\"", 1500, u"1 500р.");
        row(u"\"№ \"General", 12, u"№ 12");
        row(u"0\" MHz\"", 14, u"14 MHz");
        row(u"Основной\" МГц\"", 14, u"14 МГц");
        row(u"# ?/?", 0.5, u"0,5");
        row(u"[>100]0.0;0.00", 5, u"5");
        row(u"@", 1234, u"1234");
        row(u"0.00", std::numeric_limits<double>::infinity(), u"#ЧИСЛО!");
        row(u"General", std::numeric_limits<double>::quiet_NaN(), u"#ЧИСЛО!");
    }

    void numbersAsShown()
    {
        QFETCH(QString, format);
        QFETCH(double, value);
        QFETCH(QString, text);
        const NumberFormat number(format);
        QVERIFY(number.kind() == NumberFormat::Kind::Number);
        QCOMPARE(number.text(value, false), text);
    }

    void datesAsShown_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        const auto row = [](const char16_t *format, double value, const char16_t *text) {
            const QString name = QStringLiteral("%1 %2").arg(QString::fromUtf16(format)).arg(value);
            QTest::newRow(name.toUtf8().constData())
                << QString::fromUtf16(format) << value << QString::fromUtf16(text);
        };
        constexpr double kDay = 37321; // 6 March 2002
        constexpr double kMinute = 1.0 / 1440;
        for (const char16_t *format : {u"dd/mm/yy", u"m/d/yyyy", u"yyyy\\-mm\\-dd", u"d-mmm-yy", u"mmm-yy",
                                       u"[$-419]d mmmm yyyy\" г.\"", u"ДД.ММ.ГГ"})
            row(format, kDay, u"06.03.02");
        row(u"dd.mm.yy", kDay + 0.99, u"06.03.02");
        row(u"dd.mm.yy", 0.5, u"00.01.00");
        row(u"dd.mm.yy", 1, u"01.01.00");
        row(u"dd.mm.yy", 59, u"28.02.00");
        row(u"dd.mm.yy", 60, u"29.02.00");
        row(u"dd.mm.yy", 61, u"01.03.00");
        row(u"dd.mm.yy", -1, u"-1");
        row(u"dd.mm.yy", 2958465, u"31.12.99");
        row(u"dd.mm.yy", 2958466, u"2958466");
        row(u"dd.mm.yy", 1e300, u"1E+300");
        for (const char16_t *format : {u"h:mm", u"hh:mm:ss", u"h:mm AM/PM", u"h:mm a/p", u"mm:ss.0", u"ч:мм"})
            row(format, 848 * kMinute, u"14:08");
        row(u"hh:mm", kDay + 9 * 60 * kMinute + 5 * kMinute, u"09:05");
        row(u"hh:mm", 0.99999, u"23:59");
        row(u"hh:mm", 0.999999, u"00:00");
        row(u"[h]:mm", 1.5, u"36:00");
        row(u"[h]:mm", 0.25, u"06:00");
        row(u"[h]:mm", 0.9999999, u"24:00");
        row(u"dd/mm/yy hh:mm", kDay + 848 * kMinute, u"06.03.02 14:08");
        row(u"dd/mm/yy hh:mm", kDay + 0.999999, u"07.03.02 00:00");
    }

    void datesAsShown()
    {
        QFETCH(QString, format);
        QFETCH(double, value);
        QFETCH(QString, text);
        const NumberFormat number(format);
        QVERIFY(number.kind() != NumberFormat::Kind::Number);
        QCOMPARE(number.text(value, false), text);
    }

    void daysFrom1904()
    {
        const NumberFormat date(QStringLiteral("dd.mm.yy"));
        QCOMPARE(date.text(0, true), QStringLiteral("01.01.04"));
        QCOMPARE(date.text(37321 - 1462, true), QStringLiteral("06.03.02"));
        QCOMPARE(NumberFormat(QStringLiteral("[h]:mm")).text(1.5, true), QStringLiteral("36:00"));
    }

    void formatsByNumberAlone()
    {
        for (const int number : {14, 15, 16, 17})
            QCOMPARE(NumberFormat::builtIn(number).text(37321.5, false), QStringLiteral("06.03.02"));
        for (const int number : {18, 19, 20, 21, 45, 46, 47})
            QCOMPARE(NumberFormat::builtIn(number).text(0.5, false), QStringLiteral("12:00"));
        QCOMPARE(NumberFormat::builtIn(22).text(37321.5, false), QStringLiteral("06.03.02 12:00"));
        QCOMPARE(NumberFormat::builtIn(0).text(1.25, false), QStringLiteral("1,25"));
        QCOMPARE(NumberFormat::builtIn(1).text(1.25, false), QStringLiteral("1"));
        QCOMPARE(NumberFormat::builtIn(2).text(1.255, false), QStringLiteral("1,26"));
        QCOMPARE(NumberFormat::builtIn(4).text(1234.5, false), QStringLiteral("1 234,50"));
        QCOMPARE(NumberFormat::builtIn(9).text(0.5, false), QStringLiteral("50%"));
        QCOMPARE(NumberFormat::builtIn(49).text(5, false), QStringLiteral("5"));
        QCOMPARE(NumberFormat::builtIn(1000).text(1.25, false), QStringLiteral("1,25"));
    }

    void oversizedFormatsAreGeneral()
    {
        QCOMPARE(NumberFormat(QString(60000, u'0')).text(5, false), QStringLiteral("5"));
    }
};

QTEST_APPLESS_MAIN(NumberFormatTest)
#include "numberformat.moc"
