#include "bench/jetenlarge.h"

#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QList>

#include <algorithm>
#include <cctype>

namespace bench {

namespace {

// Places in a Jet 4 file.
constexpr qsizetype kPage = 4096;
constexpr qsizetype kOwnerAt = 4;
constexpr qsizetype kRowsAt = 12;
constexpr qsizetype kSlotsAt = 14;
constexpr qsizetype kTableRowsAt = 16;
constexpr qsizetype kMapAt = 55;
constexpr quint32 kOffsetMask = 0x1fff;
constexpr char kDataPage = 1;
constexpr char kDefinitionPage = 2;
constexpr char kMapPage = 5;

quint32 number(const QByteArray &bytes, qsizetype at, int size)
{
    quint32 value = 0;
    for (int i = 0; i < size; ++i)
        value |= quint32(static_cast<uchar>(bytes[at + i])) << (8 * i);
    return value;
}

void put(QByteArray &bytes, qsizetype at, quint32 value)
{
    for (int i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<char>(value >> (8 * i));
}

struct Slot {
    qsizetype start;
    qsizetype end;
    bool alive;
    bool inPlace;
};

QList<Slot> slotsOf(const QByteArray &page)
{
    constexpr quint32 kGone = 0x8000;
    constexpr quint32 kPointer = 0x4000;
    QList<Slot> rowSlots;
    qsizetype end = kPage;
    for (quint32 i = 0; i < number(page, kRowsAt, 2); ++i) {
        const quint32 entry = number(page, kSlotsAt + (2 * qsizetype(i)), 2);
        const qsizetype start = entry & kOffsetMask;
        rowSlots.append({start, end, (entry & (kGone | kPointer)) == 0, (entry & kPointer) == 0});
        end = start;
    }
    return rowSlots;
}

qint64 livingRows(const QByteArray &page)
{
    const QList<Slot> rowSlots = slotsOf(page);
    return std::count_if(rowSlots.begin(), rowSlots.end(), [](const Slot &slot) { return slot.alive; });
}

/// Pages of each table, by the number of the page with its definition.
QHash<quint32, QList<quint32>> dataPages(const QByteArray &file)
{
    QHash<quint32, QList<quint32>> pages;
    for (qsizetype at = 0; at + kPage <= file.size(); at += kPage)
        if (file[at] == kDataPage && file.mid(at + kOwnerAt, 4) != "LVAL")
            pages[number(file, at + kOwnerAt, 4)].append(static_cast<quint32>(at / kPage));
    return pages;
}

/// The first text of each row is its callsign, one byte a character behind FF FE.
void changeCalls(QByteArray &page, qint64 repetition)
{
    constexpr int kLetters = 26;
    const QList<Slot> rowSlots = slotsOf(page);
    for (const Slot &slot : rowSlots) {
        const qsizetype mark = slot.alive ? page.indexOf("\xff\xfe", slot.start) : -1;
        if (mark < 0 || mark >= slot.end)
            continue;
        qsizetype end = mark + 2;
        while (end < slot.end &&
               (std::isupper(static_cast<uchar>(page[end])) || std::isdigit(static_cast<uchar>(page[end]))))
            ++end;
        if (end - mark - 2 < 4)
            continue;
        page[end - 1] = static_cast<char>('A' + repetition % kLetters);
        page[end - 2] = static_cast<char>('A' + repetition / kLetters % kLetters);
    }
}

/// Lets the table's map point to pages full of bits, which mark `pages` of the file.
bool writeMap(QByteArray &file, quint32 definition, const QList<quint32> &pages)
{
    constexpr qsizetype kHead = 4;
    constexpr quint32 kPerMap = (kPage - kHead) * 8;
    const qsizetype tableAt = qsizetype(definition) * kPage;
    const auto row = static_cast<uchar>(file[tableAt + kMapAt]);
    const qsizetype mapPageAt = qsizetype(number(file, tableAt + kMapAt + 1, 3)) * kPage;
    const QList<Slot> rowSlots = slotsOf(file.mid(mapPageAt, kPage));
    if (row >= rowSlots.size())
        return false;
    const Slot slot = rowSlots[row];
    const quint32 maps = (pages.back() / kPerMap) + 1;
    if (qsizetype(maps) * 4 + 1 > slot.end - slot.start)
        return false;
    file.replace(mapPageAt + slot.start, slot.end - slot.start, QByteArray(slot.end - slot.start, '\0'));
    file[mapPageAt + slot.start] = 1;
    const auto firstMap = static_cast<quint32>(file.size() / kPage);
    for (quint32 i = 0; i < maps; ++i) {
        QByteArray map(kPage, '\0');
        map[0] = kMapPage;
        map[1] = 1;
        for (const quint32 page : pages) {
            if (page / kPerMap != i)
                continue;
            char &bits = map[kHead + qsizetype(page % kPerMap / 8)];
            bits = static_cast<char>(static_cast<uchar>(bits) | (1U << (page % 8)));
        }
        put(file, mapPageAt + slot.start + 1 + (4 * qsizetype(i)), firstMap + i);
        file += map;
    }
    return true;
}

} // namespace

qint64 enlargeJet(const QString &model, const QString &target, qint64 rows)
{
    QFile source(model);
    if (!source.open(QIODevice::ReadOnly))
        return 0;
    QByteArray file = source.readAll();
    const auto tables = dataPages(file);
    const auto countAt = [](quint32 page) { return qsizetype(page) * kPage + kTableRowsAt; };
    quint32 table = 0;
    for (auto it = tables.cbegin(); it != tables.cend(); ++it) {
        const bool defined =
            file[qsizetype(it.key()) * kPage] == kDefinitionPage; // or pages that nobody uses
        if (defined && (table == 0 || number(file, countAt(it.key()), 4) > number(file, countAt(table), 4)))
            table = it.key();
    }
    if (table == 0)
        return 0;
    QList<quint32> pages = tables[table];
    QList<QByteArray> repeated;
    for (const quint32 page : std::as_const(pages)) {
        const QByteArray bytes = file.mid(qsizetype(page) * kPage, kPage);
        const QList<Slot> rowSlots = slotsOf(bytes);
        if (livingRows(bytes) > 0 &&
            std::all_of(rowSlots.begin(), rowSlots.end(), [](const Slot &slot) { return slot.inPlace; }))
            repeated.append(bytes);
    }
    qint64 count = number(file, countAt(table), 4);
    for (qint64 repetition = 1; count < rows && !repeated.isEmpty(); ++repetition)
        for (qsizetype i = 0; i < repeated.size() && count < rows; ++i) {
            QByteArray page = repeated[i];
            changeCalls(page, repetition);
            pages.append(static_cast<quint32>(file.size() / kPage));
            file += page;
            count += livingRows(page);
        }
    put(file, countAt(table), static_cast<quint32>(count));
    QFile made(target);
    if (!writeMap(file, table, pages) || !made.open(QIODevice::WriteOnly) || made.write(file) != file.size())
        return 0;
    return count;
}

} // namespace bench
