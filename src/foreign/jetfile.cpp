#include "foreign/jetfile.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace foreign {

namespace {

constexpr int kSlice = 50; // ms between two looks at whether to stop
constexpr int kMostTables = 5000;

} // namespace

JetVersion jetVersion(const QString &path)
{
    constexpr qint64 kHeadSize = 21;
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return JetVersion::None;
    const QByteArray head = file.read(kHeadSize);
    if (head.size() < kHeadSize)
        return JetVersion::None;
    if (head.startsWith(QByteArray("\0\1\0\0Standard ACE DB", 19)))
        return JetVersion::Newer;
    if (!head.startsWith(QByteArray("\0\1\0\0Standard Jet DB", 19)))
        return JetVersion::None;
    switch (head.back()) {
    case 0:
        return JetVersion::Jet3;
    case 1:
        return JetVersion::Jet4;
    default:
        return JetVersion::Newer;
    }
}

QString defaultJetReader()
{
    QString path = QCoreApplication::applicationDirPath() + QStringLiteral("/zhurnal-jetread");
#ifdef Q_OS_WIN
    path += QStringLiteral(".exe");
#endif
    return path;
}

/// Takes a frame apart; what is not there makes it invalid for good, and reads as zero.
class JetFile::Payload {
public:
    explicit Payload(QByteArrayView bytes) : m_rest(bytes) {}

    [[nodiscard]] bool valid() const noexcept { return m_valid; }
    [[nodiscard]] bool atEnd() const noexcept { return m_rest.isEmpty(); }

    QByteArrayView take(qsizetype size)
    {
        if (size < 0 || size > m_rest.size()) {
            m_valid = false;
            m_rest = {};
            return {};
        }
        const QByteArrayView taken = m_rest.first(size);
        m_rest = m_rest.sliced(size);
        return taken;
    }
    quint64 number(qsizetype size)
    {
        const QByteArrayView bytes = take(size);
        quint64 value = 0;
        for (qsizetype i = 0; i < bytes.size(); ++i)
            value |= quint64(static_cast<uchar>(bytes[i])) << (8 * i);
        return value;
    }
    int small(qsizetype size) { return static_cast<int>(number(size)); }
    QByteArrayView text() { return take(static_cast<qsizetype>(number(4))); }

    JetValue value()
    {
        constexpr qsizetype kGuidSize = 16;
        JetValue value;
        value.kind = static_cast<jet::ValueKind>(number(1));
        switch (value.kind) {
        case jet::ValueKind::Null:
            break;
        case jet::ValueKind::Boolean:
            value.integer = static_cast<qint64>(number(1));
            break;
        case jet::ValueKind::Integer:
        case jet::ValueKind::Money:
            value.integer = static_cast<qint64>(number(8));
            break;
        case jet::ValueKind::Single:
            value.number = double(std::bit_cast<float>(static_cast<quint32>(number(4))));
            break;
        case jet::ValueKind::Double:
        case jet::ValueKind::Date:
            value.number = std::bit_cast<double>(number(8));
            break;
        case jet::ValueKind::Decimal:
        case jet::ValueKind::Text:
        case jet::ValueKind::Binary:
            value.bytes = text();
            break;
        case jet::ValueKind::Guid:
            value.bytes = take(kGuidSize);
            break;
        default:
            m_valid = false;
        }
        return value;
    }

private:
    QByteArrayView m_rest;
    bool m_valid = true;
};

JetFile::JetFile(const QString &path, JetOptions options)
    : m_options(std::move(options)), m_process(std::make_unique<QProcess>())
{
    switch (jetVersion(path)) {
    case JetVersion::None:
        throw Error(QStringLiteral("это не база данных Access"));
    case JetVersion::Newer:
        throw Error(QStringLiteral("это база Access 2007 или новее, а читаются базы Access 97–2003"));
    case JetVersion::Jet3:
    case JetVersion::Jet4:
        break;
    }
    QStringList arguments{path};
    if (m_options.codePage != 0)
        arguments += {QStringLiteral("--codepage"), QString::number(m_options.codePage)};
    if (m_options.tablesOnly)
        arguments += QStringLiteral("--tables");
    m_process->setStandardErrorFile(QProcess::nullDevice());
    m_process->setStandardInputFile(QProcess::nullDevice());
    m_process->start(m_options.program, arguments, QIODevice::ReadOnly);
    if (!m_process->waitForStarted(m_options.silence))
        throw Error(QStringLiteral("не запускается программа чтения старых баз %1").arg(m_options.program));
    try {
        readHead();
    } catch (...) {
        stop();
        throw;
    }
}

