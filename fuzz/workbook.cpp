// Any bytes are a workbook that is read, or they are refused; every cell of what is read can be shown.
// Seeds: the workbooks in tests/data/xls.
#include "foreign/workbook.h"
#include "foreign/error.h"

#include <cstddef>
#include <cstdint>

namespace {

/// Shown for each input; more would make large sheets slow without finding more.
constexpr int kShownRows = 2000;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    try {
        const foreign::Sheet sheet = foreign::readSheet(bytes, QStringLiteral("Tbl"));
        int shown = 0;
        for (int row = 0; row < sheet.rowCount() && shown < kShownRows; ++row) {
            if (sheet.isBlankRow(row))
                continue;
            ++shown;
            bool any = false;
            for (int column = 0; column < sheet.columnCount(); ++column)
                any |=
                    !sheet.text(row, column).isEmpty() && sheet.kind(row, column) != foreign::CellKind::Blank;
            if (!any)
                __builtin_trap(); // a row that is not blank shows something
        }
    } catch (const foreign::Error &error) {
        if (error.text().isEmpty())
            __builtin_trap();
    }
    return 0;
}
