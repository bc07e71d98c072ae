#include "store/conversion.h"

#include "store/jetload.h"
#include "store/sqlite.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <filesystem>
#include <utility>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace store {

namespace {

const QString &unfinishedSuffix()
{
    static const QString suffix = QStringLiteral(".converting");
    return suffix;
}

void removeDatabase(const QString &path)
{
    QFile::remove(path);
    QFile::remove(path + QStringLiteral("-journal"));
}

/// What stood in the way, told of the file that the operator knows.
Error ofFile(const Error &error, const QString &path)
{
    return {error.kind(), path, error.engineText(), error.sql(), error.code()};
}

[[noreturn]] void failedWrite(const QString &path, const QFileDevice &file)
{
    throw Error(ErrorKind::InputOutput, path, file.errorString());
}

void copyBytes(const QString &from, const QString &to)
{
    constexpr qint64 kPiece = 1 << 20;
    QFile source(from);
    QFile target(to);
    if (!source.open(QIODevice::ReadOnly))
        failedWrite(from, source);
    if (!target.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        failedWrite(to, target);
    while (!source.atEnd()) {
        const QByteArray piece = source.read(kPiece);
        if (piece.isEmpty())
            failedWrite(from, source);
        if (target.write(piece) != piece.size())
            failedWrite(to, target);
    }
    if (!syncFile(target))
        failedWrite(to, target);
}

bool sameBytes(const QString &a, const QString &b)
{
    constexpr qint64 kPiece = 1 << 20;
    QFile first(a);
    QFile second(b);
    if (QFileInfo(a).size() != QFileInfo(b).size() || !first.open(QIODevice::ReadOnly) ||
        !second.open(QIODevice::ReadOnly))
        return false;
    while (!first.atEnd()) {
        const QByteArray piece = first.read(kPiece);
        if (piece.isEmpty() || piece != second.read(kPiece))
            return false;
    }
    return second.atEnd();
}

bool linkFile(const QString &from, const QString &to)
{
#ifdef Q_OS_UNIX
    return ::link(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
#else
    Q_UNUSED(from)
    Q_UNUSED(to)
    return false;
#endif
}

/// The original under its second name while the conversion runs; the name goes again where it fails.
class KeptOriginal {
public:
    explicit KeptOriginal(const QString &path)
    {
        const QFileInfo info(path);
        const QString folder = info.absolutePath();
        for (int number = 1;; ++number) {
            const QString suffix = number == 1 ? QString() : QString::number(number);
            const QString name = QStringLiteral("%1.jet%2.mdb").arg(info.completeBaseName(), suffix);
            m_path = findFile(folder, name, {});
            if (!QFileInfo::exists(m_path) && !QFileInfo(m_path).isSymLink())
                break;
            if (sameBytes(path, m_path))
                return; // kept by a conversion that was cut off
        }
        if (!linkFile(path, m_path))
            copy(path);
        m_made = true;
        syncFolder(folder);
    }
    KeptOriginal(const KeptOriginal &) = delete;
    KeptOriginal &operator=(const KeptOriginal &) = delete;
    ~KeptOriginal()
    {
        if (m_made && !m_keep)
            QFile::remove(m_path);
    }

    [[nodiscard]] const QString &path() const noexcept { return m_path; }
    void keep() noexcept { m_keep = true; }

private:
    /// For file systems without links.
    void copy(const QString &path)
    {
        const QString unfinished = m_path + unfinishedSuffix();
        QFile::remove(unfinished);
        try {
            copyBytes(path, unfinished);
            if (!sameBytes(path, unfinished))
                throw Error(ErrorKind::InputOutput, path, QStringLiteral("копия не равна файлу"));
            if (!QFile::rename(unfinished, m_path))
                throw Error(ErrorKind::InputOutput, m_path, QStringLiteral("файл не переименован"));
        } catch (...) {
            QFile::remove(unfinished);
            throw;
        }
    }

    QString m_path;
    bool m_made = false;
    bool m_keep = false;
};

/// Size and time of a file: whether another program has written it meanwhile.
struct Stamp {
    explicit Stamp(const QString &path) : size(QFileInfo(path).size()), time(QFileInfo(path).lastModified())
    {}
    bool operator==(const Stamp &other) const = default;

    qint64 size;
    QDateTime time;
};

const FileLayout &layoutFor(const QString &path, const FileLayout *given)
{
    if (given != nullptr)
        return *given;
    const FileLayout *layout = fileLayout(QFileInfo(path).fileName());
    return layout != nullptr ? *layout : *fileLayout(u"dblog.mdb");
}

/// The new file `target` from the old one, written and compared. It is on the disk when this returns.
QList<Conversion::Table> convertInto(const QString &source, const QString &target, const FileLayout &layout,
                                     const ConversionOptions &options, const ConversionProgress &progress)
{
    foreign::JetOptions reader = options.reader;
    qint64 done = 0;
    qint64 total = 0;
    const auto report = [&] { return !progress || progress(done, total); };
    reader.onWait = report;
    if (foreign::jetVersion(source) == foreign::JetVersion::Jet3 && reader.codePage == 0) {
        const auto doubt = foreign::doubtCodePage(source, reader);
        if (doubt)
            reader.codePage = options.chooseCodePage ? options.chooseCodePage(source, *doubt)
                                                     : doubt->samples.front().codePage;
        if (doubt && reader.codePage == 0)
            throw Error(ErrorKind::Unreadable, source, QStringLiteral("не выбрана кодовая страница"));
    }
    const auto rowDone = [&] {
        constexpr qint64 kReportEvery = 500;
        return ++done % kReportEvery != 0 || report();
    };
    const LoadWatch watch{rowDone, report};
    QList<Conversion::Table> tables;
    {
        foreign::JetFile file(source, reader);
        total = 2 * file.claimedRows();
        if (!report())
            throw foreign::JetStopped();
        const auto connection = Connection::create(target);
        const QList<qint64> rows = loadJet(file, *connection, layout, watch);
        for (qsizetype i = 0; i < rows.size(); ++i)
            tables.append({file.tables()[i].name, rows[i]});
    }
    QFile written(target);
    if (!written.open(QIODevice::ReadWrite) || !syncFile(written))
        failedWrite(target, written);
    written.close();
    foreign::JetFile again(source, reader);
    Connection copy(target, OpenMode::ReadOnly);
    compareJet(again, copy, source, watch);
    if (!report())
        throw foreign::JetStopped();
    return tables;
}

/// convertInto() with every failure told of `source` and nothing left behind; nothing where it was stopped.
std::optional<QList<Conversion::Table>> convertOrClear(const QString &source, const QString &target,
                                                       const FileLayout &layout,
                                                       const ConversionOptions &options,
                                                       const ConversionProgress &progress)
{
    try {
        return convertInto(source, target, layout, options, progress);
    } catch (const foreign::JetStopped &) {
        removeDatabase(target);
        return std::nullopt;
    } catch (const foreign::Error &error) {
        removeDatabase(target);
        throw Error(ErrorKind::Unreadable, source, error.text());
    } catch (const Error &error) {
        removeDatabase(target);
        throw ofFile(error, source);
    } catch (...) {
        removeDatabase(target);
        throw;
    }
}

void renameOver(const QString &from, const QString &to)
{
    std::error_code failure;
    std::filesystem::rename(std::filesystem::path(from.toStdU16String()),
                            std::filesystem::path(to.toStdU16String()), failure);
    if (failure)
        throw Error(ErrorKind::InputOutput, to, QString::fromStdString(failure.message()));
}

} // namespace

qint64 Conversion::rows() const
{
    qint64 sum = 0;
    for (const Table &table : tables)
        sum += table.rows;
    return sum;
}

QList<OldFile> findOldFiles(const QString &folder, const std::function<QString(const QString &name)> &path)
{
    QList<OldFile> files;
    for (const FileLayout &layout : fileLayouts()) {
        const QString target = path(layout.name);
        const bool there = QFileInfo::exists(target) || QFileInfo(target).isSymLink();
        const QString source =
            there ? target : findFile(folder, layout.name.chopped(4) + QStringLiteral(".jet.mdb"), {});
        if (foreign::jetVersion(source) != foreign::JetVersion::None)
            files.append({source, target});
    }
    return files;
}

qint64 claimedRows(const QString &path, foreign::JetOptions reader)
{
    reader.tablesOnly = true;
    try {
        return foreign::JetFile(path, std::move(reader)).claimedRows();
    } catch (const foreign::Error &) {
        return 0; // its conversion tells
    }
}

std::optional<Conversion> convertJet(const OldFile &file, const ConversionOptions &options,
                                     const ConversionProgress &progress)
{
    std::optional<KeptOriginal> original;
    if (file.source == file.target)
        original.emplace(file.source);
    const Stamp before(file.source);
    const QString unfinished = file.target + unfinishedSuffix();
    removeDatabase(unfinished);
    auto tables =
        convertOrClear(file.source, unfinished, layoutFor(file.target, options.layout), options, progress);
    if (!tables)
        return std::nullopt;
    try {
        if (!(Stamp(file.source) == before))
            throw Error(ErrorKind::Unreadable, file.source,
                        QStringLiteral("его в это время изменила другая программа"));
        renameOver(unfinished, file.target);
    } catch (...) {
        removeDatabase(unfinished);
        throw;
    }
    if (original)
        original->keep();
    syncFolder(QFileInfo(file.target).absolutePath());
    return Conversion{original ? original->path() : file.source, std::move(*tables)};
}

std::optional<Conversion> convertJetTo(const QString &jetPath, const QString &newPath,
                                       const ConversionOptions &options, const ConversionProgress &progress)
{
    if (QFileInfo::exists(newPath))
        throw Error(ErrorKind::InputOutput, newPath, QStringLiteral("такой файл уже есть"));
    auto tables = convertOrClear(jetPath, newPath, layoutFor(jetPath, options.layout), options, progress);
    if (!tables)
        return std::nullopt;
    return Conversion{jetPath, std::move(*tables)};
}

void removeConversionLeftovers(const QString &folder)
{
    const QDir dir(folder);
    const QStringList left =
        dir.entryList({QStringLiteral("*.mdb") + unfinishedSuffix(),
                       QStringLiteral("*.mdb") + unfinishedSuffix() + QStringLiteral("-journal")},
                      QDir::Files | QDir::Hidden);
    for (const QString &name : left) {
        const QString original = name.left(name.indexOf(unfinishedSuffix()));
        const bool ours = fileLayout(original) != nullptr || original.contains(QLatin1String(".jet"));
        if (ours)
            QFile::remove(dir.filePath(name));
    }
}

} // namespace store
