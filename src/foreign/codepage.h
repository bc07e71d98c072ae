#pragma once

#include <QByteArray>
#include <QString>
#include <QStringDecoder>

#include <vector>

namespace foreign {

/// Turns the byte texts of an old file into characters by the number of a code page, as Windows numbers them.
/// Russian programs often wrote a Western page, or none, over Russian letters; the page is therefore judged
/// by the letters wherever the file names none or a Western one.
class CodePage {
public:
    /// `recorded`: number of the page in the file, 0 where it names none. `texts`: what the file holds.
    [[nodiscard]] static CodePage judged(int recorded, const std::vector<QByteArray> &texts);
    explicit CodePage(int number);

    [[nodiscard]] int number() const noexcept { return m_number; }
    [[nodiscard]] QString text(const QByteArray &bytes);

private:
    int m_number;
    QStringDecoder m_decoder;
};

} // namespace foreign
