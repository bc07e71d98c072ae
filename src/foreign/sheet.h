#pragma once

#include "foreign/numberformat.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace foreign {

enum class CellKind { Blank, Text, Number, Date, Time, DateTime, Boolean, Error };

/// A sheet as a table without a header: its first row and its first column are those of the upper left corner
/// of everything that stands in the sheet, wherever that is (a table that begins in B3 has its first column
/// in B). A cell that shows nothing is blank, whatever lies in it.
class Sheet {
public:
    /// Largest sheet of the format.
    static constexpr int kRows = 65536;
    static constexpr int kColumns = 256;

    /// Numbers of rows and columns of the table, 0 for an empty sheet.
    [[nodiscard]] int rowCount() const noexcept { return m_rows; }
    [[nodiscard]] int columnCount() const noexcept { return m_columns; }
    /// Where the table begins in the sheet, counted from 0.
    [[nodiscard]] int firstRow() const noexcept { return m_firstRow; }
    [[nodiscard]] int firstColumn() const noexcept { return m_firstColumn; }

    /// The text that the sheet shows in a cell of the table, counted from 0; empty for a blank cell and
    /// outside of the table. Numbers as NumberFormat says; truth values and errors as a Russian program shows
    /// them ("ИСТИНА", "#Н/Д"); formulas by their last result.
    [[nodiscard]] QString text(int row, int column) const;
    [[nodiscard]] CellKind kind(int row, int column) const;
    /// No cell of the row shows anything.
    [[nodiscard]] bool isBlankRow(int row) const;

private:
    friend class SheetBuilder;
    struct Cell {
        int row = 0;
        int column = 0;
        CellKind kind = CellKind::Blank;
        int index = 0;    ///< of a text or of a number's style
        double value = 0; ///< number, truth value, error code
    };

    [[nodiscard]] const Cell *cell(int row, int column) const;
    [[nodiscard]] QString shown(const Cell &cell) const;
    [[nodiscard]] const NumberFormat &format(int style) const;

    int m_firstRow = 0;
    int m_firstColumn = 0;
    int m_rows = 0;
    int m_columns = 0;
    bool m_from1904 = false;
    std::vector<Cell> m_cells; ///< by row and column of the sheet, those that show something
    std::vector<QString> m_texts;
    NumberFormat m_general;
    std::vector<NumberFormat> m_formats;
    std::vector<std::size_t> m_styles; ///< per style the place of its format
};

/// Collects the cells of a sheet in any order; of two in one place the later one stays.
class SheetBuilder {
public:
    void setTexts(std::vector<QString> texts) { m_sheet.m_texts = std::move(texts); }
    /// Gives each style of numbers its format. A style that is not there shows numbers as General.
    void setStyles(std::vector<NumberFormat> formats, std::vector<std::size_t> formatOfStyle)
    {
        m_sheet.m_formats = std::move(formats);
        m_sheet.m_styles = std::move(formatOfStyle);
    }
    void setFrom1904(bool from1904) { m_sheet.m_from1904 = from1904; }

    /// `index`: of a text that setTexts() will bring; of a number its style.
    /// Throws Error for a place outside of a sheet and for more cells than any sheet of ours could have.
    void add(int row, int column, CellKind kind, double value, int index = -1);

    [[nodiscard]] Sheet finished();

private:
    Sheet m_sheet;
};

} // namespace foreign
