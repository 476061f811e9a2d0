// The preferences store as an INI file: group [General] of $XDG_CONFIG_HOME/Skylet/skylet.conf.
//
// The file may be edited from outside at any time, in place or by replacing it: the next read sees it, for
// the price of one stat while nothing changed. What the program does not know in the file stays as it is. A
// file that cannot be a preferences file counts as empty and is moved aside before the first write; one that
// may not be read or written is left alone, and writes hold for this run. Threads: reads from any thread,
// everything else on the main thread, where notices are delivered from the event loop, never inside a call.
#pragma once

#include "platform/Defaults.h"
#include "platform/qt/GuardedFile.h"
#include "platform/qt/Observers.h"

#include <QFileSystemWatcher>
#include <QTimer>

#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace skylet::platform::qt {

class FileDefaults : public Defaults {
  public:
    // $XDG_CONFIG_HOME/Skylet/skylet.conf, or ~/.config where the variable holds no absolute path.
    [[nodiscard]] static std::string defaultPath();

    explicit FileDefaults(std::string path);
    FileDefaults(const FileDefaults&) = delete;
    FileDefaults& operator=(const FileDefaults&) = delete;
    ~FileDefaults() override;

    // true, false (any case), 1 and 0; anything else is of the wrong type.
    [[nodiscard]] DefaultsRead<bool> readBool(std::string_view key) const override;
    [[nodiscard]] DefaultsRead<std::int64_t> readInteger(std::string_view key) const override;
    [[nodiscard]] DefaultsRead<double> readDouble(std::string_view key) const override;
    [[nodiscard]] DefaultsRead<std::string> readText(std::string_view key) const override;

    void setBool(std::string_view key, bool value) override;
    void setInteger(std::string_view key, std::int64_t value) override;
    void setDouble(std::string_view key, double value) override;
    void setData(std::string_view key, std::string_view bytes) override;
    void remove(std::string_view key) override;

    [[nodiscard]] Subscription observeDidChange(std::function<void()> notice) override;

  private:
    using Values = std::map<std::string, std::string, std::less<>>; // raw values

    // A write that could not be stored. It holds until the file says something else than it said then.
    struct Unsaved {
        std::optional<std::string> value; // nothing: removed
        std::optional<std::string> inFile;
    };

    void refresh() const;
    void reload() const;
    [[nodiscard]] std::optional<std::string> rawValue(std::string_view key) const;
    [[nodiscard]] Values currentValues() const;
    void write(std::string_view key, std::optional<std::string> value);
    [[nodiscard]] bool store(std::string_view key, const std::optional<std::string>& value);
    void watch();
    void noticeChanges();

    GuardedFile file_;
    mutable std::mutex mutex_; // guards the members up to the blank line
    mutable GuardedFile::Content content_;
    mutable Values values_; // of content_
    mutable std::map<std::string, Unsaved, std::less<>> unsaved_;

    QFileSystemWatcher watcher_;
    QTimer changed_; // brings notices of our own writes together, out of the call
    Values noticed_; // as of the last notice
    Observers<> observers_;
};

} // namespace skylet::platform::qt
