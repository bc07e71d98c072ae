#pragma once

#include "support/sheetwriter.h"

#include <QByteArray>

namespace testsupport {

/// A compound document with one stream under its root, 4096 bytes or longer, and a storage whose own stream
/// "Workbook" is the workbook of an embedded document and holds nothing.
inline QByteArray compoundFile(const QByteArray &name, const QByteArray &stream, int sectorShift)
{
    constexpr quint32 kNone = 0xffffffff;
    constexpr quint32 kEnd = 0xfffffffe;
    const qsizetype size = qsizetype{1} << sectorShift;
    const auto sectors = [size](qsizetype bytes) { return quint32((bytes + size - 1) / size); };
    const auto padded = [size](const QByteArray &bytes, char fill) {
        return bytes.leftJustified((bytes.size() + size - 1) / size * size, fill);
    };
    const auto entry = [](const QByteArray &its, char type, quint32 left, quint32 child, quint32 start,
                          quint32 length) {
        QByteArray bytes;
        for (const char c : its)
            bytes += SheetWriter::u16(c);
        bytes = bytes.leftJustified(64, '\0') + SheetWriter::u16(int(2 * its.size() + 2)) + type + '\1';
        bytes += SheetWriter::u32(left) + SheetWriter::u32(kNone) + SheetWriter::u32(child);
        return bytes.leftJustified(116, '\0') + SheetWriter::u32(start) + SheetWriter::u32(length) +
               SheetWriter::u32(0);
    };
    const quint32 directoryAt = sectors(stream.size());
    const QByteArray directory =
        entry("Root Entry", 5, kNone, 1, kEnd, 0) + entry(name, 2, 2, kNone, 0, quint32(stream.size())) +
        entry("Embedded", 1, kNone, 3, 0, 0) + entry("Workbook", 2, kNone, kNone, kEnd, 0);
    const quint32 tablesAt = directoryAt + sectors(directory.size());

    // The table has an entry for each sector, its own and those of the list of its sectors included.
    const auto perTable = quint32(size / 4);
    quint32 tables = 0;
    quint32 lists = 0;
    while (tables * perTable < tablesAt + tables + lists) {
        ++tables;
        lists = tables > 109 ? (tables - 109 + perTable - 2) / (perTable - 1) : 0;
    }
    QByteArray table;
    for (quint32 i = 0; i < tablesAt; ++i)
        table += SheetWriter::u32(i + 1 == directoryAt || i + 1 == tablesAt ? kEnd : i + 1);
    table += SheetWriter::u32(0xfffffffd).repeated(tables) + SheetWriter::u32(0xfffffffc).repeated(lists);

    QByteArray header("\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1");
    header += QByteArray(16, '\0') + SheetWriter::u16(0x3e) + SheetWriter::u16(sectorShift == 9 ? 3 : 4) +
              SheetWriter::u16(0xfffe) + SheetWriter::u16(sectorShift) + SheetWriter::u16(6);
    header = header.leftJustified(44, '\0') + SheetWriter::u32(tables) + SheetWriter::u32(directoryAt) +
             SheetWriter::u32(0) + SheetWriter::u32(4096) + SheetWriter::u32(kEnd) + SheetWriter::u32(0) +
             SheetWriter::u32(lists > 0 ? tablesAt + tables : kEnd) + SheetWriter::u32(lists);
    QByteArray list;
    for (quint32 i = 0; i < tables; ++i) {
        if (i < 109) {
            header += SheetWriter::u32(tablesAt + i);
            continue;
        }
        list += SheetWriter::u32(tablesAt + i);
        if ((i - 109) % (perTable - 1) == perTable - 2)
            list += SheetWriter::u32(tablesAt + tables + quint32(list.size() / size) + 1);
    }
    header = header.leftJustified(512, '\xff');
    list = padded(list, '\xff');
    if (!list.isEmpty())
        list.replace(list.size() - 4, 4, SheetWriter::u32(kEnd));
    return padded(header, '\0') + padded(stream, '\0') + padded(directory, '\0') + padded(table, '\xff') +
           list;
}

} // namespace testsupport
