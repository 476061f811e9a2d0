#include "platform/qt/FileDefaults.h"

#include "platform/qt/IniDocument.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <limits>
#include <utility>

namespace skylet::platform::qt {

namespace {

template <class T>
std::optional<T> parseWhole(const std::string& text) {
    T value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

std::optional<bool> parseBool(const std::string& text) {
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    if (lower == "true" || lower == "1") {
        return true;
    }
    return lower == "false" || lower == "0" ? std::optional(false) : std::nullopt;
}

std::optional<double> parseDouble(const std::string& text) {
    const auto value = parseWhole<double>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<std::int64_t> parseInteger(const std::string& text) {
    if (const auto value = parseWhole<std::int64_t>(text)) {
        return value;
    }
    const auto value = parseDouble(text);
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (!value || std::trunc(*value) < -limit || std::trunc(*value) >= limit) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(*value);
}

template <class T>
DefaultsRead<T> toRead(const std::optional<std::string>& raw, std::optional<T> (*parse)(const std::string&)) {
    if (!raw) {
        return {};
    }
    const auto text = textOfRawValue(*raw);
    const auto value = text ? parse(*text) : std::nullopt;
    if (!value) {
        return {DefaultsStatus::wrongType, T{}};
    }
    return {DefaultsStatus::value, *value};
}

template <class Map>
std::optional<std::string> find(const Map& values, std::string_view key) {
    const auto it = values.find(key);
    return it == values.end() ? std::nullopt : std::optional(it->second);
}

QString fromPath(const std::string& path) {
    return QFile::decodeName(path.c_str());
}

} // namespace

std::string FileDefaults::defaultPath() {
    QString base = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!QDir::isAbsolutePath(base)) {
        base = QDir::homePath() + QStringLiteral("/.config");
    }
    return QFile::encodeName(base + QStringLiteral("/Skylet/skylet.conf")).toStdString();
}

FileDefaults::FileDefaults(std::string path) : file_(std::move(path)) {
    reload();
    noticed_ = currentValues();
    changed_.setSingleShot(true);
    QObject::connect(&changed_, &QTimer::timeout, &changed_, [this] { noticeChanges(); });
    QObject::connect(&watcher_, &QFileSystemWatcher::fileChanged, &watcher_, [this] { noticeChanges(); });
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_,
                     [this] { noticeChanges(); });
    watch();
}

FileDefaults::~FileDefaults() = default;

void FileDefaults::refresh() const {
    if (!content_.isSettled || file_.identity() != content_.identity) {
        reload();
    }
}

void FileDefaults::reload() const {
    content_ = file_.read();
    values_ = IniDocument(content_.bytes).values();
    std::erase_if(unsaved_,
                  [this](const auto& entry) { return find(values_, entry.first) != entry.second.inFile; });
}

std::optional<std::string> FileDefaults::rawValue(std::string_view key) const {
    const std::lock_guard lock(mutex_);
    refresh();
    if (const auto it = unsaved_.find(key); it != unsaved_.end()) {
        return it->second.value;
    }
    return find(values_, key);
}

FileDefaults::Values FileDefaults::currentValues() const {
    const std::lock_guard lock(mutex_);
    refresh();
    Values values = values_;
    for (const auto& [key, unsaved] : unsaved_) {
        if (unsaved.value) {
            values.insert_or_assign(key, *unsaved.value);
        } else {
            values.erase(key);
        }
    }
    return values;
}

DefaultsRead<bool> FileDefaults::readBool(std::string_view key) const {
    return toRead(rawValue(key), &parseBool);
}

DefaultsRead<std::int64_t> FileDefaults::readInteger(std::string_view key) const {
    return toRead(rawValue(key), &parseInteger);
}

DefaultsRead<double> FileDefaults::readDouble(std::string_view key) const {
    return toRead(rawValue(key), &parseDouble);
}

DefaultsRead<std::string> FileDefaults::readText(std::string_view key) const {
    return toRead<std::string>(rawValue(key), [](const std::string& text) { return std::optional(text); });
}

void FileDefaults::setBool(std::string_view key, bool value) {
    write(key, value ? "true" : "false");
}

void FileDefaults::setInteger(std::string_view key, std::int64_t value) {
    write(key, std::to_string(value));
}

void FileDefaults::setDouble(std::string_view key, double value) {
    std::array<char, 32> buffer{}; // the shortest form of a double takes 24 characters at most
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    write(key, std::string(buffer.data(), end));
}

void FileDefaults::setData(std::string_view key, std::string_view bytes) {
    write(key, rawValueOfText(bytes));
}

void FileDefaults::remove(std::string_view key) {
    write(key, std::nullopt);
}

void FileDefaults::write(std::string_view key, std::optional<std::string> value) {
    {
        const std::lock_guard lock(mutex_);
        if (!store(key, value)) {
            unsaved_.insert_or_assign(std::string(key), Unsaved{std::move(value), find(values_, key)});
        }
    }
    watch();
    changed_.start();
}

// Writes what is unsaved and this value over the file as it is now.
bool FileDefaults::store(std::string_view key, const std::optional<std::string>& value) {
    const DirectoryLock lock(std::filesystem::path(file_.target()).parent_path().string());
    reload();
    if (content_.state == GuardedFile::State::unreadable || !file_.mayReplace()) {
        return false;
    }
    if (unsaved_.empty() && content_.state != GuardedFile::State::damaged && find(values_, key) == value) {
        return true;
    }
    IniDocument document(content_.bytes);
    const auto apply = [&document](std::string_view name, const std::optional<std::string>& raw) {
        if (raw) {
            document.set(name, *raw);
        } else {
            document.remove(name);
        }
    };
    for (const auto& [name, unsaved] : unsaved_) {
        apply(name, unsaved.value);
    }
    apply(key, value);
    if (content_.state == GuardedFile::State::damaged && !file_.moveAside()) {
        return false;
    }
    if (!file_.replace(document.bytes())) {
        return false;
    }
    unsaved_.clear();
    reload();
    return true;
}

Subscription FileDefaults::observeDidChange(std::function<void()> notice) {
    return observers_.add(std::move(notice));
}

// The file is watched for edits in place, its directory for a file that takes its place. While the directory
// is missing, the nearest one above it tells when it comes.
void FileDefaults::watch() {
    QStringList wanted;
    for (const std::string& path : {file_.path(), file_.target()}) {
        QFileInfo info(fromPath(path));
        if (info.isReadable()) {
            wanted << info.absoluteFilePath();
        }
        QString directory = info.absolutePath();
        while (!QFileInfo::exists(directory) && !QDir(directory).isRoot()) {
            directory = QFileInfo(directory).absolutePath();
        }
        if (QFileInfo(directory).isReadable()) {
            wanted << directory;
        }
    }
    wanted.removeDuplicates();
    QStringList watched = watcher_.files() + watcher_.directories();
    QStringList unwanted;
    for (const QString& path : std::as_const(watched)) {
        if (!wanted.removeOne(path)) {
            unwanted << path;
        }
    }
    if (!unwanted.isEmpty()) {
        watcher_.removePaths(unwanted);
    }
    if (!wanted.isEmpty()) {
        watcher_.addPaths(wanted);
    }
}

void FileDefaults::noticeChanges() {
    watch();
    Values values = currentValues();
    if (values == noticed_) {
        return;
    }
    noticed_ = std::move(values);
    observers_.notify();
}

} // namespace skylet::platform::qt
