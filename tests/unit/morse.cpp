// Morse table, element strings, speed, and what a transmission does with line and clock.
#include "cw/morse.h"
#include "cw/transmission.h"
#include "support/recordedline.h"

#include <QTest>

#include <map>

using cw::elementString;
using cw::morsePattern;
using testsupport::RecordedLine;

namespace {

/// The table once more, as dots and dashes: 1 is ".", 3 is "-".
const std::map<QString, QString> &signs()
{
    static const std::map<QString, QString> table = {
        {"AaАа", ".-"},   {"BbБб", "-..."}, {"WwВв", ".--"},  {"GgГг", "--."}, {"DdДд", "-.."},
        {"EeЕе", "."},    {"VvЖж", "...-"}, {"ZzЗз", "--.."}, {"IiИи", ".."},  {"JjЙй", ".---"},
        {"KkКк", "-.-"},  {"LlЛл", ".-.."}, {"MmМм", "--"},   {"NnНн", "-."},  {"OoОо", "---"},
        {"PpПп", ".--."}, {"RrРр", ".-."},  {"SsСс", "..."},  {"TtТт", "-"},   {"UuУу", "..-"},
        {"FfФф", "..-."}, {"HhХх", "...."}, {"CcЦц", "-.-."}, {"Чч", "---."},  {"Шш", "----"},
        {"QqЩщ", "--.-"}, {"YyЫы", "-.--"}, {"XxЬь", "-..-"}, {"Ээ", "..-.."}, {"Юю", "..--"},
        {"Яя", ".-.-"},   {"0", "-----"},   {"1", ".----"},   {"2", "..---"},  {"3", "...--"},
        {"4", "....-"},   {"5", "....."},   {"6", "-...."},   {"7", "--..."},  {"8", "---.."},
        {"9", "----."},   {":", "---..."},  {";", "-.-.-"},   {"?", "..--.."}, {"!", "--..--"},
        {"\"", ".-..-."}, {"'", ".----."},  {"()", "-.--.-"}, {",", ".-.-.-"}, {"-", "-....-"},
        {".", "......"},  {"/№", "-..-."},
    };
    return table;
}

QString patternOf(const QString &dots)
{
    QString pattern = dots;
    return pattern.replace(QLatin1Char('.'), QLatin1Char('1')).replace(QLatin1Char('-'), QLatin1Char('3'));
}

/// Level and units of each stretch of time, as "R" (RTS alone) or "D" (key down) with its length.
QStringList stretches(const QStringList &trace, double unit)
{
    QStringList list;
    bool key = false;
    for (const QString &step : trace) {
        if (step == QLatin1String("DTR 1"))
            key = true;
        else if (step == QLatin1String("DTR 0"))
            key = false;
        else if (step.startsWith(QLatin1String("wait ")))
            list.append((key ? QStringLiteral("D") : QStringLiteral("R")) +
                        QString::number(step.mid(5).toDouble() / unit));
    }
    return list;
}

constexpr double kFirstUnit = 60;    // ms: 150000 passes
constexpr double kSecondUnit = 61.2; // ms: (101 - 50) * 3000 passes

} // namespace

class MorseTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void table()
    {
        int characters = 0;
        for (const auto &[of, dots] : signs())
            for (const QChar c : of) {
                const QString expected = patternOf(dots);
                QCOMPARE(morsePattern(c), expected);
                ++characters;
            }
        QCOMPARE(characters, 52 + 62 + 10 + 13); // Latin, Cyrillic without Ъ and Ё, digits, signs
    }

    void everythingElseIsSilence()
    {
        QString known;
        for (const auto &[of, dots] : signs())
            known += of;
        int silent = 0;
        for (int code = 0; code <= 0xffff; ++code) {
            const QChar c(static_cast<char16_t>(code));
            if (known.contains(c))
                continue;
            QCOMPARE(morsePattern(c), QStringLiteral("0"));
            ++silent;
        }
        QCOMPARE(silent, 0x10000 - known.size());
        for (const QChar c : QStringLiteral(" ЪъЁё+=@_\n"))
            QCOMPARE(morsePattern(c), QStringLiteral("0"));
    }

    void elements_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("elements");
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("E E") << "E E"
                             << "100010";
        QTest::newRow("one dash") << "t"
                                  << "30";
        QTest::newRow("blank") << " "
                               << "00";
        QTest::newRow("cq") << "cq"
                            << "3131033130";
        QTest::newRow("both alphabets") << "Аa"
                                        << "130130";
        QTest::newRow("Ъ") << "Ъ"
                           << "00";
        QTest::newRow("73") << "73"
                            << "331110111330";
    }
    void elements()
    {
        QFETCH(QString, text);
        QFETCH(QString, elements);
        QCOMPARE(elementString(text), elements);
    }

    void charactersBegun()
    {
        // "ab " has the elements 13 0 3111 0 0 0.
        const QList<qsizetype> expected = {1, 1, 1, 2, 2, 2, 2, 2, 3, 3};
        for (qsizetype position = 1; position <= expected.size(); ++position)
            QCOMPARE(cw::charactersBegun(u"ab ", position), expected[position - 1]);
        QCOMPARE(cw::charactersBegun(u"", 1), 0);
    }

    void speed()
    {
        cw::Speed speed;
        QCOMPARE(speed.bar(), 50);
        QCOMPARE(speed.passes(), 150000); // until the bar is moved or a message has ended
        QCOMPARE(speed.wordsPerMinute(), 20);
        speed.recompute();
        QCOMPARE(speed.passes(), 153000);
        speed.setBar(100);
        QCOMPARE(speed.passes(), 3000);
        QCOMPARE(speed.unit(), std::chrono::microseconds(1200));
        QCOMPARE(speed.wordsPerMinute(), 1000);
        speed.setBar(1);
        QCOMPARE(speed.passes(), 300000);
        QCOMPARE(speed.wordsPerMinute(), 10);
        speed.setBar(0); // the bar has no such place
        QCOMPARE(speed.bar(), 1);
        speed.setBar(1000);
        QCOMPARE(speed.bar(), 100);
    }

    void wholeTrace()
    {
        RecordedLine line;
        cw::Speed speed;
        QList<qsizetype> positions;
        const cw::Result result =
            cw::transmit(u"e t", 2, speed, line, line, [&](qsizetype at) { positions.append(at); });
        QVERIFY(result.outcome == cw::Outcome::Sent);
        // 1 0 0 0 3 0: the last silence is not played; the tail goes by the unit taken anew.
        const QStringList expected = {"open 2",   "RTS 1",      "DTR 1",    "wait 60", "DTR 0",    "wait 60",
                                      "wait 120", "wait 120",   "wait 120", "DTR 1",   "wait 180", "DTR 0",
                                      "wait 60",  "wait 244.8", "RTS 0",    "close"};
        QCOMPARE(line.trace, expected);
        QCOMPARE(positions, QList<qsizetype>({1, 2, 3, 4, 5}));
    }

    void timings_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("units");
        QTest::newRow("gap of a blank is seven units")
            << "E E" << QStringList{"D1", "R1", "R2", "R2", "R2", "D1", "R1"};
        QTest::newRow("gap of characters is three units")
            << "ee" << QStringList{"D1", "R1", "R2", "D1", "R1"};
        QTest::newRow("dash") << "T" << QStringList{"D3", "R1"};
        QTest::newRow("inside a character")
            << "Ы" << QStringList{"D3", "R1", "D1", "R1", "D3", "R1", "D3", "R1"};
        QTest::newRow("silence") << "Ъ" << QStringList{"R2"};
        QTest::newRow("nothing") << "" << QStringList{};
    }
    void timings()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, units);
        RecordedLine line;
        cw::Speed speed;
        QVERIFY(cw::transmit(text, 1, speed, line, line).outcome == cw::Outcome::Sent);
        QStringList seen = stretches(line.trace, kFirstUnit);
        const QString tail = QStringLiteral("R") + QString::number(4 * kSecondUnit / kFirstUnit);
        QCOMPARE(seen, units + QStringList{tail});
        // The second message knows only the unit of the bar.
        line.trace.clear();
        QVERIFY(cw::transmit(text, 1, speed, line, line).outcome == cw::Outcome::Sent);
        seen = stretches(line.trace, kSecondUnit);
        QCOMPARE(seen, units + QStringList{"R4"});
    }

    void emptyTextOpensThePort()
    {
        RecordedLine line;
        cw::Speed speed;
        speed.setBar(100);
        QVERIFY(cw::transmit(u"", 4, speed, line, line).outcome == cw::Outcome::Sent);
        QCOMPARE(line.trace, QStringList({"open 4", "RTS 1", "wait 4.8", "RTS 0", "close"}));
    }

    void stoppedInEveryWait()
    {
        // "ab": 13 0 3111 0, of which 7 are played; two waits each but for the silence, and the tail.
        constexpr int kWaits = 6 * 2 + 1 + 1;
        for (int stopAt = 1; stopAt <= kWaits; ++stopAt) {
            RecordedLine line;
            cw::Speed speed;
            line.beforeWait = [&](int index) {
                if (index == stopAt)
                    line.stop();
            };
            const cw::Result result = cw::transmit(u"ab", 1, speed, line, line);
            QVERIFY(result.outcome == cw::Outcome::Stopped);
            QCOMPARE(line.trace.filter(QStringLiteral("wait")).size(), stopAt); // not one element more
            QVERIFY(!line.dtr && !line.rts);
            QCOMPARE(line.trace.last(), QStringLiteral("close"));
            QCOMPARE(line.trace[line.trace.size() - 2], QStringLiteral("RTS 0"));
            QCOMPARE(speed.passes(), 153000);
        }
    }

    void failingInEveryCall()
    {
        // open, RTS, four times DTR up and down for "a" "e" is 13 0 1: three key downs, RTS down.
        constexpr int kCalls = 1 + 1 + 3 * 2 + 1;
        for (int failAt = 1; failAt <= kCalls + 1; ++failAt) {
            RecordedLine line;
            line.failAt = failAt;
            cw::Speed speed;
            const cw::Result result = cw::transmit(u"ae", 1, speed, line, line);
            if (failAt > kCalls) {
                QVERIFY(result.outcome == cw::Outcome::Sent);
                break;
            }
            QVERIFY(result.outcome == cw::Outcome::Busy);
            QCOMPARE(result.reason, QStringLiteral("нет устройства"));
            QVERIFY(!line.dtr && !line.rts);
            // A port that was never open is not closed, any other is.
            QCOMPARE(line.trace.count(QStringLiteral("close")), failAt == 1 ? 0 : 1);
        }
    }
};

QTEST_GUILESS_MAIN(MorseTest)
#include "morse.moc"
