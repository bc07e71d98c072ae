#pragma once

#include "qsl/sources.h"

#include <QDate>
#include <QStringList>

#include <array>
#include <functional>
#include <optional>

namespace qsl {

/// The bureau's own-callsign key from the own callsign: from its fourth character on where it is longer than
/// four; the whole of it where it has three; otherwise it stays as it was.
[[nodiscard]] QString ownCallKey(const QString &ownCall, const QString &before);

/// Questions while a contact is copied into the blank.
struct BlankQuestions {
    std::function<QString()> time;      ///< the contact has none; whatever is answered is taken
    std::function<bool()> contestIs599; ///< the report is a contest's: 599 (true) or 59
};

/// A row of the blank for which no mark could be made.
struct Unmarked {
    int row = 0; ///< from 1
    QString call;
    QString date;
};

struct MarkResult {
    int contacts = 0;                ///< marked
    QList<Unmarked> notFound;        ///< rows of the blank without a contact in the log
    std::optional<Unmarked> refused; ///< this row cannot be looked for: nothing has been marked
    QString reason;                  ///< why it cannot, in Russian
    bool stopped = false;            ///< by the operator: nothing has been marked
};

/// Fields of the log that are entered by hand, in the order of the entry fields.
inline constexpr int kHandFields = 10;
using HandEntry = std::array<QString, kHandFields>;
[[nodiscard]] QString handField(int index);

/// The blank of contacts for cards, and what goes from it into the log. The functions throw store::Error.
class Marking {
public:
    explicit Marking(Sources &sources) : m_sources(sources) {}

    /// Callsign of the contact copied last.
    [[nodiscard]] const QString &blankCall() const noexcept { return m_blankCall; }

    /// Why the callbook could not be asked for the contact copied last, if it could not; its route is empty.
    [[nodiscard]] const std::optional<store::Error> &callbookFailure() const noexcept
    {
        return m_callbookFailure;
    }

    /// Copies a row of the grid of contacts into the blank, and points the hand-entry source at its contact.
    /// A time asked for goes into the log as well. On failure the blank is as it was.
    void copyToBlank(int row, const BlankQuestions &questions);

    /// Told after each row; false stops, and nothing is marked.
    using Step = std::function<bool(int done, int total)>;
    /// Marks a contact of the log for each row of the blank as sent on `today`: the first stored one with its
    /// band, callsign and day. All marks or none; the blank stays.
    [[nodiscard]] MarkResult markSent(const QDate &today, const Step &step);

    void emptyBlank();

    /// Stores a contact entered by hand. On failure nothing is stored.
    void addContact(const HandEntry &entry, const QString &ownKey, const QString &country);

private:
    void fillBlank(int row, const BlankQuestions &questions);
    void lookUpCallbook(const QString &call);
    [[nodiscard]] QString cell(int row, const char *field);

    Sources &m_sources;
    QString m_blankCall;
    std::optional<store::Error> m_callbookFailure;
};

} // namespace qsl
