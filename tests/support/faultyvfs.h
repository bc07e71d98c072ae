#pragma once

namespace testsupport {

/// A file layer under the engine whose n-th call of a kind fails, as a full or failing disk would.
class FaultyDisk {
public:
    enum class Fault { DiskFull, WriteError, SyncError, ShortWrite };

    /// Becomes the engine's default file layer; connections opened from now on go through it.
    FaultyDisk();
    FaultyDisk(const FaultyDisk &) = delete;
    FaultyDisk &operator=(const FaultyDisk &) = delete;
    ~FaultyDisk();

    /// The call number `at` (1 is the next) and all after it fail; 0 switches the faults off.
    static void failFrom(int at, Fault fault);
    /// Calls of the kind seen since failFrom().
    [[nodiscard]] static int calls();
};

} // namespace testsupport
