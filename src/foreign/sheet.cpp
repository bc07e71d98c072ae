#include "foreign/sheet.h"

#include "foreign/error.h"

#include <algorithm>
#include <tuple>

namespace foreign {

namespace {

constexpr std::size_t kMostCells = std::size_t{64} * Sheet::kRows;

QString errorText(int code)
{
    switch (code) {
    case 0x00:
        return QStringLiteral("#ПУСТО!");
    case 0x07:
        return QStringLiteral("#ДЕЛ/0!");
    case 0x0f:
        return QStringLiteral("#ЗНАЧ!");
    case 0x17:
        return QStringLiteral("#ССЫЛКА!");
    case 0x1d:
        return QStringLiteral("#ИМЯ?");
    case 0x24:
        return QStringLiteral("#ЧИСЛО!");
    case 0x2a:
        return QStringLiteral("#Н/Д");
    default:
        return QStringLiteral("#ОШИБКА!");
    }
}

} // namespace

void SheetBuilder::add(int row, int column, CellKind kind, double value, int index)
{
    if (row < 0 || row >= Sheet::kRows || column < 0 || column >= Sheet::kColumns)
        throw Error(QStringLiteral("файл повреждён: ячейка за краем листа"));
    if (m_sheet.m_cells.size() >= kMostCells)
        throw Error(QStringLiteral("на листе слишком много ячеек"));
    m_sheet.m_cells.push_back({row, column, kind, index, value});
}

Sheet SheetBuilder::finished()
{
    auto &cells = m_sheet.m_cells;
    const auto before = [](const Sheet::Cell &a, const Sheet::Cell &b) {
        return std::tie(a.row, a.column) < std::tie(b.row, b.column);
    };
    if (!std::is_sorted(cells.begin(), cells.end(), before))
        std::stable_sort(cells.begin(), cells.end(), before);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const bool overwritten = i + 1 < cells.size() && !before(cells[i], cells[i + 1]);
        if (!overwritten && !m_sheet.shown(cells[i]).isEmpty())
            cells[kept++] = cells[i];
    }
    cells.resize(kept);
    if (!cells.empty()) {
        const auto columns =
            std::minmax_element(cells.begin(), cells.end(), [](const Sheet::Cell &a, const Sheet::Cell &b) {
                return a.column < b.column;
            });
        m_sheet.m_firstRow = cells.front().row;
        m_sheet.m_rows = cells.back().row - m_sheet.m_firstRow + 1;
        m_sheet.m_firstColumn = columns.first->column;
        m_sheet.m_columns = columns.second->column - m_sheet.m_firstColumn + 1;
    }
    return std::move(m_sheet);
}

const Sheet::Cell *Sheet::cell(int row, int column) const
{
    if (row < 0 || row >= m_rows || column < 0 || column >= m_columns)
        return nullptr;
    const auto place = std::pair(row + m_firstRow, column + m_firstColumn);
    const auto found = std::lower_bound(m_cells.begin(), m_cells.end(), place,
                                        [](const Cell &cell, const std::pair<int, int> &wanted) {
                                            return std::pair(cell.row, cell.column) < wanted;
                                        });
    if (found == m_cells.end() || std::pair(found->row, found->column) != place)
        return nullptr;
    return &*found;
}

const NumberFormat &Sheet::format(int style) const
{
    const auto at = static_cast<std::size_t>(style); // none (-1) is beyond every list
    return at < m_styles.size() ? m_formats.at(m_styles[at]) : m_general;
}

QString Sheet::shown(const Cell &cell) const
{
    switch (cell.kind) {
    case CellKind::Blank:
        return {};
    case CellKind::Text:
        return m_texts.at(static_cast<std::size_t>(cell.index));
    case CellKind::Boolean:
        return cell.value != 0 ? QStringLiteral("ИСТИНА") : QStringLiteral("ЛОЖЬ");
    case CellKind::Error:
        return errorText(static_cast<int>(cell.value));
    case CellKind::Number:
    case CellKind::Date:
    case CellKind::Time:
    case CellKind::DateTime:
        break;
    }
    return format(cell.index).text(cell.value, m_from1904);
}

QString Sheet::text(int row, int column) const
{
    const Cell *found = cell(row, column);
    return found != nullptr ? shown(*found) : QString();
}

CellKind Sheet::kind(int row, int column) const
{
    const Cell *found = cell(row, column);
    if (found == nullptr)
        return CellKind::Blank;
    if (found->kind != CellKind::Number)
        return found->kind;
    switch (format(found->index).kind()) {
    case NumberFormat::Kind::Date:
        return CellKind::Date;
    case NumberFormat::Kind::Time:
        return CellKind::Time;
    case NumberFormat::Kind::DateTime:
        return CellKind::DateTime;
    case NumberFormat::Kind::Number:
        break;
    }
    return CellKind::Number;
}

bool Sheet::isBlankRow(int row) const
{
    if (row < 0 || row >= m_rows)
        return true;
    const int wanted = row + m_firstRow;
    const auto found = std::lower_bound(m_cells.begin(), m_cells.end(), wanted,
                                        [](const Cell &cell, int wantedRow) { return cell.row < wantedRow; });
    return found == m_cells.end() || found->row != wanted;
}

} // namespace foreign
