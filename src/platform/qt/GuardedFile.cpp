#include "platform/qt/GuardedFile.h"

#include <QByteArrayView>

#include <chrono>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/file.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace skylet::platform::qt {

namespace fs = std::filesystem;

namespace {

constexpr int maximumLinks = 40; // as many as the kernel follows
constexpr int maximumAside = 1000;
// File times come from a clock that ticks every 1 to 10 ms.
constexpr std::int64_t settlingNanoseconds = 50'000'000;
constexpr std::chrono::milliseconds lockRetry(5);
constexpr int lockAttempts = 50;

std::int64_t nanoseconds(const timespec& time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

FileIdentity toIdentity(const struct stat& status) {
    return {status.st_dev, status.st_ino, status.st_size, nanoseconds(status.st_mtim),
            nanoseconds(status.st_ctim)};
}

bool isSettled(const FileIdentity& identity) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const std::int64_t age = nanoseconds(now) - identity.changed;
    return age < 0 || age > settlingNanoseconds;
}

class Descriptor {
  public:
    explicit Descriptor(int value) : value_(value) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (value_ >= 0) {
            close(value_);
        }
    }
    [[nodiscard]] int get() const { return value_; }
    explicit operator bool() const { return value_ >= 0; }

  private:
    int value_;
};

// Nothing on an error, and when the file is longer than any of ours.
std::optional<std::string> readAll(int descriptor) {
    std::string bytes;
    char buffer[16384];
    while (true) {
        const ssize_t count = read(descriptor, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 || bytes.size() > static_cast<std::size_t>(GuardedFile::maximumBytes)) {
            return std::nullopt;
        }
        if (count == 0) {
            return bytes;
        }
        bytes.append(buffer, static_cast<std::size_t>(count));
    }
}

bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool isText(const std::string& bytes) {
    return bytes.find('\0') == std::string::npos &&
           QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())).isValidUtf8();
}

} // namespace

std::string GuardedFile::target() const {
    std::error_code error;
    fs::path current(path_);
    for (int i = 0; i < maximumLinks && fs::is_symlink(current, error); ++i) {
        const fs::path next = fs::read_symlink(current, error);
        if (error) {
            break;
        }
        current = next.is_absolute() ? next : current.parent_path() / next;
    }
    return current.string();
}

FileIdentity GuardedFile::identity() const {
    struct stat status {};
    return stat(path_.c_str(), &status) == 0 ? toIdentity(status) : FileIdentity{};
}

GuardedFile::Content GuardedFile::read() const {
    Content content;
    struct stat status {};
    if (stat(path_.c_str(), &status) != 0) {
        content.state = errno == ENOENT || errno == ENOTDIR ? State::absent : State::unreadable;
        return content;
    }
    content.identity = toIdentity(status);
    content.state = State::damaged;
    if (!S_ISREG(status.st_mode)) {
        return content;
    }
    const Descriptor file(open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file || fstat(file.get(), &status) != 0) {
        content.state = State::unreadable;
        return content;
    }
    content.identity = toIdentity(status);
    content.isSettled = isSettled(content.identity);
    if (!S_ISREG(status.st_mode) || status.st_size > maximumBytes) {
        return content;
    }
    auto bytes = readAll(file.get());
    if (bytes && isText(*bytes)) {
        content.state = State::readable;
        content.bytes = std::move(*bytes);
    }
    return content;
}

bool GuardedFile::mayReplace() const {
    const std::string path = target();
    struct stat status {};
    return lstat(path.c_str(), &status) != 0 || faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

bool GuardedFile::replace(const std::string& bytes) const {
    const fs::path path(target());
    const fs::path directory = path.parent_path();
    std::error_code error;
    if (!fs::is_directory(directory, error)) {
        fs::create_directories(directory.parent_path(), error);
        if (mkdir(directory.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
            return false;
        }
    }
    const std::string name = std::string(".").append(path.filename().string()).append(".XXXXXX");
    std::string temporary = (directory / name).string();
    const Descriptor file(mkostemp(temporary.data(), O_CLOEXEC)); // exclusive, mode 0600
    if (!file) {
        return false;
    }
    if (!writeAll(file.get(), bytes) || fsync(file.get()) != 0 ||
        rename(temporary.c_str(), path.c_str()) != 0) {
        unlink(temporary.c_str());
        return false;
    }
    // The new name is on disk only with its directory; an older file survives a crash until then.
    const Descriptor opened(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    fsync(opened.get());
    return true;
}

bool GuardedFile::moveAside() const {
    const std::string path = target();
    for (int i = 0; i < maximumAside; ++i) {
        const std::string aside = path + (i == 0 ? ".damaged" : ".damaged-" + std::to_string(i));
        struct stat status {};
        if (lstat(aside.c_str(), &status) != 0) {
            return errno == ENOENT && rename(path.c_str(), aside.c_str()) == 0;
        }
    }
    return false;
}

DirectoryLock::DirectoryLock(const std::string& directory)
    : descriptor_(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    for (int i = 0; descriptor_ >= 0 && i < lockAttempts; ++i) {
        if (flock(descriptor_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) {
            return;
        }
        std::this_thread::sleep_for(lockRetry);
    }
}

DirectoryLock::~DirectoryLock() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

} // namespace skylet::platform::qt