JetFile::~JetFile()
{
    stop();
}

void JetFile::stop() noexcept
{
    if (m_process->state() == QProcess::NotRunning)
        return;
    m_process->kill();
    (void)m_process->waitForFinished();
}

qint64 JetFile::claimedRows() const noexcept
{
    qint64 rows = 0;
    for (const JetTable &table : m_tables)
        rows += table.claimedRows;
    return rows;
}

void JetFile::fail(const QString &what) const
{
    throw Error(QStringLiteral("%1; прочитано %2 строк из %3").arg(what).arg(m_rows).arg(claimedRows()));
}

/// Why the stream broke off.
QString JetFile::ending() const
{
    if (m_process->state() != QProcess::NotRunning)
        return QStringLiteral("программа чтения не отвечает, файл, по-видимому, повреждён");
    return m_process->exitStatus() == QProcess::CrashExit
               ? QStringLiteral("файл повреждён, программа чтения завершилась аварийно")
               : QStringLiteral("файл повреждён, чтение оборвалось");
}

void JetFile::failAsReported(int reason) const
{
    switch (static_cast<jet::Failure>(reason)) {
    case jet::Failure::CannotOpen:
        throw Error(QStringLiteral("файл не открывается или повреждён"));
    case jet::Failure::NotJet:
        throw Error(QStringLiteral("это не база Access 97–2003"));
    case jet::Failure::CodePage:
        throw Error(QStringLiteral("в файле названа неизвестная кодовая страница"));
    case jet::Failure::Catalog:
        break;
    }
    throw Error(QStringLiteral("файл повреждён, не читается список таблиц; прочитано 0 строк"));
}

/// Waits until so many bytes lie in the buffer behind those that are done with.
void JetFile::need(qsizetype bytes)
{
    if (m_buffer.size() - m_used >= bytes)
        return;
    m_buffer.remove(0, m_used);
    m_used = 0;
    QElapsedTimer silence;
    silence.start();
    while (m_buffer.size() < bytes) {
        if (m_process->bytesAvailable() == 0)
            (void)m_process->waitForReadyRead(kSlice);
        const QByteArray more = m_process->readAllStandardOutput();
        m_buffer += more;
        if (!more.isEmpty()) {
            silence.restart();
            continue;
        }
        if (m_process->state() == QProcess::NotRunning || silence.hasExpired(m_options.silence))
            fail(ending());
        if (m_options.onWait && !m_options.onWait())
            throw JetStopped();
    }
}

JetFile::FrameView JetFile::nextFrame()
{
    need(jet::kFrameHeadSize);
    Payload head(QByteArrayView(m_buffer).sliced(m_used, jet::kFrameHeadSize));
    const quint64 size = head.number(4);
    const auto type = static_cast<jet::Frame>(head.number(1));
    if (size > jet::kLongestFrame)
        fail(QStringLiteral("файл повреждён"));
    need(static_cast<qsizetype>(jet::kFrameHeadSize + size));
    const QByteArrayView payload =
        QByteArrayView(m_buffer).sliced(m_used + jet::kFrameHeadSize, static_cast<qsizetype>(size));
    m_used += static_cast<qsizetype>(jet::kFrameHeadSize + size);
    if (type == jet::Frame::Failure)
        failAsReported(Payload(payload).small(1));
    return {type, payload};
}

