#pragma once

#include <QByteArray>
#include <QByteArrayView>

namespace interchange {

/// Most records of one piece of an export.
inline constexpr int kPieceRecords = 500;

/// ADIF name of one of the six bands that the program's own layout knows, from the log's label; empty for any
/// other.
[[nodiscard]] QByteArrayView ownLayoutBand(QByteArrayView label) noexcept;
/// The other way round, letter for letter.
[[nodiscard]] QByteArrayView ownLayoutLabel(QByteArrayView band) noexcept;

/// The fields of a contact that the program's own ADIF layout carries, UTF-8 as the log keeps them.
struct OwnLayoutContact {
    QByteArrayView bband; ///< band label
    QByteArrayView ddate;
    QByteArrayView ttime;
    QByteArrayView rsts;
    QByteArrayView rstr;
    QByteArrayView ccall;
    QByteArrayView ps1; ///< mode
};

/// What the export has replaced in a record, and what the log's row is therefore to hold as well.
struct Replaced {
    bool rsts = false; ///< by "599"
    bool rstr = false; ///< by "599"
    enum class Mode { No, Cw, Ssb } ps1 = Mode::No;

    [[nodiscard]] bool any() const noexcept { return rsts || rstr || ps1 != Mode::No; }
};

/// Writes the program's own ADIF layout, one contact a line, Windows-1251, CR LF. Lengths count characters, a
/// character that the code page lacks is written "?". A contact whose date is none is written with the date
/// "00000000", one whose time is none with the time "0000": the lengths stay true, and a reader finds no
/// date.
class OwnLayoutWriter {
public:
    /// The first line of every file. Its length says 4 where the version has 3 characters: files of this
    /// layout have always begun so, and their readers know it.
    [[nodiscard]] static QByteArrayView header() noexcept { return "<adif_ver:4>1.0<eoh>\r\n"; }

    /// Appends a contact's line.
    Replaced append(QByteArray &lines, const OwnLayoutContact &contact);

    /// The ADIF band that a contact on a band without one takes over from the contact before it: the layout
    /// knows six bands, and has always carried the last one on.
    [[nodiscard]] const QByteArray &band() const noexcept { return m_band; }
    void setBand(const QByteArray &band) { m_band = band; }

    /// Contacts appended so far whose date or time is none.
    [[nodiscard]] qint64 undated() const noexcept { return m_undated; }

private:
    void appendDate(QByteArray &lines, QByteArrayView date);
    [[nodiscard]] static bool appendTime(QByteArray &lines, QByteArrayView time);

    QByteArray m_band;
    qint64 m_undated = 0;
    QByteArray m_lastDate;    ///< contacts of one day follow each other
    QByteArray m_lastWritten; ///< its eight digits
};

} // namespace interchange
