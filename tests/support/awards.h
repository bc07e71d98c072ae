#pragma once

#include "awards/ui/frmdiplom.h"
#include "support/bureau.h"

namespace testsupport {

/// Awards of FRANCE, GERMANY and of Россия by region; countries and regions of smallTables(); an empty log.
void awardTables(const Installation &in);

/// The same with a log of eight contacts and a callbook that knows two of the stations.
void awardContacts(const Installation &in);

/// Adds an award: "strana=...|diplom=...".
void addAward(const Installation &in, const char *row);

/// The awards window beside the main one.
class Awards : public WithRig, public Driven {
public:
    /// `readOnly`: the databases' folder must not be written.
    explicit Awards(const std::function<void(Installation &)> &prepare = awardTables, bool readOnly = false);

    /// Rows of the files, in the order they were stored.
    [[nodiscard]] QStringList awards(const char *fields = "strana,diplom,pref,diptext") const;
    [[nodiscard]] QStringList log(const char *fields) const;
    [[nodiscard]] QStringList blank(const char *fields = "ccall") const;
    /// Runs SQL on a file as another program would.
    void sql(const char *file, const char *statement) const;

    /// Chosen row of a list; empty where none is chosen.
    [[nodiscard]] QString chosen(const char *list) const { return find<ui::DbList>(list)->chosenText(); }
    /// Text of a box of several lines.
    [[nodiscard]] QString lines(const char *box) const;
    /// Types over what stands in a box of several lines.
    void write(const char *box, const char *text);
    [[nodiscard]] QStringList entries() const; ///< of the selection list
    /// The boxes of a new award are shown, in place of the rules.
    [[nodiscard]] bool entryShown() const;
    /// First press of the button, the new award typed, and the second press; without a mouse.
    void addNew(const char *country, const char *name, const char *rules);
    void tick(const char *name);        ///< with the space bar
    [[nodiscard]] int messages() const; ///< questions, messages and errors so far
    void doubleClickRow(const char *list, const char *row);
    /// The window closed and opened once more.
    void reopen();

    store::Library databases; ///< of the awards alone where the folder must not be written
    std::unique_ptr<awards::frmDIPLOM> window;
};

/// Names and texts that the tests of the awards window share.
namespace award {

inline constexpr auto kLog = "dbiaru.mdb";
inline constexpr auto kAwards = "dbdiplom.mdb";
inline constexpr auto kCountry = "DBListStrana";
inline constexpr auto kRegion = "DBListRegion";
inline constexpr auto kAward = "DBListDiplom";
inline constexpr auto kPrefixes = "DBListPref";
inline constexpr auto kRegions = "DBListRus";
inline constexpr auto kCalls = "DBListCall";
inline constexpr auto kStation = "DBGrid1";
inline constexpr auto kBlank = "DBGrid2";
inline constexpr auto kCarried = "ccall,ddate,ttime,bband,rsts,CONTR"; ///< fields of a carried contact
inline constexpr int kStored = 8;                                      ///< awards of awardTables()

inline constexpr auto kForbidInserts =
    "CREATE TRIGGER no BEFORE INSERT ON tbldiplom BEGIN SELECT RAISE(ABORT,'нельзя'); END";
inline constexpr auto kForbidUpdates =
    "CREATE TRIGGER no BEFORE UPDATE ON tbldiplom BEGIN SELECT RAISE(ABORT,'нельзя'); END";
inline constexpr auto kForbidDeletes =
    "CREATE TRIGGER no BEFORE DELETE ON tbldiplom BEGIN SELECT RAISE(ABORT,'нельзя'); END";
inline constexpr auto kForbidBlank =
    "CREATE TRIGGER no BEFORE INSERT ON tbllogTEMP BEGIN SELECT RAISE(ABORT,'нельзя'); END";
inline constexpr auto kForbidLog =
    "CREATE TRIGGER no BEFORE UPDATE ON TBLLOG1 BEGIN SELECT RAISE(ABORT,'нельзя'); END";

/// Brings a window to the front. False where it does not get active.
[[nodiscard]] bool activate(QWidget &window);

} // namespace award

} // namespace testsupport
