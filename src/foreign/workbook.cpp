#include "foreign/workbook.h"

#include "foreign/codepage.h"
#include "foreign/compound.h"
#include "foreign/fileformat.h"
#include "foreign/records.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStringList>

#include <optional>

namespace foreign {

namespace {

constexpr qint64 kLargestFile = qint64{128} << 20;
constexpr quint32 kMostTexts = 4U << 20;
constexpr std::size_t kMostStyles = 65536; ///< as many as a cell could name
constexpr std::size_t kMostSheets = 65536;

// Records by their numbers.
enum : int {
    kFormulaRecord = 0x06,
    kEof = 0x0a,
    kDateMode = 0x22,
    kFilePass = 0x2f,
    kCodePage = 0x42,
    kBoundSheet = 0x85,
    kMulRk = 0xbd,
    kRString = 0xd6,
    kXf = 0xe0,
    kSst = 0xfc,
    kLabelSst = 0xfd,
    kNumber = 0x203,
    kLabel = 0x204,
    kBoolErr = 0x205,
    kFormula3 = 0x206,
    kString = 0x207,
    kRk = 0x27e,
    kFormula4 = 0x406,
    kFormat = 0x41e,
    kBof = 0x809,
};

enum : int { kGlobalsStream = 0x05, kSheetStream = 0x10 };
enum : int { kVersion5 = 0x500, kVersion8 = 0x600 };

/// Number in four bytes: the upper 30 bits of a floating one, or a whole one, perhaps in hundredths.
double rkNumber(quint32 rk)
{
    enum : quint32 { Hundredths = 1, Whole = 2 };
    double value = 0;
    if ((rk & Whole) != 0) {
        value = static_cast<qint32>(rk) >> 2;
    } else {
        const quint64 bits = static_cast<quint64>(rk & ~quint32{Hundredths | Whole}) << 32;
        std::memcpy(&value, &bits, sizeof value);
    }
    constexpr double kHundred = 100;
    return (rk & Hundredths) != 0 ? value / kHundred : value;
}

/// A text as it lies in the file: in Unicode, or in bytes whose page is known when all texts are.
struct RawText {
    QString unicode;
    QByteArray bytes;
};

class WorkbookReader {
public:
    explicit WorkbookReader(const QByteArray &stream) : m_stream(stream) {}

    [[nodiscard]] Sheet sheet(const QString &name);

private:
    struct Named {
        RawText name;
        quint32 place = 0;
        bool worksheet = false;
    };

    void readGlobals();
    void readGlobal(Records &records, const Record &record);
    void readSharedTexts(BodyReader body);
    void readSheetAt(qsizetype place);
    void readCell(Records &records, const Record &record);
    void readFormula(const ByteView &body);
    void addNumber(const ByteView &body, double value);
    void addText(int row, int column, RawText text);
    [[nodiscard]] RawText longText(Records &records, const Record &record, qsizetype at) const;
    [[nodiscard]] RawText shortText(const ByteView &body) const;
    [[nodiscard]] RawText formatText(const ByteView &body) const;
    [[nodiscard]] CodePage judgedPage() const;
    void setStyles(CodePage &page);

