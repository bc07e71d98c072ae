#pragma once

#include "foreign/error.h"
#include "foreign/jetprotocol.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class QProcess;

namespace foreign {

enum class JetVersion {
    None,  ///< no such database (or no file that can be read)
    Jet3,  ///< Access 95, 97
    Jet4,  ///< Access 2000 to 2003
    Newer, ///< Access 2007 and later: the same beginning, another format
};

/// What kind of database a file is, by its first bytes.
[[nodiscard]] JetVersion jetVersion(const QString &path);

struct JetColumn {
    QString name;
    jet::ColumnType type = jet::ColumnType::Text;
    int width = 0;
};

struct JetTable {
    QString name;
    QList<JetColumn> columns;
    qint64 claimedRows = 0; ///< as the file's own count has it
    bool damaged = false;   ///< its definition cannot be read
};

/// One value of a row. Texts and bytes are views, good until the next row.
struct JetValue {
    jet::ValueKind kind = jet::ValueKind::Null;
    qint64 integer = 0;   ///< Boolean, Integer, Money (ten-thousandths)
    double number = 0;    ///< Single, Double, Date
    QByteArrayView bytes; ///< Text (UTF-8), Decimal, Binary, Guid
};

/// The program that reads the old databases, beside this program.
[[nodiscard]] QString defaultJetReader();

struct JetOptions {
    QString program = defaultJetReader();
    int codePage = 0; ///< for the texts of a Jet 3 file, instead of what its header names; 0: as named there
    bool tablesOnly = false;
    int silence = 30000;          ///< milliseconds without a byte after which the reading program hangs
    std::function<bool()> onWait; ///< called several times a second while waiting; false ends the reading
};

/// Reading ended because JetOptions::onWait wanted it.
class JetStopped final : public Error {
public:
    JetStopped() : Error(QStringLiteral("чтение остановлено")) {}
};

/// An old database (Jet 3 or Jet 4), read by a program of its own: damaged files can crash what reads them.
/// Tables and rows come as a stream, one pass, in the order of the file. Every function throws Error where
/// the file cannot be read as a whole: the reading program is missing, crashes, hangs or falls silent, or the
/// rows are not as many as the file claims. Its text says how many rows were read of how many.
class JetFile {
public:
    explicit JetFile(const QString &path, JetOptions options = {});
    JetFile(const JetFile &) = delete;
    JetFile &operator=(const JetFile &) = delete;
    ~JetFile();

    [[nodiscard]] bool jet3() const noexcept { return m_jet3; }
    [[nodiscard]] int headerCodePage() const noexcept { return m_headerCodePage; } ///< 0 in Jet 4
    [[nodiscard]] const QList<JetTable> &tables() const noexcept { return m_tables; }
    [[nodiscard]] qint64 claimedRows() const noexcept;
    [[nodiscard]] qint64 readRows() const noexcept { return m_rows; }

    /// Moves to the rows of the next table and gives its number; -1 after the last one, and only then is it
    /// known that the file was read whole. What is left of the table before is skipped, but counted.
    int nextTable();
    /// Moves to the next row of the table; false after its last one.
    bool nextRow();
    /// Values of the row, in the order of the table's columns.
    [[nodiscard]] const std::vector<JetValue> &row() const noexcept { return m_row; }

private:
    class Payload;
    struct FrameView {
        jet::Frame type;
        QByteArrayView payload;
    };

    [[nodiscard]] FrameView nextFrame();
    void need(qsizetype bytes);
    void readHead();
    void readTable(Payload payload);
    void readRow(Payload payload);
    void endTable(Payload payload);
    void finish(Payload payload);
    void stop() noexcept;
    [[noreturn]] void fail(const QString &what) const;
    [[noreturn]] void failAsReported(int reason) const;
    [[nodiscard]] QString ending() const;

    JetOptions m_options;
    std::unique_ptr<QProcess> m_process;
    QByteArray m_buffer;
    qsizetype m_used = 0; ///< bytes of the buffer that are done with
    bool m_jet3 = false;
    int m_headerCodePage = 0;
    QList<JetTable> m_tables;
    int m_table = -1;
    bool m_inRows = false;
    bool m_done = false;
    bool m_incomplete = false;
    qint64 m_rows = 0;
    qint64 m_tableRows = 0;
    std::vector<JetValue> m_row;
};

} // namespace foreign
