#include "store/instancelock.h"

#include <QFile>
#include <QLockFile>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace store {

InstanceLock::InstanceLock(const QString &folder)
{
#ifdef Q_OS_UNIX
    // A lock on the folder itself: it needs no file, so it works in a read-only folder, and the system drops
    // it with the process.
    m_descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_descriptor >= 0) {
        if (::flock(m_descriptor, LOCK_EX | LOCK_NB) == 0) {
            m_held = true;
            return;
        }
        if (errno == EWOULDBLOCK)
            return;
    }
#endif
    // File systems without such locks, and other platforms: a lock file that names its process.
    m_file = std::make_unique<QLockFile>(folder + QStringLiteral("/zhurnal.lock"));
    m_file->setStaleLockTime(0);
    m_held = m_file->tryLock() || m_file->error() != QLockFile::LockFailedError;
}

InstanceLock::~InstanceLock()
{
#ifdef Q_OS_UNIX
    if (m_descriptor >= 0)
        ::close(m_descriptor);
#endif
}

} // namespace store
