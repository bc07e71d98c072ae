#include "store/safefile.h"

#include "store/error.h"
#include "store/folder.h"
#include "store/schema.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <filesystem>
#include <system_error>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace store {

namespace {

constexpr qsizetype kBufferSize = 0x40000;

/// A link is followed: what it leads to is replaced, not the link.
QString target(const QString &path)
{
    const QFileInfo info(path);
    return info.isSymLink() && info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
}

/// A database or a program, which nobody means to replace by a file for others: by its first bytes, or by a
/// name that one of the program's own databases, or the journal of one, has.
bool isPrecious(const QString &path)
{
    QString name = QFileInfo(path).fileName();
    if (const QLatin1String journal("-journal"); name.endsWith(journal, Qt::CaseInsensitive))
        name.chop(journal.size());
    if (fileLayout(name) != nullptr)
        return true;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    constexpr qint64 kHead = 32;
    const QByteArray head = file.read(kHead);
    return head.startsWith("SQLite format 3") || head.mid(4).startsWith("Standard Jet DB") ||
           head.mid(4).startsWith("Standard ACE DB") ||
           head.startsWith("\x7f"
                           "ELF") ||
           head.startsWith("MZ");
}

} // namespace

SafeFile::SafeFile(const QString &path) : m_path(target(path))
{
    const QFileInfo info(m_path);
    if (info.exists() && !info.isFile())
        throw Error(ErrorKind::Unwritable, m_path,
                    info.isDir() ? QStringLiteral("так называется папка") : QStringLiteral("это не файл"));
    if (info.fileName().isEmpty())
        throw Error(ErrorKind::Unwritable, m_path, QStringLiteral("не указано имя файла"));
    if (!info.dir().exists())
        throw Error(ErrorKind::Unwritable, m_path, QStringLiteral("нет папки %1").arg(info.path()));
    if (isPrecious(m_path))
        throw Error(ErrorKind::Unwritable, m_path,
                    QStringLiteral("это база данных или программа, выберите другое имя"));
    if (info.exists() && !info.isWritable())
        throw Error(ErrorKind::Unwritable, m_path, QStringLiteral("он защищён от записи"));
    m_file.setFileName(m_path +
                       QStringLiteral(".zhurnal-part")); // one that a killed export left is written over
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        throw Error(ErrorKind::Unwritable, m_path, m_file.errorString());
}

SafeFile::~SafeFile()
{
    if (!m_published)
        m_file.remove();
}

void SafeFile::fail()
{
    const bool full = errno == ENOSPC || errno == EDQUOT;
    throw Error(full ? ErrorKind::DiskFull : ErrorKind::Unwritable, m_path, m_file.errorString());
}

void SafeFile::flushBuffer()
{
    errno = 0;
    if (m_file.write(m_buffer) != m_buffer.size())
        fail();
    m_buffer.clear();
}

void SafeFile::write(QByteArrayView bytes)
{
    m_buffer.append(bytes);
    if (m_buffer.size() >= kBufferSize)
        flushBuffer();
}

void SafeFile::finish(bool flushed)
{
    flushBuffer();
    if (flushed)
        flush(m_file.handle());
    m_file.close();
    if (m_file.error() != QFileDevice::NoError)
        fail();
    const QFileInfo replaced(m_path);
    if (replaced.exists())
        (void)m_file.setPermissions(replaced.permissions()); // whoever could read it still can
}

void SafeFile::flush(int handle)
{
#ifdef Q_OS_UNIX
    errno = 0;
    if (::fsync(handle) != 0)
        fail();
#else
    Q_UNUSED(handle)
#endif
}

void SafeFile::publish()
{
    takeName();
    syncFolder(QFileInfo(m_path).path());
}

void SafeFile::publishAll(const std::vector<std::unique_ptr<SafeFile>> &files)
{
    if (files.empty())
        return;
    const QString folder = QFileInfo(files.front()->m_path).path();
    if (!syncFileSystem(folder)) {
        for (const auto &file : files) {
            if (!file->m_file.open(QIODevice::ReadOnly))
                file->fail();
            file->flush(file->m_file.handle());
            file->m_file.close();
        }
    }
    for (const auto &file : files)
        file->takeName();
    syncFolder(folder);
}

void SafeFile::takeName()
{
    std::error_code code;
    std::filesystem::rename(QFile::encodeName(m_file.fileName()).toStdString(),
                            QFile::encodeName(m_path).toStdString(), code);
    if (code)
        throw Error(ErrorKind::Unwritable, m_path, QString::fromStdString(code.message()));
    m_published = true;
}

} // namespace store
