// A small text file that belongs to the user: read whole, replaced whole, never half-written, and never lost.
//
// The path may be a symbolic link; what it points to is read and replaced, the link stays.
// Threads: one at a time. Failure: said by the return values; nothing of the user's is overwritten then.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>

namespace skylet::platform::qt {

// Tells whether a file is still the one that was read. No file has the default identity.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = -1;
    std::int64_t modified = 0; // nanoseconds
    std::int64_t changed = 0;  // nanoseconds
    bool operator==(const FileIdentity&) const = default;
};

class GuardedFile {
  public:
    // More than any file of ours can need; a larger one is not ours.
    static constexpr off_t maximumBytes = 1'048'576;

    enum class State {
        absent,
        readable,
        unreadable, // exists, but this user may not read it
        damaged,    // no regular file, too large, NUL bytes or invalid UTF-8
    };
    struct Content {
        State state = State::absent;
        std::string bytes; // only of a readable file
        FileIdentity identity;
        // Whether a change right after this reading is sure to change the identity: file times are coarse.
        bool isSettled = true;
    };

    explicit GuardedFile(std::string path) : path_(std::move(path)) {}

    [[nodiscard]] const std::string& path() const { return path_; }
    // Where the symbolic links end; the path itself where it is none.
    [[nodiscard]] std::string target() const;

    // One stat.
    [[nodiscard]] FileIdentity identity() const;
    [[nodiscard]] Content read() const;
    // Whether `replace` may be tried: an existing file must be writable, not only its directory.
    [[nodiscard]] bool mayReplace() const;
    // Makes the directory where it is missing (mode 0700). The file gets mode 0600.
    [[nodiscard]] bool replace(const std::string& bytes) const;
    // Renames the file to NAME.damaged, NAME.damaged-1, ...: the first name that is free.
    [[nodiscard]] bool moveAside() const;

  private:
    std::string path_;
};

// Holds other writers of the same file off while it lives. Best effort: where the file system knows no locks
// or the other one takes long, the writer goes on without.
class DirectoryLock {
  public:
    explicit DirectoryLock(const std::string& directory);
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;
    ~DirectoryLock();

  private:
    int descriptor_ = -1;
};

} // namespace skylet::platform::qt
