#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace store {

/// A file for other programs that appears under its name only when it is complete: it is written beside it
/// under another name and renamed. A full disk, a kill or a failure leaves what stood there before.
class SafeFile {
public:
    /// Opens the file to write. Throws Error where the folder is not there or takes no file.
    explicit SafeFile(const QString &path);
    SafeFile(const SafeFile &) = delete;
    SafeFile &operator=(const SafeFile &) = delete;
    /// Removes what has not been published.
    ~SafeFile();

    /// The name under which it will appear.
    [[nodiscard]] const QString &path() const noexcept { return m_path; }

    /// Throws Error.
    void write(QByteArrayView bytes);
    /// Everything written is on the disk, still under the other name. Throws Error.
    void finish();
    /// Takes the name, in place of a file that has it. finish() must have gone before. Throws Error.
    void publish();

private:
    [[noreturn]] void fail();
    void flushBuffer();

    QString m_path;
    QFile m_file;
    QByteArray m_buffer;
    bool m_published = false;
};

} // namespace store