/// Everything up to the first row: the next frame is then Begin or Done, and is left in the buffer.
void JetFile::readHead()
{
    need(jet::kMagicSize);
    if (std::memcmp(m_buffer.constData(), jet::kMagic, jet::kMagicSize) != 0)
        fail(QStringLiteral("программа чтения старых баз не той версии"));
    m_used = jet::kMagicSize;
    const FrameView file = nextFrame();
    Payload payload(file.payload);
    constexpr int kJet3 = 3;
    m_jet3 = payload.small(1) == kJet3;
    m_headerCodePage = payload.small(2);
    (void)payload.small(2);
    if (file.type != jet::Frame::File || !payload.valid())
        fail(QStringLiteral("файл повреждён"));
    while (true) {
        need(jet::kFrameHeadSize);
        if (static_cast<jet::Frame>(m_buffer[m_used + 4]) != jet::Frame::Table &&
            static_cast<jet::Frame>(m_buffer[m_used + 4]) != jet::Frame::Failure)
            break;
        readTable(Payload(nextFrame().payload));
    }
    if (m_tables.isEmpty())
        throw Error(QStringLiteral("в файле нет ни одной таблицы"));
}

void JetFile::readTable(Payload payload)
{
    JetTable table;
    table.name = QString::fromUtf8(payload.text());
    table.claimedRows = static_cast<qint64>(payload.number(4));
    table.damaged = payload.small(1) != 0;
    const int columns = payload.small(2);
    for (int i = 0; i < columns && payload.valid(); ++i) {
        JetColumn column;
        column.type = static_cast<jet::ColumnType>(payload.number(1));
        column.width = payload.small(2);
        column.name = QString::fromUtf8(payload.text());
        table.columns.append(column);
    }
    if (!payload.valid() || m_tables.size() >= kMostTables)
        fail(QStringLiteral("файл повреждён"));
    m_incomplete = m_incomplete || table.damaged;
    m_tables.append(table);
}

int JetFile::nextTable()
{
    while (m_inRows)
        (void)nextRow();
    if (m_done)
        return -1;
    const FrameView frame = nextFrame();
    Payload payload(frame.payload);
    if (frame.type == jet::Frame::Done) {
        finish(payload);
        return -1;
    }
    const int table = payload.small(2);
    if (frame.type != jet::Frame::Begin || !payload.valid() || table <= m_table || table >= m_tables.size())
        fail(QStringLiteral("файл повреждён"));
    m_table = table;
    m_tableRows = 0;
    m_inRows = true;
    m_row.resize(static_cast<std::size_t>(m_tables[table].columns.size()));
    return table;
}

bool JetFile::nextRow()
{
    if (!m_inRows)
        return false;
    const FrameView frame = nextFrame();
    if (frame.type == jet::Frame::Row) {
        readRow(Payload(frame.payload));
        return true;
    }
    if (frame.type != jet::Frame::End)
        fail(QStringLiteral("файл повреждён"));
    endTable(Payload(frame.payload));
    return false;
}

void JetFile::readRow(Payload payload)
{
    for (JetValue &value : m_row)
        value = payload.value();
    if (!payload.valid() || !payload.atEnd())
        fail(QStringLiteral("файл повреждён"));
    ++m_rows;
    if (++m_tableRows > m_tables[m_table].claimedRows) // an endless stream ends here too
        fail(QStringLiteral("файл повреждён, строк в нём больше, чем он называет"));
}

void JetFile::endTable(Payload payload)
{
    const auto written = static_cast<qint64>(payload.number(4));
    const quint64 unreadable = payload.number(4);
    const bool damaged = payload.number(1) != 0;
    if (!payload.valid() || written != m_tableRows || unreadable != 0 || damaged ||
        m_tableRows != m_tables[m_table].claimedRows)
        m_incomplete = true; // told at the end, with the rows of the other tables
    m_inRows = false;
}

/// The stream has come to its end; whether it brought everything is judged here.
void JetFile::finish(Payload payload)
{
    m_done = true;
    const auto rows = static_cast<qint64>(payload.number(8));
    // It may have ended already; waiting for that fails.
    if (m_process->state() != QProcess::NotRunning)
        (void)m_process->waitForFinished(m_options.silence);
    if (m_process->state() != QProcess::NotRunning || m_process->exitStatus() != QProcess::NormalExit ||
        m_process->exitCode() != 0 || !payload.valid() || rows != m_rows)
        fail(ending());
    for (const JetTable &table : std::as_const(m_tables))
        if (table.damaged)
            fail(QStringLiteral("файл повреждён, не читается таблица %1").arg(table.name));
    if (m_incomplete)
        fail(QStringLiteral("файл повреждён"));
    if (!m_options.tablesOnly && m_rows != claimedRows())
        fail(QStringLiteral("файл повреждён"));
}

} // namespace foreign
