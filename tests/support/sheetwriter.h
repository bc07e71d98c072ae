#pragma once

#include <QByteArray>
#include <QString>
#include <cstring>

namespace testsupport {

/// Writes a workbook's stream record by record, without the container around it. Rows and columns from 0.
class SheetWriter {
public:
    enum class Version { Excel5, Excel97 };

    explicit SheetWriter(Version version = Version::Excel97) : m_version(version) {}

    SheetWriter &global(int id, const QByteArray &body)
    {
        m_globals += record(id, body);
        return *this;
    }
    SheetWriter &cell(int id, const QByteArray &body)
    {
        m_cells += record(id, body);
        return *this;
    }
    /// Adds a format and a style that has it; gives the style's number.
    int style(const QString &format)
    {
        const int number = 200 + m_styles;
        global(0x41e, u16(number) + (m_version == Version::Excel5
                                         ? QByteArray(1, char(format.size())) + format.toLatin1()
                                         : wide(format)));
        global(0xe0, u16(0) + u16(number) + QByteArray(16, '\0'));
        return m_styles++;
    }
    SheetWriter &text(int row, int column, const QString &text)
    {
        return cell(0x204, place(row, column) + wide(text));
    }
    SheetWriter &bytes(int row, int column, const QByteArray &text)
    {
        return cell(0x204, place(row, column) + u16(int(text.size())) + text);
    }
    SheetWriter &number(int row, int column, double value, int style = 0xffff)
    {
        return cell(0x203, place(row, column, style) + f64(value));
    }

    [[nodiscard]] QByteArray finished(const QByteArray &sheetName = "Tbl") const
    {
        const int version = m_version == Version::Excel5 ? 0x500 : 0x600;
        const QByteArray begin = record(0x809, u16(version) + u16(5) + QByteArray(4, '\0'));
        QByteArray name(1, char(sheetName.size()));
        if (m_version == Version::Excel97)
            name += '\0';
        name += sheetName;
        const qsizetype at = begin.size() + m_globals.size() + 4 + 6 + name.size() + 4;
        return begin + m_globals + record(0x85, u32(quint32(at)) + QByteArray(2, '\0') + name) +
               record(0x0a, {}) + record(0x809, u16(version) + u16(0x10) + QByteArray(4, '\0')) + m_cells +
               record(0x0a, {});
    }

    [[nodiscard]] static QByteArray u16(int value)
    {
        return {QByteArray(1, char(value & 0xff)) + char(value >> 8 & 0xff)};
    }
    [[nodiscard]] static QByteArray u32(quint32 value)
    {
        return u16(int(value & 0xffff)) + u16(int(value >> 16));
    }
    [[nodiscard]] static QByteArray f64(double value)
    {
        quint64 bits = 0;
        memcpy(&bits, &value, sizeof bits);
        return u32(quint32(bits)) + u32(quint32(bits >> 32));
    }
    [[nodiscard]] static QByteArray place(int row, int column, int style = 0xffff)
    {
        return u16(row) + u16(column) + u16(style);
    }
    /// Text of two bytes a character behind its length.
    [[nodiscard]] static QByteArray wide(const QString &text)
    {
        QByteArray bytes = u16(int(text.size())) + '\1';
        for (const QChar c : text)
            bytes += u16(c.unicode());
        return bytes;
    }
    [[nodiscard]] static QByteArray record(int id, const QByteArray &body)
    {
        return u16(id) + u16(int(body.size())) + body;
    }

private:
    Version m_version;
    QByteArray m_globals;
    QByteArray m_cells;
    int m_styles = 0;
};

} // namespace testsupport
