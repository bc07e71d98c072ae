#pragma once

#include <QByteArray>
#include <QString>

namespace foreign {

/// A workbook of Excel 5.0 or later without the compound document around it, as simple exporters write it.
[[nodiscard]] bool isBareWorkbook(QByteArrayView bytes);

/// For a file that is no workbook of Excel 5.0 to 2003: what it is instead, judged by its first bytes, and
/// how it becomes one.
[[nodiscard]] QString whyNoWorkbook(const QByteArray &bytes);

} // namespace foreign
