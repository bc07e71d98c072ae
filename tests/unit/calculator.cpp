// The calculator's keys. A sequence is written with blanks between the captions; a number may stand as one
// word ("12,5"), "1~200" is a 1 with two hundred zeros typed after it, "show" is the panel's being shown.
#include "calc/calculator.h"

#include "support/stepbystep.h"

#include <QTest>

#include <array>
#include <cmath>
#include <random>

using calc::Calculator;
using calc::Fault;
using testsupport::StepByStep;

namespace {

struct Row {
    const char *name;
    const char *keys;
    const char *display;
    const char *memory;
};

struct StateRow {
    const char *keys;
    double accumulator;
    double operand;
    const char *pending;
};

struct FaultRow {
    const char *name;
    const char *before;
    const char *key;
    Fault fault;
    const char *after;
    const char *display; ///< after all of that
};

constexpr auto kTyped = "0123456789,";

/// Every single key of a written sequence.
QStringList keysOf(const QString &sequence)
{
    QStringList keys;
    const QStringList words = sequence.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &word : words) {
        const QStringList parts = word.split(QLatin1Char('~'));
        const bool number = QLatin1String(kTyped).contains(word.front());
        if (!number || word == QLatin1String("00>0")) {
            keys.append(word);
            continue;
        }
        for (const QChar c : parts.front())
            keys.append(QString(c));
        for (int zeros = parts.size() > 1 ? parts.back().toInt() : 0; zeros > 0; --zeros)
            keys.append(QStringLiteral("0"));
    }
    return keys;
}

Fault pressed(Calculator &calculator, const QString &key)
{
    if (key != QLatin1String("show"))
        return calculator.press(key);
    calculator.shown();
    return Fault::None;
}

/// Presses a sequence in which no key may fail; tells the first that does.
QString failing(Calculator &calculator, const char *sequence)
{
    const QStringList keys = keysOf(QString::fromUtf8(sequence));
    for (const QString &key : keys) {
        if (pressed(calculator, key) != Fault::None)
            return key;
    }
    return {};
}

} // namespace

class CalculatorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sequences_data()
    {
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<QString>("display");
        QTest::addColumn<QString>("memory");
        const auto add = [](const auto &rows) {
            for (const Row &row : rows)
                QTest::newRow(row.name) << QByteArray(row.keys) << QString::fromUtf8(row.display)
                                        << QString::fromUtf8(row.memory);
        };
        add(std::array{
            Row{"entry: nothing", "", "", ""},
            Row{"entry: digit", "5", "5", ""},
            Row{"entry: all digits", "1 2 3 4 5 6 7 8 9 0", "1234567890", ""},
            Row{"entry: comma first", ",", "0,", ""},
            Row{"entry: comma first, then digits", ", 5", "0,5", ""},
            Row{"entry: two commas first", ", ,", "0,", ""},
            Row{"entry: comma last", "5 ,", "5,", ""},
            Row{"entry: comma twice", "5 , ,", "5,", ""},
            Row{"entry: comma again later", "3 , 5 , 2", "3,52", ""},
            Row{"entry: leading zero", "0 5", "05", ""},
            Row{"entry: two zeros", "0 0", "00", ""},
            Row{"entry: zeros with comma", "0 0 , 5 0", "00,50", ""},
            Row{"entry: long", "123456789012345678901234567890", "123456789012345678901234567890", ""},
            Row{"entry: long fraction", "1234567890,0987654321", "1234567890,0987654321", ""},
        });
        add(std::array{
            Row{"first key +", "+", "", ""},
            Row{"first key -", "-", "", ""},
            Row{"first key *", "*", "", ""},
            Row{"first key /", "/", "", ""},
            Row{"first key + then 5 =", "+ 5 =", "5", ""},
            Row{"first key - then 5 =", "- 5 =", "-5", ""},
            Row{"first key * then 5 =", "* 5 =", "0", ""},
            Row{"first key / then 5 =", "/ 5 =", "0", ""},
            Row{"first key + stores the next", "+ 5 -", "", ""},
            Row{"first key + then 5 - 2", "+ 5 - 2 =", "3", ""},
            Row{"first key - is forgotten", "- 5 - 2 =", "3", ""},
            Row{"first key - then 5 + 2", "- 5 + 2 =", "7", ""},
            Row{"first key + =", "+ =", "0", ""},
            Row{"first key / =", "/ =", "0", ""},
        });
        add(std::array{
            Row{"operator empties", "5 +", "", ""},
            Row{"second operand", "5 + 3", "3", ""},
            Row{"comma after operator", "5 + ,", "0,", ""},
            Row{"comma in both operands", "1,5 + 2,5", "2,5", ""},
            Row{"+", "5 + 3 =", "8", ""},
            Row{"-", "5 - 3 =", "2", ""},
            Row{"- to below 0", "3 - 5 =", "-2", ""},
            Row{"*", "5 * 3 =", "15", ""},
            Row{"/", "15 / 3 =", "5", ""},
            Row{"/ with fraction", "10 / 4 =", "2,5", ""},
            Row{"/ periodic", "1 / 3 =", "0,333333333333333", ""},
            Row{"/ rounded up", "2 / 3 =", "0,666666666666667", ""},
            Row{"/ by 0", "7 / 0 =", "0", ""},
            Row{"/ by 0,0", "7 / 0,0 =", "0", ""},
            Row{"/ by 0, then on", "7 / 0 = + 5 =", "5", ""},
            Row{"fractions", "1,5 + 2,25 =", "3,75", ""},
            Row{"no binary dust", "0,1 + 0,2 =", "0,3", ""},
            Row{"no trailing zeros", "1,50 + 1,50 =", "3", ""},
            Row{"unfinished operand", "5, + 3, =", "8", ""},
            Row{"leading zeros count nothing", "05 + 03 =", "8", ""},
            Row{"large", "1~10 * 1~10 =", "1e+20", ""},
            Row{"large is read back", "1~10 * 1~10 = / 1~19 =", "10", ""},
            Row{"fifteen digits", "123456789012345 + 0 =", "123456789012345", ""},
            Row{"sixteen digits", "1234567890123456 + 0 =", "1,23456789012346e+15", ""},
            Row{"small", "1 / 100000 =", "1e-05", ""},
            Row{"small is read back", "1 / 100000 = * 100000 =", "1", ""},
            Row{"below all numbers", "1 / 1~200 = / 1~200 =", "0", ""},
            Row{"0 + 7", "0 + 7 =", "7", ""},
            Row{"0 - 7", "0 - 7 =", "-7", ""},
            Row{"0 * 7", "0 * 7 =", "0", ""},
            Row{"0 / 7", "0 / 7 =", "0", ""},
            Row{"7 + 0", "7 + 0 =", "7", ""},
            Row{"7 - 0", "7 - 0 =", "7", ""},
            Row{"7 * 0", "7 * 0 =", "0", ""},
        });
        add(std::array{
            Row{"chain: + shows", "5 + 3 +", "8", ""},
            Row{"chain: - shows", "5 + 3 -", "8", ""},
            Row{"chain: * shows", "5 + 3 *", "8", ""},
            Row{"chain: / shows", "5 + 3 /", "8", ""},
            Row{"chain: new number", "5 + 3 + 2", "2", ""},
            Row{"chain: comma starts a new number", "5 + 3 + ,", "0,", ""},
            Row{"chain: +", "5 + 3 + 2 =", "10", ""},
            Row{"chain: left to right", "2 + 3 * 4 =", "20", ""},
            Row{"chain: * +", "2 * 3 + 4 =", "10", ""},
            Row{"chain: / /", "100 / 5 / 2 =", "10", ""},
            Row{"chain: - - -", "10 - 2 - 3 - 4 =", "1", ""},
            Row{"chain: all four", "2 + 3 * 4 - 6 / 2 =", "7", ""},
            Row{"chain: nine sums", "1 + 2 + 3 + 4 + 5 + 6 + 7 + 8 + 9 =", "45", ""},
            Row{"chain: factorial", "1 * 2 * 3 * 4 * 5 * 6 * 7 * 8 * 9 * 10 =", "3628800", ""},
            Row{"chain: halves", "1 / 2 / 2 / 2 / 2 / 2 =", "0,03125", ""},
            Row{"chain: signs", "1 - 2 + 3 - 4 + 5 - 6 =", "-3", ""},
            Row{"chain: tenths", "0,1 + 0,1 + 0,1 =", "0,3", ""},
            Row{"chain: whole precision is kept", "1 / 3 * 3 =", "1", ""},
            Row{"chain: after = only what is shown", "1 / 3 = * 3 =", "0,999999999999999", ""},
            Row{"result 0 is shown", "5 - 5 -", "0", ""},
            Row{"result 0, then - 3 =", "5 - 5 - 3 =", "-3", ""},
            Row{"result 0, then + 3 =", "5 - 5 + 3 =", "3", ""},
            Row{"result 0, then * 3 =", "5 - 5 * 3 =", "0", ""},
            Row{"result 0, then / 3 =", "5 - 5 / 3 =", "0", ""},
            Row{"result 0 drops the operator", "5 - 5 - 3 +", "", ""},
            Row{"result 0 drops the operator, on", "5 - 5 - 3 + 2 =", "5", ""},
            Row{"result 0 drops *", "5 - 5 * 3 * 2 =", "6", ""},
            Row{"operand 0 is passed over", "3 * 0 +", "0", ""},
            Row{"operand 0 is passed over, on", "3 * 0 + 4 =", "7", ""},
            Row{"operand 0 of /", "3 / 0 + 4 =", "7", ""},
            Row{"operand 0 of +", "3 + 0 - 1 =", "2", ""},
            Row{"operand 0,", "3 + 0, - 1 =", "2", ""},
        });
        add(std::array{
            Row{"replaced: nothing is computed", "5 + 3 + -", "8", ""},
            Row{"replaced: counts with the last", "5 + 3 + - 2 =", "6", ""},
            Row{"replaced: by the same", "5 + 3 + + 2 =", "10", ""},
            Row{"replaced: many times", "5 + - * / 2 =", "2,5", ""},
            Row{"replaced: after the first operand", "5 + - 3 =", "2", ""},
            Row{"replaced: * *", "5 + 3 * * 2 =", "16", ""},
            Row{"replaced: then =", "5 + 3 + + + =", "8", ""},
            Row{"replaced: on an empty display", "+ - 5 =", "-5", ""},
            Row{"replaced: result 0", "5 - 5 - - 3 =", "-3", ""},
            Row{"replaced: result 0 by +", "5 - 5 - + 3 =", "3", ""},
            Row{"replaced: comma", "5 + 3 + - , 5", "0,5", ""},
            Row{"replaced: later in a chain", "5 + 3 + 2 - + 1 =", "11", ""},
            Row{"replaced: C clears", "5 + 3 + C", "", ""},
            Row{"replaced: C clears all", "5 + + C 3 =", "0", ""},
            Row{"replaced: an operator after C", "5 + C - 3 =", "-3", ""},
            Row{"replaced: = is no operator", "5 + 3 = + 2 =", "10", ""},
            Row{"replaced: after =", "5 + 3 = + - 2 =", "6", ""},
            Row{"not replaced: past a function key", "5 + 3 + +/- -", "0", ""},
            Row{"not replaced: past a function key, on", "5 + 3 + +/- - 2 =", "-2", ""},
            Row{"not replaced: past +/-, another operator", "5 + 3 + +/- + 2 =", "2", ""},
            Row{"not replaced: past a root", "16 + 9 + кор +", "30", ""},
            Row{"not replaced: past the memory", "5 + 3 + M+ -", "16", "8"},
            Row{"not replaced: past MC", "5 + 3 + MC -", "16", ""},
            Row{"replaced: past the showing, nothing to count", "5 + 3 + show - 2 =", "6", ""},
            Row{"not replaced: past the root, on", "16 + 9 + кор - 2 =", "28", ""},
            Row{"not replaced: past MC, on", "5 + 3 + MC - 2 =", "14", ""},
        });
        add(std::array{
            Row{"=: first key", "=", "0", ""},
            Row{"=: twice", "= =", "0", ""},
            Row{"=: nothing pending", "5 =", "0", ""},
            Row{"=: nothing pending, then a digit", "5 = 3", "3", ""},
            Row{"=: no second operand of +", "5 + =", "5", ""},
            Row{"=: no second operand of -", "5 - =", "5", ""},
            Row{"=: no second operand of *", "5 * =", "0", ""},
            Row{"=: no second operand of /", "5 / =", "0", ""},
            Row{"=: after a running +", "5 + 3 + =", "8", ""},
            Row{"=: after a running -", "5 + 3 - =", "8", ""},
            Row{"=: after a running *", "5 * 3 * =", "0", ""},
            Row{"=: after a running /", "5 * 3 / =", "0", ""},
            Row{"=: again", "5 + 3 = =", "0", ""},
            Row{"=: again, then on", "5 + 3 = = + 2 =", "2", ""},
            Row{"=: new number", "5 + 3 = 2", "2", ""},
            Row{"=: new number, nothing pending", "5 + 3 = 2 =", "0", ""},
            Row{"=: goes on with -", "5 + 3 = - 2 =", "6", ""},
            Row{"=: goes on with *", "5 + 3 = * 2 =", "16", ""},
            Row{"=: goes on twice", "5 + 3 = - 2 = * 4 =", "24", ""},
            Row{"=: operator empties", "5 + 3 = +", "", ""},
            Row{"=: operator and =", "5 + 3 = + =", "8", ""},
            Row{"=: comma", "5 + 3 = ,", "0,", ""},
            Row{"=: comma is free again", "1,5 + 3 = 2,5", "2,5", ""},
            Row{"C: first key", "C", "", ""},
            Row{"C: twice", "C C", "", ""},
            Row{"C: number", "5 C", "", ""},
            Row{"C: second operand", "5 + 3 C", "", ""},
            Row{"C: nothing pending any more", "5 + C 3 =", "0", ""},
            Row{"C: after =", "5 + 3 = C", "", ""},
            Row{"C: starts afresh", "5 + 3 + C 2 + 1 =", "3", ""},
            Row{"C: comma is free again", "1,5 C 2,5", "2,5", ""},
            Row{"C: comma first", "1,5 C ,", "0,", ""},
            Row{"C: memory stays", "5 M+ C", "", "5"},
        });
        add(std::array{
            Row{"+/-: empty", "+/-", "", ""},
            Row{"+/-: 0", "0 +/-", "0", ""},
            Row{"+/-: 0,", "0, +/-", "0", ""},
            Row{"+/-: 00", "00 +/-", "0", ""},
            Row{"+/-: number", "5 +/-", "-5", ""},
            Row{"+/-: twice", "5 +/- +/-", "5", ""},
            Row{"+/-: unfinished", "5, +/-", "-5", ""},
            Row{"+/-: as the number is written", "01,50 +/-", "-1,5", ""},
            Row{"+/-: small", "0,0001 +/-", "-0,0001", ""},
            Row{"+/-: smaller", "0,00001 +/-", "-1e-05", ""},
            Row{"+/-: large", "1~20 +/-", "-1e+20", ""},
            Row{"+/-: large twice", "1~20 +/- +/-", "1e+20", ""},
            Row{"+/-: after operator", "5 + +/-", "", ""},
            Row{"+/-: after operator, on", "5 + +/- 3 =", "8", ""},
            Row{"+/-: first operand", "5 +/- + 3 =", "-2", ""},
            Row{"+/-: second operand", "5 - 3 +/- =", "8", ""},
            Row{"+/-: in a chain", "5 * 3 +/- + 1 =", "-14", ""},
            Row{"+/-: after a running result", "5 + 3 + +/-", "-8", ""},
            Row{"+/-: of a running result is not taken", "5 + 3 + +/- =", "8", ""},
            Row{"+/-: after =", "5 + 3 = +/-", "-8", ""},
            Row{"+/-: after =, on", "5 + 3 = +/- + 10 =", "2", ""},
            Row{"+/-: after =, new number", "5 + 3 = +/- 7", "7", ""},
            Row{"+/-: result 0", "5 - 5 = +/-", "0", ""},
            Row{"+/-: leaves the number open", "5 +/- 3", "-53", ""},
            Row{"+/-: second comma", "1,5 +/- , 2", "-1,5,2", ""},
            Row{"+/-: second comma counts nothing", "1,5 +/- , 2 + 1 =", "-0,5", ""},
            Row{"+/-: second comma is written off", "1,5 +/- , 2 +/-", "1,5", ""},
            Row{"+/-: third comma", "1,5 +/- , , 2", "-1,5,2", ""},
            Row{"+/-: digit after an exponent", "1~20 +/- 5", "-1e+205", ""},
            Row{"+/-: comma after an exponent", "1~20 +/- , 5", "-1e+20,5", ""},
            Row{"+/-: comma after an exponent counts nothing", "1~20 +/- , 5 +/-", "1e+20", ""},
        });
        add(std::array{
            Row{"root: empty", "кор", "", ""},
            Row{"root: 0", "0 кор", "0", ""},
            Row{"root: 0,", "0, кор", "0", ""},
            Row{"root: 9", "9 кор", "3", ""},
            Row{"root: 2", "2 кор", "1,4142135623731", ""},
            Row{"root: 3", "3 кор", "1,73205080756888", ""},
            Row{"root: fraction", "0,25 кор", "0,5", ""},
            Row{"root: twice", "16 кор кор", "2", ""},
            Row{"root: large", "1~40 кор", "1e+20", ""},
            Row{"root: after operator", "5 + кор", "", ""},
            Row{"root: after =", "5 + 11 = кор", "4", ""},
            Row{"root: result 0", "5 - 5 = кор", "0", ""},
            Row{"root: both operands", "9 кор + 16 кор =", "7", ""},
            Row{"root: second operand", "1 + 81 кор =", "10", ""},
            Row{"root: running", "10 - 81 кор -", "1", ""},
            Row{"root: of a running result", "16 + 9 + кор", "5", ""},
            Row{"root: of a running result is not taken", "16 + 9 + кор =", "25", ""},
            Row{"root: nothing pending", "81 кор =", "0", ""},
            Row{"root: leaves the number open", "9 кор 2", "32", ""},
            Row{"root: comma", "9 кор , 5", "3,5", ""},
            Row{"root: second comma", "6,25 кор , 5", "2,5,5", ""},
        });
        add(std::array{
            Row{"M+: empty", "M+", "", ""},
            Row{"M+: 0", "0 M+", "0", ""},
            Row{"M+: result 0", "5 - 5 = M+", "0", ""},
            Row{"M+: empty beside a memory", "5 M+ C M+", "", "5"},
            Row{"M+: 0 beside a memory", "5 M+ C 0 M+", "0", "5"},
            Row{"M+: copies", "5 M+", "5", "5"},
            Row{"M+: copies a trailing comma", "5, M+", "5,", "5,"},
            Row{"M+: copies 0,", "0, M+", "0,", "0,"},
            Row{"M+: copies leading zeros", "005 M+", "005", "005"},
            Row{"M+: copies trailing zeros", "1,50 M+", "1,50", "1,50"},
            Row{"M+: copies two commas", "1,5 +/- , 2 M+", "-1,5,2", "-1,5,2"},
            Row{"M+: two commas count as before the second", "1,5 +/- , 2 M+ M+", "-1,5,2", "-3"},
            Row{"M+: copies a sign", "5 +/- 00>0 M+", "-", "-"},
            Row{"M+: a sign counts as 0", "5 +/- 00>0 M+ C 4 M+", "4", "4"},
            Row{"M+: adds", "5 M+ + 3 M+", "3", "8"},
            Row{"M+: twice", "5 M+ M+", "5", "10"},
            Row{"M+: a trailing comma is added to", "5, M+ M+", "5,", "10"},
            Row{"M+: a trailing comma is added", "5 M+ C 2, M+", "2,", "7"},
            Row{"M+: fractions", "1,5 M+ C 2,25 M+", "2,25", "3,75"},
            Row{"M+: negative", "5 +/- M+", "-5", "-5"},
            Row{"M+: after operator", "5 + M+", "", ""},
            Row{"M+: of a running result", "5 + 3 + M+", "8", "8"},
            Row{"M+: after =", "3 + 4 = M+", "7", "7"},
            Row{"M+: after =, new number", "3 + 4 = M+ 2 M+", "2", "9"},
            Row{"M+: leaves the number open", "5 M+ 3", "53", "5"},
            Row{"M+: second comma", "1,5 M+ , 5", "1,5,5", "1,5"},
            Row{"M+: large", "1~20 +/- M+ M+", "-1e+20", "-2e+20"},
            Row{"M+: calculation goes on", "5 + 3 M+ =", "8", "3"},
            Row{"M-: empty", "M-", "", ""},
            Row{"M-: 0", "0 M-", "0", ""},
            Row{"M-: after operator", "5 + M-", "", ""},
            Row{"M-: result 0", "5 - 5 = M-", "0", ""},
            Row{"M-: subtracts", "5 M+ C 3 M-", "3", "2"},
            Row{"M-: to 0", "5 M+ M-", "5", "0"},
            Row{"M-: 0 is a memory", "5 M+ M- M-", "5", "-5"},
            Row{"M-: 0 is added to", "5 M+ M- M+", "5", "5"},
            Row{"M-: below 0", "1,5 M+ C 2 M-", "2", "-0,5"},
            Row{"M-: from a trailing comma", "5, M+ C 2, M-", "2,", "3"},
            Row{"M-: after =", "9 M+ C 3 + 4 = M-", "7", "2"},
            Row{"M-: of a running result", "9 M+ C 3 + 4 + M-", "7", "2"},
            Row{"M-: second comma", "2,5 M+ M- , 5", "2,5,5", "0"},
            Row{"MC: first key", "MC", "", ""},
            Row{"MC: empties", "5 M+ MC", "5", ""},
            Row{"MC: then M+ copies", "5, M+ M+ MC M+", "5,", "5,"},
            Row{"MC: number goes on", "5 MC 3", "53", ""},
            Row{"MC: no second comma", "1,5 MC , 5", "1,55", ""},
            Row{"MC: calculation goes on", "5 + 3 + MC 2 =", "10", ""},
            Row{"MC: after =", "5 + 3 = MC 2", "2", ""},
            Row{"memory outlives =", "5 M+ + 3 =", "8", "5"},
        });
        add(std::array{
            Row{"00>0: empty", "00>0", "", ""},
            Row{"00>0: 0", "0 00>0", "", ""},
            Row{"00>0: 0,", "0, 00>0", "0", ""},
            Row{"00>0: digit", "5 00>0", "", ""},
            Row{"00>0: number", "123 00>0", "12", ""},
            Row{"00>0: to nothing and beyond", "12 00>0 00>0 00>0", "", ""},
            Row{"00>0: fraction", "1,5 00>0", "1,", ""},
            Row{"00>0: comma", "1, 00>0", "1", ""},
            Row{"00>0: comma, then another", "1, 00>0 , 5", "1,5", ""},
            Row{"00>0: second comma", "1,5 00>0 , 7", "1,,7", ""},
            Row{"00>0: second comma counts nothing", "1,5 00>0 , 7 + 1 =", "2", ""},
            Row{"00>0: comma after a fraction", "3,57 00>0 , 2", "3,5,2", ""},
            Row{"00>0: comma after a fraction counts nothing", "3,57 00>0 , 2 + 1 =", "4,5", ""},
            Row{"00>0: sign remains", "5 +/- 00>0", "-", ""},
            Row{"00>0: sign goes", "5 +/- 00>0 00>0", "", ""},
            Row{"00>0: sign, digit", "5 +/- 00>0 4", "-4", ""},
            Row{"00>0: sign, comma", "5 +/- 00>0 , 5", "-,5", ""},
            Row{"00>0: sign, comma is a number", "5 +/- 00>0 , 5 + 1 =", "0,5", ""},
            Row{"00>0: sign counts as 0", "5 +/- 00>0 + 3 =", "3", ""},
            Row{"00>0: sign +/-", "5 +/- 00>0 +/-", "0", ""},
            Row{"00>0: sign root", "5 +/- 00>0 кор", "0", ""},
            Row{"00>0: negative 0", "5 +/- 00>0 0 +/-", "0", ""},
            Row{"00>0: second operand", "5 + 13 00>0 =", "6", ""},
            Row{"00>0: whole second operand", "5 + 3 00>0 =", "5", ""},
            Row{"00>0: whole second operand, operator", "5 + 3 00>0 - 2 =", "3", ""},
            Row{"00>0: after operator", "5 + 00>0", "", ""},
            Row{"00>0: of a running result", "5 + 8 + 00>0", "1", ""},
            Row{"00>0: of a running result is not taken", "5 + 8 + 00>0 2 =", "15", ""},
            Row{"00>0: after =", "5 + 8 = 00>0", "1", ""},
            Row{"00>0: after =, on", "5 + 8 = 00>0 + 1 =", "2", ""},
            Row{"00>0: after =, new number", "5 + 8 = 00>0 7", "7", ""},
            Row{"00>0: long fraction", "1 / 3 = 00>0", "0,33333333333333", ""},
            Row{"00>0: exponent", "1~10 * 1~10 = 00>0 + 1 =", "101", ""},
            Row{"00>0: sign of an exponent", "1~10 * 1~10 = 00>0 00>0", "1e+", ""},
            Row{"00>0: sign of an exponent counts nothing", "1~10 * 1~10 = 00>0 00>0 + 1 =", "2", ""},
            Row{"00>0: e", "1~10 * 1~10 = 00>0 00>0 00>0", "1e", ""},
            Row{"00>0: e counts nothing", "1~10 * 1~10 = 00>0 00>0 00>0 + 1 =", "2", ""},
            Row{"00>0: memory stays", "5 M+ 00>0", "", "5"},
        });
        add(std::array{
            Row{"show: first", "show", "", ""},
            Row{"show: number", "5 show", "", ""},
            Row{"show: memory stays", "5 M+ show", "", "5"},
            Row{"show: second operand goes", "5 + 3 show =", "5", ""},
            Row{"show: another second operand", "5 + 3 show 2 =", "7", ""},
            Row{"show: accumulator stays", "5 + show 3 =", "8", ""},
            Row{"show: running result stays", "5 + 3 + show 2 =", "10", ""},
            Row{"show: running result and =", "5 + 3 + show =", "8", ""},
            Row{"show: operator is replaced", "5 + 3 + show - 2 =", "6", ""},
            Row{"show: operator after a number", "5 + 3 show - 2 =", "3", ""},
            Row{"show: result of =", "5 + 3 = show", "", ""},
            Row{"show: result of = is not taken", "5 + 3 = show + 2 =", "2", ""},
            Row{"show: comma is free again", "1,5 show , 5", "0,5", ""},
            Row{"show: memory key", "5 show M+", "", ""},
        });
    }
    void sequences()
    {
        QFETCH(QByteArray, keys);
        QFETCH(QString, display);
        QFETCH(QString, memory);
        Calculator calculator;
        QCOMPARE(failing(calculator, keys.constData()), QString());
        QCOMPARE(calculator.display(), display);
        QCOMPARE(calculator.memory(), memory);
    }

    void states_data()
    {
        QTest::addColumn<double>("accumulator");
        QTest::addColumn<double>("operand");
        QTest::addColumn<QString>("pending");
        for (const StateRow &row : std::array{
                 StateRow{"", 0, 0, ""},
                 StateRow{"5", 0, 5, ""},
                 StateRow{"5,", 0, 5, ""},
                 StateRow{"5 +", 5, 0, "+"},
                 StateRow{"5 + 3", 5, 3, "+"},
                 StateRow{"5 + 3 +", 8, 0, "+"},
                 StateRow{"5 + 3 + -", 8, 0, "-"},
                 StateRow{"5 + 3 + - *", 8, 0, "*"},
                 StateRow{"5 + 3 =", 0, 0, ""},
                 StateRow{"5 + 3 = +/-", 0, 0, ""},
                 StateRow{"5 + 3 = /", 8, 0, "/"},
                 StateRow{"5 + 3 C", 0, 0, ""},
                 StateRow{"5 + C", 0, 0, ""},
                 StateRow{"5 + 3 + C", 0, 0, ""},
                 StateRow{"5 + 3 +/-", 5, -3, "+"},
                 StateRow{"5 + 9 кор", 5, 3, "+"},
                 StateRow{"5 + 13 00>0", 5, 1, "+"},
                 StateRow{"5 + 3 00>0", 5, 0, "+"},
                 StateRow{"5 + 3 show", 5, 0, "+"},
                 StateRow{"5 + 3 M+", 5, 3, "+"},
                 StateRow{"5 + 3 + +/-", 8, 0, "+"},
                 StateRow{"5 + 3 + show", 8, 0, "+"},
                 StateRow{"5 - 5 -", 0, 0, "-"},
                 StateRow{"5 - 5 - 3 +", 3, 0, "+"},
                 StateRow{"3 * 0 +", 3, 0, "+"},
                 StateRow{"+", 0, 0, "+"},
                 StateRow{"+ 5 -", 5, 0, "-"},
                 StateRow{"3,57 00>0 , 2", 0, 3.5, ""},
                 StateRow{"5 +/- 00>0", 0, 0, ""},
                 StateRow{"1~20 +/-", 0, -1e20, ""},
                 StateRow{"1 / 4 /", 0.25, 0, "/"},
             })
            QTest::newRow(row.keys) << row.accumulator << row.operand << QString::fromLatin1(row.pending);
    }
    void states()
    {
        QFETCH(double, accumulator);
        QFETCH(double, operand);
        QFETCH(QString, pending);
        Calculator calculator;
        QCOMPARE(failing(calculator, QTest::currentDataTag()), QString());
        QCOMPARE(calculator.accumulator(), accumulator);
        QCOMPARE(calculator.operand(), operand);
        QCOMPARE(calculator.pending(), pending);
    }

    void faults_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QString>("key");
        QTest::addColumn<Fault>("fault");
        QTest::addColumn<QByteArray>("after");
        QTest::addColumn<QString>("display");
        constexpr auto kNoMemory = Fault::MemoryEmpty;
        constexpr auto kNegative = Fault::NegativeRoot;
        constexpr auto kLarge = Fault::TooLarge;
        for (const FaultRow &row : std::array{
                 FaultRow{"M-: number", "5", "M-", kNoMemory, "+ 3 =", "8"},
                 FaultRow{"M-: 0,", "0,", "M-", kNoMemory, "5", "0,5"},
                 FaultRow{"M-: second operand", "5 + 3", "M-", kNoMemory, "=", "8"},
                 FaultRow{"M-: running result", "5 + 3 +", "M-", kNoMemory, "2 =", "10"},
                 FaultRow{"M-: running result, operator", "5 + 3 +", "M-", kNoMemory, "- 2 =", "14"},
                 FaultRow{"M-: after =", "5 + 3 =", "M-", kNoMemory, "2", "2"},
                 FaultRow{"M-: after MC", "5 M+ MC", "M-", kNoMemory, "3", "53"},
                 FaultRow{"M-: comma is free again", "1,5", "M-", kNoMemory, ", 2", "1,5,2"},
                 FaultRow{"root: number", "5 +/-", "кор", kNegative, "+ 8 =", "3"},
                 FaultRow{"root: near 0", "0,5 +/-", "кор", kNegative, "+ 1 =", "0,5"},
                 FaultRow{"root: with memory", "5 +/- M+", "кор", kNegative, "+ 8 =", "3"},
                 FaultRow{"root: second operand", "5 + 3 +/-", "кор", kNegative, "=", "2"},
                 FaultRow{"root: running result", "3 - 5 +", "кор", kNegative, "2 =", "0"},
                 FaultRow{"root: after =", "3 - 5 =", "кор", kNegative, "7", "7"},
                 FaultRow{"root: after =, operator", "3 - 5 =", "кор", kNegative, "+ 7 =", "5"},
                 FaultRow{"root: comma is free again", "1 +/- , 5", "кор", kNegative, ", 2", "-1,5,2"},
                 FaultRow{"= * too large", "1~200 * 1~200", "=", kLarge, "show 2 =", "2e+200"},
                 FaultRow{"= / too large", "1~200 / 0,0~200 1", "=", kLarge, "show 4 =", "2,5e+199"},
                 FaultRow{"+ after * too large", "1~200 * 1~200", "+", kLarge, "show 2 =", "2e+200"},
                 FaultRow{"- after * too large", "1~200 * 1~200", "-", kLarge, "show 2 =", "2e+200"},
                 FaultRow{"* after * too large", "1~200 * 1~200", "*", kLarge, "show 2 *", "2e+200"},
                 FaultRow{"/ after * too large", "1~200 * 1~200", "/", kLarge, "C 8 / 2 =", "4"},
                 FaultRow{"= + too large", "1~308 + 1~308", "=", kLarge, "00>0 =", "1,1e+308"},
                 FaultRow{"= - too large", "1~308 +/- - 1~308", "=", kLarge, "00>0 =", "-1,1e+308"},
                 FaultRow{"= not to be written in 15 digits", "17976931348623157~292 + 0", "=", kLarge,
                          "show C 1", "1"},
                 FaultRow{"M+ too large", "1~308 M+", "M+", kLarge, "C 1", "1"},
                 FaultRow{"M- too large", "1~308 M+ +/-", "M-", kLarge, "C 1", "1"},
                 FaultRow{"+/- not to be written in 15 digits", "17976931348623157~292", "+/-", kLarge,
                          "show 5", "5"},
                 FaultRow{"typed too large: +", "1~309", "+", kLarge, "C 5", "5"},
                 FaultRow{"typed too large: =", "1~309", "=", kLarge, "C 5", "5"},
                 FaultRow{"typed too large: second operand", "5 + 1~309", "=", kLarge, "show 3 =", "8"},
                 FaultRow{"typed too large: operator", "5 + 1~309", "-", kLarge, "show 3 =", "8"},
                 FaultRow{"typed too large: +/-", "1~309", "+/-", kLarge, "00>0 +/-", "-1e+308"},
                 FaultRow{"typed too large: root", "1~309", "кор", kLarge, "00>0 кор", "1e+154"},
                 FaultRow{"typed too large: M+", "1~309", "M+", kLarge, "show 7 M+ 1", "71"},
                 FaultRow{"typed too large: M-", "1~309", "M-", kLarge, "show", ""},
                 FaultRow{"typed exponent too large", "1~20 +/- 55", "+", kLarge, "00>0 00>0 + 1~20 =", "0"},
             })
            QTest::newRow(row.name) << QByteArray(row.before) << QString::fromUtf8(row.key) << row.fault
                                    << QByteArray(row.after) << QString::fromUtf8(row.display);
    }
    void faults()
    {
        QFETCH(QByteArray, before);
        QFETCH(QString, key);
        QFETCH(Fault, fault);
        QFETCH(QByteArray, after);
        QFETCH(QString, display);
        Calculator calculator;
        QCOMPARE(failing(calculator, before.constData()), QString());
        const Calculator untouched = calculator;
        QCOMPARE(calculator.press(key), fault);
        QCOMPARE(calculator.display(), untouched.display());
        QCOMPARE(calculator.memory(), untouched.memory());
        QCOMPARE(calculator.accumulator(), untouched.accumulator());
        QCOMPARE(calculator.operand(), untouched.operand());
        QCOMPARE(calculator.pending(), untouched.pending());
        QCOMPARE(failing(calculator, after.constData()), QString());
        QCOMPARE(calculator.display(), display);
    }

    void keysThatNothingStops()
    {
        // A number that is too large for calculating can still be left in every other way.
        for (const QString &key : {QStringLiteral("C"), QStringLiteral("00>0"), QStringLiteral("MC"),
                                   QStringLiteral("5"), QStringLiteral(",")}) {
            Calculator calculator;
            QCOMPARE(failing(calculator, "7 M+ show 1~309"), QString());
            QCOMPARE(calculator.operand(), std::numeric_limits<double>::infinity());
            QCOMPARE(calculator.press(key), Fault::None);
        }
    }

    void unknownCaptions()
    {
        Calculator calculator;
        QCOMPARE(failing(calculator, "1,5 M+ + 2,5"), QString());
        for (const QString &caption : {QString(), QStringLiteral("x"), QStringLiteral("Ж")}) {
            QCOMPARE(calculator.press(caption), Fault::None);
            QCOMPARE(calculator.display(), QStringLiteral("2,5"));
            QCOMPARE(calculator.memory(), QStringLiteral("1,5"));
            QCOMPARE(calculator.accumulator(), 1.5);
            QCOMPARE(calculator.pending(), QStringLiteral("+"));
        }
    }

    void randomKeys()
    {
        constexpr int kKeys = 200'000;
        constexpr unsigned kSeed = 19'990'101;
        constexpr unsigned kDigitShare = 60; // of a hundred keys
        const QStringList others = {
            QStringLiteral("+"),  QStringLiteral("-"),   QStringLiteral("*"),    QStringLiteral("*"),
            QStringLiteral("/"),  QStringLiteral("="),   QStringLiteral("+/-"),  QStringLiteral("M+"),
            QStringLiteral("M-"), QStringLiteral("кор"), QStringLiteral("00>0"),
        };
        const QStringList rare = {QStringLiteral("C"), QStringLiteral("MC"), QStringLiteral("show"),
                                  QStringLiteral("1~150")};
        const QRegularExpression shape(QStringLiteral("^[-+0-9,e]*$"));
        std::mt19937 random(kSeed); // its numbers are the same everywhere, those of the distributions are not
        const auto oneOf = [&](const QStringList &keys) {
            return keys[static_cast<qsizetype>(random() % static_cast<unsigned>(keys.size()))];
        };

        Calculator calculator;
        StepByStep model;
        QStringList keys;
        QStringList history;
        QMap<Fault, int> met;
        for (int i = 0; i < kKeys; ++i) {
            if (keys.isEmpty()) {
                if (random() % 100 == 0)
                    keys = keysOf(oneOf(rare));
                else if (random() % 100 < kDigitShare)
                    keys.append(QString(QLatin1Char(kTyped[random() % 11])));
                else
                    keys.append(oneOf(others));
            }
            const QString key = keys.takeFirst();
            history.append(key);
            if (history.size() > 40)
                history.removeFirst();
            const QByteArray told = history.join(QLatin1Char(' ')).toUtf8();

            const Fault fault = pressed(calculator, key);
            ++met[fault];
            QVERIFY2(fault == model.press(key), told.constData());
            QVERIFY2(calculator.display() == model.display, told.constData());
            QVERIFY2(calculator.memory() == model.memory, told.constData());
            QVERIFY2(calculator.accumulator() == model.accumulator, told.constData());
            QVERIFY2(calculator.operand() == model.operand(), told.constData());
            QVERIFY2(calculator.pending() == model.pending, told.constData());

            QVERIFY2(shape.match(calculator.display()).hasMatch(), told.constData());
            QVERIFY2(shape.match(calculator.memory()).hasMatch(), told.constData());
            QVERIFY2(std::isfinite(calculator.accumulator()), told.constData());
            QVERIFY2(std::isfinite(StepByStep::value(calculator.memory())), told.constData());
            if (key == QLatin1String("=") && fault == Fault::None)
                QVERIFY2(base::parseNumber(calculator.display()).has_value(), told.constData());
        }
        for (const Fault fault : {Fault::None, Fault::MemoryEmpty, Fault::NegativeRoot, Fault::TooLarge})
            QVERIFY2(met.value(fault) > 100, QByteArray::number(met.value(fault)).constData());
    }
};

QTEST_GUILESS_MAIN(CalculatorTest)
#include "calculator.moc"
