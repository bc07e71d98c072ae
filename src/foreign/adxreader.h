#pragma once

#include "foreign/adifreader.h"

#include <QXmlStreamReader>

namespace foreign {

/// The XML form begins with "<?xml" or "<ADX".
[[nodiscard]] bool looksLikeAdx(QByteArrayView bytes) noexcept;

/// The XML form (.adx): each element of a <RECORD> is a field. User-defined and program-specific elements
/// count as fields named by their FIELDNAME. Where the XML breaks off, the record there comes with its fault
/// and is the last one.
class AdxReader final : public AdifSource {
public:
    /// `bytes` live as long as the reader; they state their coding themselves.
    explicit AdxReader(QByteArrayView bytes);

    [[nodiscard]] bool next(AdifRecord &record) override;
    [[nodiscard]] qint64 position() const override { return m_xml.characterOffset(); }
    [[nodiscard]] qint64 size() const override { return m_size; }
    [[nodiscard]] bool isAdif() const override { return m_sawRoot; }

private:
    void readRecord(AdifRecord &record);

    struct Place {
        qsizetype nameEnd;
        qsizetype valueEnd;
    };

    QXmlStreamReader m_xml;
    qint64 m_size;
    QByteArray m_texts; ///< names and values of the current record, one behind the other
    std::vector<Place> m_places;
    bool m_sawRoot = false;
    bool m_broken = false;
};

} // namespace foreign
