#pragma once

#include "awards/ui/frmdipin.h"
#include "support/bureau.h"

namespace testsupport {

/// The window of the application for an award, beside the main one.
class Application : public WithRig, public Driven {
public:
    /// `readOnly`: the databases' folder must not be written.
    explicit Application(const std::function<void(Installation &)> &prepare = {}, bool readOnly = false,
                         QSize size = {1366, 768});

    /// Rows of the files, in the order they were stored.
    [[nodiscard]] QStringList blank(const char *fields = "ccall") const;
    [[nodiscard]] QString title(const char *fields) const; ///< of the first row, joined by "|"
    /// Statements on the help file and on the log, as another program would run them.
    void helpSql(const char *statement) const;
    void logSql(const char *statement) const;
    /// The line of counts, once it has been counted.
    [[nodiscard]] QString counts() const;
    /// The operator goes to the main window, and back.
    void leave();
    void comeBack();

    store::Library databases; ///< of this window alone where the folder must not be written
    std::unique_ptr<awards::frmdipin> window;
};

/// Names and texts that the tests of this window share.
namespace application {

inline constexpr auto kGrid = "DBGrid1";
inline constexpr auto kNoSave = "Правка не сохранена. Закрыть окно без неё?";
inline constexpr auto kForbidTitle =
    "CREATE TRIGGER no BEFORE UPDATE ON tbltitul BEGIN SELECT RAISE(ABORT,'нельзя'); END";
inline constexpr auto kForbidBlank =
    "CREATE TRIGGER no BEFORE UPDATE ON tbllogTEMP BEGIN SELECT RAISE(ABORT,'нельзя'); END";
inline constexpr auto kAllow = "DROP TRIGGER no";

/// A title page and a blank of two rows.
void filled(const Installation &in);
/// A blank of so many rows, R1000 and up.
[[nodiscard]] std::function<void(Installation &)> longBlank(int rows);

} // namespace application

} // namespace testsupport
