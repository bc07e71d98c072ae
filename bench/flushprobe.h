#pragma once

#include <QString>

#include <memory>

namespace store {
class Connection;
}

namespace bench {

/// The disk's own part of recording a contact: a commit of an otherwise trivial database in the same folder,
/// opened with the same settings as a log, that writes as many pages. Removes its file when it goes.
class FlushProbe {
public:
    static constexpr int kMostPages = 64;

    explicit FlushProbe(const QString &folder);
    FlushProbe(const FlushProbe &) = delete;
    FlushProbe &operator=(const FlushProbe &) = delete;
    ~FlushProbe();

    /// Milliseconds that one commit of `pages` changed pages takes, at most kMostPages.
    double commit(int pages);

private:
    QString m_path;
    std::unique_ptr<store::Connection> m_connection;
};

/// Pages that a connection has written to its file since the last call.
[[nodiscard]] int pagesWritten(store::Connection &connection);

} // namespace bench
