// Workbooks: every genuine file cell by cell, the forms of cells and texts, damaged and foreign files.
#include "foreign/workbook.h"

#include "foreign/error.h"
#include "support/compoundwriter.h"
#include "support/sheetwriter.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <random>

using foreign::CellKind;
using foreign::Sheet;
using testsupport::SheetWriter;

namespace {

QString dataFolder()
{
    return QStringLiteral(TEST_DATA "/xls/");
}

QByteArray contents(const QString &name)
{
    QFile file(dataFolder() + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s is not there", qPrintable(name));
    return file.readAll();
}

struct Expected {
    int row = 0;
    int column = 0;
    QString kind;
    QString text;
};

QString unescaped(const QString &text)
{
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'\\') {
            result += text[i];
            continue;
        }
        const QChar c = text[++i];
        result += c == u'n' ? QChar(u'\n') : c == u't' ? QChar(u'\t') : c == u'r' ? QChar(u'\r') : c;
    }
    return result;
}

/// "2002-03-06" as "06.03.02".
QString dotted(const QString &iso)
{
    return iso.mid(8, 2) + u'.' + iso.mid(5, 2) + u'.' + iso.mid(2, 2);
}

/// What the sheet shows for a value of the lists beside the workbooks.
QString shown(const QString &kind, const QString &value)
{
    if (kind == u"text")
        return unescaped(value);
    if (kind == u"date")
        return dotted(value);
    if (kind == u"time")
        return value.left(5);
    if (kind == u"datetime")
        return dotted(value) + u' ' + value.mid(11, 5);
    if (kind == u"bool")
        return value == u"1" ? QStringLiteral("ИСТИНА") : QStringLiteral("ЛОЖЬ");
    if (kind == u"error")
        return value == u"#N/A" ? QStringLiteral("#Н/Д") : QStringLiteral("?");
    QString number = value;
    if (number.endsWith(u".0"))
        number.chop(2);
    return number.replace(u'.', u',');
}

QList<Expected> expectedCells(const QString &listName)
{
    QList<Expected> cells;
    const QStringList lines = QString::fromUtf8(contents(listName)).split(u'\n');
    for (const QString &line : lines.mid(1)) {
        const QStringList parts = line.split(u'\t');
        if (parts.size() == 4 && !parts[3].isEmpty())
            cells.append({parts[0].toInt() - 1, parts[1].toInt() - 1, parts[2], shown(parts[2], parts[3])});
    }
    return cells;
}

QString kindName(CellKind kind)
{
    switch (kind) {
    case CellKind::Blank:
        return QStringLiteral("blank");
    case CellKind::Text:
        return QStringLiteral("text");
    case CellKind::Number:
        return QStringLiteral("number");
    case CellKind::Date:
        return QStringLiteral("date");
    case CellKind::Time:
        return QStringLiteral("time");
    case CellKind::DateTime:
        return QStringLiteral("datetime");
    case CellKind::Boolean:
        return QStringLiteral("bool");
    case CellKind::Error:
        break;
    }
    return QStringLiteral("error");
}

int cellCount(const Sheet &sheet)
{
    int count = 0;
    for (int row = 0; row < sheet.rowCount(); ++row)
        for (int column = 0; column < sheet.columnCount() && !sheet.isBlankRow(row); ++column)
            count += sheet.text(row, column).isEmpty() ? 0 : 1;
    return count;
}

Sheet tbl(const QByteArray &bytes)
{
    return foreign::readSheet(bytes, QStringLiteral("Tbl"));
}

/// The text of the refusal; empty where the workbook is read.
QString refusal(const QByteArray &bytes, const QString &name = QStringLiteral("Tbl"))
{
    try {
        (void)foreign::readSheet(bytes, name);
    } catch (const foreign::Error &error) {
        return error.text();
    }
    return {};
}

} // namespace

class WorkbookTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void genuine_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *folder : {"biff5", "biff5hand", "biff8", "variants"}) {
            const QStringList lists =
                QDir(dataFolder() + QLatin1String(folder)).entryList({QStringLiteral("*.tsv")}, QDir::Files);
            QVERIFY(!lists.isEmpty());
            for (const QString &list : lists) {
                const QString name = QLatin1String(folder) + u'/' + list.chopped(4);
                QTest::newRow(qPrintable(name)) << name;
            }
        }
    }

    void genuine()
    {
        QFETCH(QString, name);
        const QString suffix = QFile::exists(dataFolder() + name + QLatin1String(".XLS"))
                                   ? QStringLiteral(".XLS")
                                   : QStringLiteral(".xls");
        const Sheet sheet = tbl(contents(name + suffix));
        const QList<Expected> cells = expectedCells(name + QLatin1String(".tsv"));
        for (const Expected &cell : cells) {
            const int row = cell.row - sheet.firstRow();
            const int column = cell.column - sheet.firstColumn();
            const QByteArray where = QStringLiteral("R%1C%2").arg(cell.row + 1).arg(cell.column + 1).toUtf8();
            QVERIFY2(sheet.text(row, column) == cell.text,
                     where + ": " + sheet.text(row, column).toUtf8() + " instead of " + cell.text.toUtf8());
            QVERIFY2(kindName(sheet.kind(row, column)) == cell.kind, where);
        }
        QCOMPARE(cellCount(sheet), cells.size());
        QCOMPARE(sheet.rowCount() == 0, cells.isEmpty());
    }

    void everyWorkbookHasAList()
    {
        const QStringList books =
            QDir(dataFolder() + QLatin1String("variants")).entryList({QStringLiteral("*.xls")});
        for (const QString &book : books)
            QVERIFY(book.startsWith(u"nosheet_") || QFile::exists(dataFolder() + QLatin1String("variants/") +
                                                                  book.chopped(4) + QLatin1String(".tsv")));
    }

    void theTableBeginsAtItsUpperLeftCell()
    {
        for (const char *name : {"variants/shifted_biff5.xls", "variants/shifted_biff8.xls"}) {
            const Sheet sheet = tbl(contents(QLatin1String(name)));
            QCOMPARE(sheet.firstRow(), 2);
            QCOMPARE(sheet.firstColumn(), 1);
            QCOMPARE(sheet.rowCount(), 2);
            QCOMPARE(sheet.text(0, 0), QStringLiteral("UA3ABC"));
            QCOMPARE(sheet.text(1, 1), QStringLiteral("06.03.02"));
        }
        // The corner is that of the whole table: its own cell may be blank.
        const Sheet sheet =
            tbl(SheetWriter().text(4, 2, QStringLiteral("b")).text(3, 5, QStringLiteral("a")).finished());
        QCOMPARE(sheet.firstRow(), 3);
        QCOMPARE(sheet.firstColumn(), 2);
        QCOMPARE(sheet.text(0, 0), QString());
        QCOMPARE(sheet.text(0, 3), QStringLiteral("a"));
        QCOMPARE(sheet.text(1, 0), QStringLiteral("b"));
    }

    void outsideOfTheTableIsBlank()
    {
        const Sheet sheet = tbl(contents(QStringLiteral("biff8/TblLog.XLS")));
        QCOMPARE(sheet.rowCount(), 17);
        QCOMPARE(sheet.columnCount(), 11);
        for (const auto &[row, column] : {std::pair(-1, 0), {0, -1}, {17, 0}, {0, 11}, {15, 0}}) {
            QCOMPARE(sheet.text(row, column), QString());
            QVERIFY(sheet.kind(row, column) == CellKind::Blank);
        }
        QVERIFY(sheet.isBlankRow(15));
        QVERIFY(!sheet.isBlankRow(16));
        QVERIFY(sheet.isBlankRow(17));
        QVERIFY(sheet.isBlankRow(-1));
    }

    void sheetNamesKnowNoCase()
    {
        const QByteArray book = contents(QStringLiteral("biff5/TblLog.XLS"));
        for (const char16_t *name : {u"tbl", u"TBL", u"Tbl"})
            QCOMPARE(refusal(book, QString::fromUtf16(name)), QString());
        QCOMPARE(refusal(book, QStringLiteral("лист2")), QString());
        QCOMPARE(refusal(book, QStringLiteral("Лист3")),
                 QStringLiteral("в книге нет листа «Лист3» (есть: «Tbl», «Лист2»)"));
    }

    void cellsOfEveryKind()
    {
        SheetWriter book;
        const int date = book.style(QStringLiteral("dd/mm/yy"));
        const int padded = book.style(QStringLiteral("0000"));
        const auto rk = [](int style, quint32 value) {
            return SheetWriter::u16(style) + SheetWriter::u32(value);
        };
        const auto place = [](int column, int style = 0xffff) {
            return SheetWriter::place(0, column, style);
        };
        book.text(0, 0, QStringLiteral("Ёж"));
        book.number(0, 1, 37321, date);
        book.number(0, 2, 63, padded);
        book.cell(0x27e, place(3) + SheetWriter::u32(14U << 2 | 2));         // whole
        book.cell(0x27e, place(4) + SheetWriter::u32(180U << 2 | 3));        // hundredths
        book.cell(0x27e, place(5) + SheetWriter::u32(quint32(-7) << 2 | 2)); // below zero
        book.cell(0x27e, place(6) + SheetWriter::u32(0x3ff80000));           // 1.5
        book.cell(0xbd, SheetWriter::u16(0) + SheetWriter::u16(7) + rk(padded, 59U << 2 | 2) +
                            rk(0xffff, 599U << 2 | 2) + SheetWriter::u16(8));
        book.cell(0x205, place(9) + QByteArray("\1\0", 2));
        book.cell(0x205, place(10) + QByteArray("\0\0", 2));
        const QByteArray codes("\x00\x07\x0f\x17\x1d\x24\x2a\x55", 8);
        for (int i = 0; i < codes.size(); ++i)
            book.cell(0x205, place(11 + i) + codes[i] + '\1');
        const auto result = [](const QByteArray &bytes) { return bytes + QByteArray(8, '\0'); };
        book.cell(0x06, place(19, padded) + result(SheetWriter::f64(5)));
        book.cell(0x06, place(20) + result(QByteArray("\1\0\1\0\0\0\xff\xff", 8)));
        book.cell(0x06, place(21) + result(QByteArray("\2\0\x2a\0\0\0\xff\xff", 8)));
        book.cell(0x06, place(22) + result(QByteArray("\3\0\0\0\0\0\xff\xff", 8)));
        book.cell(0x406, place(23) + result(QByteArray("\0\0\0\0\0\0\xff\xff", 8)));
        book.cell(0x4bc, QByteArray(20, 'x')); // a shared formula stands between cell and text
        book.cell(0x207, SheetWriter::wide(QStringLiteral("итог")));
        book.cell(0x207, SheetWriter::wide(QStringLiteral("ничей"))); // belongs to no formula
        book.cell(0x809, QByteArray("\0\6\x20\0\0\0\0\0", 8));        // a chart on the sheet
        book.number(0, 0, 99);
        book.cell(0x0a, {});
        book.number(0, 24, 1).number(0, 24, 2); // the later one stays
        book.text(0, 25, QStringLiteral("a") + QChar(0) + QStringLiteral("b"));
        const Sheet sheet = tbl(book.finished());
        QStringList texts;
        for (int column = 0; column < sheet.columnCount(); ++column)
            texts.append(sheet.text(0, column));
        QCOMPARE(texts, QStringList({QStringLiteral("Ёж"),
                                     QStringLiteral("06.03.02"),
                                     QStringLiteral("0063"),
                                     QStringLiteral("14"),
                                     QStringLiteral("1,8"),
                                     QStringLiteral("-7"),
                                     QStringLiteral("1,5"),
                                     QStringLiteral("0059"),
                                     QStringLiteral("599"),
                                     QStringLiteral("ИСТИНА"),
                                     QStringLiteral("ЛОЖЬ"),
                                     QStringLiteral("#ПУСТО!"),
                                     QStringLiteral("#ДЕЛ/0!"),
                                     QStringLiteral("#ЗНАЧ!"),
                                     QStringLiteral("#ССЫЛКА!"),
                                     QStringLiteral("#ИМЯ?"),
                                     QStringLiteral("#ЧИСЛО!"),
                                     QStringLiteral("#Н/Д"),
                                     QStringLiteral("#ОШИБКА!"),
                                     QStringLiteral("0005"),
                                     QStringLiteral("ИСТИНА"),
                                     QStringLiteral("#Н/Д"),
                                     QString(),
                                     QStringLiteral("итог"),
                                     QStringLiteral("2"),
                                     QStringLiteral("ab")}));
    }

    void aHiddenCellIsBlank()
    {
        SheetWriter book;
        const int hidden = book.style(QStringLiteral(";;;"));
        book.number(0, 0, 5, hidden).text(3, 3, QStringLiteral("x")).text(1, 1, {});
        const Sheet sheet = tbl(book.finished());
        QCOMPARE(sheet.firstRow(), 3);
        QCOMPARE(sheet.firstColumn(), 3);
        QCOMPARE(sheet.rowCount(), 1);
    }

    void textsOverSeveralRecords()
    {
        // One text in both widths with the seam inside, a text with runs whose data lie behind the seam.
        const QByteArray head = SheetWriter::u32(3) + SheetWriter::u32(3);
        const QByteArray first = SheetWriter::u16(6) + '\0' + "abc";
        const QByteArray rest =
            QByteArray("\1", 1) + SheetWriter::u16(0x416) + SheetWriter::u16(0x417) + SheetWriter::u16(0x418);
        const QByteArray runs =
            SheetWriter::u16(2) + '\x0c' + SheetWriter::u16(1) + SheetWriter::u32(3) + "xy12";
        SheetWriter book;
        book.global(0xfc, head + first).global(0x3c, rest + runs);
        book.global(0x3c, QByteArray("34567", 5) + SheetWriter::u16(1) + '\0' + "z" + "junk");
        for (int i = 0; i < 3; ++i)
            book.cell(0xfd, SheetWriter::place(0, i) + SheetWriter::u32(quint32(i)));
        const Sheet sheet = tbl(book.finished());
        QCOMPARE(sheet.text(0, 0), QStringLiteral("abcЖЗИ"));
        QCOMPARE(sheet.text(0, 1), QStringLiteral("xy"));
        QCOMPARE(sheet.text(0, 2), QStringLiteral("z"));
    }

    void containers_data()
    {
        QTest::addColumn<int>("sectorShift");
        QTest::addColumn<int>("rows");
        QTest::newRow("small sectors") << 9 << 400;
        QTest::newRow("large sectors") << 12 << 400;
        QTest::newRow("a list of sectors beyond the header") << 9 << 65536; // 8 MB
    }

    void containers()
    {
        QFETCH(int, sectorShift);
        QFETCH(int, rows);
        SheetWriter writer(SheetWriter::Version::Excel5);
        for (int row = 0; row < rows; ++row)
            writer.bytes(row, 0, "UA3ABC " + QByteArray::number(row).leftJustified(100, 'x'));
        const QByteArray book = testsupport::compoundFile("BOOK", writer.finished(), sectorShift);
        const Sheet sheet = tbl(book);
        QCOMPARE(sheet.rowCount(), rows);
        QVERIFY(sheet.text(rows - 1, 0).startsWith(QStringLiteral("UA3ABC %1x").arg(rows - 1)));
        QVERIFY(refusal(book.chopped(book.size() / 2)).startsWith(QStringLiteral("файл повреждён")));
    }

    void onlyStreamsUnderTheRoot()
    {
        const QByteArray stream = SheetWriter().text(0, 0, QString(5000, u'x')).finished();
        QCOMPARE(refusal(testsupport::compoundFile("Workbook", stream, 9)), QString());
        QCOMPARE(refusal(testsupport::compoundFile("Contents", stream, 9)),
                 QStringLiteral("в файле нет книги Excel"));
        QCOMPARE(refusal(testsupport::compoundFile("EncryptedPackage", stream, 9)),
                 QStringLiteral("книга защищена паролем; снимите пароль и сохраните её снова"));
    }

    void pagesOfBytes_data()
    {
        QTest::addColumn<int>("page");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        const QByteArray moscow1251("\xcc\xee\xf1\xea\xe2\xe0");
        QTest::newRow("1251") << 1251 << moscow1251 << QStringLiteral("Москва");
        QTest::newRow("none") << 0 << moscow1251 << QStringLiteral("Москва");
        QTest::newRow("Western over Russian") << 1252 << moscow1251 << QStringLiteral("Москва");
        QTest::newRow("old Western over Russian") << 0x8001 << moscow1251 << QStringLiteral("Москва");
        QTest::newRow("Western") << 1252 << QByteArray("K\xf6ln, M\xfcnchen")
                                 << QStringLiteral("Köln, München");
        QTest::newRow("none, Western") << 0 << QByteArray("K\xf6ln") << QStringLiteral("Köln");
        QTest::newRow("866") << 866 << QByteArray("\x8c\xae\xe1\xaa\xa2\xa0") << QStringLiteral("Москва");
        QTest::newRow("437 over Russian")
            << 437 << QByteArray("\x8c\xae\xe1\xaa\xa2\xa0") << QStringLiteral("Москва");
        QTest::newRow("437") << 437 << QByteArray("K\x94ln") << QStringLiteral("Köln");
        QTest::newRow("Macintosh Cyrillic")
            << 10007 << QByteArray("\x8c\xee\xf1\xea\xe2\xe0") << QStringLiteral("Москва");
        QTest::newRow("Macintosh over Russian")
            << 10000 << QByteArray("\x8c\xee\xf1\xea\xe2\xe0") << QStringLiteral("Москва");
        QTest::newRow("1250") << 1250
                              << QByteArray("\xa3\xf3"
                                            "d\x9f")
                              << QStringLiteral("Łódź");
        QTest::newRow("unknown") << 9999 << moscow1251 << QStringLiteral("Москва");
    }

    void pagesOfBytes()
    {
        QFETCH(int, page);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        SheetWriter book(SheetWriter::Version::Excel5);
        if (page != 0)
            book.global(0x42, SheetWriter::u16(page));
        book.bytes(0, 0, bytes);
        QCOMPARE(tbl(book.finished()).text(0, 0), text);
    }

    void damaged_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("said"); // empty where the workbook is read
        const auto row = [](const char *name, const char16_t *said) {
            QTest::newRow(name) << QString::fromLatin1(name) << QString::fromUtf16(said);
        };
        const char16_t *damaged = u"файл повреждён";
        const char16_t *none = u"это не книга Excel";
        row("boundsheet_offset_biff5", damaged);
        row("boundsheet_self_biff5", damaged);
        row("csv_cp1251", u"это текстовый файл, а не книга Excel; откройте его и сохраните как");
        row("dimensions_huge_biff5", u"");
        row("empty", u"файл пуст");
        row("fat_far_biff8", damaged);
        row("fat_ffff_biff5", damaged);
        row("fat_loop_biff8", damaged);
        row("filepass_biff5", u"книга защищена паролем");
        row("header_dirstart_biff8", damaged);
        row("header_fatcount_biff8", u"");
        row("header_sectorshift_biff8", damaged);
        row("header_then_junk", damaged);
        row("html", u"это страница HTML, а не книга Excel; откройте её и сохраните как");
        row("junk", none);
        row("label_len_past_record_biff5", damaged);
        row("mulrk_lastcol_biff5", u"файл повреждён: ячейка за краем листа");
        row("no_eof_biff5", damaged);
        row("no_workbook_stream", u"в файле нет книги Excel");
        row("one_byte", u"это");
        row("rec_len_past_end_biff5", damaged);
        row("row_65535_biff5", u"");
        row("sst_count_biff8", u"");
        row("sst_index_biff8", damaged);
        row("sst_strlen_biff8", damaged);
        row("trunc_600", damaged);
        row("trunc_half_biff5", damaged);
        row("trunc_half_biff8", damaged);
        row("trunc_last512_biff8", damaged);
        row("trunc_odd_biff5", u"");
        row("xf_out_of_range_biff5", u"");
        row("xlsx_inside", u"это книга Excel 2007 или новее (.xlsx); откройте её и сохраните как "
                           u"«Книга Excel 97–2003 (*.xls)»");
        row("zeros", none);
    }

    void damaged()
    {
        QFETCH(QString, name);
        QFETCH(QString, said);
        const QByteArray bytes = contents(QLatin1String("broken/") + name + QLatin1String(".xls"));
        const QString text = refusal(bytes);
        if (!said.isEmpty()) {
            QVERIFY2(text.startsWith(said), text.toUtf8());
            return;
        }
        QCOMPARE(text, QString());
        QCOMPARE(tbl(bytes).text(0, 0), QStringLiteral("UA3ABC"));
        QVERIFY(cellCount(tbl(bytes)) >= 40);
    }

    void everyDamagedFileIsListed()
    {
        QCOMPARE(QDir(dataFolder() + QLatin1String("broken")).entryList({QStringLiteral("*.xls")}).size(),
                 33);
    }

    void sheetMissing()
    {
        for (const char *name : {"variants/nosheet_biff5.xls", "variants/nosheet_biff8.xls"})
            QCOMPARE(refusal(contents(QLatin1String(name))),
                     QStringLiteral("в книге нет листа «Tbl» (есть: «Sheet1», «Лист2»)"));
    }

    void otherFormats()
    {
        QVERIFY(refusal(contents(QStringLiteral("other/TblLog.xlsx"))).startsWith(u"это книга Excel 2007"));
        QVERIFY(refusal(QByteArray("PK\3\4") + QByteArray(26, '\0') +
                        "mimetypeapplication/vnd.oasis.opendocument.spreadsheet")
                    .startsWith(u"это таблица OpenDocument (.ods)"));
        QVERIFY(refusal("\xef\xbb\xbf<?xml version=\"1.0\"?><Workbook/>").startsWith(u"это файл XML"));
        QVERIFY(refusal(QByteArray("\x09\x04\x06\0\0\0\x10\0", 8)).startsWith(u"это книга Excel 4.0"));
        QCOMPARE(refusal(SheetWriter().finished().replace(QByteArray("\x09\x08\x08\0\0\6", 6),
                                                          QByteArray("\x09\x08\x08\0\0\7", 6))),
                 QStringLiteral("это не книга Excel, или она повреждена"));
    }

    void filesThatCannotBeRead()
    {
        const auto said = [](const QString &path) {
            try {
                (void)foreign::readSheetFile(path, QStringLiteral("Tbl"));
            } catch (const foreign::Error &error) {
                return error.text();
            }
            return QString();
        };
        QCOMPARE(said(dataFolder() + QLatin1String("biff8/TblLog.XLS")), QString());
        QCOMPARE(said(dataFolder() + QLatin1String("biff8")), QStringLiteral("это папка"));
        QCOMPARE(said(dataFolder() + QLatin1String("nothing.xls")), QStringLiteral("файла нет"));
        QTemporaryDir folder;
        QFile huge(folder.filePath(QStringLiteral("huge.xls")));
        QVERIFY(huge.open(QIODevice::WriteOnly));
        QVERIFY(huge.resize((qint64{128} << 20) + 1)); // takes no room on the disk
        huge.close();
        QCOMPARE(said(huge.fileName()), QStringLiteral("файл больше 128 МБ"));
    }

    void placesOutsideOfASheet()
    {
        QCOMPARE(refusal(SheetWriter().number(0, 256, 1).finished()),
                 QStringLiteral("файл повреждён: ячейка за краем листа"));
        QCOMPARE(refusal(SheetWriter().number(65535, 255, 1).finished()), QString());
    }

    /// Whatever is changed in a workbook, it is read or refused.
    void changedBytes_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name :
             {"biff5/TblLog.XLS", "biff5hand/TblLog.XLS", "biff8/TblLog.XLS", "variants/shifted_biff8.xls",
              "variants/xlwt_1904.xls", "variants/hand5_cp10007.xls"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void changedBytes()
    {
        QFETCH(QString, name);
        const QByteArray original = contents(name);
        std::mt19937 random(20020305); // NOLINT: the same changes in every run
        const auto below = [&random](qsizetype limit) { return qsizetype(random() % quint32(limit)); };
        constexpr int kRuns = 1500;
        int read = 0;
        int refused = 0;
        for (int run = 0; run < kRuns; ++run) {
            QByteArray bytes = original;
            for (qsizetype changes = 1 + below(6); changes > 0; --changes) {
                const qsizetype at = below(4) == 0 ? below(512) : below(bytes.size());
                static const QByteArray telling("\x00\xff\x7f\x80\x01\xfe", 6);
                bytes[at] = below(2) == 0 ? telling[below(telling.size())] : char(below(256));
            }
            if (below(8) == 0)
                bytes.truncate(below(bytes.size()));
            try {
                const Sheet sheet = tbl(bytes);
                ++read;
                QVERIFY(sheet.rowCount() <= Sheet::kRows && sheet.columnCount() <= Sheet::kColumns);
                for (int row = 0; row < sheet.rowCount(); ++row)
                    if (!sheet.isBlankRow(row))
                        QVERIFY(sheet.text(row, 0).size() < 100000);
            } catch (const foreign::Error &error) {
                ++refused;
                QVERIFY(!error.text().isEmpty());
            }
        }
        QVERIFY(read > 0 && refused > 0);
        QCOMPARE(read + refused, kRuns);
    }
};

QTEST_APPLESS_MAIN(WorkbookTest)
#include "workbook.moc"
