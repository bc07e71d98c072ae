#include "interchange/adifexport.h"

#include "interchange/sql.h"
#include "store/rowreader.h"
#include "store/safefile.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace interchange {

namespace {

constexpr qint64 kStepRows = 2000;
constexpr qint64 kWriteRecords = 2000; ///< of a file that is not cut into pieces
constexpr qsizetype kRepairChunk = 10000;

/// Thrown through the reading of the rows where the operator wants to stop.
struct Stopped {};

ExportResult stopped()
{
    ExportResult result;
    result.stopped = true;
    return result;
}

} // namespace

AdifExport::AdifExport(store::Library &databases, QString logPath)
    : m_databases(databases), m_logPath(std::move(logPath))
{}

void AdifExport::compose(const store::SqlText &contacts, OwnLayoutWriter &writer, qint64 pieceRecords,
                         const BeginPiece &beginPiece, const TakePiece &take, const Step &step)
{
    m_result = {};
    m_repairs.clear();
    enum Field { Band, Date, Time, Sent, Received, Call, Mode };
    store::RowReader reader(m_databases.connection(m_logPath), contacts,
                            {QStringLiteral("bband"), QStringLiteral("ddate"), QStringLiteral("ttime"),
                             QStringLiteral("rsts"), QStringLiteral("rstr"), QStringLiteral("ccall"),
                             QStringLiteral("ps1")});
    if (reader.total() == 0)
        return;
    QByteArray text;
    qint64 records = 0;
    const auto begin = [&] {
        text.clear();
        records = 0;
        beginPiece(text);
    };
    begin();
    while (reader.next()) {
        const Replaced replaced =
            writer.append(text, {reader.utf8(Band), reader.utf8(Date), reader.utf8(Time), reader.utf8(Sent),
                                 reader.utf8(Received), reader.utf8(Call), reader.utf8(Mode)});
        if (replaced.any())
            m_repairs.append({reader.key(), replaced});
        ++m_result.contacts;
        if (m_result.contacts % kStepRows == 0 &&
            !step(QStringLiteral("Связей"), m_result.contacts, reader.total()))
            throw Stopped();
        if (++records == pieceRecords) {
            take(text, records);
            begin();
        }
    }
    take(text, records); // where the pieces are full, one with the header alone follows them
    m_result.undated = writer.undated();
}

ExportResult AdifExport::lastPiece(const store::SqlText &contacts, const QString &path, const Step &step)
{
    QByteArray last;
    qint64 records = 0;
    OwnLayoutWriter writer;
    try {
        compose(
            contacts, writer, kPieceRecords,
            [&](QByteArray &text) {
                text.append(OwnLayoutWriter::header());
                writer.setBand({});
            },
            [&](const QByteArray &text, qint64 count) {
                last = text;
                records = count;
            },
            step);
    } catch (const Stopped &) {
        return stopped();
    }
    if (m_result.contacts == 0)
        return m_result;
    store::SafeFile file(path);
    file.write(last);
    file.finish();
    file.publish();
    m_result.kept = records;
    m_result.files.append(file.path());
    repair(step);
    return m_result;
}

ExportResult AdifExport::whole(const store::SqlText &contacts, const QString &path, const Step &step)
{
    OwnLayoutWriter writer;
    std::unique_ptr<store::SafeFile> file;
    try {
        compose(
            contacts, writer, kWriteRecords,
            [&](QByteArray &) {
                if (file)
                    return;
                file = std::make_unique<store::SafeFile>(path);
                file->write(OwnLayoutWriter::header());
            },
            [&](const QByteArray &text, qint64) { file->write(text); }, step);
    } catch (const Stopped &) {
        return stopped();
    }
    m_repairs.clear();
    if (!file)
        return m_result;
    file->finish();
    file->publish();
    m_result.kept = m_result.contacts;
    m_result.files.append(file->path());
    return m_result;
}

