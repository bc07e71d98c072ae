#pragma once

#include "cw/ui/serialline.h"

#include <QFile>
#include <QStringList>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <optional>

/// A serial port for tests. A pseudo-terminal opens, locks and vanishes like one but has no modem lines; the
/// test program answers for them, by an ioctl() of its own that stands before the system's.
namespace testsupport {

/// DTR and RTS of one device node.
class ModemLines {
public:
    explicit ModemLines(const QByteArray &device)
    {
        struct stat node = {};
        if (::stat(device.constData(), &node) != 0)
            qFatal("no device %s", device.constData());
        m_node = node.st_rdev;
    }

    bool dtr = false;
    bool rts = false;
    QStringList changes; ///< "DTR 1", "RTS 0": each time that a line took another level
    QStringList asked;   ///< the same for whatever was asked for, with " fails" where it was refused
    int requests = 0;    ///< for the lines, reading them included
    int failFrom = 0;    ///< number of the first request, from 1, that finds the port pulled out; 0 for none
    bool failOnce = false; ///< only that one fails

    /// What the system does when a program opens the port.
    void raise()
    {
        dtr = true;
        rts = true;
        changes.clear();
        asked.clear();
        requests = 0;
    }

    [[nodiscard]] bool isBehind(int descriptor) const
    {
        struct stat node = {};
        return ::fstat(descriptor, &node) == 0 && S_ISCHR(node.st_mode) && node.st_rdev == m_node;
    }

    /// 0 or the error's number; nothing for a request that is not about the lines.
    std::optional<int> answer(unsigned long request, int *bits)
    {
        if (request != TIOCMGET && request != TIOCMBIS && request != TIOCMBIC && request != TIOCMSET)
            return {};
        ++requests;
        const bool fails = failFrom != 0 && (failOnce ? requests == failFrom : requests >= failFrom);
        if (request == TIOCMGET) {
            if (!fails)
                *bits = (dtr ? TIOCM_DTR : 0) | (rts ? TIOCM_RTS : 0);
        } else {
            const bool all = request == TIOCMSET;
            const auto line = [&](const char *name, int bit, bool &level) {
                if (all || (*bits & bit) != 0)
                    ask(name, level, all ? (*bits & bit) != 0 : request == TIOCMBIS, fails);
            };
            line("DTR", TIOCM_DTR, dtr);
            line("RTS", TIOCM_RTS, rts);
        }
        return fails ? EIO : 0;
    }

private:
    void ask(const char *name, bool &level, bool high, bool fails)
    {
        const QString text = QStringLiteral("%1 %2").arg(QLatin1String(name)).arg(static_cast<int>(high));
        asked.append(fails ? text + QStringLiteral(" fails") : text);
        if (fails || level == high)
            return;
        level = high;
        changes.append(text);
    }

    dev_t m_node = 0;
};

/// Those that ioctl() answers for; a function of the system's has no other way to get at them.
extern ModemLines *emulated;

/// A device node that lives as long as its other end is open.
class Device {
public:
    Device() : m_otherEnd(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        std::array<char, 128> name{};
        if (m_otherEnd < 0 || ::grantpt(m_otherEnd) != 0 || ::unlockpt(m_otherEnd) != 0 ||
            ::ptsname_r(m_otherEnd, name.data(), name.size()) != 0)
            qFatal("no pseudo-terminal");
        m_path = name.data();
    }
    Device(const Device &) = delete;
    Device &operator=(const Device &) = delete;
    ~Device() { vanish(); }

    [[nodiscard]] const QByteArray &path() const noexcept { return m_path; }
    [[nodiscard]] QString name() const { return QFile::decodeName(m_path); }
    void vanish()
    {
        if (m_otherEnd >= 0)
            ::close(m_otherEnd);
        m_otherEnd = -1;
    }

private:
    int m_otherEnd;
    QByteArray m_path;
};

/// A serial port with its lines: a Device that ioctl() answers for.
class Port {
public:
    Port() { emulated = &lines; }
    Port(const Port &) = delete;
    Port &operator=(const Port &) = delete;
    ~Port() { emulated = nullptr; }

    /// Opened by `line` as the system would: both lines go up first.
    void open(cw::SerialLine &line)
    {
        lines.raise();
        line.openDevice(device.name());
    }

    Device device;
    ModemLines lines{device.path()};
};

} // namespace testsupport
