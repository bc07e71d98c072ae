#pragma once

#include <QString>
#include <QStringView>

namespace calc {

/// Why a key had no effect.
enum class Fault {
    None,
    MemoryEmpty,  ///< nothing to subtract from
    NegativeRoot, ///< square root of a negative number
    TooLarge      ///< a number beyond what double precision holds
};

/// Four-function calculator with one memory, driven by the captions of its keys.
///
/// It calculates strictly from left to right. Some of its ways look like slips and are not; operators know
/// them, so they stay:
///  * An accumulator of 0 means "none". A running result of 0 is forgotten together with its operator at the
///    next operator key: 5 - 5 - 3 + 2 = gives 5, although 5 - 5 - 3 = gives -3.
///  * A division by 0 gives 0, and so does "=" with no operator pending.
///  * A function key leaves the number open: 9 кор 2 reads "32". It also lets the number take a second comma.
///  * What is typed stays as typed ("05", "5,"), and "M+" copies it so into an empty memory.
class Calculator {
public:
    /// One key: "0" to "9", ","; "+", "-", "*", "/", "C"; "="; "+/-", "M+", "M-", "кор", "00>0"; "MC".
    /// After a fault everything is as before, save that any of the five function keys ends the watch for a
    /// second comma.
    [[nodiscard]] Fault press(QStringView caption);

    /// The panel is being shown: a new number starts; accumulator, pending operator and memory stay.
    void shown();

    /// Number being entered or last result, with a decimal comma; may be empty or unfinished ("5,", "-").
    [[nodiscard]] const QString &display() const noexcept { return m_display; }
    /// Empty means no memory.
    [[nodiscard]] const QString &memory() const noexcept { return m_memory; }
    /// First operand or running result; 0 means none.
    [[nodiscard]] double accumulator() const noexcept { return m_accumulator; }
    /// The number that "=" would take: the display's while it is being entered, 0 after an operator or "=".
    /// Infinite where more digits were typed than a number holds.
    [[nodiscard]] double operand() const;
    /// Operator that waits for its second operand; empty where none does.
    [[nodiscard]] const QString &pending() const noexcept { return m_pending; }

private:
    void digit(QStringView caption);
    [[nodiscard]] Fault operation(QStringView caption);
    [[nodiscard]] Fault equals();
    [[nodiscard]] Fault function(QStringView caption);
    void clear();

    QString m_display;
    QString m_memory;
    QString m_pending;
    /// Last operator, or a mark of its own after "="; empty after a digit. While it is not empty the next
    /// digit starts a new number.
    QString m_mark;
    double m_accumulator = 0.0;
    bool m_hasComma = false;
    bool m_afterOperator = false; ///< the key before was an operator
};

} // namespace calc