ExportResult AdifExport::modern(const store::SqlText &contacts, const QString &path, AdifForm form,
                                const AdifHeader &header, const Step &step)
{
    static const QStringList kFields = {
        QStringLiteral("ccall"), QStringLiteral("ddate"), QStringLiteral("ttime"), QStringLiteral("bband"),
        QStringLiteral("rsts"),  QStringLiteral("rstr"),  QStringLiteral("ps"),    QStringLiteral("ps1"),
        QStringLiteral("PS2"),   QStringLiteral("QTH"),   QStringLiteral("NNAME"), QStringLiteral("QSLVIA"),
        QStringLiteral("QSLP"),  QStringLiteral("QSLO"),  QStringLiteral("CONTR"), QStringLiteral("CONT")};
    ExportResult result;
    store::SafeFile file(path);
    {
        store::RowReader reader(m_databases.connection(m_logPath), contacts, kFields);
        if (reader.total() == 0)
            return result;
        AdifWriter writer(form, header, [&](QByteArrayView bytes) { file.write(bytes); });
        while (reader.next()) {
            AdifContact contact;
            int field = 0;
            for (QString *text :
                 {&contact.ccall, &contact.ddate, &contact.ttime, &contact.bband, &contact.rsts,
                  &contact.rstr, &contact.ps, &contact.ps1, &contact.PS2, &contact.QTH, &contact.NNAME,
                  &contact.QSLVIA, &contact.QSLP, &contact.QSLO, &contact.CONTR, &contact.CONT})
                *text = reader.text(field++);
            (void)writer.write(contact, reader.key());
            ++result.contacts;
            if (result.contacts % kStepRows == 0 &&
                !step(QStringLiteral("Связей"), result.contacts, reader.total()))
                return stopped();
        }
        writer.finish();
        result.kept = writer.written();
        result.omitted = writer.omitted();
    }
    file.finish();
    file.publish();
    result.files.append(file.path());
    return result;
}

ExportResult AdifExport::numbered(const store::SqlText &contacts, const QString &path, QByteArray &band,
                                  const Step &step)
{
    std::vector<std::unique_ptr<store::SafeFile>> files;
    OwnLayoutWriter writer;
    writer.setBand(band);
    try {
        compose(
            contacts, writer, kPieceRecords, [](QByteArray &text) { text.append(OwnLayoutWriter::header()); },
            [&](const QByteArray &text, qint64) {
                files.push_back(
                    std::make_unique<store::SafeFile>(path + QString::number(qulonglong(files.size()))));
                files.back()->write(text);
                files.back()->finish(false);
            },
            step);
    } catch (const Stopped &) {
        return stopped();
    }
    store::SafeFile::publishAll(files);
    for (const auto &file : files)
        m_result.files.append(file->path());
    band = writer.band();
    m_result.kept = m_result.contacts;
    repair(step);
    return m_result;
}

void AdifExport::repair(const Step &step)
{
    if (m_repairs.isEmpty())
        return;
    const auto total = static_cast<qint64>(m_repairs.size());
    try {
        m_databases.makeVerifiedCopy(m_logPath, [&](qint64 done, qint64 pages) {
            (void)step(QStringLiteral("Копия журнала, страниц"), done, pages);
        });
        store::Connection &log = m_databases.connection(m_logPath);
        const store::Patience patience(log);
        const QString sent = sql::replaceSentReport();
        const QString received = sql::replaceReceivedReport();
        const QString mode = sql::fillMode();
        for (qsizetype begin = 0; begin < m_repairs.size(); begin += kRepairChunk) {
            const qsizetype end = std::min(begin + kRepairChunk, m_repairs.size());
            store::Transaction transaction(log);
            for (qsizetype i = begin; i < end; ++i) {
                const auto &[key, replaced] = m_repairs[i];
                if (replaced.rsts)
                    log.exec(sent, {key});
                if (replaced.rstr)
                    log.exec(received, {key});
                if (replaced.ps1 != Replaced::Mode::No)
                    log.exec(mode, {replaced.ps1 == Replaced::Mode::Cw ? QStringLiteral("CW")
                                                                       : QStringLiteral("SSB"),
                                    key});
            }
            transaction.commit();
            m_result.repaired = end;
            if (!step(QStringLiteral("Исправлено связей"), end, total) && end < total)
                break; // whole rows; the next export goes on with the rest
        }
    } catch (const store::Error &error) {
        m_result.repairFailure = error;
    }
    m_repairs.clear();
}

} // namespace interchange
