#pragma once

#include <QString>

#include <memory>

class QLockFile;

namespace store {

/// Keeps a second program off a folder of databases. The lock goes with the process, however that ends.
class InstanceLock {
public:
    explicit InstanceLock(const QString &folder);
    InstanceLock(const InstanceLock &) = delete;
    InstanceLock &operator=(const InstanceLock &) = delete;
    ~InstanceLock();

    /// False where another living program holds the folder.
    [[nodiscard]] bool held() const noexcept { return m_held; }

private:
    int m_descriptor = -1;
    std::unique_ptr<QLockFile> m_file;
    bool m_held = false;
};

} // namespace store