    ByteView m_stream;
    bool m_unicode = false;
    bool m_from1904 = false;
    int m_page = 0;
    std::vector<Named> m_sheets;
    QHash<int, RawText> m_formatTexts;
    std::vector<int> m_formatOfStyle; ///< by number
    std::vector<RawText> m_texts;     ///< the shared ones, then those of single cells
    quint32 m_sharedTexts = 0;
    struct Place {
        int row = 0;
        int column = 0;
    };
    std::optional<Place> m_awaited; ///< a formula whose text result follows in a record of its own
    SheetBuilder m_builder;
};

RawText WorkbookReader::longText(Records &records, const Record &record, qsizetype at) const
{
    std::vector<ByteView> parts = records.withContinuations(record);
    parts.front() = parts.front().from(at);
    BodyReader body(std::move(parts));
    if (m_unicode)
        return {body.unicode(), {}};
    const qsizetype length = body.u16();
    return {{}, body.bytes(length)};
}

RawText WorkbookReader::shortText(const ByteView &body) const
{
    BodyReader reader({body});
    if (m_unicode)
        return {reader.unicode(false), {}};
    const qsizetype length = reader.u8();
    return {{}, reader.bytes(length)};
}

RawText WorkbookReader::formatText(const ByteView &body) const
{
    return m_unicode ? RawText{BodyReader({body}).unicode(), {}} : shortText(body);
}

void WorkbookReader::readGlobals()
{
    Records records(m_stream, 0);
    const Record bof = records.next();
    const int version = bof.id == kBof ? bof.body.u16(0) : 0;
    if ((version != kVersion5 && version != kVersion8) || bof.body.u16(2) != kGlobalsStream)
        throw Error(QStringLiteral("это не книга Excel 5.0–2003"));
    m_unicode = version == kVersion8;
    while (true) {
        const Record record = records.next();
        if (record.id == kEof)
            return;
        readGlobal(records, record);
    }
}

void WorkbookReader::readGlobal(Records &records, const Record &record)
{
    const ByteView &body = record.body;
    switch (record.id) {
    case kFilePass:
        throw Error(QStringLiteral("книга защищена паролем; снимите пароль и сохраните её снова"));
    case kCodePage:
        m_page = body.u16(0);
        break;
    case kDateMode:
        m_from1904 = body.u16(0) != 0;
        break;
    case kFormat:
        m_formatTexts.insert(body.u16(0), formatText(body.from(2)));
        break;
    case kXf:
        if (m_formatOfStyle.size() < kMostStyles)
            m_formatOfStyle.push_back(body.u16(2));
        break;
    case kBoundSheet:
        if (m_sheets.size() == kMostSheets)
            throw Error(QStringLiteral("в книге слишком много листов"));
        m_sheets.push_back({shortText(body.from(6)), body.u32(0), body.u8(5) == 0});
        break;
    case kSst:
        readSharedTexts(BodyReader(records.withContinuations(record)));
        break;
    default:
        break;
    }
}

/// The count that the table tells is only an upper bound: it ends where its records end.
void WorkbookReader::readSharedTexts(BodyReader body)
{
    constexpr qint64 kTotalSize = 4;
    body.skip(kTotalSize);
    const quint32 count = body.u32();
    m_texts.clear();
    while (m_texts.size() < count && !body.atEnd()) {
        if (m_texts.size() == kMostTexts)
            throw Error(QStringLiteral("в книге слишком много текстов"));
        m_texts.push_back({body.unicode(), {}});
    }
    m_sharedTexts = static_cast<quint32>(m_texts.size());
}

void WorkbookReader::readSheetAt(qsizetype place)
{
    Records records(m_stream, place);
    const Record bof = records.next();
    if (bof.id != kBof || bof.body.u16(2) != kSheetStream)
        throw Error(QStringLiteral("файл повреждён: лист не на своём месте"));
    int depth = 1; // a chart within the sheet is a stream of its own
    while (depth > 0) {
        if (records.atEnd())
            throw Error(QStringLiteral("файл повреждён: лист обрывается"));
        const Record record = records.next();
        if (record.id == kBof)
            ++depth;
        else if (record.id == kEof)
            --depth;
        else if (depth == 1)
            readCell(records, record);
    }
}

void WorkbookReader::addNumber(const ByteView &body, double value)
{
    m_builder.add(body.u16(0), body.u16(2), CellKind::Number, value, body.u16(4));
}

void WorkbookReader::addText(int row, int column, RawText text)
{
    m_builder.add(row, column, CellKind::Text, 0, static_cast<int>(m_texts.size()));
    m_texts.push_back(std::move(text));
}

void WorkbookReader::readCell(Records &records, const Record &record)
{
    constexpr qsizetype kValueAt = 6; // behind row, column and style
    const ByteView &body = record.body;
    switch (record.id) {
    case kLabel:
    case kRString:
        addText(body.u16(0), body.u16(2), longText(records, record, kValueAt));
        break;
    case kLabelSst: {
        const quint32 index = body.u32(kValueAt);
        if (index >= m_sharedTexts)
            throw Error(QStringLiteral("файл повреждён: ячейка без текста"));
        m_builder.add(body.u16(0), body.u16(2), CellKind::Text, 0, static_cast<int>(index));
        break;
    }
    case kNumber:
        addNumber(body, body.f64(kValueAt));
        break;
    case kRk:
        addNumber(body, rkNumber(body.u32(kValueAt)));
        break;
    case kMulRk: {
        constexpr qsizetype kFirst = 4;
        constexpr qsizetype kCellSize = 6; // style and number; the last column stands behind them
        int column = body.u16(2);
        for (qsizetype at = kFirst; at + kCellSize + 2 <= body.size(); at += kCellSize)
            m_builder.add(body.u16(0), column++, CellKind::Number, rkNumber(body.u32(at + 2)), body.u16(at));
        break;
    }
    case kBoolErr:
        m_builder.add(body.u16(0), body.u16(2),
                      body.u8(kValueAt + 1) != 0 ? CellKind::Error : CellKind::Boolean, body.u8(kValueAt));
        break;
    case kFormulaRecord:
    case kFormula3:
    case kFormula4:
        readFormula(body);
        break;
    case kString:
        if (m_awaited)
            addText(m_awaited->row, m_awaited->column, longText(records, record, 0));
        m_awaited.reset();
        break;
    default:
        break;
    }
}

void WorkbookReader::readFormula(const ByteView &body)
{
    enum : quint8 { Text, Boolean, ErrorCode };
    constexpr qsizetype kResultAt = 6;
    constexpr int kNoNumber = 0xffff;
    m_awaited.reset();
    if (body.u16(kResultAt + 6) != kNoNumber) {
        addNumber(body, body.f64(kResultAt));
        return;
    }
    const int row = body.u16(0);
    const int column = body.u16(2);
    const quint8 value = body.u8(kResultAt + 2);
    switch (body.u8(kResultAt)) {
    case Text:
        m_awaited = Place{row, column};
        break;
    case Boolean:
        m_builder.add(row, column, CellKind::Boolean, value);
        break;
    case ErrorCode:
        m_builder.add(row, column, CellKind::Error, value);
        break;
    default: // an empty text
        m_builder.add(row, column, CellKind::Blank, 0);
        break;
    }
}

CodePage WorkbookReader::judgedPage() const
{
    std::vector<QByteArray> bytes;
    for (const Named &sheet : m_sheets)
        bytes.push_back(sheet.name.bytes);
    for (const RawText &text : m_texts)
        bytes.push_back(text.bytes);
    return CodePage::judged(m_page, bytes);
}

void WorkbookReader::setStyles(CodePage &page)
{
    std::vector<NumberFormat> formats;
    QHash<int, std::size_t> places; // of the formats by their numbers
    std::vector<std::size_t> formatOfStyle;
    formatOfStyle.reserve(m_formatOfStyle.size());
    for (const int number : m_formatOfStyle) {
        auto known = places.find(number);
        if (known == places.end()) {
            known = places.insert(number, formats.size());
            const auto written = m_formatTexts.constFind(number);
            formats.push_back(written == m_formatTexts.constEnd()
                                  ? NumberFormat::builtIn(number)
                                  : NumberFormat(m_unicode ? written->unicode : page.text(written->bytes)));
        }
        formatOfStyle.push_back(*known);
    }
    m_builder.setStyles(std::move(formats), std::move(formatOfStyle));
}

Sheet WorkbookReader::sheet(const QString &name)
{
    readGlobals();
    CodePage page = judgedPage();
    QStringList names;
    const Named *wanted = nullptr;
    for (const Named &sheet : m_sheets) {
        const QString its = m_unicode ? sheet.name.unicode : page.text(sheet.name.bytes);
        if (sheet.worksheet && wanted == nullptr && its.compare(name, Qt::CaseInsensitive) == 0)
            wanted = &sheet;
        if (names.size() < 5)
            names.append(QStringLiteral("«%1»").arg(its));
    }
    if (wanted == nullptr)
        throw Error(QStringLiteral("в книге нет листа «%1»").arg(name) +
                    (names.isEmpty() ? QString()
                                     : QStringLiteral(" (есть: %1)").arg(names.join(QStringLiteral(", ")))));
    readSheetAt(wanted->place);
    if (!m_unicode)
        page = judgedPage();
    std::vector<QString> texts;
    texts.reserve(m_texts.size());
    for (const RawText &text : m_texts) {
        texts.push_back(m_unicode ? text.unicode : page.text(text.bytes));
        texts.back().remove(QChar::Null); // a field would end there
    }
    m_builder.setTexts(std::move(texts));
    setStyles(page);
    m_builder.setFrom1904(m_from1904);
    return m_builder.finished();
}

QByteArray workbookStream(const QByteArray &bytes)
{
    if (isBareWorkbook(bytes))
        return bytes;
    if (!CompoundFile::recognised(bytes))
        throw Error(whyNoWorkbook(bytes));
    const CompoundFile file(bytes);
    if (auto stream = file.stream(QStringLiteral("Workbook")))
        return *stream;
    if (auto stream = file.stream(QStringLiteral("Book")))
        return *stream;
    if (file.stream(QStringLiteral("EncryptedPackage")))
        throw Error(QStringLiteral("книга защищена паролем; снимите пароль и сохраните её снова"));
    throw Error(QStringLiteral("в файле нет книги Excel"));
}

} // namespace

Sheet readSheet(const QByteArray &bytes, const QString &name)
{
    const QByteArray stream = workbookStream(bytes);
    return WorkbookReader(stream).sheet(name);
}

Sheet readSheetFile(const QString &path, const QString &name)
{
    if (QFileInfo(path).isDir())
        throw Error(QStringLiteral("это папка"));
    QFile file(path);
    if (!file.exists())
        throw Error(QStringLiteral("файла нет"));
    if (!file.open(QIODevice::ReadOnly))
        throw Error(QStringLiteral("файл не открывается, проверьте права доступа"));
    const QByteArray bytes = file.read(kLargestFile + 1);
    if (file.error() != QFileDevice::NoError)
        throw Error(QStringLiteral("ошибка чтения с диска"));
    if (bytes.size() > kLargestFile)
        throw Error(QStringLiteral("файл больше 128 МБ"));
    return readSheet(bytes, name);
}

} // namespace foreign
