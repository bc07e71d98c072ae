#pragma once

#include "foreign/adifreader.h"
#include "interchange/adifline.h"

#include <QByteArray>
#include <QStringList>

#include <array>

namespace interchange {

/// Columns of the log that an import writes.
enum ImportColumn : std::size_t {
    kCall,
    kDate,
    kTime,
    kBand,
    kReportSent,
    kReportReceived,
    kMode,
    kTown,
    kName,
    kRoute,
    kCardReceived,
    kCardSent,
    kCountry,
    kMark,
    kImportColumns
};

/// Names of these columns in their order.
[[nodiscard]] const QStringList &importColumns();

/// Values of one contact in UTF-8, by column.
using ImportRow = std::array<QByteArray, kImportColumns>;

/// What became of a contact.
enum class Mapped {
    Good,
    NoDate,         ///< good, but its date is missing or none and stays empty
    NoCall,         ///< no callsign: no contact
    UnreadableCall, ///< what stands as callsign is none
};

/// Fills the row from a record of another writer, except country and mark, which it empties:
///  * callsign in capital Latin letters (also where Cyrillic ones of the same look were typed), cut to 14
///    characters; reports to 14, town and name to 15, mode to 5, route to 30;
///    line ends and other control characters within a text become one blank;
///  * the date of eight digits as "dd.mm.yy", from 1930 to 2029, otherwise as "dd.mm.yyyy"; the time of four
///    or six digits as "hh:mm"; what is none stays empty;
///  * the band by its name as the log's label, else by the frequency; a band that nobody knows stays as
///    written, a frequency outside the bands stands in MHz with a decimal comma, cut to five characters;
///  * the mode as the log calls it: USB and LSB are SSB, PSK31 and its kin PSK; a submode that says more than
///    its group of modes (FT4 of MFSK) stands for it;
///  * NAME_INTL and QTH_INTL go before NAME and QTH: they have the operator's own letters;
///  * a card received ("Y" or "V") or sent ("Y") is marked with its date "dd.mm.yyyy", else with "+".
[[nodiscard]] Mapped mapRecord(const foreign::AdifRecord &record, ImportRow &row);

/// The same from a line of the program's own layout: what the line reader read, as it stands, without
/// control characters. The remaining columns stay empty.
void mapLine(const AdifLineContact &contact, ImportRow &row);

} // namespace interchange
