#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <memory>
#include <vector>

namespace store {

/// A file for other programs that appears under its name only when it is complete: it is written beside it
/// under another name and renamed. A full disk, a kill or a failure leaves what stood there before.
class SafeFile {
public:
    /// Opens the file to write. Throws Error where the folder is not there or takes no file, and where `path`
    /// is a database or a program.
    explicit SafeFile(const QString &path);
    SafeFile(const SafeFile &) = delete;
    SafeFile &operator=(const SafeFile &) = delete;
    /// Removes what has not been published.
    ~SafeFile();

    /// The name under which it will appear.
    [[nodiscard]] const QString &path() const noexcept { return m_path; }

    /// Throws Error.
    void write(QByteArrayView bytes);
    /// Everything written is in the file, still under the other name; on the disk as well unless `flushed` is
    /// false. Throws Error.
    void finish(bool flushed = true);
    /// Takes the name, in place of a file that has it. finish() must have gone before. Throws Error.
    void publish();

    /// publish() for several files of one folder that have been finished but not flushed: flushed together,
    /// which takes a fraction of the time. Throws Error; the files before the failing one have taken their
    /// names.
    static void publishAll(const std::vector<std::unique_ptr<SafeFile>> &files);

private:
    void takeName();
    [[noreturn]] void fail();
    void flush(int handle);
    void flushBuffer();

    QString m_path;
    QFile m_file;
    QByteArray m_buffer;
    bool m_published = false;
};

} // namespace store
